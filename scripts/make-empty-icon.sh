#!/usr/bin/env bash
# Writes res/Empty.ico, the program's blank icon (the raw resource EMPTY.ICO), from
# EmptyIconFile() in src/platform/portable/EmptyIcon.cpp: the portable build carries the same
# routine, so both hold the same 768 bytes. Run it again after changing that routine; the unit
# tests compare the two.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cat >"$work/write.cpp" <<'CPP'
#include <cstdio>
#include <string>

#include "platform/portable/EmptyIcon.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string bytes = quorvane::platform::portable::EmptyIconFile();
  std::FILE* f = std::fopen(argv[1], "wb");
  if (f == nullptr) return 1;
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  return (std::fclose(f) == 0 && written) ? 0 : 1;
}
CPP
g++ -std=c++20 -Wall -Wextra -Werror -I "$root/src" "$work/write.cpp" \
  "$root/src/platform/portable/EmptyIcon.cpp" -o "$work/write"
"$work/write" "$root/res/Empty.ico"
echo "icon: $root/res/Empty.ico ($(stat -c %s "$root/res/Empty.ico") bytes)"
