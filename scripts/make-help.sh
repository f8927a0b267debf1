#!/usr/bin/env bash
# Compiles the help, orlavine.chm, from its sources in help/ (the pages, the contents, the index,
# the pictures) with chmcmd, Debian's CHM compiler (package fp-utils).
#
#   bash scripts/make-help.sh <help sources> <work folder> <orlavine.chm to write>
#
# Before compiling it checks that every page, picture and link the sources name is there, and
# that every page is in the project's file list, so that the help never shows a missing page or
# picture; and after, that chmcmd wrote the file.
set -euo pipefail
sources="$1"
work="$2"
output="$3"

fail() {
  echo "make-help: $1" >&2
  exit 1
}

command -v chmcmd >/dev/null || fail "chmcmd is missing: install Debian's fp-utils (make setup)"
[ -f "$sources/orlavine.hhp" ] || fail "$sources/orlavine.hhp is missing"

rm -rf "$work"
mkdir -p "$work"
cp -r "$sources"/. "$work"/

cd "$work"
# Every page named by the contents or the index, and every local link or picture of a page.
missing=0
listed="$(sed -n '/^\[FILES\]/,/^\[/p' orlavine.hhp | grep -v '^\[' | tr -d '\r' | grep -v '^$' || true)"
for page in *.html; do
  grep -qxF "$page" <<<"$listed" || { echo "make-help: $page is not in the [FILES] of orlavine.hhp" >&2; missing=1; }
done
for file in orlavine.hhc orlavine.hhk *.html; do
  for target in $(grep -oE '(href|src|value)="[^"#:]+\.(html|png|css)' "$file" | sed -E 's/^[a-z]+="//'); do
    [ -f "$target" ] || { echo "make-help: $file names $target, which is missing" >&2; missing=1; }
  done
done
[ "$missing" = 0 ] || fail "the help's sources are incomplete"

rm -f orlavine.chm
chmcmd --verbosity 1 orlavine.hhp >chmcmd.log 2>&1 || { cat chmcmd.log >&2; fail "chmcmd failed"; }
[ -s orlavine.chm ] || { cat chmcmd.log >&2; fail "chmcmd wrote no orlavine.chm"; }
mv orlavine.chm "$output"
