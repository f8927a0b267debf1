#pragma once
// The Forms port over real windows: every form shown through one FormWindow.
#include <windows.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/Forms.h"
#include "ui/win32/FormWindow.h"

namespace quorvane::ui::win32 {

class Win32Forms final : public platform::Forms {
 public:
  Win32Forms() = default;
  ~Win32Forms() override;
  Win32Forms(const Win32Forms&) = delete;
  Win32Forms& operator=(const Win32Forms&) = delete;

  // InitCommonControls of comctl32.
  void InitCommonControls() override;
  // Modal: a FormWindow for the length of the show. Modeless: a FormWindow kept until the form
  // is unloaded; a form shown again while it is up is brought back as it stands.
  void Show(ui::Form& form, bool modal, std::uint32_t owner) override;
  // The form unloads from code; its window goes, and so does its binding.
  void Unload(ui::Form& form) override;

 private:
  // Lets go of the bindings whose window is gone.
  void Prune();

  std::vector<std::unique_ptr<FormWindow>> modeless_;
};

}  // namespace quorvane::ui::win32
