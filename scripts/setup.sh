# Sourced by the scripts in this folder: installs the packages that a task needs, on Debian 12, and runs
# the stages of a test.
#
#   ulm_need PACKAGE...   installs with apt what is missing where this user may; else says in one line
#                         what to install, and ends the script.

ulm_missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      printf '%s\n' "$package"
  done
}

ulm_need() {
  local missing log root=""
  if ! command -v dpkg-query >/dev/null 2>&1; then
    echo "No Debian packages here; make sure that these are there under your system's names: $*" >&2
    return 0
  fi
  mapfile -t missing < <(ulm_missing_packages "$@")
  [ "${#missing[@]}" -eq 0 ] && return 0
  if [ "$(id -u)" -ne 0 ]; then
    root="sudo -n"
    if ! $root true >/dev/null 2>&1; then
      echo "Please install: apt-get install ${missing[*]}" >&2
      exit 1
    fi
  fi
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  log=$(mktemp)
  if ! { $root apt-get update -qq &&
         $root apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    rm -f "$log"
    echo "Please install: apt-get install ${missing[*]}" >&2
    exit 1
  fi
  rm -f "$log"
}

# ulm_preset_options PRESET sets preset_options to the options that `cmake --preset PRESET` needs on a system
# that has the tools only under names with their version, as Debian's packages give them.
ulm_preset_options() {
  preset_options=()
  case $1 in
    clang | fuzz | tidy)
      command -v clang++ >/dev/null 2>&1 || preset_options+=(-DCMAKE_CXX_COMPILER=clang++-14) ;;
  esac
  if [ "$1" = tidy ] && ! command -v clang-tidy >/dev/null 2>&1; then
    preset_options+=("-DCMAKE_CXX_CLANG_TIDY=clang-tidy-14;--quiet")
  fi
}

# ulm_stage TITLE COMMAND... runs a command and prints how long it took.
ulm_stage() {
  local title=$1 start=$SECONDS
  shift
  echo "== $title"
  "$@"
  echo "== $title: $((SECONDS - start)) s"
}

# ulm_quietly COMMAND... runs a command. If it fails, prints its output and ends the script. The caller
# names a file for the output in log.
ulm_quietly() {
  "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

# How many compilers, tests or fuzz targets run at once: as many as there are processors, or ULM_JOBS.
ulm_jobs=${ULM_JOBS:-$(nproc 2>/dev/null || echo 2)}

ULM_BUILD_PACKAGES=(cmake ninja-build g++ libcli11-dev nlohmann-json3-dev libwoff-dev)
ULM_TEST_PACKAGES=("${ULM_BUILD_PACKAGES[@]}" clang-14 clang-format-14 libclang-rt-14-dev libgtest-dev
  libgmock-dev libbenchmark-dev python3 binutils git
  # Peers to compare with, and fonts to read.
  libgmp-dev libssl-dev libtommath-dev libfreetype-dev libharfbuzz-dev libstb-dev
  python3-fonttools opentype-sanitizer
  fonts-dejavu-core fonts-freefont-ttf fonts-liberation fonts-wqy-microhei)
# What the fuzz targets need.
ULM_FUZZ_PACKAGES=(cmake ninja-build clang-14 libclang-rt-14-dev nlohmann-json3-dev libgmp-dev libssl-dev)
# The programs of bench/ and their peers.
ULM_BENCH_PACKAGES=("${ULM_BUILD_PACKAGES[@]}" libbenchmark-dev binutils python3 python3-fonttools
  libgmp-dev libssl-dev libtommath-dev libfreetype-dev libharfbuzz-dev libstb-dev
  libbullet-dev libagg-dev libcgal-dev libboost-dev libpolyclipping-dev
  fonts-dejavu-core fonts-freefont-ttf fonts-liberation fonts-wqy-microhei)
# The cross compiler, its sources of tests, Wine, and what draws the icon.
ULM_WINDOWS_PACKAGES=(g++-mingw-w64-x86-64-posix googletest wine wine64 librsvg2-bin)
# Cross compilers for other processors, and what runs their programs.
ULM_CROSS_PACKAGES=(g++-aarch64-linux-gnu g++-i686-linux-gnu g++-s390x-linux-gnu qemu-user googletest python3)
