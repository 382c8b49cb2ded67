#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/TempFolder.h"

// Walks through a sound heap. Backwards: vbdwalkPrevTest.cpp; damage: vbdwalkDamageTest.cpp.

namespace {

using Addresses = std::vector<long>;

/// Live and free blocks: 'N' at 40, 'D' at 80, 'R' at 140, 'N' at 190, 'R' at 290; end at 340.
class Walks : public testing::Test {
 protected:
  Addresses Blocks() {
    Addresses blocks;
    for (vbINT32 block = db.FindFirstVB(0); block != 0; block = db.FindNextVB(block)) {
      blocks.push_back(block);
    }
    return blocks;
  }
  Addresses Objects() {
    Addresses objects;
    for (vbINT32 object = db.FindFirstObject(0); object != 0; object = db.FindNextObject(object)) {
      objects.push_back(object);
    }
    return objects;
  }

  BlockFile file{
      FileOf(Block(40, 'N') + Block(60, 'D') + Block(50, 'R') + Block(100, 'N') + Block(50, 'R'))};
  vbDatabase& db = file.db;
};

/// Four objects that hold their own addresses: blocks at 40, 100, 170 and 250, end at 310.
class ObjectWalks : public testing::Test {
 protected:
  ObjectWalks() {
    for (const std::size_t length : {28U, 38U, 48U, 28U}) file.AddObject(length);
  }

  BlockFile file;
  vbDatabase& db = file.db;
};

}  // namespace

TEST(EmptyHeap, HasNothingToFind) {
  BlockFile file;
  vbDatabase& db = file.db;
  for (const long offset : {0L, 40L, 68L, 5000L}) {
    EXPECT_EQ(db.FindFirstVB(offset), 0);
    EXPECT_EQ(db.FindNextVB(offset), 0);
    EXPECT_EQ(db.FindPrevVB(offset), 0);
    EXPECT_EQ(db.FindFirstObject(offset), 0);
    EXPECT_EQ(db.FindNextObject(offset), 0);
    EXPECT_EQ(db.FindPrevObject(offset), 0);
  }
  EXPECT_EQ(db.VBTotal(), 0);
}

TEST(EmptyHeap, BehindAStaticAreaThatIsNotWrittenYet) {
  TempFolder folder;
  vbDatabase db;
  db.Create(folder / "file.vbd", 1000, 'C');
  EXPECT_EQ(db.FindFirstVB(0), 0);
  EXPECT_EQ(db.FindFirstObject(0), 0);
  EXPECT_EQ(db.VBTotal(), 0);
}

TEST(ClosedHeap, HasNothingToFind) {
  vbDatabase db;
  EXPECT_EQ(db.FindFirstVB(0), 0);
  EXPECT_EQ(db.FindNextObject(68), 0);
  EXPECT_EQ(db.FindPrevObject(68), 0);
  EXPECT_EQ(db.VBTotal(), 0);
}

TEST_F(Walks, BlocksComeInFileOrderFreeOnesToo) {
  EXPECT_EQ(Blocks(), (Addresses{40, 80, 140, 190, 290}));
  EXPECT_EQ(db.VBTotal(), 5);
}

TEST_F(Walks, ObjectsAreThoseOfNormalBlocks) {
  EXPECT_EQ(Objects(), (Addresses{68, 218}));
}

TEST_F(Walks, WorkOnAFileOpenedForReading) {
  file.Reopen(vbReadOnly);
  EXPECT_EQ(Blocks(), (Addresses{40, 80, 140, 190, 290}));
  EXPECT_EQ(Objects(), (Addresses{68, 218}));
  EXPECT_EQ(db.FindPrevObject(218), 68);
  EXPECT_EQ(db.VBTotal(), 5);
}

TEST_F(Walks, FirstBlockIsTheOneAtOrBehindTheOffset) {
  EXPECT_EQ(db.FindFirstVB(40), 40);
  EXPECT_EQ(db.FindFirstVB(41), 80);
  EXPECT_EQ(db.FindFirstVB(79), 80);
  EXPECT_EQ(db.FindFirstVB(80), 80);
  EXPECT_EQ(db.FindFirstVB(291), 0);
  EXPECT_EQ(db.FindFirstVB(340), 0);
  EXPECT_EQ(db.FindFirstVB(5000), 0);
}

TEST_F(Walks, FirstBlockMayLieBeforeTheHeapWhenTheScanStartsThere) {
  EXPECT_EQ(db.FindFirstVB(1), 40);
  EXPECT_THROW(db.FindFirstVB(-2), CFileSeek);
}

TEST_F(Walks, FindingABlockLeavesTheFileThere) {
  db.FindFirstVB(41);
  EXPECT_EQ(db.FilePosition(), 80);
}

TEST_F(Walks, NextBlockOfABlockIsTheOneBehindIt) {
  EXPECT_EQ(db.FindNextVB(0), 40);
  EXPECT_EQ(db.FindNextVB(40), 80);
  EXPECT_EQ(db.FindNextVB(190), 290);
  EXPECT_EQ(db.FindNextVB(290), 0);
}

TEST_F(Walks, NextBlockOfAnyOtherOffsetIsTheFirstBehindIt) {
  EXPECT_EQ(db.FindNextVB(41), 80);
  EXPECT_EQ(db.FindNextVB(218), 290) << "an object address";
  EXPECT_EQ(db.FindNextVB(291), 0);
}

TEST_F(Walks, FirstObjectIsTheOneOfABlockAtOrBehindTheOffset) {
  EXPECT_EQ(db.FindFirstObject(40), 68);
  EXPECT_EQ(db.FindFirstObject(41), 218);
  EXPECT_EQ(db.FindFirstObject(80), 218);
  EXPECT_EQ(db.FindFirstObject(191), 0);
}

TEST_F(Walks, NextObjectTakesBlockAndObjectAddresses) {
  EXPECT_EQ(db.FindNextObject(0), 68);
  EXPECT_EQ(db.FindNextObject(40), 218);
  EXPECT_EQ(db.FindNextObject(68), 218);
  EXPECT_EQ(db.FindNextObject(190), 0);
  EXPECT_EQ(db.FindNextObject(218), 0);
}

TEST_F(Walks, OnlyTheLowByteOfTheStatusCounts) {
  file.Patch(88, Bytes("4E 44 52 FF"));
  file.Patch(198, Bytes("44 4E 00 00"));
  EXPECT_EQ(Objects(), (Addresses{68, 108}));
}

TEST_F(Walks, EndWhereTheHeaderSays) {
  file.Patch(4, Word(190));
  EXPECT_EQ(Blocks(), (Addresses{40, 80, 140}));
  EXPECT_EQ(Objects(), Addresses{68});
  EXPECT_EQ(db.VBTotal(), 3);
}

TEST_F(Walks, BlockThatEndsWhereItsHeaderWouldIsNotSeen) {
  // The last block starts at 290: 28 bytes behind it must lie something.
  file.Patch(4, Word(318));
  EXPECT_EQ(db.FindFirstVB(290), 0);
  file.Patch(4, Word(319));
  EXPECT_EQ(db.FindFirstVB(290), 290);
}

TEST_F(Walks, LeaveNothingInTheLog) {
  ClearLog();
  Blocks();
  Objects();
  db.FindFirstVB(41);
  db.VBDeleted(nullptr, nullptr);
  EXPECT_TRUE(Log().empty());
}

TEST_F(Walks, NewBlocksAreSeenBeforeTheHeaderIsWritten) {
  EXPECT_EQ(db.Alloc(8, vbReclaimNone), 368);
  EXPECT_EQ(Blocks(), (Addresses{40, 80, 140, 190, 290, 340}));
}

TEST_F(ObjectWalks, ObjectThatHoldsItsAddressLeadsToTheBlockBehind) {
  EXPECT_EQ(db.FindFirstVB(68), 100);
  EXPECT_EQ(db.FindNextVB(68), 100);
  EXPECT_EQ(db.FindNextVB(128), 170);
  EXPECT_EQ(db.FilePosition(), 170);
}

TEST_F(ObjectWalks, LastObjectThatHoldsItsAddressHasNoneBehind) {
  EXPECT_EQ(db.FindFirstVB(278), 0);
  EXPECT_EQ(db.FindNextVB(278), 0);
  EXPECT_EQ(db.FindNextObject(278), 0);
}

TEST_F(ObjectWalks, ObjectAddressLeadsPastCheckWordsInsideTheObject) {
  // A false block in the second object, which a scan from the object on would find.
  file.Patch(140, Bytes("FE FE FE FE"));
  EXPECT_EQ(db.FindFirstVB(128), 170);
  EXPECT_EQ(db.FindFirstVB(129), 140);
}

TEST_F(ObjectWalks, ObjectAddressIsNotTrustedWhenTheBlockBehindIsNone) {
  // The length of the second block leads into the third object, where no check word is.
  file.Patch(104, Word(71));
  file.Patch(140, Bytes("FE FE FE FE"));
  EXPECT_EQ(db.FindFirstVB(128), 140) << "by scanning";
}

TEST_F(ObjectWalks, ObjectAddressIsNotTrustedWithoutItsBlock) {
  file.Patch(100, "x");
  file.Patch(140, Bytes("FE FE FE FE"));
  EXPECT_EQ(db.FindFirstVB(128), 140) << "by scanning";
}

TEST_F(ObjectWalks, ObjectAddressWhoseBlockReachesTheEndOfTheHeapHasNoneBehind) {
  file.Patch(104, Word(5000));
  EXPECT_EQ(db.FindFirstVB(128), 0);
  file.Patch(104, Word(310 - 28 - 100));
  EXPECT_EQ(db.FindFirstVB(128), 0) << "nothing can start that close to the end";
}

TEST_F(ObjectWalks, VersionInTheFileHeaderIsNotTakenForTheAddressOfAnObject) {
  file.Patch(24, Word(20));
  EXPECT_EQ(db.FindFirstVB(20), 40);
}

TEST_F(ObjectWalks, RemovedObjectsArePassedOver) {
  db.Remove(128);
  EXPECT_EQ(db.FindNextObject(68), 198);
  db.Delete(198, false);
  EXPECT_EQ(db.FindNextObject(68), 278);
  EXPECT_EQ(db.FindNextObject(128), 278) << "a removed object still leads on";
}
