#include "platform/win32/Win32FileSystem.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

namespace {

UniqueFile Open(const std::string& path, DWORD access, DWORD disposition) {
  return OpenFile(path.c_str(), access, FILE_SHARE_READ, disposition);
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
    if (!::ReadFile(f.Get(), chunk, sizeof chunk, &read, nullptr)) return false;
    if (read == 0) return true;
    content.append(chunk, read);
  }
}

bool Win32FileSystem::WriteAll(const std::string& path, const std::string& content) {
  UniqueFile f = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
  return f && WriteEverything(f.Get(), content);
}

bool Win32FileSystem::Append(const std::string& path, const std::string& content) {
  UniqueFile f = Open(path, FILE_APPEND_DATA, OPEN_ALWAYS);
  return f && WriteEverything(f.Get(), content);
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
  const UniqueSearch search =
      AdoptSearch(::FindFirstFileA((WithBackslash(folder) + "*").c_str(), &found));
  if (!search) {
    // An empty folder lists nothing; a missing one can't be listed.
    return ::GetLastError() == ERROR_FILE_NOT_FOUND && FolderExists(folder);
  }
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.emplace_back(found.cFileName);
  } while (::FindNextFileA(search.Get(), &found) != 0);
  return true;
}

bool Win32FileSystem::RemoveFolderTree(const std::string& path) {
  const std::string folder = WithBackslash(path);
  WIN32_FIND_DATAA found{};
  if (const UniqueSearch search = AdoptSearch(::FindFirstFileA((folder + "*").c_str(), &found))) {
    do {
      if (IsDotEntry(found.cFileName)) continue;
      const std::string inside = folder + found.cFileName;
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RemoveFolderTree(inside);
      } else {
        ::SetFileAttributesA(inside.c_str(), FILE_ATTRIBUTE_NORMAL);
        ::DeleteFileA(inside.c_str());
      }
    } while (::FindNextFileA(search.Get(), &found) != 0);
  }
  ::RemoveDirectoryA(path.c_str());
  return !FolderExists(path);
}

bool Win32FileSystem::RenameFile(const std::string& source, const std::string& target) {
  return ::MoveFileA(source.c_str(), target.c_str()) != 0;
}

namespace {

// The new file of a replacement, written in order; the first failure's number is kept.
class HandleWriter final : public FileWriter {
 public:
  explicit HandleWriter(HANDLE file) : file_(file) {}
  bool Write(const void* data, std::size_t count) override {
    const auto* p = static_cast<const char*>(data);
    while (count > 0) {
      const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(count, 1u << 24));
      DWORD written = 0;
      if (!::WriteFile(file_, p, chunk, &written, nullptr) || written == 0) {
        error_ = ::GetLastError();
        return false;
      }
      p += written;
      count -= written;
    }
    return true;
  }
  DWORD Error() const { return error_; }

 private:
  HANDLE file_;
  DWORD error_ = 0;
};

Replacement Failed(Replacement::Step step, DWORD error) {
  Replacement result;
  result.failed = step;
  result.error = error;
  return result;
}

}  // namespace

Replacement Win32FileSystem::ReplaceWhole(const std::string& path,
                                          const std::function<bool(FileWriter&)>& write) {
  const std::string made = path + "." + std::to_string(::GetCurrentProcessId()) + ".saving";
  UniqueFile file = OpenFile(made.c_str(), GENERIC_WRITE, 0, CREATE_ALWAYS);
  if (!file) {
    const DWORD error = ::GetLastError();
    Replacement result = Failed(Replacement::Step::Create, error);
    result.noFolder = error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME ||
                      error == ERROR_BAD_PATHNAME;
    return result;
  }
  HandleWriter writer(file.Get());
  Replacement result;
  if (!write(writer)) {
    result = Failed(Replacement::Step::Write, writer.Error());
  } else if (!::FlushFileBuffers(file.Get()) || !CloseNow(file)) {
    // On the disk before it replaces the old file, so that no crash can leave a part of it there.
    result = Failed(Replacement::Step::Write, ::GetLastError());
  } else if (!::MoveFileExA(made.c_str(), path.c_str(),
                            MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    result = Failed(Replacement::Step::Commit, ::GetLastError());
  }
  if (!result) {
    CloseNow(file);
    ::DeleteFileA(made.c_str());
  }
  return result;
}

Replacement Win32FileSystem::PutInPlace(const std::string& made, const std::string& path) {
  {
    UniqueFile file = OpenFile(made.c_str(), GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
    if (!file || !::FlushFileBuffers(file.Get())) {
      return Failed(Replacement::Step::Write, ::GetLastError());
    }
  }
  if (!::MoveFileExA(made.c_str(), path.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    return Failed(Replacement::Step::Commit, ::GetLastError());
  }
  return {};
}

}  // namespace quorvane::platform::win32
