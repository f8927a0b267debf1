#pragma once
// Icons in the notification area, as the one call the system makes for them, with the record it
// keeps in the platform's short form.
#include <array>
#include <cstdint>

namespace quorvane::platform {

// The short notification icon record: 88 bytes, handles as the 32-bit values the system keeps.
struct NotifyIconData {
  std::uint32_t cbSize = 0;
  std::uint32_t hWnd = 0;
  std::uint32_t uID = 0;
  std::uint32_t uFlags = 0;
  std::uint32_t uCallbackMessage = 0;
  std::uint32_t hIcon = 0;
  std::array<char, 64> szTip{};
};
static_assert(sizeof(NotifyIconData) == 88, "the short notification icon record is 88 bytes");

namespace tray {
inline constexpr std::uint32_t kRecordSize = 88;
// Messages.
inline constexpr std::uint32_t kAdd = 0;
inline constexpr std::uint32_t kModify = 1;
inline constexpr std::uint32_t kDelete = 2;
// Flags: which fields of the record count.
inline constexpr std::uint32_t kMessageFlag = 1;
inline constexpr std::uint32_t kIconFlag = 2;
inline constexpr std::uint32_t kTipFlag = 4;
}  // namespace tray

class Tray {
 public:
  virtual ~Tray() = default;

  // Adds, changes or deletes the icon that the record's window and id name. Non-zero when the
  // notification area did it; 0 otherwise: an icon added twice, one deleted that is not there,
  // or no notification area at all.
  virtual std::int32_t Shell_NotifyIconA(std::uint32_t message, const NotifyIconData& data) = 0;
};

}  // namespace quorvane::platform
