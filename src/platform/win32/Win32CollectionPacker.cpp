#include "platform/win32/Win32CollectionPacker.h"

#include <windows.h>
// After windows.h, which they build on.
#include <fci.h>
#include <fcntl.h>
#include <fdi.h>
#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

#include "base/Failure.h"
#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

namespace {

// The compressor's and the expander's contexts, destroyed once, by their owners.
void DestroyCompressor(HFCI fci) { ::FCIDestroy(fci); }
void DestroyExpander(HFDI fdi) { ::FDIDestroy(fdi); }
using UniqueCompressor = UniqueHandle<HFCI, &DestroyCompressor>;
using UniqueExpander = UniqueHandle<HFDI, &DestroyExpander>;

// --- files ------------------------------------------------------------------------------------

class HandleFile final : public cabinet::RandomFile {
 public:
  explicit HandleFile(UniqueFile file) : file_(std::move(file)), h_(file_.Get()) {}

  std::uint64_t Size() override {
    LARGE_INTEGER size{};
    return ::GetFileSizeEx(h_, &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
  }
  bool ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
    auto* p = static_cast<char*>(buffer);
    while (count > 0) {
      OVERLAPPED at{};
      at.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFu);
      at.OffsetHigh = static_cast<DWORD>(offset >> 32);
      const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(count, 1u << 24));
      DWORD read = 0;
      if (!::ReadFile(h_, p, chunk, &read, &at) || read == 0) return false;
      p += read;
      offset += read;
      count -= read;
    }
    return true;
  }
  bool WriteAt(std::uint64_t offset, const void* data, std::size_t count) override {
    const auto* p = static_cast<const char*>(data);
    while (count > 0) {
      OVERLAPPED at{};
      at.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFu);
      at.OffsetHigh = static_cast<DWORD>(offset >> 32);
      const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(count, 1u << 24));
      DWORD written = 0;
      if (!::WriteFile(h_, p, chunk, &written, &at) || written == 0) return false;
      p += written;
      offset += written;
      count -= written;
    }
    return true;
  }
  bool Flush() override { return ::FlushFileBuffers(h_) != 0; }

 private:
  UniqueFile file_;
  HANDLE h_;
};

bool IsAscii(const std::string& text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

// Text in one code page converted to another; nothing when a character has no place there.
std::optional<std::string> Convert(const std::string& text, UINT from, UINT to) {
  if (text.empty()) return std::string();
  const int wide = ::MultiByteToWideChar(from, MB_ERR_INVALID_CHARS, text.data(),
                                         static_cast<int>(text.size()), nullptr, 0);
  if (wide <= 0) return std::nullopt;
  std::wstring units(static_cast<std::size_t>(wide), L'\0');
  ::MultiByteToWideChar(from, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()),
                        units.data(), wide);
  BOOL usedDefault = FALSE;
  const bool utf8 = to == CP_UTF8;
  const int bytes = ::WideCharToMultiByte(to, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, units.data(), wide,
                                          nullptr, 0, nullptr, utf8 ? nullptr : &usedDefault);
  if (bytes <= 0 || usedDefault) return std::nullopt;
  std::string out(static_cast<std::size_t>(bytes), '\0');
  ::WideCharToMultiByte(to, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, units.data(), wide, out.data(), bytes,
                        nullptr, utf8 ? nullptr : &usedDefault);
  if (usedDefault) return std::nullopt;
  return out;
}

std::string ErrorText(DWORD error) {
  char* text = nullptr;
  const DWORD n = ::FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string out = n > 0 && text != nullptr ? std::string(text, n) : "error " + std::to_string(error);
  if (text != nullptr) ::LocalFree(text);
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r' || out.back() == ' ' || out.back() == '.')) {
    out.pop_back();
  }
  return out;
}

// The C run-time's open flags, as the cabinet functions pass them, as CreateFileA's.
HANDLE OpenLikeRuntime(const char* path, int flags) {
  DWORD access = GENERIC_READ;
  if ((flags & (_O_WRONLY | _O_RDWR)) != 0) access = (flags & _O_WRONLY) != 0 ? GENERIC_WRITE : GENERIC_READ | GENERIC_WRITE;
  DWORD disposition = OPEN_EXISTING;
  if ((flags & _O_CREAT) != 0) {
    disposition = (flags & _O_EXCL) != 0 ? CREATE_NEW : (flags & _O_TRUNC) != 0 ? CREATE_ALWAYS : OPEN_ALWAYS;
  } else if ((flags & _O_TRUNC) != 0) {
    disposition = TRUNCATE_EXISTING;
  }
  return ::CreateFileA(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

INT_PTR AsHandle(HANDLE h) { return h == INVALID_HANDLE_VALUE ? -1 : reinterpret_cast<INT_PTR>(h); }
HANDLE FromHandle(INT_PTR h) { return reinterpret_cast<HANDLE>(h); }

UINT ReadHandle(INT_PTR hf, void* buffer, UINT count) {
  DWORD read = 0;
  return ::ReadFile(FromHandle(hf), buffer, count, &read, nullptr) ? read : static_cast<UINT>(-1);
}

UINT WriteHandle(INT_PTR hf, const void* data, UINT count) {
  DWORD written = 0;
  return ::WriteFile(FromHandle(hf), data, count, &written, nullptr) ? written : static_cast<UINT>(-1);
}

long SeekHandle(INT_PTR hf, long distance, int origin) {
  const DWORD method = origin == SEEK_CUR ? FILE_CURRENT : origin == SEEK_END ? FILE_END : FILE_BEGIN;
  const DWORD at = ::SetFilePointer(FromHandle(hf), distance, nullptr, method);
  return at == INVALID_SET_FILE_POINTER ? -1L : static_cast<long>(at);
}

void* DIAMONDAPI AllocateMemory(ULONG size) { return std::malloc(size); }
void DIAMONDAPI FreeMemory(void* memory) { std::free(memory); }

// --- compression through FCI --------------------------------------------------------------------

// The name the cabinet file is asked for by, and stands for the scratch file's whole path, so
// that the length of that path is not bound by the cabinet functions' name buffers.
constexpr char kCabinetToken[] = "quorvane-output.cab";

struct FciContext {
  std::string output;     // the scratch cabinet's path
  std::string tempFolder;  // for the compressor's own scratch files
  std::string tag;
  unsigned next = 0;
  bool nameIsUtf8 = false;  // of the file being added
  DWORD lastError = 0;
};

INT_PTR DIAMONDAPI FciOpen(char* file, int flags, int, int* err, void* pv) {
  auto* context = static_cast<FciContext*>(pv);
  const char* path = std::strcmp(file, kCabinetToken) == 0 ? context->output.c_str() : file;
  const HANDLE h = OpenLikeRuntime(path, flags);
  if (h == INVALID_HANDLE_VALUE) {
    context->lastError = ::GetLastError();
    *err = static_cast<int>(context->lastError);
  }
  return AsHandle(h);
}

UINT DIAMONDAPI FciRead(INT_PTR hf, void* memory, UINT count, int* err, void*) {
  const UINT n = ReadHandle(hf, memory, count);
  if (n == static_cast<UINT>(-1)) *err = static_cast<int>(::GetLastError());
  return n;
}

UINT DIAMONDAPI FciWrite(INT_PTR hf, void* memory, UINT count, int* err, void* pv) {
  const UINT n = WriteHandle(hf, memory, count);
  if (n != count) {
    static_cast<FciContext*>(pv)->lastError = ::GetLastError();
    *err = static_cast<int>(::GetLastError());
  }
  return n;
}

int DIAMONDAPI FciClose(INT_PTR hf, int* err, void*) {
  if (::CloseHandle(FromHandle(hf))) return 0;
  *err = static_cast<int>(::GetLastError());
  return -1;
}

long DIAMONDAPI FciSeek(INT_PTR hf, long distance, int origin, int* err, void*) {
  const long at = SeekHandle(hf, distance, origin);
  if (at == -1) *err = static_cast<int>(::GetLastError());
  return at;
}

int DIAMONDAPI FciDelete(char* file, int* err, void*) {
  if (::DeleteFileA(file)) return 0;
  *err = static_cast<int>(::GetLastError());
  return -1;
}

BOOL DIAMONDAPI FciTempFile(char* name, int size, void* pv) {
  auto* context = static_cast<FciContext*>(pv);
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const std::string path =
        context->tempFolder + "qv" + context->tag + "-" + std::to_string(context->next++) + ".fci";
    if (path.size() + 1 > static_cast<std::size_t>(size)) return FALSE;
    if (::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) continue;
    std::memcpy(name, path.c_str(), path.size() + 1);
    return TRUE;
  }
  return FALSE;
}

int DIAMONDAPI FciFilePlaced(PCCAB, char*, long, BOOL, void*) { return 0; }
BOOL DIAMONDAPI FciNextCabinet(PCCAB, ULONG, void*) { return FALSE; }
long DIAMONDAPI FciStatus(UINT, ULONG, ULONG, void*) { return 0; }

// Opens a file to add, and gives its date, time and attributes as the cabinet keeps them.
INT_PTR DIAMONDAPI FciOpenInfo(char* name, USHORT* date, USHORT* time, USHORT* attributes, int* err,
                               void* pv) {
  auto* context = static_cast<FciContext*>(pv);
  const HANDLE h = ::CreateFileA(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (h == INVALID_HANDLE_VALUE) {
    context->lastError = ::GetLastError();
    *err = static_cast<int>(context->lastError);
    return -1;
  }
  BY_HANDLE_FILE_INFORMATION info{};
  FILETIME local{};
  *date = 0;
  *time = 0;
  if (::GetFileInformationByHandle(h, &info) && ::FileTimeToLocalFileTime(&info.ftLastWriteTime, &local)) {
    ::FileTimeToDosDateTime(&local, date, time);
  }
  *attributes = static_cast<USHORT>(
      (info.dwFileAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                FILE_ATTRIBUTE_ARCHIVE)) |
      (context->nameIsUtf8 ? _A_NAME_IS_UTF : 0));
  return AsHandle(h);
}

const char* FciErrorText(int oper) {
  switch (oper) {
    case FCIERR_OPEN_SRC: return "a file to add can't be opened";
    case FCIERR_READ_SRC: return "a file to add can't be read";
    case FCIERR_ALLOC_FAIL: return "memory ran out";
    case FCIERR_TEMP_FILE: return "a scratch file can't be made";
    case FCIERR_BAD_COMPR_TYPE: return "the compression is unknown";
    case FCIERR_CAB_FILE: return "the cabinet file can't be written";
    case FCIERR_USER_ABORT: return "it was stopped";
    case FCIERR_MCI_FAIL: return "the compressor failed";
    default: return "the cabinet functions failed";
  }
}

// --- expansion through FDI ----------------------------------------------------------------------

struct FdiContext {
  std::string archive;
  const cabinet::Layout* layout = nullptr;
  std::map<std::size_t, std::string> targets;  // entry index to scratch path
  std::size_t next = 0;                        // index of the next entry FDI offers
  std::set<INT_PTR> open;                      // files being written
  std::string fault;
  DWORD lastError = 0;
};

// FDI's file callbacks carry no context of their own; one expansion runs at a time on a thread.
thread_local FdiContext* tCurrentExpansion = nullptr;

INT_PTR DIAMONDAPI FdiOpen(char* file, int flags, int) {
  const char* path = file;
  if (tCurrentExpansion != nullptr && std::strcmp(file, kCabinetToken) == 0) {
    path = tCurrentExpansion->archive.c_str();
  }
  return AsHandle(OpenLikeRuntime(path, flags));
}

UINT DIAMONDAPI FdiRead(INT_PTR hf, void* memory, UINT count) { return ReadHandle(hf, memory, count); }
UINT DIAMONDAPI FdiWrite(INT_PTR hf, void* memory, UINT count) { return WriteHandle(hf, memory, count); }

int DIAMONDAPI FdiClose(INT_PTR hf) {
  if (tCurrentExpansion != nullptr) tCurrentExpansion->open.erase(hf);
  return ::CloseHandle(FromHandle(hf)) ? 0 : -1;
}

long DIAMONDAPI FdiSeek(INT_PTR hf, long distance, int origin) { return SeekHandle(hf, distance, origin); }

INT_PTR DIAMONDAPI FdiNotify(FDINOTIFICATIONTYPE type, PFDINOTIFICATION note) {
  auto* context = static_cast<FdiContext*>(note->pv);
  switch (type) {
    case fdintCOPY_FILE: {
      // FDI offers the entries in the order of their records.
      const std::size_t index = context->next++;
      if (index >= context->layout->entries.size() ||
          static_cast<std::uint32_t>(note->cb) != context->layout->entries[index].size) {
        context->fault = "its entries read differently from its records";
        return -1;
      }
      const auto target = context->targets.find(index);
      if (target == context->targets.end()) return 0;
      const HANDLE h = ::CreateFileA(target->second.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
      if (h == INVALID_HANDLE_VALUE) {
        context->lastError = ::GetLastError();
        context->fault = "\"" + target->second + "\" can't be made: " + ErrorText(context->lastError);
        return -1;
      }
      context->open.insert(AsHandle(h));
      return AsHandle(h);
    }
    case fdintCLOSE_FILE_INFO:
      context->open.erase(note->hf);
      ::CloseHandle(FromHandle(note->hf));
      return TRUE;
    case fdintNEXT_CABINET:
      context->fault = "it continues in another cabinet";
      return -1;
    default:
      return 0;
  }
}

const char* FdiErrorText(int oper) {
  switch (oper) {
    case FDIERROR_CABINET_NOT_FOUND: return "it can't be opened";
    case FDIERROR_NOT_A_CABINET: return "it is not a cabinet";
    case FDIERROR_UNKNOWN_CABINET_VERSION: return "it is of an unknown cabinet version";
    case FDIERROR_CORRUPT_CABINET: return "it is damaged";
    case FDIERROR_ALLOC_FAIL: return "memory ran out";
    case FDIERROR_BAD_COMPR_TYPE: return "it is compressed with a method that can't be expanded";
    case FDIERROR_MDI_FAIL: return "its data is damaged and can't be expanded";
    case FDIERROR_TARGET_FILE: return "an entry can't be written";
    case FDIERROR_RESERVE_MISMATCH: return "its reserved areas don't match";
    case FDIERROR_WRONG_CABINET: return "it belongs to another set of cabinets";
    case FDIERROR_USER_ABORT: return "it was stopped";
    default: return "the cabinet functions failed";
  }
}

// Wine's FDI writes past its buffers when MSZIP data does not decode, so the data of every
// compressed folder to expand is decoded here first, block by block with the block before as its
// window, and must give exactly what each block claims. Returns what is wrong, or nothing.
std::optional<std::string> CheckMszip(cabinet::RandomFile& file, const cabinet::Folder& folder, std::size_t index) {
  z_stream z{};
  if (inflateInit2(&z, -MAX_WBITS) != Z_OK) return std::string("the decoder can't start");
  struct Ender {
    z_stream* z;
    ~Ender() { inflateEnd(z); }
  } ender{&z};
  const std::size_t header = 8u + folder.blockReserve;
  std::vector<unsigned char> in;
  std::vector<unsigned char> out(cabinet::kBlockSize);
  std::vector<unsigned char> window;
  for (const cabinet::DataBlock& block : folder.blocks) {
    const std::string where = "a data block of its folder " + std::to_string(index);
    in.resize(block.length);
    if (!file.ReadAt(block.offset, in.data(), in.size())) return where + " can't be read";
    if (block.length < header + 2 || in[header] != 'C' || in[header + 1] != 'K') {
      return where + " does not begin as MSZIP data does";
    }
    inflateReset(&z);
    if (!window.empty() && inflateSetDictionary(&z, window.data(), static_cast<uInt>(window.size())) != Z_OK) {
      return where + " can't be decoded";
    }
    z.next_in = in.data() + header + 2;
    z.avail_in = static_cast<uInt>(block.length - header - 2);
    z.next_out = out.data();
    z.avail_out = static_cast<uInt>(out.size());
    const int result = inflate(&z, Z_FINISH);
    if (result != Z_STREAM_END || z.total_out != block.expanded) {
      return where + " does not decode to the " + std::to_string(block.expanded) + " bytes it claims";
    }
    window.assign(out.begin(), out.begin() + block.expanded);
  }
  return std::nullopt;
}

}  // namespace

Win32CollectionPacker::~Win32CollectionPacker() { ReleaseQuietly(); }

std::unique_ptr<cabinet::RandomFile> Win32CollectionPacker::OpenForReading(const std::string& path) {
  UniqueFile file = OpenFile(path.c_str(), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
  if (!file) {
    lastError_ = ::GetLastError();
    return nullptr;
  }
  return std::make_unique<HandleFile>(std::move(file));
}

std::unique_ptr<cabinet::RandomFile> Win32CollectionPacker::CreateNew(const std::string& path) {
  UniqueFile file = OpenFile(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW);
  if (!file) {
    lastError_ = ::GetLastError();
    return nullptr;
  }
  return std::make_unique<HandleFile>(std::move(file));
}

bool Win32CollectionPacker::IsFile(const std::string& path) {
  const DWORD a = ::GetFileAttributesA(path.c_str());
  return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool Win32CollectionPacker::IsFolder(const std::string& path) {
  const DWORD a = ::GetFileAttributesA(path.c_str());
  return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool Win32CollectionPacker::RemoveFile(const std::string& path) { return ::DeleteFileA(path.c_str()) != 0; }

void Win32CollectionPacker::RemoveFolderTree(const std::string& path) {
  WIN32_FIND_DATAA found{};
  if (const UniqueSearch search = AdoptSearch(::FindFirstFileA(JoinPath(path, "*").c_str(), &found))) {
    do {
      const std::string name = found.cFileName;
      if (name == "." || name == "..") continue;
      const std::string inner = JoinPath(path, name);
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RemoveFolderTree(inner);
      } else {
        ::DeleteFileA(inner.c_str());
      }
    } while (::FindNextFileA(search.Get(), &found));
  }
  ::RemoveDirectoryA(path.c_str());
}

bool Win32CollectionPacker::MakeFolders(const std::string& path) {
  // Each folder along the path, from the first; those that exist already fail harmlessly.
  for (std::size_t at = path.find_first_of("\\/", 0); at != std::string::npos;
       at = path.find_first_of("\\/", at + 1)) {
    if (at > 0) ::CreateDirectoryA(path.substr(0, at).c_str(), nullptr);
  }
  if (!::CreateDirectoryA(path.c_str(), nullptr)) lastError_ = ::GetLastError();
  return IsFolder(path);
}

void Win32CollectionPacker::SetModified(const std::string& path, std::uint16_t date, std::uint16_t time) {
  FILETIME local{};
  FILETIME universal{};
  if (!::DosDateTimeToFileTime(date, time, &local) || !::LocalFileTimeToFileTime(&local, &universal)) return;
  const UniqueFile file = OpenFile(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, OPEN_EXISTING);
  if (file) ::SetFileTime(file.Get(), nullptr, nullptr, &universal);
}

std::string Win32CollectionPacker::LastErrorText() { return ErrorText(lastError_); }

std::string Win32CollectionPacker::ErrorText(std::uint32_t error) {
  return win32::ErrorText(static_cast<DWORD>(error));
}

std::string Win32CollectionPacker::ScratchFolder() {
  char temp[MAX_PATH + 1];
  const DWORD n = ::GetTempPathA(sizeof temp, temp);
  if (n == 0 || n > MAX_PATH) return ".\\";
  return std::string(temp, n);
}

std::string Win32CollectionPacker::ProcessTag() { return std::to_string(::GetCurrentProcessId()); }

std::optional<std::string> Win32CollectionPacker::NameOfEntry(const cabinet::Entry& entry) {
  if ((entry.attributes & cabinet::kNameIsUtf8) == 0 || IsAscii(entry.rawName)) return entry.rawName;
  return Convert(entry.rawName, CP_UTF8, CP_ACP);
}

cabinet::Entry Win32CollectionPacker::EntryForEmptyFile(const Item& item) {
  cabinet::Entry entry;
  entry.rawName = item.entry;
  entry.attributes = FILE_ATTRIBUTE_ARCHIVE;
  if (!IsAscii(item.entry)) {
    if (auto utf8 = Convert(item.entry, CP_ACP, CP_UTF8)) {
      entry.rawName = *utf8;
      entry.attributes |= _A_NAME_IS_UTF;
    }
  }
  WIN32_FILE_ATTRIBUTE_DATA data{};
  FILETIME local{};
  if (::GetFileAttributesExA(item.source.c_str(), GetFileExInfoStandard, &data) &&
      ::FileTimeToLocalFileTime(&data.ftLastWriteTime, &local)) {
    ::FileTimeToDosDateTime(&local, &entry.date, &entry.time);
  }
  return entry;
}

void Win32CollectionPacker::Compress(const std::vector<Item>& items, const std::string& scratch,
                                     std::vector<std::string>& made) {
  FciContext context;
  context.output = scratch;
  context.tempFolder = ScratchFolder();
  context.tag = ProcessTag();
  auto fail = [&](const std::string& why) {
    Raise(FailureNumber::DeviceIOError, "Cannot pack into \"" + scratch + "\": " + why);
  };

  CCAB cab{};
  cab.cb = CB_MAX_DISK;
  cab.cbFolderThresh = CB_MAX_DISK;
  cab.iCab = 1;
  std::strcpy(cab.szCab, kCabinetToken);
  made.push_back(scratch);

  ERF error{};
  const UniqueCompressor fci(::FCICreate(&error, FciFilePlaced, AllocateMemory, FreeMemory, FciOpen, FciRead, FciWrite, FciClose,
                               FciSeek, FciDelete, FciTempFile, &cab, &context));
  if (!fci) fail(FciErrorText(error.erfOper));

  for (const Item& item : items) {
    std::string name = item.entry;
    context.nameIsUtf8 = !IsAscii(name);
    if (context.nameIsUtf8) {
      auto utf8 = Convert(name, CP_ACP, CP_UTF8);
      if (!utf8) fail("the name \"" + name + "\" can't be written as UTF-8");
      name = *utf8;
    }
    std::string source = item.source;
    if (!::FCIAddFile(fci.Get(), source.data(), name.data(), FALSE, FciNextCabinet, FciStatus, FciOpenInfo,
                      item.stored ? tcompTYPE_NONE : tcompTYPE_MSZIP)) {
      std::string why = FciErrorText(error.erfOper);
      if (error.erfOper == FCIERR_OPEN_SRC) why += " (\"" + item.source + "\": " + ErrorText(context.lastError) + ")";
      fail(why);
    }
    if (!::FCIFlushFolder(fci.Get(), FciNextCabinet, FciStatus)) fail(FciErrorText(error.erfOper));
  }
  if (!::FCIFlushCabinet(fci.Get(), FALSE, FciNextCabinet, FciStatus)) {
    std::string why = FciErrorText(error.erfOper);
    if (context.lastError != 0) why += ": " + ErrorText(context.lastError);
    fail(why);
  }
}

void Win32CollectionPacker::Expand(const std::string& archive, const cabinet::Layout& layout,
                                   const std::vector<Target>& targets) {
  FdiContext context;
  context.archive = archive;
  context.layout = &layout;
  for (const Target& t : targets) context.targets[t.entry] = t.path;
  auto fail = [&](const std::string& why) {
    Raise(FailureNumber::PathFileAccessError, "Cannot unpack \"" + archive + "\": " + why);
  };

  {
    auto file = OpenForReading(archive);
    if (!file) fail("it can't be read: " + LastErrorText());
    std::set<std::size_t> folders;
    for (const Target& t : targets) folders.insert(layout.entries[t.entry].folder);
    for (const std::size_t f : folders) {
      if ((layout.folders[f].compression & 0xF) != cabinet::kMszip) continue;
      if (auto fault = CheckMszip(*file, layout.folders[f], f)) fail(*fault);
    }
  }

  ERF error{};
  UniqueExpander fdi(
      ::FDICreate(AllocateMemory, FreeMemory, FdiOpen, FdiRead, FdiWrite, FdiClose, FdiSeek, cpuUNKNOWN, &error));
  if (!fdi) fail(FdiErrorText(error.erfOper));
  tCurrentExpansion = &context;
  char name[sizeof kCabinetToken];
  std::memcpy(name, kCabinetToken, sizeof kCabinetToken);
  char path[1] = {'\0'};
  const BOOL copied = ::FDICopy(fdi.Get(), name, path, 0, FdiNotify, nullptr, &context);
  tCurrentExpansion = nullptr;
  fdi.Reset();
  // A file that FDI was writing when it stopped is closed here; the caller removes it.
  for (const INT_PTR h : context.open) ::CloseHandle(FromHandle(h));
  if (!context.fault.empty()) fail(context.fault);
  if (!copied) fail(FdiErrorText(error.erfOper));
}

std::unique_ptr<CollectionPacker> Win32CollectionPackers::Create() {
  return std::make_unique<Win32CollectionPacker>();
}

}  // namespace quorvane::platform::win32
