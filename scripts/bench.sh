#!/usr/bin/env bash
# Benchmarks (not tests). Each prints its figures; the README's table holds the latest.
#
#   bash scripts/bench.sh            all of them
#   bash scripts/bench.sh import     ImportFromReg against `wine reg import`
#   bash scripts/bench.sh resample   cDIBSection::Resample, natively
#   bash scripts/bench.sh startup    quorvane.exe to its main window shown, against a minimal
#                                    window program, under Wine in a virtual desktop on Xvfb;
#                                    and in the same processes the rebuild after a write of icons
#                                    against the first load routine
#   bash scripts/bench.sh switch     quorvane.exe's page and zone switches, click to the window
#                                    repainted, under Wine in a virtual desktop on Xvfb
#   bash scripts/bench.sh wallpaper  one automatic wallpaper change (unpack, decode, save, set) of
#                                    a 3840x2160 JPEG under Wine, against xwallpaper and feh on Xvfb
#   bash scripts/bench.sh folders    the folder page of quorvane.exe under Wine: opening a folder
#                                    of 1,000 sub-folders in its tree (click to the children
#                                    shown) against `cmd /c dir /ad` of the same folder in the same
#                                    prefix; and start-up, page and opening as the folder grows to
#                                    100, 1,000 and 5,000 sub-folders
#   bash scripts/bench.sh cabinet    packing the JPEGs of Debian's wallpaper packages into a
#                                    collection file against `gcab -c -z`, and unpacking its first
#                                    and last entry against `cabextract -F`, natively
#   bash scripts/bench.sh thumbnails the wallpaper page's strip filled with the JPEGs of Debian's
#                                    wallpaper packages under Wine, click to the last thumbnail
#                                    drawn, with the program's memory, against ImageMagick's
#                                    `convert -thumbnail 64x64` and `vipsthumbnail`, one process a
#                                    picture, on the same files
#   bash scripts/bench.sh editor     the collection editor's OK packing 60 of Debian's wallpapers
#                                    into a new collection, on the real dialog under Wine in a
#                                    virtual desktop on Xvfb, against `gcab -c -z` of the same
#                                    files, natively, in the same run
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# Every benchmark runs Wine in the project's own prefix, never in the user's default one.
source scripts/wine-env.sh
what="${1:-all}"
runs="${RUNS:-10}"

build_native_release() {
  cmake --preset native-release >/dev/null
  cmake --build --preset native-release -j "$(nproc)" "$@" >/dev/null
}

bench_import() {
  build_native_release --target generate_reg_file bench_import
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target win_import_reg >/dev/null
  source scripts/wine-env.sh
  wine_prepare
  local dir="$root/build/bench"
  mkdir -p "$dir"
  build/native-release/generate_reg_file "$dir/values.reg" 1000 10
  build/native-release/generate_reg_file "$dir/empty.reg" 0 0
  local reg_file empty_file
  reg_file="$(winepath -w "$dir/values.reg")"
  empty_file="$(winepath -w "$dir/empty.reg")"
  local exe="build/windows/win_import_reg.exe"
  echo "== import of 10,000 values in 1,000 keys, each a whole Wine process, $runs runs"
  hyperfine --style basic --warmup 2 --runs "$runs" \
    --prepare "wine reg delete 'HKCU\\Software\\QuorvaneBench' /f >/dev/null 2>&1 || true" \
    -n "ImportFromReg" "wine $exe '$reg_file'" \
    -n "wine reg import" "wine reg import '$reg_file'" \
    -n "ImportFromReg, empty file" "wine $exe '$empty_file'" \
    -n "wine reg import, empty file" "wine reg import '$empty_file'" \
    --export-json "$dir/import.json"
  wine reg delete 'HKCU\Software\QuorvaneBench' /f >/dev/null 2>&1 || true
  wine_finish
  echo "== the same import natively over the store in memory: the import's own share"
  build/native-release/bench_import "$dir/values.reg" "$runs"
}

bench_resample() {
  build_native_release --target bench_resample
  echo "== Resample 3840x2160 <-> 1920x1080, natively"
  build/native-release/bench_resample
}

# run_in_desktop NAME PROGRAM STEPS [ARGUMENTS...]: runs a Windows timing program of build/windows
# inside a Wine virtual desktop on Xvfb, as `PROGRAM RUNS RESULTFILE ARGUMENTS...`, waits up to STEPS tenths of a second for
# the "done" line of its result file, stops everything it started, and prints the figures.
run_in_desktop() {
  local name="$1" program="$2" steps="$3"
  source scripts/wine-env.sh
  source scripts/display.sh
  local own_server=0
  wineserver_running || own_server=1
  local dir="$root/build/bench"
  local desktop="QuorvaneBench$$"
  local result="$dir/$name.txt"
  mkdir -p "$dir"
  rm -f "$result"
  wine_prepare
  display_start || exit 1
  wine explorer "/desktop=$desktop,1280x800" "build/windows/$program" "$runs" \
    "$(winepath -w "$result")" "${@:4}" >"$dir/$name-wine.log" 2>&1 </dev/null &
  local wine_pid=$!
  figures_written() { [ -f "$result" ] && grep -q '^done' "$result"; }
  desktop_wait "$desktop" "$wine_pid" "$steps" figures_written || true
  desktop_stop "$desktop" 10
  wait "$wine_pid" 2>/dev/null
  display_stop
  if [ "$own_server" = 1 ]; then wine_finish; fi
  if [ -f "$result" ]; then
    tr -d '\r' <"$result" | grep -v '^done$'
  else
    echo "$name: no figures (see $dir/$name-wine.log)" >&2
    return 1
  fi
}

bench_startup() {
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" \
    --target quorvane_startup win_minimal_window win_common_window win_startup >/dev/null
  echo "== start-up: process start to the main window shown (rows read, trees filled), against"
  echo "   a program that only opens one window, and one that also loads common controls 6 with"
  echo "   a tree, shell32, ole32 and oleaut32; $runs runs each, Wine desktop on Xvfb"
  # The timing program starts both inside the virtual desktop and writes its figures to a file.
  run_in_desktop startup win_startup.exe $(( runs * 60 + 600 ))
}

bench_switch() {
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target quorvane win_switch >/dev/null
  echo "== page and zone switches of quorvane.exe: a real click to the main window repainted;"
  echo "   $runs rounds of 2 page and 4 zone clicks, Wine desktop on Xvfb"
  # The timing program starts quorvane.exe inside the virtual desktop, clicks, and writes its
  # figures to a file.
  run_in_desktop switch win_switch.exe $(( runs * 300 + 900 ))
}

bench_folders() {
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target quorvane win_folders >/dev/null
  echo "== the folder page of quorvane.exe: start-up (one pass over the drives), the page, and"
  echo "   a folder opened in the tree, as the folder grows; $runs runs each, Wine desktop on Xvfb"
  # shellcheck disable=SC2086
  run_in_desktop folders win_folders.exe $(( runs * 3000 + 1200 )) ${FOLDER_SIZES:-100 1000 5000}
  # The same folder listed by the system's own command, in the same prefix: the whole process,
  # and an empty command for what starting it costs.
  source scripts/wine-env.sh
  local own_server=0
  wineserver_running || own_server=1
  wine_prepare
  echo "== cmd /c dir /ad of the folder of 1,000 sub-folders, $runs runs"
  hyperfine --style basic --warmup 2 --runs "$runs" \
    -n "cmd /c dir /ad N1000" "wine cmd /c dir /ad 'C:\\QuorvaneBench\\N1000' >/dev/null" \
    -n "cmd /c exit" "wine cmd /c exit" \
    --export-json "$root/build/bench/folders-dir.json"
  if [ "$own_server" = 1 ]; then wine_finish; fi
}

# install_missing PACKAGE...: installs with apt-get those of the Debian packages not installed.
install_missing() {
  local missing=() p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
  done
  if [ ${#missing[@]} -gt 0 ]; then
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
  fi
}

# Real pictures nobody here made: the JPEGs of Debian's wallpaper packages.
wallpaper_packages=(mate-backgrounds ukui-wallpapers plasma-workspace-wallpapers)

bench_cabinet() {
  install_missing "${wallpaper_packages[@]}"
  build_native_release --target cab_probe
  local probe="$root/build/native-release/cab_probe"
  local dir="$root/build/bench/cabinet"
  rm -rf "$dir"
  mkdir -p "$dir/src"
  # One flat folder, the pictures numbered in a fixed order, since several share a name.
  local n=0 f
  while IFS= read -r f; do
    n=$((n + 1))
    cp "$f" "$dir/src/$(printf '%03d' "$n")-$(basename "$f" | tr ' ' '_')"
  done < <(find /usr/share/backgrounds /usr/share/wallpapers -type f -iname '*.jpg' 2>/dev/null | LC_ALL=C sort)
  local files=("$dir/src"/*)
  local first last bytes
  first="$(basename "${files[0]}")"
  last="$(basename "${files[-1]}")"
  bytes="$(cat "${files[@]}" | wc -c)"
  echo "== packing $n JPEGs, $((bytes / 1000000)) MB, into one archive; natively; $runs runs"
  (cd "$dir/src" && hyperfine --style basic --warmup 1 --runs "$runs" \
    --prepare "rm -f '$dir/ours.RXS' '$dir/gcab.cab'" \
    -n "PackFile x$n + Release" "'$probe' pack '$dir/ours.RXS' ${files[*]@Q}" \
    -n "gcab -c -z" "gcab -c -z '$dir/gcab.cab' *" \
    --export-json "$dir/pack.json")
  # The archives of the last runs are gone with the preparation of the next: made once more.
  rm -f "$dir/ours.RXS" "$dir/gcab.cab"
  "$probe" pack "$dir/ours.RXS" "${files[@]}" >/dev/null
  (cd "$dir/src" && gcab -c -z "$dir/gcab.cab" *)
  local ours gcab
  ours="$(stat -c %s "$dir/ours.RXS")"
  gcab="$(stat -c %s "$dir/gcab.cab")"
  awk -v b="$bytes" -v o="$ours" -v g="$gcab" 'BEGIN {
    printf "archive size / input: PackFile %.4f, gcab -c -z %.4f\n", o / b, g / b }'
  grep -o '"median": *[0-9.e+-]*' "$dir/pack.json" | awk -v b="$bytes" -F': *' '
    NR == 1 { name = "PackFile + Release" } NR == 2 { name = "gcab -c -z" }
    { printf "%s: %.0f MB/s (median %.0f ms)\n", name, b / $2 / 1e6, $2 * 1000 }'
  echo "== unpacking the first ($first) and the last ($last) entry; $runs runs"
  hyperfine --style basic --warmup 2 --runs "$runs" \
    --prepare "rm -rf '$dir/out'" \
    -n "UnpackFiles first" "'$probe' unpack '$dir/ours.RXS' '$dir/out' '$first'" \
    -n "UnpackFiles last" "'$probe' unpack '$dir/ours.RXS' '$dir/out' '$last'" \
    -n "cabextract -F first, gcab's archive" "cabextract -q -d '$dir/out' -F '$first' '$dir/gcab.cab'" \
    -n "cabextract -F last, gcab's archive" "cabextract -q -d '$dir/out' -F '$last' '$dir/gcab.cab'" \
    -n "cabextract -F last, our archive" "cabextract -q -d '$dir/out' -F '$last' '$dir/ours.RXS'" \
    --export-json "$dir/unpack.json"
  rm -rf "$dir/src" "$dir/out"
}

bench_wallpaper() {
  install_missing "${wallpaper_packages[@]}" xwallpaper feh
  build_native_release --target cab_probe
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target win_wallpaper >/dev/null
  local dir="$root/build/bench/wallpaper"
  rm -rf "$dir"
  mkdir -p "$dir/src" "$dir/Data"
  # One 3840x2160 JPEG made from a picture of Debian's wallpaper packages, fifty times over.
  local source
  source="$(find /usr/share/backgrounds /usr/share/wallpapers -type f -iname '*.jpg' 2>/dev/null | LC_ALL=C sort | head -n 1)"
  [ -n "$source" ] || { echo "no JPEG among Debian's wallpapers" >&2; return 1; }
  /usr/bin/convert "$source" -resize '3840x2160!' -quality 92 "$dir/big.jpg"
  local i
  for i in $(seq -w 1 50); do cp "$dir/big.jpg" "$dir/src/p$i.jpg"; done
  build/native-release/cab_probe pack "$dir/Data/Bench.RXS" "$dir/src"/p*.jpg >/dev/null
  rm -rf "$dir/src"
  echo "== one automatic change of a 3840x2160 JPEG ($(basename "$source") enlarged) from a"
  echo "   collection of 50, under Wine in a virtual desktop on Xvfb; $runs runs"
  # The prefix is made (with its fonts) before a path is translated in it.
  wine_prepare
  local data_w
  data_w="$(winepath -w "$dir/Data")"
  run_in_desktop wallpaper win_wallpaper.exe $(( runs * 100 + 600 )) "$data_w"
  wine_finish
  echo "== the same picture set by xwallpaper --zoom and feh --bg-fill on Xvfb; $runs runs"
  source scripts/display.sh
  display_start || exit 1
  hyperfine --style basic --warmup 2 --runs "$runs" \
    -n "xwallpaper --zoom" "xwallpaper --zoom '$dir/big.jpg'" \
    -n "feh --bg-fill" "feh --no-fehbg --bg-fill '$dir/big.jpg'" \
    --export-json "$dir/x11.json"
  display_stop
}

bench_thumbnails() {
  local convert=/usr/bin/convert vips
  vips="$(command -v vipsthumbnail || true)"
  # ImageMagick's own convert, by its full path: one found first on PATH may be something else.
  if [ ! -x "$convert" ] || ! "$convert" -version 2>/dev/null | grep -q ImageMagick; then
    echo "thumbnails: ImageMagick's $convert is missing: run \`make setup\` (package imagemagick)" >&2
    return 1
  fi
  if [ -z "$vips" ]; then
    echo "thumbnails: vipsthumbnail is missing: run \`make setup\` (package libvips-tools)" >&2
    return 1
  fi
  local -a pictures
  mapfile -t pictures < <(find /usr/share/backgrounds /usr/share/wallpapers -type f -iname '*.jpg' 2>/dev/null | LC_ALL=C sort)
  if [ ${#pictures[@]} -lt 60 ]; then
    echo "thumbnails: ${#pictures[@]} JPEGs among Debian's wallpapers, 60 wanted: run \`make setup\` (${wallpaper_packages[*]})" >&2
    return 1
  fi
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target quorvane cab_probe win_thumbnails >/dev/null
  local dir="$root/build/bench/thumbnails"
  rm -rf "$dir"
  mkdir -p "$dir/src" "$dir/out"
  # One flat folder, the pictures numbered in a fixed order, since several share a name.
  local n=0 f
  for f in "${pictures[@]}"; do
    n=$((n + 1))
    cp "$f" "$dir/src/$(printf '%03d' "$n")-$(basename "$f" | tr ' ' '_')"
  done
  local files=("$dir/src"/*)
  local megapixels
  megapixels="$(/usr/bin/identify -format '%w %h\n' "${files[@]}" 2>/dev/null |
    awk '{ s += $1 * $2 } END { printf "%.1f", s / NR / 1e6 }')"

  source scripts/wine-env.sh
  wine_prepare
  # The program's data folder holds this collection alone while the run lasts.
  local data_w data_u kept="$dir/kept"
  if ! wine_data_folder; then
    echo "thumbnails: the program's data folder could not be found" >&2
    return 1
  fi
  mkdir -p "$data_u" "$kept"
  local name
  for name in "$data_u"/*.RXS "$data_u"/Files.ini "$data_u"/WP.bmp "$data_u"/Temp.*; do
    [ -e "$name" ] && mv "$name" "$kept/"
  done
  local -a files_w=()
  for f in "${files[@]}"; do files_w+=("$(winepath -w "$f" 2>/dev/null)"); done
  local status=0
  if ! wine build/windows/cab_probe.exe pack "$data_w\\Thumbnails.RXS" "${files_w[@]}" >/dev/null 2>&1 </dev/null; then
    echo "thumbnails: the collection could not be packed" >&2
    status=1
  else
    echo "== the wallpaper page's strip filled with $n JPEGs of Debian's wallpaper packages (mean"
    echo "   $megapixels Mpixel), click on the node to the last thumbnail drawn; $runs runs after a"
    echo "   warm-up, under Wine in a virtual desktop on Xvfb"
    run_in_desktop thumbnails win_thumbnails.exe $(( runs * 1200 + 1200 )) "$n" | tee "$dir/ours.txt" || status=1
  fi
  rm -rf "${data_u:?}/Thumbnails.RXS" "${data_u:?}/Thumbnails"
  for name in "$kept"/*; do [ -e "$name" ] && mv "$name" "$data_u/"; done
  rm -rf "$kept"
  wine_finish
  [ "$status" = 0 ] || return 1

  local tool_runs=$(( runs < 3 ? runs : 3 ))
  echo "== the same $n files, one process a picture: ImageMagick's convert -thumbnail 64x64 and"
  echo "   vipsthumbnail -s 64x64; $tool_runs runs"
  printf '%s\n' "${files[@]}" >"$dir/list.txt"
  hyperfine --style basic --warmup 1 --runs "$tool_runs" \
    -n "convert -thumbnail 64x64" \
    "while IFS= read -r f; do $convert \"\$f\" -thumbnail 64x64 '$dir/out/convert.png'; done <'$dir/list.txt'" \
    -n "vipsthumbnail -s 64x64" \
    "while IFS= read -r f; do $vips \"\$f\" -s 64x64 -o '$dir/out/vips.png'; done <'$dir/list.txt'" \
    --export-json "$dir/tools.json"
  local ours
  ours="$(awk '$1 == "ms_per_picture" { print $2 }' "$dir/ours.txt")"
  grep -o '"median": *[0-9.e+-]*' "$dir/tools.json" | awk -v n="$n" -v ours="$ours" -F': *' '
    NR == 1 { convert = $2 * 1000 / n } NR == 2 { vips = $2 * 1000 / n }
    END {
      printf "a picture: quorvane %.1f ms, convert %.1f ms, vipsthumbnail %.1f ms\n", ours, convert, vips
      printf "ratios: quorvane / convert %.2f, quorvane / vipsthumbnail %.2f\n", ours / convert, ours / vips
    }'
  rm -rf "$dir/src" "$dir/out"
}

bench_editor() {
  install_missing "${wallpaper_packages[@]}"
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target win_editor >/dev/null
  local dir="$root/build/bench/editor"
  rm -rf "$dir"
  mkdir -p "$dir/src" "$dir/Data"
  # Sixty JPEGs in one flat folder, numbered in a fixed order, since several share a name.
  local n=0 f
  while IFS= read -r f; do
    n=$((n + 1))
    cp "$f" "$dir/src/$(printf '%03d' "$n")-$(basename "$f" | tr ' ' '_')"
  done < <(find /usr/share/backgrounds /usr/share/wallpapers -type f -iname '*.jpg' 2>/dev/null | LC_ALL=C sort | head -n 60)
  local bytes
  bytes="$(cat "$dir/src"/* | wc -c)"
  echo "== the collection editor's OK on $n JPEGs, $((bytes / 1000000)) MB, under Wine in a"
  echo "   virtual desktop on Xvfb; $runs runs"
  # The paths are the project's own prefix's, made (with its fonts) before they are translated.
  wine_prepare
  local figures data_w src_w
  data_w="$(winepath -w "$dir/Data")"
  src_w="$(winepath -w "$dir/src")"
  figures="$(run_in_desktop editor win_editor.exe $(( runs * 100 + 600 )) "$data_w" "$src_w")"
  wine_finish
  printf '%s\n' "$figures" | grep -v '^median-ms'
  echo "== gcab -c -z of the same files, natively; $runs runs"
  (cd "$dir/src" && hyperfine --style basic --warmup 1 --runs "$runs" \
    --prepare "rm -f '$dir/gcab.cab'" \
    -n "gcab -c -z" "gcab -c -z '$dir/gcab.cab' *" \
    --export-json "$dir/gcab.json")
  local ours gcab
  ours="$(printf '%s\n' "$figures" | awk '/^median-ms/ {print $2}')"
  gcab="$(grep -o '"median": *[0-9.e+-]*' "$dir/gcab.json" | head -1 | awk -F': *' '{print $2 * 1000}')"
  awk -v o="$ours" -v g="$gcab" -v b="$bytes" 'BEGIN {
    printf "OK %.1f ms (%.0f MB/s), gcab -c -z %.1f ms (%.0f MB/s): gcab takes %.2f times as long\n",
      o, b / o / 1000, g, b / g / 1000, g / o }'
  rm -rf "$dir/src"
}

case "$what" in
  import) bench_import ;;
  resample) bench_resample ;;
  startup) bench_startup ;;
  switch) bench_switch ;;
  cabinet) bench_cabinet ;;
  folders) bench_folders ;;
  wallpaper) bench_wallpaper ;;
  thumbnails) bench_thumbnails ;;
  editor) bench_editor ;;
  all) bench_resample; bench_import; bench_startup; bench_switch; bench_cabinet; bench_wallpaper; bench_thumbnails; bench_folders; bench_editor ;;
  *) echo "unknown benchmark: $what" >&2; exit 2 ;;
esac
