#include "platform/portable/PortableNotification.h"

namespace quorvane::platform::portable {

void PortableNotification::Note(const char* what) {
  if (journal_ != nullptr) journal_->push_back(std::string("notification ") + what);
}

void PortableNotification::SetOption(std::int32_t number, std::int32_t value) {
  options_.emplace_back(number, value);
  Note("option");
}

void PortableNotification::SetPicture(const Pixels& picture) {
  picture_ = picture;
  Note("picture");
}

void PortableNotification::SetText(const std::string& text) {
  text_ = text;
  Note("text");
}

void PortableNotification::Show() {
  shown_.push_back(Shown{text_, picture_});
  Note("show");
}

}  // namespace quorvane::platform::portable
