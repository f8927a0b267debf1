// Profile files and the INI routines over them, checked the same way over the portable profile
// files and over kernel32's own functions: what a read copies and returns, and the exact bytes a
// write leaves in the file.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <random>
#include <source_location>
#include <string>

#include "Support.h"
#include "base/Types.h"
#include "icons/modextracticon.h"
#include "platform/ProfileFiles.h"
#include "platform/Service.h"
#include "stores/iniReadWrite.h"

namespace quorvane::testing {
namespace {

using namespace std::string_literals;

platform::ProfileFiles& Profiles() { return platform::Use<platform::ProfileFiles>(); }

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// A C text as a trace shows it, a null one included.
std::string Shown(const char* text) {
  return text == nullptr ? "(null)" : "\"" + std::string(text) + "\"";
}

// What one read gave: the count returned, and the buffer with two bytes past its end, all of
// which started as '#'.
struct Read {
  std::uint32_t count = 0;
  std::string buffer;
};

// A read and the text it should give: section, key, text, then the default and the buffer
// size when they are not Value's own.
struct Expected {
  const char* section;
  const char* key;
  std::string text;
  const char* defaultValue = "(default)";
  std::uint32_t size = 256;
};

// A write and what it should leave: the file's bytes, or no file at all. It fails when
// `succeeds` is false.
struct Step {
  const char* section;
  const char* key;
  const char* value;
  std::optional<std::string> after;
  bool succeeds = true;
};

class IniConformance : public ::testing::Test {
 protected:
  std::string Path(const std::string& name) const { return folder_ + name; }

  void Put(const std::string& name, const std::string& bytes) const {
    File f(std::fopen(Path(name).c_str(), "wb"));
    ASSERT_NE(f, nullptr);
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), f.get()), bytes.size());
  }

  // The file's bytes, or nothing when it can't be opened.
  std::optional<std::string> Bytes(const std::string& name) const {
    File f(std::fopen(Path(name).c_str(), "rb"));
    if (!f) return std::nullopt;
    std::string bytes;
    char chunk[4096];
    std::size_t n = 0;
    while ((n = std::fread(chunk, 1, sizeof chunk, f.get())) > 0) bytes.append(chunk, n);
    return bytes;
  }

  Read Get(const char* section, const char* key, const char* defaultValue, std::uint32_t size,
           const std::string& name) const {
    Read read;
    read.buffer.assign(size + 2, '#');
    read.count = Profiles().GetPrivateProfileStringA(section, key, defaultValue,
                                                     read.buffer.data(), size,
                                                     Path(name).c_str());
    return read;
  }

  // The text a read gave, after checking that it is terminated where the count says.
  std::string Value(const char* section, const char* key, const std::string& name,
                    const char* defaultValue = "(default)", std::uint32_t size = 256) const {
    const Read read = Get(section, key, defaultValue, size, name);
    EXPECT_LT(read.count, size);
    if (read.count >= size) return "(overrun)";
    EXPECT_EQ(read.buffer[read.count], '\0');
    return read.buffer.substr(0, read.count);
  }

  std::int32_t Write(const char* section, const char* key, const char* value,
                     const std::string& name) const {
    return Profiles().WritePrivateProfileStringA(section, key, value, Path(name).c_str());
  }

  // Puts `bytes` into a file of their own and checks each read of it. A failure names the
  // caller's line and the read.
  void ExpectReads(const std::string& bytes, std::initializer_list<Expected> reads,
                   const std::source_location where = std::source_location::current()) {
    const std::string name = "reads" + std::to_string(++readFiles_) + ".ini";
    Put(name, bytes);
    for (const Expected& read : reads) {
      const ::testing::ScopedTrace trace(
          where.file_name(), static_cast<int>(where.line()),
          Shown(read.section) + ", " + Shown(read.key) + ", size " + std::to_string(read.size));
      EXPECT_EQ(Value(read.section, read.key, name, read.defaultValue, read.size), read.text);
    }
  }

  // Puts `before` into the file, unless it is nothing (the file then stays as it is), and
  // makes the writes one after another, checking each one's result and the bytes it leaves.
  void ExpectWrites(const std::optional<std::string>& before, std::initializer_list<Step> steps,
                    const std::string& name = "a.ini",
                    const std::source_location where = std::source_location::current()) const {
    if (before) Put(name, *before);
    int number = 0;
    for (const Step& step : steps) {
      const ::testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()),
                                         "write " + std::to_string(++number));
      const std::int32_t result = Write(step.section, step.key, step.value, name);
      if (step.succeeds) {
        EXPECT_NE(result, 0);
      } else {
        EXPECT_EQ(result, 0);
      }
      EXPECT_EQ(Bytes(name), step.after);
    }
  }

  std::string folder_ = FreshTempFolder();
  int readFiles_ = 0;
};

// --- defaults ---------------------------------------------------------------------------------

TEST_F(IniConformance, MissingFileSectionOrKeyGivesTheDefault) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_EQ(Value("S", "k", "none.ini", "def"), "def");
  EXPECT_EQ(Value("T", "k", "a.ini", "def"), "def");
  EXPECT_EQ(Value("S", "j", "a.ini", "def"), "def");
  EXPECT_EQ(Value("S", "k", "a.ini", "def"), "1");
}

// What a read of a missing file gives for each default.
TEST_F(IniConformance, DefaultLosesTrailingSpacesAndMatchingQuotes) {
  const struct {
    const char* defaultValue;
    const char* text;
  } cases[] = {
      // Trailing spaces go; leading ones and other blanks stay.
      {"def  ", "def"}, {"  def", "  def"}, {"  d  ", "  d"}, {"def\t", "def\t"},
      {"ab\t ", "ab\t"},
      // An all-blank default keeps one space; a null default is an empty one.
      {"   ", " "}, {" ", " "}, {"", ""}, {nullptr, ""},
      // Matching quotes go, once the trailing spaces have gone.
      {"\"def\"", "def"}, {"'def'", "def"}, {"\"ab\"  ", "ab"}, {" \"ab\"", " \"ab\""},
      {"\"ab", "\"ab"}, {"\"ab'", "\"ab'"}, {"\"", "\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Shown(c.defaultValue));
    EXPECT_EQ(Value("S", "k", "none.ini", c.defaultValue), c.text);
  }
}

// --- the buffer ---------------------------------------------------------------------------------

TEST_F(IniConformance, ValueIsCutToSizeLessOne) {
  ExpectReads("[S]\r\nk=Value\r\n", {{"S", "k", "Value", "d", 6}, {"S", "k", "Valu", "d", 5},
                                      {"S", "k", "V", "d", 2}, {"S", "k", "", "d", 1}});
  EXPECT_EQ(Value("S", "k", "none.ini", "abcdefgh", 4), "abc");
}

TEST_F(IniConformance, ReadWithSizeZeroOrNoBufferCopiesNothing) {
  Put("a.ini", "[S]\r\nk=Value\r\n");
  const Read found = Get("S", "k", "d", 0, "a.ini");
  EXPECT_EQ(found.count, 0u);
  EXPECT_EQ(found.buffer, "##");
  const Read missing = Get("S", "x", "default", 0, "a.ini");
  EXPECT_EQ(missing.count, 0u);
  EXPECT_EQ(missing.buffer, "##");
  EXPECT_EQ(
      Profiles().GetPrivateProfileStringA("S", "k", "d", nullptr, 10, Path("a.ini").c_str()),
      0u);
}

TEST_F(IniConformance, TerminatorFollowsTheCopiedCharacters) {
  Put("a.ini", "[S]\r\nk=Value\r\n");
  const Read read = Get("S", "k", "d", 4, "a.ini");
  EXPECT_EQ(read.count, 3u);
  EXPECT_EQ(read.buffer, "Val\0##"s);
}

TEST_F(IniConformance, LongValuesComeBackCutAt254And255) {
  ExpectReads("[S]\r\nk=" + std::string(300, 'y') + "\r\n",
              {{"S", "k", std::string(254, 'y'), "", 255},
               {"S", "k", std::string(255, 'y'), "?!?", 256}});
}

// --- names and values ---------------------------------------------------------------------------

TEST_F(IniConformance, SectionsAndKeysIgnoreCase) {
  ExpectReads("[Sec]\r\nKey=Value\r\n", {{"SEC", "kEy", "Value"}, {"sec", "KEY", "Value"}});
}

TEST_F(IniConformance, BlanksAroundNamesAndValuesAreTrimmed) {
  ExpectReads(
      "[ Spaced Sec ]\r\n  Spaced  =  some value  \r\nTab\t=\tv\t\r\nk =\t  x y  \t\r\n"
      " \t key \t =  \t value with blanks \t \r\n",
      {{"Spaced Sec", "Spaced", "some value"},
       {"Spaced Sec", "Tab", "v"},
       {"Spaced Sec", "k", "x y"},
       {"Spaced Sec", "key", "value with blanks"},
       {"  Spaced Sec\t", "\t Spaced ", "some value"}});
}

TEST_F(IniConformance, NonBreakingSpaceAndControlCharactersAreNotBlanks) {
  ExpectReads("[S]\r\nnb=\xA0v\xA0\r\nfs=\x1Cv\x1F\r\nvt=\v v \f\r\n",
              {{"S", "nb", "\xA0v\xA0"}, {"S", "fs", "\x1Cv\x1F"}, {"S", "vt", "v"}});
}

TEST_F(IniConformance, ValueInMatchingQuotesLosesThem) {
  ExpectReads(
      "[S]\r\nQ=\"quoted\"\r\nQ2='single'\r\nQ3=\"un\r\nQ4=\"a\"b\"\r\nQ5=\"mis'\r\n"
      "Q6=\"\"\r\nQ7=\" inner \"\r\nQ8=  \"sp\"  \r\n",
      {{"S", "Q", "quoted"}, {"S", "Q2", "single"}, {"S", "Q3", "\"un"}, {"S", "Q4", "a\"b"},
       {"S", "Q5", "\"mis'"}, {"S", "Q6", ""}, {"S", "Q7", " inner "}, {"S", "Q8", "sp"}});
}

// A quoted value whose unquoted text exactly fills the buffer comes back one character short.
TEST_F(IniConformance, QuotedValueThatJustFitsLosesOneMoreCharacter) {
  ExpectReads("[S]\r\nq=\"quoted\"\r\nab=\"ab\"\r\nx='x'\r\ne=\"\"\r\n",
              {{"S", "q", "qu", "d", 3}, {"S", "q", "quote", "d", 6},
               {"S", "q", "quote", "d", 7}, {"S", "q", "quoted", "d", 8},
               {"S", "ab", "a", "d", 2}, {"S", "ab", "a", "d", 3}, {"S", "ab", "ab", "d", 4},
               {"S", "x", "", "d", 2}, {"S", "x", "x", "d", 3}, {"S", "e", "", "d", 1},
               {"S", "zz", "a", "\"ab\"", 3}});
}

TEST_F(IniConformance, EmptyValueIsThereAndALineWithoutEqualsIsNot) {
  ExpectReads("[S]\r\nEmpty=\r\nNoEq\r\n  bare  \r\n",
              {{"S", "Empty", ""}, {"S", "NoEq", "(default)"}, {"S", "bare", "(default)"}});
}

TEST_F(IniConformance, ValueRunsFromTheFirstEqualsSign) {
  ExpectReads("[S]\r\nEq=a=b\r\n=noname\r\n", {{"S", "Eq", "a=b"}, {"S", "", "noname"}});
}

TEST_F(IniConformance, CommentLinesAreOrdinaryKeys) {
  ExpectReads("[S]\r\n;Com=x\r\n#Hash=y\r\n", {{"S", ";Com", "x"}, {"S", "#Hash", "y"}});
}

TEST_F(IniConformance, FirstSectionAndFirstKeyWin) {
  ExpectReads("[S]\r\nk=1\r\nk=2\r\n[s]\r\nk=3\r\nj=4\r\n[T]\r\nk\r\nk=5\r\n",
              {{"S", "k", "1"}, {"S", "j", "(default)"}, {"T", "k", "(default)"}});
}

TEST_F(IniConformance, LinesBeforeTheFirstSectionFormTheNamelessSection) {
  ExpectReads("k=before\r\n[S]\r\nk=1\r\n[]\r\nj=2\r\n",
              {{"", "k", "before"}, {"", "j", "(default)"}});
  ExpectReads("[]\r\nk=4\r\n", {{"", "k", "(default)"}});
}

TEST_F(IniConformance, SectionNameRunsToTheLastClosingBracket) {
  ExpectReads("[Trail]junk\r\nk=1\r\n[a]b]\r\nk=2\r\n  [Indent]\r\nk=3\r\n[x]=y\r\nk=4\r\n",
              {{"Trail", "k", "1"}, {"a]b", "k", "2"}, {"a", "k", "(default)"},
               {"Indent", "k", "3"}, {"x", "k", "4"}});
}

TEST_F(IniConformance, OpeningBracketWithoutClosingOneIsAKey) {
  ExpectReads("[S]\r\nk=1\r\n[NoClose\r\nj=2\r\n[a=b\r\n",
              {{"NoClose", "j", "(default)"}, {"S", "j", "2"}, {"S", "[a", "b"}});
}

// Only A to Z match their other case.
TEST_F(IniConformance, NamesAreComparedByteForByteAboveAscii) {
  ExpectReads("[\xC9t\xE9]\r\nk=hi\r\n", {{"\xC9t\xE9", "k", "hi"}, {"\xC9T\xE9", "k", "hi"},
                                          {"\xE9t\xE9", "k", "(default)"}});
}

// --- line ends and odd bytes --------------------------------------------------------------------

TEST_F(IniConformance, LinesEndInCrLfLfOrCr) {
  ExpectReads("[S]\r\nk=crlf\r\nj=2\r\n", {{"S", "j", "2"}});
  ExpectReads("[S]\nk=lf\nj=2\n", {{"S", "j", "2"}});
  ExpectReads("[S]\rk=cr\rj=2\r", {{"S", "j", "2"}, {"S", "k", "cr"}});
  ExpectReads("[S]\n\r\n\rk=mixed\r\r\nj=2", {{"S", "j", "2"}, {"S", "k", "mixed"}});
}

TEST_F(IniConformance, LastLineNeedsNoLineEnd) { ExpectReads("[S]\r\nk=1", {{"S", "k", "1"}}); }

TEST_F(IniConformance, NulEndsANameOrValueButNotItsLine) {
  ExpectReads("[S]\r\nk=a\0b\r\nj=2\r\n"s, {{"S", "k", "a"}, {"S", "j", "2"}});
  ExpectReads("[T]\r\nb=x \0 \r\nc\0=y\r\n  \0  d=z\r\n"s,
              {{"T", "b", "x "}, {"T", "c", "y"}, {"T", "", "z"}});
  ExpectReads("[S\0junk]\r\nq=1\r\n[S]\r\nr=2\r\n"s, {{"S", "q", "1"}, {"S", "r", "(default)"}});
}

TEST_F(IniConformance, BytesAbove127AreKept) {
  ExpectReads("[S]\r\nk=\xE9t\xE9\x80\x81\x8D\x9D\xFF\r\n",
              {{"S", "k", "\xE9t\xE9\x80\x81\x8D\x9D\xFF"}});
}

TEST_F(IniConformance, VeryLongLinesAreRead) {
  ExpectReads("[S]\r\nk=" + std::string(100000, 'x') + "\r\nj=2\r\n",
              {{"S", "k", std::string(299, 'x'), "d", 300}, {"S", "j", "2"}});
}

TEST_F(IniConformance, EmptyFileHasNothing) { ExpectReads("", {{"S", "k", "d", "d"}}); }

// --- lists --------------------------------------------------------------------------------------

TEST_F(IniConformance, NullSectionListsTheSectionNames) {
  Put("a.ini", "pre=1\r\n[ab]\r\nab=1\r\n[]\r\n[cd]\r\n[ab]\r\n");
  const Read read = Get(nullptr, nullptr, "d", 20, "a.ini");
  EXPECT_EQ(read.count, 9u);
  EXPECT_EQ(read.buffer.substr(0, 11), "ab\0cd\0ab\0\0#"s);
  EXPECT_EQ(Get(nullptr, "ab", "d", 20, "a.ini").count, 9u);
}

TEST_F(IniConformance, ListThatDoesNotFitIsCutTwoShortOfTheEnd) {
  Put("a.ini", "[ab]\r\nab=1\r\ncd=2\r\n[cd]\r\n");
  const struct {
    std::uint32_t size;
    std::string buffer;
    std::uint32_t count;
  } cases[] = {{8, "ab\0cd\0\0###"s, 6}, {7, "ab\0cd\0###"s, 5}, {6, "ab\0c\0###"s, 4},
               {5, "ab\0\0###"s, 3},      {3, "a\0###"s, 1},      {2, "\0###"s, 0},
               {1, "\0##"s, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    const Read read = Get(nullptr, nullptr, "d", c.size, "a.ini");
    EXPECT_EQ(read.buffer, c.buffer);
    EXPECT_EQ(read.count, c.count);
  }
}

TEST_F(IniConformance, NullKeyListsTheKeysWithValues) {
  Put("a.ini", "[S]\r\nk=1\r\nbare\r\n=empty\r\n;c=2\r\nc;=3\r\nk=4\r\n");
  const Read read = Get("S", nullptr, "d", 40, "a.ini");
  EXPECT_EQ(read.count, 8u);
  EXPECT_EQ(read.buffer.substr(0, 10), "k\0\0c;\0k\0\0#"s);
}

TEST_F(IniConformance, EmptyListOfKeysGivesTheDefault) {
  Put("a.ini", "[S]\r\n[E]\r\nbare\r\n[ab]\r\nab=1\r\ncd=2\r\n");
  EXPECT_EQ(Value("S", nullptr, "a.ini", "d"), "d");
  EXPECT_EQ(Value("E", nullptr, "a.ini", "d"), "d");
  EXPECT_EQ(Value("Missing", nullptr, "a.ini", "d"), "d");
  EXPECT_EQ(Value("ab", nullptr, "a.ini", "d", 2), "d");
  EXPECT_EQ(Get("ab", nullptr, "d", 3, "a.ini").buffer, "a\0###"s);
}

TEST_F(IniConformance, SectionListOfAMissingFileIsEmpty) {
  const Read read = Get(nullptr, nullptr, "d", 20, "none.ini");
  EXPECT_EQ(read.count, 0u);
  EXPECT_EQ(read.buffer[0], '\0');
}

// Random bytes, with the characters that mean something to a reader mixed in: every read stays
// inside its buffer, and what is written reads back.
TEST_F(IniConformance, RandomFilesNeverCrash) {
  std::mt19937 rng(7);
  const char special[] = "[]=\"';\r\n \t\0\xEF\xBB\xBF\xFF\xFE";
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    std::string bytes(rng() % 400, '\0');
    for (char& c : bytes) {
      c = (rng() % 2 == 0) ? special[rng() % (sizeof special - 1)] : static_cast<char>(rng());
    }
    const std::string name = "r" + std::to_string(round) + ".ini";
    Put(name, bytes);
    for (std::uint32_t size : {0u, 1u, 2u, 3u, 16u, 256u}) {
      for (const char* section : {"S", "", "[", static_cast<const char*>(nullptr)}) {
        const Read read = Get(section, "k", "?!?", size, name);
        ASSERT_TRUE(size == 0 ? read.count == 0 : read.count < size);
        Get(section, nullptr, "?!?", size, name);
      }
    }
    ASSERT_EQ(Write("S", "k", "written", name), 1);
    EXPECT_EQ(Value("S", "k", name), "written");
  }
}

// --- writes -------------------------------------------------------------------------------------

TEST_F(IniConformance, WriteCreatesTheFileWithSectionAndKey) {
  ExpectWrites(std::nullopt, {{"Files", "1", "Sea\\bay.jpg", "[Files]\r\n1=Sea\\bay.jpg\r\n"}});
}

TEST_F(IniConformance, WriteIntoAMissingFolderFails) {
  ExpectWrites(std::nullopt, {{"S", "k", "v", std::nullopt, false}}, "missing/a.ini");
  EXPECT_FALSE(std::filesystem::exists(Path("missing")));
}

TEST_F(IniConformance, FolderInPlaceOfTheFileReadsAsMissingAndTakesNoWrite) {
  EXPECT_EQ(Value("S", "k", "", "d"), "d");
  EXPECT_EQ(Profiles().WritePrivateProfileStringA("S", "k", "v", folder_.c_str()), 0);
  EXPECT_TRUE(std::filesystem::is_directory(folder_));
}

TEST_F(IniConformance, NullSectionWritesNothing) {
  ExpectWrites(std::nullopt, {{nullptr, "k", "v", std::nullopt, false}});
}

TEST_F(IniConformance, NewKeyGoesAtTheEndOfItsSection) {
  ExpectWrites("[S]\r\na=1\r\n; note\r\n[T]\r\nx=y\r\n",
               {{"S", "c", "3", "[S]\r\na=1\r\n; note\r\nc=3\r\n[T]\r\nx=y\r\n"},
                {"T", "z", "9", "[S]\r\na=1\r\n; note\r\nc=3\r\n[T]\r\nx=y\r\nz=9\r\n"}});
}

TEST_F(IniConformance, NewSectionGoesAtTheEndOfTheFile) {
  ExpectWrites("[S]\r\na=1\r\n", {{"U", "u", "1", "[S]\r\na=1\r\n[U]\r\nu=1\r\n"}});
}

TEST_F(IniConformance, ReplaceKeepsEveryOtherLineInPlace) {
  ExpectWrites("; top\r\n[S]\r\na=1\r\nb=2\r\n; c\r\nd\r\n[T]\r\nb=9\r\n",
               {{"S", "b", "22", "; top\r\n[S]\r\na=1\r\nb=22\r\n; c\r\nd\r\n[T]\r\nb=9\r\n"}});
}

TEST_F(IniConformance, ReplaceKeepsTheStoredNamesCase) {
  ExpectWrites("[Sec]\r\nKey=1\r\n", {{"SEC", "KEY", "2", "[Sec]\r\nKey=2\r\n"}});
}

TEST_F(IniConformance, WriteThatChangesNothingLeavesTheFileAlone) {
  const std::string original = "[S]\nk=1\n\n  j = 2  \n";
  ExpectWrites(original, {{"S", "k", "1", original}, {"s", "K ", "  1", original},
                          {"S", "j", "2", original}, {"S", "missing", nullptr, original},
                          {"Missing", nullptr, nullptr, original}});
}

TEST_F(IniConformance, ValuesAreComparedWithCase) {
  ExpectWrites("[S]\nk=abc\n", {{"S", "k", "ABC", "[S]\r\nk=ABC\r\n"}});
}

// A write that changes the file writes all of it again from its parts.
TEST_F(IniConformance, ChangedFileIsWrittenAgainInItsPlainForm) {
  ExpectWrites(
      "; header comment\n\n  [ S ]  junk\n  a = 1  \n\nb=2\n  ; c  \n  bare  \n[T]\rx=y",
      {{"T", "x", "z", "; header comment\r\n[S]\r\na=1\r\nb=2\r\n; c\r\nbare\r\n[T]\r\nx=z\r\n"}});
}

TEST_F(IniConformance, NamelessSectionsAreWrittenWithoutAHeader) {
  ExpectWrites("k=0\r\n[S]\r\na=1\r\n[]\r\ne=1\r\n[ ]\r\nf=2\r\n",
               {{"S", "j", "1", "k=0\r\n[S]\r\na=1\r\nj=1\r\ne=1\r\nf=2\r\n"}});
}

TEST_F(IniConformance, WriteIntoTheNamelessSectionGoesBeforeTheFirstHeader) {
  ExpectWrites("[S]\r\nk=1\r\n", {{"", "k", "top", "k=top\r\n[S]\r\nk=1\r\n"}});
}

TEST_F(IniConformance, WrittenTextLosesLeadingBlanksOnly) {
  ExpectWrites(std::nullopt, {{"\tNew ", " k\t", "  v  ", "[New ]\r\nk\t=v  \r\n"}});
  EXPECT_EQ(Value("New", "k", "a.ini"), "v");
  ExpectWrites(std::nullopt, {{"New", "j", "\"q\"", "[New]\r\nk=v\r\nj=\"q\"\r\n"}});
}

TEST_F(IniConformance, EmptyValueAndEmptyKeyAreWritten) {
  ExpectWrites(std::nullopt,
               {{"S", "e", "", "[S]\r\ne=\r\n"}, {"S", "", "ek", "[S]\r\ne=\r\n=ek\r\n"}});
}

TEST_F(IniConformance, WriteGivesAValueToAKeyWithoutOne) {
  ExpectWrites("[S]\r\nk\r\n", {{"S", "k", "v", "[S]\r\nk=v\r\n"}});
}

TEST_F(IniConformance, NullValueDeletesTheKey) {
  ExpectWrites("[S]\r\na=1\r\nb=2\r\nb=3\r\n[T]\r\nx=1\r\n",
               {{"S", "b", nullptr, "[S]\r\na=1\r\nb=3\r\n[T]\r\nx=1\r\n"},
                {"T", "x", nullptr, "[S]\r\na=1\r\nb=3\r\n[T]\r\n"}});
}

TEST_F(IniConformance, NullKeyDeletesTheFirstMatchingSection) {
  ExpectWrites("[S]\r\n[s]\r\nk=1\r\n[T]\r\nx=1\r\n",
               {{"S", nullptr, nullptr, "[s]\r\nk=1\r\n[T]\r\nx=1\r\n"},
                {"S", nullptr, "ignored", "[T]\r\nx=1\r\n"},
                {"T", nullptr, nullptr, ""}});
}

TEST_F(IniConformance, DeletingFromAMissingFileMakesNoFile) {
  ExpectWrites(std::nullopt,
               {{"S", "k", nullptr, std::nullopt}, {"S", nullptr, nullptr, std::nullopt}});
}

TEST_F(IniConformance, WriteIntoAFileWithoutFinalLineEnd) {
  ExpectWrites("[S]\r\nk=1", {{"S", "j", "2", "[S]\r\nk=1\r\nj=2\r\n"}});
}

TEST_F(IniConformance, WriteIntoAFileWithOddBytes) {
  ExpectWrites("\0[S]\r\nk=a\0b\r\n\0\0\r\nh=\xE9\xFF\r\n[NoClose\rj=2"s,
               {{"S", "j", "3", "\r\nk=a\r\n\r\nh=\xE9\xFF\r\n[NoClose\r\nj=2\r\n[S]\r\nj=3\r\n"}});
  ExpectWrites("\x80\xFF\0\r[S]\r\nnul=a\0b\r\nlone=cr\rhigh=\xE9\x80\xFF\r\n[open\r\nlast=1"s,
               {{"S", "new", "v",
                 "\x80\xFF\r\n[S]\r\nnul=a\r\nlone=cr\r\nhigh=\xE9\x80\xFF\r\n[open\r\nlast=1\r\n"
                 "new=v\r\n"}},
               "b.ini");
}

TEST_F(IniConformance, WrittenTextIsNotEscaped) {
  ExpectWrites(std::nullopt, {{"a]b", "a=b", "line\r\nnext", "[a]b]\r\na=b=line\r\nnext\r\n"}});
  EXPECT_EQ(Value("a]b", "a", "a.ini"), "b=line");
}

// --- encodings ----------------------------------------------------------------------------------

TEST_F(IniConformance, Utf8FileWithMarkIsReadAndWrittenAsUtf8) {
  Put("a.ini", "\xEF\xBB\xBF[S]\r\nk=\xC3\xA9\r\ne=\xE2\x82\xAC\r\nb=\xC3\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "\xE9");
  EXPECT_EQ(Value("S", "e", "a.ini"), "\x80");
  EXPECT_EQ(Value("S", "b", "a.ini"), "?");
  ExpectWrites(std::nullopt,
               {{"S", "j", "\xE8\x81",
                 "\xEF\xBB\xBF[S]\r\nk=\xC3\xA9\r\ne=\xE2\x82\xAC\r\nb=\xEF\xBF\xBD\r\n"
                 "j=\xC3\xA8\xC2\x81\r\n"}});
}

TEST_F(IniConformance, Utf8CharactersOutsideTheCodePageReadAsQuestionMarks) {
  Put("a.ini", "\xEF\xBB\xBF[S]\r\nk=\xD0\x96\xF0\x9F\x98\x80\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "???");
  ExpectWrites(std::nullopt,
               {{"S", "j", "1", "\xEF\xBB\xBF[S]\r\nk=\xD0\x96\xF0\x9F\x98\x80\r\nj=1\r\n"}});
  // A section named by such characters keeps them too.
  ExpectWrites("\xEF\xBB\xBF[S]\r\nk=1\r\n[\xD0\x96]\r\nj=1\r\n",
               {{"S", "new", "1", "\xEF\xBB\xBF[S]\r\nk=1\r\nnew=1\r\n[\xD0\x96]\r\nj=1\r\n"}},
               "b.ini");
}

// One question mark for each broken sequence; a second byte out of range for its lead still
// belongs to the sequence.
TEST_F(IniConformance, MalformedUtf8ReadsAsQuestionMarks) {
  ExpectReads(
      "\xEF\xBB\xBF[S]\r\n"
      "a=|\xF4\x90\x80\x80|\r\nb=|\xED\xA0\x80|\r\nc=|\xE0\x80\x80|\r\nd=|\xC0\x80|\r\n"
      "e=|\xE0\xA0|\r\nf=|\xF0\x9F\x98|\r\ng=|\xF8\x88\x80\x80\x80|\r\nh=|\xE2\x82\xAC\xE2|\r\n",
      {{"S", "a", "|???|"}, {"S", "b", "|??|"}, {"S", "c", "|??|"}, {"S", "d", "|??|"},
       {"S", "e", "|?|"}, {"S", "f", "|?|"}, {"S", "g", "|?????|"}, {"S", "h", "|\x80?|"}});
}

TEST_F(IniConformance, Utf16FilesWithMarkAreReadAndWrittenInTheirByteOrder) {
  Put("le.ini", "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0e\0=\0\xAC\x20"s);
  EXPECT_EQ(Value("S", "k", "le.ini"), "\xE9");
  EXPECT_EQ(Value("S", "e", "le.ini"), "\x80");
  ExpectWrites(
      std::nullopt,
      {{"S", "j", "\xE8",
        "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0e\0=\0\xAC\x20\r\0\n\0j\0=\0\xE8\0\r\0\n\0"s}},
      "le.ini");
  Put("be.ini", "\xFE\xFF\0[\0S\0]\0\n\0k\0=\0v"s);
  EXPECT_EQ(Value("S", "k", "be.ini"), "v");
  ExpectWrites(std::nullopt, {{"S", "k", "w", "\xFE\xFF\0[\0S\0]\0\r\0\n\0k\0=\0w\0\r\0\n"s}},
               "be.ini");
}

TEST_F(IniConformance, LoneSurrogateInUtf16ReadsAsQuestionMark) {
  Put("a.ini", "\xFF\xFE[\0S\0]\0\n\0k\0=\0\x00\xD8v\0"s);
  EXPECT_EQ(Value("S", "k", "a.ini"), "?v");
  ExpectWrites(std::nullopt, {{"S", "k", "w", "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0w\0\r\0\n\0"s}});
}

TEST_F(IniConformance, MarkAloneKeepsItsEncoding) {
  ExpectWrites("\xFF\xFE", {{"S", "k", "v", "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0v\0\r\0\n\0"s}});
}

// --- Files.ini ----------------------------------------------------------------------------------

TEST_F(IniConformance, FilesIniBuiltBySuccessiveWrites) {
  Put("Files.ini", "");  // made empty first, as the rebuild does
  const std::string file = Path("Files.ini");
  EXPECT_NE(WriteIniValue("Files", "1", "Sea\\bay.jpg", file), 0);
  EXPECT_NE(WriteIniValue("Files", "2", "Sea\\cliff.bmp", file), 0);
  EXPECT_NE(WriteIniValue("Files", "3", "Town\\night.jpg", file), 0);
  EXPECT_NE(WriteIniValue("Count", "Total", "3", file), 0);
  EXPECT_EQ(Bytes("Files.ini"),
            "[Files]\r\n1=Sea\\bay.jpg\r\n2=Sea\\cliff.bmp\r\n3=Town\\night.jpg\r\n"
            "[Count]\r\nTotal=3\r\n");
  EXPECT_EQ(ReadIniValue("Count", "Total", file), "3");
  EXPECT_EQ(ReadIniValue("Files", "2", file), "Sea\\cliff.bmp");
  EXPECT_EQ(ReadIniValue("Files", "3", file), "Town\\night.jpg");
  EXPECT_EQ(ReadIniValue("Files", "4", file), "");
}

TEST_F(IniConformance, FilesIniWithNoEntries) {
  Put("Files.ini", "");
  EXPECT_NE(WriteIniValue("Count", "Total", "0", Path("Files.ini")), 0);
  EXPECT_EQ(Bytes("Files.ini"), "[Count]\r\nTotal=0\r\n");
  EXPECT_EQ(ReadIniValue("Files", "1", Path("Files.ini")), "");
}

TEST_F(IniConformance, FilesIniEntriesThatDifferOnlyInTheirCollection) {
  const std::string file = Path("Files.ini");
  EXPECT_NE(WriteIniValue("Files", "1", "Sea\\a.jpg", file), 0);
  EXPECT_NE(WriteIniValue("Files", "2", "Town\\a.jpg", file), 0);
  EXPECT_EQ(ReadIniValue("Files", "1", file), "Sea\\a.jpg");
  EXPECT_EQ(ReadIniValue("Files", "2", file), "Town\\a.jpg");
}

TEST_F(IniConformance, AbsentOrEmptyFilesIniReadsTotalEmpty) {
  EXPECT_EQ(ReadIniValue("Count", "Total", Path("Files.ini")), "");
  Put("Empty.ini", "");
  EXPECT_EQ(ReadIniValue("Count", "Total", Path("Empty.ini")), "");
}

// --- the INI routines ---------------------------------------------------------------------------

TEST_F(IniConformance, IniRoutinesOnAnEmptyValue) {
  Put("a.ini", "[S]\r\nk=\r\n");
  EXPECT_EQ(ReadIniValue("S", "k", Path("a.ini")), "");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "k", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, "");
}

TEST_F(IniConformance, IniRoutinesOnAMissingFileSectionOrKey) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_EQ(ReadIniValue("S", "j", Path("a.ini")), "");
  EXPECT_EQ(ReadIniValue("T", "k", Path("a.ini")), "");
  EXPECT_EQ(ReadIniValue("S", "k", Path("none.ini")), "");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "j", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("T", "k", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("S", "j", Path("none.ini"), value), kFalse);
  EXPECT_EQ(value, "before");
  EXPECT_EQ(Bytes("none.ini"), std::nullopt);
}

TEST_F(IniConformance, ReadIniEntryTakesValuesBeginningWithTheStandInAsMissing) {
  Put("a.ini", "[S]\r\nx=?!?x\r\nq=\"?!?\"\r\nt=?!\r\ny=?!?\r\nw= ?!?\r\n");
  std::string value = "before";
  for (const char* key : {"x", "q", "y", "w"}) {
    SCOPED_TRACE(key);
    EXPECT_EQ(ReadIniEntry("S", key, Path("a.ini"), value), kFalse);
  }
  EXPECT_EQ(value, "before");
  EXPECT_EQ(ReadIniEntry("S", "t", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, "?!");
  EXPECT_EQ(ReadIniValue("S", "x", Path("a.ini")), "?!?x");
}

// ReadIniValue's buffer holds 254 characters and ReadIniEntry's 255.
TEST_F(IniConformance, IniRoutinesCutLongValues) {
  for (std::size_t length : {254u, 255u, 300u}) {
    SCOPED_TRACE(length);
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('a' + i % 26);
    EXPECT_NE(WriteIniValue("S", "k", text, Path("a.ini")), 0);
    EXPECT_EQ(ReadIniValue("S", "k", Path("a.ini")), text.substr(0, 254));
    std::string value;
    EXPECT_EQ(ReadIniEntry("S", "k", Path("a.ini"), value), kTrue);
    EXPECT_EQ(value, text.substr(0, 255));
  }
}

TEST_F(IniConformance, WriteIniValueGivesOneOnSuccessAndZeroOnFailure) {
  EXPECT_EQ(WriteIniValue("S", "k", "v", Path("a.ini")), 1);
  EXPECT_EQ(WriteIniValue("S", "k", "v", Path("missing/a.ini")), 0);
  EXPECT_EQ(WriteIniValue("S", "k", "v", folder_), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nk=v\r\n");
}

TEST_F(IniConformance, DesktopIniIconNumberIsReadUnderTheOtherCase) {
  const std::string file = Path("desktop.ini");
  WriteIniEntry(".ShellClassInfo", "iconfile", "C:\\Icons\\My.ico", file);
  WriteIniEntry(".ShellClassInfo", "iconindex", "3", file);
  EXPECT_EQ(Bytes("desktop.ini"),
            "[.ShellClassInfo]\r\niconfile=C:\\Icons\\My.ico\r\niconindex=3\r\n");
  std::string iconFile;
  std::string iconIndex;
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "iconfile", file, iconFile), kTrue);
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "IconIndex", file, iconIndex), kTrue);
  EXPECT_EQ(iconFile, "C:\\Icons\\My.ico");
  EXPECT_EQ(iconIndex, "3");
}

TEST_F(IniConformance, WriteIniEntryKeepsTheFilesOtherEntries) {
  Put("desktop.ini", "[.ShellClassInfo]\r\nIconFile=old.ico\r\nInfoTip=Mine\r\n[Other]\r\nx=1\r\n");
  WriteIniEntry(".ShellClassInfo", "iconfile", "new.ico", Path("desktop.ini"));
  WriteIniEntry(".ShellClassInfo", "iconindex", "7", Path("desktop.ini"));
  EXPECT_EQ(Bytes("desktop.ini"),
            "[.ShellClassInfo]\r\nIconFile=new.ico\r\nInfoTip=Mine\r\niconindex=7\r\n"
            "[Other]\r\nx=1\r\n");
}

TEST_F(IniConformance, FailedWriteIniEntryIsSilent) {
  EXPECT_NO_THROW(
      WriteIniEntry(".ShellClassInfo", "iconfile", "x.ico", Path("missing/desktop.ini")));
  EXPECT_FALSE(std::filesystem::exists(Path("missing")));
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "iconfile", Path("missing/desktop.ini"), value),
            kFalse);
  EXPECT_EQ(value, "before");
}

}  // namespace
}  // namespace quorvane::testing
