// The binding's part for the collection editor's kinds of control: a report list as the
// platform's list view, whose rows follow the model's items and whose selection the user's
// clicks and keys give back to the model; and a one-line text box as the platform's edit.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ui/win32/FormWindow.h"

namespace quorvane::ui::win32 {

namespace {

// The text of a window, whole.
std::string WindowText(HWND window) {
  const int length = ::GetWindowTextLengthA(window);
  std::string text(static_cast<std::size_t>(std::max(0, length)) + 1, '\0');
  const int read = ::GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(std::max(0, read)));
  return text;
}

void SetCell(HWND list, int row, int column, const std::string& text, bool insert) {
  std::string copy = text;
  LVITEMA item{};
  item.mask = LVIF_TEXT;
  item.iItem = row;
  item.iSubItem = column;
  item.pszText = copy.data();
  ::SendMessageA(list, insert ? LVM_INSERTITEMA : LVM_SETITEMTEXTA,
                 insert ? 0 : static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

}  // namespace

// --- report lists -------------------------------------------------------------------------------

void FormWindow::MakeListWindow(BoundControl& bound) {
  const auto& list = static_cast<ListView&>(*bound.control);
  MakeChild(bound, {.className = WC_LISTVIEWA,
                    .style = static_cast<DWORD>(WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS |
                                                (list.MultiSelect ? 0 : LVS_SINGLESEL)),
                    .extendedStyle = WS_EX_CLIENTEDGE});
  UseCaptionFont(bound.window);
  ::SendMessageA(bound.window, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT,
                 LVS_EX_FULLROWSELECT);
  int index = 0;
  for (const ColumnHeader& header : list.ColumnHeaders) {
    std::string text = header.Text;
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.cx = ToPixels(header.Width);
    column.pszText = text.data();
    column.iSubItem = index;
    ::SendMessageA(bound.window, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index),
                   reinterpret_cast<LPARAM>(&column));
    ++index;
  }
  ApplyListItems(bound);
}

void FormWindow::ApplyListItems(BoundControl& bound) {
  const auto& list = static_cast<ListView&>(*bound.control);
  Applying applying(*this);
  const auto columns = static_cast<int>(list.ColumnHeaders.size());
  const auto shown = static_cast<int>(::SendMessageA(bound.window, LVM_GETITEMCOUNT, 0, 0));
  // The rows that read as the model's items already stay; the rest are written anew, so that
  // adding one item at the end writes that one row.
  int same = 0;
  char cell[1024];
  while (same < shown && same < list.Count()) {
    const ListItem& item = list.Item(same + 1);
    bool equal = true;
    for (int column = 0; equal && column < std::max(columns, 1); ++column) {
      LVITEMA query{};
      query.iSubItem = column;
      query.pszText = cell;
      query.cchTextMax = static_cast<int>(sizeof cell);
      ::SendMessageA(bound.window, LVM_GETITEMTEXTA, static_cast<WPARAM>(same),
                     reinterpret_cast<LPARAM>(&query));
      const std::string& wanted =
          column == 0 ? item.Text
          : static_cast<std::size_t>(column) <= item.SubItems.size()
              ? item.SubItems[static_cast<std::size_t>(column - 1)]
              : std::string();
      equal = wanted == cell;
    }
    if (!equal) break;
    ++same;
  }
  ::SendMessageA(bound.window, WM_SETREDRAW, FALSE, 0);
  for (int row = shown - 1; row >= same; --row) {
    ::SendMessageA(bound.window, LVM_DELETEITEM, static_cast<WPARAM>(row), 0);
  }
  for (int row = same; row < list.Count(); ++row) {
    const ListItem& item = list.Item(row + 1);
    SetCell(bound.window, row, 0, item.Text, true);
    for (int column = 1; column < columns; ++column) {
      const std::string empty;
      const std::string& text = static_cast<std::size_t>(column) <= item.SubItems.size()
                                    ? item.SubItems[static_cast<std::size_t>(column - 1)]
                                    : empty;
      SetCell(bound.window, row, column, text, false);
    }
  }
  ::SendMessageA(bound.window, WM_SETREDRAW, TRUE, 0);
  ApplyListStates(bound);
  ::InvalidateRect(bound.window, nullptr, TRUE);
}

void FormWindow::ApplyListStates(BoundControl& bound) {
  const auto& list = static_cast<ListView&>(*bound.control);
  Applying applying(*this);
  const auto shown = static_cast<int>(::SendMessageA(bound.window, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < shown && row < list.Count(); ++row) {
    const bool selected = list.Item(row + 1).Selected;
    const bool focused = list.SelectedItem() == row + 1;
    LVITEMA state{};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    state.state = (selected ? LVIS_SELECTED : 0u) | (focused ? LVIS_FOCUSED : 0u);
    const UINT now = static_cast<UINT>(::SendMessageA(bound.window, LVM_GETITEMSTATE,
                                                       static_cast<WPARAM>(row),
                                                       LVIS_SELECTED | LVIS_FOCUSED));
    if (now == state.state) continue;
    ::SendMessageA(bound.window, LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                   reinterpret_cast<LPARAM>(&state));
  }
  if (list.SelectedItem() != 0) {
    ::SendMessageA(bound.window, LVM_ENSUREVISIBLE, static_cast<WPARAM>(list.SelectedItem() - 1),
                   FALSE);
  }
}

void FormWindow::ListNotification(BoundControl& bound, const NMHDR& header, LPARAM lParam) {
  auto& list = static_cast<ListView&>(*bound.control);
  switch (header.code) {
    case LVN_ITEMCHANGED: {
      if (IsApplying()) return;
      const auto& change = *reinterpret_cast<const NMLISTVIEW*>(lParam);
      if ((change.uChanged & LVIF_STATE) == 0) return;
      const bool was = (change.uOldState & LVIS_SELECTED) != 0;
      const bool is = (change.uNewState & LVIS_SELECTED) != 0;
      if (was == is) return;
      // Every row at once (-1), or one row: the model follows the user's choice.
      const int first = change.iItem < 0 ? 0 : change.iItem;
      const int last = change.iItem < 0 ? list.Count() - 1 : change.iItem;
      for (int row = first; row <= last && row < list.Count(); ++row) {
        if (list.Item(row + 1).Selected != is) Run([&] { list.Select(row + 1, is); });
      }
      break;
    }
    case NM_CLICK:
    case NM_DBLCLK: {
      const auto& activate = *reinterpret_cast<const NMITEMACTIVATE*>(lParam);
      if (activate.iItem >= 0) Run(list.ItemClick);
      break;
    }
    default:
      break;
  }
}

void FormWindow::ListKeyUp(BoundControl& bound) {
  Run(static_cast<ListView&>(*bound.control).KeyUp);
}

// --- text boxes ---------------------------------------------------------------------------------

void FormWindow::MakeTextWindow(BoundControl& bound) {
  // The box's window text is what it holds; its system name is its accessible name, and the
  // form finds it by that name as it finds every control.
  MakeChild(bound, {.className = "EDIT", .style = WS_TABSTOP | ES_AUTOHSCROLL,
                    .extendedStyle = WS_EX_CLIENTEDGE});
  UseCaptionFont(bound.window);
  ApplyText(bound);
}

void FormWindow::ApplyText(BoundControl& bound) {
  const auto& box = static_cast<TextBox&>(*bound.control);
  if (WindowText(bound.window) == box.Text()) return;
  Applying applying(*this);
  ::SetWindowTextA(bound.window, box.Text().c_str());
}

void FormWindow::TextEdited(BoundControl& bound) {
  auto& box = static_cast<TextBox&>(*bound.control);
  const std::string typed = WindowText(bound.window);
  if (typed != box.Text()) Run([&] { box.Text(typed); });
}

// --- tool tips ----------------------------------------------------------------------------------

void FormWindow::GiveToolTip(BoundControl& bound) {
  // The tip window belongs to the form's window and goes with it.
  HWND tip = ::CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                               WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, window_, nullptr,
                               instance_, nullptr);
  if (tip == nullptr) return;
  std::string text = bound.control->ToolTipText;
  TTTOOLINFOA tool{};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = window_;
  tool.uId = reinterpret_cast<UINT_PTR>(bound.window);
  tool.lpszText = text.data();
  ::SendMessageA(tip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace quorvane::ui::win32
