#pragma once
// The process's own command line, as the platform gives it to the program: the text behind the
// program's name, untouched otherwise.
#include <string>
#include <string_view>

namespace quorvane::platform {

class Process {
 public:
  virtual ~Process() = default;

  // The arguments of the process: the command line without the program's name and without the
  // blanks that separate the name from them (see ArgumentsOf). Trailing blanks are kept.
  virtual std::string CommandLine() = 0;
};

// The arguments part of a whole command line, read the way the platform reads it for a program's
// entry: the first token is the program's name, either quoted (up to and with the closing quote,
// or to the end when there is none) or running to the first blank or control character; the
// blanks and control characters after it are passed over, and the rest is returned as it stands.
std::string ArgumentsOf(std::string_view wholeCommandLine);

}  // namespace quorvane::platform
