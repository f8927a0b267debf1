#!/usr/bin/env bash
# The "Windows XP" branch under Wine. A fresh prefix reports 6.1 ("Windows Vista"); run through
# scripts/run-as-xp.sh (the application defaults key Version = winxp for a copy of the program)
# the probe must see 5.x, and afterwards, run as itself, 6.1 again.
#
#   bash scripts/check-xp-branch.sh build/windows/osname_probe.exe
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
probe="${1:?usage: check-xp-branch.sh <osname_probe.exe>}"
[ -f "$probe" ] || { echo "check-xp-branch: $probe is missing" >&2; exit 1; }

source "$root/scripts/wine-env.sh"
wine_prepare

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# Output goes to files: a pipe could be held open by Wine's helper processes.
run_probe() {
  wine "$probe" >"$work/$1.txt" 2>/dev/null </dev/null
  tr -d '\r' <"$work/$1.txt"
}

status=0
expect() {
  local what="$1" got="$2" want="$3"
  if [ "$got" = "$want" ]; then
    echo "ok: $what: $(echo "$got" | tr '\n' '|')"
  else
    echo "FAILED: $what: got '$(echo "$got" | tr '\n' '|')', want '$(echo "$want" | tr '\n' '|')'"
    status=1
  fi
}

expect "default version" "$(run_probe default)" "$(printf 'Windows Vista\nIsVista -1')"
expect "run as XP" "$(bash "$root/scripts/run-as-xp.sh" "$probe")" \
  "$(printf 'Windows XP\nIsVista 0')"
expect "default again" "$(run_probe after)" "$(printf 'Windows Vista\nIsVista -1')"
exit $status
