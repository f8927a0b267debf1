#pragma once
// A registry store in memory with the platform's semantics: predefined roots with their fixed
// handle values, key and value names compared without regard to case, sub-keys and values
// enumerated in the order of their upper-case names, opening a missing key fails, creating
// makes the missing ancestors, a key with sub-keys can't be deleted, text values keep their
// terminator. It can be saved to a file and loaded again.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/RegistryStore.h"

namespace quorvane::platform::portable {

class MemoryRegistry final : public RegistryStore {
 public:
  MemoryRegistry();
  ~MemoryRegistry() override;
  MemoryRegistry(const MemoryRegistry&) = delete;
  MemoryRegistry& operator=(const MemoryRegistry&) = delete;

  RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                          std::uint32_t samDesired, RegHandle& result) override;
  RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override;
  RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override;
  RegStatus RegCloseKey(RegHandle key) override;
  RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) override;
  RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) override;
  RegStatus RegSetValueExA(RegHandle key, const std::string& valueName, std::uint32_t reserved,
                           std::uint32_t kind, const std::uint8_t* data,
                           std::uint32_t size) override;
  RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName,
                             std::uint32_t* reserved, std::uint32_t* kind, std::uint8_t* data,
                             std::uint32_t* size) override;
  RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize) override;
  RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize, std::uint32_t* kind, std::uint8_t* data,
                          std::uint32_t* dataSize) override;

  // Handles opened and not yet closed (predefined roots are not counted).
  std::size_t OpenHandleCount() const;

  // Makes a key refuse every access that changes it, as a key the user may only read does.
  // The key must exist; false otherwise.
  bool DenyChanges(RegHandle root, const std::string& subKey);

  // Writes the whole store to a file (through a temporary file renamed over it); false on
  // failure, and the previous file stays as it was.
  bool SaveToFile(const std::string& path) const;
  // Replaces the store's content by the file's. A missing or malformed file leaves the store
  // as it was and gives false.
  bool LoadFromFile(const std::string& path);

  struct Key;

 private:
  struct OpenKey;
  RegStatus Resolve(RegHandle handle, std::uint32_t needed, std::shared_ptr<Key>& key) const;
  RegStatus Walk(const std::shared_ptr<Key>& from, const std::string& subKey, bool create,
                 std::shared_ptr<Key>& found);
  RegHandle NewHandle(const std::shared_ptr<Key>& key, std::uint32_t access);
  std::uint32_t AllowedAccess(const Key& key, std::uint32_t wanted) const;

  std::map<RegHandle, std::shared_ptr<Key>> roots_;
  std::vector<std::unique_ptr<OpenKey>> handles_;  // slot i has the handle value 4 * (i + 1)
};

}  // namespace quorvane::platform::portable
