#pragma once
// quorvane.exe driven from outside, in the desktop it runs in: started until its main window
// comes, its controls found by their system names through "Quorvane.FindControl", its registered
// messages, its end through "Quorvane.Exit", its data folder; and the screen photographed.
#include <windows.h>

#include <string>

#include "driving/Processes.h"
#include "driving/Verdict.h"

namespace quorvane::driving {

// The registered messages the main window answers.
inline constexpr const char* kFindControlMessage = "Quorvane.FindControl";
inline constexpr const char* kExitMessage = "Quorvane.Exit";
inline constexpr const char* kChangeWallpaperMessage = "Quorvane.ChangeWallpaper";

// The window of the control named `systemName` ("TvDesktop", or "CmdMenu(2)" for an element of a
// control array) in the main window `main` of another process; 0 when it has none of that name
// or does not answer within `milliseconds`.
HWND FindControl(HWND main, const std::string& systemName, DWORD milliseconds = 5000);

// Posts the registered message `name` to `window`. False when it could not be posted.
bool PostRegistered(HWND window, const char* name);

// How long quorvane.exe is given to show its main window (or, resident, to make it), and to end
// after "Quorvane.Exit".
inline constexpr DWORD kAppearTimeout = 30000;
inline constexpr DWORD kEndTimeout = 10000;

// The first top-level window of process `processId` with this class and text, shown or hidden.
HWND FindTopLevelWindow(DWORD processId, const std::string& className, const std::string& text);

// Waits up to `milliseconds` for the main window of quorvane.exe ("QuorvaneMain", "Quorvane")
// of `child` to be shown; null when it was not shown in time or the process ended first.
HWND WaitForShownMainWindow(const Child& child, DWORD milliseconds);
// The same for a resident run: waits for the main window to be there, shown or not.
HWND WaitForMainWindow(const Child& child, DWORD milliseconds);

// Starts `program` (quorvane.exe) with `tail` behind its name and waits up to kAppearTimeout for
// its main window: shown when `shown`, made at all when not. Null, with the reason in `verdict`,
// when it did not come; a process that was started is then ended.
HWND StartWithMainWindow(const std::string& program, const std::string& tail, bool shown,
                         Child& child, Verdict& verdict);

// Posts "Quorvane.Exit" to the main window `window` of `child` and waits up to kEndTimeout for
// the process to end, ending it by force when it does not. The verdict fails when the message
// could not be posted or the process had to be forced.
Verdict EndThroughExit(HWND window, const Child& child);
std::string ClassNameOf(HWND window);
// The first top-level window of the process with the class that is shown; null when none is.
HWND FindShownWindow(DWORD processId, const char* className);
std::string TextOf(HWND window);

// Writes what the screen shows into a 24-bit BMP file. False, with `error`, on failure.
bool SaveScreen(const std::string& path, std::string& error);
// The screen saved as `folder`\`name`.bmp; a failure is a failed check of `verdict`.
bool SaveShot(Verdict& verdict, const std::string& folder, const std::string& name);

// Whether the system is of the 6.x NT line, which the program takes for "Windows Vista" (Wine's
// default).
bool TakesItselfForVista();

// The program's data folder, <AppData>\Talvenor\Mirefold\Quorvane\, with a trailing backslash;
// empty when the system does not tell where the application data goes.
std::string DataFolder();

}  // namespace quorvane::driving
