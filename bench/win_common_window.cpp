// The start-up benchmark's second yardstick: what any window of the main window's kind loads
// before it shows. The minimal window, and in the same process common controls 6 (through the
// program's own manifest) with a tree view and its image list, shell32 (the icon of a folder
// asked of it), ole32 (initialised for the calling thread) and oleaut32 (a string made and
// freed), as the program loads them before its first show.
//
// With "--startup-benchmark <event name>" it sets that event once the window is shown and
// painted, and ends there, as the benchmark build of quorvane.exe does.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <oleauto.h>
#include <shellapi.h>

#include <string>

#include "YardstickWindow.h"

namespace {

// A tree of a root and a few children, each with the folder icon the shell gives.
void AddTree(HWND parent, HINSTANCE instance) {
  HWND tree = ::CreateWindowExA(WS_EX_CLIENTEDGE, WC_TREEVIEWA, "",
                                WS_CHILD | WS_VISIBLE | TVS_HASLINES | TVS_HASBUTTONS |
                                    TVS_LINESATROOT,
                                8, 8, 300, 500, parent, nullptr, instance, nullptr);
  HIMAGELIST images = ::ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, 2, 2);
  SHFILEINFOA info{};
  if (::SHGetFileInfoA("C:\\", FILE_ATTRIBUTE_DIRECTORY, &info, sizeof info,
                       SHGFI_ICON | SHGFI_SMALLICON | SHGFI_USEFILEATTRIBUTES) != 0 &&
      info.hIcon != nullptr) {
    ::ImageList_AddIcon(images, info.hIcon);
    ::DestroyIcon(info.hIcon);
  }
  ::SendMessageA(tree, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
  TVINSERTSTRUCTA item{};
  item.hParent = TVI_ROOT;
  item.hInsertAfter = TVI_LAST;
  item.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
  char rootText[] = "Root";
  item.item.pszText = rootText;
  auto root = reinterpret_cast<HTREEITEM>(
      ::SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
  for (int i = 0; i < 8; ++i) {
    std::string text = "Child " + std::to_string(i);
    item.hParent = root;
    item.item.pszText = text.data();
    ::SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  }
  ::SendMessageA(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(root));
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR commandLine,
                   int /*showCommand*/) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES | ICC_PROGRESS_CLASS};
  ::InitCommonControlsEx(&controls);
  const bool ole = SUCCEEDED(::OleInitialize(nullptr));
  BSTR text = ::SysAllocString(L"Quorvane");
  ::SysFreeString(text);

  HWND window =
      quorvane::bench::MakeYardstickWindow(instance, "QuorvaneCommonWindow", "Common window");
  if (window == nullptr) return 1;
  AddTree(window, instance);
  const int result = quorvane::bench::ShowYardstick(window, commandLine);
  if (ole) ::OleUninitialize();
  return result;
}
