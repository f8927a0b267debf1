# The collection editor's end-to-end run, sourced by scripts/e2e.sh (which gives it `drive`,
# `report`, $bin, $work and $shots_w). The pictures are four JPEGs of one folder of Debian's
# mate-backgrounds (scripts/setup.sh installs it), chosen in the platform's own open dialog by the
# driver as a person chooses them. The archive is copied by the driver after the creation and
# after the change; each copy must list, with cabextract, exactly the pictures the driver says.
# A bitmap made from one of them is opened from the preview by a double click, with the driver
# registered as the viewer of bitmaps for the run.
# What the data folder held of the run's names is put back afterwards.
editor_run() {
  local nature=/usr/share/backgrounds/mate/nature
  local -a pictures
  mapfile -t pictures < <(ls -S -r "$nature"/*.jpg 2>/dev/null | head -4)
  if [ ${#pictures[@]} -lt 4 ]; then
    report+="FAIL collection editor: fewer than four JPEGs in $nature: run \`make setup\`"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  local manifest="$work/editor-manifest.txt" copies="$work/editor-archives"
  local kept="$work/editor-kept" folder_w picture name
  folder_w="$(winepath -w "$nature" 2>/dev/null)"
  : >"$manifest"
  for picture in "${pictures[@]}"; do
    printf '%s\t%s\n' "$folder_w" "$(basename "$picture")" >>"$manifest"
  done
  rm -rf "$copies" "$kept"
  mkdir -p "$copies" "$kept"
  local data_w data_u
  if ! wine_data_folder; then
    report+="FAIL collection editor: the data folder could not be found"$'\n'"0 passed, 1 failed"$'\n'
    return 0
  fi
  mkdir -p "$data_u"
  for name in "Debian Pictures" "Debian Pictures.RXS" "Already Unpacked" "Already Unpacked.RXS"; do
    [ -e "$data_u/$name" ] && mv "$data_u/$name" "$kept/"
  done
  # The preview's double click: a bitmap made from the first picture, and the driver itself
  # standing in as the viewer of bitmaps while the run lasts (the old association put back).
  local viewed="$work/editor-viewed" record="$work/editor-viewer.txt" driver_w record_w
  rm -rf "$viewed" "$record"
  mkdir -p "$viewed"
  "$magick" "${pictures[0]}" -resize '320x200!' -alpha off -type TrueColor "BMP3:$viewed/Preview.bmp"
  driver_w="$(winepath -w "$bin/e2e_driver.exe" 2>/dev/null)"
  record_w="$(winepath -w "$record" 2>/dev/null)"
  wine reg export 'HKCR\.bmp' "$work/editor-bmp.reg" /y >/dev/null 2>&1 </dev/null || rm -f "$work/editor-bmp.reg"
  wine reg add 'HKCR\.bmp' /ve /d QuorvaneEditorViewer /f >/dev/null 2>&1 </dev/null
  wine reg add 'HKCR\QuorvaneEditorViewer\shell\open\command' /ve \
    /d "\"$driver_w\" viewer \"$record_w\" \"%1\"" /f >/dev/null 2>&1 </dev/null
  drive "$work/collection-editor.txt" collection-editor "$shots_w" \
    "$(winepath -w "$manifest" 2>/dev/null)" "$(winepath -w "$copies" 2>/dev/null)" \
    "$record_w" "$(winepath -w "$viewed/Preview.bmp" 2>/dev/null)"
  wine reg delete 'HKCR\QuorvaneEditorViewer' /f >/dev/null 2>&1 </dev/null
  wine reg delete 'HKCR\.bmp' /f >/dev/null 2>&1 </dev/null
  [ -f "$work/editor-bmp.reg" ] && wine reg import "$work/editor-bmp.reg" >/dev/null 2>&1 </dev/null
  rm -rf "$viewed" "$record" "$work/editor-bmp.reg"
  # The archives as cabextract lists them, against the pictures the driver chose.
  local copy listed wanted passed=0 failed=0 lines=""
  for copy in created modified; do
    if [ ! -f "$copies/$copy.RXS" ] || [ ! -f "$copies/$copy.txt" ]; then
      lines+="FAIL collection editor: the $copy archive was not kept"$'\n'
      failed=$((failed + 1))
      continue
    fi
    listed="$(cabextract -l "$copies/$copy.RXS" 2>/dev/null | awk -F' [|] ' 'NF == 3 && $1 ~ /[0-9]/ {print $3}' | LC_ALL=C sort)"
    wanted="$(tr -d '\r' <"$copies/$copy.txt" | LC_ALL=C sort)"
    if [ -n "$wanted" ] && [ "$listed" = "$wanted" ]; then
      lines+="ok   collection editor: cabextract lists the $copy archive's pictures ($(echo $listed))"$'\n'
      passed=$((passed + 1))
    else
      lines+="FAIL collection editor: cabextract lists ($(echo $listed)) in the $copy archive, not ($(echo $wanted))"$'\n'
      failed=$((failed + 1))
    fi
  done
  report+="$lines$passed passed, $failed failed"$'\n'
  for name in "Debian Pictures" "Debian Pictures.RXS" "Already Unpacked" "Already Unpacked.RXS"; do
    rm -rf "${data_u:?}/$name"
    [ -e "$kept/$name" ] && mv "$kept/$name" "$data_u/"
  done
  rm -rf "$kept"
}
