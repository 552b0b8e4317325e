#!/usr/bin/env bash
# Runs the fuzz targets under the address and the undefined-behaviour sanitizers, as many at once as there
# are processors (or ULM_JOBS).
#
#   scripts/fuzz.sh [SECONDS] [TARGET...]     60 seconds for each of all targets without arguments
#
# An input that makes a target fail is kept in fuzz/regressions/TARGET, whose inputs every build replays as a
# test; the target then goes on for the rest of its time. What each target has learnt stays in
# build/fuzz/corpus/TARGET for the next run. Prints the executions and the findings of each target, and fails if
# there is any finding.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

seconds=${1:-60}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || { echo "usage: scripts/fuzz.sh [SECONDS] [TARGET...]" >&2; exit 2; }
shift || true
ulm_need "${ULM_FUZZ_PACKAGES[@]}"

log=$(mktemp)
trap 'rm -f "$log"' EXIT
ulm_preset_options fuzz
ulm_quietly cmake --preset fuzz ${preset_options[@]+"${preset_options[@]}"}
ulm_quietly cmake --build --preset fuzz -j "$ulm_jobs" --target fuzzers
build=$PWD/build/fuzz
"$build/bin/fuzz_seeds" "$build/fuzz/seeds"

# fuzz_one TARGET FOLDER... runs one target and prints its line.
fuzz_one() {
  local target=$1 begin=$SECONDS executions=0 findings=0 left output
  local corpus=$build/corpus/$1 found=$build/found/$1 options=()
  shift
  rm -rf "$found"
  mkdir -p "$corpus" "$found"
  [ ! -f "fuzz/dictionaries/$target.dict" ] || options+=("-dict=fuzz/dictionaries/$target.dict")
  output=$(mktemp)
  while left=$((seconds - (SECONDS - begin))) && [ "$left" -gt 0 ] && [ "$findings" -lt 20 ]; do
    "$build/bin/${target}_fuzz" -max_total_time="$left" -timeout=10 -max_len=4096 -print_final_stats=1 \
      -artifact_prefix="$found/" ${options[@]+"${options[@]}"} "$corpus" "$@" >"$output" 2>&1 || true
    executions=$((executions + $(sed -n 's/^stat::number_of_executed_units: *//p' "$output" | tail -n 1 || echo 0)))
    findings=$(find "$found" -type f | wc -l)
    [ "$findings" -eq 0 ] || cp "$output" "$build/found/$target.log"
  done
  rm -f "$output"
  if [ "$findings" -gt 0 ]; then
    mkdir -p "fuzz/regressions/$target"
    cp "$found"/* "fuzz/regressions/$target/"
  fi
  printf '%-18s %12s executions %4s findings\n' "$target" "$executions" "$findings"
  [ "$findings" -eq 0 ]
}
export -f fuzz_one
export build seconds

# A line of the list is a target and the folders of its inputs.
while read -r target folders; do
  [ -n "$target" ] || continue
  if [ "$#" -eq 0 ] || [[ " $* " == *" $target "* ]]; then
    printf '%s %s\n' "$target" "$folders"
  fi
done <"$build/fuzz/targets.txt" |
  xargs -P "$ulm_jobs" -L 1 bash -c 'fuzz_one "$@"' fuzz_one
