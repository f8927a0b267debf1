// The end-to-end driver. It runs inside the same virtual desktop as the program it drives, starts
// quorvane.exe from its own folder, and looks at it from outside, the way another program or a
// person would: through its top-level window, its controls found by their system names, its
// process, the screen, and what the program leaves on the machine.
//
//   e2e_driver run-modes <result file> <screenshot folder> [<trace file>]
//       Starts quorvane.exe once per run-mode case, checks it, ends it through the registered
//       message "Quorvane.Exit", then checks what a run leaves behind, then drives one more run
//       with the pointer (pages, zones, hover pictures: Navigation.cpp) and one that changes an
//       icon (IconChanges.cpp), and writes one line per case to the result file, then
//       "N passed, M failed". The trace file is where Wine's diagnostics of the programs in the
//       desktop go.
//   e2e_driver settings <result file> <screenshot folder> <manifest file>
//       One run for the wallpaper settings (Settings.cpp): the dialog opened with CmdSettings,
//       a collection of the manifest ticked and saved, then the wallpaper changed at once.
//   e2e_driver wallpaper-failures <result file> <screenshot folder> <manifest file> <entry>
//       One resident run for the report of a failed change (WallpaperFailures.cpp): Files.ini
//       made to name what can't become a wallpaper, <entry> ("<collection>\<file>") being a
//       packed file that is no picture; each change shows a message box and logs a line, and
//       the change of the manifest's first picture works afterwards.
//   e2e_driver slide-show <result file> <screenshot folder> <manifest file>
//       One run for the slide show (SlideShow.cpp): the manifest's collection selected on the
//       "Wallpaper" page, the show opened with CmdSlideShow, stepped by hand and by itself, its
//       buttons' hover pictures, and left with Escape.
//   e2e_driver tray <result file> <screenshot folder> <manifest file> <shot prefix>
//       One resident run for the tray (Tray.cpp): the icon's messages, the menu with the keyboard
//       and the pointer, "Show/Hide", a double click, PicMin's notification, "Change Wallpaper"
//       to the manifest's first picture, "Exit"; then the close requests.
//   e2e_driver tray-menu <result file> <screenshot folder> <shot prefix>
//       The tray menu alone, photographed, then "Exit": for a run at another display scaling.
//   e2e_driver real-window <result file> <screenshot folder> <screenshot prefix>
//       One run where the real window must do what the controls do (RealWindow.cpp): the
//       disabled CmdApply under the pointer, numbers typed into the spin edits, the focus after a
//       collection is removed. The script runs it taken for "Windows XP".
//   e2e_driver installed <result file> <screenshot folder> <shortcut> <program>
//       The program as the installer left it (Installed.cpp): the Start Menu shortcut <shortcut>
//       must start <program>; started from it, the window shows its pages, and the "?" icon
//       opens the help in the help viewer.
//   e2e_driver uninstall-with-data <result file> <screenshot folder>
//       The uninstaller, started in the same desktop by the caller, run by hand (Installed.cpp):
//       the box that removes the user's data too, unticked at first, ticked with the pointer;
//       then "Uninstall" and "Close".
//   e2e_driver folder-page <result file> <screenshot folder> <screenshot prefix>
//       One run for the folder page (FolderPage.cpp): folders made for the run opened in the
//       tree, one selected, changed through the picker and taken back with Default.
//   e2e_driver wait-window <result file> <seconds>
//       Waits until the main window is shown; writes "shown", or "not shown" after the time.
//   e2e_driver exit <result file> <seconds>
//       Ends the running program through "Quorvane.Exit" and waits for its process to end;
//       writes "ended", "not found" or "still running".
//
// The result goes to a file because a program started into a virtual desktop has neither the
// caller's standard output nor an exit code the caller can read.
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "Driving.h"
#include "Appearance.h"
#include "FolderPage.h"
#include "IconChanges.h"
#include "Installed.h"
#include "Navigation.h"
#include "RealWindow.h"
#include "Registry.h"
#include "CollectionEditor.h"
#include "Settings.h"
#include "SlideShow.h"
#include "Tray.h"
#include "WallpaperFailures.h"
#include "WallpaperPage.h"

namespace {

using namespace quorvane::e2e;

const std::string kClass = "QuorvaneMain";
const std::string kText = "Quorvane";
// FrmMain is 11250 by 8550 twips, 15 to the pixel.
constexpr int kWidth = 750;
constexpr int kHeight = 570;
constexpr DWORD kResidentWait = 3000;
constexpr DWORD kRefusedCloseWait = 1500;

const char kProductKey[] = "Software\\Talvenor\\Mirefold\\Quorvane";
// The icon of "My Computer", which every Windows has and a new Wine prefix lacks. Without it the
// load routine leaves through its error path at that row, and no tree is filled.
const char kMyComputerIcon[] = "CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon";
const char kMyComputerStock[] = "Explorer.exe,0";
// A class for ".doc", as an office suite registers it, so that a run keeps its icon.
const char kDocClass[] = "Word.Document.8";
const char kDocClassIcon[] = "Word.Document.8\\DefaultIcon";
const char kDocIcon[] = "shell32.dll,1";
constexpr ULONGLONG kEmptyIconBytes = 768;

// The result file of a command: a line per case, "ok   <case>: <what it saw>" or
// "FAIL <case>: <why>", and at the end "N passed, M failed".
class ResultFile {
 public:
  explicit ResultFile(const std::string& path) : file_(std::fopen(path.c_str(), "wb")) {}
  ~ResultFile() {
    if (file_ != nullptr) std::fclose(file_);
  }
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  bool IsOpen() const { return file_ != nullptr; }
  void Line(const std::string& text) {
    if (file_ != nullptr) {
      std::fputs((text + "\n").c_str(), file_);
      std::fflush(file_);
    }
  }
  // Writes a case's line and counts it.
  void Case(const std::string& name, const Verdict& verdict) {
    (verdict.Passed() ? passed_ : failed_) += 1;
    Line((verdict.Passed() ? "ok   " : "FAIL ") + name + ": " + verdict.Summary());
  }
  // Where the cases report, for the runs that take a Report.
  Report Cases() {
    return [this](const std::string& name, const Verdict& verdict) { Case(name, verdict); };
  }
  // Writes the summary line; the driver's exit code: 0 when every case passed.
  int Finish() {
    Line(std::to_string(passed_) + " passed, " + std::to_string(failed_) + " failed");
    return failed_ == 0 ? 0 : 1;
  }

 private:
  std::FILE* file_;
  int passed_ = 0;
  int failed_ = 0;
};

// The catalogue tree of the desktop has five nodes on a 6.x system of the NT line, where the
// program takes itself for "Windows Vista", and six on any other.
int DesktopNodesExpected() { return TakesItselfForVista() ? 5 : 6; }

// TvDesktop: found by its name, a visible tree view whose window text is its name, filled.
void CheckDesktopTree(Verdict& verdict, HWND window, bool shown) {
  HWND tree = FindControl(window, "TvDesktop");
  if (!verdict.Check(tree != nullptr, "\"Quorvane.FindControl\" does not give TvDesktop")) return;
  verdict.Check(ClassNameOf(tree) == "SysTreeView32",
                "TvDesktop is a \"" + ClassNameOf(tree) + "\", not a tree view");
  verdict.Check(TextOf(tree) == "TvDesktop",
                "TvDesktop's window text is \"" + TextOf(tree) + "\", not its name");
  if (shown) verdict.Check(::IsWindowVisible(tree) != 0, "TvDesktop is not visible");
  std::vector<RemoteItem> items;
  int count = 0;
  std::string error;
  if (!verdict.Check(ReadTreeView(tree, items, count, error), "TvDesktop unreadable: " + error)) {
    return;
  }
  const int expected = DesktopNodesExpected();
  verdict.Check(count == expected, "TvDesktop has " + std::to_string(count) + " nodes, not " +
                                       std::to_string(expected) + " (the catalogue trees)");
  verdict.Check(static_cast<int>(items.size()) == count,
                "TVM_GETCOUNT says " + std::to_string(count) + " but " +
                    std::to_string(items.size()) + " items were walked");
  if (!items.empty()) {
    verdict.Check(items.front().text == "My Computer",
                  "TvDesktop's first node is \"" + items.front().text + "\", not \"My Computer\"");
    verdict.Check(items.front().selected, "TvDesktop's first node is not selected");
    verdict.Check(items.front().image == 1,
                  "\"My Computer\" shows image index " + std::to_string(items.front().image) +
                      ", not 1 (image number 2)");
  }
  verdict.Note("TvDesktop " + std::to_string(count) + " nodes, first \"" +
               (items.empty() ? std::string() : items.front().text) + "\"");
}

// Names that are no control find nothing; an element of a control array is found by "Name(i)".
void CheckLookups(Verdict& verdict, HWND window) {
  verdict.Check(FindControl(window, "NoSuchControl") == nullptr,
                "an unknown name finds a window");
  verdict.Check(FindControl(window, "CmdMenu(9)") == nullptr,
                "CmdMenu(9), beyond the array, finds a window");
  HWND element = FindControl(window, "CmdMenu(0)");
  verdict.Check(element != nullptr && TextOf(element) == "CmdMenu(0)",
                "CmdMenu(0) is not found by its name, or its window text is not its name");
  HWND other = FindControl(window, "TvStartMenu");
  verdict.Check(other != nullptr && ::IsWindowVisible(other) == 0,
                "TvStartMenu is missing, or shown although the \"Desktop\" zone is on");
}

// What sIcon, the small preview, shows; empty when it is not found or not visible.
std::vector<std::uint32_t> PreviewPixels(Verdict& verdict, HWND window) {
  std::vector<std::uint32_t> pixels;
  HWND box = FindControl(window, "sIcon");
  if (!verdict.Check(box != nullptr && ::IsWindowVisible(box) != 0,
                     "sIcon is not found, or not visible")) {
    return pixels;
  }
  RECT area{};
  ::GetWindowRect(box, &area);
  std::string error;
  verdict.Check(CaptureScreen(area, pixels, error), "sIcon not captured: " + error);
  return pixels;
}

// The pixels of a preview other than its background. The icon is drawn at (1, 1): the corner
// keeps the box's back colour.
int IconPixels(const std::vector<std::uint32_t>& pixels) {
  const std::uint32_t background = pixels.empty() ? 0 : pixels.front();
  int drawn = 0;
  for (std::uint32_t p : pixels) drawn += p != background ? 1 : 0;
  return drawn;
}

// sIcon shows the selected row's icon.
void CheckPreview(Verdict& verdict, HWND window) {
  const std::vector<std::uint32_t> pixels = PreviewPixels(verdict, window);
  if (pixels.empty()) return;
  const int drawn = IconPixels(pixels);
  verdict.Check(drawn >= 10, "sIcon shows " + std::to_string(drawn) +
                                 " pixels other than its background: no icon");
  verdict.Note("sIcon " + std::to_string(drawn) + " icon pixels");
}

// A click on the node "Recycle Bin (Empty)" of TvDesktop, as the user makes it, selects it, and
// the tree's click routine shows that row's icon, another than "My Computer"'s, in the preview.
void CheckNodeClick(Verdict& verdict, HWND window) {
  const std::string target = "Recycle Bin (Empty)";
  HWND tree = FindControl(window, "TvDesktop");
  if (tree == nullptr) return;  // told by CheckDesktopTree
  std::vector<RemoteItem> items;
  int count = 0;
  std::string error;
  if (!ReadTreeView(tree, items, count, error)) return;  // told by CheckDesktopTree
  int position = 0;
  for (std::size_t i = 0; i < items.size() && position == 0; ++i) {
    if (items[i].text == target) position = static_cast<int>(i) + 1;
  }
  if (!verdict.Check(position != 0, "TvDesktop has no node \"" + target + "\"")) return;
  const std::vector<std::uint32_t> before = PreviewPixels(verdict, window);
  RECT item{};
  if (!verdict.Check(TreeItemRect(tree, position, item, error), "TvDesktop: " + error)) return;
  ClickAt(POINT{(item.left + item.right) / 2, (item.top + item.bottom) / 2});
  const bool selected = WaitUntil(3000, [&] {
    return ReadTreeView(tree, items, count, error) &&
           items.size() >= static_cast<std::size_t>(position) &&
           items[static_cast<std::size_t>(position) - 1].selected;
  });
  if (!verdict.Check(selected, "a click on \"" + target + "\" (" + Describe(item) +
                                   ") did not select it")) {
    return;
  }
  ::Sleep(500);  // let the preview paint
  const std::vector<std::uint32_t> after = PreviewPixels(verdict, window);
  verdict.Check(IconPixels(after) >= 10, "after the click sIcon shows no icon");
  verdict.Check(after != before, "after a click on \"" + target +
                                     "\" sIcon still shows the first row's picture");
  verdict.Note("clicked \"" + target + "\": selected, preview changed");
}

struct RunModeCase {
  std::string name;
  std::string tail;        // what follows the program's name on its command line
  bool shown;              // interactive mode: the window is shown
  bool thorough;           // look at the controls too
  std::string screenshot;  // file name without extension
  bool loadFails = false;  // the load routine leaves through its error path
};

// The tray icon is there: the notification area changes an icon of the window PicPopup, id 1,
// only when it holds one.
void CheckTrayIcon(Verdict& verdict, HWND window) {
  HWND popup = FindControl(window, "PicPopup");
  if (!verdict.Check(popup != nullptr, "\"Quorvane.FindControl\" does not give PicPopup")) return;
  NOTIFYICONDATAA icon{};
  icon.cbSize = NOTIFYICONDATAA_V1_SIZE;
  icon.hWnd = popup;
  icon.uID = 1;
  icon.uFlags = 0;
  verdict.Check(::Shell_NotifyIconA(NIM_MODIFY, &icon) != 0,
                "no tray icon of PicPopup with id 1 in the notification area");
  icon.uID = 2;
  verdict.Check(::Shell_NotifyIconA(NIM_MODIFY, &icon) == 0,
                "the notification area claims an icon of id 2 as well: the check proves nothing");
}

// The load routine failed: the window opened all the same with no tree filled, and the error
// report is a new line of the log in the data folder.
void CheckFailedLoad(Verdict& verdict, HWND window, const std::string& logBefore) {
  HWND tree = FindControl(window, "TvDesktop");
  if (verdict.Check(tree != nullptr, "\"Quorvane.FindControl\" does not give TvDesktop")) {
    const int count = static_cast<int>(::SendMessageA(tree, TVM_GETCOUNT, 0, 0));
    verdict.Check(count == 0, "TvDesktop has " + std::to_string(count) +
                                  " nodes although the load routine failed before the trees");
    verdict.Check(::IsWindowVisible(tree) == 0, "TvDesktop is shown although no zone is on");
  }
  const std::string log = ReadFileText(DataFolder() + "Quorvane.log");
  const bool reported = log.size() > logBefore.size() &&
                        log.compare(0, logBefore.size(), logBefore) == 0 &&
                        log.find("FrmMain\tForm_Load", logBefore.size()) != std::string::npos;
  verdict.Check(reported, "no new \"FrmMain\tForm_Load\" line in the error log");
  if (reported) {
    std::string line = log.substr(logBefore.size());
    line = line.substr(0, line.find_first_of("\r\n"));
    verdict.Note("reported: " + line);
  }
}

Verdict RunCase(const RunModeCase& runCase, const std::string& program,
                const std::string& screenshotFolder) {
  Verdict verdict;
  Child child;
  std::string error;
  const std::string logBefore = ReadFileText(DataFolder() + "Quorvane.log");
  if (!StartProgram(program, runCase.tail, child, error)) {
    verdict.Check(false, "not started: " + error);
    return verdict;
  }

  HWND window = nullptr;
  const ULONGLONG started = ::GetTickCount64();
  const bool appeared = WaitUntil(kAppearTimeout, [&] {
    window = FindTopLevelWindow(child.id, kClass, kText);
    return window != nullptr || !IsRunning(child);
  }) && window != nullptr;
  verdict.Check(appeared, "no window of class \"" + kClass + "\" with text \"" + kText +
                              "\" within " + std::to_string(kAppearTimeout / 1000) + " s" +
                              (IsRunning(child) ? "" : " (the process ended)"));
  if (appeared) {
    // The window is found from outside by its class and text alone.
    verdict.Check(::FindWindowA(kClass.c_str(), kText.c_str()) != nullptr,
                  "FindWindowA does not find the window by its class and text");
    const LONG_PTR style = ::GetWindowLongPtrA(window, GWL_STYLE);
    verdict.Check((style & WS_POPUP) != 0 && (style & WS_CAPTION) == 0 &&
                      (style & WS_THICKFRAME) == 0,
                  "the window has a frame or a caption");

    if (runCase.shown) {
      const bool visible =
          WaitUntil(kAppearTimeout, [&] { return ::IsWindowVisible(window) != 0; });
      verdict.Check(visible, "the window exists but is not shown");
      RECT area{};
      ::GetWindowRect(window, &area);
      const int screenWidth = ::GetSystemMetrics(SM_CXSCREEN);
      const int screenHeight = ::GetSystemMetrics(SM_CYSCREEN);
      verdict.Check(area.right - area.left == kWidth && area.bottom - area.top == kHeight,
                    "the window is " + Describe(area) + ", not " + std::to_string(kWidth) + "x" +
                        std::to_string(kHeight));
      verdict.Check(area.left == (screenWidth - kWidth) / 2 &&
                        area.top == (screenHeight - kHeight) / 2,
                    "the window at " + Describe(area) + " is not centred on the screen " +
                        std::to_string(screenWidth) + "x" + std::to_string(screenHeight));
      verdict.Note("shown at " + Describe(area) + " after " +
                   std::to_string(::GetTickCount64() - started) + " ms");
      ::Sleep(700);  // let it paint before the picture is taken
    } else {
      ::Sleep(kResidentWait);
      verdict.Check(::IsWindowVisible(window) == 0, "the window was shown");
      verdict.Check(IsRunning(child), "the process ended although its window is loaded");
      verdict.Note("loaded hidden, still running after " +
                   std::to_string(kResidentWait / 1000) + " s");
      CheckTrayIcon(verdict, window);
    }
    if (runCase.loadFails) {
      CheckFailedLoad(verdict, window, logBefore);
    } else if (runCase.thorough) {
      CheckDesktopTree(verdict, window, runCase.shown);
      if (runCase.shown) {
        CheckLookups(verdict, window);
        CheckPreview(verdict, window);
      }
    }
    std::string shotError;
    const std::string path = screenshotFolder + "\\" + runCase.screenshot + ".bmp";
    verdict.Check(SaveScreen(path, shotError), "no screenshot: " + shotError);

    if (runCase.thorough && runCase.shown && !runCase.loadFails) {
      CheckNodeClick(verdict, window);
      // A close request from the system menu is refused.
      ::PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
      ::Sleep(kRefusedCloseWait);
      verdict.Check(IsRunning(child) && ::IsWindow(window) != 0 && ::IsWindowVisible(window) != 0,
                    "the system menu's close was not refused: the window closed or hid");
    }
    verdict.Check(PostRegistered(window, kExitMessage), "\"Quorvane.Exit\" could not be posted");
  }

  DWORD exitCode = 0;
  const bool ended = WaitForEnd(child, kEndTimeout, exitCode);
  verdict.Check(ended, "the process did not end within " + std::to_string(kEndTimeout / 1000) +
                           " s of \"Quorvane.Exit\"");
  if (ended) {
    verdict.Check(exitCode == 0, "the process ended with exit code " + std::to_string(exitCode));
  } else {
    Terminate(child);
  }
  return verdict;
}

// What a run leaves on the user's machine: the program's key, the ".doc" icon it keeps there
// when the system has a class for ".doc", and its data folder with the blank icon.
Verdict CheckSideEffects(bool emptyIconRemoved, bool docValueRemoved) {
  Verdict verdict;
  HKEY product = nullptr;
  const bool keyExists =
      ::RegOpenKeyExA(HKEY_CURRENT_USER, kProductKey, 0, KEY_READ, &product) == ERROR_SUCCESS;
  verdict.Check(keyExists, std::string("HKEY_CURRENT_USER\\") + kProductKey + " is missing");
  char docClass[256] = {};
  LONG classSize = sizeof docClass;
  const bool docHasClass =
      ::RegQueryValueA(HKEY_CLASSES_ROOT, ".doc", docClass, &classSize) == ERROR_SUCCESS &&
      docClass[0] != '\0';
  if (keyExists) {
    if (docHasClass) {
      const bool saved =
          ::RegQueryValueExA(product, ".doc", nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
      verdict.Check(saved, std::string("HKCR\\.doc has the class \"") + docClass +
                               "\" but the program's key has no \".doc\" value" +
                               (docValueRemoved ? " (it was removed before the runs)" : ""));
    } else {
      verdict.Note("HKCR\\.doc has no class, so no \".doc\" value is expected");
    }
    ::RegCloseKey(product);
  }
  const std::string folder = DataFolder();
  const DWORD folderAttributes = ::GetFileAttributesA(folder.c_str());
  verdict.Check(folderAttributes != INVALID_FILE_ATTRIBUTES &&
                    (folderAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                "the data folder " + folder + " is missing");
  WIN32_FILE_ATTRIBUTE_DATA icon{};
  const std::string iconPath = folder + "Empty.ico";
  if (verdict.Check(::GetFileAttributesExA(iconPath.c_str(), GetFileExInfoStandard, &icon) != 0,
                    iconPath + " is missing" +
                        (emptyIconRemoved ? " (it was removed before the runs)" : ""))) {
    const ULONGLONG size = (static_cast<ULONGLONG>(icon.nFileSizeHigh) << 32) | icon.nFileSizeLow;
    verdict.Check(size == kEmptyIconBytes, iconPath + " has " + std::to_string(size) +
                                               " bytes, not " + std::to_string(kEmptyIconBytes));
  }
  if (verdict.Passed()) {
    verdict.Note(std::string("the key, ") + (docHasClass ? "its \".doc\" value (class " +
                                                               std::string(docClass) + "), "
                                                         : "") +
                 folder + " and Empty.ico of 768 bytes" +
                 (emptyIconRemoved ? ", written again after it was removed" : ""));
  }
  return verdict;
}

int RunModes(const std::string& resultPath, const std::string& screenshotFolder,
             const std::string& traceFile) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  const std::string program = OwnFolder() + "quorvane.exe";
  if (::GetFileAttributesA(program.c_str()) == INVALID_FILE_ATTRIBUTES) {
    result.Line("FAIL setup: " + program + " is missing");
    result.Line("0 passed, 1 failed");
    return 1;
  }
  // The blank icon and the kept ".doc" icon go, so that the runs must write them again.
  const std::string emptyIcon = DataFolder() + "Empty.ico";
  const bool emptyIconRemoved = ::DeleteFileA(emptyIcon.c_str()) != 0;
  bool docValueRemoved = false;
  HKEY product = nullptr;
  if (::RegOpenKeyExA(HKEY_CURRENT_USER, kProductKey, 0, KEY_SET_VALUE, &product) ==
      ERROR_SUCCESS) {
    docValueRemoved = ::RegDeleteValueA(product, ".doc") == ERROR_SUCCESS;
    ::RegCloseKey(product);
  }
  // The machine as Windows has it: an icon for "My Computer" (the prefix's own when it has one)
  // and a class for ".doc". All is put back as it was when the runs are over.
  KeptValue myComputer(HKEY_CLASSES_ROOT, kMyComputerIcon, "");
  KeptValue doc(HKEY_CLASSES_ROOT, ".doc", "");
  KeptValue docClass(HKEY_CLASSES_ROOT, kDocClass, "");  // made with its icon's key when it is not there
  KeptValue docIcon(HKEY_CLASSES_ROOT, kDocClassIcon, "");
  if (!(myComputer.Present() || myComputer.Set(kMyComputerStock)) || !doc.Set(kDocClass) ||
      !docIcon.Set(kDocIcon)) {
    result.Line("FAIL setup: the classes of \"My Computer\" and \".doc\" could not be set");
    result.Line("0 passed, 1 failed");
    return 1;
  }

  const std::vector<RunModeCase> cases = {
      {"interactive, empty command line", "", true, true, "e2e-interactive"},
      {"interactive, blanks only", "     ", true, false, "e2e-interactive-blanks"},
      {"resident, /background", " /background", false, true, "e2e-background"},
      {"resident, x", " x", false, false, "e2e-resident-x"},
  };
  const RunModeCase withoutIcon = {"interactive, no icon value for \"My Computer\"",
                                   "", true, true, "e2e-load-fails", true};
  const Report report = result.Cases();
  for (const RunModeCase& runCase : cases) {
    report(runCase.name, RunCase(runCase, program, screenshotFolder));
  }
  report("after the runs, on the machine", CheckSideEffects(emptyIconRemoved, docValueRemoved));
  // The window driven by the pointer: pages, zones, hover pictures.
  RunNavigation(program, screenshotFolder, "e2e-", Ending::ByPicMin, report);
  // The icon page's buttons on the row "Briefcase".
  RunIconChanges(program, screenshotFolder, traceFile, report);
  // The row of "My Computer" splits its icon's location before mending it: with no value at all
  // the load routine fails there, as it does on a Wine prefix that lacks the value.
  myComputer.Remove();
  report(withoutIcon.name, RunCase(withoutIcon, program, screenshotFolder));
  return result.Finish();
}

// The main window driven by the pointer alone, in a run of its own: the script runs it with the
// program and this driver taken for "Windows XP", where the Appearance page has its command.
int Navigation(const std::string& resultPath, const std::string& screenshotFolder,
               const std::string& shotPrefix) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  const std::string program = OwnFolder() + "quorvane.exe";
  RunNavigation(program, screenshotFolder, shotPrefix, Ending::ByPicClose, result.Cases());
  return result.Finish();
}

int RealWindowRun(const std::string& resultPath, const std::string& screenshotFolder,
                  const std::string& shotPrefix) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunRealWindow(OwnFolder() + "quorvane.exe", screenshotFolder, shotPrefix, result.Cases());
  return result.Finish();
}

// The Appearance page, in a run of its own: the script runs it once with the program and this
// driver taken for "Windows XP", where the page has its command, and once on "Windows Vista".
int AppearanceRun(const std::string& resultPath, const std::string& screenshotFolder,
                  const std::string& shotPrefix) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunAppearance(OwnFolder() + "quorvane.exe", screenshotFolder, shotPrefix, result.Cases());
  return result.Finish();
}

int SettingsRun(const std::string& resultPath, const std::string& screenshotFolder,
                const std::string& manifest) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunSettings(OwnFolder() + "quorvane.exe", screenshotFolder, manifest, result.Cases());
  return result.Finish();
}

int WallpaperFailuresRun(const std::string& resultPath, const std::string& screenshotFolder,
                         const std::string& manifest, const std::string& undecodable) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunWallpaperFailures(OwnFolder() + "quorvane.exe", screenshotFolder, manifest, undecodable,
                       result.Cases());
  return result.Finish();
}

int SlideShowRun(const std::string& resultPath, const std::string& screenshotFolder,
                 const std::string& manifest) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunSlideShow(OwnFolder() + "quorvane.exe", screenshotFolder, manifest, result.Cases());
  return result.Finish();
}

int TrayRun(const std::string& resultPath, const std::string& screenshotFolder,
            const std::string& manifest, const std::string& prefix) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunTray(OwnFolder() + "quorvane.exe", screenshotFolder, manifest, prefix, result.Cases());
  return result.Finish();
}

int TrayMenuRun(const std::string& resultPath, const std::string& screenshotFolder,
                const std::string& prefix) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunTrayMenuOnly(OwnFolder() + "quorvane.exe", screenshotFolder, prefix, result.Cases());
  return result.Finish();
}

int WallpaperPageRun(const std::string& resultPath, const std::string& screenshotFolder,
                     const std::string& manifest, const std::string& viewerRecord) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunWallpaperPage(OwnFolder() + "quorvane.exe", screenshotFolder, manifest, viewerRecord,
                   result.Cases());
  return result.Finish();
}

int InstalledRun(const std::string& resultPath, const std::string& screenshotFolder,
                 const std::string& shortcut, const std::string& program) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunInstalled(shortcut, program, screenshotFolder, result.Cases());
  return result.Finish();
}

int UninstallWithDataRun(const std::string& resultPath, const std::string& screenshotFolder) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunUninstallWithData(screenshotFolder, result.Cases());
  return result.Finish();
}

int FolderPageRun(const std::string& resultPath, const std::string& screenshotFolder,
                  const std::string& prefix) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunFolderPage(OwnFolder() + "quorvane.exe", screenshotFolder, prefix, result.Cases());
  return result.Finish();
}

int CollectionEditorRun(const std::string& resultPath, const std::string& screenshotFolder,
                        const std::string& manifest, const std::string& archiveCopies,
                        const std::string& viewerRecord, const std::string& viewed) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) return 2;
  RunCollectionEditor(OwnFolder() + "quorvane.exe", screenshotFolder, manifest, archiveCopies,
                      viewerRecord, viewed, result.Cases());
  return result.Finish();
}

DWORD Milliseconds(const char* seconds) {
  const long value = std::strtol(seconds, nullptr, 10);
  return value > 0 && value < 3600 ? static_cast<DWORD>(value) * 1000U : 10000U;
}

int WaitWindow(const std::string& resultPath, DWORD timeout) {
  ResultFile result(resultPath);
  const bool shown = WaitUntil(timeout, [] {
    HWND window = ::FindWindowA(kClass.c_str(), kText.c_str());
    return window != nullptr && ::IsWindowVisible(window) != 0;
  });
  result.Line(shown ? "shown" : "not shown");
  return shown ? 0 : 1;
}

int Exit(const std::string& resultPath, DWORD timeout) {
  ResultFile result(resultPath);
  HWND window = ::FindWindowA(kClass.c_str(), kText.c_str());
  if (window == nullptr) {
    result.Line("not found");
    return 1;
  }
  DWORD processId = 0;
  ::GetWindowThreadProcessId(window, &processId);
  OwnedHandle process(::OpenProcess(SYNCHRONIZE, FALSE, processId));
  PostRegistered(window, kExitMessage);
  const bool ended = process && ::WaitForSingleObject(process.Get(), timeout) == WAIT_OBJECT_0;
  result.Line(ended ? "ended" : "still running");
  return ended ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "run-modes" && (argc == 4 || argc == 5)) {
    return RunModes(argv[2], argv[3], argc == 5 ? argv[4] : "");
  }
  if (command == "navigation" && argc == 5) return Navigation(argv[2], argv[3], argv[4]);
  if (command == "real-window" && argc == 5) return RealWindowRun(argv[2], argv[3], argv[4]);
  if (command == "appearance" && argc == 5) return AppearanceRun(argv[2], argv[3], argv[4]);
  if (command == "settings" && argc == 5) return SettingsRun(argv[2], argv[3], argv[4]);
  if (command == "wallpaper-failures" && argc == 6) {
    return WallpaperFailuresRun(argv[2], argv[3], argv[4], argv[5]);
  }
  if (command == "slide-show" && argc == 5) return SlideShowRun(argv[2], argv[3], argv[4]);
  if (command == "tray" && argc == 6) return TrayRun(argv[2], argv[3], argv[4], argv[5]);
  if (command == "tray-menu" && argc == 5) return TrayMenuRun(argv[2], argv[3], argv[4]);
  if (command == "wallpaper-page" && argc == 6) {
    return WallpaperPageRun(argv[2], argv[3], argv[4], argv[5]);
  }
  if (command == "installed" && argc == 6) return InstalledRun(argv[2], argv[3], argv[4], argv[5]);
  if (command == "uninstall-with-data" && argc == 4) return UninstallWithDataRun(argv[2], argv[3]);
  if (command == "folder-page" && argc == 5) return FolderPageRun(argv[2], argv[3], argv[4]);
  if (command == "collection-editor" && argc == 8) {
    return CollectionEditorRun(argv[2], argv[3], argv[4], argv[5], argv[6], argv[7]);
  }
  if (command == "viewer" && argc == 4) return RecordViewer(argv[2], argv[3]);
  if (command == "wait-window" && argc == 4) return WaitWindow(argv[2], Milliseconds(argv[3]));
  if (command == "exit" && argc == 4) return Exit(argv[2], Milliseconds(argv[3]));
  return 2;
}
