#!/usr/bin/env bash
# Builds Ulmira and starts the real ULM_Main library in a stand-in host, which reports every effect.
# Arguments go on to `ulmira host`; try --json, or --without QlHostApp.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

ulm_need "${ULM_BUILD_PACKAGES[@]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "Building (preset release) ..."
if ! { cmake --preset release && cmake --build --preset release -j "$ulm_jobs"; } >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
build/release/bin/ulmira host "$@"
