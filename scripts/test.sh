#!/usr/bin/env bash
# Builds Ulmira with its tests and runs all of them: with g++ and clang, and under the sanitizers; then
# the fuzz targets for a moment, and the build for Windows under Wine. Prints the time of each stage, and
# at the end the number of tests of each kind.
# Arguments are the presets to run instead, such as `scripts/test.sh gcc`.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

ulm_need "${ULM_TEST_PACKAGES[@]}"
presets=("$@")
[ "${#presets[@]}" -gt 0 ] || presets=(gcc clang asan tsan fuzz windows)
log=$(mktemp)
trap 'rm -f "$log"' EXIT

build() {
  local targets=(all all_verify_interface_header_sets)
  [ "$1" != fuzz ] || targets=(fuzzers)
  ulm_preset_options "$1"
  ulm_quietly cmake --preset "$1" ${preset_options[@]+"${preset_options[@]}"}
  ulm_quietly cmake --build --preset "$1" -j "$ulm_jobs" --target "${targets[@]}"
}

run_tests() {
  # Some kernels scatter addresses more than the thread sanitizer's run-time can bear.
  local steady=()
  if [ "$1" = tsan ] && setarch "$(uname -m)" -R true 2>/dev/null; then
    steady=(setarch "$(uname -m)" -R)
  fi
  ${steady[@]+"${steady[@]}"} ctest --preset "$1" -j "$ulm_jobs"
}

for preset in "${presets[@]}"; do
  if [ "$preset" = windows ]; then
    scripts/test-windows.sh
    continue
  fi
  ulm_stage "$preset: building" build "$preset"
  ulm_stage "$preset: testing" run_tests "$preset"
  [ "$preset" != fuzz ] || ulm_stage "fuzz: five seconds for each target" scripts/fuzz.sh 5
done
echo "== all stages: $SECONDS s"
python3 scripts/count_tests.py "${presets[@]}"
