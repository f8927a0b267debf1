#pragma once
// The tests' view of AdvRegistryAccess's private members.
#include <optional>
#include <string>

#include "stores/AdvRegistryAccess.h"

namespace quorvane {

struct AdvRegistryAccessProbe {
  struct Parsed {
    std::string path;
    platform::RegHandle root = 0;
    std::string subKey;
  };
  static Parsed ParsePath(AdvRegistryAccess& reg, std::string path) {
    Parsed p;
    reg.ParsePath(path, p.root, p.subKey);
    p.path = path;
    return p;
  }
  static Boolean ExportKey(AdvRegistryAccess& reg, const std::string& path,
                           const std::string& file, Boolean includeSubkeys,
                           std::optional<TextBox*> box) {
    Boolean result = kFalse;
    reg.ExportKey(path, file, includeSubkeys, box, result);
    return result;
  }
  static platform::RegHandle KeyHandle(const AdvRegistryAccess& reg) { return reg.mKey; }
  static platform::RegHandle RootHandle(const AdvRegistryAccess& reg) { return reg.mRootKey; }
};

}  // namespace quorvane
