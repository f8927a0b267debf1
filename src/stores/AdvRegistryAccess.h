#pragma once
// The one class through which the program reads and writes the registry. A caller names a key
// by one path ("HKCU\Software\..." or "HKEY_CURRENT_USER\Software\...") and never holds a
// handle: every member opens what it needs, acts and closes. Members signal by their results
// only: the last key handle (non-zero) or 0, -1 for a key that can't be enumerated, the
// caller's default for a read that finds nothing.
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/TextBox.h"
#include "base/Types.h"
#include "platform/RegistryStore.h"

namespace quorvane {

// One enumerated value: empty, a text, or a 32-bit number.
using RegValue = std::variant<std::monostate, std::string, std::int32_t>;

class AdvRegistryAccess {
 public:
  // Over the process's registry store.
  AdvRegistryAccess();
  explicit AdvRegistryAccess(platform::RegistryStore& store);

  // Let/Get. Should key will be created if no exists (when writting data to registry)
  void CreateKeyIfDoesntExists(Boolean value);
  Boolean CreateKeyIfDoesntExists() const;

  std::int32_t CreateKey(std::string sPath);
  std::int32_t KillKey(std::string sPath);
  Boolean KeyExists(std::string sPath);
  std::int32_t EnumKeys(std::string sPath, std::vector<std::string>& KEY);
  Boolean HaveSubkey(std::string sPath);
  std::int32_t WriteString(std::string sPath, std::string sName, std::string sValue);
  std::string ReadString(std::string sPath, std::string sName,
                         std::string sDefault = std::string(1, '\0'));
  std::int32_t WriteDWORD(std::string sPath, std::string sName, std::int32_t lValue);
  std::int32_t ReadDWORD(std::string sPath, std::string sName, std::int32_t lDefault = -1);
  std::int32_t WriteBinary(std::string sPath, std::string sName, std::string sValue);
  std::string ReadBinary(std::string sPath, std::string sName, std::string sDefault = "");
  std::int32_t KillValue(std::string sPath, std::string sName);
  Boolean ValueExists(std::string sPath, std::string sName);
  std::int32_t EnumValues(std::string sPath, std::vector<std::string>& sName,
                          std::vector<RegValue>& sValue, std::int32_t OnlyType = -1);
  std::int32_t ExportToReg(std::string sPath, std::string sRegFile,
                           Boolean IncludeSubkeys = kTrue);
  std::int32_t ImportFromReg(std::string sRegFile);
  std::string StrToBin(std::string& sBin);
  std::string BinToStr(std::string& sStr);
  Boolean isBinValid(std::string sBin);

 private:
  friend struct AdvRegistryAccessProbe;  // the tests' view of the private members

  // Reduces the path's root to its short form and splits it into root handle and sub-key.
  void ParsePath(std::string& sPath, platform::RegHandle& hRoot, std::string& sSubKey);
  void ParsePath(std::string& sPath);
  // Writes one key (and, when asked, its sub-keys) to the .reg file.
  void ExportKey(std::string sPath, const std::string& sRegFile, Boolean IncludeSubkeys,
                 std::optional<TextBox*> txtStatus, Boolean& result);

  platform::RegistryStore& store_;
  // Scratch state that every member overwrites.
  platform::RegHandle mRootKey = 0;
  platform::RegHandle mKey = 0;
  std::string mSubKey;
  Boolean mCreateKeyIfDoesntExists = kTrue;
};

}  // namespace quorvane
