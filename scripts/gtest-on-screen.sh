#!/usr/bin/env bash
# Runs a GoogleTest program of the Windows build under Wine in a virtual desktop of its own on
# Xvfb, for cases that need a screen (dialogs, clicks). A program started into a virtual desktop
# has no standard output the caller can read: the result comes as GoogleTest's report file, and
# its failures are printed here.
#
#   bash scripts/gtest-on-screen.sh build/windows/icon_picker_win32.exe [GoogleTest arguments]
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
program="${1:?usage: gtest-on-screen.sh <program.exe> [arguments]}"
shift

source "$root/scripts/wine-env.sh"
source "$root/scripts/display.sh"
work="$(mktemp -d)"
desktop="QuorvaneScreen$$"
cleanup() {
  desktop_stop "$desktop" 5
  display_stop
  rm -rf "$work"
}
trap cleanup EXIT

wine_prepare
display_start || { echo "gtest-on-screen: Xvfb could not start" >&2; exit 1; }
result="$work/result.xml"
result_w="$(winepath -w "$result" 2>/dev/null </dev/null)"
[ -n "$result_w" ] || { echo "gtest-on-screen: winepath failed" >&2; exit 1; }

wine explorer "/desktop=$desktop,1024x768" "$program" "$@" "--gtest_output=xml:$result_w" \
  >"$work/wine.log" 2>&1 </dev/null &
wine_pid=$!
# The program bounds each of its own waits; this only guards against one that never ends.
report_written() { [ -f "$result" ] && grep -q '</testsuites>' "$result"; }
desktop_wait "$desktop" "$wine_pid" 3000 report_written
desktop_stop "$desktop" 10
wait "$wine_pid" 2>/dev/null

if [ ! -f "$result" ] || ! grep -q '</testsuites>' "$result"; then
  echo "FAILED: $(basename "$program") gave no result (on $DISPLAY)"
  tail -n 20 "$work/wine.log"
  exit 1
fi
summary="$(grep -m1 -o '<testsuites [^>]*>' "$result")"
echo "$summary"
grep -A3 '<failure message=' "$result" | head -n 60
# The cases that ran, as GoogleTest's own closing lines give them on a console, for the counts of
# scripts/test.sh. Every case must run: one reported as not run counts as failed.
read -r passed failed < <(awk '
  function finish() { if (open && run) { if (fail || skip) f++; else p++ } open = 0 }
  /<testcase / {
    finish(); open = 1; fail = 0
    skip = ($0 ~ /result="skipped"/); run = ($0 ~ /status="run"/)
    if ($0 ~ /\/>[ \t]*$/) finish()
  }
  /<failure/ { fail = 1 }
  /<\/testcase>/ { finish() }
  END { finish(); printf "%d %d\n", p, f }' "$result")
echo "[  PASSED  ] $passed tests."
[ "$failed" -eq 0 ] || echo "[  FAILED  ] $failed tests, listed below:"
if [ "$failed" -eq 0 ] && echo "$summary" | grep -q 'tests="[1-9][0-9]*"' &&
  echo "$summary" | grep -q 'failures="0"' && echo "$summary" | grep -q 'errors="0"'; then
  echo "ok: $(basename "$program") on a virtual screen"
  exit 0
fi
echo "FAILED: $(basename "$program") on a virtual screen"
exit 1
