#include <gtest/gtest.h>

#include <string>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// Walks through a heap that is damaged or cut.

namespace {

/// Five live blocks of 100 bytes, at 40, 140, 240, 340 and 440; end at 540.
class DamagedHeap : public testing::Test {
 protected:
  static std::string FiveBlocks() {
    std::string blocks;
    for (int i = 0; i < 5; ++i) blocks += Block(100, 'N');
    return blocks;
  }

  BlockFile file{FileOf(FiveBlocks())};
  vbDatabase& db = file.db;
};

}  // namespace

TEST_F(DamagedHeap, ScanFindsTheNextBlockBehindABadCheckWord) {
  file.Patch(140, "x");
  EXPECT_EQ(db.FindFirstVB(140), 240);
  EXPECT_EQ(db.FindFirstObject(140), 268);
  EXPECT_EQ(db.FindNextVB(140), 240);
  EXPECT_EQ(db.FindNextObject(140), 268);
  EXPECT_EQ(db.VBTotal(), 4);
}

TEST_F(DamagedHeap, FirstBlockMayBeTheBadOne) {
  file.Patch(40, "x");
  EXPECT_EQ(db.FindFirstVB(0), 140);
  EXPECT_EQ(db.FindFirstObject(0), 168);
  EXPECT_EQ(db.FindNextVB(0), 140);
  EXPECT_EQ(db.VBTotal(), 4);
}

TEST_F(DamagedHeap, LastBlockMayBeTheBadOne) {
  file.Patch(440, "x");
  EXPECT_EQ(db.FindFirstVB(440), 0);
  EXPECT_EQ(db.FindFirstObject(440), 0);
  EXPECT_EQ(db.FindNextObject(440), 0);
  EXPECT_EQ(db.VBTotal(), 4);
}

TEST_F(DamagedHeap, AllMayBeBad) {
  for (const long block : {40L, 140L, 240L, 340L, 440L}) file.Patch(block, "x");
  EXPECT_EQ(db.FindFirstVB(0), 0);
  EXPECT_EQ(db.FindFirstObject(0), 0);
  EXPECT_EQ(db.VBTotal(), 0);
}

TEST_F(DamagedHeap, StepFromABlockNeedsAGoodBlockBehindIt) {
  file.Patch(140, "x");
  EXPECT_THROW(db.FindNextVB(40), CSync);
  EXPECT_THROW(db.FindNextObject(40), CSync);
  EXPECT_EQ(db.FindFirstVB(41), 240) << "a scan goes on";
}

TEST_F(DamagedHeap, StepFromAnObjectPassesABadBlock) {
  // Whether the object holds its own address or not.
  file.Patch(140, "x");
  EXPECT_EQ(db.FindNextObject(68), 268);
  file.Patch(68, Word(1) + Word(68));
  EXPECT_EQ(db.FindNextObject(68), 268);
}

TEST_F(DamagedHeap, FirstObjectPassesFreedBlocksAndThenABadOne) {
  db.Remove(68);
  file.Patch(140, "x");
  EXPECT_EQ(db.FindFirstObject(0), 268);
}

TEST_F(DamagedHeap, NextObjectDoesNotPassABadBlockBehindAFreedOne) {
  db.Remove(168);
  file.Patch(240, "x");
  EXPECT_THROW(db.FindNextObject(40), CSync);
}

TEST_F(DamagedHeap, PreviousObjectPassesABadBlock) {
  file.Patch(240, "x");
  EXPECT_EQ(db.FindPrevObject(368), 168);
}

TEST_F(DamagedHeap, ManyBadBytesAreScanned) {
  file.Patch(100, std::string(300, '\xFE').replace(1, 1, "x"));
  // The run of check-word bytes is itself full of check words, none a block of a sound length.
  EXPECT_EQ(db.FindFirstVB(100), 102);
  EXPECT_EQ(db.VBTotal(), 2);
}

class BadLength : public testing::TestWithParam<long> {
 protected:
  /// The second of five live blocks has a length that can't be.
  BadLength() {
    std::string blocks;
    for (int i = 0; i < 5; ++i) blocks += Block(100, 'N');
    blocks.replace(104, 4, Word(GetParam()));
    file.db.Close();
    WriteBytes(file.Path(), FileOf(blocks));
    db.Open(file.Path(), vbReadWrite);
  }

  BlockFile file;
  vbDatabase& db = file.db;
};

TEST_P(BadLength, StepFromTheBlockIsRefused) {
  EXPECT_EQ(db.FindNextVB(40), 140);
  EXPECT_THROW(db.FindNextVB(140), CSync);
  EXPECT_THROW(db.FindNextObject(140), CSync);
}

TEST_P(BadLength, FirstObjectBehindAFreedBlockIsRefused) {
  file.Patch(148, "R");
  EXPECT_THROW(db.FindFirstObject(140), CSync);
}

TEST_P(BadLength, BlockIsFoundByItsCheckWordAllTheSame) {
  EXPECT_EQ(db.FindFirstVB(140), 140);
  EXPECT_EQ(db.FindFirstVB(141), 240);
  EXPECT_EQ(db.FindPrevObject(268), 168);
}

TEST_P(BadLength, BlockIsNotCountedAndTheCountGoesOn) {
  EXPECT_EQ(db.VBTotal(), 4);
}

TEST_P(BadLength, StepFromItsObjectEndsOrScansOn) {
  file.Patch(168, Word(1) + Word(168));
  const vbINT32 next = db.FindNextVB(168);
  EXPECT_TRUE(next == 240 || next == 0) << static_cast<long>(next);
}

INSTANTIATE_TEST_SUITE_P(All, BadLength,
                         testing::Values(0L, 1L, 27L, 31L, 401L, 5000L, 0x7FFFFFFFL, 0x80000000L,
                                         0xFFFFFFFFL));

TEST_F(DamagedHeap, WrongLengthWithinTheFileIsRefusedWhereItLeads) {
  file.Patch(144, Word(101));
  EXPECT_THROW(db.FindNextVB(140), CSync);
  EXPECT_EQ(db.VBTotal(), 4) << "the block after is passed, a scan finds the one behind";
}

TEST_F(DamagedHeap, FileCutInsideABlockEndsThere) {
  file.Resize(460);
  EXPECT_EQ(db.GetEOF(), 540) << "as the header says";
  EXPECT_EQ(db.VBTotal(), 4);
  EXPECT_EQ(db.FindFirstVB(341), 0);
  EXPECT_EQ(db.FindFirstObject(341), 0);
  EXPECT_EQ(db.FindNextObject(368), 0);
  EXPECT_EQ(db.FindPrevObject(440 + 28), 368);
  EXPECT_THROW(db.VBLength(468), CFileRead);
}

TEST_F(DamagedHeap, FileCutBetweenBlocksEndsThere) {
  file.Resize(440);
  EXPECT_EQ(db.VBTotal(), 4);
  EXPECT_EQ(db.FindNextVB(340), 0);
  EXPECT_EQ(db.FindNextObject(340), 0);
  EXPECT_EQ(db.FindFirstVB(440), 0);
}

TEST_F(DamagedHeap, FileCutInsideAnObjectKeepsItsBlockOutOfTheCount) {
  file.Resize(500);
  EXPECT_EQ(db.VBTotal(), 4);
  EXPECT_EQ(db.FindNextVB(340), 440);
  EXPECT_THROW(db.FindNextVB(440), CSync);
  EXPECT_THROW(db.VBLength(468), CSync);
}

TEST_F(DamagedHeap, FileCutToItsHeaderHasNoBlocks) {
  for (const unsigned long size : {28UL, 40UL, 41UL, 60UL}) {
    file.Resize(size);
    EXPECT_EQ(db.VBTotal(), 0) << size;
    EXPECT_EQ(db.FindFirstVB(0), 0) << size;
    EXPECT_EQ(db.FindFirstObject(0), 0) << size;
    EXPECT_EQ(db.FindNextObject(68), 0) << size;
    EXPECT_EQ(db.FindPrevObject(468), 0) << size;
  }
}

TEST_F(DamagedHeap, HeaderThatNamesAHeapOutsideTheFileHasNoBlocks) {
  for (const std::string& header :
       {FileHeaderBytes(0, 5000, 4000, 0), FileHeaderBytes(0, 0x7FFFFFFF, 0x7FFFFFFE, 0),
        FileHeaderBytes(0, 10, 40, 0), FileHeaderBytes(0, -1, 40, 0)}) {
    file.Patch(0, header);
    EXPECT_EQ(db.VBTotal(), 0);
    EXPECT_EQ(db.FindFirstVB(0), 0);
    EXPECT_EQ(db.FindNextVB(0), 0);
    EXPECT_EQ(db.FindFirstObject(0), 0);
    EXPECT_EQ(db.FindNextObject(0), 0);
    EXPECT_EQ(db.FindPrevObject(268), 0);
  }
}

TEST_F(DamagedHeap, HeapBelowTheFileIsASeekError) {
  file.Patch(0, FileHeaderBytes(0, 540, -100, 0));
  EXPECT_THROW(db.FindFirstVB(0), CFileSeek);
  EXPECT_THROW(db.FindFirstObject(0), CFileSeek);
  EXPECT_THROW(db.VBTotal(), CFileSeek);
}
