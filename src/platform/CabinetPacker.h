#pragma once
// What the two collection packers share: the collection file is a cabinet with one folder for
// each entry, so that one entry unpacks without expanding the others; pictures that don't shrink
// are stored and everything else is compressed with MSZIP. This class keeps the pictures PackFile
// adds, checks every archive before it is read, keeps the entries of an archive that is added to,
// lays the folders out in one new file beside the archive and puts that file in its place. An
// adapter supplies the file operations, the compressor and the expander of its platform.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "codecs/CabinetFormat.h"
#include "platform/CollectionPacker.h"
#include "platform/FileSystem.h"

namespace quorvane::platform {

namespace cabinet = codecs::cabinet;

class CabinetPacker : public CollectionPacker {
 public:
  void PackFile(const std::string& source, const std::string& archive, std::int32_t level,
                const std::string& password, bool keepFolders) override;
  void UnpackFiles(const std::string& archive, const std::string& destination,
                   const std::string& entry) override;
  void Release() override;

 protected:
  // A file to compress into a folder of its own.
  struct Item {
    std::string entry;   // the entry's name, in this system's code page
    std::string source;  // the file's path
    bool stored = false;
  };

  // An entry to expand, and the file to expand it into.
  struct Target {
    std::size_t entry = 0;  // index in the layout's entries
    std::string path;
  };

  // A name for a scratch file in `folder` that no other operation of this process, nor any other
  // process, uses; of the same short length whatever else lies in the folder, so that it fits
  // wherever a file may be written.
  std::string ScratchName(const std::string& folder);

  // Commits what is pending and swallows any failure. The adapters, which are final, call it
  // from their destructors, while their own parts still stand.
  void ReleaseQuietly() noexcept;

  // --- supplied by the adapter -----------------------------------------------------------------
  virtual std::unique_ptr<cabinet::RandomFile> OpenForReading(const std::string& path) = 0;
  // Creates a file that must not exist yet, for reading and writing; null on failure.
  virtual std::unique_ptr<cabinet::RandomFile> CreateNew(const std::string& path) = 0;
  virtual bool IsFile(const std::string& path) = 0;
  virtual bool IsFolder(const std::string& path) = 0;
  virtual bool RemoveFile(const std::string& path) = 0;
  virtual void RemoveFolderTree(const std::string& path) = 0;
  // The file system of the platform, whose PutInPlace puts a new archive, or an expanded
  // entry, in the place of the file it replaces.
  virtual FileSystem& Files() = 0;
  // Makes the folder with whatever parents it lacks; true when it exists afterwards.
  virtual bool MakeFolders(const std::string& path) = 0;
  // Gives the file the modification time of an entry, as a cabinet stores it (local time).
  virtual void SetModified(const std::string& path, std::uint16_t date, std::uint16_t time) = 0;
  // The platform's words for the last failed file operation.
  virtual std::string LastErrorText() = 0;
  // The platform's words for a failure by its number.
  virtual std::string ErrorText(std::uint32_t error) = 0;
  // The folder for scratch work, with a trailing separator.
  virtual std::string ScratchFolder() = 0;
  // A text that tells this process from others, for scratch names.
  virtual std::string ProcessTag() = 0;
  // An entry's name in this system's code page, or nothing when it can't be written there.
  virtual std::optional<std::string> NameOfEntry(const cabinet::Entry& entry) = 0;
  // Compresses the items, none of them empty, each into a folder of its own, in their order, into one or more new
  // cabinet files whose names begin with `scratch`; every file it makes is added to `made`
  // before it is written, so that it is removed afterwards whatever happens. Throws a Failure.
  virtual void Compress(const std::vector<Item>& items, const std::string& scratch,
                        std::vector<std::string>& made) = 0;
  // The record of an empty file as an entry: its name as the cabinet stores it, with the
  // attribute that tells UTF-8, and its modification time.
  virtual cabinet::Entry EntryForEmptyFile(const Item& item) = 0;
  // Expands each target's entry of the archive into the target's file. The layout has been
  // checked and the folders of the targets walked. Throws a Failure.
  virtual void Expand(const std::string& archive, const cabinet::Layout& layout,
                      const std::vector<Target>& targets) = 0;

 private:
  struct Pending {
    std::string archive;
    std::vector<Item> items;
  };

  void Commit(const Pending& pending);
  // Expands the chosen entries of an opened, checked archive into `destination`.
  void ExpandInto(const std::string& archive, cabinet::RandomFile& file, cabinet::Layout& layout,
                  const std::vector<std::size_t>& chosen, const std::string& destination);
  std::string UniqueName(const std::string& base);

  std::vector<Pending> pending_;
  unsigned counter_ = 0;
};

// The folder and name joined by a backslash, unless the folder ends in a separator already.
std::string JoinPath(const std::string& folder, const std::string& name);

}  // namespace quorvane::platform
