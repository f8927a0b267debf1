// The store that reuses just-closed keys: what its callers see is what the
// store beneath gives, and keys are opened beneath only when they must be.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/KeyReusingRegistry.h"
#include "platform/portable/MemoryRegistry.h"

namespace quorvane::platform {
namespace {

// The store beneath, counting the opens that reach it.
class CountingRegistry final : public RegistryStore {
 public:
  RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                          std::uint32_t samDesired, RegHandle& result) override {
    ++opens;
    return store.RegOpenKeyExA(key, subKey, options, samDesired, result);
  }
  RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override {
    ++opens;
    // As the system does: an empty path below a root is the root itself.
    if (reg::IsPredefinedRoot(key) && subKey.empty()) {
      result = key;
      return reg::kSuccess;
    }
    return store.RegOpenKeyA(key, subKey, result);
  }
  RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override {
    ++opens;
    return store.RegCreateKeyA(key, subKey, result);
  }
  RegStatus RegCloseKey(RegHandle key) override { return store.RegCloseKey(key); }
  RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) override {
    return store.RegDeleteKeyA(key, subKey);
  }
  RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) override {
    return store.RegDeleteValueA(key, valueName);
  }
  RegStatus RegSetValueExA(RegHandle key, const std::string& valueName, std::uint32_t reserved,
                           std::uint32_t kind, const std::uint8_t* data,
                           std::uint32_t size) override {
    return store.RegSetValueExA(key, valueName, reserved, kind, data, size);
  }
  RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName, std::uint32_t* reserved,
                             std::uint32_t* kind, std::uint8_t* data,
                             std::uint32_t* size) override {
    return store.RegQueryValueExA(key, valueName, reserved, kind, data, size);
  }
  RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize) override {
    return store.RegEnumKeyExA(key, index, name, nameSize);
  }
  RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                          std::uint32_t* kind, std::uint8_t* data,
                          std::uint32_t* dataSize) override {
    return store.RegEnumValueA(key, index, name, nameSize, kind, data, dataSize);
  }

  portable::MemoryRegistry store;
  int opens = 0;
};

class KeyReusingRegistryTest : public ::testing::Test {
 protected:
  RegHandle Open(const std::string& path, std::uint32_t access = reg::kWrite) {
    RegHandle key = 0;
    EXPECT_EQ(keys.RegOpenKeyExA(reg::kCurrentUser, path, 0, access, key), reg::kSuccess);
    return key;
  }
  void Make(const std::string& path) {
    RegHandle key = 0;
    ASSERT_EQ(beneath.store.RegCreateKeyA(reg::kCurrentUser, path, key), reg::kSuccess);
    beneath.store.RegCloseKey(key);
  }
  RegStatus SetDword(RegHandle key, const std::string& name, std::uint32_t value) {
    return keys.RegSetValueExA(key, name, 0, reg::kDword,
                               reinterpret_cast<const std::uint8_t*>(&value), 4);
  }
  RegStatus Dword(RegHandle key, const std::string& name, std::uint32_t& value) {
    std::uint32_t size = 4;
    return keys.RegQueryValueExA(key, name, nullptr, nullptr,
                                 reinterpret_cast<std::uint8_t*>(&value), &size);
  }

  CountingRegistry beneath;
  std::uint64_t now = 1000;
  KeyReusingRegistry keys{beneath, [this] { return now; }};
};

TEST_F(KeyReusingRegistryTest, AKeyReopenedSoonAfterItsCloseIsTheSameKeyOpenedOnce) {
  Make("Software\\A");
  const RegHandle first = Open("Software\\A");
  ASSERT_EQ(keys.RegCloseKey(first), reg::kSuccess);
  now += KeyReusingRegistry::kKeptFor;
  const RegHandle second = Open("Software\\A");
  EXPECT_EQ(second, first);
  EXPECT_EQ(beneath.opens, 1);
  EXPECT_EQ(beneath.store.OpenHandleCount(), 1u);
  ASSERT_EQ(SetDword(second, "V", 7), reg::kSuccess);
  EXPECT_EQ(keys.RegCloseKey(second), reg::kSuccess);
}

TEST_F(KeyReusingRegistryTest, APathInOtherCapitalsIsTheSameKey) {
  Make("Software\\A");
  keys.RegCloseKey(Open("Software\\A"));
  keys.RegCloseKey(Open("SOFTWARE\\a"));
  EXPECT_EQ(beneath.opens, 1);
}

TEST_F(KeyReusingRegistryTest, AKeyClosedLongerAgoIsOpenedAfreshAndTheOldOneClosed) {
  Make("Software\\A");
  keys.RegCloseKey(Open("Software\\A"));
  now += KeyReusingRegistry::kKeptFor + 1;
  const RegHandle again = Open("Software\\A");
  EXPECT_EQ(beneath.opens, 2);
  EXPECT_EQ(beneath.store.OpenHandleCount(), 1u);
  keys.RegCloseKey(again);
}

TEST_F(KeyReusingRegistryTest, OtherAccessOrAnotherWayOfOpeningIsAnotherKey) {
  Make("Software\\A");
  keys.RegCloseKey(Open("Software\\A", reg::kWrite));
  keys.RegCloseKey(Open("Software\\A", reg::kRead));
  RegHandle plain = 0;
  ASSERT_EQ(keys.RegOpenKeyA(reg::kCurrentUser, "Software\\A", plain), reg::kSuccess);
  keys.RegCloseKey(plain);
  RegHandle created = 0;
  ASSERT_EQ(keys.RegCreateKeyA(reg::kCurrentUser, "Software\\A", created), reg::kSuccess);
  keys.RegCloseKey(created);
  EXPECT_EQ(beneath.opens, 4);
  EXPECT_EQ(keys.OpenKeys(), 4u);
}

TEST_F(KeyReusingRegistryTest, TwoHoldersShareTheKeyUntilBothHaveClosedIt) {
  Make("Software\\A");
  const RegHandle first = Open("Software\\A");
  const RegHandle second = Open("Software\\A");
  EXPECT_EQ(first, second);
  EXPECT_EQ(keys.RegCloseKey(first), reg::kSuccess);
  EXPECT_EQ(SetDword(second, "V", 1), reg::kSuccess);
  EXPECT_EQ(keys.RegCloseKey(second), reg::kSuccess);
  EXPECT_EQ(keys.RegCloseKey(second), reg::kInvalidHandle);
}

TEST_F(KeyReusingRegistryTest, AClosedKeyCannotBeUsedThoughItIsStillOpenBeneath) {
  Make("Software\\A");
  const RegHandle key = Open("Software\\A");
  keys.RegCloseKey(key);
  std::uint32_t value = 0;
  EXPECT_EQ(SetDword(key, "V", 1), reg::kInvalidHandle);
  EXPECT_EQ(Dword(key, "V", value), reg::kInvalidHandle);
  EXPECT_EQ(keys.RegDeleteValueA(key, "V"), reg::kInvalidHandle);
  EXPECT_EQ(keys.RegDeleteKeyA(key, ""), reg::kInvalidHandle);
  char name[16];
  std::uint32_t size = sizeof name;
  EXPECT_EQ(keys.RegEnumKeyExA(key, 0, name, &size), reg::kInvalidHandle);
  size = sizeof name;
  EXPECT_EQ(keys.RegEnumValueA(key, 0, name, &size, nullptr, nullptr, nullptr),
            reg::kInvalidHandle);
  RegHandle below = 0;
  EXPECT_EQ(keys.RegOpenKeyA(key, "", below), reg::kInvalidHandle);
  EXPECT_EQ(beneath.store.OpenHandleCount(), 1u);
}

TEST_F(KeyReusingRegistryTest, AKeyDeletedAndMadeAgainIsTheNewKeyNotTheDeletedOne) {
  Make("Software\\A");
  const RegHandle old = Open("Software\\A");
  ASSERT_EQ(SetDword(old, "V", 5), reg::kSuccess);
  keys.RegCloseKey(old);
  ASSERT_EQ(keys.RegDeleteKeyA(reg::kCurrentUser, "Software\\A"), reg::kSuccess);
  EXPECT_EQ(beneath.store.OpenHandleCount(), 0u);
  RegHandle missing = 0;
  EXPECT_EQ(keys.RegOpenKeyExA(reg::kCurrentUser, "Software\\A", 0, reg::kWrite, missing),
            reg::kFileNotFound);
  Make("Software\\A");
  const RegHandle fresh = Open("Software\\A");
  std::uint32_t value = 0;
  EXPECT_NE(Dword(fresh, "V", value), reg::kSuccess);
  keys.RegCloseKey(fresh);
}

TEST_F(KeyReusingRegistryTest, AKeyHeldDuringADeleteIsClosedForGoodByItsHolder) {
  Make("Software\\A");
  Make("Software\\B");
  const RegHandle held = Open("Software\\A", reg::kAllAccess);
  keys.RegCloseKey(Open("Software\\B"));
  ASSERT_EQ(keys.RegDeleteKeyA(held, ""), reg::kSuccess);
  EXPECT_EQ(beneath.store.OpenHandleCount(),
            1u);  // B closed for good, A still held
  EXPECT_EQ(keys.RegCloseKey(held), reg::kSuccess);
  EXPECT_EQ(beneath.store.OpenHandleCount(), 0u);
  RegHandle missing = 0;
  EXPECT_EQ(keys.RegOpenKeyExA(reg::kCurrentUser, "Software\\A", 0, reg::kWrite, missing),
            reg::kFileNotFound);
}

TEST_F(KeyReusingRegistryTest, AFailedDeleteKeepsTheKeptKeys) {
  Make("Software\\A\\B");
  keys.RegCloseKey(Open("Software\\A\\B"));
  EXPECT_NE(keys.RegDeleteKeyA(reg::kCurrentUser, "Software\\A"), reg::kSuccess);
  keys.RegCloseKey(Open("Software\\A\\B"));
  EXPECT_EQ(beneath.opens, 1);
}

TEST_F(KeyReusingRegistryTest, KeysBelowAHeldKeyAreReusedByTheirWholePath) {
  Make("Software\\A\\B");
  const RegHandle parent = Open("Software\\A");
  RegHandle child = 0;
  ASSERT_EQ(keys.RegOpenKeyExA(parent, "B", 0, reg::kWrite, child), reg::kSuccess);
  keys.RegCloseKey(child);
  keys.RegCloseKey(Open("Software\\A\\B"));
  EXPECT_EQ(beneath.opens, 2);
  keys.RegCloseKey(parent);
}

TEST_F(KeyReusingRegistryTest, AMissingKeyFailsEveryTimeAndNothingIsKept) {
  RegHandle key = 0;
  EXPECT_EQ(keys.RegOpenKeyExA(reg::kCurrentUser, "Software\\Missing", 0, reg::kRead, key),
            reg::kFileNotFound);
  EXPECT_EQ(keys.RegOpenKeyExA(reg::kCurrentUser, "Software\\Missing", 0, reg::kRead, key),
            reg::kFileNotFound);
  EXPECT_EQ(beneath.opens, 2);
  EXPECT_EQ(keys.OpenKeys(), 0u);
}

TEST_F(KeyReusingRegistryTest, AtMostSoManyClosedKeysAreKeptTheLongestClosedGoingFirst) {
  const std::size_t many = KeyReusingRegistry::kMostKept + 3;
  for (std::size_t i = 0; i < many; ++i) {
    Make("Software\\K" + std::to_string(i));
    keys.RegCloseKey(Open("Software\\K" + std::to_string(i)));
  }
  EXPECT_EQ(beneath.store.OpenHandleCount(), KeyReusingRegistry::kMostKept);
  const int before = beneath.opens;
  keys.RegCloseKey(Open("Software\\K" + std::to_string(many - 1)));
  EXPECT_EQ(beneath.opens, before);
  keys.RegCloseKey(Open("Software\\K0"));
  EXPECT_EQ(beneath.opens, before + 1);
}

TEST_F(KeyReusingRegistryTest, KeysOpenedBelowAKeyItDoesNotKnowPassStraightThrough) {
  Make("Software\\A\\B");
  RegHandle outside = 0;
  ASSERT_EQ(beneath.store.RegOpenKeyA(reg::kCurrentUser, "Software\\A", outside), 0);
  RegHandle child = 0;
  ASSERT_EQ(keys.RegOpenKeyA(outside, "B", child), reg::kSuccess);
  EXPECT_EQ(keys.OpenKeys(), 0u);
  EXPECT_EQ(keys.RegCloseKey(child), reg::kSuccess);
  EXPECT_EQ(beneath.store.RegCloseKey(outside), reg::kSuccess);
  EXPECT_EQ(beneath.store.OpenHandleCount(), 0u);
}

TEST_F(KeyReusingRegistryTest, ARootOpenedByAnEmptyPathStaysUsableAfterItsClose) {
  RegHandle root = 0;
  ASSERT_EQ(keys.RegOpenKeyA(reg::kCurrentUser, "", root), reg::kSuccess);
  EXPECT_EQ(root, reg::kCurrentUser);
  EXPECT_EQ(keys.RegCloseKey(root), reg::kSuccess);
  RegHandle created = 0;
  EXPECT_EQ(keys.RegCreateKeyA(reg::kCurrentUser, "Software\\New", created), reg::kSuccess);
  EXPECT_EQ(keys.RegCloseKey(created), reg::kSuccess);
}

TEST_F(KeyReusingRegistryTest, KeysStillOpenAreClosedWhenTheStoreGoes) {
  Make("Software\\A");
  {
    KeyReusingRegistry shortLived{beneath, [this] { return now; }};
    RegHandle key = 0;
    ASSERT_EQ(shortLived.RegOpenKeyA(reg::kCurrentUser, "Software\\A", key), reg::kSuccess);
    shortLived.RegCloseKey(key);
    EXPECT_EQ(beneath.store.OpenHandleCount(), 1u);
  }
  EXPECT_EQ(beneath.store.OpenHandleCount(), 0u);
}

}  // namespace
}  // namespace quorvane::platform
