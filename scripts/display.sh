#!/usr/bin/env bash
# Sourced by the run and end-to-end scripts: a virtual screen on Xvfb, and the Wine processes of
# one named virtual desktop.
#
#   source scripts/display.sh
#   display_start || exit 1     # sets DISPLAY to a fresh Xvfb screen of 1280x800x24
#   ...
#   desktop_stop NAME           # ends what still runs in the virtual desktop NAME
#   display_stop

QV_XVFB_PID=""

# Starts Xvfb on the first free display from :91 on, and exports DISPLAY for it.
display_start() {
  local n i
  for n in $(seq 91 140); do
    if [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ]; then
      continue
    fi
    Xvfb ":$n" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 </dev/null &
    QV_XVFB_PID=$!
    for i in $(seq 1 100); do
      if xdpyinfo -display ":$n" >/dev/null 2>&1; then
        export DISPLAY=":$n"
        return 0
      fi
      if ! kill -0 "$QV_XVFB_PID" 2>/dev/null; then
        break  # another one took the display first
      fi
      sleep 0.1
    done
    kill "$QV_XVFB_PID" 2>/dev/null || true
    wait "$QV_XVFB_PID" 2>/dev/null || true
    QV_XVFB_PID=""
  done
  echo "display: no free display for Xvfb" >&2
  return 1
}

display_stop() {
  if [ -n "$QV_XVFB_PID" ]; then
    kill "$QV_XVFB_PID" 2>/dev/null || true
    wait "$QV_XVFB_PID" 2>/dev/null || true
    QV_XVFB_PID=""
  fi
}

# The ids of the processes of this Wine prefix whose command line contains TEXT.
prefix_processes() {
  local text="$1" pid
  for pid in $(pgrep -f -- "$text" 2>/dev/null); do
    if { tr "\0" "\n" <"/proc/$pid/environ"; } 2>/dev/null | grep -qxF "WINEPREFIX=$WINEPREFIX"; then
      echo "$pid"
    fi
  done
}

# The ids of the Wine processes of this prefix that keep the virtual desktop NAME.
desktop_processes() {
  prefix_processes "/desktop=$1,"
}

# A program started into a virtual desktop hands its result over in a file: waits, a tenth of a
# second at a time and STEPS times at most, until the command given after the three arguments
# succeeds (the result is there), or the program PID and everything in the desktop NAME have
# ended. True when the command succeeded.
desktop_wait() {
  local name="$1" pid="$2" steps="$3"
  shift 3
  for _ in $(seq 1 "$steps"); do
    "$@" && return 0
    if ! kill -0 "$pid" 2>/dev/null && [ -z "$(desktop_processes "$name")" ]; then return 1; fi
    sleep 0.1
  done
  return 1
}

# Waits up to SECONDS for the virtual desktop NAME to close by itself (it does when its last
# program has ended), then ends what is left of it.
desktop_stop() {
  local name="$1" seconds="${2:-10}" i pids
  for i in $(seq 1 $((seconds * 10))); do
    pids="$(desktop_processes "$name")"
    [ -z "$pids" ] && return 0
    sleep 0.1
  done
  for pid in $pids; do
    kill "$pid" 2>/dev/null || true
  done
}

# True when a wineserver of this prefix is running already.
wineserver_running() {
  local pid
  for pid in $(pgrep -x 'wineserver(64)?' 2>/dev/null); do
    if { tr "\0" "\n" <"/proc/$pid/environ"; } 2>/dev/null | grep -qxF "WINEPREFIX=$WINEPREFIX"; then
      return 0
    fi
  done
  return 1
}
