// The program's own icon picker, driven from a second thread of this process the way a person
// uses it: it opens on a file of icons the test made, with the icon asked for selected; clicks
// choose, OK and a double click confirm, Cancel leaves everything as it was, Enter in the path's
// field or leaving it loads another file, a file without icons says so and can't be confirmed,
// and nothing is written past the caller's buffer. A dialog needs a screen:
// scripts/gtest-on-screen.sh runs this program in a virtual desktop on Xvfb.
#include <gtest/gtest.h>
#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "IcoFiles.h"
#include "platform/win32/GdiHandles.h"
#include "platform/win32/Win32IconPicker.h"
#include "platform/win32/Win32Icons.h"

namespace quorvane::testing {
namespace {

namespace ip = platform::win32::icon_picker;

// How long the driving thread waits for the dialog or for a change in it before it gives up.
constexpr ULONGLONG kWaitBound = 10000;
// Units after the caller's buffer that no write may reach.
constexpr std::size_t kGuard = 16;
constexpr char16_t kGuardUnit = u'#';

// The resource identifier of the icon group at position i of a library made here.
constexpr int kFirstGroup = 100;

// A new, empty folder for one test under the temporary folder, with a trailing separator; the
// whole tree goes when the program ends.
std::string TempBase() {
  char temp[MAX_PATH + 1] = {};
  const DWORD n = ::GetTempPathA(sizeof temp, temp);
  return std::string(temp, n) + "quorvane-picker-" + std::to_string(::GetCurrentProcessId());
}

class TempTree : public ::testing::Environment {
 public:
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(TempBase(), ec);
  }
};

[[maybe_unused]] ::testing::Environment* const kTempTree =
    ::testing::AddGlobalTestEnvironment(new TempTree);

std::string FreshTempFolder() {
  static int counter = 0;
  const std::string base = TempBase();
  ::CreateDirectoryA(base.c_str(), nullptr);
  const std::string folder = base + "\\" + std::to_string(counter++);
  ::CreateDirectoryA(folder.c_str(), nullptr);
  return folder + "\\";
}

std::u16string U16(const std::string& text) { return std::u16string(text.begin(), text.end()); }
std::wstring Wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

std::string Group(std::uint16_t iconId, const IcoImage& image, std::size_t bytes) {
  std::string out;
  ico_detail::Put16(out, 0);
  ico_detail::Put16(out, 1);
  ico_detail::Put16(out, 1);
  out.push_back(static_cast<char>(image.width));
  out.push_back(static_cast<char>(image.height));
  out.push_back('\0');
  out.push_back('\0');
  ico_detail::Put16(out, 1);
  ico_detail::Put16(out, image.bitCount);
  ico_detail::Put32(out, static_cast<std::uint32_t>(bytes));
  ico_detail::Put16(out, iconId);
  return out;
}

// The colour (0xRRGGBB) of icon i of a library made here: each icon has its own, and none is the
// list's white or the selection's blue.
std::uint32_t LibraryColour(int i) {
  const auto n = static_cast<std::uint32_t>(i);
  return ((n * 37u + 20u) % 200u) << 16 | ((n * 83u + 40u) % 200u) << 8 | ((n * 11u) % 120u);
}

// A module holding `count` icons, each one image of its own colour: a copy of this program with
// its resources replaced. Icon group i has the identifier kFirstGroup + i.
bool WriteIconLibrary(const std::string& path, int count) {
  char self[MAX_PATH + 1] = {};
  if (::GetModuleFileNameA(nullptr, self, MAX_PATH) == 0 ||
      ::CopyFileA(self, path.c_str(), FALSE) == 0) {
    return false;
  }
  HANDLE update = ::BeginUpdateResourceA(path.c_str(), TRUE);
  if (update == nullptr) return false;
  bool added = true;
  for (int i = 0; i < count && added; ++i) {
    const IcoImage image = SolidImage(32, 32, 0xFF000000u | LibraryColour(i));
    std::string data = ico_detail::EntryData(image);
    const auto iconId = static_cast<std::uint16_t>(i + 1);
    std::string group = Group(iconId, image, data.size());
    added = ::UpdateResourceA(update, MAKEINTRESOURCEA(3), MAKEINTRESOURCEA(iconId),
                              MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL), data.data(),
                              static_cast<DWORD>(data.size())) != 0 &&
            ::UpdateResourceA(update, MAKEINTRESOURCEA(14), MAKEINTRESOURCEA(kFirstGroup + i),
                              MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL), group.data(),
                              static_cast<DWORD>(group.size())) != 0;
  }
  return ::EndUpdateResourceA(update, added ? FALSE : TRUE) != 0 && added;
}

// An icon file of one icon in several images.
bool WriteIcoFile(const std::string& path) {
  return WriteBytes(path, IcoBytes({SolidImage(16, 32, 0xFF2060A0u), SolidImage(32, 32, 0xFF2060A0u),
                                    SolidImage(48, 32, 0xFF2060A0u)}));
}

int IconsIn(const std::string& path) {
  return static_cast<int>(::ExtractIconExW(Wide(path).c_str(), -1, nullptr, nullptr, 0));
}

// The caller's buffer: `size` units holding `text` and NULs (or `text` cut at `size` units),
// then guard units that must stay as they are.
struct Buffer {
  Buffer(const std::string& text, std::uint32_t n) : size(n), units(n + kGuard, kGuardUnit) {
    std::fill(units.begin(), units.begin() + n, u'\0');
    const std::u16string wide = U16(text);
    std::copy_n(wide.begin(), std::min<std::size_t>(wide.size(), n), units.begin());
  }
  char16_t* Data() { return units.data(); }
  // The text up to the first NUL within the buffer.
  std::string Text() const {
    std::string out;
    for (std::size_t i = 0; i < size && units[i] != u'\0'; ++i) out += static_cast<char>(units[i]);
    return out;
  }
  bool GuardIntact() const {
    return std::all_of(units.begin() + size, units.end(), [](char16_t u) { return u == kGuardUnit; });
  }
  bool NulsAfterText() const {
    const std::size_t length = Text().size();
    return std::all_of(units.begin() + static_cast<std::ptrdiff_t>(length),
                       units.begin() + size, [](char16_t u) { return u == u'\0'; });
  }

  std::uint32_t size;
  std::u16string units;
};

bool WaitFor(const std::function<bool()>& condition) {
  const ULONGLONG deadline = ::GetTickCount64() + kWaitBound;
  for (;;) {
    if (condition()) return true;
    if (::GetTickCount64() >= deadline) return false;
    ::Sleep(20);
  }
}

// The dialog as the driving thread sees it. Every check that fails is kept, and read by the
// test's own thread once the dialog is closed.
class Remote {
 public:
  explicit Remote(HWND dialog) : dialog_(dialog) {}

  HWND Dialog() const { return dialog_; }
  HWND Item(int id) const { return ::GetDlgItem(dialog_, id); }
  std::wstring Text(int id) const {
    wchar_t text[2048] = {};
    ::GetWindowTextW(Item(id), text, 2048);
    return text;
  }
  std::string Class(int id) const {
    char name[64] = {};
    ::GetClassNameA(Item(id), name, sizeof name);
    return name;
  }
  int Count() const {
    return static_cast<int>(::SendMessageW(Item(ip::kIconListId), LB_GETCOUNT, 0, 0));
  }
  int Selected() const {
    return static_cast<int>(::SendMessageW(Item(ip::kIconListId), LB_GETCURSEL, 0, 0));
  }
  bool OkEnabled() const { return ::IsWindowEnabled(Item(IDOK)) != FALSE; }
  bool Open() const { return ::IsWindow(dialog_) != FALSE && ::IsWindowVisible(dialog_) != FALSE; }

  RECT ItemRect(int index) const {
    RECT area{};
    ::SendMessageW(Item(ip::kIconListId), LB_GETITEMRECT, static_cast<WPARAM>(index),
                   reinterpret_cast<LPARAM>(&area));
    return area;
  }
  // Whether item `index` is shown whole in the list.
  bool Visible(int index) const {
    RECT client{};
    ::GetClientRect(Item(ip::kIconListId), &client);
    const RECT area = ItemRect(index);
    return area.right > area.left && area.left >= client.left && area.right <= client.right &&
           area.top >= client.top && area.bottom <= client.bottom;
  }
  // The first item other than `not` shown whole in the list; -1 when there is none.
  int AnotherVisible(int other) const {
    for (int i = 0; i < Count(); ++i) {
      if (i != other && Visible(i)) return i;
    }
    return -1;
  }

  // The colour (0xRRGGBB) the screen shows at the centre of item `index`; 0xFFFFFFFF when the
  // screen can't be read.
  std::uint32_t CentreColour(int index) const {
    RECT area = ItemRect(index);
    ::MapWindowPoints(Item(ip::kIconListId), nullptr, reinterpret_cast<POINT*>(&area), 2);
    HDC screen = ::GetDC(nullptr);
    const COLORREF pixel =
        ::GetPixel(screen, (area.left + area.right) / 2, (area.top + area.bottom) / 2);
    ::ReleaseDC(nullptr, screen);
    if (pixel == CLR_INVALID) return 0xFFFFFFFFu;
    return static_cast<std::uint32_t>(GetRValue(pixel)) << 16 |
           static_cast<std::uint32_t>(GetGValue(pixel)) << 8 | GetBValue(pixel);
  }

  // A click of the left button on item `index`, as the mouse gives it.
  void ClickItem(int index, bool twice = false) {
    const RECT area = ItemRect(index);
    const LPARAM at = MAKELPARAM((area.left + area.right) / 2, (area.top + area.bottom) / 2);
    const HWND list = Item(ip::kIconListId);
    ::PostMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
    ::PostMessageW(list, WM_LBUTTONUP, 0, at);
    if (twice) {
      ::PostMessageW(list, WM_LBUTTONDBLCLK, MK_LBUTTON, at);
      ::PostMessageW(list, WM_LBUTTONUP, 0, at);
    }
  }
  void ClickButton(int id) { ::SendMessageW(Item(id), BM_CLICK, 0, 0); }
  // Types `path` over the field's text and presses Enter in it.
  void TypePathAndEnter(const std::string& path) {
    const HWND field = Item(ip::kPathId);
    ::SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
    ::SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(path).c_str()));
    ::PostMessageW(field, WM_KEYDOWN, VK_RETURN, 1);
    ::PostMessageW(field, WM_CHAR, L'\r', 1);
    ::PostMessageW(field, WM_KEYUP, VK_RETURN, static_cast<LPARAM>(0xC0000001u));
  }
  // Types `path` over the field's text and moves the focus on to the list.
  void TypePathAndLeave(const std::string& path) {
    const HWND field = Item(ip::kPathId);
    ::SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
    ::SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(path).c_str()));
    ::SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(ip::kIconListId)),
                   TRUE);
  }

  bool Check(bool condition, const std::string& failure) {
    if (!condition) failures_.push_back(failure);
    return condition;
  }
  bool Await(const std::function<bool()>& condition, const std::string& failure) {
    return Check(WaitFor(condition), failure);
  }
  const std::vector<std::string>& Failures() const { return failures_; }

 private:
  HWND dialog_;
  std::vector<std::string> failures_;
};

HWND FindPicker(DWORD thread) {
  struct Search {
    HWND found = nullptr;
  } search;
  ::EnumThreadWindows(
      thread,
      [](HWND window, LPARAM data) -> BOOL {
        char name[16] = {};
        wchar_t title[64] = {};
        ::GetClassNameA(window, name, sizeof name);
        ::GetWindowTextW(window, title, 64);
        if (std::string(name) == "#32770" && std::wstring(title) == ip::kTitle &&
            ::IsWindowVisible(window) != FALSE) {
          reinterpret_cast<Search*>(data)->found = window;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// Shows the picker on this thread through `show`, and runs `drive` on a second thread once the
// dialog is there. Whatever `drive` leaves open is cancelled afterwards, so that the test never
// hangs on a dialog. The driving thread's failed checks come back in `failures`.
std::int32_t Drive(const std::function<std::int32_t()>& show,
                   const std::function<void(Remote&)>& drive, std::vector<std::string>& failures) {
  const DWORD thread = ::GetCurrentThreadId();
  std::thread driver([&] {
    HWND dialog = nullptr;
    if (!WaitFor([&] { return (dialog = FindPicker(thread)) != nullptr; })) {
      failures.push_back("no \"Change Icon\" dialog appeared");
      // One that was made but never shown is closed all the same.
      ::EnumThreadWindows(
          thread,
          [](HWND window, LPARAM) -> BOOL {
            char name[16] = {};
            ::GetClassNameA(window, name, sizeof name);
            if (std::string(name) == "#32770") ::PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
            return TRUE;
          },
          0);
      return;
    }
    Remote remote(dialog);
    drive(remote);
    if (!WaitFor([&] { return !remote.Open(); })) {
      remote.Check(false, "the dialog was still open after the driving ended");
      ::PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    failures = remote.Failures();
  });
  const std::int32_t result = show();
  driver.join();
  return result;
}

std::string Joined(const std::vector<std::string>& failures) {
  std::string text;
  for (const std::string& f : failures) text += (text.empty() ? "" : "; ") + f;
  return text;
}

// A window of this thread for the dialog to belong to.
class OwnerWindow {
 public:
  OwnerWindow()
      : window_(::CreateWindowExW(0, L"STATIC", L"picker owner", WS_POPUP, 0, 0, 10, 10, nullptr,
                                  nullptr, ::GetModuleHandleW(nullptr), nullptr)) {}
  ~OwnerWindow() {
    if (window_ != nullptr) ::DestroyWindow(window_);
  }
  OwnerWindow(const OwnerWindow&) = delete;
  OwnerWindow& operator=(const OwnerWindow&) = delete;
  HWND Get() const { return window_; }

 private:
  HWND window_;
};

class IconPickerFallback : public ::testing::Test {
 protected:
  static constexpr int kLibraryIcons = 40;

  void SetUp() override {
    folder_ = FreshTempFolder();
    library_ = folder_ + "icons.dll";
    ico_ = folder_ + "several.ico";
    text_ = folder_ + "notes.txt";
    ASSERT_TRUE(WriteIconLibrary(library_, kLibraryIcons));
    ASSERT_TRUE(WriteIcoFile(ico_));
    ASSERT_TRUE(WriteBytes(text_, "no icons in here\r\n"));
    // The files are what the tests take them for.
    ASSERT_EQ(IconsIn(library_), kLibraryIcons);
    ASSERT_GT(IconsIn(ico_), 0);
    ASSERT_EQ(IconsIn(text_), 0);
  }

  std::int32_t Show(HWND owner, Buffer& buffer, std::int32_t& index,
                    const std::function<void(Remote&)>& drive) {
    return Drive(
        [&] {
          return platform::win32::ShowIconPicker(owner, buffer.Data(), buffer.size, index);
        },
        drive, failures_);
  }

  std::string folder_;
  std::string library_;
  std::string ico_;
  std::string text_;
  std::vector<std::string> failures_;
};

TEST_F(IconPickerFallback, OpensOnTheFileWithTheIconSelectedAndOkGivesTheClickedOne) {
  OwnerWindow owner;
  ASSERT_NE(owner.Get(), nullptr);
  Buffer buffer(library_, 260);
  std::int32_t index = 35;
  int clicked = -1;
  const std::int32_t result = Show(owner.Get(), buffer, index, [&](Remote& r) {
    r.Check(::GetWindow(r.Dialog(), GW_OWNER) == owner.Get(), "not owned by the owner window");
    r.Check(r.Text(ip::kFileLabelId) == L"Look for icons in this file:", "the prompt differs");
    r.Check(r.Class(ip::kPathId) == "Edit" && r.Text(ip::kPathId) == Wide(library_),
            "the path's field does not hold the file");
    r.Check(r.Class(ip::kBrowseId) == "Button" && r.Text(ip::kBrowseId) == L"Browse...",
            "no \"Browse...\" button");
    r.Check(r.Class(ip::kIconListId) == "ListBox", "the icons are not in a list box");
    r.Check(r.Text(IDOK) == L"OK" && r.Text(IDCANCEL) == L"Cancel", "no OK and Cancel");
    r.Check(r.Count() == kLibraryIcons,
            "the list shows " + std::to_string(r.Count()) + " icons, not 40");
    r.Check(r.Selected() == 35, "item " + std::to_string(r.Selected()) + " selected, not 35");
    r.Check(r.Visible(35), "the selected icon is not scrolled into view");
    r.Check(r.Text(ip::kMessageId).empty(), "a message is shown");
    r.Check(r.OkEnabled(), "OK is disabled");
    // Each icon shown is drawn in its cell: the centre of the cell has the icon's colour.
    std::string wrong;
    const bool drawn = WaitFor([&] {
      wrong.clear();
      for (int i = 0; i < r.Count(); ++i) {
        if (r.Visible(i) && r.CentreColour(i) != LibraryColour(i)) {
          wrong += " " + std::to_string(i);
        }
      }
      return wrong.empty();
    });
    r.Check(drawn, "the cells of icons" + wrong + " do not show them");
    r.Check(r.AnotherVisible(-1) >= 0, "no icon is shown whole");
    clicked = r.AnotherVisible(35);
    if (!r.Check(clicked >= 0, "no other icon is shown")) return;
    r.ClickItem(clicked);
    r.Await([&] { return r.Selected() == clicked; }, "the click did not select its icon");
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, clicked);
  EXPECT_EQ(buffer.Text(), library_);
  EXPECT_TRUE(buffer.NulsAfterText());
  EXPECT_TRUE(buffer.GuardIntact());
}

TEST_F(IconPickerFallback, AnIconFileShowsAsManyItemsAsThePlatformCountsIcons) {
  Buffer buffer(ico_, 260);
  std::int32_t index = 0;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.Check(r.Count() == IconsIn(ico_), "the list shows " + std::to_string(r.Count()) +
                                            " icons, not " + std::to_string(IconsIn(ico_)));
    r.Check(r.Selected() == 0, "the first icon is not selected");
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(buffer.Text(), ico_);
}

TEST_F(IconPickerFallback, CancelLeavesPathAndIndexUntouched) {
  Buffer buffer(library_, 260);
  // Units after the NUL that a write would overwrite.
  buffer.units[library_.size() + 1] = u'x';
  buffer.units[259] = u'y';
  const std::u16string before = buffer.units;
  std::int32_t index = 5;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.Check(r.Selected() == 5, "item " + std::to_string(r.Selected()) + " selected, not 5");
    const int other = r.AnotherVisible(5);
    if (other >= 0) {
      r.ClickItem(other);
      r.Await([&] { return r.Selected() == other; }, "the click did not select its icon");
    }
    r.ClickButton(IDCANCEL);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(index, 5);
  EXPECT_TRUE(buffer.units == before);
}

TEST_F(IconPickerFallback, ADoubleClickOnAnIconIsOk) {
  Buffer buffer(library_, 260);
  std::int32_t index = 0;
  int clicked = -1;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    clicked = r.AnotherVisible(0);
    if (r.Check(clicked >= 0, "no other icon is shown")) r.ClickItem(clicked, true);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, clicked);
}

TEST_F(IconPickerFallback, ANegativeNumberSelectsTheIconOfThatIdentifier) {
  Buffer buffer(library_, 260);
  std::int32_t index = -(kFirstGroup + 7);
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.Check(r.Selected() == 7, "item " + std::to_string(r.Selected()) + " selected, not 7");
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, 7);
}

TEST_F(IconPickerFallback, AFileWithoutIconsSaysSoAndCanNotBeConfirmedUntilEnterLoadsAnother) {
  Buffer buffer(text_, 260);
  std::int32_t index = 2;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.Check(r.Text(ip::kMessageId) == ip::kNoIconsMessage, "no message that the file has none");
    r.Check(r.Count() == 0, "the list is not empty");
    r.Check(!r.OkEnabled(), "OK is enabled");
    r.ClickButton(IDOK);
    r.Check(r.Open(), "OK closed the dialog with no icon to choose");
    r.TypePathAndEnter(library_);
    r.Await([&] { return r.Count() == kLibraryIcons; }, "Enter did not load the typed file");
    r.Check(r.Text(ip::kMessageId).empty(), "the message stayed");
    r.Check(r.Selected() == 0, "the first icon of the file loaded is not selected");
    r.Check(r.OkEnabled(), "OK stayed disabled");
    r.Check(r.Open(), "Enter on a new path closed the dialog");
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(buffer.Text(), library_);
}

TEST_F(IconPickerFallback, LeavingThePathFieldLoadsTheTypedFile) {
  Buffer buffer(library_, 260);
  std::int32_t index = 3;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.TypePathAndLeave(text_);
    r.Await([&] { return r.Count() == 0; }, "leaving the field did not load the typed file");
    r.Check(r.Text(ip::kMessageId) == ip::kNoIconsMessage, "no message that the file has none");
    r.Check(!r.OkEnabled(), "OK is enabled");
    r.TypePathAndLeave(ico_);
    r.Await([&] { return r.Count() == IconsIn(ico_); }, "the icon file was not loaded");
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(buffer.Text(), ico_);
}

TEST_F(IconPickerFallback, APathLongerThanTheBufferIsNeverWrittenPastIt) {
  const std::string longer = folder_ + "a-longer-name-for-the-same-icons.dll";
  ASSERT_TRUE(::CopyFileA(library_.c_str(), longer.c_str(), FALSE) != 0);
  // Room for the library's path and its NUL, and no more.
  Buffer buffer(library_, static_cast<std::uint32_t>(library_.size() + 1));
  std::int32_t index = 1;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.Check(r.Count() == kLibraryIcons, "the file that fits was not loaded");
    r.TypePathAndEnter(longer);
    r.Await([&] { return r.Text(ip::kMessageId) == ip::kTooLongMessage; },
            "no message that the path is too long");
    r.Check(r.Count() == 0, "the list shows icons of a path that can't be given back");
    r.Check(!r.OkEnabled(), "OK is enabled");
    r.ClickButton(IDOK);
    r.Check(r.Open(), "OK closed the dialog on a path that does not fit");
    r.TypePathAndEnter(library_);
    r.Await([&] { return r.Count() == kLibraryIcons; }, "the path that fits was not loaded");
    const int other = r.AnotherVisible(0);
    if (r.Check(other >= 0, "no other icon is shown")) {
      r.ClickItem(other);
      r.Await([&] { return r.Selected() == other; }, "the click did not select its icon");
    }
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 1);
  EXPECT_GT(index, 0);
  EXPECT_EQ(buffer.Text(), library_);
  EXPECT_EQ(buffer.units[library_.size()], u'\0');
  EXPECT_TRUE(buffer.GuardIntact());
}

TEST_F(IconPickerFallback, ABufferWithoutANulIsReadToItsSizeAndCanNotBeConfirmed) {
  // The whole path and no room for its NUL.
  Buffer buffer(library_, static_cast<std::uint32_t>(library_.size()));
  const std::u16string before = buffer.units;
  std::int32_t index = 4;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    r.Check(r.Text(ip::kPathId) == Wide(library_), "the field does not show the buffer's units");
    r.Check(r.Text(ip::kMessageId) == ip::kTooLongMessage, "no message that the path is too long");
    r.Check(!r.OkEnabled(), "OK is enabled");
    r.ClickButton(IDOK);
    r.Check(r.Open(), "OK closed the dialog on a path that does not fit");
    r.ClickButton(IDCANCEL);
  });
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(index, 4);
  EXPECT_TRUE(buffer.units == before);
}

// The system's file dialog of another thread's dialog: its "#32770" window owned by `owner`.
HWND OwnedDialog(HWND owner) {
  struct Search {
    HWND owner;
    HWND found = nullptr;
  } search{owner};
  ::EnumThreadWindows(
      ::GetWindowThreadProcessId(owner, nullptr),
      [](HWND window, LPARAM data) -> BOOL {
        auto& s = *reinterpret_cast<Search*>(data);
        char name[16] = {};
        ::GetClassNameA(window, name, sizeof name);
        if (std::string(name) == "#32770" && ::GetWindow(window, GW_OWNER) == s.owner &&
            ::IsWindowVisible(window) != FALSE) {
          s.found = window;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// The texts of a combo box's entries.
std::vector<std::string> ComboEntries(HWND combo) {
  std::vector<std::string> entries;
  const auto count = static_cast<int>(::SendMessageA(combo, CB_GETCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    char text[256] = {};
    if (::SendMessageA(combo, CB_GETLBTEXTLEN, static_cast<WPARAM>(i), 0) < 255) {
      ::SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
    }
    entries.emplace_back(text);
  }
  return entries;
}

TEST_F(IconPickerFallback, BrowseOffersIconFilesAndLoadsTheFileChosen) {
  // The system's file dialog: its file types and its file name, by the ids it has always had.
  constexpr int kFileTypes = 0x470;
  constexpr int kFileNameCombo = 0x47C;
  constexpr int kFileNameEdit = 0x480;
  Buffer buffer(library_, 260);
  std::int32_t index = 9;
  std::vector<std::string> types;
  const std::int32_t result = Show(nullptr, buffer, index, [&](Remote& r) {
    // Posted: the file dialog runs inside the click's handling.
    ::PostMessageW(r.Dialog(), WM_COMMAND, MAKEWPARAM(ip::kBrowseId, BN_CLICKED),
                   reinterpret_cast<LPARAM>(r.Item(ip::kBrowseId)));
    HWND files = nullptr;
    if (!r.Await([&] { return (files = OwnedDialog(r.Dialog())) != nullptr; },
                 "no file dialog owned by the picker appeared")) {
      return;
    }
    types = ComboEntries(::GetDlgItem(files, kFileTypes));
    HWND name = ::GetDlgItem(files, kFileNameCombo);
    if (name == nullptr) name = ::GetDlgItem(files, kFileNameEdit);
    if (!r.Check(name != nullptr, "the file dialog has no file name field")) {
      ::PostMessageW(files, WM_COMMAND, IDCANCEL, 0);
      return;
    }
    ::SendMessageA(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(ico_.c_str()));
    ::PostMessageW(files, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
                   reinterpret_cast<LPARAM>(::GetDlgItem(files, IDOK)));
    r.Await([&] { return r.Text(ip::kPathId) == Wide(ico_); },
            "the file chosen is not in the path's field");
    r.Await([&] { return r.Count() == IconsIn(ico_); }, "the file chosen was not loaded");
    r.Check(r.Selected() == 0, "the first icon of the file chosen is not selected");
    r.ClickButton(IDOK);
  });
  EXPECT_EQ(Joined(failures_), "");
  ASSERT_EQ(types.size(), 2u);
  EXPECT_EQ(types[0], "Icon files (*.ico;*.exe;*.dll;*.icl)");
  EXPECT_EQ(types[1], "All files (*.*)");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(buffer.Text(), ico_);
}

// Through the platform's port: where the shell's picker works it is the one shown; where it
// answers at once without a dialog (as Wine's does), the program's own is. Either is a modal
// "Change Icon" dialog owned by the window given, and Cancel leaves everything as it was.
TEST_F(IconPickerFallback, ThePortShowsAPickerOwnedByTheWindowGiven) {
  OwnerWindow owner;
  ASSERT_NE(owner.Get(), nullptr);
  platform::win32::Win32Icons icons;
  Buffer buffer(library_, platform::icons::kMaxPath);
  const std::u16string before = buffer.units;
  std::int32_t index = 2;
  const std::int32_t result = Drive(
      [&] {
        return icons.PickIconDlg(platform::win32::FromNative(owner.Get()), buffer.Data(),
                                 buffer.size, index);
      },
      [&](Remote& r) {
        r.Check(::GetWindow(r.Dialog(), GW_OWNER) == owner.Get(), "not owned by the owner window");
        r.ClickButton(IDCANCEL);
      },
      failures_);
  EXPECT_EQ(Joined(failures_), "");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(index, 2);
  EXPECT_TRUE(buffer.units == before);
}

}  // namespace
}  // namespace quorvane::testing
