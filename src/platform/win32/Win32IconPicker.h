#pragma once
// The program's own icon picker, shown where the shell's picker does not work (it answers at
// once with neither OK nor Cancel, as a stub does). It keeps the shell picker's contract: a
// modal dialog owned by `owner`; `path` a buffer of `size` UTF-16 units holding the file shown
// first (up to its first NUL, or all `size` units when it has none); `index` the icon selected
// first. On OK the chosen file, a NUL and NULs up to `size` go to `path`, the chosen icon's
// position in the file goes to `index`, and the result is 1. On Cancel, or when the dialog
// can't be made, nothing is written and the result is 0. Nothing is ever written past `size`
// units: a file whose path does not fit can't be confirmed.
//
// The dialog, for a person and for a program that drives it from outside:
//
//   window                      class        id              window text
//   the dialog                  "#32770"     -               "Change Icon"
//   the prompt                  "Static"     kFileLabelId    "Look for icons in this file:"
//   the file's path             "Edit"       kPathId         the path
//   the file dialog's button    "Button"     kBrowseId       "Browse..."
//   the list's prompt           "Static"     kListLabelId    "Select an icon from the list below:"
//   the icons                   "ListBox"    kIconListId     "Icons"
//   the message line            "Static"     kMessageId      "" while the file gives icons;
//                                                            kNoIconsMessage or
//                                                            kTooLongMessage otherwise
//   OK                          "Button"     IDOK (1)        "OK"
//   Cancel                      "Button"     IDCANCEL (2)    "Cancel"
//
// The list is an owner-drawn list box of several columns that scrolls sideways: item i shows
// the 32 by 32 icon at position i of the file, top to bottom, then left to right. Its selection
// is the chosen icon (LB_GETCURSEL); LB_GETCOUNT tells how many icons the file has, and
// LB_GETITEMRECT where one is shown. The icon asked for is selected and scrolled into view when
// the dialog opens (a negative number names an icon by its resource identifier; one that names
// none selects the first icon).
//
// The list is loaded again from the path when Enter is pressed in the path's field or the field
// loses the focus with a text other than the file shown. OK is enabled only while an icon is
// selected. A double click on an icon is OK. "Browse..." opens the system's file dialog on icon
// files (*.ico, *.exe, *.dll, *.icl) or all files, and loads the file chosen.
#include <windows.h>

#include <cstdint>

namespace quorvane::platform::win32 {

namespace icon_picker {
inline constexpr wchar_t kTitle[] = L"Change Icon";
inline constexpr int kFileLabelId = 1001;
inline constexpr int kPathId = 1002;
inline constexpr int kBrowseId = 1003;
inline constexpr int kListLabelId = 1004;
inline constexpr int kIconListId = 1005;
inline constexpr int kMessageId = 1006;
inline constexpr wchar_t kNoIconsMessage[] = L"This file contains no icons.";
inline constexpr wchar_t kTooLongMessage[] = L"This path is too long.";
}  // namespace icon_picker

// Shows the picker and waits until it is closed. See above for the contract.
std::int32_t ShowIconPicker(HWND owner, char16_t* path, std::uint32_t size, std::int32_t& index);

}  // namespace quorvane::platform::win32
