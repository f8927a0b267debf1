#include "CollectionEditor.h"

#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "Driving.h"

namespace quorvane::e2e {

namespace {

const char kEditorClass[] = "QuorvaneWallpaperCreateCollection";
const char kName[] = "Debian Pictures";
const char kExisting[] = "Already Unpacked";
constexpr DWORD kWait = 10000;
constexpr std::size_t kRoom = 1024;

struct Chosen {
  std::string folder;  // Windows path, no trailing backslash
  std::string file;
};

bool ReadManifest(const std::string& path, std::vector<Chosen>& chosen) {
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::size_t tab = line.find('\t');
    if (tab == std::string::npos) continue;
    chosen.push_back({line.substr(0, tab), line.substr(tab + 1)});
  }
  return chosen.size() >= 4;
}

// Memory inside another process, freed with its owner.
class Remote {
 public:
  explicit Remote(HWND window) {
    DWORD processId = 0;
    ::GetWindowThreadProcessId(window, &processId);
    process_ = OwnedHandle(::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ |
                                             PROCESS_VM_WRITE | PROCESS_QUERY_INFORMATION,
                                         FALSE, processId));
    if (process_) {
      address_ = static_cast<char*>(::VirtualAllocEx(process_.Get(), nullptr, 4096,
                                                     MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    }
  }
  ~Remote() {
    if (address_ != nullptr) ::VirtualFreeEx(process_.Get(), address_, 0, MEM_RELEASE);
  }
  Remote(const Remote&) = delete;
  Remote& operator=(const Remote&) = delete;
  bool Ready() const { return address_ != nullptr; }
  char* Address() const { return address_; }
  bool Write(std::size_t offset, const void* data, std::size_t size) const {
    SIZE_T moved = 0;
    return ::WriteProcessMemory(process_.Get(), address_ + offset, data, size, &moved) != 0;
  }
  bool Read(std::size_t offset, void* data, std::size_t size) const {
    SIZE_T moved = 0;
    return ::ReadProcessMemory(process_.Get(), address_ + offset, data, size, &moved) != 0;
  }

 private:
  OwnedHandle process_;
  char* address_ = nullptr;
};

using Rows = std::vector<std::vector<std::string>>;

// Every row of a report list of another process, three columns each.
bool ReadList(HWND list, Rows& rows, std::string& error) {
  rows.clear();
  Remote remote(list);
  if (!remote.Ready()) {
    error = "no memory in the program's process";
    return false;
  }
  const int count = static_cast<int>(::SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < count; ++row) {
    std::vector<std::string> cells;
    for (int column = 0; column < 3; ++column) {
      LVITEMA query{};
      query.iSubItem = column;
      query.pszText = remote.Address() + sizeof(LVITEMA);
      query.cchTextMax = static_cast<int>(kRoom);
      char text[kRoom + 1] = {};
      if (!remote.Write(0, &query, sizeof query)) {
        error = "WriteProcessMemory failed";
        return false;
      }
      ::SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(remote.Address()));
      if (!remote.Read(sizeof(LVITEMA), text, kRoom)) {
        error = "ReadProcessMemory failed";
        return false;
      }
      cells.emplace_back(text);
    }
    rows.push_back(std::move(cells));
  }
  return true;
}

// The middle of row `row` of a report list of another process, on the screen.
bool RowCentre(HWND list, int row, POINT& point) {
  Remote remote(list);
  if (!remote.Ready()) return false;
  RECT area{};
  area.left = LVIR_LABEL;
  if (!remote.Write(0, &area, sizeof area) ||
      ::SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(remote.Address())) == 0 ||
      !remote.Read(0, &area, sizeof area)) {
    return false;
  }
  point = POINT{area.left + 20, (area.top + area.bottom) / 2};
  return ::ClientToScreen(list, &point) != 0;
}

// Types `text` into a window, one character after the other, as the keyboard gives them.
void Type(HWND window, const std::string& text) {
  for (const char c : text) {
    ::SendMessageA(window, WM_CHAR, static_cast<WPARAM>(static_cast<unsigned char>(c)), 0);
  }
}

// The box of a file dialog the names are typed into: its one edit that shows.
HWND NameBox(HWND dialog) {
  HWND found = nullptr;
  ::EnumChildWindows(
      dialog,
      [](HWND child, LPARAM data) -> BOOL {
        char name[32] = {};
        ::GetClassNameA(child, name, sizeof name);
        if (::lstrcmpiA(name, "Edit") != 0 || ::IsWindowVisible(child) == 0) return TRUE;
        *reinterpret_cast<HWND*>(data) = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

// What an edit of another process holds: asked of the edit itself, as its text is its own.
std::string EditText(HWND edit) {
  char text[1024] = {};
  ::SendMessageA(edit, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

std::string SizeText(long long bytes) {
  const long long hundredths = (bytes * 100 + 512) / 1024;
  std::string text = hundredths / 100 != 0 ? std::to_string(hundredths / 100) : "";
  const long long part = hundredths % 100;
  text += '.';
  text += static_cast<char>('0' + part / 10);
  text += static_cast<char>('0' + part % 10);
  return text + " KB";
}

long long FileBytes(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) == 0) return -1;
  return (static_cast<long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

// What the shell itself calls files of that extension.
std::string ShellTypeName(const std::string& extension) {
  SHFILEINFOA info{};
  ::SHGetFileInfoA(extension.c_str(), FILE_ATTRIBUTE_NORMAL, &info, sizeof info,
                   SHGFI_TYPENAME | SHGFI_USEFILEATTRIBUTES);
  return info.szTypeName;
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

class EditorRun {
 public:
  EditorRun(HWND main, const Child& child, std::string shots, std::vector<Chosen> chosen,
            std::string copies)
      : main_(main), child_(child), shots_(std::move(shots)), chosen_(std::move(chosen)),
        copies_(std::move(copies)), data_(DataFolder()) {}

  // Opens the wallpaper page.
  bool OpenPage(Verdict& verdict) {
    HWND page = FindControl(main_, "CmdMenu(3)");
    if (!verdict.Check(page != nullptr, "CmdMenu(3) is not found")) return false;
    ClickAt(Centre(ScreenRect(page)));
    return verdict.Check(WaitUntil(kWait, [&] {
                           HWND tree = FindControl(main_, "TvCollections", 1000);
                           return tree != nullptr && ::IsWindowVisible(tree) != 0;
                         }),
                         "the wallpaper page did not show");
  }

  // Clicks one of the page's commands and waits for the editor.
  HWND OpenEditor(Verdict& verdict, int command) {
    HWND label = FindControl(main_, "CmdWallpaperControl(" + std::to_string(command) + ")");
    if (!verdict.Check(label != nullptr, "CmdWallpaperControl is not found")) return nullptr;
    ClickAt(Centre(ScreenRect(label)));
    HWND editor = nullptr;
    WaitUntil(kWait, [&] { return (editor = FindShownWindow(child_.id, kEditorClass)) != nullptr; });
    verdict.Check(editor != nullptr, "the collection editor did not open");
    if (editor != nullptr) {
      verdict.Check(::GetWindow(editor, GW_OWNER) == main_, "the editor is not owned by the main window");
      verdict.Check(::IsWindowEnabled(main_) == 0, "the main window is not disabled: not modal");
    }
    return editor;
  }

  HWND Control(HWND editor, const char* name) { return FindControl(editor, name); }

  void Click(HWND editor, const char* name) {
    if (HWND control = Control(editor, name)) ClickAt(Centre(ScreenRect(control)));
  }

  // Types the name into the editor's name box as a person does.
  void TypeName(Verdict& verdict, HWND editor, const std::string& name) {
    HWND box = Control(editor, "TxtCollectionName");
    if (!verdict.Check(box != nullptr, "TxtCollectionName is not found")) return;
    ClickAt(Centre(ScreenRect(box)));
    Type(box, name);
    const std::string shown = EditText(box);
    verdict.Check(name == shown, "the name box shows \"" + shown + "\"");
  }

  // Add, then in the open dialog: the folder typed and Open, the names typed and Open.
  bool AddThroughPicker(Verdict& verdict, HWND editor, const std::vector<Chosen>& files) {
    Click(editor, "CmdAddFile");
    HWND picker = nullptr;
    WaitUntil(kWait, [&] {
      picker = DialogOf(child_.id);
      return picker != nullptr && NameBox(picker) != nullptr;
    });
    if (!verdict.Check(picker != nullptr, "the open dialog did not come")) return false;
    char title[256] = {};
    ::GetWindowTextA(picker, title, sizeof title);
    HWND box = NameBox(picker);
    if (!verdict.Check(box != nullptr, "the open dialog has no name box")) return false;
    ::SetFocus(box);
    Type(box, files[0].folder + "\\");
    ClickAt(Centre(ScreenRect(::GetDlgItem(picker, IDOK))));
    ::Sleep(800);
    box = NameBox(picker);
    ::SendMessageA(box, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(""));
    std::string names;
    for (const Chosen& file : files) names += "\"" + file.file + "\" ";
    Type(box, files.size() == 1 ? files[0].file : names);
    ::Sleep(300);
    return ClickDialogButton(verdict, picker, IDOK, "Open", kWait);
  }

  bool ReadRows(Verdict& verdict, HWND editor, std::vector<std::vector<std::string>>& rows) {
    HWND list = Control(editor, "LvFileList");
    std::string error;
    return verdict.Check(list != nullptr && ReadList(list, rows, error),
                         "the list can't be read: " + error);
  }

  // Each row as the list must show the file: its path, the shell's type name, its size.
  void CheckRows(Verdict& verdict, const std::vector<std::vector<std::string>>& rows,
                 const std::vector<std::string>& paths) {
    if (!verdict.Check(rows.size() == paths.size(), "the list has " + std::to_string(rows.size()) +
                                                        " rows, not " + std::to_string(paths.size()))) {
      return;
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::string& path = paths[i];
      const std::string extension = path.substr(path.rfind('.'));
      verdict.Check(rows[i][0] == path, "row " + std::to_string(i + 1) + " is " + rows[i][0] +
                                            ", not " + path);
      const std::string type = ShellTypeName("." + Upper(extension.substr(1)));
      verdict.Check(!type.empty() && rows[i][1] == type,
                    "row " + std::to_string(i + 1) + "'s type is \"" + rows[i][1] +
                        "\", the shell says \"" + type + "\"");
      verdict.Check(rows[i][2] == SizeText(FileBytes(path)),
                    "row " + std::to_string(i + 1) + "'s size is \"" + rows[i][2] + "\", not \"" +
                        SizeText(FileBytes(path)) + "\"");
    }
  }

  // Clicks a row, then Remove, and answers Yes.
  bool RemoveRow(Verdict& verdict, HWND editor, int row) {
    HWND list = Control(editor, "LvFileList");
    POINT at{};
    if (!verdict.Check(list != nullptr && RowCentre(list, row, at), "row can't be found")) return false;
    ClickAt(at);
    ::Sleep(500);
    Click(editor, "CmdRemoveFile");
    HWND box = nullptr;
    WaitUntil(kWait, [&] { return (box = DialogOf(child_.id)) != nullptr; });
    if (!verdict.Check(box != nullptr, "Remove asked nothing")) return false;
    char title[128] = {};
    ::GetWindowTextA(box, title, sizeof title);
    verdict.Check(DialogText(box).find("Are you sure?") != std::string::npos,
                  "Remove asked \"" + DialogText(box) + "\"");
    verdict.Check(std::string(title) == "Confirm", std::string("the question's title is ") + title);
    return ClickDialogButton(verdict, box, IDYES, "Yes", kWait);
  }

  // OK, and the editor gone.
  bool Ok(Verdict& verdict, HWND editor) {
    Click(editor, "CmdOK");
    return verdict.Check(WaitUntil(kWait * 3, [&] { return ::IsWindow(editor) == 0; }),
                         "the editor is still open after OK");
  }

  // The message OK shows, its focus move, the box closed.
  void Refusal(Verdict& verdict, HWND editor, const std::string& message, const char* focused) {
    Click(editor, "CmdOK");
    HWND box = nullptr;
    WaitUntil(kWait, [&] { return (box = DialogOf(child_.id)) != nullptr; });
    if (!verdict.Check(box != nullptr, "OK said nothing, \"" + message + "\" wanted")) return;
    verdict.Check(DialogText(box).find(message) != std::string::npos,
                  "OK said \"" + DialogText(box) + "\", not \"" + message + "\"");
    ClickDialogButton(verdict, box, IDOK, "OK", kWait);
    ::Sleep(300);
    HWND want = Control(editor, focused);
    verdict.Check(::IsWindow(editor) != 0, "the editor closed after a refusal");
    DWORD thread = ::GetWindowThreadProcessId(editor, nullptr);
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    ::GetGUIThreadInfo(thread, &info);
    verdict.Check(info.hwndFocus == want, std::string("the focus is not on ") + focused);
  }

  // The collection's node clicked, and the strip of `count` thumbnails waited for.
  bool StripShows(Verdict& verdict, std::size_t count) {
    HWND tree = FindControl(main_, "TvCollections");
    std::vector<RemoteItem> items;
    int total = 0;
    std::string error;
    if (!verdict.Check(tree != nullptr && ReadTreeView(tree, items, total, error),
                       "the tree can't be read: " + error)) {
      return false;
    }
    int position = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (items[i].text == kName) position = static_cast<int>(i) + 1;
    }
    if (!verdict.Check(position != 0, std::string("no node \"") + kName + "\"")) return false;
    RECT area{};
    if (!verdict.Check(TreeItemRect(tree, position, area, error), error)) return false;
    ClickAt(Centre(area));
    const bool filled = WaitUntil(kWait * 3, [&] {
      HWND last = FindControl(main_, "optThumb(" + std::to_string(count - 1) + ")", 1000);
      return last != nullptr && ::IsWindowVisible(last) != 0 && ::IsWindowEnabled(tree) != 0;
    });
    verdict.Check(filled, "the strip did not show " + std::to_string(count) + " pictures");
    verdict.Check(FindControl(main_, "optThumb(" + std::to_string(count) + ")", 500) == nullptr,
                  "the strip shows more than " + std::to_string(count) + " pictures");
    return filled;
  }

  void KeepArchive(Verdict& verdict, const std::string& copy, const std::vector<std::string>& names) {
    const std::string archive = data_ + kName + ".RXS";
    verdict.Check(::CopyFileA(archive.c_str(), (copies_ + "\\" + copy + ".RXS").c_str(), FALSE) != 0,
                  "the archive " + archive + " can't be copied");
    std::ofstream out(copies_ + "\\" + copy + ".txt", std::ios::trunc);
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    for (const std::string& name : sorted) out << name << "\n";
  }

  Verdict Create() {
    Verdict verdict;
    if (!OpenPage(verdict)) return verdict;
    HWND editor = OpenEditor(verdict, 0);
    if (editor == nullptr) return verdict;
    TypeName(verdict, editor, kName);
    const std::vector<Chosen> three(chosen_.begin(), chosen_.begin() + 3);
    if (!AddThroughPicker(verdict, editor, three)) return verdict;
    std::vector<std::vector<std::string>> rows;
    if (!ReadRows(verdict, editor, rows)) return verdict;
    std::vector<std::string> paths;
    for (const Chosen& file : three) paths.push_back(file.folder + "\\" + file.file);
    CheckRows(verdict, rows, paths);
    // The preview of a clicked row, looked at.
    HWND list = Control(editor, "LvFileList");
    POINT at{};
    if (RowCentre(list, 0, at)) ClickAt(at);
    const bool previewed = WaitUntil(kWait, [&] {
      HWND sheet = Control(editor, "picSlide");
      return sheet != nullptr && ::IsWindowVisible(sheet) != 0;
    });
    verdict.Check(previewed, "the preview did not show");
    // The preview's tip: a tip window of the editor's, with one tool.
    HWND tip = nullptr;
    while ((tip = ::FindWindowExA(nullptr, tip, TOOLTIPS_CLASSA, nullptr)) != nullptr) {
      if (::GetWindow(tip, GW_OWNER) == editor) break;
    }
    verdict.Check(tip != nullptr && ::SendMessageA(tip, TTM_GETTOOLCOUNT, 0, 0) == 1,
                  "the preview has no tool tip");
    ::Sleep(500);
    SaveShot(verdict, shots_, "e2e-editor-list");
    // The second row removed.
    if (!RemoveRow(verdict, editor, 1)) return verdict;
    if (!ReadRows(verdict, editor, rows)) return verdict;
    paths.erase(paths.begin() + 1);
    CheckRows(verdict, rows, paths);
    if (!Ok(verdict, editor)) return verdict;
    verdict.Check(::IsWindowEnabled(main_) != 0, "the main window stays disabled");
    if (StripShows(verdict, 2)) SaveShot(verdict, shots_, "e2e-editor-created");
    KeepArchive(verdict, "created", {chosen_[0].file, chosen_[2].file});
    verdict.Note("3 pictures chosen in the open dialog, 1 removed, 2 packed and shown");
    return verdict;
  }

  Verdict Modify() {
    Verdict verdict;
    HWND editor = OpenEditor(verdict, 1);
    if (editor == nullptr) return verdict;
    std::vector<std::vector<std::string>> rows;
    if (!ReadRows(verdict, editor, rows)) return verdict;
    const std::string folder = data_ + kName;
    std::vector<std::string> listed;
    for (const auto& row : rows) listed.push_back(row[0]);
    std::sort(listed.begin(), listed.end());
    std::vector<std::string> want = {folder + "\\" + chosen_[0].file, folder + "\\" + chosen_[2].file};
    std::sort(want.begin(), want.end());
    verdict.Check(listed == want, "the change lists " + std::to_string(listed.size()) +
                                      " files, not the unpacked two");
    HWND box = Control(editor, "TxtCollectionName");
    const std::string shown = box != nullptr ? EditText(box) : std::string();
    verdict.Check(shown == kName, "the name box shows " + shown);
    if (!AddThroughPicker(verdict, editor, {chosen_[3]})) return verdict;
    if (!ReadRows(verdict, editor, rows)) return verdict;
    verdict.Check(rows.size() == 3, "after Add the list has " + std::to_string(rows.size()) + " rows");
    // The row of the first picture removed.
    int first = -1;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows[i][0] == folder + "\\" + chosen_[0].file) first = static_cast<int>(i);
    }
    if (!verdict.Check(first >= 0, "the first picture is not listed")) return verdict;
    if (!RemoveRow(verdict, editor, first)) return verdict;
    SaveShot(verdict, shots_, "e2e-editor-modify");
    if (!Ok(verdict, editor)) return verdict;
    StripShows(verdict, 2);
    verdict.Check(::GetFileAttributesA(folder.c_str()) == INVALID_FILE_ATTRIBUTES,
                  "the unpacked folder is still there");
    KeepArchive(verdict, "modified", {chosen_[2].file, chosen_[3].file});
    verdict.Note("1 added, 1 removed");
    return verdict;
  }

  // A bitmap added alone, previewed, and its preview double-clicked: the viewer gets the listed
  // file itself.
  Verdict OpenFromPreview(const std::string& record, const std::string& viewed) {
    Verdict verdict;
    HWND editor = OpenEditor(verdict, 0);
    if (editor == nullptr) return verdict;
    const std::size_t slash = viewed.rfind('\\');
    const Chosen bitmap{viewed.substr(0, slash), viewed.substr(slash + 1)};
    if (AddThroughPicker(verdict, editor, {bitmap})) {
      std::vector<std::vector<std::string>> rows;
      if (ReadRows(verdict, editor, rows)) CheckRows(verdict, rows, {viewed});
      HWND list = Control(editor, "LvFileList");
      POINT at{};
      if (verdict.Check(list != nullptr && RowCentre(list, 0, at), "the bitmap's row is missing")) {
        ClickAt(at);
      }
      HWND preview = nullptr;
      verdict.Check(WaitUntil(kWait, [&] {
                      HWND sheet = Control(editor, "picSlide");
                      preview = Control(editor, "optThumb(0)");
                      return sheet != nullptr && ::IsWindowVisible(sheet) != 0 && preview != nullptr;
                    }),
                    "the bitmap's preview did not show");
      ::DeleteFileA(record.c_str());
      if (preview != nullptr) DoubleClickAt(Centre(ScreenRect(preview)));
      std::string started;
      const bool ran = WaitUntil(30000, [&] {
        std::ifstream in(record);
        return in && std::getline(in, started) && !started.empty();
      });
      while (!started.empty() && (started.back() == '\r' || started.back() == '\n')) {
        started.pop_back();
      }
      if (verdict.Check(ran, "the double click started no viewer")) {
        verdict.Check(::lstrcmpiA(started.c_str(), viewed.c_str()) == 0,
                      "the viewer was started with " + started + ", not " + viewed);
        verdict.Note("viewer started with " + started);
      }
    }
    Click(editor, "CmdCancel");
    verdict.Check(WaitUntil(kWait, [&] { return ::IsWindow(editor) == 0; }),
                  "Cancel did not close the editor");
    return verdict;
  }

  Verdict Refusals() {
    Verdict verdict;
    HWND editor = OpenEditor(verdict, 0);
    if (editor == nullptr) return verdict;
    Refusal(verdict, editor, "Please enter collection name", "TxtCollectionName");
    TypeName(verdict, editor, kExisting);
    Refusal(verdict, editor, "Please add at least one image file to continue!", "CmdAddFile");
    // A name whose folder is there is taken.
    ::CreateDirectoryA((data_ + kExisting).c_str(), nullptr);
    if (AddThroughPicker(verdict, editor, {chosen_[1]})) {
      Refusal(verdict, editor, "Collection with the same name already exists!",
              "TxtCollectionName");
    }
    SaveShot(verdict, shots_, "e2e-editor-refused");
    Click(editor, "CmdCancel");
    verdict.Check(WaitUntil(kWait, [&] { return ::IsWindow(editor) == 0; }),
                  "Cancel did not close the editor");
    ::RemoveDirectoryA((data_ + kExisting).c_str());
    verdict.Check(::GetFileAttributesA((data_ + kExisting + ".RXS").c_str()) ==
                      INVALID_FILE_ATTRIBUTES,
                  "a refused collection was packed");
    verdict.Note("the three messages in their order, each with its focus");
    return verdict;
  }

 private:
  HWND main_;
  const Child& child_;
  std::string shots_;
  std::vector<Chosen> chosen_;
  std::string copies_;
  std::string data_;
};

}  // namespace

void RunCollectionEditor(const std::string& program, const std::string& screenshotFolder,
                         const std::string& manifest, const std::string& archiveCopies,
                         const std::string& viewerRecord, const std::string& viewed,
                         const Report& report) {
  std::vector<Chosen> chosen;
  if (!ReadManifest(manifest, chosen)) {
    Verdict verdict;
    verdict.Check(false, "the manifest " + manifest + " names fewer than four pictures");
    report("collection editor", verdict);
    return;
  }
  Child child;
  Verdict start;
  HWND main = StartWithMainWindow(program, "", true, child, start);
  if (main == nullptr) {
    report("collection editor: start", start);
    return;
  }
  EditorRun run(main, child, screenshotFolder, chosen, archiveCopies);
  const Verdict created = run.Create();
  report("collection editor: a collection made from three pictures, one removed", created);
  if (created.Passed()) report("collection editor: the collection changed", run.Modify());
  report("collection editor: OK refused for a name, a list and a taken name", run.Refusals());
  report("collection editor: the preview's double click opens the listed file itself",
         run.OpenFromPreview(viewerRecord, viewed));
  report("collection editor: ends through Quorvane.Exit", EndThroughExit(main, child));
}

}  // namespace quorvane::e2e
