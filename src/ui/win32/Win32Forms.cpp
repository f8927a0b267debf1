#include "ui/win32/Win32Forms.h"

#include <commctrl.h>

#include <algorithm>

#include "platform/win32/GdiHandles.h"

namespace quorvane::ui::win32 {

Win32Forms::~Win32Forms() = default;

void Win32Forms::InitCommonControls() { ::InitCommonControls(); }

void Win32Forms::Prune() {
  modeless_.erase(std::remove_if(modeless_.begin(), modeless_.end(),
                                 [](const auto& window) { return !window->IsCreated(); }),
                  modeless_.end());
}

void Win32Forms::Show(ui::Form& form, bool modal, std::uint32_t owner) {
  const HWND ownerWindow = platform::win32::ToNative<HWND>(owner);
  HINSTANCE instance = ::GetModuleHandleA(nullptr);
  if (modal) {
    FormWindow window(form, instance);
    window.ShowModal(ownerWindow);
    return;
  }
  Prune();
  const auto found = std::find_if(modeless_.begin(), modeless_.end(), [&](const auto& window) {
    return &window->BoundForm() == &form;
  });
  if (found != modeless_.end()) {
    (*found)->Show(ownerWindow);
    return;
  }
  modeless_.push_back(std::make_unique<FormWindow>(form, instance));
  modeless_.back()->Show(ownerWindow);
}

void Win32Forms::Unload(ui::Form& form) {
  form.Unload();
  if (form.Loaded()) return;
  modeless_.erase(std::remove_if(modeless_.begin(), modeless_.end(),
                                 [&](const auto& window) { return &window->BoundForm() == &form; }),
                  modeless_.end());
}

}  // namespace quorvane::ui::win32
