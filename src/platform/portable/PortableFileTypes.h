#pragma once
// The shell's type names without a shell: a table of the kinds of file a desktop of the
// platform knows out of the box, and for any other extension the name the shell makes up, its
// letters in upper case followed by " File". A name without an extension is a "File".
#include <string>
#include <vector>

#include "platform/FileTypes.h"

namespace quorvane::platform::portable {

class PortableFileTypes final : public FileTypes {
 public:
  std::uintptr_t SHGetFileInfoA(const std::string& name, std::uint32_t attributes,
                                std::uint32_t flags, std::string& typeName) override;
  std::int64_t FileLen(const std::string& path) override;

  // Every name asked about, in order.
  const std::vector<std::string>& Queries() const { return queries_; }

 private:
  std::vector<std::string> queries_;
};

}  // namespace quorvane::platform::portable
