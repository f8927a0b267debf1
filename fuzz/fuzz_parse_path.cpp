// ParsePath over arbitrary paths: the root is one of the table's or 0, the sub-key is what stands
// behind the first backslash of the reduced path, and parsing the reduced path again changes
// nothing.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "FuzzSeeds.h"
#include "base/Text.h"
#include "platform/portable/MemoryRegistry.h"
#include "unit/AdvRegistryAccessProbe.h"

std::vector<std::string> QuorvaneFuzzSeeds() {
  return {"HKEY_CURRENT_USER\\Software\\X", "hkcu\\a\\hkey_local_machine\\b", "HKUS", "HKU\\X",
          "HKCUX\\Foo", "\\", "HKEY_DYN_DATA", "hkey_performance_dataHKCC\\"};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvane;
  static platform::portable::MemoryRegistry store;
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
  // The reduced path parses to the same root and sub-key again.
  const auto again = AdvRegistryAccessProbe::ParsePath(reg, parsed.path);
  if (again.root != root || again.subKey != parsed.subKey) std::abort();
  // With a backslash, a known root is exactly the first four characters in any case.
  if (slash != std::string::npos && root != 0) {
    const std::string first4 = text::UpperCase(parsed.path.substr(0, 4));
    static const std::pair<const char*, platform::RegHandle> kShort[] = {
        {"HKCU", platform::reg::kCurrentUser}, {"HKLM", platform::reg::kLocalMachine},
        {"HKCR", platform::reg::kClassesRoot}, {"HKUS", platform::reg::kUsers},
        {"HKPD", platform::reg::kPerformanceData}, {"HKDD", platform::reg::kDynData},
        {"HKCC", platform::reg::kCurrentConfig}};
    bool matched = false;
    for (const auto& [form, handle] : kShort) matched = matched || (first4 == form && handle == root);
    if (!matched) std::abort();
  }
  return 0;
}
