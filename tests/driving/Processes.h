#pragma once
// Programs started and watched from outside: the driver's children, their ends, and the files
// they leave.
#include <windows.h>

#include <string>

namespace quorvane::driving {

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

// A program started from here.
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

// Starts `program` as StartProgram does, with its standard output and error going to a pipe whose
// reading end comes in `output` (read it with ReadToEnd once the program has ended, or while it
// runs, so that a full pipe does not hold it up).
bool StartProgramWithOutput(const std::string& program, const std::string& tail, Child& child,
                            OwnedHandle& output, std::string& error);

// Everything left to read from `pipe`, until its writing end is closed.
std::string ReadToEnd(const OwnedHandle& pipe);

// The folder of the running program, with a trailing backslash.
std::string OwnFolder();

// The whole content of a file; empty when it can't be read.
std::string ReadFileText(const std::string& path);

}  // namespace quorvane::driving
