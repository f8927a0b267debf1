#pragma once
// The clipboard, as the platform's operations on it. Data handles are the 32-bit values of the
// drawing objects they carry (see DeviceContexts.h).
#include <cstdint>

#include "platform/DeviceContexts.h"

namespace quorvane::platform {

namespace clipboard {
inline constexpr std::uint32_t kText = 1;
inline constexpr std::uint32_t kBitmap = 2;
inline constexpr std::uint32_t kDib = 8;
}  // namespace clipboard

class Clipboard {
 public:
  virtual ~Clipboard() = default;

  // Opens the clipboard for this process, with `owner` as its owner window (0: none). Non-zero
  // on success; it fails while it is open.
  virtual std::int32_t OpenClipboard(GdiHandle owner) = 0;
  // Frees what the clipboard holds. Only while it is open.
  virtual std::int32_t EmptyClipboard() = 0;
  // Puts `data` on the clipboard in `format`; the clipboard owns it from then on. The handle
  // on success, 0 when the clipboard is not open.
  virtual GdiHandle SetClipboardData(std::uint32_t format, GdiHandle data) = 0;
  // The data in `format`, 0 when there is none or the clipboard is not open.
  virtual GdiHandle GetClipboardData(std::uint32_t format) = 0;
  virtual std::int32_t IsClipboardFormatAvailable(std::uint32_t format) = 0;
  virtual std::int32_t CloseClipboard() = 0;
};

}  // namespace quorvane::platform
