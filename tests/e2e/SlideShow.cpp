#include "SlideShow.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "Driving.h"
#include "WallpaperFiles.h"

namespace quorvane::e2e {

namespace {

const char kShowClass[] = "QuorvaneSlideShow";
constexpr DWORD kStepTimeout = 15000;
constexpr int kTolerance = 8;
// The panel's face, and the face of the name of the file shown: Verdana 9 points, bold, black.
constexpr std::uint32_t kPanelFace = 0xE0E0E0;

// The files of a folder as the system lists them, in its order.
std::vector<std::string> ListFolder(const std::string& folder) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA found{};
  HANDLE search = ::FindFirstFileA((folder + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.emplace_back(found.cFileName);
  } while (::FindNextFileA(search, &found) != 0);
  ::FindClose(search);
  return names;
}

bool FolderExists(const std::string& folder) {
  const DWORD attributes = ::GetFileAttributesA(folder.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// A 24-bit bitmap file's pixels; empty when it is none.
Picture ReadBitmap24(const std::string& path) {
  Picture picture;
  const BitmapFacts facts = ReadBitmapFacts(path);
  if (!facts.read || !facts.signature || facts.bits != 24 || facts.compression != 0) {
    return picture;
  }
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return picture;
  const int height = std::abs(facts.height);
  const long stride = (static_cast<long>(facts.width) * 3 + 3) / 4 * 4;
  std::vector<unsigned char> bytes(static_cast<std::size_t>(stride) * height);
  const bool read = std::fseek(file, static_cast<long>(facts.offset), SEEK_SET) == 0 &&
                    std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
  std::fclose(file);
  if (!read) return picture;
  picture.width = facts.width;
  picture.height = height;
  picture.pixels.resize(static_cast<std::size_t>(facts.width) * height);
  for (int y = 0; y < height; ++y) {
    const int line = facts.height > 0 ? height - 1 - y : y;
    for (int x = 0; x < facts.width; ++x) {
      const unsigned char* p = &bytes[static_cast<std::size_t>(line * stride + x * 3)];
      picture.pixels[static_cast<std::size_t>(y) * facts.width + x] =
          static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[1]) << 8 | p[0];
    }
  }
  return picture;
}

// How many pixels of the screen over `area` differ from `picture` drawn at its top left; -1 when
// the screen can't be read or the sizes differ.
int ScreenMismatches(const RECT& area, const Picture& picture) {
  if (area.right - area.left != picture.width || area.bottom - area.top != picture.height) {
    return -1;
  }
  std::vector<std::uint32_t> shown;
  std::string error;
  if (!CaptureScreen(area, shown, error)) return -1;
  int different = 0;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    different += CloseColours(shown[i], picture.pixels[i], kTolerance) ? 0 : 1;
  }
  return different;
}

// `caption` drawn as the window draws the file's name: Verdana of 9 points, bold, black, from the
// label's top left corner, over the panel's face.
Picture DrawnName(int width, int height, const std::string& caption) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  DrawingSurface surface(width, height);
  HFONT font = ::CreateFontA(-::MulDiv(9, 96, 72), 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE,
                             DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                             DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, "Verdana");
  if (surface.Ready() && font != nullptr) {
    HDC memory = surface.Context();
    HGDIOBJ old = ::SelectObject(memory, font);
    surface.Fill(kPanelFace);
    ::SetBkMode(memory, TRANSPARENT);
    ::SetTextColor(memory, RGB(0, 0, 0));
    RECT inside{0, 0, width, height};
    std::string text = caption;
    ::DrawTextA(memory, text.data(), static_cast<int>(text.size()), &inside,
                DT_LEFT | DT_TOP | DT_WORDBREAK | DT_NOPREFIX);
    picture.pixels = surface.Pixels();
    ::SelectObject(memory, old);
  }
  if (font != nullptr) ::DeleteObject(font);
  return picture;
}

// Whether the label shows `caption` as the window draws the file's name.
bool NameShows(HWND label, const std::string& caption, std::string& seen) {
  const RECT area = ScreenRect(label);
  const Picture expected = DrawnName(area.right - area.left, area.bottom - area.top, caption);
  const int different = ScreenMismatches(area, expected);
  seen = "\"" + caption + "\": " + std::to_string(different) + " pixels differ";
  return different == 0;
}

// A key pressed and let go, as the user types it.
void PressKey(WORD key) {
  INPUT inputs[2] = {};
  inputs[0].type = INPUT_KEYBOARD;
  inputs[0].ki.wVk = key;
  inputs[1] = inputs[0];
  inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
  ::SendInput(2, inputs, sizeof(INPUT));
}

class SlideShowSession {
 public:
  SlideShowSession(HWND main, const Child& child, std::string program, std::string shots,
                   std::vector<ManifestPicture> pictures)
      : main_(main),
        child_(child),
        program_(std::move(program)),
        shots_(std::move(shots)),
        pictures_(std::move(pictures)) {
    collection_ = pictures_.front().collection;
    folder_ = DataFolder() + collection_;
  }

  // The collection's node clicked on the "Wallpaper" page, then CmdSlideShow: the show covers
  // the screen, owned by the main window, which it disables; the collection's folder is there
  // with every picture; the show waits at "Please Wait" with "5 Seconds" chosen.
  Verdict OpenCase() {
    Verdict verdict;
    HWND page = FindControl(main_, "CmdMenu(3)");
    if (!verdict.Check(page != nullptr, "CmdMenu(3) is not found")) return verdict;
    ClickAt(Centre(ScreenRect(page)));
    HWND command = FindControl(main_, "CmdSlideShow");
    HWND tree = FindControl(main_, "TvCollections");
    if (!verdict.Check(WaitUntil(kStepTimeout, [&] {
                         return command != nullptr && ::IsWindowVisible(command) != 0 &&
                                tree != nullptr && ::IsWindowVisible(tree) != 0;
                       }),
                       "CmdSlideShow or TvCollections is not shown on the Wallpaper page")) {
      return verdict;
    }
    std::vector<RemoteItem> items;
    int count = 0;
    std::string error;
    if (!verdict.Check(ReadTreeView(tree, items, count, error), "TvCollections: " + error)) {
      return verdict;
    }
    int position = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (items[i].text == collection_) position = static_cast<int>(i) + 1;
    }
    if (!verdict.Check(position != 0, "TvCollections does not list \"" + collection_ + "\"")) {
      return verdict;
    }
    RECT node{};
    if (!verdict.Check(TreeItemRect(tree, position, node, error), error)) return verdict;
    ClickAt(Centre(node));
    verdict.Check(WaitUntil(kStepTimeout, [&] {
                    std::vector<RemoteItem> now;
                    int n = 0;
                    std::string e;
                    return ReadTreeView(tree, now, n, e) &&
                           static_cast<int>(now.size()) >= position &&
                           now[static_cast<std::size_t>(position) - 1].selected;
                  }),
                  "a click on \"" + collection_ + "\" did not select it");
    // The click fills the strip, which unpacks the collection into its folder and removes the
    // folder once the thumbnails are made; the tree is disabled while it fills.
    verdict.Check(WaitUntil(kStepTimeout,
                            [&] { return ::IsWindowEnabled(tree) != 0 && !FolderExists(folder_); }),
                  "the collection's folder is there before the show (the strip's fill over)");
    ClickAt(Centre(ScreenRect(command)));
    verdict.Check(WaitUntil(kStepTimeout, [&] {
                    show_ = FindShownWindow(child_.id, kShowClass);
                    return show_ != nullptr;
                  }),
                  "no slide show after a click on CmdSlideShow");
    if (!verdict.Passed()) return verdict;
    // What stands before the first step, read at once: the first step comes after 5 s.
    for (const char* name : {"Image1", "FmControlPanel", "CmdPrevious", "CmdNext", "CmdFinish",
                             "Label1", "CboInterval", "Label2", "LblCollectionName",
                             "LblInformation"}) {
      verdict.Check(FindControl(show_, name) != nullptr,
                    std::string("the show does not give ") + name + " by its name");
    }
    if (!verdict.Passed()) return verdict;
    image_ = FindControl(show_, "Image1");
    panel_ = FindControl(show_, "FmControlPanel");
    combo_ = FindControl(show_, "CboInterval");
    name_ = FindControl(show_, "LblInformation");
    previous_ = FindControl(show_, "CmdPrevious");
    next_ = FindControl(show_, "CmdNext");
    finish_ = FindControl(show_, "CmdFinish");
    std::string seen;
    const bool waiting = WaitUntil(2000, [&] { return NameShows(name_, "Please Wait", seen); });
    verdict.Check(::IsWindowVisible(image_) == 0, "Image1 is shown before the first step");
    verdict.Check(waiting, "LblInformation does not show \"Please Wait\": " + seen);
    verdict.Check(::SendMessageA(combo_, CB_GETCURSEL, 0, 0) == 2,
                  "CboInterval has not \"5 Seconds\" chosen");
    const char* const entries[] = {"Manually", "2 Seconds", "5 Seconds", "10 Seconds",
                                   "20 Seconds"};
    verdict.Check(::SendMessageA(combo_, CB_GETCOUNT, 0, 0) == 5, "CboInterval has not 5 entries");
    for (int i = 0; i < 5; ++i) {
      // Asked in the system's own characters: only those are carried between the processes.
      wchar_t wide[64] = {};
      ::SendMessageW(combo_, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(wide));
      char text[64] = {};
      ::WideCharToMultiByte(CP_ACP, 0, wide, -1, text, sizeof text, nullptr, nullptr);
      verdict.Check(std::string(text) == entries[i],
                    "CboInterval's entry " + std::to_string(i) + " is \"" + text + "\"");
    }
    SaveShot(verdict, shots_, "e2e-slideshow-wait");

    const int screenWidth = ::GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = ::GetSystemMetrics(SM_CYSCREEN);
    const RECT window = ScreenRect(show_);
    verdict.Check(window.left == 0 && window.top == 0 && window.right == screenWidth &&
                      window.bottom == screenHeight,
                  "the show stands at " + Describe(window) + ", not over the whole screen");
    verdict.Check(::GetWindow(show_, GW_OWNER) == main_, "the show is not owned by the main window");
    verdict.Check(::IsWindowEnabled(main_) == 0, "the main window is not disabled under the show");
    const RECT panel = ScreenRect(panel_);
    verdict.Check(panel.left == 0 && panel.right == screenWidth &&
                      std::abs(panel.bottom - screenHeight) <= 1 && panel.bottom - panel.top == 53,
                  "the panel stands at " + Describe(panel) + ", not across the bottom");
    verdict.Check(std::abs(ScreenRect(name_).left - screenWidth / 2) <= 1,
                  "the file's name starts at " + std::to_string(ScreenRect(name_).left) +
                      ", not half the screen's width");

    files_ = ListFolder(folder_);
    verdict.Check(FolderExists(folder_) && files_.size() == pictures_.size(),
                  "the collection's folder holds " + std::to_string(files_.size()) +
                      " files while the show is open, not " + std::to_string(pictures_.size()));
    if (verdict.Passed()) {
      std::string order;
      for (const std::string& file : files_) order += (order.empty() ? "" : ", ") + file;
      verdict.Note("over the whole screen, owned by the main window, which is disabled; "
                   "\"Please Wait\", \"5 Seconds\"; the folder holds " + order);
    }
    return verdict;
  }

  // "Manually" chosen as a person chooses it: a click on the list, a click on the entry. The
  // timer stops: no step comes in 6 s.
  Verdict ManuallyCase() {
    Verdict verdict;
    if (!Choose(verdict, 0, "Manually")) return verdict;
    const int before = Shown();
    ::Sleep(6000);
    verdict.Check(Shown() == before, "a step came by itself with \"Manually\" chosen");
    verdict.Check(before != kHidden || ::IsWindowVisible(image_) == 0,
                  "Image1 came with \"Manually\" chosen");
    if (verdict.Passed()) verdict.Note("\"Manually\" chosen; no step in 6 s");
    return verdict;
  }

  // CmdNext, CmdNext, CmdPrevious, each clicked: the pictures come in the folder's order, the
  // first one seen being the folder's second; each at its own size in the middle of the screen,
  // its name in the panel; a bitmap compared pixel for pixel.
  Verdict StepsCase() {
    Verdict verdict;
    if (!verdict.Check(files_.size() >= 3, "fewer than 3 files to step through")) return verdict;
    int index = Shown() >= 0 ? IndexOfShown() : 0;
    const auto step = [&](HWND button, int expected, const char* what) {
      ClickAt(Centre(ScreenRect(button)));
      const bool came = WaitUntil(kStepTimeout, [&] { return IndexOfShown() == expected; });
      verdict.Check(came, std::string(what) + " did not show " + files_[expected] + " (index " +
                              std::to_string(expected) + "); shown: " + DescribeShown());
      if (came) CheckShown(verdict, expected);
      return came;
    };
    const int first = (index + 1) % static_cast<int>(files_.size());
    if (!step(next_, first, "CmdNext")) return verdict;
    SaveShot(verdict, shots_, "e2e-slideshow-first");
    const int second = (first + 1) % static_cast<int>(files_.size());
    if (!step(next_, second, "CmdNext again")) return verdict;
    if (!step(previous_, first, "CmdPrevious")) return verdict;
    if (verdict.Passed()) {
      verdict.Note("CmdNext showed " + files_[first] + " (the folder's index " +
                   std::to_string(first) + "), CmdNext " + files_[second] + ", CmdPrevious " +
                   files_[first] + " again; " + checks_);
    }
    return verdict;
  }

  // CmdNext on through the folder, still by hand: the PCX, which the platform does not decode,
  // ends its step at the program's top-level report, a message box with the failure's text and a
  // line of the log under the show's name; after OK the show goes on, and the next CmdNext wraps
  // round to the folder's first picture, a bitmap compared pixel for pixel.
  Verdict FailureCase() {
    Verdict verdict;
    const std::string log = DataFolder() + "Quorvane.log";
    const int size = static_cast<int>(files_.size());
    int index = IndexOfShown();
    if (!verdict.Check(index >= 0, "no picture is shown before the steps on")) return verdict;
    std::string told;
    bool reported = false;
    checks_.clear();
    for (int guard = 0; guard < size; ++guard) {
      index = (index + 1) % size;
      const std::string& file = files_[static_cast<std::size_t>(index)];
      const std::string logBefore = ReadText(log);
      ClickAt(Centre(ScreenRect(next_)));
      if (IsUndecodable(file)) {
        HWND box = nullptr;
        const bool shown = WaitUntil(kStepTimeout, [&] { return (box = DialogOf(child_.id)) != nullptr; });
        if (!verdict.Check(shown, "no message box for " + file)) return verdict;
        ::Sleep(300);  // let it paint before the picture is taken
        told = DialogText(box);
        verdict.Check(!told.empty(), "the message box for " + file + " says nothing");
        verdict.Check(::GetWindow(box, GW_OWNER) == show_, "the message box is not the show's");
        SaveShot(verdict, shots_, "e2e-slideshow-failure");
        ClickDialogButton(verdict, box, IDOK, "OK", kStepTimeout);
        std::string added;
        WaitUntil(kStepTimeout, [&] {
          const std::string now = ReadText(log);
          added = now.size() > logBefore.size() ? now.substr(logBefore.size()) : "";
          return !added.empty();
        });
        verdict.Check(added.find("\tFrmSlideShow\tevent\tline 0\terror 481\t") != std::string::npos,
                      "Quorvane.log gained \"" + added + "\", no line of the show's failure");
        verdict.Check(::IsWindow(show_) != 0 && ::IsWindowVisible(show_) != 0,
                      "the show is gone after the failure");
        reported = true;
        continue;
      }
      const bool came = WaitUntil(kStepTimeout, [&] { return IndexOfShown() == index; });
      verdict.Check(came, "CmdNext did not show " + file + "; shown: " + DescribeShown());
      if (!came) return verdict;
      CheckShown(verdict, index);
      if (index == 0) break;
    }
    verdict.Check(reported, "no file of the folder failed to show");
    verdict.Check(IndexOfShown() == 0, "the steps did not wrap round to " + files_.front());
    if (verdict.Passed()) {
      verdict.Note("the undecodable file told \"" + told + "\" and logged under FrmSlideShow; " +
                   checks_);
    }
    return verdict;
  }

  // The pointer on each button shows its hover picture, the others their normal ones; on the
  // panel all three are normal again.
  Verdict HoverCase() {
    Verdict verdict;
    struct Button {
      HWND window;
      int normal;
      int hover;
      const char* name;
    };
    const Button buttons[] = {{previous_, 151, 152, "CmdPrevious"},
                              {finish_, 153, 154, "CmdFinish"},
                              {next_, 155, 156, "CmdNext"}};
    std::vector<Picture> bitmaps;
    for (int number = 151; number <= 156; ++number) {
      Picture picture;
      std::string error;
      verdict.Check(LoadResourceBitmap(program_, number, picture, error), error);
      bitmaps.push_back(std::move(picture));
    }
    if (!verdict.Passed()) return verdict;
    const auto bitmap = [&](int number) -> const Picture& { return bitmaps[number - 151]; };
    const auto shows = [&](HWND window, int number) {
      return ScreenMismatches(ScreenRect(window), bitmap(number)) == 0;
    };
    // The pointer is moved again, a pixel to and fro, at each look: a busy machine may let a
    // single move pass before the window under it has taken over.
    int nudge = 0;
    const auto moveNear = [&](POINT at) { MoveTo(POINT{at.x + (nudge++ % 2), at.y}); };
    for (const Button& under : buttons) {
      const POINT centre = Centre(ScreenRect(under.window));
      const bool lit = WaitUntil(kStepTimeout, [&] {
        moveNear(centre);
        for (const Button& other : buttons) {
          if (!shows(other.window, &other == &under ? other.hover : other.normal)) return false;
        }
        return true;
      });
      verdict.Check(lit, std::string(under.name) + " under the pointer does not show bitmap " +
                             std::to_string(under.hover) + " with the others normal");
      if (&under == &buttons[2]) SaveShot(verdict, shots_, "e2e-slideshow-hover");
    }
    const RECT panel = ScreenRect(panel_);
    verdict.Check(WaitUntil(kStepTimeout, [&] {
                    moveNear(POINT{panel.right - 40, panel.top + 8});
                    return shows(previous_, 151) && shows(finish_, 153) && shows(next_, 155);
                  }),
                  "on the panel the buttons do not all show their normal pictures again");
    if (verdict.Passed()) verdict.Note("152, 154 and 156 under the pointer; 151, 153, 155 on the panel");
    return verdict;
  }

  // "2 Seconds": the show steps by itself, twice in a row, in the folder's order.
  Verdict TimedCase() {
    Verdict verdict;
    const int start = IndexOfShown();
    if (!verdict.Check(start >= 0, "no picture is shown before \"2 Seconds\"")) return verdict;
    if (!Choose(verdict, 1, "2 Seconds")) return verdict;
    checks_.clear();
    const ULONGLONG chosen = ::GetTickCount64();
    const int size = static_cast<int>(files_.size());
    const int first = (start + 1) % size;
    const int second = (first + 1) % size;
    const bool one = WaitUntil(kStepTimeout, [&] { return IndexOfShown() == first; });
    const ULONGLONG firstAt = ::GetTickCount64();
    verdict.Check(one, "no step to " + files_[first] + " by itself; shown: " + DescribeShown());
    if (!one) return verdict;
    const bool two = WaitUntil(kStepTimeout, [&] { return IndexOfShown() == second; });
    const ULONGLONG secondAt = ::GetTickCount64();
    verdict.Check(two, "no second step to " + files_[second] + "; shown: " + DescribeShown());
    if (!two) return verdict;
    CheckShown(verdict, second);
    // Two seconds apart, give or take what decoding a photograph takes under Wine.
    const ULONGLONG apart = secondAt - firstAt;
    verdict.Check(apart >= 1500 && apart <= 6000,
                  "the steps came " + std::to_string(apart) + " ms apart, not about 2 s");
    SaveShot(verdict, shots_, "e2e-slideshow-timed");
    // By hand again, before the show comes to the file that fails.
    Choose(verdict, 0, "Manually");
    if (verdict.Passed()) {
      verdict.Note("by itself to " + files_[first] + " after " +
                   std::to_string(firstAt - chosen) + " ms, then " + files_[second] + " " +
                   std::to_string(apart) + " ms later; " + checks_);
    }
    return verdict;
  }

  // Escape leaves the show: the window goes, the main window comes back, the folder is gone.
  Verdict EscapeCase() {
    Verdict verdict;
    ::SetForegroundWindow(show_);
    PressKey(VK_ESCAPE);
    verdict.Check(WaitUntil(kStepTimeout, [&] { return ::IsWindow(show_) == 0; }),
                  "the show is still there after Escape");
    verdict.Check(WaitUntil(kStepTimeout, [&] { return ::IsWindowEnabled(main_) != 0; }),
                  "the main window is still disabled after the show");
    verdict.Check(WaitUntil(kStepTimeout, [&] { return !FolderExists(folder_); }),
                  "the collection's folder is still there after the show");
    verdict.Check(FileExists(DataFolder() + collection_ + ".RXS"), "the collection's file is gone");
    if (verdict.Passed()) verdict.Note("the show gone with Escape, the main window enabled, the folder removed");
    return verdict;
  }

 private:
  static constexpr int kHidden = -2;

  static bool IsUndecodable(const std::string& file) {
    const std::size_t point = file.rfind('.');
    return point != std::string::npos &&
           (file.substr(point) == ".pcx" || file.substr(point) == ".PCX");
  }

  static std::string ReadText(const std::string& path) {
    std::string text;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return text;
    char buffer[4096];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, got);
    std::fclose(file);
    return text;
  }

  static bool FileExists(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  }

  // The picture of the manifest that Image1's size tells: its position there, -1 for a size of
  // none, kHidden while Image1 is not shown.
  int Shown() const {
    if (::IsWindow(image_) == 0 || ::IsWindowVisible(image_) == 0) return kHidden;
    const RECT area = ScreenRect(image_);
    for (std::size_t i = 0; i < pictures_.size(); ++i) {
      if (area.right - area.left == pictures_[i].width &&
          area.bottom - area.top == pictures_[i].height) {
        return static_cast<int>(i);
      }
    }
    return -1;
  }
  // The same as a position in the folder's list; -1 for none.
  int IndexOfShown() const {
    const int shown = Shown();
    if (shown < 0) return -1;
    for (std::size_t i = 0; i < files_.size(); ++i) {
      if (files_[i] == pictures_[static_cast<std::size_t>(shown)].file) return static_cast<int>(i);
    }
    return -1;
  }
  std::string DescribeShown() const {
    if (::IsWindowVisible(image_) == 0) return "Image1 hidden";
    const int shown = Shown();
    return shown >= 0 ? pictures_[static_cast<std::size_t>(shown)].file
                      : "a picture of " + Describe(ScreenRect(image_));
  }

  // The picture at `index` of the folder stands in the middle of the screen at its own size,
  // and the panel shows its name; a bitmap is compared with the screen pixel for pixel.
  void CheckShown(Verdict& verdict, int index) {
    const std::string& file = files_[static_cast<std::size_t>(index)];
    const int screenWidth = ::GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = ::GetSystemMetrics(SM_CYSCREEN);
    RECT area{};
    int width = 0;
    int height = 0;
    // The box takes the picture's size first and its place after: the step is over once both.
    const bool centred = WaitUntil(kStepTimeout, [&] {
      area = ScreenRect(image_);
      width = area.right - area.left;
      height = area.bottom - area.top;
      return std::abs(area.left - (screenWidth - width) / 2) <= 1 &&
             std::abs(area.top - (screenHeight - height) / 2) <= 1;
    });
    verdict.Check(centred, file + " stands at " + Describe(area) + ", not in the middle of the screen");
    std::string seen;
    verdict.Check(WaitUntil(kStepTimeout, [&] { return NameShows(name_, file, seen); }),
                  "LblInformation does not show the name: " + seen);
    checks_ += (checks_.empty() ? "" : ", ") + file + " " + std::to_string(width) + "x" +
               std::to_string(height) + " centred and named";
    const std::size_t point = file.rfind('.');
    if (point != std::string::npos && (file.substr(point) == ".bmp" || file.substr(point) == ".BMP")) {
      const Picture bitmap = ReadBitmap24(folder_ + "\\" + file);
      const int different = ScreenMismatches(area, bitmap);
      verdict.Check(different == 0, file + " on the screen differs from the file in " +
                                        std::to_string(different) + " pixels");
      if (different == 0) checks_ += " (every pixel as in the file)";
    }
  }

  // Chooses entry `index` of CboInterval with the pointer: the list opened with a click, the
  // entry clicked in the dropped list.
  bool Choose(Verdict& verdict, int index, const std::string& entry) {
    ClickAt(Centre(ScreenRect(combo_)));
    HWND list = nullptr;
    const bool dropped = WaitUntil(kStepTimeout, [&] {
      list = FindShownWindow(child_.id, "ComboLBox");
      return list != nullptr;
    });
    if (!verdict.Check(dropped, "a click on CboInterval did not drop its list")) return false;
    RECT item{};
    std::string error;
    if (!verdict.Check(ListBoxItemRect(list, index, item, error), error)) return false;
    ClickAt(Centre(item));
    return verdict.Check(WaitUntil(kStepTimeout, [&] {
                           return ::SendMessageA(combo_, CB_GETCURSEL, 0, 0) == index &&
                                  ::IsWindowVisible(list) == 0;
                         }),
                         "a click on \"" + entry + "\" in the dropped list did not choose it");
  }

  HWND main_;
  const Child& child_;
  std::string program_;
  std::string shots_;
  std::vector<ManifestPicture> pictures_;
  std::string collection_;
  std::string folder_;
  std::vector<std::string> files_;
  std::string checks_;
  HWND show_ = nullptr;
  HWND image_ = nullptr;
  HWND panel_ = nullptr;
  HWND combo_ = nullptr;
  HWND name_ = nullptr;
  HWND previous_ = nullptr;
  HWND next_ = nullptr;
  HWND finish_ = nullptr;
};

}  // namespace

void RunSlideShow(const std::string& program, const std::string& screenshotFolder,
                  const std::string& manifest, const Report& report) {
  const std::vector<ManifestPicture> pictures = ReadManifest(manifest);
  Verdict start;
  if (!start.Check(pictures.size() >= 3, "fewer than 3 pictures in the manifest " + manifest)) {
    report("slide show: start", start);
    return;
  }
  Child child;
  HWND window = StartWithMainWindow(program, "", true, child, start);
  if (window == nullptr) {
    report("slide show: start", start);
    return;
  }
  ::Sleep(500);  // let it paint
  SlideShowSession session(window, child, program, screenshotFolder, pictures);
  const Verdict opened = session.OpenCase();
  report("slide show: the collection's node, then CmdSlideShow", opened);
  if (opened.Passed()) {
    const Verdict manually = session.ManuallyCase();
    report("slide show: \"Manually\" stops the timer", manually);
    if (manually.Passed()) {
      report("slide show: CmdNext, CmdNext, CmdPrevious", session.StepsCase());
      report("slide show: hover pictures of the buttons", session.HoverCase());
      report("slide show: an undecodable file reported, the show goes on",
             session.FailureCase());
      report("slide show: \"2 Seconds\" steps by itself", session.TimedCase());
    }
    report("slide show: Escape leaves it", session.EscapeCase());
  }
  const Verdict end = EndThroughExit(window, child);
  if (!end.Passed()) report("slide show: end", end);
}

}  // namespace quorvane::e2e
