#!/usr/bin/env bash
# Reports which lines of each library the tests and the fuzz targets reach together.
#
#   scripts/coverage.sh
#
# Builds the preset coverage, runs its tests, in which the fuzz targets replay their seeds and regression inputs,
# and replays what scripts/fuzz.sh has collected in build/fuzz/corpus. Prints the share of each library, and writes
# each line that nothing reaches to build/coverage/unreached.txt. Fails if a library is below its share in
# scripts/coverage_report.py.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

ulm_need "${ULM_TEST_PACKAGES[@]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
ulm_quietly cmake --preset coverage
ulm_quietly cmake --build --preset coverage -j "$ulm_jobs" --target all
find build/coverage -name '*.gcda' -delete
# What builds other trees, or reads the finished libraries, does not count.
ulm_quietly ctest --preset coverage -j "$ulm_jobs" -E '^(structure|package|bench)\.|enclosing_flags|browser'
for corpus in build/fuzz/corpus/*/; do
  target=$(basename "$corpus")
  [ ! -x "build/coverage/bin/${target}_fuzz" ] || [ -z "$(ls "$corpus")" ] ||
    ulm_quietly "build/coverage/bin/${target}_fuzz" "$corpus"
done
python3 scripts/coverage_report.py build/coverage
