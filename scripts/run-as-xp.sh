#!/usr/bin/env bash
# Runs a Windows program under Wine as if on "Windows XP": a copy of it under a name of its own,
# for which HKCU\Software\Wine\AppDefaults\<name> sets Version = winxp. The key and the copy are
# removed afterwards; the program's exit status is the script's.
#
#   bash scripts/run-as-xp.sh build/windows/conformance_win32.exe --gtest_filter=Catalogue*
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
program="${1:?usage: run-as-xp.sh PROGRAM.exe [ARGUMENTS...]}"
shift
source "$root/scripts/wine-env.sh"
wine_prepare

work="$(mktemp -d)"
name="quorvane-xp-$$.exe"
key="HKCU\\Software\\Wine\\AppDefaults\\$name"
cleanup() {
  wine reg delete "$key" /f >/dev/null 2>&1 </dev/null
  rm -rf "$work"
}
trap cleanup EXIT
cp "$program" "$work/$name"
wine reg add "$key" /v Version /d winxp /f >/dev/null 2>&1 </dev/null
# Output goes to a file: a pipe could be held open by Wine's helper processes.
wine "$work/$name" "$@" >"$work/out.txt" 2>&1 </dev/null
status=$?
tr -d '\r' <"$work/out.txt"
exit $status
