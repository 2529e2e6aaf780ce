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
for name in $(tr ';' ' ' <"$build/native/fuzzers.txt"); do
  exe=$(find "$build/native" -type f -name "$name" -perm -u+x | head -n 1)
  corpus="$build/native/fuzz-corpus/$name"
  mkdir -p "$corpus"
  seeds=$(find "$root/tests" -type d -path "*/fuzz_seeds/$name" | head -n 1)
  log="$build/native/fuzz-corpus/$name.log"
  if "$exe" -max_total_time="$fuzz_seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
       -artifact_prefix="$build/native/fuzz-corpus/$name-" "$corpus" ${seeds:+"$seeds"} >"$log" 2>&1; then
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$')
    echo "$name: ok, ${runs:-?} executions"
    fuzz_pass=$((fuzz_pass + 1))
  else
    echo "$name: FAILED (log: $log)"
    tail -n 40 "$log"
    fuzz_fail=$((fuzz_fail + 1))
    failed=1
  fi
done
echo "fuzz: ${fuzz_pass} passed, ${fuzz_fail} failed"
exit $failed
