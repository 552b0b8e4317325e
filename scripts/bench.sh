#!/usr/bin/env bash
# Runs all benchmarks next to their peers and writes one table and one picture.
#
#   scripts/bench.sh [--quick] [--docs] [--out FOLDER]
#
# FOLDER (build/bench/report without the option) gets performance.md, performance.json and performance.svg.
# --docs also writes docs/performance.md and its picture. --quick takes some minutes instead of half an hour: shorter
# and fewer runs, without fontTools and without the build from nothing. ULM_BENCH_WRAPPER is a command that
# runs each measurement, for example "taskset -c 1".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

quick="" docs=() out=build/bench/report
while [ $# -gt 0 ]; do
  case $1 in
    --quick) quick=1 ;;
    --docs) docs=(--docs docs/performance.md) ;;
    --out) out=${2:?--out needs a folder}; shift ;;
    *) sed -n '2,10s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
  shift
done

ulm_need "${ULM_BENCH_PACKAGES[@]}"
mkdir -p "$out"
log=$(mktemp)
fresh=""
trap 'rm -rf "$log" "$fresh"' EXIT
echo "== build"
ulm_quietly cmake --preset bench
programs=(bignum digest clip truetype subset module)
ulm_quietly cmake --build --preset bench -j "$ulm_jobs" --target "${programs[@]/%/_bench}"

wrapper=(${ULM_BENCH_WRAPPER:-})
few=()
if [ -n "$quick" ]; then
  rounds=3 seconds=0.01
  few=("--benchmark_filter=-bits:1000000|(nextprime|fivepowers)/.*bits:(2048|4096)")
else
  rounds=7 seconds=0.1
fi
# Repetitions in random order: a slow moment of the machine is then not that of one benchmark.
results=()
for program in "${programs[@]}"; do
  ulm_stage "$program" ulm_quietly "${wrapper[@]}" "build/bench/bin/${program}_bench" \
    "${few[@]}" --benchmark_min_time="$seconds" --benchmark_repetitions="$rounds" \
    --benchmark_enable_random_interleaving=true --benchmark_out_format=json --benchmark_out="$out/$program.json"
  results+=("$out/$program.json")
done

build=()
if [ -z "$quick" ]; then
  for python in python3 /usr/bin/python3; do
    if "$python" -c 'import fontTools' 2>/dev/null; then
      ulm_stage fontTools ulm_quietly "${wrapper[@]}" "$python" bench/subset_fonttools.py "$out/fonttools.json"
      results+=("$out/fonttools.json")
      break
    fi
  done
  # Each compiler under a program that adds up its processor time, and no cache of compilations.
  fresh=$(mktemp -d)
  export CCACHE_DISABLE=1
  launcher="python3;$PWD/scripts/bench_report.py;--launch;$fresh/compiles.tsv"
  ulm_quietly cmake --preset release -B "$fresh" \
    "-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher${CMAKE_CXX_COMPILER_LAUNCHER:+;$CMAKE_CXX_COMPILER_LAUNCHER}"
  ulm_stage "build from nothing" ulm_quietly cmake --build "$fresh" -j 2
  build=(--build "$fresh")
fi
python3 scripts/bench_report.py "$out" "${docs[@]}" "${build[@]}" "${results[@]}"
