// AdvRegistryAccess over the portable store: what the store sees (open handles, denied keys),
// the export worker's file form, and bad .reg files.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "AdvRegistryAccessProbe.h"
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileSystem.h"

namespace quorvane {
namespace {

namespace reg = platform::reg;

class StatusBox : public TextBox {
 public:
  void SetText(const std::string& text) override { texts.push_back(text); }
  std::vector<std::string> texts;
};

class AdvRegistryAccessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::temp_directory_path() /
              ("quorvane-unit-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
               "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string File(const std::string& name) const { return (folder_ / name).string(); }
  std::string Read(const std::string& path) {
    std::string content;
    EXPECT_TRUE(files_.ReadAll(path, content));
    return content;
  }
  std::string Write(const std::string& name, const std::string& content) {
    const std::string path = File(name);
    EXPECT_TRUE(files_.WriteAll(path, content));
    return path;
  }

  platform::portable::MemoryRegistry store_;
  platform::portable::PortableFileSystem files_;
  platform::portable::PortableEventLoop events_;
  platform::ScopedService<platform::FileSystem> filesInstalled_{files_};
  platform::ScopedService<platform::EventLoop> eventsInstalled_{events_};
  AdvRegistryAccess reg_{store_};
  std::filesystem::path folder_;
};

TEST_F(AdvRegistryAccessTest, MembersThatCloseLeaveNothingOpen) {
  reg_.WriteString("HKCU\\Software\\T", "s", "x");
  reg_.WriteDWORD("HKCU\\Software\\T", "d", 1);
  reg_.WriteBinary("HKCU\\Software\\T", "b", "01");
  reg_.ReadString("HKCU\\Software\\T", "s");
  reg_.ReadDWORD("HKCU\\Software\\T", "d");
  reg_.ReadBinary("HKCU\\Software\\T", "b");
  reg_.KeyExists("HKCU\\Software\\T");
  reg_.HaveSubkey("HKCU\\Software\\T");
  std::vector<std::string> keys;
  reg_.EnumKeys("HKCU\\Software", keys);
  reg_.ValueExists("HKCU\\Software\\T", "s");
  reg_.KillValue("HKCU\\Software\\T", "s");
  reg_.CreateKey("HKCU\\Software\\T\\Sub");
  reg_.KillKey("HKCU\\Software\\T\\Sub");
  EXPECT_EQ(store_.OpenHandleCount(), 0u);
}

TEST_F(AdvRegistryAccessTest, FailedReadsLeaveTheirKeyOpen) {
  reg_.CreateKey("HKCU\\Software\\T");
  reg_.ReadString("HKCU\\Software\\T", "missing");
  EXPECT_EQ(store_.OpenHandleCount(), 1u);
  reg_.ReadDWORD("HKCU\\Software\\T", "missing");
  EXPECT_EQ(store_.OpenHandleCount(), 2u);
  reg_.ReadBinary("HKCU\\Software\\T", "missing");
  EXPECT_EQ(store_.OpenHandleCount(), 3u);
  reg_.ValueExists("HKCU\\Software\\T", "missing");
  EXPECT_EQ(store_.OpenHandleCount(), 4u);
}

TEST_F(AdvRegistryAccessTest, EnumValuesClosesTheRootAndLeavesItsKeyOpen) {
  reg_.WriteString("HKCU\\Software\\T", "s", "x");
  std::vector<std::string> names;
  std::vector<RegValue> values;
  EXPECT_EQ(reg_.EnumValues("HKCU\\Software\\T", names, values), 1);
  EXPECT_EQ(store_.OpenHandleCount(), 1u);
  EXPECT_EQ(reg_.EnumValues("HKCU\\Software\\T", names, values), 1);
  EXPECT_EQ(store_.OpenHandleCount(), 2u);
  EXPECT_EQ(AdvRegistryAccessProbe::RootHandle(reg_), reg::kCurrentUser);
}

TEST_F(AdvRegistryAccessTest, TheStaleKeyHandleIsTheResult) {
  const std::int32_t result = reg_.WriteString("HKCU\\Software\\T", "s", "x");
  EXPECT_NE(result, 0);
  EXPECT_EQ(static_cast<platform::RegHandle>(result), AdvRegistryAccessProbe::KeyHandle(reg_));
  // The handle is closed: the store no longer knows it.
  EXPECT_EQ(store_.RegCloseKey(AdvRegistryAccessProbe::KeyHandle(reg_)), reg::kInvalidHandle);
}

TEST_F(AdvRegistryAccessTest, AKeyThatRefusesChangesReadsAsMissingAndRefusesWrites) {
  reg_.WriteString("HKCU\\Software\\Locked", "s", "x");
  ASSERT_TRUE(store_.DenyChanges(reg::kCurrentUser, "Software\\Locked"));
  EXPECT_EQ(reg_.KeyExists("HKCU\\Software\\Locked"), kFalse);
  EXPECT_EQ(reg_.ReadString("HKCU\\Software\\Locked", "s"), std::string("x\0", 2));
  EXPECT_EQ(reg_.WriteString("HKCU\\Software\\Locked", "s", "y"), 0);
  EXPECT_EQ(reg_.WriteString("HKCU\\Software\\Locked\\Sub", "s", "y"), 0);
  EXPECT_EQ(reg_.KillValue("HKCU\\Software\\Locked", "s"), 0);
  EXPECT_EQ(reg_.KillKey("HKCU\\Software\\Locked"), 0);
  EXPECT_EQ(reg_.ReadString("HKCU\\Software\\Locked", "s"), std::string("x\0", 2));
}

TEST_F(AdvRegistryAccessTest, ExportWorkerWithATextBoxWritesTheFullForm) {
  const std::string key = "HKCU\\Software\\Exp";
  reg_.WriteString(key, "@", "def");
  reg_.WriteString(key, "zText", "a\"b\\c");
  reg_.WriteDWORD(key, "aNumber", 42);
  reg_.WriteDWORD(key, "negative", -1);
  reg_.WriteBinary(key, "bytes", "01 0a ff");
  reg_.WriteBinary(key, "none", "");
  reg_.WriteString(key + "\\Child", "c", "1");
  const std::string path = Write("export.reg", "REGEDIT4\r\n\r\n");
  StatusBox box;
  EXPECT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, key, path, kTrue, &box), kTrue);
  const std::string n(1, '\0');
  EXPECT_EQ(Read(path),
            "REGEDIT4\r\n\r\n"
            "[HKEY_CURRENT_USER\\Software\\Exp]\r\n"
            "@=\"def" + n + "\"\r\n"
            "\"zText\"=\"a\"b\\c" + n + "\"\r\n"
            "\"bytes\"=hex:01,0A,FF\r\n"
            "\"none\"=hex:\r\n"
            "\"aNumber\"=dword:0x0000002A\r\n"
            "\"negative\"=dword:0xFFFFFFFF\r\n"
            "\r\n"
            "[HKEY_CURRENT_USER\\Software\\Exp\\Child]\r\n"
            "\"c\"=\"1" + n + "\"\r\n"
            "\r\n");
  EXPECT_EQ(box.texts, (std::vector<std::string>{"HKEY_CURRENT_USER\\Software\\Exp",
                                                 "HKEY_CURRENT_USER\\Software\\Exp\\Child"}));
  EXPECT_EQ(events_.Yields(), 2);
}

TEST_F(AdvRegistryAccessTest, ExportWorkerWithoutSubkeysWritesOneBlock) {
  reg_.WriteString("HKCU\\Software\\Exp\\Child", "c", "1");
  const std::string path = Write("export.reg", "");
  StatusBox box;
  EXPECT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, "hkcu\\Software\\Exp", path, kFalse, &box), kTrue);
  EXPECT_EQ(Read(path), "[HKEY_CURRENT_USER\\Software\\Exp]\r\n\r\n");
}

TEST_F(AdvRegistryAccessTest, ExportWorkerTakesAnyNonZeroFlagForSubkeys) {
  reg_.WriteString("HKCU\\Software\\Exp\\Child", "c", "1");
  const std::string path = Write("export.reg", "");
  StatusBox box;
  EXPECT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, "HKCU\\Software\\Exp", path, 1, &box), kTrue);
  EXPECT_EQ(box.texts.size(), 2u);
}

// A binary default value is read as text for the default-value line, and listed again with the
// binary values, where no test for an empty name is made.
TEST_F(AdvRegistryAccessTest, ExportWorkerWritesABinaryDefaultValueTwice) {
  reg_.WriteBinary("HKCU\\Software\\Exp", "", "01");
  const std::string path = Write("export.reg", "");
  StatusBox box;
  EXPECT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, "HKCU\\Software\\Exp", path, kTrue, &box), kTrue);
  EXPECT_EQ(Read(path), "[HKEY_CURRENT_USER\\Software\\Exp]\r\n@=\"\x01\"\r\n\"\"=hex:01\r\n\r\n");
}

TEST_F(AdvRegistryAccessTest, ExportWorkerLeftWithoutTextBoxDoesNotYield) {
  reg_.CreateKey("HKCU\\Software\\Exp");
  const std::string path = Write("export.reg", "");
  EXPECT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, "HKCU\\Software\\Exp", path, kTrue, std::nullopt), kTrue);
  EXPECT_EQ(events_.Yields(), 0);
  EXPECT_EQ(Read(path), "[HKEY_CURRENT_USER\\Software\\Exp]\r\n\r\n");
}

TEST_F(AdvRegistryAccessTest, PublicExportFailsAfterTheHeaderAndYieldsOnce) {
  reg_.WriteString("HKCU\\Software\\Exp", "a", "b");
  const std::string path = File("export.reg");
  EXPECT_EQ(reg_.ExportToReg("HKCU\\Software\\Exp", path), 0);
  EXPECT_EQ(Read(path), "REGEDIT4\r\n\r\n");
  EXPECT_EQ(events_.Yields(), 1);
}

TEST_F(AdvRegistryAccessTest, ExportedDwordsImportAsZero) {
  const std::string key = "HKCU\\Software\\Round";
  reg_.WriteDWORD(key, "n", 42);
  const std::string path = Write("export.reg", "REGEDIT4\r\n\r\n");
  StatusBox box;
  ASSERT_EQ(AdvRegistryAccessProbe::ExportKey(reg_, key, path, kTrue, &box), kTrue);
  reg_.KillKey(key);
  EXPECT_EQ(reg_.ImportFromReg(path), 1);
  EXPECT_EQ(reg_.ReadDWORD(key, "n"), 0);
}

TEST_F(AdvRegistryAccessTest, ShortHexDwordsAreSixteenBitNumbers) {
  const std::string path = Write("i.reg", "REGEDIT4\r\n[HKCU\\Software\\D]\r\n\"a\"=dword:ffff\r\n"
                                          "\"b\"=dword:10000\r\n\"c\"=dword:7fff\r\n");
  EXPECT_EQ(reg_.ImportFromReg(path), 1);
  EXPECT_EQ(reg_.ReadDWORD("HKCU\\Software\\D", "a"), -1);
  EXPECT_EQ(reg_.ReadDWORD("HKCU\\Software\\D", "b"), 65536);
  EXPECT_EQ(reg_.ReadDWORD("HKCU\\Software\\D", "c"), 32767);
}

TEST_F(AdvRegistryAccessTest, DwordOfMoreThan32BitsEndsTheImport) {
  const std::string path = Write("i.reg", "REGEDIT4\r\n[HKCU\\Software\\D]\r\n\"a\"=\"kept\"\r\n"
                                          "\"b\"=dword:123456789\r\n\"c\"=\"never\"\r\n");
  EXPECT_EQ(reg_.ImportFromReg(path), 0);
  EXPECT_EQ(reg_.ValueExists("HKCU\\Software\\D", "a"), kTrue);
  EXPECT_EQ(reg_.ValueExists("HKCU\\Software\\D", "c"), kFalse);
}

TEST_F(AdvRegistryAccessTest, BinaryGarbageIsRefusedAndChangesNothing) {
  std::mt19937 rng(7);
  std::string garbage(4096, '\0');
  for (char& c : garbage) c = static_cast<char>(rng() & 0xFF);
  reg_.WriteString("HKCU\\Software\\Keep", "v", "x");
  EXPECT_EQ(reg_.ImportFromReg(Write("garbage.reg", garbage)), 0);
  EXPECT_EQ(reg_.ReadString("HKCU\\Software\\Keep", "v"), std::string("x\0", 2));
}

TEST_F(AdvRegistryAccessTest, NoHeaderIsRefused) {
  EXPECT_EQ(reg_.ImportFromReg(Write("h.reg", "[HKCU\\Software\\N]\r\n\"a\"=\"b\"\r\n")), 0);
  EXPECT_EQ(reg_.KeyExists("HKCU\\Software\\N"), kFalse);
}

TEST_F(AdvRegistryAccessTest, LinesOfAHundredThousandCharacters) {
  const std::string longText(100000, 'x');
  const std::string longHex = [] {
    std::string s;
    for (int i = 0; i < 33333; ++i) s += "ab,";
    return s + "cd";
  }();
  const std::string path = Write("long.reg", "REGEDIT4\r\n[HKCU\\Software\\L]\r\n\"t\"=\"" + longText +
                                                 "\"\r\n\"h\"=hex:" + longHex + "\r\n");
  // The hex text of 66,668 digits is longer than a 16-bit length allows: the import ends there,
  // keeping the text written before it.
  EXPECT_EQ(reg_.ImportFromReg(path), 0);
  EXPECT_EQ(reg_.ValueExists("HKCU\\Software\\L", "t"), kTrue);
  EXPECT_EQ(reg_.ValueExists("HKCU\\Software\\L", "h"), kFalse);
  // A long key line is just a key that is too long to make.
  const std::string path2 =
      Write("long2.reg", "REGEDIT4\r\n[HKCU\\Software\\" + longText + "]\r\n\"t\"=\"x\"\r\n");
  EXPECT_EQ(reg_.ImportFromReg(path2), 1);
  std::vector<std::string> keys;
  reg_.EnumKeys("HKCU\\Software", keys);
  EXPECT_EQ(keys, std::vector<std::string>{"L"});
}

TEST_F(AdvRegistryAccessTest, MissingFileGivesZero) {
  EXPECT_EQ(reg_.ImportFromReg(File("nothing.reg")), 0);
}

TEST_F(AdvRegistryAccessTest, ImportGoesThroughTheWritesOfTheClass) {
  reg_.CreateKeyIfDoesntExists(kFalse);
  const std::string path = Write("i.reg", "REGEDIT4\r\n[HKCU\\Software\\New\\Deep]\r\n\"a\"=\"b\"\r\n");
  EXPECT_EQ(reg_.ImportFromReg(path), 1);
  EXPECT_EQ(reg_.ReadString("HKCU\\Software\\New\\Deep", "a"), std::string("b\0", 2));
}

}  // namespace
}  // namespace quorvane
