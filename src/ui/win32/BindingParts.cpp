#include "ui/win32/BindingParts.h"

#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <oleacc.h>
#include <windowsx.h>

#include <string>

namespace quorvane::ui::win32 {

namespace {

// The annotation service of the platform's accessibility layer, by its published identities.
const CLSID kAccPropServicesClass = {
    0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
const IID kAccPropServicesInterface = {
    0x6e26e776, 0x04f0, 0x495d, {0x80, 0xe4, 0x33, 0x30, 0x35, 0x2e, 0x31, 0x69}};
const GUID kAccNameProperty = {
    0x608d3df8, 0x8128, 0x4aa7, {0xa4, 0x28, 0xf5, 0x5e, 0x49, 0x26, 0x72, 0x91}};

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

}  // namespace

// --- names, units and classes -------------------------------------------------------------------

int ToPixels(std::int32_t twips) { return static_cast<int>(twips / kTwipsPerPixel); }

std::uint32_t ToHandleValue(const void* handle) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

std::runtime_error SystemFailure(const std::string& what) {
  return std::runtime_error(what + " (system error " + std::to_string(::GetLastError()) + ")");
}

HFONT MakeVerdana(int points, bool bold, bool underline) {
  return ::CreateFontA(-::MulDiv(points, 96, 72), 0, 0, 0, bold ? FW_BOLD : FW_NORMAL,
                       FALSE, underline ? TRUE : FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, "Verdana");
}

void RegisterWindowClass(HINSTANCE instance, const WindowClass& wanted, const char* refusal) {
  WNDCLASSEXA known{};
  known.cbSize = sizeof known;
  if (::GetClassInfoExA(instance, wanted.name, &known) != 0) return;
  WNDCLASSEXA made{};
  made.cbSize = sizeof made;
  made.style = wanted.style;
  made.lpfnWndProc = wanted.procedure;
  made.hInstance = instance;
  made.hIcon = wanted.icon;
  made.hIconSm = wanted.smallIcon;
  made.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
  made.hbrBackground = wanted.background;
  made.lpszClassName = wanted.name;
  if (::RegisterClassExA(&made) == 0) throw SystemFailure(refusal);
}

void DrawLabelCaption(HDC dc, const Label& label, HFONT font, RECT area) {
  HGDIOBJ oldFont = ::SelectObject(dc, font);
  ::SetBkMode(dc, TRANSPARENT);
  ::SetTextColor(dc, label.Enabled() ? label.ForeColor() & 0xFFFFFFu
                                     : ::GetSysColor(COLOR_GRAYTEXT));
  std::string caption = label.Caption();
  ::DrawTextA(dc, caption.data(), static_cast<int>(caption.size()), &area,
              DT_LEFT | DT_TOP | DT_WORDBREAK | DT_NOPREFIX);
  ::SelectObject(dc, oldFont);
}

// --- accessible names ---------------------------------------------------------------------------

AccessibleNames::~AccessibleNames() {
  if (service_ != nullptr) service_->Release();
}

void AccessibleNames::Connect() {
  if (service_ != nullptr) return;
  void* service = nullptr;
  if (SUCCEEDED(::CoCreateInstance(kAccPropServicesClass, nullptr, CLSCTX_INPROC_SERVER,
                                   kAccPropServicesInterface, &service))) {
    service_ = static_cast<IAccPropServices*>(service);
  }
}

void AccessibleNames::Give(HWND window, const std::string& name) const {
  if (service_ == nullptr) return;
  const std::wstring wide = Widen(name);
  service_->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                           kAccNameProperty, wide.c_str());
}

void AccessibleNames::Take(HWND window) const {
  if (service_ == nullptr) return;
  MSAAPROPID name = kAccNameProperty;
  service_->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &name, 1);
}

POINT MessagePointIn(HWND window) {
  const DWORD at = ::GetMessagePos();
  POINT point{GET_X_LPARAM(at), GET_Y_LPARAM(at)};
  ::ScreenToClient(window, &point);
  return point;
}

TVHITTESTINFO HitTestTree(HWND tree, POINT at) {
  TVHITTESTINFO hit{};
  hit.pt = at;
  ::SendMessageA(tree, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
  return hit;
}

}  // namespace quorvane::ui::win32
