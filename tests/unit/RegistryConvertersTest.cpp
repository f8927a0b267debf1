// StrToBin, BinToStr, isBinValid and ParsePath, answers that look wrong included.
#include <gtest/gtest.h>

#include <string>

#include "AdvRegistryAccessProbe.h"
#include "base/Failure.h"
#include "platform/portable/MemoryRegistry.h"

namespace quorvane {
namespace {

namespace reg = platform::reg;

class ConvertersTest : public ::testing::Test {
 protected:
  platform::portable::MemoryRegistry store_;
  AdvRegistryAccess reg_{store_};
};

TEST_F(ConvertersTest, StrToBinRemovesBlanksFromTheCallersText) {
  std::string hex = "41 42";
  EXPECT_EQ(reg_.StrToBin(hex), "AB");
  EXPECT_EQ(hex, "4142");
  std::string padded = "  4 1  ";
  EXPECT_EQ(reg_.StrToBin(padded), "A");
  EXPECT_EQ(padded, "41");
}

TEST_F(ConvertersTest, StrToBinOddLengthsRoundHalfToEven) {
  auto convert = [&](std::string s) { return reg_.StrToBin(s); };
  EXPECT_EQ(convert("A"), "");
  EXPECT_EQ(convert("ABC"), std::string("\xAB\x0C", 2));
  EXPECT_EQ(convert("ABCDE"), std::string("\xAB\xCD", 2));
  EXPECT_EQ(convert("ABCDEF1"), std::string("\xAB\xCD\xEF\x01", 4));
  EXPECT_EQ(convert("ABCDEF123"), std::string("\xAB\xCD\xEF\x12", 4));
  EXPECT_EQ(convert(""), "");
  EXPECT_EQ(convert("   "), "");
}

TEST_F(ConvertersTest, StrToBinReadsUpToTheFirstNonHexCharacter) {
  auto convert = [&](std::string s) { return reg_.StrToBin(s); };
  EXPECT_EQ(convert("4G"), std::string("\x04", 1));
  EXPECT_EQ(convert("ZZ"), std::string("\0", 1));
  EXPECT_EQ(convert("00ff"), std::string("\0\xFF", 2));
  EXPECT_EQ(convert("0a"), std::string("\n", 1));
}

TEST_F(ConvertersTest, StrToBinOverflowsPast32767Characters) {
  std::string fits(32766, 'A');
  EXPECT_EQ(reg_.StrToBin(fits).size(), 16383u);
  std::string tooLong(32768, 'A');
  try {
    reg_.StrToBin(tooLong);
    FAIL() << "no overflow";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), FailureNumber::Overflow);
  }
}

TEST_F(ConvertersTest, BinToStrStartsWithABlank) {
  std::string abc = "ABC";
  EXPECT_EQ(reg_.BinToStr(abc), " 41 42 43");
  EXPECT_EQ(abc, "ABC");
  std::string bytes("\0\n", 2);
  EXPECT_EQ(reg_.BinToStr(bytes), " 00 0A");
  std::string high("\xFF\x80", 2);
  EXPECT_EQ(reg_.BinToStr(high), " FF 80");
  std::string empty;
  EXPECT_EQ(reg_.BinToStr(empty), "");
  std::string tooLong(32768, 'x');
  EXPECT_THROW(reg_.BinToStr(tooLong), Failure);
}

TEST_F(ConvertersTest, IsBinValidIsFalseForEveryInput) {
  for (const char* s : {"", "00", "0A 0B", "ff", "0123456789ABCDEF", "zz", " "}) {
    EXPECT_EQ(reg_.isBinValid(s), kFalse) << s;
  }
}

TEST_F(ConvertersTest, ParsePathRootTable) {
  struct Row {
    const char* path;
    platform::RegHandle root;
    const char* subKey;
  } rows[] = {
      {"HKEY_CURRENT_USER\\Software\\X", reg::kCurrentUser, "Software\\X"},
      {"HKCU\\Software", reg::kCurrentUser, "Software"},
      {"hkey_local_machine\\A", reg::kLocalMachine, "A"},
      {"HKEY_CLASSES_ROOT\\.doc", reg::kClassesRoot, ".doc"},
      {"HKEY_users\\X", reg::kUsers, "X"},
      {"hkus\\X", reg::kUsers, "X"},
      {"HKU\\X", 0, "X"},
      {"HKEY_PERFORMANCE_DATA\\X", reg::kPerformanceData, "X"},
      {"HKEY_DYN_DATA\\X", reg::kDynData, "X"},
      {"HKEY_CURRENT_CONFIG\\X", reg::kCurrentConfig, "X"},
      {"HKCUX\\Foo", reg::kCurrentUser, "Foo"},
      {"HKCUX", 0, ""},
      {"HKCU", reg::kCurrentUser, ""},
      {"hklm", reg::kLocalMachine, ""},
      {"HKCU\\", reg::kCurrentUser, ""},
      {"", 0, ""},
      {"Software\\X", 0, "X"},
  };
  for (const Row& row : rows) {
    const auto parsed = AdvRegistryAccessProbe::ParsePath(reg_, row.path);
    EXPECT_EQ(parsed.root, row.root) << row.path;
    EXPECT_EQ(parsed.subKey, row.subKey) << row.path;
  }
}

TEST_F(ConvertersTest, ParsePathReplacesLongFormsAnywhere) {
  const auto parsed =
      AdvRegistryAccessProbe::ParsePath(reg_, "HKCU\\Software\\hkey_local_machine\\Copy");
  EXPECT_EQ(parsed.path, "HKCU\\Software\\HKLM\\Copy");
  EXPECT_EQ(parsed.subKey, "Software\\HKLM\\Copy");
}

}  // namespace
}  // namespace quorvane
