#pragma once
// The Windows binding of the control model: any form (ui::Form) as real windows.
//
// FormWindow makes the form's top-level window and one child window for every control, inside
// the window of its container, at its place. It watches the form and every control and mirrors
// each change of the model onto the windows, and turns the windows' events into the form's
// events and the controls' handlers, each run through ui::RunEvent. Positions are the model's
// twips, 15 to the pixel.
//
// The top-level window, by the form's properties:
//   class          "Quorvane" and the form's name without its "Frm": "QuorvaneMain" for FrmMain,
//                  "QuorvaneSettings" for FrmSettings, "QuorvaneWorking" for FrmWorking
//   text           the form's Caption; a form without one carries its system name
//   Border         None: no frame, a window of the task bar, its inside the form's size;
//                  FixedDialog: a dialog frame with a caption bar and a close box;
//                  FixedSingle: a thin frame with a caption bar and a close box;
//                  FixedToolWindow: a tool window's thin frame, a caption bar only with a caption
//   place          centred over its owner when the owner is on the screen, else on the screen
//   background     the form's Picture at (0, 0), the dialog face beyond it
//   pointer        the hourglass over the window and all its controls while the form's
//                  MousePointer asks for it
//   timers         each enabled Timer of the form ticks on the window from its creation
//   shown          modeless (Show): owned, without taking the activation from its owner; modal
//                  (ShowModal): its owner disabled until the form is unloaded
//
// Kinds of control and their windows:
//   PictureBox     "QuorvanePicture": its persistent image once something was drawn on it (it
//                  draws on a MemorySurface the binding gives it), or else its Picture, at
//                  (0, 0), never stretched, on its back colour
//   Label          "QuorvaneLabel": the caption in Verdana (its size, weight and underline) over
//                  its container's background
//   Frame          "QuorvaneFrame": an etched border with the caption in it; the controls
//                  standing in it are its children
//   TreeView       the common tree view; its image list made from the model's image list, 32-bit
//                  with alpha; lines and buttons once a node has a parent; tick boxes for a tree
//                  with Checkboxes, a node's tick its Checked
//   CheckBox       a check box (0, 1, or 2 shown greyed); a click ticks or unticks it
//   OptionButton   a radio button on its own back colour; a click sets its Value
//   CommandButton  a push button; a click runs Click
//   ValueControl   a trackbar, or for the design's spin edits (named "Txt…" and "Cbo…") an edit
//                  with an up-down inside a "QuorvaneSpinEdit" window, on the dialog face for a
//                  text box ("Txt…"), on what is behind it for a spin box ("Cbo…"); a Min and
//                  Max both 0 mean no bounds
//   Timer          no window
//
// Found from outside: every child's window text is its system name ("TvDesktop", "CmdMenu(2)"),
// except where the window shows its text (the buttons show their captions); the system name is
// also given as its accessible name where the platform takes such annotations. The top-level
// window answers the registered message "Quorvane.FindControl" (wParam: a global atom of the
// system name) with the control's window, 0 if there is none.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/win32/ControlBinding.h"
#include "ui/win32/Handles.h"

namespace quorvane::ui::win32 {

// What a form's window does besides what every form's does: the main window's extras.
struct FormWindowOptions {
  // The window's own icons, also its class's; none by default.
  HICON icon = nullptr;
  HICON smallIcon = nullptr;
  // The thread's message loop ends (WM_QUIT) when the window is gone.
  bool quitWhenGone = false;
  // The pointer the application sets (platform::Application::SetMousePointer) stands over the
  // window too.
  bool followsApplicationPointer = false;
};

struct BoundControl;
struct BoundImageList;

class FormWindow final : public ControlBinding, private FormObserver {
 public:
  FormWindow(Form& form, HINSTANCE instance, FormWindowOptions options = {});
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // The top-level window's class for a form: "Quorvane" and its name without "Frm".
  static std::string ClassNameFor(const Form& form);

  // Makes the top-level window, owned by `owner`, and every control's window, all hidden at
  // first but for the controls that are visible in a hidden top-level window. Throws
  // std::runtime_error when the system refuses a window; a second call does nothing.
  void Create(HWND owner = nullptr);
  bool IsCreated() const { return Handle() != nullptr; }

  // Modeless: makes the windows, loads the form when it is not loaded, shows the top-level
  // window (without the activation when it has an owner) and paints it with all its children
  // before returning; the form's activation follows.
  void Show(HWND owner = nullptr);
  // Modal: makes the windows, hidden; loads the form; shows the window with `owner` disabled,
  // which runs the activation; and dispatches messages until the form is unloaded or its window
  // is gone. Then the owner is enabled again and the window destroyed. A quit message that comes
  // meanwhile ends the show and is posted again for the caller's loop.
  void ShowModal(HWND owner);
  void Hide();
  // Destroys every window of the form.
  void Destroy();
  // Brings the tree views' node states (text, images, bold, ticks, expansion, selection) up to
  // the model now; otherwise they follow once the program reaches its message loop.
  void Flush() override;

  // Runs `handler` when the top-level window receives the registered message `name`, from this
  // process or another one.
  void OnRegisteredMessage(const char* name, std::function<void()> handler);

 private:
  void RegisterClasses();
  std::unique_ptr<BoundWindow> NewBound(Control& control) override;
  void MakeWindow(BoundWindow& bound) override;
  TopWindow TopWindowFor(HWND owner) const;
  void RequestUnload(std::int16_t mode);
  void Activated();

  // FormObserver
  void VisibleChanged(Form& form) override;
  void Unloaded(Form& form) override;

  // Messages.
  LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
  LRESULT PartMessage(BoundWindow& bound, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam) override;
  // The system's controls: their mouse events.
  static LRESULT CALLBACK SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam, UINT_PTR id, DWORD_PTR data);
  bool Mouse(Control* control, bool& pressed, HWND window, UINT message, WPARAM wParam,
             LPARAM lParam);
  // The buttons' clicks and a spin edit's edit.
  void Command(BoundWindow& sender, UINT code) override;
  // A slider's move; the colours behind the system's controls.
  bool ControlMessage(BoundWindow& sender, UINT message, WPARAM wParam,
                      LRESULT& result) override;
  // A button's click: what the user ticked in the trees first, then the button's routine.
  void Clicked(BoundControl& bound);
  void SpinEdited(BoundControl& bound);
  bool ShowsHourglass() const;

  // The model's changes.
  // Labels, frames and picture boxes are drawn again; the system's controls draw themselves.
  void ApplyEnabled(BoundWindow& bound) override;
  // A picture box shows what was drawn on it after Image, its Picture after Picture.
  void ApplyPicture(BoundWindow& bound, Property which) override;
  void ApplyValue(BoundWindow& bound) override;
  // Only a window on the screen; one that comes is painted whole.
  void Repaint(BoundWindow& bound) override;

  // Painting.
  // The colour behind a control: that of the picture box it stands in, or the dialog face.
  std::uint32_t ColorBehind(const Control& control) const;
  // What shows round the parts of a spin edit.
  std::uint32_t SpinFace(const Control& spin) const;
  void PaintPicture(BoundControl& bound, HDC dc);
  void PaintLabel(BoundControl& bound, HWND window, HDC dc);
  void PaintFrame(BoundControl& bound, HWND window, HDC dc);
  void PaintFormBackground(HDC dc);
  HFONT FontOf(const Label& label);

  // Tree views.
  void ApplyNodes(BoundWindow& bound) override;
  void InsertNode(BoundControl& bound, std::int32_t position);
  // Expansion and selection follow once the program reaches its message loop, or at Flush; the
  // ticks of a tree with tick boxes follow at once.
  void ApplyNodeStates(BoundWindow& bound) override;
  void SyncNodeStates(BoundControl& bound);
  void ApplyImages(BoundWindow& bound) override;
  void ImagesChanged(BoundImageList& list);
  void TreeNotification(BoundWindow& bound, const NMHDR& header, LPARAM lParam) override;
  // Takes the tick boxes as the user left them into the nodes' Checked.
  void PullChecks(BoundControl& bound);
  void PullAllChecks();

  Form& form_;
  FormWindowOptions options_;
  HWND owner_ = nullptr;
  UINT syncMessage_ = 0;
  UINT pullMessage_ = 0;
  bool syncPosted_ = false;
  bool formPressed_ = false;
  bool activated_ = false;
  bool modal_ = false;
  bool destroying_ = false;
  // The labels' other faces of "Verdana", by size, weight and underline, made on first use.
  std::map<std::uint32_t, UniqueFont> labelFonts_;
  std::vector<std::unique_ptr<BoundImageList>> imageLists_;
  std::vector<BoundControl*> pendingStates_;
  std::vector<std::pair<UINT, std::function<void()>>> registeredHandlers_;
};

}  // namespace quorvane::ui::win32
