#pragma once
// Values of the shell's own keys that a test is about to change, kept so that the store is left
// as it was: at the end of the snapshot's life each kept value is written back with its kind
// and bytes, or deleted when it was not there, and every key that was missing is removed with
// what was made under it. Keys are named by full paths ("HKEY_LOCAL_MACHINE\SOFTWARE\...").
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Support.h"
#include "platform/RegistryStore.h"

namespace quorvane::testing {

// A full key path split into its root and the path below it.
inline std::pair<platform::RegHandle, std::string> SplitKeyPath(const std::string& path) {
  static const std::pair<const char*, platform::RegHandle> kRoots[] = {
      {"HKEY_CLASSES_ROOT", platform::reg::kClassesRoot},
      {"HKEY_CURRENT_USER", platform::reg::kCurrentUser},
      {"HKEY_LOCAL_MACHINE", platform::reg::kLocalMachine},
      {"HKEY_USERS", platform::reg::kUsers},
  };
  const std::size_t slash = path.find('\\');
  const std::string root = path.substr(0, slash);
  for (const auto& [name, handle] : kRoots) {
    if (root == name) return {handle, slash == std::string::npos ? "" : path.substr(slash + 1)};
  }
  return {0, path};
}

// What a store holds at one value: whether the key is there, and the value's kind and bytes.
struct ValueState {
  bool keyExists = false;
  std::optional<std::pair<std::uint32_t, std::string>> value;
  bool operator==(const ValueState&) const = default;
};

inline ValueState CaptureValue(const std::string& keyPath, const std::string& valueName) {
  ValueState state;
  const auto [root, subKey] = SplitKeyPath(keyPath);
  platform::RegHandle key = 0;
  if (Store().RegOpenKeyExA(root, subKey, 0, platform::reg::kQueryValue, key) !=
      platform::reg::kSuccess) {
    return state;
  }
  state.keyExists = true;
  std::uint32_t kind = 0;
  std::uint32_t size = 0;
  if (Store().RegQueryValueExA(key, valueName, nullptr, &kind, nullptr, &size) ==
      platform::reg::kSuccess) {
    std::string bytes(size, '\0');
    if (Store().RegQueryValueExA(key, valueName, nullptr, &kind,
                                 reinterpret_cast<std::uint8_t*>(bytes.data()), &size) ==
        platform::reg::kSuccess) {
      bytes.resize(size);
      state.value = std::make_pair(kind, bytes);
    }
  }
  Store().RegCloseKey(key);
  return state;
}

class RegistrySnapshot {
 public:
  RegistrySnapshot() = default;
  RegistrySnapshot(const RegistrySnapshot&) = delete;
  RegistrySnapshot& operator=(const RegistrySnapshot&) = delete;
  ~RegistrySnapshot() { Restore(); }

  void Keep(const std::string& keyPath, const std::string& valueName) {
    if (!seen_.insert(keyPath + "\n" + valueName).second) return;
    Kept kept{keyPath, valueName, CaptureValue(keyPath, valueName)};
    if (!kept.before.keyExists) {
      // The highest key of the path that is missing: removing it removes all that was made.
      const auto [root, subKey] = SplitKeyPath(keyPath);
      std::string prefix;
      std::size_t from = 0;
      while (true) {
        const std::size_t slash = subKey.find('\\', from);
        prefix = subKey.substr(0, slash);
        platform::RegHandle key = 0;
        if (Store().RegOpenKeyExA(root, prefix, 0, platform::reg::kQueryValue, key) !=
            platform::reg::kSuccess) {
          made_.emplace_back(root, prefix);
          break;
        }
        Store().RegCloseKey(key);
        if (slash == std::string::npos) break;
        from = slash + 1;
      }
    }
    kept_.push_back(std::move(kept));
  }

  // The kept values as they were, in the order kept.
  std::vector<std::pair<std::string, ValueState>> Before() const {
    std::vector<std::pair<std::string, ValueState>> all;
    for (const Kept& k : kept_) all.emplace_back(k.keyPath + " [" + k.valueName + "]", k.before);
    return all;
  }

  void Restore() {
    for (const Kept& k : kept_) {
      if (!k.before.keyExists) continue;
      const auto [root, subKey] = SplitKeyPath(k.keyPath);
      platform::RegHandle key = 0;
      if (Store().RegOpenKeyExA(root, subKey, 0, platform::reg::kSetValue, key) !=
          platform::reg::kSuccess) {
        continue;
      }
      if (k.before.value) {
        const std::string& bytes = k.before.value->second;
        Store().RegSetValueExA(key, k.valueName, 0, k.before.value->first,
                               reinterpret_cast<const std::uint8_t*>(bytes.data()),
                               static_cast<std::uint32_t>(bytes.size()));
      } else {
        Store().RegDeleteValueA(key, k.valueName);
      }
      Store().RegCloseKey(key);
    }
    for (auto it = made_.rbegin(); it != made_.rend(); ++it) DeleteTree(it->first, it->second);
    kept_.clear();
    made_.clear();
    seen_.clear();
  }

 private:
  struct Kept {
    std::string keyPath;
    std::string valueName;
    ValueState before;
  };
  std::vector<Kept> kept_;
  std::vector<std::pair<platform::RegHandle, std::string>> made_;
  std::set<std::string> seen_;
};

}  // namespace quorvane::testing
