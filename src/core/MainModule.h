#pragma once
// The entry of the process and its two run modes.
//
// The process starts in one of two modes, and only the command line decides which: blank, the
// main window is shown (interactive mode); anything else, the main window is loaded and stays
// hidden (resident mode), the way the auto-start entry starts the program with "/background".
// The window itself is reached through MainForm, so that the choice runs the same with the real
// window and without one.
#include <cstdint>
#include <string>
#include <string_view>

#include "base/Types.h"

namespace quorvane::core {

enum class RunMode {
  Interactive,  // FrmMain created and shown, non-modal
  Resident,     // FrmMain loaded without being shown
};

// The main window, FrmMain, as the entry uses it. The program installs its window with
// platform::Install<core::MainForm> before ShowMain runs.
class MainForm {
 public:
  virtual ~MainForm() = default;

  // Loads the window without showing it: it is created and its load routine runs. A window that
  // is loaded already stays as it is.
  virtual void Load() = 0;
  // Loads the window when it is not loaded yet, then shows it, non-modal.
  virtual void Show() = 0;
};

// The mode a command line asks for: the text trimmed of blanks at both ends, empty or not. What
// the text says is not looked at.
RunMode RunModeOf(std::string_view commandLine);

// The process entry. Takes the process's command line, chooses the mode by RunModeOf, shows or
// only loads FrmMain, and returns. The process stays alive as long as the window is loaded.
// Failures are not handled here; they go up to the caller.
void ShowMain();

// --- folders, the product's key, the system's version -------------------------------------------

// The program's key in the registry, where its settings live.
inline constexpr char ProductKey[] = "HKEY_CURRENT_USER\\Software\\Talvenor\\Mirefold\\Quorvane";

// Process-wide folders, each with a trailing backslash, set by the load routine of FrmMain and
// not changed afterwards. gDataFolder is first the application data folder alone, and
// CreateDefaultFolder makes it the program's own folder beneath it (or, when that fails, the
// executable's folder without a trailing backslash).
extern std::string gSystemFolder;
extern std::string gWindowsFolder;
extern std::string gProgramFilesFolder;
extern std::string gPicturesFolder;
extern std::string gDataFolder;

// The path of a special folder (platform::folder ids) with a backslash added, or the empty text
// when the platform has none for that id. Never fails.
std::string GetSpecialFolder(std::int32_t folderId);

// Makes Talvenor\Mirefold\Quorvane under gDataFolder, one level at a time, and points
// gDataFolder at it; writes the blank icon "Empty.ico" there unless a file of that name exists;
// makes ProductKey. -1 on success. Any failure gives 0 and leaves gDataFolder as the
// executable's folder, without a trailing backslash.
Boolean CreateDefaultFolder();

// Writes the program's raw resource of type "ICO" with that name to gDataFolder + fileName,
// over what is there from the first byte on (a longer file keeps its tail). A resource that is
// missing, or a file that can't be written, is a failure that goes up to the caller.
void ExtractResourceFile(const std::string& fileName);

// Makes every key along the path that does not exist yet, from the root down, through the main
// window's registry object. -1 on success; any failure leaves at once with 0, keeping the keys
// made so far.
Boolean CreateRegistryPath(const std::string& fullKey);

// The name of the system's version: "Windows 95", "Windows 98", "Windows Me", "Windows NT",
// "Windows 2000", "Windows XP", "Windows Vista" (every 6.x), "Newer than Windows Vista",
// "Unknown or Windows 3.x with Win32s installed", or the empty text when the version call fails
// or names no version of these.
std::string GetOSName();

// -1 when the system is a 6.x of the NT line; 0 otherwise, also when the version call fails. It
// makes its own version call.
Boolean IsVista();

// The log of error reports, in the data folder.
inline constexpr char kErrorLogName[] = "Quorvane.log";

// Reports the failure being handled (call it from the handler): appends one line with the
// module, the routine, the line (`line`, 0 where the routine numbers none), the failure's number
// and its description to kErrorLogName in gDataFolder. Never fails; a log that can't be written
// is passed over.
void ReportError(const std::string& moduleName, const std::string& routineName,
                 std::int32_t line = 0) noexcept;

}  // namespace quorvane::core
