#include "platform/Process.h"

namespace quorvane::platform {

namespace {

// Spaces, tabs and the other control characters separate the program's name from the rest.
bool IsSeparator(char c) { return static_cast<unsigned char>(c) <= static_cast<unsigned char>(' '); }

}  // namespace

std::string ArgumentsOf(std::string_view wholeCommandLine) {
  std::size_t at = 0;
  const std::size_t end = wholeCommandLine.size();
  if (at < end && wholeCommandLine[at] == '"') {
    // A quoted program name: everything up to the closing quote, blanks included.
    ++at;
    while (at < end && wholeCommandLine[at] != '"') {
      ++at;
    }
    if (at < end) {
      ++at;  // the closing quote
    }
  } else {
    while (at < end && !IsSeparator(wholeCommandLine[at])) {
      ++at;
    }
  }
  while (at < end && IsSeparator(wholeCommandLine[at])) {
    ++at;
  }
  return std::string(wholeCommandLine.substr(at));
}

}  // namespace quorvane::platform
