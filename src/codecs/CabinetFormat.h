#pragma once
// The layout of a cabinet file, read and checked before any byte of it is trusted, and written
// for the collection files this program makes: the header, one folder record a stored file, the
// file records, then each folder's data blocks. The packers use the platform's or the library's
// cabinet code to compress and to expand the data; this code only lays the pieces out, checks
// what a file claims against what it holds, and decides which names may be unpacked.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorvane::codecs::cabinet {

// Compression of a folder's data, as a cabinet names it.
inline constexpr std::uint16_t kStored = 0;
inline constexpr std::uint16_t kMszip = 1;

// A file record's attribute bit: the name is UTF-8.
inline constexpr std::uint16_t kNameIsUtf8 = 0x80;

// The largest number of bytes a data block may expand to.
inline constexpr std::uint32_t kBlockSize = 32768;

// Random access to an open file.
class RandomFile {
 public:
  virtual ~RandomFile() = default;
  virtual std::uint64_t Size() = 0;
  // Reads exactly `count` bytes at `offset`; false when they are not all there.
  virtual bool ReadAt(std::uint64_t offset, void* buffer, std::size_t count) = 0;
  // Writes all `count` bytes at `offset`; false on failure.
  virtual bool WriteAt(std::uint64_t offset, const void* data, std::size_t count) = 0;
  // Makes what was written durable; false on failure.
  virtual bool Flush() = 0;
};

struct DataBlock {
  std::uint64_t offset = 0;     // of the block's header
  std::uint32_t length = 0;     // header and data
  std::uint32_t expanded = 0;   // bytes the block expands to
  std::uint32_t checksum = 0;   // as the block's header holds it; 0 when its writer gave none
};

// The checksum of data blocks over `n` bytes, from `seed`: the bytes taken four at a time as
// little-endian words and combined by exclusive or, the one to three left over in their own
// order. A block's checksum is that of its data, then from there of the two sizes in its header.
std::uint32_t Checksum(const std::uint8_t* p, std::size_t n, std::uint32_t seed);

struct Folder {
  std::uint32_t dataOffset = 0;
  std::uint16_t blockCount = 0;
  std::uint16_t compression = 0;  // the whole field; its low four bits name the method
  std::uint8_t blockReserve = 0;  // bytes each data block carries after its header
  // Filled by WalkFolder: the blocks, and what they expand to together.
  bool walked = false;
  std::vector<DataBlock> blocks;
  std::uint64_t expandedSize = 0;
};

struct Entry {
  std::uint32_t size = 0;
  std::uint32_t folderOffset = 0;  // where the entry starts in its folder's expanded data
  std::uint16_t folder = 0;
  std::uint16_t date = 0;
  std::uint16_t time = 0;
  std::uint16_t attributes = 0;
  std::string rawName;  // the name's bytes as stored
};

struct Layout {
  std::uint32_t declaredSize = 0;
  std::uint16_t headerReserve = 0;
  std::uint8_t folderReserve = 0;
  std::uint8_t blockReserve = 0;
  std::vector<Folder> folders;
  std::vector<Entry> entries;
};

// Reads the header, the folder records and the file records. Returns what is wrong with them in
// words, or nothing when they hold together: a file shorter than its header says, a set of
// several cabinets, records beyond the end, an entry in a folder that isn't there, a method of
// compression other than none and MSZIP.
std::optional<std::string> ReadLayout(RandomFile& file, Layout& layout);

// Reads the headers of a folder's data blocks and checks them against the file and against the
// entries stored in it: every block inside the file, no block expanding beyond the block size, a
// stored block as long as it expands, a checksum that matches the data (0 stands for none), and
// every entry of the folder inside what its blocks expand to. Returns what is wrong, or nothing.
std::optional<std::string> WalkFolder(RandomFile& file, Layout& layout, std::size_t folder);

// Why an entry of this name may not be unpacked, or nothing when it may: an empty name, one that
// names a folder (a backslash, a slash, a drive's colon), "." or "..", a character that no file
// name holds, a device's name, a trailing point or blank, or a name longer than 255 bytes.
std::optional<std::string> EntryNameFault(const std::string& name);

// Whether two entry names are the same file name, letter case aside (ASCII letters).
bool SameEntryName(const std::string& a, const std::string& b);

// Whether a file of this name is stored without compression: pictures that are compressed
// already (JPEG, GIF, PNG), judged by the extension in any letter case.
bool StoredWithoutCompression(const std::string& name);

// The entry's name for a file path: what follows the last backslash, slash or drive colon.
std::string EntryNameOfPath(const std::string& path);

// One folder of the file being assembled: its data comes from `source`, copied block by block,
// and it holds exactly the entries given (their folder index is set on writing). A folder
// without blocks, for empty entries, needs no source.
struct Piece {
  RandomFile* source = nullptr;
  const Folder* folder = nullptr;
  std::vector<Entry> entries;
};

// Writes a whole cabinet into `out` from the pieces, in their order: header, folder records, file
// records, then the data. Returns what went wrong, or nothing.
std::optional<std::string> Assemble(RandomFile& out, const std::vector<Piece>& pieces);

}  // namespace quorvane::codecs::cabinet
