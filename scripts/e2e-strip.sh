# The wallpaper page's end-to-end run, sourced by scripts/e2e.sh (which gives it `drive`,
# `report`, $bin, $work and $shots_w). Its collection, "Strip", is made of pictures from Debian's
# wallpaper packages that nobody here made (mate-backgrounds, plasma-workspace-wallpapers,
# ukui-wallpapers; scripts/setup.sh installs them), of mixed sizes, and of mixed kinds: JPEGs as
# they come, one picture as a Windows bitmap, one as a GIF, one as a bitmap named .dib (the kind
# the test's viewer is registered for), an icon from Debian's clang tools, a .pcx the strip must
# not show and a file named as a JPEG that holds text. They are packed by the Windows build's own
# packer into the program's data folder; the manifest lists the strip's pictures in its order.
# The driver itself stands in as the viewer of .dib files while the run lasts.
strip_run() {
  local -a mate plasma small
  mapfile -t mate < <(find /usr/share/backgrounds/mate -type f -iname '*.jpg' 2>/dev/null | sort | head -9)
  # One picture of each of six plasma wallpapers (a wallpaper may have a light and a dark one).
  mapfile -t plasma < <(find /usr/share/wallpapers -path '*/contents/images/*' -iname '*.jpg' 2>/dev/null | sort | awk -F/ '!seen[$5]++' | head -6)
  mapfile -t small < <(find /usr/share/wallpapers -name 'screenshot.jpg' 2>/dev/null | sort | head -6)
  local icon=/usr/share/clang/scan-view-14/share/bugcatcher.ico
  [ -f "$icon" ] || icon="$(find /usr/share -name '*.ico' -size -200k 2>/dev/null | head -1)"
  if [ ${#mate[@]} -lt 9 ] || [ ${#plasma[@]} -lt 6 ] || [ ${#small[@]} -lt 6 ] || [ -z "$icon" ]; then
    report+="FAIL wallpaper page: Debian's wallpaper pictures are missing: run \`make setup\`"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  local stage="$work/strip-stage" manifest="$work/strip-manifest.txt" record="$work/strip-viewer.txt"
  rm -rf "$stage"
  mkdir -p "$stage"
  local picture name
  for picture in "${mate[@]}"; do cp "$picture" "$stage/$(basename "$picture")"; done
  for picture in "${plasma[@]}"; do
    name="${picture#/usr/share/wallpapers/}"
    cp "$picture" "$stage/${name%%/*}.jpg"
  done
  # Three small ones as they come, and three in the other kinds.
  for picture in "${small[@]:0:3}"; do
    name="${picture#/usr/share/wallpapers/}"
    cp "$picture" "$stage/${name%%/*}-small.jpg"
  done
  name="${small[3]#/usr/share/wallpapers/}"
  "$magick" "${small[3]}" "BMP3:$stage/${name%%/*}.bmp"
  name="${small[4]#/usr/share/wallpapers/}"
  "$magick" "${small[4]}" "$stage/${name%%/*}.gif"
  name="${small[5]#/usr/share/wallpapers/}"
  "$magick" "${small[5]}" "BMP3:$stage/${name%%/*}.dib"
  cp "$icon" "$stage/$(basename "$icon")"
  "$magick" "${mate[0]}" "$stage/Pcx-$(basename "${mate[0]%.*}").pcx"
  printf 'This file is named as a JPEG picture but holds text.\r\n' >"$stage/Broken.jpg"

  # The strip's order: alphabetical without regard to case, the pattern's kinds only.
  {
    printf 'collection\tStrip\n'
    for picture in "$stage"/*; do
      name="$(basename "$picture")"
      case "${name,,}" in
        broken.jpg|*.pcx) continue ;;
      esac
      local size
      size="$(/usr/bin/identify -format '%w %h\n' "$picture" 2>/dev/null | sort -n -r | head -1)"
      printf '%s\t%s\t%s\t%s\t%s\n' "${name,,}" "$name" "${size% *}" "${size#* }" "$(stat -c %s "$picture")"
    done | LC_ALL=C sort -t $'\t' -k1,1 | cut -f2-
  } >"$manifest"

  local data_w data_u kept="$work/strip-kept"
  if ! wine_data_folder; then
    report+="FAIL wallpaper page: the data folder could not be found"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  mkdir -p "$data_u"
  rm -rf "$kept"
  mkdir -p "$kept"
  # Only the test's collection is in the data folder while the run lasts.
  for name in "$data_u"/*.RXS "$data_u"/Files.ini "$data_u"/WP.bmp "$data_u"/Temp.*; do
    [ -e "$name" ] && mv "$name" "$kept/"
  done
  local -a files=()
  for picture in "$stage"/*; do files+=("$(winepath -w "$picture" 2>/dev/null)"); done
  if ! wine "$bin/cab_probe.exe" pack "$data_w\\Strip.RXS" "${files[@]}" >>"$work/wine.log" 2>&1 </dev/null; then
    report+="FAIL wallpaper page: cab_probe.exe could not pack the collection"$'\n'"0 passed, 1 failed"$'\n'
  else
    local driver_w record_w
    driver_w="$(winepath -w "$bin/e2e_driver.exe" 2>/dev/null)"
    record_w="$(winepath -w "$record" 2>/dev/null)"
    wine reg export 'HKCR\.dib' "$work/strip-dib.reg" /y >/dev/null 2>&1 </dev/null || rm -f "$work/strip-dib.reg"
    wine reg add 'HKCR\.dib' /ve /d QuorvaneTestViewer /f >/dev/null 2>&1 </dev/null
    wine reg add 'HKCR\QuorvaneTestViewer\shell\open\command' /ve \
      /d "\"$driver_w\" viewer \"$record_w\" \"%1\"" /f >/dev/null 2>&1 </dev/null
    echo "collection Strip: $(($(wc -l <"$manifest") - 1)) pictures in the strip, a .pcx and an undecodable file besides"
    drive "$work/wallpaper-page.txt" wallpaper-page "$shots_w" \
      "$(winepath -w "$manifest" 2>/dev/null)" "$record_w"
    wine reg delete 'HKCR\QuorvaneTestViewer' /f >/dev/null 2>&1 </dev/null
    wine reg delete 'HKCR\.dib' /f >/dev/null 2>&1 </dev/null
    [ -f "$work/strip-dib.reg" ] && wine reg import "$work/strip-dib.reg" >/dev/null 2>&1 </dev/null
  fi
  rm -rf "${data_u:?}/Strip.RXS" "${data_u:?}/Strip" "${data_u:?}/WP.bmp" "${data_u:?}"/Temp.*
  for name in "$kept"/*; do [ -e "$name" ] && mv "$name" "$data_u/"; done
  rm -rf "$kept" "$stage"
}
