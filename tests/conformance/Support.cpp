#include "Support.h"

#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

#include "platform/Service.h"

namespace quorvane::testing {

platform::RegistryStore& Store() { return platform::Use<platform::RegistryStore>(); }

void DeleteTree(platform::RegHandle root, const std::string& subKey) {
  auto& store = Store();
  platform::RegHandle key = 0;
  if (store.RegOpenKeyExA(root, subKey, 0, platform::reg::kAllAccess, key) != 0) return;
  std::vector<std::string> children;
  for (std::uint32_t i = 0;; ++i) {
    char name[256];
    std::uint32_t size = sizeof name;
    if (store.RegEnumKeyExA(key, i, name, &size) != 0) break;
    children.emplace_back(name, size);
  }
  store.RegCloseKey(key);
  for (const auto& child : children) DeleteTree(root, subKey + "\\" + child);
  store.RegDeleteKeyA(root, subKey);
}

#ifdef _WIN32
bool HasScreen() {
  HWND probe = ::CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                 ::GetModuleHandleA(nullptr), nullptr);
  if (probe == nullptr) return false;
  ::DestroyWindow(probe);
  return true;
}
#endif

}  // namespace quorvane::testing
