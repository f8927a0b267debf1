#pragma once
// The recording shell, with each request also written as a line into a journal that a
// recording registry shares, so that a test reads registry changes and shell requests in the
// one order they were made.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/portable/RecordingShellRequests.h"

namespace quorvane::testing {

class ShellJournal final : public platform::ShellRequests {
 public:
  ShellJournal(platform::portable::RecordingShellRequests& shell, std::vector<std::string>& journal)
      : shell_(shell), journal_(journal) {}

  std::uint32_t FindWindowExA(std::uint32_t parent, std::uint32_t childAfter,
                              const std::string& className,
                              const std::optional<std::string>& windowName) override {
    const std::uint32_t found = shell_.FindWindowExA(parent, childAfter, className, windowName);
    Note();
    return found;
  }
  std::int32_t PostMessageA(std::uint32_t window, std::uint32_t message, std::uintptr_t wParam,
                            std::intptr_t lParam) override {
    const std::int32_t posted = shell_.PostMessageA(window, message, wParam, lParam);
    Note();
    return posted;
  }
  void SHChangeNotify(std::int32_t eventId, std::uint32_t flags, std::uintptr_t item1,
                      std::uintptr_t item2) override {
    shell_.SHChangeNotify(eventId, flags, item1, item2);
    Note();
  }
  std::intptr_t SendMessageTimeoutA(std::uint32_t window, std::uint32_t message,
                                    std::uintptr_t wParam, std::intptr_t lParam,
                                    std::uint32_t flags, std::uint32_t timeout,
                                    std::uintptr_t& result) override {
    const std::intptr_t sent =
        shell_.SendMessageTimeoutA(window, message, wParam, lParam, flags, timeout, result);
    Note();
    return sent;
  }

 private:
  void Note() { journal_.push_back(shell_.Requests().back().Text()); }

  platform::portable::RecordingShellRequests& shell_;
  std::vector<std::string>& journal_;
};

}  // namespace quorvane::testing
