#!/usr/bin/env bash
# Builds Ulmira for Windows with the mingw-w64 cross compiler and runs its tests under Wine; sets up
# what that takes. Which tests those of this system are that Windows has no libraries for is told by
# their labels; that no other is missing is checked, and both are counted, so this system's own build
# is needed too (preset gcc).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

ulm_need "${ULM_TEST_PACKAGES[@]}" "${ULM_WINDOWS_PACKAGES[@]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# What Windows programs of ours are built with: headers copied, so that the compiler never looks into
# this system's own, and GoogleTest built from its sources.
packages=build/windows-packages
versions=$(dpkg-query -W libcli11-dev nlohmann-json3-dev googletest g++-mingw-w64-x86-64-posix 2>&1 || true)
make_packages() {
  rm -rf "$packages"
  mkdir -p "$packages/include" "$packages/share/cmake"
  cp -r /usr/include/CLI /usr/include/nlohmann "$packages/include/"
  cp -r /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$packages/share/cmake/"
  ulm_quietly cmake -S /usr/src/googletest -B "$packages/googletest" -G Ninja \
    --toolchain "$PWD/cmake/toolchain-mingw.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PWD/$packages"
  ulm_quietly cmake --build "$packages/googletest" -j "$ulm_jobs"
  ulm_quietly cmake --install "$packages/googletest"
  printf '%s\n' "$versions" >"$packages/versions"
}

build() {
  ulm_quietly cmake --preset "$1"
  ulm_quietly cmake --build --preset "$1" -j "$ulm_jobs"
}

run_tests() {
  python3 tests/structure/windows_library.py build/windows/bin/ULM_Main.dll
  python3 tests/structure/hardening.py --objdump=x86_64-w64-mingw32-objdump \
    build/windows/bin/ULM_Main.dll build/windows/bin/ulmira.exe build/windows/bin/ulmira_host.exe
  trap 'rm -f "$log"; WINEPREFIX=$PWD/build/wine wineserver -k || true' EXIT
  python3 tests/structure/windows_tests.py build/gcc build/windows
  rm -f build/wine.starts.log
  ctest --preset windows -j "$ulm_jobs"
}

if [ "$(cat "$packages/versions" 2>/dev/null)" != "$versions" ]; then
  ulm_stage "windows: packages" make_packages
fi
ulm_stage "windows: building" build windows
ulm_stage "gcc: building, to know its tests" build gcc
ulm_stage "windows: testing" run_tests
if [ -e build/wine.starts.log ]; then
  echo "Wine did not start these programs at first:"
  cat build/wine.starts.log
fi
