#!/usr/bin/env bash
# Installs, with apt-get, whatever the builds, the tests, the Wine runs and the benchmarks need and
# this machine lacks. Safe to run again: it does nothing when everything is there.
set -euo pipefail

packages=(
  cmake make g++ googletest libgtest-dev libgmock-dev
  g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev
  wine wine64 xvfb xauth x11-utils fonts-wine imagemagick
  cabextract gcab libgcab-dev libz-mingw-w64-dev hyperfine
  libturbojpeg0-dev libpng-dev libgif-dev
  # The help's compiler (chmcmd) and the installer's (makensis).
  fp-utils nsis
  # Real pictures nobody here made. The tests take theirs from mate-backgrounds
  # (/usr/share/backgrounds/mate/<theme>/, JPEGs and PNGs); the benchmarks take the JPEGs of all
  # three (ukui-wallpapers: /usr/share/backgrounds/, plasma-workspace-wallpapers:
  # /usr/share/wallpapers/) and set a wallpaper with xwallpaper and feh for comparison.
  mate-backgrounds ukui-wallpapers plasma-workspace-wallpapers xwallpaper feh
  # The thumbnail benchmark measures the strip against ImageMagick's convert and vipsthumbnail;
  # the automatic change's decode is set beside djpeg's.
  libvips-tools libjpeg-turbo-progs
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "setup: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
