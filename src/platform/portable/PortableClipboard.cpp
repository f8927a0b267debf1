#include "platform/portable/PortableClipboard.h"

namespace quorvane::platform::portable {

PortableClipboard::PortableClipboard(DeviceContexts& gdi) : gdi_(gdi) {}

void PortableClipboard::Free(std::uint32_t format, GdiHandle data) {
  if (format == clipboard::kBitmap && data != 0) gdi_.DeleteObject(data);
}

std::int32_t PortableClipboard::OpenClipboard(GdiHandle /*owner*/) {
  if (open_) return 0;
  open_ = true;
  return 1;
}

std::int32_t PortableClipboard::EmptyClipboard() {
  if (!open_) return 0;
  for (const auto& [format, data] : data_) Free(format, data);
  data_.clear();
  return 1;
}

GdiHandle PortableClipboard::SetClipboardData(std::uint32_t format, GdiHandle data) {
  if (!open_ || data == 0) return 0;
  const auto it = data_.find(format);
  if (it != data_.end()) {
    if (it->second != data) Free(format, it->second);
    it->second = data;
  } else {
    data_.emplace(format, data);
  }
  return data;
}

GdiHandle PortableClipboard::GetClipboardData(std::uint32_t format) {
  if (!open_) return 0;
  const auto it = data_.find(format);
  return it == data_.end() ? 0 : it->second;
}

std::int32_t PortableClipboard::IsClipboardFormatAvailable(std::uint32_t format) {
  return data_.count(format) != 0 ? 1 : 0;
}

std::int32_t PortableClipboard::CloseClipboard() {
  if (!open_) return 0;
  open_ = false;
  return 1;
}

}  // namespace quorvane::platform::portable
