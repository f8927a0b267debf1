#include "RealWindow.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Driving.h"
#include "Registry.h"

namespace quorvane::e2e {

namespace {

constexpr DWORD kChangeTimeout = 2500;
constexpr int kTolerance = 8;
const char kSettingsClass[] = "QuorvaneSettings";
const char kProductKey[] = "Software\\Talvenor\\Mirefold\\Quorvane";
const char* const kProductValues[] = {"Enable",   "TimeInterval", "ChangeOrder",
                                      "Position", "AutoStart",    "Collections"};
const char kRunKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
const char kRunValue[] = "Talvenor Quorvane";

// Whether `window` shows the program's bitmap `number` at its top left corner, pixel for pixel;
// `seen` says how many pixels differ.
bool Shows(HWND window, const Picture& bitmap, std::string& seen) {
  const RECT area = ScreenRect(window);
  std::vector<std::uint32_t> pixels;
  std::string error;
  if (!CaptureScreen(area, pixels, error)) {
    seen = error;
    return false;
  }
  const int width = std::min<int>(area.right - area.left, bitmap.width);
  const int height = std::min<int>(area.bottom - area.top, bitmap.height);
  if (width <= 0 || height <= 0) {
    seen = "nothing of the picture in " + Describe(area);
    return false;
  }
  const int stride = area.right - area.left;
  int different = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t shown = pixels[static_cast<std::size_t>(y * stride + x)];
      const std::uint32_t drawn = bitmap.pixels[static_cast<std::size_t>(y * bitmap.width + x)];
      different += CloseColours(shown, drawn, kTolerance) ? 0 : 1;
    }
  }
  seen = std::to_string(different) + " pixels of " + Describe(area) + " differ";
  return different == 0;
}

// Key strokes as the user makes them, into whatever window has the keyboard focus.
void Keys(std::initializer_list<std::pair<WORD, bool>> strokes) {
  for (const auto& [key, down] : strokes) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
    ::SendInput(1, &input, sizeof input);
    ::Sleep(60);
  }
}

void Press(WORD key) { Keys({{key, true}, {key, false}}); }

// Types the digits of `text`, one key each.
void TypeDigits(const std::string& text) {
  for (const char digit : text) Press(static_cast<WORD>(digit));
}

// What an edit of another process holds, asked of the edit itself.
std::string EditText(HWND edit) {
  char text[64] = {};
  ::SendMessageA(edit, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

// The window that has the keyboard focus in the thread of `window`; null when none has.
HWND FocusOf(HWND window) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  const DWORD thread = ::GetWindowThreadProcessId(window, nullptr);
  if (::GetGUIThreadInfo(thread, &info) == 0) return nullptr;
  return info.hwndFocus;
}

std::string Named(HWND window) {
  if (window == nullptr) return "no window";
  return "\"" + TextOf(window) + "\" (" + ClassNameOf(window) + ")";
}

// A file's whole content, or nothing when it is not there; and the file put back as it was.
std::optional<std::string> Keep(const std::string& path) {
  if (::GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return ReadFileText(path);
}

void PutBack(const std::string& path, const std::optional<std::string>& content) {
  if (!content) {
    ::DeleteFileA(path.c_str());
    return;
  }
  if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
    std::fwrite(content->data(), 1, content->size(), file);
    std::fclose(file);
  }
}

class Session {
 public:
  Session(HWND window, const Child& child, std::string program, std::string shots,
          std::string prefix)
      : window_(window),
        child_(child),
        program_(std::move(program)),
        shots_(std::move(shots)),
        prefix_(std::move(prefix)) {}

  HWND Find(const std::string& name) const { return FindControl(window_, name); }

  // Chooses the page of CmdMenu element `element`: false when its box does not show.
  bool ChoosePage(Verdict& verdict, int element, const char* box) {
    HWND command = Find("CmdMenu(" + std::to_string(element) + ")");
    if (!verdict.Check(command != nullptr && ::IsWindowVisible(command) != 0,
                       "CmdMenu(" + std::to_string(element) + ") is not found, or not shown")) {
      return false;
    }
    ClickAt(Centre(ScreenRect(command)));
    return verdict.Check(WaitUntil(kChangeTimeout, [&] {
                           HWND page = Find(box);
                           return page != nullptr && ::IsWindowVisible(page) != 0;
                         }),
                         std::string(box) + " is not shown after a click on its page command");
  }

  const Picture* Bitmap(int number, std::string& error) {
    for (const auto& [n, picture] : bitmaps_) {
      if (n == number) return picture.get();
    }
    auto picture = std::make_unique<Picture>();
    if (!LoadResourceBitmap(program_, number, *picture, error)) return nullptr;
    bitmaps_.emplace_back(number, std::move(picture));
    return bitmaps_.back().second.get();
  }

  // On the "File System" page CmdApply is disabled: it rests on its disabled picture, shows its
  // hover picture under the pointer all the same, and a click on it does nothing. CmdDefault,
  // enabled, takes the hover from it.
  Verdict DisabledHoverCase() {
    Verdict verdict;
    if (!ChoosePage(verdict, 1, "PBFileSystem")) return verdict;
    HWND apply = Find("CmdApply");
    HWND defaults = Find("CmdDefault");
    if (!verdict.Check(apply != nullptr && defaults != nullptr && ::IsWindowVisible(apply) != 0 &&
                           ::IsWindowVisible(defaults) != 0,
                       "CmdApply or CmdDefault is not found, or not visible")) {
      return verdict;
    }
    std::string error;
    const Picture* disabled = Bitmap(105, error);
    const Picture* hover = disabled != nullptr ? Bitmap(106, error) : nullptr;
    const Picture* defaultHover = hover != nullptr ? Bitmap(113, error) : nullptr;
    if (!verdict.Check(defaultHover != nullptr, "the bitmaps: " + error)) return verdict;
    std::string seen;
    // The pointer rests on the page's title first, where no button is.
    MoveTo(Centre(ScreenRect(Find("LblCommandName"))));
    bool right = WaitUntil(kChangeTimeout, [&] { return Shows(apply, *disabled, seen); });
    verdict.Check(right, "on the \"File System\" page CmdApply does not rest on 105: " + seen);
    MoveTo(Centre(ScreenRect(apply)));
    right = WaitUntil(kChangeTimeout, [&] { return Shows(apply, *hover, seen); });
    verdict.Check(right, "under the pointer the disabled CmdApply does not show 106: " + seen);
    SaveShot(verdict, shots_, prefix_ + "disabled-hover");
    ClickAt(Centre(ScreenRect(apply)));
    ::Sleep(800);
    verdict.Check(DialogOf(child_.id) == nullptr, "a click on the disabled CmdApply opened " +
                                                      Named(DialogOf(child_.id)));
    verdict.Check(::IsWindowVisible(Find("PBFileSystem")) != 0,
                  "a click on the disabled CmdApply left the \"File System\" page");
    MoveTo(Centre(ScreenRect(defaults)));
    right = WaitUntil(kChangeTimeout, [&] { return Shows(defaults, *defaultHover, seen); });
    verdict.Check(right, "under the pointer CmdDefault does not show 113: " + seen);
    right = Shows(apply, *disabled, seen);
    verdict.Check(right, "with the pointer on CmdDefault, CmdApply does not show 105: " + seen);
    if (verdict.Passed()) {
      verdict.Note("CmdApply disabled: 105 at rest, 106 under the pointer, a click does nothing; "
                   "CmdDefault 113 and CmdApply 105 again");
    }
    return verdict;
  }

  // A number typed into a spin edit of `form` (a form's top-level window): a click into its
  // edit, the number there selected with End and Shift+Home, and two digits typed over it. The
  // edit then shows those two digits in their order. `typed` gives back the number typed.
  bool TypeInto(Verdict& verdict, HWND form, const std::string& name, std::string& typed,
                HWND& edit, HWND& arrows) {
    HWND spin = FindControl(form, name);
    if (!verdict.Check(spin != nullptr && ::IsWindowVisible(spin) != 0,
                       name + " is not found, or not visible")) {
      return false;
    }
    edit = ::FindWindowExA(spin, nullptr, "Edit", nullptr);
    arrows = ::FindWindowExA(spin, nullptr, UPDOWN_CLASSA, nullptr);
    if (!verdict.Check(edit != nullptr && arrows != nullptr,
                       name + " has no edit or no up-down")) {
      return false;
    }
    if (!verdict.Check(::IsWindowEnabled(edit) != 0,
                       name + " is disabled (the program takes itself for \"Windows Vista\")")) {
      return false;
    }
    // 50 where the bounds allow it, else 10; bounds that do not fit 16 bits read as none.
    const auto range = static_cast<DWORD>(::SendMessageA(arrows, UDM_GETRANGE, 0, 0));
    const auto high = static_cast<short>(LOWORD(range));
    const auto low = static_cast<short>(HIWORD(range));
    typed = low > high || (low <= 50 && 50 <= high) ? "50" : "10";
    const std::string before = EditText(edit);
    const RECT area = ScreenRect(edit);
    ClickAt(POINT{area.left + 6, (area.top + area.bottom) / 2});
    ::Sleep(200);
    Keys({{VK_END, true}, {VK_END, false}, {VK_SHIFT, true}, {VK_HOME, true}, {VK_HOME, false},
          {VK_SHIFT, false}});
    TypeDigits(typed);
    std::string shown;
    const bool right = WaitUntil(kChangeTimeout, [&] {
      shown = EditText(edit);
      return shown == typed;
    });
    return verdict.Check(right, name + " showed \"" + before + "\"; with it selected and \"" +
                                    typed + "\" typed it shows \"" + shown + "\"");
  }

  // TxtHorizontal and TxtVertical on the "Appearance" page: two digits typed over the number
  // stay in their order, and the up arrow key steps on from the number typed.
  Verdict SpacingCase(const std::string& name) {
    Verdict verdict;
    if (!ChoosePage(verdict, 2, "PBAppearance")) return verdict;
    std::string typed;
    HWND edit = nullptr;
    HWND arrows = nullptr;
    if (!TypeInto(verdict, window_, name, typed, edit, arrows)) {
      SaveShot(verdict, shots_, prefix_ + "typed-" + name);
      return verdict;
    }
    const auto range = static_cast<DWORD>(::SendMessageA(arrows, UDM_GETRANGE, 0, 0));
    const auto high = static_cast<short>(LOWORD(range));
    const auto low = static_cast<short>(HIWORD(range));
    const int number = std::stoi(typed);
    const int next = low > high ? number + 1 : std::min<int>(number + 1, high);
    Press(VK_UP);
    std::string shown;
    const bool stepped = WaitUntil(kChangeTimeout, [&] {
      shown = EditText(edit);
      return shown == std::to_string(next);
    });
    verdict.Check(stepped, "after \"" + typed + "\" the up arrow key gives \"" + shown +
                               "\", not \"" + std::to_string(next) + "\"");
    SaveShot(verdict, shots_, prefix_ + "typed-" + name);
    if (verdict.Passed()) {
      verdict.Note("typed \"" + typed + "\" over the number: shows \"" + typed +
                   "\"; the up arrow key then \"" + std::to_string(next) + "\"");
    }
    return verdict;
  }

  // CboMinutes in the settings dialog: two digits typed over the number stay in their order,
  // and CmdSave stores that number as TimeInterval.
  Verdict MinutesCase() {
    Verdict verdict;
    if (!ChoosePage(verdict, 3, "PBWallpaper")) return verdict;
    HWND command = Find("CmdSettings");
    if (!verdict.Check(command != nullptr && ::IsWindowVisible(command) != 0,
                       "CmdSettings is not found, or not shown")) {
      return verdict;
    }
    std::vector<std::unique_ptr<KeptValue>> product;
    for (const char* name : kProductValues) {
      product.push_back(std::make_unique<KeptValue>(HKEY_CURRENT_USER, kProductKey, name));
    }
    const KeptValue run(HKEY_CURRENT_USER, kRunKey, kRunValue);
    const std::string index = DataFolder() + "Files.ini";
    const std::optional<std::string> indexBefore = Keep(index);
    ClickAt(Centre(ScreenRect(command)));
    HWND dialog = nullptr;
    if (!verdict.Check(WaitUntil(kChangeTimeout * 2,
                                 [&] {
                                   dialog = FindShownWindow(child_.id, kSettingsClass);
                                   return dialog != nullptr;
                                 }),
                       "no settings dialog after a click on CmdSettings")) {
      return verdict;
    }
    ::Sleep(500);  // let it paint
    std::string typed;
    HWND edit = nullptr;
    HWND arrows = nullptr;
    const bool typedRight = TypeInto(verdict, dialog, "CboMinutes", typed, edit, arrows);
    SaveShot(verdict, shots_, prefix_ + "typed-CboMinutes");
    HWND save = FindControl(dialog, "CmdSave");
    if (verdict.Check(save != nullptr, "CmdSave is not found")) {
      ClickAt(Centre(ScreenRect(save)));
      verdict.Check(WaitUntil(kChangeTimeout * 4, [&] { return ::IsWindow(dialog) == 0; }),
                    "the dialog is still there after a click on CmdSave");
    }
    if (typedRight) {
      const KeptValue& interval = *product[1];
      const std::optional<std::string> stored = interval.Now();
      verdict.Check(stored == typed,
                    "after the save TimeInterval is " + Shown(stored) + ", not \"" + typed + "\"");
      if (verdict.Passed()) {
        verdict.Note("typed \"" + typed + "\" over the number: shows \"" + typed +
                     "\", saved as TimeInterval " + typed);
      }
    }
    PutBack(index, indexBefore);
    return verdict;
  }

  // A collection removed with the third CmdWallpaperControl: once the tree is filled again,
  // TvCollections has the keyboard focus.
  Verdict RemovalFocusCase() {
    Verdict verdict;
    if (!ChoosePage(verdict, 3, "PBWallpaper")) return verdict;
    HWND tree = Find("TvCollections");
    HWND remove = Find("CmdWallpaperControl(2)");
    if (!verdict.Check(tree != nullptr && remove != nullptr && ::IsWindowVisible(tree) != 0,
                       "TvCollections or CmdWallpaperControl(2) is not found, or not shown")) {
      return verdict;
    }
    std::vector<RemoteItem> items;
    int count = 0;
    std::string error;
    if (!verdict.Check(ReadTreeView(tree, items, count, error), "TvCollections: " + error)) {
      return verdict;
    }
    std::string listed;
    for (const RemoteItem& item : items) listed += (listed.empty() ? "" : ", ") + item.text;
    int ours = 0;
    for (const RemoteItem& item : items) {
      for (const char* name : kFocusCollections) ours += item.text == name ? 1 : 0;
    }
    if (!verdict.Check(ours == 2, "TvCollections lists \"" + listed + "\", not both of " +
                                      kFocusCollections[0] + " and " + kFocusCollections[1] +
                                      " (scripts/e2e.sh packs them)")) {
      return verdict;
    }
    // The first node is chosen with a click, which gives the tree the focus; the question that
    // comes next takes it, and the window has it back when the question goes. The removal then
    // gives it to the tree again.
    RECT first{};
    if (!verdict.Check(TreeItemRect(tree, 1, first, error), "TvCollections: " + error)) {
      return verdict;
    }
    ClickAt(Centre(first));
    std::string selected;
    WaitUntil(kChangeTimeout, [&] {
      if (!ReadTreeView(tree, items, count, error)) return false;
      for (const RemoteItem& item : items) {
        if (item.selected) selected = item.text;
      }
      return !selected.empty();
    });
    if (!verdict.Check(!selected.empty(), "a click on the first node did not select it")) {
      return verdict;
    }
    const HWND before = FocusOf(window_);
    ClickAt(Centre(ScreenRect(remove)));
    HWND box = nullptr;
    if (!verdict.Check(
            WaitUntil(kChangeTimeout, [&] { return (box = DialogOf(child_.id)) != nullptr; }),
            "no question after a click on CmdWallpaperControl(2)")) {
      return verdict;
    }
    const std::string question = DialogText(box);
    verdict.Check(question.find("Are you sure you want to delete?") != std::string::npos,
                  "the question is \"" + question + "\"");
    if (!ClickDialogButton(verdict, box, IDYES, "Yes", kChangeTimeout)) return verdict;
    const bool refilled = WaitUntil(kChangeTimeout * 2, [&] {
      return ReadTreeView(tree, items, count, error) && count == static_cast<int>(items.size()) &&
             std::none_of(items.begin(), items.end(),
                          [&](const RemoteItem& item) { return item.text == selected; }) &&
             !items.empty();
    });
    verdict.Check(refilled, "TvCollections still lists \"" + selected + "\", or nothing");
    HWND focus = nullptr;
    const bool focused = WaitUntil(kChangeTimeout, [&] {
      focus = FocusOf(window_);
      return focus == tree;
    });
    verdict.Check(focused, "after the removal the focus is on " + Named(focus) +
                               ", not on TvCollections (before the question: " + Named(before) +
                               ")");
    verdict.Check(::GetFileAttributesA((DataFolder() + selected + ".RXS").c_str()) ==
                      INVALID_FILE_ATTRIBUTES,
                  selected + ".RXS is still in the data folder");
    SaveShot(verdict, shots_, prefix_ + "removal-focus");
    if (verdict.Passed()) {
      verdict.Note("removed \"" + selected + "\"; the focus on TvCollections again");
    }
    return verdict;
  }

 private:
  HWND window_;
  const Child& child_;
  std::string program_;
  std::string shots_;
  std::string prefix_;
  std::vector<std::pair<int, std::unique_ptr<Picture>>> bitmaps_;
};

}  // namespace

void RunRealWindow(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, const Report& report) {
  Child child;
  Verdict start;
  HWND window = StartWithMainWindow(program, "", true, child, start);
  if (window == nullptr) {
    report("real window: start", start);
    return;
  }
  ::Sleep(500);  // let it paint
  Session session(window, child, program, screenshotFolder, shotPrefix);
  report("hover on the disabled CmdApply", session.DisabledHoverCase());
  report("typing a number into TxtHorizontal", session.SpacingCase("TxtHorizontal"));
  report("typing a number into TxtVertical", session.SpacingCase("TxtVertical"));
  report("typing a number into CboMinutes", session.MinutesCase());
  report("the focus after a removal", session.RemovalFocusCase());
  const Verdict end = EndThroughExit(window, child);
  if (!end.Passed()) report("real window: end", end);
}

}  // namespace quorvane::e2e
