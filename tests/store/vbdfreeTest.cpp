#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// The free list while it is sound: first fit, best fit, splitting, counting.

namespace {

class FreeList : public testing::Test {
 protected:
  /// A new live block of this length in all. Its object address.
  vbINT32 Make(unsigned long length) { return db.Alloc(length - 32, vbReclaimNone); }
  /// The object address of a block for a request of this length in all.
  vbINT32 Take(unsigned long length, vbDatabaseReclaimMethod method = vbReclaimFirstFit) {
    return db.Alloc(length - 32, method);
  }

  /// Block addresses in the order of the list.
  std::vector<long> List() {
    std::vector<long> list;
    vbBlockHeader header;
    for (vbINT32 block = db.GetVBDFreeSpace(); block != 0; block = header.NextDeleted) {
      list.push_back(block);
      db.ReadBlockHdr(&header, block);
    }
    return list;
  }

  BlockFile file;
  vbDatabase& db = file.db;
};

using Addresses = std::vector<long>;

}  // namespace

TEST_F(FreeList, RunsFromTheNewestFreedBlockToTheOldest) {
  const vbINT32 first = Make(50);   // at 40
  const vbINT32 second = Make(60);  // at 90
  const vbINT32 third = Make(70);   // at 150
  db.Remove(second);
  db.Delete(first, false);
  db.Remove(third);
  EXPECT_EQ(List(), (Addresses{150, 40, 90}));
  db.Flush();
  EXPECT_EQ(file.HexAt(0, 4), "96 00 00 00");
  EXPECT_EQ(file.HexAt(162, 4), "28 00 00 00");
  EXPECT_EQ(file.HexAt(52, 4), "5A 00 00 00");
  EXPECT_EQ(file.HexAt(102, 4), "00 00 00 00");
}

TEST_F(FreeList, OnlyBlockOfAFileIsTakenAgain) {
  const vbINT32 object = Make(50);
  db.Remove(object);
  EXPECT_EQ(db.GetVBDFreeSpace(), 40);
  EXPECT_EQ(Take(50), object);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
  EXPECT_EQ(db.GetEOF(), 90);
  EXPECT_EQ(file.HexAt(40, 28),
            "FE FE FE FE 32 00 00 00 4E 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(FreeList, BlockTakenAgainHasAFreeRecordLock) {
  const vbINT32 object = Make(50);
  db.LockRecord(vbWriteLock, 40);
  db.Remove(object);
  EXPECT_EQ(file.HexAt(56, 12), "00 00 00 00 00 00 00 00 01 00 00 00");
  EXPECT_EQ(Take(50), object);
  EXPECT_EQ(file.HexAt(56, 12), "00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(FreeList, BlockTakenAgainKeepsTheOldBytesOfItsObject) {
  const long object = file.Add("123456789");
  db.Remove(object);
  EXPECT_EQ(db.Alloc(9, vbReclaimFirstFit), object);
  EXPECT_EQ(file.HexAt(68, 13), "31 32 33 34 35 36 37 38 39 26 39 F4 CB");
}

TEST_F(FreeList, FitsTheVerySameSizeOrOneThatLeavesARemainder) {
  // The request is always 72 bytes in all; header and checksum are 32.
  const struct {
    unsigned long freed;
    bool fits;
  } cases[] = {{71, false},  {72, true},   {73, false}, {100, false},
               {103, false}, {104, false}, {105, true}, {500, true}};
  for (const auto& [freed, fits] : cases) {
    BlockFile own;
    const vbINT32 object = own.db.Alloc(freed - 32, vbReclaimNone);
    own.db.Remove(object);
    const vbINT32 end = own.db.GetEOF();
    const vbINT32 taken = own.db.Alloc(40, vbReclaimFirstFit);
    EXPECT_EQ(taken, fits ? object : vbINT32(end + 28)) << freed;
    EXPECT_EQ(own.db.GetEOF(), fits ? end : vbINT32(end + 72)) << freed;
    EXPECT_EQ(own.db.VBLength(taken), 72UL) << freed;
  }
}

TEST_F(FreeList, BlockOfOneHundredBytesIsPassedOverForSeventyTwo) {
  const vbINT32 object = Make(100);
  db.Remove(object);
  EXPECT_EQ(Take(72), 140 + 28);
  EXPECT_EQ(List(), Addresses{40});
  EXPECT_EQ(file.HexAt(40, 16), "FE FE FE FE 64 00 00 00 52 00 00 00 00 00 00 00");
}

TEST_F(FreeList, BlockOfOneHundredAndFiveBytesIsSplitIntoSeventyTwoAndThirtyThree) {
  const vbINT32 object = Make(105);
  db.Delete(object, false);
  EXPECT_EQ(Take(72), object);
  EXPECT_EQ(file.HexAt(40, 16), "FE FE FE FE 48 00 00 00 4E 00 00 00 00 00 00 00");
  EXPECT_EQ(file.HexAt(112, 16), "FE FE FE FE 21 00 00 00 52 00 00 00 00 00 00 00");
  EXPECT_EQ(List(), Addresses{112});
  EXPECT_EQ(db.VBTotal(), 2);
  EXPECT_EQ(db.GetEOF(), 145);
}

TEST_F(FreeList, OnlyTheBlockHeaderOfARemainderIsWritten) {
  BlockFile own(FileOf(Block(145, 'R', 0, 'x'), 40));
  EXPECT_EQ(own.db.Alloc(40, vbReclaimFirstFit), 68);
  EXPECT_EQ(own.HexAt(112, 32),
            "FE FE FE FE 49 00 00 00 52 00 00 00 00 00 00 00 "
            "78 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78");
  EXPECT_EQ(own.db.Alloc(41, vbReclaimFirstFit), 140);
  EXPECT_EQ(own.HexAt(112, 32),
            "FE FE FE FE 49 00 00 00 4E 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 78 78 78 78");
}

TEST_F(FreeList, RemainderIsUsedInItsTurn) {
  db.Remove(Make(105));
  Take(72);
  EXPECT_EQ(Take(33), 112 + 28);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
  EXPECT_EQ(file.HexAt(112, 28),
            "FE FE FE FE 21 00 00 00 4E 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(FreeList, HighestBlockNamesTheFirstPartUntilTheRemainderIsUsed) {
  Make(50);
  db.Remove(Make(105));
  EXPECT_EQ(db.GetHighestVB(), 90);
  Take(72);
  EXPECT_EQ(db.GetHighestVB(), 90);
  Take(33);
  EXPECT_EQ(db.GetHighestVB(), 162);
}

TEST_F(FreeList, TakingALowerBlockLeavesTheHighest) {
  const vbINT32 first = Make(50);
  Make(50);
  db.Remove(first);
  Take(50);
  EXPECT_EQ(db.GetHighestVB(), 90);
}

TEST_F(FreeList, FirstFitTakesTheFirstThatFitsAndNotTheBest) {
  const vbINT32 exact = Make(72);
  const vbINT32 large = Make(200);
  db.Remove(exact);
  db.Remove(large);
  EXPECT_EQ(Take(72), large);
  EXPECT_EQ(List(), (Addresses{112 + 72, 40}));
}

TEST_F(FreeList, ExactFitIsUnlinkedFromAnyPlace) {
  for (const int place : {0, 1, 2}) {
    BlockFile own;
    std::vector<vbINT32> objects;
    for (int i = 0; i < 3; ++i)
      objects.push_back(own.db.Alloc(i == place ? 40 : 20, vbReclaimNone));
    for (const vbINT32 object : objects) own.db.Delete(object, false);
    EXPECT_EQ(own.db.Alloc(40, vbReclaimFirstFit), objects[static_cast<std::size_t>(place)]);
    vbINT32 deleted;
    EXPECT_EQ(own.db.VBDeleted(&deleted, nullptr), 2) << place;
    EXPECT_EQ(deleted, 2) << place;
  }
}

TEST_F(FreeList, RemainderKeepsThePlaceOfItsBlock) {
  const vbINT32 oldest = Make(40);   // at 40
  const vbINT32 middle = Make(105);  // at 80
  const vbINT32 newest = Make(40);   // at 185
  db.Delete(oldest, false);
  db.Delete(middle, false);
  db.Delete(newest, false);
  EXPECT_EQ(Take(72), middle);
  EXPECT_EQ(List(), (Addresses{185, 152, 40}));
  EXPECT_EQ(file.HexAt(152, 16), "FE FE FE FE 21 00 00 00 52 00 00 00 28 00 00 00");
  EXPECT_EQ(file.HexAt(185, 16), "FE FE FE FE 28 00 00 00 44 00 00 00 98 00 00 00");
}

TEST_F(FreeList, BestFitTakesTheVerySameLengthFromAnyPlace) {
  const vbINT32 exact = Make(72);  // at 40
  const vbINT32 large = Make(200);
  db.Remove(exact);
  db.Remove(large);
  EXPECT_EQ(Take(72, vbReclaimBestFit), exact);
  EXPECT_EQ(List(), Addresses{112});
  EXPECT_EQ(file.HexAt(124, 4), "00 00 00 00");
}

TEST_F(FreeList, BestFitNeverSplits) {
  db.Remove(Make(200));
  EXPECT_EQ(db.ReclaimBestFit(72), 0);
  EXPECT_EQ(Take(72, vbReclaimBestFit), 240 + 28);
  EXPECT_EQ(List(), Addresses{40});
}

TEST_F(FreeList, NoMethodTakesNothing) {
  const vbINT32 object = Make(72);
  db.Remove(object);
  EXPECT_EQ(Take(72, vbReclaimNone), 112 + 28);
  EXPECT_EQ(Take(72, static_cast<vbDatabaseReclaimMethod>(3)), 184 + 28);
  EXPECT_EQ(List(), Addresses{40});
}

TEST_F(FreeList, ReclaimingGivesTheBlockAddressAndLeavesTheBlockAsItIs) {
  db.Remove(Make(105));
  EXPECT_EQ(db.ReclaimFirstFit(72), 40);
  EXPECT_EQ(file.HexAt(40, 16), "FE FE FE FE 69 00 00 00 52 00 00 00 00 00 00 00");
  EXPECT_EQ(db.ReclaimFirstFit(72), 0) << "nothing else is free";
  EXPECT_EQ(db.ReclaimBestFit(33), 112);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST_F(FreeList, EmptyListGivesNothing) {
  EXPECT_EQ(db.ReclaimFirstFit(72), 0);
  EXPECT_EQ(db.ReclaimBestFit(72), 0);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST_F(FreeList, NeighboursAreNotJoined) {
  const vbINT32 first = Make(60);
  const vbINT32 second = Make(60);
  db.Remove(first);
  db.Remove(second);
  EXPECT_EQ(Take(120), 160 + 28);
  EXPECT_EQ(List(), (Addresses{100, 40}));
}

TEST_F(FreeList, DeletedBlockSurvivesAllocOfAnotherSizeAndComesBack) {
  const long object = file.Add("123456789");
  db.Delete(object, false);
  EXPECT_NE(db.Alloc(10, vbReclaimFirstFit), object);
  EXPECT_TRUE(db.UnDelete(object));
  EXPECT_TRUE(db.ReadObjectChecksum(object, nullptr, nullptr));
}

TEST_F(FreeList, DeletedBlockThatWasSplitDoesNotComeBack) {
  const vbINT32 object = Make(105);
  db.Delete(object, false);
  Take(72);
  EXPECT_FALSE(db.UnDelete(object));
  EXPECT_FALSE(db.Restore(object));
  EXPECT_FALSE(db.UnDelete(112 + 28)) << "the remainder is removed for good";
}

TEST_F(FreeList, CountsTellDeletedFromRemoved) {
  vbINT32 deleted = 7;
  vbINT32 removed = 7;
  EXPECT_EQ(db.VBDeleted(&deleted, &removed), 0);
  EXPECT_EQ(deleted, 0);
  EXPECT_EQ(removed, 0);
  for (int i = 0; i < 5; ++i) db.Delete(Make(40), i < 2);
  EXPECT_EQ(db.VBDeleted(&deleted, &removed), 5);
  EXPECT_EQ(deleted, 3);
  EXPECT_EQ(removed, 2);
  EXPECT_EQ(db.VBDeleted(nullptr, &removed), 5);
  EXPECT_EQ(db.VBDeleted(&deleted, nullptr), 5);
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 5);
  EXPECT_EQ(db.VBTotal(), 5) << "free blocks are blocks";
}

TEST_F(FreeList, SurvivesClosing) {
  const vbINT32 object = Make(50);
  db.Remove(object);
  file.Reopen();
  EXPECT_EQ(db.GetVBDFreeSpace(), 40);
  EXPECT_EQ(Take(50), object);
}

TEST_F(FreeList, IsAsLongAsTheFileHasBlocks) {
  // All blocks are of the smallest size, and all are free.
  for (int i = 0; i < 200; ++i) Make(32);
  for (long object = 68; object < 68 + 200 * 32; object += 32) db.Remove(object);
  EXPECT_EQ(db.VBDeleted(nullptr, nullptr), 200);
  for (int i = 0; i < 200; ++i) Take(32);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
  EXPECT_EQ(db.GetEOF(), 40 + 200 * 32);
}
