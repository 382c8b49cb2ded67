#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/Descriptors.h"
#include "tests/support/FileSizeLimit.h"

// Blocks on a disk that is full. What fails leaves the file header in memory as it was, so that
// the next step starts from a sound file.

namespace {

/// Runs a step that has to fail, on a disk that ends at `end`, and looks at what it left.
template <class Step>
void ExpectFailure(BlockFile& file, unsigned long end, Step step) {
  const std::string header = HeaderOf(file.db);
  const std::string stored = file.HexAt(0, 28);
  const auto descriptors = OpenDescriptors();
  {
    const FileSizeLimit full(end);
    EXPECT_THROW(step(), CFileWrite) << end;
  }
  EXPECT_EQ(HeaderOf(file.db), header) << end;
  EXPECT_EQ(file.HexAt(0, 28), stored) << end;
  EXPECT_EQ(OpenDescriptors(), descriptors) << end;
}

}  // namespace

TEST(BlockFaults, AllocAtTheEndOfTheFileFailsAndWorksLater) {
  for (const unsigned long size : {9UL, 4092UL, 100000UL}) {
    BlockFile file(FileOf(Block(100, 'N')));
    vbDatabase& db = file.db;
    for (const unsigned long room : {0UL, 1UL, 15UL, 16UL, 28UL, 31UL, size + 31}) {
      ExpectFailure(file, 140 + room, [&] { db.Alloc(size, vbReclaimFirstFit); });
      EXPECT_EQ(db.VBTotal(), 1) << room;
      EXPECT_EQ(db.FindNextVB(40), 0) << room;
    }
    const vbINT32 object = db.Alloc(size, vbReclaimFirstFit);
    EXPECT_EQ(object, 168);
    EXPECT_EQ(db.ObjectLength(object), size);
    EXPECT_EQ(db.VBTotal(), 2);
    EXPECT_EQ(db.Length(), 140 + static_cast<long>(size) + 32);
  }
}

TEST(BlockFaults, AllocOfAFreeBlockOfTheVerySameSizeFailsAndWorksLater) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'R'), 140));
  vbDatabase& db = file.db;
  ExpectFailure(file, 140, [&] { db.Alloc(68, vbReclaimFirstFit); });
  ExpectFailure(file, 140, [&] { db.Alloc(68, vbReclaimBestFit); });
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 1);
  EXPECT_EQ(db.Alloc(68, vbReclaimFirstFit), 168);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST(BlockFaults, AllocOfAPartOfAFreeBlockFailsAndWorksLater) {
  BlockFile file(FileOf(Block(100, 'N') + Block(105, 'D'), 140));
  vbDatabase& db = file.db;
  // The remainder starts at 212.
  for (const unsigned long end : {212UL, 220UL, 227UL}) {
    ExpectFailure(file, end, [&] { db.Alloc(40, vbReclaimFirstFit); });
  }
  EXPECT_EQ(file.HexAt(140, 16), "FE FE FE FE 69 00 00 00 44 00 00 00 00 00 00 00");
  EXPECT_TRUE(db.UnDelete(168));
  EXPECT_TRUE(db.Delete(168, false));
  EXPECT_EQ(db.Alloc(40, vbReclaimFirstFit), 168);
  EXPECT_EQ(db.GetVBDFreeSpace(), 212);
}

TEST(BlockFaults, AllocBehindAMemberThatCannotBeLinkedFailsAndWorksLater) {
  // The head of the list is the block at 140, which no longer can be written; the next fits.
  BlockFile file(FileOf(Block(100, 'R') + Block(50, 'R', 40), 140));
  vbDatabase& db = file.db;
  ExpectFailure(file, 140, [&] { db.Alloc(68, vbReclaimFirstFit); });
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 2);
  EXPECT_EQ(db.Alloc(68, vbReclaimFirstFit), 68);
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 1);
}

TEST(BlockFaults, AllocOfAFreeBlockBehindAnotherFailsAndTheListStaysSound) {
  // The head of the list is the block at 40; the block at 140 fits and can't be written.
  BlockFile file(FileOf(Block(50, 'R', 90) + Block(100, 'R') + Block(60, 'N'), 40));
  vbDatabase& db = file.db;
  ExpectFailure(file, 90, [&] { db.Alloc(68, vbReclaimFirstFit); });
  EXPECT_GT(db.VBDeleted(nullptr, nullptr), 0);
  EXPECT_EQ(db.VBTotal(), 3);
  EXPECT_NE(db.Alloc(68, vbReclaimFirstFit), 0);
  EXPECT_NE(db.GetVBDFreeSpace(), vbFSListCorrupt);
}

TEST(BlockFaults, DeleteFailsAndWorksLater) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'N')));
  vbDatabase& db = file.db;
  for (const bool remove : {false, true}) {
    for (const unsigned long end : {140UL, 141UL, 144UL}) {
      ExpectFailure(file, end, [&] { db.Delete(168, remove); });
      EXPECT_EQ(file.HexAt(140, 16), "FE FE FE FE 64 00 00 00 4E 00 00 00 00 00 00 00");
    }
    EXPECT_TRUE(db.Delete(168, remove));
    EXPECT_EQ(db.GetVBDFreeSpace(), 140);
    EXPECT_TRUE(db.Restore(168));
  }
}

TEST(BlockFaults, UnDeleteFailsAndWorksLater) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'D'), 140));
  vbDatabase& db = file.db;
  ExpectFailure(file, 140, [&] { db.UnDelete(168); });
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 1);
  EXPECT_TRUE(db.UnDelete(168));
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST(BlockFaults, RestoreFailsAndWorksLater) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'R'), 140));
  vbDatabase& db = file.db;
  ExpectFailure(file, 140, [&] { db.Restore(168); });
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 1);
  EXPECT_TRUE(db.Restore(168));
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST(BlockFaults, UnDeleteBehindAMemberThatCannotBeLinkedFailsAndWorksLater) {
  BlockFile file(FileOf(Block(100, 'D') + Block(100, 'R', 40), 140));
  vbDatabase& db = file.db;
  ExpectFailure(file, 140, [&] { db.UnDelete(68); });
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 2);
  EXPECT_TRUE(db.UnDelete(68));
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 1);
}

TEST(BlockFaults, UnDeleteInAReadOnlyFileLeavesTheListInMemory) {
  BlockFile file(FileOf(Block(100, 'D') + Block(100, 'D', 40), 140));
  file.Reopen(vbReadOnly);
  const std::string header = HeaderOf(file.db);
  for (const long object : {68L, 168L}) {
    EXPECT_THROW(file.db.UnDelete(object), CFileNotWriteable) << object;
    EXPECT_EQ(HeaderOf(file.db), header) << object;
  }
}

TEST(BlockFaults, ReclaimInAReadOnlyFileLeavesTheListInMemory) {
  // The one is split, the other is linked behind a member.
  for (const unsigned long bytes : {40UL, 90UL}) {
    BlockFile file(FileOf(Block(90, 'R') + Block(100, 'R', 40), 130));
    file.Reopen(vbReadOnly);
    const std::string header = HeaderOf(file.db);
    EXPECT_THROW(file.db.ReclaimFirstFit(bytes), CFileNotWriteable) << bytes;
    EXPECT_EQ(HeaderOf(file.db), header) << bytes;
  }
}

TEST(BlockFaults, ChecksumFailsAndWorksLater) {
  BlockFile file(FileOf(Block(28 + 9 + 4, 'N', 0, '\0')));
  vbDatabase& db = file.db;
  db.Write("123456789", 9, 68, false, true);
  ExpectFailure(file, 77, [&] { db.WriteObjectChecksum(68); });
  EXPECT_FALSE(db.ReadObjectChecksum(68, nullptr, nullptr));
  EXPECT_EQ(db.WriteObjectChecksum(68), 0xCBF43926UL);
  EXPECT_TRUE(db.ReadObjectChecksum(68, nullptr, nullptr));
}

TEST(BlockFaults, WholeObjectFailsAndWorksLater) {
  BlockFile file(FileOf(Block(28 + 9 + 4, 'N', 0, '\0')));
  vbDatabase& db = file.db;
  const std::string digits = "123456789";
  for (const unsigned long end : {68UL, 72UL, 80UL}) {
    ExpectFailure(file, end, [&] { db.WriteWholeObject(68, {digits.begin(), digits.end()}); });
  }
  db.WriteWholeObject(68, {digits.begin(), digits.end()});
  EXPECT_EQ(file.HexAt(68, 13), "31 32 33 34 35 36 37 38 39 26 39 F4 CB");
}

TEST(BlockFaults, StoringAnObjectAtTheEndFailsAndLeavesNoBlock) {
  BlockFile file(FileOf(Block(100, 'N')));
  vbDatabase& db = file.db;
  std::vector<char> object(9);
  for (const unsigned long room : {0UL, 1UL, 16UL, 28UL, 31UL, 40UL}) {
    ExpectFailure(file, 140 + room, [&] { db.StoreObject(object); });
    EXPECT_EQ(db.VBTotal(), 1) << room;
  }
  EXPECT_EQ(db.StoreObject(object), 168);
  EXPECT_TRUE(db.ReadObjectChecksum(168, nullptr, nullptr));
}

TEST(BlockFaults, StoringAnObjectInAFreeBlockFailsAndLeavesItFree) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'R'), 140));
  vbDatabase& db = file.db;
  std::vector<char> object(68);
  for (const unsigned long room : {0UL, 28UL, 60UL, 99UL}) {
    ExpectFailure(file, 140 + room, [&] { db.StoreObject(object); });
    EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 1) << room;
  }
  EXPECT_EQ(db.StoreObject(object), 168);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST(BlockFaults, RecordLockFailsAndIsWhatItWas) {
  BlockFile file(FileOf(Block(100, 'N')));
  vbDatabase& db = file.db;
  ExpectFailure(file, 56, [&] { db.LockRecord(vbReadLock, 40); });
  EXPECT_EQ(file.HexAt(56, 12), "00 00 00 00 00 00 00 00 00 00 00 00");
  db.LockRecord(vbReadLock, 40);
  ExpectFailure(file, 56, [&] { db.UnlockRecord(vbReadLock, 40); });
  EXPECT_EQ(file.HexAt(56, 12), "00 00 00 00 01 00 00 00 00 00 00 00");
}
