#include "IconChanges.h"

#include <commctrl.h>
#include <shellapi.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "Driving.h"
#include "Registry.h"

namespace quorvane::e2e {

namespace {

constexpr DWORD kChangeTimeout = 3000;
// CmdApply and CmdDefault rebuild the whole catalogue, and each row they write refreshes the
// shell with broadcasts that may each wait for slow windows.
constexpr DWORD kRebuildTimeout = 40000;
// How long a click that must change nothing is given to show a change all the same.
constexpr DWORD kNoChangeWait = 800;
// A colour channel of the screen may differ this much from the picture it shows.
constexpr int kTolerance = 8;

const char kRow[] = "Briefcase";
// The row reads its icon from the class id's DefaultIcon; writing it, the program writes the
// Briefcase class's DefaultIcon first, then the class id's. Both are default values.
const char kClassIconKey[] = "Briefcase\\DefaultIcon";
const char kClassIdIconKey[] = "CLSID\\{85BBD920-42A0-1069-A2E4-08002B30309D}\\DefaultIcon";
// The row's stock location: the same for "Windows Vista" and for every other version.
const char kStockVista[] = "syncui.dll,0";
const char kStockOther[] = "syncui.dll,0";
// An icon library that every prefix has; the row starts on one of its icons, and another is
// put in from outside before CmdApply. Which picture an index shows is not assumed: the driver
// draws both itself.
const char kLibrary[] = "C:\\windows\\system32\\shell32.dll";
constexpr int kSeedIndex = 3;
constexpr int kOutsideIndex = 4;
// The icons chosen in the picker: shown in its list without scrolling, next to the row's own.
constexpr int kPickedIndex = 5;
constexpr int kSecondPickIndex = 6;
// Without this value the shell refresh after every write fails; Windows has it.
const char kWindowMetrics[] = "Control Panel\\Desktop\\WindowMetrics";
const char kShellIconSize[] = "Shell Icon Size";
const char kRestartMessage[] = "Please restart to apply the changes";
// Wine's diagnostics of the shell for the program started here: its picker says in them that it
// was asked, with the owner and the file it was given.
const char kShellTrace[] = "-all,fixme+shell";
const char kPickerTrace[] = "fixme:shell:PickIconDlg (";
// The picker dialog, as src/platform/win32/Win32IconPicker.h describes it to programs that
// drive it: its title, and its controls by their ids.
const char kPickerTitle[] = "Change Icon";
constexpr int kPickerPathId = 1002;
constexpr int kPickerListId = 1005;

std::string Location(int index) { return std::string(kLibrary) + "," + std::to_string(index); }

// An environment variable set for the programs started meanwhile, and put back afterwards.
class EnvironmentSetting {
 public:
  EnvironmentSetting(std::string name, const std::string& value) : name_(std::move(name)) {
    char buffer[1024] = {};
    const DWORD length = ::GetEnvironmentVariableA(name_.c_str(), buffer, sizeof buffer);
    if (length > 0 && length < sizeof buffer) previous_ = std::string(buffer, length);
    ::SetEnvironmentVariableA(name_.c_str(), value.c_str());
  }
  ~EnvironmentSetting() {
    ::SetEnvironmentVariableA(name_.c_str(), previous_ ? previous_->c_str() : nullptr);
  }
  EnvironmentSetting(const EnvironmentSetting&) = delete;
  EnvironmentSetting& operator=(const EnvironmentSetting&) = delete;

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

// One request to the platform's icon picker, as Wine's diagnostics tell it.
struct PickerRequest {
  std::uintptr_t owner = 0;
  std::string file;
};

// The picker's requests in `text`. A line reads
//   0144:fixme:shell:PickIconDlg (0000000000010068,L"C:\\windows\\...\\shell32.dll",260,...):stub.
// with the owner window, then the file as a quoted, escaped string.
std::vector<PickerRequest> PickerRequests(const std::string& text) {
  std::vector<PickerRequest> requests;
  const std::string marker = kPickerTrace;
  for (std::size_t at = text.find(marker); at != std::string::npos;
       at = text.find(marker, at + 1)) {
    PickerRequest request;
    const std::size_t owner = at + marker.size();
    request.owner = static_cast<std::uintptr_t>(std::strtoull(text.c_str() + owner, nullptr, 16));
    std::size_t quote = text.find("L\"", owner);
    const std::size_t lineEnd = text.find('\n', owner);
    if (quote != std::string::npos && quote < lineEnd) {
      for (std::size_t i = quote + 2; i < text.size() && text[i] != '"' && text[i] != '\n'; ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) ++i;
        request.file += text[i];
      }
    }
    requests.push_back(std::move(request));
  }
  return requests;
}

// Icon `index` of `file` drawn the way the preview sIcon draws a row's icon: the small icon at
// (1, 1), at its own size, on the box's back colour. False, with `error`, when the file gives
// no such icon.
bool DrawnIcon(const std::string& file, int index, int width, int height, std::uint32_t background,
               std::vector<std::uint32_t>& pixels, std::string& error) {
  // Both sizes in one request, as the program asks: Wine answers a request for the small icon
  // alone with another picture.
  HICON large = nullptr;
  HICON small = nullptr;
  if (::ExtractIconExA(file.c_str(), index, &large, &small, 1) < 1 || small == nullptr) {
    if (large != nullptr) ::DestroyIcon(large);
    if (small != nullptr) ::DestroyIcon(small);
    error = "no icon " + std::to_string(index) + " in " + file;
    return false;
  }
  if (large != nullptr) ::DestroyIcon(large);
  bool drawn = false;
  {
    DrawingSurface surface(width, height);
    surface.Fill(background);
    drawn = surface.Ready() &&
            ::DrawIconEx(surface.Context(), 1, 1, small, 0, 0, 0, nullptr, DI_NORMAL) != 0;
    if (drawn) pixels = surface.Pixels();
  }
  ::DestroyIcon(small);
  if (!drawn) error = "icon " + std::to_string(index) + " of " + file + " could not be drawn";
  return drawn;
}

int Differences(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
  if (a.size() != b.size()) return static_cast<int>(std::max(a.size(), b.size()));
  int different = 0;
  for (std::size_t i = 0; i < a.size(); ++i) different += CloseColours(a[i], b[i], kTolerance) ? 0 : 1;
  return different;
}

// The text of a control of another process, as the control itself gives it.
std::string ControlText(HWND control) {
  char text[1024] = {};
  DWORD_PTR length = 0;
  if (::SendMessageTimeoutA(control, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text),
                            SMTO_ABORTIFHUNG, kChangeTimeout, &length) == 0) {
    return std::string();
  }
  return std::string(text, std::min<std::size_t>(length, sizeof text - 1));
}

// The registry values of the row: the class's DefaultIcon and the class id's.
struct RowKeys {
  std::optional<std::string> classIcon;
  std::optional<std::string> classIdIcon;
  bool operator==(const RowKeys&) const = default;
};

class IconSession {
 public:
  IconSession(HWND window, const Child& child, std::string shots, std::string trace,
              const KeptValue& classIcon, const KeptValue& classIdIcon)
      : window_(window),
        child_(child),
        shots_(std::move(shots)),
        trace_(std::move(trace)),
        classIcon_(classIcon),
        classIdIcon_(classIdIcon) {}

  RowKeys Keys() const { return RowKeys{classIcon_.Now(), classIdIcon_.Now()}; }
  std::string Describe(const RowKeys& keys) const {
    return classIcon_.Where() + " " + Shown(keys.classIcon) + ", " + classIdIcon_.Where() + " " +
           Shown(keys.classIdIcon);
  }

  // The nodes of TvDesktop, and the place of the row among them (from 1; 0 when it has none).
  bool Nodes(Verdict& verdict, std::vector<RemoteItem>& items, int& position) {
    HWND tree = FindControl(window_, "TvDesktop");
    if (!verdict.Check(tree != nullptr && ::IsWindowVisible(tree) != 0,
                       "TvDesktop is not found, or not visible")) {
      return false;
    }
    int count = 0;
    std::string error;
    if (!verdict.Check(ReadTreeView(tree, items, count, error), "TvDesktop unreadable: " + error)) {
      return false;
    }
    position = 0;
    for (std::size_t i = 0; i < items.size() && position == 0; ++i) {
      if (items[i].text == kRow) position = static_cast<int>(i) + 1;
    }
    return verdict.Check(position != 0, std::string("TvDesktop has no node \"") + kRow + "\"");
  }

  // The centre of the row's node on the screen.
  bool RowPoint(Verdict& verdict, int position, POINT& point) {
    RECT item{};
    std::string error;
    if (!verdict.Check(TreeItemRect(FindControl(window_, "TvDesktop"), position, item, error),
                       "TvDesktop: " + error)) {
      return false;
    }
    point = Centre(item);
    return true;
  }

  // Whether the row's node is the selected one.
  bool RowSelected() {
    Verdict ignored;
    std::vector<RemoteItem> items;
    int position = 0;
    return Nodes(ignored, items, position) &&
           items[static_cast<std::size_t>(position) - 1].selected;
  }

  // Selects the row with a click on its node.
  bool SelectRow(Verdict& verdict) {
    std::vector<RemoteItem> items;
    int position = 0;
    POINT point{};
    if (!Nodes(verdict, items, position) || !RowPoint(verdict, position, point)) return false;
    ClickRow(point, false);
    return verdict.Check(WaitUntil(kChangeTimeout, [&] { return RowSelected(); }),
                         std::string("a click on \"") + kRow + "\" did not select it");
  }

  // A click or a double click on the row's node at `point`. A click that follows the last one
  // within the system's double-click time would make a double click of the two, which opens the
  // picker: a person pauses between them, and so does this.
  void ClickRow(POINT point, bool twice) {
    const ULONGLONG apart = ::GetDoubleClickTime() + 200ULL;
    const ULONGLONG since = ::GetTickCount64() - lastRowClick_;
    if (since < apart) ::Sleep(static_cast<DWORD>(apart - since));
    if (twice) {
      DoubleClickAt(point);
    } else {
      ClickAt(point);
    }
    lastRowClick_ = ::GetTickCount64();
  }

  // How many pixels of the preview sIcon differ from icon `index` of the library drawn as the
  // preview draws it; -1, with `seen`, when it can't be compared.
  int PreviewDifference(int index, std::string& seen) {
    HWND box = FindControl(window_, "sIcon");
    if (box == nullptr || ::IsWindowVisible(box) == 0) {
      seen = "sIcon is not found, or not visible";
      return -1;
    }
    RECT inside{};
    ::GetClientRect(box, &inside);
    ::MapWindowPoints(box, nullptr, reinterpret_cast<POINT*>(&inside), 2);
    std::vector<std::uint32_t> shown;
    std::vector<std::uint32_t> expected;
    if (!CaptureScreen(inside, shown, seen) ||
        !DrawnIcon(kLibrary, index, inside.right - inside.left, inside.bottom - inside.top,
                   shown.front(), expected, seen)) {
      return -1;
    }
    const int different = Differences(shown, expected);
    seen = std::to_string(different) + " of " + std::to_string(shown.size()) + " pixels of sIcon " +
           e2e::Describe(inside) + " differ from icon " + std::to_string(index) + " of " + kLibrary;
    return different;
  }

  // Waits until the preview shows icon `index` of the library.
  bool PreviewShows(Verdict& verdict, int index, const std::string& when) {
    std::string seen;
    const bool shows =
        WaitUntil(kChangeTimeout, [&] { return PreviewDifference(index, seen) == 0; });
    return verdict.Check(
        shows, "sIcon does not show icon " + std::to_string(index) + " " + when + ": " + seen);
  }

  // Whether icons a and b of the library look different in the preview; were they alike, no
  // check of the preview could tell them apart.
  bool IconsDiffer(Verdict& verdict, int a, int b) {
    HWND box = FindControl(window_, "sIcon");
    RECT inside{};
    if (box != nullptr) ::GetClientRect(box, &inside);
    std::vector<std::uint32_t> first;
    std::vector<std::uint32_t> second;
    std::string error;
    const int width = std::max(18L, inside.right);
    const int height = std::max(18L, inside.bottom);
    if (!verdict.Check(DrawnIcon(kLibrary, a, width, height, 0xFFFFFF, first, error) &&
                           DrawnIcon(kLibrary, b, width, height, 0xFFFFFF, second, error),
                       error)) {
      return false;
    }
    return verdict.Check(Differences(first, second) > 0,
                         "icons " + std::to_string(a) + " and " + std::to_string(b) + " of " +
                             kLibrary + " look alike: the preview can't tell them apart");
  }

  // The picker's requests told in the trace since `from` (a size of the trace file).
  std::vector<PickerRequest> PickerRequestsSince(std::size_t from) const {
    const std::string text = ReadFileText(trace_);
    return PickerRequests(text.size() > from ? text.substr(from) : std::string());
  }
  std::size_t TraceSize() const { return ReadFileText(trace_).size(); }
  bool HasTrace() const { return !trace_.empty(); }

  // The picker after a request for it: a dialog "Change Icon" owned by the main window, on
  // `file`, listing as many icons as the file has, with icon `index` selected. Null, with the
  // reason in `verdict`, when no dialog appears.
  HWND PickerShown(Verdict& verdict, std::size_t traceFrom, const std::string& file, int index) {
    HWND dialog = nullptr;
    if (!verdict.Check(WaitUntil(kChangeTimeout,
                                 [&] { return (dialog = DialogOf(child_.id)) != nullptr; }),
                       "no picker dialog appeared within " +
                           std::to_string(kChangeTimeout / 1000) + " s")) {
      return nullptr;
    }
    verdict.Check(TextOf(dialog) == kPickerTitle,
                  "the dialog is titled \"" + TextOf(dialog) + "\", not \"" + kPickerTitle + "\"");
    verdict.Check(::GetWindow(dialog, GW_OWNER) == window_,
                  "the picker is not owned by the main window");
    const HWND field = ::GetDlgItem(dialog, kPickerPathId);
    const HWND list = ::GetDlgItem(dialog, kPickerListId);
    if (!verdict.Check(field != nullptr && list != nullptr && ClassNameOf(list) == "ListBox",
                       "the picker has no path field or no list box of icons")) {
      return dialog;
    }
    verdict.Check(ControlText(field) == file, "the picker's path field holds \"" +
                                                  ControlText(field) + "\", not \"" + file + "\"");
    const int icons = static_cast<int>(::ExtractIconExA(file.c_str(), -1, nullptr, nullptr, 0));
    int count = 0;
    WaitUntil(kChangeTimeout, [&] {
      return (count = static_cast<int>(::SendMessageA(list, LB_GETCOUNT, 0, 0))) == icons;
    });
    verdict.Check(count == icons, "the picker lists " + std::to_string(count) + " icons, not the " +
                                      std::to_string(icons) + " of " + file);
    const int selected = static_cast<int>(::SendMessageA(list, LB_GETCURSEL, 0, 0));
    verdict.Check(selected == index, "the picker has icon " + std::to_string(selected) +
                                         " selected, not the row's " + std::to_string(index));
    // Where the shell's own picker is a stub (Wine's), it was asked first and told so.
    if (HasTrace()) {
      const std::vector<PickerRequest> requests = PickerRequestsSince(traceFrom);
      if (!requests.empty() && requests.front().owner == reinterpret_cast<std::uintptr_t>(window_) &&
          requests.front().file == file) {
        verdict.Note("the shell's picker answered at once without a dialog; the program's own "
                     "was shown");
      }
    }
    ::Sleep(300);  // let it paint before a picture is taken
    return dialog;
  }

  // A click on icon `index` in the picker's list, which selects it.
  bool ChooseIcon(Verdict& verdict, HWND dialog, int index) {
    const HWND list = ::GetDlgItem(dialog, kPickerListId);
    RECT item{};
    std::string error;
    if (!verdict.Check(list != nullptr && ListBoxItemRect(list, index, item, error),
                       "the picker's icon " + std::to_string(index) + ": " + error)) {
      return false;
    }
    RECT shown{};
    ::GetClientRect(list, &shown);
    ::MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&shown), 2);
    if (!verdict.Check(item.left >= shown.left && item.right <= shown.right &&
                           item.top >= shown.top && item.bottom <= shown.bottom,
                       "the picker's icon " + std::to_string(index) + " at " +
                           e2e::Describe(item) + " is not shown in the list at " +
                           e2e::Describe(shown))) {
      return false;
    }
    // Something is drawn in the icon's cell: it is not of the list's one colour.
    std::vector<std::uint32_t> cell;
    std::string shotError;
    if (verdict.Check(CaptureScreen(item, cell, shotError), "the picker's list: " + shotError)) {
      verdict.Check(std::any_of(cell.begin(), cell.end(),
                                [&](std::uint32_t p) { return !CloseColours(p, cell.front(), kTolerance); }),
                    "the picker's cell of icon " + std::to_string(index) + " is empty");
    }
    ClickAt(Centre(item));
    return verdict.Check(WaitUntil(kChangeTimeout,
                                   [&] {
                                     return ::SendMessageA(list, LB_GETCURSEL, 0, 0) == index;
                                   }),
                         "a click on the picker's icon " + std::to_string(index) +
                             " did not select it");
  }

  // The row staged: its node bold with another image than `before` shows, the preview on icon
  // `index`, and nothing written yet.
  void RowStaged(Verdict& verdict, const std::vector<RemoteItem>& before, const RowKeys& keysBefore,
                 int index) {
    std::vector<RemoteItem> items;
    int position = 0;
    const bool read = WaitUntil(kChangeTimeout, [&] {
      Verdict ignored;
      return Nodes(ignored, items, position) && items[static_cast<std::size_t>(position) - 1].bold;
    });
    if (!verdict.Check(read, std::string("\"") + kRow + "\" did not turn bold") ||
        !Nodes(verdict, items, position)) {
      return;
    }
    const RemoteItem& node = items[static_cast<std::size_t>(position) - 1];
    const RemoteItem& was = before[static_cast<std::size_t>(position) - 1];
    verdict.Check(node.image != was.image && node.selectedImage == node.image,
                  std::string("\"") + kRow + "\" shows image " + std::to_string(node.image) + "/" +
                      std::to_string(node.selectedImage) + ", before " + std::to_string(was.image));
    PreviewShows(verdict, index, "after the picker's OK");
    verdict.Check(Keys() == keysBefore, "staging wrote to the registry: " + Describe(Keys()) +
                                            ", before " + Describe(keysBefore));
  }

  // The row as it was: its node neither bold nor showing another image, no node bold, the
  // preview on the row's icon, and its registry values as they were.
  void RowUnchanged(Verdict& verdict, const std::vector<RemoteItem>& before,
                    const RowKeys& keysBefore, int index) {
    std::vector<RemoteItem> items;
    int position = 0;
    if (Nodes(verdict, items, position)) {
      const RemoteItem& node = items[static_cast<std::size_t>(position) - 1];
      const RemoteItem& was = before[static_cast<std::size_t>(position) - 1];
      verdict.Check(!node.bold, std::string("\"") + kRow + "\" is bold");
      verdict.Check(node.image == was.image && node.selectedImage == was.selectedImage,
                    std::string("\"") + kRow + "\" shows image " + std::to_string(node.image) +
                        "/" + std::to_string(node.selectedImage) + ", not " +
                        std::to_string(was.image) + "/" + std::to_string(was.selectedImage));
      for (const RemoteItem& item : items) {
        verdict.Check(!item.bold, "the node \"" + item.text + "\" is bold");
      }
    }
    PreviewShows(verdict, index, "afterwards");
    const RowKeys keys = Keys();
    verdict.Check(keys == keysBefore,
                  "the registry changed: " + Describe(keys) + ", before " + Describe(keysBefore));
  }

  // Clicks the command button `name`.
  bool ClickCommand(Verdict& verdict, const std::string& name) {
    HWND button = FindControl(window_, name);
    if (!verdict.Check(button != nullptr && ::IsWindowVisible(button) != 0,
                       name + " is not found, or not visible")) {
      return false;
    }
    ClickAt(Centre(ScreenRect(button)));
    return true;
  }

  // The message of a rebuild: its box appears with the text, is photographed, and is closed
  // with a click on its OK button.
  void RestartMessage(Verdict& verdict, const std::string& shot) {
    HWND box = nullptr;
    const bool shown =
        WaitUntil(kRebuildTimeout, [&] { return (box = DialogOf(child_.id)) != nullptr; });
    if (!verdict.Check(shown,
                       "no message box within " + std::to_string(kRebuildTimeout / 1000) + " s")) {
      SaveShot(verdict, shot);
      return;
    }
    std::string text;
    const bool right =
        WaitUntil(kChangeTimeout, [&] { return (text = DialogText(box)) == kRestartMessage; });
    verdict.Check(right, "the message box says \"" + text + "\", not \"" + kRestartMessage + "\"");
    ::Sleep(300);  // let it paint before the picture is taken
    SaveShot(verdict, shot);
    ClickDialogButton(verdict, box, IDOK, "OK", kChangeTimeout);
  }

  // After a rebuild: TvDesktop filled again, the row there, and no node bold.
  void Rebuilt(Verdict& verdict, std::size_t nodesBefore) {
    std::vector<RemoteItem> items;
    int position = 0;
    if (!Nodes(verdict, items, position)) return;
    verdict.Check(items.size() == nodesBefore, "TvDesktop has " + std::to_string(items.size()) +
                                                   " nodes after the rebuild, not " +
                                                   std::to_string(nodesBefore));
    for (const RemoteItem& item : items) {
      verdict.Check(!item.bold, "the node \"" + item.text + "\" is bold after the rebuild");
    }
  }

  bool SaveShot(Verdict& verdict, const std::string& name) {
    return e2e::SaveShot(verdict, shots_, name);
  }

  // --- the cases -----------------------------------------------------------------------------

  // A double click on the row opens the picker on the row's icon; an icon clicked there and
  // then Cancel change nothing.
  Verdict CancelCase() {
    Verdict verdict;
    std::vector<RemoteItem> before;
    int position = 0;
    POINT point{};
    if (!Nodes(verdict, before, position) || !RowPoint(verdict, position, point)) return verdict;
    const RowKeys keys = Keys();
    const std::size_t traceFrom = HasTrace() ? TraceSize() : 0;
    ClickRow(point, true);
    verdict.Check(WaitUntil(kChangeTimeout, [&] { return RowSelected(); }),
                  std::string("the double click did not select \"") + kRow + "\"");
    const HWND dialog = PickerShown(verdict, traceFrom, kLibrary, rowIndex_);
    SaveShot(verdict, "e2e-icon-picker");
    if (dialog == nullptr) return verdict;
    ChooseIcon(verdict, dialog, kPickedIndex);
    ClickDialogButton(verdict, dialog, IDCANCEL, "Cancel", kChangeTimeout);
    RowUnchanged(verdict, before, keys, rowIndex_);
    verdict.Note("the picker opened on " + std::string(kLibrary) + " with icon " +
                 std::to_string(rowIndex_) + " selected, owned by the main window; Cancel " +
                 "after a click on icon " + std::to_string(kPickedIndex) + " changed nothing");
    return verdict;
  }

  // A double click on the row, another icon chosen in the picker and OK stage the row: bold,
  // with the new image, nothing written. CmdApply then writes the chosen location to both of
  // the row's keys, shows its message and rebuilds the tree with no node bold.
  Verdict StageAndApplyCase() {
    Verdict verdict;
    std::vector<RemoteItem> before;
    int position = 0;
    POINT point{};
    if (!Nodes(verdict, before, position) || !RowPoint(verdict, position, point) ||
        !IconsDiffer(verdict, rowIndex_, kPickedIndex)) {
      return verdict;
    }
    const RowKeys keys = Keys();
    ClickRow(point, true);
    const HWND dialog = PickerShown(verdict, 0, kLibrary, rowIndex_);
    if (dialog == nullptr || !ChooseIcon(verdict, dialog, kPickedIndex) ||
        !ClickDialogButton(verdict, dialog, IDOK, "OK", kChangeTimeout)) {
      return verdict;
    }
    RowStaged(verdict, before, keys, kPickedIndex);
    ::Sleep(300);  // let it paint before the picture is taken
    SaveShot(verdict, "e2e-icon-staged");
    if (!verdict.Passed() || !ClickCommand(verdict, "CmdApply")) return verdict;
    RestartMessage(verdict, "e2e-icon-applied");
    const std::string chosen = Location(kPickedIndex);
    const RowKeys written = Keys();
    verdict.Check(written.classIcon == chosen && written.classIdIcon == chosen,
                  "after CmdApply: " + Describe(written) + ", not \"" + chosen + "\" in both");
    Rebuilt(verdict, before.size());
    if (SelectRow(verdict)) PreviewShows(verdict, kPickedIndex, "after the rebuild");
    rowIndex_ = kPickedIndex;
    verdict.Note("staged bold with a new image, then both keys hold \"" + chosen +
                 "\", the message shown, no node bold");
    return verdict;
  }

  // CmdChange opens the picker on the row's icon; another icon and OK stage the row, and
  // CmdReset takes the staging back: not bold, the image of the last fill, the preview on the
  // row's icon, and the registry unchanged.
  Verdict StageAndResetCase() {
    Verdict verdict;
    std::vector<RemoteItem> before;
    int position = 0;
    if (!Nodes(verdict, before, position) || !SelectRow(verdict) ||
        !IconsDiffer(verdict, rowIndex_, kSecondPickIndex)) {
      return verdict;
    }
    const RowKeys keys = Keys();
    if (!ClickCommand(verdict, "CmdChange")) return verdict;
    const HWND dialog = PickerShown(verdict, 0, kLibrary, rowIndex_);
    if (dialog == nullptr || !ChooseIcon(verdict, dialog, kSecondPickIndex) ||
        !ClickDialogButton(verdict, dialog, IDOK, "OK", kChangeTimeout)) {
      return verdict;
    }
    RowStaged(verdict, before, keys, kSecondPickIndex);
    if (!verdict.Passed() || !ClickCommand(verdict, "CmdReset")) return verdict;
    verdict.Check(WaitUntil(kChangeTimeout,
                            [&] {
                              Verdict ignored;
                              std::vector<RemoteItem> items;
                              int at = 0;
                              return Nodes(ignored, items, at) &&
                                     !items[static_cast<std::size_t>(at) - 1].bold;
                            }),
                  std::string("\"") + kRow + "\" is still bold after CmdReset");
    verdict.Check(DialogOf(child_.id) == nullptr, "a dialog appeared after CmdReset");
    RowUnchanged(verdict, before, keys, rowIndex_);
    verdict.Note("staged icon " + std::to_string(kSecondPickIndex) +
                 " through CmdChange; CmdReset put the node's image and the preview back, "
                 "nothing written");
    return verdict;
  }

  // CmdReset on a node that is not bold does nothing: no image, preview or registry value
  // changes, and no message.
  Verdict ResetCase() {
    Verdict verdict;
    std::vector<RemoteItem> before;
    int position = 0;
    if (!Nodes(verdict, before, position)) return verdict;
    const RowKeys keys = Keys();
    if (!ClickCommand(verdict, "CmdReset")) return verdict;
    ::Sleep(kNoChangeWait);
    verdict.Check(DialogOf(child_.id) == nullptr, "a dialog appeared after CmdReset");
    std::vector<RemoteItem> after;
    if (Nodes(verdict, after, position)) {
      bool same = after.size() == before.size();
      for (std::size_t i = 0; same && i < after.size(); ++i) {
        same = after[i].text == before[i].text && after[i].image == before[i].image &&
               after[i].selectedImage == before[i].selectedImage &&
               after[i].bold == before[i].bold && after[i].selected == before[i].selected;
      }
      verdict.Check(same, "TvDesktop changed after CmdReset on a node that is not bold");
    }
    RowUnchanged(verdict, before, keys, rowIndex_);
    verdict.Note(std::string("\"") + kRow + "\" not bold: CmdReset changed nothing");
    return verdict;
  }

  // CmdApply with nothing staged writes nothing, and still rebuilds the catalogue from the
  // registry and shows its message: the row's icon changed from outside meanwhile is what the
  // rebuilt row shows.
  Verdict ApplyCase() {
    Verdict verdict;
    std::vector<RemoteItem> before;
    int position = 0;
    if (!Nodes(verdict, before, position) || !IconsDiffer(verdict, rowIndex_, kOutsideIndex)) {
      return verdict;
    }
    const std::string outside = Location(kOutsideIndex);
    if (!verdict.Check(classIdIcon_.Set(outside), "could not set " + classIdIcon_.Where())) {
      return verdict;
    }
    // The row still holds what it read at the start.
    PreviewShows(verdict, rowIndex_, "before CmdApply");
    const RowKeys keys = Keys();
    if (!ClickCommand(verdict, "CmdApply")) return verdict;
    RestartMessage(verdict, "e2e-icon-applied-unstaged");
    verdict.Check(Keys() == keys, "CmdApply with nothing staged changed the registry: " +
                                      Describe(Keys()) + ", before " + Describe(keys));
    Rebuilt(verdict, before.size());
    if (SelectRow(verdict)) PreviewShows(verdict, kOutsideIndex, "after the rebuild");
    rowIndex_ = kOutsideIndex;
    verdict.Note("no node bold: nothing written (" + Describe(keys) +
                 "), the message shown, and the rebuilt row shows the icon set from outside");
    return verdict;
  }

  // CmdDefault with the row selected writes the row's stock location to both of its keys.
  Verdict DefaultCase() {
    Verdict verdict;
    std::vector<RemoteItem> before;
    int position = 0;
    if (!Nodes(verdict, before, position) || !SelectRow(verdict)) return verdict;
    const std::string stock = TakesItselfForVista() ? kStockVista : kStockOther;
    if (!ClickCommand(verdict, "CmdDefault")) return verdict;
    RestartMessage(verdict, "e2e-icon-default");
    const RowKeys keys = Keys();
    verdict.Check(keys.classIcon == stock && keys.classIdIcon == stock,
                  "after CmdDefault: " + Describe(keys) + ", not \"" + stock + "\" in both");
    Rebuilt(verdict, before.size());
    verdict.Note("both keys hold the stock \"" + stock + "\", the message shown, no node bold");
    return verdict;
  }

 private:
  HWND window_;
  const Child& child_;
  std::string shots_;
  std::string trace_;
  const KeptValue& classIcon_;
  const KeptValue& classIdIcon_;
  // The icon of the row's file that the row holds now.
  int rowIndex_ = kSeedIndex;
  // When the row's node was last clicked.
  ULONGLONG lastRowClick_ = 0;
};

}  // namespace

void RunIconChanges(const std::string& program, const std::string& screenshotFolder,
                    const std::string& traceFile, const Report& report) {
  // Every value the cases touch is put back when these go, after the program has ended.
  KeptValue iconSize(HKEY_CURRENT_USER, kWindowMetrics, kShellIconSize);
  KeptValue classIcon(HKEY_CLASSES_ROOT, kClassIconKey, "");
  KeptValue classIdIcon(HKEY_CLASSES_ROOT, kClassIdIconKey, "");
  Verdict start;
  start.Check(iconSize.Set("32"), "could not set " + iconSize.Where());
  start.Check(classIdIcon.Set(Location(kSeedIndex)), "could not set " + classIdIcon.Where());

  Child child;
  HWND window = nullptr;
  if (start.Passed()) {
    // The program's shell diagnostics go to the trace, where the picker tells its requests.
    EnvironmentSetting trace("WINEDEBUG", kShellTrace);
    window = StartWithMainWindow(program, "", true, child, start);
  }
  if (window == nullptr) {
    report("icons: start", start);
    return;
  }
  ::Sleep(500);  // let it paint
  IconSession session(window, child, screenshotFolder, traceFile, classIcon, classIdIcon);
  report(std::string("icons: double click on \"") + kRow + "\", Cancel in the picker",
         session.CancelCase());
  report(std::string("icons: double click on \"") + kRow + "\", another icon, OK, CmdApply",
         session.StageAndApplyCase());
  report(std::string("icons: CmdChange on \"") + kRow + "\", another icon, OK, CmdReset",
         session.StageAndResetCase());
  report(std::string("icons: CmdReset on \"") + kRow + "\", not bold", session.ResetCase());
  report("icons: CmdApply with nothing staged", session.ApplyCase());
  report(std::string("icons: CmdDefault on \"") + kRow + "\"", session.DefaultCase());

  const Verdict end = EndThroughExit(window, child);
  if (!end.Passed()) report("icons: end", end);
}

}  // namespace quorvane::e2e
