#pragma once
// The packer of collection files (<Name>.RXS). One packer serves one operation: the pictures
// PackFile adds are gathered and written into their archive together when the packer is released,
// so that the archive is rewritten once, whole, whatever the number of pictures; UnpackFiles reads
// an archive as it stands on disk.
#include <cstdint>
#include <memory>
#include <string>

namespace quorvane::platform {

class CollectionPacker {
 public:
  CollectionPacker() = default;
  CollectionPacker(const CollectionPacker&) = delete;
  CollectionPacker& operator=(const CollectionPacker&) = delete;
  // Commits what PackFile added and was not committed yet, as Release does, but never throws:
  // a failure here leaves every archive as it was.
  virtual ~CollectionPacker() = default;

  // Adds the file `source` to the archive `archive`, which comes into being when absent. The entry
  // is named by the file's name without its folder; an entry of the same name (letter case aside)
  // is replaced. Nothing is written before Release. The three trailing arguments are the ones the
  // callers pass (0, "", true) and change nothing. Throws a Failure when `source` is no file.
  virtual void PackFile(const std::string& source, const std::string& archive, std::int32_t level,
                        const std::string& password, bool keepFolders) = 0;

  // Writes the entry named `entry` (letter case aside), or every entry when `entry` is empty, into
  // the folder `destination` under its own name, making the folder and its parents as needed.
  // With no archive at `archive`, or no entry of that name, nothing is written and nothing is
  // reported. An archive that is damaged, or that names an entry that would land outside
  // `destination`, is refused with a Failure that names the archive and the reason; a refused
  // entry leaves no file behind, whole or in part.
  virtual void UnpackFiles(const std::string& archive, const std::string& destination,
                           const std::string& entry) = 0;

  // Writes everything PackFile added into its archive: into a new file beside the archive, which
  // then takes the archive's place in one step, so that a failure, or the end of the process
  // half-way, leaves the previous archive whole. Throws a Failure when that can't be done.
  virtual void Release() = 0;
};

// The service that makes packers.
class CollectionPackers {
 public:
  virtual ~CollectionPackers() = default;
  virtual std::unique_ptr<CollectionPacker> Create() = 0;
};

}  // namespace quorvane::platform
