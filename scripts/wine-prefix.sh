#!/usr/bin/env bash
# Creates the Wine prefix of a build tree once: a 32-bit prefix with a virtual
# desktop (without a window manager every hidden top-level window would stall) and
# the Wine fonts, so dialogs get their proper fonts and sizes. DISPLAY must be set.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine-env.sh" "$1"
[ -f "$WINEPREFIX/.qb-ready" ] && exit 0
rm -rf "$WINEPREFIX"
# No Mono or Gecko installer questions while the prefix is made.
WINEDLLOVERRIDES="mscoree,mshtml=" wineboot -i >/dev/null 2>&1 </dev/null
wineserver -w
wine reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Default /f >/dev/null 2>&1 </dev/null
wine reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Default /d 1280x1024 /f >/dev/null 2>&1 </dev/null
wineserver -w
cp -n /usr/share/wine/fonts/* "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null || true
touch "$WINEPREFIX/.qb-ready"
