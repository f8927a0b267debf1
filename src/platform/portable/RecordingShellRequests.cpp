#include "platform/portable/RecordingShellRequests.h"

#include <cstdio>

#include "base/Text.h"

namespace quorvane::platform::portable {

namespace {

std::string Hex(std::uint64_t value) {
  if (value == 0) return "0";
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
  return text;
}

std::string SignedHex(std::int64_t value) {
  if (value < 0) return "-" + Hex(0 - static_cast<std::uint64_t>(value));
  return Hex(static_cast<std::uint64_t>(value));
}

// Class and window names are compared without regard to case, as the platform does.
bool SameName(const std::string& a, const std::string& b) {
  return text::UpperCase(a) == text::UpperCase(b);
}

std::string Quoted(const std::optional<std::string>& s) { return s ? "\"" + *s + "\"" : "null"; }

}  // namespace

std::string ShellRequest::Text() const {
  switch (kind) {
    case Kind::FindWindowExA:
      return "FindWindowExA(" + Hex(parent) + ", " + Hex(childAfter) + ", " + Quoted(className) +
             ", " + Quoted(windowName) + ") = " + Hex(found);
    case Kind::PostMessageA:
      return "PostMessageA(" + Hex(window) + ", " + Hex(message) + ", " + Hex(wParam) + ", " +
             SignedHex(lParam) + ")";
    case Kind::SHChangeNotify:
      return "SHChangeNotify(" + SignedHex(eventId) + ", " + Hex(notifyFlags) + ", " +
             Hex(item1) + ", " + Hex(item2) + ")";
    case Kind::SendMessageTimeoutA:
      return "SendMessageTimeoutA(" + Hex(window) + ", " + Hex(message) + ", " + Hex(wParam) +
             ", " + SignedHex(lParam) + ", " + std::to_string(sendFlags) + ", " +
             std::to_string(timeout) + ")";
  }
  return std::string();
}

std::uint32_t RecordingShellRequests::FindWindowExA(std::uint32_t parent,
                                                    std::uint32_t childAfter,
                                                    const std::string& className,
                                                    const std::optional<std::string>& windowName) {
  ShellRequest r;
  r.kind = ShellRequest::Kind::FindWindowExA;
  r.parent = parent;
  r.childAfter = childAfter;
  r.className = className;
  r.windowName = windowName;
  // Past `childAfter` when one is given, then the first window that fits.
  bool searching = childAfter == 0;
  for (const Window& w : windows_) {
    if (w.parent != parent) continue;
    if (!searching) {
      searching = w.handle == childAfter;
      continue;
    }
    if (!SameName(w.className, className)) continue;
    if (windowName && !(w.windowName && SameName(*w.windowName, *windowName))) continue;
    r.found = w.handle;
    break;
  }
  requests_.push_back(r);
  return r.found;
}

std::int32_t RecordingShellRequests::PostMessageA(std::uint32_t window, std::uint32_t message,
                                                  std::uintptr_t wParam, std::intptr_t lParam) {
  ShellRequest r;
  r.kind = ShellRequest::Kind::PostMessageA;
  r.window = window;
  r.message = message;
  r.wParam = wParam;
  r.lParam = lParam;
  requests_.push_back(r);
  return 1;
}

void RecordingShellRequests::SHChangeNotify(std::int32_t eventId, std::uint32_t flags,
                                            std::uintptr_t item1, std::uintptr_t item2) {
  ShellRequest r;
  r.kind = ShellRequest::Kind::SHChangeNotify;
  r.eventId = eventId;
  r.notifyFlags = flags;
  r.item1 = item1;
  r.item2 = item2;
  requests_.push_back(r);
}

std::intptr_t RecordingShellRequests::SendMessageTimeoutA(std::uint32_t window,
                                                          std::uint32_t message,
                                                          std::uintptr_t wParam,
                                                          std::intptr_t lParam,
                                                          std::uint32_t flags,
                                                          std::uint32_t timeout,
                                                          std::uintptr_t& result) {
  ShellRequest r;
  r.kind = ShellRequest::Kind::SendMessageTimeoutA;
  r.window = window;
  r.message = message;
  r.wParam = wParam;
  r.lParam = lParam;
  r.sendFlags = flags;
  r.timeout = timeout;
  requests_.push_back(r);
  result = 0;
  return 1;
}

void RecordingShellRequests::AddWindow(std::uint32_t parent, const std::string& className,
                                       std::uint32_t window,
                                       const std::optional<std::string>& windowName) {
  windows_.push_back(Window{parent, className, windowName, window});
}

std::vector<std::string> RecordingShellRequests::Texts() const {
  std::vector<std::string> lines;
  lines.reserve(requests_.size());
  for (const ShellRequest& r : requests_) lines.push_back(r.Text());
  return lines;
}

}  // namespace quorvane::platform::portable
