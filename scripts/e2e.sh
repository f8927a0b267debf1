#!/usr/bin/env bash
# End-to-end tests of quorvane.exe under Wine, driven from a second program in the same virtual
# desktop on a virtual screen: the two run modes, the main window's controls found by their
# system names (the desktop tree filled, the preview drawn), the refused close request, the end
# through "Quorvane.Exit", and what a run leaves on the machine (the program's registry key, its
# data folder with Empty.ico). One screenshot per run goes to build/screenshots/. Ends with
# "N passed, M failed"; the exit status is non-zero when a case failed or could not run.
#
# Needs the Windows build (cmake --build --preset windows). scripts/test.sh calls it with the Wine
# prefix prepared; alone it prepares the prefix itself and stops what it started.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

bin="${QUORVANE_WINDOWS_BUILD:-$root/build/windows}"
shots="$root/build/screenshots"
work="$root/build/e2e"
desktop="QuorvaneE2E$$"
magick=/usr/bin/convert
mkdir -p "$shots" "$work"

fail_setup() {
  echo "e2e: $1" >&2
  echo "0 passed, 1 failed"
  exit 1
}

for program in quorvane.exe e2e_driver.exe; do
  [ -f "$bin/$program" ] || fail_setup "$bin/$program is missing: build with cmake --build --preset windows"
done

source scripts/wine-env.sh
source scripts/display.sh
own_server=0
if ! wineserver_running; then
  own_server=1
fi

cleanup() {
  desktop_stop "$desktop" 5
  display_stop
  if [ "$own_server" = 1 ]; then
    wine_finish
  fi
}
trap cleanup EXIT

started=$(date +%s)
wine_prepare
display_start || fail_setup "Xvfb could not start"

result="$work/run-modes.txt"
rm -f "$result" "$shots"/e2e-*.bmp "$shots"/e2e-*.png
result_w="$(winepath -w "$result" 2>/dev/null)"
shots_w="$(winepath -w "$shots" 2>/dev/null)"
[ -n "$result_w" ] && [ -n "$shots_w" ] || fail_setup "winepath failed"

echo "== end to end: run modes, controls, side effects (desktop $desktop on $DISPLAY)"
wine explorer "/desktop=$desktop,1280x800" "$bin/e2e_driver.exe" run-modes "$result_w" "$shots_w" \
  >"$work/wine.log" 2>&1 </dev/null &
wine_pid=$!

# The driver bounds each of its waits; this only guards against a driver that never starts.
for _ in $(seq 1 1800); do
  if [ -f "$result" ] && tr -d '\r' <"$result" | grep -qE '^[0-9]+ passed, [0-9]+ failed$'; then
    break
  fi
  if ! kill -0 "$wine_pid" 2>/dev/null && [ -z "$(desktop_processes "$desktop")" ]; then
    break
  fi
  sleep 0.1
done
desktop_stop "$desktop" 10
wait "$wine_pid" 2>/dev/null

for bmp in "$shots"/e2e-*.bmp; do
  [ -f "$bmp" ] || continue
  png="${bmp%.bmp}.png"
  "$magick" "$bmp" "$png" && rm -f "$bmp"
  echo "screenshot: $png"
done

summary=""
if [ -f "$result" ]; then
  tr -d '\r' <"$result" | grep -vE '^[0-9]+ passed, [0-9]+ failed$'
  summary="$(tr -d '\r' <"$result" | grep -E '^[0-9]+ passed, [0-9]+ failed$' | tail -n 1)"
fi
echo "e2e took $(( $(date +%s) - started )) s"
if [ -z "$summary" ]; then
  echo "e2e: the driver gave no result (see $work/wine.log)" >&2
  echo "0 passed, 1 failed"
  exit 1
fi
echo "$summary"
case "$summary" in
  *" 0 failed") exit 0 ;;
  *) exit 1 ;;
esac
