#include "ui/win32/FormWindow.h"

#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "core/FrmMain.h"
#include "platform/win32/Win32Application.h"
#include "ui/MemorySurface.h"
#include "ui/win32/PixelDrawing.h"

namespace quorvane::ui::win32 {

enum class Kind { Plain, Picture, Label, Tree, Check, Slider, Spin };

// What the tree view shows of a node, as last given to it.
struct NodeMirror {
  std::string text;
  std::int16_t image = 0;
  std::int16_t selectedImage = 0;
  bool bold = false;
  bool expanded = false;
};

struct BoundControl {
  Control* control = nullptr;
  Kind kind = Kind::Plain;
  FormWindow* owner = nullptr;
  HWND window = nullptr;  // the control's own window: for a spin edit, the one holding both parts
  HWND edit = nullptr;    // spin edits: the edit and the up-down
  HWND upDown = nullptr;
  bool pressed = false;   // the left button went down on the window and has not come up yet
  // Picture boxes: whether the persistent image is shown rather than the Picture.
  bool showsDrawn = false;
  // Tree views: one item per node, by position from 1, and what each item shows.
  std::vector<HTREEITEM> items;
  std::vector<NodeMirror> mirror;
  bool hasLines = false;
  POINT lastPress{-1, -1};  // where the last button went down, in the tree's client pixels
  BoundImageList* images = nullptr;
  bool statePending = false;
};

struct BoundImageList {
  ImageList* model = nullptr;
  UniqueImageList list;
  int width = 0;
  int height = 0;
  std::int32_t count = 0;  // images in the real list, the model's first `count`
};

namespace {

const char* const kPictureClass = "QuorvanePicture";
const char* const kLabelClass = "QuorvaneLabel";
const char* const kSpinClass = "QuorvaneSpinEdit";
constexpr const char* kSyncMessage = "Quorvane.SyncNodes";
constexpr UINT_PTR kTimer1 = 1;

// The annotation service of the platform's accessibility layer, by its published identities.
const CLSID kAccPropServicesClass = {
    0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
const IID kAccPropServicesInterface = {
    0x6e26e776, 0x04f0, 0x495d, {0x80, 0xe4, 0x33, 0x30, 0x35, 0x2e, 0x31, 0x69}};
const GUID kAccNameProperty = {
    0x608d3df8, 0x8128, 0x4aa7, {0xa4, 0x28, 0xf5, 0x5e, 0x49, 0x26, 0x72, 0x91}};

int ToPixels(std::int32_t twips) { return static_cast<int>(twips / kTwipsPerPixel); }

// Every caption of the window is set in "Verdana". The window is laid out in pixels (15 twips to
// the pixel), so its type is too: points are taken at 96 pixels to the inch whatever the
// screen's setting, and a caption always fits the box the design gives it. At a larger display
// scaling the system enlarges the whole window, which declares no awareness of scaling.
HFONT MakeVerdana(int points, bool bold, bool underline) {
  return ::CreateFontA(-::MulDiv(points, 96, 72), 0, 0, 0, bold ? FW_BOLD : FW_NORMAL,
                       FALSE, underline ? TRUE : FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, "Verdana");
}

std::uint32_t ToHandleValue(const void* handle) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

// The design names its spin edits "Txt…" and "Cbo…"; every other value control is a slider.
bool IsSpinEdit(const std::string& name) {
  return name.rfind("Txt", 0) == 0 || name.rfind("Cbo", 0) == 0;
}

Kind KindOf(Control& control) {
  if (dynamic_cast<TreeView*>(&control) != nullptr) return Kind::Tree;
  if (dynamic_cast<PictureBox*>(&control) != nullptr) return Kind::Picture;
  if (dynamic_cast<Label*>(&control) != nullptr) return Kind::Label;
  if (dynamic_cast<CheckBox*>(&control) != nullptr) return Kind::Check;
  if (dynamic_cast<ValueControl*>(&control) != nullptr) {
    return IsSpinEdit(control.Name()) ? Kind::Spin : Kind::Slider;
  }
  return Kind::Plain;
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

std::string SystemNameOf(const Control& control) {
  if (control.Index() < 0) return control.Name();
  return control.Name() + "(" + std::to_string(control.Index()) + ")";
}

bool ParseSystemName(std::string_view text, std::string& name, std::int32_t& index) {
  index = -1;
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos) {
    name.assign(text);
    return !name.empty() && text.find(')') == std::string_view::npos;
  }
  if (open == 0 || text.size() < open + 3 || text.back() != ')') return false;
  const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || value < 0) return false;
  name.assign(text.substr(0, open));
  index = value;
  return true;
}

FormWindow::FormWindow(FrmMain& form, HINSTANCE instance, HICON icon, HICON smallIcon)
    : form_(form), instance_(instance), icon_(icon), smallIcon_(smallIcon) {}

FormWindow::~FormWindow() {
  // The program's own objects may be gone already: nothing is called back while the windows go.
  Unloaded = nullptr;
  QueryUnload = nullptr;
  Failed = nullptr;
  Destroy();
  for (auto& bound : bound_) bound->control->Observe(nullptr);
  for (auto& list : imageLists_) list->model->Observe(nullptr);
  if (accessibleNames_ != nullptr) {
    static_cast<IAccPropServices*>(accessibleNames_)->Release();
    accessibleNames_ = nullptr;
  }
}

void FormWindow::OnRegisteredMessage(const char* name, std::function<void()> handler) {
  const UINT message = ::RegisterWindowMessageA(name);
  if (message != 0) registeredHandlers_.emplace_back(message, std::move(handler));
}

void FormWindow::Run(const std::function<void()>& handler) {
  if (!handler) return;
  const std::function<void()> call = handler;  // a handler may replace itself while it runs
  try {
    call();
  } catch (const std::exception& failure) {
    if (Failed) Failed(failure);
  } catch (...) {
    if (Failed) Failed(std::runtime_error("Unknown failure"));
  }
}

void FormWindow::RegisterClasses() {
  WNDCLASSEXA top{};
  top.cbSize = sizeof top;
  if (::GetClassInfoExA(instance_, kMainWindowClass, &top) == 0) {
    top = WNDCLASSEXA{};
    top.cbSize = sizeof top;
    top.style = CS_DBLCLKS;
    top.lpfnWndProc = &FormWindow::TopProcedure;
    top.hInstance = instance_;
    top.hIcon = icon_;
    top.hIconSm = smallIcon_;
    top.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
    top.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
    top.lpszClassName = kMainWindowClass;
    if (::RegisterClassExA(&top) == 0) throw SystemFailure("The main window's class was refused");
  }
  for (const char* name : {kPictureClass, kLabelClass, kSpinClass}) {
    WNDCLASSEXA child{};
    child.cbSize = sizeof child;
    if (::GetClassInfoExA(instance_, name, &child) != 0) continue;
    child = WNDCLASSEXA{};
    child.cbSize = sizeof child;
    child.style = CS_DBLCLKS;
    child.lpfnWndProc = &FormWindow::ChildProcedure;
    child.hInstance = instance_;
    child.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
    child.lpszClassName = name;
    if (::RegisterClassExA(&child) == 0) throw SystemFailure("A control's class was refused");
  }
}

void FormWindow::Create() {
  if (window_ != nullptr) return;
  INITCOMMONCONTROLSEX controls{};
  controls.dwSize = sizeof controls;
  controls.dwICC = ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES | ICC_UPDOWN_CLASS |
                   ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES;
  ::InitCommonControlsEx(&controls);
  RegisterClasses();
  findMessage_ = ::RegisterWindowMessageA(kFindControlMessage);
  syncMessage_ = ::RegisterWindowMessageA(kSyncMessage);

  if (accessibleNames_ == nullptr) {
    void* service = nullptr;
    if (SUCCEEDED(::CoCreateInstance(kAccPropServicesClass, nullptr, CLSCTX_INPROC_SERVER,
                                     kAccPropServicesInterface, &service))) {
      accessibleNames_ = service;
    }
  }

  font_.Reset(MakeVerdana(8, false, false));

  const int width = ToPixels(form_.Width);
  const int height = ToPixels(form_.Height);
  const int left = (::GetSystemMetrics(SM_CXSCREEN) - width) / 2;
  const int top = (::GetSystemMetrics(SM_CYSCREEN) - height) / 2;
  HWND window = ::CreateWindowExA(WS_EX_APPWINDOW, kMainWindowClass, form_.Caption.c_str(),
                                  WS_POPUP | WS_CLIPCHILDREN | WS_SYSMENU | WS_MINIMIZEBOX, left,
                                  top, width, height, nullptr, nullptr, instance_, this);
  if (window == nullptr) throw SystemFailure("The main window was refused");
  window_ = window;
  ::SendMessageA(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon_));
  ::SendMessageA(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon_));
  form_.hWnd = ToHandleValue(window);
  form_.Icon = ToHandleValue(icon_);

  for (Control* control : form_.Controls()) Bind(*control);
  for (auto& bound : bound_) bound->control->Observe(this);
  Flush();
  // The form's timer runs on the window from its creation to its end.
  if (form_.Timer1.Enabled() && form_.Timer1.Interval > 0) {
    ::SetTimer(window, kTimer1, static_cast<UINT>(form_.Timer1.Interval), nullptr);
  }
}

BoundControl& FormWindow::Bind(Control& control) {
  if (auto found = byControl_.find(&control); found != byControl_.end()) return *found->second;
  if (control.Container != nullptr && control.Container != &control) Bind(*control.Container);
  auto bound = std::make_unique<BoundControl>();
  bound->control = &control;
  bound->kind = KindOf(control);
  bound->owner = this;
  BoundControl& result = *bound;
  bound_.push_back(std::move(bound));
  // A picture box draws on a memory image of its size; the window shows that image.
  if (auto* box = dynamic_cast<PictureBox*>(&control)) {
    box->UseSurface(std::make_shared<MemorySurface>());
  }
  byControl_[&control] = &result;
  MakeWindow(result);
  return result;
}

void FormWindow::MakeWindow(BoundControl& bound) {
  Control& control = *bound.control;
  HWND parent = window_;
  if (control.Container != nullptr) {
    if (auto found = byControl_.find(control.Container);
        found != byControl_.end() && found->second->window != nullptr) {
      parent = found->second->window;
    }
  }
  const std::string name = SystemNameOf(control);
  const int x = ToPixels(control.Left());
  const int y = ToPixels(control.Top());
  const int width = std::max(0, ToPixels(control.Width()));
  const int height = std::max(0, ToPixels(control.Height()));
  const DWORD visible = control.Visible() ? WS_VISIBLE : 0;
  const DWORD child = WS_CHILD | WS_CLIPSIBLINGS | visible;
  HWND window = nullptr;
  switch (bound.kind) {
    case Kind::Plain:
    case Kind::Picture:
      window = ::CreateWindowExA(0, kPictureClass, name.c_str(), child | WS_CLIPCHILDREN, x, y,
                                 width, height, parent, nullptr, instance_, &bound);
      break;
    case Kind::Label:
      window = ::CreateWindowExA(0, kLabelClass, name.c_str(), child, x, y, width, height, parent,
                                 nullptr, instance_, &bound);
      break;
    case Kind::Tree:
      window = ::CreateWindowExA(WS_EX_CLIENTEDGE, WC_TREEVIEWA, name.c_str(),
                                 child | WS_TABSTOP | TVS_SHOWSELALWAYS, x, y, width, height,
                                 parent, nullptr, instance_, nullptr);
      break;
    case Kind::Check:
      window = ::CreateWindowExA(0, "BUTTON",
                                 static_cast<CheckBox&>(control).Caption().c_str(),
                                 child | WS_TABSTOP | BS_AUTOCHECKBOX, x, y, width, height, parent,
                                 nullptr, instance_, nullptr);
      break;
    case Kind::Slider:
      window = ::CreateWindowExA(0, TRACKBAR_CLASSA, name.c_str(),
                                 child | WS_TABSTOP | TBS_HORZ | TBS_AUTOTICKS, x, y, width,
                                 height, parent, nullptr, instance_, nullptr);
      break;
    case Kind::Spin:
      window = ::CreateWindowExA(WS_EX_CONTROLPARENT, kSpinClass, name.c_str(),
                                 child | WS_CLIPCHILDREN, x, y, width, height, parent, nullptr,
                                 instance_, &bound);
      break;
  }
  if (window == nullptr) throw SystemFailure("The window of " + name + " was refused");
  bound.window = window;
  byWindow_[window] = &bound;
  control.hWnd = ToHandleValue(window);

  switch (bound.kind) {
    case Kind::Tree:
    case Kind::Check:
    case Kind::Slider:
      ::SetWindowSubclass(window, &FormWindow::SubclassProcedure, 1,
                          reinterpret_cast<DWORD_PTR>(&bound));
      ::SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
      break;
    case Kind::Spin: {
      const int arrows = ::GetSystemMetrics(SM_CXVSCROLL);
      bound.edit = ::CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "",
                                     WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, 0, 0,
                                     std::max(0, width - arrows), height, window, nullptr,
                                     instance_, nullptr);
      bound.upDown = ::CreateWindowExA(
          0, UPDOWN_CLASSA, "", WS_CHILD | WS_VISIBLE | UDS_SETBUDDYINT | UDS_ARROWKEYS |
                                    UDS_NOTHOUSANDS,
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

  if (bound.kind == Kind::Tree) {
    UseImages(bound);
    SyncNodes(bound);
  }
  ApplyValue(bound);
  ApplyEnabled(bound);
}

void FormWindow::Annotate(HWND window, const std::string& name) {
  if (accessibleNames_ == nullptr) return;
  const std::wstring wide = Widen(name);
  static_cast<IAccPropServices*>(accessibleNames_)
      ->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, kAccNameProperty,
                       wide.c_str());
}

void FormWindow::Forget(HWND window) {
  auto found = byWindow_.find(window);
  if (found == byWindow_.end()) return;
  BoundControl& bound = *found->second;
  byWindow_.erase(found);
  if (bound.window == window) {
    if (accessibleNames_ != nullptr) {
      MSAAPROPID name = kAccNameProperty;
      static_cast<IAccPropServices*>(accessibleNames_)
          ->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &name, 1);
    }
    bound.window = nullptr;
    bound.items.clear();
    bound.mirror.clear();
    bound.control->hWnd = 0;
  } else if (bound.edit == window) {
    bound.edit = nullptr;
  } else if (bound.upDown == window) {
    bound.upDown = nullptr;
  }
}

HWND FormWindow::WindowOf(const Control& control) const {
  const auto found = byControl_.find(&control);
  return found == byControl_.end() ? nullptr : found->second->window;
}

HWND FormWindow::Find(std::string_view systemName) const {
  std::string name;
  std::int32_t index = -1;
  if (!ParseSystemName(systemName, name, index)) return nullptr;
  Control* control = form_.FindControl(name, index);
  return control == nullptr ? nullptr : WindowOf(*control);
}

void FormWindow::Show() {
  Create();
  Flush();
  ::ShowWindow(window_, SW_SHOW);
  form_.Visible = true;
  ::RedrawWindow(window_, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
}

void FormWindow::Hide() {
  if (window_ != nullptr) ::ShowWindow(window_, SW_HIDE);
  form_.Visible = false;
}

void FormWindow::ApplyFormVisible() {
  if (window_ == nullptr) return;
  const bool shown = ::IsWindowVisible(window_) != 0;
  if (form_.Visible && !shown) {
    ::ShowWindow(window_, SW_SHOW);
  } else if (!form_.Visible && shown) {
    ::ShowWindow(window_, SW_HIDE);
  }
}

void FormWindow::Destroy() {
  if (window_ != nullptr) ::DestroyWindow(window_);
}

void FormWindow::RequestUnload(std::int16_t mode) {
  bool cancelled = false;
  if (QueryUnload) Run([&] { cancelled = QueryUnload(mode); });
  // Only a close from the system menu or the keyboard may be refused; the end of the session
  // is not asked.
  if (cancelled && mode != kUnloadAtSessionEnd) return;
  Hide();
  Destroy();
}

// --- the model's changes ----------------------------------------------------------------------

void FormWindow::Changed(Control& control, Property property) {
  const auto found = byControl_.find(&control);
  if (found == byControl_.end()) return;
  BoundControl& bound = *found->second;
  if (bound.window == nullptr) return;
  switch (property) {
    case Property::Visible:
      ApplyVisible(bound);
      break;
    case Property::Enabled:
      ApplyEnabled(bound);
      break;
    case Property::Position:
      Place(bound);
      break;
    case Property::Caption:
      if (bound.kind == Kind::Check) {
        ::SetWindowTextA(bound.window, static_cast<CheckBox&>(control).Caption().c_str());
      }
      Repaint(bound);
      break;
    case Property::Picture:
      bound.showsDrawn = false;
      Repaint(bound);
      break;
    case Property::Image:
      bound.showsDrawn = true;
      Repaint(bound);
      break;
    case Property::Value:
      ApplyValue(bound);
      break;
    case Property::Nodes:
      if (bound.kind == Kind::Tree) SyncNodes(bound);
      break;
    case Property::NodeState:
      if (bound.kind == Kind::Tree) ScheduleNodeStates(bound);
      break;
    case Property::Images:
      if (bound.kind == Kind::Tree) UseImages(bound);
      break;
    case Property::Tag:
      break;
  }
}

void FormWindow::ApplyVisible(BoundControl& bound) {
  const bool visible = bound.control->Visible();
  if ((::IsWindowVisible(bound.window) != 0) == visible &&
      ((::GetWindowLongPtrA(bound.window, GWL_STYLE) & WS_VISIBLE) != 0) == visible) {
    return;
  }
  ::ShowWindow(bound.window, visible ? SW_SHOWNA : SW_HIDE);
}

void FormWindow::ApplyEnabled(BoundControl& bound) {
  const BOOL enabled = bound.control->Enabled() ? TRUE : FALSE;
  ::EnableWindow(bound.window, enabled);
  if (bound.edit != nullptr) ::EnableWindow(bound.edit, enabled);
  if (bound.upDown != nullptr) ::EnableWindow(bound.upDown, enabled);
  if (bound.kind == Kind::Label || bound.kind == Kind::Picture) Repaint(bound);
}

void FormWindow::Place(BoundControl& bound) {
  Control& control = *bound.control;
  HWND parent = window_;
  if (control.Container != nullptr) {
    if (HWND container = WindowOf(*control.Container); container != nullptr) parent = container;
  }
  if (::GetParent(bound.window) != parent) ::SetParent(bound.window, parent);
  const int width = std::max(0, ToPixels(control.Width()));
  const int height = std::max(0, ToPixels(control.Height()));
  ::SetWindowPos(bound.window, nullptr, ToPixels(control.Left()), ToPixels(control.Top()), width,
                 height, SWP_NOZORDER | SWP_NOACTIVATE);
  if (bound.kind == Kind::Spin && bound.edit != nullptr && bound.upDown != nullptr) {
    const int arrows = ::GetSystemMetrics(SM_CXVSCROLL);
    ::MoveWindow(bound.edit, 0, 0, std::max(0, width - arrows), height, TRUE);
    ::MoveWindow(bound.upDown, std::max(0, width - arrows), 0, arrows, height, TRUE);
  }
}

void FormWindow::Repaint(BoundControl& bound) {
  // A window that is not on the screen is painted whole when it comes; until then there is
  // nothing to draw again. (While the form loads hidden, that saves a request per change.)
  if (::IsWindowVisible(bound.window) == 0) return;
  // The labels standing in a picture box show it through them: they are drawn again with it.
  ::RedrawWindow(bound.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void FormWindow::ApplyValue(BoundControl& bound) {
  Applying applying(applying_);
  switch (bound.kind) {
    case Kind::Check: {
      const auto& check = static_cast<CheckBox&>(*bound.control);
      ::SendMessageA(bound.window, BM_SETCHECK, check.Value() != 0 ? BST_CHECKED : BST_UNCHECKED,
                     0);
      break;
    }
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
      if (bound.upDown != nullptr) {
        ::SendMessageA(bound.upDown, UDM_SETRANGE32, static_cast<WPARAM>(spin.Min), spin.Max);
        ::SendMessageA(bound.upDown, UDM_SETPOS32, 0, spin.Value());
      }
      if (bound.edit != nullptr) {
        ::SetWindowTextA(bound.edit, std::to_string(spin.Value()).c_str());
      }
      break;
    }
    default:
      break;
  }
}

// --- painting ---------------------------------------------------------------------------------

HBRUSH FormWindow::BrushOf(std::uint32_t color) {
  auto found = brushes_.find(color);
  if (found == brushes_.end()) {
    found = brushes_.emplace(color, UniqueBrush(::CreateSolidBrush(color & 0xFFFFFFu))).first;
  }
  return found->second.Get();
}

HFONT FormWindow::FontOf(const Label& label) {
  const int points = label.FontSize() > 0 ? label.FontSize() : 8;
  if (points == 8 && !label.FontBold() && !label.FontUnderline()) return font_.Get();
  const std::uint32_t key = static_cast<std::uint32_t>(points) << 2 |
                            (label.FontBold() ? 2u : 0u) | (label.FontUnderline() ? 1u : 0u);
  auto found = labelFonts_.find(key);
  if (found == labelFonts_.end()) {
    found = labelFonts_
                .emplace(key, UniqueFont(MakeVerdana(points, label.FontBold(),
                                                     label.FontUnderline())))
                .first;
  }
  return found->second ? found->second.Get() : font_.Get();
}

void FormWindow::PaintFormBackground(HDC dc) {
  RECT area{};
  ::GetClientRect(window_, &area);
  const Pixels& picture = form_.Picture;
  if (picture.Empty()) {
    ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNFACE));
    return;
  }
  DrawPixels(dc, picture, 0, 0, ::GetSysColor(COLOR_BTNFACE));
  // A window larger than its picture shows the plain colour beyond it.
  RECT right{picture.width, 0, area.right, area.bottom};
  RECT below{0, picture.height, std::min<LONG>(picture.width, area.right), area.bottom};
  if (right.left < right.right) ::FillRect(dc, &right, ::GetSysColorBrush(COLOR_BTNFACE));
  if (below.top < below.bottom) ::FillRect(dc, &below, ::GetSysColorBrush(COLOR_BTNFACE));
}

void FormWindow::PaintPicture(BoundControl& bound, HDC dc) {
  RECT area{};
  ::GetClientRect(bound.window, &area);
  auto* box = dynamic_cast<PictureBox*>(bound.control);
  if (box == nullptr) {
    ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNFACE));
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
  HGDIOBJ oldFont = ::SelectObject(dc, FontOf(label));
  ::SetBkMode(dc, TRANSPARENT);
  ::SetTextColor(dc, label.Enabled() ? label.ForeColor() & 0xFFFFFFu
                                     : ::GetSysColor(COLOR_GRAYTEXT));
  std::string caption = label.Caption();
  ::DrawTextA(dc, caption.data(), static_cast<int>(caption.size()), &area,
              DT_LEFT | DT_TOP | DT_WORDBREAK | DT_NOPREFIX);
  ::SelectObject(dc, oldFont);
}

// --- window procedures ------------------------------------------------------------------------

LRESULT CALLBACK FormWindow::TopProcedure(HWND window, UINT message, WPARAM wParam,
                                          LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* self = reinterpret_cast<FormWindow*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
  if (self == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return self->TopMessage(window, message, wParam, lParam);
}

LRESULT FormWindow::TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == findMessage_ && findMessage_ != 0) {
    char name[256] = {};
    const UINT length =
        ::GlobalGetAtomNameA(static_cast<ATOM>(wParam), name, static_cast<int>(sizeof name));
    if (length == 0) return 0;
    Flush();  // whoever looks from outside sees the trees as the model has them
    return reinterpret_cast<LRESULT>(Find(std::string_view(name, length)));
  }
  if (message == syncMessage_ && syncMessage_ != 0) {
    syncPosted_ = false;
    Flush();
    return 0;
  }
  for (const auto& [registered, handler] : registeredHandlers_) {
    if (message == registered) {
      Run(handler);
      return 0;
    }
  }
  LRESULT result = 0;
  if (ControlNotification(message, wParam, lParam, result)) return result;
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
      ::SetBkColor(reinterpret_cast<HDC>(wParam), ::GetSysColor(COLOR_BTNFACE));
      return reinterpret_cast<LRESULT>(::GetSysColorBrush(COLOR_BTNFACE));
    case WM_TIMER:
      if (wParam == kTimer1) Run(form_.Timer1.Tick);
      return 0;
    case WM_SETCURSOR:
      // While the window is busy the hourglass stands over it and every control in it; the
      // controls ask here first.
      if (platform::win32::MainWindowPointer() == platform::kHourglassPointer) {
        ::SetCursor(::LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));
        return TRUE;
      }
      return ::DefWindowProcA(window, message, wParam, lParam);
    case WM_CLOSE:
      RequestUnload(kUnloadFromMenu);
      return 0;
    case WM_QUERYENDSESSION:
      return TRUE;
    case WM_ENDSESSION:
      if (wParam != 0) RequestUnload(kUnloadAtSessionEnd);
      return 0;
    case WM_DESTROY:
      form_.hWnd = 0;
      form_.Visible = false;
      if (Unloaded) Run(Unloaded);
      return 0;
    case WM_NCDESTROY:
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      window_ = nullptr;
      return ::DefWindowProcA(window, message, wParam, lParam);
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT CALLBACK FormWindow::ChildProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* bound = reinterpret_cast<BoundControl*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
  if (bound == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return bound->owner->ChildMessage(*bound, window, message, wParam, lParam);
}

LRESULT FormWindow::ChildMessage(BoundControl& bound, HWND window, UINT message, WPARAM wParam,
                                 LPARAM lParam) {
  LRESULT result = 0;
  if (ControlNotification(message, wParam, lParam, result)) return result;
  if (bound.kind != Kind::Spin &&
      Mouse(bound.control, bound.pressed, window, message, wParam, lParam)) {
    return 0;
  }
  switch (message) {
    case WM_ERASEBKGND:
      return 1;  // painting covers the whole window
    case WM_PAINT:
      if (bound.kind == Kind::Label) {
        PaintBuffered(window, [&](HDC dc) { PaintLabel(bound, window, dc); });
      } else if (bound.kind == Kind::Spin) {
        PAINTSTRUCT ps{};
        HDC dc = ::BeginPaint(window, &ps);
        ::FillRect(dc, &ps.rcPaint, ::GetSysColorBrush(COLOR_BTNFACE));
        ::EndPaint(window, &ps);
      } else {
        PaintBuffered(window, [&](HDC dc) { PaintPicture(bound, dc); });
      }
      return 0;
    case WM_PRINTCLIENT:
      if (bound.kind == Kind::Label) {
        PaintLabel(bound, window, reinterpret_cast<HDC>(wParam));
      } else {
        PaintPicture(bound, reinterpret_cast<HDC>(wParam));
      }
      return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: {
      // Check boxes and sliders standing in a picture box take its back colour.
      const auto* box = dynamic_cast<PictureBox*>(bound.control);
      const std::uint32_t color = box != nullptr ? box->BackColor & 0xFFFFFFu
                                                 : ::GetSysColor(COLOR_BTNFACE);
      ::SetBkColor(reinterpret_cast<HDC>(wParam), color);
      return reinterpret_cast<LRESULT>(BrushOf(color));
    }
    case WM_SETFOCUS:
      if (bound.kind == Kind::Spin && bound.edit != nullptr) ::SetFocus(bound.edit);
      return 0;
    case WM_NCDESTROY:
      Forget(window);
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      return ::DefWindowProcA(window, message, wParam, lParam);
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT CALLBACK FormWindow::SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam, UINT_PTR /*id*/, DWORD_PTR data) {
  auto* bound = reinterpret_cast<BoundControl*>(data);
  FormWindow& self = *bound->owner;
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
  const auto& mouseMove = control != nullptr ? control->MouseMove : MouseMove;
  const auto& mouseDown = control != nullptr ? control->MouseDown : MouseDown;
  const auto& click = control != nullptr ? control->Click : Click;
  const std::function<void()> none;
  const auto& dblClick = control != nullptr ? control->DblClick : none;
  const float x = TwipsOf(GET_X_LPARAM(lParam));
  const float y = TwipsOf(GET_Y_LPARAM(lParam));
  auto down = [&](std::int16_t button) {
    if (mouseDown) Run([&] { mouseDown(button, ShiftOf(wParam), x, y); });
  };
  switch (message) {
    case WM_MOUSEMOVE:
      if (mouseMove) Run([&] { mouseMove(ButtonsOf(wParam), ShiftOf(wParam), x, y); });
      return true;
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

bool FormWindow::ControlNotification(UINT message, WPARAM wParam, LPARAM lParam,
                                     LRESULT& result) {
  switch (message) {
    case WM_NOTIFY: {
      const auto* header = reinterpret_cast<const NMHDR*>(lParam);
      if (header == nullptr) return false;
      const auto found = byWindow_.find(header->hwndFrom);
      if (found == byWindow_.end() || found->second->kind != Kind::Tree) return false;
      TreeNotification(*found->second, *header, lParam);
      result = 0;
      return true;
    }
    case WM_COMMAND: {
      const auto found = byWindow_.find(reinterpret_cast<HWND>(lParam));
      if (lParam == 0 || found == byWindow_.end()) return false;
      BoundControl& bound = *found->second;
      const UINT code = HIWORD(wParam);
      if (bound.kind == Kind::Check && code == BN_CLICKED && applying_ == 0) {
        const LRESULT state = ::SendMessageA(bound.window, BM_GETCHECK, 0, 0);
        auto& check = static_cast<CheckBox&>(*bound.control);
        Run([&] { check.Value(static_cast<std::int16_t>(state == BST_CHECKED ? 1 : 0)); });
      } else if (bound.kind == Kind::Spin && code == EN_CHANGE && applying_ == 0) {
        SpinEdited(bound);
      }
      result = 0;
      return true;
    }
    case WM_HSCROLL:
    case WM_VSCROLL: {
      const auto found = byWindow_.find(reinterpret_cast<HWND>(lParam));
      if (lParam == 0 || found == byWindow_.end()) return false;
      BoundControl& bound = *found->second;
      if (bound.kind == Kind::Slider && applying_ == 0) {
        auto& slider = static_cast<ValueControl&>(*bound.control);
        const auto position =
            static_cast<std::int32_t>(::SendMessageA(bound.window, TBM_GETPOS, 0, 0));
        if (position != slider.Value()) Run([&] { slider.Value(position); });
      }
      result = 0;
      return true;
    }
    default:
      return false;
  }
}

void FormWindow::SpinEdited(BoundControl& bound) {
  if (bound.edit == nullptr) return;
  char text[32] = {};
  const int length = ::GetWindowTextA(bound.edit, text, static_cast<int>(sizeof text));
  std::int32_t value = 0;
  const char* end = text + std::max(0, length);
  const auto [stop, error] = std::from_chars(text, end, value);
  auto& spin = static_cast<ValueControl&>(*bound.control);
  // Text that is no number, or a number out of range, waits for the user to finish typing.
  if (error != std::errc() || stop != end || value < spin.Min || value > spin.Max) return;
  if (value != spin.Value()) Run([&] { spin.Value(value); });
}

// --- tree views -------------------------------------------------------------------------------

void FormWindow::UseImages(BoundControl& bound) {
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
  for (auto& bound : bound_) {
    if (bound->images != &list || bound->window == nullptr) continue;
    if (remade) {
      ::SendMessageA(bound->window, TVM_SETIMAGELIST, TVSIL_NORMAL,
                     reinterpret_cast<LPARAM>(list.list.Get()));
    }
    if (::IsWindowVisible(bound->window) != 0) ::InvalidateRect(bound->window, nullptr, FALSE);
  }
}

void FormWindow::SyncNodes(BoundControl& bound) {
  auto& tree = static_cast<TreeView&>(*bound.control);
  const auto count = static_cast<std::size_t>(tree.Count());
  Applying applying(applying_);
  if (count < bound.items.size()) {
    ::SendMessageA(bound.window, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    bound.items.clear();
    bound.mirror.clear();
  }
  const bool added = bound.items.size() < count;
  while (bound.items.size() < count) {
    InsertNode(bound, static_cast<std::int32_t>(bound.items.size()) + 1);
  }
  // Expansion and selection need the nodes in place; they follow together.
  if (added || count == 0 || tree.SelectedItem() != 0) ScheduleNodeStates(bound);
}

void FormWindow::InsertNode(BoundControl& bound, std::int32_t position) {
  const Node& node = static_cast<TreeView&>(*bound.control).Item(position);
  if (node.Parent > 0 && !bound.hasLines) {
    // A tree of more than one level shows its lines and buttons.
    const LONG_PTR style = ::GetWindowLongPtrA(bound.window, GWL_STYLE);
    ::SetWindowLongPtrA(bound.window, GWL_STYLE,
                        style | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT);
    bound.hasLines = true;
  }
  TVINSERTSTRUCTA insert{};
  insert.hParent = TVI_ROOT;
  if (node.Parent > 0 && static_cast<std::size_t>(node.Parent) <= bound.items.size()) {
    insert.hParent = bound.items[static_cast<std::size_t>(node.Parent) - 1];
  }
  insert.hInsertAfter = TVI_LAST;
  std::string text = node.Text;
  insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM | TVIF_STATE;
  insert.item.pszText = text.data();
  insert.item.iImage = ImageIndexOf(node.Image);
  insert.item.iSelectedImage = ImageIndexOf(node.SelectedImage);
  insert.item.lParam = position;
  insert.item.state = node.Bold ? TVIS_BOLD : 0;
  insert.item.stateMask = TVIS_BOLD;
  auto item = reinterpret_cast<HTREEITEM>(
      ::SendMessageA(bound.window, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
  bound.items.push_back(item);
  NodeMirror mirror;
  mirror.text = node.Text;
  mirror.image = node.Image;
  mirror.selectedImage = node.SelectedImage;
  mirror.bold = node.Bold;
  bound.mirror.push_back(std::move(mirror));
}

void FormWindow::ScheduleNodeStates(BoundControl& bound) {
  if (!bound.statePending) {
    bound.statePending = true;
    pendingStates_.push_back(&bound);
  }
  if (!syncPosted_ && window_ != nullptr && syncMessage_ != 0) {
    syncPosted_ = ::PostMessageA(window_, syncMessage_, 0, 0) != 0;
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
  Applying applying(applying_);
  const std::size_t count =
      std::min(bound.items.size(), static_cast<std::size_t>(std::max(0, tree.Count())));
  for (std::size_t i = 0; i < count; ++i) {
    const Node& node = tree.Item(static_cast<std::int32_t>(i) + 1);
    NodeMirror& shown = bound.mirror[i];
    HTREEITEM item = bound.items[i];
    if (node.Text != shown.text || node.Image != shown.image ||
        node.SelectedImage != shown.selectedImage || node.Bold != shown.bold) {
      std::string text = node.Text;
      TVITEMA change{};
      change.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
      change.hItem = item;
      change.pszText = text.data();
      change.iImage = ImageIndexOf(node.Image);
      change.iSelectedImage = ImageIndexOf(node.SelectedImage);
      change.state = node.Bold ? TVIS_BOLD : 0;
      change.stateMask = TVIS_BOLD;
      ::SendMessageA(bound.window, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&change));
      shown.text = node.Text;
      shown.image = node.Image;
      shown.selectedImage = node.SelectedImage;
      shown.bold = node.Bold;
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

std::int32_t FormWindow::PositionOfItem(BoundControl& bound, HTREEITEM item) {
  if (item == nullptr) return 0;
  TVITEMA query{};
  query.mask = TVIF_HANDLE | TVIF_PARAM;
  query.hItem = item;
  if (::SendMessageA(bound.window, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&query)) == 0) {
    return 0;
  }
  const auto position = static_cast<std::int32_t>(query.lParam);
  const bool known = position >= 1 && static_cast<std::size_t>(position) <= bound.items.size() &&
                     bound.items[static_cast<std::size_t>(position) - 1] == item;
  return known ? position : 0;
}

void FormWindow::TreeNotification(BoundControl& bound, const NMHDR& header, LPARAM lParam) {
  auto& tree = static_cast<TreeView&>(*bound.control);
  switch (header.code) {
    case NM_CLICK: {
      // The click comes before the tree view moves its selection: the node under the pointer
      // is selected in the model first, so that Click reads it. The point is where the button
      // went down, which the tree view's own processing of the press is about.
      TVHITTESTINFO hit{};
      hit.pt = bound.lastPress;
      if (hit.pt.x < 0 && hit.pt.y < 0) {
        const DWORD at = ::GetMessagePos();
        hit.pt = POINT{GET_X_LPARAM(at), GET_Y_LPARAM(at)};
        ::ScreenToClient(bound.window, &hit.pt);
      }
      ::SendMessageA(bound.window, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
      if (hit.hItem != nullptr && (hit.flags & TVHT_ONITEM) != 0) {
        const std::int32_t position = PositionOfItem(bound, hit.hItem);
        if (position != 0 && position != tree.SelectedItem()) Run([&] { tree.Select(position); });
      }
      Run(tree.Click);
      break;
    }
    case NM_DBLCLK:
      Run(tree.DblClick);
      break;
    case TVN_SELCHANGEDA:
    case TVN_SELCHANGEDW: {
      if (applying_ != 0) break;
      const auto& change = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
      if (change.action != TVC_BYMOUSE && change.action != TVC_BYKEYBOARD) break;
      const std::int32_t position = PositionOfItem(bound, change.itemNew.hItem);
      if (position != 0 && position != tree.SelectedItem()) Run([&] { tree.Select(position); });
      // A mouse click runs Click through NM_CLICK; the keyboard has no other way.
      if (change.action == TVC_BYKEYBOARD) Run(tree.Click);
      break;
    }
    case TVN_ITEMEXPANDEDA:
    case TVN_ITEMEXPANDEDW: {
      const auto& change = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
      const std::int32_t position = PositionOfItem(bound, change.itemNew.hItem);
      if (position == 0 || position > tree.Count()) break;
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
