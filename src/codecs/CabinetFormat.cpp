#include "codecs/CabinetFormat.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace quorvane::codecs::cabinet {

namespace {

constexpr std::size_t kHeaderSize = 36;
constexpr std::size_t kFolderRecordSize = 8;
constexpr std::size_t kFileRecordSize = 16;
constexpr std::size_t kBlockHeaderSize = 8;
constexpr std::size_t kLongestName = 255;

std::uint16_t Get16(const std::uint8_t* p) {
  return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}

std::uint32_t Get32(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
         (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

void Put16(std::vector<std::uint8_t>& out, std::uint16_t v) {
  out.push_back(static_cast<std::uint8_t>(v & 0xFF));
  out.push_back(static_cast<std::uint8_t>(v >> 8));
}

void Put32(std::vector<std::uint8_t>& out, std::uint32_t v) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<std::uint8_t>((v >> shift) & 0xFF));
}

// A name as a message shows it: control characters become question marks.
std::string Shown(const std::string& name) {
  std::string out = name;
  for (char& c : out) {
    if (static_cast<unsigned char>(c) < 0x20) c = '?';
  }
  return "\"" + out + "\"";
}

std::string Number(std::uint64_t n) { return std::to_string(n); }

const char* MethodName(std::uint16_t method) {
  switch (method) {
    case 2: return "Quantum";
    case 3: return "LZX";
    default: return "an unknown method";
  }
}

char Upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

std::string UpperCase(std::string text) {
  for (char& c : text) c = Upper(c);
  return text;
}

}  // namespace

// The checksum of cabinet data blocks: the bytes taken four at a time as little-endian words and
// combined by exclusive or, the one to three left over taken in their own order.
std::uint32_t Checksum(const std::uint8_t* p, std::size_t n, std::uint32_t seed) {
  std::uint32_t sum = seed;
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) sum ^= Get32(p + i);
  std::uint32_t rest = 0;
  switch (n - i) {
    case 3:
      rest |= static_cast<std::uint32_t>(p[i++]) << 16;
      [[fallthrough]];
    case 2:
      rest |= static_cast<std::uint32_t>(p[i++]) << 8;
      [[fallthrough]];
    case 1:
      rest |= p[i];
      break;
    default:
      break;
  }
  return sum ^ rest;
}

std::optional<std::string> ReadLayout(RandomFile& file, Layout& layout) {
  layout = Layout{};
  const std::uint64_t size = file.Size();
  std::uint8_t header[kHeaderSize];
  if (size < kHeaderSize || !file.ReadAt(0, header, kHeaderSize)) {
    return "it is too short to be a cabinet (" + Number(size) + " bytes)";
  }
  if (std::memcmp(header, "MSCF", 4) != 0) return std::string("it is not a cabinet");
  const std::uint32_t declared = Get32(header + 8);
  if (declared > size) {
    return "it is truncated: its header declares " + Number(declared) + " bytes and the file holds " +
           Number(size);
  }
  if (declared < kHeaderSize) return "its header declares an impossible size of " + Number(declared) + " bytes";
  if (header[25] != 1) return "it is of an unknown cabinet version " + Number(header[25]);
  const std::uint32_t filesAt = Get32(header + 16);
  const std::uint16_t folderCount = Get16(header + 26);
  const std::uint16_t fileCount = Get16(header + 28);
  const std::uint16_t flags = Get16(header + 30);
  if ((flags & 3) != 0) return std::string("it is one part of a set of several cabinets");
  layout.declaredSize = declared;

  std::uint64_t at = kHeaderSize;
  if ((flags & 4) != 0) {
    std::uint8_t reserve[4];
    if (at + 4 > declared || !file.ReadAt(at, reserve, 4)) {
      return std::string("its header runs past the end of the file");
    }
    layout.headerReserve = Get16(reserve);
    layout.folderReserve = reserve[2];
    layout.blockReserve = reserve[3];
    at += 4 + layout.headerReserve;
  }

  // The folder records follow the header.
  const std::size_t folderRecord = kFolderRecordSize + layout.folderReserve;
  const std::uint64_t foldersEnd = at + static_cast<std::uint64_t>(folderCount) * folderRecord;
  if (foldersEnd > declared) return std::string("its folder records run past the end of the file");
  std::vector<std::uint8_t> records(static_cast<std::size_t>(foldersEnd - at));
  if (!records.empty() && !file.ReadAt(at, records.data(), records.size())) {
    return std::string("its folder records can't be read");
  }
  layout.folders.resize(folderCount);
  for (std::size_t i = 0; i < folderCount; ++i) {
    const std::uint8_t* r = records.data() + i * folderRecord;
    Folder& folder = layout.folders[i];
    folder.dataOffset = Get32(r);
    folder.blockCount = Get16(r + 4);
    folder.compression = Get16(r + 6);
    folder.blockReserve = layout.blockReserve;
    const std::uint16_t method = folder.compression & 0xF;
    if (method != kStored && method != kMszip) {
      return "its folder " + Number(i) + " is compressed with " + MethodName(method) +
             ", which this program does not unpack";
    }
  }

  // The file records: fixed fields, then the name up to its terminating zero.
  if (filesAt > declared) return std::string("its file records start past the end of the file");
  std::uint64_t pos = filesAt;
  layout.entries.resize(fileCount);
  for (std::size_t i = 0; i < fileCount; ++i) {
    if (pos + kFileRecordSize + 1 > declared) {
      return "its file record " + Number(i) + " runs past the end of the file";
    }
    std::array<std::uint8_t, kFileRecordSize + kLongestName + 1> record{};
    const std::size_t wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(record.size(), declared - pos));
    if (!file.ReadAt(pos, record.data(), wanted)) return "its file record " + Number(i) + " can't be read";
    const std::uint8_t* nameStart = record.data() + kFileRecordSize;
    const std::uint8_t* recordEnd = record.data() + wanted;
    const std::uint8_t* nameEnd = std::find(nameStart, recordEnd, std::uint8_t{0});
    if (nameEnd == recordEnd) {
      return "the name of its file record " + Number(i) +
             " has no end within 255 bytes or before the end of the file";
    }
    Entry& entry = layout.entries[i];
    entry.size = Get32(record.data());
    entry.folderOffset = Get32(record.data() + 4);
    entry.folder = Get16(record.data() + 8);
    entry.date = Get16(record.data() + 10);
    entry.time = Get16(record.data() + 12);
    entry.attributes = Get16(record.data() + 14);
    entry.rawName.assign(reinterpret_cast<const char*>(nameStart),
                         static_cast<std::size_t>(nameEnd - nameStart));
    if (entry.folder >= folderCount) {
      return "its entry " + Shown(entry.rawName) + " belongs to folder " + Number(entry.folder) +
             ", which the cabinet does not have";
    }
    pos += kFileRecordSize + entry.rawName.size() + 1;
  }
  return std::nullopt;
}

std::optional<std::string> WalkFolder(RandomFile& file, Layout& layout, std::size_t index) {
  Folder& folder = layout.folders.at(index);
  if (folder.walked) return std::nullopt;
  const std::uint64_t declared = layout.declaredSize;
  const std::uint64_t blockHeader = kBlockHeaderSize + folder.blockReserve;
  const bool stored = (folder.compression & 0xF) == kStored;
  std::vector<DataBlock> blocks;
  blocks.reserve(folder.blockCount);
  std::uint64_t pos = folder.dataOffset;
  std::uint64_t expanded = 0;
  std::vector<std::uint8_t> block;
  for (std::size_t b = 0; b < folder.blockCount; ++b) {
    std::uint8_t h[kBlockHeaderSize];
    if (pos + blockHeader > declared || !file.ReadAt(pos, h, sizeof h)) {
      return "the data of its folder " + Number(index) + " runs past the end of the file";
    }
    const std::uint32_t checksum = Get32(h);
    const std::uint16_t packed = Get16(h + 4);
    const std::uint16_t unpacked = Get16(h + 6);
    if (unpacked > kBlockSize) {
      return "a data block of its folder " + Number(index) + " claims to expand to " + Number(unpacked) +
             " bytes, more than a block holds";
    }
    if (stored && packed != unpacked) {
      return "a stored data block of its folder " + Number(index) + " claims " + Number(unpacked) +
             " bytes and holds " + Number(packed);
    }
    if (pos + blockHeader + packed > declared) {
      return "the data of its folder " + Number(index) + " runs past the end of the file";
    }
    const auto length = static_cast<std::uint32_t>(blockHeader + packed);
    // The checksum covers the data, then the two sizes, and not the block's reserved bytes, as
    // the platform's expander reads it; a zero means the writer gave none. Damaged data goes no
    // further than here.
    if (checksum != 0) {
      block.resize(length);
      if (!file.ReadAt(pos, block.data(), block.size())) {
        return "the data of its folder " + Number(index) + " can't be read";
      }
      const std::uint32_t sum = Checksum(block.data() + 4, 4, Checksum(block.data() + blockHeader, packed, 0));
      if (sum != checksum) {
        return "a data block of its folder " + Number(index) + " is damaged: its checksum does not match";
      }
    }
    blocks.push_back(DataBlock{pos, length, unpacked, checksum});
    expanded += unpacked;
    pos += length;
  }
  for (const Entry& entry : layout.entries) {
    if (entry.folder != index) continue;
    if (static_cast<std::uint64_t>(entry.folderOffset) + entry.size > expanded) {
      return "its entry " + Shown(entry.rawName) + " claims " + Number(entry.size) +
             " bytes that its folder does not hold";
    }
  }
  folder.blocks = std::move(blocks);
  folder.expandedSize = expanded;
  folder.walked = true;
  return std::nullopt;
}

std::optional<std::string> EntryNameFault(const std::string& name) {
  if (name.empty()) return std::string("has no name");
  if (name.size() > kLongestName) return std::string("has a name longer than 255 bytes");
  for (const char c : name) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '\\' || c == '/') {
      return std::string("holds a folder separator, so it would be written outside the destination folder");
    }
    if (c == ':') {
      return std::string("holds a colon, which names a drive or a stream outside the destination folder");
    }
    if (u < 0x20) return std::string("holds a control character, which no file name may hold");
    if (std::strchr("<>\"|?*", c) != nullptr) {
      return std::string("holds a character that no file name may hold");
    }
  }
  if (name == "." || name == "..") {
    return std::string("names a folder, so it would be written outside the destination folder");
  }
  if (name.back() == '.' || name.back() == ' ') {
    return std::string("ends in a point or a blank, which the file system would drop from the name");
  }
  // The devices' names stand for the device in any folder, whatever the extension.
  std::string base = UpperCase(name.substr(0, name.find('.')));
  while (!base.empty() && base.back() == ' ') base.pop_back();
  static const char* const kDevices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  bool device = std::find_if(std::begin(kDevices), std::end(kDevices),
                             [&](const char* d) { return base == d; }) != std::end(kDevices);
  if (base.size() == 4 && (base.compare(0, 3, "COM") == 0 || base.compare(0, 3, "LPT") == 0) &&
      base[3] >= '1' && base[3] <= '9') {
    device = true;
  }
  if (device) return std::string("is the name of a device, not of a file");
  return std::nullopt;
}

bool SameEntryName(const std::string& a, const std::string& b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Upper(x) == Upper(y); });
}

bool StoredWithoutCompression(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  const std::string extension = UpperCase(name.substr(dot + 1));
  static const char* const kPacked[] = {"JPG", "JPEG", "JPE", "JFIF", "GIF", "PNG"};
  return std::find_if(std::begin(kPacked), std::end(kPacked),
                      [&](const char* e) { return extension == e; }) != std::end(kPacked);
}

std::string EntryNameOfPath(const std::string& path) {
  const std::size_t cut = path.find_last_of("\\/:");
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

std::optional<std::string> Assemble(RandomFile& out, const std::vector<Piece>& pieces) {
  if (pieces.size() > std::numeric_limits<std::uint16_t>::max()) {
    return std::string("it would hold more folders than a cabinet can");
  }
  std::size_t entryCount = 0;
  std::uint64_t recordBytes = 0;
  for (const Piece& piece : pieces) {
    if (piece.folder == nullptr || !piece.folder->walked || (piece.source == nullptr && !piece.folder->blocks.empty())) {
      return std::string("a folder to copy was not read");
    }
    if (piece.folder->blockReserve != 0) {
      return std::string("a folder to copy carries reserved bytes in its data blocks");
    }
    entryCount += piece.entries.size();
    for (const Entry& entry : piece.entries) recordBytes += kFileRecordSize + entry.rawName.size() + 1;
  }
  if (entryCount > std::numeric_limits<std::uint16_t>::max()) {
    return std::string("it would hold more entries than a cabinet can");
  }

  const std::uint64_t filesAt = kHeaderSize + kFolderRecordSize * pieces.size();
  const std::uint64_t dataAt = filesAt + recordBytes;
  std::uint64_t end = dataAt;
  std::vector<std::uint32_t> dataOffsets;
  for (const Piece& piece : pieces) {
    dataOffsets.push_back(static_cast<std::uint32_t>(std::min<std::uint64_t>(end, 0xFFFFFFFFu)));
    for (const DataBlock& block : piece.folder->blocks) end += block.length;
  }
  if (end > 0xFFFFFFFFu) return std::string("it would grow beyond the 4 GB a cabinet can hold");

  std::vector<std::uint8_t> head;
  head.reserve(static_cast<std::size_t>(dataAt));
  head.insert(head.end(), {'M', 'S', 'C', 'F'});
  Put32(head, 0);
  Put32(head, static_cast<std::uint32_t>(end));
  Put32(head, 0);
  Put32(head, static_cast<std::uint32_t>(filesAt));
  Put32(head, 0);
  head.push_back(3);  // version 1.3
  head.push_back(1);
  Put16(head, static_cast<std::uint16_t>(pieces.size()));
  Put16(head, static_cast<std::uint16_t>(entryCount));
  Put16(head, 0);  // no reserve, no neighbouring cabinets
  Put16(head, 0);  // set
  Put16(head, 0);  // number in the set
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    Put32(head, dataOffsets[i]);
    Put16(head, static_cast<std::uint16_t>(pieces[i].folder->blocks.size()));
    Put16(head, pieces[i].folder->compression);
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    for (const Entry& entry : pieces[i].entries) {
      Put32(head, entry.size);
      Put32(head, entry.folderOffset);
      Put16(head, static_cast<std::uint16_t>(i));
      Put16(head, entry.date);
      Put16(head, entry.time);
      Put16(head, entry.attributes);
      head.insert(head.end(), entry.rawName.begin(), entry.rawName.end());
      head.push_back(0);
    }
  }
  if (!out.WriteAt(0, head.data(), head.size())) return std::string("its header can't be written");

  // The data blocks, copied as they are; runs of adjacent blocks go in large pieces.
  std::vector<std::uint8_t> buffer(1u << 20);
  std::uint64_t to = dataAt;
  for (const Piece& piece : pieces) {
    const auto& blocks = piece.folder->blocks;
    std::size_t b = 0;
    while (b < blocks.size()) {
      const std::uint64_t runStart = blocks[b].offset;
      std::uint64_t runEnd = runStart + blocks[b].length;
      ++b;
      while (b < blocks.size() && blocks[b].offset == runEnd) runEnd += blocks[b++].length;
      for (std::uint64_t from = runStart; from < runEnd;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), runEnd - from));
        if (!piece.source->ReadAt(from, buffer.data(), count)) {
          return std::string("the data of a folder to copy can't be read");
        }
        if (!out.WriteAt(to, buffer.data(), count)) return std::string("its data can't be written");
        from += count;
        to += count;
      }
    }
  }
  return std::nullopt;
}

}  // namespace quorvane::codecs::cabinet
