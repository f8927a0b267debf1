#include "platform/win32/Win32FileSystem.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace quorvane::platform {

namespace {

struct HandleCloser {
  void operator()(HANDLE h) const {
    if (h != INVALID_HANDLE_VALUE) ::CloseHandle(h);
  }
};
using UniqueFile = std::unique_ptr<void, HandleCloser>;

UniqueFile Open(const std::string& path, DWORD access, DWORD disposition) {
  HANDLE h = ::CreateFileA(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
  return UniqueFile(h == INVALID_HANDLE_VALUE ? nullptr : h);
}

bool WriteEverything(HANDLE h, const std::string& content) {
  std::size_t done = 0;
  while (done < content.size()) {
    const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(content.size() - done, 1u << 20));
    DWORD written = 0;
    if (!::WriteFile(h, content.data() + done, chunk, &written, nullptr) || written == 0) {
      return false;
    }
    done += written;
  }
  return true;
}

}  // namespace

bool Win32FileSystem::FileExists(const std::string& path) {
  const DWORD a = ::GetFileAttributesA(path.c_str());
  return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool Win32FileSystem::FolderExists(const std::string& path) {
  const DWORD a = ::GetFileAttributesA(path.c_str());
  return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool Win32FileSystem::ReadAll(const std::string& path, std::string& content) {
  UniqueFile f = Open(path, GENERIC_READ, OPEN_EXISTING);
  if (!f) return false;
  content.clear();
  char chunk[65536];
  for (;;) {
    DWORD read = 0;
    if (!::ReadFile(f.get(), chunk, sizeof chunk, &read, nullptr)) return false;
    if (read == 0) return true;
    content.append(chunk, read);
  }
}

bool Win32FileSystem::WriteAll(const std::string& path, const std::string& content) {
  UniqueFile f = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
  return f && WriteEverything(f.get(), content);
}

bool Win32FileSystem::Append(const std::string& path, const std::string& content) {
  UniqueFile f = Open(path, FILE_APPEND_DATA, OPEN_ALWAYS);
  return f && WriteEverything(f.get(), content);
}

bool Win32FileSystem::CreateFolder(const std::string& path) {
  return ::CreateDirectoryA(path.c_str(), nullptr) != 0;
}

bool Win32FileSystem::RemoveFile(const std::string& path) {
  return ::DeleteFileA(path.c_str()) != 0;
}

namespace {

std::string WithBackslash(const std::string& folder) {
  return !folder.empty() && folder.back() != '\\' ? folder + "\\" : folder;
}

bool IsDotEntry(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

}  // namespace

bool Win32FileSystem::ListFiles(const std::string& folder, std::vector<std::string>& names) {
  names.clear();
  WIN32_FIND_DATAA found{};
  HANDLE search = ::FindFirstFileA((WithBackslash(folder) + "*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    // An empty folder lists nothing; a missing one can't be listed.
    return ::GetLastError() == ERROR_FILE_NOT_FOUND && FolderExists(folder);
  }
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.emplace_back(found.cFileName);
  } while (::FindNextFileA(search, &found) != 0);
  ::FindClose(search);
  return true;
}

bool Win32FileSystem::RemoveFolderTree(const std::string& path) {
  const std::string folder = WithBackslash(path);
  WIN32_FIND_DATAA found{};
  HANDLE search = ::FindFirstFileA((folder + "*").c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      if (IsDotEntry(found.cFileName)) continue;
      const std::string inside = folder + found.cFileName;
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RemoveFolderTree(inside);
      } else {
        ::SetFileAttributesA(inside.c_str(), FILE_ATTRIBUTE_NORMAL);
        ::DeleteFileA(inside.c_str());
      }
    } while (::FindNextFileA(search, &found) != 0);
    ::FindClose(search);
  }
  ::RemoveDirectoryA(path.c_str());
  return !FolderExists(path);
}

bool Win32FileSystem::RenameFile(const std::string& source, const std::string& target) {
  return ::MoveFileA(source.c_str(), target.c_str()) != 0;
}

}  // namespace quorvane::platform
