#!/usr/bin/env bash
# One Xvfb and one persistent wineserver for a whole test run of a build tree.
#   wine-session.sh start BUILD_DIR   (idempotent; prepares the Wine prefix once)
#   wine-session.sh stop BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cmd=$1
build=$(cd "$2" && pwd)
. "$here/wine-env.sh" "$build"
mkdir -p "$qb_session"

alive() { [ -f "$1" ] && kill -0 "$(cat "$1")" 2>/dev/null; }

stop() {
  if [ -f "$qb_session/display" ]; then
    wineserver -k >/dev/null 2>&1 || true
  fi
  if alive "$qb_session/xvfb.pid"; then kill "$(cat "$qb_session/xvfb.pid")" 2>/dev/null || true; fi
  rm -f "$qb_session/xvfb.pid" "$qb_session/display"
}

start() {
  if alive "$qb_session/xvfb.pid" && [ -f "$qb_session/display" ]; then
    export DISPLAY=":$(cat "$qb_session/display")"
  else
    # The first display number whose server comes up (another Xvfb may hold a
    # number without a lock file this tree can see).
    local n=90 pid
    while :; do
      while [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ]; do n=$((n + 1)); done
      Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 </dev/null &
      pid=$!
      for _ in $(seq 200); do
        { [ -e "/tmp/.X11-unix/X$n" ] || ! kill -0 "$pid" 2>/dev/null; } && break
        sleep 0.05
      done
      if kill -0 "$pid" 2>/dev/null && [ -e "/tmp/.X11-unix/X$n" ]; then break; fi
      kill "$pid" 2>/dev/null || true
      n=$((n + 1))
      [ "$n" -lt 400 ] || { echo "wine-session: no display number free" >&2; exit 1; }
    done
    echo "$pid" >"$qb_session/xvfb.pid"
    echo "$n" >"$qb_session/display"
    export DISPLAY=":$n"
  fi
  "$here/wine-prefix.sh" "$build"
  # A persistent server keeps every later wine start fast. Its services inherit the
  # stdio of the first process, so nothing here is connected to CTest's pipes.
  wineserver -p >/dev/null 2>&1 </dev/null || true  # already running
  wine cmd /c exit >/dev/null 2>&1 </dev/null || true
}

case "$cmd" in
  start) start ;;
  stop) stop ;;
  *) echo "usage: $0 start|stop BUILD_DIR" >&2; exit 2 ;;
esac
