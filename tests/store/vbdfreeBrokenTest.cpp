#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// Free lists that are broken. The files hold four blocks of 100 bytes, at 40, 140, 240 and 340,
// the first of them live.

namespace {

struct BrokenList {
  const char* name;
  std::string bytes;
  long counted;  ///< what VBDeleted returns
};

void PrintTo(const BrokenList& list, std::ostream* out) {
  *out << list.name;
}

std::string Blocks(const std::string& second, const std::string& third, const std::string& fourth) {
  return Block(100, 'N') + second + third + fourth;
}

/// A block of 100 bytes with another length word or another check word.
std::string WithLength(long length) {
  return Block(100, 'R').replace(4, 4, Word(length));
}
std::string WithCheckWord(const std::string& hex) {
  return Block(100, 'R').replace(0, 4, Bytes(hex));
}

const std::string freed = Block(100, 'R');

const BrokenList brokenLists[] = {
    {"MarkedBefore", FileOf(Blocks(freed, freed, freed), -1), -1},
    {"LoopOfOne", FileOf(Blocks(Block(100, 'R', 140), freed, freed), 140), 0},
    {"LoopOfOneBehindTheHead",
     FileOf(Blocks(Block(100, 'R', 240), Block(100, 'D', 240), freed), 140), 0},
    {"LoopOfTwo", FileOf(Blocks(Block(100, 'R', 240), Block(100, 'R', 140), freed), 140), -1},
    {"LoopOfThree",
     FileOf(Blocks(Block(100, 'R', 240), Block(100, 'D', 340), Block(100, 'R', 140)), 140), -1},
    {"LoopBackIntoTheMiddle",
     FileOf(Blocks(Block(100, 'R', 240), Block(100, 'R', 340), Block(100, 'R', 240)), 140), -1},
    {"HeadOutsideTheFile", FileOf(Blocks(freed, freed, freed), 5000), -1},
    {"HeadAtTheEndOfTheFile", FileOf(Blocks(freed, freed, freed), 440), -1},
    {"HeadInTheLastBytesOfTheFile", FileOf(Blocks(freed, freed, freed), 430), -1},
    {"HeadAtTheLargestAddress", FileOf(Blocks(freed, freed, freed), 0x7FFFFFFF), -1},
    {"HeadInTheFileHeader", FileOf(Blocks(freed, freed, freed), 16), -1},
    {"HeadBelowTheFile", FileOf(Blocks(freed, freed, freed), -2), -1},
    {"HeadInsideABlock", FileOf(Blocks(freed, freed, freed), 141), -1},
    {"MemberOutsideTheFile", FileOf(Blocks(Block(100, 'R', 5000), freed, freed), 140), -1},
    {"MemberBelowTheFile", FileOf(Blocks(Block(100, 'R', -100), freed, freed), 140), -1},
    {"MemberIsLive", FileOf(Blocks(Block(100, 'R', 340), freed, Block(100, 'N')), 140), 0},
    {"MemberOfUnknownStatus", FileOf(Blocks(Block(100, 'B'), freed, freed), 140), 0},
    {"MemberWithoutCheckWord", FileOf(Blocks(WithCheckWord("FE FE FE FF"), freed, freed), 140), -1},
    {"MemberWithTheOldCheckWord", FileOf(Blocks(WithCheckWord("FE FE 00 00"), freed, freed), 140),
     -1},
    {"MemberOfNoLength", FileOf(Blocks(WithLength(0), freed, freed), 140), -1},
    {"MemberShorterThanItsHeaders", FileOf(Blocks(WithLength(31), freed, freed), 140), -1},
    {"MemberLongerThanTheFile", FileOf(Blocks(WithLength(301), freed, freed), 140), -1},
    {"MemberOfTheLargestLength", FileOf(Blocks(WithLength(0xFFFFFFFF), freed, freed), 140), -1},
};

class BrokenFreeList : public testing::TestWithParam<BrokenList> {
 protected:
  void ExpectMarkedAndNothingElseChanged() {
    EXPECT_EQ(db.GetVBDFreeSpace(), vbFSListCorrupt);
    EXPECT_EQ(Hex(ReadBytes(file.Path())), Hex(GetParam().bytes));
  }

  BlockFile file{GetParam().bytes};
  vbDatabase& db = file.db;
};

INSTANTIATE_TEST_SUITE_P(All, BrokenFreeList, testing::ValuesIn(brokenLists),
                         [](const auto& list) { return std::string(list.param.name); });

}  // namespace

TEST_P(BrokenFreeList, FirstFitMarksItAndTakesNothing) {
  EXPECT_EQ(db.ReclaimFirstFit(90), 0);
  ExpectMarkedAndNothingElseChanged();
}

TEST_P(BrokenFreeList, BestFitMarksItAndTakesNothing) {
  EXPECT_EQ(db.ReclaimBestFit(90), 0);
  ExpectMarkedAndNothingElseChanged();
}

TEST_P(BrokenFreeList, CountingMarksIt) {
  vbINT32 deleted = 7;
  EXPECT_EQ(db.VBDeleted(&deleted, nullptr), GetParam().counted);
  ExpectMarkedAndNothingElseChanged();
  EXPECT_EQ(db.VBDeleted(&deleted, nullptr), -1) << "once it is marked";
  EXPECT_EQ(deleted, 0);
}

TEST_P(BrokenFreeList, AllocationGoesOnAtTheEndOfTheFile) {
  EXPECT_EQ(db.Alloc(58, vbReclaimFirstFit), 440 + 28);
  EXPECT_EQ(db.Alloc(58, vbReclaimBestFit), 530 + 28);
  EXPECT_EQ(db.GetVBDFreeSpace(), vbFSListCorrupt);
  EXPECT_EQ(db.GetEOF(), 620);
}

TEST_P(BrokenFreeList, FreedBlocksNoLongerMoveTheHead) {
  EXPECT_EQ(db.ReclaimFirstFit(90), 0);
  EXPECT_TRUE(db.Remove(68));
  EXPECT_EQ(db.GetVBDFreeSpace(), vbFSListCorrupt);
  EXPECT_EQ(file.HexAt(48, 8), "52 00 00 00 FF FF FF FF");
  EXPECT_EQ(db.Alloc(68, vbReclaimFirstFit), 440 + 28);
}

TEST_P(BrokenFreeList, NothingComesBackFromIt) {
  EXPECT_EQ(db.ReclaimFirstFit(90), 0);
  EXPECT_TRUE(db.Delete(68, false));
  EXPECT_FALSE(db.UnDelete(68));
  EXPECT_EQ(file.HexAt(48, 4), "44 00 00 00");
}

TEST_P(BrokenFreeList, RestoreNeedsNoListThatIsMarkedBroken) {
  EXPECT_EQ(db.ReclaimFirstFit(90), 0);
  EXPECT_TRUE(db.Delete(68, true));
  EXPECT_TRUE(db.Restore(68));
  EXPECT_EQ(file.HexAt(48, 8), "4E 00 00 00 00 00 00 00");
  EXPECT_EQ(db.GetVBDFreeSpace(), vbFSListCorrupt);
}

TEST_P(BrokenFreeList, UnDeleteOfABlockOffTheListMarksIt) {
  file.Patch(48, Word('D'));
  EXPECT_FALSE(db.UnDelete(68));
  EXPECT_EQ(db.GetVBDFreeSpace(), vbFSListCorrupt);
  EXPECT_EQ(file.HexAt(48, 4), "44 00 00 00");
}

TEST_P(BrokenFreeList, MarkIsKeptInTheFile) {
  EXPECT_EQ(db.ReclaimFirstFit(90), 0);
  db.Flush();
  EXPECT_EQ(file.HexAt(0, 4), "FF FF FF FF");
}

TEST(FreeListBehindAFit, IsNotLookedAt) {
  BlockFile file(FileOf(Block(100, 'R', 5000) + Block(100, 'N'), 40));
  EXPECT_EQ(file.db.Alloc(68, vbReclaimFirstFit), 68);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), 5000);
  EXPECT_EQ(file.db.Alloc(68, vbReclaimFirstFit), 240 + 28);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), vbFSListCorrupt);
}

TEST(FreeListBehindAFit, SuccessorOfItselfIsBrokenEvenWhenItFits) {
  BlockFile file(FileOf(Block(100, 'R', 40), 40));
  EXPECT_EQ(file.db.ReclaimFirstFit(100), 0);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), vbFSListCorrupt);
}

TEST(FreeListWithABrokenEnd, CountsAsBrokenAndIsNotMarked) {
  // The last member was freed when the list was already broken.
  BlockFile file(FileOf(Block(100, 'D', 140) + Block(100, 'R', -1), 40));
  vbINT32 deleted = 7;
  vbINT32 removed = 7;
  EXPECT_EQ(file.db.VBDeleted(&deleted, &removed), -1);
  EXPECT_EQ(deleted, 1) << "counted before";
  EXPECT_EQ(removed, 0) << "the test comes before the count";
  EXPECT_EQ(file.db.GetVBDFreeSpace(), 40);
}

TEST(FreeListWithABrokenEnd, IsMarkedWhenAWalkGetsThere) {
  BlockFile file(FileOf(Block(100, 'D', 140) + Block(100, 'R', -1), 40));
  EXPECT_EQ(file.db.ReclaimFirstFit(90), 0);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), vbFSListCorrupt);
}

TEST(FreeListWithABrokenEnd, HandsTheMarkOnWhenItsBlockIsTaken) {
  BlockFile file(FileOf(Block(100, 'R', -1), 40));
  EXPECT_EQ(file.db.Alloc(68, vbReclaimFirstFit), 68);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), vbFSListCorrupt);
}

TEST(FreeListOfACutFile, IsBroken) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'R'), 140));
  file.Resize(239);
  EXPECT_EQ(file.db.VBDeleted(nullptr, nullptr), -1);
  EXPECT_EQ(file.db.GetVBDFreeSpace(), vbFSListCorrupt);
}
