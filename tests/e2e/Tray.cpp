#include "Tray.h"

#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "Driving.h"
#include "Registry.h"
#include "WallpaperFiles.h"

namespace quorvane::e2e {

namespace {

const char kNotificationClass[] = "QuorvaneNotification";
const char kStillRunning[] =
    "Quorvane is still running, right click on the tray icon to see more options.";
constexpr UINT kTrayCallback = 0x200;
constexpr DWORD kMenuTimeout = 5000;
constexpr DWORD kChangeTimeout = 5000;
constexpr DWORD kNothingWait = 1500;

// The office colours of the menu, 0x00RRGGBB as the screen gives them.
constexpr std::uint32_t kBackground = 0xFDFCFA;
constexpr std::uint32_t kBorder = 0x8A877B;
constexpr std::uint32_t kSelectedFill = 0xC2D3EE;
constexpr std::uint32_t kSelectedBorder = 0x316AC5;
constexpr std::uint32_t kSeparator = 0xC5C3B8;
constexpr std::uint32_t kSideBarLight = 0xDDECFE;
constexpr std::uint32_t kSideBarDark = 0x81A9E2;

// The icon's message, as the notification area sends it to the icon's window.
void SendIconMessage(HWND popup, UINT mouseMessage) {
  ::PostMessageA(popup, kTrayCallback, 1, static_cast<LPARAM>(mouseMessage));
}

// Where the program's icon stands in the task bar: the last place at its right, the only icon
// of the virtual desktop's notification area.
POINT IconPoint() {
  RECT bar{};
  const HWND taskBar = ::FindWindowA("Shell_TrayWnd", nullptr);
  if (taskBar == nullptr || ::GetWindowRect(taskBar, &bar) == 0) {
    return POINT{::GetSystemMetrics(SM_CXSCREEN) - 10, ::GetSystemMetrics(SM_CYSCREEN) - 10};
  }
  return POINT{bar.right - 10, (bar.top + bar.bottom) / 2};
}

// How many windows of the task bar are shown: its own buttons and one for each window it lists.
int TaskBarButtons() {
  int count = 0;
  const HWND bar = ::FindWindowA("Shell_TrayWnd", nullptr);
  if (bar == nullptr) return -1;
  for (HWND child = ::GetWindow(bar, GW_CHILD); child != nullptr;
       child = ::GetWindow(child, GW_HWNDNEXT)) {
    count += ::IsWindowVisible(child) != 0 ? 1 : 0;
  }
  return count;
}

void Key(WORD key) {
  INPUT input[2] = {};
  input[0].type = INPUT_KEYBOARD;
  input[0].ki.wVk = key;
  input[1] = input[0];
  input[1].ki.dwFlags = KEYEVENTF_KEYUP;
  ::SendInput(2, input, sizeof(INPUT));
  ::Sleep(150);
}

// Whether the notification area holds the icon of PicPopup, id 1: it changes only an icon it holds.
bool TrayHoldsIcon(HWND popup) {
  NOTIFYICONDATAA icon{};
  icon.cbSize = NOTIFYICONDATAA_V1_SIZE;
  icon.hWnd = popup;
  icon.uID = 1;
  icon.uFlags = 0;
  return ::Shell_NotifyIconA(NIM_MODIFY, &icon) != 0;
}

int CountNear(const std::vector<std::uint32_t>& pixels, std::uint32_t colour, int tolerance) {
  int count = 0;
  for (std::uint32_t p : pixels) count += CloseColours(p, colour, tolerance) ? 1 : 0;
  return count;
}

class TraySession {
 public:
  TraySession(HWND main, const Child& child, std::string shots, std::string prefix)
      : main_(main), child_(child), shots_(std::move(shots)), prefix_(std::move(prefix)) {
    popup_ = FindControl(main_, "PicPopup");
  }

  HWND Popup() const { return popup_; }

  // A right click made with the pointer on the icon in the task bar: the shell sends the icon's
  // messages itself.
  Verdict RealRightClickCase() {
    Verdict verdict;
    const POINT at = IconPoint();
    MoveTo(at);
    ::Sleep(200);
    INPUT input[2] = {};
    input[0].type = INPUT_MOUSE;
    input[0].mi.dwFlags = MOUSEEVENTF_RIGHTDOWN;
    input[1] = input[0];
    input[1].mi.dwFlags = MOUSEEVENTF_RIGHTUP;
    ::SendInput(2, input, sizeof(INPUT));
    HWND menu = nullptr;
    WaitUntil(kMenuTimeout, [&] {
      menu = FindShownWindow(child_.id, "#32768");
      return menu != nullptr;
    });
    if (!verdict.Check(menu != nullptr, "a right click at (" + std::to_string(at.x) + ", " +
                                            std::to_string(at.y) + ") popped up no menu")) {
      return verdict;
    }
    const RECT area = ScreenRect(menu);
    ::Sleep(300);
    Key(VK_ESCAPE);
    verdict.Check(MenuGone(menu), "the menu stayed after Escape");
    if (verdict.Passed()) {
      verdict.Note("right click at (" + std::to_string(at.x) + ", " + std::to_string(at.y) +
                   "): the menu at " + Describe(area) + ", closed with Escape");
    }
    return verdict;
  }

  // A right click on the icon: the button's press does nothing, its release pops up the menu.
  // The pointer stands on the icon first, where a person's would.
  HWND RightClick(Verdict& verdict) {
    MoveTo(IconPoint());
    SendIconMessage(popup_, WM_RBUTTONDOWN);
    ::Sleep(300);
    verdict.Check(FindShownWindow(child_.id, "#32768") == nullptr,
                  "the right button's press alone popped up a menu");
    SendIconMessage(popup_, WM_RBUTTONUP);
    HWND menu = nullptr;
    WaitUntil(kMenuTimeout, [&] {
      menu = FindShownWindow(child_.id, "#32768");
      return menu != nullptr;
    });
    verdict.Check(menu != nullptr, "no menu within " + std::to_string(kMenuTimeout / 1000) +
                                       " s of the right button's release");
    if (menu != nullptr) ::Sleep(300);  // let it paint
    return menu;
  }

  bool MenuGone(HWND menu) {
    return WaitUntil(kMenuTimeout, [&] { return ::IsWindow(menu) == 0 || ::IsWindowVisible(menu) == 0; });
  }

  bool MainShown(bool shown) {
    return WaitUntil(kChangeTimeout, [&] { return (::IsWindowVisible(main_) != 0) == shown; });
  }

  // The menu read from outside: its four items, the captions and the separator; then with the
  // first item highlighted from the keyboard, photographed, and its colours looked at.
  Verdict MenuCase(bool choose) {
    Verdict verdict;
    if (!verdict.Check(popup_ != nullptr, "\"Quorvane.FindControl\" does not give PicPopup")) {
      return verdict;
    }
    HWND menu = RightClick(verdict);
    if (menu == nullptr) return verdict;
    const auto handle = reinterpret_cast<HMENU>(::SendMessageA(menu, MN_GETHMENU, 0, 0));
    std::string items;
    const int count = handle != nullptr ? ::GetMenuItemCount(handle) : -1;
    for (int i = 0; i < count; ++i) {
      char text[64] = {};
      ::GetMenuStringA(handle, static_cast<UINT>(i), text, sizeof text, MF_BYPOSITION);
      MENUITEMINFOA info{};
      info.cbSize = sizeof info;
      info.fMask = MIIM_FTYPE;
      ::GetMenuItemInfoA(handle, static_cast<UINT>(i), TRUE, &info);
      items += std::string(items.empty() ? "" : " | ") +
               ((info.fType & MFT_SEPARATOR) != 0 ? std::string("separator") : text);
    }
    if (count >= 0) {
      verdict.Check(items == "Show/Hide | Change Wallpaper | separator | Exit",
                    "the menu holds \"" + items + "\"");
    } else {
      verdict.Note("the menu's items are not readable from another process here");
    }
    Key(VK_DOWN);  // the first item
    ::Sleep(400);
    const RECT area = ScreenRect(menu);
    std::vector<std::uint32_t> pixels;
    std::string error;
    if (verdict.Check(CaptureScreen(area, pixels, error), "the menu not captured: " + error)) {
      const int width = area.right - area.left;
      const int height = area.bottom - area.top;
      verdict.Check(width >= 100 && height >= 60,
                    "the menu is only " + std::to_string(width) + "x" + std::to_string(height));
      verdict.Check(CloseColours(pixels.front(), kBorder, 8),
                    "the menu's corner is not the border colour 8A877B");
      verdict.Check(CountNear(pixels, kBackground, 2) > width * 4,
                    "hardly any of the menu is the background FDFCFA");
      verdict.Check(CountNear(pixels, kSelectedFill, 2) > width * 4,
                    "no highlighted item in the fill C2D3EE");
      verdict.Check(CountNear(pixels, kSelectedBorder, 2) > width,
                    "no frame of the highlighted item in 316AC5");
      verdict.Check(CountNear(pixels, kSeparator, 2) >= width / 3,
                    "no separator line in C5C3B8");
      verdict.Check(CountNear(pixels, kSideBarLight, 6) >= 10 &&
                        CountNear(pixels, kSideBarDark, 6) >= 10,
                    "no side bar from DDECFE to 81A9E2");
      verdict.Note("menu " + std::to_string(width) + "x" + std::to_string(height) +
                   (count >= 0 ? ": " + items : ""));
    }
    SaveShot(verdict, shots_, prefix_ + "tray-menu");
    if (choose) {
      Key(VK_RETURN);  // "Show/Hide" with the keyboard
      verdict.Check(MenuGone(menu), "the menu stayed after Enter");
      verdict.Check(MainShown(true), "\"Show/Hide\" chosen with the keyboard did not show the window");
      if (verdict.Passed()) verdict.Note("\"Show/Hide\" with the keyboard showed the window");
    } else {
      Key(VK_ESCAPE);
      verdict.Check(MenuGone(menu), "the menu stayed after Escape");
    }
    return verdict;
  }

  // "Show/Hide" chosen with the pointer on a shown window hides it.
  Verdict PointerCase() {
    Verdict verdict;
    verdict.Check(::IsWindowVisible(main_) != 0, "the window is not shown to begin with");
    HWND menu = RightClick(verdict);
    if (menu == nullptr) return verdict;
    const RECT area = ScreenRect(menu);
    const auto handle = reinterpret_cast<HMENU>(::SendMessageA(menu, MN_GETHMENU, 0, 0));
    RECT item{};
    POINT target{};
    if (handle != nullptr && ::GetMenuItemRect(nullptr, handle, 0, &item) != 0) {
      target = Centre(item);
    } else {
      // The first item lies below the menu's frame: a few pixels down, 22 high at 96 dpi.
      target = POINT{(area.left + area.right) / 2, area.top + 14};
    }
    MoveTo(target);
    ::Sleep(300);
    ClickAt(target);
    verdict.Check(MenuGone(menu), "the menu stayed after a click on its first item");
    verdict.Check(MainShown(false), "\"Show/Hide\" chosen with the pointer did not hide the window");
    if (verdict.Passed()) verdict.Note("clicked at (" + std::to_string(target.x) + ", " +
                                       std::to_string(target.y) + "): the window hid");
    return verdict;
  }

  // Single clicks and the other buttons do nothing; a left double click shows the window.
  Verdict DoubleClickCase() {
    Verdict verdict;
    verdict.Check(::IsWindowVisible(main_) == 0, "the window is shown to begin with");
    for (UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MBUTTONDOWN, WM_MBUTTONUP,
                         WM_MBUTTONDBLCLK, WM_RBUTTONDOWN, WM_RBUTTONDBLCLK, WM_MOUSEMOVE}) {
      SendIconMessage(popup_, message);
    }
    ::Sleep(kNothingWait);
    verdict.Check(::IsWindowVisible(main_) == 0, "a single click or another button showed the window");
    verdict.Check(FindShownWindow(child_.id, "#32768") == nullptr,
                  "a single click or another button popped up a menu");
    SendIconMessage(popup_, WM_LBUTTONDOWN);
    SendIconMessage(popup_, WM_LBUTTONUP);
    SendIconMessage(popup_, WM_LBUTTONDBLCLK);
    SendIconMessage(popup_, WM_LBUTTONUP);
    verdict.Check(MainShown(true), "a left double click did not show the window");
    if (verdict.Passed()) verdict.Note("nothing for single clicks and other buttons; shown by the double click");
    return verdict;
  }

  // PicMin hides the window and a notification tells the user, without taking the focus, near
  // the notification area; it goes by itself, and again shown, on a click.
  Verdict NotificationCase() {
    Verdict verdict;
    HWND minimise = FindControl(main_, "PicMin");
    if (!verdict.Check(minimise != nullptr && ::IsWindowVisible(main_) != 0,
                       "no PicMin, or the window is not shown")) {
      return verdict;
    }
    ClickAt(Centre(ScreenRect(minimise)));
    verdict.Check(MainShown(false), "PicMin did not hide the window");
    HWND note = nullptr;
    WaitUntil(kChangeTimeout, [&] {
      note = FindShownWindow(child_.id, kNotificationClass);
      return note != nullptr;
    });
    if (!verdict.Check(note != nullptr, "no notification after PicMin")) return verdict;
    verdict.Check(TextOf(note) == kStillRunning, "the notification says \"" + TextOf(note) + "\"");
    verdict.Check(::GetForegroundWindow() != note, "the notification took the activation");
    ::Sleep(800);  // risen
    const RECT area = ScreenRect(note);
    const int screenWidth = ::GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = ::GetSystemMetrics(SM_CYSCREEN);
    verdict.Check(area.right > screenWidth * 3 / 4 && area.bottom > screenHeight * 3 / 4,
                  "the notification stands at " + Describe(area) + ", away from the notification area");
    verdict.Check(area.bottom - area.top >= 40, "the notification is only " +
                                                    std::to_string(area.bottom - area.top) +
                                                    " pixels high at " + Describe(area));
    SaveShot(verdict, shots_, prefix_ + "tray-notification");
    const int buttonsWhileUp = TaskBarButtons();
    verdict.Check(::GetForegroundWindow() != note, "the notification took the activation");
    const bool gone = WaitUntil(10000, [&] { return ::IsWindow(note) == 0 || ::IsWindowVisible(note) == 0; });
    verdict.Check(gone, "the notification did not go by itself within 10 s");
    ::Sleep(500);
    const int buttonsAfter = TaskBarButtons();
    verdict.Check(buttonsWhileUp == buttonsAfter,
                  "the task bar showed " + std::to_string(buttonsWhileUp) +
                      " buttons with the notification up and " + std::to_string(buttonsAfter) +
                      " after: the notification had a button of its own");
    // Once more, closed by a click.
    SendIconMessage(popup_, WM_LBUTTONDBLCLK);
    verdict.Check(MainShown(true), "the double click did not show the window again");
    ClickAt(Centre(ScreenRect(minimise)));
    MainShown(false);
    WaitUntil(kChangeTimeout, [&] {
      note = FindShownWindow(child_.id, kNotificationClass);
      return note != nullptr;
    });
    if (verdict.Check(note != nullptr, "no notification after PicMin the second time")) {
      ::Sleep(600);
      ClickAt(Centre(ScreenRect(note)));
      verdict.Check(WaitUntil(1500, [&] { return ::IsWindow(note) == 0 || ::IsWindowVisible(note) == 0; }),
                    "a click did not close the notification");
    }
    if (verdict.Passed()) {
      verdict.Note("\"" + std::string(kStillRunning) + "\" at " + Describe(area) +
                   ", not active, gone by itself, and on a click");
    }
    return verdict;
  }

  // "Change Wallpaper", the second item, with the keyboard: the wallpaper changes at once.
  Verdict ChangeCase(const ManifestPicture& picture, const KeptValue& wallpaper) {
    Verdict verdict;
    const std::string bitmap = DataFolder() + "WP.bmp";
    const FILETIME before = WriteTimeOf(bitmap);
    HWND menu = RightClick(verdict);
    if (menu == nullptr) return verdict;
    Key(VK_DOWN);
    Key(VK_DOWN);
    Key(VK_RETURN);
    verdict.Check(MenuGone(menu), "the menu stayed after Enter");
    const bool changed = WaitUntil(kWallpaperTimeout, [&] {
      const FILETIME now = WriteTimeOf(bitmap);
      const std::optional<std::string> stored = wallpaper.Now();
      return ::CompareFileTime(&now, &before) != 0 && stored && SameText(*stored, bitmap);
    });
    verdict.Check(changed, "WP.bmp is not new, or the profile's wallpaper is " +
                               Shown(wallpaper.Now()) + ", not \"" + bitmap + "\"");
    if (changed) {
      const BitmapFacts facts = ReadBitmapFacts(bitmap);
      CheckBitmapOf(verdict, facts, picture);
      const std::string system = DeskWallpaper();
      verdict.Check(SameText(system, bitmap), "the system's wallpaper is \"" + system + "\"");
      if (verdict.Passed()) {
        verdict.Note("WP.bmp " + std::to_string(facts.width) + "x" + std::to_string(facts.height) +
                     " from \"" + picture.collection + "\\" + picture.file + "\", the wallpaper " +
                     system);
      }
    }
    return verdict;
  }

  // "Exit", the last item, with the keyboard: the process ends and the icon is gone.
  Verdict ExitCase() {
    Verdict verdict;
    verdict.Check(TrayHoldsIcon(popup_), "no tray icon before \"Exit\"");
    HWND menu = RightClick(verdict);
    if (menu == nullptr) return verdict;
    Key(VK_UP);  // from no item, the last
    Key(VK_RETURN);
    DWORD exitCode = 0;
    const bool ended = WaitForEnd(child_, kEndTimeout, exitCode);
    verdict.Check(ended, "the process did not end after \"Exit\"");
    if (!ended) Terminate(child_);
    verdict.Check(!TrayHoldsIcon(popup_), "the tray icon is still there after \"Exit\"");
    if (verdict.Passed()) verdict.Note("ended with code " + std::to_string(exitCode) + ", no icon left");
    return verdict;
  }

 private:
  HWND main_;
  const Child& child_;
  std::string shots_;
  std::string prefix_;
  HWND popup_ = nullptr;
};

// The system menu's close is refused; another program's WM_CLOSE (the task manager's) hides the
// window and the unload goes on: the process ends.
Verdict CloseRequestsCase(const std::string& program) {
  Verdict verdict;
  Child child;
  HWND window = StartWithMainWindow(program, "", true, child, verdict);
  if (window == nullptr) return verdict;
  ::Sleep(1000);
  HWND popup = FindControl(window, "PicPopup");
  ::PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  ::Sleep(kNothingWait);
  verdict.Check(IsRunning(child) && ::IsWindowVisible(window) != 0,
                "the system menu's close was not refused");
  ::PostMessageA(window, WM_CLOSE, 0, 0);
  DWORD exitCode = 0;
  const bool ended = WaitForEnd(child, kEndTimeout, exitCode);
  verdict.Check(ended, "another program's WM_CLOSE did not end the program");
  if (!ended) Terminate(child);
  if (verdict.Passed()) {
    // This way out does not remove the icon: whether the notification area still holds it tells
    // what the check after "Exit" is worth here.
    verdict.Note(std::string("system menu refused; WM_CLOSE from outside: hidden, unloaded, "
                             "ended; the notification area ") +
                 (popup != nullptr && TrayHoldsIcon(popup) ? "still holds" : "no longer holds") +
                 " the icon of the window that went");
  }
  return verdict;
}

}  // namespace

void RunTray(const std::string& program, const std::string& screenshotFolder,
             const std::string& manifest, const std::string& shotPrefix, const Report& report) {
  const std::vector<ManifestPicture> pictures = ReadManifest(manifest);
  const std::string folder = DataFolder();
  Verdict start;
  start.Check(!pictures.empty(), "no pictures in the manifest " + manifest);
  start.Check(!folder.empty(), "the data folder is not known");
  if (!start.Passed()) {
    report("tray: start", start);
    return;
  }
  const ManifestPicture& good = pictures.front();
  // The settings the program starts with, for a change of the first picture; put back after.
  KeptWallpaperSettings kept;
  const KeptValue& wallpaper = kept.wallpaper;
  start.Check(kept.StartChanging(),
              "the settings under " + kept.enable.Where() + " can't be written");
  const std::string index = "[Files]\r\n1=" + good.collection + "\\" + good.file +
                            "\r\n[Count]\r\nTotal=1\r\n";
  if (std::FILE* file = std::fopen((folder + "Files.ini").c_str(), "wb")) {
    start.Check(std::fwrite(index.data(), 1, index.size(), file) == index.size(),
                "Files.ini can't be written");
    std::fclose(file);
  } else {
    start.Check(false, "Files.ini can't be made");
  }

  Child child;
  HWND window = nullptr;
  if (start.Passed()) window = StartWithMainWindow(program, " /background", false, child, start);
  if (window == nullptr) {
    report("tray: start", start);
    return;
  }
  ::Sleep(3000);  // the load routine
  TraySession session(window, child, screenshotFolder, shotPrefix);
  report("tray: a right click on the icon pops up the menu; \"Show/Hide\" with the keyboard",
         session.MenuCase(true));
  report("tray: \"Show/Hide\" with the pointer", session.PointerCase());
  report("tray: a right click with the pointer on the icon", session.RealRightClickCase());
  report("tray: single clicks do nothing, a left double click shows the window",
         session.DoubleClickCase());
  report("tray: PicMin's notification", session.NotificationCase());
  report("tray: \"Change Wallpaper\"", session.ChangeCase(good, wallpaper));
  report("tray: \"Exit\"", session.ExitCase());
  if (IsRunning(child)) Terminate(child);
  ::SystemParametersInfoA(SPI_SETDESKWALLPAPER, 0, const_cast<char*>(kept.previousWallpaper.c_str()),
                          SPIF_UPDATEINIFILE);
  ::DeleteFileA((folder + "Files.ini").c_str());
  report("tray: the close requests of the system menu and of another program",
         CloseRequestsCase(program));
}

void RunTrayMenuOnly(const std::string& program, const std::string& screenshotFolder,
                     const std::string& shotPrefix, const Report& report) {
  Verdict start;
  Child child;
  HWND window = StartWithMainWindow(program, " /background", false, child, start);
  if (window == nullptr) {
    report("tray menu: start", start);
    return;
  }
  ::Sleep(3000);
  TraySession session(window, child, screenshotFolder, shotPrefix);
  report("tray menu: a right click with the pointer on the icon", session.RealRightClickCase());
  report("tray menu: the menu with its first item highlighted", session.MenuCase(false));
  report("tray menu: \"Exit\"", session.ExitCase());
  if (IsRunning(child)) Terminate(child);
}

}  // namespace quorvane::e2e
