// ShowMain: the command line alone chooses between showing FrmMain and loading it hidden.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "core/MainModule.h"
#include "platform/Service.h"
#include "platform/portable/PortableProcess.h"

namespace quorvane {
namespace {

// Stands in for the main window and keeps every call the entry makes on it.
class RecordingForm final : public core::MainForm {
 public:
  void Load() override { calls.emplace_back("Load"); }
  void Show() override { calls.emplace_back("Show"); }
  std::vector<std::string> calls;
};

class ShowMainTest : public ::testing::Test {
 protected:
  std::vector<std::string> RunWith(const std::string& commandLine) {
    process_.SetCommandLine(commandLine);
    core::ShowMain();
    return form_.calls;
  }

  platform::portable::PortableProcess process_;
  RecordingForm form_;
  platform::ScopedService<platform::Process> installedProcess_{process_};
  platform::ScopedService<core::MainForm> installedForm_{form_};
};

const std::vector<std::string> kShown = {"Show"};
const std::vector<std::string> kLoadedHidden = {"Load"};

TEST_F(ShowMainTest, EmptyCommandLineShowsTheWindow) { EXPECT_EQ(RunWith(""), kShown); }

TEST_F(ShowMainTest, BlanksOnlyShowTheWindow) {
  EXPECT_EQ(RunWith(" "), kShown);
  form_.calls.clear();
  EXPECT_EQ(RunWith("        "), kShown);
}

TEST_F(ShowMainTest, AnyTextLoadsTheWindowHidden) { EXPECT_EQ(RunWith("x"), kLoadedHidden); }

TEST_F(ShowMainTest, TheAutoStartArgumentLoadsTheWindowHidden) {
  EXPECT_EQ(RunWith("/background"), kLoadedHidden);
}

TEST_F(ShowMainTest, BlanksAroundTextStillLoadHidden) {
  EXPECT_EQ(RunWith("   /background   "), kLoadedHidden);
  form_.calls.clear();
  EXPECT_EQ(RunWith(" x"), kLoadedHidden);
  form_.calls.clear();
  EXPECT_EQ(RunWith("x "), kLoadedHidden);
}

TEST_F(ShowMainTest, OnlySpacesCountAsBlanks) {
  // A tab is text: the trim removes spaces alone.
  EXPECT_EQ(RunWith("\t"), kLoadedHidden);
  form_.calls.clear();
  EXPECT_EQ(RunWith(" \t "), kLoadedHidden);
}

TEST_F(ShowMainTest, WhatTheTextSaysIsNotLookedAt) {
  for (const char* text : {"/BACKGROUND", "/show", "-interactive", "0", "\"\""}) {
    form_.calls.clear();
    EXPECT_EQ(RunWith(text), kLoadedHidden) << text;
  }
}

TEST_F(ShowMainTest, TheWholeCommandLineOfTheProcessIsReadWithoutTheProgramName) {
  process_.SetWholeCommandLine("\"C:\\Program Files\\Quorvane\\quorvane.exe\"    ");
  core::ShowMain();
  EXPECT_EQ(form_.calls, kShown);
  form_.calls.clear();
  process_.SetWholeCommandLine("\"C:\\Program Files\\Quorvane\\quorvane.exe\" /background");
  core::ShowMain();
  EXPECT_EQ(form_.calls, kLoadedHidden);
}

TEST_F(ShowMainTest, AFailureOfTheWindowGoesUpToTheCaller) {
  class FailingForm final : public core::MainForm {
   public:
    void Load() override { throw std::runtime_error("no window"); }
    void Show() override { throw std::runtime_error("no window"); }
  } failing;
  platform::ScopedService<core::MainForm> installed(failing);
  process_.SetCommandLine("");
  EXPECT_THROW(core::ShowMain(), std::runtime_error);
  process_.SetCommandLine("/background");
  EXPECT_THROW(core::ShowMain(), std::runtime_error);
}

TEST(RunModeOfTest, ChoosesByBlanknessAlone) {
  EXPECT_EQ(core::RunModeOf(""), core::RunMode::Interactive);
  EXPECT_EQ(core::RunModeOf("   "), core::RunMode::Interactive);
  EXPECT_EQ(core::RunModeOf("x"), core::RunMode::Resident);
  EXPECT_EQ(core::RunModeOf(" /background "), core::RunMode::Resident);
}

}  // namespace
}  // namespace quorvane
