// Profile files and the INI routines over them, checked the same way over the portable profile
// files and over kernel32's own functions: what a read copies and returns, and the exact bytes a
// write leaves in the file.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "Support.h"
#include "core/Types.h"
#include "icons/modextracticon.h"
#include "platform/ProfileFiles.h"
#include "platform/Service.h"
#include "stores/iniReadWrite.h"

namespace quorvane::testing {

// A new, empty folder for one test, with a trailing separator (ProfileEnvironment.cpp of each
// build).

namespace {

using namespace std::string_literals;

platform::ProfileFiles& Profiles() { return platform::Use<platform::ProfileFiles>(); }

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// What one read gave: the count returned, and the buffer with two bytes past its end, all of
// which started as '#'.
struct Read {
  std::uint32_t count = 0;
  std::string buffer;
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

  std::string folder_ = FreshTempFolder();
};

// --- defaults ---------------------------------------------------------------------------------

TEST_F(IniConformance, MissingFileSectionOrKeyGivesTheDefault) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_EQ(Value("S", "k", "none.ini", "def"), "def");
  EXPECT_EQ(Value("T", "k", "a.ini", "def"), "def");
  EXPECT_EQ(Value("S", "j", "a.ini", "def"), "def");
  EXPECT_EQ(Value("S", "k", "a.ini", "def"), "1");
}

TEST_F(IniConformance, DefaultLosesTrailingSpacesOnly) {
  EXPECT_EQ(Value("S", "k", "none.ini", "def  "), "def");
  EXPECT_EQ(Value("S", "k", "none.ini", "  def"), "  def");
  EXPECT_EQ(Value("S", "k", "none.ini", "def\t"), "def\t");
  EXPECT_EQ(Value("S", "k", "none.ini", "ab\t "), "ab\t");
}

TEST_F(IniConformance, AllBlankDefaultKeepsOneSpace) {
  EXPECT_EQ(Value("S", "k", "none.ini", "   "), " ");
  EXPECT_EQ(Value("S", "k", "none.ini", " "), " ");
  EXPECT_EQ(Value("S", "k", "none.ini", ""), "");
}

TEST_F(IniConformance, NullDefaultGivesEmptyText) {
  EXPECT_EQ(Value("S", "k", "none.ini", nullptr), "");
}

TEST_F(IniConformance, QuotedDefaultLosesItsQuotes) {
  EXPECT_EQ(Value("S", "k", "none.ini", "\"def\""), "def");
  EXPECT_EQ(Value("S", "k", "none.ini", "'def'"), "def");
  EXPECT_EQ(Value("S", "k", "none.ini", "\"ab\"  "), "ab");
  EXPECT_EQ(Value("S", "k", "none.ini", " \"ab\""), " \"ab\"");
  EXPECT_EQ(Value("S", "k", "none.ini", "\"ab"), "\"ab");
  EXPECT_EQ(Value("S", "k", "none.ini", "\"ab'"), "\"ab'");
  EXPECT_EQ(Value("S", "k", "none.ini", "\""), "\"");
}

// --- the buffer ---------------------------------------------------------------------------------

TEST_F(IniConformance, ValueIsCutToSizeLessOne) {
  Put("a.ini", "[S]\r\nk=Value\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 6), "Value");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 5), "Valu");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 2), "V");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 1), "");
  EXPECT_EQ(Value("S", "k", "none.ini", "abcdefgh", 4), "abc");
}

TEST_F(IniConformance, ReadWithSizeZeroTouchesNothing) {
  Put("a.ini", "[S]\r\nk=Value\r\n");
  const Read found = Get("S", "k", "d", 0, "a.ini");
  EXPECT_EQ(found.count, 0u);
  EXPECT_EQ(found.buffer, "##");
  const Read missing = Get("S", "x", "default", 0, "a.ini");
  EXPECT_EQ(missing.count, 0u);
  EXPECT_EQ(missing.buffer, "##");
}

TEST_F(IniConformance, TerminatorFollowsTheCopiedCharacters) {
  Put("a.ini", "[S]\r\nk=Value\r\n");
  const Read read = Get("S", "k", "d", 4, "a.ini");
  EXPECT_EQ(read.count, 3u);
  EXPECT_EQ(read.buffer, "Val\0##"s);
}

TEST_F(IniConformance, LongValuesComeBackCutAt254And255) {
  Put("a.ini", "[S]\r\nk=" + std::string(300, 'y') + "\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini", "", 255), std::string(254, 'y'));
  EXPECT_EQ(Value("S", "k", "a.ini", "?!?", 256), std::string(255, 'y'));
}

// --- names and values ---------------------------------------------------------------------------

TEST_F(IniConformance, SectionsAndKeysIgnoreCase) {
  Put("a.ini", "[Sec]\r\nKey=Value\r\n");
  EXPECT_EQ(Value("SEC", "kEy", "a.ini"), "Value");
  EXPECT_EQ(Value("sec", "KEY", "a.ini"), "Value");
}

TEST_F(IniConformance, BlanksAroundNamesAndValuesAreTrimmed) {
  Put("a.ini",
      "[ Spaced Sec ]\r\n  Spaced  =  some value  \r\nTab\t=\tv\t\r\nk =\t  x y  \t\r\n");
  EXPECT_EQ(Value("Spaced Sec", "Spaced", "a.ini"), "some value");
  EXPECT_EQ(Value("Spaced Sec", "Tab", "a.ini"), "v");
  EXPECT_EQ(Value("Spaced Sec", "k", "a.ini"), "x y");
  EXPECT_EQ(Value("  Spaced Sec\t", "\t Spaced ", "a.ini"), "some value");
}

TEST_F(IniConformance, NonBreakingSpaceAndControlCharactersAreNotBlanks) {
  Put("a.ini", "[S]\r\nnb=\xA0v\xA0\r\nfs=\x1Cv\x1F\r\nvt=\v v \f\r\n");
  EXPECT_EQ(Value("S", "nb", "a.ini"), "\xA0v\xA0");
  EXPECT_EQ(Value("S", "fs", "a.ini"), "\x1Cv\x1F");
  EXPECT_EQ(Value("S", "vt", "a.ini"), "v");
}

TEST_F(IniConformance, ValueInMatchingQuotesLosesThem) {
  Put("a.ini",
      "[S]\r\nQ=\"quoted\"\r\nQ2='single'\r\nQ3=\"un\r\nQ4=\"a\"b\"\r\nQ5=\"mis'\r\n"
      "Q6=\"\"\r\nQ7=\" inner \"\r\nQ8=  \"sp\"  \r\n");
  EXPECT_EQ(Value("S", "Q", "a.ini"), "quoted");
  EXPECT_EQ(Value("S", "Q2", "a.ini"), "single");
  EXPECT_EQ(Value("S", "Q3", "a.ini"), "\"un");
  EXPECT_EQ(Value("S", "Q4", "a.ini"), "a\"b");
  EXPECT_EQ(Value("S", "Q5", "a.ini"), "\"mis'");
  EXPECT_EQ(Value("S", "Q6", "a.ini"), "");
  EXPECT_EQ(Value("S", "Q7", "a.ini"), " inner ");
  EXPECT_EQ(Value("S", "Q8", "a.ini"), "sp");
}

// A quoted value whose unquoted text exactly fills the buffer comes back one character short.
TEST_F(IniConformance, QuotedValueThatJustFitsLosesOneMoreCharacter) {
  Put("a.ini", "[S]\r\nq=\"quoted\"\r\nab=\"ab\"\r\nx='x'\r\ne=\"\"\r\n");
  EXPECT_EQ(Value("S", "q", "a.ini", "d", 3), "qu");
  EXPECT_EQ(Value("S", "q", "a.ini", "d", 6), "quote");
  EXPECT_EQ(Value("S", "q", "a.ini", "d", 7), "quote");
  EXPECT_EQ(Value("S", "q", "a.ini", "d", 8), "quoted");
  EXPECT_EQ(Value("S", "ab", "a.ini", "d", 2), "a");
  EXPECT_EQ(Value("S", "ab", "a.ini", "d", 3), "a");
  EXPECT_EQ(Value("S", "ab", "a.ini", "d", 4), "ab");
  EXPECT_EQ(Value("S", "x", "a.ini", "d", 2), "");
  EXPECT_EQ(Value("S", "x", "a.ini", "d", 3), "x");
  EXPECT_EQ(Value("S", "e", "a.ini", "d", 1), "");
  EXPECT_EQ(Value("S", "zz", "a.ini", "\"ab\"", 3), "a");
}

TEST_F(IniConformance, EmptyValueIsThereAndALineWithoutEqualsIsNot) {
  Put("a.ini", "[S]\r\nEmpty=\r\nNoEq\r\n  bare  \r\n");
  EXPECT_EQ(Value("S", "Empty", "a.ini"), "");
  EXPECT_EQ(Value("S", "NoEq", "a.ini"), "(default)");
  EXPECT_EQ(Value("S", "bare", "a.ini"), "(default)");
}

TEST_F(IniConformance, ValueRunsFromTheFirstEqualsSign) {
  Put("a.ini", "[S]\r\nEq=a=b\r\n=noname\r\n");
  EXPECT_EQ(Value("S", "Eq", "a.ini"), "a=b");
  EXPECT_EQ(Value("S", "", "a.ini"), "noname");
}

TEST_F(IniConformance, CommentLinesAreOrdinaryKeys) {
  Put("a.ini", "[S]\r\n;Com=x\r\n#Hash=y\r\n");
  EXPECT_EQ(Value("S", ";Com", "a.ini"), "x");
  EXPECT_EQ(Value("S", "#Hash", "a.ini"), "y");
}

TEST_F(IniConformance, FirstSectionAndFirstKeyWin) {
  Put("a.ini", "[S]\r\nk=1\r\nk=2\r\n[s]\r\nk=3\r\nj=4\r\n[T]\r\nk\r\nk=5\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "1");
  EXPECT_EQ(Value("S", "j", "a.ini"), "(default)");
  EXPECT_EQ(Value("T", "k", "a.ini"), "(default)");
}

TEST_F(IniConformance, LinesBeforeTheFirstSectionFormTheNamelessSection) {
  Put("a.ini", "k=before\r\n[S]\r\nk=1\r\n[]\r\nj=2\r\n");
  EXPECT_EQ(Value("", "k", "a.ini"), "before");
  EXPECT_EQ(Value("", "j", "a.ini"), "(default)");
  Put("b.ini", "[]\r\nk=4\r\n");
  EXPECT_EQ(Value("", "k", "b.ini"), "(default)");
}

TEST_F(IniConformance, SectionNameRunsToTheLastClosingBracket) {
  Put("a.ini", "[Trail]junk\r\nk=1\r\n[a]b]\r\nk=2\r\n  [Indent]\r\nk=3\r\n[x]=y\r\nk=4\r\n");
  EXPECT_EQ(Value("Trail", "k", "a.ini"), "1");
  EXPECT_EQ(Value("a]b", "k", "a.ini"), "2");
  EXPECT_EQ(Value("a", "k", "a.ini"), "(default)");
  EXPECT_EQ(Value("Indent", "k", "a.ini"), "3");
  EXPECT_EQ(Value("x", "k", "a.ini"), "4");
}

TEST_F(IniConformance, OpeningBracketWithoutClosingOneIsAKey) {
  Put("a.ini", "[S]\r\nk=1\r\n[NoClose\r\nj=2\r\n[a=b\r\n");
  EXPECT_EQ(Value("NoClose", "j", "a.ini"), "(default)");
  EXPECT_EQ(Value("S", "j", "a.ini"), "2");
  EXPECT_EQ(Value("S", "[a", "a.ini"), "b");
}

TEST_F(IniConformance, NamesAreComparedByteForByteAboveAscii) {
  Put("a.ini", "[\xC9t\xE9]\r\nk=hi\r\n");
  EXPECT_EQ(Value("\xC9t\xE9", "k", "a.ini"), "hi");
  EXPECT_EQ(Value("\xC9T\xE9", "k", "a.ini"), "hi");
}

// --- line ends and odd bytes --------------------------------------------------------------------

TEST_F(IniConformance, LinesEndInCrLfLfOrCr) {
  Put("crlf.ini", "[S]\r\nk=crlf\r\nj=2\r\n");
  Put("lf.ini", "[S]\nk=lf\nj=2\n");
  Put("cr.ini", "[S]\rk=cr\rj=2\r");
  Put("mixed.ini", "[S]\n\r\n\rk=mixed\r\r\nj=2");
  for (const char* name : {"crlf.ini", "lf.ini", "cr.ini", "mixed.ini"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Value("S", "j", name), "2");
  }
  EXPECT_EQ(Value("S", "k", "cr.ini"), "cr");
  EXPECT_EQ(Value("S", "k", "mixed.ini"), "mixed");
}

TEST_F(IniConformance, LastLineNeedsNoLineEnd) {
  Put("a.ini", "[S]\r\nk=1");
  EXPECT_EQ(Value("S", "k", "a.ini"), "1");
}

TEST_F(IniConformance, NulEndsANameOrValueButNotItsLine) {
  Put("a.ini", "[S]\r\nk=a\0b\r\nj=2\r\n"s);
  EXPECT_EQ(Value("S", "k", "a.ini"), "a");
  EXPECT_EQ(Value("S", "j", "a.ini"), "2");
  Put("b.ini", "[T]\r\nb=x \0 \r\nc\0=y\r\n  \0  d=z\r\n"s);
  EXPECT_EQ(Value("T", "b", "b.ini"), "x ");
  EXPECT_EQ(Value("T", "c", "b.ini"), "y");
  EXPECT_EQ(Value("T", "", "b.ini"), "z");
  Put("c.ini", "[S\0junk]\r\nq=1\r\n[S]\r\nr=2\r\n"s);
  EXPECT_EQ(Value("S", "q", "c.ini"), "1");
  EXPECT_EQ(Value("S", "r", "c.ini"), "(default)");
}

TEST_F(IniConformance, BytesAbove127AreKept) {
  Put("a.ini", "[S]\r\nk=\xE9t\xE9\x80\x81\x8D\x9D\xFF\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "\xE9t\xE9\x80\x81\x8D\x9D\xFF");
}

TEST_F(IniConformance, VeryLongLinesAreRead) {
  Put("a.ini", "[S]\r\nk=" + std::string(100000, 'x') + "\r\nj=2\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini", "d", 300), std::string(299, 'x'));
  EXPECT_EQ(Value("S", "j", "a.ini"), "2");
}

TEST_F(IniConformance, EmptyFileHasNothing) {
  Put("a.ini", "");
  EXPECT_EQ(Value("S", "k", "a.ini", "d"), "d");
}

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
  EXPECT_EQ(Get(nullptr, nullptr, "d", 8, "a.ini").buffer, "ab\0cd\0\0###"s);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 8, "a.ini").count, 6u);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 7, "a.ini").buffer, "ab\0cd\0###"s);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 7, "a.ini").count, 5u);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 6, "a.ini").buffer, "ab\0c\0###"s);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 5, "a.ini").buffer, "ab\0\0###"s);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 3, "a.ini").buffer, "a\0###"s);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 2, "a.ini").buffer, "\0###"s);
  EXPECT_EQ(Get(nullptr, nullptr, "d", 1, "a.ini").buffer, "\0##"s);
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

// --- writes -------------------------------------------------------------------------------------

TEST_F(IniConformance, WriteCreatesTheFileWithSectionAndKey) {
  EXPECT_NE(Write("Files", "1", "Sea\\bay.jpg", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[Files]\r\n1=Sea\\bay.jpg\r\n");
}

TEST_F(IniConformance, WriteIntoAMissingFolderFails) {
  EXPECT_EQ(Write("S", "k", "v", "missing/a.ini"), 0);
  EXPECT_EQ(Bytes("missing/a.ini"), std::nullopt);
}

TEST_F(IniConformance, WriteToAFolderFails) {
  EXPECT_EQ(Profiles().WritePrivateProfileStringA("S", "k", "v", folder_.c_str()), 0);
}

TEST_F(IniConformance, NullSectionWritesNothing) {
  EXPECT_EQ(Write(nullptr, "k", "v", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), std::nullopt);
}

TEST_F(IniConformance, NewKeyGoesAtTheEndOfItsSection) {
  Put("a.ini", "[S]\r\na=1\r\n; note\r\n[T]\r\nx=y\r\n");
  EXPECT_NE(Write("S", "c", "3", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\n; note\r\nc=3\r\n[T]\r\nx=y\r\n");
  EXPECT_NE(Write("T", "z", "9", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\n; note\r\nc=3\r\n[T]\r\nx=y\r\nz=9\r\n");
}

TEST_F(IniConformance, NewSectionGoesAtTheEndOfTheFile) {
  Put("a.ini", "[S]\r\na=1\r\n");
  EXPECT_NE(Write("U", "u", "1", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\n[U]\r\nu=1\r\n");
}

TEST_F(IniConformance, ReplaceKeepsEveryOtherLineInPlace) {
  Put("a.ini", "; top\r\n[S]\r\na=1\r\nb=2\r\n; c\r\nd\r\n[T]\r\nb=9\r\n");
  EXPECT_NE(Write("S", "b", "22", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "; top\r\n[S]\r\na=1\r\nb=22\r\n; c\r\nd\r\n[T]\r\nb=9\r\n");
}

TEST_F(IniConformance, ReplaceKeepsTheStoredNamesCase) {
  Put("a.ini", "[Sec]\r\nKey=1\r\n");
  EXPECT_NE(Write("SEC", "KEY", "2", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[Sec]\r\nKey=2\r\n");
}

TEST_F(IniConformance, WriteThatChangesNothingLeavesTheFileAlone) {
  const std::string original = "[S]\nk=1\n\n  j = 2  \n";
  Put("a.ini", original);
  EXPECT_NE(Write("S", "k", "1", "a.ini"), 0);
  EXPECT_NE(Write("s", "K ", "  1", "a.ini"), 0);
  EXPECT_NE(Write("S", "j", "2", "a.ini"), 0);
  EXPECT_NE(Write("S", "missing", nullptr, "a.ini"), 0);
  EXPECT_NE(Write("Missing", nullptr, nullptr, "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), original);
}

TEST_F(IniConformance, ValuesAreComparedWithCase) {
  Put("a.ini", "[S]\nk=abc\n");
  EXPECT_NE(Write("S", "k", "ABC", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nk=ABC\r\n");
}

// A write that changes the file writes all of it again from its parts.
TEST_F(IniConformance, ChangedFileIsWrittenAgainInItsPlainForm) {
  Put("a.ini",
      "; header comment\n\n  [ S ]  junk\n  a = 1  \n\nb=2\n  ; c  \n  bare  \n[T]\rx=y");
  EXPECT_NE(Write("T", "x", "z", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "; header comment\r\n[S]\r\na=1\r\nb=2\r\n; c\r\nbare\r\n[T]\r\nx=z\r\n");
}

TEST_F(IniConformance, NamelessSectionsAreWrittenWithoutAHeader) {
  Put("a.ini", "k=0\r\n[S]\r\na=1\r\n[]\r\ne=1\r\n[ ]\r\nf=2\r\n");
  EXPECT_NE(Write("S", "j", "1", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "k=0\r\n[S]\r\na=1\r\nj=1\r\ne=1\r\nf=2\r\n");
}

TEST_F(IniConformance, WriteIntoTheNamelessSectionGoesBeforeTheFirstHeader) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_NE(Write("", "k", "top", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "k=top\r\n[S]\r\nk=1\r\n");
}

TEST_F(IniConformance, WrittenTextLosesLeadingBlanksOnly) {
  EXPECT_NE(Write("\tNew ", " k\t", "  v  ", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[New ]\r\nk\t=v  \r\n");
  EXPECT_EQ(Value("New", "k", "a.ini"), "v");
  EXPECT_NE(Write("New", "j", "\"q\"", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[New]\r\nk=v\r\nj=\"q\"\r\n");
}

TEST_F(IniConformance, EmptyValueAndEmptyKeyAreWritten) {
  EXPECT_NE(Write("S", "e", "", "a.ini"), 0);
  EXPECT_NE(Write("S", "", "ek", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\ne=\r\n=ek\r\n");
}

TEST_F(IniConformance, WriteGivesAValueToAKeyWithoutOne) {
  Put("a.ini", "[S]\r\nk\r\n");
  EXPECT_NE(Write("S", "k", "v", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nk=v\r\n");
}

TEST_F(IniConformance, NullValueDeletesTheKey) {
  Put("a.ini", "[S]\r\na=1\r\nb=2\r\nb=3\r\n[T]\r\nx=1\r\n");
  EXPECT_NE(Write("S", "b", nullptr, "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\nb=3\r\n[T]\r\nx=1\r\n");
  EXPECT_NE(Write("T", "x", nullptr, "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\na=1\r\nb=3\r\n[T]\r\n");
}

TEST_F(IniConformance, NullKeyDeletesTheFirstMatchingSection) {
  Put("a.ini", "[S]\r\n[s]\r\nk=1\r\n[T]\r\nx=1\r\n");
  EXPECT_NE(Write("S", nullptr, nullptr, "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[s]\r\nk=1\r\n[T]\r\nx=1\r\n");
  EXPECT_NE(Write("S", nullptr, "ignored", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[T]\r\nx=1\r\n");
  EXPECT_NE(Write("T", nullptr, nullptr, "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "");
}

TEST_F(IniConformance, DeletingFromAMissingFileMakesNoFile) {
  EXPECT_NE(Write("S", "k", nullptr, "a.ini"), 0);
  EXPECT_NE(Write("S", nullptr, nullptr, "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), std::nullopt);
}

TEST_F(IniConformance, WriteIntoAFileWithoutFinalLineEnd) {
  Put("a.ini", "[S]\r\nk=1");
  EXPECT_NE(Write("S", "j", "2", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[S]\r\nk=1\r\nj=2\r\n");
}

TEST_F(IniConformance, WriteIntoAFileWithOddBytes) {
  Put("a.ini", "\0[S]\r\nk=a\0b\r\n\0\0\r\nh=\xE9\xFF\r\n[NoClose\rj=2"s);
  EXPECT_NE(Write("S", "j", "3", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "\r\nk=a\r\n\r\nh=\xE9\xFF\r\n[NoClose\r\nj=2\r\n[S]\r\nj=3\r\n");
}

TEST_F(IniConformance, WrittenTextIsNotEscaped) {
  EXPECT_NE(Write("a]b", "a=b", "line\r\nnext", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "[a]b]\r\na=b=line\r\nnext\r\n");
  EXPECT_EQ(Value("a]b", "a", "a.ini"), "b=line");
}

// --- encodings ----------------------------------------------------------------------------------

TEST_F(IniConformance, Utf8FileWithMarkIsReadAndWrittenAsUtf8) {
  Put("a.ini", "\xEF\xBB\xBF[S]\r\nk=\xC3\xA9\r\ne=\xE2\x82\xAC\r\nb=\xC3\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "\xE9");
  EXPECT_EQ(Value("S", "e", "a.ini"), "\x80");
  EXPECT_EQ(Value("S", "b", "a.ini"), "?");
  EXPECT_NE(Write("S", "j", "\xE8\x81", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"),
            "\xEF\xBB\xBF[S]\r\nk=\xC3\xA9\r\ne=\xE2\x82\xAC\r\nb=\xEF\xBF\xBD\r\n"
            "j=\xC3\xA8\xC2\x81\r\n");
}

TEST_F(IniConformance, Utf8CharactersOutsideTheCodePageReadAsQuestionMarks) {
  Put("a.ini", "\xEF\xBB\xBF[S]\r\nk=\xD0\x96\xF0\x9F\x98\x80\r\n");
  EXPECT_EQ(Value("S", "k", "a.ini"), "???");
  EXPECT_NE(Write("S", "j", "1", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "\xEF\xBB\xBF[S]\r\nk=\xD0\x96\xF0\x9F\x98\x80\r\nj=1\r\n");
}

// One question mark for each broken sequence; a second byte out of range for its lead still
// belongs to the sequence.
TEST_F(IniConformance, MalformedUtf8ReadsAsQuestionMarks) {
  Put("a.ini",
      "\xEF\xBB\xBF[S]\r\n"
      "a=|\xF4\x90\x80\x80|\r\nb=|\xED\xA0\x80|\r\nc=|\xE0\x80\x80|\r\nd=|\xC0\x80|\r\n"
      "e=|\xE0\xA0|\r\nf=|\xF0\x9F\x98|\r\ng=|\xF8\x88\x80\x80\x80|\r\nh=|\xE2\x82\xAC\xE2|\r\n");
  EXPECT_EQ(Value("S", "a", "a.ini"), "|???|");
  EXPECT_EQ(Value("S", "b", "a.ini"), "|??|");
  EXPECT_EQ(Value("S", "c", "a.ini"), "|??|");
  EXPECT_EQ(Value("S", "d", "a.ini"), "|??|");
  EXPECT_EQ(Value("S", "e", "a.ini"), "|?|");
  EXPECT_EQ(Value("S", "f", "a.ini"), "|?|");
  EXPECT_EQ(Value("S", "g", "a.ini"), "|?????|");
  EXPECT_EQ(Value("S", "h", "a.ini"), "|\x80?|");
}

TEST_F(IniConformance, Utf16FilesWithMarkAreReadAndWrittenInTheirByteOrder) {
  Put("le.ini", "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0e\0=\0\xAC\x20"s);
  EXPECT_EQ(Value("S", "k", "le.ini"), "\xE9");
  EXPECT_EQ(Value("S", "e", "le.ini"), "\x80");
  EXPECT_NE(Write("S", "j", "\xE8", "le.ini"), 0);
  EXPECT_EQ(Bytes("le.ini"),
            "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0e\0=\0\xAC\x20\r\0\n\0j\0=\0\xE8\0\r\0\n\0"s);
  Put("be.ini", "\xFE\xFF\0[\0S\0]\0\n\0k\0=\0v"s);
  EXPECT_EQ(Value("S", "k", "be.ini"), "v");
  EXPECT_NE(Write("S", "k", "w", "be.ini"), 0);
  EXPECT_EQ(Bytes("be.ini"), "\xFE\xFF\0[\0S\0]\0\r\0\n\0k\0=\0w\0\r\0\n"s);
}

TEST_F(IniConformance, MarkAloneKeepsItsEncoding) {
  Put("a.ini", "\xFF\xFE");
  EXPECT_NE(Write("S", "k", "v", "a.ini"), 0);
  EXPECT_EQ(Bytes("a.ini"), "\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0v\0\r\0\n\0"s);
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
  EXPECT_EQ(ReadIniValue("Files", "4", file), "");
}

TEST_F(IniConformance, FilesIniWithNoEntries) {
  Put("Files.ini", "");
  EXPECT_NE(WriteIniValue("Count", "Total", "0", Path("Files.ini")), 0);
  EXPECT_EQ(Bytes("Files.ini"), "[Count]\r\nTotal=0\r\n");
  EXPECT_EQ(ReadIniValue("Files", "1", Path("Files.ini")), "");
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

TEST_F(IniConformance, IniRoutinesOnAMissingKey) {
  Put("a.ini", "[S]\r\nk=1\r\n");
  EXPECT_EQ(ReadIniValue("S", "j", Path("a.ini")), "");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "j", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("S", "j", Path("none.ini"), value), kFalse);
  EXPECT_EQ(value, "before");
}

TEST_F(IniConformance, ReadIniEntryTakesValuesBeginningWithTheStandInAsMissing) {
  Put("a.ini", "[S]\r\nx=?!?x\r\nq=\"?!?\"\r\nt=?!\r\n");
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry("S", "x", Path("a.ini"), value), kFalse);
  EXPECT_EQ(ReadIniEntry("S", "q", Path("a.ini"), value), kFalse);
  EXPECT_EQ(value, "before");
  EXPECT_EQ(ReadIniEntry("S", "t", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, "?!");
  EXPECT_EQ(ReadIniValue("S", "x", Path("a.ini")), "?!?x");
}

TEST_F(IniConformance, IniRoutinesCutLongValues) {
  EXPECT_NE(WriteIniValue("S", "k", std::string(300, 'v'), Path("a.ini")), 0);
  EXPECT_EQ(ReadIniValue("S", "k", Path("a.ini")), std::string(254, 'v'));
  std::string value;
  EXPECT_EQ(ReadIniEntry("S", "k", Path("a.ini"), value), kTrue);
  EXPECT_EQ(value, std::string(255, 'v'));
}

TEST_F(IniConformance, WriteIniValueFailsIntoAMissingFolder) {
  EXPECT_EQ(WriteIniValue("S", "k", "v", Path("missing/a.ini")), 0);
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
  WriteIniEntry(".ShellClassInfo", "iconfile", "x.ico", Path("missing/desktop.ini"));
  std::string value = "before";
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "iconfile", Path("missing/desktop.ini"), value),
            kFalse);
  EXPECT_EQ(value, "before");
}

}  // namespace
}  // namespace quorvane::testing
