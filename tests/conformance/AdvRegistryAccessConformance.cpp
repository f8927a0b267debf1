// AdvRegistryAccess over the store: results, defaults and the members' quirks.
#include <map>
#include <string>
#include <vector>

#include "RegistryFixture.h"
#include "stores/AdvRegistryAccess.h"

namespace quorvane::testing {
namespace {

const std::string kNul(1, '\0');

class AdvRegistryAccessTest : public RegistryTest {
 protected:
  AdvRegistryAccess reg_{Store()};
};

TEST_F(AdvRegistryAccessTest, StartsWithCreateKeyIfDoesntExistsTrue) {
  EXPECT_EQ(reg_.CreateKeyIfDoesntExists(), kTrue);
}

TEST_F(AdvRegistryAccessTest, ReadStringDefaults) {
  EXPECT_EQ(reg_.ReadString(Path("Missing"), "Name", "d"), "d");
  EXPECT_EQ(reg_.ReadString(Path("Missing"), "Name"), kNul);
  reg_.CreateKey(Path());
  EXPECT_EQ(reg_.ReadString(Path(), "Name", "d"), "d");
  EXPECT_EQ(reg_.ReadString(Path(), "Name"), kNul);
}

TEST_F(AdvRegistryAccessTest, ReadStringCountsTheTerminator) {
  EXPECT_NE(reg_.WriteString(Path(), "Name", "abc"), 0);
  EXPECT_EQ(reg_.ReadString(Path(), "Name"), std::string("abc\0", 4));
  EXPECT_EQ(reg_.ReadString(Path(), "name", "d"), std::string("abc\0", 4));
}

TEST_F(AdvRegistryAccessTest, ReadStringOfATextThatFillsTheBufferGivesTheDefault) {
  reg_.WriteString(Path(), "Fits", std::string(254, 'x'));
  reg_.WriteString(Path(), "TooLong", std::string(255, 'x'));
  EXPECT_EQ(reg_.ReadString(Path(), "Fits", "d"), std::string(254, 'x') + kNul);
  EXPECT_EQ(reg_.ReadString(Path(), "TooLong", "d"), "d");
}

TEST_F(AdvRegistryAccessTest, ReadStringTrimsBlanksAtTheStart) {
  reg_.WriteString(Path(), "Padded", "  ab");
  // Trimmed first, then cut at the stored size of five: the terminator comes along.
  EXPECT_EQ(reg_.ReadString(Path(), "Padded"), std::string("ab\0", 3));
}

TEST_F(AdvRegistryAccessTest, AtIsTheDefaultValueOnlyForWriteString) {
  EXPECT_NE(reg_.WriteString(Path(), "@", "x"), 0);
  EXPECT_EQ(reg_.ReadString(Path(), "@", "none"), "none");
  EXPECT_EQ(reg_.ReadString(Path(), ""), std::string("x\0", 2));
  EXPECT_NE(reg_.WriteDWORD(Path(), "@", 7), 0);
  EXPECT_EQ(reg_.ReadDWORD(Path(), "@"), 7);
  EXPECT_EQ(reg_.ReadString(Path(), ""), std::string("x\0", 2));
  EXPECT_NE(reg_.WriteBinary(Path(), "@", "0102"), 0);
  EXPECT_EQ(reg_.ReadBinary(Path(), "@"), "01 02");
  EXPECT_EQ(reg_.ReadString(Path(), ""), std::string("x\0", 2));
}

TEST_F(AdvRegistryAccessTest, ReadDWORDDefaults) {
  EXPECT_EQ(reg_.ReadDWORD(Path(), "Missing"), -1);
  reg_.CreateKey(Path());
  EXPECT_EQ(reg_.ReadDWORD(Path(), "Missing"), -1);
  EXPECT_EQ(reg_.ReadDWORD(Path(), "Missing", 5), 5);
  EXPECT_NE(reg_.WriteDWORD(Path(), "Number", -2), 0);
  EXPECT_EQ(reg_.ReadDWORD(Path(), "Number"), -2);
}

TEST_F(AdvRegistryAccessTest, ReadDWORDDoesNotCheckTheKind) {
  reg_.WriteBinary(Path(), "Bytes", "2A000000");
  EXPECT_EQ(reg_.ReadDWORD(Path(), "Bytes"), 42);
  reg_.WriteBinary(Path(), "Long", "0102030405");
  EXPECT_EQ(reg_.ReadDWORD(Path(), "Long", 9), 9);
}

TEST_F(AdvRegistryAccessTest, WritesWithoutCreationOnAMissingKeyGiveZero) {
  reg_.CreateKeyIfDoesntExists(kFalse);
  EXPECT_EQ(reg_.WriteString(Path("New"), "a", "b"), 0);
  EXPECT_EQ(reg_.WriteDWORD(Path("New"), "a", 1), 0);
  EXPECT_EQ(reg_.WriteBinary(Path("New"), "a", "01"), 0);
  EXPECT_EQ(reg_.KeyExists(Path("New")), kFalse);
}

TEST_F(AdvRegistryAccessTest, OnlyMinusOneCountsAsTrueForTheCreationFlag) {
  reg_.CreateKeyIfDoesntExists(1);
  EXPECT_EQ(reg_.WriteString(Path("New"), "a", "b"), 0);
  EXPECT_EQ(reg_.KeyExists(Path("New")), kFalse);
  reg_.CreateKeyIfDoesntExists(kTrue);
  EXPECT_NE(reg_.WriteString(Path("New\\Deeper"), "a", "b"), 0);
  EXPECT_EQ(reg_.KeyExists(Path("New\\Deeper")), kTrue);
}

TEST_F(AdvRegistryAccessTest, KillKeyLeavesAKeyWithSubKeysButStillAnswersNonZero) {
  reg_.CreateKey(Path("Parent\\Child"));
  EXPECT_NE(reg_.KillKey(Path("Parent")), 0);
  EXPECT_EQ(reg_.KeyExists(Path("Parent\\Child")), kTrue);
  EXPECT_NE(reg_.KillKey(Path("Parent\\Child")), 0);
  EXPECT_EQ(reg_.KeyExists(Path("Parent\\Child")), kFalse);
  EXPECT_EQ(reg_.KillKey(Path("Parent\\Child")), 0);
}

TEST_F(AdvRegistryAccessTest, RootsInLongAndShortFormAndAnyCase) {
  reg_.WriteString(ShortPath("Roots"), "v", "1");
  EXPECT_EQ(reg_.KeyExists("hkey_current_user\\" + Base() + "\\Roots"), kTrue);
  EXPECT_EQ(reg_.KeyExists("hkcu\\" + Base() + "\\Roots"), kTrue);
  EXPECT_EQ(reg_.KeyExists("HKCUX\\" + Base() + "\\Roots"), kTrue);
  EXPECT_EQ(reg_.KeyExists("HKU\\" + Base() + "\\Roots"), kFalse);
  EXPECT_EQ(reg_.KeyExists("HKEY_USERS\\.DEFAULT"), kTrue);
  EXPECT_EQ(reg_.KeyExists("hkus\\.DEFAULT"), kTrue);
  EXPECT_EQ(reg_.KeyExists("HKCUX"), kFalse);
  EXPECT_EQ(reg_.KeyExists("HKCU"), kTrue);
}

TEST_F(AdvRegistryAccessTest, EnumKeysListsAndEmptiesItsArrayFirst) {
  std::vector<std::string> keys{"stale"};
  EXPECT_EQ(reg_.EnumKeys(Path("Missing"), keys), -1);
  EXPECT_TRUE(keys.empty());
  reg_.CreateKey(Path("List\\b"));
  reg_.CreateKey(Path("List\\A"));
  EXPECT_EQ(reg_.EnumKeys(Path("List"), keys), 2);
  EXPECT_EQ(keys, (std::vector<std::string>{"A", "b"}));
  EXPECT_EQ(reg_.EnumKeys(Path("List\\A"), keys), 0);
  EXPECT_TRUE(keys.empty());
}

TEST_F(AdvRegistryAccessTest, HaveSubkey) {
  reg_.CreateKey(Path("Has\\Child"));
  EXPECT_EQ(reg_.HaveSubkey(Path("Has")), kTrue);
  EXPECT_EQ(reg_.HaveSubkey(Path("Has\\Child")), kFalse);
  EXPECT_EQ(reg_.HaveSubkey(Path("Missing")), kFalse);
}

TEST_F(AdvRegistryAccessTest, ValueExistsAndKillValue) {
  reg_.WriteString(Path(), "v", "x");
  EXPECT_EQ(reg_.ValueExists(Path(), "V"), kTrue);
  EXPECT_NE(reg_.KillValue(Path(), "v"), 0);
  EXPECT_EQ(reg_.ValueExists(Path(), "v"), kFalse);
  // The key opens, so the result is non-zero even though there was nothing to delete.
  EXPECT_NE(reg_.KillValue(Path(), "v"), 0);
  EXPECT_EQ(reg_.KillValue(Path("Missing"), "v"), 0);
  EXPECT_EQ(reg_.ValueExists(Path("Missing"), "v"), kFalse);
}

TEST_F(AdvRegistryAccessTest, BinaryValuesRoundTripAsHexText) {
  EXPECT_NE(reg_.WriteBinary(Path(), "b", "00 0a ff"), 0);
  EXPECT_EQ(reg_.ReadBinary(Path(), "b"), "00 0A FF");
  EXPECT_NE(reg_.WriteBinary(Path(), "empty", ""), 0);
  EXPECT_EQ(reg_.ValueExists(Path(), "empty"), kTrue);
  EXPECT_EQ(reg_.ReadBinary(Path(), "empty", "d"), "");
  EXPECT_EQ(reg_.ReadBinary(Path(), "missing", "d"), "d");
  EXPECT_EQ(reg_.ReadBinary(Path(), "missing"), "");
}

TEST_F(AdvRegistryAccessTest, ReadBinaryLosesBlankBytesAtTheEnds) {
  reg_.WriteBinary(Path(), "b", "20 41 20");
  EXPECT_EQ(reg_.ReadBinary(Path(), "b"), "41");
  std::vector<std::string> names;
  std::vector<RegValue> values;
  ASSERT_EQ(reg_.EnumValues(Path(), names, values, 3), 1);
  EXPECT_EQ(std::get<std::string>(values[0]), "20 41 20");
}

TEST_F(AdvRegistryAccessTest, ReadStringDoesNotCheckTheKind) {
  reg_.WriteBinary(Path(), "b", "41 42");
  EXPECT_EQ(reg_.ReadString(Path(), "b"), "AB");
}

TEST_F(AdvRegistryAccessTest, EnumValuesListsEveryKindOrOneKind) {
  reg_.WriteString(Path(), "text", "hello");
  reg_.WriteDWORD(Path(), "number", 42);
  reg_.WriteBinary(Path(), "bytes", "0102");
  std::vector<std::string> names;
  std::vector<RegValue> values;
  ASSERT_EQ(reg_.EnumValues(Path(), names, values), 3);
  std::map<std::string, RegValue> all;
  for (std::size_t i = 0; i < names.size(); ++i) all[names[i]] = values[i];
  EXPECT_EQ(std::get<std::string>(all["text"]), std::string("hello\0", 6));
  EXPECT_EQ(std::get<std::int32_t>(all["number"]), 42);
  EXPECT_EQ(std::get<std::string>(all["bytes"]), "01 02");

  ASSERT_EQ(reg_.EnumValues(Path(), names, values, 4), 1);
  EXPECT_EQ(names, std::vector<std::string>{"number"});
  EXPECT_EQ(std::get<std::int32_t>(values[0]), 42);
}

TEST_F(AdvRegistryAccessTest, EnumValuesOnAMissingKeyLeavesTheArrays) {
  std::vector<std::string> names{"kept"};
  std::vector<RegValue> values{std::string("kept")};
  EXPECT_EQ(reg_.EnumValues(Path("Missing"), names, values), -1);
  EXPECT_EQ(names, std::vector<std::string>{"kept"});
  EXPECT_EQ(values.size(), 1u);
}

TEST_F(AdvRegistryAccessTest, EnumValuesListsOtherKindsWithNoValue) {
  platform::RegHandle key = 0;
  ASSERT_EQ(Store().RegCreateKeyA(platform::reg::kCurrentUser, Base(), key), 0);
  const char multi[] = "a\0b\0";
  ASSERT_EQ(Store().RegSetValueExA(key, "multi", 0, platform::reg::kMultiSz,
                                   reinterpret_cast<const std::uint8_t*>(multi), sizeof multi),
            0);
  Store().RegCloseKey(key);
  std::vector<std::string> names;
  std::vector<RegValue> values;
  ASSERT_EQ(reg_.EnumValues(Path(), names, values), 1);
  EXPECT_EQ(names[0], "multi");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(values[0]));
}

TEST_F(AdvRegistryAccessTest, SuccessIsTheLastKeyHandle) {
  const std::int32_t created = reg_.CreateKey(Path("Handle"));
  EXPECT_NE(created, 0);
  EXPECT_NE(reg_.WriteString(Path("Handle"), "v", "x"), 0);
  EXPECT_EQ(reg_.CreateKey("NOWHERE\\X"), 0);
}

TEST_F(AdvRegistryAccessTest, CreateKeyOfARootAloneSucceeds) {
  EXPECT_NE(reg_.CreateKey("HKCU"), 0);
  EXPECT_EQ(reg_.KeyExists("HKCU"), kTrue);
}

}  // namespace
}  // namespace quorvane::testing
