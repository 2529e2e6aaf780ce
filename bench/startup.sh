#!/usr/bin/env bash
# Start-up time of Quellbarrow (launch to idle message loop) beside a minimal Win32
# program that only creates one window, both under the same Wine.
#   bench/startup.sh [RUNS]      (QB_BUILD_DIR as for scripts/build.sh; default 20 runs)
# Needs the product build (scripts/build.sh win); starts and stops its own Wine
# session when none is running.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
win=$build/win
runs=${1:-20}

session_started=0
cleanup() { if [ "$session_started" = 1 ]; then "$root/scripts/wine-session.sh" stop "$win"; fi; }
trap cleanup EXIT
if [ ! -f "$win/wine-session/xvfb.pid" ] || ! kill -0 "$(cat "$win/wine-session/xvfb.pid")" 2>/dev/null; then
  "$root/scripts/wine-session.sh" start "$win"
  session_started=1
fi
windows_path() { echo "Z:$(echo "$1" | tr / '\\')"; }
"$win/wine-run.sh" "$win/bench/startup_bench.exe" "$runs" \
  "$(windows_path "$win/Quellbarrow.exe")" "$(windows_path "$win/bench/startup_minimal.exe")"
