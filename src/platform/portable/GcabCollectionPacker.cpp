#include "platform/portable/GcabCollectionPacker.h"

#include <fcntl.h>
#include <libgcab.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <system_error>

#include "base/Failure.h"
#include "platform/portable/Descriptors.h"
#include "platform/portable/HostPath.h"

namespace quorvane::platform::portable {

namespace {

// --- the active code page ---------------------------------------------------------------------

// The characters of Windows-1252 from 0x80 to 0x9F; the five codes it leaves free stand for the
// control characters of the same number, as the platform converts them.
constexpr char32_t kHighRow[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t FromWindows1252(unsigned char c) {
  return (c >= 0x80 && c < 0xA0) ? kHighRow[c - 0x80] : static_cast<char32_t>(c);
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// --- files ------------------------------------------------------------------------------------

class FdFile final : public cabinet::RandomFile {
 public:
  explicit FdFile(int fd) : file_(fd), fd_(fd) {}

  std::uint64_t Size() override {
    struct stat st {};
    return ::fstat(fd_, &st) == 0 ? static_cast<std::uint64_t>(st.st_size) : 0;
  }
  bool ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
    auto* p = static_cast<char*>(buffer);
    while (count > 0) {
      const ssize_t n = ::pread(fd_, p, count, static_cast<off_t>(offset));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return false;
      p += n;
      offset += static_cast<std::uint64_t>(n);
      count -= static_cast<std::size_t>(n);
    }
    return true;
  }
  bool WriteAt(std::uint64_t offset, const void* data, std::size_t count) override {
    const auto* p = static_cast<const char*>(data);
    while (count > 0) {
      const ssize_t n = ::pwrite(fd_, p, count, static_cast<off_t>(offset));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return false;
      p += n;
      offset += static_cast<std::uint64_t>(n);
      count -= static_cast<std::size_t>(n);
    }
    return true;
  }
  bool Flush() override { return ::fsync(fd_) == 0; }

 private:
  UniqueDescriptor file_;
  int fd_;
};

// --- GLib's objects ---------------------------------------------------------------------------

struct ObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using GObjectPtr = std::unique_ptr<T, ObjectUnref>;

class GErrorHolder {
 public:
  GErrorHolder() = default;
  ~GErrorHolder() {
    if (error_ != nullptr) g_error_free(error_);
  }
  GErrorHolder(const GErrorHolder&) = delete;
  GErrorHolder& operator=(const GErrorHolder&) = delete;
  GError** Out() { return &error_; }
  std::string Text() const { return error_ != nullptr ? error_->message : "unknown failure"; }

 private:
  GError* error_ = nullptr;
};

// What the expansion callback needs: which entry goes into which scratch name.
struct Selection {
  std::map<const GCabFile*, std::string> names;
};

gboolean ChooseFile(GCabFile* file, gpointer data) {
  auto* selection = static_cast<Selection*>(data);
  const auto found = selection->names.find(file);
  if (found == selection->names.end()) return FALSE;
  gcab_file_set_extract_name(file, found->second.c_str());
  return TRUE;
}

}  // namespace

std::string Windows1252ToUtf8(const std::string& text) {
  std::string out;
  for (const char c : text) AppendUtf8(out, FromWindows1252(static_cast<unsigned char>(c)));
  return out;
}

std::optional<std::string> Utf8ToWindows1252(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const auto c = static_cast<unsigned char>(text[i]);
    char32_t cp = 0;
    std::size_t length = 0;
    char32_t least = 0;  // the smallest character a sequence of this length may carry
    if (c < 0x80) {
      cp = c;
      length = 1;
    } else if ((c & 0xE0) == 0xC0) {
      cp = c & 0x1F;
      length = 2;
      least = 0x80;
    } else if ((c & 0xF0) == 0xE0) {
      cp = c & 0x0F;
      length = 3;
      least = 0x800;
    } else {
      return std::nullopt;  // beyond the basic plane, or not UTF-8: no place in the code page
    }
    if (i + length > text.size()) return std::nullopt;
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) return std::nullopt;
      cp = (cp << 6) | (next & 0x3F);
    }
    // A character written with more bytes than it needs ("C0 AF" for a slash) is no UTF-8, nor
    // is half of a UTF-16 pair: both are refused here, before anything reads the name.
    if (cp < least || (cp >= 0xD800 && cp <= 0xDFFF)) return std::nullopt;
    i += length;
    bool placed = false;
    for (unsigned b = 0; b < 256 && !placed; ++b) {
      if (FromWindows1252(static_cast<unsigned char>(b)) == cp) {
        out += static_cast<char>(b);
        placed = true;
      }
    }
    if (!placed) return std::nullopt;
  }
  return out;
}

GcabCollectionPacker::~GcabCollectionPacker() { ReleaseQuietly(); }

std::unique_ptr<cabinet::RandomFile> GcabCollectionPacker::OpenForReading(const std::string& path) {
  const int fd = ::open(HostPath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    lastError_ = errno;
    return nullptr;
  }
  return std::make_unique<FdFile>(fd);
}

std::unique_ptr<cabinet::RandomFile> GcabCollectionPacker::CreateNew(const std::string& path) {
  const int fd = ::open(HostPath(path).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) {
    lastError_ = errno;
    return nullptr;
  }
  return std::make_unique<FdFile>(fd);
}

bool GcabCollectionPacker::IsFile(const std::string& path) {
  struct stat st {};
  return ::stat(HostPath(path).c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool GcabCollectionPacker::IsFolder(const std::string& path) {
  struct stat st {};
  return ::stat(HostPath(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool GcabCollectionPacker::RemoveFile(const std::string& path) {
  return ::unlink(HostPath(path).c_str()) == 0;
}

void GcabCollectionPacker::RemoveFolderTree(const std::string& path) {
  std::error_code ec;
  std::filesystem::remove_all(HostPath(path), ec);
}

bool GcabCollectionPacker::MakeFolders(const std::string& path) {
  std::error_code ec;
  std::filesystem::create_directories(HostPath(path), ec);
  if (IsFolder(path)) return true;
  lastError_ = ec ? ec.value() : ENOTDIR;
  return false;
}

void GcabCollectionPacker::SetModified(const std::string& path, std::uint16_t date, std::uint16_t time) {
  std::tm local{};
  local.tm_year = 80 + (date >> 9);
  local.tm_mon = ((date >> 5) & 0xF) - 1;
  local.tm_mday = date & 0x1F;
  local.tm_hour = time >> 11;
  local.tm_min = (time >> 5) & 0x3F;
  local.tm_sec = (time & 0x1F) * 2;
  local.tm_isdst = -1;
  const std::time_t when = std::mktime(&local);
  if (when == static_cast<std::time_t>(-1) || local.tm_mon < 0) return;
  struct timespec times[2];
  times[0].tv_sec = 0;
  times[0].tv_nsec = UTIME_OMIT;
  times[1].tv_sec = when;
  times[1].tv_nsec = 0;
  ::utimensat(AT_FDCWD, HostPath(path).c_str(), times, 0);
}

std::string GcabCollectionPacker::LastErrorText() { return std::strerror(lastError_); }

std::string GcabCollectionPacker::ErrorText(std::uint32_t error) {
  return std::strerror(static_cast<int>(error));
}

std::string GcabCollectionPacker::ScratchFolder() {
  std::error_code ec;
  std::string folder = std::filesystem::temp_directory_path(ec).string();
  if (ec || folder.empty()) folder = "/tmp";
  return folder + "/";
}

std::string GcabCollectionPacker::ProcessTag() { return std::to_string(::getpid()); }

std::optional<std::string> GcabCollectionPacker::NameOfEntry(const cabinet::Entry& entry) {
  if ((entry.attributes & cabinet::kNameIsUtf8) != 0) return Utf8ToWindows1252(entry.rawName);
  return entry.rawName;
}

cabinet::Entry GcabCollectionPacker::EntryForEmptyFile(const Item& item) {
  cabinet::Entry entry;
  entry.rawName = Windows1252ToUtf8(item.entry);
  entry.attributes = 0x20;  // archive
  if (entry.rawName != item.entry) entry.attributes |= cabinet::kNameIsUtf8;
  struct stat st {};
  std::tm local{};
  if (::stat(HostPath(item.source).c_str(), &st) == 0 && ::localtime_r(&st.st_mtime, &local) != nullptr &&
      local.tm_year >= 80) {
    entry.date = static_cast<std::uint16_t>(((local.tm_year - 80) << 9) | ((local.tm_mon + 1) << 5) | local.tm_mday);
    entry.time = static_cast<std::uint16_t>((local.tm_hour << 11) | (local.tm_min << 5) | (local.tm_sec / 2));
  }
  return entry;
}

void GcabCollectionPacker::Compress(const std::vector<Item>& items, const std::string& scratch,
                                    std::vector<std::string>& made) {
  // libgcab writes cabinets of one folder: each item gets a cabinet of its own.
  for (std::size_t i = 0; i < items.size(); ++i) {
    const Item& item = items[i];
    const std::string path = scratch + "." + std::to_string(i);
    made.push_back(path);
    auto fail = [&](const std::string& why) {
      Raise(FailureNumber::DeviceIOError,
            "Cannot pack " + std::string("\"") + item.source + "\": " + why);
    };
    GErrorHolder error;
    GObjectPtr<GFile> source(g_file_new_for_path(HostPath(item.source).c_str()));
    GObjectPtr<GCabFile> file(gcab_file_new_with_file(Windows1252ToUtf8(item.entry).c_str(), source.get()));
    GObjectPtr<GCabFolder> folder(
        gcab_folder_new(item.stored ? GCAB_COMPRESSION_NONE : GCAB_COMPRESSION_MSZIP));
    if (!gcab_folder_add_file(folder.get(), file.get(), FALSE, nullptr, error.Out())) fail(error.Text());
    GObjectPtr<GCabCabinet> cabinet(gcab_cabinet_new());
    if (!gcab_cabinet_add_folder(cabinet.get(), folder.get(), error.Out())) fail(error.Text());
    GObjectPtr<GFile> target(g_file_new_for_path(HostPath(path).c_str()));
    GObjectPtr<GFileOutputStream> stream(g_file_create(target.get(), G_FILE_CREATE_NONE, nullptr, error.Out()));
    if (!stream) fail(error.Text());
    const bool written = gcab_cabinet_write_simple(cabinet.get(), G_OUTPUT_STREAM(stream.get()), nullptr,
                                                   nullptr, nullptr, error.Out());
    if (!written) fail(error.Text());
    if (!g_output_stream_close(G_OUTPUT_STREAM(stream.get()), nullptr, error.Out())) fail(error.Text());
  }
}

void GcabCollectionPacker::Expand(const std::string& archive, const cabinet::Layout& layout,
                                  const std::vector<Target>& targets) {
  auto fail = [&](const std::string& why) {
    Raise(FailureNumber::PathFileAccessError, "Cannot unpack \"" + archive + "\": " + why);
  };
  // libgcab compares a block's checksum field literally, where 0 stands for "none". The blocks
  // with a checksum have passed the check in the walk of their folders; those without one are
  // read from a scratch copy of the archive that carries their sums.
  std::string source = archive;
  struct CopyRemover {
    GcabCollectionPacker* packer;
    std::string path;
    ~CopyRemover() {
      if (!path.empty()) packer->RemoveFile(path);
    }
  } copy{this, ""};
  std::vector<bool> chosen(layout.folders.size());
  for (const Target& t : targets) chosen[layout.entries[t.entry].folder] = true;
  std::vector<std::pair<std::uint64_t, std::uint32_t>> sums;  // where a block begins, its sum
  {
    auto file = OpenForReading(archive);
    if (!file) fail("it can't be read: " + LastErrorText());
    std::vector<std::uint8_t> block;
    for (std::size_t f = 0; f < layout.folders.size(); ++f) {
      const cabinet::Folder& folder = layout.folders[f];
      if (!chosen[f]) continue;
      for (const cabinet::DataBlock& b : folder.blocks) {
        if (b.checksum != 0) continue;
        block.resize(b.length);
        if (!file->ReadAt(b.offset, block.data(), block.size())) fail("it can't be read: " + LastErrorText());
        const std::size_t header = 8u + folder.blockReserve;
        const std::uint32_t sum =
            cabinet::Checksum(block.data() + 4, 4, cabinet::Checksum(block.data() + header, b.length - header, 0));
        if (sum != 0) sums.emplace_back(b.offset, sum);
      }
    }
  }
  if (!sums.empty()) {
    copy.path = ScratchName(ScratchFolder());
    if (auto fault = CopyWithChecksums(archive, copy.path, sums)) fail(*fault);
    source = copy.path;
  }

  GErrorHolder error;
  GObjectPtr<GFile> file(g_file_new_for_path(HostPath(source).c_str()));
  GObjectPtr<GFileInputStream> stream(g_file_read(file.get(), nullptr, error.Out()));
  if (!stream) fail(error.Text());
  GObjectPtr<GCabCabinet> cabinet(gcab_cabinet_new());
  if (!gcab_cabinet_load(cabinet.get(), G_INPUT_STREAM(stream.get()), nullptr, error.Out())) {
    fail(error.Text());
  }

  // libgcab keeps each folder's entries in the order of the file records; the k-th of folder f
  // is the k-th record of that folder.
  std::vector<std::vector<std::size_t>> byFolder(layout.folders.size());
  for (std::size_t i = 0; i < layout.entries.size(); ++i) byFolder[layout.entries[i].folder].push_back(i);
  std::map<std::size_t, std::string> wanted;
  for (const Target& t : targets) wanted[t.entry] = cabinet::EntryNameOfPath(t.path);

  Selection selection;
  GPtrArray* folders = gcab_cabinet_get_folders(cabinet.get());
  if (folders == nullptr || folders->len != layout.folders.size()) {
    fail("its folders read differently from its header");
  }
  for (guint f = 0; f < folders->len; ++f) {
    GSList* files = gcab_folder_get_files(static_cast<GCabFolder*>(g_ptr_array_index(folders, f)));
    std::size_t k = 0;
    bool matches = true;
    for (GSList* node = files; node != nullptr; node = node->next, ++k) {
      auto* cabFile = static_cast<GCabFile*>(node->data);
      if (k >= byFolder[f].size() || gcab_file_get_size(cabFile) != layout.entries[byFolder[f][k]].size) {
        matches = false;
        break;
      }
      const auto found = wanted.find(byFolder[f][k]);
      if (found != wanted.end()) selection.names[cabFile] = found->second;
    }
    g_slist_free(files);
    if (!matches || k != byFolder[f].size()) fail("its entries read differently from its records");
  }
  GObjectPtr<GFile> destination(g_file_new_for_path(HostPath(targets.front().path).c_str()));
  GObjectPtr<GFile> folder(g_file_get_parent(destination.get()));
  if (!folder) fail("its destination has no folder");
  if (!gcab_cabinet_extract_simple(cabinet.get(), folder.get(), ChooseFile, &selection, nullptr,
                                   error.Out())) {
    fail(error.Text());
  }
}

std::optional<std::string> GcabCollectionPacker::CopyWithChecksums(
    const std::string& archive, const std::string& copy,
    const std::vector<std::pair<std::uint64_t, std::uint32_t>>& sums) {
  auto in = OpenForReading(archive);
  if (!in) return "it can't be read: " + LastErrorText();
  auto out = CreateNew(copy);
  if (!out) return "no scratch copy of it can be made: " + LastErrorText();
  std::vector<std::uint8_t> buffer(1u << 20);
  const std::uint64_t size = in->Size();
  for (std::uint64_t at = 0; at < size;) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size - at));
    if (!in->ReadAt(at, buffer.data(), count)) return "it can't be read: " + LastErrorText();
    if (!out->WriteAt(at, buffer.data(), count)) return "its scratch copy can't be written: " + LastErrorText();
    at += count;
  }
  for (const auto& [offset, sum] : sums) {
    const std::uint8_t bytes[4] = {static_cast<std::uint8_t>(sum & 0xFFu), static_cast<std::uint8_t>((sum >> 8) & 0xFFu),
                                   static_cast<std::uint8_t>((sum >> 16) & 0xFFu), static_cast<std::uint8_t>(sum >> 24)};
    if (!out->WriteAt(offset, bytes, sizeof bytes)) return "its scratch copy can't be written: " + LastErrorText();
  }
  return std::nullopt;
}

std::unique_ptr<CollectionPacker> GcabCollectionPackers::Create() {
  return std::make_unique<GcabCollectionPacker>();
}

}  // namespace quorvane::platform::portable
