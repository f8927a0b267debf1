#pragma once
// The records of the Windows binding of a form: one for each control of the form and the windows
// that show it, made in the window of its container at its place; the system names by which
// those windows are found from outside, and the accessible names they carry; the captions' face
// and the brushes of the back colours; the parts of a spin edit; and what a tree view does with
// the nodes of its model.
//
// The form's binding (FormWindow) derives from ControlBinding. It makes its top-level window with
// MakeTopWindow and binds the form's controls with BindAll: ControlBinding makes a record for
// each (containers before what stands in them) through NewBound, has the binding make the
// windows through MakeWindow, watches the controls and passes each change of the model that
// concerns a window on to the binding's Apply routines. The classes of the top-level window and
// of the binding's own controls take TopProcedure and PartProcedure: what concerns every window
// alike is done there, and the rest goes on to TopMessage and PartMessage. Every handler of the
// model runs through ui::RunEvent. Positions are the model's twips, 15 to the pixel.
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/win32/Handles.h"

struct IAccPropServices;

namespace quorvane::ui::win32 {

// Registered message a form's top-level window answers: wParam is a global atom of a system
// name, the answer the window of that control, 0 if there is none.
inline constexpr const char* kFindControlMessage = "Quorvane.FindControl";

int ToPixels(std::int32_t twips);
// A handle as the model keeps it (hWnd, Icon): its low 32 bits, as the system's handles fit.
std::uint32_t ToHandleValue(const void* handle);
// A failure of the system, with the system's last error number.
std::runtime_error SystemFailure(const std::string& what);

// Every caption of the forms is set in "Verdana". The windows are laid out in pixels (15 twips
// to the pixel), so their type is too: points are taken at 96 pixels to the inch whatever the
// screen's setting, and a caption always fits the box the design gives it. At a larger display
// scaling the system enlarges the whole window, which declares no awareness of scaling.
HFONT MakeVerdana(int points, bool bold, bool underline);

// A window class of the program's own; the defaults are what the controls' classes want.
struct WindowClass {
  const char* name = nullptr;
  WNDPROC procedure = nullptr;
  UINT style = 0;
  HBRUSH background = nullptr;
  HICON icon = nullptr;
  HICON smallIcon = nullptr;
};
// Registers the class unless it is registered already. Throws SystemFailure(`refusal`) when the
// system refuses it.
void RegisterWindowClass(HINSTANCE instance, const WindowClass& wanted, const char* refusal);

// A label's caption in `font`, wrapped, in its fore colour (grey while it is disabled), over
// what the context holds already.
void DrawLabelCaption(HDC dc, const Label& label, HFONT font, RECT area);

class ControlBinding;

// A control of a form and the windows that show it. A form's binding derives its own record
// from this one with what else it keeps of a control.
struct BoundWindow {
  virtual ~BoundWindow() = default;
  // The control's own window is gone: what the record mirrors of it goes too.
  virtual void WindowDestroyed() {}

  ControlBinding* binding = nullptr;
  Control* control = nullptr;
  HWND window = nullptr;  // the control's own window: for a spin edit, the one holding both parts
  HWND edit = nullptr;    // spin edits: the edit and the up-down
  HWND upDown = nullptr;
  bool showsCaption = false;     // the window's text is the control's caption
  std::vector<HTREEITEM> items;  // tree views: one item per node, by position from 1
};

// What a control's window is made as, besides a child of its container's window at the
// control's place, shown as the control is.
struct ChildWindow {
  const char* className = nullptr;
  DWORD style = 0;
  DWORD extendedStyle = 0;
  bool showsCaption = false;  // its text is the control's caption rather than its system name
  bool ownClass = false;      // a class of the binding's own, whose procedure is PartProcedure
};

// A form's top-level window.
struct TopWindow {
  const char* className = nullptr;
  const char* caption = nullptr;
  DWORD style = 0;
  DWORD extendedStyle = 0;
  RECT frame{};  // on the screen
  HWND owner = nullptr;
};

// The accessible names of windows, given through the platform's annotation service where it
// has one; without it, nothing.
class AccessibleNames {
 public:
  AccessibleNames() = default;
  ~AccessibleNames();
  AccessibleNames(const AccessibleNames&) = delete;
  AccessibleNames& operator=(const AccessibleNames&) = delete;

  // Looks for the service once.
  void Connect();
  void Give(HWND window, const std::string& name) const;
  void Take(HWND window) const;

 private:
  IAccPropServices* service_ = nullptr;
};

class ControlBinding : protected ControlObserver {
 public:
  ControlBinding(const ControlBinding&) = delete;
  ControlBinding& operator=(const ControlBinding&) = delete;

  // The form's top-level window; 0 before it is made and once it is gone.
  HWND Handle() const { return window_; }
  // The window of a control of the form; 0 for a control without one.
  HWND WindowOf(const Control& control) const;
  // The window of the control of that system name ("Name" or "Name(i)"); 0 if none.
  HWND Find(std::string_view systemName) const;
  // The form the binding shows.
  Form& BoundForm() const { return form_; }

 protected:
  ControlBinding(Form& form, HINSTANCE instance);
  // Stops watching the controls. The form's binding has destroyed its windows by then.
  ~ControlBinding() override;

  // A new record for `control`, of the binding's own kind.
  virtual std::unique_ptr<BoundWindow> NewBound(Control& control) = 0;
  // Makes the windows of a new record, its container's made already.
  virtual void MakeWindow(BoundWindow& bound) = 0;
  // How a change of the model shows on a control's windows, property by property (visibility,
  // position and caption show alike on every form; the node properties come for tree views
  // only), and how the windows are drawn again after one.
  virtual void Repaint(BoundWindow& bound) = 0;
  // The windows enabled as the control is, and drawn again.
  virtual void ApplyEnabled(BoundWindow& bound);
  // `which`: Picture, or Image for what was drawn on a picture box's surface. The windows are
  // drawn again.
  virtual void ApplyPicture(BoundWindow& bound, Property which);
  virtual void ApplyValue(BoundWindow& bound) = 0;
  virtual void ApplyNodes(BoundWindow& bound) = 0;
  virtual void ApplyNodeStates(BoundWindow& bound) = 0;
  // The tree's image list was changed or replaced; a form whose trees show no images ignores it.
  virtual void ApplyImages(BoundWindow& /*bound*/) {}
  // A notification (WM_NOTIFY) of a tree view of the form.
  virtual void TreeNotification(BoundWindow& bound, const NMHDR& header, LPARAM lParam) = 0;
  // A control's notification code of WM_COMMAND (BN_CLICKED, EN_CHANGE…), unless the binding's
  // own change of the window caused it.
  virtual void Command(BoundWindow& sender, UINT code) = 0;
  // Another message a control's window sends its parent about itself (the scroll messages, the
  // colour requests); false leaves it to the parent's own handling.
  virtual bool ControlMessage(BoundWindow& sender, UINT message, WPARAM wParam,
                              LRESULT& result) = 0;
  // After each handler Run ran.
  virtual void Ran() {}
  // Brings what waits to be shown up to the model; done before a control is looked up from
  // outside, so that whoever looks sees the windows as the model has them.
  virtual void Flush() {}

  // The window procedures of the form's top-level window and of the binding's own control
  // classes, and what they leave to the form's binding.
  static LRESULT CALLBACK TopProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK PartProcedure(HWND window, UINT message, WPARAM wParam,
                                        LPARAM lParam);
  virtual LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
  virtual LRESULT PartMessage(BoundWindow& bound, HWND window, UINT message, WPARAM wParam,
                              LPARAM lParam) = 0;

  HINSTANCE Instance() const { return instance_; }

  // Before the windows: the common controls of `commonControlClasses`, the find message, the
  // accessible names' service and the captions' face.
  void Prepare(DWORD commonControlClasses);
  // Binds every control and watches them all.
  void BindAll(const std::vector<Control*>& controls);
  const std::vector<std::unique_ptr<BoundWindow>>& Records() const { return records_; }

  // Makes the form's top-level window, which leads to this binding. Throws
  // SystemFailure(`refusal`) when the system refuses it.
  HWND MakeTopWindow(const TopWindow& wanted, const char* refusal);
  // Makes the control's own window as `wanted`, gives it its accessible name and records it.
  // Throws SystemFailure when the system refuses it.
  HWND MakeChild(BoundWindow& bound, const ChildWindow& wanted);
  // A push button, check box or radio button (`buttonStyle`) that shows the control's caption
  // in the captions' face.
  void MakeButton(BoundWindow& bound, DWORD buttonStyle);
  // A spin edit: a window of the binding's own `className` holding an edit and an up-down, the
  // arrows at the right.
  void MakeSpinEdit(BoundWindow& bound, const char* className);
  // A window of a record is being destroyed; its record lets go of it.
  void Forget(HWND window);

  void EnableWindows(const BoundWindow& bound);
  HFONT CaptionFont() const { return font_.Get(); }
  void UseCaptionFont(HWND window) const;
  HBRUSH BrushOf(std::uint32_t color);

  // Runs a handler of the model through ui::RunEvent, with the form.
  void Run(const std::function<void()>& handler);

  // Set while the binding itself changes a window, so that the window's notifications of that
  // change are not taken for the user's.
  class Applying {
   public:
    explicit Applying(ControlBinding& binding) : counter_(binding.applying_) { ++counter_; }
    ~Applying() { --counter_; }
    Applying(const Applying&) = delete;
    Applying& operator=(const Applying&) = delete;

   private:
    int& counter_;
  };
  bool IsApplying() const { return applying_ != 0; }

  // Tree views.
  // Deletes every item of the tree.
  void ClearTree(BoundWindow& bound);
  // Adds the item of the next node, `node`, under its parent's item: `item` says what it shows
  // besides its text.
  void AddTreeItem(BoundWindow& bound, const Node& node, TVITEMA item);
  // The tree's selection moved to the model's selected node, or to none.
  void ShowSelectedNode(const BoundWindow& bound, std::int32_t selected);
  // The position of the node an item shows; 0 for no item of the tree.
  std::int32_t PositionOfItem(const BoundWindow& bound, HTREEITEM item) const;
  // The node the tree view found at a point (by TVM_HITTEST), selected in the model.
  void SelectNodeHit(BoundWindow& bound, const TVHITTESTINFO& hit);
  // A change of the tree view's selection (TVN_SELCHANGED) taken into the model when the user
  // made it. Gives the change's action: TVC_BYMOUSE, TVC_BYKEYBOARD, or TVC_UNKNOWN for one
  // the binding made.
  UINT FollowTreeSelection(BoundWindow& bound, LPARAM lParam);

  // Spin edits: the number in the edit; false for text that is no whole number.
  static bool ReadSpinNumber(const BoundWindow& bound, std::int32_t& value);

 private:
  // ControlObserver
  void Changed(Control& control, Property property) override;

  // What every top-level window does alike: it answers the find message, passes on what its
  // controls tell it, and lets go of the binding when it is destroyed.
  LRESULT CommonTopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  // What every window of the binding's own control classes does alike: it passes on what its
  // controls tell it, is never erased (its painting covers it), passes the focus on to a spin
  // edit's edit, and lets go of its record when it is destroyed.
  LRESULT CommonPartMessage(BoundWindow& bound, HWND window, UINT message, WPARAM wParam,
                            LPARAM lParam);
  // Passes what a control's window tells its parent to TreeNotification, Command or
  // ControlMessage. False for any other message.
  bool ControlNotification(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
  LRESULT AnswerFind(WPARAM atom) const;

  BoundWindow& Bind(Control& control);
  BoundWindow* RecordOf(const Control& control) const;
  // The record of the control one of whose windows this is; null for another window.
  BoundWindow* RecordAt(HWND window) const;
  HWND ParentOf(const Control& control) const;
  void MakeSpinParts(BoundWindow& bound);

  // Moves the control's window to its container's window and its place.
  void Place(BoundWindow& bound);
  void PlaceSpinParts(BoundWindow& bound, int width, int height);
  // Shows or hides the control's window as the control is.
  void ApplyVisible(const BoundWindow& bound);
  // A window that shows the caption takes the new one; then the windows are drawn again.
  void ApplyCaption(BoundWindow& bound);

  Form& form_;
  HINSTANCE instance_;
  HWND window_ = nullptr;
  UINT findMessage_ = 0;
  int applying_ = 0;
  UniqueFont font_;
  std::map<std::uint32_t, UniqueBrush> brushes_;
  AccessibleNames accessibleNames_;
  std::vector<std::unique_ptr<BoundWindow>> records_;
  std::unordered_map<const Control*, BoundWindow*> byControl_;
  std::unordered_map<HWND, BoundWindow*> byWindow_;
};

// The point of the message being handled (GetMessagePos) in the window's client pixels.
POINT MessagePointIn(HWND window);
// What of a tree view lies at a point of its client area.
TVHITTESTINFO HitTestTree(HWND tree, POINT at);
// How many of the tree's nodes have an item: fewer than it has while items are still added.
std::size_t NodesShown(const BoundWindow& bound, const TreeView& tree);

}  // namespace quorvane::ui::win32
