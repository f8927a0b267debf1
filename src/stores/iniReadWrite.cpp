#include "stores/iniReadWrite.h"

#include "base/Int16.h"
#include "base/Text.h"
#include "platform/ProfileFiles.h"
#include "platform/Service.h"

namespace quorvane {

std::string ReadIniValue(const std::string& section, const std::string& key,
                         const std::string& file) {
  // A buffer of 255 NULs and the default "": what the platform copies is the left part of it,
  // so a missing key and an empty value both come back as "".
  std::string buffer(255, '\0');
  const std::uint32_t copied =
      platform::Use<platform::ProfileFiles>().GetPrivateProfileStringA(
          section.c_str(), key.c_str(), "", buffer.data(),
          static_cast<std::uint32_t>(buffer.size()), file.c_str());
  return text::Left(buffer, copied);
}

std::int16_t WriteIniValue(const std::string& section, const std::string& key,
                           const std::string& value, const std::string& file) {
  return CheckedInt16(platform::Use<platform::ProfileFiles>().WritePrivateProfileStringA(
      section.c_str(), key.c_str(), value.c_str(), file.c_str()));
}

}  // namespace quorvane
