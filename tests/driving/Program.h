#pragma once
// What the end-to-end driver does to the desktop it runs in: start programs, find their top-level
// windows, start and end quorvane.exe, read the files it leaves, and photograph the screen.
#include <windows.h>

#include <string>

#include "Verdict.h"

namespace quorvane::e2e {

// How long quorvane.exe is given to show its main window (or, resident, to make it), and to end
// after "Quorvane.Exit".
inline constexpr DWORD kAppearTimeout = 30000;
inline constexpr DWORD kEndTimeout = 10000;

// A kernel handle with one owner: closed once, when its owner goes.
class OwnedHandle {
 public:
  OwnedHandle() = default;
  explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
  ~OwnedHandle();
  OwnedHandle(OwnedHandle&& other) noexcept;
  OwnedHandle& operator=(OwnedHandle&& other) noexcept;
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;

  HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HANDLE handle_ = nullptr;
};

// A program started by the driver.
struct Child {
  OwnedHandle process;
  DWORD id = 0;
};

// Starts `program` with the command line `"<program>"` followed by `tail` exactly as given, so
// that `tail` is what the program sees behind its name. `error` tells why when it fails.
bool StartProgram(const std::string& program, const std::string& tail, Child& child,
                  std::string& error);

// True while the process has not ended.
bool IsRunning(const Child& child);
// Waits for the end of the process; its exit code in `exitCode`. False when it is still running.
bool WaitForEnd(const Child& child, DWORD milliseconds, DWORD& exitCode);
// Ends the process by force; for clean-up after a failed case only.
void Terminate(const Child& child);

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
std::string TextOf(HWND window);

// Writes what the screen shows into a 24-bit BMP file. False, with `error`, on failure.
bool SaveScreen(const std::string& path, std::string& error);
// The screen saved as `folder`\`name`.bmp; a failure is a failed check of `verdict`.
bool SaveShot(Verdict& verdict, const std::string& folder, const std::string& name);

// Whether the system is of the 6.x NT line, which the program takes for "Windows Vista" (Wine's
// default).
bool TakesItselfForVista();

// The folder of this program, with a trailing backslash.
std::string OwnFolder();

// The program's data folder, <AppData>\Talvenor\Mirefold\Quorvane\, with a trailing backslash;
// empty when the system does not tell where the application data goes.
std::string DataFolder();

// The whole content of a file; empty when it can't be read.
std::string ReadFileText(const std::string& path);

}  // namespace quorvane::e2e
