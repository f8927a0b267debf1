#include "ui/win32/SettingsWindow.h"

#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <stdexcept>

#include "core/MainModule.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "platform/win32/GdiHandles.h"
#include "ui/win32/FormWindow.h"
#include "ui/win32/PixelDrawing.h"
#include "wallpaper/FrmSettings.h"

namespace quorvane::ui::win32 {

enum class SettingsKind { Picture, Label, Frame, Check, Option, Command, Spin, Tree };

struct SettingsBound {
  Control* control = nullptr;
  SettingsKind kind = SettingsKind::Picture;
  SettingsWindow* owner = nullptr;
  HWND window = nullptr;  // the control's own window: for a spin edit, the one holding both parts
  HWND edit = nullptr;    // spin edits: the edit and the up-down
  HWND upDown = nullptr;
  std::vector<HTREEITEM> items;  // tree views: one item per node, by position from 1
};

namespace {

const char* const kPartClass = "QuorvaneSettingsPart";
// Posted to the dialog after a click or a key on a tree's tick box, which the tree view turns
// over only once it has told its parent.
const char* const kPullChecksMessage = "Quorvane.SettingsChecks";

// The annotation service of the platform's accessibility layer, by its published identities.
const CLSID kAccPropServicesClass = {
    0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
const IID kAccPropServicesInterface = {
    0x6e26e776, 0x04f0, 0x495d, {0x80, 0xe4, 0x33, 0x30, 0x35, 0x2e, 0x31, 0x69}};
const GUID kAccNameProperty = {
    0x608d3df8, 0x8128, 0x4aa7, {0xa4, 0x28, 0xf5, 0x5e, 0x49, 0x26, 0x72, 0x91}};

// State images of a tree with tick boxes: 1 unticked, 2 ticked.
constexpr UINT kUnticked = 1u << 12;
constexpr UINT kTicked = 2u << 12;

int ToPixels(std::int32_t twips) { return static_cast<int>(twips / kTwipsPerPixel); }

std::uint32_t ToHandleValue(const void* handle) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

SettingsKind KindOf(Control& control) {
  if (dynamic_cast<TreeView*>(&control) != nullptr) return SettingsKind::Tree;
  if (dynamic_cast<Label*>(&control) != nullptr) return SettingsKind::Label;
  if (dynamic_cast<Frame*>(&control) != nullptr) return SettingsKind::Frame;
  if (dynamic_cast<CheckBox*>(&control) != nullptr) return SettingsKind::Check;
  if (dynamic_cast<OptionButton*>(&control) != nullptr) return SettingsKind::Option;
  if (dynamic_cast<CommandButton*>(&control) != nullptr) return SettingsKind::Command;
  if (dynamic_cast<ValueControl*>(&control) != nullptr) return SettingsKind::Spin;
  return SettingsKind::Picture;
}

std::wstring Widen(const std::string& text) {
  if (text.empty()) return std::wstring();
  const int length =
      ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 0), L'\0');
  if (length > 0) {
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                          length);
  }
  return wide;
}

std::runtime_error SystemFailure(const std::string& what) {
  return std::runtime_error(what + " (system error " + std::to_string(::GetLastError()) + ")");
}

const std::string& CaptionOf(const Control& control) {
  static const std::string none;
  if (const auto* label = dynamic_cast<const Label*>(&control)) return label->Caption();
  if (const auto* frame = dynamic_cast<const Frame*>(&control)) return frame->Caption();
  if (const auto* check = dynamic_cast<const CheckBox*>(&control)) return check->Caption();
  if (const auto* option = dynamic_cast<const OptionButton*>(&control)) return option->Caption();
  if (const auto* command = dynamic_cast<const CommandButton*>(&control)) {
    return command->Caption();
  }
  return none;
}

class Applying {
 public:
  explicit Applying(int& counter) : counter_(counter) { ++counter_; }
  ~Applying() { --counter_; }
  Applying(const Applying&) = delete;
  Applying& operator=(const Applying&) = delete;

 private:
  int& counter_;
};

}  // namespace

SettingsWindow::SettingsWindow(FrmSettings& form, HINSTANCE instance)
    : form_(form), instance_(instance) {}

SettingsWindow::~SettingsWindow() {
  Failed = nullptr;
  if (window_ != nullptr) ::DestroyWindow(window_);
  for (auto& bound : bound_) {
    bound->control->Observe(nullptr);
    bound->control->hWnd = 0;
  }
  if (accessibleNames_ != nullptr) {
    static_cast<IAccPropServices*>(accessibleNames_)->Release();
    accessibleNames_ = nullptr;
  }
}

void SettingsWindow::Run(const std::function<void()>& routine) {
  if (!routine) return;
  const std::function<void()> call = routine;
  try {
    call();
  } catch (const std::exception& failure) {
    if (Failed) Failed(failure);
  } catch (...) {
    if (Failed) Failed(std::runtime_error("Unknown failure"));
  }
  // The modal loop looks at the form after each message; this one makes sure one comes.
  if (form_.Unloaded() && window_ != nullptr) ::PostMessageA(window_, WM_NULL, 0, 0);
}

void SettingsWindow::RegisterClasses() {
  WNDCLASSEXA top{};
  top.cbSize = sizeof top;
  if (::GetClassInfoExA(instance_, kSettingsWindowClass, &top) == 0) {
    top = WNDCLASSEXA{};
    top.cbSize = sizeof top;
    top.lpfnWndProc = &SettingsWindow::TopProcedure;
    top.hInstance = instance_;
    top.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
    top.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
    top.lpszClassName = kSettingsWindowClass;
    if (::RegisterClassExA(&top) == 0) throw SystemFailure("The settings window's class was refused");
  }
  WNDCLASSEXA part{};
  part.cbSize = sizeof part;
  if (::GetClassInfoExA(instance_, kPartClass, &part) == 0) {
    part = WNDCLASSEXA{};
    part.cbSize = sizeof part;
    part.lpfnWndProc = &SettingsWindow::PartProcedure;
    part.hInstance = instance_;
    part.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
    part.lpszClassName = kPartClass;
    if (::RegisterClassExA(&part) == 0) throw SystemFailure("A control's class was refused");
  }
}

void SettingsWindow::Create(HWND owner) {
  if (window_ != nullptr) return;
  owner_ = owner;
  INITCOMMONCONTROLSEX controls{};
  controls.dwSize = sizeof controls;
  controls.dwICC = ICC_TREEVIEW_CLASSES | ICC_UPDOWN_CLASS | ICC_STANDARD_CLASSES;
  ::InitCommonControlsEx(&controls);
  RegisterClasses();
  findMessage_ = ::RegisterWindowMessageA(kFindControlMessage);
  pullMessage_ = ::RegisterWindowMessageA(kPullChecksMessage);

  if (accessibleNames_ == nullptr) {
    void* service = nullptr;
    if (SUCCEEDED(::CoCreateInstance(kAccPropServicesClass, nullptr, CLSCTX_INPROC_SERVER,
                                     kAccPropServicesInterface, &service))) {
      accessibleNames_ = service;
    }
  }
  // Verdana 8 pt at 96 pixels to the inch, as the main window sets its captions.
  font_.Reset(::CreateFontA(-::MulDiv(8, 96, 72), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                            DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                            DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, "Verdana"));

  const DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
  const DWORD extended = WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT;
  RECT frame{0, 0, ToPixels(form_.Width), ToPixels(form_.Height)};
  ::AdjustWindowRectEx(&frame, style, FALSE, extended);
  const int width = frame.right - frame.left;
  const int height = frame.bottom - frame.top;
  RECT over{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
  if (owner != nullptr && ::IsWindowVisible(owner) != 0) ::GetWindowRect(owner, &over);
  const int left = std::max(0, static_cast<int>((over.left + over.right - width) / 2));
  const int top = std::max(0, static_cast<int>((over.top + over.bottom - height) / 2));
  HWND window = ::CreateWindowExA(extended, kSettingsWindowClass, form_.Caption.c_str(), style,
                                  left, top, width, height, owner, nullptr, instance_, this);
  if (window == nullptr) throw SystemFailure("The settings window was refused");
  window_ = window;
  form_.hWnd = ToHandleValue(window);

  for (Control* control : form_.Controls()) Bind(*control);
  for (auto& bound : bound_) bound->control->Observe(this);
}

SettingsBound& SettingsWindow::Bind(Control& control) {
  if (auto found = byControl_.find(&control); found != byControl_.end()) return *found->second;
  if (control.Container != nullptr && control.Container != &control) Bind(*control.Container);
  auto bound = std::make_unique<SettingsBound>();
  bound->control = &control;
  bound->kind = KindOf(control);
  bound->owner = this;
  SettingsBound& result = *bound;
  bound_.push_back(std::move(bound));
  byControl_[&control] = &result;
  MakeWindow(result);
  return result;
}

HWND SettingsWindow::WindowOf(const Control& control) const {
  const auto found = byControl_.find(&control);
  return found == byControl_.end() ? nullptr : found->second->window;
}

HWND SettingsWindow::ParentOf(const Control& control) const {
  if (control.Container != nullptr) {
    if (HWND container = WindowOf(*control.Container); container != nullptr) return container;
  }
  return window_;
}

void SettingsWindow::MakeWindow(SettingsBound& bound) {
  Control& control = *bound.control;
  HWND parent = ParentOf(control);
  const std::string name = SystemNameOf(control);
  const int x = ToPixels(control.Left());
  const int y = ToPixels(control.Top());
  const int width = std::max(0, ToPixels(control.Width()));
  const int height = std::max(0, ToPixels(control.Height()));
  const DWORD child = WS_CHILD | WS_CLIPSIBLINGS | (control.Visible() ? WS_VISIBLE : 0);
  const std::string& caption = CaptionOf(control);
  HWND window = nullptr;
  switch (bound.kind) {
    case SettingsKind::Picture:
    case SettingsKind::Frame:
    case SettingsKind::Spin:
      // Their controls are their children, reached with the keyboard as the dialog's own.
      window = ::CreateWindowExA(WS_EX_CONTROLPARENT, kPartClass, name.c_str(),
                                 child | WS_CLIPCHILDREN, x, y, width, height, parent, nullptr,
                                 instance_, &bound);
      break;
    case SettingsKind::Label:
      window = ::CreateWindowExA(0, kPartClass, name.c_str(), child, x, y, width, height, parent,
                                 nullptr, instance_, &bound);
      break;
    case SettingsKind::Check:
      window = ::CreateWindowExA(0, "BUTTON", caption.c_str(), child | WS_TABSTOP | BS_3STATE,
                                 x, y, width, height, parent, nullptr, instance_, nullptr);
      break;
    case SettingsKind::Option:
      window = ::CreateWindowExA(0, "BUTTON", caption.c_str(),
                                 child | WS_TABSTOP | BS_RADIOBUTTON, x, y, width, height, parent,
                                 nullptr, instance_, nullptr);
      break;
    case SettingsKind::Command:
      window = ::CreateWindowExA(0, "BUTTON", caption.c_str(),
                                 child | WS_TABSTOP | BS_PUSHBUTTON, x, y, width, height, parent,
                                 nullptr, instance_, nullptr);
      break;
    case SettingsKind::Tree:
      window = ::CreateWindowExA(WS_EX_CLIENTEDGE, WC_TREEVIEWA, name.c_str(),
                                 child | WS_TABSTOP | TVS_SHOWSELALWAYS, x, y, width, height,
                                 parent, nullptr, instance_, nullptr);
      break;
  }
  if (window == nullptr) throw SystemFailure("The window of " + name + " was refused");
  bound.window = window;
  byWindow_[window] = &bound;
  control.hWnd = ToHandleValue(window);

  switch (bound.kind) {
    case SettingsKind::Check:
    case SettingsKind::Option:
    case SettingsKind::Command:
      ::SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
      break;
    case SettingsKind::Tree:
      // Tick boxes are asked for once the tree view exists, before it holds items.
      ::SetWindowLongPtrA(window, GWL_STYLE,
                          ::GetWindowLongPtrA(window, GWL_STYLE) | TVS_CHECKBOXES);
      ::SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
      break;
    case SettingsKind::Spin: {
      const int arrows = ::GetSystemMetrics(SM_CXVSCROLL);
      bound.edit = ::CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "",
                                     WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, 0, 0,
                                     std::max(0, width - arrows), height, window, nullptr,
                                     instance_, nullptr);
      bound.upDown = ::CreateWindowExA(
          0, UPDOWN_CLASSA, "",
          WS_CHILD | WS_VISIBLE | UDS_SETBUDDYINT | UDS_ARROWKEYS | UDS_NOTHOUSANDS,
          std::max(0, width - arrows), 0, arrows, height, window, nullptr, instance_, nullptr);
      if (bound.edit == nullptr || bound.upDown == nullptr) {
        throw SystemFailure("The parts of " + name + " were refused");
      }
      byWindow_[bound.edit] = &bound;
      byWindow_[bound.upDown] = &bound;
      ::SendMessageA(bound.edit, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
      ::SendMessageA(bound.upDown, UDM_SETBUDDY, reinterpret_cast<WPARAM>(bound.edit), 0);
      break;
    }
    default:
      break;
  }
  Annotate(window, name);
  if (bound.kind == SettingsKind::Tree) SyncNodes(bound);
  ApplyValue(bound);
  ::EnableWindow(window, control.Enabled() ? TRUE : FALSE);
}

void SettingsWindow::Annotate(HWND window, const std::string& name) {
  if (accessibleNames_ == nullptr) return;
  const std::wstring wide = Widen(name);
  static_cast<IAccPropServices*>(accessibleNames_)
      ->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, kAccNameProperty,
                       wide.c_str());
}

void SettingsWindow::Forget(HWND window) {
  auto found = byWindow_.find(window);
  if (found == byWindow_.end()) return;
  SettingsBound& bound = *found->second;
  byWindow_.erase(found);
  if (bound.window == window) {
    if (accessibleNames_ != nullptr) {
      MSAAPROPID name = kAccNameProperty;
      static_cast<IAccPropServices*>(accessibleNames_)
          ->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &name, 1);
    }
    bound.window = nullptr;
    bound.items.clear();
    bound.control->hWnd = 0;
  } else if (bound.edit == window) {
    bound.edit = nullptr;
  } else if (bound.upDown == window) {
    bound.upDown = nullptr;
  }
}

HWND SettingsWindow::Find(std::string_view systemName) const {
  std::string name;
  std::int32_t index = -1;
  if (!ParseSystemName(systemName, name, index)) return nullptr;
  Control* control = form_.FindControl(name, index);
  return control == nullptr ? nullptr : WindowOf(*control);
}

void SettingsWindow::Activated() {
  activated_ = true;
  Run([this] { form_.Form_Activate(); });
}

void SettingsWindow::ShowModal(HWND owner) {
  Create(owner);
  Run([this] { form_.Form_Load(); });
  const bool ownerWasEnabled = owner != nullptr && ::IsWindowEnabled(owner) != 0;
  if (owner != nullptr) ::EnableWindow(owner, FALSE);
  if (!form_.Unloaded()) {
    ::ShowWindow(window_, SW_SHOW);
    ::UpdateWindow(window_);
    // Shown without taking the activation (another program is in front): the form is active in
    // the program all the same.
    if (!activated_) Activated();
  }
  MSG message{};
  while (!form_.Unloaded() && window_ != nullptr) {
    const BOOL result = ::GetMessageA(&message, nullptr, 0, 0);
    if (result == 0) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    if (result == -1) break;
    if (window_ != nullptr && ::IsDialogMessageA(window_, &message) != 0) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
  // The owner comes back before the dialog goes, so that it takes the activation.
  if (ownerWasEnabled) ::EnableWindow(owner, TRUE);
  if (window_ != nullptr) ::DestroyWindow(window_);
  if (ownerWasEnabled && ::IsWindowVisible(owner) != 0) ::SetActiveWindow(owner);
}

// --- the model's changes ----------------------------------------------------------------------

void SettingsWindow::Changed(Control& control, Property property) {
  const auto found = byControl_.find(&control);
  if (found == byControl_.end()) return;
  SettingsBound& bound = *found->second;
  if (bound.window == nullptr) return;
  switch (property) {
    case Property::Visible:
      ::ShowWindow(bound.window, control.Visible() ? SW_SHOWNA : SW_HIDE);
      break;
    case Property::Enabled:
      ::EnableWindow(bound.window, control.Enabled() ? TRUE : FALSE);
      if (bound.edit != nullptr) ::EnableWindow(bound.edit, control.Enabled() ? TRUE : FALSE);
      if (bound.upDown != nullptr) ::EnableWindow(bound.upDown, control.Enabled() ? TRUE : FALSE);
      Repaint(bound);
      break;
    case Property::Position:
      Place(bound);
      break;
    case Property::Caption:
      ApplyCaption(bound);
      break;
    case Property::Picture:
    case Property::Image:
      Repaint(bound);
      break;
    case Property::Value:
      ApplyValue(bound);
      break;
    case Property::Nodes:
      if (bound.kind == SettingsKind::Tree) SyncNodes(bound);
      break;
    case Property::NodeState:
      if (bound.kind == SettingsKind::Tree) SyncNodeStates(bound);
      break;
    case Property::Images:
    case Property::Tag:
      break;
  }
}

void SettingsWindow::Place(SettingsBound& bound) {
  Control& control = *bound.control;
  const int width = std::max(0, ToPixels(control.Width()));
  const int height = std::max(0, ToPixels(control.Height()));
  ::SetWindowPos(bound.window, nullptr, ToPixels(control.Left()), ToPixels(control.Top()), width,
                 height, SWP_NOZORDER | SWP_NOACTIVATE);
  if (bound.kind == SettingsKind::Spin && bound.edit != nullptr && bound.upDown != nullptr) {
    const int arrows = ::GetSystemMetrics(SM_CXVSCROLL);
    ::MoveWindow(bound.edit, 0, 0, std::max(0, width - arrows), height, TRUE);
    ::MoveWindow(bound.upDown, std::max(0, width - arrows), 0, arrows, height, TRUE);
  }
}

void SettingsWindow::Repaint(SettingsBound& bound) {
  ::RedrawWindow(bound.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void SettingsWindow::ApplyCaption(SettingsBound& bound) {
  switch (bound.kind) {
    case SettingsKind::Check:
    case SettingsKind::Option:
    case SettingsKind::Command:
      // The buttons show their captions as their window text.
      ::SetWindowTextA(bound.window, CaptionOf(*bound.control).c_str());
      break;
    default:
      break;
  }
  Repaint(bound);
}

void SettingsWindow::ApplyValue(SettingsBound& bound) {
  Applying applying(applying_);
  switch (bound.kind) {
    case SettingsKind::Check: {
      const std::int16_t value = static_cast<CheckBox&>(*bound.control).Value();
      ::SendMessageA(bound.window, BM_SETCHECK,
                     value == 1   ? BST_CHECKED
                     : value == 0 ? BST_UNCHECKED
                                  : BST_INDETERMINATE,
                     0);
      break;
    }
    case SettingsKind::Option:
      ::SendMessageA(bound.window, BM_SETCHECK,
                     static_cast<OptionButton&>(*bound.control).Value() ? BST_CHECKED
                                                                        : BST_UNCHECKED,
                     0);
      break;
    case SettingsKind::Spin: {
      const auto& spin = static_cast<ValueControl&>(*bound.control);
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
      }
      break;
    }
    default:
      break;
  }
}

// --- painting ---------------------------------------------------------------------------------

std::uint32_t SettingsWindow::ColorBehind(const Control& control) const {
  const Control* container = control.Container;
  while (container != nullptr) {
    if (const auto* box = dynamic_cast<const PictureBox*>(container)) {
      return box->BackColor & 0xFFFFFFu;
    }
    container = container->Container;
  }
  return ::GetSysColor(COLOR_BTNFACE);
}

HBRUSH SettingsWindow::BrushOf(std::uint32_t color) {
  auto found = brushes_.find(color);
  if (found == brushes_.end()) {
    found = brushes_.emplace(color, UniqueBrush(::CreateSolidBrush(color & 0xFFFFFFu))).first;
  }
  return found->second.Get();
}

void SettingsWindow::Paint(SettingsBound& bound, HWND window, HDC dc) {
  RECT area{};
  ::GetClientRect(window, &area);
  const Control& control = *bound.control;
  if (bound.kind == SettingsKind::Picture) {
    const auto* box = dynamic_cast<const PictureBox*>(&control);
    const std::uint32_t back = box != nullptr ? box->BackColor & 0xFFFFFFu
                                              : ::GetSysColor(COLOR_BTNFACE);
    ::FillRect(dc, &area, BrushOf(back));
    if (box != nullptr) DrawPixels(dc, box->Picture(), 0, 0, back);
    return;
  }
  const std::uint32_t behind = ColorBehind(control);
  ::FillRect(dc, &area, BrushOf(behind));
  if (bound.kind != SettingsKind::Label && bound.kind != SettingsKind::Frame) return;
  HGDIOBJ oldFont = ::SelectObject(dc, font_.Get());
  ::SetBkMode(dc, TRANSPARENT);
  std::string caption = CaptionOf(control);
  if (bound.kind == SettingsKind::Label) {
    const auto& label = static_cast<const Label&>(control);
    ::SetTextColor(dc, label.Enabled() ? label.ForeColor() & 0xFFFFFFu
                                       : ::GetSysColor(COLOR_GRAYTEXT));
    ::DrawTextA(dc, caption.data(), static_cast<int>(caption.size()), &area,
                DT_LEFT | DT_TOP | DT_WORDBREAK | DT_NOPREFIX);
  } else {
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
    ::SetTextColor(dc, control.Enabled() ? 0x000000 : ::GetSysColor(COLOR_GRAYTEXT));
    ::TextOutA(dc, 8, 0, caption.data(), static_cast<int>(caption.size()));
  }
  ::SelectObject(dc, oldFont);
}

// --- events of the controls ---------------------------------------------------------------------

bool SettingsWindow::ControlNotification(UINT message, WPARAM wParam, LPARAM lParam,
                                         LRESULT& result) {
  switch (message) {
    case WM_NOTIFY: {
      const auto* header = reinterpret_cast<const NMHDR*>(lParam);
      if (header == nullptr) return false;
      const auto found = byWindow_.find(header->hwndFrom);
      if (found == byWindow_.end() || found->second->kind != SettingsKind::Tree) return false;
      TreeNotification(*found->second, *header, lParam);
      result = 0;
      return true;
    }
    case WM_COMMAND: {
      const auto found = byWindow_.find(reinterpret_cast<HWND>(lParam));
      if (lParam == 0 || found == byWindow_.end()) return false;
      SettingsBound& bound = *found->second;
      const UINT code = HIWORD(wParam);
      if (applying_ != 0) {
        result = 0;
        return true;
      }
      if (code == BN_CLICKED) {
        // What the user ticked in the trees counts before any routine runs.
        PullAllChecks();
        if (bound.kind == SettingsKind::Check) {
          auto& check = static_cast<CheckBox&>(*bound.control);
          Run([&] { check.Value(static_cast<std::int16_t>(check.Value() == 1 ? 0 : 1)); });
        } else if (bound.kind == SettingsKind::Option) {
          auto& option = static_cast<OptionButton&>(*bound.control);
          Run([&] { option.Value(true); });
        } else if (bound.kind == SettingsKind::Command) {
          Run(bound.control->Click);
        }
      } else if (bound.kind == SettingsKind::Spin && code == EN_CHANGE) {
        SpinEdited(bound);
      }
      result = 0;
      return true;
    }
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: {
      const auto found = byWindow_.find(reinterpret_cast<HWND>(lParam));
      if (found == byWindow_.end()) return false;
      const Control& control = *found->second->control;
      const auto* option = dynamic_cast<const OptionButton*>(&control);
      const std::uint32_t color =
          option != nullptr ? option->BackColor() & 0xFFFFFFu : ColorBehind(control);
      ::SetBkColor(reinterpret_cast<HDC>(wParam), color);
      result = reinterpret_cast<LRESULT>(BrushOf(color));
      return true;
    }
    default:
      return false;
  }
}

void SettingsWindow::SpinEdited(SettingsBound& bound) {
  if (bound.edit == nullptr) return;
  char text[32] = {};
  const int length = ::GetWindowTextA(bound.edit, text, static_cast<int>(sizeof text));
  std::int32_t value = 0;
  const char* end = text + std::max(0, length);
  const auto [stop, error] = std::from_chars(text, end, value);
  auto& spin = static_cast<ValueControl&>(*bound.control);
  const bool bounded = spin.Min != 0 || spin.Max != 0;
  // Text that is no number yet ("" or "-"), or a number out of bounds, waits for the user to
  // finish typing.
  if (error != std::errc() || stop != end) return;
  if (bounded && (value < spin.Min || value > spin.Max)) return;
  if (value != spin.Value()) Run([&] { spin.Value(value); });
}

// --- tree views -------------------------------------------------------------------------------

void SettingsWindow::SyncNodes(SettingsBound& bound) {
  auto& tree = static_cast<TreeView&>(*bound.control);
  const auto count = static_cast<std::size_t>(tree.Count());
  Applying applying(applying_);
  if (count < bound.items.size()) {
    ::SendMessageA(bound.window, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    bound.items.clear();
  }
  while (bound.items.size() < count) {
    const auto position = static_cast<std::int32_t>(bound.items.size()) + 1;
    const Node& node = tree.Item(position);
    TVINSERTSTRUCTA insert{};
    insert.hParent = TVI_ROOT;
    if (node.Parent > 0 && static_cast<std::size_t>(node.Parent) <= bound.items.size()) {
      insert.hParent = bound.items[static_cast<std::size_t>(node.Parent) - 1];
    }
    insert.hInsertAfter = TVI_LAST;
    std::string text = node.Text;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM;
    insert.item.pszText = text.data();
    insert.item.lParam = position;
    bound.items.push_back(reinterpret_cast<HTREEITEM>(
        ::SendMessageA(bound.window, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert))));
  }
  SyncNodeStates(bound);
}

void SettingsWindow::SyncNodeStates(SettingsBound& bound) {
  auto& tree = static_cast<TreeView&>(*bound.control);
  Applying applying(applying_);
  const std::size_t count =
      std::min(bound.items.size(), static_cast<std::size_t>(std::max(0, tree.Count())));
  for (std::size_t i = 0; i < count; ++i) {
    const Node& node = tree.Item(static_cast<std::int32_t>(i) + 1);
    std::string text = node.Text;
    TVITEMA change{};
    change.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_STATE;
    change.hItem = bound.items[i];
    change.pszText = text.data();
    change.state = (node.Checked ? kTicked : kUnticked) | (node.Bold ? TVIS_BOLD : 0u);
    change.stateMask = TVIS_STATEIMAGEMASK | TVIS_BOLD;
    ::SendMessageA(bound.window, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&change));
  }
  const std::int32_t selected = tree.SelectedItem();
  HTREEITEM wanted = nullptr;
  if (selected >= 1 && static_cast<std::size_t>(selected) <= bound.items.size()) {
    wanted = bound.items[static_cast<std::size_t>(selected) - 1];
  }
  const auto current = reinterpret_cast<HTREEITEM>(
      ::SendMessageA(bound.window, TVM_GETNEXTITEM, TVGN_CARET, 0));
  if (current != wanted) {
    ::SendMessageA(bound.window, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(wanted));
  }
}

void SettingsWindow::PullChecks(SettingsBound& bound) {
  if (bound.window == nullptr) return;
  auto& tree = static_cast<TreeView&>(*bound.control);
  const std::size_t count =
      std::min(bound.items.size(), static_cast<std::size_t>(std::max(0, tree.Count())));
  for (std::size_t i = 0; i < count; ++i) {
    const auto state = static_cast<UINT>(
        ::SendMessageA(bound.window, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(bound.items[i]),
                       TVIS_STATEIMAGEMASK));
    tree.Item(static_cast<std::int32_t>(i) + 1).Checked = (state & TVIS_STATEIMAGEMASK) == kTicked;
  }
}

void SettingsWindow::PullAllChecks() {
  for (auto& bound : bound_) {
    if (bound->kind == SettingsKind::Tree) PullChecks(*bound);
  }
}

std::int32_t SettingsWindow::PositionOfItem(SettingsBound& bound, HTREEITEM item) {
  if (item == nullptr) return 0;
  const auto found = std::find(bound.items.begin(), bound.items.end(), item);
  return found == bound.items.end() ? 0
                                    : static_cast<std::int32_t>(found - bound.items.begin()) + 1;
}

void SettingsWindow::TreeNotification(SettingsBound& bound, const NMHDR& header, LPARAM lParam) {
  auto& tree = static_cast<TreeView&>(*bound.control);
  const UINT pull = pullMessage_;
  switch (header.code) {
    case NM_CLICK: {
      TVHITTESTINFO hit{};
      const DWORD at = ::GetMessagePos();
      hit.pt = POINT{GET_X_LPARAM(at), GET_Y_LPARAM(at)};
      ::ScreenToClient(bound.window, &hit.pt);
      ::SendMessageA(bound.window, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
      if ((hit.flags & TVHT_ONITEMSTATEICON) != 0) {
        // The tree view turns the tick over after this notification.
        if (pull != 0) ::PostMessageA(window_, pull, 0, 0);
        break;
      }
      if (hit.hItem != nullptr && (hit.flags & TVHT_ONITEM) != 0) {
        const std::int32_t position = PositionOfItem(bound, hit.hItem);
        if (position != 0 && position != tree.SelectedItem()) Run([&] { tree.Select(position); });
      }
      Run(tree.Click);
      break;
    }
    case TVN_KEYDOWN: {
      const auto& key = *reinterpret_cast<const NMTVKEYDOWN*>(lParam);
      if (key.wVKey == VK_SPACE && pull != 0) ::PostMessageA(window_, pull, 0, 0);
      break;
    }
    case TVN_SELCHANGEDA:
    case TVN_SELCHANGEDW: {
      if (applying_ != 0) break;
      const auto& change = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
      if (change.action != TVC_BYMOUSE && change.action != TVC_BYKEYBOARD) break;
      const std::int32_t position = PositionOfItem(bound, change.itemNew.hItem);
      if (position != 0 && position != tree.SelectedItem()) Run([&] { tree.Select(position); });
      break;
    }
    default:
      break;
  }
}

// --- window procedures ------------------------------------------------------------------------

LRESULT CALLBACK SettingsWindow::TopProcedure(HWND window, UINT message, WPARAM wParam,
                                              LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* self = reinterpret_cast<SettingsWindow*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
  if (self == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return self->TopMessage(window, message, wParam, lParam);
}

LRESULT SettingsWindow::TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == findMessage_ && findMessage_ != 0) {
    char name[256] = {};
    const UINT length =
        ::GlobalGetAtomNameA(static_cast<ATOM>(wParam), name, static_cast<int>(sizeof name));
    if (length == 0) return 0;
    return reinterpret_cast<LRESULT>(Find(std::string_view(name, length)));
  }
  if (message == pullMessage_ && pullMessage_ != 0) {
    PullAllChecks();
    return 0;
  }
  LRESULT result = 0;
  if (ControlNotification(message, wParam, lParam, result)) return result;
  switch (message) {
    case WM_ACTIVATE: {
      // The form is activated when it is first shown, and again when it takes over from
      // another form of the program (its owner).
      const HWND previous = reinterpret_cast<HWND>(lParam);
      const bool fromOwnForm = previous != nullptr && previous == owner_;
      if (LOWORD(wParam) != WA_INACTIVE && (!activated_ || fromOwnForm)) Activated();
      return ::DefWindowProcA(window, message, wParam, lParam);
    }
    case WM_CLOSE:
      // The title bar's close: nothing is saved.
      Run([this] { form_.Unload(); });
      return 0;
    case WM_DESTROY:
      form_.hWnd = 0;
      return 0;
    case WM_NCDESTROY:
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      window_ = nullptr;
      return ::DefWindowProcA(window, message, wParam, lParam);
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT CALLBACK SettingsWindow::PartProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* bound = reinterpret_cast<SettingsBound*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
  if (bound == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return bound->owner->PartMessage(*bound, window, message, wParam, lParam);
}

LRESULT SettingsWindow::PartMessage(SettingsBound& bound, HWND window, UINT message,
                                    WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  if (ControlNotification(message, wParam, lParam, result)) return result;
  switch (message) {
    case WM_ERASEBKGND:
      return 1;  // painting covers the whole window
    case WM_PAINT: {
      PAINTSTRUCT ps{};
      HDC dc = ::BeginPaint(window, &ps);
      Paint(bound, window, dc);
      ::EndPaint(window, &ps);
      return 0;
    }
    case WM_PRINTCLIENT:
      Paint(bound, window, reinterpret_cast<HDC>(wParam));
      return 0;
    case WM_LBUTTONUP:
      if (bound.kind == SettingsKind::Label || bound.kind == SettingsKind::Picture) {
        Run(bound.control->Click);
      }
      return 0;
    case WM_SETFOCUS:
      if (bound.kind == SettingsKind::Spin && bound.edit != nullptr) ::SetFocus(bound.edit);
      return 0;
    case WM_NCDESTROY:
      Forget(window);
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      return ::DefWindowProcA(window, message, wParam, lParam);
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

// --- the port -----------------------------------------------------------------------------------

void Win32ModalForms::InitCommonControls() { ::InitCommonControls(); }

void Win32ModalForms::ShowSettings(FrmSettings& form, std::uint32_t owner) {
  SettingsWindow window(form, ::GetModuleHandleA(nullptr));
  // A failure that reaches the top of one of the dialog's events: the user is told, a line goes
  // to the log in the data folder, and the dialog goes on.
  window.Failed = [](const std::exception& failure) {
    core::ReportError("FrmSettings", "event");
    platform::Use<platform::MessageBoxes>().MsgBox(
        failure.what(), platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  };
  window.ShowModal(platform::win32::ToNative<HWND>(owner));
}

}  // namespace quorvane::ui::win32
