#include "platform/portable/PortableApplication.h"

namespace quorvane::platform::portable {

void PortableApplication::Note(const std::string& request) {
  requests_.push_back(request);
  if (journal_ != nullptr) journal_->push_back("application " + request);
}

void PortableApplication::SetMainWindowVisible(bool visible) {
  visible_ = visible;
  Note(visible ? "show" : "hide");
}

void PortableApplication::FocusMainWindow() { Note("focus"); }

void PortableApplication::UnloadMainWindow() {
  loaded_ = false;
  visible_ = false;
  Note("unload");
}

void PortableApplication::EndProcess() {
  ended_ = true;
  Note("end");
}

void PortableApplication::SetMousePointer(std::int16_t pointer) {
  pointer_ = pointer;
  Note("pointer " + std::to_string(pointer));
}

}  // namespace quorvane::platform::portable
