#include "platform/portable/PortableFileSystem.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <utility>

#include "platform/portable/Descriptors.h"
#include "platform/portable/HostPath.h"

namespace quorvane::platform::portable {

namespace {

std::string Host(const std::string& path) { return HostPath(path); }

using File = UniqueStream;

bool Write(const std::string& path, const std::string& content, const char* mode) {
  File f(std::fopen(Host(path).c_str(), mode));
  if (!f) return false;
  if (!content.empty() && std::fwrite(content.data(), 1, content.size(), f.get()) != content.size()) {
    return false;
  }
  return CloseNow(f);
}

// The new file of a replacement, written in order; the first failure's number is kept.
class DescriptorWriter final : public FileWriter {
 public:
  explicit DescriptorWriter(int fd) : fd_(fd) {}
  bool Write(const void* data, std::size_t count) override {
    const auto* p = static_cast<const char*>(data);
    while (count > 0) {
      const ssize_t n = ::write(fd_, p, count);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        error_ = n < 0 ? static_cast<std::uint32_t>(errno) : static_cast<std::uint32_t>(EIO);
        return false;
      }
      p += n;
      count -= static_cast<std::size_t>(n);
    }
    return true;
  }
  std::uint32_t Error() const { return error_; }

 private:
  int fd_;
  std::uint32_t error_ = 0;
};

Replacement Failed(Replacement::Step step, int error) {
  Replacement result;
  result.failed = step;
  result.error = static_cast<std::uint32_t>(error);
  return result;
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

Replacement PortableFileSystem::ReplaceWhole(const std::string& path,
                                             const std::function<bool(FileWriter&)>& write) {
  const std::string made = path + "." + std::to_string(::getpid()) + ".saving";
  const std::string host = Host(made);
  UniqueDescriptor file(::open(host.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (file.Get() < 0) {
    Replacement result = Failed(Replacement::Step::Create, errno);
    result.noFolder = errno == ENOENT || errno == ENOTDIR;
    return result;
  }
  DescriptorWriter writer(file.Get());
  const bool written = write(writer);
  Replacement result;
  if (!written) {
    result = Failed(Replacement::Step::Write, static_cast<int>(writer.Error()));
  } else if (!file.Close()) {
    result = Failed(Replacement::Step::Write, errno);
  } else {
    result = PutInPlace(made, path);
  }
  if (!result) ::unlink(host.c_str());
  return result;
}

Replacement PortableFileSystem::PutInPlace(const std::string& made, const std::string& path) {
  const std::string from = Host(made);
  // On the disk before it replaces the old file, so that no crash can leave a part of it there.
  UniqueDescriptor file(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.Get() < 0 || ::fsync(file.Get()) != 0) return Failed(Replacement::Step::Write, errno);
  if (!file.Close()) return Failed(Replacement::Step::Write, errno);
  if (::rename(from.c_str(), Host(path).c_str()) != 0) {
    return Failed(Replacement::Step::Commit, errno);
  }
  return {};
}

}  // namespace quorvane::platform::portable
