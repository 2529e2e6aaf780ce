#!/usr/bin/env bash
# Builds Quellbarrow, prepares its program folder (build/program: the .exe, its
# help file and links page, its Databases and DataHtml folders, a sample key
# database and first settings) and starts it under Wine. Without a display it
# runs under Xvfb, saves a screenshot and prints its path.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
program="$build/program"

"$root/scripts/setup.sh"
"$root/scripts/build.sh" win

mkdir -p "$program/Databases" "$program/DataHtml"
cp "$build/win/Quellbarrow.exe" "$build/win/QBHELP.HLP" "$root/resources/weblinks.htm" "$program/"

# The caller's display decides; the test session's Xvfb is not a user's screen.
headless=0
if [ -z "${DISPLAY:-}" ] || ! xdpyinfo >/dev/null 2>&1; then headless=1; fi
user_display=${DISPLAY:-}
. "$root/scripts/wine-env.sh" "$build/win"
if [ "$headless" = 1 ]; then
  "$root/scripts/wine-session.sh" start "$build/win"
  . "$root/scripts/wine-env.sh" "$build/win"
else
  export DISPLAY=$user_display
  "$root/scripts/wine-prefix.sh" "$build/win"
fi

# First run of this folder: a sample database and settings that open it.
if [ ! -f "$program/pellwick.cfg" ]; then
  database=""
  if [ -x "$build/win/tools/makekeydb.exe" ] && [ -f "$root/resources/sample/keys.txt" ]; then
    wine "$build/win/tools/makekeydb.exe" "$root/resources/sample/keys.txt" \
      "$program/Databases/Sample.dat" </dev/null >/dev/null 2>&1 && database=Sample.dat
  fi
  wine "$build/win/tools/initsettings.exe" "$program/pellwick.cfg" $database </dev/null >/dev/null 2>&1
fi

cd "$program"
if [ "$headless" = 0 ]; then
  exec wine Quellbarrow.exe
fi

wine Quellbarrow.exe </dev/null >/dev/null 2>&1 &
sleep "${QB_SCREENSHOT_DELAY:-4}"
shot="$build/quellbarrow-screenshot.png"
import -window root "$shot"
echo "Quellbarrow is running under Xvfb (display $DISPLAY); screenshot: $shot"
echo "Stop it with: scripts/wine-session.sh stop $build/win"
