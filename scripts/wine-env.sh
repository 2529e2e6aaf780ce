# Sourced: the Wine environment of one build tree ($1, default build/win).
qb_build=${1:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/win}
export WINEPREFIX="$qb_build/wineprefix"
export WINEARCH=win32
export WINEDEBUG=-all
qb_session="$qb_build/wine-session"
if [ -f "$qb_session/display" ]; then export DISPLAY=":$(cat "$qb_session/display")"; fi
