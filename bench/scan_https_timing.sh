#!/usr/bin/env bash
# "Scan HTML" of the same pages over plain HTTP and over HTTPS, timed under Wine
# (bench/scan_bench.cpp: medians of command to filled page written, and of the
# download dialog alone). One loopback nginx (tests/acquire/nginx.sh, as root)
# serves both: http://127.0.0.1/ and https://localhost/ with the test authority's
# certificate (scripts/test-ca.sh). Pages: the sample order form and a 1 MiB
# page of the same form's fields.
#   bench/scan_https_timing.sh [RUNS]      (QB_BUILD_DIR as for scripts/build.sh)
# Needs the product build; starts its own Wine session when none is running.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
win=$build/win
runs=${1:-9}
dir=$win/bench/scan_https_nginx

session_started=0
cleanup() {
  "$root/tests/acquire/nginx.sh" stop "$dir"
  if [ "$session_started" = 1 ]; then "$root/scripts/wine-session.sh" stop "$win"; fi
}
trap cleanup EXIT

"$root/tests/acquire/nginx.sh" start "$dir"
cp "$root/resources/sample/order_form.htm" "$dir/www/order_form.htm"
# The sample form's fields repeated up to 1 MiB.
python3 - "$root/resources/sample/order_form.htm" "$dir/www/big_form.htm" <<'PY'
import sys
form = open(sys.argv[1], "rb").read()
start, end = form.index(b"<input"), form.rindex(b"<input")
rows = form[start:end]
head, tail = form[:start], form[end:]
body = rows * ((1 << 20) // len(rows))
open(sys.argv[2], "wb").write(head + body + tail)
PY

if [ ! -f "$win/wine-session/xvfb.pid" ] || ! kill -0 "$(cat "$win/wine-session/xvfb.pid")" 2>/dev/null; then
  "$root/scripts/wine-session.sh" start "$win"
  session_started=1
fi
keys="Z:$(echo "$root/resources/sample/keys.txt" | tr / '\\')"
for page in order_form.htm big_form.htm; do
  for address in "http://127.0.0.1/$page" "https://localhost/$page"; do
    "$win/wine-run.sh" "$win/bench/scan_bench.exe" "$address" "$keys" "$runs" | tr -d '\r'
  done
done
