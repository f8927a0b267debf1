#include "ui/win32/Win32Menus.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32/GdiHandles.h"
#include "ui/Form.h"
#include "ui/Menu.h"
#include "ui/win32/Handles.h"

namespace quorvane::ui::win32 {

namespace {

// The look of a menu without an OfficeMenu: the same layout in the style's defaults.
const OfficeMenu& DefaultStyle() {
  static const OfficeMenu style("OfficeMenu");
  return style;
}

// One pop-up being tracked: its items, its style and the drawing objects made for it.
struct Tracking {
  const OfficeMenu* style = nullptr;
  std::vector<Menu*> items;  // by command id - 1
  HMENU menu = nullptr;
  HWND owner = nullptr;
  int dpi = 96;
  UniqueFont font;
  HHOOK hook = nullptr;
};

Tracking* gTracking = nullptr;

constexpr UINT_PTR kOwnerSubclass = 0x51A7;
constexpr UINT_PTR kFrameSubclass = 0x51A8;

int Scaled(const Tracking& t, int pixels) { return MulDiv(pixels, t.dpi, 96); }
int SideBarWidth(const Tracking& t) { return Scaled(t, 24); }
int TextIndent(const Tracking& t) { return SideBarWidth(t) + Scaled(t, 8); }

COLORREF Colour(std::uint32_t bgr) { return static_cast<COLORREF>(bgr & 0xFFFFFF); }

void Fill(HDC dc, const RECT& area, std::uint32_t colour) {
  ::SetBkColor(dc, Colour(colour));
  ::ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

void Frame(HDC dc, const RECT& area, std::uint32_t colour) {
  Fill(dc, RECT{area.left, area.top, area.right, area.top + 1}, colour);
  Fill(dc, RECT{area.left, area.bottom - 1, area.right, area.bottom}, colour);
  Fill(dc, RECT{area.left, area.top, area.left + 1, area.bottom}, colour);
  Fill(dc, RECT{area.right - 1, area.top, area.right, area.bottom}, colour);
}

std::uint32_t Blend(std::uint32_t from, std::uint32_t to, int step, int steps) {
  std::uint32_t result = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const int a = static_cast<int>((from >> shift) & 0xFF);
    const int b = static_cast<int>((to >> shift) & 0xFF);
    const int c = steps <= 1 ? a : a + (b - a) * step / (steps - 1);
    result |= static_cast<std::uint32_t>(c) << shift;
  }
  return result;
}

// The side bar: a gradient from the first colour at the left to the second at the right.
void SideBar(HDC dc, const Tracking& t, const RECT& item) {
  const int width = SideBarWidth(t);
  for (int x = 0; x < width; ++x) {
    Fill(dc, RECT{item.left + x, item.top, item.left + x + 1, item.bottom},
         Blend(t.style->sidebargradientcolor1, t.style->sidebargradientcolor2, x, width));
  }
}

void CheckMark(HDC dc, const Tracking& t, const RECT& item, bool selected) {
  const int size = Scaled(t, 16);
  const int left = item.left + (SideBarWidth(t) - size) / 2;
  const int top = item.top + (item.bottom - item.top - size) / 2;
  const RECT box{left, top, left + size, top + size};
  Fill(dc, box, selected ? t.style->selectedcheckfillcolor : t.style->checkfillcolor);
  Frame(dc, box, t.style->selectedcheckbordercolor);
  // A tick of two strokes, a pixel thick per 96 dots per inch.
  const int thick = std::max(1, Scaled(t, 1));
  const int unit = size / 8;
  const POINT a{left + 2 * unit, top + 4 * unit};
  const POINT b{left + 3 * unit + unit / 2, top + 5 * unit + unit / 2};
  const POINT c{left + 6 * unit, top + 2 * unit + unit / 2};
  for (int i = 0; i <= b.x - a.x; ++i) {
    Fill(dc, RECT{a.x + i, a.y + i, a.x + i + thick, a.y + i + 2 * thick}, t.style->checkmarkcolor);
  }
  for (int i = 0; i <= c.x - b.x; ++i) {
    Fill(dc, RECT{b.x + i, b.y - i, b.x + i + thick, b.y - i + 2 * thick}, t.style->checkmarkcolor);
  }
}

void Measure(Tracking& t, MEASUREITEMSTRUCT& measure) {
  const std::size_t index = measure.itemData;
  if (index >= t.items.size()) return;
  const Menu& item = *t.items[index];
  if (item.IsSeparator()) {
    measure.itemWidth = static_cast<UINT>(TextIndent(t));
    measure.itemHeight = static_cast<UINT>(Scaled(t, 5));
    return;
  }
  platform::win32::WindowDC screen;
  platform::win32::SelectScope font(screen.Get(), t.font.Get());
  SIZE extent{};
  const std::string& caption = item.Caption();
  ::GetTextExtentPoint32A(screen.Get(), caption.data(), static_cast<int>(caption.size()), &extent);
  TEXTMETRICA metrics{};
  ::GetTextMetricsA(screen.Get(), &metrics);
  measure.itemWidth = static_cast<UINT>(TextIndent(t) + extent.cx + Scaled(t, 28));
  measure.itemHeight = static_cast<UINT>(std::max<int>(Scaled(t, 22), static_cast<int>(metrics.tmHeight) + Scaled(t, 8)));
}

void Draw(Tracking& t, const DRAWITEMSTRUCT& draw) {
  const std::size_t index = draw.itemData;
  if (index >= t.items.size()) return;
  const Menu& item = *t.items[index];
  HDC dc = draw.hDC;
  const RECT area = draw.rcItem;
  const bool selected = (draw.itemState & ODS_SELECTED) != 0 && !item.IsSeparator();
  const bool disabled = (draw.itemState & (ODS_DISABLED | ODS_GRAYED)) != 0;
  Fill(dc, area, t.style->backgroundcolor);
  SideBar(dc, t, area);
  if (item.IsSeparator()) {
    const int y = (area.top + area.bottom) / 2;
    Fill(dc, RECT{area.left + TextIndent(t), y, area.right, y + std::max(1, Scaled(t, 1))},
         t.style->separatorcolor);
    return;
  }
  if (selected && !disabled) {
    Fill(dc, area, t.style->selectedmenufillcolor);
    Frame(dc, area, t.style->selectedmenubordercolor);
  }
  if (item.Checked()) CheckMark(dc, t, area, selected);
  platform::win32::SelectScope font(dc, t.font.Get());
  ::SetBkMode(dc, TRANSPARENT);
  const std::uint32_t text = disabled ? t.style->disabledicontintcolor
                             : selected ? t.style->selectedmenutextcolor
                                        : t.style->menubartextcolor;
  ::SetTextColor(dc, Colour(text));
  RECT caption = area;
  caption.left += TextIndent(t);
  caption.right -= Scaled(t, 4);
  std::string captionText = item.Caption();
  ::DrawTextA(dc, captionText.data(), static_cast<int>(captionText.size()), &caption,
              DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_NOPREFIX | DT_END_ELLIPSIS);
}

// The menu's own frame: a line in the border colour round the window, the background colour
// between it and the items.
void PaintFrame(HWND window) {
  Tracking* t = gTracking;
  if (t == nullptr || t->items.empty()) return;
  RECT outer{};
  ::GetWindowRect(window, &outer);
  RECT first{};
  RECT last{};
  const int count = ::GetMenuItemCount(t->menu);
  if (count <= 0 || !::GetMenuItemRect(nullptr, t->menu, 0, &first) ||
      !::GetMenuItemRect(nullptr, t->menu, static_cast<UINT>(count - 1), &last)) {
    return;
  }
  HDC dc = ::GetWindowDC(window);
  if (dc == nullptr) return;
  const int width = outer.right - outer.left;
  const int height = outer.bottom - outer.top;
  const RECT items{first.left - outer.left, first.top - outer.top, first.right - outer.left,
                   last.bottom - outer.top};
  // Only what lies outside the items: they are drawn item by item.
  if (items.left > 0 && items.top > 0 && items.right < width + 1 && items.bottom < height + 1) {
    const std::uint32_t back = t->style->backgroundcolor;
    Fill(dc, RECT{0, 0, width, items.top}, back);
    Fill(dc, RECT{0, items.bottom, width, height}, back);
    // The side bar reaches the frame at the left.
    Fill(dc, RECT{0, 0, items.left, height}, t->style->sidebargradientcolor1);
    Fill(dc, RECT{items.right, items.top, width, items.bottom}, back);
    // The side bar runs on through the margin above and below the items.
    for (int x = 0; x < SideBarWidth(*t); ++x) {
      const std::uint32_t colour =
          Blend(t->style->sidebargradientcolor1, t->style->sidebargradientcolor2, x,
                SideBarWidth(*t));
      Fill(dc, RECT{items.left + x, 1, items.left + x + 1, items.top}, colour);
      Fill(dc, RECT{items.left + x, items.bottom, items.left + x + 1, height - 1}, colour);
    }
    Frame(dc, RECT{0, 0, width, height}, t->style->bordercolor);
  }
  ::ReleaseDC(window, dc);
}

LRESULT CALLBACK FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                UINT_PTR /*id*/, DWORD_PTR /*data*/) {
  switch (message) {
    case WM_NCPAINT:
    case WM_PAINT:
    case WM_PRINTCLIENT: {
      const LRESULT result = ::DefSubclassProc(window, message, wParam, lParam);
      PaintFrame(window);
      return result;
    }
    case WM_NCDESTROY:
      ::RemoveWindowSubclass(window, &FrameProcedure, kFrameSubclass);
      break;
    default:
      break;
  }
  return ::DefSubclassProc(window, message, wParam, lParam);
}

// The menu's window is made by the system while the menu is tracked; it is caught as it is made.
LRESULT CALLBACK WatchWindows(int code, WPARAM wParam, LPARAM lParam) {
  if (code == HC_ACTION && gTracking != nullptr) {
    const auto* sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (sent->message == WM_CREATE) {
      char name[16] = {};
      ::GetClassNameA(sent->hwnd, name, static_cast<int>(sizeof name));
      if (std::string(name) == "#32768") {
        ::SetWindowSubclass(sent->hwnd, &FrameProcedure, kFrameSubclass, 0);
      }
    }
  }
  return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                UINT_PTR /*id*/, DWORD_PTR /*data*/) {
  Tracking* t = gTracking;
  if (t != nullptr) {
    if (message == WM_MEASUREITEM) {
      auto& measure = *reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
      if (measure.CtlType == ODT_MENU) {
        Measure(*t, measure);
        return TRUE;
      }
    } else if (message == WM_DRAWITEM) {
      const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (draw.CtlType == ODT_MENU && reinterpret_cast<HMENU>(draw.hwndItem) == t->menu) {
        Draw(*t, draw);
        return TRUE;
      }
    }
  }
  return ::DefSubclassProc(window, message, wParam, lParam);
}

int ScreenDpi() {
  platform::win32::WindowDC screen;
  const int dpi = screen ? ::GetDeviceCaps(screen.Get(), LOGPIXELSY) : 96;
  return dpi > 0 ? dpi : 96;
}

}  // namespace

void Win32Menus::PopupMenu(ui::Form& form, ui::Menu& menu) {
  const HWND owner = platform::win32::ToNative<HWND>(form.hWnd);
  if (owner == nullptr || gTracking != nullptr) return;
  Tracking tracking;
  const OfficeMenu* style = OfficeMenuOf(menu);
  tracking.style = style != nullptr ? style : &DefaultStyle();
  tracking.owner = owner;
  tracking.dpi = ScreenDpi();
  tracking.font = UniqueFont(::CreateFontA(-MulDiv(8, tracking.dpi, 72), 0, 0, 0, FW_NORMAL, FALSE,
                                           FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                           CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                                           DEFAULT_PITCH | FF_SWISS, tracking.style->Font.c_str()));
  tracking.menu = ::CreatePopupMenu();
  if (tracking.menu == nullptr) return;
  for (Menu* item : menu.Items()) {
    if (!item->Visible()) continue;
    tracking.items.push_back(item);
    std::string caption = item->Caption();
    MENUITEMINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_FTYPE | MIIM_ID | MIIM_STATE | MIIM_DATA | MIIM_STRING;
    info.fType = MFT_OWNERDRAW | (item->IsSeparator() ? MFT_SEPARATOR : 0);
    info.fState = (item->Enabled() ? MFS_ENABLED : MFS_DISABLED) |
                  (item->Checked() ? MFS_CHECKED : MFS_UNCHECKED);
    info.wID = static_cast<UINT>(tracking.items.size());
    info.dwItemData = tracking.items.size() - 1;
    info.dwTypeData = caption.data();
    info.cch = static_cast<UINT>(caption.size());
    ::InsertMenuItemA(tracking.menu, static_cast<UINT>(tracking.items.size() - 1), TRUE, &info);
  }
  UniqueBrush background(::CreateSolidBrush(Colour(tracking.style->backgroundcolor)));
  MENUINFO look{};
  look.cbSize = sizeof look;
  look.fMask = MIM_BACKGROUND;
  look.hbrBack = background.Get();
  ::SetMenuInfo(tracking.menu, &look);

  gTracking = &tracking;
  ::SetWindowSubclass(owner, &OwnerProcedure, kOwnerSubclass, 0);
  tracking.hook = ::SetWindowsHookExA(WH_CALLWNDPROC, &WatchWindows, nullptr,
                                      ::GetCurrentThreadId());
  POINT at{};
  ::GetCursorPos(&at);
  // The owner in front, so that a click anywhere else closes the menu.
  ::SetForegroundWindow(owner);
  const BOOL chosen = ::TrackPopupMenu(tracking.menu, TPM_LEFTALIGN | TPM_TOPALIGN |
                                                          TPM_RIGHTBUTTON | TPM_RETURNCMD,
                                       at.x, at.y, 0, owner, nullptr);
  ::PostMessageA(owner, WM_NULL, 0, 0);
  if (tracking.hook != nullptr) ::UnhookWindowsHookEx(tracking.hook);
  ::RemoveWindowSubclass(owner, &OwnerProcedure, kOwnerSubclass);
  gTracking = nullptr;
  ::DestroyMenu(tracking.menu);

  if (chosen <= 0 || static_cast<std::size_t>(chosen) > tracking.items.size()) return;
  Menu* item = tracking.items[static_cast<std::size_t>(chosen) - 1];
  if (item->Click && item->Owner() != nullptr) RunEvent(*item->Owner(), item->Click);
}

}  // namespace quorvane::ui::win32
