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
// system name) with the control's window, 0 if there is none.
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

#include "ui/Controls.h"
#include "ui/win32/Handles.h"

namespace quorvane {
class FrmMain;
}

namespace quorvane::ui::win32 {

inline constexpr const char* kMainWindowClass = "QuorvaneMain";
inline constexpr const char* kFindControlMessage = "Quorvane.FindControl";

// Unload modes: why the window is asked to close.
inline constexpr std::int16_t kUnloadFromMenu = 0;         // system menu, Alt+F4, WM_CLOSE
inline constexpr std::int16_t kUnloadFromCode = 1;         // the program's own code
inline constexpr std::int16_t kUnloadAtSessionEnd = 2;     // log-off or shutdown
inline constexpr std::int16_t kUnloadFromTaskManager = 3;  // the task manager

// "TvDesktop" for a control, "CmdMenu(2)" for an element of a control array.
std::string SystemNameOf(const Control& control);
// Splits a system name into the control's name and the element's index, -1 for a control that
// is no element. False for a text that is not a system name.
bool ParseSystemName(std::string_view text, std::string& name, std::int32_t& index);

struct BoundControl;
struct BoundImageList;

class FormWindow final : private ControlObserver {
 public:
  FormWindow(FrmMain& form, HINSTANCE instance, HICON icon, HICON smallIcon);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Makes the top-level window and every control's window, all hidden at first but for the
  // controls that are visible in a hidden top-level window. Throws std::runtime_error when the
  // system refuses a window; a second call does nothing.
  void Create();
  bool IsCreated() const { return window_ != nullptr; }
  HWND Handle() const { return window_; }

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
  void Flush();

  // The window of a control of the form; 0 before Create and for a control it does not know.
  HWND WindowOf(const Control& control) const;
  // The window of the control of that system name ("Name" or "Name(i)"); 0 if none.
  HWND Find(std::string_view systemName) const;

  // Events of the form's own surface, in the model's terms (button, shift, x and y in twips).
  std::function<void(std::int16_t, std::int16_t, float, float)> MouseDown;
  std::function<void(std::int16_t, std::int16_t, float, float)> MouseMove;
  std::function<void()> Click;
  // A request to close the window, with its unload mode; true cancels it. A request that is not
  // cancelled hides and destroys the window.
  std::function<bool(std::int16_t unloadMode)> QueryUnload;
  // The top-level window is gone.
  std::function<void()> Unloaded;
  // A failure that came out of a handler. The message loop goes on.
  std::function<void(const std::exception& failure)> Failed;

  // Runs `handler` when the top-level window receives the registered message `name`, from this
  // process or another one.
  void OnRegisteredMessage(const char* name, std::function<void()> handler);

 private:
  // ControlObserver
  void Changed(Control& control, Property property) override;

  static LRESULT CALLBACK TopProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK ChildProcedure(HWND window, UINT message, WPARAM wParam,
                                         LPARAM lParam);
  static LRESULT CALLBACK SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam, UINT_PTR id, DWORD_PTR data);

  LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT ChildMessage(BoundControl& bound, HWND window, UINT message, WPARAM wParam,
                       LPARAM lParam);
  // WM_COMMAND, WM_NOTIFY and the scroll messages of a control's window, sent to its parent.
  bool ControlNotification(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
  bool Mouse(Control* control, bool& pressed, HWND window, UINT message, WPARAM wParam,
             LPARAM lParam);

  void RegisterClasses();
  BoundControl& Bind(Control& control);
  void MakeWindow(BoundControl& bound);
  void Forget(HWND window);
  void RequestUnload(std::int16_t mode);

  void Place(BoundControl& bound);
  void ApplyVisible(BoundControl& bound);
  void ApplyEnabled(BoundControl& bound);
  void ApplyValue(BoundControl& bound);
  void Repaint(BoundControl& bound);

  void PaintPicture(BoundControl& bound, HDC dc);
  void PaintLabel(BoundControl& bound, HWND window, HDC dc);
  void PaintFormBackground(HDC dc);
  HBRUSH BrushOf(std::uint32_t color);
  HFONT FontOf(const Label& label);

  void SyncNodes(BoundControl& bound);
  void InsertNode(BoundControl& bound, std::int32_t position);
  void SyncNodeStates(BoundControl& bound);
  void ScheduleNodeStates(BoundControl& bound);
  void TreeNotification(BoundControl& bound, const NMHDR& header, LPARAM lParam);
  std::int32_t PositionOfItem(BoundControl& bound, HTREEITEM item);
  void UseImages(BoundControl& bound);
  void ImagesChanged(BoundImageList& list);

  void SpinEdited(BoundControl& bound);

  void Annotate(HWND window, const std::string& name);

  // Runs a handler of the model; a failure out of it goes to Failed, never into the system's
  // window procedures.
  void Run(const std::function<void()>& handler);

  FrmMain& form_;
  HINSTANCE instance_;
  HICON icon_;
  HICON smallIcon_;
  HWND window_ = nullptr;
  UINT findMessage_ = 0;
  UINT syncMessage_ = 0;
  bool syncPosted_ = false;
  bool formPressed_ = false;
  // Set while the binding itself changes a window, so that the window's notifications of that
  // change are not taken for the user's.
  int applying_ = 0;
  UniqueFont font_;
  // The labels' other faces of "Verdana", by size, weight and underline, made on first use.
  std::map<std::uint32_t, UniqueFont> labelFonts_;
  std::map<std::uint32_t, UniqueBrush> brushes_;
  std::vector<std::unique_ptr<BoundControl>> bound_;
  std::unordered_map<const Control*, BoundControl*> byControl_;
  std::unordered_map<HWND, BoundControl*> byWindow_;
  std::vector<std::unique_ptr<BoundImageList>> imageLists_;
  std::vector<BoundControl*> pendingStates_;
  std::vector<std::pair<UINT, std::function<void()>>> registeredHandlers_;
  void* accessibleNames_ = nullptr;  // the platform's annotation service, when it has one
};

}  // namespace quorvane::ui::win32
