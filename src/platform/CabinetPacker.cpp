#include "platform/CabinetPacker.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

#include "base/Failure.h"

namespace quorvane::platform {

namespace {

using cabinet::Entry;
using cabinet::Layout;
using cabinet::RandomFile;

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string UpperKey(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// Scratch files and folders of one operation, removed when it ends, however it ends. Open files
// are closed by their owners before this runs, since they are declared after it.
class ScratchList {
 public:
  ScratchList(std::function<void(const std::string&)> removeFile,
              std::function<void(const std::string&)> removeFolder)
      : removeFile_(std::move(removeFile)), removeFolder_(std::move(removeFolder)) {}
  ~ScratchList() {
    for (const std::string& f : files) removeFile_(f);
    for (const std::string& f : folders) removeFolder_(f);
  }
  ScratchList(const ScratchList&) = delete;
  ScratchList& operator=(const ScratchList&) = delete;

  std::vector<std::string> files;
  std::vector<std::string> folders;

 private:
  std::function<void(const std::string&)> removeFile_;
  std::function<void(const std::string&)> removeFolder_;
};

}  // namespace

std::string JoinPath(const std::string& folder, const std::string& name) {
  if (folder.empty() || folder.back() == '\\' || folder.back() == '/') return folder + name;
  return folder + "\\" + name;
}


void CabinetPacker::PackFile(const std::string& source, const std::string& archive, std::int32_t,
                             const std::string&, bool) {
  const std::string entry = cabinet::EntryNameOfPath(source);
  if (!IsFile(source)) {
    Raise(FailureNumber::FileNotFound,
          "Cannot pack " + Quoted(source) + " into " + Quoted(archive) + ": there is no such file");
  }
  if (auto fault = cabinet::EntryNameFault(entry)) {
    Raise(FailureNumber::BadFileNameOrNumber,
          "Cannot pack " + Quoted(source) + " into " + Quoted(archive) + ": its name " + *fault);
  }
  auto group = std::find_if(pending_.begin(), pending_.end(),
                            [&](const Pending& p) { return p.archive == archive; });
  if (group == pending_.end()) {
    pending_.push_back(Pending{archive, {}});
    group = std::prev(pending_.end());
  }
  auto& items = group->items;
  items.erase(std::remove_if(items.begin(), items.end(),
                             [&](const Item& i) { return cabinet::SameEntryName(i.entry, entry); }),
              items.end());
  items.push_back(Item{entry, source, cabinet::StoredWithoutCompression(entry)});
}

void CabinetPacker::Release() {
  std::vector<Pending> work;
  work.swap(pending_);
  std::optional<Failure> first;
  for (const Pending& p : work) {
    try {
      Commit(p);
    } catch (const Failure& failure) {
      if (!first) first = failure;
    }
  }
  if (first) throw *first;
}

void CabinetPacker::ReleaseQuietly() noexcept {
  try {
    Release();
  } catch (...) {
    // A packer that goes out of use unreleased commits what it can; each archive that can't be
    // committed stays as it was.
  }
}

std::string CabinetPacker::UniqueName(const std::string& base) {
  return base + ".~" + ProcessTag() + "-" + std::to_string(counter_++);
}

std::string CabinetPacker::ScratchName(const std::string& folder) {
  return JoinPath(folder, "~qv" + ProcessTag() + "-" + std::to_string(counter_++) + ".tmp");
}

void CabinetPacker::Commit(const Pending& pending) {
  const std::string& archive = pending.archive;
  auto refuse = [&](FailureNumber number, const std::string& why) {
    Raise(number, "Cannot pack into " + Quoted(archive) + ": " + why);
  };
  if (IsFolder(archive)) refuse(FailureNumber::PathFileAccessError, "it is a folder");

  ScratchList scratch([this](const std::string& f) { RemoveFile(f); },
                      [this](const std::string& f) { RemoveFolderTree(f); });

  // The order of the folders in the new file: an old folder copied as it is, or the item that
  // gets compressed into a folder of its own.
  struct Slot {
    bool old = false;
    std::size_t index = 0;  // an old folder, or an item
  };
  std::vector<Slot> slots;
  std::vector<Item> items;

  std::unique_ptr<RandomFile> old;
  Layout oldLayout;
  if (IsFile(archive)) {
    old = OpenForReading(archive);
    if (!old) refuse(FailureNumber::PathFileAccessError, "it can't be read: " + LastErrorText());
    if (auto fault = cabinet::ReadLayout(*old, oldLayout)) {
      refuse(FailureNumber::PathFileAccessError, "its entries can't be kept, since " + *fault);
    }
    // An old entry stays unless a new file takes its name, or a later entry of its own has it.
    const auto& entries = oldLayout.entries;
    std::vector<std::string> names(entries.size());
    std::unordered_map<std::string, std::size_t> last;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      names[i] = NameOfEntry(entries[i]).value_or(entries[i].rawName);
      last[UpperKey(names[i])] = i;
    }
    std::vector<bool> kept(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const bool replaced = std::any_of(pending.items.begin(), pending.items.end(), [&](const Item& item) {
        return cabinet::SameEntryName(item.entry, names[i]);
      });
      kept[i] = !replaced && last[UpperKey(names[i])] == i;
    }
    // A folder that holds one kept entry and nothing else is copied as it is; the kept entries
    // of any other folder are unpacked and compressed again, each into a folder of its own.
    std::vector<std::size_t> again;
    for (std::size_t f = 0; f < oldLayout.folders.size(); ++f) {
      std::vector<std::size_t> in;
      std::size_t keptCount = 0;
      for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].folder != f) continue;
        in.push_back(i);
        if (kept[i]) ++keptCount;
      }
      if (keptCount == 0) continue;
      if (in.size() == 1 && entries[in[0]].folderOffset == 0 && oldLayout.folders[f].blockReserve == 0) {
        if (auto fault = cabinet::WalkFolder(*old, oldLayout, f)) {
          refuse(FailureNumber::PathFileAccessError, "its entries can't be kept, since " + *fault);
        }
        slots.push_back(Slot{true, f});
        continue;
      }
      for (std::size_t i : in) {
        if (!kept[i]) continue;
        again.push_back(i);
        slots.push_back(Slot{false, items.size()});
        items.push_back(Item{names[i], "", cabinet::StoredWithoutCompression(names[i])});
      }
    }
    if (!again.empty()) {
      const std::string staging = UniqueName(ScratchFolder() + "quorvane-pack");
      scratch.folders.push_back(staging);
      ExpandInto(archive, *old, oldLayout, again, staging);
      for (Item& item : items) item.source = JoinPath(staging, item.entry);
    }
  }
  for (const Item& item : pending.items) {
    if (!IsFile(item.source)) {
      refuse(FailureNumber::FileNotFound, Quoted(item.source) + " is no longer there");
    }
    slots.push_back(Slot{false, items.size()});
    items.push_back(item);
  }

  // The new folders, compressed next to the archive, and read back as any cabinet is. An empty
  // file has no data to compress: it gets a folder without blocks here.
  constexpr std::size_t kNoFile = static_cast<std::size_t>(-1);
  std::vector<Item> toCompress;
  std::vector<std::size_t> compressedItem;  // the item each compressed one is
  std::vector<bool> empty(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    auto source = OpenForReading(items[i].source);
    if (!source) refuse(FailureNumber::FileNotFound, Quoted(items[i].source) + " can't be read: " + LastErrorText());
    empty[i] = source->Size() == 0;
    if (empty[i]) continue;
    compressedItem.push_back(i);
    toCompress.push_back(items[i]);
  }
  std::vector<std::unique_ptr<RandomFile>> madeFiles;
  std::vector<Layout> madeLayouts;
  const std::size_t madeFirst = scratch.files.size();
  if (!toCompress.empty()) Compress(toCompress, UniqueName(archive), scratch.files);
  struct Made {
    std::size_t file = 0;  // kNoFile for an empty file's folder
    std::size_t folder = 0;
    std::vector<Entry> entries;
  };
  std::vector<Made> made;
  std::vector<std::size_t> itemPiece(items.size());
  {
    std::size_t next = 0;
    for (std::size_t m = madeFirst; m < scratch.files.size(); ++m) {
      auto file = OpenForReading(scratch.files[m]);
      Layout layout;
      std::optional<std::string> fault;
      if (!file) {
        fault = "it can't be read back: " + LastErrorText();
      } else {
        fault = cabinet::ReadLayout(*file, layout);
      }
      for (std::size_t f = 0; !fault && f < layout.folders.size(); ++f) {
        fault = cabinet::WalkFolder(*file, layout, f);
        Made piece{madeFiles.size(), f, {}};
        for (const Entry& e : layout.entries) {
          if (fault || e.folder != f) continue;
          if (next >= toCompress.size() ||
              !cabinet::SameEntryName(NameOfEntry(e).value_or(""), toCompress[next].entry)) {
            fault = "the compressed file holds entries other than the ones given";
            break;
          }
          itemPiece[compressedItem[next++]] = made.size();
          piece.entries.push_back(e);
        }
        if (!piece.entries.empty()) made.push_back(std::move(piece));
      }
      if (fault) refuse(FailureNumber::DeviceIOError, "its new content can't be made: " + *fault);
      madeFiles.push_back(std::move(file));
      madeLayouts.push_back(std::move(layout));
    }
    if (next != toCompress.size()) {
      refuse(FailureNumber::DeviceIOError, "its new content lacks some of the files given");
    }
  }
  cabinet::Folder emptyFolder;
  emptyFolder.walked = true;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (!empty[i]) continue;
    itemPiece[i] = made.size();
    made.push_back(Made{kNoFile, 0, {EntryForEmptyFile(items[i])}});
  }

  const bool copiesOld = std::any_of(slots.begin(), slots.end(), [](const Slot& s) { return s.old; });
  const bool anyEmpty = std::find(empty.begin(), empty.end(), true) != empty.end();
  std::string result;
  if (!copiesOld && !anyEmpty && madeFiles.size() == 1) {
    // The compressor's file holds everything, in order: it becomes the archive as it is.
    result = scratch.files[madeFirst];
    madeFiles.clear();
  } else {
    std::vector<cabinet::Piece> pieces;
    std::size_t lastPiece = made.size();
    for (const Slot& slot : slots) {
      if (slot.old) {
        cabinet::Piece piece{old.get(), &oldLayout.folders[slot.index], {}};
        for (const Entry& e : oldLayout.entries) {
          if (e.folder == slot.index) piece.entries.push_back(e);
        }
        pieces.push_back(std::move(piece));
        continue;
      }
      const std::size_t p = itemPiece[slot.index];
      if (p == lastPiece) continue;  // a compressed folder that holds several items goes in once
      lastPiece = p;
      const Made& m = made[p];
      if (m.file == kNoFile) {
        pieces.push_back(cabinet::Piece{nullptr, &emptyFolder, m.entries});
      } else {
        pieces.push_back(cabinet::Piece{madeFiles[m.file].get(), &madeLayouts[m.file].folders[m.folder],
                                        m.entries});
      }
    }
    result = UniqueName(archive);
    scratch.files.push_back(result);
    auto out = CreateNew(result);
    if (!out) {
      refuse(FailureNumber::DeviceIOError, "no new file can be made beside it: " + LastErrorText());
    }
    if (auto fault = cabinet::Assemble(*out, pieces)) refuse(FailureNumber::DeviceIOError, *fault);
    if (!out->Flush()) refuse(FailureNumber::DeviceIOError, "its new content can't be written: " + LastErrorText());
    madeFiles.clear();
  }
  old.reset();
  const Replacement placed = Files().PutInPlace(result, archive);
  if (placed.failed == Replacement::Step::Write) {
    refuse(FailureNumber::DeviceIOError, "its new content can't be written: " + ErrorText(placed.error));
  }
  if (!placed) refuse(FailureNumber::PermissionDenied, "it can't be replaced: " + ErrorText(placed.error));
  scratch.files.erase(std::remove(scratch.files.begin(), scratch.files.end(), result), scratch.files.end());
}

void CabinetPacker::UnpackFiles(const std::string& archive, const std::string& destination,
                                const std::string& entry) {
  if (!IsFile(archive)) return;
  auto file = OpenForReading(archive);
  if (!file) {
    Raise(FailureNumber::PathFileAccessError,
          "Cannot unpack " + Quoted(archive) + ": it can't be read: " + LastErrorText());
  }
  Layout layout;
  if (auto fault = cabinet::ReadLayout(*file, layout)) {
    Raise(FailureNumber::PathFileAccessError, "Cannot unpack " + Quoted(archive) + ": " + *fault);
  }
  // Of entries that share a name, the last one is the one that counts, as it would be written
  // last over the others.
  std::unordered_map<std::string, std::size_t> last;
  for (std::size_t i = 0; i < layout.entries.size(); ++i) {
    const std::string name = NameOfEntry(layout.entries[i]).value_or(layout.entries[i].rawName);
    if (entry.empty() || cabinet::SameEntryName(name, entry)) last[UpperKey(name)] = i;
  }
  if (!entry.empty() && last.empty()) return;
  std::vector<std::size_t> chosen;
  for (const auto& [key, index] : last) chosen.push_back(index);
  std::sort(chosen.begin(), chosen.end());
  ExpandInto(archive, *file, layout, chosen, destination);
}

void CabinetPacker::ExpandInto(const std::string& archive, RandomFile& file, Layout& layout,
                               const std::vector<std::size_t>& chosen, const std::string& destination) {
  auto refuse = [&](FailureNumber number, const std::string& why) {
    Raise(number, "Cannot unpack " + Quoted(archive) + ": " + why);
  };
  std::vector<std::string> names;
  for (std::size_t i : chosen) {
    const Entry& e = layout.entries[i];
    auto name = NameOfEntry(e);
    if (!name) {
      refuse(FailureNumber::BadFileNameOrNumber,
             "the name of its entry \"" + e.rawName + "\" can't be written in this system's code page");
    }
    if (auto fault = cabinet::EntryNameFault(*name)) {
      refuse(FailureNumber::BadFileNameOrNumber, "its entry " + Quoted(*name) + " " + *fault);
    }
    names.push_back(*name);
  }
  for (std::size_t i : chosen) {
    if (auto fault = cabinet::WalkFolder(file, layout, layout.entries[i].folder)) {
      refuse(FailureNumber::PathFileAccessError, *fault);
    }
  }
  if (!MakeFolders(destination)) {
    refuse(FailureNumber::PathNotFound, "the folder " + Quoted(destination) + " can't be made: " + LastErrorText());
  }
  ScratchList scratch([this](const std::string& f) { RemoveFile(f); },
                      [this](const std::string& f) { RemoveFolderTree(f); });
  std::vector<Target> targets;
  for (std::size_t k = 0; k < chosen.size(); ++k) {
    // Written under a scratch name first, which unlike one made from the entry's own name can't
    // pass the file system's limit for a name.
    targets.push_back(Target{chosen[k], ScratchName(destination)});
    scratch.files.push_back(targets.back().path);
  }
  if (!targets.empty()) Expand(archive, layout, targets);
  for (std::size_t k = 0; k < targets.size(); ++k) {
    const Entry& e = layout.entries[targets[k].entry];
    {
      auto written = OpenForReading(targets[k].path);
      if (!written) refuse(FailureNumber::DeviceIOError, "its entry " + Quoted(names[k]) + " was not written");
      if (written->Size() != e.size) {
        refuse(FailureNumber::PathFileAccessError, "its entry " + Quoted(names[k]) + " claims " +
                                                       std::to_string(e.size) + " bytes and gave " +
                                                       std::to_string(written->Size()));
      }
    }
    SetModified(targets[k].path, e.date, e.time);
    const std::string final = JoinPath(destination, names[k]);
    if (const Replacement placed = Files().PutInPlace(targets[k].path, final); !placed) {
      refuse(FailureNumber::PermissionDenied, Quoted(final) + " can't be written: " + ErrorText(placed.error));
    }
  }
}

}  // namespace quorvane::platform
