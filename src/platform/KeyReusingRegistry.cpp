#include "platform/KeyReusingRegistry.h"

#include <iterator>
#include <utility>
#include <vector>

namespace quorvane::platform {

namespace {

std::string Capitals(const std::string& text) {
  std::string result = text;
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

std::string RootPath(RegHandle root) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string path = "#";
  for (int shift = 28; shift >= 0; shift -= 4) path += kDigits[(root >> shift) & 0xF];
  return path;
}

}  // namespace

KeyReusingRegistry::KeyReusingRegistry(RegistryStore& keys, Milliseconds now)
    : keys_(keys), now_(std::move(now)) {}

KeyReusingRegistry::~KeyReusingRegistry() {
  for (const auto& [handle, key] : byHandle_) keys_.RegCloseKey(handle);
}

bool KeyReusingRegistry::PathOf(RegHandle key, const std::string& subKey, std::string& path) const {
  if (reg::IsPredefinedRoot(key)) {
    path = RootPath(key);
  } else {
    const auto found = byHandle_.find(key);
    if (found == byHandle_.end()) return false;
    path = found->second.path;
  }
  if (!subKey.empty()) path += "\\" + Capitals(subKey);
  return true;
}

bool KeyReusingRegistry::Closed(RegHandle key) const {
  const auto found = byHandle_.find(key);
  return found != byHandle_.end() && found->second.holders == 0;
}

template <class OpenBeneath>
RegStatus KeyReusingRegistry::Open(Way way, std::uint32_t options, std::uint32_t samDesired,
                                   RegHandle key, const std::string& subKey, RegHandle& result,
                                   OpenBeneath open) {
  if (Closed(key)) return reg::kInvalidHandle;
  std::string path;
  if (!PathOf(key, subKey, path)) return open(result);

  Opening opening{way, options, samDesired, path};
  if (const auto found = byOpening_.find(opening); found != byOpening_.end()) {
    const RegHandle handle = found->second;
    OpenKey& entry = byHandle_.at(handle);
    if (entry.holders > 0 || now_() - entry.closedAt <= kKeptFor) {
      if (entry.isKept) {
        kept_.erase(entry.kept);
        entry.isKept = false;
      }
      ++entry.holders;
      result = handle;
      return reg::kSuccess;
    }
    CloseForGood(handle);
  }

  RegHandle opened = 0;
  const RegStatus status = open(opened);
  if (status != reg::kSuccess) return status;
  result = opened;
  // An empty path below a root gives the root itself, which is never closed;
  // and a handle this store already accounts for is not another key to keep.
  if (reg::IsPredefinedRoot(opened)) return status;
  const auto [place, added] = byHandle_.try_emplace(opened);
  if (!added) return status;
  OpenKey& entry = place->second;
  entry.path = std::move(path);
  entry.holders = 1;
  entry.opening = &byOpening_.emplace(std::move(opening), opened).first->first;
  return status;
}

RegStatus KeyReusingRegistry::RegOpenKeyExA(RegHandle key, const std::string& subKey,
                                            std::uint32_t options, std::uint32_t samDesired,
                                            RegHandle& result) {
  return Open(Way::OpenWithAccess, options, samDesired, key, subKey, result,
              [&](RegHandle& opened) {
                return keys_.RegOpenKeyExA(key, subKey, options, samDesired, opened);
              });
}

RegStatus KeyReusingRegistry::RegOpenKeyA(RegHandle key, const std::string& subKey,
                                          RegHandle& result) {
  return Open(Way::Open, 0, 0, key, subKey, result,
              [&](RegHandle& opened) { return keys_.RegOpenKeyA(key, subKey, opened); });
}

RegStatus KeyReusingRegistry::RegCreateKeyA(RegHandle key, const std::string& subKey,
                                            RegHandle& result) {
  return Open(Way::Create, 0, 0, key, subKey, result,
              [&](RegHandle& opened) { return keys_.RegCreateKeyA(key, subKey, opened); });
}

RegStatus KeyReusingRegistry::RegCloseKey(RegHandle key) {
  const auto found = byHandle_.find(key);
  if (found == byHandle_.end()) return keys_.RegCloseKey(key);
  OpenKey& entry = found->second;
  if (entry.holders == 0) return reg::kInvalidHandle;  // closed twice
  if (--entry.holders > 0) return reg::kSuccess;
  if (entry.opening == nullptr) return CloseForGood(key);
  entry.closedAt = now_();
  entry.kept = kept_.insert(kept_.end(), key);
  entry.isKept = true;
  while (kept_.size() > kMostKept) CloseForGood(kept_.front());
  return reg::kSuccess;
}

RegStatus KeyReusingRegistry::CloseForGood(RegHandle handle) {
  const auto found = byHandle_.find(handle);
  OpenKey& entry = found->second;
  if (entry.isKept) kept_.erase(entry.kept);
  if (entry.opening != nullptr) byOpening_.erase(*entry.opening);
  byHandle_.erase(found);
  return keys_.RegCloseKey(handle);
}

void KeyReusingRegistry::ForgetAllAfterDelete() {
  std::vector<RegHandle> unheld;
  for (auto& [handle, entry] : byHandle_) {
    if (entry.holders == 0) {
      unheld.push_back(handle);
    } else if (entry.opening != nullptr) {
      byOpening_.erase(*entry.opening);
      entry.opening = nullptr;
    }
  }
  for (const RegHandle handle : unheld) CloseForGood(handle);
}

RegStatus KeyReusingRegistry::RegDeleteKeyA(RegHandle key, const std::string& subKey) {
  if (Closed(key)) return reg::kInvalidHandle;
  const RegStatus status = keys_.RegDeleteKeyA(key, subKey);
  if (status == reg::kSuccess) ForgetAllAfterDelete();
  return status;
}

RegStatus KeyReusingRegistry::RegDeleteValueA(RegHandle key, const std::string& valueName) {
  if (Closed(key)) return reg::kInvalidHandle;
  return keys_.RegDeleteValueA(key, valueName);
}

RegStatus KeyReusingRegistry::RegSetValueExA(RegHandle key, const std::string& valueName,
                                             std::uint32_t reserved, std::uint32_t kind,
                                             const std::uint8_t* data, std::uint32_t size) {
  if (Closed(key)) return reg::kInvalidHandle;
  return keys_.RegSetValueExA(key, valueName, reserved, kind, data, size);
}

RegStatus KeyReusingRegistry::RegQueryValueExA(RegHandle key, const std::string& valueName,
                                               std::uint32_t* reserved, std::uint32_t* kind,
                                               std::uint8_t* data, std::uint32_t* size) {
  if (Closed(key)) return reg::kInvalidHandle;
  return keys_.RegQueryValueExA(key, valueName, reserved, kind, data, size);
}

RegStatus KeyReusingRegistry::RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                                            std::uint32_t* nameSize) {
  if (Closed(key)) return reg::kInvalidHandle;
  return keys_.RegEnumKeyExA(key, index, name, nameSize);
}

RegStatus KeyReusingRegistry::RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                                            std::uint32_t* nameSize, std::uint32_t* kind,
                                            std::uint8_t* data, std::uint32_t* dataSize) {
  if (Closed(key)) return reg::kInvalidHandle;
  return keys_.RegEnumValueA(key, index, name, nameSize, kind, data, dataSize);
}

}  // namespace quorvane::platform
