#!/usr/bin/env bash
# Runs a Windows program of the build under Wine: scripts/wine.sh PROGRAM.exe [ARGUMENT...]
# The Wine prefix is one of its own, in the build folder; it is made at the first use. A program that
# crashes ends at once (no debugger), and one that hangs is ended (ULM_WINE_SECONDS, 240).
set -euo pipefail
case "${1-}" in
  *.exe) ;;
  # Wine would run a program of this system, and tell nothing of its exit code.
  *) echo "scripts/wine.sh: ${1-} is no Windows program" >&2; exit 2 ;;
esac
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${ULM_WINE_PREFIX:-$root/build/wine}
export WINEDEBUG=-all WINEDLLOVERRIDES="winedbg.exe=d;mscoree=d;mshtml=d" WINEARCH=win64
# File names are UTF-8, the ANSI code page is 1252, and no display is looked for.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

# Wine's server, and the services that its first program brings, stay for a minute after the last
# program. A program of ours must not be that first one: the services would hold its output open.
mkdir -p "$WINEPREFIX"
exec {lock}>"$WINEPREFIX.lock"
flock "$lock"
if timeout 60 wineserver -p60 {lock}>&- 2>/dev/null; then
  if ! timeout 300 wine wineboot -i >/dev/null 2>&1 </dev/null {lock}>&-; then
    echo "scripts/wine.sh: Wine cannot make or start its prefix $WINEPREFIX" >&2
    exit 1
  fi
fi
exec {lock}>&-
exec timeout --foreground -k 10 "${ULM_WINE_SECONDS:-240}" wine "$@"
