// The start-up benchmark's second yardstick: what any window of the main window's kind loads
// before it shows. The minimal window, and in the same process common controls 6 (through the
// program's own manifest) with a tree view and its image list, shell32 (the icon of a folder
// asked of it), ole32 (initialised for the calling thread) and oleaut32 (a picture-sized string
// made and freed), as the program does before its first show.
//
// With "--startup-benchmark <event name>" it sets that event once the window is shown and
// painted, and ends there, as the benchmark build of quorvane.exe does.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <oleauto.h>
#include <shellapi.h>

#include <cstring>
#include <string>

namespace {

constexpr const char* kClass = "QuorvaneCommonWindow";
constexpr int kWidth = 750;
constexpr int kHeight = 570;

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY) {
    ::PostQuitMessage(0);
    return 0;
  }
  return ::DefWindowProcA(window, message, wParam, lParam);
}

std::string BenchmarkEvent(const char* commandLine) {
  constexpr const char* kFlag = "--startup-benchmark";
  const char* flag = commandLine != nullptr ? std::strstr(commandLine, kFlag) : nullptr;
  if (flag == nullptr) return std::string();
  std::string rest(flag + std::strlen(kFlag));
  const std::size_t start = rest.find_first_not_of(' ');
  if (start == std::string::npos) return std::string();
  const std::size_t end = rest.find(' ', start);
  return rest.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

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

  WNDCLASSEXA windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &WindowProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
  windowClass.lpszClassName = kClass;
  if (::RegisterClassExA(&windowClass) == 0) return 1;
  const int left = (::GetSystemMetrics(SM_CXSCREEN) - kWidth) / 2;
  const int top = (::GetSystemMetrics(SM_CYSCREEN) - kHeight) / 2;
  HWND window = ::CreateWindowExA(WS_EX_APPWINDOW, kClass, "Common window",
                                  WS_POPUP | WS_CLIPCHILDREN | WS_SYSMENU | WS_MINIMIZEBOX, left,
                                  top, kWidth, kHeight, nullptr, nullptr, instance, nullptr);
  if (window == nullptr) return 1;
  AddTree(window, instance);
  ::ShowWindow(window, SW_SHOW);
  ::RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);

  int result = 0;
  const std::string event = BenchmarkEvent(commandLine);
  if (!event.empty()) {
    HANDLE shown = ::OpenEventA(EVENT_MODIFY_STATE, FALSE, event.c_str());
    if (shown != nullptr) {
      ::SetEvent(shown);
      ::CloseHandle(shown);
    }
    ::DestroyWindow(window);
  } else {
    MSG message{};
    while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
      ::TranslateMessage(&message);
      ::DispatchMessageA(&message);
    }
    result = static_cast<int>(message.wParam);
  }
  if (ole) ::OleUninitialize();
  return result;
}
