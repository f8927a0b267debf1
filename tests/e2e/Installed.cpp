#include "Installed.h"

#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <shlobj.h>

#include <algorithm>
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

// The shown top-level window titled `title` (blanks at the end aside), of any process; null when
// there is none.
HWND FindShownTitled(const char* title) {
  struct Search {
    const char* title;
    HWND found;
  } search{title, nullptr};
  ::EnumWindows(
      [](HWND window, LPARAM data) -> BOOL {
        auto& s = *reinterpret_cast<Search*>(data);
        // A wizard's title may end in the blank subtitle of its page.
        std::string text = TextOf(window);
        while (!text.empty() && text.back() == ' ') text.pop_back();
        if (::IsWindowVisible(window) != 0 && text == s.title) {
          s.found = window;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// The titles of the shown top-level windows, for a failure's message.
std::string ShownTitles() {
  std::string titles;
  ::EnumWindows(
      [](HWND window, LPARAM data) -> BOOL {
        if (::IsWindowVisible(window) != 0) {
          auto& text = *reinterpret_cast<std::string*>(data);
          text += (text.empty() ? "\"" : ", \"") + TextOf(window) + "\"";
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&titles));
  return titles.empty() ? "none" : titles;
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

// The uninstaller's window and its texts.
const char kUninstallTitle[] = "Quorvane Uninstall";
const char kDataBox[] = "Also remove my collections and settings";
constexpr int kNextButton = 1;  // "Next >", "Uninstall", then "Close"
// The state pictures of the list's tick boxes.
constexpr int kUnticked = 1;
constexpr int kTicked = 2;

// The first shown tree view among the children of `window`: the uninstaller's list of what it
// can remove.
HWND FindShownTreeView(HWND window) {
  HWND found = nullptr;
  ::EnumChildWindows(
      window,
      [](HWND child, LPARAM data) -> BOOL {
        if (ClassNameOf(child) == WC_TREEVIEWA && ::IsWindowVisible(child) != 0) {
          *reinterpret_cast<HWND*>(data) = child;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

// The state picture of the first item of a tree view of another process: its tick box.
int TickState(HWND tree) {
  const auto item = reinterpret_cast<LPARAM>(
      reinterpret_cast<HTREEITEM>(::SendMessageA(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0)));
  if (item == 0) return -1;
  const auto state = static_cast<UINT>(
      ::SendMessageA(tree, TVM_GETITEMSTATE, static_cast<WPARAM>(item), TVIS_STATEIMAGEMASK));
  return static_cast<int>((state & TVIS_STATEIMAGEMASK) >> 12);
}

// Clicks the dialog's button `id` with the pointer, once it is shown and enabled.
bool ClickButtonWhenReady(HWND dialog, int id, const std::string& text, DWORD milliseconds) {
  HWND button = nullptr;
  const bool ready = WaitUntil(milliseconds, [&] {
    button = ::GetDlgItem(dialog, id);
    if (button == nullptr || ::IsWindowVisible(button) == 0 || ::IsWindowEnabled(button) == 0) {
      return false;
    }
    std::string caption = TextOf(button);
    caption.erase(std::remove(caption.begin(), caption.end(), '&'), caption.end());
    return text.empty() || caption == text;
  });
  if (ready) ClickAt(Centre(ScreenRect(button)));
  return ready;
}

}  // namespace

void RunUninstallWithData(const std::string& screenshotFolder, const Report& report) {
  Verdict box;
  std::string error;
  // The uninstaller, started beside this driver, goes on in a copy of itself: its window is found
  // by its title.
  HWND dialog = nullptr;
  if (!box.Check(WaitUntil(kHelpWait,
                           [&] {
                             dialog = FindShownTitled(kUninstallTitle);
                             return dialog != nullptr;
                           }),
                 std::string("no window \"") + kUninstallTitle + "\" (shown: " + ShownTitles() +
                     ")")) {
    report("the uninstaller's box for the user's data", box);
    return;
  }
  HWND tree = nullptr;
  box.Check(ClickButtonWhenReady(dialog, kNextButton, "", 5000), "no \"Next\" button");
  box.Check(WaitUntil(5000, [&] { return (tree = FindShownTreeView(dialog)) != nullptr; }),
            "the page after the first shows no list of what to remove");
  if (tree != nullptr) {
    std::vector<RemoteItem> items;
    int count = 0;
    box.Check(ReadTreeView(tree, items, count, error) && items.size() == 1 &&
                  items.front().text == kDataBox,
              std::string("the list is not the one box \"") + kDataBox + "\" (" +
                  std::to_string(items.size()) + " items, the first \"" +
                  (items.empty() ? std::string() : items.front().text) + "\")");
    const int before = TickState(tree);
    SaveShot(box, screenshotFolder, "e2e-uninstall-box");
    // The tick box stands left of the item's text.
    RECT text{};
    if (box.Check(TreeItemRect(tree, 1, text, error), "the box's item: " + error)) {
      ClickAt(POINT{text.left - 9, (text.top + text.bottom) / 2});
    }
    box.Check(before == kUnticked, "the box is not unticked at first (state " +
                                       std::to_string(before) + ")");
    int after = before;
    box.Check(WaitUntil(3000, [&] { return (after = TickState(tree)) == kTicked; }),
              "a click on the box did not tick it (state " + std::to_string(after) + ")");
    box.Note("\"" + std::string(kDataBox) + "\" alone on the list, its state " +
             std::to_string(before) + " at first, " + std::to_string(after) + " after a click");
  }
  report("the uninstaller's box for the user's data, ticked by a click", box);

  Verdict run;
  run.Check(ClickButtonWhenReady(dialog, kNextButton, "Uninstall", 5000),
            "no \"Uninstall\" button");
  run.Check(ClickButtonWhenReady(dialog, kNextButton, "Close", 30000),
            "the uninstaller did not come to \"Close\"");
  run.Check(WaitUntil(10000, [&] { return ::IsWindow(dialog) == 0; }),
            "the uninstaller's window did not close");
  run.Note("\"Uninstall\", then \"Close\"");
  report("uninstalled by hand with the box ticked", run);
}

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
