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
// global atom of the system name) with the control's window, 0 if there is none.
#include <windows.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/ModalForms.h"
#include "ui/Controls.h"
#include "ui/win32/Handles.h"

namespace quorvane {
class FrmSettings;
}

namespace quorvane::ui::win32 {

inline constexpr const char* kSettingsWindowClass = "QuorvaneSettings";

struct SettingsBound;

class SettingsWindow final : private ControlObserver {
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
  void ShowModal(HWND owner);

  HWND Handle() const { return window_; }
  // The window of the control of that system name ("Name" or "Name(i)"); 0 if none.
  HWND Find(std::string_view systemName) const;

  // A failure that came out of a routine of the form. The dialog stays.
  std::function<void(const std::exception& failure)> Failed;

 private:
  // ControlObserver
  void Changed(Control& control, Property property) override;

  static LRESULT CALLBACK TopProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK PartProcedure(HWND window, UINT message, WPARAM wParam,
                                        LPARAM lParam);
  LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT PartMessage(SettingsBound& bound, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam);
  // WM_COMMAND, WM_NOTIFY and the colour requests of the controls, sent to their parent.
  bool ControlNotification(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

  void RegisterClasses();
  void Create(HWND owner);
  SettingsBound& Bind(Control& control);
  void MakeWindow(SettingsBound& bound);
  void Forget(HWND window);
  HWND ParentOf(const Control& control) const;
  HWND WindowOf(const Control& control) const;

  void Place(SettingsBound& bound);
  void ApplyValue(SettingsBound& bound);
  void ApplyCaption(SettingsBound& bound);
  void Repaint(SettingsBound& bound);

  void SyncNodes(SettingsBound& bound);
  void SyncNodeStates(SettingsBound& bound);
  // Takes the tick boxes as the user left them into the nodes' Checked.
  void PullChecks(SettingsBound& bound);
  void PullAllChecks();
  void TreeNotification(SettingsBound& bound, const NMHDR& header, LPARAM lParam);
  std::int32_t PositionOfItem(SettingsBound& bound, HTREEITEM item);
  void SpinEdited(SettingsBound& bound);

  // The colour behind a control: its container's back colour, or the dialog's face.
  std::uint32_t ColorBehind(const Control& control) const;
  HBRUSH BrushOf(std::uint32_t color);
  void Paint(SettingsBound& bound, HWND window, HDC dc);
  void Annotate(HWND window, const std::string& name);

  // Runs a routine of the form; a failure out of it goes to Failed. Once the form is unloaded,
  // the modal loop is woken to end.
  void Run(const std::function<void()>& routine);
  void Activated();

  FrmSettings& form_;
  HINSTANCE instance_;
  HWND window_ = nullptr;
  HWND owner_ = nullptr;
  UINT findMessage_ = 0;
  UINT pullMessage_ = 0;
  int applying_ = 0;
  bool activated_ = false;
  UniqueFont font_;
  std::map<std::uint32_t, UniqueBrush> brushes_;
  std::vector<std::unique_ptr<SettingsBound>> bound_;
  std::unordered_map<const Control*, SettingsBound*> byControl_;
  std::unordered_map<HWND, SettingsBound*> byWindow_;
  void* accessibleNames_ = nullptr;  // the platform's annotation service, when it has one
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
