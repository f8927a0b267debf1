// ParsePath over arbitrary paths: the root is one of the table's or 0, and the sub-key is what
// stands behind the first backslash of the reduced path.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzSeeds.h"
#include "core/Text.h"
#include "platform/portable/MemoryRegistry.h"
#include "unit/AdvRegistryAccessProbe.h"

std::vector<std::string> QuorvaneFuzzSeeds() {
  return {"HKEY_CURRENT_USER\\Software\\X", "hkcu\\a\\hkey_local_machine\\b", "HKUS", "HKU\\X",
          "HKCUX\\Foo", "\\", "HKEY_DYN_DATA", "hkey_performance_dataHKCC\\"};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvane;
  static platform::MemoryRegistry store;
  static AdvRegistryAccess reg(store);
  const std::string input(reinterpret_cast<const char*>(data), size);
  const auto parsed = AdvRegistryAccessProbe::ParsePath(reg, input);

  const platform::RegHandle root = parsed.root;
  if (root != 0 && !platform::reg::IsPredefinedRoot(root)) std::abort();
  const std::size_t slash = parsed.path.find('\\');
  if (slash == std::string::npos) {
    if (!parsed.subKey.empty()) std::abort();
  } else if (parsed.subKey != parsed.path.substr(slash + 1)) {
    std::abort();
  }
  // No long root form survives the reduction.
  for (const char* longForm : {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE", "HKEY_CLASSES_ROOT",
                               "HKEY_USERS", "HKEY_CURRENT_CONFIG"}) {
    if (text::InStr(1, parsed.path, longForm, true) != 0 &&
        text::InStr(1, input, longForm, true) == 0) {
      std::abort();
    }
  }
  return 0;
}
