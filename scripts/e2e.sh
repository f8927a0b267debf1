#!/usr/bin/env bash
# End-to-end tests of quorvane.exe under Wine, driven from a second program in the same virtual
# desktop on a virtual screen: the two run modes, the main window's controls found by their
# system names (the desktop tree filled, the preview drawn), the refused close request, the end
# through "Quorvane.Exit", and what a run leaves on the machine (the program's registry key, its
# data folder with Empty.ico), the pages, zones and hover pictures driven by the pointer; then
# the window once more with both programs taken for "Windows XP", where the Appearance page has
# its command, at a display scaling of 150 %, and at 100 % where the real window must do what
# its controls do (the disabled CmdApply under the pointer, two digits typed into each spin edit,
# the focus after a collection is removed); then the Appearance page on "Windows XP" (the slider
# dragged, the spacings typed and spun, the arrow unticked, Apply and Default, the registry values
# they leave) and blocked on "Windows Vista"; then the wallpaper settings dialog over two collections
# packed from Debian's desktop backgrounds, and the wallpaper change it sets up; then, with the
# program resident, changes that fail (a Total that is no number, a collection whose archive is
# gone, a packed file that is no picture), each reported in a message box and the log, and a good
# change after them; then the tray: the icon's messages, its menu chosen from with the keyboard
# and the pointer, the notification, "Change Wallpaper" and "Exit"; and the tray menu once more
# at a display scaling of 150 %. The pictures are those of Debian's ukui-wallpapers
# (scripts/setup.sh installs it); without them the wallpaper runs fail, saying so. Last, the slide
# show of a collection packed from Debian's mate-backgrounds, driven by hand and by its timer; and
# the folder page: folders made for the run opened in the tree, one given an icon through the
# picker and taken back with Default; and the collection editor making and changing a collection
# of such pictures (scripts/e2e-editor.sh). One
# screenshot per run and case goes to build/screenshots/. Ends with "N passed, M failed"; the exit
# status is non-zero when a case failed or could not run.
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
  if declare -F as_vista >/dev/null; then
    as_vista
    at_scaling 96
  fi
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

rm -f "$shots"/e2e-*.bmp "$shots"/e2e-*.png
shots_w="$(winepath -w "$shots" 2>/dev/null)"
[ -n "$shots_w" ] || fail_setup "winepath failed"

# drive RESULT ARGUMENTS...: runs the driver in the virtual desktop with ARGUMENTS after the
# result file's Windows path, waits until it has written its summary line, and adds its lines
# to the report.
report=""
# True when the driver's result file holds its last line, the count of its cases.
driver_finished() {
  [ -f "$1" ] && tr -d '\r' <"$1" | grep -qE '^[0-9]+ passed, [0-9]+ failed$'
}

drive() {
  local result="$1"
  shift
  local result_w
  result_w="$(winepath -w "$result" 2>/dev/null)"
  rm -f "$result"
  wine explorer "/desktop=$desktop,1280x800" "$bin/e2e_driver.exe" "$1" "$result_w" "${@:2}" \
    >>"$work/wine.log" 2>&1 </dev/null &
  local wine_pid=$!
  # The driver bounds each of its waits; this only guards against a driver that never starts.
  desktop_wait "$desktop" "$wine_pid" 1800 driver_finished "$result"
  desktop_stop "$desktop" 10
  wait "$wine_pid" 2>/dev/null
  if driver_finished "$result"; then
    report+="$(tr -d '\r' <"$result")"$'\n'
  else
    report+="FAIL $1: the driver gave no result (see $work/wine.log)"$'\n'"0 passed, 1 failed"$'\n'
  fi
}

# as_xp: the program and the driver take themselves for "Windows XP" (Wine's per-program
# version), until as_vista takes that away.
xp_programs=(quorvane.exe e2e_driver.exe)
as_xp() {
  for name in "${xp_programs[@]}"; do
    wine reg add "HKCU\\Software\\Wine\\AppDefaults\\$name" /v Version /d winxp /f \
      >/dev/null 2>&1 </dev/null
  done
}
as_vista() {
  for name in "${xp_programs[@]}"; do
    wine reg delete "HKCU\\Software\\Wine\\AppDefaults\\$name" /f >/dev/null 2>&1 </dev/null
  done
}

# at_scaling DPI: the display's scaling for the programs started from now on (96 = 100 %);
# at_scaling 96 puts the usual one back.
at_scaling() {
  wine reg add "HKCU\\Control Panel\\Desktop" /v LogPixels /t REG_DWORD /d "$1" /f \
    >/dev/null 2>&1 </dev/null
}

# real_window_run: the window where it must do what its controls do (a disabled button under the
# pointer, numbers typed into the spin edits, the focus after a removal), taken for "Windows XP".
# The removal needs two collections: each a packed bitmap drawn here, put into the data folder
# beforehand; what is left of them is removed afterwards.
real_window_run() {
  echo "== end to end: the real window as its controls are (\"Windows XP\")"
  local data_w data_u picture="$work/focus.bmp" name packed=1
  if ! wine_data_folder || [ ! -f "$bin/cab_probe.exe" ]; then
    report+="FAIL real window: no data folder, or $bin/cab_probe.exe is missing"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  mkdir -p "$data_u"
  "$magick" -size 48x32 xc:'#3366cc' "BMP3:$picture"
  for name in FocusOne FocusTwo; do
    rm -rf "${data_u:?}/$name" "$data_u/$name.RXS"
    wine "$bin/cab_probe.exe" pack "$data_w\\$name.RXS" "$(winepath -w "$picture" 2>/dev/null)" \
      >>"$work/wine.log" 2>&1 </dev/null || packed=0
  done
  if [ "$packed" = 1 ]; then
    drive "$work/real-window.txt" real-window "$shots_w" e2e-real-
  else
    report+="FAIL real window: cab_probe.exe could not pack the collections"$'\n'"0 passed, 1 failed"$'\n'
  fi
  for name in FocusOne FocusTwo; do
    rm -rf "${data_u:?}/$name" "$data_u/$name.RXS"
  done
  rm -f "$picture"
}

: >"$work/wine.log"
echo "== end to end: run modes, controls, side effects (desktop $desktop on $DISPLAY)"
# The driver reads Wine's diagnostics of the programs it starts from the log they go to.
drive "$work/run-modes.txt" run-modes "$shots_w" "$(winepath -w "$work/wine.log" 2>/dev/null)"
echo "== end to end: the window on \"Windows XP\" (the Appearance page has its command), at 150 %"
as_xp
at_scaling 144
drive "$work/navigation-xp.txt" navigation "$shots_w" e2e-xp-150-
at_scaling 96
real_window_run
as_vista
echo "== end to end: the tray menu at 150 %"
at_scaling 144
drive "$work/tray-menu-150.txt" tray-menu "$shots_w" e2e-150-
at_scaling 96
echo "== end to end: the Appearance page on \"Windows XP\", then blocked on \"Windows Vista\""
as_xp
drive "$work/appearance-xp.txt" appearance "$shots_w" e2e-xp-
as_vista
drive "$work/appearance-vista.txt" appearance "$shots_w" e2e-vista-

# The settings run's collections: pictures of Debian's desktop backgrounds, which nobody here made
# (ukui-wallpapers puts its JPEGs and PNGs in the top level of /usr/share/backgrounds), packed by
# the Windows build's own packer into the program's data folder before the program starts. "Photos" takes the two smallest JPEGs (PNGs where there are none), "Drawings" the two
# smallest PNGs (or JPEGs); the first is the one the run ticks. The manifest tells the driver each
# picture's size, as ImageMagick reads it. What the data folder held of the same names is put
# back afterwards, and what the run made there is removed.
settings_run() {
  local backgrounds=/usr/share/backgrounds
  local -a jpegs pngs photos drawings
  mapfile -t jpegs < <(ls -S -r "$backgrounds"/*.jpg 2>/dev/null)
  mapfile -t pngs < <(ls -S -r "$backgrounds"/*.png 2>/dev/null)
  if [ ${#jpegs[@]} -eq 0 ] && [ ${#pngs[@]} -eq 0 ]; then
    local why="no JPEG or PNG in $backgrounds: install Debian's wallpaper pictures with"
    why+=" \`make setup\` (or apt-get install ukui-wallpapers)"
    report+="FAIL settings: $why"$'\n'"0 passed, 1 failed"$'\n'
    report+="FAIL wallpaper failures: $why"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  photos=("${jpegs[@]:0:2}")
  [ ${#photos[@]} -gt 0 ] || photos=("${pngs[@]:0:2}")
  drawings=("${pngs[@]:0:2}")
  [ ${#drawings[@]} -gt 0 ] || drawings=("${jpegs[@]:0:2}")
  [ -f "$bin/cab_probe.exe" ] || {
    report+="FAIL settings: $bin/cab_probe.exe is missing"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  }
  local data_w data_u kept="$work/settings-kept" manifest="$work/settings-manifest.txt"
  if ! wine_data_folder; then
    report+="FAIL settings: the data folder could not be found"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  mkdir -p "$data_u"
  rm -rf "$kept"
  mkdir -p "$kept"
  local name
  local kept_names=(Photos Photos.RXS Drawings Drawings.RXS Undecodable Undecodable.RXS
    Undecodable.jpg Files.ini WP.bmp Temp.JPG Temp.PNG)
  for name in "${kept_names[@]}"; do
    [ -e "$data_u/$name" ] && mv "$data_u/$name" "$kept/"
  done
  : >"$manifest"
  local collection picture size packed=1
  local -a members files
  for collection in Photos Drawings; do
    if [ "$collection" = Photos ]; then members=("${photos[@]}"); else members=("${drawings[@]}"); fi
    files=()
    for picture in "${members[@]}"; do
      files+=("$(winepath -w "$picture" 2>/dev/null)")
      size="$(/usr/bin/identify -format '%w %h' "$picture[0]" 2>/dev/null)"
      printf '%s\t%s\t%s\t%s\n' "$collection" "$(basename "$picture")" "${size% *}" "${size#* }" \
        >>"$manifest"
    done
    if ! wine "$bin/cab_probe.exe" pack "$data_w\\$collection.RXS" "${files[@]}" \
        >>"$work/wine.log" 2>&1 </dev/null; then
      packed=0
    fi
  done
  if [ "$packed" = 1 ]; then
    echo "collections: Photos (${photos[*]##*/}), Drawings (${drawings[*]##*/})"
    drive "$work/settings.txt" settings "$shots_w" "$(winepath -w "$manifest" 2>/dev/null)"
    # A collection whose one file is named as a photograph and holds text: packed after the
    # settings run, which lists the manifest's collections alone.
    local undecodable="$work/Undecodable.jpg"
    printf 'This file is named as a JPEG picture but holds text.\r\n' >"$undecodable"
    echo "== end to end: changes that fail, each reported, then a good one (resident)"
    if wine "$bin/cab_probe.exe" pack "$data_w\\Undecodable.RXS" \
        "$(winepath -w "$undecodable" 2>/dev/null)" >>"$work/wine.log" 2>&1 </dev/null; then
      drive "$work/wallpaper-failures.txt" wallpaper-failures "$shots_w" \
        "$(winepath -w "$manifest" 2>/dev/null)" 'Undecodable\Undecodable.jpg'
    else
      report+="FAIL wallpaper failures: cab_probe.exe could not pack Undecodable.RXS"$'\n'"0 passed, 1 failed"$'\n'
    fi
    rm -f "$undecodable"
    echo "== end to end: the tray (resident): its menu, its notification, the way back"
    drive "$work/tray.txt" tray "$shots_w" "$(winepath -w "$manifest" 2>/dev/null)" e2e-
  else
    report+="FAIL settings: cab_probe.exe could not pack the collections"$'\n'"0 passed, 1 failed"$'\n'
  fi
  for name in "${kept_names[@]}"; do
    rm -rf "${data_u:?}/$name"
    [ -e "$kept/$name" ] && mv "$kept/$name" "$data_u/"
  done
  rm -rf "$kept"
}
echo "== end to end: the wallpaper settings and the change they make"
settings_run
source scripts/e2e-strip.sh
echo "== end to end: the wallpaper page: the strip, set now, the viewer"
strip_run

# The slide show's collection "Slides": photographs of Debian's mate-backgrounds, which nobody here
# made, three JPEGs as they are and three made smaller by ImageMagick, one into a 24-bit bitmap
# that stands whole on the screen, one into a GIF, and one into a PCX, a kind the program can't
# decode, whose step the program reports; each of its own size; packed by the Windows
# build's own packer into the program's data folder before the program starts. The manifest tells
# the driver each picture's size. What the data folder held of the same names is put back
# afterwards.
slideshow_run() {
  local nature=/usr/share/backgrounds/mate/nature
  local made="$work/slides" manifest="$work/slideshow-manifest.txt" kept="$work/slideshow-kept"
  local picture
  for picture in GreenMeadow.jpg FreshFlower.jpg Dune.jpg Aqua.jpg Storm.jpg; do
    if [ ! -f "$nature/$picture" ]; then
      report+="FAIL slide show: $nature/$picture is missing: install Debian's wallpaper pictures"
      report+=" with \`make setup\` (or apt-get install mate-backgrounds)"$'\n'"0 passed, 1 failed"$'\n'
      return 0
    fi
  done
  rm -rf "$made"
  mkdir -p "$made"
  cp "$nature/GreenMeadow.jpg" "$nature/FreshFlower.jpg" "$nature/Dune.jpg" "$made/"
  "$magick" "$nature/Aqua.jpg" -resize '480x300!' -alpha off -type TrueColor -compress None \
    "BMP3:$made/Aqua.bmp"
  "$magick" "$nature/Storm.jpg" -resize '360x240!' "$made/Storm.gif"
  "$magick" "$nature/Storm.jpg" -resize '64x40!' "PCX:$made/Zigzag.pcx"
  local data_w data_u
  if ! wine_data_folder; then
    report+="FAIL slide show: the data folder could not be found"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  mkdir -p "$data_u"
  rm -rf "$kept"
  mkdir -p "$kept"
  local name
  for name in Slides Slides.RXS; do
    [ -e "$data_u/$name" ] && mv "$data_u/$name" "$kept/"
  done
  : >"$manifest"
  local -a files=()
  local size
  for picture in "$made"/*; do
    files+=("$(winepath -w "$picture" 2>/dev/null)")
    size="$(/usr/bin/identify -format '%w %h' "$picture[0]" 2>/dev/null)"
    printf 'Slides\t%s\t%s\t%s\n' "$(basename "$picture")" "${size% *}" "${size#* }" >>"$manifest"
  done
  if wine "$bin/cab_probe.exe" pack "$data_w\\Slides.RXS" "${files[@]}" \
      >>"$work/wine.log" 2>&1 </dev/null; then
    echo "collection: Slides ($(cd "$made" && echo *))"
    drive "$work/slide-show.txt" slide-show "$shots_w" "$(winepath -w "$manifest" 2>/dev/null)"
  else
    report+="FAIL slide show: cab_probe.exe could not pack Slides.RXS"$'\n'"0 passed, 1 failed"$'\n'
  fi
  for name in Slides Slides.RXS; do
    rm -rf "${data_u:?}/$name"
    [ -e "$kept/$name" ] && mv "$kept/$name" "$data_u/"
  done
  rm -rf "$kept" "$made"
}
echo "== end to end: the slide show of a collection"
slideshow_run
source scripts/e2e-editor.sh
echo "== end to end: the collection editor"
editor_run

echo "== end to end: the folder page (folders opened, Change through the picker, Default)"
drive "$work/folder-page.txt" folder-page "$shots_w" e2e-folder-

for bmp in "$shots"/e2e-*.bmp; do
  [ -f "$bmp" ] || continue
  png="${bmp%.bmp}.png"
  "$magick" "$bmp" "$png" && rm -f "$bmp"
  echo "screenshot: $png"
done

printf '%s' "$report" | grep -vE '^[0-9]+ passed, [0-9]+ failed$'
passed=0
failed=0
while read -r p _ f _; do
  passed=$((passed + p))
  failed=$((failed + f))
done < <(printf '%s' "$report" | grep -E '^[0-9]+ passed, [0-9]+ failed$')
summary="$passed passed, $failed failed"
echo "e2e took $(( $(date +%s) - started )) s"
echo "$summary"
case "$summary" in
  *" 0 failed") exit 0 ;;
  *) exit 1 ;;
esac
