#!/usr/bin/env bash
# Builds both configurations and runs every test: the native sanitizer suite, the
# Wine suite (one Xvfb and one wineserver for the whole run, as a CTest fixture) and
# each fuzz target for a bounded time. Exit status 0 only when everything passed.
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
fuzz_seconds=${QB_FUZZ_SECONDS:-20}
cd "$root"

"$root/scripts/setup.sh" || exit 1
"$root/scripts/build.sh" all || exit 1

failed=0
echo "== native tests (AddressSanitizer, UndefinedBehaviorSanitizer)"
(cd "$build/native" && ctest --output-on-failure -j "$(nproc)") || failed=1

echo "== Windows tests under Wine"
(cd "$build/win" && ctest --output-on-failure) || failed=1

echo "== fuzz targets, ${fuzz_seconds} s each"
fuzz_pass=0 fuzz_fail=0
. "$root/scripts/fuzz-lib.sh"
for name in $(tr ';' ' ' <"$build/native/fuzzers.txt"); do
  if fuzz_run "$root" "$build/native" "$name" "$fuzz_seconds"; then
    fuzz_pass=$((fuzz_pass + 1))
  else
    fuzz_fail=$((fuzz_fail + 1))
    failed=1
  fi
done
echo "fuzz: ${fuzz_pass} passed, ${fuzz_fail} failed"
exit $failed
