#pragma once
// A registry store that passes every operation on to another one and writes down what changes
// it: each value set or deleted, with the full path of its key, as one line of a journal that
// other recorders may share. Opens are written down apart, with the access asked for. For the
// failure paths of a caller, it can refuse to set values or to close keys.
//
// Journal lines:
//   set HKEY_CLASSES_ROOT\txtfile\DefaultIcon [] = "a.ico,0"      (kind 1; a NUL shows as \0)
//   set HKEY_CURRENT_USER\X [Y] = kind 3 "ab"                      (any other kind)
//   delete HKEY_LOCAL_MACHINE\X [8]
//   delete key HKEY_CURRENT_USER\X
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/RegistryStore.h"

namespace quorvane::testing {

class RecordingRegistry final : public platform::RegistryStore {
 public:
  using RegHandle = platform::RegHandle;
  using RegStatus = platform::RegStatus;

  // Lines go to `journal` when one is given, else to the recorder's own.
  explicit RecordingRegistry(platform::RegistryStore& inner,
                             std::vector<std::string>* journal = nullptr)
      : inner_(inner), journal_(journal != nullptr ? journal : &ownJournal_) {}
  RecordingRegistry(const RecordingRegistry&) = delete;
  RecordingRegistry& operator=(const RecordingRegistry&) = delete;

  const std::vector<std::string>& Journal() const { return *journal_; }
  void ClearJournal() { journal_->clear(); }

  // Every successful open or create, as "KEY access 0x6" (RegOpenKeyA and RegCreateKeyA show
  // no access).
  std::vector<std::string> opens;
  // When set, value writes and key closes fail with this status without reaching the store.
  RegStatus refuseSets = 0;
  RegStatus refuseCloses = 0;

  RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                          std::uint32_t samDesired, RegHandle& result) override {
    const RegStatus s = inner_.RegOpenKeyExA(key, subKey, options, samDesired, result);
    if (s == platform::reg::kSuccess) Opened(key, subKey, result, " access " + Hex(samDesired));
    return s;
  }
  RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override {
    const RegStatus s = inner_.RegOpenKeyA(key, subKey, result);
    if (s == platform::reg::kSuccess) Opened(key, subKey, result, "");
    return s;
  }
  RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override {
    const RegStatus s = inner_.RegCreateKeyA(key, subKey, result);
    if (s == platform::reg::kSuccess) Opened(key, subKey, result, "");
    return s;
  }
  RegStatus RegCloseKey(RegHandle key) override {
    if (refuseCloses != 0) return refuseCloses;
    const RegStatus s = inner_.RegCloseKey(key);
    if (s == platform::reg::kSuccess && !platform::reg::IsPredefinedRoot(key)) paths_.erase(key);
    return s;
  }
  RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) override {
    const RegStatus s = inner_.RegDeleteKeyA(key, subKey);
    if (s == platform::reg::kSuccess) journal_->push_back("delete key " + Below(key, subKey));
    return s;
  }
  RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) override {
    const RegStatus s = inner_.RegDeleteValueA(key, valueName);
    if (s == platform::reg::kSuccess) {
      journal_->push_back("delete " + PathOf(key) + " [" + valueName + "]");
    }
    return s;
  }
  RegStatus RegSetValueExA(RegHandle key, const std::string& valueName, std::uint32_t reserved,
                           std::uint32_t kind, const std::uint8_t* data,
                           std::uint32_t size) override {
    if (refuseSets != 0) return refuseSets;
    const RegStatus s = inner_.RegSetValueExA(key, valueName, reserved, kind, data, size);
    if (s == platform::reg::kSuccess) {
      const std::string bytes =
          data != nullptr ? std::string(reinterpret_cast<const char*>(data), size) : "";
      journal_->push_back("set " + PathOf(key) + " [" + valueName + "] = " +
                          (kind == platform::reg::kSz ? "" : "kind " + std::to_string(kind) + " ") +
                          Quoted(bytes));
    }
    return s;
  }
  RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName,
                             std::uint32_t* reserved, std::uint32_t* kind, std::uint8_t* data,
                             std::uint32_t* size) override {
    return inner_.RegQueryValueExA(key, valueName, reserved, kind, data, size);
  }
  RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize) override {
    return inner_.RegEnumKeyExA(key, index, name, nameSize);
  }
  RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize, std::uint32_t* kind, std::uint8_t* data,
                          std::uint32_t* dataSize) override {
    return inner_.RegEnumValueA(key, index, name, nameSize, kind, data, dataSize);
  }

  // Text as the journal shows it: in double quotes, a NUL as \0.
  static std::string Quoted(const std::string& bytes) {
    std::string q = "\"";
    for (char c : bytes) {
      if (c == '\0') {
        q += "\\0";
      } else {
        q.push_back(c);
      }
    }
    return q + "\"";
  }

 private:
  static std::string Hex(std::uint32_t v) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    do {
      digits.insert(digits.begin(), kDigits[v % 16]);
      v /= 16;
    } while (v != 0);
    return "0x" + digits;
  }

  std::string PathOf(RegHandle key) const {
    switch (key) {
      case platform::reg::kClassesRoot: return "HKEY_CLASSES_ROOT";
      case platform::reg::kCurrentUser: return "HKEY_CURRENT_USER";
      case platform::reg::kLocalMachine: return "HKEY_LOCAL_MACHINE";
      case platform::reg::kUsers: return "HKEY_USERS";
      case platform::reg::kCurrentConfig: return "HKEY_CURRENT_CONFIG";
      default: break;
    }
    const auto it = paths_.find(key);
    return it == paths_.end() ? "?" : it->second;
  }
  std::string Below(RegHandle key, const std::string& subKey) const {
    return subKey.empty() ? PathOf(key) : PathOf(key) + "\\" + subKey;
  }
  void Opened(RegHandle parent, const std::string& subKey, RegHandle result,
              const std::string& access) {
    const std::string path = Below(parent, subKey);
    if (!platform::reg::IsPredefinedRoot(result)) paths_[result] = path;
    opens.push_back(path + access);
  }

  platform::RegistryStore& inner_;
  std::vector<std::string> ownJournal_;
  std::vector<std::string>* journal_;
  std::map<RegHandle, std::string> paths_;
};

}  // namespace quorvane::testing
