#!/usr/bin/env bash
# Builds Ulmira and starts the real ULM_Main library in a stand-in host, which reports every effect.
# Arguments go on to `ulmira host`; try --json, or --without QlHostApp. The report alone goes to the
# standard output; a terminal shows the progress of the build on the error stream.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

ulm_need "${ULM_BUILD_PACKAGES[@]}" >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT

quietly() {
  "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

echo "Building (preset release) ..." >&2
quietly cmake --preset release
if [ -t 2 ]; then
  cmake --build --preset release -j "$ulm_jobs" >&2
else
  quietly cmake --build --preset release -j "$ulm_jobs"
fi
build/release/bin/ulmira host "$@"
