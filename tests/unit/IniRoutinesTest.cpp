// ReadIniValue, WriteIniValue, ReadIniEntry and WriteIniEntry, over the portable profile files
// on temporary files and over a scripted port that shows what they hand the platform; and the
// portable profile files' own rules.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <system_error>

#include "core/Failure.h"
#include "core/Types.h"
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

// A fresh folder per test with the portable profile files installed.
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
  platform::PortableProfileFiles profiles_;
  platform::ScopedService<platform::ProfileFiles> service_{profiles_};
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
  std::string value;
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "iconfile", "C:\\a\\desktop.ini", value), kTrue);
  EXPECT_EQ(value, "x");
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

// --- the routines over real files -------------------------------------------------------------

TEST_F(IniFilesTest, EmptyValueReadsAsEmptyAndIsThereForReadIniEntry) {
  Put("a.ini", "[S]\r\nk=\r\n");
  EXPECT_EQ(ReadIniValue("S", "k", Path("a.ini")), "");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "k", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, "");
}

TEST_F(IniFilesTest, MissingKeyReadsAsEmptyAndIsNotThereForReadIniEntry) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_EQ(ReadIniValue("S", "missing", Path("a.ini")), "");
  EXPECT_EQ(ReadIniValue("Missing", "k", Path("a.ini")), "");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "missing", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("Missing", "k", Path("a.ini"), value), kFalse);
  EXPECT_EQ(value, "before");
}

TEST_F(IniFilesTest, MissingFileIsAMissingKey) {
  EXPECT_EQ(ReadIniValue("S", "k", Path("none.ini")), "");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "k", Path("none.ini"), value), kFalse);
  EXPECT_EQ(value, "before");
  EXPECT_EQ(Bytes("none.ini"), std::nullopt);
}

TEST_F(IniFilesTest, ValueBeginningWithTheStandInReadsAsMissing) {
  Put("a.ini", "[S]\r\nx=?!?x\r\ny=?!?\r\nz=?!\r\nw= ?!?\r\n");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "x", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("S", "y", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("S", "w", Path("a.ini"), value), kFalse);  // the blank is trimmed
  EXPECT_EQ(value, "before");
  EXPECT_EQ(ReadIniEntry("S", "z", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, "?!");
  EXPECT_EQ(ReadIniValue("S", "x", Path("a.ini")), "?!?x");
}

TEST_F(IniFilesTest, ValueOf300CharactersIsCutAt254And255) {
  std::string long300;
  for (int i = 0; i < 300; ++i) long300 += static_cast<char>('a' + i % 26);
  ASSERT_NE(WriteIniValue("S", "k", long300, Path("a.ini")), 0);
  EXPECT_EQ(ReadIniValue("S", "k", Path("a.ini")), long300.substr(0, 254));
  std::string value;
  EXPECT_EQ(ReadIniEntry("S", "k", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, long300.substr(0, 255));
}

TEST_F(IniFilesTest, Values254CharactersLongFitReadIniValueAnd255ReadIniEntry) {
  WriteIniValue("S", "a", std::string(254, 'a'), Path("a.ini"));
  WriteIniValue("S", "b", std::string(255, 'b'), Path("a.ini"));
  EXPECT_EQ(ReadIniValue("S", "a", Path("a.ini")), std::string(254, 'a'));
  EXPECT_EQ(ReadIniValue("S", "b", Path("a.ini")), std::string(254, 'b'));
  std::string value;
  ReadIniEntry("S", "b", Path("a.ini"), value);
  EXPECT_EQ(value, std::string(255, 'b'));
}

TEST_F(IniFilesTest, WriteIniValueGivesOneOnSuccessAndZeroOnFailure) {
  EXPECT_EQ(WriteIniValue("S", "k", "v", Path("a.ini")), 1);
  EXPECT_EQ(WriteIniValue("S", "k", "v", Path("missing/a.ini")), 0);
  EXPECT_EQ(WriteIniValue("S", "k", "v", folder_.string()), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nk=v\r\n");
}

TEST_F(IniFilesTest, WriteIniEntryIntoAMissingFolderIsSilent) {
  EXPECT_NO_THROW(WriteIniEntry(".ShellClassInfo", "iconfile", "x.ico",
                                Path("missing/desktop.ini")));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "missing"));
}

TEST_F(IniFilesTest, ReadIniEntryTakesTheSectionByValue) {
  Put("desktop.ini", "[.ShellClassInfo]\r\niconindex=5\r\n");
  std::string section = ".ShellClassInfo";
  std::string value;
  EXPECT_EQ(ReadIniEntry(section, "IconIndex", Path("desktop.ini"), value), kTrue);
  EXPECT_EQ(value, "5");
  EXPECT_EQ(section, ".ShellClassInfo");
}

TEST_F(IniFilesTest, FilesIniFromAnEmptyFile) {
  Put("Files.ini", "");
  const std::string file = Path("Files.ini");
  WriteIniValue("Files", "1", "Sea\\bay.jpg", file);
  WriteIniValue("Files", "2", "Sea\\cliff.bmp", file);
  WriteIniValue("Files", "3", "Town\\night.jpg", file);
  WriteIniValue("Count", "Total", "3", file);
  EXPECT_EQ(Bytes("Files.ini"),
            "[Files]\r\n1=Sea\\bay.jpg\r\n2=Sea\\cliff.bmp\r\n3=Town\\night.jpg\r\n"
            "[Count]\r\nTotal=3\r\n");
  EXPECT_EQ(ReadIniValue("Count", "Total", file), "3");
  EXPECT_EQ(ReadIniValue("Files", "3", file), "Town\\night.jpg");
}

TEST_F(IniFilesTest, FilesIniEntriesThatDifferOnlyInTheirCollection) {
  const std::string file = Path("Files.ini");
  WriteIniValue("Files", "1", "Sea\\a.jpg", file);
  WriteIniValue("Files", "2", "Town\\a.jpg", file);
  EXPECT_EQ(ReadIniValue("Files", "1", file), "Sea\\a.jpg");
  EXPECT_EQ(ReadIniValue("Files", "2", file), "Town\\a.jpg");
}

// --- the portable profile files ---------------------------------------------------------------

TEST_F(IniFilesTest, CaseOfSectionAndKeyDoesNotMatterButCaseOfValueDoes) {
  Put("a.ini", "[Sec]\r\nKey=Value\r\n");
  EXPECT_EQ(Value("sEC", "KEY", "a.ini"), "Value");
  Write("SEC", "key", "VALUE", "a.ini");
  EXPECT_EQ(Bytes("a.ini"), "[Sec]\r\nKey=VALUE\r\n");
}

TEST_F(IniFilesTest, OnlyLettersAToZFoldTheirCase) {
  Put("a.ini", "[\xC9t\xE9]\r\nk=1\r\n");
  EXPECT_EQ(Value("\xC9T\xE9", "K", "a.ini"), "1");
  EXPECT_EQ(Value("\xE9t\xE9", "k", "a.ini"), "(default)");
}

TEST_F(IniFilesTest, DefaultForMissingFileSectionAndKey) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_EQ(Value("S", "k", "none.ini", "d  "), "d");
  EXPECT_EQ(Value("T", "k", "a.ini", "  d  "), "  d");
  EXPECT_EQ(Value("S", "j", "a.ini", "   "), " ");
  EXPECT_EQ(Value("S", "j", "a.ini", nullptr), "");
  EXPECT_EQ(Value("S", "j", "a.ini", "'q'"), "q");
}

TEST_F(IniFilesTest, BlanksAroundKeysAndValuesAreTrimmed) {
  Put("a.ini", "[S]\r\n \t key \t =  \t value with blanks \t \r\n");
  EXPECT_EQ(Value("S", "key", "a.ini"), "value with blanks");
  EXPECT_EQ(Value(" S ", " key ", "a.ini"), "value with blanks");
}

TEST_F(IniFilesTest, MatchingQuotesAreRemoved) {
  Put("a.ini", "[S]\r\nd=\"double\"\r\ns='single'\r\nm=\"mixed'\r\ni=\"in\"side\"\r\n");
  EXPECT_EQ(Value("S", "d", "a.ini"), "double");
  EXPECT_EQ(Value("S", "s", "a.ini"), "single");
  EXPECT_EQ(Value("S", "m", "a.ini"), "\"mixed'");
  EXPECT_EQ(Value("S", "i", "a.ini"), "in\"side");
}

TEST_F(IniFilesTest, TruncationCopiesSizeLessOneAndATerminator) {
  Put("a.ini", "[S]\r\nk=abcdef\r\nq=\"abcdef\"\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 4), "abc");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 7), "abcdef");
  EXPECT_EQ(Value("S", "q", "a.ini", "d", 7), "abcde");  // just fits: one short
  EXPECT_EQ(Value("S", "q", "a.ini", "d", 8), "abcdef");
  std::string buffer = "##";
  EXPECT_EQ(profiles_.GetPrivateProfileStringA("S", "k", "d", buffer.data(), 0,
                                               Path("a.ini").c_str()),
            0u);
  EXPECT_EQ(buffer, "##");
  EXPECT_EQ(profiles_.GetPrivateProfileStringA("S", "k", "d", nullptr, 10, Path("a.ini").c_str()),
            0u);
}

TEST_F(IniFilesTest, CrLfLfAndCrLineEnds) {
  Put("a.ini", "[S]\r\na=1\nb=2\rc=3\r\n\r\n\n[T]\nd=4");
  EXPECT_EQ(Value("S", "a", "a.ini"), "1");
  EXPECT_EQ(Value("S", "b", "a.ini"), "2");
  EXPECT_EQ(Value("S", "c", "a.ini"), "3");
  EXPECT_EQ(Value("T", "d", "a.ini"), "4");
}

TEST_F(IniFilesTest, WriteCreatesFileThenSectionThenKey) {
  EXPECT_EQ(Write("S", "a", "1", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\n");
  EXPECT_EQ(Write("T", "b", "2", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\n[T]\r\nb=2\r\n");
  EXPECT_EQ(Write("S", "c", "3", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\nc=3\r\n[T]\r\nb=2\r\n");
}

TEST_F(IniFilesTest, WriteDoesNotCreateFolders) {
  EXPECT_EQ(Write("S", "k", "v", "sub/a.ini"), 0);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "sub"));
}

TEST_F(IniFilesTest, ReplaceInPlaceKeepsTheOtherLines) {
  const std::string before = ";comment\r\n[A]\r\nx=1\r\n[S]\r\na=1\r\nk=old\r\nz=26\r\n[B]\r\ny=2\r\n";
  Put("a.ini", before);
  EXPECT_EQ(Write("S", "k", "new", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), ";comment\r\n[A]\r\nx=1\r\n[S]\r\na=1\r\nk=new\r\nz=26\r\n[B]\r\ny=2\r\n");
}

TEST_F(IniFilesTest, RewrittenFileHasCrLfAndNoBlankLines) {
  Put("a.ini", "[S]\n\n  a = 1  \n\n[T]\nb=2\n");
  EXPECT_EQ(Write("T", "b", "3", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\n[T]\r\nb=3\r\n");
}

TEST_F(IniFilesTest, NullValueDeletesKeyAndNullKeyDeletesSection) {
  Put("a.ini", "[S]\r\na=1\r\nb=2\r\n[T]\r\nc=3\r\n");
  EXPECT_EQ(Write("S", "a", nullptr, "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nb=2\r\n[T]\r\nc=3\r\n");
  EXPECT_EQ(Write("T", nullptr, nullptr, "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nb=2\r\n");
}

TEST_F(IniFilesTest, OddBytesInTheFile) {
  Put("a.ini",
      "\x80\xFF\0\r[S]\r\nnul=a\0b\r\nlone=cr\rhigh=\xE9\x80\xFF\r\n[open\r\nlast=1"s);
  EXPECT_EQ(Value("S", "nul", "a.ini"), "a");
  EXPECT_EQ(Value("S", "lone", "a.ini"), "cr");
  EXPECT_EQ(Value("S", "high", "a.ini"), "\xE9\x80\xFF");
  EXPECT_EQ(Value("S", "last", "a.ini"), "1");
  EXPECT_EQ(Value("open", "last", "a.ini"), "(default)");
  EXPECT_EQ(Write("S", "new", "v", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"),
            "\x80\xFF\r\n[S]\r\nnul=a\r\nlone=cr\r\nhigh=\xE9\x80\xFF\r\n[open\r\nlast=1\r\n"
            "new=v\r\n");
}

TEST_F(IniFilesTest, LinesOf100000Characters) {
  const std::string longName(100000, 'n');
  Put("a.ini", "[" + longName + "]\r\n" + longName + "=" + std::string(100000, 'v') + "\r\nk=1");
  EXPECT_EQ(Value(longName.c_str(), longName.c_str(), "a.ini", "d", 10), "vvvvvvvvv");
  EXPECT_EQ(Value(longName.c_str(), "k", "a.ini"), "1");
  EXPECT_EQ(Write(longName.c_str(), "k", "2", "a.ini"), 1);
  EXPECT_EQ(Value(longName.c_str(), longName.c_str(), "a.ini", "d", 100001),
            std::string(100000, 'v'));
}

TEST_F(IniFilesTest, WholeValueOfAnyLengthIsWritten) {
  EXPECT_EQ(Write("S", "k", std::string(70000, 'z').c_str(), "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini")->size(), 3u + 2u + 2u + 70000u + 2u);
}

TEST_F(IniFilesTest, OpeningBracketWithoutClosingOneIsNoSection) {
  Put("a.ini", "[S]\r\n[T\r\nk=1\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "1");
  EXPECT_EQ(Value("T", "k", "a.ini"), "(default)");
}

TEST_F(IniFilesTest, FolderInPlaceOfTheFile) {
  std::filesystem::create_directory(folder_ / "dir.ini");
  EXPECT_EQ(Value("S", "k", "dir.ini", "d"), "d");
  EXPECT_EQ(Write("S", "k", "v", "dir.ini"), 0);
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "dir.ini"));
}

TEST_F(IniFilesTest, NullOrEmptyFileName) {
  char buffer[8];
  EXPECT_EQ(profiles_.GetPrivateProfileStringA("S", "k", "d", buffer, sizeof buffer, nullptr), 1u);
  EXPECT_STREQ(buffer, "d");
  EXPECT_EQ(profiles_.WritePrivateProfileStringA("S", "k", "v", nullptr), 0);
  EXPECT_EQ(profiles_.WritePrivateProfileStringA("S", "k", "v", ""), 0);
}

TEST_F(IniFilesTest, CharactersOutsideTheCodePageReadAsQuestionMarks) {
  Put("a.ini", "\xEF\xBB\xBF[S]\r\nk=\xD0\x96\xF0\x9F\x98\x80\r\n[\xD0\x96]\r\nj=1\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "???");
  EXPECT_EQ(Write("S", "new", "1", "a.ini"), 1);
  EXPECT_EQ(Bytes("a.ini"),
            "\xEF\xBB\xBF[S]\r\nk=\xD0\x96\xF0\x9F\x98\x80\r\nnew=1\r\n[\xD0\x96]\r\nj=1\r\n");
}

TEST_F(IniFilesTest, MalformedUtf8AndUtf16AreRead) {
  Put("a.ini", "\xEF\xBB\xBF[S]\r\nk=\xE2\x82x\xF4\x90\x80\x80\xED\xA0\x80y\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "?x?????y");
  Put("b.ini", "\xFF\xFE[\0S\0]\0\n\0k\0=\0\x00\xD8v\0"s + "\x01");  // lone surrogate, odd byte
  EXPECT_EQ(Value("S", "k", "b.ini"), "?v");
  EXPECT_EQ(Write("S", "k", "w", "b.ini"), 1);
  EXPECT_EQ(Bytes("b.ini"), "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0w\0\r\0\n\0"s);
}

TEST_F(IniFilesTest, ListsOfSectionsAndKeys) {
  Put("a.ini", "x=0\r\n[A]\r\nk=1\r\n;c=2\r\nbare\r\n[B]\r\n[]\r\n");
  char buffer[32];
  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(profiles_.GetPrivateProfileStringA(nullptr, nullptr, "d", buffer, sizeof buffer,
                                               Path("a.ini").c_str()),
            4u);
  EXPECT_EQ(std::string(buffer, 6), "A\0B\0\0#"s);
  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(profiles_.GetPrivateProfileStringA("a", nullptr, "d", buffer, sizeof buffer,
                                               Path("a.ini").c_str()),
            2u);
  EXPECT_EQ(std::string(buffer, 4), "k\0\0#"s);
  EXPECT_EQ(Value("B", nullptr, "a.ini", "none"), "none");
}

// Random bytes, with the characters that mean something to the reader mixed in, never crash
// a read or a write, and what is written reads back.
TEST_F(IniFilesTest, RandomFilesNeverCrash) {
  std::mt19937 rng(7);
  const char special[] = "[]=\"';\r\n \t\0\xEF\xBB\xBF\xFF\xFE";
  for (int round = 0; round < 300; ++round) {
    std::string bytes(rng() % 400, '\0');
    for (char& c : bytes) {
      c = (rng() % 2 == 0) ? special[rng() % (sizeof special - 1)] : static_cast<char>(rng());
    }
    const std::string name = "r" + std::to_string(round) + ".ini";
    Put(name, bytes);
    for (std::uint32_t size : {0u, 1u, 2u, 3u, 16u, 256u}) {
      std::string buffer(size + 1, '#');
      for (const char* section : {"S", "", "[", static_cast<const char*>(nullptr)}) {
        const std::uint32_t n = profiles_.GetPrivateProfileStringA(
            section, "k", "?!?", buffer.data(), size, Path(name).c_str());
        ASSERT_TRUE(size == 0 ? n == 0 : n < size);
        profiles_.GetPrivateProfileStringA(section, nullptr, "?!?", buffer.data(), size,
                                           Path(name).c_str());
      }
    }
    ASSERT_EQ(Write("S", "k", "written", name), 1);
    EXPECT_EQ(Value("S", "k", name), "written");
  }
}

}  // namespace
}  // namespace quorvane
