#!/usr/bin/env bash
# Builds Ulmira with its tests and runs all of them: with g++ and clang, and under the sanitizers; then
# the fuzz targets for a moment, and the build for Windows under Wine.
# Arguments are the presets to run instead, such as `scripts/test.sh gcc`.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

ulm_need "${ULM_TEST_PACKAGES[@]}"
presets=("$@")
[ "${#presets[@]}" -gt 0 ] || presets=(gcc clang asan tsan fuzz windows)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
for preset in "${presets[@]}"; do
  if [ "$preset" = windows ]; then
    scripts/test-windows.sh
    continue
  fi
  echo "== $preset: building"
  targets=(all all_verify_interface_header_sets)
  [ "$preset" != fuzz ] || targets=(fuzzers)
  ulm_preset_options "$preset"
  if ! { cmake --preset "$preset" ${preset_options[@]+"${preset_options[@]}"} &&
         cmake --build --preset "$preset" -j "$ulm_jobs" --target "${targets[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
  fi
  echo "== $preset: testing"
  # Some kernels scatter addresses more than the thread sanitizer's run-time can bear.
  steady=()
  if [ "$preset" = tsan ] && setarch "$(uname -m)" -R true 2>/dev/null; then
    steady=(setarch "$(uname -m)" -R)
  fi
  ${steady[@]+"${steady[@]}"} ctest --preset "$preset" -j "$ulm_jobs"
done
