#include "icons/modextracticon.h"

#include <cstdint>

#include "core/Text.h"
#include "platform/ProfileFiles.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

constexpr char kMissing[] = "?!?";
constexpr std::uint32_t kEntrySize = 256;

}  // namespace

Boolean ReadIniEntry(std::string section, const std::string& key, const std::string& file,
                     std::string& value) {
  std::string buffer(kEntrySize, '\0');
  const std::uint32_t copied =
      platform::Use<platform::ProfileFiles>().GetPrivateProfileStringA(
          section.c_str(), key.c_str(), kMissing, buffer.data(), kEntrySize, file.c_str());
  // The stand-in is recognised by the first three characters of the buffer, whatever the count.
  if (text::Left(buffer, 3) == kMissing) return kFalse;
  value = text::Left(buffer, copied);
  return kTrue;
}

void WriteIniEntry(std::string section, const std::string& key, const std::string& value,
                   const std::string& file) {
  platform::Use<platform::ProfileFiles>().WritePrivateProfileStringA(
      section.c_str(), key.c_str(), value.c_str(), file.c_str());
}

}  // namespace quorvane
