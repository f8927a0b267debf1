#include "ui/win32/FormWindow.h"

#include <windows.h>
#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
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

struct BoundControl final : BoundWindow {
  explicit BoundControl(Kind what) : kind(what) {}
  void WindowDestroyed() override { mirror.clear(); }

  const Kind kind;
  bool pressed = false;   // the left button went down on the window and has not come up yet
  // Picture boxes: whether the persistent image is shown rather than the Picture.
  bool showsDrawn = false;
  // Tree views: what each item shows, by position from 1.
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

BoundControl& Of(BoundWindow& bound) { return static_cast<BoundControl&>(bound); }

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

}  // namespace

FormWindow::FormWindow(FrmMain& form, HINSTANCE instance, HICON icon, HICON smallIcon)
    : ControlBinding(instance), form_(form), icon_(icon), smallIcon_(smallIcon) {}

FormWindow::~FormWindow() {
  // The program's own objects may be gone already: nothing is called back while the windows go.
  Unloaded = nullptr;
  QueryUnload = nullptr;
  Failed = nullptr;
  Destroy();
  for (auto& list : imageLists_) list->model->Observe(nullptr);
}

void FormWindow::OnRegisteredMessage(const char* name, std::function<void()> handler) {
  const UINT message = ::RegisterWindowMessageA(name);
  if (message != 0) registeredHandlers_.emplace_back(message, std::move(handler));
}

void FormWindow::RegisterClasses() {
  RegisterWindowClass(Instance(),
                      {.name = kMainWindowClass,
                       .procedure = &ControlBinding::TopProcedure,
                       .style = CS_DBLCLKS,
                       .background = ::GetSysColorBrush(COLOR_BTNFACE),
                       .icon = icon_,
                       .smallIcon = smallIcon_},
                      "The main window's class was refused");
  for (const char* name : {kPictureClass, kLabelClass, kSpinClass}) {
    RegisterWindowClass(Instance(),
                        {.name = name,
                         .procedure = &ControlBinding::PartProcedure,
                         .style = CS_DBLCLKS},
                        "A control's class was refused");
  }
}

void FormWindow::Create() {
  if (Handle() != nullptr) return;
  Prepare(ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES | ICC_UPDOWN_CLASS | ICC_STANDARD_CLASSES |
          ICC_WIN95_CLASSES);
  RegisterClasses();
  syncMessage_ = ::RegisterWindowMessageA(kSyncMessage);

  const int width = ToPixels(form_.Width);
  const int height = ToPixels(form_.Height);
  const int left = (::GetSystemMetrics(SM_CXSCREEN) - width) / 2;
  const int top = (::GetSystemMetrics(SM_CYSCREEN) - height) / 2;
  HWND window = MakeTopWindow({.className = kMainWindowClass,
                               .caption = form_.Caption.c_str(),
                               .style = WS_POPUP | WS_CLIPCHILDREN | WS_SYSMENU | WS_MINIMIZEBOX,
                               .extendedStyle = WS_EX_APPWINDOW,
                               .frame = {left, top, left + width, top + height}},
                              "The main window was refused");
  ::SendMessageA(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon_));
  ::SendMessageA(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon_));
  form_.hWnd = ToHandleValue(window);
  form_.Icon = ToHandleValue(icon_);

  BindAll(form_.Controls());
  Flush();
  // The form's timer runs on the window from its creation to its end.
  if (form_.Timer1.Enabled() && form_.Timer1.Interval > 0) {
    ::SetTimer(window, kTimer1, static_cast<UINT>(form_.Timer1.Interval), nullptr);
  }
}

std::unique_ptr<BoundWindow> FormWindow::NewBound(Control& control) {
  return std::make_unique<BoundControl>(KindOf(control));
}

void FormWindow::MakeWindow(BoundWindow& record) {
  BoundControl& bound = Of(record);
  Control& control = *bound.control;
  // A picture box draws on a memory image of its size; the window shows that image.
  if (auto* box = dynamic_cast<PictureBox*>(&control)) {
    box->UseSurface(std::make_shared<MemorySurface>());
  }
  switch (bound.kind) {
    case Kind::Plain:
    case Kind::Picture:
      MakeChild(bound, {.className = kPictureClass, .style = WS_CLIPCHILDREN, .ownClass = true});
      break;
    case Kind::Label:
      MakeChild(bound, {.className = kLabelClass, .ownClass = true});
      break;
    case Kind::Tree:
      MakeChild(bound, {.className = WC_TREEVIEWA, .style = WS_TABSTOP | TVS_SHOWSELALWAYS,
                        .extendedStyle = WS_EX_CLIENTEDGE});
      UseCaptionFont(bound.window);
      break;
    case Kind::Check:
      MakeButton(bound, BS_AUTOCHECKBOX);
      break;
    case Kind::Slider:
      MakeChild(bound, {.className = TRACKBAR_CLASSA,
                        .style = WS_TABSTOP | TBS_HORZ | TBS_AUTOTICKS});
      UseCaptionFont(bound.window);
      break;
    case Kind::Spin:
      MakeSpinEdit(bound, kSpinClass);
      break;
  }
  // The system's controls tell the form about the mouse as the program's own windows do.
  if (bound.kind == Kind::Tree || bound.kind == Kind::Check || bound.kind == Kind::Slider) {
    ::SetWindowSubclass(bound.window, &FormWindow::SubclassProcedure, 1,
                        reinterpret_cast<DWORD_PTR>(&bound));
  }
  if (bound.kind == Kind::Tree) {
    ApplyImages(bound);
    ApplyNodes(bound);
  }
  ApplyValue(bound);
  ApplyEnabled(bound);
}

void FormWindow::Show() {
  Create();
  Flush();
  ::ShowWindow(Handle(), SW_SHOW);
  form_.Visible = true;
  ::RedrawWindow(Handle(), nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
}

void FormWindow::Hide() {
  if (Handle() != nullptr) ::ShowWindow(Handle(), SW_HIDE);
  form_.Visible = false;
}

void FormWindow::ApplyFormVisible() {
  if (Handle() == nullptr) return;
  const bool shown = ::IsWindowVisible(Handle()) != 0;
  if (form_.Visible && !shown) {
    ::ShowWindow(Handle(), SW_SHOW);
  } else if (!form_.Visible && shown) {
    ::ShowWindow(Handle(), SW_HIDE);
  }
}

void FormWindow::Destroy() {
  if (Handle() != nullptr) ::DestroyWindow(Handle());
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

void FormWindow::ApplyEnabled(BoundWindow& record) {
  BoundControl& bound = Of(record);
  EnableWindows(bound);
  if (bound.kind == Kind::Label || bound.kind == Kind::Picture) Repaint(bound);
}

void FormWindow::ApplyPicture(BoundWindow& record, Property which) {
  BoundControl& bound = Of(record);
  bound.showsDrawn = which == Property::Image;
  Repaint(bound);
}

void FormWindow::Repaint(BoundWindow& bound) {
  // A window that is not on the screen is painted whole when it comes; until then there is
  // nothing to draw again. (While the form loads hidden, that saves a request per change.)
  if (::IsWindowVisible(bound.window) == 0) return;
  // The labels standing in a picture box show it through them: they are drawn again with it.
  ::RedrawWindow(bound.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void FormWindow::ApplyValue(BoundWindow& record) {
  BoundControl& bound = Of(record);
  Applying applying(*this);
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
  DrawLabelCaption(dc, label, FontOf(label), area);
}

// --- window procedures ------------------------------------------------------------------------

LRESULT FormWindow::TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
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
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT FormWindow::PartMessage(BoundWindow& record, HWND window, UINT message, WPARAM wParam,
                                LPARAM lParam) {
  BoundControl& bound = Of(record);
  if (bound.kind != Kind::Spin &&
      Mouse(bound.control, bound.pressed, window, message, wParam, lParam)) {
    return 0;
  }
  switch (message) {
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
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT CALLBACK FormWindow::SubclassProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam, UINT_PTR /*id*/, DWORD_PTR data) {
  auto* bound = reinterpret_cast<BoundControl*>(data);
  auto& self = static_cast<FormWindow&>(*bound->binding);
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

void FormWindow::Command(BoundWindow& sender, UINT code) {
  BoundControl& bound = Of(sender);
  if (bound.kind == Kind::Check && code == BN_CLICKED) {
    const LRESULT state = ::SendMessageA(bound.window, BM_GETCHECK, 0, 0);
    auto& check = static_cast<CheckBox&>(*bound.control);
    Run([&] { check.Value(static_cast<std::int16_t>(state == BST_CHECKED ? 1 : 0)); });
  } else if (bound.kind == Kind::Spin && code == EN_CHANGE) {
    SpinEdited(bound);
  }
}

bool FormWindow::ControlMessage(BoundWindow& sender, UINT message, WPARAM /*wParam*/,
                                LRESULT& result) {
  if (message != WM_HSCROLL && message != WM_VSCROLL) return false;
  BoundControl& bound = Of(sender);
  if (bound.kind == Kind::Slider && !IsApplying()) {
    auto& slider = static_cast<ValueControl&>(*bound.control);
    const auto position =
        static_cast<std::int32_t>(::SendMessageA(bound.window, TBM_GETPOS, 0, 0));
    if (position != slider.Value()) Run([&] { slider.Value(position); });
  }
  result = 0;
  return true;
}

void FormWindow::SpinEdited(BoundControl& bound) {
  std::int32_t value = 0;
  const bool number = ReadSpinNumber(bound, value);
  auto& spin = static_cast<ValueControl&>(*bound.control);
  // Text that is no number, or a number out of range, waits for the user to finish typing.
  if (!number || value < spin.Min || value > spin.Max) return;
  if (value != spin.Value()) Run([&] { spin.Value(value); });
}

// --- tree views -------------------------------------------------------------------------------

void FormWindow::ApplyImages(BoundWindow& record) {
  BoundControl& bound = Of(record);
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
  for (const auto& record : Records()) {
    auto* bound = static_cast<BoundControl*>(record.get());
    if (bound->images != &list || bound->window == nullptr) continue;
    if (remade) {
      ::SendMessageA(bound->window, TVM_SETIMAGELIST, TVSIL_NORMAL,
                     reinterpret_cast<LPARAM>(list.list.Get()));
    }
    if (::IsWindowVisible(bound->window) != 0) ::InvalidateRect(bound->window, nullptr, FALSE);
  }
}

void FormWindow::ApplyNodes(BoundWindow& record) {
  BoundControl& bound = Of(record);
  auto& tree = static_cast<TreeView&>(*bound.control);
  const auto count = static_cast<std::size_t>(tree.Count());
  Applying applying(*this);
  if (count < bound.items.size()) {
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
  const Node& node = static_cast<TreeView&>(*bound.control).Item(position);
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
  AddTreeItem(bound, node, item);
  NodeMirror mirror;
  mirror.text = node.Text;
  mirror.image = node.Image;
  mirror.selectedImage = node.SelectedImage;
  mirror.bold = node.Bold;
  bound.mirror.push_back(std::move(mirror));
}

void FormWindow::ApplyNodeStates(BoundWindow& record) {
  BoundControl& bound = Of(record);
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
  const std::size_t count = NodesShown(bound, tree);
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
  ShowSelectedNode(bound, tree.SelectedItem());
}

void FormWindow::TreeNotification(BoundWindow& record, const NMHDR& header, LPARAM lParam) {
  BoundControl& bound = Of(record);
  auto& tree = static_cast<TreeView&>(*bound.control);
  switch (header.code) {
    case NM_CLICK: {
      // The click comes before the tree view moves its selection: the node under the pointer
      // is selected in the model first, so that Click reads it. The point is where the button
      // went down, which the tree view's own processing of the press is about.
      const bool pressed = bound.lastPress.x >= 0 || bound.lastPress.y >= 0;
      const POINT at = pressed ? bound.lastPress : MessagePointIn(bound.window);
      SelectNodeHit(bound, HitTestTree(bound.window, at));
      Run(tree.Click);
      break;
    }
    case NM_DBLCLK:
      Run(tree.DblClick);
      break;
    case TVN_SELCHANGEDA:
    case TVN_SELCHANGEDW:
      // A mouse click runs Click through NM_CLICK; the keyboard has no other way.
      if (FollowTreeSelection(bound, lParam) == TVC_BYKEYBOARD) Run(tree.Click);
      break;
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
