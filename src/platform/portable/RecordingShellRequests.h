#pragma once
// Shell requests without a shell: every request is written down in order, with all its values,
// for tests to read. Window lookups answer from a table the test fills, class and window names
// compared without regard to case; a window not in it is not found (0). Posts and sends are
// taken as delivered, and a send answers 0.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/ShellRequests.h"

namespace quorvane::platform::portable {

// One request as it was made. Only the fields of its kind are set; the others keep their zero
// values, so two records compare equal when the requests were the same.
struct ShellRequest {
  enum class Kind { FindWindowExA, PostMessageA, SHChangeNotify, SendMessageTimeoutA };
  Kind kind = Kind::FindWindowExA;

  // FindWindowExA: the arguments and the window it answered.
  std::uint32_t parent = 0;
  std::uint32_t childAfter = 0;
  std::string className;
  std::optional<std::string> windowName;
  std::uint32_t found = 0;

  // PostMessageA and SendMessageTimeoutA; the last two for the send only.
  std::uint32_t window = 0;
  std::uint32_t message = 0;
  std::uintptr_t wParam = 0;
  std::intptr_t lParam = 0;
  std::uint32_t sendFlags = 0;
  std::uint32_t timeout = 0;

  // SHChangeNotify.
  std::int32_t eventId = 0;
  std::uint32_t notifyFlags = 0;
  std::uintptr_t item1 = 0;
  std::uintptr_t item2 = 0;

  bool operator==(const ShellRequest&) const = default;

  // The request as one line, numbers in hexadecimal except a send's flags and time-out:
  //   FindWindowExA(0, 0, "Progman", null) = 0x10
  //   PostMessageA(0x12, 0x100, 0x74, 0x3F0001)
  //   SHChangeNotify(0x8000000, 0, 0, 0)
  //   SendMessageTimeoutA(0xFFFF, 0x1A, 0x2A, 0, 2, 10000)
  std::string Text() const;
};

class RecordingShellRequests final : public ShellRequests {
 public:
  std::uint32_t FindWindowExA(std::uint32_t parent, std::uint32_t childAfter,
                              const std::string& className,
                              const std::optional<std::string>& windowName) override;
  std::int32_t PostMessageA(std::uint32_t window, std::uint32_t message, std::uintptr_t wParam,
                            std::intptr_t lParam) override;
  void SHChangeNotify(std::int32_t eventId, std::uint32_t flags, std::uintptr_t item1,
                      std::uintptr_t item2) override;
  std::intptr_t SendMessageTimeoutA(std::uint32_t window, std::uint32_t message,
                                    std::uintptr_t wParam, std::intptr_t lParam,
                                    std::uint32_t flags, std::uint32_t timeout,
                                    std::uintptr_t& result) override;

  // Makes `window` a child of `parent` (0: a top-level window) with the class and, when given,
  // the window name. Windows of one parent are searched in the order they were added.
  void AddWindow(std::uint32_t parent, const std::string& className, std::uint32_t window,
                 const std::optional<std::string>& windowName = std::nullopt);

  const std::vector<ShellRequest>& Requests() const { return requests_; }
  // The requests as lines of ShellRequest::Text, in order.
  std::vector<std::string> Texts() const;
  void Clear() { requests_.clear(); }

 private:
  struct Window {
    std::uint32_t parent;
    std::string className;
    std::optional<std::string> windowName;
    std::uint32_t handle;
  };

  std::vector<ShellRequest> requests_;
  std::vector<Window> windows_;
};

}  // namespace quorvane::platform::portable
