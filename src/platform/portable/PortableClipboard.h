#pragma once
// A clipboard of this process alone, with the platform's rules: the operations that change it
// need it open, it opens once at a time, and it owns the bitmaps put on it, deleting them when
// they are replaced or emptied away.
#include <cstdint>
#include <map>

#include "platform/Clipboard.h"
#include "platform/DeviceContexts.h"

namespace quorvane::platform::portable {

class PortableClipboard final : public Clipboard {
 public:
  // Bitmaps on this clipboard are objects of `gdi`.
  explicit PortableClipboard(DeviceContexts& gdi);

  std::int32_t OpenClipboard(GdiHandle owner) override;
  std::int32_t EmptyClipboard() override;
  GdiHandle SetClipboardData(std::uint32_t format, GdiHandle data) override;
  GdiHandle GetClipboardData(std::uint32_t format) override;
  std::int32_t IsClipboardFormatAvailable(std::uint32_t format) override;
  std::int32_t CloseClipboard() override;

  bool IsOpen() const { return open_; }

 private:
  void Free(std::uint32_t format, GdiHandle data);

  DeviceContexts& gdi_;
  bool open_ = false;
  std::map<std::uint32_t, GdiHandle> data_;
};

}  // namespace quorvane::platform::portable
