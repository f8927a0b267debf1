// The portable collection packer's UnpackFiles over arbitrary archive bytes: every entry, then one
// entry by name, into a destination two folders down in a scratch tree. Whatever the bytes, the
// call either unpacks or fails with a Failure; nothing may appear in the tree but the archive,
// the destination's folders and files directly in the destination, and no scratch file may stay.
// The seeds are archives the packer itself writes (stored and MSZIP entries, an empty one) and
// one written byte by byte.
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "FuzzSeeds.h"
#include "FuzzSupport.h"
#include "base/Failure.h"
#include "platform/portable/GcabCollectionPacker.h"

namespace {

using quorvane::fuzzing::Require;

namespace fs = std::filesystem;

// A scratch tree for the life of the process: root/archive.RXS and root/box/dest.
class Tree {
 public:
  Tree()
      : root_(fs::temp_directory_path() / ("quorvane-fuzz-cab-" + std::to_string(::getpid()))) {
    fs::remove_all(root_);
    fs::create_directories(root_ / "box");
  }
  ~Tree() {
    std::error_code ec;
    fs::remove_all(root_, ec);
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  std::string Archive() const { return (root_ / "archive.RXS").string(); }
  std::string Destination() const { return (root_ / "box" / "dest").string(); }
  const fs::path& Root() const { return root_; }

  // Rewritten in place and cut to length: a file truncated to nothing and written again is
  // flushed to disk at its close by some file systems, which would make each run wait.
  void Fill(const std::string& bytes) const {
    const int fd = ::open(Archive().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    Require(fd >= 0, "can't write the archive");
    Require(::pwrite(fd, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()), "short write");
    Require(::ftruncate(fd, static_cast<off_t>(bytes.size())) == 0, "can't cut the archive");
    ::close(fd);
  }

  // Everything in the tree must be where an unpack may write; the destination is emptied.
  void CheckAndClear() const {
    std::error_code ec;
    if (!fs::exists(root_ / "box" / "dest", ec) && std::distance(fs::directory_iterator(root_, ec), {}) == 2 &&
        std::distance(fs::directory_iterator(root_ / "box", ec), {}) == 0) {
      return;  // nothing was made
    }
    for (auto it = fs::recursive_directory_iterator(root_, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec)) {
      const std::string relative = it->path().lexically_relative(root_).generic_string();
      if (relative == "archive.RXS" || relative == "box" || relative == "box/dest") continue;
      Require(relative.rfind("box/dest/", 0) == 0, "something was written outside the destination");
      Require(relative.find('/', 9) == std::string::npos, "a folder was made inside the destination");
      Require(it->is_regular_file(), "something other than a file in the destination");
      Require(relative.find(".~") == std::string::npos, "a scratch file stayed in the destination");
    }
    Require(!ec, "the tree can't be listed");
    fs::remove_all(Destination(), ec);
  }

 private:
  fs::path root_;
};

const Tree& TheTree() {
  static const Tree tree;
  return tree;
}

std::string ReadWhole(const std::string& path) {
  std::string out;
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return out;
  char chunk[4096];
  std::size_t n = 0;
  while ((n = std::fread(chunk, 1, sizeof chunk, f)) > 0) out.append(chunk, n);
  std::fclose(f);
  return out;
}

void Unpack(const std::string& entry) {
  quorvane::platform::portable::GcabCollectionPacker packer;
  try {
    packer.UnpackFiles(TheTree().Archive(), TheTree().Destination(), entry);
  } catch (const quorvane::Failure&) {
    // A refusal is an answer; what it left behind is checked by the caller.
  }
}

}  // namespace

std::vector<std::string> QuorvaneFuzzSeeds() {
  const fs::path folder = fs::temp_directory_path() / ("quorvane-fuzz-cab-seeds-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder);
  auto put = [&](const std::string& name, const std::string& bytes) {
    std::FILE* f = std::fopen((folder / name).c_str(), "wb");
    if (!bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
    return (folder / name).string();
  };
  std::string text;
  for (int i = 0; i < 3000; ++i) text += "line " + std::to_string(i) + "\n";
  std::string noise;
  for (int i = 0; i < 40000; ++i) noise += static_cast<char>((i * 7919) % 251);
  std::vector<std::string> seeds;
  {
    quorvane::platform::portable::GcabCollectionPacker packer;
    packer.PackFile(put("a.txt", text), (folder / "one.RXS").string(), 0, "", true);
    packer.Release();
  }
  seeds.push_back(ReadWhole((folder / "one.RXS").string()));
  // The same with no checksums: every block's field 0.
  {
    std::string unsummed = seeds.back();
    const auto at16 = [&](std::size_t at) {
      return static_cast<std::size_t>(static_cast<unsigned char>(unsummed[at]) |
                                      (static_cast<unsigned char>(unsummed[at + 1]) << 8));
    };
    std::size_t block = at16(36) | (at16(38) << 16);
    for (std::size_t k = 0; k < at16(40) && block + 8 <= unsummed.size(); ++k) {
      for (std::size_t b = 0; b < 4; ++b) unsummed[block + b] = '\0';
      block += 8 + at16(block + 4);
    }
    seeds.push_back(unsummed);
  }
  {
    quorvane::platform::portable::GcabCollectionPacker packer;
    packer.PackFile(put("a.txt", "short"), (folder / "three.RXS").string(), 0, "", true);
    packer.PackFile(put("b.jpg", noise), (folder / "three.RXS").string(), 0, "", true);
    packer.PackFile(put("c.bmp", ""), (folder / "three.RXS").string(), 0, "", true);
    packer.Release();
  }
  seeds.push_back(ReadWhole((folder / "three.RXS").string()));
  fs::remove_all(folder);
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Tree& tree = TheTree();
  tree.Fill(std::string(reinterpret_cast<const char*>(data), size));
  Unpack("");
  tree.CheckAndClear();
  Unpack("a.txt");
  tree.CheckAndClear();
  return 0;
}
