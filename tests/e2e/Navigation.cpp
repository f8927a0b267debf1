#include "Navigation.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <string>
#include <vector>

#include "Driving.h"

namespace quorvane::e2e {

namespace {

constexpr DWORD kChangeTimeout = 2500;
constexpr int kTwipsPerPixel = 15;
// A colour channel of the screen may differ this much from the picture it shows.
constexpr int kTolerance = 8;

struct Page {
  int element;
  const char* box;
  const char* frame;
  const char* title;
};

const Page kPages[] = {
    {0, "PBPelmoraMain", "FrameCommands", "Pelmora"},
    {1, "PBFileSystem", "FrameCommands", "File System"},
    {2, "PBAppearance", "FrameCommands", "Appearance"},
    {3, "PBWallpaper", "FrameWallpaper", "Wallpaper Manager"},
};

struct Zone {
  const char* caption;
  const char* shot;  // the screenshot's name after "e2e-zone-"
  int x;             // the zone's centre in twips from the strip's left edge
  const char* tree;  // empty in a gap
  int nodesOnVista;
  int picture;       // the strip's bitmap; 0 in a gap
};

constexpr int kZoneY = 180;
// The first is the zone the load routine turns on: it is visited after another, so that the
// switch to it is seen; the gap comes last.
const Zone kZones[] = {
    {"Start Menu", "start-menu", 2350, "TvStartMenu", 5, 133},
    {"File Type", "file-type", 4000, "TvFileType", 26, 132},
    {"Control Panel", "control-panel", 5750, "TvControlPanel", 8, 130},
    {"Desktop", "desktop", 750, "TvDesktop", 5, 131},
    {"", "gap", 1600, "", 0, 0},
};

const char* const kTrees[] = {"TvDesktop", "TvStartMenu", "TvExplore", "TvFileType",
                              "TvControlPanel"};

int Rounded(int twips) { return (twips + kTwipsPerPixel / 2) / kTwipsPerPixel; }

// The pixels of `shown` (the screen over `area`) that differ from what `picture` puts at the
// area's top left corner; -1 when nothing of the picture falls in the area.
int Mismatches(const std::vector<std::uint32_t>& shown, const RECT& area, const Picture& picture) {
  const int width = std::min<int>(area.right - area.left, picture.width);
  const int height = std::min<int>(area.bottom - area.top, picture.height);
  if (width <= 0 || height <= 0) return -1;
  const int stride = area.right - area.left;
  int different = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t screen = shown[static_cast<std::size_t>(y * stride + x)];
      const std::uint32_t drawn = picture.pixels[static_cast<std::size_t>(y * picture.width + x)];
      different += CloseColours(screen, drawn, kTolerance) ? 0 : 1;
    }
  }
  return different;
}

int Mismatches(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height) return a.width * a.height;
  int different = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    different += CloseColours(a.pixels[i], b.pixels[i], kTolerance) ? 0 : 1;
  }
  return different;
}

// The bitmaps of quorvane.exe, read from the file once each. A list, so that a picture handed
// out stays where it is while others are read.
class Bitmaps {
 public:
  explicit Bitmaps(std::string program) : program_(std::move(program)) {}

  // The bitmap `number`; null, with the reason in `error`, when the program has none.
  const Picture* Get(int number, std::string& error) {
    for (const auto& [n, picture] : loaded_) {
      if (n == number) return &picture;
    }
    Picture picture;
    if (!LoadResourceBitmap(program_, number, picture, error)) return nullptr;
    loaded_.emplace_back(number, std::move(picture));
    return &loaded_.back().second;
  }

 private:
  std::string program_;
  std::list<std::pair<int, Picture>> loaded_;
};

// Whether `window` shows bitmap `number` of the program: the screen over the window against the
// bitmap, at the window's top left corner. `seen` tells how many pixels differ.
bool Shows(HWND window, const Picture& bitmap, std::string& seen) {
  const RECT area = ScreenRect(window);
  std::vector<std::uint32_t> pixels;
  std::string error;
  if (!CaptureScreen(area, pixels, error)) {
    seen = error;
    return false;
  }
  const int different = Mismatches(pixels, area, bitmap);
  seen = different < 0 ? "nothing of the picture in " + Describe(area)
                       : std::to_string(different) + " pixels of " + Describe(area) + " differ";
  return different == 0;
}

// The face a label's caption is set in: Verdana of a size, plain or bold, in a colour.
struct Face {
  int points;
  bool bold;
  COLORREF colour;
};
// Most captions of the window are plain Verdana of 8 points in black; the page's title is
// larger, bold and dark slate.
constexpr Face kCaptionFace{8, false, RGB(0, 0, 0)};
constexpr Face kTitleFace{14, true, RGB(0x3F, 0x46, 0x52)};

// What a label of the window is expected to show: `caption` drawn as the window draws its
// labels, in its face from the label's top left corner, broken at words, over the background
// the label stands on (the colour of its bottom right corner, where no caption of these
// reaches).
Picture DrawnCaption(const RECT& area, std::uint32_t background, const std::string& caption,
                     const Face& face) {
  Picture picture;
  picture.width = area.right - area.left;
  picture.height = area.bottom - area.top;
  if (picture.width <= 0 || picture.height <= 0) return picture;
  const int pointHeight = -::MulDiv(face.points, 96, 72);  // the window's type is set at 96
  DrawingSurface surface(picture.width, picture.height);
  HFONT font = ::CreateFontA(pointHeight, 0, 0, 0, face.bold ? FW_BOLD : FW_NORMAL, FALSE,
                             FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                             DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, "Verdana");
  if (surface.Ready() && font != nullptr) {
    HDC memory = surface.Context();
    HGDIOBJ oldFont = ::SelectObject(memory, font);
    surface.Fill(background);
    ::SetBkMode(memory, TRANSPARENT);
    ::SetTextColor(memory, face.colour);
    RECT inside{0, 0, picture.width, picture.height};
    std::string text = caption;
    ::DrawTextA(memory, text.data(), static_cast<int>(text.size()), &inside,
                DT_LEFT | DT_TOP | DT_WORDBREAK | DT_NOPREFIX);
    picture.pixels = surface.Pixels();
    ::SelectObject(memory, oldFont);
  }
  if (font != nullptr) ::DeleteObject(font);
  return picture;
}

// Whether the label `label` shows `caption` on the screen. A label's window text is its system
// name and its caption is only painted, so the caption is read from the screen: the label's
// pixels against the caption drawn the same way.
bool LabelShows(HWND label, const std::string& caption, const Face& face, std::string& seen) {
  const RECT area = ScreenRect(label);
  std::vector<std::uint32_t> pixels;
  std::string error;
  if (!CaptureScreen(area, pixels, error)) {
    seen = error;
    return false;
  }
  Picture shown;
  shown.width = area.right - area.left;
  shown.height = area.bottom - area.top;
  shown.pixels = pixels;
  const Picture expected = DrawnCaption(area, pixels.back(), caption, face);
  const int different = Mismatches(shown, expected);
  int ink = 0;
  for (std::uint32_t p : expected.pixels) ink += p != pixels.back() ? 1 : 0;
  seen = std::to_string(different) + " of " + std::to_string(shown.pixels.size()) +
         " pixels differ from \"" + caption + "\" drawn (" + std::to_string(ink) + " ink)";
  return ink > 0 && different == 0;
}

class Session {
 public:
  Session(HWND window, std::string program, std::string shots, std::string prefix)
      : window_(window),
        bitmaps_(std::move(program)),
        shots_(std::move(shots)),
        prefix_(std::move(prefix)) {}

  HWND Find(const std::string& name) { return FindControl(window_, name); }
  bool Visible(const std::string& name) {
    HWND control = Find(name);
    return control != nullptr && ::IsWindowVisible(control) != 0;
  }

  // The CmdMenu elements that are shown, and on the "Windows Vista" line element 3 in the place
  // of element 2, which is hidden.
  Verdict Commands(std::vector<int>& shown) {
    Verdict verdict;
    RECT places[4]{};
    for (int i = 0; i < 4; ++i) {
      HWND element = Find("CmdMenu(" + std::to_string(i) + ")");
      if (!verdict.Check(element != nullptr, "CmdMenu(" + std::to_string(i) + ") is not found")) {
        continue;
      }
      places[i] = ScreenRect(element);
      if (::IsWindowVisible(element) != 0) shown.push_back(i);
    }
    std::string list;
    for (int i : shown) list += (list.empty() ? "" : ", ") + std::to_string(i);
    if (TakesItselfForVista()) {
      verdict.Check(shown == std::vector<int>{0, 1, 3},
                    "the page commands shown are " + list + ", not 0, 1, 3");
      RECT form{};
      ::GetWindowRect(window_, &form);
      const int top2 = Rounded(2040 + 2 * 900);
      verdict.Check(places[3].top - form.top == top2 && places[3].left == places[0].left,
                    "CmdMenu(3) is at " + Describe(places[3]) + ", not in the place of element 2 (" +
                        std::to_string(top2) + " pixels from the window's top)");
    }
    verdict.Note("shown: " + list + "; CmdMenu(3) at " + Describe(places[3]));
    return verdict;
  }

  Verdict PageCase(const Page& page) {
    Verdict verdict;
    HWND element = Find("CmdMenu(" + std::to_string(page.element) + ")");
    if (!verdict.Check(element != nullptr, "the page command is not found")) return verdict;
    const RECT area = ScreenRect(element);
    ClickAt(Centre(area));
    verdict.Check(WaitUntil(kChangeTimeout, [&] { return Visible(page.box); }),
                  std::string(page.box) + " is not shown after a click at the centre of " +
                      Describe(area));
    std::string boxes;
    for (const Page& other : kPages) {
      if (Visible(other.box)) boxes += (boxes.empty() ? "" : ", ") + std::string(other.box);
    }
    verdict.Check(boxes == page.box, "the page boxes shown are \"" + boxes + "\", not only " +
                                         page.box);
    std::string frames;
    for (const char* frame : {"FrameCommands", "FrameWallpaper"}) {
      if (Visible(frame)) frames += (frames.empty() ? "" : ", ") + std::string(frame);
    }
    verdict.Check(frames == page.frame,
                  "the command frames shown are \"" + frames + "\", not only " + page.frame);
    HWND title = Find("LblCommandName");
    std::string seen;
    if (verdict.Check(title != nullptr && ::IsWindowVisible(title) != 0,
                      "LblCommandName is not found, or not visible")) {
      const bool shows =
          WaitUntil(kChangeTimeout, [&] { return LabelShows(title, page.title, kTitleFace, seen); });
      verdict.Check(shows, std::string("LblCommandName does not show \"") + page.title +
                               "\": " + seen);
    }
    SaveShot(verdict, shots_, prefix_ + "page-" + std::to_string(page.element));
    verdict.Note(std::string(page.box) + " and " + page.frame + " alone shown, title \"" +
                 page.title + "\" on the screen");
    return verdict;
  }

  Verdict ZoneCase(const Zone& zone) {
    Verdict verdict;
    HWND strip = Find("CmdWindow");
    HWND caption = Find("LblIconCat");
    if (!verdict.Check(strip != nullptr && ::IsWindowVisible(strip) != 0 && caption != nullptr,
                       "CmdWindow or LblIconCat is not found, or CmdWindow not visible")) {
      return verdict;
    }
    const RECT area = ScreenRect(strip);
    const POINT point{area.left + Rounded(zone.x), area.top + Rounded(kZoneY)};
    std::vector<std::uint32_t> stripBefore;
    std::vector<std::uint32_t> captionBefore;
    std::string error;
    CaptureScreen(area, stripBefore, error);
    CaptureScreen(ScreenRect(caption), captionBefore, error);
    ClickAt(point);
    const std::string where = "after a click at (" + std::to_string(point.x - area.left) + ", " +
                              std::to_string(point.y - area.top) + ") of the strip";
    const std::string expected = zone.tree;
    std::string shown;
    auto visibleTrees = [&] {
      shown.clear();
      for (const char* tree : kTrees) {
        if (Visible(tree)) shown += (shown.empty() ? "" : ", ") + std::string(tree);
      }
      return shown;
    };
    // Each condition is settled before its message is made of what it saw.
    const bool treesRight = WaitUntil(kChangeTimeout, [&] { return visibleTrees() == expected; });
    verdict.Check(treesRight,
                  "the trees shown are \"" + shown + "\", not \"" + expected + "\" " + where);
    verdict.Check(!Visible("TvExplore"), "TvExplore is shown");
    if (!expected.empty()) {
      const int count = static_cast<int>(::SendMessageA(Find(expected), TVM_GETCOUNT, 0, 0));
      if (TakesItselfForVista()) {
        verdict.Check(count == zone.nodesOnVista, expected + " has " + std::to_string(count) +
                                                      " nodes, not " +
                                                      std::to_string(zone.nodesOnVista));
      }
      std::string seen;
      const bool captionRight =
          WaitUntil(kChangeTimeout, [&] { return LabelShows(caption, zone.caption, kCaptionFace, seen); });
      verdict.Check(captionRight, std::string("LblIconCat does not show \"") + zone.caption + "\": " + seen);
      const Picture* bitmap = bitmaps_.Get(zone.picture, error);
      if (bitmap != nullptr) {
        const bool pictureRight =
            WaitUntil(kChangeTimeout, [&] { return Shows(strip, *bitmap, seen); });
        verdict.Check(pictureRight, "CmdWindow does not show bitmap " + std::to_string(zone.picture) + ": " +
                          seen);
      } else {
        verdict.Note("the strip's picture not compared: " + error);
      }
      verdict.Note(expected + " alone shown, " + std::to_string(count) + " nodes, \"" +
                   zone.caption + "\" on the screen" +
                   (bitmap != nullptr ? ", strip shows bitmap " + std::to_string(zone.picture)
                                      : ""));
    } else {
      ::Sleep(300);
      std::vector<std::uint32_t> stripAfter;
      std::vector<std::uint32_t> captionAfter;
      CaptureScreen(area, stripAfter, error);
      CaptureScreen(ScreenRect(caption), captionAfter, error);
      verdict.Check(stripAfter == stripBefore, "the strip's picture changed " + where);
      verdict.Check(captionAfter == captionBefore, "LblIconCat changed " + where);
      verdict.Note("no tree shown " + where + "; the strip and LblIconCat unchanged");
    }
    SaveShot(verdict, shots_, prefix_ + "zone-" + zone.shot);
    return verdict;
  }

  // The window's own picture behind its controls: its top left corner, where the mark and the
  // name stand and no control covers it, is bitmap 170 pixel for pixel, and so is the hairline
  // frame along the left edge below it.
  Verdict BackgroundCase() {
    Verdict verdict;
    std::string error;
    const Picture* background = bitmaps_.Get(170, error);
    if (!verdict.Check(background != nullptr, "the background bitmap 170: " + error)) {
      return verdict;
    }
    const RECT form = ScreenRect(window_);
    const RECT corner{form.left, form.top, form.left + 205, form.top + 130};
    std::vector<std::uint32_t> pixels;
    if (!verdict.Check(CaptureScreen(corner, pixels, error), "no capture: " + error)) {
      return verdict;
    }
    const int different = Mismatches(pixels, corner, *background);
    verdict.Check(different == 0, std::to_string(different) +
                                      " pixels of the window's top left corner " +
                                      Describe(corner) + " differ from bitmap 170");
    verdict.Note("the top left corner " + Describe(corner) + " shows bitmap 170");
    return verdict;
  }

  // The window dragged by its background: pressed on the empty band under the page commands and
  // moved, it follows the pointer by the same distance.
  Verdict DragCase() {
    Verdict verdict;
    const RECT before = ScreenRect(window_);
    const POINT from{before.left + 100, before.bottom - 40};
    const POINT to{from.x + 60, from.y - 40};
    DragFromTo(from, to);
    RECT after{};
    const bool moved = WaitUntil(kChangeTimeout, [&] {
      after = ScreenRect(window_);
      return after.left == before.left + 60 && after.top == before.top - 40;
    });
    verdict.Check(moved, "dragged by (60, -40) from " + Describe(before) + ", the window is at " +
                             Describe(after));
    verdict.Note("moved from " + Describe(before) + " to " + Describe(after));
    return verdict;
  }

  // PicMin hides the window and the program goes on, resident.
  Verdict MinimiseCase(const Child& child) {
    Verdict verdict;
    HWND min = Find("PicMin");
    if (!verdict.Check(min != nullptr, "PicMin is not found")) return verdict;
    ClickAt(Centre(ScreenRect(min)));
    const bool hidden = WaitUntil(kChangeTimeout, [&] { return ::IsWindowVisible(window_) == 0; });
    verdict.Check(hidden, "the window is still shown after a click on PicMin");
    ::Sleep(500);
    verdict.Check(IsRunning(child), "the program ended after a click on PicMin");
    verdict.Note("hidden by PicMin, the program still running");
    return verdict;
  }

  // PicClose ends the program.
  Verdict CloseCase(const Child& child) {
    Verdict verdict;
    HWND close = Find("PicClose");
    if (!verdict.Check(close != nullptr, "PicClose is not found")) return verdict;
    ClickAt(Centre(ScreenRect(close)));
    DWORD exitCode = 0;
    verdict.Check(WaitForEnd(child, kEndTimeout, exitCode),
                  "the program is still running after a click on PicClose");
    verdict.Note("ended by PicClose");
    return verdict;
  }

  // The pointer onto CmdApply, then onto CmdDefault: each shows its hover picture under the
  // pointer, and CmdApply its normal one again once the pointer has left it.
  Verdict HoverCase() {
    Verdict verdict;
    HWND apply = Find("CmdApply");
    HWND defaults = Find("CmdDefault");
    if (!verdict.Check(apply != nullptr && defaults != nullptr && ::IsWindowVisible(apply) != 0 &&
                           ::IsWindowVisible(defaults) != 0,
                       "CmdApply or CmdDefault is not found, or not visible")) {
      return verdict;
    }
    std::string error;
    const Picture* applyHover = bitmaps_.Get(106, error);
    const Picture* applyNormal = applyHover != nullptr ? bitmaps_.Get(107, error) : nullptr;
    const Picture* defaultHover = applyNormal != nullptr ? bitmaps_.Get(113, error) : nullptr;
    const Picture* defaultNormal = defaultHover != nullptr ? bitmaps_.Get(114, error) : nullptr;
    if (!verdict.Check(defaultNormal != nullptr, "waiting for the bitmaps: " + error)) {
      SaveShot(verdict, shots_, prefix_ + "hover");
      return verdict;
    }
    // Were a hover picture the normal one, the comparisons below would prove nothing.
    verdict.Check(Mismatches(*applyHover, *applyNormal) > 0 &&
                      Mismatches(*defaultHover, *defaultNormal) > 0,
                  "the hover bitmaps 106 and 113 equal the normal ones 107 and 114");
    // Each condition is settled before its message is made of what it saw.
    std::string seen;
    bool right = Shows(apply, *applyNormal, seen);
    verdict.Check(right, "before the pointer comes, CmdApply does not show 107: " + seen);
    MoveTo(Centre(ScreenRect(apply)));
    right = WaitUntil(kChangeTimeout, [&] { return Shows(apply, *applyHover, seen); });
    verdict.Check(right, "under the pointer CmdApply does not show 106: " + seen);
    MoveTo(Centre(ScreenRect(defaults)));
    right = WaitUntil(kChangeTimeout, [&] { return Shows(defaults, *defaultHover, seen); });
    verdict.Check(right, "under the pointer CmdDefault does not show 113: " + seen);
    right = Shows(apply, *applyNormal, seen);
    verdict.Check(right, "with the pointer on CmdDefault, CmdApply does not show 107: " + seen);
    SaveShot(verdict, shots_, prefix_ + "hover");
    verdict.Note("CmdApply 106 under the pointer; then CmdDefault 113 and CmdApply 107");
    return verdict;
  }

 private:
  HWND window_;
  Bitmaps bitmaps_;
  std::string shots_;
  std::string prefix_;
};

}  // namespace

void RunNavigation(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, Ending ending, const Report& report) {
  Child child;
  Verdict start;
  HWND window = StartWithMainWindow(program, "", true, child, start);
  if (window == nullptr) {
    report("navigation: start", start);
    return;
  }
  ::Sleep(500);  // let it paint
  Session session(window, program, screenshotFolder, shotPrefix);

  report("the window's background", session.BackgroundCase());
  std::vector<int> shown;
  report("page commands shown", session.Commands(shown));
  // The first page is on at the start: it is chosen last, after the others.
  std::vector<int> order;
  for (int element : shown) {
    if (element != 0) order.push_back(element);
  }
  order.push_back(0);
  for (int element : order) {
    const Page& page = kPages[element];
    report(std::string("page ") + std::to_string(element) + " \"" + page.title + "\"",
           session.PageCase(page));
  }
  for (const Zone& zone : kZones) {
    report(std::string("zone ") + (*zone.tree != '\0' ? "\"" + std::string(zone.caption) + "\""
                                                       : "gap at x " + std::to_string(zone.x)),
           session.ZoneCase(zone));
  }
  report("hover CmdApply, then CmdDefault", session.HoverCase());
  report("drag by the background", session.DragCase());
  if (ending == Ending::ByPicClose) {
    report("close with PicClose", session.CloseCase(child));
    if (IsRunning(child)) Terminate(child);
    return;
  }
  report("hide with PicMin", session.MinimiseCase(child));

  const Verdict end = EndThroughExit(window, child);
  if (!end.Passed()) report("navigation: end", end);
}

}  // namespace quorvane::e2e
