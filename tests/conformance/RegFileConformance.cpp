// .reg files: the reader's rules, the writer's form and the export's failure.
#include <string>
#include <vector>

#include "AdvRegistryAccessProbe.h"
#include "RegistryFixture.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"
#include "stores/AdvRegistryAccess.h"

namespace quorvane::testing {
namespace {

class RegFileTest : public RegistryTest {
 protected:
  std::string WriteFile(const std::string& content) {
    const std::string path = FreshTempFolder() + "import.reg";
    EXPECT_TRUE(platform::Use<platform::FileSystem>().WriteAll(path, content));
    return path;
  }
  std::int32_t Import(const std::vector<std::string>& lines) {
    std::string content;
    for (const auto& line : lines) content += line + "\r\n";
    return reg_.ImportFromReg(WriteFile(content));
  }
  std::string Section(const std::string& below = "") { return "[" + Path(below) + "]"; }

  AdvRegistryAccess reg_{Store()};
};

TEST_F(RegFileTest, TextDwordAndHexValues) {
  ASSERT_EQ(Import({"REGEDIT4", "", Section(), "\"a\"=\"b=c\"", "\"path\"=\"C:\\\\x\"",
                    "\"n\"=dword:0000002a", "\"x\"=dword:0x0000002A", "\"big\"=dword:ffffffff",
                    "\"h\"=hex:01,02", "@=\"default\""}),
            1);
  EXPECT_EQ(reg_.ReadString(Path(), "a"), std::string("b\0", 2));
  EXPECT_EQ(reg_.ReadString(Path(), "path"), std::string("C:\\\\x\0", 6));
  EXPECT_EQ(reg_.ReadDWORD(Path(), "n"), 42);
  EXPECT_EQ(reg_.ReadDWORD(Path(), "x"), 0);
  EXPECT_EQ(reg_.ReadDWORD(Path(), "big"), -1);
  EXPECT_EQ(reg_.ReadBinary(Path(), "h"), "01 02");
  EXPECT_EQ(reg_.ReadString(Path(), ""), std::string("default\0", 8));
}

TEST_F(RegFileTest, ContinuedHexLineReadsTheBackslashAsZero) {
  ASSERT_EQ(Import({"REGEDIT4", Section(), "\"a\"=hex:01,\\", "  02,03"}), 1);
  EXPECT_EQ(reg_.ReadBinary(Path(), "a"), "01 00");
  std::vector<std::string> names;
  std::vector<RegValue> values;
  EXPECT_EQ(reg_.EnumValues(Path(), names, values), 1);
}

TEST_F(RegFileTest, DeletingValuesAndTheDefault) {
  reg_.WriteString(Path(), "gone", "x");
  reg_.WriteString(Path(), "@", "default");
  reg_.WriteString(Path(), "kept", "x");
  ASSERT_EQ(Import({"REGEDIT4", Section(), "\"gone\"=-", "@=-", "\"kept\"= - "}), 1);
  EXPECT_EQ(reg_.ValueExists(Path(), "gone"), kFalse);
  // "@=-" names a value literally called "@", so the default stays.
  EXPECT_EQ(reg_.ValueExists(Path(), ""), kTrue);
  EXPECT_EQ(reg_.ValueExists(Path(), "kept"), kFalse);
  ASSERT_EQ(Import({"REGEDIT4", Section(), "@="}), 1);
  EXPECT_EQ(reg_.ValueExists(Path(), ""), kFalse);
}

TEST_F(RegFileTest, DeletingAKeyOnlyWhenItHasNoSubKeys) {
  reg_.CreateKey(Path("Tree\\Leaf"));
  ASSERT_EQ(Import({"REGEDIT4", "[-" + Path("Tree") + "]"}), 1);
  EXPECT_EQ(reg_.KeyExists(Path("Tree\\Leaf")), kTrue);
  ASSERT_EQ(Import({"REGEDIT4", "[-" + Path("Tree\\Leaf") + "]", "[-" + Path("Tree") + "]"}), 1);
  EXPECT_EQ(reg_.KeyExists(Path("Tree")), kFalse);
}

TEST_F(RegFileTest, CommentsBlankLinesAndLinesWithoutEqualsAreSkipped) {
  ASSERT_EQ(Import({"REGEDIT4", "\"outside\"=\"x\"", Section(), "; \"c\"=\"comment\"", "",
                    "no equals here", "\"v\"=\"1\"", Section("Second"), "\"w\"=\"2\""}),
            1);
  EXPECT_EQ(reg_.ValueExists(Path(), "v"), kTrue);
  EXPECT_EQ(reg_.ValueExists(Path(), "; c"), kFalse);
  EXPECT_EQ(reg_.ValueExists(Path(), "outside"), kFalse);
  EXPECT_EQ(reg_.ReadString(Path("Second"), "w"), std::string("2\0", 2));
}

TEST_F(RegFileTest, NameIsNotTrimmedAndHexPrefixIgnoresCase) {
  ASSERT_EQ(Import({"REGEDIT4", Section(), "\"a\" = \"b\"", "\"h\"=HEX:0A", "\"d\"=DWORD:10"}), 1);
  EXPECT_EQ(reg_.ValueExists(Path(), "a "), kTrue);
  EXPECT_EQ(reg_.ValueExists(Path(), "a"), kFalse);
  // The value keeps its leading blank; ReadString trims it away.
  platform::RegHandle key = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(platform::reg::kCurrentUser, Base(), 0, platform::reg::kRead, key), 0);
  char data[8] = {};
  std::uint32_t size = sizeof data;
  EXPECT_EQ(Store().RegQueryValueExA(key, "a ", nullptr, nullptr,
                                     reinterpret_cast<std::uint8_t*>(data), &size),
            0);
  EXPECT_EQ(std::string(data, size), std::string(" b\0", 3));
  Store().RegCloseKey(key);
  EXPECT_EQ(reg_.ReadString(Path(), "a "), std::string("b\0", 2));
  EXPECT_EQ(reg_.ReadBinary(Path(), "h"), "0A");
  EXPECT_EQ(reg_.ReadDWORD(Path(), "d"), 16);
}

TEST_F(RegFileTest, OtherValueFormsAreText) {
  ASSERT_EQ(Import({"REGEDIT4", Section(), "\"e\"=hex(2):25,00"}), 1);
  EXPECT_EQ(reg_.ReadString(Path(), "e"), std::string("hex(2):25,00\0", 13));
}

TEST_F(RegFileTest, QuotesGoAfterTheTrimSoBlanksInsideThemStay) {
  ASSERT_EQ(Import({"REGEDIT4", Section(), "\"a\"=\"b \"", "@=\" \""}), 1);
  platform::RegHandle key = 0;
  ASSERT_EQ(Store().RegOpenKeyExA(platform::reg::kCurrentUser, Base(), 0, platform::reg::kRead, key), 0);
  char data[8] = {};
  std::uint32_t size = sizeof data;
  ASSERT_EQ(Store().RegQueryValueExA(key, "a", nullptr, nullptr,
                                     reinterpret_cast<std::uint8_t*>(data), &size),
            0);
  EXPECT_EQ(std::string(data, size), std::string("b \0", 3));
  size = sizeof data;
  ASSERT_EQ(Store().RegQueryValueExA(key, "", nullptr, nullptr,
                                     reinterpret_cast<std::uint8_t*>(data), &size),
            0);
  EXPECT_EQ(std::string(data, size), std::string(" \0", 2));
  Store().RegCloseKey(key);
}

TEST_F(RegFileTest, HeaderIsRequiredInAnyCaseButUntrimmed) {
  EXPECT_EQ(Import({"Windows Registry Editor Version 5.00", Section(), "\"a\"=\"b\""}), 0);
  EXPECT_EQ(reg_.KeyExists(Path()), kFalse);
  EXPECT_EQ(Import({" REGEDIT4", Section(), "\"a\"=\"b\""}), 0);
  EXPECT_EQ(reg_.KeyExists(Path()), kFalse);
  EXPECT_EQ(Import({"regedit4", Section(), "\"a\"=\"b\""}), 1);
  EXPECT_EQ(reg_.KeyExists(Path()), kTrue);
}

TEST_F(RegFileTest, OtherLineEndsMakeOneLineAndAreRefused) {
  EXPECT_EQ(reg_.ImportFromReg(WriteFile("REGEDIT4\n" + Section() + "\n\"a\"=\"b\"\n")), 0);
  EXPECT_EQ(reg_.KeyExists(Path()), kFalse);
}

TEST_F(RegFileTest, ABracketAloneEndsTheImportKeepingWhatWasWritten) {
  EXPECT_EQ(Import({"REGEDIT4", Section(), "\"before\"=\"1\"", "[", Section(), "\"after\"=\"2\""}), 0);
  EXPECT_EQ(reg_.ValueExists(Path(), "before"), kTrue);
  EXPECT_EQ(reg_.ValueExists(Path(), "after"), kFalse);
}

TEST_F(RegFileTest, MissingFileAndEmptyFileGiveZero) {
  EXPECT_EQ(reg_.ImportFromReg(FreshTempFolder() + "none.reg"), 0);
  EXPECT_EQ(reg_.ImportFromReg(WriteFile("")), 0);
}

TEST_F(RegFileTest, ImportTurnsKeyCreationOnForGood) {
  reg_.CreateKeyIfDoesntExists(kFalse);
  EXPECT_EQ(reg_.ImportFromReg(FreshTempFolder() + "none.reg"), 0);
  EXPECT_EQ(reg_.CreateKeyIfDoesntExists(), kTrue);
}

TEST_F(RegFileTest, ExportNeverReplacesAFile) {
  const std::string path = WriteFile("precious");
  reg_.CreateKey(Path());
  EXPECT_EQ(reg_.ExportToReg(Path(), path), 0);
  std::string content;
  ASSERT_TRUE(platform::Use<platform::FileSystem>().ReadAll(path, content));
  EXPECT_EQ(content, "precious");
}

TEST_F(RegFileTest, ExportStopsAtItsFirstKeyWithTheHeaderAlone) {
  reg_.WriteString(Path(), "a", "b");
  const std::string path = FreshTempFolder() + "export.reg";
  EXPECT_EQ(reg_.ExportToReg(ShortPath(), path), 0);
  std::string content;
  ASSERT_TRUE(platform::Use<platform::FileSystem>().ReadAll(path, content));
  EXPECT_EQ(content, "REGEDIT4\r\n\r\n");
}

class StatusBox : public TextBox {
 public:
  void SetText(const std::string& text) override { texts.push_back(text); }
  std::vector<std::string> texts;
};

TEST_F(RegFileTest, ExportWorkerWritesKeysParentsFirstAndKindsGrouped) {
  reg_.WriteString(ShortPath(), "@", "def");
  reg_.WriteString(ShortPath(), "text", "a\"b");
  reg_.WriteDWORD(ShortPath(), "number", 42);
  reg_.WriteBinary(ShortPath(), "bytes", "01 0a ff");
  reg_.WriteString(ShortPath("Child"), "c", "1");
  const std::string path = WriteFile("REGEDIT4\r\n\r\n");
  StatusBox box;
  EXPECT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, ShortPath(), path, kTrue, &box), kTrue);
  std::string content;
  ASSERT_TRUE(platform::Use<platform::FileSystem>().ReadAll(path, content));
  const std::string n(1, '\0');
  EXPECT_EQ(content, "REGEDIT4\r\n\r\n"
                     "[" + Path() + "]\r\n"
                     "@=\"def" + n + "\"\r\n"
                     "\"text\"=\"a\"b" + n + "\"\r\n"
                     "\"bytes\"=hex:01,0A,FF\r\n"
                     "\"number\"=dword:0x0000002A\r\n"
                     "\r\n"
                     "[" + Path("Child") + "]\r\n"
                     "\"c\"=\"1" + n + "\"\r\n"
                     "\r\n");
  EXPECT_EQ(box.texts, (std::vector<std::string>{Path(), Path("Child")}));
}

}  // namespace
}  // namespace quorvane::testing
