#!/usr/bin/env bash
# Builds Quellbarrow, prepares its program folder (build/program: the .exe, its
# help file and links page, its Databases and DataHtml folders, a sample and a
# starter key database and first settings) and starts it under Wine beside a first
# look at its main job: a sample order form served from 127.0.0.1:80 and, with the
# test authority's certificate, from https://localhost/ (as root), shown over HTTPS
# in Wine's Internet Explorer, which the settings name as the browser. Click a key
# in the Keys view (text fields are filled only while the selected key has a
# Description), press "Scan HTML" and the filled form opens in the browser. Without
# a display it runs under Xvfb, does that itself and saves screenshots of the main
# window, the prompt and the filled page.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
program="$build/program"

"$root/scripts/setup.sh"
"$root/scripts/build.sh" win

mkdir -p "$program/Databases" "$program/DataHtml"
cp "$build/win/Quellbarrow.exe" "$build/win/QBHELP.HLP" "$root/resources/weblinks.htm" "$program/"
# The starter database as the build wrote it; once there it is the user's to change.
[ -f "$program/Databases/Starter.dat" ] || cp "$build/win/Databases/Starter.dat" "$program/Databases/"

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
  wine "$build/win/tools/initsettings.exe" "$program/pellwick.cfg" $database \
    --browser "Wine Internet Explorer" 'C:\Program Files\Internet Explorer\iexplore.exe' </dev/null >/dev/null 2>&1
fi

# The sample site and the browser showing its form, over HTTPS when the site
# serves it so (the system trusts the test authority that scripts/setup.sh added).
address=http://127.0.0.1/order/form.htm
python3 "$root/scripts/sample_site.py" "$root/resources/sample/order_form.htm" </dev/null >/dev/null 2>&1 &
site_pid=$!
sleep 1
if curl -sf -o /dev/null https://localhost/order/form.htm; then address=https://localhost/order/form.htm; fi
if kill -0 "$site_pid" 2>/dev/null; then
  wine iexplore "$address" </dev/null >/dev/null 2>&1 &
else
  echo "No sample site (port 80 is taken or needs root): Quellbarrow starts alone."
  site_pid=
fi

cd "$program"
if [ "$headless" = 0 ]; then
  [ -z "$site_pid" ] || echo "The browser shows $address. Click a key in the Keys view, then press \"Scan HTML\" (F7) to fill it."
  wine Quellbarrow.exe || true
  [ -z "$site_pid" ] || kill "$site_pid"
  exit 0
fi

wine Quellbarrow.exe </dev/null >/dev/null 2>&1 &
sleep "${QB_SCREENSHOT_DELAY:-4}"
shot="$build/quellbarrow-screenshot.png"
import -window root "$shot"
echo "Quellbarrow is running under Xvfb (display $DISPLAY); screenshot: $shot"
if [ -n "$site_pid" ]; then
  driver="$build/win/screenshot_driver.exe"
  i686-w64-mingw32-g++-posix -O1 -static -o "$driver" "$root/scripts/screenshot_driver.cpp"
  drive() { wine "$driver" "$@" </dev/null 2>/dev/null | tr -d '\r'; }
  if drive address "$address" >/dev/null; then
    drive pickrow 2901 0 >/dev/null   # the first key: text fields need a selected key
    drive command 50500 >/dev/null
    if geometry=$(drive dialog "Quellbarrow - UnMatched Form field name") && [ -n "$geometry" ]; then
      import -window root -crop "$geometry" +repage "$build/quellbarrow-prompt.png"
      echo "The prompt for the field no sample key answers: $build/quellbarrow-prompt.png"
      drive press "Quellbarrow - UnMatched Form field name" 1 >/dev/null
    fi
    if geometry=$(drive address QuellbarrowTemproaryFile.htm) && [ -n "$geometry" ]; then
      import -window root -crop "$geometry" +repage "$build/quellbarrow-filled-page.png"
      echo "The filled page in the browser: $build/quellbarrow-filled-page.png"
      # Wine's browser draws pages only with its HTML engine installed; Chromium
      # shows what the filled form looks like.
      if command -v chromium >/dev/null; then
        timeout 60 chromium --headless --no-sandbox --disable-gpu --window-size=900,640 \
          --screenshot="$build/quellbarrow-filled-form.png" "file://$program/QuellbarrowTemproaryFile.htm" \
          </dev/null >/dev/null 2>&1 && echo "The filled form as a browser draws it: $build/quellbarrow-filled-form.png"
      fi
    fi
  fi
  echo "The sample site (process $site_pid) serves $address; stop it with: kill $site_pid"
fi
echo "Stop it with: scripts/wine-session.sh stop $build/win"
