#!/usr/bin/env bash
# Runs a fault test program with a small tmpfs for its full-disk cases.
# Usage: scripts/full_disk.sh TEST.exe BUILD_DIR [gtest arguments]
# Wine's server opens the files, so the file system is mounted in the mount
# namespace of this build's wineserver and the test runs there too. Without root
# the program runs as it is and skips those cases.
set -euo pipefail
exe=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
build=$(cd "$2" && pwd)
shift 2
root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/scripts/wine-env.sh" "$build"
if [ "$(id -u)" != 0 ]; then exec wine "$exe" "$@"; fi
"$root/scripts/wine-session.sh" start "$build" >/dev/null
. "$root/scripts/wine-env.sh" "$build"
# The server of this prefix is the one whose folder is named after the prefix's
# device and inode.
server_dir=$(printf 'server-%x-%x' "$(stat -c %d "$WINEPREFIX")" "$(stat -c %i "$WINEPREFIX")")
server=
for pid in $(pgrep -x wineserver64 || true) $(pgrep -x wineserver || true); do
  if [ "$(basename "$(readlink "/proc/$pid/cwd")")" = "$server_dir" ]; then server=$pid; fi
done
if [ -z "$server" ]; then echo "no wineserver for $WINEPREFIX" >&2; exit 1; fi
dir=$(mktemp -d /tmp/qbfull.XXXXXX)
full="Z:${dir//\//\\}"
status=0
nsenter -t "$server" -m -- sh -c 'mount -t tmpfs -o size=1m qbfull "$1"' sh "$dir"
QB_FULL_DIR=$full nsenter -t "$server" -m -- wine "$exe" "$@" || status=$?
# The server may still hold a handle in the folder for a moment after the
# program has gone; a lazy unmount detaches it now and frees it when released.
nsenter -t "$server" -m -- sh -c 'umount "$1" 2>/dev/null || umount -l "$1"' sh "$dir" || true
rmdir "$dir" 2>/dev/null || echo "note: $dir left behind" >&2
exit $status
