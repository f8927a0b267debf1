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

# The program's data folder in the prefix: sets data_w (its Windows path) and data_u (the same
# path here). False when the prefix does not tell where it is.
wine_data_folder() {
  local appdata
  appdata="$(wine cmd /c echo %APPDATA% 2>/dev/null </dev/null | tr -d '\r')"
  data_w="$appdata\\Talvenor\\Mirefold\\Quorvane"
  data_u="$(winepath -u "$data_w" 2>/dev/null)"
  [ -n "$appdata" ] && [ -n "$data_u" ]
}

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
  wine_shell_keys
}

# A new prefix lacks a few class keys that every Windows system has and that the program reads
# at its start; "My Computer"'s icon above all. They are added once, as Windows has them.
wine_shell_keys() {
  local marker="$WINEPREFIX/.quorvane-shell-keys"
  [ -f "$marker" ] && return 0
  wine reg add 'HKCR\CLSID\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\DefaultIcon' /ve /t REG_EXPAND_SZ \
    /d '%SystemRoot%\explorer.exe,0' /f >/dev/null 2>&1 </dev/null || return 0
  touch "$marker"
}

wine_finish() {
  wineserver -k >/dev/null 2>&1 || true
}
