#pragma once
// The platform's own dialog for choosing files to open, with the arguments it takes: a filter of
// "caption|patterns" pairs, the pair shown first (from 1), the folder shown first, the size of
// the buffer the names come back in, and the platform's flag bits.
//
// The answer is the buffer as the dialog filled it, up to its closing double character 0: for
// one file its full path; for several the folder, then each file's name, one character 0
// between each two pieces. An empty text when the user cancelled.
#include <cstdint>
#include <string>

namespace quorvane::platform {

namespace ofn {
inline constexpr std::uint32_t kHideReadOnly = 0x4;
inline constexpr std::uint32_t kAllowMultiSelect = 0x200;
inline constexpr std::uint32_t kPathMustExist = 0x800;
inline constexpr std::uint32_t kExplorer = 0x80000;
}  // namespace ofn

struct OpenFileRequest {
  std::uint32_t owner = 0;  // the window the dialog is modal to; 0 for none
  std::string fileName;     // the name the dialog starts with
  std::string filter;       // "caption|patterns|caption|patterns..."
  std::int32_t filterIndex = 1;
  std::string initialFolder;
  std::int32_t maxFileSize = 260;  // the buffer for the names, in characters
  std::uint32_t flags = 0;
};

class FileDialogs {
 public:
  virtual ~FileDialogs() = default;
  // Shows the open dialog and waits for the user; gives the names chosen, empty when cancelled.
  virtual std::string GetOpenFileNameA(const OpenFileRequest& request) = 0;
};

}  // namespace quorvane::platform
