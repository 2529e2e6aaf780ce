#!/usr/bin/env bash
# "Scan HTML" timed under Wine on two pages served from 127.0.0.1:80 (as root): the
# sample order form and a 1 MiB page of 8 forms. For each: command to filled page
# written (no prompts), the download dialog alone, the fill alone in-process, and
# fillpage as a process (Wine's start included).
#   bench/scan_timing.sh [RUNS]      (QB_BUILD_DIR as for scripts/build.sh)
# Needs the product build; starts its own Wine session when none is running.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
win=$build/win
runs=${1:-5}
work=$(mktemp -d)

session_started=0
server_pid=
cleanup() {
  [ -z "$server_pid" ] || kill "$server_pid" 2>/dev/null || true
  if [ "$session_started" = 1 ]; then "$root/scripts/wine-session.sh" stop "$win"; fi
  rm -rf "$work"
}
trap cleanup EXIT

mkdir -p "$work/www"
cp "$root/resources/sample/order_form.htm" "$work/www/order_form.htm"
# 8 forms of 99 fields, labels and filler between them, padded to exactly 1 MiB.
python3 - "$work/www/long_form.htm" <<'PY'
import sys
names = ["firstname", "lastname", "email", "street", "city", "zip", "country", "phone", "unknown"]
def page(filler):
    out = ["<html><head><title>Long form</title></head><body>\n"]
    for f in range(8):
        out.append(f'<form name="part{f}" action="/cgi-bin/apply.cgi?part={f}" method="post"><table>\n')
        for i in range(98):
            name = f"{names[(f * 98 + i) % len(names)]}{'' if i < 9 else i}"
            kind = i % 4
            field = (f'<select name="{name}"><option>USA</option><option>France</option></select>' if kind == 0 else
                     f'<textarea name="{name}" rows="3" cols="40"></textarea>' if kind == 1 else
                     f'<input type="checkbox" name="{name}" value="yes">' if kind == 2 else
                     f'<input type="text" name="{name}" size="30">')
            out.append(f'<tr><td><font face="Arial">Question {i}</font><br><span>{filler}</span></td><td>{field}</td></tr>\n')
        out.append('<tr><td><input type="submit" value="Next"></td></tr></table></form>\n')
    out.append("</body></html>\n")
    return "".join(out)
size = 1 << 20
base, one = len(page("")), len(page("x"))
text = page(("Answer as it stands on your papers. " * 400)[: (size - base) // (one - base)])
text = text[:-1] + " " * (size - len(text)) + "\n"
open(sys.argv[1], "w").write(text)
PY
# The program's request line carries the absolute address: serve by its path.
python3 - "$work/www" </dev/null >/dev/null 2>&1 <<'PY' &
import http.server, os, sys, urllib.parse
root = sys.argv[1]
class Files(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        name = os.path.basename(urllib.parse.urlsplit(self.path).path)
        with open(os.path.join(root, name), "rb") as f:
            body = f.read()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)
    def log_message(self, *args):
        pass
http.server.HTTPServer(("127.0.0.1", 80), Files).serve_forever()
PY
server_pid=$!
sleep 1

if [ ! -f "$win/wine-session/xvfb.pid" ] || ! kill -0 "$(cat "$win/wine-session/xvfb.pid")" 2>/dev/null; then
  "$root/scripts/wine-session.sh" start "$win"
  session_started=1
fi
wpath() { echo "Z:$1" | tr / '\\'; }
"$win/wine-run.sh" "$win/tools/makekeydb.exe" "$(wpath "$root/resources/sample/keys.txt")" "$(wpath "$work/keys.dat")" >/dev/null
for page in order_form.htm long_form.htm; do
  "$win/wine-run.sh" "$win/bench/scan_bench.exe" "http://127.0.0.1/$page" "$(wpath "$root/resources/sample/keys.txt")" "$runs" | tr -d '\r'
  best=
  for i in $(seq "$runs"); do
    start=$(date +%s%N)
    "$win/wine-run.sh" "$win/tools/fillpage.exe" "$(wpath "$work/www/$page")" "127.0.0.1/$page" \
      "$(wpath "$work/keys.dat")" "$(wpath "$work/filled.htm")" --current-key 0 >/dev/null
    ms=$(( ($(date +%s%N) - start) / 1000000 ))
    if [ -z "$best" ] || [ "$ms" -lt "$best" ]; then best=$ms; fi
  done
  echo "fillpage.exe as a process on $page: best of $runs runs $best ms (Wine's process start included)"
done
