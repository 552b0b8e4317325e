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
start_wine() {
  local lock
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
}

limit=(timeout --foreground -k 10 "${ULM_WINE_SECONDS:-240}")
start_wine
[ ! -t 1 ] || exec "${limit[@]}" wine "$@"

# Rarely Wine does not start a program: then it ends at once and nothing has been printed, by Wine or by
# the program. Only such a program is started again, at most twice, and each time is noted in a file next
# to the prefix. A GoogleTest program always prints, so a silent one has not run whatever its exit code
# is. The output goes through files: what Wine leaves running could hold a pipe open. Where both streams
# are one, so are the files, and lines stay in their order.
files=$(mktemp -d)
trap 'rm -rf "$files"' EXIT
errors=$files/errors
[ ! /proc/self/fd/1 -ef /proc/self/fd/2 ] || errors=""
for attempt in 1 2 3; do
  status=0
  {  # without the shell's own message about a signal
    if [ -z "$errors" ]; then
      "${limit[@]}" wine "$@" >"$files/output" 2>&1
    else
      "${limit[@]}" wine "$@" >"$files/output" 2>"$errors"
    fi
  } 2>/dev/null || status=$?
  cat "$files/output"
  [ -z "$errors" ] || cat "$errors" >&2
  [ -z "$(find "$files" -type f -size +0)" ] || break
  case "$status $*" in
    124* | 137*) break ;;  # the time limit
    0*--gtest_*) status=1 ;;
    0*) break ;;
  esac
  echo "$(date -u +%FT%TZ) attempt $attempt: $*" >>"$WINEPREFIX.starts.log"
  start_wine
done
exit "$status"
