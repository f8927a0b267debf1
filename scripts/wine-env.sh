#!/usr/bin/env bash
# Sourced by the run and test scripts: a project-local Wine prefix, made on first use, and a
# persistent wineserver warmed up once, so that Wine's helper processes never hold the pipes of
# the program that started them.
#
#   source scripts/wine-env.sh && wine_prepare
#
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
export WINEPREFIX="${WINEPREFIX:-$root/build/wineprefix}"
export WINEARCH=win64
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="mscoree,mshtml="

wine_prepare() {
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    mkdir -p "$WINEPREFIX"
    wineboot -i >/dev/null 2>&1 </dev/null || true
    wineserver -w >/dev/null 2>&1 || true
    # Captions render as boxes without fonts in the prefix.
    local fonts="$WINEPREFIX/drive_c/windows/Fonts"
    mkdir -p "$fonts"
    if [ -d /usr/share/fonts/truetype/wine ]; then
      cp -n /usr/share/fonts/truetype/wine/* "$fonts/" 2>/dev/null || true
    fi
    if [ -d /usr/share/wine/fonts ]; then
      cp -n /usr/share/wine/fonts/* "$fonts/" 2>/dev/null || true
    fi
  fi
  wineserver -p >/dev/null 2>&1 </dev/null &
  wine cmd /c exit >/dev/null 2>&1 </dev/null || true
}

wine_finish() {
  wineserver -k >/dev/null 2>&1 || true
}
