// The portable store's own promises: persistence, handles, denied keys.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/portable/MemoryRegistry.h"

namespace quorvane::platform::portable {
namespace {

class MemoryRegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = (std::filesystem::temp_directory_path() /
             ("quorvane-store-" +
              std::string(::testing::UnitTest::GetInstance()->current_test_info()->name())))
                .string();
    std::filesystem::remove(path_);
  }
  void TearDown() override { std::filesystem::remove(path_); }

  static void SetText(MemoryRegistry& store, RegHandle root, const std::string& key,
                      const std::string& name, const std::string& value) {
    RegHandle h = 0;
    ASSERT_EQ(store.RegCreateKeyA(root, key, h), 0);
    ASSERT_EQ(store.RegSetValueExA(h, name, 0, reg::kSz,
                                   reinterpret_cast<const std::uint8_t*>(value.data()),
                                   static_cast<std::uint32_t>(value.size())),
              0);
    store.RegCloseKey(h);
  }
  static std::string GetValue(MemoryRegistry& store, RegHandle root, const std::string& key,
                              const std::string& name, std::uint32_t* kind = nullptr) {
    RegHandle h = 0;
    if (store.RegOpenKeyExA(root, key, 0, reg::kRead, h) != 0) return "<no key>";
    char data[512];
    std::uint32_t size = sizeof data;
    const auto status = store.RegQueryValueExA(h, name, nullptr, kind,
                                               reinterpret_cast<std::uint8_t*>(data), &size);
    store.RegCloseKey(h);
    return status == 0 ? std::string(data, size) : "<no value>";
  }

  std::string path_;
};

TEST_F(MemoryRegistryTest, SavedStoreLoadsBackWhole) {
  MemoryRegistry store;
  SetText(store, reg::kCurrentUser, "Software\\A b%c\\D", "name\twith tab", std::string("x\0y", 3));
  SetText(store, reg::kLocalMachine, "Software\\Classes\\.doc", "", "Word");
  RegHandle h = 0;
  ASSERT_EQ(store.RegCreateKeyA(reg::kUsers, ".DEFAULT\\Bin", h), 0);
  const std::uint8_t bytes[3] = {0, 0xFF, 0x20};
  ASSERT_EQ(store.RegSetValueExA(h, "b", 0, reg::kBinary, bytes, 3), 0);
  store.RegCloseKey(h);
  ASSERT_TRUE(store.SaveToFile(path_));

  MemoryRegistry loaded;
  ASSERT_TRUE(loaded.LoadFromFile(path_));
  std::uint32_t kind = 0;
  EXPECT_EQ(GetValue(loaded, reg::kCurrentUser, "Software\\A b%c\\D", "NAME\tWITH TAB", &kind),
            std::string("x\0y\0", 4));
  EXPECT_EQ(kind, reg::kSz);
  EXPECT_EQ(GetValue(loaded, reg::kClassesRoot, ".doc", ""), std::string("Word\0", 5));
  EXPECT_EQ(GetValue(loaded, reg::kUsers, ".DEFAULT\\Bin", "b", &kind), std::string("\0\xFF ", 3));
  EXPECT_EQ(kind, reg::kBinary);
}

TEST_F(MemoryRegistryTest, MalformedOrMissingFileLeavesTheStoreAsItWas) {
  MemoryRegistry store;
  SetText(store, reg::kCurrentUser, "Software\\Keep", "v", "x");
  EXPECT_FALSE(store.LoadFromFile(path_));
  for (const char* content :
       {"not a store\n", "Quorvane registry store 1\nkey\tHKEY_NOWHERE\n",
        "Quorvane registry store 1\nkey\tHKEY_CURRENT_USER\nvalue\tv\t1\t4G\n",
        "Quorvane registry store 1\nvalue\tv\t1\t00\n",
        "Quorvane registry store 1\nkey\tHKEY_CURRENT_USER\tbad%2\n",
        "Quorvane registry store 1\nkey\tHKEY_CURRENT_USER\nvalue\tv\tone\t00\n",
        "Quorvane registry store 1\nsomething else\n"}) {
    std::ofstream(path_, std::ios::binary) << content;
    EXPECT_FALSE(store.LoadFromFile(path_)) << content;
    EXPECT_EQ(GetValue(store, reg::kCurrentUser, "Software\\Keep", "v"), std::string("x\0", 2));
  }
}

TEST_F(MemoryRegistryTest, HandlesAreReusedAndCountedOnlyWhileOpen) {
  MemoryRegistry store;
  RegHandle a = 0, b = 0;
  ASSERT_EQ(store.RegCreateKeyA(reg::kCurrentUser, "Software\\A", a), 0);
  ASSERT_EQ(store.RegCreateKeyA(reg::kCurrentUser, "Software\\B", b), 0);
  EXPECT_NE(a, b);
  EXPECT_EQ(store.OpenHandleCount(), 2u);
  EXPECT_EQ(store.RegCloseKey(a), 0);
  EXPECT_EQ(store.RegCloseKey(a), reg::kInvalidHandle);
  RegHandle c = 0;
  ASSERT_EQ(store.RegOpenKeyExA(reg::kCurrentUser, "Software\\A", 0, reg::kRead, c), 0);
  EXPECT_EQ(c, a);
  EXPECT_EQ(store.OpenHandleCount(), 2u);
  EXPECT_EQ(store.RegCloseKey(0), reg::kInvalidHandle);
  EXPECT_EQ(store.RegCloseKey(12345), reg::kInvalidHandle);
}

TEST_F(MemoryRegistryTest, AHandleOfADeletedKeyAnswersKeyDeleted) {
  MemoryRegistry store;
  RegHandle a = 0, b = 0;
  ASSERT_EQ(store.RegCreateKeyA(reg::kCurrentUser, "Software\\Gone", a), 0);
  ASSERT_EQ(store.RegOpenKeyExA(reg::kCurrentUser, "Software\\Gone", 0, reg::kAllAccess, b), 0);
  EXPECT_EQ(store.RegDeleteKeyA(b, ""), 0);
  std::uint32_t size = 0;
  EXPECT_EQ(store.RegQueryValueExA(a, "", nullptr, nullptr, nullptr, &size), reg::kKeyDeleted);
}

TEST_F(MemoryRegistryTest, RootsCannotBeDeletedAndUnknownRootsAreInvalid) {
  MemoryRegistry store;
  RegHandle h = 0;
  ASSERT_EQ(store.RegOpenKeyExA(reg::kClassesRoot, "", 0, reg::kAllAccess, h), 0);
  EXPECT_EQ(store.RegDeleteKeyA(h, ""), reg::kAccessDenied);
  EXPECT_EQ(store.RegOpenKeyExA(reg::kDynData, "", 0, reg::kRead, h), reg::kInvalidHandle);
  EXPECT_EQ(store.RegOpenKeyExA(reg::kPerformanceData, "X", 0, reg::kRead, h), reg::kInvalidHandle);
}

TEST_F(MemoryRegistryTest, AccessIsCheckedAgainstTheHandlesRights) {
  MemoryRegistry store;
  RegHandle h = 0;
  ASSERT_EQ(store.RegCreateKeyA(reg::kCurrentUser, "Software\\R", h), 0);
  store.RegCloseKey(h);
  ASSERT_EQ(store.RegOpenKeyExA(reg::kCurrentUser, "Software\\R", 0, reg::kRead, h), 0);
  const std::uint8_t one = 1;
  EXPECT_EQ(store.RegSetValueExA(h, "v", 0, reg::kBinary, &one, 1), reg::kAccessDenied);
  store.RegCloseKey(h);
  ASSERT_EQ(store.RegOpenKeyExA(reg::kCurrentUser, "Software\\R", 0, reg::kWrite, h), 0);
  EXPECT_EQ(store.RegSetValueExA(h, "v", 0, reg::kBinary, &one, 1), 0);
  std::uint32_t size = 0;
  EXPECT_EQ(store.RegQueryValueExA(h, "v", nullptr, nullptr, nullptr, &size), reg::kAccessDenied);
  store.RegCloseKey(h);
}

TEST_F(MemoryRegistryTest, KeysGoNoDeeperThan512Levels) {
  MemoryRegistry store;
  std::string path = "Software";  // level 1
  for (int level = 2; level <= 512; ++level) path += "\\a";
  RegHandle h = 0;
  ASSERT_EQ(store.RegCreateKeyA(reg::kCurrentUser, path, h), 0);
  store.RegCloseKey(h);
  EXPECT_EQ(store.RegCreateKeyA(reg::kCurrentUser, path + "\\a", h), reg::kInvalidParameter);
  ASSERT_TRUE(store.SaveToFile(path_));
  MemoryRegistry loaded;
  EXPECT_TRUE(loaded.LoadFromFile(path_));
  std::ofstream(path_, std::ios::binary)
      << "Quorvane registry store 1\nkey\tHKEY_CURRENT_USER" << [] {
           std::string deep;
           for (int level = 0; level <= 512; ++level) deep += "\ta";
           return deep;
         }() << "\n";
  EXPECT_FALSE(loaded.LoadFromFile(path_));
}

}  // namespace
}  // namespace quorvane::platform::portable
