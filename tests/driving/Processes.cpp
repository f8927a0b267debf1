#include "driving/Processes.h"

#include <cstdio>
#include <utility>
#include <vector>

namespace quorvane::driving {

OwnedHandle::~OwnedHandle() {
  if (handle_ != nullptr) {
    ::CloseHandle(handle_);
  }
}

OwnedHandle::OwnedHandle(OwnedHandle&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

OwnedHandle& OwnedHandle::operator=(OwnedHandle&& other) noexcept {
  if (this != &other) {
    if (handle_ != nullptr) {
      ::CloseHandle(handle_);
    }
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

namespace {

// Starts `program` with `tail` behind its name; with `output`, its standard output and error go
// to that handle, which it inherits.
bool Start(const std::string& program, const std::string& tail, HANDLE output, Child& child,
           std::string& error) {
  std::string commandLine = "\"" + program + "\"" + tail;
  std::vector<char> writable(commandLine.begin(), commandLine.end());
  writable.push_back('\0');
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  if (output != nullptr) {
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nullptr;
    startup.hStdOutput = output;
    startup.hStdError = output;
  }
  PROCESS_INFORMATION started{};
  if (::CreateProcessA(program.c_str(), writable.data(), nullptr, nullptr,
                       output != nullptr ? TRUE : FALSE, 0, nullptr, nullptr, &startup,
                       &started) == 0) {
    error = "CreateProcessA failed with system error " + std::to_string(::GetLastError());
    return false;
  }
  ::CloseHandle(started.hThread);
  child.process = OwnedHandle(started.hProcess);
  child.id = started.dwProcessId;
  return true;
}

}  // namespace

bool StartProgram(const std::string& program, const std::string& tail, Child& child,
                  std::string& error) {
  return Start(program, tail, nullptr, child, error);
}

bool StartProgramWithOutput(const std::string& program, const std::string& tail, Child& child,
                            OwnedHandle& output, std::string& error) {
  SECURITY_ATTRIBUTES inheritable{};
  inheritable.nLength = sizeof inheritable;
  inheritable.bInheritHandle = TRUE;
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (::CreatePipe(&readEnd, &writeEnd, &inheritable, 0) == 0) {
    error = "CreatePipe failed with system error " + std::to_string(::GetLastError());
    return false;
  }
  ::SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
  OwnedHandle reading(readEnd);
  const bool started = Start(program, tail, writeEnd, child, error);
  ::CloseHandle(writeEnd);  // the child holds its own copy: the pipe ends when the child does
  if (started) output = std::move(reading);
  return started;
}

std::string ReadToEnd(const OwnedHandle& pipe) {
  std::string text;
  char buffer[512];
  DWORD read = 0;
  while (pipe && ::ReadFile(pipe.Get(), buffer, sizeof buffer, &read, nullptr) != 0 && read > 0) {
    text.append(buffer, read);
  }
  return text;
}

bool IsRunning(const Child& child) {
  return child.process && ::WaitForSingleObject(child.process.Get(), 0) == WAIT_TIMEOUT;
}

bool WaitForEnd(const Child& child, DWORD milliseconds, DWORD& exitCode) {
  if (!child.process || ::WaitForSingleObject(child.process.Get(), milliseconds) != WAIT_OBJECT_0) {
    return false;
  }
  exitCode = 0;
  ::GetExitCodeProcess(child.process.Get(), &exitCode);
  return true;
}

void Terminate(const Child& child) {
  if (IsRunning(child)) {
    ::TerminateProcess(child.process.Get(), 99);
    ::WaitForSingleObject(child.process.Get(), 5000);
  }
}

std::string OwnFolder() {
  char path[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder(path, length);
  const std::size_t slash = folder.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : folder.substr(0, slash + 1);
}

std::string ReadFileText(const std::string& path) {
  std::string text;
  if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
    char buffer[4096];
    std::size_t read = 0;
    while ((read = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, read);
    std::fclose(file);
  }
  return text;
}

}  // namespace quorvane::driving
