#include "WallpaperFailures.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "Driving.h"
#include "Registry.h"
#include "WallpaperFiles.h"

namespace quorvane::e2e {

namespace {

// The caption of every box the program shows without one of its own.
const char kBoxTitle[] = "Quorvane";
// A collection that Files.ini names and whose archive is not in the data folder.
const char kVanished[] = "Vanished";
// How long a failed change is given to show its report; a failure comes before any picture is
// decoded.
constexpr DWORD kReportTimeout = 20000;
constexpr DWORD kChangeTimeout = 5000;
// How long the program is given to show a box that must not come.
constexpr DWORD kNoBoxWait = 1500;

// One way to make the change fail: what Files.ini says, and the report it must give.
struct FailureCase {
  std::string name;
  std::string shot;
  std::string index;        // the whole of Files.ini
  std::string description;  // the box's text, and the end of the log's line
  int number;               // the failure's number in the log's line
};

// Files.ini as the settings write it: `total` under [Count], the entries under [Files].
std::string FilesIni(const std::string& total, const std::vector<std::string>& entries) {
  std::string text = "[Files]\r\n";
  for (std::size_t i = 0; i < entries.size(); ++i) {
    text += std::to_string(i + 1) + "=" + entries[i] + "\r\n";
  }
  return text + "[Count]\r\nTotal=" + total + "\r\n";
}

bool WriteWholeFile(const std::string& path, const std::string& text) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && written;
}

bool FileThere(const std::string& path) {
  return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// The name the tick gives the picture it decodes: Temp.<extension in capitals>.
std::string TempNameOf(const std::string& file) {
  const std::size_t point = file.rfind('.');
  std::string extension = point == std::string::npos ? "(NONE)" : file.substr(point + 1);
  for (char& c : extension) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return "Temp." + extension;
}

// The lines `now` has after `before`, when it begins with it; all of them otherwise.
std::vector<std::string> LinesAfter(const std::string& before, const std::string& now) {
  const std::size_t from = now.compare(0, before.size(), before) == 0 ? before.size() : 0;
  std::vector<std::string> lines;
  std::size_t at = from;
  while (at < now.size()) {
    const std::size_t end = now.find('\n', at);
    std::string line = now.substr(at, end == std::string::npos ? std::string::npos : end - at);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) lines.push_back(line);
    if (end == std::string::npos) break;
    at = end + 1;
  }
  return lines;
}

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t from = 0;
  for (;;) {
    const std::size_t tab = line.find('\t', from);
    fields.push_back(line.substr(from, tab == std::string::npos ? std::string::npos : tab - from));
    if (tab == std::string::npos) return fields;
    from = tab + 1;
  }
}

std::string Escaped(const std::string& text) {
  std::string shown;
  for (const char c : text) shown += c == '\t' ? std::string("\\t") : std::string(1, c);
  return shown;
}

class FailureSession {
 public:
  FailureSession(HWND main, const Child& child, std::string shots, std::string folder)
      : main_(main), child_(child), shots_(std::move(shots)), folder_(std::move(folder)) {}

  // The program has listed its collections, which it does just before it reads the settings
  // the change goes by: a change asked for earlier could find it not yet on.
  bool Loaded() const {
    HWND tree = FindControl(main_, "TvCollections");
    DWORD_PTR count = 0;
    return tree != nullptr && ::SendMessageTimeoutA(tree, TVM_GETCOUNT, 0, 0, SMTO_ABORTIFHUNG,
                                                    kChangeTimeout, &count) != 0 &&
           count > 0;
  }

  // Files.ini made to fail the change, then "Quorvane.ChangeWallpaper": a box "Quorvane" tells
  // the failure and goes with a click on its OK button; the log has gained one line of it; the
  // process runs on, its main window answers and stays hidden; no wallpaper was made or set.
  Verdict FailedChange(const FailureCase& failure, const KeptValue& wallpaper) {
    Verdict verdict;
    const std::string log = folder_ + "Quorvane.log";
    if (!verdict.Check(WriteWholeFile(folder_ + "Files.ini", failure.index),
                       "Files.ini can't be written")) {
      return verdict;
    }
    const std::string logBefore = ReadFileText(log);
    const std::optional<std::string> wallpaperBefore = wallpaper.Now();
    if (!verdict.Check(PostRegistered(main_, kChangeWallpaperMessage),
                       "\"Quorvane.ChangeWallpaper\" could not be posted")) {
      return verdict;
    }
    HWND box = nullptr;
    const bool shown =
        WaitUntil(kReportTimeout, [&] { return (box = DialogOf(child_.id)) != nullptr; });
    if (!verdict.Check(shown, "no message box within " + std::to_string(kReportTimeout / 1000) +
                                  " s" + (IsRunning(child_) ? "" : " (the process ended)"))) {
      SaveShot(verdict, shots_, failure.shot);
      return verdict;
    }
    const std::string title = TextOf(box);
    verdict.Check(title == kBoxTitle,
                  "the box is titled \"" + title + "\", not \"" + kBoxTitle + "\"");
    std::string text;
    const bool told =
        WaitUntil(kChangeTimeout, [&] { return (text = DialogText(box)) == failure.description; });
    verdict.Check(told, "the box says \"" + text + "\", not \"" + failure.description + "\"");
    ::Sleep(300);  // let it paint before the picture is taken
    SaveShot(verdict, shots_, failure.shot);
    ClickDialogButton(verdict, box, IDOK, "OK", kChangeTimeout);

    std::vector<std::string> added;
    WaitUntil(kChangeTimeout,
              [&] { return !(added = LinesAfter(logBefore, ReadFileText(log))).empty(); });
    if (verdict.Check(added.size() == 1, "Quorvane.log gained " + std::to_string(added.size()) +
                                             " lines, not one")) {
      const std::vector<std::string> fields = Fields(added.front());
      const std::string wanted = "FrmMain\tevent\tline 0\terror " +
                                 std::to_string(failure.number) + "\t" + failure.description;
      const std::size_t tab = added.front().find('\t');
      verdict.Check(fields.size() == 6 && !fields[0].empty() && tab != std::string::npos &&
                        added.front().substr(tab + 1) == wanted,
                    "the log's new line is \"" + Escaped(added.front()) + "\", not \"<time>\\t" +
                        Escaped(wanted) + "\"");
    }

    verdict.Check(IsRunning(child_), "the process ended after the report");
    DWORD_PTR answer = 0;
    verdict.Check(::SendMessageTimeoutA(main_, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, kChangeTimeout,
                                        &answer) != 0,
                  "the main window does not answer after the report");
    verdict.Check(FindControl(main_, "PicPopup") != nullptr,
                  "the main window does not give PicPopup by its name after the report");
    verdict.Check(::IsWindowVisible(main_) == 0, "the resident main window was shown");
    ::Sleep(kNoBoxWait);
    verdict.Check(DialogOf(child_.id) == nullptr, "another box came after OK");
    verdict.Check(!FileThere(folder_ + "WP.bmp"), "WP.bmp was made all the same");
    verdict.Check(wallpaper.Now() == wallpaperBefore,
                  "the system's wallpaper became " + Shown(wallpaper.Now()));
    if (verdict.Passed()) {
      verdict.Note("box \"" + title + "\" says \"" + text + "\", closed with OK; log: \"" +
                   Escaped(added.front()) + "\"; still running, the window answers");
    }
    return verdict;
  }

  // A good Files.ini again, then "Quorvane.ChangeWallpaper": WP.bmp is the picture as a 24-bit
  // bitmap, the style values say tiled, the system's wallpaper is WP.bmp, and no box comes.
  Verdict GoodChange(const ManifestPicture& picture, const KeptValue& tile, const KeptValue& style,
                     const KeptValue& wallpaper) {
    Verdict verdict;
    const std::string bitmap = folder_ + "WP.bmp";
    const std::string log = folder_ + "Quorvane.log";
    const std::string entry = picture.collection + "\\" + picture.file;
    if (!verdict.Check(WriteWholeFile(folder_ + "Files.ini", FilesIni("1", {entry})),
                       "Files.ini can't be written")) {
      return verdict;
    }
    const std::string logBefore = ReadFileText(log);
    if (!verdict.Check(PostRegistered(main_, kChangeWallpaperMessage),
                       "\"Quorvane.ChangeWallpaper\" could not be posted")) {
      return verdict;
    }
    HWND box = nullptr;
    const bool changed = WaitUntil(kWallpaperTimeout, [&] {
      const std::optional<std::string> stored = wallpaper.Now();
      box = DialogOf(child_.id);
      return box != nullptr || (FileThere(bitmap) && stored && SameText(*stored, bitmap));
    });
    if (!verdict.Check(box == nullptr, "a box came: \"" + (box ? DialogText(box) : "") + "\"")) {
      SaveShot(verdict, shots_, "e2e-failure-then-change");
      ClickDialogButton(verdict, box, IDOK, "OK", kChangeTimeout);
      return verdict;
    }
    if (!verdict.Check(changed, "after " + std::to_string(kWallpaperTimeout / 1000) +
                                    " s WP.bmp is not there, or the profile's wallpaper is " +
                                    Shown(wallpaper.Now()) + ", not \"" + bitmap + "\"")) {
      return verdict;
    }
    const std::string system = DeskWallpaper();
    verdict.Check(SameText(system, bitmap), "SystemParametersInfoA(SPI_GETDESKWALLPAPER) names \"" +
                                                system + "\", not \"" + bitmap + "\"");
    const BitmapFacts facts = ReadBitmapFacts(bitmap);
    CheckBitmapOf(verdict, facts, picture);
    verdict.Check(tile.Now() == std::string("1"),
                  "TileWallpaper is " + Shown(tile.Now()) + ", not \"1\"");
    verdict.Check(style.Now() == std::string("0"),
                  "WallpaperStyle is " + Shown(style.Now()) + ", not \"0\"");
    ::Sleep(kNoBoxWait);
    verdict.Check(DialogOf(child_.id) == nullptr, "a box came after the change");
    const std::vector<std::string> added = LinesAfter(logBefore, ReadFileText(log));
    verdict.Check(added.empty(), "Quorvane.log gained \"" +
                                     Escaped(added.empty() ? "" : added.front()) + "\"");
    verdict.Check(IsRunning(child_), "the process ended");
    SaveShot(verdict, shots_, "e2e-failure-then-change");
    if (verdict.Passed()) {
      verdict.Note("\"" + entry + "\": WP.bmp " + std::to_string(facts.width) + "x" +
                   std::to_string(facts.height) + " 24-bit, TileWallpaper \"1\", WallpaperStyle "
                   "\"0\", the system's wallpaper " + system + ", no box, no log line");
    }
    return verdict;
  }

 private:
  HWND main_;
  const Child& child_;
  std::string shots_;
  std::string folder_;
};

}  // namespace

void RunWallpaperFailures(const std::string& program, const std::string& screenshotFolder,
                          const std::string& manifest, const std::string& undecodable,
                          const Report& report) {
  const std::vector<ManifestPicture> pictures = ReadManifest(manifest);
  const std::string folder = DataFolder();
  Verdict start;
  start.Check(!pictures.empty(), "no pictures in the manifest " + manifest);
  start.Check(!folder.empty(), "the data folder is not known");
  const std::size_t slash = undecodable.find('\\');
  const std::string undecodableArchive =
      folder + undecodable.substr(0, slash == std::string::npos ? 0 : slash) + ".RXS";
  start.Check(slash != std::string::npos && FileThere(undecodableArchive),
              "\"" + undecodable + "\" names no collection packed in the data folder");
  start.Check(!FileThere(folder + kVanished + ".RXS"),
              folder + kVanished + ".RXS is there: it must be missing for the run");
  if (!start.Passed()) {
    report("wallpaper failures: start", start);
    return;
  }
  const ManifestPicture& good = pictures.front();
  const std::string vanished = std::string(kVanished) + "\\" + kVanished + ".jpg";

  // Every value the run touches is put back when these go, after the program has ended; the
  // system's wallpaper is set back first.
  KeptWallpaperSettings kept;
  const KeptValue& wallpaper = kept.wallpaper;
  start.Check(kept.StartChanging(),
              "the settings under " + kept.enable.Where() + " can't be written");
  start.Check(wallpaper.Set(""), "can't empty " + wallpaper.Where());
  // Nothing of an earlier change is left to be taken for this one's.
  for (const std::string& name :
       {std::string("WP.bmp"), TempNameOf(good.file), TempNameOf(undecodable),
        TempNameOf(vanished)}) {
    ::DeleteFileA((folder + name).c_str());
    start.Check(!FileThere(folder + name), folder + name + " can't be removed");
  }

  Child child;
  HWND window = nullptr;
  if (start.Passed()) window = StartWithMainWindow(program, " /background", false, child, start);
  if (window == nullptr) {
    report("wallpaper failures: start", start);
    return;
  }
  FailureSession session(window, child, screenshotFolder, folder);
  if (!start.Check(WaitUntil(kAppearTimeout, [&] { return session.Loaded(); }),
                   "TvCollections lists no collection: the load routine did not finish")) {
    report("wallpaper failures: start", start);
    Terminate(child);
    return;
  }

  const std::vector<FailureCase> failures = {
      {"Files.ini's Total is no number", "e2e-failure-total",
       FilesIni("many", {good.collection + "\\" + good.file}), "Type mismatch", 13},
      {"Files.ini names a collection whose archive is gone", "e2e-failure-archive",
       FilesIni("1", {vanished}),
       "File not found: \"" + folder + TempNameOf(vanished) + "\"", 53},
      {"the entry's picture can't be decoded", "e2e-failure-picture",
       FilesIni("1", {undecodable}), "Invalid picture", 481},
  };
  for (const FailureCase& failure : failures) {
    report("wallpaper failures: " + failure.name + ", \"Quorvane.ChangeWallpaper\"",
           session.FailedChange(failure, wallpaper));
  }
  report("wallpaper failures: a good Files.ini again, \"Quorvane.ChangeWallpaper\"",
         session.GoodChange(good, kept.tile, kept.style, wallpaper));

  const Verdict end = EndThroughExit(window, child);
  if (!end.Passed()) report("wallpaper failures: end", end);
  ::SystemParametersInfoA(SPI_SETDESKWALLPAPER, 0, const_cast<char*>(kept.previousWallpaper.c_str()),
                          SPIF_UPDATEINIFILE);
}

}  // namespace quorvane::e2e
