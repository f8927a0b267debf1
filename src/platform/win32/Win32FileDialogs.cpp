#include "platform/win32/Win32FileDialogs.h"

#include <windows.h>
#include <commdlg.h>

#include <algorithm>
#include <vector>

namespace quorvane::platform::win32 {

std::string Win32FileDialogs::GetOpenFileNameA(const OpenFileRequest& request) {
  // The filter's pairs are separated by character 0, and the list ends with two of them.
  std::string filter = request.filter;
  std::replace(filter.begin(), filter.end(), '|', '\0');
  filter.push_back('\0');
  filter.push_back('\0');

  const std::size_t size = static_cast<std::size_t>(std::max(request.maxFileSize, 2));
  std::vector<char> buffer(size + 2, '\0');
  std::copy_n(request.fileName.begin(), std::min(request.fileName.size(), size - 1),
              buffer.begin());

  OPENFILENAMEA dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(request.owner));
  dialog.lpstrFilter = filter.c_str();
  dialog.nFilterIndex = static_cast<DWORD>(std::max(request.filterIndex, 0));
  dialog.lpstrFile = buffer.data();
  dialog.nMaxFile = static_cast<DWORD>(size);
  dialog.lpstrInitialDir = request.initialFolder.empty() ? nullptr : request.initialFolder.c_str();
  dialog.Flags = request.flags;
  if (::GetOpenFileNameA(&dialog) == FALSE) return std::string();

  // The pieces run up to the first two characters 0 in a row.
  std::size_t end = 0;
  while (end + 1 < buffer.size() && !(buffer[end] == '\0' && buffer[end + 1] == '\0')) ++end;
  return std::string(buffer.data(), end);
}

}  // namespace quorvane::platform::win32
