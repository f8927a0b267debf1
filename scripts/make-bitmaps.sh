#!/usr/bin/env bash
# Draws the bitmap resources of quorvane.exe: the pictures of the page commands, the command
# buttons, the wallpaper page's buttons, the close and minimise pictures, the zone strip of the
# icons page, the slide show's buttons, and the window's design pictures (its background, the top
# icons, the folder tree's root picture and the notification picture).
#
#   scripts/make-bitmaps.sh OUTDIR
#
# For each picture it writes a drawing in ImageMagick's vector format (OUTDIR/mvg/N.mvg) from the
# tables below and the glyphs in res/art/, then turns it into OUTDIR/N.bmp: a 24-bit,
# uncompressed Windows bitmap of exactly the pixel size of the control that shows it. The build
# runs this script; res/bitmaps.rc names the files by number.
#
# One look for all: a light page, one accent blue, dark text in DejaVu Sans, drawn at one pixel
# per unit (no scaling, no blur). Resting pictures are light, hover pictures are filled with the
# accent, disabled and not-active pictures are grey.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
magick=/usr/bin/convert
if [ ! -x "$magick" ]; then
  echo "make-bitmaps: ImageMagick is missing (apt-get install imagemagick)" >&2
  exit 1
fi
out="${1:-$root/build/bitmaps}"
art="$root/res/art"
mkdir -p "$out/mvg"

# --- the palette ------------------------------------------------------------------------------
window_bg='#f5f5f5'     # the window's own background, behind the page commands and title pictures
page_bg='#ffffff'       # the pages and the command frames
accent='#2563b8'
accent_hover='#e8f0fb'  # the light tint of a page command under the mouse
accent_text='#1d4f91'
text_dark='#3f4652'
grey_fill='#eceef1'
grey_line='#d6dae0'
grey_text='#9aa1ab'
close_red='#d9453d'
slide_bg='#e0e0e0'      # the slide show's control panel
frame_line='#c3c8d0'    # the window's hairline frame

font='DejaVu-Sans'
font_bold='DejaVu-Sans-Bold'

# --- drawing helpers ----------------------------------------------------------------------------
# Each picture is built in $mvg, then written and converted by `emit`.
mvg=''
width=0
height=0

# begin W H BACKGROUND: a new picture of W by H pixels on a plain background.
begin() {
  width=$1 height=$2
  mvg="viewbox 0 0 $1 $2
stroke none
fill '$3'
rectangle 0,0 $1,$2
stroke-antialias 1
text-antialias 1
"
}

add() { mvg+="$*"$'\n'; }

# text FONT SIZE COLOUR CX CY TEXT: the text centred on the point CX,CY.
text() {
  local dx dy
  dx=$(awk -v c="$4" -v w="$width" 'BEGIN { printf "%g", c - w / 2 }')
  dy=$(awk -v c="$5" -v h="$height" 'BEGIN { printf "%g", c - h / 2 }')
  add "push graphic-context"
  add "font '$1'"
  add "font-size $2"
  add "stroke none"
  add "fill '$3'"
  add "gravity Center"
  add "text $dx,$dy '$6'"
  add "pop graphic-context"
}

# text_left FONT SIZE COLOUR X TEXT: the text from X, centred in height.
text_left() {
  add "push graphic-context"
  add "font '$1'"
  add "font-size $2"
  add "stroke none"
  add "fill '$3'"
  add "gravity West"
  add "text $4,0 '$5'"
  add "pop graphic-context"
}

# glyph NAME X Y GLYPH DETAIL: res/art/glyph-NAME.mvg, a 20 by 20 drawing, placed at X,Y in the
# colours GLYPH and DETAIL.
glyph() {
  add "push graphic-context"
  add "translate $2,$3"
  add "$(grep -v '^#' "$art/glyph-$1.mvg" | sed -e "s/GLYPH/'$4'/g" -e "s/DETAIL/'$5'/g")"
  add "pop graphic-context"
}

# emit N: writes the picture as mvg/N.mvg, and draws it into N.bmp (the drawing goes on the
# command line: this ImageMagick's policy refuses to read a drawing from a file with "@").
emit() {
  printf '%s' "$mvg" >"$out/mvg/$1.mvg"
  "$magick" -size "${width}x${height}" xc:white -density 72 -draw "$mvg" \
    -alpha off -type TrueColor -compress None "BMP3:$out/$1.bmp"
}

# --- page commands, 184 by 52, on the window ----------------------------------------------------
# number, state, glyph, caption
menu_table=(
  "122 active pelmora Pelmora"
  "121 hover pelmora Pelmora"
  "120 off pelmora Pelmora"
  "119 active filesystem File_System"
  "118 hover filesystem File_System"
  "117 off filesystem File_System"
  "104 active appearance Appearance"
  "103 hover appearance Appearance"
  "102 off appearance Appearance"
  "101 active wallpaper Wallpaper"
  "128 hover wallpaper Wallpaper"
  "127 off wallpaper Wallpaper"
)
for row in "${menu_table[@]}"; do
  read -r number state art_name caption <<<"$row"
  caption="${caption//_/ }"
  begin 184 52 "$window_bg"
  case "$state" in
    active)
      add "fill '$accent'"
      add "roundrectangle 0,0 183,51 6,6"
      glyph "$art_name" 16 16 '#ffffff' "$accent"
      text_left "$font_bold" 14 '#ffffff' 48 "$caption"
      # A small chevron: this is the page that is on.
      add "push graphic-context"
      add "fill none"
      add "stroke '#ffffff'"
      add "stroke-width 2"
      add "stroke-linecap round"
      add "stroke-linejoin round"
      add "polyline 163,20 169,26 163,32"
      add "pop graphic-context"
      ;;
    hover)
      add "fill '$accent_hover'"
      add "stroke '$accent'"
      add "stroke-width 1"
      add "roundrectangle 0.5,0.5 182.5,50.5 6,6"
      add "stroke none"
      glyph "$art_name" 16 16 "$accent" "$accent_hover"
      text_left "$font_bold" 14 "$accent_text" 48 "$caption"
      ;;
    off)
      add "fill '$page_bg'"
      add "stroke '$grey_line'"
      add "stroke-width 1"
      add "roundrectangle 0.5,0.5 182.5,50.5 6,6"
      add "stroke none"
      glyph "$art_name" 16 16 "$grey_text" "$page_bg"
      text_left "$font_bold" 14 "$text_dark" 48 "$caption"
      ;;
  esac
  emit "$number"
done

# --- command buttons, 120 by 25, on the command frames -------------------------------------------
# number, state, caption
button_table=(
  "110 normal Change"
  "109 hover Change"
  "108 disabled Change"
  "125 normal Reset"
  "124 hover Reset"
  "123 disabled Reset"
  "114 normal Default"
  "113 hover Default"
  "112 disabled Default"
  "107 normal Apply"
  "106 hover Apply"
  "105 disabled Apply"
  "136 normal Set_as_Wallpaper"
  "135 hover Set_as_Wallpaper"
  "134 normal Settings"
  "140 hover Settings"
  "138 normal Slide_Show"
  "137 hover Slide_Show"
)
for row in "${button_table[@]}"; do
  read -r number state caption <<<"$row"
  caption="${caption//_/ }"
  begin 120 25 "$page_bg"
  case "$state" in
    normal)
      add "fill '$page_bg'"
      add "stroke '$accent'"
      add "stroke-width 1"
      add "roundrectangle 0.5,0.5 118.5,23.5 4,4"
      add "stroke none"
      text "$font_bold" 11 "$accent_text" 60 12.5 "$caption"
      ;;
    hover)
      add "fill '$accent'"
      add "roundrectangle 0,0 119,24 4,4"
      text "$font_bold" 11 '#ffffff' 60 12.5 "$caption"
      ;;
    disabled)
      add "fill '$grey_fill'"
      add "stroke '$grey_line'"
      add "stroke-width 1"
      add "roundrectangle 0.5,0.5 118.5,23.5 4,4"
      add "stroke none"
      text "$font_bold" 11 "$grey_text" 60 12.5 "$caption"
      ;;
  esac
  emit "$number"
done

# --- close and minimise, 22 by 22, on the window -------------------------------------------------
for row in "142 close normal" "143 close hover" "146 min normal" "147 min hover"; do
  read -r number kind state <<<"$row"
  begin 22 22 "$window_bg"
  mark="$text_dark"
  if [ "$state" = hover ]; then
    if [ "$kind" = close ]; then add "fill '$close_red'"; else add "fill '$accent'"; fi
    add "roundrectangle 0,0 21,21 4,4"
    mark='#ffffff'
  fi
  if [ "$kind" = close ]; then
    add "fill none"
    add "stroke '$mark'"
    add "stroke-width 1.8"
    add "stroke-linecap round"
    add "line 7,7 15,15"
    add "line 15,7 7,15"
  else
    add "fill '$mark'"
    add "rectangle 6,13 16,15"
  fi
  emit "$number"
done

# --- the zone strip of the icons page, 456 by 24, on the page ------------------------------------
# The four zones lie side by side, with plain gaps between them; each picture has one zone on.
zone_left=(1 113 220 320)
zone_right=(99 200 313 447)
zone_caption=("Desktop" "Start Menu" "File Type" "Control Panel")
zone_picture=(131 133 132 130)
for on in 0 1 2 3; do
  begin 456 24 "$page_bg"
  for zone in 0 1 2 3; do
    left=${zone_left[$zone]} right=$((${zone_right[$zone]} - 1))
    centre=$(((left + right + 1) / 2))
    if [ "$zone" = "$on" ]; then
      add "fill '$accent'"
      add "roundrectangle $left,0 $right,23 4,4"
      text "$font_bold" 11 '#ffffff' "$centre" 12 "${zone_caption[$zone]}"
    else
      add "fill '$grey_fill'"
      add "roundrectangle $left,0 $right,23 4,4"
      text "$font" 11 "$text_dark" "$centre" 12 "${zone_caption[$zone]}"
    fi
  done
  emit "${zone_picture[$on]}"
done

# --- slide show buttons, 32 by 32, on its control panel ------------------------------------------
# The round buttons of the top icons, on the panel's face: at rest a white disc with a hairline
# ring (the window frame's grey, which stands out from the panel) and the glyph in the accent's
# dark shade; under the mouse an accent disc with a white
# glyph. The glyphs are res/art/glyph-previous.mvg, glyph-finish.mvg and glyph-next.mvg.
# number, state, glyph
slide_table=(
  "151 rest previous"
  "152 lit previous"
  "153 rest finish"
  "154 lit finish"
  "155 rest next"
  "156 lit next"
)
for row in "${slide_table[@]}"; do
  read -r number state art_name <<<"$row"
  begin 32 32 "$slide_bg"
  if [ "$state" = lit ]; then
    add "fill '$accent'"
    add "circle 15.5,15.5 15.5,1"
    glyph "$art_name" 6 6 '#ffffff' "$accent"
  else
    add "fill '$page_bg'"
    add "stroke '$frame_line'"
    add "stroke-width 1"
    add "circle 15.5,15.5 15.5,1.5"
    add "stroke none"
    glyph "$art_name" 6 6 "$accent_text" "$page_bg"
  fi
  emit "$number"
done

# --- the top icons, About and Help, 32 by 32, on the window ------------------------------------
# The window's design pictures of its top row: at rest (160 About, 162 Help) and highlighted
# under the mouse (161, 163).
for row in "160 about rest" "161 about lit" "162 help rest" "163 help lit"; do
  read -r number kind state <<<"$row"
  begin 32 32 "$window_bg"
  if [ "$state" = lit ]; then
    add "fill '$accent'"
    add "circle 15.5,15.5 15.5,1"
    mark='#ffffff'
  else
    add "fill '$page_bg'"
    add "stroke '$grey_line'"
    add "stroke-width 1"
    add "circle 15.5,15.5 15.5,1.5"
    add "stroke none"
    mark="$accent_text"
  fi
  if [ "$kind" = about ]; then
    text "$font_bold" 17 "$mark" 16 16 "i"
  else
    text "$font_bold" 17 "$mark" 16 16 "?"
  fi
  emit "$number"
done

# --- the program's mark, drawn into the window's background and the notification picture -------
# mark X Y SIZE: a rounded accent tile with a white ring and a short stroke, the letter of the
# name reduced to two lines.
mark() {
  local x=$1 y=$2 s=$3
  add "push graphic-context"
  add "translate $x,$y"
  local k
  k=$(awk -v s="$s" 'BEGIN { printf "%g", s / 40 }')
  add "scale $k,$k"
  add "fill '$accent'"
  add "roundrectangle 0,0 39,39 9,9"
  add "fill none"
  add "stroke '#ffffff'"
  add "stroke-width 4"
  add "circle 19.5,18.5 19.5,8.5"
  add "stroke-linecap round"
  add "line 24,24 31,31"
  add "pop graphic-context"
}

# --- the window's background, 750 by 570: the form's own picture ------------------------------
# The plain window colour with a hairline frame (the window has no border of its own), the mark
# and the name at the top left above the page commands, and a divider between them and the pages.
begin 750 570 "$window_bg"
add "fill none"
add "stroke '$frame_line'"
add "stroke-width 1"
add "rectangle 0.5,0.5 749.5,569.5"
add "stroke '$grey_line'"
add "line 207.5,136 207.5,520"
add "stroke none"
mark 16 34 40
add "push graphic-context"
add "font '$font_bold'"
add "font-size 19"
add "fill '$text_dark'"
add "text 66,52 'Quorvane'"
add "font '$font'"
add "font-size 10"
add "fill '$grey_text'"
add "text 67,68 'Icons and wallpapers'"
add "pop graphic-context"
emit 170

# --- Image2, 16 by 16: the root of the folder tree, a small screen on the tree's white ----------
begin 16 16 "$page_bg"
add "fill '$accent'"
add "roundrectangle 1,2 14,11 1.5,1.5"
add "fill '#ffffff'"
add "rectangle 2.5,3.5 12.5,9.5"
add "fill '$accent'"
add "rectangle 6,12 9,13"
add "rectangle 4,13.5 11,14.5"
emit 171

# --- the notification picture, 48 by 48: the mark on the page colour ---------------------------
begin 48 48 "$page_bg"
mark 4 4 40
emit 172

# --- FrmWorking's picture, 260 by 80: the mark and a word that the program is busy ------------
begin 260 80 "$page_bg"
mark 20 20 40
add "push graphic-context"
add "font '$font_bold'"
add "font-size 15"
add "fill '$text_dark'"
add "text 74,38 'Working...'"
add "font '$font'"
add "font-size 11"
add "fill '$grey_text'"
add "text 74,57 'Please wait'"
add "pop graphic-context"
emit 173

# --- the appearance page's preview icons, 128 by 128 with alpha ---------------------------------
# My Computer (174), My Documents (175) and Recycle Bin (176), drawn large and on nothing: the
# preview stands them on the desktop's own background at the size the slider shows, so these
# are 32-bit bitmaps whose clear parts let the desktop through.
# emit_clear N: as emit, keeping the alpha of a drawing made on a clear background.
emit_clear() {
  printf '%s' "$mvg" >"$out/mvg/$1.mvg"
  "$magick" -size "${width}x${height}" xc:none -density 72 -draw "$mvg" \
    -alpha on -type TrueColorAlpha -define bmp:format=bmp4 "BMP:$out/$1.bmp"
}
begin_clear() {
  width=$1 height=$2
  mvg="viewbox 0 0 $1 $2
stroke-antialias 1
text-antialias 1
"
}

shadow='#0b2545'
# My Computer: a screen on a stand, its glass in the light accent with a sheen.
begin_clear 128 128
add "fill '${shadow}40'"
add "ellipse 64,118 44,6 0,360"
add "fill '$accent'"
add "roundrectangle 10,14 118,90 9,9"
add "fill '#dbe8fa'"
add "rectangle 18,22 110,80"
add "fill '#f4f8fe'"
add "polygon 18,22 84,22 40,80 18,80"
add "fill '$accent'"
add "rectangle 54,90 74,104"
add "fill '$accent_text'"
add "roundrectangle 34,102 94,112 4,4"
add "fill '$page_bg'"
add "circle 64,85 64,86.5"
emit_clear 174

# My Documents: a folder in the accent with a sheet of lines standing in it.
begin_clear 128 128
add "fill '${shadow}40'"
add "ellipse 64,118 48,6 0,360"
add "fill '$accent_text'"
add "path 'M 10,30 Q 10,24 16,24 L 48,24 L 56,32 L 112,32 Q 118,32 118,38 L 118,104 Q 118,110 112,110 L 16,110 Q 10,110 10,104 Z'"
add "fill '$page_bg'"
add "stroke '#c3c8d0'"
add "stroke-width 1.5"
add "roundrectangle 26,14 98,86 4,4"
add "stroke '#9aa1ab'"
add "stroke-width 3"
add "stroke-linecap round"
add "line 38,30 86,30"
add "line 38,42 86,42"
add "line 38,54 76,54"
add "stroke none"
add "fill '$accent'"
add "path 'M 10,52 Q 10,46 16,46 L 112,46 Q 118,46 118,52 L 118,104 Q 118,110 112,110 L 16,110 Q 10,110 10,104 Z'"
add "fill '#ffffff30'"
add "rectangle 10,46 118,56"
emit_clear 175

# Recycle Bin: a tapered bin with ribs and its lid.
begin_clear 128 128
add "fill '${shadow}40'"
add "ellipse 64,118 38,6 0,360"
add "fill '#e9eef5'"
add "stroke '$accent_text'"
add "stroke-width 4"
add "stroke-linejoin round"
add "polygon 28,34 100,34 92,112 36,112"
add "stroke '$accent'"
add "stroke-width 5"
add "stroke-linecap round"
add "line 48,46 51,100"
add "line 64,46 64,100"
add "line 80,46 77,100"
add "stroke none"
add "fill '$accent_text'"
add "roundrectangle 20,22 108,34 5,5"
add "roundrectangle 52,14 76,24 4,4"
emit_clear 176

echo "bitmaps: $out"
