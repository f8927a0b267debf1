// ReadIniValue, WriteIniValue, ReadIniEntry and WriteIniEntry over a scripted port that shows
// what they hand the platform; and the few things the portable profile files do where the real
// functions, as the Windows build runs them under Wine, do otherwise or fail. Everything else the
// routines and the profile files do is checked by the conformance suite over both.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "base/Types.h"
#include "icons/modextracticon.h"
#include "platform/ProfileFiles.h"
#include "platform/Service.h"
#include "platform/portable/PortableProfileFiles.h"
#include "stores/iniReadWrite.h"

namespace quorvane {
namespace {

using namespace std::string_literals;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// A fresh folder per test, and the portable profile files called directly.
class IniFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              ("quorvane-ini-" + std::to_string(::getpid()) + "-" + info->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

  void Put(const std::string& name, const std::string& bytes) const {
    File f(std::fopen(Path(name).c_str(), "wb"));
    ASSERT_NE(f, nullptr);
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), f.get()), bytes.size());
  }

  std::optional<std::string> Bytes(const std::string& name) const {
    File f(std::fopen(Path(name).c_str(), "rb"));
    if (!f) return std::nullopt;
    std::string bytes;
    char chunk[4096];
    std::size_t n = 0;
    while ((n = std::fread(chunk, 1, sizeof chunk, f.get())) > 0) bytes.append(chunk, n);
    return bytes;
  }

  // What the portable reader copies, checked to end at the count it returns.
  std::string Value(const char* section, const char* key, const std::string& name,
                    const char* defaultValue = "(default)", std::uint32_t size = 256) {
    std::string buffer(size + 1, '#');
    const std::uint32_t count = profiles_.GetPrivateProfileStringA(
        section, key, defaultValue, buffer.data(), size, Path(name).c_str());
    EXPECT_LT(count, size);
    if (count >= size) return "(overrun)";
    EXPECT_EQ(buffer[count], '\0');
    return buffer.substr(0, count);
  }

  std::int32_t Write(const char* section, const char* key, const char* value,
                     const std::string& name) {
    return profiles_.WritePrivateProfileStringA(section, key, value, Path(name).c_str());
  }

  std::filesystem::path folder_;
  platform::portable::PortableProfileFiles profiles_;
};

// A port that answers reads from a script and notes what it was handed.
class ScriptedProfiles final : public platform::ProfileFiles {
 public:
  std::uint32_t GetPrivateProfileStringA(const char* section, const char* key,
                                         const char* defaultValue, char* buffer,
                                         std::uint32_t size, const char* file) override {
    section_ = section;
    key_ = key;
    default_ = defaultValue;
    file_ = file;
    size_ = size;
    bufferOnEntry_.assign(buffer, size);
    std::memcpy(buffer, reply_.data(), reply_.size() < size ? reply_.size() : size);
    return replyCount_;
  }
  std::int32_t WritePrivateProfileStringA(const char* section, const char* key,
                                          const char* value, const char* file) override {
    section_ = section;
    key_ = key;
    value_ = value;
    file_ = file;
    ++writes_;
    return writeResult_;
  }

  std::string reply_;
  std::uint32_t replyCount_ = 0;
  std::int32_t writeResult_ = 1;

  std::string section_, key_, default_, value_, file_, bufferOnEntry_;
  std::uint32_t size_ = 0;
  int writes_ = 0;
};

class IniScriptedTest : public ::testing::Test {
 protected:
  ScriptedProfiles port_;
  platform::ScopedService<platform::ProfileFiles> service_{port_};
};

// --- what the routines hand the platform ------------------------------------------------------

TEST_F(IniScriptedTest, ReadIniValueAsksFor255CharactersWithAnEmptyDefault) {
  port_.reply_ = "abc"s + '\0';
  port_.replyCount_ = 3;
  EXPECT_EQ(ReadIniValue("Count", "Total", "C:\\Data\\Files.ini"), "abc");
  EXPECT_EQ(port_.section_, "Count");
  EXPECT_EQ(port_.key_, "Total");
  EXPECT_EQ(port_.default_, "");
  EXPECT_EQ(port_.file_, "C:\\Data\\Files.ini");
  EXPECT_EQ(port_.size_, 255u);
  EXPECT_EQ(port_.bufferOnEntry_, std::string(255, '\0'));
}

TEST_F(IniScriptedTest, ReadIniValueTakesTheLeftCountCharacters) {
  port_.reply_ = "abcdef";
  port_.replyCount_ = 2;
  EXPECT_EQ(ReadIniValue("S", "k", "f"), "ab");
  port_.replyCount_ = 0;
  EXPECT_EQ(ReadIniValue("S", "k", "f"), "");
}

TEST_F(IniScriptedTest, ReadIniEntryAsksFor256CharactersWithTheStandIn) {
  port_.reply_ = "x"s + '\0';
  port_.replyCount_ = 1;
  const std::string section = ".ShellClassInfo";
  std::string value;
  EXPECT_EQ(ReadIniEntry(section, "iconfile", "C:\\a\\desktop.ini", value), kTrue);
  EXPECT_EQ(value, "x");
  EXPECT_EQ(section, ".ShellClassInfo");
  EXPECT_EQ(port_.section_, ".ShellClassInfo");
  EXPECT_EQ(port_.key_, "iconfile");
  EXPECT_EQ(port_.default_, "?!?");
  EXPECT_EQ(port_.size_, 256u);
  EXPECT_EQ(port_.bufferOnEntry_, std::string(256, '\0'));
}

TEST_F(IniScriptedTest, ReadIniEntryLooksAtTheBufferNotTheCount) {
  std::string value = "before";
  port_.reply_ = "?!?abc";
  port_.replyCount_ = 0;
  EXPECT_EQ(ReadIniEntry("S", "k", "f", value), kFalse);
  port_.replyCount_ = 6;
  EXPECT_EQ(ReadIniEntry("S", "k", "f", value), kFalse);
  EXPECT_EQ(value, "before");

  port_.reply_ = "?!"s + '\0';
  port_.replyCount_ = 2;
  EXPECT_EQ(ReadIniEntry("S", "k", "f", value), kTrue);
  EXPECT_EQ(value, "?!");

  port_.reply_ = "a?!?";
  port_.replyCount_ = 4;
  EXPECT_EQ(ReadIniEntry("S", "k", "f", value), kTrue);
  EXPECT_EQ(value, "a?!?");
}

TEST_F(IniScriptedTest, ReadIniEntryReturnsMinusOneForTrue) {
  port_.reply_ = "v";
  port_.replyCount_ = 1;
  std::string value;
  const Boolean found = ReadIniEntry("S", "k", "f", value);
  EXPECT_EQ(found, -1);
}

TEST_F(IniScriptedTest, WriteIniValueGivesThePlatformsResultAs16Bits) {
  port_.writeResult_ = 1;
  EXPECT_EQ(WriteIniValue("Files", "1", "Sea\\bay.jpg", "Files.ini"), 1);
  EXPECT_EQ(port_.section_, "Files");
  EXPECT_EQ(port_.key_, "1");
  EXPECT_EQ(port_.value_, "Sea\\bay.jpg");
  EXPECT_EQ(port_.file_, "Files.ini");
  port_.writeResult_ = 0;
  EXPECT_EQ(WriteIniValue("Files", "1", "x", "Files.ini"), 0);
  port_.writeResult_ = -1;
  EXPECT_EQ(WriteIniValue("Files", "1", "x", "Files.ini"), -1);
  port_.writeResult_ = 32767;
  EXPECT_EQ(WriteIniValue("Files", "1", "x", "Files.ini"), 32767);
}

TEST_F(IniScriptedTest, WriteIniValueOverflowsPast16Bits) {
  port_.writeResult_ = 32768;
  try {
    WriteIniValue("S", "k", "v", "f");
    FAIL() << "no overflow";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
  }
}

TEST_F(IniScriptedTest, WriteIniEntryIgnoresTheResult) {
  port_.writeResult_ = 0;
  WriteIniEntry(".ShellClassInfo", "iconindex", "4", "desktop.ini");
  EXPECT_EQ(port_.writes_, 1);
  EXPECT_EQ(port_.section_, ".ShellClassInfo");
  EXPECT_EQ(port_.key_, "iconindex");
  EXPECT_EQ(port_.value_, "4");
  EXPECT_EQ(port_.file_, "desktop.ini");
}

TEST_F(IniScriptedTest, TextsEndAtTheirFirstNulForThePlatform) {
  port_.replyCount_ = 0;
  ReadIniValue("Se\0x"s, "k", "f");
  EXPECT_EQ(port_.section_, "Se");
}

// --- what only the portable profile files do ----------------------------------------------------

// Under Wine the real functions fail on names this long (a section name of 40,000 characters
// already brings them down).
TEST_F(IniFilesTest, LinesOf100000Characters) {
  const std::string longName(100000, 'n');
  Put("a.ini", "[" + longName + "]\r\n" + longName + "=" + std::string(100000, 'v') + "\r\nk=1");
  EXPECT_EQ(Value(longName.c_str(), longName.c_str(), "a.ini", "d", 10), "vvvvvvvvv");
  EXPECT_EQ(Value(longName.c_str(), "k", "a.ini"), "1");
  EXPECT_EQ(Write(longName.c_str(), "k", "2", "a.ini"), 1);
  EXPECT_EQ(Value(longName.c_str(), longName.c_str(), "a.ini", "d", 100001),
            std::string(100000, 'v'));
}

// Under Wine the real functions write 4,464 characters of this value: its length modulo 65,536.
TEST_F(IniFilesTest, WholeValueOfAnyLengthIsWritten) {
  EXPECT_EQ(Write("S", "k", std::string(70000, 'z').c_str(), "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini")->size(), 3u + 2u + 2u + 70000u + 2u);
}

// The real functions take a null file name for win.ini.
TEST_F(IniFilesTest, NullOrEmptyFileName) {
  char buffer[8];
  EXPECT_EQ(profiles_.GetPrivateProfileStringA("S", "k", "d", buffer, sizeof buffer, nullptr), 1u);
  EXPECT_STREQ(buffer, "d");
  EXPECT_EQ(profiles_.WritePrivateProfileStringA("S", "k", "v", nullptr), 0);
  EXPECT_EQ(profiles_.WritePrivateProfileStringA("S", "k", "v", ""), 0);
}

// Under Wine the real functions read an odd last byte of a UTF-16 file as one more character.
TEST_F(IniFilesTest, OddLastByteOfAUtf16FileIsDropped) {
  Put("b.ini", "\xFF\xFE[\0S\0]\0\n\0k\0=\0\x00\xD8v\0"s + "\x01");  // lone surrogate, odd byte
  EXPECT_EQ(Value("S", "k", "b.ini"), "?v");
  EXPECT_EQ(Write("S", "k", "w", "b.ini"), 1);
  EXPECT_EQ(Bytes("b.ini"), "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0w\0\r\0\n\0"s);
}

}  // namespace
}  // namespace quorvane
