// Replacing a file whole: the new content is written beside the old file and takes its place in
// one step, so a reader finds the old content or the new one, never a part; whatever step fails,
// the old file stays exactly as it was and nothing of the new one is left beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Support.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"

namespace quorvane::testing {
namespace {

using platform::FileSystem;
using platform::FileWriter;
using platform::Replacement;
using platform::Use;

class FileReplacementConformance : public ::testing::Test {
 protected:
  FileSystem& files_ = Use<FileSystem>();
  const std::string folder_ = FreshTempFolder();
  const std::string path_ = folder_ + "settings.dat";

  std::string Read(const std::string& path) {
    std::string content;
    EXPECT_TRUE(files_.ReadAll(path, content)) << path;
    return content;
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    EXPECT_TRUE(files_.ListFiles(folder_, names));
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(FileReplacementConformance, TheNewContentReplacesTheOldAndNothingIsLeftBeside) {
  ASSERT_TRUE(files_.WriteAll(path_, "the old content, longer than the new"));
  const Replacement done = files_.ReplaceContent(path_, "new");
  EXPECT_TRUE(done);
  EXPECT_EQ(done.failed, Replacement::Step::Done);
  EXPECT_EQ(Read(path_), "new");
  EXPECT_EQ(Names(), std::vector<std::string>{"settings.dat"});
}

TEST_F(FileReplacementConformance, AMissingFileIsMade) {
  ASSERT_TRUE(files_.ReplaceContent(path_, std::string("a\0b", 3)));
  EXPECT_EQ(Read(path_), std::string("a\0b", 3));
  EXPECT_EQ(Names(), std::vector<std::string>{"settings.dat"});
}

TEST_F(FileReplacementConformance, EmptyContentLeavesAnEmptyFile) {
  ASSERT_TRUE(files_.WriteAll(path_, "something"));
  ASSERT_TRUE(files_.ReplaceContent(path_, ""));
  EXPECT_EQ(Read(path_), "");
}

TEST_F(FileReplacementConformance, TheWriterWritesInPiecesInOrder) {
  std::string expected;
  const Replacement done = files_.ReplaceWhole(path_, [&](FileWriter& file) {
    for (int piece = 0; piece < 64; ++piece) {
      const std::string text(1000 + piece, static_cast<char>('A' + piece % 26));
      expected += text;
      if (!file.Write(text.data(), text.size())) return false;
    }
    return true;
  });
  ASSERT_TRUE(done);
  EXPECT_EQ(Read(path_), expected);
}

TEST_F(FileReplacementConformance, AWriterThatGivesUpHalfWayLeavesTheOldFileWhole) {
  ASSERT_TRUE(files_.WriteAll(path_, "the old content"));
  const Replacement failed = files_.ReplaceWhole(path_, [](FileWriter& file) {
    const std::string half = "half of the new";
    EXPECT_TRUE(file.Write(half.data(), half.size()));
    return false;  // the rest can't be made
  });
  EXPECT_FALSE(failed);
  EXPECT_EQ(failed.failed, Replacement::Step::Write);
  EXPECT_EQ(Read(path_), "the old content");
  EXPECT_EQ(Names(), std::vector<std::string>{"settings.dat"});
}

TEST_F(FileReplacementConformance, AMissingFolderFailsAtTheStartAndMakesNothing) {
  const std::string inside = folder_ + "missing" + folder_.back() + "settings.dat";
  bool asked = false;
  const Replacement failed = files_.ReplaceWhole(inside, [&](FileWriter&) {
    asked = true;
    return true;
  });
  EXPECT_FALSE(failed);
  EXPECT_EQ(failed.failed, Replacement::Step::Create);
  EXPECT_TRUE(failed.noFolder);
  EXPECT_NE(failed.error, 0u);
  EXPECT_FALSE(asked);
  EXPECT_FALSE(files_.FolderExists(folder_ + "missing"));
  EXPECT_TRUE(Names().empty());
}

TEST_F(FileReplacementConformance, WhatCantTakeThePlaceOfAFolderLeavesItAndRemovesTheNewFile) {
  // A folder by the file's name: no file can be put in its place.
  ASSERT_TRUE(files_.CreateFolder(path_));
  ASSERT_TRUE(files_.WriteAll(path_ + folder_.back() + "inside.txt", "kept"));
  const Replacement failed = files_.ReplaceContent(path_, "new");
  EXPECT_FALSE(failed);
  EXPECT_EQ(failed.failed, Replacement::Step::Commit);
  EXPECT_NE(failed.error, 0u);
  EXPECT_TRUE(files_.FolderExists(path_));
  EXPECT_EQ(Read(path_ + folder_.back() + "inside.txt"), "kept");
  EXPECT_TRUE(Names().empty());
}

TEST_F(FileReplacementConformance, AFileMadeBesideIsPutInPlace) {
  ASSERT_TRUE(files_.WriteAll(path_, "old"));
  const std::string made = folder_ + "made elsewhere.new";
  ASSERT_TRUE(files_.WriteAll(made, "made by another writer"));
  ASSERT_TRUE(files_.PutInPlace(made, path_));
  EXPECT_EQ(Read(path_), "made by another writer");
  EXPECT_FALSE(files_.FileExists(made));
  EXPECT_EQ(Names(), std::vector<std::string>{"settings.dat"});
}

TEST_F(FileReplacementConformance, AMissingMadeFileIsNotPutInPlace) {
  ASSERT_TRUE(files_.WriteAll(path_, "old"));
  const Replacement failed = files_.PutInPlace(folder_ + "never made.new", path_);
  EXPECT_FALSE(failed);
  EXPECT_EQ(failed.failed, Replacement::Step::Write);
  EXPECT_EQ(Read(path_), "old");
}

}  // namespace
}  // namespace quorvane::testing
