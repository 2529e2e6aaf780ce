#!/usr/bin/env bash
# Long fuzzing runs with the settings the test command uses, then what they found
# merged into the kept corpus (tests/<folder>/fuzz_corpus/<target>), minimized.
# Usage: scripts/fuzz.sh [TARGET] [MINUTES]   (default: every target, 30 minutes each)
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
target=${1:-all}
minutes=${2:-30}
. "$root/scripts/fuzz-lib.sh"

"$root/scripts/build.sh" native || exit 1
names=$(tr ';' ' ' <"$build/native/fuzzers.txt")
[ "$target" = all ] || names=$target
failed=0
for name in $names; do
  fuzz_run "$root" "$build/native" "$name" $((minutes * 60)) || failed=1
  fuzz_keep "$root" "$build/native" "$name" || failed=1
done
exit $failed
