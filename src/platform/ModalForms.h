#pragma once
// The program's own modal forms: each is shown owned by a window of the program, keeps the
// user from the program's other windows while it is up, and returns once it is gone. The forms
// are the system's (their controls and routines); a form's real window is the platform's.
#include <cstdint>

namespace quorvane {
class FrmSettings;
}

namespace quorvane::platform {

class ModalForms {
 public:
  virtual ~ModalForms() = default;

  // Makes the platform's common controls ready for the windows of a form that uses them.
  virtual void InitCommonControls() = 0;

  // Shows FrmSettings modal, owned by the window `owner` (0 for none). The form's load routine
  // runs, then its activation; the user works in it until its own routine unloads it (CmdSave)
  // or the title bar's close takes it away, which saves nothing. Returns then. A failure of a
  // routine of the form goes to the caller or to the top-level report, as the platform has it.
  virtual void ShowSettings(FrmSettings& form, std::uint32_t owner) = 0;
};

}  // namespace quorvane::platform
