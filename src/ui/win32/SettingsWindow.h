#pragma once
// The Windows binding of FrmSettings: a modal dialog owned by the main window, and the
// ModalForms port that shows it.
//
// SettingsWindow makes the dialog's top-level window (class "QuorvaneSettings", a caption with
// the form's Caption and a close box, the form's Width and Height inside, centred over its
// owner) and one child window for every control of the form, inside the window of its
// container, at its place. It watches every control and mirrors each change of the model onto
// the windows, and turns the windows' events into the controls' handlers.
//
// Kinds of control and their windows:
//   PictureBox     "QuorvaneSettingsPart": its Picture at (0, 0) on its back colour
//   Label          "QuorvaneSettingsPart": the caption in Verdana 8 pt, wrapped, on the colour of
//                  what it stands in
//   Frame          "QuorvaneSettingsPart": an etched border with the caption in it; the controls
//                  standing in it are its children
//   CheckBox       a check box (0, 1, or 2 shown greyed); a click ticks or unticks it
//   OptionButton   a radio button on its own back colour; a click sets its Value
//   CommandButton  a push button; a click runs Click
//   ValueControl   a spin edit: an edit with an up-down inside a "QuorvaneSettingsPart"; a
//                  Min and Max both 0 mean no bounds
//   TreeView       the common tree view with tick boxes; a node's tick is its Checked
//
// Found from outside as the main window's controls are: every child's window text is its system
// name, except where the window shows its text (the buttons show their captions), and the
// system name is also its accessible name where the platform takes such annotations. The
// dialog's top-level window answers the registered message "Quorvane.FindControl" (wParam: a
// global atom of the system name) with the control's window, 0 if there is none. What every
// form's binding does alike is ControlBinding's.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/ModalForms.h"
#include "ui/Controls.h"
#include "ui/win32/ControlBinding.h"

namespace quorvane {
class FrmSettings;
}

namespace quorvane::ui::win32 {

inline constexpr const char* kSettingsWindowClass = "QuorvaneSettings";

struct SettingsBound;

class SettingsWindow final : public ControlBinding {
 public:
  SettingsWindow(FrmSettings& form, HINSTANCE instance);
  ~SettingsWindow() override;
  SettingsWindow(const SettingsWindow&) = delete;
  SettingsWindow& operator=(const SettingsWindow&) = delete;

  // Makes the windows, hidden; runs the form's load routine; shows the dialog with `owner`
  // disabled, which runs the activation; and dispatches messages until the form is unloaded or
  // its window is gone. Then the owner is enabled again and the dialog destroyed. A quit message
  // that comes meanwhile ends the show and is posted again for the caller's loop. Throws
  // std::runtime_error when the system refuses a window.
  // A failure that comes out of a routine of the form goes to Failed; the dialog stays.
  void ShowModal(HWND owner);

 private:
  void RegisterClasses();
  void Create(HWND owner);
  std::unique_ptr<BoundWindow> NewBound(Control& control) override;
  void MakeWindow(BoundWindow& bound) override;
  void Activated();
  // Once the form is unloaded, the modal loop is woken to end.
  void Ran() override;

  // Messages.
  LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
  LRESULT PartMessage(BoundWindow& bound, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam) override;
  // The buttons' clicks and a spin edit's edit.
  void Command(BoundWindow& sender, UINT code) override;
  // The colours behind the buttons.
  bool ControlMessage(BoundWindow& sender, UINT message, WPARAM wParam,
                      LRESULT& result) override;
  // A button's click: what the user ticked in the trees first, then the button's routine.
  void Clicked(SettingsBound& bound);
  void SpinEdited(SettingsBound& bound);

  // The model's changes.
  void ApplyValue(BoundWindow& bound) override;
  void Repaint(BoundWindow& bound) override;

  // Painting.
  // The colour behind a control: its container's back colour, or the dialog's face.
  std::uint32_t ColorBehind(const Control& control) const;
  void Paint(SettingsBound& bound, HWND window, HDC dc);
  void PaintPicture(const Control& control, HDC dc, const RECT& area);
  void PaintFrame(const Frame& frame, HDC dc, const RECT& area);

  // Tree views.
  void ApplyNodes(BoundWindow& bound) override;
  void ApplyNodeStates(BoundWindow& bound) override;
  void TreeNotification(BoundWindow& bound, const NMHDR& header, LPARAM lParam) override;
  // Takes the tick boxes as the user left them into the nodes' Checked.
  void PullChecks(SettingsBound& bound);
  void PullAllChecks();

  FrmSettings& form_;
  HWND owner_ = nullptr;
  UINT pullMessage_ = 0;
  bool activated_ = false;
};

// The ModalForms port over the real windows.
class Win32ModalForms final : public platform::ModalForms {
 public:
  // InitCommonControls of comctl32.
  void InitCommonControls() override;
  // A SettingsWindow owned by `owner`; a failure of one of the dialog's routines is reported
  // as the main window reports its own (a line in the log, a message box), and the dialog stays.
  void ShowSettings(FrmSettings& form, std::uint32_t owner) override;
};

}  // namespace quorvane::ui::win32
