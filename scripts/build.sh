#!/usr/bin/env bash
# Configures and builds: build/win (the product, its tools and tests) and
# build/native (platform-free code with sanitizers and fuzzers).
# Usage: scripts/build.sh [win|native|bench|all]   (default: all = win + native)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}
what=${1:-all}
jobs=$(nproc)

configure() {  # dir toolchain extra-args...
  local dir=$1 toolchain=$2; shift 2
  if [ ! -f "$dir/build.ninja" ]; then
    cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/$toolchain" "$@" >/dev/null
  fi
}

if [ "$what" = win ] || [ "$what" = all ]; then
  configure "$build/win" mingw-i686.cmake
  cmake --build "$build/win" -j "$jobs" | grep -vE '^\[[0-9]+/[0-9]+\] ' || true
  test "${PIPESTATUS[0]}" -eq 0
fi
if [ "$what" = native ] || [ "$what" = all ]; then
  configure "$build/native" native-clang.cmake -DQB_SANITIZE=ON
  cmake --build "$build/native" -j "$jobs" | grep -vE '^\[[0-9]+/[0-9]+\] ' || true
  test "${PIPESTATUS[0]}" -eq 0
fi
if [ "$what" = bench ]; then
  configure "$build/bench" native-clang.cmake -DQB_SANITIZE=OFF -DCMAKE_BUILD_TYPE=Release
  cmake --build "$build/bench" -j "$jobs" | grep -vE '^\[[0-9]+/[0-9]+\] ' || true
  test "${PIPESTATUS[0]}" -eq 0
fi
