#include "Installed.h"

#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <shlobj.h>

#include <cctype>
#include <vector>

namespace quorvane::e2e {
namespace {

const std::string kClass = "QuorvaneMain";
const std::string kText = "Quorvane";
// The help viewer's window, titled by the help file.
const char kHelpTitle[] = "Quorvane Help";
// The first entry of the help's contents.
const char kFirstTopic[] = "Welcome to Quorvane";
constexpr int kLeastTopics = 12;
constexpr DWORD kHelpWait = 20000;

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// The target and the working folder of a shortcut file, as the shell's link object reads them.
bool ReadShortcut(const std::string& path, std::string& target, std::string& folder,
                  std::string& error) {
  IShellLinkA* link = nullptr;
  HRESULT result = ::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IShellLinkA, reinterpret_cast<void**>(&link));
  if (FAILED(result) || link == nullptr) {
    error = "no shell link object";
    return false;
  }
  IPersistFile* file = nullptr;
  bool read = false;
  if (SUCCEEDED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)))) {
    std::wstring wide(path.size() + 1, L'\0');
    const int length = ::MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide.data(),
                                             static_cast<int>(wide.size()));
    if (length > 0 && SUCCEEDED(file->Load(wide.c_str(), STGM_READ))) {
      char buffer[MAX_PATH] = {};
      if (SUCCEEDED(link->GetPath(buffer, MAX_PATH, nullptr, 0))) {
        target = buffer;
        char directory[MAX_PATH] = {};
        link->GetWorkingDirectory(directory, MAX_PATH);
        folder = directory;
        read = true;
      } else {
        error = "the shortcut has no path";
      }
    } else {
      error = "the shortcut file could not be loaded";
    }
    file->Release();
  } else {
    error = "no IPersistFile";
  }
  link->Release();
  return read;
}

// The shown top-level window titled `title`, of any process; null when there is none.
HWND FindShownTitled(const char* title) {
  struct Search {
    const char* title;
    HWND found;
  } search{title, nullptr};
  ::EnumWindows(
      [](HWND window, LPARAM data) -> BOOL {
        auto& s = *reinterpret_cast<Search*>(data);
        if (::IsWindowVisible(window) != 0 && TextOf(window) == s.title) {
          s.found = window;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// The first tree view among the children of `window`: the help viewer's contents.
HWND FindTreeView(HWND window) {
  HWND found = nullptr;
  ::EnumChildWindows(
      window,
      [](HWND child, LPARAM data) -> BOOL {
        if (ClassNameOf(child) == WC_TREEVIEWA) {
          *reinterpret_cast<HWND*>(data) = child;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

Verdict CheckShortcut(const std::string& shortcut, const std::string& expectedTarget,
                      std::string& target) {
  Verdict verdict;
  std::string folder;
  std::string error;
  if (!verdict.Check(ReadShortcut(shortcut, target, folder, error),
                     shortcut + " unreadable: " + error)) {
    return verdict;
  }
  verdict.Check(Lower(target) == Lower(expectedTarget),
                "the shortcut starts \"" + target + "\", not \"" + expectedTarget + "\"");
  verdict.Check(::GetFileAttributesA(target.c_str()) != INVALID_FILE_ATTRIBUTES,
                "the shortcut's target " + target + " does not exist");
  verdict.Note("target " + target + (folder.empty() ? "" : ", in " + folder));
  return verdict;
}

// The program, started as the shortcut starts it, shows its window with its pages: the first
// page on, the "Desktop" zone's tree filled and shown.
Verdict CheckStarted(HWND window) {
  Verdict verdict;
  HWND page = FindControl(window, "PBPelmoraMain");
  verdict.Check(page != nullptr && ::IsWindowVisible(page) != 0,
                "PBPelmoraMain, the first page, is not shown");
  HWND tree = FindControl(window, "TvDesktop");
  if (verdict.Check(tree != nullptr, "\"Quorvane.FindControl\" does not give TvDesktop")) {
    const int count = static_cast<int>(::SendMessageA(tree, TVM_GETCOUNT, 0, 0));
    verdict.Check(count > 0, "TvDesktop is empty: the load routine left through its error path");
    verdict.Check(::IsWindowVisible(tree) != 0, "TvDesktop is not shown");
    verdict.Note("TvDesktop shown with " + std::to_string(count) + " nodes");
  }
  return verdict;
}

// A click on the "?" icon opens the help file beside the program in the help viewer, which shows
// the help's contents.
Verdict CheckHelp(HWND window, const std::string& screenshotFolder) {
  Verdict verdict;
  if (!verdict.Check(FindShownTitled(kHelpTitle) == nullptr,
                     std::string("a window \"") + kHelpTitle + "\" is there before the click")) {
    return verdict;
  }
  HWND help = FindControl(window, "imgTop(1)");
  if (!verdict.Check(help != nullptr && ::IsWindowVisible(help) != 0,
                     "imgTop(1), the help icon, is not found or not shown")) {
    return verdict;
  }
  ClickAt(Centre(ScreenRect(help)));
  HWND viewer = nullptr;
  const bool opened = WaitUntil(kHelpWait, [&] {
    viewer = FindShownTitled(kHelpTitle);
    return viewer != nullptr;
  });
  if (!verdict.Check(opened, std::string("no window \"") + kHelpTitle + "\" within " +
                                 std::to_string(kHelpWait / 1000) + " s of the click")) {
    return verdict;
  }
  HWND contents = nullptr;
  std::vector<RemoteItem> items;
  int count = 0;
  std::string error;
  const bool filled = WaitUntil(5000, [&] {
    contents = FindTreeView(viewer);
    return contents != nullptr && ReadTreeView(contents, items, count, error) &&
           static_cast<int>(items.size()) >= kLeastTopics;
  });
  verdict.Check(filled, "the viewer's contents show " + std::to_string(items.size()) +
                            " entries, fewer than " + std::to_string(kLeastTopics) +
                            (error.empty() ? "" : " (" + error + ")"));
  verdict.Check(contents != nullptr && ::IsWindowVisible(contents) != 0,
                "the viewer's contents are not shown");
  if (!items.empty()) {
    verdict.Check(items.front().text == kFirstTopic,
                  "the contents begin with \"" + items.front().text + "\", not \"" +
                      kFirstTopic + "\"");
  }
  ::Sleep(700);  // let it paint
  SaveShot(verdict, screenshotFolder, "e2e-help");
  DWORD viewerProcess = 0;
  ::GetWindowThreadProcessId(viewer, &viewerProcess);
  verdict.Note(std::string("\"") + kHelpTitle + "\" opened with " + std::to_string(items.size()) +
               " entries in its contents, the first \"" +
               (items.empty() ? std::string() : items.front().text) + "\"");
  ::PostMessageA(viewer, WM_CLOSE, 0, 0);
  verdict.Check(WaitUntil(5000, [&] { return ::IsWindow(viewer) == 0; }),
                "the help viewer did not close");
  return verdict;
}

}  // namespace

void RunInstalled(const std::string& shortcut, const std::string& expectedTarget,
                  const std::string& screenshotFolder, const Report& report) {
  const HRESULT com = ::CoInitialize(nullptr);
  std::string target;
  report("the Start Menu shortcut", CheckShortcut(shortcut, expectedTarget, target));
  if (SUCCEEDED(com)) ::CoUninitialize();
  if (target.empty()) {
    Verdict none;
    none.Check(false, "no target to start");
    report("started from the shortcut's target", none);
    return;
  }
  Verdict started;
  Child child;
  HWND window = StartWithMainWindow(target, "", true, child, started);
  if (window == nullptr) {
    report("started from the shortcut's target", started);
    return;
  }
  ::Sleep(700);  // let it paint before the picture is taken
  Verdict pages = CheckStarted(window);
  SaveShot(pages, screenshotFolder, "e2e-installed");
  report("started from the shortcut's target, its pages filled", pages);
  report("the help icon opens the help", CheckHelp(window, screenshotFolder));
  report("ended through \"Quorvane.Exit\"", EndThroughExit(window, child));
}

}  // namespace quorvane::e2e
