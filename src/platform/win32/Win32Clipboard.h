#pragma once
// The system's clipboard through user32.
#include "platform/Clipboard.h"

namespace quorvane::platform::win32 {

class Win32Clipboard final : public Clipboard {
 public:
  std::int32_t OpenClipboard(GdiHandle owner) override;
  std::int32_t EmptyClipboard() override;
  GdiHandle SetClipboardData(std::uint32_t format, GdiHandle data) override;
  GdiHandle GetClipboardData(std::uint32_t format) override;
  std::int32_t IsClipboardFormatAvailable(std::uint32_t format) override;
  std::int32_t CloseClipboard() override;
};

}  // namespace quorvane::platform::win32
