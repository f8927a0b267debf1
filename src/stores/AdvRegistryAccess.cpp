#include "stores/AdvRegistryAccess.h"

#include "base/Text.h"
#include "platform/Service.h"

namespace quorvane {

using platform::RegHandle;
using platform::RegStatus;
namespace reg = platform::reg;

namespace {

struct RootForm {
  const char* longForm;
  const char* shortForm;
  RegHandle handle;
};

// The order of the rows is the order of the replacements.
constexpr RootForm kRootTable[] = {
    {"HKEY_CURRENT_USER", "HKCU", reg::kCurrentUser},
    {"HKEY_LOCAL_MACHINE", "HKLM", reg::kLocalMachine},
    {"HKEY_CLASSES_ROOT", "HKCR", reg::kClassesRoot},
    {"HKEY_USERS", "HKUS", reg::kUsers},
    {"HKEY_PERFORMANCE_DATA", "HKPD", reg::kPerformanceData},
    {"HKEY_DYN_DATA", "HKDD", reg::kDynData},
    {"HKEY_CURRENT_CONFIG", "HKCC", reg::kCurrentConfig},
};

// A handle as the members return it: the 32-bit pattern of the last key handle.
std::int32_t AsResult(RegHandle key) { return static_cast<std::int32_t>(key); }

std::uint8_t* Bytes(std::string& s) { return reinterpret_cast<std::uint8_t*>(s.data()); }

std::uint32_t Size(const std::string& s) { return static_cast<std::uint32_t>(s.size()); }

constexpr std::size_t kBufferSize = 255;

}  // namespace

AdvRegistryAccess::AdvRegistryAccess() : AdvRegistryAccess(platform::Use<platform::RegistryStore>()) {}

AdvRegistryAccess::AdvRegistryAccess(platform::RegistryStore& store) : store_(store) {}

void AdvRegistryAccess::CreateKeyIfDoesntExists(Boolean value) { mCreateKeyIfDoesntExists = value; }

Boolean AdvRegistryAccess::CreateKeyIfDoesntExists() const { return mCreateKeyIfDoesntExists; }

void AdvRegistryAccess::ParsePath(std::string& sPath, RegHandle& hRoot, std::string& sSubKey) {
  for (const RootForm& row : kRootTable) {
    sPath = text::Replace(sPath, row.longForm, row.shortForm, true);
  }
  std::string rootText;
  const std::int64_t slash = text::InStr(1, sPath, "\\");
  if (slash > 0) {
    rootText = text::UpperCase(text::Left(sPath, 4));
    sSubKey = text::Mid(sPath, slash + 1);
  } else {
    rootText = text::UpperCase(sPath);
    sSubKey.clear();
  }
  hRoot = 0;
  for (const RootForm& row : kRootTable) {
    if (rootText == row.shortForm) {
      hRoot = row.handle;
      break;
    }
  }
}

void AdvRegistryAccess::ParsePath(std::string& sPath) { ParsePath(sPath, mRootKey, mSubKey); }

std::int32_t AdvRegistryAccess::CreateKey(std::string sPath) {
  ParsePath(sPath);
  if (store_.RegCreateKeyA(mRootKey, mSubKey, mKey) != reg::kSuccess) return 0;
  store_.RegCloseKey(mKey);
  return AsResult(mKey);
}

std::int32_t AdvRegistryAccess::KillKey(std::string sPath) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kAllAccess, mKey) != reg::kSuccess) {
    return 0;
  }
  // A key that still has sub-keys is refused by the store; the result is the same.
  store_.RegDeleteKeyA(mKey, "");
  store_.RegCloseKey(mKey);
  return AsResult(mKey);
}

Boolean AdvRegistryAccess::KeyExists(std::string sPath) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kAllAccess, mKey) != reg::kSuccess) {
    return kFalse;
  }
  store_.RegCloseKey(mKey);
  return kTrue;
}

std::int32_t AdvRegistryAccess::EnumKeys(std::string sPath, std::vector<std::string>& KEY) {
  ParsePath(sPath);
  KEY.clear();
  if (store_.RegOpenKeyA(mRootKey, mSubKey, mKey) != reg::kSuccess) return -1;
  std::uint32_t index = 0;
  for (;; ++index) {
    std::string name = text::Repeat(' ', kBufferSize);
    std::uint32_t size = kBufferSize;
    if (store_.RegEnumKeyExA(mKey, index, name.data(), &size) == reg::kNoMoreItems) break;
    KEY.resize(index + 1);
    KEY[index] = text::Left(name, size);
  }
  store_.RegCloseKey(mKey);
  return static_cast<std::int32_t>(index);
}

Boolean AdvRegistryAccess::HaveSubkey(std::string sPath) {
  ParsePath(sPath);
  if (store_.RegOpenKeyA(mRootKey, mSubKey, mKey) != reg::kSuccess) return kFalse;
  std::string name = text::Repeat(' ', kBufferSize);
  std::uint32_t size = kBufferSize;
  const RegStatus status = store_.RegEnumKeyExA(mKey, 0, name.data(), &size);
  store_.RegCloseKey(mKey);
  return ToBoolean(status != reg::kNoMoreItems);
}

// Opens the key of a write, making it first when the flag says so. False when the write must
// give 0.
static bool PrepareWrite(AdvRegistryAccess& self, const std::string& sPath) {
  if (self.KeyExists(sPath) == kFalse) {
    if (self.CreateKeyIfDoesntExists() != kTrue) return false;
    self.CreateKey(sPath);
  }
  return true;
}

std::int32_t AdvRegistryAccess::WriteString(std::string sPath, std::string sName,
                                            std::string sValue) {
  if (!PrepareWrite(*this, sPath)) return 0;
  ParsePath(sPath);
  if (sName == "@") sName.clear();  // the key's default value
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kWrite, mKey) != reg::kSuccess) return 0;
  // The size leaves the terminator out; the store keeps one all the same.
  if (store_.RegSetValueExA(mKey, sName, 0, reg::kSz, Bytes(sValue), Size(sValue)) !=
      reg::kSuccess) {
    return 0;
  }
  store_.RegCloseKey(mKey);
  return AsResult(mKey);
}

std::string AdvRegistryAccess::ReadString(std::string sPath, std::string sName,
                                          std::string sDefault) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kRead, mKey) != reg::kSuccess) {
    return sDefault;
  }
  std::string buffer = text::Repeat(' ', kBufferSize);
  std::uint32_t size = kBufferSize;
  std::uint32_t kind = reg::kSz;
  if (store_.RegQueryValueExA(mKey, sName, nullptr, &kind, Bytes(buffer), &size) !=
      reg::kSuccess) {
    return sDefault;
  }
  store_.RegCloseKey(mKey);
  // The reported size counts the stored terminator, so the text ends in a NUL.
  return text::Left(text::Trim(buffer), size);
}

std::int32_t AdvRegistryAccess::WriteDWORD(std::string sPath, std::string sName,
                                           std::int32_t lValue) {
  if (!PrepareWrite(*this, sPath)) return 0;
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kWrite, mKey) != reg::kSuccess) return 0;
  const auto bits = static_cast<std::uint32_t>(lValue);
  const std::uint8_t data[4] = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                static_cast<std::uint8_t>(bits >> 16),
                                static_cast<std::uint8_t>(bits >> 24)};
  if (store_.RegSetValueExA(mKey, sName, 0, reg::kDword, data, 4) != reg::kSuccess) return 0;
  store_.RegCloseKey(mKey);
  return AsResult(mKey);
}

std::int32_t AdvRegistryAccess::ReadDWORD(std::string sPath, std::string sName,
                                          std::int32_t lDefault) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kRead, mKey) != reg::kSuccess) {
    return lDefault;
  }
  std::uint8_t data[4] = {0, 0, 0, 0};
  std::uint32_t size = 4;
  std::uint32_t kind = reg::kDword;
  if (store_.RegQueryValueExA(mKey, sName, nullptr, &kind, data, &size) != reg::kSuccess) {
    return lDefault;
  }
  store_.RegCloseKey(mKey);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(data[0]) |
                                   static_cast<std::uint32_t>(data[1]) << 8 |
                                   static_cast<std::uint32_t>(data[2]) << 16 |
                                   static_cast<std::uint32_t>(data[3]) << 24);
}

std::int32_t AdvRegistryAccess::WriteBinary(std::string sPath, std::string sName,
                                            std::string sValue) {
  if (!PrepareWrite(*this, sPath)) return 0;
  ParsePath(sPath);
  sValue = StrToBin(sValue);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kWrite, mKey) != reg::kSuccess) return 0;
  if (store_.RegSetValueExA(mKey, sName, 0, reg::kBinary, Bytes(sValue), Size(sValue)) !=
      reg::kSuccess) {
    return 0;
  }
  store_.RegCloseKey(mKey);
  return AsResult(mKey);
}

std::string AdvRegistryAccess::ReadBinary(std::string sPath, std::string sName,
                                          std::string sDefault) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kRead, mKey) != reg::kSuccess) {
    return sDefault;
  }
  // The first query only learns the size.
  std::string buffer = "0";
  std::uint32_t size = 1;
  std::uint32_t kind = reg::kBinary;
  store_.RegQueryValueExA(mKey, sName, nullptr, &kind, Bytes(buffer), &size);
  buffer = text::Repeat(' ', size);
  kind = reg::kBinary;
  if (store_.RegQueryValueExA(mKey, sName, nullptr, &kind, Bytes(buffer), &size) !=
      reg::kSuccess) {
    return sDefault;
  }
  store_.RegCloseKey(mKey);
  // The buffer is trimmed like a text, so blank bytes at its ends are lost, and the hex text,
  // which starts with a blank, is trimmed too.
  std::string bytes = text::Trim(buffer);
  return text::Trim(BinToStr(bytes));
}

std::int32_t AdvRegistryAccess::KillValue(std::string sPath, std::string sName) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kAllAccess, mKey) != reg::kSuccess) {
    return 0;
  }
  store_.RegDeleteValueA(mKey, sName);
  store_.RegCloseKey(mKey);
  return AsResult(mKey);
}

Boolean AdvRegistryAccess::ValueExists(std::string sPath, std::string sName) {
  ParsePath(sPath);
  if (store_.RegOpenKeyExA(mRootKey, mSubKey, 0, reg::kRead, mKey) != reg::kSuccess) {
    return kFalse;
  }
  std::uint32_t size = 1;
  std::uint32_t kind = 0;
  if (store_.RegQueryValueExA(mKey, sName, nullptr, &kind, nullptr, &size) != reg::kSuccess) {
    return kFalse;
  }
  store_.RegCloseKey(mKey);
  return kTrue;
}

std::int32_t AdvRegistryAccess::EnumValues(std::string sPath, std::vector<std::string>& sName,
                                           std::vector<RegValue>& sValue, std::int32_t OnlyType) {
  ParsePath(sPath);
  RegHandle key = 0;
  if (store_.RegOpenKeyA(mRootKey, mSubKey, key) != reg::kSuccess) return -1;
  sName.clear();
  sValue.clear();
  std::uint32_t index = 0;
  std::size_t count = 0;
  for (;; ++index) {
    std::string name = text::Repeat(' ', kBufferSize);
    std::string data = text::Repeat(' ', kBufferSize);
    std::uint32_t nameSize = kBufferSize;
    std::uint32_t dataSize = kBufferSize;
    std::uint32_t kind = 0;
    if (store_.RegEnumValueA(key, index, name.data(), &nameSize, &kind, Bytes(data),
                             &dataSize) == reg::kNoMoreItems) {
      break;
    }
    if (OnlyType != -1 && static_cast<std::uint32_t>(OnlyType) != kind) continue;
    sName.resize(count + 1);
    sValue.resize(count + 1);
    sName[count] = text::Trim(text::Left(name, nameSize));
    switch (kind) {
      case reg::kBinary:
        if (dataSize < 1) {
          sValue[count] = std::string();
        } else {
          std::string bytes = text::Left(data, dataSize);
          sValue[count] = text::Trim(BinToStr(bytes));
        }
        break;
      case reg::kDword:
        sValue[count] = ReadDWORD(sPath, sName[count], 0);
        break;
      case reg::kSz:
        sValue[count] = ReadString(sPath, sName[count], "");
        break;
      default:
        break;  // listed by name, with no value
    }
    ++count;
  }
  // The close goes to the root handle, which the store ignores; the enumerated key stays open.
  store_.RegCloseKey(mRootKey);
  return static_cast<std::int32_t>(count);
}

}  // namespace quorvane
