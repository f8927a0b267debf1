#!/usr/bin/env bash
# Checks that every source file includes only headers of its own ring and of the rings below it:
#
#   base        base
#   codecs      base codecs
#   controls    base, the control model (src/ui, not its bindings)
#   ports       base codecs controls, the ports (src/platform, not its adapters)
#   system      base codecs controls ports, and the system's own folders
#   adapters    base codecs controls ports, and their own build's adapters
#   bindings    base controls ports, the Windows adapters, and the bindings
#   app         anything
#
# Prints each include that reaches above its ring and fails if there is one.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root/src"

system="core stores icons appearance wallpaper drawing"
# The folders each ring may include from. A folder given with a trailing slash allows its files
# only, not its sub-folders.
allowed_for() {
  case "$1" in
    base/*) echo "base/" ;;
    codecs/*) echo "base/ codecs/" ;;
    ui/win32/*) echo "base/ ui/ ui/win32/ platform/ platform/win32/" ;;
    ui/*) echo "base/ ui/" ;;
    platform/win32/*) echo "base/ codecs/ ui/ platform/ platform/win32/" ;;
    platform/portable/*) echo "base/ codecs/ ui/ platform/ platform/portable/" ;;
    platform/*) echo "base/ codecs/ ui/ platform/" ;;
    app/*) echo "*" ;;
    *) local folders="base/ codecs/ ui/ platform/"
       for f in $system; do folders="$folders $f/"; done
       echo "$folders" ;;
  esac
}

bad=0
checked=0
while IFS= read -r file; do
  checked=$((checked + 1))
  allowed="$(allowed_for "$file")"
  [ "$allowed" = "*" ] && continue
  while IFS= read -r included; do
    folder="${included%/*}/"
    ok=0
    for a in $allowed; do
      if [ "$folder" = "$a" ]; then ok=1; break; fi
    done
    if [ $ok -eq 0 ]; then
      echo "rings: src/$file includes \"$included\", above its ring" >&2
      bad=$((bad + 1))
    fi
  done < <(sed -n 's/^#include "\([^"]*\/[^"]*\)".*/\1/p' "$file")
done < <(find . -name '*.h' -o -name '*.cpp' | sed 's#^\./##' | sort)

echo "rings: $checked files, $bad includes above their ring"
[ $bad -eq 0 ]
