#!/usr/bin/env bash
# The notification area's add and delete under Wine on a virtual screen. Without a display Wine
# has no notification area and every call gives 0, so the conformance program's tray case runs
# again here, in a virtual desktop of its own on Xvfb, told that the area must be there.
#
#   bash scripts/check-tray.sh build/windows/conformance_win32.exe
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
program="${1:?usage: check-tray.sh <conformance_win32.exe>}"

source "$root/scripts/wine-env.sh"
source "$root/scripts/display.sh"
work="$(mktemp -d)"
desktop="QuorvaneTray$$"
cleanup() {
  desktop_stop "$desktop" 5
  display_stop
  rm -rf "$work"
}
trap cleanup EXIT

wine_prepare
display_start || { echo "check-tray: Xvfb could not start" >&2; exit 1; }
result="$work/tray.xml"
result_w="$(winepath -w "$result" 2>/dev/null </dev/null)"
[ -n "$result_w" ] || { echo "check-tray: winepath failed" >&2; exit 1; }

# A program started into a virtual desktop has no standard output the caller can read: the
# result comes as GoogleTest's report file.
QUORVANE_NOTIFICATION_AREA=1 wine explorer "/desktop=$desktop,640x480" "$program" \
  --gtest_filter='TrayConformance.*' "--gtest_output=xml:$result_w" \
  >"$work/wine.log" 2>&1 </dev/null &
wine_pid=$!
for _ in $(seq 1 600); do
  if [ -f "$result" ] && grep -q '</testsuites>' "$result"; then
    break
  fi
  if ! kill -0 "$wine_pid" 2>/dev/null && [ -z "$(desktop_processes "$desktop")" ]; then
    break
  fi
  sleep 0.1
done
desktop_stop "$desktop" 10
wait "$wine_pid" 2>/dev/null

if [ ! -f "$result" ]; then
  echo "FAILED: the tray case gave no result (on $DISPLAY)"
  exit 1
fi
summary="$(grep -m1 -o '<testsuites [^>]*>' "$result")"
echo "$summary"
grep -o '<failure message="[^"]*"' "$result" | head -n 20
if echo "$summary" | grep -q 'tests="[1-9][0-9]*"' && echo "$summary" | grep -q 'failures="0"' &&
  echo "$summary" | grep -q 'errors="0"' && echo "$summary" | grep -q 'disabled="0"'; then
  echo "ok: notification area add and delete on a virtual screen"
  exit 0
fi
echo "FAILED: the tray case failed on a virtual screen"
exit 1
