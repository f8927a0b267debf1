// The recording shell that stands in for the desktop in native runs: its window table, the
// order and values of what it records, and its one-line form of each request.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/Service.h"
#include "platform/portable/RecordingShellRequests.h"

namespace quorvane {
namespace {

using platform::portable::RecordingShellRequests;
using platform::portable::ShellRequest;

TEST(RecordingShellRequests, AnEmptyTableFindsNoWindow) {
  RecordingShellRequests shell;
  EXPECT_EQ(shell.FindWindowExA(0, 0, "Progman", std::nullopt), 0u);
  ASSERT_EQ(shell.Requests().size(), 1u);
  EXPECT_EQ(shell.Requests()[0].found, 0u);
}

TEST(RecordingShellRequests, WindowsAreFoundByParentClassAndNameWithoutRegardToCase) {
  RecordingShellRequests shell;
  shell.AddWindow(0, "Progman", 0x10, "Program Manager");
  shell.AddWindow(0x10, "SHELLDLL_DefView", 0x20);
  EXPECT_EQ(shell.FindWindowExA(0, 0, "PROGMAN", std::nullopt), 0x10u);
  EXPECT_EQ(shell.FindWindowExA(0, 0, "Progman", std::string("program manager")), 0x10u);
  EXPECT_EQ(shell.FindWindowExA(0, 0, "Progman", std::string("Other")), 0u);
  EXPECT_EQ(shell.FindWindowExA(0, 0, "SHELLDLL_DefView", std::nullopt), 0u);  // not top-level
  EXPECT_EQ(shell.FindWindowExA(0x10, 0, "shelldll_defview", std::nullopt), 0x20u);
  // A window with no name is not found by a name.
  EXPECT_EQ(shell.FindWindowExA(0x10, 0, "SHELLDLL_DefView", std::string("")), 0u);
}

TEST(RecordingShellRequests, ASearchGoesOnAfterTheChildGiven) {
  RecordingShellRequests shell;
  shell.AddWindow(0, "WorkerW", 0x40);
  shell.AddWindow(0, "Progman", 0x10);
  shell.AddWindow(0, "WorkerW", 0x50);
  EXPECT_EQ(shell.FindWindowExA(0, 0, "WorkerW", std::nullopt), 0x40u);
  EXPECT_EQ(shell.FindWindowExA(0, 0x40, "WorkerW", std::nullopt), 0x50u);
  EXPECT_EQ(shell.FindWindowExA(0, 0x50, "WorkerW", std::nullopt), 0u);
  EXPECT_EQ(shell.FindWindowExA(0, 0x99, "WorkerW", std::nullopt), 0u);  // no such child
}

TEST(RecordingShellRequests, EveryRequestIsKeptInOrderWithAllItsValues) {
  RecordingShellRequests shell;
  shell.AddWindow(0, "Progman", 0x10);
  std::uintptr_t answer = 7;
  EXPECT_EQ(shell.PostMessageA(0x30, 0x100, 0x74, 0x3F0001), 1);
  shell.SHChangeNotify(0x8000000, 0, 0, 0);
  EXPECT_EQ(shell.SendMessageTimeoutA(0xFFFF, 0x1A, 0x2A, -1, 2, 10000, answer), 1);
  EXPECT_EQ(answer, 0u);
  shell.FindWindowExA(0, 0, "Progman", std::nullopt);

  ShellRequest post;
  post.kind = ShellRequest::Kind::PostMessageA;
  post.window = 0x30;
  post.message = 0x100;
  post.wParam = 0x74;
  post.lParam = 0x3F0001;
  ShellRequest notice;
  notice.kind = ShellRequest::Kind::SHChangeNotify;
  notice.eventId = 0x8000000;
  ShellRequest send;
  send.kind = ShellRequest::Kind::SendMessageTimeoutA;
  send.window = 0xFFFF;
  send.message = 0x1A;
  send.wParam = 0x2A;
  send.lParam = -1;
  send.sendFlags = 2;
  send.timeout = 10000;
  ShellRequest find;
  find.className = "Progman";
  find.found = 0x10;
  EXPECT_EQ(shell.Requests(), (std::vector<ShellRequest>{post, notice, send, find}));
  EXPECT_EQ(shell.Texts(), (std::vector<std::string>{
                               "PostMessageA(0x30, 0x100, 0x74, 0x3F0001)",
                               "SHChangeNotify(0x8000000, 0, 0, 0)",
                               "SendMessageTimeoutA(0xFFFF, 0x1A, 0x2A, -0x1, 2, 10000)",
                               "FindWindowExA(0, 0, \"Progman\", null) = 0x10",
                           }));
  shell.Clear();
  EXPECT_TRUE(shell.Requests().empty());
}

TEST(RecordingShellRequests, InstalledItTakesTheRequestsOfTheProgram) {
  RecordingShellRequests shell;
  platform::ScopedService<platform::ShellRequests> installed(shell);
  platform::Use<platform::ShellRequests>().PostMessageA(0xFFFF, 0x1A, 0, 0);
  EXPECT_EQ(shell.Texts(), (std::vector<std::string>{"PostMessageA(0xFFFF, 0x1A, 0, 0)"}));
}

}  // namespace
}  // namespace quorvane
