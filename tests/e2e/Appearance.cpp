#include "Appearance.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Driving.h"

namespace quorvane::e2e {

namespace {

constexpr const char* kMetrics = "Control Panel\\Desktop\\WindowMetrics";
constexpr const char* kShellIcons =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";
constexpr const char* kRestart = "Please restart to apply the chages";
constexpr int kTolerance = 8;

// A text value of the registry, or nothing when it is not there.
std::optional<std::string> ReadText(HKEY root, const char* key, const char* name) {
  char buffer[1024] = {};
  DWORD size = sizeof buffer - 1;
  DWORD type = 0;
  if (::RegGetValueA(root, key, name, RRF_RT_ANY, &type, buffer, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  if (type != REG_SZ) return "(type " + std::to_string(type) + ")";
  return std::string(buffer);
}

void WriteText(HKEY root, const char* key, const char* name, const std::string& value) {
  HKEY opened = nullptr;
  if (::RegCreateKeyExA(root, key, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &opened, nullptr) !=
      ERROR_SUCCESS) {
    return;
  }
  ::RegSetValueExA(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>(value.size() + 1));
  ::RegCloseKey(opened);
}

void Remove(HKEY root, const char* key, const char* name) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExA(root, key, 0, KEY_SET_VALUE, &opened) != ERROR_SUCCESS) return;
  ::RegDeleteValueA(opened, name);
  ::RegCloseKey(opened);
}

// A value as it was before the run, put back when the run ends.
class Kept {
 public:
  Kept(HKEY root, const char* key, const char* name)
      : root_(root), key_(key), name_(name), before_(ReadText(root, key, name)) {}
  ~Kept() {
    if (before_) {
      WriteText(root_, key_, name_, *before_);
    } else {
      Remove(root_, key_, name_);
    }
  }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;

 private:
  HKEY root_;
  const char* key_;
  const char* name_;
  std::optional<std::string> before_;
};

std::string Shown(const std::optional<std::string>& value) {
  return value ? "\"" + *value + "\"" : "(none)";
}

// The rectangles a trackbar of another process gives of its thumb and its channel, read through
// a buffer in that process.
bool TrackbarRects(HWND slider, RECT& thumb, RECT& channel) {
  DWORD processId = 0;
  ::GetWindowThreadProcessId(slider, &processId);
  HANDLE process = ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE,
                                 FALSE, processId);
  if (process == nullptr) return false;
  void* remote = ::VirtualAllocEx(process, nullptr, 2 * sizeof(RECT), MEM_COMMIT | MEM_RESERVE,
                                  PAGE_READWRITE);
  bool read = false;
  if (remote != nullptr) {
    auto* second = static_cast<char*>(remote) + sizeof(RECT);
    ::SendMessageA(slider, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(remote));
    ::SendMessageA(slider, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(second));
    RECT rects[2] = {};
    SIZE_T got = 0;
    read = ::ReadProcessMemory(process, remote, rects, sizeof rects, &got) != 0 &&
           got == sizeof rects;
    thumb = rects[0];
    channel = rects[1];
    ::VirtualFreeEx(process, remote, 0, MEM_RELEASE);
  }
  ::CloseHandle(process);
  return read;
}

// Types the digits of `text` with the keyboard into the window that has the focus.
void TypeDigits(const std::string& text) {
  for (char c : text) {
    INPUT keys[2] = {};
    keys[0].type = INPUT_KEYBOARD;
    keys[0].ki.wVk = static_cast<WORD>(c);
    keys[1] = keys[0];
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    ::SendInput(2, keys, sizeof(INPUT));
    ::Sleep(120);
  }
}

void PressKey(WORD key, int times) {
  for (int i = 0; i < times; ++i) {
    INPUT keys[2] = {};
    keys[0].type = INPUT_KEYBOARD;
    keys[0].ki.wVk = key;
    keys[1] = keys[0];
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    ::SendInput(2, keys, sizeof(INPUT));
    ::Sleep(60);
  }
}

std::string WindowText(HWND window) {
  char text[256] = {};
  ::SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

class Session {
 public:
  Session(HWND main, const Child& child, std::string shots, std::string prefix)
      : main_(main), child_(child), shots_(std::move(shots)), prefix_(std::move(prefix)) {}

  HWND Find(const std::string& name) { return FindControl(main_, name); }

  // The desktop's own colour: the screen's top left corner, which the centred window leaves.
  std::uint32_t DesktopColour() {
    std::vector<std::uint32_t> pixel;
    std::string error;
    const RECT corner{2, 2, 3, 3};
    return CaptureScreen(corner, pixel, error) && !pixel.empty() ? pixel[0] : 0xFFFFFFFFu;
  }

  Verdict OpenPage() {
    Verdict verdict;
    HWND command = Find("CmdMenu(2)");
    if (!verdict.Check(command != nullptr && ::IsWindowVisible(command) != 0,
                       "the Appearance command is not shown")) {
      return verdict;
    }
    ClickAt(Centre(ScreenRect(command)));
    HWND page = Find("PBAppearance");
    verdict.Check(WaitUntil(3000, [&] { return page != nullptr && ::IsWindowVisible(page); }),
                  "PBAppearance is not shown after a click on its command");
    ::Sleep(700);  // the preview paints the desktop between two yields
    slider_ = Find("Slider");
    if (!verdict.Check(slider_ != nullptr, "Slider is not found")) return verdict;
    const auto low = ::SendMessageA(slider_, TBM_GETRANGEMIN, 0, 0);
    const auto high = ::SendMessageA(slider_, TBM_GETRANGEMAX, 0, 0);
    const auto ticks = ::SendMessageA(slider_, TBM_GETNUMTICS, 0, 0);
    verdict.Check(low == 1 && high == 7, "the slider runs from " + std::to_string(low) + " to " +
                                             std::to_string(high) + ", not 1 to 7");
    verdict.Check(ticks == 7, "the slider has " + std::to_string(ticks) + " tick marks, not 7");
    verdict.Check(::SendMessageA(slider_, TBM_GETPOS, 0, 0) == 2,
                  "the slider is not at 2 for the stored size 32");
    verdict.Check(WindowText(Edit("TxtHorizontal")) == "82",
                  "TxtHorizontal shows " + WindowText(Edit("TxtHorizontal")) + ", not 82");
    verdict.Check(WindowText(Edit("TxtVertical")) == "43",
                  "TxtVertical shows " + WindowText(Edit("TxtVertical")) + ", not 43");
    verdict.Check(::SendMessageA(Find("ChkShowShortCut"), BM_GETCHECK, 0, 0) == BST_CHECKED,
                  "the shortcut arrow is not ticked with no overlay stored");
    HWND message = Find("LblAppearanceMsg");
    verdict.Check(message != nullptr && !::IsWindowVisible(message),
                  "LblAppearanceMsg shows on \"Windows XP\"");
    CheckPreview(verdict, 32);
    CheckWhiteSlider(verdict);
    SaveShot(verdict, shots_, prefix_ + "appearance-position-2");
    return verdict;
  }

  // Drags the thumb to `position` as a person does: pressed on the thumb, moved along the
  // channel, let go; once more from where it landed when it is off by one.
  Verdict DragCase(int position, int previewSize) {
    Verdict verdict;
    for (int attempt = 0; attempt < 3; ++attempt) {
      RECT thumb{}, channel{};
      if (!verdict.Check(TrackbarRects(slider_, thumb, channel),
                         "the slider's thumb could not be read")) {
        return verdict;
      }
      const int thumbWidth = thumb.right - thumb.left;
      const int span = (channel.right - channel.left) - thumbWidth;
      const int targetX = channel.left + thumbWidth / 2 + span * (position - 1) / 6;
      const RECT area = ScreenRect(slider_);
      const POINT from{area.left + (thumb.left + thumb.right) / 2,
                       area.top + (thumb.top + thumb.bottom) / 2};
      const POINT to{area.left + targetX, from.y};
      DragFromTo(from, to);
      ::Sleep(400);
      if (::SendMessageA(slider_, TBM_GETPOS, 0, 0) == position) break;
    }
    const auto at = ::SendMessageA(slider_, TBM_GETPOS, 0, 0);
    if (!verdict.Check(at == position, "the slider stands at " + std::to_string(at) +
                                           " after the drag, not " +
                                           std::to_string(position))) {
      return verdict;
    }
    ::Sleep(300);
    CheckPreview(verdict, previewSize);
    CheckWhiteSlider(verdict);
    SaveShot(verdict, shots_, prefix_ + "appearance-position-" + std::to_string(position));
    return verdict;
  }

  // Types 9 into the horizontal spacing (below the preview's bound: nothing moves), spins it up
  // to 10 (the icons close up, their captions go), then types 7 into the vertical one and
  // raises it with the arrow keys to 21, the least that keeps the rows apart.
  Verdict SpacingCase() {
    Verdict verdict;
    HWND documents = Find("ImgMyDocuments");
    const RECT before = ScreenRect(documents);
    HWND horizontal = Edit("TxtHorizontal");
    DoubleClickAt(Centre(ScreenRect(horizontal)));
    ::Sleep(200);
    TypeDigits("9");
    ::Sleep(400);
    verdict.Check(WindowText(horizontal) == "9",
                  "TxtHorizontal shows " + WindowText(horizontal) + " after typing 9");
    verdict.Check(ScreenRect(documents).left == before.left,
                  "a spacing of 9 moved the preview");
    HWND updown = ::FindWindowExA(Find("TxtHorizontal"), nullptr, UPDOWN_CLASSA, nullptr);
    const RECT arrows = ScreenRect(updown);
    ClickAt(POINT{(arrows.left + arrows.right) / 2, arrows.top + (arrows.bottom - arrows.top) / 4});
    ::Sleep(500);
    verdict.Check(WindowText(horizontal) == "10",
                  "TxtHorizontal shows " + WindowText(horizontal) + " after one spin up");
    // 10: the first icon at 5, the second at 32 + 5 + 0 = 37 pixels in the preview.
    const RECT preview = ScreenRect(Find("PBDesktop"));
    verdict.Check(ScreenRect(Find("ImgMyComputer")).left - preview.left == 5,
                  "My Computer is not at 5 pixels for a spacing of 10");
    verdict.Check(ScreenRect(documents).left - preview.left == 37,
                  "My Documents is at " +
                      std::to_string(ScreenRect(documents).left - preview.left) +
                      " pixels, not 37, for a spacing of 10");
    verdict.Check(!::IsWindowVisible(Find("LblMyDocuments")),
                  "the captions still show below a spacing of 30");

    HWND vertical = Edit("TxtVertical");
    DoubleClickAt(Centre(ScreenRect(vertical)));
    ::Sleep(200);
    TypeDigits("7");
    ::Sleep(300);
    PressKey(VK_UP, 14);
    ::Sleep(500);
    verdict.Check(WindowText(vertical) == "21",
                  "TxtVertical shows " + WindowText(vertical) + " after 7 and 14 steps up");
    verdict.Check(ScreenRect(Find("ImgRecycleBin")).top - preview.top == 42,
                  "Recycle Bin is at " +
                      std::to_string(ScreenRect(Find("ImgRecycleBin")).top - preview.top) +
                      " pixels, not 42, for a vertical spacing of 21");
    SaveShot(verdict, shots_, prefix_ + "appearance-spacing");
    return verdict;
  }

  // Unticks the arrow and applies: the four values as computed, 29 the blank icon, and the
  // restart message, which the OK button closes.
  Verdict ApplyCase(const std::string& iconSize) {
    Verdict verdict;
    HWND check = Find("ChkShowShortCut");
    ClickAt(Centre(ScreenRect(check)));
    verdict.Check(WaitUntil(2000, [&] {
                    return ::SendMessageA(check, BM_GETCHECK, 0, 0) == BST_UNCHECKED;
                  }),
                  "the shortcut arrow is still ticked after a click");
    ClickAt(Centre(ScreenRect(Find("CmdApply"))));
    HWND box = nullptr;
    verdict.Check(WaitUntil(30000, [&] { return (box = DialogOf(child_.id)) != nullptr; }),
                  "no message after Apply");
    if (box != nullptr) {
      const std::string text = DialogText(box);
      verdict.Check(text.find(kRestart) != std::string::npos, "the message says " + text);
      SaveShot(verdict, shots_, prefix_ + "appearance-applied");
      ClickDialogButton(verdict, box, IDOK, "OK", 5000);
    }
    const auto expect = [&](HKEY root, const char* key, const char* name,
                            const std::string& wanted) {
      const auto value = ReadText(root, key, name);
      verdict.Check(value && *value == wanted, std::string(name) + " is " + Shown(value) +
                                                   ", not \"" + wanted + "\"");
    };
    expect(HKEY_CURRENT_USER, kMetrics, "Shell Icon Size", iconSize);
    expect(HKEY_CURRENT_USER, kMetrics, "IconSpacing", "-630");
    expect(HKEY_CURRENT_USER, kMetrics, "IconVerticalspacing", "-795");
    expect(HKEY_CURRENT_USER, kMetrics, "IconTitleWrap", "1");
    expect(HKEY_LOCAL_MACHINE, kShellIcons, "29", DataFolder() + "Empty.ico");
    if (verdict.Passed()) verdict.Note("Shell Icon Size " + iconSize + ", -630, -795, 1, 29");
    return verdict;
  }

  // Default: the defaults stored at once, the arrow's value left, and no message.
  Verdict DefaultCase() {
    Verdict verdict;
    ClickAt(Centre(ScreenRect(Find("CmdDefault"))));
    verdict.Check(WaitUntil(30000,
                            [&] {
                              const auto spacing =
                                  ReadText(HKEY_CURRENT_USER, kMetrics, "IconSpacing");
                              return spacing && *spacing == "-1710" &&
                                     FindTopLevelWindow(child_.id, "QuorvaneWorking",
                                                        "FrmWorking") == nullptr;
                            }),
                  "the default spacing was not stored");
    ::Sleep(1500);
    verdict.Check(DialogOf(child_.id) == nullptr, "a message shows after Default");
    const auto size = ReadText(HKEY_CURRENT_USER, kMetrics, "Shell Icon Size");
    const auto vertical = ReadText(HKEY_CURRENT_USER, kMetrics, "IconVerticalspacing");
    const auto overlay = ReadText(HKEY_LOCAL_MACHINE, kShellIcons, "29");
    verdict.Check(size && *size == "32", "Shell Icon Size is " + Shown(size));
    verdict.Check(vertical && *vertical == "-1125", "IconVerticalspacing is " + Shown(vertical));
    verdict.Check(overlay && *overlay == DataFolder() + "Empty.ico",
                  "29 is " + Shown(overlay) + ": Default must leave the overlay");
    verdict.Check(::SendMessageA(slider_, TBM_GETPOS, 0, 0) == 2, "the slider is not back at 2");
    verdict.Check(WindowText(Edit("TxtHorizontal")) == "82", "TxtHorizontal is not back at 82");
    ::Sleep(300);
    CheckPreview(verdict, 32);
    SaveShot(verdict, shots_, prefix_ + "appearance-default");
    return verdict;
  }

  Verdict CloseCase() {
    Verdict verdict;
    ClickAt(Centre(ScreenRect(Find("PicClose"))));
    verdict.Check(WaitUntil(kEndTimeout, [&] { return !IsRunning(child_); }),
                  "the program is still running after a click on PicClose");
    return verdict;
  }

 private:
  HWND Edit(const char* spin) { return ::FindWindowExA(Find(spin), nullptr, "Edit", nullptr); }

  // The preview: the three icons at `size` pixels, drawn (not blank), on the desktop's colour.
  void CheckPreview(Verdict& verdict, int size) {
    const std::uint32_t desktop = DesktopColour();
    HWND preview = Find("PBDesktop");
    const RECT area = ScreenRect(preview);
    std::vector<std::uint32_t> pixels;
    std::string error;
    if (!verdict.Check(CaptureScreen(area, pixels, error), error)) return;
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const std::uint32_t corner =
        pixels[static_cast<std::size_t>((height - 2) * width + (width - 2))];
    verdict.Check(CloseColours(corner, desktop, kTolerance),
                  "the preview's corner is not the desktop's colour");
    for (const char* name : {"ImgMyComputer", "ImgMyDocuments", "ImgRecycleBin"}) {
      const RECT icon = ScreenRect(Find(name));
      verdict.Check(icon.right - icon.left == size && icon.bottom - icon.top == size,
                    std::string(name) + " is " + Describe(icon) + ", not " +
                        std::to_string(size) + " pixels square");
      std::vector<std::uint32_t> drawn;
      if (!CaptureScreen(icon, drawn, error)) continue;
      const auto differing = std::count_if(drawn.begin(), drawn.end(), [&](std::uint32_t p) {
        return !CloseColours(p, desktop, kTolerance);
      });
      verdict.Check(differing * 4 > static_cast<long>(drawn.size()),
                    std::string(name) + " shows little but the desktop");
      verdict.Check(CloseColours(drawn.front(), desktop, 24),
                    std::string(name) + "'s corner does not let the desktop through");
    }
  }

  // The slider stands on white: its top row and most of its area are white pixels.
  void CheckWhiteSlider(Verdict& verdict) {
    const RECT area = ScreenRect(slider_);
    std::vector<std::uint32_t> pixels;
    std::string error;
    if (!verdict.Check(CaptureScreen(area, pixels, error), error)) return;
    const auto white = std::count(pixels.begin(), pixels.end(), 0xFFFFFFu);
    verdict.Check(pixels.front() == 0xFFFFFFu && white * 10 > static_cast<long>(pixels.size()) * 6,
                  "the slider's background is not white (" + std::to_string(white) + " of " +
                      std::to_string(pixels.size()) + " pixels)");
  }

  HWND main_;
  const Child& child_;
  std::string shots_;
  std::string prefix_;
  HWND slider_ = nullptr;
};

}  // namespace

void RunAppearance(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, const Report& report) {
  Kept size(HKEY_CURRENT_USER, kMetrics, "Shell Icon Size");
  Kept horizontal(HKEY_CURRENT_USER, kMetrics, "IconSpacing");
  Kept vertical(HKEY_CURRENT_USER, kMetrics, "IconVerticalspacing");
  Kept wrap(HKEY_CURRENT_USER, kMetrics, "IconTitleWrap");
  Kept overlay(HKEY_LOCAL_MACHINE, kShellIcons, "29");
  WriteText(HKEY_CURRENT_USER, kMetrics, "Shell Icon Size", "32");
  WriteText(HKEY_CURRENT_USER, kMetrics, "IconSpacing", "-1710");
  WriteText(HKEY_CURRENT_USER, kMetrics, "IconVerticalspacing", "-1125");
  Remove(HKEY_LOCAL_MACHINE, kShellIcons, "29");

  Child child;
  Verdict start;
  HWND window = StartWithMainWindow(program, "", true, child, start);
  if (window == nullptr) {
    report("appearance: start", start);
    return;
  }
  ::Sleep(500);
  Session session(window, child, screenshotFolder, shotPrefix);

  if (TakesItselfForVista()) {
    Verdict verdict;
    HWND command = session.Find("CmdMenu(2)");
    verdict.Check(command != nullptr && !::IsWindowVisible(command),
                  "the Appearance command shows on \"Windows Vista\"");
    for (const char* name : {"Slider", "TxtHorizontal", "TxtVertical"}) {
      HWND control = session.Find(name);
      verdict.Check(control != nullptr && !::IsWindowEnabled(control),
                    std::string(name) + " is enabled on \"Windows Vista\"");
    }
    HWND message = session.Find("LblAppearanceMsg");
    verdict.Check(message != nullptr &&
                      (::GetWindowLongPtrA(message, GWL_STYLE) & WS_VISIBLE) != 0,
                  "LblAppearanceMsg is not shown on \"Windows Vista\"");
    HWND check = session.Find("ChkShowShortCut");
    verdict.Check(check != nullptr && ::IsWindowEnabled(check),
                  "the shortcut arrow is blocked too on \"Windows Vista\"");
    SaveShot(verdict, screenshotFolder, shotPrefix + "appearance-blocked");
    if (verdict.Passed()) verdict.Note("command hidden, size and spacing disabled, message on");
    report("appearance on \"Windows Vista\": blocked", verdict);
    report("appearance: close with PicClose", session.CloseCase());
    if (IsRunning(child)) Terminate(child);
    return;
  }

  report("appearance: the page at load", session.OpenPage());
  report("appearance: spacings typed and spun", session.SpacingCase());
  report("appearance: slider dragged to 1 (16x16)", session.DragCase(1, 16));
  report("appearance: slider dragged to 4 (64x64)", session.DragCase(4, 64));
  report("appearance: slider dragged to 5 (72x72, stores 80)", session.DragCase(5, 72));
  report("appearance: slider dragged to 7 (128x128, stores 112)", session.DragCase(7, 128));
  report("appearance: arrow unticked, Apply", session.ApplyCase("112"));
  report("appearance: Default", session.DefaultCase());
  report("appearance: close with PicClose", session.CloseCase());
  if (IsRunning(child)) Terminate(child);
}

}  // namespace quorvane::e2e
