#pragma once
// The program's blank icon, EMPTY.ICO, as the bytes of its file. scripts/make-empty-icon.sh
// writes res/Empty.ico, the file the program carries as a resource, from this same routine, so
// the portable build and the program hold the same bytes.
#include <string>

namespace quorvane::platform::portable {

// 768 bytes: an icon file with one 32 by 32 image of 16 colours, every pixel transparent (mask
// all set, colour all zero), padded to a multiple of four bytes.
std::string EmptyIconFile();

}  // namespace quorvane::platform::portable
