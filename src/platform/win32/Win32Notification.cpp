#include "platform/win32/Win32Notification.h"

#include <algorithm>

#include "platform/win32/GdiHandles.h"
#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

namespace {

const char kClassName[] = "QuorvaneNotification";
const char kTitle[] = "Quorvane";
constexpr UINT_PTR kStepTimer = 1;
constexpr UINT_PTR kStayTimer = 2;

// The notification's face: the office colours of the program's menu (0xBBGGRR).
constexpr COLORREF kBorder = 0x7B878A;
constexpr COLORREF kTop = 0xFAFCFD;
constexpr COLORREF kBottom = 0xEEF6F7;
constexpr COLORREF kAccent = 0xC56A31;
constexpr COLORREF kText = 0x000000;
constexpr COLORREF kCloseMark = 0x7B878A;

// Sizes at 96 dots per inch.
constexpr int kWidth = 280;
constexpr int kPadding = 10;
constexpr int kMargin = 8;
constexpr int kTitleGap = 6;
constexpr int kPictureGap = 10;
constexpr int kCloseSize = 7;

int Scaled(int pixels, int dpi) { return MulDiv(pixels, dpi, 96); }

UniqueFont Tahoma(int dpi, bool bold) {
  return UniqueFont(::CreateFontA(-MulDiv(8, dpi, 72), 0, 0, 0, bold ? FW_BOLD : FW_NORMAL,
                                  FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                  CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH | FF_SWISS,
                                  "Tahoma"));
}

void FillColour(HDC dc, const RECT& area, COLORREF colour) {
  ::SetBkColor(dc, colour);
  ::ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

COLORREF Mix(COLORREF a, COLORREF b, int at, int of) {
  const auto channel = [&](int shift) {
    const int x = static_cast<int>((a >> shift) & 0xFF);
    const int y = static_cast<int>((b >> shift) & 0xFF);
    return static_cast<COLORREF>(of <= 0 ? x : x + (y - x) * at / of) << shift;
  };
  return channel(0) | channel(8) | channel(16);
}

int ScreenDpi() {
  WindowDC screen;
  const int dpi = screen ? ::GetDeviceCaps(screen.Get(), LOGPIXELSY) : 96;
  return dpi > 0 ? dpi : 96;
}

}  // namespace

Win32Notification::~Win32Notification() {
  if (window_ != nullptr) {
    ::SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
    ::DestroyWindow(window_);
  }
  if (owner_ != nullptr) ::DestroyWindow(owner_);
}

void Win32Notification::SetOption(std::int32_t number, std::int32_t value) {
  options_[number] = value;
}

void Win32Notification::SetPicture(const Pixels& picture) { picture_ = picture; }

void Win32Notification::SetText(const std::string& text) { text_ = text; }

void Win32Notification::Show() {
  Close();
  HINSTANCE instance = ::GetModuleHandleA(nullptr);
  WNDCLASSEXA kind{};
  kind.cbSize = sizeof kind;
  if (::GetClassInfoExA(instance, kClassName, &kind) == 0) {
    kind = WNDCLASSEXA{};
    kind.cbSize = sizeof kind;
    kind.style = CS_DROPSHADOW;
    kind.lpfnWndProc = &Win32Notification::Procedure;
    kind.hInstance = instance;
    kind.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32649));  // the hand: a click closes
    kind.lpszClassName = kClassName;
    if (::RegisterClassExA(&kind) == 0) return;
  }
  plan_ = notification::PlanOf(options_);
  shownPicture_ = picture_;
  shownText_ = text_;
  dpi_ = ScreenDpi();
  Measure(dpi_);
  step_ = 1;
  phase_ = Phase::Rising;
  // Owned by a hidden window of its own, so that no task bar gives it a button.
  if (owner_ == nullptr) {
    owner_ = ::CreateWindowExA(WS_EX_TOOLWINDOW, "STATIC", "QuorvaneNotificationOwner", WS_POPUP,
                               0, 0, 0, 0, nullptr, nullptr, instance, nullptr);
  }
  window_ = ::CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kClassName,
                              shownText_.c_str(), WS_POPUP, 0, 0, width_, height_, owner_,
                              nullptr, instance, this);
  if (window_ == nullptr) return;
  Place();
  ::ShowWindow(window_, SW_SHOWNOACTIVATE);
  ::SetTimer(window_, kStepTimer, static_cast<UINT>(plan_.stepMilliseconds), nullptr);
}

void Win32Notification::Measure(int dpi) {
  width_ = Scaled(kWidth, dpi);
  const int padding = Scaled(kPadding, dpi);
  const int pictureWidth =
      shownPicture_.Empty() ? 0 : shownPicture_.width + Scaled(kPictureGap, dpi);
  WindowDC screen;
  UniqueFont bold = Tahoma(dpi, true);
  UniqueFont plain = Tahoma(dpi, false);
  int titleHeight = 0;
  {
    SelectScope font(screen.Get(), bold.Get());
    TEXTMETRICA metrics{};
    ::GetTextMetricsA(screen.Get(), &metrics);
    titleHeight = metrics.tmHeight;
  }
  RECT text{0, 0, width_ - 2 * padding - pictureWidth, 0};
  {
    SelectScope font(screen.Get(), plain.Get());
    ::DrawTextA(screen.Get(), shownText_.c_str(), static_cast<int>(shownText_.size()), &text,
                DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
  }
  const int body = std::max<int>(titleHeight + Scaled(kTitleGap, dpi) + (text.bottom - text.top),
                                 shownPicture_.Empty() ? 0 : shownPicture_.height);
  height_ = body + 2 * padding;
}

void Win32Notification::Place() {
  RECT work{};
  if (::SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0) == 0) {
    work = RECT{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
  }
  // A shell whose work area takes in its task bar (a virtual desktop's) still has the bar over
  // it: the notification stands clear of it.
  RECT bar{};
  const HWND taskBar = ::FindWindowA("Shell_TrayWnd", nullptr);
  if (taskBar != nullptr && ::IsWindowVisible(taskBar) != 0 && ::GetWindowRect(taskBar, &bar) != 0) {
    const int middle = (work.top + work.bottom) / 2;
    if (bar.top > middle && bar.top < work.bottom) work.bottom = bar.top;
    if (bar.bottom < middle && bar.bottom > work.top) work.top = bar.bottom;
  }
  const notification::Box box = notification::PlaceAt(
      plan_, {work.left, work.top, work.right, work.bottom}, width_, height_,
      Scaled(kMargin, dpi_), step_);
  ::SetWindowPos(window_, HWND_TOPMOST, box.left, box.top, box.right - box.left,
                 std::max(1, box.bottom - box.top), SWP_NOACTIVATE);
  ::InvalidateRect(window_, nullptr, FALSE);
}

void Win32Notification::Paint(HDC target) {
  RECT client{};
  ::GetClientRect(window_, &client);
  // Drawn whole at its full height, then the part that has come out is copied.
  UniqueMemoryDC memory(::CreateCompatibleDC(target));
  UniqueBitmap bitmap(::CreateCompatibleBitmap(target, width_, height_));
  if (!memory || !bitmap) return;
  SelectScope selected(memory.Get(), bitmap.Get());
  HDC dc = memory.Get();
  for (int y = 0; y < height_; ++y) {
    FillColour(dc, RECT{0, y, width_, y + 1}, Mix(kTop, kBottom, y, height_));
  }
  const int padding = Scaled(kPadding, dpi_);
  FillColour(dc, RECT{0, 0, width_, Scaled(3, dpi_)}, kAccent);
  int left = padding;
  if (!shownPicture_.Empty()) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = shownPicture_.width;
    info.bmiHeader.biHeight = -shownPicture_.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    ::SetDIBitsToDevice(dc, left, padding, static_cast<DWORD>(shownPicture_.width),
                        static_cast<DWORD>(shownPicture_.height), 0, 0, 0,
                        static_cast<UINT>(shownPicture_.height), shownPicture_.bgra.data(), &info,
                        DIB_RGB_COLORS);
    left += shownPicture_.width + Scaled(kPictureGap, dpi_);
  }
  ::SetBkMode(dc, TRANSPARENT);
  UniqueFont bold = Tahoma(dpi_, true);
  UniqueFont plain = Tahoma(dpi_, false);
  int titleHeight = 0;
  {
    SelectScope font(dc, bold.Get());
    TEXTMETRICA metrics{};
    ::GetTextMetricsA(dc, &metrics);
    titleHeight = metrics.tmHeight;
    ::SetTextColor(dc, kText);
    ::TextOutA(dc, left, padding, kTitle, static_cast<int>(sizeof kTitle - 1));
  }
  {
    SelectScope font(dc, plain.Get());
    RECT text{left, padding + titleHeight + Scaled(kTitleGap, dpi_), width_ - padding,
              height_ - padding};
    ::SetTextColor(dc, kText);
    ::DrawTextA(dc, shownText_.c_str(), static_cast<int>(shownText_.size()), &text,
                DT_WORDBREAK | DT_NOPREFIX);
  }
  // The close mark: a small cross at the top right.
  const int mark = Scaled(kCloseSize, dpi_);
  const int markLeft = width_ - padding - mark;
  const int markTop = padding + Scaled(2, dpi_);
  const int thick = std::max(1, Scaled(1, dpi_));
  for (int i = 0; i < mark; ++i) {
    FillColour(dc, RECT{markLeft + i, markTop + i, markLeft + i + thick, markTop + i + thick},
               kCloseMark);
    FillColour(dc,
               RECT{markLeft + mark - 1 - i, markTop + i, markLeft + mark - 1 - i + thick,
                    markTop + i + thick},
               kCloseMark);
  }
  // The border round the whole window.
  FillColour(dc, RECT{0, 0, width_, 1}, kBorder);
  FillColour(dc, RECT{0, height_ - 1, width_, height_}, kBorder);
  FillColour(dc, RECT{0, 0, 1, height_}, kBorder);
  FillColour(dc, RECT{width_ - 1, 0, width_, height_}, kBorder);
  // At the bottom it shows its top part first; at the top, its bottom part.
  const int shown = client.bottom - client.top;
  const bool bottom = plan_.corner == 0 || plan_.corner == 1;
  ::BitBlt(target, 0, 0, width_, shown, dc, 0, bottom ? 0 : height_ - shown, SRCCOPY);
}

void Win32Notification::Close() {
  if (window_ == nullptr) return;
  HWND window = window_;
  window_ = nullptr;
  ::DestroyWindow(window);
}

LRESULT CALLBACK Win32Notification::Procedure(HWND window, UINT message, WPARAM wParam,
                                              LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(create->lpCreateParams));
  }
  auto* self = reinterpret_cast<Win32Notification*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
  if (self == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return self->Message(window, message, wParam, lParam);
}

LRESULT Win32Notification::Message(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_MOUSEACTIVATE:
      return MA_NOACTIVATE;
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
      if (window == window_) Close();
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT: {
      PAINTSTRUCT ps{};
      HDC dc = ::BeginPaint(window, &ps);
      if (window == window_) Paint(dc);
      ::EndPaint(window, &ps);
      return 0;
    }
    case WM_TIMER:
      if (window != window_) return 0;
      if (wParam == kStayTimer) {
        ::KillTimer(window, kStayTimer);
        phase_ = Phase::Falling;
        ::SetTimer(window, kStepTimer, static_cast<UINT>(plan_.stepMilliseconds), nullptr);
        return 0;
      }
      if (phase_ == Phase::Rising) {
        if (++step_ >= plan_.steps) {
          step_ = plan_.steps;
          phase_ = Phase::Staying;
          ::KillTimer(window, kStepTimer);
          ::SetTimer(window, kStayTimer, static_cast<UINT>(plan_.seconds) * 1000U, nullptr);
        }
        Place();
      } else if (phase_ == Phase::Falling) {
        if (--step_ <= 0) {
          Close();
          return 0;
        }
        Place();
      }
      return 0;
    case WM_NCDESTROY:
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      if (window == window_) window_ = nullptr;
      return ::DefWindowProcA(window, message, wParam, lParam);
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace quorvane::platform::win32
