#include "ui/win32/FormWindow.h"

#include <windows.h>
#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "platform/win32/Handles.h"
#include "platform/win32/Win32Application.h"
#include "platform/win32/Win32EventLoop.h"
#include "platform/MemorySurface.h"
#include "ui/win32/PixelDrawing.h"

namespace quorvane::ui::win32 {

namespace {

// The layout is in pixels at 96 to the inch whatever the screen's setting, so a slider's thumb is
// kept at the length it has there: at a larger setting the system's longer thumb would leave no
// room in the design's height for the tick marks.
void KeepThumbAt96(HWND slider) {
  const platform::win32::WindowDC screen;
  const int dpi = screen ? ::GetDeviceCaps(screen.Get(), LOGPIXELSY) : 96;
  if (dpi <= 96) return;
  const auto length = static_cast<int>(::SendMessageA(slider, TBM_GETTHUMBLENGTH, 0, 0));
  ::SendMessageA(slider, TBM_SETTHUMBLENGTH, static_cast<WPARAM>(::MulDiv(length, 96, dpi)), 0);
}

const char* const kPictureClass = "QuorvanePicture";
const char* const kLabelClass = "QuorvaneLabel";
const char* const kFrameClass = "QuorvaneFrame";
const char* const kSpinClass = "QuorvaneSpinEdit";
constexpr const char* kSyncMessage = "Quorvane.SyncNodes";
// Posted after a click or a key on a tree's tick box, which the tree view turns over only once
// it has told its parent.
constexpr const char* kPullChecksMessage = "Quorvane.PullChecks";
// The hourglass of the system's pointers.
const char* const kHourglass = MAKEINTRESOURCEA(32514);

// State images of a tree with tick boxes: 1 unticked, 2 ticked.
constexpr UINT kUnticked = 1u << 12;
constexpr UINT kTicked = 2u << 12;

// The design names its spin edits "Txt…" and "Cbo…"; every other value control is a slider.
bool IsSpinEdit(const std::string& name) {
  return name.rfind("Txt", 0) == 0 || name.rfind("Cbo", 0) == 0;
}


// The windows of the program's own classes; the rest are the system's controls.
bool IsOwnClass(Kind kind) {
  return kind == Kind::Plain || kind == Kind::Picture || kind == Kind::Label ||
         kind == Kind::Frame || kind == Kind::Spin || kind == Kind::PictureOption;
}

// Model button and shift values: left 1, right 2, middle 4; shift 1, control 2, alt 4.
std::int16_t ButtonsOf(WPARAM keys) {
  return static_cast<std::int16_t>(((keys & MK_LBUTTON) != 0 ? 1 : 0) |
                                   ((keys & MK_RBUTTON) != 0 ? 2 : 0) |
                                   ((keys & MK_MBUTTON) != 0 ? 4 : 0));
}

std::int16_t ShiftOf(WPARAM keys) {
  return static_cast<std::int16_t>(((keys & MK_SHIFT) != 0 ? 1 : 0) |
                                   ((keys & MK_CONTROL) != 0 ? 2 : 0) |
                                   (::GetKeyState(VK_MENU) < 0 ? 4 : 0));
}

float TwipsOf(int pixels) { return static_cast<float>(pixels * kTwipsPerPixel); }

// Image numbers count from 1; 0 is no image.
int ImageIndexOf(std::int16_t number) { return number >= 1 ? number - 1 : I_IMAGENONE; }

// Paints a window through a bitmap of its size, so that what it shows never flickers.
template <class Painter>
void PaintBuffered(HWND window, Painter&& paint) {
  PAINTSTRUCT ps{};
  HDC dc = ::BeginPaint(window, &ps);
  RECT area{};
  ::GetClientRect(window, &area);
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  UniqueMemoryDC memory(width > 0 && height > 0 ? ::CreateCompatibleDC(dc) : nullptr);
  UniqueBitmap bitmap(memory ? ::CreateCompatibleBitmap(dc, width, height) : nullptr);
  if (memory && bitmap) {
    HGDIOBJ previous = ::SelectObject(memory.Get(), bitmap.Get());
    paint(memory.Get());
    ::BitBlt(dc, 0, 0, width, height, memory.Get(), 0, 0, SRCCOPY);
    ::SelectObject(memory.Get(), previous);
  } else if (width > 0 && height > 0) {
    paint(dc);
  }
  ::EndPaint(window, &ps);
}

// A picture box with a Paint routine of its own draws on its surface when its window is drawn;
// what it drew is what the window then shows. A yield inside the routine that comes back to the
// same window draws what is there and does not run the routine again.
void RunPaintRoutine(Form& form, BoundControl& bound) {
  auto* box = dynamic_cast<PictureBox*>(bound.control);
  if (box == nullptr || !box->Paint || bound.inPaint) return;
  bound.inPaint = true;
  RunEvent(form, box->Paint);
  bound.inPaint = false;
  bound.showsDrawn = true;
  // A yield inside the routine may have drawn the window already, with what was there then:
  // the whole of it, and what stands in it, is drawn again with what the routine drew.
  ::RedrawWindow(bound.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

// The window's container draws itself into `dc`, moved so that its point under the window's
// corner lands at (0, 0).
void PrintParent(HWND window, HDC dc) {
  HWND parent = ::GetParent(window);
  POINT corner{0, 0};
  ::MapWindowPoints(window, parent, &corner, 1);
  POINT previous{};
  ::SetViewportOrgEx(dc, -corner.x, -corner.y, &previous);
  ::SendMessageA(parent, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
  ::SetViewportOrgEx(dc, previous.x, previous.y, nullptr);
}

}  // namespace

Kind KindOf(Control& control) {
  if (dynamic_cast<ListView*>(&control) != nullptr) return Kind::List;
  if (dynamic_cast<TextBox*>(&control) != nullptr) return Kind::Text;
  if (dynamic_cast<GraphicalOptionButton*>(&control) != nullptr) return Kind::PictureOption;
  if (dynamic_cast<ScrollBar*>(&control) != nullptr) return Kind::Scroll;
  if (dynamic_cast<ProgressBar*>(&control) != nullptr) return Kind::Progress;
  if (dynamic_cast<TreeView*>(&control) != nullptr) return Kind::Tree;
  if (dynamic_cast<PictureBox*>(&control) != nullptr) return Kind::Picture;
  if (dynamic_cast<Label*>(&control) != nullptr) return Kind::Label;
  if (dynamic_cast<Frame*>(&control) != nullptr) return Kind::Frame;
  if (dynamic_cast<CheckBox*>(&control) != nullptr) return Kind::Check;
  if (dynamic_cast<OptionButton*>(&control) != nullptr) return Kind::Option;
  if (dynamic_cast<CommandButton*>(&control) != nullptr) return Kind::Command;
  if (dynamic_cast<ComboBox*>(&control) != nullptr) return Kind::Combo;
  if (dynamic_cast<ValueControl*>(&control) != nullptr) {
    return IsSpinEdit(control.Name()) ? Kind::Spin : Kind::Slider;
  }
  return Kind::Plain;
}

FormWindow::FormWindow(Form& form, HINSTANCE instance, FormWindowOptions options)
    : form_(form), instance_(instance), options_(options) {
  LiveBindings().push_back(this);
  platform::win32::SetMessagePreview(&FormWindow::PreviewYieldedKey);
}

FormWindow::~FormWindow() {
  // The program's own objects may be gone already: nothing is called back while the windows go.
  options_.quitWhenGone = false;
  if (!detached_) {
    form_.Observe(nullptr);
    for (Timer* timer : form_.Timers()) timer->Observe(nullptr);
  }
  destroying_ = true;
  Destroy();
  DetachFromModel();
  auto& live = LiveBindings();
  live.erase(std::remove(live.begin(), live.end(), this), live.end());
}

void FormWindow::DetachFromModel() {
  if (detached_) return;
  detached_ = true;
  form_.Observe(nullptr);
  for (Timer* timer : form_.Timers()) timer->Observe(nullptr);
  for (auto& list : imageLists_) list->model->Observe(nullptr);
  for (const auto& record : records_) {
    record->control->Observe(nullptr);
    record->control->hWnd = 0;
  }
}

std::string FormWindow::ClassNameFor(const Form& form) {
  const std::string& name = form.Name();
  return "Quorvane" + (name.rfind("Frm", 0) == 0 ? name.substr(3) : name);
}

void FormWindow::OnRegisteredMessage(const char* name, std::function<void()> handler) {
  const UINT message = ::RegisterWindowMessageA(name);
  if (message != 0) registeredHandlers_.emplace_back(message, std::move(handler));
}

void FormWindow::RegisterClasses() {
  const std::string top = ClassNameFor(form_);
  RegisterWindowClass(instance_,
                      {.name = top.c_str(),
                       .procedure = &FormWindow::TopProcedure,
                       .style = CS_DBLCLKS,
                       .background = ::GetSysColorBrush(COLOR_BTNFACE),
                       .icon = options_.icon,
                       .smallIcon = options_.smallIcon},
                      "A form's class was refused");
  for (const char* name : {kPictureClass, kLabelClass, kFrameClass, kSpinClass}) {
    RegisterWindowClass(instance_,
                        {.name = name,
                         .procedure = &FormWindow::PartProcedure,
                         .style = CS_DBLCLKS},
                        "A control's class was refused");
  }
}

TopWindow FormWindow::TopWindowFor(HWND owner) const {
  DWORD style = WS_POPUP | WS_CLIPCHILDREN;
  DWORD extended = 0;
  switch (form_.Border) {
    case BorderStyle::None:
      style |= WS_SYSMENU | WS_MINIMIZEBOX;
      extended = WS_EX_APPWINDOW;
      break;
    case BorderStyle::FixedSingle:
      style |= WS_CAPTION | WS_SYSMENU;
      extended = WS_EX_CONTROLPARENT;
      break;
    case BorderStyle::FixedDialog:
      style |= WS_CAPTION | WS_SYSMENU;
      extended = WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT;
      break;
    case BorderStyle::FixedToolWindow:
      style = WS_POPUP | WS_BORDER | (form_.Caption.empty() ? 0 : WS_CAPTION | WS_SYSMENU);
      extended = WS_EX_TOOLWINDOW;
      break;
  }
  RECT frame{0, 0, ToPixels(form_.Width), ToPixels(form_.Height)};
  if (form_.WindowState == kMaximizedWindow) {
    // Over the whole screen, its inside the screen's size.
    frame = RECT{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
    if (form_.Border != BorderStyle::None) ::AdjustWindowRectEx(&frame, style, FALSE, extended);
    return TopWindow{.className = nullptr,
                     .caption = nullptr,
                     .style = style,
                     .extendedStyle = extended,
                     .frame = frame,
                     .owner = owner};
  }
  if (form_.Border != BorderStyle::None) ::AdjustWindowRectEx(&frame, style, FALSE, extended);
  const int width = frame.right - frame.left;
  const int height = frame.bottom - frame.top;
  RECT over{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
  if (owner != nullptr && ::IsWindowVisible(owner) != 0) ::GetWindowRect(owner, &over);
  int left = static_cast<int>((over.left + over.right - width) / 2);
  int top = static_cast<int>((over.top + over.bottom - height) / 2);
  // A dialog stays on the screen whatever its owner does.
  if (form_.Border == BorderStyle::FixedDialog) {
    left = std::max(0, left);
    top = std::max(0, top);
  }
  return TopWindow{.className = nullptr,
                   .caption = nullptr,
                   .style = style,
                   .extendedStyle = extended,
                   .frame = {left, top, left + width, top + height},
                   .owner = owner};
}

void FormWindow::Create(HWND owner) {
  if (Handle() != nullptr) return;
  owner_ = owner;
  destroying_ = false;
  Prepare(ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES | ICC_UPDOWN_CLASS | ICC_STANDARD_CLASSES |
          ICC_WIN95_CLASSES);
  RegisterClasses();
  syncMessage_ = ::RegisterWindowMessageA(kSyncMessage);
  pullMessage_ = ::RegisterWindowMessageA(kPullChecksMessage);

  const std::string className = ClassNameFor(form_);
  // A window without a caption carries the form's system name, by which it is found.
  const std::string& text = form_.Caption.empty() ? form_.Name() : form_.Caption;
  TopWindow wanted = TopWindowFor(owner);
  wanted.className = className.c_str();
  wanted.caption = text.c_str();
  HWND window = MakeTopWindow(wanted, ("The window of " + form_.Name() + " was refused").c_str());
  if (options_.icon != nullptr) {
    ::SendMessageA(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(options_.icon));
    ::SendMessageA(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(options_.smallIcon));
  }
  form_.hWnd = ToHandleValue(window);
  form_.Icon = ToHandleValue(options_.icon);
  if (form_.WindowState == kMaximizedWindow) {
    RECT inside{};
    ::GetClientRect(window, &inside);
    form_.Width = (inside.right - inside.left) * kTwipsPerPixel;
    form_.Height = (inside.bottom - inside.top) * kTwipsPerPixel;
  }
  form_.Observe(this);

  std::vector<Control*> windowed;
  for (Control* control : form_.Controls()) {
    if (dynamic_cast<Timer*>(control) == nullptr) windowed.push_back(control);
  }
  BindAll(windowed);
  Flush();
  // The form's timers run on the window from its creation to its end.
  const std::vector<Timer*> timers = form_.Timers();
  for (std::size_t i = 0; i < timers.size(); ++i) {
    if (timers[i]->Enabled() && timers[i]->Interval > 0) {
      ::SetTimer(window, i + 1, static_cast<UINT>(timers[i]->Interval), nullptr);
    }
    timers[i]->Observe(this);
  }
}

void FormWindow::ApplyTimer(const Timer& timer) {
  if (Handle() == nullptr) return;
  const std::vector<Timer*> timers = form_.Timers();
  for (std::size_t i = 0; i < timers.size(); ++i) {
    if (timers[i] != &timer) continue;
    ::KillTimer(Handle(), i + 1);
    if (timer.Enabled() && timer.Interval > 0) {
      ::SetTimer(Handle(), i + 1, static_cast<UINT>(timer.Interval), nullptr);
    }
  }
}

bool FormWindow::PreviewKey(const MSG& message) {
  if (!form_.KeyPreview || (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN)) {
    return false;
  }
  if (message.hwnd != Handle() && ::IsChild(Handle(), message.hwnd) == 0) return false;
  auto key = static_cast<std::int16_t>(message.wParam);
  const auto shift = static_cast<std::int16_t>((::GetKeyState(VK_SHIFT) < 0 ? 1 : 0) |
                                               (::GetKeyState(VK_CONTROL) < 0 ? 2 : 0) |
                                               (::GetKeyState(VK_MENU) < 0 ? 4 : 0));
  Run([&] { form_.Form_KeyDown(key, shift); });
  return key == 0 || !form_.Loaded() || Handle() == nullptr;
}

std::vector<FormWindow*>& FormWindow::LiveBindings() {
  static std::vector<FormWindow*> live;
  return live;
}

bool FormWindow::PreviewYieldedKey(const MSG& message) {
  if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN) return false;
  for (FormWindow* binding : LiveBindings()) {
    const HWND top = binding->Handle();
    if (top == nullptr || !binding->form_.KeyPreview) continue;
    if (message.hwnd != top && ::IsChild(top, message.hwnd) == 0) continue;
    return binding->PreviewKey(message);
  }
  return false;
}

std::uint32_t FormWindow::FormFace() const {
  // The system's colours are named as 0x80000000 and the colour's number.
  if ((form_.BackColor & 0x80000000u) != 0) {
    return ::GetSysColor(static_cast<int>(form_.BackColor & 0xFFu));
  }
  return form_.BackColor & 0xFFFFFFu;
}

void FormWindow::MakeWindow(BoundControl& record) {
  BoundControl& bound = record;
  Control& control = *bound.control;
  // A picture box draws on a memory image of its size; the window shows that image.
  if (auto* box = dynamic_cast<PictureBox*>(&control)) {
    box->UseSurface(std::make_shared<platform::MemorySurface>());
  }
  switch (bound.kind) {
    case Kind::Plain:
    case Kind::Picture:
      // Its controls are its children, reached with the keyboard as the form's own.
      MakeChild(bound, {.className = kPictureClass, .style = WS_CLIPCHILDREN,
                        .extendedStyle = WS_EX_CONTROLPARENT, .ownClass = true});
      break;
    case Kind::Frame:
      MakeChild(bound, {.className = kFrameClass, .style = WS_CLIPCHILDREN,
                        .extendedStyle = WS_EX_CONTROLPARENT, .ownClass = true});
      break;
    case Kind::Label:
      MakeChild(bound, {.className = kLabelClass, .ownClass = true});
      break;
    case Kind::Tree: {
      MakeChild(bound, {.className = WC_TREEVIEWA, .style = WS_TABSTOP | TVS_SHOWSELALWAYS,
                        .extendedStyle = WS_EX_CLIENTEDGE});
      if (static_cast<TreeView&>(control).Checkboxes) {
        // Tick boxes are asked for once the tree view exists, before it holds items.
        ::SetWindowLongPtrA(bound.window, GWL_STYLE,
                            ::GetWindowLongPtrA(bound.window, GWL_STYLE) | TVS_CHECKBOXES);
      }
      UseCaptionFont(bound.window);
      break;
    }
    case Kind::Check:
      MakeButton(bound, BS_3STATE);
      break;
    case Kind::Option:
      MakeButton(bound, BS_RADIOBUTTON);
      break;
    case Kind::Command:
      MakeButton(bound, BS_PUSHBUTTON);
      break;
    case Kind::Slider:
      MakeChild(bound, {.className = TRACKBAR_CLASSA,
                        .style = WS_TABSTOP | TBS_HORZ | TBS_AUTOTICKS | TBS_FIXEDLENGTH});
      UseCaptionFont(bound.window);
      KeepThumbAt96(bound.window);
      break;
    case Kind::Spin:
      MakeSpinEdit(bound, kSpinClass);
      break;
    case Kind::Combo:
      MakeChild(bound, {.className = WC_COMBOBOXA,
                        .style = WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST});
      UseCaptionFont(bound.window);
      Place(bound);
      break;
    case Kind::PictureOption:
      // Its text is its caption, as a button's is, though the caption is drawn.
      MakeChild(bound, {.className = kPictureClass, .showsCaption = true, .ownClass = true});
      break;
    case Kind::Scroll:
    case Kind::Progress:
      MakeStripWindow(bound);
      break;
    case Kind::List:
      MakeListWindow(bound);
      break;
    case Kind::Text:
      MakeTextWindow(bound);
      break;
  }
  // The system's controls tell the form about the mouse as the program's own windows do.
  if (!IsOwnClass(bound.kind)) {
    ::SetWindowSubclass(bound.window, &FormWindow::SubclassProcedure, 1,
                        reinterpret_cast<DWORD_PTR>(&bound));
  }
  if (bound.kind == Kind::Tree) {
    ApplyImages(bound);
    ApplyNodes(bound);
  }
  if (!control.ToolTipText.empty()) GiveToolTip(bound);
  ApplyValue(bound);
  ApplyEnabled(bound);
}

void FormWindow::Activated() {
  activated_ = true;
  Run([this] { form_.Form_Activate(); });
}

void FormWindow::Show(HWND owner) {
  Create(owner);
  if (!form_.Loaded()) Run([this] { form_.Load(); });
  if (!form_.Loaded() || Handle() == nullptr) return;
  Flush();
  // Shown over its owner, the form leaves the owner active.
  ::ShowWindow(Handle(), owner_ != nullptr ? SW_SHOWNOACTIVATE : SW_SHOW);
  form_.Visible(true);
  ::RedrawWindow(Handle(), nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
  // Shown without taking the activation: the form is active in the program all the same.
  if (!activated_) Activated();
}

void FormWindow::ShowModal(HWND owner) {
  modal_ = true;
  Create(owner);
  if (!form_.Loaded()) Run([this] { form_.Load(); });
  const bool ownerWasEnabled = owner != nullptr && ::IsWindowEnabled(owner) != 0;
  if (owner != nullptr) ::EnableWindow(owner, FALSE);
  if (form_.Loaded() && Handle() != nullptr) {
    Flush();
    ::ShowWindow(Handle(), SW_SHOW);
    form_.Visible(true);
    ::UpdateWindow(Handle());
    // Shown without taking the activation (another program is in front): the form is active in
    // the program all the same.
    if (!activated_) Activated();
  }
  MSG message{};
  while (form_.Loaded() && Handle() != nullptr) {
    const BOOL result = ::GetMessageA(&message, nullptr, 0, 0);
    if (result == 0) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    if (result == -1) break;
    if (Handle() != nullptr && PreviewKey(message)) continue;
    if (Handle() != nullptr && ::IsDialogMessageA(Handle(), &message) != 0) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
  // The owner comes back before the window goes, so that it takes the activation.
  if (ownerWasEnabled) ::EnableWindow(owner, TRUE);
  if (Handle() != nullptr) ::DestroyWindow(Handle());
  if (ownerWasEnabled && ::IsWindowVisible(owner) != 0) ::SetActiveWindow(owner);
  modal_ = false;
}

void FormWindow::Hide() {
  if (Handle() != nullptr) ::ShowWindow(Handle(), SW_HIDE);
  form_.Visible(false);
}

void FormWindow::Destroy() {
  if (Handle() != nullptr) ::DestroyWindow(Handle());
}

void FormWindow::VisibleChanged(Form& /*form*/) {
  if (Handle() == nullptr || destroying_) return;
  const bool shown = ::IsWindowVisible(Handle()) != 0;
  if (form_.Visible() && !shown) {
    ::ShowWindow(Handle(), SW_SHOW);
  } else if (!form_.Visible() && shown) {
    ::ShowWindow(Handle(), SW_HIDE);
  }
}

void FormWindow::Unloaded(Form& /*form*/) {
  if (Handle() == nullptr || destroying_) return;
  if (modal_) {
    // The modal loop looks at the form after each message; this one makes sure one comes.
    ::PostMessageA(Handle(), WM_NULL, 0, 0);
    return;
  }
  Hide();
  Destroy();
  // A modeless form that unloads itself may be gone before this binding is: from here on the
  // binding holds nothing of it, and its end touches nothing of the form's.
  DetachFromModel();
}

void FormWindow::RequestUnload(std::int16_t mode) {
  // The form unloads unless its events cancel; only the end of the session is not asked to.
  Run([&] { form_.QueryAndUnload(mode); });
}

bool FormWindow::ShowsHourglass() const {
  if (form_.MousePointer == kHourglassPointer) return true;
  return options_.followsApplicationPointer &&
         platform::win32::MainWindowPointer() == platform::kHourglassPointer;
}

// --- the model's changes ----------------------------------------------------------------------

void FormWindow::ApplyEnabled(BoundControl& record) {
  BoundControl& bound = record;
  EnableWindows(bound);
  if (bound.kind == Kind::Label || bound.kind == Kind::Picture || bound.kind == Kind::Frame) {
    Repaint(bound);
  }
}

void FormWindow::ApplyPicture(BoundControl& record, Property which) {
  BoundControl& bound = record;
  bound.showsDrawn = which == Property::Image;
  Repaint(bound);
}

void FormWindow::Repaint(BoundControl& bound) {
  // A window that is not on the screen is painted whole when it comes; until then there is
  // nothing to draw again. (While the form loads hidden, that saves a request per change.)
  if (::IsWindowVisible(bound.window) == 0) return;
  // The labels standing in a picture box show it through them: they are drawn again with it.
  ::RedrawWindow(bound.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void FormWindow::ApplyValue(BoundControl& record) {
  BoundControl& bound = record;
  Applying applying(*this);
  switch (bound.kind) {
    case Kind::Check: {
      const std::int16_t value = static_cast<CheckBox&>(*bound.control).Value();
      ::SendMessageA(bound.window, BM_SETCHECK,
                     value == 1   ? BST_CHECKED
                     : value == 0 ? BST_UNCHECKED
                                  : BST_INDETERMINATE,
                     0);
      break;
    }
    case Kind::Option:
      ::SendMessageA(bound.window, BM_SETCHECK,
                     static_cast<OptionButton&>(*bound.control).Value() ? BST_CHECKED
                                                                        : BST_UNCHECKED,
                     0);
      break;
    case Kind::Slider: {
      const auto& slider = static_cast<ValueControl&>(*bound.control);
      if (::SendMessageA(bound.window, TBM_GETRANGEMIN, 0, 0) != slider.Min) {
        ::SendMessageA(bound.window, TBM_SETRANGEMIN, FALSE, slider.Min);
      }
      if (::SendMessageA(bound.window, TBM_GETRANGEMAX, 0, 0) != slider.Max) {
        ::SendMessageA(bound.window, TBM_SETRANGEMAX, FALSE, slider.Max);
      }
      ::SendMessageA(bound.window, TBM_SETPOS, TRUE, slider.Value());
      break;
    }
    case Kind::Spin: {
      const auto& spin = static_cast<ValueControl&>(*bound.control);
      // While the user types, each digit that makes a number sets the value, and the value
      // comes back here: an edit that reads as the value already is left alone, so that its
      // caret and selection stay where the user has them (the up-down reads its position from
      // the edit before each step of its arrows). A value the handlers made of it otherwise is
      // written in, with the caret behind it for the next key.
      std::int32_t typed = 0;
      if (bound.typing && ReadSpinNumber(bound, typed) && typed == spin.Value()) break;
      if (bound.upDown != nullptr) {
        // Both bounds 0: no bounds of its own.
        const bool bounded = spin.Min != 0 || spin.Max != 0;
        ::SendMessageA(bound.upDown, UDM_SETRANGE32,
                       static_cast<WPARAM>(bounded ? spin.Min : -INT_MAX),
                       bounded ? spin.Max : INT_MAX);
        ::SendMessageA(bound.upDown, UDM_SETPOS32, 0, spin.Value());
      }
      if (bound.edit != nullptr) {
        const std::string text = std::to_string(spin.Value());
        char shown[32] = {};
        ::GetWindowTextA(bound.edit, shown, static_cast<int>(sizeof shown));
        if (text != shown) ::SetWindowTextA(bound.edit, text.c_str());
        if (bound.typing) {
          const auto end = static_cast<WPARAM>(text.size());
          ::SendMessageA(bound.edit, EM_SETSEL, end, static_cast<LPARAM>(end));
        }
      }
      break;
    }
    case Kind::Combo:
      ApplyList(bound);
      break;
    case Kind::Scroll:
    case Kind::Progress:
    case Kind::PictureOption:
      ApplyStripValue(bound);
      break;
    default:
      break;
  }
}

void FormWindow::ApplyList(BoundControl& bound) {
  const auto& list = static_cast<ComboBox&>(*bound.control);
  bool same = ::SendMessageA(bound.window, CB_GETCOUNT, 0, 0) == list.ListCount();
  for (std::int32_t i = 0; same && i < list.ListCount(); ++i) {
    char shown[256] = {};
    const LRESULT length = ::SendMessageA(bound.window, CB_GETLBTEXTLEN, static_cast<WPARAM>(i), 0);
    same = length >= 0 && length < static_cast<LRESULT>(sizeof shown) &&
           ::SendMessageA(bound.window, CB_GETLBTEXT, static_cast<WPARAM>(i),
                          reinterpret_cast<LPARAM>(shown)) == length &&
           list.List(i) == shown;
  }
  if (!same) {
    ::SendMessageA(bound.window, CB_RESETCONTENT, 0, 0);
    for (std::int32_t i = 0; i < list.ListCount(); ++i) {
      ::SendMessageA(bound.window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(list.List(i).c_str()));
    }
  }
  ::SendMessageA(bound.window, CB_SETCURSEL, static_cast<WPARAM>(list.ListIndex()), 0);
}

// --- painting ---------------------------------------------------------------------------------

std::uint32_t FormWindow::ColorBehind(const Control& control) const {
  for (const Control* container = control.Container; container != nullptr;
       container = container->Container) {
    if (const auto* box = dynamic_cast<const PictureBox*>(container)) {
      return box->BackColor & 0xFFFFFFu;
    }
  }
  return FormFace();
}

std::uint32_t FormWindow::SpinFace(const Control& spin) const {
  // A text box with an up-down ("Txt…") stands on the dialog face; a spin box ("Cbo…") on what
  // is behind it.
  return spin.Name().rfind("Txt", 0) == 0 ? ::GetSysColor(COLOR_BTNFACE) : ColorBehind(spin);
}

HFONT FormWindow::FontOf(const Label& label) {
  const int points = label.FontSize() > 0 ? label.FontSize() : 8;
  if (points == 8 && !label.FontBold() && !label.FontUnderline()) return CaptionFont();
  const std::uint32_t key = static_cast<std::uint32_t>(points) << 2 |
                            (label.FontBold() ? 2u : 0u) | (label.FontUnderline() ? 1u : 0u);
  auto found = labelFonts_.find(key);
  if (found == labelFonts_.end()) {
    found = labelFonts_
                .emplace(key, UniqueFont(MakeVerdana(points, label.FontBold(),
                                                     label.FontUnderline())))
                .first;
  }
  return found->second ? found->second.Get() : CaptionFont();
}

void FormWindow::PaintFormBackground(HDC dc) {
  RECT area{};
  ::GetClientRect(Handle(), &area);
  const Pixels& picture = form_.Picture;
  const std::uint32_t face = FormFace();
  if (picture.Empty()) {
    ::FillRect(dc, &area, BrushOf(face));
    return;
  }
  DrawPixels(dc, picture, 0, 0, face);
  // A window larger than its picture shows the plain colour beyond it.
  RECT right{picture.width, 0, area.right, area.bottom};
  RECT below{0, picture.height, std::min<LONG>(picture.width, area.right), area.bottom};
  if (right.left < right.right) ::FillRect(dc, &right, BrushOf(face));
  if (below.top < below.bottom) ::FillRect(dc, &below, BrushOf(face));
}

void FormWindow::PaintPicture(BoundControl& bound, HDC dc) {
  RECT area{};
  ::GetClientRect(bound.window, &area);
  auto* box = dynamic_cast<PictureBox*>(bound.control);
  if (box == nullptr) {
    ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNFACE));
    return;
  }
  if (const auto* image = dynamic_cast<const Image*>(box)) {
    // An image stands over its container: that shows through its picture's clear parts.
    PrintParent(bound.window, dc);
    DrawPixelsOver(dc, image->Stretch() ? Fitted(image->Picture(), area.right, area.bottom)
                                        : image->Picture());
    return;
  }
  ::FillRect(dc, &area, BrushOf(box->BackColor));
  if (bound.showsDrawn) {
    Pixels image;
    try {
      image = box->Image();
    } catch (const std::exception&) {
      image = Pixels{};  // a surface that cannot give its image shows the Picture instead
    }
    if (!image.Empty()) {
      DrawPixels(dc, image, 0, 0, box->BackColor);
      return;
    }
  }
  DrawPixels(dc, box->Picture(), 0, 0, box->BackColor);
}

void FormWindow::PaintLabel(BoundControl& bound, HWND window, HDC dc) {
  // The background is the container's: it draws itself into this context, moved so that its
  // point under the label's corner lands at (0, 0).
  HWND parent = ::GetParent(window);
  POINT corner{0, 0};
  ::MapWindowPoints(window, parent, &corner, 1);
  POINT previous{};
  ::SetViewportOrgEx(dc, -corner.x, -corner.y, &previous);
  ::SendMessageA(parent, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
  ::SetViewportOrgEx(dc, previous.x, previous.y, nullptr);

  const auto& label = static_cast<Label&>(*bound.control);
  RECT area{};
  ::GetClientRect(window, &area);
  DrawLabelCaption(dc, label, FontOf(label), area);
}

void FormWindow::PaintFrame(BoundControl& bound, HWND window, HDC dc) {
  const auto& frame = static_cast<const Frame&>(*bound.control);
  RECT area{};
  ::GetClientRect(window, &area);
  const std::uint32_t behind = ColorBehind(frame);
  ::FillRect(dc, &area, BrushOf(behind));
  HGDIOBJ oldFont = ::SelectObject(dc, CaptionFont());
  ::SetBkMode(dc, TRANSPARENT);
  std::string caption = frame.Caption();
  // The border runs through the middle of the caption's line; the caption stands on the
  // background, in a gap of the border.
  TEXTMETRICA metrics{};
  ::GetTextMetricsA(dc, &metrics);
  RECT border = area;
  border.top += metrics.tmHeight / 2;
  ::DrawEdge(dc, &border, EDGE_ETCHED, BF_RECT);
  SIZE extent{};
  ::GetTextExtentPoint32A(dc, caption.data(), static_cast<int>(caption.size()), &extent);
  RECT gap{6, 0, std::min<LONG>(area.right - 6, 6 + extent.cx + 4), metrics.tmHeight};
  ::FillRect(dc, &gap, BrushOf(behind));
  ::SetTextColor(dc, frame.Enabled() ? 0x000000 : ::GetSysColor(COLOR_GRAYTEXT));
  ::TextOutA(dc, 8, 0, caption.data(), static_cast<int>(caption.size()));
  ::SelectObject(dc, oldFont);
}

// --- window procedures ------------------------------------------------------------------------

LRESULT FormWindow::TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == syncMessage_ && syncMessage_ != 0) {
    syncPosted_ = false;
    Flush();
    return 0;
  }
  if (message == pullMessage_ && pullMessage_ != 0) {
    PullAllChecks();
    return 0;
  }
  for (const auto& [registered, handler] : registeredHandlers_) {
    if (message == registered) {
      Run(handler);
      return 0;
    }
  }
  if (Mouse(nullptr, formPressed_, window, message, wParam, lParam)) return 0;
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT ps{};
      ::BeginPaint(window, &ps);
      ::EndPaint(window, &ps);
      return 0;
    }
    case WM_ERASEBKGND:
      // The picture goes straight onto the screen in one copy: no plain fill shows first.
      PaintFormBackground(reinterpret_cast<HDC>(wParam));
      return 1;
    case WM_PRINTCLIENT:
      PaintFormBackground(reinterpret_cast<HDC>(wParam));
      return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      ::SetBkColor(reinterpret_cast<HDC>(wParam), FormFace());
      return reinterpret_cast<LRESULT>(BrushOf(FormFace()));
    case WM_SIZE:
      // The form lays out what it lays out by measure; not before it is loaded.
      if (form_.Loaded()) Run([this] { form_.Form_Resize(); });
      return 0;
    case WM_SHOWWINDOW:
      // Being shown counts as a resize, as its first size comes before the form is loaded.
      if (wParam != 0 && form_.Loaded()) Run([this] { form_.Form_Resize(); });
      return ::DefWindowProcA(window, message, wParam, lParam);
    case WM_TIMER: {
      const std::vector<Timer*> timers = form_.Timers();
      if (wParam >= 1 && wParam <= timers.size()) Run(timers[wParam - 1]->Tick);
      return 0;
    }
    case WM_SETCURSOR:
      // While the form is busy the hourglass stands over it and every control in it; the
      // controls ask here first.
      if (ShowsHourglass()) {
        ::SetCursor(::LoadCursorA(nullptr, kHourglass));
        return TRUE;
      }
      return ::DefWindowProcA(window, message, wParam, lParam);
    case WM_ACTIVATE: {
      // The form is activated when it is first shown, and again when it takes over from
      // another form of the program (its owner).
      const HWND previous = reinterpret_cast<HWND>(lParam);
      const bool fromOwnForm = previous != nullptr && previous == owner_;
      if (LOWORD(wParam) != WA_INACTIVE && (!activated_ || fromOwnForm)) Activated();
      return ::DefWindowProcA(window, message, wParam, lParam);
    }
    case WM_SYSCOMMAND:
      // The close of the system menu, the close box and Alt+F4.
      if ((wParam & 0xFFF0) == SC_CLOSE) {
        RequestUnload(kUnloadFromMenu);
        return 0;
      }
      return ::DefWindowProcA(window, message, wParam, lParam);
    case WM_CLOSE:
      // A close that did not come through the system menu: another program's, as the task
      // manager's.
      RequestUnload(kUnloadFromTaskManager);
      return 0;
    case WM_QUERYENDSESSION:
      return TRUE;
    case WM_ENDSESSION:
      if (wParam != 0) RequestUnload(kUnloadAtSessionEnd);
      return 0;
    case WM_DESTROY:
      destroying_ = true;
      form_.hWnd = 0;
      form_.Visible(false);
      if (options_.quitWhenGone) ::PostQuitMessage(0);
      return 0;
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT FormWindow::PartMessage(BoundControl& record, HWND window, UINT message, WPARAM wParam,
                                LPARAM lParam) {
  BoundControl& bound = record;
  // A press checks a graphical option button, before what the mouse tells its handlers.
  if (bound.kind == Kind::PictureOption && message == WM_LBUTTONDOWN) {
    auto& option = static_cast<OptionButton&>(*bound.control);
    Run([&] { option.Value(true); });
    if (RecordAt(window) == nullptr) return 0;
  }
  if (bound.kind != Kind::Spin &&
      Mouse(bound.control, bound.pressed, window, message, wParam, lParam)) {
    return 0;
  }
  switch (message) {
    case WM_PAINT:
      if (bound.kind == Kind::Label) {
        PaintBuffered(window, [&](HDC dc) { PaintLabel(bound, window, dc); });
      } else if (bound.kind == Kind::Frame) {
        PaintBuffered(window, [&](HDC dc) { PaintFrame(bound, window, dc); });
      } else if (bound.kind == Kind::PictureOption) {
        PaintBuffered(window, [&](HDC dc) { PaintPictureOption(bound, dc); });
      } else if (bound.kind == Kind::Spin) {
        PAINTSTRUCT ps{};
        HDC dc = ::BeginPaint(window, &ps);
        ::FillRect(dc, &ps.rcPaint, BrushOf(SpinFace(*bound.control)));
        ::EndPaint(window, &ps);
      } else {
        RunPaintRoutine(form_, bound);
        PaintBuffered(window, [&](HDC dc) { PaintPicture(bound, dc); });
      }
      return 0;
    case WM_PRINTCLIENT:
      if (bound.kind == Kind::Label) {
        PaintLabel(bound, window, reinterpret_cast<HDC>(wParam));
      } else if (bound.kind == Kind::Frame) {
        PaintFrame(bound, window, reinterpret_cast<HDC>(wParam));
      } else if (bound.kind == Kind::PictureOption) {
        PaintPictureOption(bound, reinterpret_cast<HDC>(wParam));
      } else {
        PaintPicture(bound, reinterpret_cast<HDC>(wParam));
      }
      return 0;
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT CALLBACK FormWindow::SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam, UINT_PTR /*id*/, DWORD_PTR data) {
  auto* bound = reinterpret_cast<BoundControl*>(data);
  FormWindow& self = *bound->binding;
  Control& control = *bound->control;
  switch (message) {
    case WM_MOUSEMOVE:
      if (control.MouseMove) {
        self.Run([&] {
          control.MouseMove(ButtonsOf(wParam), ShiftOf(wParam), TwipsOf(GET_X_LPARAM(lParam)),
                            TwipsOf(GET_Y_LPARAM(lParam)));
        });
      }
      break;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDBLCLK:
      bound->lastPress = POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
      if (control.MouseDown) {
        const std::int16_t button =
            message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK   ? 1
            : message == WM_RBUTTONDOWN || message == WM_RBUTTONDBLCLK ? 2
                                                                       : 4;
        self.Run([&] {
          control.MouseDown(button, ShiftOf(wParam), TwipsOf(GET_X_LPARAM(lParam)),
                            TwipsOf(GET_Y_LPARAM(lParam)));
        });
      }
      break;
    case WM_KEYUP:
      if (bound->kind == Kind::List) self.ListKeyUp(*bound);
      break;
    case WM_NCDESTROY:
      ::RemoveWindowSubclass(window, &FormWindow::SubclassProcedure, 1);
      self.Forget(window);
      break;
    default:
      break;
  }
  return ::DefSubclassProc(window, message, wParam, lParam);
}

bool FormWindow::Mouse(Control* control, bool& pressed, HWND window, UINT message,
                       WPARAM wParam, LPARAM lParam) {
  using Handler = std::function<void(std::int16_t, std::int16_t, float, float)>;
  // The form's own surface has its events as routines of the form.
  const Handler formMove = [this](std::int16_t b, std::int16_t s, float x, float y) {
    form_.Form_MouseMove(b, s, x, y);
  };
  const Handler formDown = [this](std::int16_t b, std::int16_t s, float x, float y) {
    form_.Form_MouseDown(b, s, x, y);
  };
  const std::function<void()> none;
  const Handler& mouseMove = control != nullptr ? control->MouseMove : formMove;
  const Handler& mouseDown = control != nullptr ? control->MouseDown : formDown;
  const auto& click = control != nullptr ? control->Click : none;
  const auto& dblClick = control != nullptr ? control->DblClick : none;
  const float x = TwipsOf(GET_X_LPARAM(lParam));
  const float y = TwipsOf(GET_Y_LPARAM(lParam));
  auto down = [&](std::int16_t button) {
    if (mouseDown) Run([&] { mouseDown(button, ShiftOf(wParam), x, y); });
  };
  if (message == WM_MOUSEMOVE) {
    if (mouseMove) Run([&] { mouseMove(ButtonsOf(wParam), ShiftOf(wParam), x, y); });
    return true;
  }
  // A disabled control whose window stays enabled (a picture button) follows the mouse and
  // takes nothing else: no press, no click.
  if (control != nullptr && !control->Enabled()) {
    switch (message) {
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK:
      case WM_LBUTTONUP:
      case WM_RBUTTONDOWN:
      case WM_RBUTTONDBLCLK:
      case WM_MBUTTONDOWN:
      case WM_MBUTTONDBLCLK:
        if (pressed && ::GetCapture() == window) ::ReleaseCapture();
        pressed = false;
        return true;
      default:
        break;
    }
  }
  switch (message) {
    case WM_LBUTTONDBLCLK:
      if (dblClick) {
        pressed = false;
        Run(dblClick);
        return true;
      }
      [[fallthrough]];
    case WM_LBUTTONDOWN:
      if (click) {
        pressed = true;
        ::SetCapture(window);
      }
      down(1);
      return true;
    case WM_LBUTTONUP: {
      if (!pressed) return true;
      pressed = false;
      if (::GetCapture() == window) ::ReleaseCapture();
      RECT area{};
      ::GetClientRect(window, &area);
      const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
      if (::PtInRect(&area, at) != 0) Run(click);
      return true;
    }
    case WM_CAPTURECHANGED:
      pressed = false;
      return true;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
      down(2);
      return true;
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
      down(4);
      return true;
    default:
      return false;
  }
}

// --- events of the controls ---------------------------------------------------------------------

void FormWindow::Command(BoundControl& sender, UINT code) {
  BoundControl& bound = sender;
  if (code == BN_CLICKED) {
    Clicked(bound);
  } else if (bound.kind == Kind::Spin && code == EN_CHANGE) {
    SpinEdited(bound);
  } else if (bound.kind == Kind::Text && code == EN_CHANGE) {
    TextEdited(bound);
  } else if (bound.kind == Kind::Combo && code == CBN_SELCHANGE) {
    auto& list = static_cast<ComboBox&>(*bound.control);
    const auto chosen = static_cast<std::int32_t>(::SendMessageA(bound.window, CB_GETCURSEL, 0, 0));
    if (chosen != list.ListIndex() && chosen >= 0 && chosen < list.ListCount()) {
      Run([&] { list.ListIndex(chosen); });
    }
  }
}

void FormWindow::Clicked(BoundControl& bound) {
  // What the user ticked in the trees counts before any routine runs.
  PullAllChecks();
  if (bound.kind == Kind::Check) {
    auto& check = static_cast<CheckBox&>(*bound.control);
    Run([&] { check.Value(static_cast<std::int16_t>(check.Value() == 1 ? 0 : 1)); });
  } else if (bound.kind == Kind::Option) {
    auto& option = static_cast<OptionButton&>(*bound.control);
    Run([&] { option.Value(true); });
  } else if (bound.kind == Kind::Command) {
    Run(bound.control->Click);
  }
}

bool FormWindow::ControlMessage(BoundControl& sender, UINT message, WPARAM wParam,
                                LRESULT& result) {
  BoundControl& bound = sender;
  if (message == WM_VSCROLL && bound.kind == Kind::Scroll) {
    if (!IsApplying()) Scrolled(bound, wParam);
    result = 0;
    return true;
  }
  if (message == WM_HSCROLL || message == WM_VSCROLL) {
    if (bound.kind == Kind::Slider && !IsApplying()) {
      auto& slider = static_cast<ValueControl&>(*bound.control);
      const auto position =
          static_cast<std::int32_t>(::SendMessageA(bound.window, TBM_GETPOS, 0, 0));
      if (position != slider.Value()) Run([&] { slider.Value(position); });
    }
    result = 0;
    return true;
  }
  if (message != WM_CTLCOLORSTATIC && message != WM_CTLCOLORBTN) return false;
  // An option button stands on its own back colour, the parts of a spin edit on its face, and
  // the other controls on what is behind them.
  const Control& control = *bound.control;
  const auto* option = dynamic_cast<const OptionButton*>(&control);
  std::uint32_t color = ColorBehind(control);
  if (option != nullptr) color = option->BackColor() & 0xFFFFFFu;
  if (bound.kind == Kind::Spin) color = SpinFace(control);
  ::SetBkColor(reinterpret_cast<HDC>(wParam), color);
  result = reinterpret_cast<LRESULT>(BrushOf(color));
  return true;
}

void FormWindow::SpinEdited(BoundControl& bound) {
  std::int32_t value = 0;
  // Text that is no number yet ("" or "-"), or a number out of bounds, waits for the user to
  // finish typing.
  if (!ReadSpinNumber(bound, value)) return;
  auto& spin = static_cast<ValueControl&>(*bound.control);
  const bool bounded = spin.Min != 0 || spin.Max != 0;
  if (bounded && (value < spin.Min || value > spin.Max)) return;
  if (value == spin.Value()) return;
  // The value comes from the keys the user is typing: ApplyValue leaves the edit to them.
  struct Typing {
    explicit Typing(bool& flag) : set(flag) { set = true; }
    ~Typing() { set = false; }
    Typing(const Typing&) = delete;
    Typing& operator=(const Typing&) = delete;
    bool& set;
  } typing(bound.typing);
  Run([&] { spin.Value(value); });
}

// --- tree views -------------------------------------------------------------------------------

void FormWindow::ApplyImages(BoundControl& record) {
  BoundControl& bound = record;
  auto& tree = static_cast<TreeView&>(*bound.control);
  bound.images = nullptr;
  if (tree.Images != nullptr) {
    auto found = std::find_if(imageLists_.begin(), imageLists_.end(),
                              [&](const auto& list) { return list->model == tree.Images; });
    if (found == imageLists_.end()) {
      auto list = std::make_unique<BoundImageList>();
      list->model = tree.Images;
      BoundImageList* raw = list.get();
      imageLists_.push_back(std::move(list));
      raw->model->Observe([this, raw] { ImagesChanged(*raw); });
      bound.images = raw;
      ImagesChanged(*raw);
    } else {
      bound.images = found->get();
    }
  }
  HIMAGELIST list = bound.images != nullptr ? bound.images->list.Get() : nullptr;
  ::SendMessageA(bound.window, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(list));
}

void FormWindow::ImagesChanged(BoundImageList& list) {
  const ImageList& model = *list.model;
  const std::int32_t count = model.Count();
  int width = model.ImageWidth;
  int height = model.ImageHeight;
  if ((width <= 0 || height <= 0) && count > 0) {
    width = model.Item(1).picture.width;
    height = model.Item(1).picture.height;
  }
  bool remade = false;
  if (width > 0 && height > 0 && (!list.list || width != list.width || height != list.height)) {
    list.list.Reset(::ImageList_Create(width, height, ILC_COLOR32, std::max(count, 4), 16));
    list.width = width;
    list.height = height;
    list.count = 0;
    remade = true;
  } else if (list.list && count < list.count) {
    ::ImageList_RemoveAll(list.list.Get());
    list.count = 0;
  }
  if (list.list) {
    for (std::int32_t number = list.count + 1; number <= count; ++number) {
      const UniqueBitmap bitmap = MakeBitmap(model.Item(number).picture, width, height);
      // A picture that cannot be made keeps its number all the same, blank.
      const UniqueBitmap blank = bitmap ? UniqueBitmap{} : MakeBitmap(Pixels{}, width, height);
      ::ImageList_Add(list.list.Get(), bitmap ? bitmap.Get() : blank.Get(), nullptr);
    }
    list.count = count;
  }
  for (const auto& record : records_) {
    BoundControl* bound = record.get();
    if (bound->images != &list || bound->window == nullptr) continue;
    if (remade) {
      ::SendMessageA(bound->window, TVM_SETIMAGELIST, TVSIL_NORMAL,
                     reinterpret_cast<LPARAM>(list.list.Get()));
    }
    if (::IsWindowVisible(bound->window) != 0) ::InvalidateRect(bound->window, nullptr, FALSE);
  }
}

void FormWindow::ApplyNodes(BoundControl& record) {
  BoundControl& bound = record;
  auto& tree = static_cast<TreeView&>(*bound.control);
  const auto count = static_cast<std::size_t>(tree.Count());
  Applying applying(*this);
  if (count < bound.items.size() && !RemoveTreeItems(bound)) {
    ClearTree(bound);
    bound.mirror.clear();
  }
  const bool added = bound.items.size() < count;
  while (bound.items.size() < count) {
    InsertNode(bound, static_cast<std::int32_t>(bound.items.size()) + 1);
  }
  // Expansion and selection need the nodes in place; they follow together.
  if (added || count == 0 || tree.SelectedItem() != 0) ApplyNodeStates(bound);
}

void FormWindow::InsertNode(BoundControl& bound, std::int32_t position) {
  const auto& tree = static_cast<TreeView&>(*bound.control);
  const Node& node = tree.Item(position);
  if (node.Parent > 0 && !bound.hasLines) {
    // A tree of more than one level shows its lines and buttons.
    const LONG_PTR style = ::GetWindowLongPtrA(bound.window, GWL_STYLE);
    ::SetWindowLongPtrA(bound.window, GWL_STYLE,
                        style | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT);
    bound.hasLines = true;
  }
  TVITEMA item{};
  item.mask = TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
  item.iImage = ImageIndexOf(node.Image);
  item.iSelectedImage = ImageIndexOf(node.SelectedImage);
  item.state = node.Bold ? TVIS_BOLD : 0;
  item.stateMask = TVIS_BOLD;
  if (tree.Checkboxes) {
    item.state |= node.Checked ? kTicked : kUnticked;
    item.stateMask |= TVIS_STATEIMAGEMASK;
  }
  AddTreeItem(bound, node, item);
  NodeMirror mirror;
  mirror.text = node.Text;
  mirror.image = node.Image;
  mirror.selectedImage = node.SelectedImage;
  mirror.bold = node.Bold;
  mirror.checked = node.Checked;
  bound.mirror.push_back(std::move(mirror));
}

void FormWindow::ApplyNodeStates(BoundControl& record) {
  BoundControl& bound = record;
  // A tick the user may set next must meet the model's at once.
  if (static_cast<TreeView&>(*bound.control).Checkboxes) {
    SyncNodeStates(bound);
    return;
  }
  if (!bound.statePending) {
    bound.statePending = true;
    pendingStates_.push_back(&bound);
  }
  if (!syncPosted_ && Handle() != nullptr && syncMessage_ != 0) {
    syncPosted_ = ::PostMessageA(Handle(), syncMessage_, 0, 0) != 0;
  }
}

void FormWindow::Flush() {
  std::vector<BoundControl*> pending;
  pending.swap(pendingStates_);
  for (BoundControl* bound : pending) {
    bound->statePending = false;
    if (bound->window != nullptr) SyncNodeStates(*bound);
  }
}

void FormWindow::SyncNodeStates(BoundControl& bound) {
  auto& tree = static_cast<TreeView&>(*bound.control);
  Applying applying(*this);
  const std::size_t count = std::min(NodesShown(bound, tree), bound.mirror.size());
  for (std::size_t i = 0; i < count; ++i) {
    const Node& node = tree.Item(static_cast<std::int32_t>(i) + 1);
    NodeMirror& shown = bound.mirror[i];
    HTREEITEM item = bound.items[i];
    const bool tick = tree.Checkboxes && node.Checked != shown.checked;
    if (node.Text != shown.text || node.Image != shown.image ||
        node.SelectedImage != shown.selectedImage || node.Bold != shown.bold || tick) {
      std::string text = node.Text;
      TVITEMA change{};
      change.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
      change.hItem = item;
      change.pszText = text.data();
      change.iImage = ImageIndexOf(node.Image);
      change.iSelectedImage = ImageIndexOf(node.SelectedImage);
      change.state = node.Bold ? TVIS_BOLD : 0;
      change.stateMask = TVIS_BOLD;
      if (tree.Checkboxes) {
        change.state |= node.Checked ? kTicked : kUnticked;
        change.stateMask |= TVIS_STATEIMAGEMASK;
      }
      ::SendMessageA(bound.window, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&change));
      shown.text = node.Text;
      shown.image = node.Image;
      shown.selectedImage = node.SelectedImage;
      shown.bold = node.Bold;
      shown.checked = node.Checked;
    }
    if (node.Expanded != shown.expanded) {
      ::SendMessageA(bound.window, TVM_EXPAND, node.Expanded ? TVE_EXPAND : TVE_COLLAPSE,
                     reinterpret_cast<LPARAM>(item));
      // A node without children cannot open yet; it is tried again when they come.
      const auto state = static_cast<UINT>(
          ::SendMessageA(bound.window, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item),
                         TVIS_EXPANDED));
      shown.expanded = (state & TVIS_EXPANDED) != 0;
    }
  }
  ShowSelectedNode(bound, tree.SelectedItem());
}

void FormWindow::PullChecks(BoundControl& bound) {
  if (bound.window == nullptr) return;
  auto& tree = static_cast<TreeView&>(*bound.control);
  if (!tree.Checkboxes) return;
  const std::size_t count = std::min(NodesShown(bound, tree), bound.mirror.size());
  for (std::size_t i = 0; i < count; ++i) {
    const auto state = static_cast<UINT>(
        ::SendMessageA(bound.window, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(bound.items[i]),
                       TVIS_STATEIMAGEMASK));
    const bool ticked = (state & TVIS_STATEIMAGEMASK) == kTicked;
    tree.Item(static_cast<std::int32_t>(i) + 1).Checked = ticked;
    bound.mirror[i].checked = ticked;
  }
}

void FormWindow::PullAllChecks() {
  for (const auto& record : records_) {
    if (record->kind == Kind::Tree) PullChecks(*record);
  }
}

void FormWindow::TreeNotification(BoundControl& record, const NMHDR& header, LPARAM lParam) {
  BoundControl& bound = record;
  auto& tree = static_cast<TreeView&>(*bound.control);
  switch (header.code) {
    case NM_CLICK: {
      // The click comes before the tree view moves its selection: the node under the pointer
      // is selected in the model first, so that Click reads it. The point is where the button
      // went down, which the tree view's own processing of the press is about.
      const bool pressed = bound.lastPress.x >= 0 || bound.lastPress.y >= 0;
      const POINT at = pressed ? bound.lastPress : MessagePointIn(bound.window);
      const TVHITTESTINFO hit = HitTestTree(bound.window, at);
      if (tree.Checkboxes && (hit.flags & TVHT_ONITEMSTATEICON) != 0) {
        // The tree view turns the tick over after this notification.
        if (pullMessage_ != 0) ::PostMessageA(Handle(), pullMessage_, 0, 0);
        break;
      }
      SelectNodeHit(bound, hit);
      Run(tree.Click);
      break;
    }
    case NM_DBLCLK:
      Run(tree.DblClick);
      break;
    case TVN_KEYDOWN: {
      const auto& key = *reinterpret_cast<const NMTVKEYDOWN*>(lParam);
      if (tree.Checkboxes && key.wVKey == VK_SPACE && pullMessage_ != 0) {
        ::PostMessageA(Handle(), pullMessage_, 0, 0);
      }
      break;
    }
    case TVN_SELCHANGEDA:
    case TVN_SELCHANGEDW:
      // A mouse click runs Click through NM_CLICK; the keyboard has no other way.
      if (FollowTreeSelection(bound, lParam) == TVC_BYKEYBOARD) Run(tree.Click);
      break;
    case TVN_ITEMEXPANDINGA:
    case TVN_ITEMEXPANDINGW: {
      // The user opens a node: its routine may fill it before its children show.
      if (IsApplying() || !tree.Expand) break;
      const auto& change = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
      if ((change.action & TVE_EXPAND) == 0) break;
      const std::int32_t position = PositionOfItem(bound, change.itemNew.hItem);
      if (position == 0 || position > tree.Count()) break;
      Run([&] { tree.Expand(position); });
      break;
    }
    case TVN_ITEMEXPANDEDA:
    case TVN_ITEMEXPANDEDW: {
      const auto& change = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
      const std::int32_t position = PositionOfItem(bound, change.itemNew.hItem);
      if (position == 0 || position > tree.Count() ||
          static_cast<std::size_t>(position) > bound.mirror.size()) {
        break;
      }
      const auto state = static_cast<UINT>(
          ::SendMessageA(bound.window, TVM_GETITEMSTATE,
                         reinterpret_cast<WPARAM>(change.itemNew.hItem), TVIS_EXPANDED));
      const bool expanded = (state & TVIS_EXPANDED) != 0;
      tree.Item(position).Expanded = expanded;
      bound.mirror[static_cast<std::size_t>(position) - 1].expanded = expanded;
      break;
    }
    default:
      break;
  }
}

}  // namespace quorvane::ui::win32
