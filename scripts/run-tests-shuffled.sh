#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs every test binary of a build twice more, each as one process: once with its tests in a
# random order, once under a German locale. A test that leans on what an earlier one left behind,
# or on the locale it happens to run under, fails here although it passes alone under ctest.
set -uo pipefail
build="${1:?usage: run-tests-shuffled.sh BUILD_DIR}"
root="$(cd "$(dirname "$0")/.." && pwd)"
export TESSORIN_CORPUS="$(cd "$root/../shared/corpus" 2> /dev/null && pwd || echo "$root/../shared/corpus")"
export TESSORIN_BIN="$(cd "$build/bin" && pwd)"
export QT_QPA_PLATFORM=offscreen
jobs="${JOBS:-$(nproc)}"

run_one() {
  local binary="$1" how="$2" log
  log="$(mktemp)"
  if [ "$how" = shuffled ]; then
    timeout 1800 "$binary" --gtest_shuffle > "$log" 2>&1
  else
    LC_ALL=de_DE.UTF-8 LANG=de_DE.UTF-8 timeout 1800 "$binary" > "$log" 2>&1
  fi
  local rc=$?
  if [ $rc -ne 0 ]; then
    echo "FAILED ($how): $(basename "$binary")"
    grep -E '^\[  FAILED  \]|Failure|Randomizing' "$log" | head -40
  else
    echo "passed ($how): $(basename "$binary")"
  fi
  rm -f "$log"
  return $rc
}
export -f run_one

find "$TESSORIN_BIN" -maxdepth 1 -type f -executable -name '*_tests' | sort |
  sed 's/$/ shuffled/; p; s/ shuffled$/ german/' |
  xargs -P "$jobs" -L 1 bash -c 'run_one "$0" "$1"'
