#include "platform/win32/Win32WindowActions.h"

#include <windows.h>
#include <shellapi.h>

namespace quorvane::platform::win32 {

namespace {

HWND ToHwnd(std::uint32_t window) {
  return reinterpret_cast<HWND>(static_cast<INT_PTR>(static_cast<std::int32_t>(window)));
}

}  // namespace

std::int32_t Win32WindowActions::ReleaseCapture() { return ::ReleaseCapture() ? 1 : 0; }

std::intptr_t Win32WindowActions::SendMessageA(std::uint32_t window, std::uint32_t message,
                                               std::uintptr_t wParam, std::intptr_t lParam) {
  return ::SendMessageA(ToHwnd(window), message, wParam, lParam);
}

std::intptr_t Win32WindowActions::ShellExecuteA(std::uint32_t window, const std::string& verb,
                                                const std::string& file,
                                                const std::string& parameters,
                                                const std::string& directory,
                                                std::int32_t show) {
  return reinterpret_cast<std::intptr_t>(::ShellExecuteA(ToHwnd(window), verb.c_str(), file.c_str(),
                                                         parameters.c_str(), directory.c_str(),
                                                         show));
}

std::string Win32WindowActions::ProgramFolder() {
  char path[MAX_PATH + 1] = {};
  const DWORD n = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder(path, n);
  const std::size_t slash = folder.find_last_of('\\');
  return slash == std::string::npos ? std::string() : folder.substr(0, slash);
}

std::string Win32WindowActions::ProgramName() {
  char path[MAX_PATH + 1] = {};
  const DWORD n = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string name(path, n);
  const std::size_t slash = name.find_last_of('\\');
  if (slash != std::string::npos) name.erase(0, slash + 1);
  const std::size_t point = name.find_last_of('.');
  if (point != std::string::npos) name.erase(point);
  return name;
}

}  // namespace quorvane::platform::win32
