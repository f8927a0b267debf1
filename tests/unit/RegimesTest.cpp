// The three failure regimes: steps passed over one by one, a failure turned into a result, and
// the top-level report of an event, over the portable message boxes and files.
#include "core/Regimes.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "ScratchFiles.h"
#include "base/Failure.h"
#include "core/MainModule.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "platform/portable/PortableFileSystem.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "ui/Form.h"

namespace quorvane {
namespace {

// Something thrown that is no failure of the system nor of the standard library.
struct Foreign {};

// --- ResumeEach -------------------------------------------------------------------------------

TEST(ResumeEachTest, AFailingStepIsPassedOverAndTheNextRuns) {
  std::vector<int> ran;
  core::ResumeEach([&] { ran.push_back(1); },
                   [&] {
                     ran.push_back(2);
                     RaiseOverflow();
                   },
                   [&] {
                     ran.push_back(3);
                     throw std::out_of_range("standard library");
                   },
                   [&] { ran.push_back(4); });
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 4}));
}

TEST(ResumeEachTest, AFailureEndsOnlyItsOwnStep) {
  int before = 0;
  int after = 0;
  core::ResumeEach([&] {
    ++before;
    RaiseInvalidProcedureCall();
    ++after;  // not reached: the rest of the failing step does not run
  });
  EXPECT_EQ(before, 1);
  EXPECT_EQ(after, 0);
}

TEST(ResumeEachTest, WhatIsNoFailureGoesUp) {
  int ran = 0;
  EXPECT_THROW(core::ResumeEach([] { throw Foreign{}; }, [&] { ++ran; }), Foreign);
  EXPECT_EQ(ran, 0);
}

TEST(ResumeEachTest, WithAnythingEvenWhatIsNoFailureIsPassedOver) {
  std::vector<int> ran;
  core::ResumeEach(
      core::kAnything,
      [&] {
        ran.push_back(1);
        throw Foreign{};
      },
      [&] {
        ran.push_back(2);
        RaiseOverflow();
      },
      [&] { ran.push_back(3); });
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
}

// --- AsResult ---------------------------------------------------------------------------------

TEST(AsResultTest, TheRoutinesValueWhenItRunsThrough) {
  EXPECT_EQ(core::AsResult([] { return std::string("made"); }, std::string("fallback")), "made");
  EXPECT_EQ(core::AsResult([] { return 7; }, 0), 7);
}

TEST(AsResultTest, TheFallbackWhenTheRoutineFails) {
  EXPECT_EQ(core::AsResult(
                []() -> std::string {
                  Raise(FailureNumber::FileNotFound, "File not found");
                },
                std::string("fallback")),
            "fallback");
  EXPECT_EQ(core::AsResult([]() -> int { throw std::runtime_error("x"); }, -1), -1);
}

TEST(AsResultTest, WhatIsNoFailureGoesUp) {
  EXPECT_THROW(core::AsResult([]() -> int { throw Foreign{}; }, 0), Foreign);
  EXPECT_THROW(core::AsResult([] { throw Foreign{}; }), Foreign);
}

TEST(AsResultTest, WithAnythingEvenWhatIsNoFailureGivesTheFallback) {
  EXPECT_FALSE(core::AsResult(core::kAnything, []() -> bool { throw Foreign{}; }, false));
  EXPECT_TRUE(core::AsResult(core::kAnything, [] { return true; }, false));
}

TEST(AsResultTest, TrueWhenTheRoutineRanThroughFalseWhenItFailed) {
  int ran = 0;
  EXPECT_TRUE(core::AsResult([&] { ++ran; }));
  EXPECT_FALSE(core::AsResult([&] {
    ++ran;
    RaiseSubscriptOutOfRange();
  }));
  EXPECT_EQ(ran, 2);
}

TEST(AsResultTest, TheFailureActionRunsWhileTheFailureIsHandled) {
  std::string seen;
  int actions = 0;
  const bool ran = core::AsResult([] { RaiseOverflow(); },
                                  [&] {
                                    ++actions;
                                    try {
                                      throw;
                                    } catch (const Failure& failure) {
                                      seen = failure.what();
                                    }
                                  });
  EXPECT_FALSE(ran);
  EXPECT_EQ(actions, 1);
  EXPECT_EQ(seen, "Overflow");
  EXPECT_TRUE(core::AsResult([] {}, [&] { ++actions; }));
  EXPECT_EQ(actions, 1);
}

// --- RunEvent ---------------------------------------------------------------------------------

class TestForm final : public ui::Form {
 public:
  TestForm() : ui::Form("FrmTest") {}
};

// A message box that can't be shown.
class FailingMessageBoxes final : public platform::MessageBoxes {
 public:
  std::int32_t MsgBox(const std::string&, std::int32_t, const std::string&) override {
    ++calls;
    Raise(FailureNumber::OutOfMemory, "Out of memory");
  }
  int calls = 0;
};

const std::regex kEventLine(
    R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\tFrmTest\tevent\tline 0\terror (\d+)\t(.*)\r\n$)");

class RunEventTest : public ::testing::Test {
 protected:
  RunEventTest() { core::gDataFolder = (root_ / "data").string() + "\\"; }
  ~RunEventTest() override {
    ui::InstallEventRunner(nullptr);
    core::gDataFolder = savedDataFolder_;
  }
  void SetUp() override { std::filesystem::create_directories(root_ / "data"); }

  std::string Log() const { return testing::ReadFile(core::gDataFolder + core::kErrorLogName); }

  std::string savedDataFolder_ = core::gDataFolder;
  testing::ScratchFolder root_{"regimes"};
  platform::portable::PortableFileSystem files_;
  platform::portable::PortableMessageBoxes boxes_;
  platform::ScopedService<platform::FileSystem> installedFiles_{files_};
  platform::ScopedService<platform::MessageBoxes> installedBoxes_{boxes_};
  TestForm form_;
};

TEST_F(RunEventTest, AFailureWritesOneLogLineWithTheFormsNameAndShowsItsText) {
  EXPECT_NO_THROW(core::RunEvent(form_, [] { RaiseInvalidProcedureCall(); }));
  std::smatch m;
  const std::string log = Log();
  ASSERT_TRUE(std::regex_match(log, m, kEventLine)) << log;
  EXPECT_EQ(m[1], "5");
  EXPECT_EQ(m[2], "Invalid procedure call or argument");
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Invalid procedure call or argument");
  EXPECT_EQ(boxes_.Boxes()[0].buttons,
            platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  EXPECT_EQ(boxes_.Boxes()[0].title, "");
}

TEST_F(RunEventTest, AStandardLibraryFailureIsReportedWithItsText) {
  core::RunEvent(form_, [] { throw std::out_of_range("no such element"); });
  std::smatch m;
  const std::string log = Log();
  ASSERT_TRUE(std::regex_match(log, m, kEventLine)) << log;
  EXPECT_EQ(m[1], "0");
  EXPECT_EQ(m[2], "no such element");
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "no such element");
}

TEST_F(RunEventTest, WhatIsNoFailureIsReportedAsUnknown) {
  EXPECT_NO_THROW(core::RunEvent(form_, [] { throw Foreign{}; }));
  std::smatch m;
  const std::string log = Log();
  ASSERT_TRUE(std::regex_match(log, m, kEventLine)) << log;
  EXPECT_EQ(m[1], "0");
  EXPECT_EQ(m[2], "Unknown failure");
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Unknown failure");
}

TEST_F(RunEventTest, AnEventThatRunsThroughReportsNothing) {
  int ran = 0;
  core::RunEvent(form_, [&] { ++ran; });
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(Log(), "");
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(RunEventTest, EachFailingEventAddsItsOwnLine) {
  core::RunEvent(form_, [] { RaiseOverflow(); });
  core::RunEvent(form_, [] { RaiseSubscriptOutOfRange(); });
  const std::string log = Log();
  const std::size_t firstEnd = log.find("\r\n");
  ASSERT_NE(firstEnd, std::string::npos);
  std::smatch m;
  const std::string first = log.substr(0, firstEnd + 2);
  const std::string second = log.substr(firstEnd + 2);
  ASSERT_TRUE(std::regex_match(first, m, kEventLine)) << first;
  EXPECT_EQ(m[1], "6");
  ASSERT_TRUE(std::regex_match(second, m, kEventLine)) << second;
  EXPECT_EQ(m[1], "9");
  EXPECT_EQ(boxes_.Boxes().size(), 2u);
}

TEST_F(RunEventTest, AReportThatCantBeShownIsPassedOver) {
  FailingMessageBoxes failing;
  platform::ScopedService<platform::MessageBoxes> installed{failing};
  EXPECT_NO_THROW(core::RunEvent(form_, [] { RaiseOverflow(); }));
  EXPECT_EQ(failing.calls, 1);
  std::smatch m;
  const std::string log = Log();
  ASSERT_TRUE(std::regex_match(log, m, kEventLine)) << log;
  EXPECT_EQ(m[2], "Overflow");
}

TEST_F(RunEventTest, WithTheReportInstalledAFormsEventsGoThroughIt) {
  core::InstallTopLevelReport();
  int ran = 0;
  EXPECT_NO_THROW(ui::RunEvent(form_, [&] {
    ++ran;
    RaiseOverflow();
  }));
  EXPECT_EQ(ran, 1);
  std::smatch m;
  const std::string log = Log();
  ASSERT_TRUE(std::regex_match(log, m, kEventLine)) << log;
  EXPECT_EQ(m[1], "6");
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Overflow");
}

TEST_F(RunEventTest, WithNoRunnerInstalledTheFailureGoesToTheCaller) {
  ui::InstallEventRunner(nullptr);
  EXPECT_THROW(ui::RunEvent(form_, [] { RaiseOverflow(); }), Failure);
  EXPECT_EQ(Log(), "");
  EXPECT_TRUE(boxes_.Boxes().empty());
}

}  // namespace
}  // namespace quorvane
