// The arguments part of a process's command line, as the program's entry receives it.
#include <gtest/gtest.h>

#include <string>

#include "platform/Process.h"
#include "platform/portable/PortableProcess.h"

namespace quorvane {
namespace {

using platform::ArgumentsOf;

TEST(ArgumentsOfTest, NothingBehindTheProgramNameGivesTheEmptyText) {
  EXPECT_EQ(ArgumentsOf(""), "");
  EXPECT_EQ(ArgumentsOf("quorvane.exe"), "");
  EXPECT_EQ(ArgumentsOf("\"C:\\Program Files\\Quorvane\\quorvane.exe\""), "");
}

TEST(ArgumentsOfTest, AQuotedNameRunsToItsClosingQuoteBlanksIncluded) {
  EXPECT_EQ(ArgumentsOf("\"C:\\Program Files\\Quorvane\\quorvane.exe\" /background"),
            "/background");
  EXPECT_EQ(ArgumentsOf("\"C:\\My Tools\\q.exe\"x"), "x");
}

TEST(ArgumentsOfTest, AnUnquotedNameRunsToTheFirstBlank) {
  EXPECT_EQ(ArgumentsOf("C:\\Tools\\quorvane.exe /background"), "/background");
  EXPECT_EQ(ArgumentsOf("quorvane.exe\tx"), "x");
}

TEST(ArgumentsOfTest, BlanksAfterTheNameArePassedOverAndTrailingOnesKept) {
  EXPECT_EQ(ArgumentsOf("quorvane.exe     "), "");
  EXPECT_EQ(ArgumentsOf("\"quorvane.exe\"  \t  x  "), "x  ");
  EXPECT_EQ(ArgumentsOf("quorvane.exe   a  b "), "a  b ");
}

TEST(ArgumentsOfTest, AnUnclosedQuoteTakesTheWholeLineAsTheName) {
  EXPECT_EQ(ArgumentsOf("\"C:\\Program Files\\quorvane.exe /background"), "");
}

TEST(ArgumentsOfTest, QuotesInsideTheArgumentsStayAsTheyAre) {
  EXPECT_EQ(ArgumentsOf("q.exe \"a b\" c"), "\"a b\" c");
}

TEST(PortableProcessTest, KeepsWhatItIsGiven) {
  platform::portable::PortableProcess process;
  EXPECT_EQ(process.CommandLine(), "");
  process.SetCommandLine("  /background ");
  EXPECT_EQ(process.CommandLine(), "  /background ");
  process.SetWholeCommandLine("\"C:\\Quorvane\\quorvane.exe\" x");
  EXPECT_EQ(process.CommandLine(), "x");
  EXPECT_EQ(platform::portable::PortableProcess("y").CommandLine(), "y");
}

}  // namespace
}  // namespace quorvane
