#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// The longest file is 2,147,483,647 bytes long. The files here are that long and hold next to
// nothing.

namespace {

constexpr long longest = 0x7FFFFFFF;

/// A file with one block, whose heap ends at `end`.
class LongBlockFile {
 public:
  explicit LongBlockFile(long end, char status = 'N', long freeSpace = 0) {
    file_.db.Close();
    WriteBytes(file_.Path(), FileHeaderBytes(freeSpace, end, 40, 40) + std::string(12, '\0') +
                                 Block(100, status));
    std::filesystem::resize_file(file_.Path(), static_cast<std::uintmax_t>(end));
    db.Open(file_.Path(), vbReadWrite);
  }

  std::string HexAt(long offset, unsigned long size) { return file_.HexAt(offset, size); }

  /// What the file takes on the disk, and its length.
  std::string State() {
    struct stat status;
    stat(file_.Path().c_str(), &status);
    return HeaderOf(db) + ' ' + std::to_string(status.st_size) + ' ' +
           std::to_string(status.st_blocks) + ' ' + HexAt(0, 140);
  }

 private:
  BlockFile file_;

 public:
  vbDatabase& db = file_.db;
};

}  // namespace

TEST(LongestFile, BlockThatJustFitsIsMade) {
  LongBlockFile file(longest - 72);
  EXPECT_EQ(file.db.Alloc(40, vbReclaimFirstFit), longest - 72 + 28);
  EXPECT_EQ(file.db.GetEOF(), longest);
  EXPECT_EQ(file.db.GetHighestVB(), longest - 72);
  EXPECT_EQ(file.db.Length(), longest);
  EXPECT_EQ(file.HexAt(longest - 72, 16), "FE FE FE FE 48 00 00 00 4E 00 00 00 00 00 00 00");
  EXPECT_EQ(file.db.ObjectLength(longest - 72 + 28), 40UL);
}

TEST(LongestFile, LargeBlockThatJustFitsIsMade) {
  LongBlockFile file(longest - 100032);
  EXPECT_EQ(file.db.Alloc(100000, vbReclaimFirstFit), longest - 100032 + 28);
  EXPECT_EQ(file.db.GetEOF(), longest);
  EXPECT_EQ(file.db.Length(), longest);
}

TEST(LongestFile, BlockThatWouldPassItIsNotMadeAndNothingChanges) {
  LongBlockFile file(longest - 72);
  const std::string before = file.State();
  for (const unsigned long size : {41UL, 5000UL, 0x7FFFFFFFUL, 0x80000000UL, 0xFFFFFFFFUL, ~0UL}) {
    EXPECT_EQ(file.db.Alloc(size, vbReclaimFirstFit), 0) << size;
    EXPECT_EQ(file.db.Alloc(size, vbReclaimNone), 0) << size;
    EXPECT_EQ(file.State(), before) << size;
  }
  EXPECT_NE(file.db.Alloc(40, vbReclaimFirstFit), 0) << "and the file can be used on";
}

TEST(LongestFile, BlockOfAnySizeIsTooLargeForAFullFile) {
  LongBlockFile file(longest);
  const std::string before = file.State();
  EXPECT_EQ(file.db.Alloc(0, vbReclaimFirstFit), 0);
  EXPECT_EQ(file.State(), before);
}

TEST(LongestFile, FreeBlocksAreStillUsed) {
  LongBlockFile file(longest, 'R', 40);
  EXPECT_EQ(file.db.Alloc(500, vbReclaimFirstFit), 0);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), 40);
  EXPECT_EQ(file.db.Alloc(68, vbReclaimFirstFit), 68);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), 0);
}

TEST(LongestFile, RoomAtTheEndIsTold) {
  LongBlockFile file(longest - 72);
  EXPECT_TRUE(file.db.HasRoom(0, 0));
  EXPECT_TRUE(file.db.HasRoom(40, 0));
  EXPECT_FALSE(file.db.HasRoom(41, 0));
  EXPECT_FALSE(file.db.HasRoom(0x7FFFFFFF, 0));
  EXPECT_FALSE(file.db.HasRoom(~0UL, 0));
}

TEST(LongestFile, RoomInFreeBlocksIsToldByTheRulesOfFirstFit) {
  LongBlockFile file(longest, 'R', 40);
  // The free block is 100 bytes long, headers included.
  const struct {
    unsigned long size;
    bool fits;
  } cases[] = {{0, true},   {35, true}, {36, false}, {40, false},
               {67, false}, {68, true}, {69, false}};
  for (const auto& [size, fits] : cases) {
    EXPECT_EQ(file.db.HasRoom(size, 0), fits) << size;
  }
  EXPECT_EQ(file.db.GetVBDFreeSpace(), 40) << "asking takes nothing";
}

TEST(LongestFile, RoomCountsABlockThatIsAboutToBeFreed) {
  LongBlockFile file(longest);
  EXPECT_FALSE(file.db.HasRoom(68, 0));
  EXPECT_TRUE(file.db.HasRoom(68, 68));
  EXPECT_TRUE(file.db.HasRoom(35, 68));
  EXPECT_FALSE(file.db.HasRoom(36, 68));
  EXPECT_FALSE(file.db.HasRoom(69, 68));
}

TEST(LongestFile, BrokenFreeListHasNoRoom) {
  LongBlockFile marked(longest, 'R', -1);
  EXPECT_FALSE(marked.db.HasRoom(68, 0));
  EXPECT_FALSE(marked.db.HasRoom(68, 68)) << "what is freed now never comes into the list";
  LongBlockFile found(longest, 'N', 40);
  EXPECT_FALSE(found.db.HasRoom(68, 0));
  EXPECT_EQ(found.db.GetVBDFreeSpace(), vbFSListCorrupt);
}
