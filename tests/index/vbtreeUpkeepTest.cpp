#include <gtest/gtest.h>

#include <string>

#include "index/vbtree.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// The operations that keep the header in memory and the header in the file in step.

namespace {

/// The file has three keys, the header in memory says something else in every word.
void Disturb(vBtree& tree) {
  tree.Order = 5;
  tree.EntrySize = 12;
  tree.EntryCount = 30;
  tree.NodeCount = 40;
  tree.Height = 50;
  tree.Root = 60;
  tree.ClassID = 70;
  tree.HeaderCurrent = false;
}

/// Puts another header behind the tree's own one, which is at 40.
TreeFile WithASecondHeader() {
  TreeFile stored = TreeFile::Of("1 2 3");
  TreeFile wide(std::string(stored.Bytes()).insert(80, 40, '\0'));
  const long shift = 40;
  wide.PutWord(4, stored.WordAt(4) + shift);
  wide.PutWord(8, stored.WordAt(8) + shift);
  wide.PutWord(12, stored.WordAt(12) + shift);
  wide.PutHeader(kRoot, NodeAddress(0) + shift);
  wide.Put(80, Bytes("20 00 00 00 4C 00 00 00 09 00 00 00 02 00 00 00 03 00 00 00 94 00 00 00 "
                     "0B 00 00 00"));
  return wide;
}

TEST(TreeUpkeep, HeaderReachesTheFileWithAFlush) {
  IndexFile index(TreeFile::Of("1 2 3"));
  index.Insert(4);
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Stored().Counts(), "3 1 1") << "the file's header is out of date";
  index->Flush();
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(index.Stored().Counts(), "4 1 1");
}

TEST(TreeUpkeep, FlushLeavesWhatLiesBetweenTheHeaders) {
  TreeFile stored = TreeFile::Of("1 2 3");
  const std::string between = Bytes("01 02 03 04 05 06 07 08 09 0A 0B 0C");
  stored.Put(28, between);  // the lock words of the file
  IndexFile index(stored);
  index.Database().ReadFront();
  index->LoadBtreeHeader();
  index.Insert(4);
  index->Flush();
  EXPECT_EQ(index.Stored().Counts(), "4 1 1");
  EXPECT_EQ(index.Stored().Text(), "1..4");
  EXPECT_EQ(index.Stored().Part(28, 12), between);
}

TEST(TreeUpkeep, TheHeaderOfTheFrontIsLoadedAndElseThatOfTheFile) {
  IndexFile index(TreeFile::Of("1 2 3"));
  for (const bool front : {false, true}) {
    if (front) index.Database().ReadFront();
    Disturb(*index);
    index->LoadBtreeHeader();
    EXPECT_EQ(index->EntryCount, 3) << front;
    EXPECT_EQ(index->Order, 32) << front;
    EXPECT_TRUE(index->HeaderCurrent) << front;
    EXPECT_FALSE(index->HeaderDiffers()) << front;
  }
}

TEST(TreeUpkeep, FlushBringsEverythingOutOfTheBuffers) {
  IndexFile index;
  index.Insert(4);
  index->Flush();
  const TreeFile seen(ReadBytes(index.Path()));
  EXPECT_EQ(seen.Text(), "4");
  EXPECT_EQ(seen.WordAt(4), 2476) << "the file header too";
}

TEST(TreeUpkeep, CloseWritesTheHeaderAndLeavesTheFileOpen) {
  IndexFile index(TreeFile::Of("1 2 3"));
  index.Insert(4);
  index->Close();
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(index->Database, &index.Database());
  EXPECT_TRUE(index.Database().IsOpen());
  EXPECT_EQ(index.Stored().Counts(), "4 1 1");
  EXPECT_TRUE(index.Holds(4));
}

TEST(TreeUpkeep, AReadOnlyFileIsNotReadyForFlushAndClose) {
  const TreeFile stored = TreeFile::Of("1 2 3");
  IndexFile index(stored, vbReadOnly);
  EXPECT_THROW(index->Flush(), CFileNotReady);
  EXPECT_THROW(index->Close(), CFileNotReady);
  EXPECT_THROW(index->ReInit(true), CFileNotReady);
  EXPECT_THROW(index->ReInit(80, true), CFileNotReady);
  EXPECT_EQ(index->HeaderAddress, kTreeHeader);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeUpkeep, ReInitTakesTheHeaderOfTheFile) {
  IndexFile index(TreeFile::Of("1 2 3"));
  Disturb(*index);
  index->ReInit(false);
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(index->TestTree(false), 0);
  EXPECT_EQ(index->Order, 32);
  EXPECT_EQ(index->EntryCount, 3);
}

TEST(TreeUpkeep, ReInitMayFlushFirst) {
  IndexFile index(TreeFile::Of("1 2 3"));
  Disturb(*index);
  index->ReInit(true);
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(index->EntryCount, 30);
  EXPECT_EQ(index.Stored().Counts(), "30 40 50");
}

TEST(TreeUpkeep, ReInitMovesToAnotherHeader) {
  const TreeFile stored = WithASecondHeader();
  IndexFile index(stored);
  index->EntryCount = 77;
  index->ReInit(80, false);
  EXPECT_EQ(index->HeaderAddress, 80);
  EXPECT_EQ(index->EntryCount, 9);
  EXPECT_EQ(index->ClassID, 11);
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeUpkeep, ReInitFlushesToTheOldAddress) {
  const TreeFile stored = WithASecondHeader();
  IndexFile index(stored);
  index->EntryCount = 77;
  index->ReInit(80, true);
  EXPECT_EQ(index->EntryCount, 9);
  EXPECT_EQ(index->HeaderAddress, 80);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "48") << "the old entry count";
  EXPECT_EQ(index.Stored().Header(kEntryCount), 77);
}

TEST(TreeUpkeep, TestTreeIsZeroForTheHeaderOfTheFile) {
  IndexFile index(TreeFile::Of("1 2 3"));
  EXPECT_EQ(index->TestTree(false), 0);
  EXPECT_EQ(index->TestTree(true), 0);
}

TEST(TreeUpkeep, TestTreeNumbersTheFieldsFromOne) {
  vbINT32 vBtree::*const fields[] = {&vBtree::Order,     &vBtree::EntrySize, &vBtree::EntryCount,
                                     &vBtree::NodeCount, &vBtree::Height,    &vBtree::Root,
                                     &vBtree::ClassID};
  int number = 0;
  for (vbINT32 vBtree::*const field : fields) {
    IndexFile index(TreeFile::Of("1 2 3"));
    const long before = (*index).*field;
    (*index).*field = 99;
    ++number;
    EXPECT_EQ(index->TestTree(false), number);
    EXPECT_EQ((*index).*field, 99) << "the header in memory stays";
    EXPECT_EQ(index->TestTree(true), number);
    EXPECT_EQ((*index).*field, before) << "the header in memory is refreshed";
    EXPECT_EQ(index->TestTree(false), 0);
  }
}

TEST(TreeUpkeep, OfTwoDifferencesTestTreeTellsTheLast) {
  IndexFile index(TreeFile::Of("1 2 3"));
  index->EntryCount = 30;
  index->Root = 60;
  index->HeaderCurrent = false;
  EXPECT_EQ(index->TestTree(false), 6);
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index->EntryCount, 30);
  EXPECT_EQ(index->Root, 60);
}

TEST(TreeUpkeep, OfTwoDifferencesAReloadingTestTreeTellsTheFirst) {
  IndexFile index(TreeFile::Of("1 2 3"));
  index->EntryCount = 30;
  index->Root = 60;
  index->HeaderCurrent = false;
  EXPECT_EQ(index->TestTree(true), 3);
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(index->EntryCount, 3);
  EXPECT_EQ(index->Root, NodeAddress(0));
}

TEST(TreeUpkeep, TestTreeOfEveryFieldTellsTheSeventhOrTheFirst) {
  IndexFile index(TreeFile::Of("1 2 3"));
  Disturb(*index);
  EXPECT_EQ(index->TestTree(false), 7);
  EXPECT_EQ(index->TestTree(true), 1);
  EXPECT_EQ(index->TestTree(false), 0);
}

TEST(TreeUpkeep, TestTreeLooksAtTheFileEachTime) {
  IndexFile index(TreeFile::Of("1 2 3"));
  index.Insert(4);
  EXPECT_EQ(index->TestTree(false), 3);
  index->Close();
  EXPECT_EQ(index->TestTree(false), 0);
}

TEST(TreeUpkeep, TwoTreesOnOneFileSeeEachOtherAfterAReload) {
  IndexFile index(TreeFile::Of("1 2 3"));
  KSBKey key;
  vBtree other(key, 32, 0);
  other.InitBtree(&index.Database(), 0, kTreeHeader);
  for (long number = 4; number <= 40; ++number) index.Insert(number);
  index->Flush();
  EXPECT_EQ(other.TestTree(true), 3);
  EXPECT_EQ(other.Height, 2);
  KSBKey last, work;
  EXPECT_TRUE(other.FindLast(last, true));
  EXPECT_EQ(NumberOf(last), 40);
}

}  // namespace
