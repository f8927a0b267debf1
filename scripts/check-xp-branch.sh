#!/usr/bin/env bash
# The "Windows XP" branch under Wine. A fresh prefix reports 6.1 ("Windows Vista"); the key
# HKCU\Software\Wine\AppDefaults\<exe name> with Version = winxp makes that one program see 5.x.
# Runs osname_probe.exe under a name of its own, once without the key and once with it, checks
# what it prints, and removes the key again.
#
#   bash scripts/check-xp-branch.sh build/windows/osname_probe.exe
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
probe="${1:?usage: check-xp-branch.sh <osname_probe.exe>}"
[ -f "$probe" ] || { echo "check-xp-branch: $probe is missing" >&2; exit 1; }

source "$root/scripts/wine-env.sh"
wine_prepare

work="$(mktemp -d)"
name="quorvane-osname-$$.exe"
key="HKCU\\Software\\Wine\\AppDefaults\\$name"
cleanup() {
  wine reg delete "$key" /f >/dev/null 2>&1 </dev/null
  rm -rf "$work"
}
trap cleanup EXIT
cp "$probe" "$work/$name"

# Output goes to files: a pipe could be held open by Wine's helper processes.
run_probe() {
  wine "$work/$name" >"$work/$1.txt" 2>/dev/null </dev/null
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
if ! wine reg add "$key" /v Version /t REG_SZ /d winxp /f >/dev/null 2>&1 </dev/null; then
  echo "FAILED: could not set $key" >&2
  exit 1
fi
expect "with Version=winxp" "$(run_probe winxp)" "$(printf 'Windows XP\nIsVista 0')"
wine reg delete "$key" /f >/dev/null 2>&1 </dev/null
expect "key removed again" "$(run_probe after)" "$(printf 'Windows Vista\nIsVista -1')"
exit $status
