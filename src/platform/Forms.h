#pragma once
// The program's forms on the platform: a form of the control model shown as a window, modal or
// not, owned by a window of the program; and unloaded. The port knows forms only as the control
// model has them (ui::Form): their properties, events and controls; which form it is, is the
// system's business.
#include <cstdint>

namespace quorvane::ui {
class Form;
}

namespace quorvane::platform {

class Forms {
 public:
  virtual ~Forms() = default;

  // Makes the platform's common controls ready for the windows of a form that uses them.
  virtual void InitCommonControls() = 0;

  // Shows the form, owned by the window `owner` (0 for none). Its load routine runs when it is
  // not loaded yet, then its activation. Modal, the show keeps the user from the program's other
  // windows and returns once the form is unloaded: by a routine of its own, or by the title
  // bar's close, which asks its QueryUnload. Modeless, it returns at once and the form stays up
  // until it is unloaded. Every event runs through ui::RunEvent.
  virtual void Show(ui::Form& form, bool modal, std::uint32_t owner) = 0;

  // Unloads the form from the program's code (ui::Form::Unload): its window goes. A form that is
  // not loaded stays as it is.
  virtual void Unload(ui::Form& form) = 0;
};

}  // namespace quorvane::platform
