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

quietly() {
  "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

# What Windows programs of ours are built with: headers copied, so that the compiler never looks into
# this system's own, and GoogleTest built from its sources.
packages=build/windows-packages
versions=$(dpkg-query -W libcli11-dev nlohmann-json3-dev googletest g++-mingw-w64-x86-64-posix 2>&1 || true)
if [ "$(cat "$packages/versions" 2>/dev/null)" != "$versions" ]; then
  echo "== windows: packages"
  rm -rf "$packages"
  mkdir -p "$packages/include" "$packages/share/cmake"
  cp -r /usr/include/CLI /usr/include/nlohmann "$packages/include/"
  cp -r /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$packages/share/cmake/"
  quietly cmake -S /usr/src/googletest -B "$packages/googletest" -G Ninja \
    --toolchain "$PWD/cmake/toolchain-mingw.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PWD/$packages"
  quietly cmake --build "$packages/googletest" -j "$ulm_jobs"
  quietly cmake --install "$packages/googletest"
  printf '%s\n' "$versions" >"$packages/versions"
fi

echo "== windows: building"
quietly cmake --preset windows
quietly cmake --build --preset windows -j "$ulm_jobs"
echo "== gcc: building, to know its tests"
quietly cmake --preset gcc
quietly cmake --build --preset gcc -j "$ulm_jobs"

echo "== windows: testing"
python3 tests/structure/windows_library.py build/windows/bin/ULM_Main.dll
trap 'rm -f "$log"; WINEPREFIX=$PWD/build/wine wineserver -k || true' EXIT
python3 tests/structure/windows_tests.py build/gcc build/windows
rm -f build/wine.starts.log
ctest --preset windows -j "$ulm_jobs"
if [ -e build/wine.starts.log ]; then
  echo "Wine did not start these programs at first:"
  cat build/wine.starts.log
fi
