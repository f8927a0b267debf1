// The collection packer, the same way over libgcab natively and over cabinet.dll under Wine:
// what PackFile and Release write (a cabinet with one folder an entry, pictures stored and the
// rest compressed, old entries kept, same names replaced), what UnpackFiles writes back, and what
// it refuses: names that lead out of the destination and archives that are cut short or claim
// more than they hold, with nothing written for them, and the previous archive whole whenever a
// release fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "Support.h"
#include "base/Failure.h"
#include "platform/CollectionPacker.h"
#include "platform/Service.h"

namespace quorvane::testing {
namespace {

namespace fs = std::filesystem;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

std::unique_ptr<platform::CollectionPacker> NewPacker() {
  return platform::Use<platform::CollectionPackers>().Create();
}

void Put(const std::string& path, const std::string& bytes) {
  File f(std::fopen(path.c_str(), "wb"));
  ASSERT_NE(f, nullptr) << path;
  ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), f.get()), bytes.size());
}

std::optional<std::string> Bytes(const std::string& path) {
  File f(std::fopen(path.c_str(), "rb"));
  if (!f) return std::nullopt;
  std::string out;
  char chunk[65536];
  std::size_t n = 0;
  while ((n = std::fread(chunk, 1, sizeof chunk, f.get())) > 0) out.append(chunk, n);
  return out;
}

// Every path under a folder, with each file's size, so that a listing before and after shows
// anything written anywhere below it.
std::map<std::string, std::uintmax_t> Listing(const std::string& folder) {
  std::map<std::string, std::uintmax_t> out;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(folder, ec); !ec && it != fs::recursive_directory_iterator();
       it.increment(ec)) {
    std::error_code sizeError;
    const std::uintmax_t size = it->is_regular_file() ? it->file_size(sizeError) : 0;
    out[it->path().lexically_relative(folder).generic_string()] = size;
  }
  return out;
}

std::set<std::string> Names(const std::string& folder) {
  std::set<std::string> out;
  std::error_code ec;
  for (const auto& e : fs::directory_iterator(folder, ec)) out.insert(e.path().filename().string());
  return out;
}

std::string RandomBytes(std::size_t n, unsigned seed) {
  std::mt19937 rng(seed);
  std::string out(n, '\0');
  for (char& c : out) c = static_cast<char>(rng() & 0xFF);
  return out;
}

std::string Text(std::size_t lines) {
  std::string out;
  for (std::size_t i = 0; i < lines; ++i) out += "line " + std::to_string(i) + " of a text that packs well\r\n";
  return out;
}

std::uint16_t Get16(const std::string& b, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(b[at]) | (static_cast<unsigned char>(b[at + 1]) << 8));
}

std::uint32_t Get32(const std::string& b, std::size_t at) {
  return static_cast<std::uint32_t>(Get16(b, at)) | (static_cast<std::uint32_t>(Get16(b, at + 2)) << 16);
}

void Set16(std::string& b, std::size_t at, std::uint32_t v) {
  b[at] = static_cast<char>(v & 0xFF);
  b[at + 1] = static_cast<char>((v >> 8) & 0xFF);
}

void Set32(std::string& b, std::size_t at, std::uint32_t v) {
  Set16(b, at, v & 0xFFFF);
  Set16(b, at + 2, v >> 16);
}

// What the header of a cabinet without reserved areas tells: its folders' compression, and each
// entry's name with its folder.
struct Header {
  std::uint16_t folders = 0;
  std::uint16_t files = 0;
  std::vector<std::uint16_t> compression;
  std::map<std::string, std::uint16_t> folderOf;
};

Header ReadHeader(const std::string& b) {
  Header h;
  if (b.size() < 36 || b.compare(0, 4, "MSCF") != 0) return h;
  h.folders = Get16(b, 26);
  h.files = Get16(b, 28);
  for (std::size_t i = 0; i < h.folders; ++i) h.compression.push_back(Get16(b, 36 + 8 * i + 6));
  std::size_t at = Get32(b, 16);
  for (std::size_t i = 0; i < h.files && at + 16 < b.size(); ++i) {
    const std::size_t end = b.find('\0', at + 16);
    h.folderOf[b.substr(at + 16, end - at - 16)] = Get16(b, at + 8);
    at = end + 1;
  }
  return h;
}

// A cabinet written byte by byte, stored without compression, one folder an entry, with correct
// checksums: the archives that a careless or hostile program might hand over.
std::uint32_t Checksum(const std::string& b, std::size_t at, std::size_t n, std::uint32_t seed) {
  std::uint32_t sum = seed;
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) sum ^= Get32(b, at + i);
  std::uint32_t rest = 0;
  const std::size_t left = n - i;
  if (left == 3) rest |= static_cast<std::uint32_t>(static_cast<unsigned char>(b[at + i++])) << 16;
  if (left >= 2) rest |= static_cast<std::uint32_t>(static_cast<unsigned char>(b[at + i++])) << 8;
  if (left >= 1) rest |= static_cast<std::uint32_t>(static_cast<unsigned char>(b[at + i++]));
  return sum ^ rest;
}

struct Member {
  std::string name;
  std::string data;
  std::uint16_t attributes = 0x20;  // archive; 0x80 added says the name is UTF-8
};

// With `blockReserve`, the header says that every data block carries that many reserved bytes
// after its own header (filled with a pattern, which the checksum leaves out), and with
// `noChecksums` every block's checksum field is 0.
std::string BuildCabinet(const std::vector<Member>& members, std::uint8_t blockReserve = 0,
                         bool noChecksums = false) {
  const std::size_t headerSize = blockReserve != 0 ? 40 : 36;
  std::string b(headerSize, '\0');
  b.replace(0, 4, "MSCF");
  const std::size_t folderCount = members.size();
  const std::size_t filesAt = headerSize + 8 * folderCount;
  std::size_t dataAt = filesAt;
  for (const Member& m : members) dataAt += 16 + m.name.size() + 1;
  b.resize(dataAt, '\0');
  Set32(b, 16, static_cast<std::uint32_t>(filesAt));
  b[24] = 3;
  b[25] = 1;
  Set16(b, 26, static_cast<std::uint32_t>(folderCount));
  Set16(b, 28, static_cast<std::uint32_t>(members.size()));
  if (blockReserve != 0) {
    Set16(b, 30, 4);  // reserved areas present: none in the header and folders, some in blocks
    b[39] = static_cast<char>(blockReserve);
  }
  std::size_t fileAt = filesAt;
  for (std::size_t i = 0; i < members.size(); ++i) {
    const Member& m = members[i];
    const std::size_t blocks = (m.data.size() + 32767) / 32768;
    const std::size_t folderAt = headerSize + 8 * i;
    Set32(b, folderAt, static_cast<std::uint32_t>(b.size()));
    Set16(b, folderAt + 4, static_cast<std::uint32_t>(blocks));
    Set16(b, folderAt + 6, 0);
    Set32(b, fileAt, static_cast<std::uint32_t>(m.data.size()));
    Set16(b, fileAt + 8, static_cast<std::uint32_t>(i));
    Set16(b, fileAt + 10, (45u << 9) | (6u << 5) | 15u);  // 15 June 2025
    Set16(b, fileAt + 12, (12u << 11) | (30u << 5));
    Set16(b, fileAt + 14, m.attributes);
    b.replace(fileAt + 16, m.name.size() + 1, m.name + '\0');
    fileAt += 16 + m.name.size() + 1;
    for (std::size_t k = 0; k < blocks; ++k) {
      const std::string chunk = m.data.substr(k * 32768, 32768);
      const std::size_t at = b.size();
      b.append(8, '\0');
      Set16(b, at + 4, static_cast<std::uint32_t>(chunk.size()));
      Set16(b, at + 6, static_cast<std::uint32_t>(chunk.size()));
      for (std::size_t r = 0; r < blockReserve; ++r) b.push_back(static_cast<char>(0xA5 ^ (r * 29 + k)));
      b += chunk;
      const std::size_t dataStart = at + 8 + blockReserve;
      if (!noChecksums) Set32(b, at, Checksum(b, at + 4, 4, Checksum(b, dataStart, chunk.size(), 0)));
    }
  }
  Set32(b, 8, static_cast<std::uint32_t>(b.size()));
  return b;
}

// Where each data block of a cabinet without reserved areas begins, folder after folder.
std::vector<std::size_t> BlockOffsets(const std::string& b) {
  std::vector<std::size_t> out;
  for (std::size_t f = 0; f < Get16(b, 26); ++f) {
    std::size_t at = Get32(b, 36 + 8 * f);
    for (std::size_t k = 0; k < Get16(b, 36 + 8 * f + 4); ++k) {
      out.push_back(at);
      at += 8 + Get16(b, at + 4);
    }
  }
  return out;
}

class CollectionPackerConformance : public ::testing::Test {
 protected:
  void SetUp() override { root_ = FreshTempFolder(); }

  std::string Path(const std::string& name) const { return root_ + name; }

  // Packs the named files of the root folder into the archive in one packer, and releases it.
  void Pack(const std::string& archive, const std::vector<std::string>& sources) {
    auto packer = NewPacker();
    for (const std::string& s : sources) packer->PackFile(Path(s), Path(archive), 0, "", true);
    packer->Release();
  }

  // Unpacks and expects a refusal that names the archive; gives the failure's text.
  std::string Refusal(const std::string& archive, const std::string& destination, const std::string& entry) {
    try {
      NewPacker()->UnpackFiles(Path(archive), Path(destination), entry);
    } catch (const Failure& failure) {
      const std::string text = failure.what();
      EXPECT_NE(text.find(Path(archive)), std::string::npos) << text;
      return text;
    }
    ADD_FAILURE() << "no refusal of " << archive << " for entry \"" << entry << "\"";
    return "";
  }

  std::string root_;
};

TEST_F(CollectionPackerConformance, PacksSeveralFilesAndUnpacksAllOfThemOrOne) {
  const std::string photo = RandomBytes(100000, 1);
  const std::string text = Text(2000);
  const std::string picture = RandomBytes(70000, 2);
  Put(Path("bay.jpg"), photo);
  Put(Path("notes.txt"), text);
  Put(Path("Sea Cliff.PNG"), picture);
  Pack("Sea.RXS", {"bay.jpg", "notes.txt", "Sea Cliff.PNG"});

  NewPacker()->UnpackFiles(Path("Sea.RXS"), Path("Sea"), "");
  EXPECT_EQ(Names(Path("Sea")), (std::set<std::string>{"Sea Cliff.PNG", "bay.jpg", "notes.txt"}));
  EXPECT_EQ(Bytes(Path("Sea/bay.jpg")), photo);
  EXPECT_EQ(Bytes(Path("Sea/notes.txt")), text);
  EXPECT_EQ(Bytes(Path("Sea/Sea Cliff.PNG")), picture);

  // One entry, asked for in another letter case, keeps its own name.
  NewPacker()->UnpackFiles(Path("Sea.RXS"), Path("one"), "NOTES.TXT");
  EXPECT_EQ(Names(Path("one")), (std::set<std::string>{"notes.txt"}));
  EXPECT_EQ(Bytes(Path("one/notes.txt")), text);

  // An existing file of the entry's name is overwritten.
  Put(Path("one/bay.jpg"), "old");
  NewPacker()->UnpackFiles(Path("Sea.RXS"), Path("one"), "bay.jpg");
  EXPECT_EQ(Bytes(Path("one/bay.jpg")), photo);
  EXPECT_EQ(Names(Path("one")), (std::set<std::string>{"bay.jpg", "notes.txt"}));
}

TEST_F(CollectionPackerConformance, EveryEntryHasAFolderOfItsOwnAndPicturesAreStored) {
  Put(Path("a.jpg"), RandomBytes(50000, 3));
  Put(Path("b.JPEG"), RandomBytes(40000, 4));
  Put(Path("c.Gif"), RandomBytes(30000, 5));
  Put(Path("d.png"), RandomBytes(20000, 6));
  Put(Path("e.bmp"), Text(1000));
  Put(Path("f.txt"), Text(3000));
  Pack("Mixed.RXS", {"a.jpg", "b.JPEG", "c.Gif", "d.png", "e.bmp", "f.txt"});

  const auto bytes = Bytes(Path("Mixed.RXS"));
  ASSERT_TRUE(bytes);
  const Header h = ReadHeader(*bytes);
  EXPECT_EQ(h.folders, 6);
  EXPECT_EQ(h.files, 6);
  ASSERT_EQ(h.folderOf.size(), 6u);
  std::set<std::uint16_t> folders;
  for (const auto& [name, folder] : h.folderOf) {
    ASSERT_LT(folder, h.compression.size()) << name;
    folders.insert(folder);
  }
  EXPECT_EQ(folders.size(), 6u) << "two entries share a folder";
  for (const char* stored : {"a.jpg", "b.JPEG", "c.Gif", "d.png"}) {
    EXPECT_EQ(h.compression[h.folderOf.at(stored)] & 0xF, 0) << stored;
  }
  for (const char* compressed : {"e.bmp", "f.txt"}) {
    EXPECT_EQ(h.compression[h.folderOf.at(compressed)] & 0xF, 1) << compressed;
  }
  // The text shrinks; the archive is smaller than what went in.
  EXPECT_LT(bytes->size(), 50000u + 40000 + 30000 + 20000 + Text(1000).size() + Text(3000).size());
}

TEST_F(CollectionPackerConformance, AddingToAnArchiveKeepsItsEntries) {
  const std::string first = RandomBytes(60000, 7);
  Put(Path("first.jpg"), first);
  Pack("Town.RXS", {"first.jpg"});

  fs::create_directories(Path("more"));
  const std::string second = Text(500);
  Put(Path("more/second.txt"), second);
  Pack("Town.RXS", {"more/second.txt"});

  const Header h = ReadHeader(*Bytes(Path("Town.RXS")));
  EXPECT_EQ(h.files, 2);
  EXPECT_EQ(h.folders, 2);
  NewPacker()->UnpackFiles(Path("Town.RXS"), Path("Town"), "");
  EXPECT_EQ(Names(Path("Town")), (std::set<std::string>{"first.jpg", "second.txt"}));
  EXPECT_EQ(Bytes(Path("Town/first.jpg")), first);
  EXPECT_EQ(Bytes(Path("Town/second.txt")), second);
}

TEST_F(CollectionPackerConformance, AFileOfTheSameNameReplacesTheEntry) {
  Put(Path("night.jpg"), "the first night");
  Put(Path("day.txt"), Text(10));
  Pack("Sky.RXS", {"night.jpg", "day.txt"});

  fs::create_directories(Path("new"));
  Put(Path("new/NIGHT.JPG"), "the second night, longer than the first");
  Pack("Sky.RXS", {"new/NIGHT.JPG"});

  const Header h = ReadHeader(*Bytes(Path("Sky.RXS")));
  EXPECT_EQ(h.files, 2);
  NewPacker()->UnpackFiles(Path("Sky.RXS"), Path("Sky"), "");
  EXPECT_EQ(Names(Path("Sky")), (std::set<std::string>{"NIGHT.JPG", "day.txt"}));
  EXPECT_EQ(Bytes(Path("Sky/NIGHT.JPG")), "the second night, longer than the first");

  // Within one packer, the later of two files of one name wins as well.
  Put(Path("x.txt"), "one");
  Put(Path("new/x.txt"), "two");
  {
    auto packer = NewPacker();
    packer->PackFile(Path("x.txt"), Path("Twice.RXS"), 0, "", true);
    packer->PackFile(Path("new/x.txt"), Path("Twice.RXS"), 0, "", true);
    packer->Release();
  }
  EXPECT_EQ(ReadHeader(*Bytes(Path("Twice.RXS"))).files, 1);
  NewPacker()->UnpackFiles(Path("Twice.RXS"), Path("Twice"), "x.txt");
  EXPECT_EQ(Bytes(Path("Twice/x.txt")), "two");
}

TEST_F(CollectionPackerConformance, AnEmptyFileIsAnEntryToo) {
  Put(Path("empty.txt"), "");
  Put(Path("full.txt"), Text(20));
  Put(Path("none.jpg"), "");
  Pack("Empty.RXS", {"empty.txt", "full.txt", "none.jpg"});
  NewPacker()->UnpackFiles(Path("Empty.RXS"), Path("out"), "");
  EXPECT_EQ(Names(Path("out")), (std::set<std::string>{"empty.txt", "full.txt", "none.jpg"}));
  EXPECT_EQ(Bytes(Path("out/empty.txt")), "");
  EXPECT_EQ(Bytes(Path("out/none.jpg")), "");
  EXPECT_EQ(Bytes(Path("out/full.txt")), Text(20));
  NewPacker()->UnpackFiles(Path("Empty.RXS"), Path("one"), "none.jpg");
  EXPECT_EQ(Names(Path("one")), (std::set<std::string>{"none.jpg"}));
}

TEST_F(CollectionPackerConformance, UnpackingMakesTheWholeDestinationPath) {
  Put(Path("a.txt"), "a");
  Pack("A.RXS", {"a.txt"});
  NewPacker()->UnpackFiles(Path("A.RXS"), Path("x/y/z"), "");
  EXPECT_EQ(Bytes(Path("x/y/z/a.txt")), "a");
}

TEST_F(CollectionPackerConformance, AMissingArchiveOrEntryWritesNothing) {
  Put(Path("a.txt"), "a");
  Pack("A.RXS", {"a.txt"});
  const auto before = Listing(root_);
  EXPECT_NO_THROW(NewPacker()->UnpackFiles(Path("Nothing.RXS"), Path("out"), ""));
  EXPECT_NO_THROW(NewPacker()->UnpackFiles(Path("Nothing.RXS"), Path("out"), "a.txt"));
  EXPECT_NO_THROW(NewPacker()->UnpackFiles(Path("A.RXS"), Path("out"), "b.txt"));
  EXPECT_EQ(Listing(root_), before);
}

TEST_F(CollectionPackerConformance, PackingAFileThatIsNotThereFails) {
  auto packer = NewPacker();
  try {
    packer->PackFile(Path("ghost.jpg"), Path("G.RXS"), 0, "", true);
    ADD_FAILURE() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::FileNotFound);
    EXPECT_NE(std::string(failure.what()).find("ghost.jpg"), std::string::npos);
  }
  EXPECT_NO_THROW(packer->Release());
  EXPECT_FALSE(fs::exists(Path("G.RXS")));
}

TEST_F(CollectionPackerConformance, ADroppedPackerCommitsWhatItWasGiven) {
  Put(Path("kept.txt"), "kept");
  {
    auto packer = NewPacker();
    packer->PackFile(Path("kept.txt"), Path("Kept.RXS"), 0, "", true);
  }
  NewPacker()->UnpackFiles(Path("Kept.RXS"), Path("out"), "");
  EXPECT_EQ(Bytes(Path("out/kept.txt")), "kept");
}

TEST_F(CollectionPackerConformance, AFailedReleaseLeavesThePreviousArchiveWhole) {
  Put(Path("a.jpg"), RandomBytes(40000, 8));
  Pack("Keep.RXS", {"a.jpg"});
  const auto old = Bytes(Path("Keep.RXS"));
  const auto before = Listing(root_);

  // A source that is gone by the time of the release.
  Put(Path("b.txt"), Text(100));
  {
    auto packer = NewPacker();
    packer->PackFile(Path("b.txt"), Path("Keep.RXS"), 0, "", true);
    fs::remove(Path("b.txt"));
    EXPECT_THROW(packer->Release(), Failure);
  }
  EXPECT_EQ(Bytes(Path("Keep.RXS")), old);
  EXPECT_EQ(Listing(root_), before);

  // An archive that can't be read is not thrown away for the sake of a new entry.
  Put(Path("Broken.RXS"), "MSCF and then nothing that holds together");
  Put(Path("c.txt"), "c");
  {
    auto packer = NewPacker();
    packer->PackFile(Path("c.txt"), Path("Broken.RXS"), 0, "", true);
    EXPECT_THROW(packer->Release(), Failure);
  }
  EXPECT_EQ(Bytes(Path("Broken.RXS")), "MSCF and then nothing that holds together");

  // A folder where the archive should be.
  fs::create_directories(Path("Folder.RXS"));
  {
    auto packer = NewPacker();
    packer->PackFile(Path("c.txt"), Path("Folder.RXS"), 0, "", true);
    EXPECT_THROW(packer->Release(), Failure);
  }
  EXPECT_TRUE(fs::is_directory(Path("Folder.RXS")));
  EXPECT_TRUE(fs::is_empty(Path("Folder.RXS")));

  // No scratch file stays beside the archives.
  auto after = Listing(root_);
  for (const auto& [name, size] : after) {
    EXPECT_TRUE(name.find(".~") == std::string::npos) << name;
  }
}

TEST_F(CollectionPackerConformance, NamesThatLeadOutOfTheDestinationAreRefused) {
  fs::create_directories(Path("inside"));
  for (const std::string& name : {std::string("..\\x"), std::string("a\\b"), std::string("C:x"),
                                  std::string("\\x"), std::string("/x"), std::string("../x"),
                                  std::string(".."), std::string("a/b"), std::string("x:stream"),
                                  std::string("CON"), std::string("nul.txt"), std::string("x.")}) {
    SCOPED_TRACE(name);
    Put(Path("Evil.RXS"), BuildCabinet({{"good.txt", "good"}, {name, "evil"}}));
    const auto before = Listing(root_);
    const std::string text = Refusal("Evil.RXS", "inside/dest", "");
    EXPECT_NE(text.find(name), std::string::npos) << text;
    EXPECT_EQ(Listing(root_), before);
    Refusal("Evil.RXS", "inside/dest", name);
    EXPECT_EQ(Listing(root_), before);
    // The good entry alone may still be had.
    NewPacker()->UnpackFiles(Path("Evil.RXS"), Path("inside/dest"), "good.txt");
    EXPECT_EQ(Names(Path("inside/dest")), (std::set<std::string>{"good.txt"}));
    fs::remove_all(Path("inside/dest"));
  }
}

TEST_F(CollectionPackerConformance, AHandMadeCabinetUnpacks) {
  // The builder of the hostile archives makes good ones too, so the refusals above are for the
  // names alone.
  const std::string big = RandomBytes(100000, 9);
  Put(Path("Hand.RXS"), BuildCabinet({{"one.txt", "one"}, {"big.bin", big}, {"zero.txt", ""}}));
  NewPacker()->UnpackFiles(Path("Hand.RXS"), Path("out"), "");
  EXPECT_EQ(Names(Path("out")), (std::set<std::string>{"big.bin", "one.txt", "zero.txt"}));
  EXPECT_EQ(Bytes(Path("out/big.bin")), big);
}

TEST_F(CollectionPackerConformance, TruncatedArchivesAreRefused) {
  Put(Path("a.txt"), Text(3000));
  Put(Path("b.jpg"), RandomBytes(80000, 10));
  Pack("Whole.RXS", {"a.txt", "b.jpg"});
  const std::string whole = *Bytes(Path("Whole.RXS"));
  fs::create_directories(Path("inside"));
  for (const std::size_t length : {std::size_t{0}, std::size_t{10}, std::size_t{35}, std::size_t{60},
                                   whole.size() / 2, whole.size() - 1}) {
    SCOPED_TRACE(length);
    Put(Path("Cut.RXS"), whole.substr(0, length));
    const auto before = Listing(root_);
    Refusal("Cut.RXS", "inside/dest", "");
    Refusal("Cut.RXS", "inside/dest", "b.jpg");
    EXPECT_EQ(Listing(root_), before);
  }
  // A cabinet whose header is honest about its shorter length, but whose last block is cut:
  // the entry's data runs past the end.
  std::string cut = whole.substr(0, whole.size() - 100);
  Set32(cut, 8, static_cast<std::uint32_t>(cut.size()));
  Put(Path("Cut.RXS"), cut);
  const auto before = Listing(root_);
  Refusal("Cut.RXS", "inside/dest", "");
  EXPECT_EQ(Listing(root_), before);
}

TEST_F(CollectionPackerConformance, ArchivesThatClaimMoreThanTheyHoldAreRefused) {
  const std::string data = RandomBytes(50000, 11);
  const std::string good = BuildCabinet({{"pic.jpg", data}});
  fs::create_directories(Path("inside"));
  const std::size_t fileRecord = Get32(good, 16);
  const std::size_t firstBlock = Get32(good, 36);

  // The file record claims more bytes than the folder's blocks expand to.
  std::string longer = good;
  Set32(longer, fileRecord, 50001);
  // A data block claims more bytes than follow it.
  std::string block = good;
  Set16(block, firstBlock + 4, 40000);
  Set16(block, firstBlock + 6, 40000);
  // The folder claims more blocks than there are.
  std::string blocks = good;
  Set16(blocks, 36 + 4, 7);
  // A block claims to expand beyond the size of a block.
  std::string expands = good;
  Set16(expands, firstBlock + 6, 40000);
  // The entry begins beyond the folder's data.
  std::string offset = good;
  Set32(offset, fileRecord + 4, 60000);
  // The entry belongs to a folder that is not there.
  std::string folder = good;
  Set16(folder, fileRecord + 8, 3);
  // The stored data does not match its checksum.
  std::string damaged = good;
  damaged[firstBlock + 8 + 1000] = static_cast<char>(damaged[firstBlock + 8 + 1000] ^ 0x55);

  for (const auto& [what, bytes] : std::vector<std::pair<std::string, std::string>>{
           {"longer entry", longer}, {"longer block", block}, {"more blocks", blocks},
           {"block beyond its size", expands}, {"entry beyond its folder", offset},
           {"missing folder", folder}, {"damaged data", damaged}}) {
    SCOPED_TRACE(what);
    Put(Path("Claims.RXS"), bytes);
    const auto before = Listing(root_);
    Refusal("Claims.RXS", "inside/dest", "");
    // Whatever the destination holds afterwards, no file of the entry's name or part of one.
    for (const auto& [name, size] : Listing(root_)) {
      EXPECT_TRUE(before.count(name) == 1 || name == "inside/dest") << name;
    }
  }
}

TEST_F(CollectionPackerConformance, ADamagedEntryLeavesNoPartOfItself) {
  Put(Path("long.txt"), Text(20000));
  Pack("Long.RXS", {"long.txt"});
  const std::string whole = *Bytes(Path("Long.RXS"));
  // The blocks of the one folder.
  std::vector<std::size_t> blocks;
  for (std::size_t at = Get32(whole, 36), k = 0; k < Get16(whole, 36 + 4); ++k) {
    blocks.push_back(at);
    at += 8 + Get16(whole, at + 4);
  }
  ASSERT_GT(blocks.size(), 4u);
  fs::create_directories(Path("dest"));
  Put(Path("dest/long.txt"), "what was there before");

  // Damaged half-way: the checksum of the block tells. Then the same damage in a block that
  // claims no checksum, so that the expander meets it in the middle of the entry.
  for (const bool withChecksum : {true, false}) {
    SCOPED_TRACE(withChecksum);
    std::string bytes = whole;
    const std::size_t block = blocks[blocks.size() / 2];
    for (std::size_t i = 20; i < 84; ++i) bytes[block + 8 + i] = static_cast<char>(bytes[block + 8 + i] ^ 0xA5);
    if (!withChecksum) Set32(bytes, block, 0);
    Put(Path("Long.RXS"), bytes);
    Refusal("Long.RXS", "dest", "");
    Refusal("Long.RXS", "dest", "long.txt");
    EXPECT_EQ(Names(Path("dest")), (std::set<std::string>{"long.txt"}));
    EXPECT_EQ(Bytes(Path("dest/long.txt")), "what was there before");
  }
}

TEST_F(CollectionPackerConformance, DataBlocksWithoutChecksumsUnpack) {
  // A checksum field of 0 says that the writer gave no checksum: the blocks are read as they are.
  const std::string text = Text(4000);
  const std::string photo = RandomBytes(90000, 12);
  Put(Path("words.txt"), text);
  Put(Path("photo.jpg"), photo);
  Pack("Sums.RXS", {"words.txt", "photo.jpg"});
  std::string bytes = *Bytes(Path("Sums.RXS"));
  const std::vector<std::size_t> blocks = BlockOffsets(bytes);
  ASSERT_GT(blocks.size(), 4u);
  for (const std::size_t at : blocks) {
    ASSERT_NE(Get32(bytes, at), 0u) << "the packer writes checksums";
    Set32(bytes, at, 0);
  }
  Put(Path("Unsummed.RXS"), bytes);
  NewPacker()->UnpackFiles(Path("Unsummed.RXS"), Path("all"), "");
  EXPECT_EQ(Names(Path("all")), (std::set<std::string>{"photo.jpg", "words.txt"}));
  EXPECT_EQ(Bytes(Path("all/words.txt")), text);
  EXPECT_EQ(Bytes(Path("all/photo.jpg")), photo);
  NewPacker()->UnpackFiles(Path("Unsummed.RXS"), Path("one"), "words.txt");
  EXPECT_EQ(Names(Path("one")), (std::set<std::string>{"words.txt"}));
  EXPECT_EQ(Bytes(Path("one/words.txt")), text);

  // Some blocks with checksums and some without, and a new entry added to such an archive.
  std::string mixed = *Bytes(Path("Sums.RXS"));
  for (std::size_t k = 0; k < blocks.size(); k += 2) Set32(mixed, blocks[k], 0);
  Put(Path("Mixed.RXS"), mixed);
  Put(Path("more.txt"), "more");
  Pack("Mixed.RXS", {"more.txt"});
  NewPacker()->UnpackFiles(Path("Mixed.RXS"), Path("mixed"), "");
  EXPECT_EQ(Names(Path("mixed")), (std::set<std::string>{"more.txt", "photo.jpg", "words.txt"}));
  EXPECT_EQ(Bytes(Path("mixed/words.txt")), text);
  EXPECT_EQ(Bytes(Path("mixed/photo.jpg")), photo);
  EXPECT_EQ(Bytes(Path("mixed/more.txt")), "more");

  // A checksum that is there and wrong is still refused, beside blocks that have none.
  std::string wrong = bytes;
  Set32(wrong, blocks[1], 0x12345678u);
  Put(Path("Wrong.RXS"), wrong);
  EXPECT_NE(Refusal("Wrong.RXS", "wrong", "").find("checksum"), std::string::npos);
}

TEST_F(CollectionPackerConformance, DataBlocksWithReservedBytesUnpackWithOrWithoutChecksums) {
  // The checksum of a block covers its data and its two sizes, not its reserved bytes.
  const std::string big = RandomBytes(80000, 13);
  for (const bool noChecksums : {false, true}) {
    SCOPED_TRACE(noChecksums);
    const std::string bytes = BuildCabinet({{"big.bin", big}, {"small.txt", "small"}}, 6, noChecksums);
    Put(Path("Reserve.RXS"), bytes);
    NewPacker()->UnpackFiles(Path("Reserve.RXS"), Path("out"), "");
    EXPECT_EQ(Names(Path("out")), (std::set<std::string>{"big.bin", "small.txt"}));
    EXPECT_EQ(Bytes(Path("out/big.bin")), big);
    EXPECT_EQ(Bytes(Path("out/small.txt")), "small");
    fs::remove_all(Path("out"));
    if (noChecksums) continue;
    // A byte of data changed: the checksum no longer matches.
    std::string damaged = bytes;
    const std::size_t firstBlock = Get32(damaged, 40);
    damaged[firstBlock + 8 + 6 + 100] = static_cast<char>(damaged[firstBlock + 8 + 6 + 100] ^ 0x10);
    Put(Path("Damaged.RXS"), damaged);
    EXPECT_NE(Refusal("Damaged.RXS", "out", "").find("checksum"), std::string::npos);
  }
}

TEST_F(CollectionPackerConformance, AnEntryNameOf255BytesUnpacks) {
  // The longest name a file may have; the entry is written under a scratch name first, which
  // must not be longer than the entry's own.
  const std::string name = std::string(251, 'n') + ".txt";
  ASSERT_EQ(name.size(), 255u);
  const std::string data = Text(50);
  Put(Path("Long.RXS"), BuildCabinet({{"short.txt", "short"}, {name, data}}));
  NewPacker()->UnpackFiles(Path("Long.RXS"), Path("all"), "");
  EXPECT_EQ(Names(Path("all")), (std::set<std::string>{"short.txt", name}));
  EXPECT_EQ(Bytes(Path("all/" + name)), data);
  NewPacker()->UnpackFiles(Path("Long.RXS"), Path("one"), name);
  EXPECT_EQ(Names(Path("one")), (std::set<std::string>{name}));
  EXPECT_EQ(Bytes(Path("one/" + name)), data);
  // One byte longer is no file name.
  Put(Path("Longer.RXS"), BuildCabinet({{"n" + name, data}}));
  EXPECT_NE(Refusal("Longer.RXS", "longer", "").find("255 bytes"), std::string::npos);
}

TEST_F(CollectionPackerConformance, NamesThatAreNoUtf8AreRefusedThoughTheySayTheyAre) {
  // Names marked as UTF-8 that aren't: a slash or a point written with more bytes than it needs,
  // half of a UTF-16 pair, a sequence cut short, a lone continuation byte, a byte UTF-8 never has.
  for (const std::string& name :
       {std::string("a\xC0\xAF" "b.txt"), std::string("\xE0\x80\xAF" "b.txt"),
        std::string("\xC0\xAE\xC0\xAE"), std::string("\xC1\x81.txt"),
        std::string("\xE0\x80\xAE.txt"), std::string("\xED\xA0\x80.txt"),
        std::string("x\xE2\x82"), std::string("\x80x.txt"), std::string("\xFFx.txt"),
        std::string("\xF8\x88\x80\x80\x80.txt")}) {
    SCOPED_TRACE(::testing::PrintToString(name));
    Put(Path("Bad.RXS"), BuildCabinet({{"good.txt", "good"}, {name, "bad", 0xA0}}));
    const auto before = Listing(root_);
    // Every entry, and the one entry asked for by its bytes as they stand.
    for (const std::string& entry : {std::string(), name}) {
      try {
        NewPacker()->UnpackFiles(Path("Bad.RXS"), Path("dest"), entry);
        ADD_FAILURE() << "no refusal";
      } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::BadFileNameOrNumber);
        EXPECT_NE(std::string(failure.what()).find("can't be written in this system's code page"),
                  std::string::npos)
            << failure.what();
      }
    }
    EXPECT_EQ(Listing(root_), before);
    NewPacker()->UnpackFiles(Path("Bad.RXS"), Path("dest"), "good.txt");
    EXPECT_EQ(Names(Path("dest")), (std::set<std::string>{"good.txt"}));
    fs::remove_all(Path("dest"));
  }
}

TEST_F(CollectionPackerConformance, TheArchiveIsACabinetThatOthersRead) {
  // The header a cabinet reader checks first: signature, version 1.3, the size it declares.
  Put(Path("a.txt"), "alpha");
  Pack("Plain.RXS", {"a.txt"});
  const std::string bytes = *Bytes(Path("Plain.RXS"));
  ASSERT_GE(bytes.size(), 36u);
  EXPECT_EQ(bytes.substr(0, 4), "MSCF");
  EXPECT_EQ(bytes[24], 3);
  EXPECT_EQ(bytes[25], 1);
  EXPECT_EQ(Get32(bytes, 8), bytes.size());
}

}  // namespace
}  // namespace quorvane::testing
