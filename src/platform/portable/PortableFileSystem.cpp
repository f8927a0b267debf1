#include "platform/portable/PortableFileSystem.h"

#include <cstdio>
#include <filesystem>
#include <memory>

#include "platform/portable/HostPath.h"

namespace quorvane::platform {

namespace {

std::string Host(const std::string& path) { return HostPath(path); }

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

bool Write(const std::string& path, const std::string& content, const char* mode) {
  File f(std::fopen(Host(path).c_str(), mode));
  if (!f) return false;
  if (!content.empty() && std::fwrite(content.data(), 1, content.size(), f.get()) != content.size()) {
    return false;
  }
  return std::fclose(f.release()) == 0;
}

}  // namespace

bool PortableFileSystem::FileExists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::is_regular_file(Host(path), ec);
}

bool PortableFileSystem::FolderExists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::is_directory(Host(path), ec);
}

bool PortableFileSystem::ReadAll(const std::string& path, std::string& content) {
  File f(std::fopen(Host(path).c_str(), "rb"));
  if (!f) return false;
  content.clear();
  char chunk[65536];
  std::size_t n = 0;
  while ((n = std::fread(chunk, 1, sizeof chunk, f.get())) > 0) content.append(chunk, n);
  return std::ferror(f.get()) == 0;
}

bool PortableFileSystem::WriteAll(const std::string& path, const std::string& content) {
  return Write(path, content, "wb");
}

bool PortableFileSystem::Append(const std::string& path, const std::string& content) {
  return Write(path, content, "ab");
}

bool PortableFileSystem::CreateFolder(const std::string& path) {
  std::error_code ec;
  return std::filesystem::create_directory(Host(path), ec);
}

bool PortableFileSystem::RemoveFile(const std::string& path) {
  std::error_code ec;
  return std::filesystem::remove(Host(path), ec);
}

bool PortableFileSystem::ListFiles(const std::string& folder, std::vector<std::string>& names) {
  names.clear();
  std::error_code ec;
  std::filesystem::directory_iterator entry(Host(folder), ec);
  if (ec) return false;
  for (; entry != std::filesystem::directory_iterator(); entry.increment(ec)) {
    if (ec) return false;
    std::error_code kind;
    if (entry->is_regular_file(kind)) names.push_back(entry->path().filename().string());
  }
  return true;
}

bool PortableFileSystem::RemoveFolderTree(const std::string& path) {
  std::error_code ec;
  std::filesystem::remove_all(Host(path), ec);
  return !std::filesystem::exists(Host(path), ec);
}

bool PortableFileSystem::RenameFile(const std::string& source, const std::string& target) {
  std::error_code ec;
  if (std::filesystem::exists(Host(target), ec)) return false;
  std::filesystem::rename(Host(source), Host(target), ec);
  return !ec;
}

}  // namespace quorvane::platform
