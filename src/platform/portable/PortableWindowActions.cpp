#include "platform/portable/PortableWindowActions.h"

namespace quorvane::platform::portable {

std::int32_t PortableWindowActions::ReleaseCapture() {
  calls.push_back("ReleaseCapture");
  return 1;
}

std::intptr_t PortableWindowActions::SendMessageA(std::uint32_t window, std::uint32_t message,
                                                  std::uintptr_t wParam, std::intptr_t lParam) {
  calls.push_back("SendMessageA " + std::to_string(window) + " " + std::to_string(message) + " " +
                  std::to_string(wParam) + " " + std::to_string(lParam));
  return 0;
}

std::intptr_t PortableWindowActions::ShellExecuteA(std::uint32_t /*window*/,
                                                   const std::string& verb,
                                                   const std::string& file,
                                                   const std::string& parameters,
                                                   const std::string& directory,
                                                   std::int32_t show) {
  calls.push_back("ShellExecuteA " + verb + " " + file + " " + parameters + " " + directory + " " +
                  std::to_string(show));
  return 2;  // the file is not found, as for a help file that isn't there
}

}  // namespace quorvane::platform::portable
