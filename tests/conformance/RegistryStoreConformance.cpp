// The registry store's operations as the system relies on them.
#include <cstring>
#include <string>
#include <vector>

#include "RegistryFixture.h"

namespace quorvane::testing {
namespace {

namespace reg = platform::reg;
using platform::RegHandle;

class RegistryStoreTest : public RegistryTest {
 protected:
  RegHandle Create(const std::string& below) {
    RegHandle key = 0;
    EXPECT_EQ(Store().RegCreateKeyA(reg::kCurrentUser, Base() + "\\" + below, key), 0);
    return key;
  }
  std::vector<std::string> SubKeys(RegHandle key) {
    std::vector<std::string> names;
    for (std::uint32_t i = 0;; ++i) {
      char name[256];
      std::uint32_t size = sizeof name;
      const auto status = Store().RegEnumKeyExA(key, i, name, &size);
      if (status == reg::kNoMoreItems) break;
      EXPECT_EQ(status, 0);
      names.emplace_back(name, size);
    }
    return names;
  }
  void SetText(RegHandle key, const std::string& name, const std::string& value,
               std::uint32_t size) {
    ASSERT_EQ(Store().RegSetValueExA(key, name, 0, reg::kSz,
                                     reinterpret_cast<const std::uint8_t*>(value.c_str()), size),
              0);
  }
};

TEST_F(RegistryStoreTest, OpeningAMissingKeyFails) {
  RegHandle key = 0;
  EXPECT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\Missing", 0, reg::kRead, key),
            reg::kFileNotFound);
  EXPECT_NE(Store().RegOpenKeyA(reg::kCurrentUser, Base() + "\\Missing", key), 0);
}

TEST_F(RegistryStoreTest, RootZeroFailsEveryOperation) {
  RegHandle key = 0;
  EXPECT_NE(Store().RegOpenKeyExA(0, "Software", 0, reg::kRead, key), 0);
  EXPECT_NE(Store().RegOpenKeyA(0, "Software", key), 0);
  EXPECT_NE(Store().RegCreateKeyA(0, "Software\\X", key), 0);
}

TEST_F(RegistryStoreTest, CreatingMakesTheMissingAncestors) {
  const RegHandle key = Create("A\\B\\C");
  EXPECT_NE(key, 0u);
  EXPECT_EQ(Store().RegCloseKey(key), 0);
  RegHandle opened = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\A\\B", 0, reg::kRead, opened), 0);
  EXPECT_EQ(SubKeys(opened), std::vector<std::string>{"C"});
  Store().RegCloseKey(opened);
}

TEST_F(RegistryStoreTest, KeyNamesIgnoreCase) {
  Store().RegCloseKey(Create("MixedCase"));
  RegHandle key = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\MIXEDCASE", 0, reg::kRead, key), 0);
  Store().RegCloseKey(key);
  ASSERT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\mixedcase", 0, reg::kRead, key), 0);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, EmptySubKeyOpensTheKeyItself) {
  const RegHandle key = Create("Self");
  SetText(key, "v", "x", 1);
  RegHandle same = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(key, "", 0, reg::kRead, same), 0);
  std::uint32_t size = 0;
  EXPECT_EQ(Store().RegQueryValueExA(same, "v", nullptr, nullptr, nullptr, &size), 0);
  Store().RegCloseKey(same);
  // The variant without a mask gives back the very handle it was given.
  ASSERT_EQ(Store().RegOpenKeyA(key, "", same), 0);
  EXPECT_EQ(same, key);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, TextValueKeepsATerminatorTheSizeLeftOut) {
  const RegHandle key = Create("Text");
  SetText(key, "abc", "abc", 3);
  char data[16];
  std::memset(data, ' ', sizeof data);
  std::uint32_t size = sizeof data;
  std::uint32_t kind = 0;
  ASSERT_EQ(Store().RegQueryValueExA(key, "abc", nullptr, &kind,
                                     reinterpret_cast<std::uint8_t*>(data), &size),
            0);
  EXPECT_EQ(kind, reg::kSz);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(std::string(data, 4), std::string("abc\0", 4));
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, TextValueWithItsTerminatorIsNotDoubled) {
  const RegHandle key = Create("Text");
  SetText(key, "abc", "abc", 4);
  std::uint32_t size = 0;
  ASSERT_EQ(Store().RegQueryValueExA(key, "abc", nullptr, nullptr, nullptr, &size), 0);
  EXPECT_EQ(size, 4u);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, QueryTellsTheNeededSizeWhenDataDoesNotFit) {
  const RegHandle key = Create("Fit");
  const std::uint8_t bytes[6] = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(Store().RegSetValueExA(key, "bin", 0, reg::kBinary, bytes, 6), 0);
  std::uint8_t data[2] = {0, 0};
  std::uint32_t size = 2;
  std::uint32_t kind = 0;
  EXPECT_EQ(Store().RegQueryValueExA(key, "bin", nullptr, &kind, data, &size), reg::kMoreData);
  EXPECT_EQ(size, 6u);
  // A null data pointer succeeds for any existing value.
  size = 1;
  EXPECT_EQ(Store().RegQueryValueExA(key, "bin", nullptr, &kind, nullptr, &size), 0);
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(kind, reg::kBinary);
  EXPECT_EQ(Store().RegQueryValueExA(key, "nothing", nullptr, &kind, nullptr, &size),
            reg::kFileNotFound);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, ValueNamesIgnoreCaseAndReplace) {
  const RegHandle key = Create("Names");
  SetText(key, "Name", "one", 3);
  SetText(key, "NAME", "two", 3);
  char data[8] = {};
  std::uint32_t size = sizeof data;
  ASSERT_EQ(Store().RegQueryValueExA(key, "name", nullptr, nullptr,
                                     reinterpret_cast<std::uint8_t*>(data), &size),
            0);
  EXPECT_STREQ(data, "two");
  char name[32];
  std::uint32_t nameSize = sizeof name;
  EXPECT_EQ(Store().RegEnumValueA(key, 1, name, &nameSize, nullptr, nullptr, nullptr),
            reg::kNoMoreItems);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, SubKeysEnumerateInSortedOrderThen259) {
  const RegHandle key = Create("Sorted");
  for (const char* name : {"delta", "Alpha", "charlie", "Bravo"}) {
    RegHandle child = 0;
    ASSERT_EQ(Store().RegCreateKeyA(key, name, child), 0);
    Store().RegCloseKey(child);
  }
  EXPECT_EQ(SubKeys(key), (std::vector<std::string>{"Alpha", "Bravo", "charlie", "delta"}));
  char name[8];
  std::uint32_t size = sizeof name;
  EXPECT_EQ(Store().RegEnumKeyExA(key, 4, name, &size), reg::kNoMoreItems);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, EnumeratedNameThatDoesNotFitIsMoreData) {
  const RegHandle key = Create("Long");
  RegHandle child = 0;
  ASSERT_EQ(Store().RegCreateKeyA(key, "ABCDEFGHIJ", child), 0);
  Store().RegCloseKey(child);
  char name[8];
  std::uint32_t size = sizeof name;
  EXPECT_EQ(Store().RegEnumKeyExA(key, 0, name, &size), reg::kMoreData);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, ValuesEnumerateWithKindAndData) {
  const RegHandle key = Create("Values");
  SetText(key, "a", "text", 4);
  const std::uint8_t dword[4] = {42, 0, 0, 0};
  ASSERT_EQ(Store().RegSetValueExA(key, "b", 0, reg::kDword, dword, 4), 0);
  std::vector<std::pair<std::string, std::uint32_t>> seen;
  for (std::uint32_t i = 0;; ++i) {
    char name[64];
    std::uint32_t nameSize = sizeof name;
    std::uint8_t data[64];
    std::uint32_t dataSize = sizeof data;
    std::uint32_t kind = 0;
    const auto status = Store().RegEnumValueA(key, i, name, &nameSize, &kind, data, &dataSize);
    if (status == reg::kNoMoreItems) break;
    ASSERT_EQ(status, 0);
    seen.emplace_back(std::string(name, nameSize), kind);
    if (kind == reg::kSz) {
      EXPECT_EQ(dataSize, 5u);
    }
    if (kind == reg::kDword) {
      EXPECT_EQ(data[0], 42);
    }
  }
  EXPECT_EQ(seen, (std::vector<std::pair<std::string, std::uint32_t>>{{"a", reg::kSz},
                                                                       {"b", reg::kDword}}));
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, ValuesEnumerateInTheOrderOfTheirNames) {
  const RegHandle key = Create("Order");
  for (const char* name : {"zulu", "Alpha", "mike"}) SetText(key, name, "x", 1);
  std::vector<std::string> names;
  for (std::uint32_t i = 0;; ++i) {
    char name[64];
    std::uint32_t nameSize = sizeof name;
    if (Store().RegEnumValueA(key, i, name, &nameSize, nullptr, nullptr, nullptr) != 0) break;
    names.emplace_back(name, nameSize);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"Alpha", "mike", "zulu"}));
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, CreatingWithAnEmptySubKeyOpensTheKeyAgain) {
  const RegHandle key = Create("Again");
  RegHandle again = 0;
  ASSERT_EQ(Store().RegCreateKeyA(key, "", again), 0);
  EXPECT_NE(again, 0u);
  std::uint32_t size = 0;
  SetText(key, "v", "x", 1);
  EXPECT_EQ(Store().RegQueryValueExA(again, "v", nullptr, nullptr, nullptr, &size), 0);
  Store().RegCloseKey(again);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, DeletingAKeyWithSubKeysIsRefused) {
  Store().RegCloseKey(Create("Parent\\Child"));
  RegHandle parent = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\Parent", 0, reg::kAllAccess, parent), 0);
  EXPECT_NE(Store().RegDeleteKeyA(parent, ""), 0);
  Store().RegCloseKey(parent);
  RegHandle child = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\Parent\\Child", 0, reg::kAllAccess, child), 0);
  EXPECT_EQ(Store().RegDeleteKeyA(child, ""), 0);
  Store().RegCloseKey(child);
  EXPECT_NE(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\Parent\\Child", 0, reg::kRead, child), 0);
  ASSERT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\Parent", 0, reg::kAllAccess, parent), 0);
  EXPECT_EQ(Store().RegDeleteKeyA(parent, ""), 0);
  Store().RegCloseKey(parent);
}

TEST_F(RegistryStoreTest, DeletingValues) {
  const RegHandle key = Create("Delete");
  SetText(key, "v", "x", 1);
  EXPECT_EQ(Store().RegDeleteValueA(key, "V"), 0);
  EXPECT_EQ(Store().RegDeleteValueA(key, "v"), reg::kFileNotFound);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, ClosingARootIsHarmless) {
  EXPECT_EQ(Store().RegCloseKey(reg::kCurrentUser), 0);
  RegHandle key = 0;
  EXPECT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, "Software", 0, reg::kRead, key), 0);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, ASubKeyMayNotStartWithABackslash) {
  Store().RegCloseKey(Create("Slash"));
  RegHandle key = 0;
  EXPECT_NE(Store().RegOpenKeyExA(reg::kCurrentUser, "\\" + Base() + "\\Slash", 0, reg::kRead, key), 0);
  EXPECT_EQ(Store().RegOpenKeyExA(reg::kCurrentUser, Base() + "\\Slash\\", 0, reg::kRead, key), 0);
  Store().RegCloseKey(key);
}

TEST_F(RegistryStoreTest, ClassesRootIsTheMachineClassesKey) {
  RegHandle key = 0;
  ASSERT_EQ(Store().RegCreateKeyA(reg::kLocalMachine, "Software\\Classes\\.quorvaneconformance", key), 0);
  Store().RegCloseKey(key);
  EXPECT_EQ(Store().RegOpenKeyExA(reg::kClassesRoot, ".quorvaneconformance", 0, reg::kRead, key), 0);
  Store().RegCloseKey(key);
  EXPECT_EQ(Store().RegDeleteKeyA(reg::kLocalMachine, "Software\\Classes\\.quorvaneconformance"), 0);
}

}  // namespace
}  // namespace quorvane::testing
