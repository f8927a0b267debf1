#pragma once
// The system builds its paths with backslashes, as the platform separates folders; the portable
// adapters hand them to the host with its own separator.
#include <string>

namespace quorvane::platform::portable {

inline std::string HostPath(const std::string& path) {
  std::string out = path;
  for (char& c : out) {
    if (c == '\\') c = '/';
  }
  return out;
}

}  // namespace quorvane::platform::portable
