#!/usr/bin/env bash
# Draws the program icon from res/quorvane-icon.mvg into res/quorvane.ico (16, 24, 32, 48 and
# 256 pixels). Run it again after changing the drawing. ImageMagick's own tool is called by its
# full path, since a `convert` found first on PATH may be another program.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
magick=/usr/bin/convert
if [ ! -x "$magick" ]; then
  echo "make-icon: ImageMagick is missing (apt-get install imagemagick)" >&2
  exit 1
fi
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
"$magick" -background none -density 96 "MVG:$root/res/quorvane-icon.mvg" "PNG32:$work/icon-256.png"
"$magick" "$work/icon-256.png" -define icon:auto-resize=256,48,32,24,16 "$root/res/quorvane.ico"
echo "icon: $root/res/quorvane.ico"
