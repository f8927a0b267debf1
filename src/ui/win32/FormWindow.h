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
//   background     the form's Picture at (0, 0), its BackColor (the dialog face by default)
//                  beyond it
//   window state   maximised: the window covers the screen, and the form's Width and Height
//                  become the screen's once the window is made
//   pointer        the hourglass over the window and all its controls while the form's
//                  MousePointer asks for it
//   timers         each enabled Timer of the form ticks on the window from its creation, and is
//                  started anew with its Interval at each setting of its Enabled
//   keys           a modal form with KeyPreview sees each key pressed in its windows first
//                  (Form_KeyDown); a key it sets to 0 goes no further
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
//   ComboBox       a drop-down list of the model's entries; the user's choice sets ListIndex
//   Timer          no window
//   ScrollBar      a vertical scroll bar: arrows, the track and the thumb move its value (Change),
//                  and dragging the thumb tells Scroll as it goes
//   ProgressBar    the common progress bar
//   GraphicalOptionButton
//                  "QuorvanePicture": its picture above its centred caption on its back colour,
//                  raised, or pressed in while it is checked; a press checks it, a double click
//                  runs DblClick; elements loaded at run time get their windows then, and lose
//                  them when they are unloaded; the window's text is the caption
//
// A control asked to stand in front (ZOrder) goes to the top of its container's windows; one
// asked for the focus (SetFocus) takes the keyboard focus.
//
// Found from outside: every child's window text is its system name ("TvDesktop", "CmdMenu(2)"),
// except where the window shows its text or stands for it (the buttons show their captions, a
// graphical option button draws its caption and carries it as its text); the system name is
// also given as its accessible name where the platform takes such annotations. The top-level
// window answers the registered message "Quorvane.FindControl" (wParam: a global atom of the
// system name) with the control's window, 0 if there is none.
//
// FormWindow.cpp holds the form's own window, its shows and its events; FormControls.cpp the
// records of the controls and their windows.
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/ListControls.h"
#include "ui/StripControls.h"
#include "ui/win32/BindingParts.h"
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

// The kinds of control, each shown by one kind of window.
enum class Kind {
  Plain, Picture, Label, Frame, Tree, Check, Option, Command, Slider, Spin, Combo,
  // The thumbnail strip's kinds (StripBinding.cpp).
  Scroll, Progress, PictureOption,
  // The collection editor's kinds (ListBinding.cpp).
  List, Text,
};
Kind KindOf(Control& control);

class FormWindow;
struct BoundImageList;

// What the tree view shows of a node, as last given to it.
struct NodeMirror {
  std::string text;
  std::int16_t image = 0;
  std::int16_t selectedImage = 0;
  bool bold = false;
  bool checked = false;
  bool expanded = false;
};

// A control of the form and the windows that show it.
struct BoundControl {
  explicit BoundControl(Kind what) : kind(what) {}

  const Kind kind;
  FormWindow* binding = nullptr;
  Control* control = nullptr;
  HWND window = nullptr;  // the control's own window: for a spin edit, the one holding both parts
  HWND edit = nullptr;    // spin edits: the edit and the up-down
  HWND upDown = nullptr;
  bool showsCaption = false;  // the window's text is the control's caption
  bool pressed = false;       // the left button went down on the window and has not come up yet
  bool typing = false;        // spin edits: the value is being set from what the user typed
  bool inPaint = false;       // picture boxes: the box's own Paint routine is running
  // Picture boxes: whether the persistent image is shown rather than the Picture.
  bool showsDrawn = false;
  // Tree views: one item per node, by position from 1, and what each shows.
  std::vector<HTREEITEM> items;
  std::vector<NodeMirror> mirror;
  bool hasLines = false;
  POINT lastPress{-1, -1};  // where the last button went down, in the tree's client pixels
  BoundImageList* images = nullptr;
  bool statePending = false;
};

// An image list of the model as the tree views show it.
struct BoundImageList {
  ImageList* model = nullptr;
  UniqueImageList list;
  int width = 0;
  int height = 0;
  std::int32_t count = 0;  // images in the real list, the model's first `count`
};

class FormWindow final : private ControlObserver, private FormObserver {
 public:
  FormWindow(Form& form, HINSTANCE instance, FormWindowOptions options = {});
  // Destroys the windows, nothing called back, and stops watching the form and its controls.
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // The top-level window's class for a form: "Quorvane" and its name without "Frm".
  static std::string ClassNameFor(const Form& form);

  // Makes the top-level window, owned by `owner`, and every control's window, all hidden at
  // first but for the controls that are visible in a hidden top-level window. Throws
  // std::runtime_error when the system refuses a window; a second call does nothing.
  void Create(HWND owner = nullptr);
  bool IsCreated() const { return window_ != nullptr; }

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
  // Stops observing the form and its controls and forgets their windows; for good.
  void DetachFromModel();
  // Brings the tree views' node states (text, images, bold, ticks, expansion, selection) up to
  // the model now; otherwise they follow once the program reaches its message loop. Done too
  // before a control is looked up from outside, so that whoever looks sees the windows as the
  // model has them.
  void Flush();

  // Runs `handler` when the top-level window receives the registered message `name`, from this
  // process or another one.
  void OnRegisteredMessage(const char* name, std::function<void()> handler);

  // The form's top-level window; 0 before it is made and once it is gone.
  HWND Handle() const { return window_; }
  // The window of a control of the form; 0 for a control without one.
  HWND WindowOf(const Control& control) const;
  // The window of the control of that system name ("Name" or "Name(i)"); 0 if none.
  HWND Find(std::string_view systemName) const;
  // The form the binding shows.
  Form& BoundForm() const { return form_; }

 private:
  // --- the form's own window (FormWindow.cpp) -------------------------------------------------
  void RegisterClasses();
  TopWindow TopWindowFor(HWND owner) const;
  void RequestUnload(std::int16_t mode);
  void Activated();
  bool ShowsHourglass() const;

  // FormObserver
  void VisibleChanged(Form& form) override;
  void Unloaded(Form& form) override;
  // Elements loaded and unloaded while the program runs (StripBinding.cpp).
  void ControlLoaded(Form& form, Control& control) override;
  void ControlGoing(Form& form, Control& control) override;

  // --- the strip's kinds (StripBinding.cpp) ---------------------------------------------------
  void MakeStripWindow(BoundControl& bound);
  void ApplyStripValue(BoundControl& bound);
  void PaintPictureOption(BoundControl& bound, HDC dc);
  // A scroll bar's WM_VSCROLL, from the code of its move.
  void Scrolled(BoundControl& bound, WPARAM wParam);
  // Report lists and text boxes (ListBinding.cpp).
  void MakeListWindow(BoundControl& bound);
  void ApplyListItems(BoundControl& bound);
  void ApplyListStates(BoundControl& bound);
  void ListNotification(BoundControl& bound, const NMHDR& header, LPARAM lParam);
  void ListKeyUp(BoundControl& bound);
  void MakeTextWindow(BoundControl& bound);
  void ApplyText(BoundControl& bound);
  void TextEdited(BoundControl& bound);
  // A tip window for a control with a ToolTipText, owned by the form's window.
  void GiveToolTip(BoundControl& bound);
  // Caption widths measured in the captions' face, for the model.
  static void InstallCaptionMeasure();

  // Messages of the top-level window and of the program's own control classes, once what
  // every window does alike is done.
  LRESULT TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT PartMessage(BoundControl& bound, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam);
  // The system's controls: their mouse events.
  static LRESULT CALLBACK SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam, UINT_PTR id, DWORD_PTR data);
  bool Mouse(Control* control, bool& pressed, HWND window, UINT message, WPARAM wParam,
             LPARAM lParam);
  // A control's notification code of WM_COMMAND (BN_CLICKED, EN_CHANGE…), unless the binding's
  // own change of the window caused it: the buttons' clicks and a spin edit's edit.
  void Command(BoundControl& sender, UINT code);
  // Another message a control's window sends its parent about itself: a slider's move, the
  // colours behind the system's controls. False leaves it to the parent's own handling.
  bool ControlMessage(BoundControl& sender, UINT message, WPARAM wParam, LRESULT& result);
  // A button's click: what the user ticked in the trees first, then the button's routine.
  void Clicked(BoundControl& bound);
  void SpinEdited(BoundControl& bound);

  // Makes the windows of a new record, its container's made already.
  void MakeWindow(BoundControl& bound);
  // How a change of the model shows on a control's windows.
  // Labels, frames and picture boxes are drawn again; the system's controls draw themselves.
  void ApplyEnabled(BoundControl& bound);
  // `which`: Picture, or Image for what was drawn on a picture box's surface.
  void ApplyPicture(BoundControl& bound, Property which);
  void ApplyValue(BoundControl& bound);
  // A drop-down list's entries and choice.
  void ApplyList(BoundControl& bound);
  // A timer of the form started anew, or stopped, as its Enabled and Interval are.
  void ApplyTimer(const Timer& timer);
  // A key of a modal form's loop shown to the form first, when it previews keys; true when the
  // form took the key, or is gone.
  bool PreviewKey(const MSG& message);
  // The same for a key that a yield takes while a routine runs (the message preview the event
  // loop asks): the form whose window the key is for sees it first when it previews keys.
  static bool PreviewYieldedKey(const MSG& message);
  // The bindings that have a form's windows now, for the preview of keys taken by a yield.
  static std::vector<FormWindow*>& LiveBindings();
  // The colour of the form's own surface.
  std::uint32_t FormFace() const;
  // Only a window on the screen; one that comes is painted whole.
  void Repaint(BoundControl& bound);

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
  void ApplyNodes(BoundControl& bound);
  void InsertNode(BoundControl& bound, std::int32_t position);
  // Expansion and selection follow once the program reaches its message loop, or at Flush; the
  // ticks of a tree with tick boxes follow at once.
  void ApplyNodeStates(BoundControl& bound);
  void SyncNodeStates(BoundControl& bound);
  // The tree's image list was changed or replaced.
  void ApplyImages(BoundControl& bound);
  void ImagesChanged(BoundImageList& list);
  // A notification (WM_NOTIFY) of a tree view of the form.
  void TreeNotification(BoundControl& bound, const NMHDR& header, LPARAM lParam);
  // Takes the tick boxes as the user left them into the nodes' Checked.
  void PullChecks(BoundControl& bound);
  void PullAllChecks();

  // --- the records of the controls (FormControls.cpp) -----------------------------------------
  // ControlObserver: passes each change of the model that concerns a window on to the Apply
  // routines.
  void Changed(Control& control, Property property) override;

  // The window procedures of the form's top-level window and of the program's own control
  // classes.
  static LRESULT CALLBACK TopProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK PartProcedure(HWND window, UINT message, WPARAM wParam,
                                        LPARAM lParam);
  // What every top-level window does alike: it answers the find message, passes on what its
  // controls tell it, and lets go of the binding when it is destroyed.
  LRESULT CommonTopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  // What every window of the program's own control classes does alike: it passes on what its
  // controls tell it, is never erased (its painting covers it), passes the focus on to a spin
  // edit's edit, and lets go of its record when it is destroyed.
  LRESULT CommonPartMessage(BoundControl& bound, HWND window, UINT message, WPARAM wParam,
                            LPARAM lParam);
  // Passes what a control's window tells its parent to TreeNotification, Command or
  // ControlMessage. False for any other message.
  bool ControlNotification(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
  LRESULT AnswerFind(WPARAM atom) const;

  // Before the windows: the common controls of `commonControlClasses`, the find message, the
  // accessible names' service and the captions' face.
  void Prepare(DWORD commonControlClasses);
  // Binds every control (containers before what stands in them) and watches them all.
  void BindAll(const std::vector<Control*>& controls);
  BoundControl& Bind(Control& control);
  BoundControl* RecordOf(const Control& control) const;
  // The record of the control one of whose windows this is; null for another window.
  BoundControl* RecordAt(HWND window) const;
  HWND ParentOf(const Control& control) const;

  // Makes the form's top-level window, which leads to this binding. Throws
  // SystemFailure(`refusal`) when the system refuses it.
  HWND MakeTopWindow(const TopWindow& wanted, const char* refusal);
  // Makes the control's own window as `wanted`, gives it its accessible name and records it.
  // Throws SystemFailure when the system refuses it.
  HWND MakeChild(BoundControl& bound, const ChildWindow& wanted);
  // A push button, check box or radio button (`buttonStyle`) that shows the control's caption
  // in the captions' face.
  void MakeButton(BoundControl& bound, DWORD buttonStyle);
  // A spin edit: a window of the program's own `className` holding an edit and an up-down, the
  // arrows at the right.
  void MakeSpinEdit(BoundControl& bound, const char* className);
  void MakeSpinParts(BoundControl& bound);
  // A window of a record is being destroyed; its record lets go of it.
  void Forget(HWND window);

  // Moves the control's window to its container's window and its place.
  void Place(BoundControl& bound);
  void PlaceSpinParts(BoundControl& bound, int width, int height);
  // Shows or hides the control's window as the control is.
  void ApplyVisible(const BoundControl& bound);
  // A window that shows the caption takes the new one; then the windows are drawn again.
  void ApplyCaption(BoundControl& bound);
  void EnableWindows(const BoundControl& bound);
  // The control was given the focus in the model: its window takes the keyboard focus.
  void ApplyFocus(const BoundControl& bound);
  HFONT CaptionFont() const { return font_.Get(); }
  void UseCaptionFont(HWND window) const;
  HBRUSH BrushOf(std::uint32_t color);

  // Runs a handler of the model through ui::RunEvent, with the form.
  void Run(const std::function<void()>& handler);

  // Set while the binding itself changes a window, so that the window's notifications of that
  // change are not taken for the user's.
  class Applying {
   public:
    explicit Applying(FormWindow& binding) : counter_(binding.applying_) { ++counter_; }
    ~Applying() { --counter_; }
    Applying(const Applying&) = delete;
    Applying& operator=(const Applying&) = delete;

   private:
    int& counter_;
  };
  bool IsApplying() const { return applying_ != 0; }

  // Tree views.
  // Deletes every item of the tree.
  void ClearTree(BoundControl& bound);
  // Takes the nodes the tree's last Remove took away out of the tree view; false when the
  // items don't match that removal, and the tree must be shown anew.
  bool RemoveTreeItems(BoundControl& bound);
  // Adds the item of the next node, `node`, under its parent's item: `item` says what it shows
  // besides its text.
  void AddTreeItem(BoundControl& bound, const Node& node, TVITEMA item);
  // The tree's selection moved to the model's selected node, or to none.
  void ShowSelectedNode(const BoundControl& bound, std::int32_t selected);
  // The position of the node an item shows; 0 for no item of the tree.
  std::int32_t PositionOfItem(const BoundControl& bound, HTREEITEM item) const;
  // The node the tree view found at a point (by TVM_HITTEST), selected in the model.
  void SelectNodeHit(BoundControl& bound, const TVHITTESTINFO& hit);
  // A change of the tree view's selection (TVN_SELCHANGED) taken into the model when the user
  // made it. Gives the change's action: TVC_BYMOUSE, TVC_BYKEYBOARD, or TVC_UNKNOWN for one
  // the binding made.
  UINT FollowTreeSelection(BoundControl& bound, LPARAM lParam);
  // How many of the tree's nodes have an item: fewer than it has while items are still added.
  static std::size_t NodesShown(const BoundControl& bound, const TreeView& tree);

  // Spin edits: the number in the edit; false for text that is no whole number.
  static bool ReadSpinNumber(const BoundControl& bound, std::int32_t& value);

  Form& form_;
  HINSTANCE instance_;
  FormWindowOptions options_;
  HWND window_ = nullptr;
  HWND owner_ = nullptr;
  UINT findMessage_ = 0;
  UINT syncMessage_ = 0;
  UINT pullMessage_ = 0;
  int applying_ = 0;
  bool syncPosted_ = false;
  bool formPressed_ = false;
  bool activated_ = false;
  bool modal_ = false;
  bool destroying_ = false;
  bool detached_ = false;  // the model's objects no longer observed nor touched
  UniqueFont font_;
  std::map<std::uint32_t, UniqueBrush> brushes_;
  AccessibleNames accessibleNames_;
  std::vector<std::unique_ptr<BoundControl>> records_;
  std::unordered_map<const Control*, BoundControl*> byControl_;
  std::unordered_map<HWND, BoundControl*> byWindow_;
  // The labels' other faces of "Verdana", by size, weight and underline, made on first use.
  std::map<std::uint32_t, UniqueFont> labelFonts_;
  std::vector<std::unique_ptr<BoundImageList>> imageLists_;
  std::vector<BoundControl*> pendingStates_;
  std::vector<std::pair<UINT, std::function<void()>>> registeredHandlers_;
};

}  // namespace quorvane::ui::win32
