#pragma once
// The system builds its paths with backslashes, as the platform separates folders; the portable
// adapters hand them to the host with its own separator. A path that begins with the letter of
// a drive the portable drives have mounted ("C:\Data") goes to the folder that stands for that
// drive on the host.
#include <string>

namespace quorvane::platform::portable {

// The host path of `path` when it begins with the letter of a mounted drive, found without
// regard to case as the platform finds its paths; false for any other path.
bool MountedHostPath(const std::string& path, std::string& host);

inline std::string HostPath(const std::string& path) {
  std::string out = path;
  if (out.size() >= 2 && out[1] == ':' && MountedHostPath(path, out)) return out;
  for (char& c : out) {
    if (c == '\\') c = '/';
  }
  return out;
}

}  // namespace quorvane::platform::portable
