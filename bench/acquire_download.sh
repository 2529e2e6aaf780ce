#!/usr/bin/env bash
# A 20 MB page over loopback: the download dialog (under Wine) beside curl, both
# fetching the same page from the same private nginx in the same run.
#   bench/acquire_download.sh [RUNS]      (QB_BUILD_DIR as for scripts/build.sh)
# Needs the product build (scripts/build.sh win); starts and stops its own nginx
# and, when none is running, its own Wine session.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
win=$build/win
runs=${1:-3}
dir=$win/bench/acquire_nginx
page_bytes=$((20 * 1024 * 1024))

session_started=0
cleanup() {
  "$root/tests/acquire/nginx.sh" stop "$dir"
  if [ "$session_started" = 1 ]; then "$root/scripts/wine-session.sh" stop "$win"; fi
}
trap cleanup EXIT

"$root/tests/acquire/nginx.sh" start "$dir"
# Lines of form markup, no zero bytes, exactly page_bytes long.
python3 - "$dir/www/big.html" "$page_bytes" <<'PY'
import sys
path, size = sys.argv[1], int(sys.argv[2])
line = b'<p>Field: <input type="text" name="field" value="some value"></p>\n'
data = (line * (size // len(line) + 1))[:size - 1] + b'\n'
open(path, 'wb').write(data)
PY
mkdir -p "$dir/out"

echo "page: http://127.0.0.1/big.html, $page_bytes bytes of body"
for i in $(seq "$runs"); do
  curl -s -o "$dir/out/curl.html" -w "%{size_download} %{time_total}\n" http://127.0.0.1/big.html |
    awk -v run="$i" '{ printf "curl run %d: %d bytes in %.3f s = %.1f MB/s\n", run, $1, $2, $1 / $2 / 1e6 }'

done

if [ ! -f "$win/wine-session/xvfb.pid" ] || ! kill -0 "$(cat "$win/wine-session/xvfb.pid")" 2>/dev/null; then
  "$root/scripts/wine-session.sh" start "$win"
  session_started=1
fi
folder="Z:$(echo "$dir/out" | tr / '\\')"
"$win/wine-run.sh" "$win/bench/acquire_download_bench.exe" http://127.0.0.1/big.html "$folder" "$runs"
