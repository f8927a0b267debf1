#!/usr/bin/env bash
# Makes the help's pictures, help/pictures/*.png, from the end-to-end run's screenshots, as
# help/pictures.txt lists them: each cut to its part of the screen and reduced to its width.
#
#   bash scripts/make-help-pictures.sh [<screenshot folder>]     # default build/screenshots
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
shots="${1:-$root/build/screenshots}"
out="$root/help/pictures"
magick=/usr/bin/convert
mkdir -p "$out"
status=0
while read -r picture shot part width; do
  case "$picture" in ''|'#'*) continue ;; esac
  if [ ! -f "$shots/$shot" ]; then
    echo "make-help-pictures: $shots/$shot is missing; $picture is left as it was" >&2
    status=1
    continue
  fi
  case "$part" in
    window) crop=(-crop 750x570+265+115 +repage) ;;
    screen) crop=() ;;
    *) crop=(-crop "$part" +repage) ;;
  esac
  "$magick" "$shots/$shot" "${crop[@]}" -resize "${width}x" -strip -colors 256 "PNG8:$out/$picture"
  echo "$picture <- $shot"
done <"$root/help/pictures.txt"
exit $status
