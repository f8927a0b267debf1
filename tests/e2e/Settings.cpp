#include "Settings.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Driving.h"
#include "Registry.h"
#include "WallpaperFiles.h"

namespace quorvane::e2e {

namespace {

const char kSettingsClass[] = "QuorvaneSettings";
constexpr DWORD kChangeTimeout = 5000;

const char kProductKey[] = "Software\\Talvenor\\Mirefold\\Quorvane";
const char* const kProductValues[] = {"Enable",    "TimeInterval", "ChangeOrder",
                                      "Position",  "AutoStart",    "Collections"};
const char kRunKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
const char kRunValue[] = "Talvenor Quorvane";
const char kDesktopKey[] = "Control Panel\\Desktop";

std::string ProfileValue(const std::string& section, const std::string& key,
                         const std::string& file) {
  char value[1024] = {};
  ::GetPrivateProfileStringA(section.c_str(), key.c_str(), "", value, sizeof value, file.c_str());
  return value;
}

// Where the desktop may show a bitmap larger than the screen: stretched over it, as the style
// values ask; or at its own size from the top left, or centred, as a desktop does that knows no
// stretching.
struct Placement {
  const char* name;
  int sourceX;  // the bitmap's pixel under the screen's (x, y), by the placement
  int sourceY;
};

Placement Place(const char* name, int x, int y, const BitmapFacts& facts, int screenWidth,
                int screenHeight) {
  const int bitmapHeight = std::abs(facts.height);
  if (name[0] == 's') {
    return {name, static_cast<int>(static_cast<long long>(x) * facts.width / screenWidth),
            static_cast<int>(static_cast<long long>(y) * bitmapHeight / screenHeight)};
  }
  if (name[0] == 't') return {name, x, y};
  return {name, x + std::max(0, (facts.width - screenWidth) / 2),
          y + std::max(0, (bitmapHeight - screenHeight) / 2)};
}

// Compares the screen with the bitmap at a grid of points above the taskbar, for each
// placement; the name of the first placement under which nearly every point matches, or empty.
std::string ShownPlacement(const std::string& path, const BitmapFacts& facts, std::string& seen) {
  const int screenWidth = ::GetSystemMetrics(SM_CXSCREEN);
  const int screenHeight = ::GetSystemMetrics(SM_CYSCREEN);
  const RECT area{0, 0, screenWidth, screenHeight - 48};
  std::vector<std::uint32_t> screen;
  std::string error;
  if (!CaptureScreen(area, screen, error)) {
    seen = error;
    return "";
  }
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    seen = "WP.bmp can't be opened";
    return "";
  }
  const int bitmapHeight = std::abs(facts.height);
  const long long stride = (static_cast<long long>(facts.width) * 3 + 3) / 4 * 4;
  constexpr int kColumns = 16;
  constexpr int kRows = 10;
  constexpr int kTolerance = 24;
  std::string found;
  for (const char* name : {"stretched", "top left, own size", "centred, own size"}) {
    int matched = 0;
    int compared = 0;
    for (int row = 0; row < kRows; ++row) {
      for (int column = 0; column < kColumns; ++column) {
        const int x = (2 * column + 1) * screenWidth / (2 * kColumns);
        const int y = (2 * row + 1) * (screenHeight - 48) / (2 * kRows);
        const Placement at = Place(name, x, y, facts, screenWidth, screenHeight);
        if (at.sourceX < 0 || at.sourceX >= facts.width || at.sourceY < 0 ||
            at.sourceY >= bitmapHeight) {
          continue;
        }
        const long long line = facts.height > 0 ? bitmapHeight - 1 - at.sourceY : at.sourceY;
        unsigned char bgr[3] = {};
        if (std::fseek(file, static_cast<long>(facts.offset + line * stride + at.sourceX * 3),
                       SEEK_SET) != 0 ||
            std::fread(bgr, 1, 3, file) != 3) {
          continue;
        }
        const std::uint32_t shown = screen[static_cast<std::size_t>(y) * screenWidth + x];
        const int dr = std::abs(static_cast<int>((shown >> 16) & 0xFF) - bgr[2]);
        const int dg = std::abs(static_cast<int>((shown >> 8) & 0xFF) - bgr[1]);
        const int db = std::abs(static_cast<int>(shown & 0xFF) - bgr[0]);
        ++compared;
        matched += dr <= kTolerance && dg <= kTolerance && db <= kTolerance ? 1 : 0;
      }
    }
    seen += (seen.empty() ? "" : ", ") + std::string(name) + " " + std::to_string(matched) + "/" +
            std::to_string(compared);
    if (found.empty() && compared > 0 && matched * 10 >= compared * 9) found = name;
  }
  std::fclose(file);
  return found;
}

UINT TreeCheckState(HWND tree, int position) {
  HTREEITEM item = reinterpret_cast<HTREEITEM>(::SendMessageA(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0));
  for (int i = 1; i < position && item != nullptr; ++i) {
    item = reinterpret_cast<HTREEITEM>(
        ::SendMessageA(tree, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)));
  }
  if (item == nullptr) return 0;
  const auto state = static_cast<UINT>(::SendMessageA(
      tree, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_STATEIMAGEMASK));
  return (state & TVIS_STATEIMAGEMASK) >> 12;
}

// What an edit of another process holds: asked of the edit itself, since the window text kept
// for another process is only the one it was made with.
std::string EditText(HWND edit) {
  char text[64] = {};
  ::SendMessageA(edit, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

bool Checked(HWND button) { return ::SendMessageA(button, BM_GETCHECK, 0, 0) == BST_CHECKED; }

class SettingsSession {
 public:
  SettingsSession(HWND main, const Child& child, std::string shots,
                  std::vector<ManifestPicture> pictures)
      : main_(main), child_(child), shots_(std::move(shots)), pictures_(std::move(pictures)) {
    ticked_ = pictures_.front().collection;
    for (const ManifestPicture& picture : pictures_) collections_.insert(picture.collection);
  }

  // On the "Wallpaper" page, a click on CmdSettings opens the dialog, owned by the main window,
  // which it disables; its controls are found by their names and show the stored settings,
  // which here are the defaults.
  Verdict OpenCase() {
    Verdict verdict;
    HWND page = FindControl(main_, "CmdMenu(3)");
    if (!verdict.Check(page != nullptr, "CmdMenu(3) is not found")) return verdict;
    ClickAt(Centre(ScreenRect(page)));
    HWND command = FindControl(main_, "CmdSettings");
    const bool shown = WaitUntil(kChangeTimeout, [&] {
      return command != nullptr && ::IsWindowVisible(command) != 0;
    });
    if (!verdict.Check(shown, "CmdSettings is not shown after a click on CmdMenu(3)")) {
      return verdict;
    }
    ClickAt(Centre(ScreenRect(command)));
    verdict.Check(WaitUntil(kChangeTimeout, [&] {
                    dialog_ = FindShownWindow(child_.id, kSettingsClass);
                    return dialog_ != nullptr;
                  }),
                  "no settings dialog after a click on CmdSettings");
    if (!verdict.Passed()) return verdict;
    ::Sleep(500);  // let it paint
    verdict.Check(::GetWindow(dialog_, GW_OWNER) == main_, "the dialog is not owned by the main window");
    verdict.Check(::IsWindowEnabled(main_) == 0, "the main window is not disabled under the dialog");

    for (const char* name :
         {"ChkEnable", "CboMinutes", "OptSequentially", "OptRandomally", "OptTileImages",
          "OptCenterImage", "OptStrechImage", "TvCollections", "ChkLoadWallpaper", "CmdSave",
          "Label1", "Frame1", "Frame2", "Picture1", "Picture2"}) {
      verdict.Check(FindControl(dialog_, name) != nullptr,
                    std::string("the dialog does not give ") + name + " by its name");
    }
    tree_ = FindControl(dialog_, "TvCollections");
    HWND stretch = FindControl(dialog_, "OptStrechImage");
    if (!verdict.Passed()) return verdict;
    verdict.Check(TextOf(tree_) == "TvCollections",
                  "TvCollections' window text is \"" + TextOf(tree_) + "\"");
    verdict.Check(TextOf(stretch) == "Strech the image to fit desktop",
                  "OptStrechImage shows \"" + TextOf(stretch) + "\"");
    verdict.Check(Checked(FindControl(dialog_, "ChkEnable")), "ChkEnable is not ticked");
    verdict.Check(Checked(FindControl(dialog_, "OptSequentially")),
                  "OptSequentially is not checked");
    verdict.Check(Checked(FindControl(dialog_, "OptTileImages")), "OptTileImages is not checked");
    verdict.Check(!Checked(FindControl(dialog_, "ChkLoadWallpaper")),
                  "ChkLoadWallpaper is ticked with no run value");
    HWND minutes = ::FindWindowExA(FindControl(dialog_, "CboMinutes"), nullptr, "Edit", nullptr);
    verdict.Check(minutes != nullptr && EditText(minutes) == "5",
                  "CboMinutes does not show 5 but \"" + EditText(minutes) + "\"");

    std::vector<RemoteItem> items;
    int count = 0;
    std::string error;
    if (!verdict.Check(ReadTreeView(tree_, items, count, error), "TvCollections: " + error)) {
      return verdict;
    }
    std::set<std::string> listed;
    for (std::size_t i = 0; i < items.size(); ++i) {
      listed.insert(items[i].text);
      if (items[i].text == ticked_) tickedPosition_ = static_cast<int>(i) + 1;
      verdict.Check(TreeCheckState(tree_, static_cast<int>(i) + 1) == 1,
                    "\"" + items[i].text + "\" shows ticked or no tick box");
    }
    for (const std::string& name : collections_) {
      verdict.Check(listed.count(name) == 1, "TvCollections does not list \"" + name + "\"");
    }
    verdict.Check(count == static_cast<int>(collections_.size()),
                  "TvCollections has " + std::to_string(count) + " nodes");
    if (verdict.Passed()) {
      verdict.Note("owned by the main window, which is disabled; " + std::to_string(count) +
                   " collections, the defaults shown");
    }
    return verdict;
  }

  // A click on the tick box of the first collection, on OptStrechImage and on ChkLoadWallpaper;
  // then CmdSave. The dialog goes and the main window comes back.
  Verdict SaveCase() {
    Verdict verdict;
    if (!verdict.Check(dialog_ != nullptr && tickedPosition_ != 0,
                       "no dialog, or \"" + ticked_ + "\" not listed")) {
      return verdict;
    }
    RECT text{};
    std::string error;
    if (!verdict.Check(TreeItemRect(tree_, tickedPosition_, text, error), error)) return verdict;
    // The tick box stands just before the node's text.
    ClickAt(POINT{text.left - 8, (text.top + text.bottom) / 2});
    verdict.Check(WaitUntil(kChangeTimeout, [&] { return TreeCheckState(tree_, tickedPosition_) == 2; }),
                  "a click on the tick box of \"" + ticked_ + "\" did not tick it");
    HWND stretch = FindControl(dialog_, "OptStrechImage");
    HWND tile = FindControl(dialog_, "OptTileImages");
    ClickAt(Centre(ScreenRect(stretch)));
    verdict.Check(WaitUntil(kChangeTimeout, [&] { return Checked(stretch) && !Checked(tile); }),
                  "a click on OptStrechImage did not check it alone");
    HWND start = FindControl(dialog_, "ChkLoadWallpaper");
    ClickAt(Centre(ScreenRect(start)));
    verdict.Check(WaitUntil(kChangeTimeout, [&] { return Checked(start); }),
                  "a click on ChkLoadWallpaper did not tick it");
    ::Sleep(300);
    SaveShot(verdict, shots_, "e2e-settings");
    HWND save = FindControl(dialog_, "CmdSave");
    ClickAt(Centre(ScreenRect(save)));
    verdict.Check(WaitUntil(kWallpaperTimeout, [&] { return ::IsWindow(dialog_) == 0; }),
                  "the dialog is still there after a click on CmdSave");
    verdict.Check(WaitUntil(kChangeTimeout, [&] { return ::IsWindowEnabled(main_) != 0; }),
                  "the main window is still disabled after the dialog closed");
    if (verdict.Passed()) verdict.Note("ticked \"" + ticked_ + "\", stretch, start with Windows; saved");
    return verdict;
  }

  // What the save wrote: the settings under the program's key, the run value with the
  // program's own path, and Files.ini listing the ticked collection's pictures alone.
  Verdict SavedCase(const std::vector<KeptValue*>& product, const KeptValue& run) {
    Verdict verdict;
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"Enable", "1"},    {"TimeInterval", "5"}, {"ChangeOrder", "1"},
        {"Position", "3"},  {"AutoStart", "1"},    {"Collections", ticked_ + ";"}};
    for (const auto& [name, value] : expected) {
      for (const KeptValue* kept : product) {
        if (kept->Name() != name) continue;
        const std::optional<std::string> now = kept->Now();
        verdict.Check(now == value,
                      name + " is " + Shown(now) + ", not \"" + value + "\"");
      }
    }
    const std::string runText = OwnFolder() + "quorvane.exe /background";
    verdict.Check(run.Now() == runText,
                  "the run value is " + Shown(run.Now()) + ", not \"" + runText + "\"");
    const std::string index = DataFolder() + "Files.ini";
    std::set<std::string> expectedEntries;
    for (const ManifestPicture& picture : pictures_) {
      if (picture.collection == ticked_) expectedEntries.insert(ticked_ + "\\" + picture.file);
    }
    const std::string total = ProfileValue("Count", "Total", index);
    verdict.Check(total == std::to_string(expectedEntries.size()),
                  "Files.ini's Total is \"" + total + "\", not " +
                      std::to_string(expectedEntries.size()));
    std::set<std::string> entries;
    for (std::size_t i = 1; i <= expectedEntries.size(); ++i) {
      entries.insert(ProfileValue("Files", std::to_string(i), index));
    }
    verdict.Check(entries == expectedEntries, "Files.ini does not list the pictures of \"" +
                                                  ticked_ + "\" once each");
    first_ = ProfileValue("Files", "1", index);
    if (verdict.Passed()) {
      verdict.Note("the six values, the run value \"" + runText + "\", Files.ini with " + total +
                   " entries, the first \"" + first_ + "\"");
    }
    return verdict;
  }

  // "Quorvane.ChangeWallpaper": the first entry becomes WP.bmp, a 24-bit bitmap of the
  // picture's size; the style values say stretched; the system names WP.bmp as its wallpaper;
  // and the desktop shows a picture.
  Verdict ChangeCase(const KeptValue& tile, const KeptValue& style, const KeptValue& wallpaper) {
    Verdict verdict;
    const std::string folder = DataFolder();
    const std::string bitmap = folder + "WP.bmp";
    const ManifestPicture* picture = nullptr;
    for (const ManifestPicture& p : pictures_) {
      if (p.collection + "\\" + p.file == first_) picture = &p;
    }
    if (!verdict.Check(picture != nullptr, "Files.ini's first entry \"" + first_ +
                                               "\" is no picture that was packed")) {
      return verdict;
    }
    const FILETIME before = WriteTimeOf(bitmap);
    if (!verdict.Check(PostRegistered(main_, kChangeWallpaperMessage),
                       "\"Quorvane.ChangeWallpaper\" could not be posted")) {
      return verdict;
    }
    // The program tells the system last, which stores the path in the user's profile.
    const bool changed = WaitUntil(kWallpaperTimeout, [&] {
      const FILETIME now = WriteTimeOf(bitmap);
      const std::optional<std::string> stored = wallpaper.Now();
      return ::CompareFileTime(&now, &before) != 0 && stored && SameText(*stored, bitmap);
    });
    verdict.Check(changed, "after " + std::to_string(kWallpaperTimeout / 1000) +
                               " s WP.bmp is not new, or the profile's wallpaper is " +
                               Shown(wallpaper.Now()) + ", not \"" + bitmap + "\"");
    if (!changed) return verdict;
    const std::string system = DeskWallpaper();
    verdict.Check(SameText(system, bitmap), "SystemParametersInfoA(SPI_GETDESKWALLPAPER) names \"" +
                                                system + "\", not \"" + bitmap + "\"");
    ::Sleep(500);  // the file is renamed into place whole; let the desktop draw
    const BitmapFacts facts = ReadBitmapFacts(bitmap);
    CheckBitmapOf(verdict, facts, *picture);
    verdict.Check(tile.Now() == std::string("0"),
                  "TileWallpaper is " + Shown(tile.Now()) + ", not \"0\"");
    verdict.Check(style.Now() == std::string("2"),
                  "WallpaperStyle is " + Shown(style.Now()) + ", not \"2\"");

    // The main window out of the way, the whole desktop shows the new wallpaper.
    HWND minimise = FindControl(main_, "PicMin");
    if (minimise != nullptr) {
      ClickAt(Centre(ScreenRect(minimise)));
      WaitUntil(kChangeTimeout, [&] { return ::IsWindowVisible(main_) == 0; });
    }
    ::Sleep(1000);
    std::string seen;
    const std::string placement = ShownPlacement(bitmap, facts, seen);
    verdict.Check(!placement.empty(), "the desktop does not show WP.bmp (points matching: " +
                                          seen + ")");
    SaveShot(verdict, shots_, "e2e-wallpaper");
    if (verdict.Passed()) {
      verdict.Note("WP.bmp " + std::to_string(facts.width) + "x" + std::to_string(facts.height) +
                   " 24-bit of " + picture->file + ", TileWallpaper \"0\", WallpaperStyle \"2\", "
                   "the system's wallpaper " + system + ", the desktop shows it " + placement +
                   " (" + seen + ")");
    }
    return verdict;
  }

 private:
  HWND main_;
  const Child& child_;
  std::string shots_;
  std::vector<ManifestPicture> pictures_;
  std::string ticked_;
  std::set<std::string> collections_;
  HWND dialog_ = nullptr;
  HWND tree_ = nullptr;
  int tickedPosition_ = 0;
  std::string first_;
};

}  // namespace

void RunSettings(const std::string& program, const std::string& screenshotFolder,
                 const std::string& manifest, const Report& report) {
  const std::vector<ManifestPicture> pictures = ReadManifest(manifest);
  Verdict start;
  if (!start.Check(!pictures.empty(), "no pictures in the manifest " + manifest)) {
    report("settings: start", start);
    return;
  }
  // Every value the cases touch is put back when these go, after the program has ended; the
  // system's wallpaper is set back first.
  std::vector<std::unique_ptr<KeptValue>> product;
  std::vector<KeptValue*> productViews;
  for (const char* name : kProductValues) {
    product.push_back(std::make_unique<KeptValue>(HKEY_CURRENT_USER, kProductKey, name));
    productViews.push_back(product.back().get());
  }
  KeptValue run(HKEY_CURRENT_USER, kRunKey, kRunValue);
  KeptValue tile(HKEY_CURRENT_USER, kDesktopKey, "TileWallpaper");
  KeptValue style(HKEY_CURRENT_USER, kDesktopKey, "WallpaperStyle");
  KeptValue wallpaper(HKEY_CURRENT_USER, kDesktopKey, "Wallpaper");
  const std::string previousWallpaper = wallpaper.Now().value_or("");
  // The dialog starts from the defaults, and from no start with Windows.
  for (const auto& value : product) value->Remove();
  run.Remove();

  Child child;
  HWND window = StartWithMainWindow(program, "", true, child, start);
  if (window == nullptr) {
    report("settings: start", start);
    return;
  }
  ::Sleep(500);  // let it paint
  SettingsSession session(window, child, screenshotFolder, pictures);
  const Verdict opened = session.OpenCase();
  report("settings: CmdSettings opens the dialog", opened);
  if (opened.Passed()) {
    const Verdict saved = session.SaveCase();
    report("settings: tick, stretch, start with Windows, CmdSave", saved);
    if (saved.Passed()) {
      const Verdict written = session.SavedCase(productViews, run);
      report("settings: what the save wrote", written);
      if (written.Passed()) {
        report("settings: \"Quorvane.ChangeWallpaper\" sets WP.bmp stretched",
               session.ChangeCase(tile, style, wallpaper));
      }
    }
  }

  const Verdict end = EndThroughExit(window, child);
  if (!end.Passed()) report("settings: end", end);
  ::SystemParametersInfoA(SPI_SETDESKWALLPAPER, 0, const_cast<char*>(previousWallpaper.c_str()),
                          SPIF_UPDATEINIFILE);
}

}  // namespace quorvane::e2e
