#!/usr/bin/env bash
# Checks that the built program carries the blank icon: reads the raw resource EMPTY.ICO of type
# ICO out of quorvane.exe under Wine, through the program's own resource call, and compares it
# byte for byte with res/Empty.ico.
#
#   bash scripts/check-empty-icon.sh build/windows/osname_probe.exe build/windows/quorvane.exe res/Empty.ico
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
probe="${1:?usage: check-empty-icon.sh <osname_probe.exe> <quorvane.exe> <Empty.ico>}"
program="${2:?}"
expected="${3:?}"

for file in "$probe" "$program" "$expected"; do
  [ -f "$file" ] || { echo "FAILED: $file is missing (build with cmake --build --preset windows)"; exit 1; }
done

source "$root/scripts/wine-env.sh"
wine_prepare

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
program_w="$(winepath -w "$program" 2>/dev/null </dev/null)"
out_w="$(winepath -w "$work/empty.ico" 2>/dev/null </dev/null)"
[ -n "$program_w" ] && [ -n "$out_w" ] || { echo "check-empty-icon: winepath failed" >&2; exit 1; }

wine "$probe" resource "$program_w" ICO EMPTY.ICO "$out_w" >"$work/probe.txt" 2>/dev/null </dev/null
tr -d '\r' <"$work/probe.txt"
if [ ! -f "$work/empty.ico" ]; then
  echo "FAILED: $program carries no EMPTY.ICO"
  exit 1
fi
if cmp -s "$work/empty.ico" "$expected"; then
  echo "ok: EMPTY.ICO in $(basename "$program") is $(stat -c %s "$work/empty.ico") bytes, the same as $expected"
  exit 0
fi
echo "FAILED: EMPTY.ICO in $program differs from $expected"
exit 1
