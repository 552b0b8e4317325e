#!/usr/bin/env bash
# Builds the three libraries with their tests for other processors and runs the tests under qemu: aarch64,
# i686 (32-bit words) and s390x (high byte first). Results must be the same bits on each. Programs for i686 run
# without qemu where the processor and the system can.
# Arguments are the processors to test instead. A processor without a cross compiler or qemu is left out with
# a message, unless this script can install them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

processors=("$@")
[ "${#processors[@]}" -gt 0 ] || processors=(aarch64 i686 s390x)
if [ "$(id -u)" -eq 0 ] || sudo -n true 2>/dev/null; then
  ulm_need "${ULM_BUILD_PACKAGES[@]}" "${ULM_CROSS_PACKAGES[@]}"
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Sets emulator to the command that runs programs for a processor; fails where there is none.
find_emulator() {
  local root=/usr/$1-linux-gnu
  local loader=$root/lib/ld-linux.so.2
  if [ "$1" = i686 ] && "$loader" --version >/dev/null 2>&1; then
    emulator="$loader;--library-path;$root/lib"
  else
    emulator="qemu-${1/i686/i386};-L;$root"
    command -v "${emulator%%;*}" >/dev/null
  fi
}

configure() {  # PROCESSOR SOURCE BUILD OPTION...
  local processor=$1 source=$2 build=$3
  shift 3
  ulm_quietly cmake -S "$source" -B "$build" -G Ninja --toolchain "$PWD/cmake/toolchain-linux.cmake" \
    -DULM_CROSS="$processor" -DULM_CROSS_PACKAGES="$PWD/build/cross/$processor/packages" \
    -DCMAKE_CROSSCOMPILING_EMULATOR="$emulator" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
}

build() {
  local folder=build/cross/$1
  if [ ! -e "$folder/packages/lib/libgtest.a" ]; then
    configure "$1" /usr/src/googletest "$folder/googletest" \
      -DCMAKE_INSTALL_PREFIX="$PWD/$folder/packages" -DCMAKE_INSTALL_LIBDIR=lib
    ulm_quietly cmake --build "$folder/googletest" -j "$ulm_jobs"
    ulm_quietly cmake --install "$folder/googletest"
  fi
  configure "$1" . "$folder/tree" -DULM_MODULE=OFF -DULM_TOOLS=OFF -DULM_TESTS=ON -DULM_WERROR=ON
  ulm_quietly cmake --build "$folder/tree" -j "$ulm_jobs" --target bignum/all tests/bignum/all \
    truetype/all tests/truetype/all clip/all tests/clip/all od_array_test odrx_alloc_test
}

run_tests() {
  ctest --test-dir "build/cross/$1/tree" -j "$ulm_jobs" --output-on-failure --no-tests=error \
    -R '^(bignum|truetype|clip|od_array|odrx_alloc|example)' -LE structure
}

for processor in "${processors[@]}"; do
  if ! find_emulator "$processor" || ! command -v "$processor-linux-gnu-g++" >/dev/null ||
    [ ! -d /usr/src/googletest ]; then
    echo "== cross $processor: left out, no ${emulator%%;*}, $processor-linux-gnu-g++ or /usr/src/googletest"
    continue
  fi
  ulm_stage "cross $processor: building" build "$processor"
  ulm_stage "cross $processor: testing" run_tests "$processor"
done
