#pragma once
// The Windows binding of the control model: the main window, FrmMain, as real windows.
//
// FormWindow makes the top-level window of a FrmMain (borderless, class "QuorvaneMain", the
// form's caption, its size, centred on the screen, the program's icon) and one child window for
// every control, inside the window of its container, at its place. It watches every control and
// mirrors each change of the model onto the windows, and turns the windows' events into the
// controls' handlers. Positions are the model's twips, 15 to the pixel.
//
// Kinds of control and their windows:
//   PictureBox     "QuorvanePicture": its persistent image once something was drawn on it (it
//                  draws on a MemorySurface the binding gives it), or else its Picture, at
//                  (0, 0), never stretched, on its back colour
//   Label          "QuorvaneLabel": the caption in Verdana 8 pt over its container's background
//   TreeView       the common tree view; its image list made from the model's image list, 32-bit
//                  with alpha; lines and buttons once a node has a parent
//   CheckBox       an automatic check box
//   ValueControl   a trackbar, or for the design's spin edits (named "Txt…" and "Cbo…") an edit
//                  with an up-down inside a "QuorvaneSpinEdit" window
//
// Found from outside: every child's window text is its system name ("TvDesktop", "CmdMenu(2)"),
// except where the window shows its text (the check box shows its caption); the system name is
// also given as its accessible name where the platform takes such annotations. The top-level
// window answers the registered message "Quorvane.FindControl" (wParam: a global atom of the
// system name) with the control's window, 0 if there is none. What every form's binding does
// alike is ControlBinding's.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ui/Controls.h"
#include "ui/win32/ControlBinding.h"
#include "ui/win32/Handles.h"

namespace quorvane {
class FrmMain;
}

namespace quorvane::ui::win32 {

inline constexpr const char* kMainWindowClass = "QuorvaneMain";

// Unload modes: why the window is asked to close.
inline constexpr std::int16_t kUnloadFromMenu = 0;         // system menu, Alt+F4, WM_CLOSE
inline constexpr std::int16_t kUnloadFromCode = 1;         // the program's own code
inline constexpr std::int16_t kUnloadAtSessionEnd = 2;     // log-off or shutdown
inline constexpr std::int16_t kUnloadFromTaskManager = 3;  // the task manager

struct BoundControl;
struct BoundImageList;

class FormWindow final : public ControlBinding {
 public:
  FormWindow(FrmMain& form, HINSTANCE instance, HICON icon, HICON smallIcon);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Makes the top-level window and every control's window, all hidden at first but for the
  // controls that are visible in a hidden top-level window. Throws std::runtime_error when the
  // system refuses a window; a second call does nothing.
  void Create();
  bool IsCreated() const { return Handle() != nullptr; }

  // Shows the top-level window and paints it with all its children before returning.
  void Show();
  void Hide();
  // Destroys every window of the form; the form's Unloaded event follows.
  void Destroy();
  // Shows or hides the top-level window to match FrmMain::Visible, which the form's routines
  // set. The program calls this after each message.
  void ApplyFormVisible();
  // Brings the tree views' node states (text, images, bold, expansion, selection) up to the
  // model now; otherwise they follow once the program reaches its message loop.
  void Flush() override;

  // Events of the form's own surface, in the model's terms (button, shift, x and y in twips).
  std::function<void(std::int16_t, std::int16_t, float, float)> MouseDown;
  std::function<void(std::int16_t, std::int16_t, float, float)> MouseMove;
  std::function<void()> Click;
  // A request to close the window, with its unload mode; true cancels it. A request that is not
  // cancelled hides and destroys the window.
  std::function<bool(std::int16_t unloadMode)> QueryUnload;
  // The top-level window is gone.
  std::function<void()> Unloaded;
  // Runs `handler` when the top-level window receives the registered message `name`, from this
  // process or another one.
  void OnRegisteredMessage(const char* name, std::function<void()> handler);

 private:
  void RegisterClasses();
  std::unique_ptr<BoundWindow> NewBound(Control& control) override;
  void MakeWindow(BoundWindow& bound) override;
  void RequestUnload(std::int16_t mode);

  // Messages.
  LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
  LRESULT PartMessage(BoundWindow& bound, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam) override;
  // The tree views, check boxes and sliders: their mouse events.
  static LRESULT CALLBACK SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam, UINT_PTR id, DWORD_PTR data);
  bool Mouse(Control* control, bool& pressed, HWND window, UINT message, WPARAM wParam,
             LPARAM lParam);
  // A check box's click and a spin edit's edit.
  void Command(BoundWindow& sender, UINT code) override;
  // A slider's move.
  bool ControlMessage(BoundWindow& sender, UINT message, WPARAM wParam,
                      LRESULT& result) override;
  void SpinEdited(BoundControl& bound);

  // The model's changes.
  // Labels and picture boxes are drawn again; the system's controls draw themselves.
  void ApplyEnabled(BoundWindow& bound) override;
  // A picture box shows what was drawn on it after Image, its Picture after Picture.
  void ApplyPicture(BoundWindow& bound, Property which) override;
  void ApplyValue(BoundWindow& bound) override;
  // Only a window on the screen; one that comes is painted whole.
  void Repaint(BoundWindow& bound) override;

  // Painting.
  void PaintPicture(BoundControl& bound, HDC dc);
  void PaintLabel(BoundControl& bound, HWND window, HDC dc);
  void PaintFormBackground(HDC dc);
  HFONT FontOf(const Label& label);

  // Tree views.
  void ApplyNodes(BoundWindow& bound) override;
  void InsertNode(BoundControl& bound, std::int32_t position);
  // Expansion and selection follow once the program reaches its message loop, or at Flush.
  void ApplyNodeStates(BoundWindow& bound) override;
  void SyncNodeStates(BoundControl& bound);
  void ApplyImages(BoundWindow& bound) override;
  void ImagesChanged(BoundImageList& list);
  void TreeNotification(BoundWindow& bound, const NMHDR& header, LPARAM lParam) override;

  FrmMain& form_;
  HICON icon_;
  HICON smallIcon_;
  UINT syncMessage_ = 0;
  bool syncPosted_ = false;
  bool formPressed_ = false;
  // The labels' other faces of "Verdana", by size, weight and underline, made on first use.
  std::map<std::uint32_t, UniqueFont> labelFonts_;
  std::vector<std::unique_ptr<BoundImageList>> imageLists_;
  std::vector<BoundControl*> pendingStates_;
  std::vector<std::pair<UINT, std::function<void()>>> registeredHandlers_;
};

}  // namespace quorvane::ui::win32
