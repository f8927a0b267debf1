#include "FolderPage.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstdint>
#include <string>
#include <vector>

#include "Driving.h"

namespace quorvane::e2e {

namespace {

// The folders made for the run: C:\QuorvaneFolders\Pictures with three sub-folders, one the
// recycle folder's name, one with a folder of its own.
const char* const kMade[] = {
    "C:\\QuorvaneFolders",
    "C:\\QuorvaneFolders\\Pictures",
    "C:\\QuorvaneFolders\\Pictures\\holidays",
    "C:\\QuorvaneFolders\\Pictures\\RECYCLED",
    "C:\\QuorvaneFolders\\Pictures\\RECYCLED\\inside",
    "C:\\QuorvaneFolders\\Pictures\\work",
    "C:\\QuorvaneFolders\\Pictures\\work\\2024",
};
const char kHolidays[] = "C:\\QuorvaneFolders\\Pictures\\holidays";

// The program's own picker, as src/platform/win32/Win32IconPicker.h describes it.
const char kPickerTitle[] = "Change Icon";
constexpr int kPickerPathId = 1002;
constexpr int kPickerListId = 1005;
constexpr int kChosenIcon = 5;

constexpr DWORD kTimeout = 10000;
constexpr int kTolerance = 8;

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string ControlText(HWND window) {
  char text[1024] = {};
  ::SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

// Removes the folders of an earlier run, attributes and desktop.ini included.
void RemoveMade() {
  ::SetFileAttributesA(kHolidays, FILE_ATTRIBUTE_NORMAL);
  ::DeleteFileA((std::string(kHolidays) + "\\desktop.ini").c_str());
  for (auto it = std::rbegin(kMade); it != std::rend(kMade); ++it) ::RemoveDirectoryA(*it);
}

std::string Profile(const char* key) {
  char value[512] = {};
  ::GetPrivateProfileStringA(".ShellClassInfo", key, "(none)", value, sizeof value,
                             (std::string(kHolidays) + "\\desktop.ini").c_str());
  return value;
}

class Session {
 public:
  Session(HWND main, std::string shots, std::string prefix)
      : main_(main), shots_(std::move(shots)), prefix_(std::move(prefix)) {}

  HWND Find(const std::string& name) { return FindControl(main_, name); }

  // The tree's items as shown, read again.
  bool Read(Verdict& verdict) {
    tree_ = Find("Tree");
    int count = 0;
    std::string error;
    return verdict.Check(tree_ != nullptr && ReadTreeView(tree_, items_, count, error),
                         "Tree could not be read: " + error);
  }
  // The item of this text below item `parent` (-1: at top level); -1 when there is none.
  int ChildOf(int parent, const std::string& text) const {
    for (int i : Children(parent)) {
      if (items_[static_cast<std::size_t>(i)].text == text) return i;
    }
    return -1;
  }
  std::vector<int> Children(int parent) const {
    std::vector<int> found;
    const int level = parent < 0 ? 0 : items_[static_cast<std::size_t>(parent)].level + 1;
    for (int i = parent + 1; i < static_cast<int>(items_.size()); ++i) {
      if (items_[static_cast<std::size_t>(i)].level < level) break;
      if (items_[static_cast<std::size_t>(i)].level == level) found.push_back(i);
    }
    return found;
  }
  std::vector<std::string> ChildTexts(int parent) const {
    std::vector<std::string> texts;
    for (int i : Children(parent)) texts.push_back(items_[static_cast<std::size_t>(i)].text);
    return texts;
  }
  std::string Joined(int parent) const {
    std::string text;
    for (const std::string& t : ChildTexts(parent)) text += (text.empty() ? "" : ", ") + t;
    return "[" + text + "]";
  }
  // The drive C item under the root; -1 when there is none.
  int DriveC() const {
    for (int i : Children(0)) {
      const std::string& text = items_[static_cast<std::size_t>(i)].text;
      if (text.size() >= 4 && text.compare(text.size() - 4, 4, "(C:)") == 0) return i;
    }
    return -1;
  }

  // A double click on item `index`'s text, which opens it, as a person does; then waits until
  // its children are shown in place of its placeholder.
  bool Open(Verdict& verdict, int index) {
    RECT area{};
    std::string error;
    const std::string text = items_[static_cast<std::size_t>(index)].text;
    if (!verdict.Check(TreeItemRectOf(tree_, items_[static_cast<std::size_t>(index)].handle, area,
                                      error),
                       "\"" + text + "\": " + error)) {
      return false;
    }
    DoubleClickAt(Centre(area));
    const HTREEITEM handle = items_[static_cast<std::size_t>(index)].handle;
    return verdict.Check(WaitUntil(kTimeout,
                                   [&] {
                                     Verdict ignored;
                                     if (!Read(ignored)) return false;
                                     const auto state = static_cast<UINT>(::SendMessageA(
                                         tree_, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(handle),
                                         TVIS_EXPANDED));
                                     return (state & TVIS_EXPANDED) != 0;
                                   }),
                         "\"" + text + "\" did not open on a double click");
  }
  // A click on item `index`'s text, which selects it and shows its icon.
  bool Select(Verdict& verdict, int index) {
    RECT area{};
    std::string error;
    const std::string text = items_[static_cast<std::size_t>(index)].text;
    if (!verdict.Check(TreeItemRectOf(tree_, items_[static_cast<std::size_t>(index)].handle, area,
                                      error),
                       "\"" + text + "\": " + error)) {
      return false;
    }
    ClickAt(Centre(area));
    return verdict.Check(WaitUntil(kTimeout,
                                   [&] {
                                     Verdict ignored;
                                     if (!Read(ignored)) return false;
                                     const int at = Find(text, index);
                                     return at >= 0 && items_[static_cast<std::size_t>(at)].selected;
                                   }),
                         "\"" + text + "\" was not selected by a click");
  }
  // The item of that text nearest `around` after a new reading.
  int Find(const std::string& text, int around) const {
    int best = -1;
    for (int i = 0; i < static_cast<int>(items_.size()); ++i) {
      if (items_[static_cast<std::size_t>(i)].text != text) continue;
      if (best < 0 || std::abs(i - around) < std::abs(best - around)) best = i;
    }
    return best;
  }

  // Whether a preview box shows something else than one colour.
  bool PreviewDrawn(Verdict& verdict, const char* name) {
    HWND box = Find(name);
    if (!verdict.Check(box != nullptr && ::IsWindowVisible(box), std::string(name) + " is not shown")) {
      return false;
    }
    std::vector<std::uint32_t> pixels;
    std::string error;
    if (!verdict.Check(CaptureScreen(ScreenRect(box), pixels, error), error)) return false;
    return verdict.Check(
        std::any_of(pixels.begin(), pixels.end(),
                    [&](std::uint32_t p) { return !CloseColours(p, pixels.front(), kTolerance); }),
        std::string(name) + " shows no icon");
  }

  bool Shot(Verdict& verdict, const std::string& name) {
    ::Sleep(300);
    return SaveShot(verdict, shots_, prefix_ + name);
  }

  HWND main() const { return main_; }
  const std::vector<RemoteItem>& items() const { return items_; }

 private:
  HWND main_;
  std::string shots_;
  std::string prefix_;
  HWND tree_ = nullptr;
  std::vector<RemoteItem> items_;
};

}  // namespace

void RunFolderPage(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, const Report& report) {
  RemoveMade();
  {
    Verdict made;
    for (const char* folder : kMade) {
      made.Check(::CreateDirectoryA(folder, nullptr) != 0,
                 std::string("could not make ") + folder);
    }
    if (!made.Passed()) {
      report("folder page: folders made for the run", made);
      RemoveMade();
      return;
    }
  }

  Child child;
  Verdict start;
  HWND window = StartWithMainWindow(program, "", true, child, start);
  if (window == nullptr) {
    report("folder page: start", start);
    RemoveMade();
    return;
  }
  ::Sleep(500);
  Session session(window, screenshotFolder, shotPrefix);

  // The page, with the tree's root and the drives, each drive closed on its placeholder.
  {
    Verdict verdict;
    HWND command = session.Find("CmdMenu(1)");
    if (verdict.Check(command != nullptr, "CmdMenu(1) not found")) {
      ClickAt(Centre(ScreenRect(command)));
      HWND page = session.Find("PBFileSystem");
      verdict.Check(WaitUntil(kTimeout, [&] { return page != nullptr && ::IsWindowVisible(page); }),
                    "the File System page did not show");
    }
    if (session.Read(verdict)) {
      const auto& items = session.items();
      verdict.Check(!items.empty() && items[0].text == "My Computer" && items[0].level == 0,
                    "the tree's first item is not \"My Computer\"");
      const int c = session.DriveC();
      verdict.Check(c >= 0, "no drive C under the root: " + session.Joined(0));
      bool lettersOk = true;
      for (int i : session.Children(0)) {
        const std::string& text = items[static_cast<std::size_t>(i)].text;
        const char letter = text.size() >= 4 ? text[text.size() - 3] : '?';
        lettersOk = lettersOk && letter >= 'C' && letter <= 'U';
      }
      verdict.Check(lettersOk, "a drive outside C to U is shown: " + session.Joined(0));
      if (c >= 0) {
        verdict.Check(session.ChildTexts(c) == std::vector<std::string>{"Dummy"},
                      "drive C holds " + session.Joined(c) + " before it is opened");
      }
      if (verdict.Passed()) verdict.Note("root and drives " + session.Joined(0));
    }
    report("folder page: the tree at load", verdict);
  }

  // Drive C, the folder made for the test and its folder opened.
  int pictures = -1;
  {
    Verdict verdict;
    int c = session.DriveC();
    if (verdict.Check(c >= 0, "no drive C to open") && session.Open(verdict, c)) {
      c = session.DriveC();
      const int base = session.ChildOf(c, "Quorvanefolders");
      verdict.Check(session.ChildOf(c, "Dummy") < 0, "the placeholder stays under drive C");
      if (verdict.Check(base >= 0, "no \"Quorvanefolders\" under drive C: " + session.Joined(c)) &&
          session.Open(verdict, base)) {
        const int opened = session.ChildOf(session.ChildOf(session.DriveC(), "Quorvanefolders"),
                                           "Pictures");
        if (verdict.Check(opened >= 0, "no \"Pictures\"") && session.Open(verdict, opened)) {
          pictures = session.ChildOf(session.ChildOf(session.DriveC(), "Quorvanefolders"),
                                     "Pictures");
          verdict.Check(session.ChildTexts(pictures) ==
                            std::vector<std::string>{"Holidays", "Recycled", "Work"},
                        "\"Pictures\" holds " + session.Joined(pictures));
          const int recycled = session.ChildOf(pictures, "Recycled");
          const int work = session.ChildOf(pictures, "Work");
          verdict.Check(recycled >= 0 && session.ChildTexts(recycled).empty(),
                        "\"Recycled\" can be opened: " + session.Joined(recycled));
          verdict.Check(work >= 0 && session.ChildTexts(work) == std::vector<std::string>{"Dummy"},
                        "\"Work\" holds " + session.Joined(work));
          const auto& items = session.items();
          const int holidays = session.ChildOf(pictures, "Holidays");
          if (holidays >= 0) {
            const RemoteItem& h = items[static_cast<std::size_t>(holidays)];
            verdict.Check(h.image != h.selectedImage,
                          "\"Holidays\" shows one image closed and open");
          }
        }
      }
    }
    session.Shot(verdict, "tree");
    if (verdict.Passed()) verdict.Note("C:, Quorvanefolders and Pictures opened: " + session.Joined(pictures));
    report("folder page: folders opened, the recycle folder closed", verdict);
  }

  // A folder selected: its icon in both previews.
  int holidays = -1;
  RemoteItem before;
  {
    Verdict verdict;
    holidays = pictures >= 0 ? session.ChildOf(pictures, "Holidays") : -1;
    if (verdict.Check(holidays >= 0, "no \"Holidays\" to select") && session.Select(verdict, holidays)) {
      holidays = session.Find("Holidays", holidays);
      before = session.items()[static_cast<std::size_t>(holidays)];
      ::Sleep(300);
      session.PreviewDrawn(verdict, "PicSmall");
      session.PreviewDrawn(verdict, "PicLarge");
    }
    session.Shot(verdict, "preview");
    if (verdict.Passed()) verdict.Note("PicSmall and PicLarge show the folder's icon");
    report("folder page: a folder selected and previewed", verdict);
  }

  // Change: the picker on the stock folder icon, an icon chosen, the folder's desktop.ini.
  {
    Verdict verdict;
    HWND change = session.Find("CmdChange");
    if (verdict.Check(holidays >= 0, "no folder selected") &&
        verdict.Check(change != nullptr, "CmdChange not found")) {
      ClickAt(Centre(ScreenRect(change)));
      HWND dialog = nullptr;
      if (verdict.Check(WaitUntil(kTimeout, [&] { return (dialog = DialogOf(child.id)) != nullptr; }),
                        "no picker appeared")) {
        verdict.Check(TextOf(dialog) == kPickerTitle, "the dialog is \"" + TextOf(dialog) + "\"");
        const HWND field = ::GetDlgItem(dialog, kPickerPathId);
        const HWND list = ::GetDlgItem(dialog, kPickerListId);
        const std::string path = field != nullptr ? ControlText(field) : "";
        verdict.Check(Lower(path).find("shell32.dll") != std::string::npos,
                      "the picker opened on \"" + path + "\", not the stock folder icon's file");
        int count = 0;
        WaitUntil(kTimeout, [&] {
          return (count = static_cast<int>(::SendMessageA(list, LB_GETCOUNT, 0, 0))) > kChosenIcon;
        });
        verdict.Check(::SendMessageA(list, LB_GETCURSEL, 0, 0) == 3,
                      "the picker does not have icon 3 selected");
        RECT item{};
        std::string error;
        if (verdict.Check(ListBoxItemRect(list, kChosenIcon, item, error), error)) {
          ClickAt(Centre(item));
          verdict.Check(WaitUntil(kTimeout,
                                  [&] { return ::SendMessageA(list, LB_GETCURSEL, 0, 0) == kChosenIcon; }),
                        "a click did not select icon 5");
          ClickDialogButton(verdict, dialog, IDOK, "OK", kTimeout);
        }
      }
      const std::string file = std::string(kHolidays) + "\\desktop.ini";
      verdict.Check(WaitUntil(kTimeout, [&] { return ::GetFileAttributesA(file.c_str()) != INVALID_FILE_ATTRIBUTES; }),
                    "no desktop.ini in the folder");
      verdict.Check(Lower(Profile("iconfile")).find("shell32.dll") != std::string::npos,
                    "iconfile is \"" + Profile("iconfile") + "\"");
      verdict.Check(Profile("iconindex") == "5", "iconindex is \"" + Profile("iconindex") + "\"");
      const DWORD attributes = ::GetFileAttributesA(kHolidays);
      verdict.Check(attributes == (FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY),
                    "the folder's attributes are " + std::to_string(attributes) + ", not system");
      // The node takes its new image, the same closed and open.
      bool changed = WaitUntil(kTimeout, [&] {
        Verdict ignored;
        if (!session.Read(ignored)) return false;
        const int at = session.Find("Holidays", holidays);
        return at >= 0 && session.items()[static_cast<std::size_t>(at)].image != before.image;
      });
      const int at = session.Find("Holidays", holidays);
      if (verdict.Check(changed && at >= 0, "\"Holidays\" kept its image")) {
        const RemoteItem& node = session.items()[static_cast<std::size_t>(at)];
        verdict.Check(node.image == node.selectedImage,
                      "\"Holidays\" shows " + std::to_string(node.image) + " closed and " +
                          std::to_string(node.selectedImage) + " open");
        verdict.Check(node.selected, "\"Holidays\" is no longer selected");
        if (verdict.Passed()) {
          verdict.Note("desktop.ini iconfile=" + Profile("iconfile") + ", iconindex=5, system "
                       "attribute, image " + std::to_string(before.image) + " -> " +
                       std::to_string(node.image));
        }
      }
      session.PreviewDrawn(verdict, "PicLarge");
    }
    session.Shot(verdict, "changed");
    report("folder page: Change writes the folder's desktop.ini", verdict);
  }

  // Default: the file gone, the system attribute gone, the tree built anew.
  {
    Verdict verdict;
    HWND defaults = session.Find("CmdDefault");
    if (verdict.Check(defaults != nullptr, "CmdDefault not found")) {
      ClickAt(Centre(ScreenRect(defaults)));
      const std::string file = std::string(kHolidays) + "\\desktop.ini";
      verdict.Check(WaitUntil(kTimeout, [&] { return ::GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES; }),
                    "desktop.ini is still there");
      const DWORD attributes = ::GetFileAttributesA(kHolidays);
      verdict.Check((attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_ARCHIVE)) == FILE_ATTRIBUTE_DIRECTORY,
                    "the folder's attributes are " + std::to_string(attributes));
      const bool rebuilt = WaitUntil(kTimeout, [&] {
        Verdict ignored;
        if (!session.Read(ignored)) return false;
        const int c = session.DriveC();
        return c >= 0 && session.ChildTexts(c) == std::vector<std::string>{"Dummy"};
      });
      verdict.Check(rebuilt, "the tree was not built anew: drive C holds " +
                                 session.Joined(session.DriveC()));
      if (verdict.Passed()) verdict.Note("desktop.ini deleted, attributes " + std::to_string(attributes) +
                                         ", drive C closed again");
    }
    report("folder page: Default takes the icon away and rebuilds the tree", verdict);
  }

  report("folder page: end through Quorvane.Exit", EndThroughExit(window, child));
  if (IsRunning(child)) Terminate(child);
  RemoveMade();
}

}  // namespace quorvane::e2e
