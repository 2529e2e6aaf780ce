#!/usr/bin/env bash
# Screenshots of the main window under Xvfb: both bars docked at the top, the tool
# bar docked at the left with the databases bar floating, the vertical
# arrangement, the options dialog, the Add / Compare dialog with a second
# database loaded and all its keys selected and added, its preview of a loaded
# key, the Links view at the DataHtml root, one folder down and with its pop-up
# menu, the key editor changing a key, the help viewer at the contents and at the key editor's topic, and the
# about box. Needs the product build.
#   scripts/screenshots.sh [OUT_DIR]      (QB_BUILD_DIR as for scripts/build.sh)
# Then the sample database listed in the Keys view, the key list's pop-up menu and
# New database's dialog with two keys chosen; the Tools menu and the tool bar
# button of "Scan Address from Clipboard". Last, downloads from a loopback site
# (needs ports 80 and 443, so root in a network namespace of its own): the
# download dialog while a page trickles in and the main window after Esc cancelled
# it; the messages of a page past the size limit, an expired certificate and a
# redirect that never ends, each over the dialog that raised it; the how-to
# message of "Scan Address from Clipboard" with no address on the clipboard;
# "Scan HTML"'s offer of the clipboard's address, and the main window after that
# scan once the browser is closed.
# Writes OUT_DIR/{both-bars-top,toolbar-left-databases-floating,vertical,options,
# add-compare,preview,links-root,links-folder,links-menu,help-contents,
# help-key-editor,about,key-editor,keys-listed,keys-popup,new-database,tools-menu,
# scan-clipboard-button,downloading,download-cancelled,download-too-large,
# certificate-refused,redirect-limit,clipboard-how-to,clipboard-question,
# after-scan}.png
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
win=$build/win
out=$(mkdir -p "${1:-$build/screenshots}" && cd "${1:-$build/screenshots}" && pwd)
work=$(mktemp -d)
driver=$work/screenshot_driver.exe

session_started=0
cleanup() {
  if [ -n "${app_pid:-}" ]; then kill "$app_pid" 2>/dev/null || true; fi
  if [ -n "${site_pid:-}" ]; then kill "$site_pid" 2>/dev/null || true; fi
  if [ "$session_started" = 1 ]; then "$root/scripts/wine-session.sh" stop "$win"; fi
  rm -rf "$work"
}
trap cleanup EXIT

i686-w64-mingw32-g++-posix -O1 -static -o "$driver" "$root/scripts/screenshot_driver.cpp"
if [ ! -f "$win/wine-session/xvfb.pid" ] || ! kill -0 "$(cat "$win/wine-session/xvfb.pid")" 2>/dev/null; then
  "$root/scripts/wine-session.sh" start "$win"
  session_started=1
fi
export DISPLAY=":$(cat "$win/wine-session/display")"
run() { "$win/wine-run.sh" "$@" | tr -d '\r'; }

# A program folder with a settings file: window place, slot names, sides, arrangement.
prepare() {  # tool-side databases-side arrangement
  rm -rf "$work/app" && mkdir -p "$work/app/Databases" "$work/app/DataHtml"
  cp "$win/QBHELP.HLP" "$work/app/"
  python3 - "$work/app/pellwick.cfg" "$@" <<'PY'
import struct, sys
path, tool, databases, arrangement = sys.argv[1], *map(int, sys.argv[2:])
b = bytearray(3419)
struct.pack_into('<iiii', b, 260, 60, 40, 900, 560)
for slot, name in {0: b'Data.dat', 2: b'Addresses.dat', 3: b'Shopping.dat'}.items():
    b[280 + 256 * slot:280 + 256 * slot + len(name)] = name
struct.pack_into('<I', b, 2888, 500)
struct.pack_into('<I', b, 3404, arrangement)
struct.pack_into('<I', b, 3409, 1)
b[3413], b[3414] = tool, databases
open(path, 'wb').write(b)
PY
}

start() {
  (cd "$work/app" && exec "$win/wine-run.sh" "$win/Quellbarrow.exe") >/dev/null 2>&1 &
  app_pid=$!
}

finish() {
  run "$driver" close || true
  wait "$app_pid" 2>/dev/null || true
  app_pid=
}

shot() {  # name geometry
  import -window root -crop "$2" +repage "$out/$1.png"
  echo "$out/$1.png"
}

union() {  # geometry geometry: the smallest one holding both
  local aw ah ax ay bw bh bx by
  IFS='x+' read -r aw ah ax ay <<<"$1"
  IFS='x+' read -r bw bh bx by <<<"$2"
  local l=$((ax < bx ? ax : bx)) t=$((ay < by ? ay : by))
  local r=$((ax + aw > bx + bw ? ax + aw : bx + bw)) b=$((ay + ah > by + bh ? ay + ah : by + bh))
  echo "$((r - l))x$((b - t))+$l+$t"
}

# Grips: 10,15 on a bar docked at the top, 15,6 on one docked at a side.
prepare 0 0 0
start
geometry=$(run "$driver" wait Quellbarrow)
run "$driver" hover ToolBar 90 15   # rests on "Scan HTML"; its tip shows
shot both-bars-top "$geometry"
finish

prepare 2 0 0
start
geometry=$(run "$driver" wait Quellbarrow)
run "$driver" drag DatabaseBar 10 15 120 170
shot toolbar-left-databases-floating "$geometry"
finish

prepare 0 0 1
start
geometry=$(run "$driver" wait Quellbarrow)
shot vertical "$geometry"
finish

prepare 0 0 0
start
run "$driver" wait Quellbarrow >/dev/null
run "$driver" command 50008
geometry=$(run "$driver" wait '#32770')
shot options "$geometry"
finish

# Add / Compare: the sample database open, a second one loaded through the file dialog.
prepare 0 0 0
run "$win/tools/makekeydb.exe" "$root/resources/sample/keys.txt" "$work/app/Databases/Data.dat" >/dev/null
printf 'key First name\nsearch firstname, vorname\nkey Company\nsearch company, firma\ndescription Acme\nkey Country\nsearch country, land\nselect Germany\nselect France\n' >"$work/other.txt"
run "$win/tools/makekeydb.exe" "$work/other.txt" "$work/app/Databases/Other.dat" >/dev/null
start
run "$driver" wait Quellbarrow >/dev/null
run "$driver" command 50201
merge="Quellbarrow - Load / compare keys"
run "$driver" dialog "$merge" >/dev/null
run "$driver" click "$merge" 303
run "$driver" dialog "Open - Database" >/dev/null
other="Z:$(printf '%s' "$work/app/Databases/Other.dat" | tr / '\\')"
# The file-name field: a combo box (cmb13) or, in older dialogs, an edit (edt1).
run "$driver" settext "Open - Database" 1148 "$other"
run "$driver" settext "Open - Database" 1152 "$other"
run "$driver" click "Open - Database" 1
run "$driver" click "$merge" 311
run "$driver" click "$merge" 310
geometry=$(run "$driver" dialog "$merge")
shot add-compare "$geometry"
run "$driver" dblclick "$merge" 301 20 38   # the third loaded key, "Country"
geometry=$(run "$driver" dialog "Quellbarrow - Preview key values")
shot preview "$geometry"
run "$driver" click "Quellbarrow - Preview key values" 1
run "$driver" click "$merge" 2
# Saved pages and folders for the Links view (child 2587).
prepare 0 0 0
(cd "$work/app/DataHtml" && mkdir -p Shops/Old Travel Banking .cache \
  && printf '<html>%.0s</html>' $(seq 1 300) > www.example.com.order.form.asp.htm \
  && printf '<form></form>' > search.php && printf 'x' > report && : > .hidden.htm \
  && printf '<html>%.0s</html>' $(seq 1 2000) > shop.example.org.checkout.html \
  && printf '<form>%.0s</form>' $(seq 1 90) > Shops/cart.example.com.basket.asp.htm \
  && printf '<p>' > Shops/notes.txt && printf '<form></form>' > Shops/order.htm)
start
geometry=$(run "$driver" wait Quellbarrow)
shot links-root "$geometry"
run "$driver" key 2587 40     # down to "Shops"
run "$driver" key 2587 13     # Enter opens it
shot links-folder "$geometry"
run "$driver" rclick 2587 60 50
shot links-menu "$geometry"
finish

# Help: F1's contents from the program, then the key editor's topic in the same viewer.
prepare 0 0 0
start
run "$driver" wait Quellbarrow >/dev/null
run "$driver" command 50900
geometry=$(run "$driver" wait MS_WINHELP)
shot help-contents "$geometry"
run "$driver" help "Z:$(printf '%s' "$work/app/QBHELP.HLP" | tr / '\\')" 1900
geometry=$(run "$driver" wait MS_WINHELP)
shot help-key-editor "$geometry"
run "$driver" helpquit
finish

prepare 0 0 0
start
run "$driver" wait Quellbarrow >/dev/null
run "$driver" command 50902
geometry=$(run "$driver" wait '#32770')
shot about "$geometry"
finish

# The key editor in modify mode: the sample database open, its second key chosen
# in the Keys view and opened with 50202.
prepare 0 0 0
run "$win/tools/makekeydb.exe" "$root/resources/sample/keys.txt" "$work/app/Databases/Data.dat" >/dev/null
start
run "$driver" wait Quellbarrow >/dev/null
editor="Quellbarrow - Keys"
run "$driver" pickrow 2901 1
run "$driver" command 50202
geometry=$(run "$driver" dialog "$editor")
shot key-editor "$geometry"
run "$driver" click "$editor" 2
finish

# The sample database listed; the pop-up menu of its third key.
prepare 0 0 0
run "$win/tools/makekeydb.exe" "$root/resources/sample/keys.txt" "$work/app/Databases/Data.dat" >/dev/null
start
geometry=$(run "$driver" wait Quellbarrow)
shot keys-listed "$geometry"
run "$driver" rclick 2901 60 58
shot keys-popup "$geometry"
finish

# New database: the name dialog taken as it comes, then two keys moved across.
prepare 0 0 0
run "$win/tools/makekeydb.exe" "$root/resources/sample/keys.txt" "$work/app/Databases/Data.dat" >/dev/null
start
run "$driver" wait Quellbarrow >/dev/null
run "$driver" command 50000
run "$driver" dialog "Quellbarrow - New name" >/dev/null
run "$driver" click "Quellbarrow - New name" 1
newdb="Quellbarrow - New database"
run "$driver" dialog "$newdb" >/dev/null
run "$driver" dblclick "$newdb" 200 30 8
run "$driver" dblclick "$newdb" 200 30 40
geometry=$(run "$driver" dialog "$newdb")
shot new-database "$geometry"
run "$driver" click "$newdb" 2
finish

# The Tools menu on "Scan Address from Clipboard", its help line in the status
# bar; then the pointer on its tool bar button, whose tip shows.
prepare 0 0 0
start
geometry=$(run "$driver" wait Quellbarrow)
run "$driver" menu t 1
shot tools-menu "$geometry"
finish
prepare 0 0 0
start
geometry=$(run "$driver" wait Quellbarrow)
run "$driver" hover ToolBar 124 15
shot scan-clipboard-button "$geometry"
finish

# Downloads from a loopback site: a page that moved and trickles in slowly, one
# larger than the size limit, a redirect that never ends, a form, and over HTTPS a
# certificate that has expired.
python3 - "$root/resources/sample/order_form.htm" >"$work/site.log" 2>&1 <<'PY' &
import http.server, os, ssl, sys, threading, time, urllib.parse
form = open(sys.argv[1], 'rb').read()
class Site(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.0'
    def do_GET(self):
        path = urllib.parse.urlsplit(self.path).path  # the program asks by the whole address
        moved = {'/shop/catalogue.htm': '/slow/catalogue.htm'}.get(path)
        if path.startswith('/loop/'):
            moved = '/loop/%d' % (int(path[6:]) + 1)
        if moved:
            self.send_response(302)
            self.send_header('Location', moved)
            self.end_headers()
            return
        self.send_response(200)
        self.send_header('Content-Type', 'text/html')
        self.end_headers()
        if path == '/slow/catalogue.htm':
            for i in range(600):
                self.wfile.write(b'<p>%05d</p>\n' % i)
                self.wfile.flush()
                time.sleep(0.2)
        elif path == '/large/archive.htm':
            chunk = b'<p>' + b'x' * 65530 + b'</p>\n'
            for i in range(34 * 16):
                self.wfile.write(chunk)
        else:
            self.wfile.write(form)
    def log_message(self, *args):
        pass
class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
secure = Server(('127.0.0.1', 443), Site)
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
tls = os.environ.get('QB_TEST_TLS_DIR', '/etc/quellbarrow-test-tls')
context.load_cert_chain(os.path.join(tls, 'localhost-expired.crt'), os.path.join(tls, 'localhost-expired.key'))
secure.socket = context.wrap_socket(secure.socket, server_side=True)
threading.Thread(target=secure.serve_forever, daemon=True).start()
plain = Server(('127.0.0.1', 80), Site)
print('ready', flush=True)
plain.serve_forever()
PY
site_pid=$!
until grep -q ready "$work/site.log"; do kill -0 "$site_pid" || { cat "$work/site.log"; exit 1; }; sleep 0.2; done
site=http://127.0.0.1

# The download dialog while a page that moved trickles in; Esc cancels it, and the main
# window is in front again with its focus where it was.
prepare 0 0 0
start
geometry=$(run "$driver" wait Quellbarrow)
run "$driver" clipboard "$site/shop/catalogue.htm"
run "$driver" command 50506
downloading="Quellbarrow - Downloading HTML document"
dialog_geometry=$(run "$driver" dialog "$downloading")
shot downloading "$dialog_geometry"
run "$driver" focus   # where the keyboard is: on Cancel
run "$driver" dlgkey "$downloading" 27
shot download-cancelled "$geometry"
run "$driver" focus
finish

# Messages that stop a download, each over the download dialog that raised it: a
# page past the size limit, a certificate that has expired, a redirect that never
# ends. Dialogs and boxes stand in the middle of the screen: these shots and the
# next hold both them and the main window.
prepare 0 0 0
start
geometry=$(union "$(run "$driver" wait Quellbarrow)" "$dialog_geometry")
for page in "$site/large/archive.htm download-too-large" \
    "https://localhost/order/form.htm certificate-refused" "$site/loop/0 redirect-limit"; do
  run "$driver" clipboard "${page% *}"
  run "$driver" command 50506
  run "$driver" dialog Error >/dev/null
  shot "${page#* }" "$geometry"
  run "$driver" focus   # the box is owned by the download dialog
  run "$driver" click Error 1
done
finish

# "Scan Address from Clipboard" with no address there: how to put one there.
prepare 0 0 0
start
geometry=$(union "$(run "$driver" wait Quellbarrow)" "$dialog_geometry")
run "$driver" clipboard "Order form"
run "$driver" command 50506
run "$driver" dialog Quellbarrow >/dev/null
shot clipboard-how-to "$geometry"
run "$driver" click Quellbarrow 1
finish

# "Scan HTML" with no browser open and an address on the clipboard: the offer to
# scan it; taken, the sample form is downloaded and filled with the sample
# database's first key chosen. Then the main window once the browser showing the
# filled page is closed.
prepare 0 0 0
run "$win/tools/makekeydb.exe" "$root/resources/sample/keys.txt" "$work/app/Databases/Data.dat" >/dev/null
start
geometry=$(union "$(run "$driver" wait Quellbarrow)" "$dialog_geometry")
run "$driver" hover Quellbarrow 400 500   # the pointer rests on the status bar, away from tool tips
run "$driver" pickrow 2901 0
run "$driver" clipboard "$site/order/form.htm"
run "$driver" command 50500
run "$driver" dialog Quellbarrow >/dev/null
shot clipboard-question "$geometry"
run "$driver" click Quellbarrow 6
run "$driver" dismiss IEFrame
shot after-scan "$geometry"
run "$driver" focus
finish
