#!/usr/bin/env bash
# Collection files beside the cabinet tools people already have, across the two builds, and
# after a packer is killed half-way.
#
#   bash scripts/check-cabinet.sh native  build/native/cab_probe
#   bash scripts/check-cabinet.sh windows build/windows/cab_probe.exe [build/native/cab_probe]
#
# native:  archives the packer writes are read by cabextract and `gcab -x`; archives made by
#          `gcab -c` and `gcab -c -z` are read by the packer; a packer killed while it writes
#          leaves the previous archive byte for byte.
# windows: the same under Wine for the packer over cabinet.dll, and, with the native probe,
#          each build reads and adds to what the other wrote.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
mode="${1:?usage: check-cabinet.sh native|windows <cab_probe> [native cab_probe]}"
probe="${2:?usage: check-cabinet.sh native|windows <cab_probe> [native cab_probe]}"
native_probe="${3:-}"
[ -f "$probe" ] || { echo "check-cabinet: $probe is missing" >&2; exit 1; }

work="$(mktemp -d)"
killed=""
cleanup() {
  if [ -n "$killed" ] && kill -0 "$killed" 2>/dev/null; then kill -9 "$killed" 2>/dev/null; fi
  rm -rf "$work"
}
trap cleanup EXIT

if [ "$mode" = windows ]; then
  source "$root/scripts/wine-env.sh"
  wine_prepare
fi

# A host path as the packer of this mode takes it: under Wine through drive Z:, which is the root.
arg() {
  if [ "$mode" = windows ]; then
    printf 'Z:%s' "${1//\//\\}"
  else
    printf '%s' "$1"
  fi
}

# Runs the probe of this mode; its output goes to a file, as Wine's helpers could hold a pipe.
run() {
  local out="$work/probe.txt"
  if [ "$mode" = windows ]; then
    wine "$probe" "$@" >"$out" 2>&1 </dev/null
  else
    "$probe" "$@" >"$out" 2>&1 </dev/null
  fi
  local status=$?
  tr -d '\r' <"$out"
  return $status
}

status=0
check() {
  local what="$1"
  shift
  if "$@" >"$work/check.txt" 2>&1; then
    echo "ok: $what"
  else
    echo "FAILED: $what"
    sed 's/^/    /' "$work/check.txt"
    status=1
  fi
}

# The pictures and texts of a small collection; an empty file and a name with a blank among them.
src="$work/src"
mkdir -p "$src"
head -c 300000 /dev/urandom >"$src/bay.jpg"
head -c 50000 /dev/urandom >"$src/Sea Cliff.PNG"
seq 1 40000 | sed 's/$/ a line of text that packs well/' >"$src/notes.txt"
: >"$src/empty.txt"

same() { diff -r "$1" "$2"; }
only() { [ "$(ls "$1")" = "$2" ] && cmp "$1/$2" "$src/$2"; }

# --- what the packer writes, read by the others -------------------------------------------------
ours="$work/Ours.RXS"
run pack "$(arg "$ours")" "$(arg "$src/bay.jpg")" "$(arg "$src/Sea Cliff.PNG")" \
  "$(arg "$src/notes.txt")" "$(arg "$src/empty.txt")" >/dev/null
check "the packer writes an archive" test -s "$ours"
check "cabextract tests the archive" cabextract -q -t "$ours"
check "cabextract unpacks it" bash -c "cabextract -q -d '$work/cx' '$ours' && diff -r '$src' '$work/cx'"
check "gcab unpacks it" bash -c "mkdir -p '$work/gx' && gcab -x -C '$work/gx' '$ours' && diff -r '$src' '$work/gx'"
check "cabextract unpacks its last entry alone" bash -c \
  "cabextract -q -F empty.txt -d '$work/cx1' '$ours' && [ \"\$(ls '$work/cx1')\" = empty.txt ]"

# --- what gcab writes, read by the packer -------------------------------------------------------
(cd "$src" && gcab -c "$work/plain.cab" bay.jpg "Sea Cliff.PNG" notes.txt empty.txt)
(cd "$src" && gcab -c -z "$work/zip.cab" bay.jpg "Sea Cliff.PNG" notes.txt empty.txt)
for cab in plain zip; do
  label="gcab -c"
  [ "$cab" = zip ] && label="gcab -c -z"
  run unpack "$(arg "$work/$cab.cab")" "$(arg "$work/$cab-all")" >/dev/null
  check "the packer unpacks what $label wrote" same "$src" "$work/$cab-all"
  run unpack "$(arg "$work/$cab.cab")" "$(arg "$work/$cab-one")" notes.txt >/dev/null
  check "the packer unpacks one entry of what $label wrote" only "$work/$cab-one" notes.txt
done
# Adding to gcab's one-folder archive gives every entry a folder of its own.
head -c 20000 /dev/urandom >"$work/added.gif"
cp "$work/zip.cab" "$work/Added.RXS"
run pack "$(arg "$work/Added.RXS")" "$(arg "$work/added.gif")" >/dev/null
check "cabextract reads gcab's archive added to" bash -c \
  "cabextract -q -d '$work/added' '$work/Added.RXS' && diff -r '$src' '$work/added' -x added.gif && cmp '$work/added.gif' '$work/added/added.gif'"
check "an archive added to has a folder an entry" bash -c \
  "[ \"\$(od -An -tu2 -j26 -N2 '$work/Added.RXS' | tr -d ' ')\" = 5 ]"

# --- across the builds --------------------------------------------------------------------------
if [ "$mode" = windows ]; then
  if [ -x "$native_probe" ]; then
    check "the native packer unpacks what cabinet.dll wrote" bash -c \
      "'$native_probe' unpack '$ours' '$work/n-all' >/dev/null && diff -r '$src' '$work/n-all'"
    "$native_probe" pack "$work/Native.RXS" "$src/bay.jpg" "$src/notes.txt" "$src/empty.txt" >/dev/null
    run unpack "$(arg "$work/Native.RXS")" "$(arg "$work/w-all")" >/dev/null
    check "cabinet.dll unpacks what the native packer wrote" bash -c \
      "diff '$src/bay.jpg' '$work/w-all/bay.jpg' && diff '$src/notes.txt' '$work/w-all/notes.txt' && [ \$(ls '$work/w-all' | wc -l) = 3 ]"
    run pack "$(arg "$work/Native.RXS")" "$(arg "$src/Sea Cliff.PNG")" >/dev/null
    check "the native packer unpacks what cabinet.dll added to its archive" bash -c \
      "'$native_probe' unpack '$work/Native.RXS' '$work/n-added' >/dev/null && diff -r '$src' '$work/n-added'"
  else
    echo "note: no native cab_probe at '$native_probe'; the checks across the builds did not run"
  fi
fi

# --- a packer killed while it writes ------------------------------------------------------------
# The old archive holds the text; the new file is large and compressed, so writing it takes long
# enough to be caught in the middle: the scratch file beside the archive is there and growing.
kill_archive="$work/Kill.RXS"
run pack "$(arg "$kill_archive")" "$(arg "$src/notes.txt")" >/dev/null
before="$(md5sum <"$kill_archive")"
head -c 150000000 /dev/urandom >"$work/huge.bin"
if [ "$mode" = windows ]; then
  wine "$probe" pack "$(arg "$kill_archive")" "$(arg "$work/huge.bin")" >"$work/kill.txt" 2>&1 </dev/null &
else
  "$probe" pack "$kill_archive" "$work/huge.bin" >"$work/kill.txt" 2>&1 </dev/null &
fi
killed=$!
caught=0
for _ in $(seq 1 3000); do
  if ! kill -0 "$killed" 2>/dev/null; then break; fi
  scratch="$(find "$work" -maxdepth 1 -name 'Kill.RXS.~*' -size +1M 2>/dev/null | head -n 1)"
  if [ -n "$scratch" ]; then
    kill -9 "$killed" 2>/dev/null && caught=1
    break
  fi
  sleep 0.01
done
wait "$killed" 2>/dev/null
killed=""
check "the packer was killed while it wrote the archive" test "$caught" = 1
check "the killed packer left the previous archive byte for byte" test "$(md5sum <"$kill_archive")" = "$before"
run unpack "$(arg "$kill_archive")" "$(arg "$work/after-kill")" >/dev/null
check "the previous archive still unpacks" only "$work/after-kill" notes.txt
echo "scratch files the killed packer left: $(find "$work" -maxdepth 1 -name 'Kill.RXS.~*' | wc -l)"
rm -f "$work/huge.bin"

exit $status
