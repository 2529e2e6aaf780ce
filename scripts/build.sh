#!/usr/bin/env bash
# Configures and builds: build/win (the product, its tools and tests) and
# build/native (platform-free code with sanitizers and fuzzers).
# Usage: scripts/build.sh [win|native|bench|all]   (default: all = win + native)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
what=${1:-all}
jobs=$(nproc)

# Builds quietly: the compiler's messages are shown, ninja's progress lines are not.
compile() {  # dir
  local log
  log=$(mktemp)
  if cmake --build "$1" -j "$jobs" >"$log" 2>&1; then
    grep -vE '^\[[0-9]+/[0-9]+\] |^ninja: no work to do' "$log" || true
    rm -f "$log"
  else
    grep -vE '^\[[0-9]+/[0-9]+\] ' "$log"
    rm -f "$log"
    echo "build failed in $1" >&2
    exit 1
  fi
}

configure() {  # dir toolchain extra-args...
  local dir=$1 toolchain=$2; shift 2
  if [ ! -f "$dir/build.ninja" ]; then
    cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/$toolchain" "$@" >/dev/null
  fi
}

if [ "$what" = win ] || [ "$what" = all ]; then
  configure "$build/win" mingw-i686.cmake
  compile "$build/win"
fi
if [ "$what" = native ] || [ "$what" = all ]; then
  configure "$build/native" native-clang.cmake -DQB_SANITIZE=ON
  compile "$build/native"
fi
if [ "$what" = bench ]; then
  configure "$build/bench" native-clang.cmake -DQB_SANITIZE=OFF -DCMAKE_BUILD_TYPE=Release
  compile "$build/bench"
fi
