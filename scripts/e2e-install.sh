#!/usr/bin/env bash
# End to end under Wine: the installer, the installed program and the uninstaller, in a Wine
# prefix of their own made fresh for the run (build/wineprefix-install), without the values that
# scripts/wine-env.sh adds to the test prefix: what a Linux user who installs Quorvane into a new
# Wine prefix gets.
#
#   1. The fresh prefix lacks "My Computer"'s icon value (without it the program shows its window
#      without its pages).
#   2. `QuorvaneSetup.exe /S`: the program, its help and the uninstaller in the program folder, the
#      Start Menu entry, the entry in the list of programs (name, version from the VERSION file,
#      publisher "Talvenor", icon, uninstall commands), and, under Wine, the icon value added.
#   3. The program started from its Start Menu shortcut's target (the shortcut read as the shell
#      reads it, by the end-to-end driver, in a virtual desktop on Xvfb): its window with its pages
#      filled; the "?" icon opens the help in Wine's help viewer; the end through "Quorvane.Exit".
#   4. A collection packed into the data folder, the automatic start value set as the wallpaper
#      settings set it.
#   5. `Uninstall.exe /S` while the program runs resident: the program ended; the program folder,
#      the Start Menu entry, the entry in the list of programs, the automatic start value and the
#      icon value the installer added are gone; the data folder with its collection and the
#      program's settings key are still there.
#   6. Installed again, then the uninstaller run by hand: the box "Also remove my collections and
#      settings", unticked at first, ticked with the pointer; the data folder and the settings key
#      go too.
#
# Ends with "N passed, M failed"; the exit status is non-zero when a case failed. Screenshots:
# build/screenshots/e2e-installed.png, e2e-help.png and e2e-uninstall-box.png. Needs the Windows
# build with its installer (cmake --build --preset windows, or make dist).
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

bin="${QUORVANE_WINDOWS_BUILD:-$root/build/windows}"
setup="$bin/QuorvaneSetup.exe"
shots="$root/build/screenshots"
work="$root/build/e2e-install"
desktop="QuorvaneInstall$$"
magick=/usr/bin/convert
started=$(date +%s)
mkdir -p "$shots" "$work"
log="$work/wine.log"
: >"$log"

passed=0
failed=0
# result NAME FAILURES NOTE: a case's line, "ok   NAME: NOTE" or "FAIL NAME: FAILURES".
result() {
  if [ -z "$2" ]; then
    echo "ok   $1: $3"
    passed=$((passed + 1))
  else
    echo "FAIL $1: ${2%; }"
    failed=$((failed + 1))
  fi
}
finish() {
  echo "install e2e took $(( $(date +%s) - started )) s"
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
  exit $?
}

for program in "$setup" "$bin/e2e_driver.exe" "$bin/cab_probe.exe"; do
  if [ ! -f "$program" ]; then
    result "set-up" "$program is missing: build with cmake --build --preset windows (make dist)" ""
    finish
  fi
done

# A prefix of the run's own, made fresh. Shortcuts made inside it stay inside it: Wine's menu
# builder, which would copy them to the Linux desktop's menus, is left out.
export WINEPREFIX="$root/build/wineprefix-install"
export WINEARCH=win64
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=,winemenubuilder.exe="
source scripts/display.sh

cleanup() {
  desktop_stop "$desktop" 5
  display_stop
  wineserver -k >/dev/null 2>&1 || true
}
trap cleanup EXIT

wineserver -k >/dev/null 2>&1 || true
rm -rf "$WINEPREFIX"
mkdir -p "$WINEPREFIX"
wineboot -i >>"$log" 2>&1 </dev/null || true
wineserver -w >/dev/null 2>&1 || true
# Captions render as boxes without fonts in the prefix.
fonts="$WINEPREFIX/drive_c/windows/Fonts"
mkdir -p "$fonts"
for from in /usr/share/fonts/truetype/wine /usr/share/wine/fonts; do
  [ -d "$from" ] && cp -n "$from"/* "$fonts/" 2>/dev/null
done
# A persistent server, warmed up once, so that Wine's helpers never hold this script's pipes.
wineserver -p >/dev/null 2>&1 </dev/null &
wine cmd /c exit >/dev/null 2>&1 </dev/null || true

reg_value() {  # KEY NAME: the data of the value, or nothing
  local args=(/v "$2")
  [ -z "$2" ] && args=(/ve)
  wine reg query "$1" "${args[@]}" 2>/dev/null </dev/null | tr -d '\r' |
    sed -nE 's/^    .*    REG_[A-Z_]+    (.*)$/\1/p' | head -n 1
}
reg_has_key() {
  wine reg query "$1" >/dev/null 2>&1 </dev/null
}

my_computer='HKCR\CLSID\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\DefaultIcon'
uninstall_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Quorvane'
run_key='HKCU\Software\Microsoft\Windows\CurrentVersion\Run'
product_key='HKCU\Software\Talvenor\Mirefold\Quorvane'
version="$(head -n 1 VERSION | tr -d '\r')"
program_w='C:\Program Files\Talvenor\Quorvane'
program_u="$WINEPREFIX/drive_c/Program Files/Talvenor/Quorvane"
menu_u="$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Quorvane"

echo "== install e2e: QuorvaneSetup.exe $version in a fresh Wine prefix ($WINEPREFIX)"
f=""
[ -f "$WINEPREFIX/system.reg" ] || f+="the prefix was not made; "
[ -z "$(reg_value "$my_computer" "")" ] || f+="a fresh prefix has \"My Computer\"'s icon value already: the installer's addition proves nothing; "
result "a fresh prefix, without \"My Computer\"'s icon value" "$f" "as Wine makes it"

wine "$setup" /S >>"$log" 2>&1 </dev/null
status=$?
f=""
[ "$status" -eq 0 ] || f+="QuorvaneSetup.exe /S exited with $status; "
cmp -s "$program_u/quorvane.exe" "$bin/quorvane.exe" || f+="$program_w\\quorvane.exe is missing or not the built one; "
cmp -s "$program_u/orlavine.chm" "$bin/orlavine.chm" || f+="$program_w\\orlavine.chm is missing or not the built one; "
[ -f "$program_u/Uninstall.exe" ] || f+="$program_w\\Uninstall.exe is missing; "
result "installed silently: program, help, uninstaller" "$f" "$(cd "$program_u" 2>/dev/null && echo *)"

f=""
[ -f "$menu_u/Quorvane.lnk" ] || f+="the Start Menu has no Quorvane\\Quorvane.lnk; "
[ -f "$menu_u/Quorvane Help.lnk" ] || f+="the Start Menu has no Quorvane\\Quorvane Help.lnk; "
result "the Start Menu entry" "$f" "$(cd "$menu_u" 2>/dev/null && echo *)"

f=""
check_value() {  # NAME EXPECTED
  local got
  got="$(reg_value "$uninstall_key" "$1")"
  [ "$got" = "$2" ] || f+="$1 is \"$got\", not \"$2\"; "
}
check_value DisplayName "Quorvane"
check_value DisplayVersion "$version"
check_value Publisher "Talvenor"
check_value DisplayIcon "$program_w\\quorvane.exe,0"
check_value InstallLocation "$program_w"
check_value UninstallString "\"$program_w\\Uninstall.exe\""
check_value QuietUninstallString "\"$program_w\\Uninstall.exe\" /S"
result "the entry in the list of programs" "$f" "Quorvane $version, Talvenor, its icon and uninstall commands"

f=""
added="$(reg_value "$my_computer" "")"
[ "$added" = '%SystemRoot%\explorer.exe,0' ] || f+="\"My Computer\"'s icon value is \"$added\", not %SystemRoot%\\explorer.exe,0; "
result "under Wine, the values Windows has are added" "$f" "\"My Computer\": $added"

driver_finished() {
  [ -f "$1" ] && tr -d '\r' <"$1" | grep -qE '^[0-9]+ passed, [0-9]+ failed$'
}
# Counts the driver's cases from its result file.
read_driver_result() {
  if driver_finished "$1"; then
    while IFS= read -r line; do
      case "$line" in
        "ok   "*) echo "$line"; passed=$((passed + 1)) ;;
        "FAIL "*) echo "$line"; failed=$((failed + 1)) ;;
      esac
    done < <(tr -d '\r' <"$1")
  else
    result "the driver's run" "the driver gave no result in $1 (see $log)" ""
  fi
}
convert_shots() {  # NAME...: build/screenshots/NAME.bmp into NAME.png
  local name bmp
  for name in "$@"; do
    bmp="$shots/$name.bmp"
    [ -f "$bmp" ] || continue
    "$magick" "$bmp" "${bmp%.bmp}.png" && rm -f "$bmp" && echo "screenshot: ${bmp%.bmp}.png"
  done
}

# The installed program, driven in a virtual desktop.
display_start || { result "the installed program" "Xvfb could not start" ""; finish; }
driver_result="$work/installed.txt"
rm -f "$driver_result" "$shots"/e2e-installed.* "$shots"/e2e-help.*
wine explorer "/desktop=$desktop,1280x800" "$bin/e2e_driver.exe" installed \
  "$(winepath -w "$driver_result" 2>/dev/null)" "$(winepath -w "$shots" 2>/dev/null)" \
  "$(winepath -w "$menu_u/Quorvane.lnk" 2>/dev/null)" "$program_w\\quorvane.exe" \
  >>"$log" 2>&1 </dev/null &
wine_pid=$!
desktop_wait "$desktop" "$wine_pid" 1200 driver_finished "$driver_result"
desktop_stop "$desktop" 10
wait "$wine_pid" 2>/dev/null
read_driver_result "$driver_result"
convert_shots e2e-installed e2e-help

# The user's data: a collection in the data folder the program made, and the automatic start
# the wallpaper settings write.
appdata="$(wine cmd /c echo %APPDATA% 2>/dev/null </dev/null | tr -d '\r')"
data_w="$appdata\\Talvenor\\Mirefold\\Quorvane"
data_u="$(winepath -u "$data_w" 2>/dev/null)"
picture="$work/kept.bmp"
"$magick" -size 64x40 xc:'#2a7f62' "BMP3:$picture"
f=""
if [ -z "$appdata" ] || [ ! -d "$data_u" ]; then
  f+="the program made no data folder ($data_w); "
elif ! wine "$bin/cab_probe.exe" pack "$data_w\\Kept.RXS" "$(winepath -w "$picture" 2>/dev/null)" \
    >>"$log" 2>&1 </dev/null || [ ! -s "$data_u/Kept.RXS" ]; then
  f+="cab_probe.exe could not pack Kept.RXS; "
fi
wine reg add "$run_key" /v "Talvenor Quorvane" /d "$program_w\\quorvane.exe /background" /f \
  >/dev/null 2>&1 </dev/null || f+="the automatic start value could not be set; "
reg_has_key "$product_key" || f+="the program made no settings key; "
kept_sum="$(md5sum "$data_u/Kept.RXS" 2>/dev/null | cut -d' ' -f1)"
result "a collection in the data folder, the automatic start set" "$f" "$data_w\\Kept.RXS"

echo "== install e2e: Uninstall.exe /S, with the program running resident"
# The program runs resident, as the automatic start starts it, in the virtual desktop; the
# uninstaller, started there too, must end it before it removes its files.
wine explorer "/desktop=$desktop,1280x800" "$program_w\\quorvane.exe" /background >>"$log" 2>&1 </dev/null &
resident_pid=$!
# The program's own process: its command line begins with its Windows path.
running='^C:\\Program Files\\Talvenor\\Quorvane\\quorvane\.exe'
for _ in $(seq 1 100); do
  [ -n "$(prefix_processes "$running")" ] && break
  sleep 0.1
done
sleep 2  # its window made
was_running="$(prefix_processes "$running")"
wine explorer "/desktop=$desktop,1280x800" "$program_w\\Uninstall.exe" /S >>"$log" 2>&1 </dev/null &
# The uninstaller runs on from a copy of itself in the temporary folder: wait for its work.
for _ in $(seq 1 300); do
  [ ! -e "$program_u" ] && ! reg_has_key "$uninstall_key" && [ -z "$(prefix_processes "$running")" ] &&
    break
  sleep 0.1
done
still_running="$(prefix_processes "$running")"
desktop_stop "$desktop" 10
wait "$resident_pid" 2>/dev/null
f=""
[ -n "$was_running" ] || f+="the installed program did not start resident before the uninstall; "
[ -z "$still_running" ] || f+="the resident program still runs after the uninstall; "
[ ! -e "$program_u" ] || f+="$program_w is still there ($(cd "$program_u" && echo *)); "
[ ! -e "$menu_u" ] || f+="the Start Menu entry is still there; "
! reg_has_key "$uninstall_key" || f+="the entry in the list of programs is still there; "
[ -z "$(reg_value "$run_key" "Talvenor Quorvane")" ] || f+="the automatic start value is still there; "
[ -z "$(reg_value "$my_computer" "")" ] || f+="the icon value the installer added is still there; "
result "uninstalled silently: the running program ended, program files and entries gone" "$f" \
  "resident program ended; program folder, Start Menu entry, list entry, automatic start and the added icon value removed"

f=""
[ -d "$data_u" ] || f+="the data folder $data_w is gone; "
[ -n "$kept_sum" ] && [ "$(md5sum "$data_u/Kept.RXS" 2>/dev/null | cut -d' ' -f1)" = "$kept_sum" ] ||
  f+="the collection Kept.RXS is gone or changed; "
[ -f "$data_u/Empty.ico" ] || f+="Empty.ico is gone from the data folder; "
reg_has_key "$product_key" || f+="the settings key is gone; "
result "uninstalled: the data folder and its collection kept" "$f" \
  "$(cd "$data_u" 2>/dev/null && echo *) and the settings key"

echo "== install e2e: installed again, uninstalled by hand with the box for the user's data ticked"
wine "$setup" /S >>"$log" 2>&1 </dev/null
status=$?
driver_result="$work/uninstall-with-data.txt"
rm -f "$driver_result" "$shots"/e2e-uninstall-box.*
if [ "$status" -eq 0 ] && [ -f "$program_u/Uninstall.exe" ]; then
  # The uninstaller first, then, once its desktop is up, the driver that works it.
  wine explorer "/desktop=$desktop,1280x800" "$program_w\\Uninstall.exe" >>"$log" 2>&1 </dev/null &
  for _ in $(seq 1 100); do
    [ -n "$(desktop_processes "$desktop")" ] && break
    sleep 0.1
  done
  sleep 1
  wine explorer "/desktop=$desktop,1280x800" "$bin/e2e_driver.exe" uninstall-with-data \
    "$(winepath -w "$driver_result" 2>/dev/null)" "$(winepath -w "$shots" 2>/dev/null)" \
    >>"$log" 2>&1 </dev/null &
  wine_pid=$!
  desktop_wait "$desktop" "$wine_pid" 900 driver_finished "$driver_result"
  desktop_stop "$desktop" 10
  wait "$wine_pid" 2>/dev/null
  read_driver_result "$driver_result"
  for _ in $(seq 1 100); do
    [ ! -e "$program_u" ] && [ ! -e "$data_u" ] && break
    sleep 0.1
  done
  f=""
  [ ! -e "$program_u" ] || f+="$program_w is still there; "
  ! reg_has_key "$uninstall_key" || f+="the entry in the list of programs is still there; "
  [ ! -e "$data_u" ] || f+="the data folder $data_w is still there ($(cd "$data_u" && echo *)); "
  ! reg_has_key "$product_key" || f+="the settings key is still there; "
  result "with the box ticked, the data folder and the settings go too" "$f" \
    "program, data folder with Kept.RXS, settings key removed"
else
  result "installed again" "QuorvaneSetup.exe /S exited with $status, or left no Uninstall.exe" ""
fi
convert_shots e2e-uninstall-box
rm -f "$picture"
finish
