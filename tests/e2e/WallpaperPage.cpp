#include "WallpaperPage.h"

#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "WallpaperFiles.h"

namespace quorvane::e2e {

namespace {

// A thumbnail is 80 by 96 pixels; five stand in a row.
constexpr int kThumbWidth = 80;
constexpr int kThumbHeight = 96;
constexpr int kColumns = 5;
// Decoding a score of wallpapers of several million pixels under Wine.
constexpr DWORD kFillTimeout = 240000;

struct StripPicture {
  std::string file;
  int width = 0;
  int height = 0;
  long long bytes = 0;
};

bool ReadStripManifest(const std::string& path, std::string& collection,
                       std::vector<StripPicture>& pictures) {
  std::ifstream in(path);
  if (!in) return false;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::istringstream fields(line);
    std::string first;
    std::getline(fields, first, '\t');
    if (first == "collection") {
      std::getline(fields, collection, '\t');
      continue;
    }
    StripPicture picture;
    picture.file = first;
    if (fields >> picture.width >> picture.height >> picture.bytes) pictures.push_back(picture);
  }
  return !collection.empty() && !pictures.empty();
}

// A thumbnail's caption as the strip must show it, measured here with the captions' face (Verdana
// of 8 points): the file name whole when it is no wider than the thumbnail's width less one
// pixel; otherwise cut, letter by letter from its end, to that width less the width of "...",
// and "..." added. Widths in twips, 15 to the pixel, as the program measures them.
class CaptionRule {
 public:
  CaptionRule()
      : dc_(::CreateCompatibleDC(nullptr)),
        font_(::CreateFontA(-::MulDiv(8, 96, 72), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                            DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                            DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, "Verdana")),
        previous_(dc_ != nullptr && font_ != nullptr ? ::SelectObject(dc_, font_) : nullptr) {}
  ~CaptionRule() {
    if (previous_ != nullptr) ::SelectObject(dc_, previous_);
    if (font_ != nullptr) ::DeleteObject(font_);
    if (dc_ != nullptr) ::DeleteDC(dc_);
  }
  CaptionRule(const CaptionRule&) = delete;
  CaptionRule& operator=(const CaptionRule&) = delete;

  bool Ready() const { return previous_ != nullptr; }

  std::string CaptionOf(const std::string& name) const {
    int limit = kThumbWidth * 15 - 15;
    std::string caption = name;
    const bool cut = Width(caption) > limit;
    if (cut) limit -= Width("...");
    while (!caption.empty() && Width(caption) > limit) caption.pop_back();
    return cut ? caption + "..." : caption;
  }

 private:
  int Width(const std::string& text) const {
    SIZE extent{};
    ::GetTextExtentPoint32A(dc_, text.data(), static_cast<int>(text.size()), &extent);
    return static_cast<int>(extent.cx) * 15;
  }

  HDC dc_;
  HFONT font_;
  HGDIOBJ previous_;
};

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string DesktopValue(const char* name) {
  char value[1024] = {};
  DWORD size = sizeof value;
  if (::RegGetValueA(HKEY_CURRENT_USER, "Control Panel\\Desktop", name, RRF_RT_REG_SZ, nullptr,
                     value, &size) != ERROR_SUCCESS) {
    return "(none)";
  }
  return value;
}

long long FileBytes(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) == 0) return -1;
  return (static_cast<long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

class PageRun {
 public:
  PageRun(HWND main, std::string shots, std::vector<StripPicture> pictures)
      : main_(main), shots_(std::move(shots)), pictures_(std::move(pictures)) {}

  HWND Thumb(std::size_t index, DWORD wait = 5000) const {
    return FindControl(main_, "optThumb(" + std::to_string(index) + ")", wait);
  }

  Verdict Fill() {
    Verdict verdict;
    HWND page = FindControl(main_, "CmdMenu(3)");
    if (!verdict.Check(page != nullptr, "CmdMenu(3) is not found")) return verdict;
    ClickAt(Centre(ScreenRect(page)));
    const std::size_t count = pictures_.size();
    HWND tree = FindControl(main_, "TvCollections");
    // The strip is done when its last thumbnail is there and the tree is enabled again.
    const bool filled = WaitUntil(kFillTimeout, [&] {
      HWND last = Thumb(count - 1, 1000);
      return last != nullptr && ::IsWindowVisible(last) != 0 && tree != nullptr &&
             ::IsWindowEnabled(tree) != 0;
    });
    if (!verdict.Check(filled, "the strip did not fill with " + std::to_string(count) +
                                   " thumbnails in time")) {
      return verdict;
    }
    verdict.Check(Thumb(count, 500) == nullptr,
                  "there is a thumbnail more than the collection's " + std::to_string(count) +
                      " decodable pictures (the .pcx or the undecodable file?)");
    const RECT first = ScreenRect(Thumb(0));
    for (std::size_t i = 0; i < count; ++i) {
      HWND thumb = Thumb(i);
      if (!verdict.Check(thumb != nullptr, "optThumb(" + std::to_string(i) + ") is missing")) {
        continue;
      }
      const RECT at = ScreenRect(thumb);
      const int wantX = first.left + static_cast<int>(i % kColumns) * kThumbWidth;
      const int wantY = first.top + static_cast<int>(i / kColumns) * kThumbHeight;
      verdict.Check(at.left == wantX && at.top == wantY &&
                        at.right - at.left == kThumbWidth && at.bottom - at.top == kThumbHeight,
                    "optThumb(" + std::to_string(i) + ") stands at " + Describe(at) +
                        ", not at " + std::to_string(wantX) + "," + std::to_string(wantY));
    }
    const int shortened = CheckCaptions(verdict);
    HWND bar = FindControl(main_, "vsbSlide");
    verdict.Check(bar != nullptr && ::IsWindowEnabled(bar) != 0,
                  "vsbSlide is not enabled for a strip of several rows");
    SaveShot(verdict, shots_, "e2e-strip");
    verdict.Note(std::to_string(count) + " thumbnails in rows of 5, their captions in the "
                 "collection's order, " + std::to_string(shortened) + " of them shortened");
    return verdict;
  }

  // The captions the thumbnails' windows carry, one by one in the strip's order, against the
  // manifest's names; the number of shortened ones, of which there must be at least one.
  int CheckCaptions(Verdict& verdict) const {
    const CaptionRule rule;
    if (!verdict.Check(rule.Ready(), "the captions' face could not be made here")) return 0;
    int shortened = 0;
    for (std::size_t i = 0; i < pictures_.size(); ++i) {
      HWND thumb = Thumb(i);
      if (thumb == nullptr) continue;
      const std::string shown = TextOf(thumb);
      const std::string expected = rule.CaptionOf(pictures_[i].file);
      verdict.Check(shown == expected, "optThumb(" + std::to_string(i) + ") carries \"" + shown +
                                           "\", not \"" + expected + "\" (" +
                                           pictures_[i].file + ")");
      if (shown == expected && expected != pictures_[i].file) {
        verdict.Check(expected.size() > 3 && expected.substr(expected.size() - 3) == "...",
                      "the shortened caption of " + pictures_[i].file + " ends in no \"...\"");
        ++shortened;
      }
    }
    verdict.Check(shortened > 0, "no caption of the strip was shortened: the collection needs a "
                                 "name wider than a thumbnail");
    return shortened;
  }

  Verdict ScrollToEnd() {
    Verdict verdict;
    HWND bar = FindControl(main_, "vsbSlide");
    HWND frame = FindControl(main_, "picFrame");
    if (!verdict.Check(bar != nullptr && frame != nullptr, "vsbSlide or picFrame is missing")) {
      return verdict;
    }
    const RECT area = ScreenRect(bar);
    const int arrow = ::GetSystemMetrics(SM_CYVSCROLL);
    // Clicks on the track under the thumb, a page at a time, as far as it goes.
    const POINT track{(area.left + area.right) / 2, area.bottom - arrow - 3};
    for (int i = 0; i < 12; ++i) {
      ClickAt(track);
      ::Sleep(150);
    }
    HWND last = Thumb(pictures_.size() - 1);
    const RECT window = ScreenRect(frame);
    const RECT shown = ScreenRect(last);
    verdict.Check(shown.top >= window.top && shown.bottom <= window.bottom,
                  "the last thumbnail is not in the window after scrolling: " + Describe(shown) +
                      " in " + Describe(window));
    SaveShot(verdict, shots_, "e2e-strip-scrolled");
    return verdict;
  }

  Verdict SetNow(const std::string& data) {
    Verdict verdict;
    const std::size_t index = pictures_.size() - 1;
    const StripPicture& picture = pictures_[index];
    const std::string tile = DesktopValue("TileWallpaper");
    const std::string style = DesktopValue("WallpaperStyle");
    const FILETIME before = WriteTimeOf(data + "WP.bmp");
    ClickAt(Centre(ScreenRect(Thumb(index))));
    HWND command = FindControl(main_, "CmdSetAsWallpaper");
    if (!verdict.Check(command != nullptr, "CmdSetAsWallpaper is missing")) return verdict;
    ClickAt(Centre(ScreenRect(command)));
    const bool written = WaitUntil(kWallpaperTimeout, [&] {
      const FILETIME now = WriteTimeOf(data + "WP.bmp");
      return ::CompareFileTime(&now, &before) > 0;
    });
    if (!verdict.Check(written, "WP.bmp was not written")) return verdict;
    ::Sleep(500);
    ManifestPicture expected{"", picture.file, picture.width, picture.height};
    CheckBitmapOf(verdict, ReadBitmapFacts(data + "WP.bmp"), expected);
    verdict.Check(SameText(DesktopValue("Wallpaper"), data + "WP.bmp"),
                  "the wallpaper value is " + DesktopValue("Wallpaper"));
    verdict.Check(DesktopValue("TileWallpaper") == tile && DesktopValue("WallpaperStyle") == style,
                  "the style values changed");
    verdict.Note(picture.file + " set: WP.bmp " + std::to_string(picture.width) + "x" +
                 std::to_string(picture.height));
    return verdict;
  }

  Verdict OpenInViewer(const std::string& data, const std::string& record) {
    Verdict verdict;
    auto found = std::find_if(pictures_.begin(), pictures_.end(), [](const StripPicture& p) {
      return Lower(p.file).size() > 4 && Lower(p.file).substr(Lower(p.file).size() - 4) == ".dib";
    });
    if (!verdict.Check(found != pictures_.end(), "the manifest has no .dib picture")) {
      return verdict;
    }
    const auto index = static_cast<std::size_t>(found - pictures_.begin());
    // Back to the top, then down to the row of the picture.
    HWND bar = FindControl(main_, "vsbSlide");
    const RECT area = ScreenRect(bar);
    const int arrow = ::GetSystemMetrics(SM_CYVSCROLL);
    for (int i = 0; i < 12; ++i) {
      ClickAt(POINT{(area.left + area.right) / 2, area.top + arrow + 3});
      ::Sleep(100);
    }
    HWND frame = FindControl(main_, "picFrame");
    for (int i = 0; i < 40; ++i) {
      const RECT shown = ScreenRect(Thumb(index));
      const RECT window = ScreenRect(frame);
      if (shown.top >= window.top && shown.bottom <= window.bottom) break;
      ClickAt(POINT{(area.left + area.right) / 2, area.bottom - arrow / 2});
      ::Sleep(100);
    }
    ::DeleteFileA(record.c_str());
    DoubleClickAt(Centre(ScreenRect(Thumb(index))));
    std::string started;
    const bool ran = WaitUntil(30000, [&] {
      std::ifstream in(record);
      return in && std::getline(in, started) && !started.empty();
    });
    if (!verdict.Check(ran, "the viewer was not started")) return verdict;
    while (!started.empty() && (started.back() == '\r' || started.back() == '\n')) {
      started.pop_back();
    }
    verdict.Check(SameText(started, data + "Temp.DIB"),
                  "the viewer was started with " + started + ", not " + data + "Temp.DIB");
    verdict.Check(FileBytes(data + "Temp.DIB") == found->bytes,
                  "Temp.DIB is not " + found->file + " (" + std::to_string(found->bytes) +
                      " bytes)");
    verdict.Note("viewer started with " + started);
    return verdict;
  }

 private:
  HWND main_;
  std::string shots_;
  std::vector<StripPicture> pictures_;
};

}  // namespace

int RecordViewer(const std::string& record, const std::string& file) {
  std::ofstream out(record, std::ios::trunc);
  out << file << "\n";
  return out ? 0 : 1;
}

void RunWallpaperPage(const std::string& program, const std::string& screenshotFolder,
                      const std::string& manifest, const std::string& viewerRecord,
                      const Report& report) {
  std::string collection;
  std::vector<StripPicture> pictures;
  if (!ReadStripManifest(manifest, collection, pictures)) {
    Verdict verdict;
    verdict.Check(false, "the manifest " + manifest + " can't be read");
    report("wallpaper page", verdict);
    return;
  }
  Child child;
  Verdict start;
  HWND main = StartWithMainWindow(program, "", true, child, start);
  if (main == nullptr) {
    report("wallpaper page: start", start);
    return;
  }
  const std::string data = DataFolder();
  PageRun run(main, screenshotFolder, pictures);
  const Verdict filled = run.Fill();
  report("wallpaper page: the strip of " + collection, filled);
  if (filled.Passed()) {
    report("wallpaper page: scrolled to the last row", run.ScrollToEnd());
    report("wallpaper page: set as wallpaper now", run.SetNow(data));
    report("wallpaper page: double click opens the viewer", run.OpenInViewer(data, viewerRecord));
  }
  report("wallpaper page: ends through Quorvane.Exit", EndThroughExit(main, child));
}

}  // namespace quorvane::e2e
