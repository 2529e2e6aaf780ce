# Shared by scripts/test.sh (short runs) and scripts/fuzz.sh (long runs): one run
# of a libFuzzer target with the settings kept beside it.
#   tests/<folder>/<target>.fuzz          flags, one per line (max_len, dict)
#   tests/<folder>/fuzz_seeds/<target>/   hand-made seeds
#   tests/<folder>/fuzz_corpus/<target>/  the kept corpus, minimized by merge
#   seeds at every limit, made by scripts/make_fuzz_seeds.py into the build tree

# fuzz_run ROOT BUILD TARGET SECONDS: runs into BUILD/fuzz-corpus/TARGET, reading the
# kept corpus and the seeds; prints one line; returns the fuzzer's status.
fuzz_run() {
  local root=$1 build=$2 name=$3 seconds=$4
  local exe dir flags=() line log corpus
  exe=$(find "$build" -type f -name "$name" -perm -u+x | head -n 1)
  [ -n "$exe" ] || { echo "$name: not built"; return 1; }
  dir=$(dirname "$(find "$root/tests" -name "$name.cpp" | head -n 1)")
  if [ -f "$dir/$name.fuzz" ]; then
    while read -r line; do
      case "$line" in
        ''|'#'*) ;;
        -dict=*) flags+=("-dict=$dir/${line#-dict=}") ;;
        *) flags+=("$line") ;;
      esac
    done <"$dir/$name.fuzz"
  fi
  mkdir -p "$build/fuzz-seeds"
  python3 "$root/scripts/make_fuzz_seeds.py" "$build/fuzz-seeds" "$name"
  corpus="$build/fuzz-corpus/$name"
  mkdir -p "$corpus"
  log="$build/fuzz-corpus/$name.log"
  local inputs=("$corpus")
  for d in "$dir/fuzz_corpus/$name" "$dir/fuzz_seeds/$name" "$build/fuzz-seeds/$name"; do
    [ -d "$d" ] && inputs+=("$d")
  done
  if "$exe" "${flags[@]}" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
       -print_final_stats=1 -artifact_prefix="$build/fuzz-corpus/$name-" "${inputs[@]}" >"$log" 2>&1; then
    local runs cov
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$')
    cov=$(grep -E 'DONE' "$log" | tail -n 1 | grep -oE 'cov: [0-9]+ ft: [0-9]+')
    echo "$name: ok, ${runs:-?} executions, ${cov:-cov ?}"
    return 0
  fi
  echo "$name: FAILED (log: $log)"
  tail -n 40 "$log"
  return 1
}

# fuzz_keep ROOT BUILD TARGET: merges what the runs found into the kept corpus
# (only inputs that add coverage), then minimizes the kept corpus.
fuzz_keep() {
  local root=$1 build=$2 name=$3
  local exe dir kept fresh
  exe=$(find "$build" -type f -name "$name" -perm -u+x | head -n 1)
  dir=$(dirname "$(find "$root/tests" -name "$name.cpp" | head -n 1)")
  kept="$dir/fuzz_corpus/$name"
  fresh=$(mktemp -d)
  mkdir -p "$kept"
  local flags=()
  [ -f "$dir/$name.fuzz" ] && mapfile -t flags < <(grep -E '^-max_len=' "$dir/$name.fuzz")
  local inputs=()
  for d in "$kept" "$build/fuzz-corpus/$name" "$build/fuzz-seeds/$name"; do
    [ -d "$d" ] && inputs+=("$d")
  done
  "$exe" "${flags[@]}" -merge=1 "$fresh" "${inputs[@]}" >"$build/fuzz-corpus/$name.merge.log" 2>&1 || {
      echo "$name: merge failed (log: $build/fuzz-corpus/$name.merge.log)"; rm -rf "$fresh"; return 1; }
  rm -rf "$kept"
  mv "$fresh" "$kept"
  chmod 755 "$kept"
  echo "$name: kept corpus $(ls "$kept" | wc -l) inputs, $(du -sk "$kept" | cut -f1) KiB"
}
