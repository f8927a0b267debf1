#!/usr/bin/env bash
# Runs quorvane.exe (built by `make windows`) under Wine.
#
# On a reachable X display the program simply runs there, until it is ended from its own close
# picture (top right), from "Exit" in its tray menu, or by Ctrl+C here; Alt+F4 is refused, as the
# program refuses every close request of the system menu. Without a display, it runs in a Wine
# virtual desktop on a virtual screen (Xvfb): once the main window shows, the whole screen is
# saved to build/screenshots/run.png, then the program is ended through its registered message
# "Quorvane.Exit" (the tray menu's "Exit") and everything started here is stopped, so the script
# returns by itself.
#
# Arguments are passed on to quorvane.exe: `bash scripts/run.sh /background` starts it resident.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

bin="$root/build/windows"
exe="$bin/quorvane.exe"
helper="$bin/e2e_driver.exe"
shots="$root/build/screenshots"
work="$root/build/run"
desktop="Quorvane"

if [ ! -f "$exe" ]; then
  echo "run: $exe is missing; build it with: make windows" >&2
  exit 1
fi

source scripts/wine-env.sh
source scripts/display.sh
own_server=0
if ! wineserver_running; then
  own_server=1
fi

if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then
  wine_prepare
  echo "run: quorvane.exe on $DISPLAY (its close picture, the tray menu's Exit, or Ctrl+C here ends it)"
  wine "$exe" "$@"
  status=$?
  if [ "$own_server" = 1 ]; then
    wine_finish
  fi
  exit $status
fi

cleanup() {
  desktop_stop "$desktop" 5
  display_stop
  if [ "$own_server" = 1 ]; then
    wine_finish
  fi
}
trap cleanup EXIT

mkdir -p "$shots" "$work"
wine_prepare
display_start || exit 1
echo "run: no display; quorvane.exe runs in the Wine desktop \"$desktop\" on Xvfb $DISPLAY"

# Runs the helper in the same virtual desktop (the only place it can see the window) and prints
# the line it leaves in its result file.
helper_says() {
  local result="$work/$1.txt" i
  rm -f "$result"
  wine explorer "/desktop=$desktop,1280x800" "$helper" "$1" "$(winepath -w "$result" 2>/dev/null)" "$2" \
    >>"$work/wine.log" 2>&1 </dev/null
  for i in $(seq 1 $(( ($2 + 5) * 10 ))); do
    if [ -s "$result" ]; then
      tr -d '\r' <"$result"
      return 0
    fi
    sleep 0.1
  done
  echo "no answer"
}

: >"$work/wine.log"
wine explorer "/desktop=$desktop,1280x800" "$exe" "$@" >>"$work/wine.log" 2>&1 </dev/null &

if [ -f "$helper" ] && [ $# -eq 0 ]; then
  state="$(helper_says wait-window 20)"
  echo "run: main window $state"
  sleep 0.5  # let it paint
else
  sleep 5
fi

shot="$shots/run.png"
if /usr/bin/import -window root "$shot"; then
  echo "screenshot: $shot"
else
  echo "run: the screenshot failed" >&2
fi

if [ -f "$helper" ]; then
  echo "run: ending quorvane.exe: $(helper_says exit 10)"
fi
# Without the helper, or when the program did not end, it is ended by its id.
for pid in $(prefix_processes "$exe"); do
  kill "$pid" 2>/dev/null || true
done
desktop_stop "$desktop" 10
