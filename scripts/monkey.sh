#!/usr/bin/env bash
# Runs the careless-user exerciser for SECONDS (default 1800) with SEED (default:
# one from the clock, printed), under this build tree's Wine session. A failed
# run prints its seed and last actions; the same SECONDS and SEED replay it. The
# Wine session is started when needed and left running (wine-session.sh stop).
# Usage: scripts/monkey.sh [SECONDS] [SEED]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${QB_BUILD_DIR:-$root/build}/win
seconds=${1:-1800}
seed=${2:-}
"$root/scripts/wine-session.sh" start "$build"
QB_MONKEY_SECONDS=$seconds QB_MONKEY_SEED=$seed exec "$build/wine-run.sh" "$build/tests/app/app_monkey_test.exe"
