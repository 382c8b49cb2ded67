#include <gtest/gtest.h>

#include <string>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/IndexFile.h"
#include "tests/support/ScarceFile.h"
#include "tests/support/ScarceMemory.h"
#include "tests/support/TreeFile.h"

// Insertions that fail, and what they leave behind.

namespace {

TEST(TreeInsertionFailure, AStoredKeyIsADuplicateOnEveryLevel) {
  const TreeFile stored = TreeFile::Of("((1) 2 (3)) 4 ((5) 6 (7))", 5);
  IndexFile index(stored);
  for (const long number : {1, 2, 4, 6, 7}) {
    KSBKey key(NumberName(number).c_str(), 999, 888), work;
    key.Branch = 77;
    EXPECT_THROW(index->Insert(key, work, true), CDuplicateEntry) << number;
    EXPECT_EQ(key.Branch, 0);
    EXPECT_EQ(NumberOf(key), number);
    EXPECT_EQ(key.ObjectAddress, 999);
  }
  EXPECT_TRUE(index->HeaderCurrent) << "nothing changed";
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeInsertionFailure, WithoutMemoryForThePathTheTreeIsUnchanged) {
  const TreeFile stored = TreeFile::Of("((1) 2 (3)) 4 ((5) 6 (7))", 5);
  IndexFile index(stored);
  for (const int left : {0, 1, 2}) {
    const ScarceMemory scarce(left);
    EXPECT_THROW(index.Insert(8), CStackFull) << left;
  }
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
  const ScarceMemory enough(3);
  index.Insert(8);
  EXPECT_EQ(index.Current().Text(), "((1) 2 (3)) 4 ((5) 6 (7 8))");
}

TEST(TreeInsertionFailure, WithoutABlockForTheNewLeafTheTreeIsUnchanged) {
  const TreeFile stored = TreeFile::Of("(1..15) 16 (17..47)");
  IndexFileOf<ScarceFile> index(stored);
  index.Database().left = 0;
  EXPECT_THROW(index.Insert(50), CMemoryAlloc);
  EXPECT_EQ(Differences(stored.Bytes(), index.Current().Bytes()), "");
  index.Insert(0);
  EXPECT_EQ(index.Current().Text(), "(0..15) 16 (17..47)") << "where there is room all goes on";
}

/// A root of four keys over full leaves: order 5, the numbers from 1 to 24 without 5, 10, 15, 20.
const char* const kFull = "(1..4) 5 (6..9) 10 (11..14) 15 (16..19) 20 (21..24)";

TEST(TreeInsertionFailure, WithoutABlockHigherUpTheLowerLevelsAreWritten) {
  IndexFileOf<ScarceFile> index(TreeFile::Of(kFull, 5));
  index.Database().left = 1;
  EXPECT_THROW(index.Insert(25), CMemoryAlloc);
  EXPECT_EQ(index.Current().Text(), "(1..4) 5 (6..9) 10 (11..14) 15 (16..19) 20 (21 22)");
  EXPECT_EQ(index.Current().Counts(), "24 7 2") << "the new leaf is counted, the key is not";
  const long newLeaf = NodeAddress(6, 5);
  EXPECT_EQ(index.Stored().KeyCount(newLeaf), 2);
  EXPECT_TRUE(index.Stored().IsSealed(newLeaf));
}

TEST(TreeInsertionFailure, WithoutABlockForTheNewRootBothHalvesAreWritten) {
  IndexFileOf<ScarceFile> index(TreeFile::Of(kFull, 5));
  const std::string fileHeader = index.Stored().Part(12, 28);
  index.Database().left = 2;
  EXPECT_THROW(index.Insert(25), CMemoryAlloc);
  EXPECT_EQ(index.Current().Text(), "(1..4) 5 (6..9) 10 (11..14)");
  EXPECT_EQ(index.Current().Counts(), "24 8 2");
  EXPECT_EQ(index->Root, NodeAddress(0, 5));
  EXPECT_EQ(index.Stored().KeyCount(NodeAddress(7, 5)), 2) << "the right half of the root";
  EXPECT_EQ(Hex(index.Stored().Part(16, 24)), Hex(fileHeader.substr(4)))
      << "nothing is written where no block was given";
}

TEST(TreeInsertionFailure, GrowNewRootWithoutABlockChangesNothing) {
  const TreeFile stored = TreeFile::Of("1 2 3");
  IndexFileOf<ScarceFile> index(stored);
  index.Database().left = 0;
  KSBKey key = NumberKey(5);
  EXPECT_THROW(index->GrowNewRoot(key), CMemoryAlloc);
  EXPECT_EQ(index->Root, NodeAddress(0));
  EXPECT_EQ(Differences(stored.Bytes(), index.Current().Bytes()), "");
}

TEST(TreeInsertionFailure, AFullFileIsAMemoryFailure) {
  // The next block would pass the last address that a file may have.
  TreeFile stored = TreeFile::Of("1..31");
  stored.PutWord(4, 2147483647 - 2395);
  IndexFile index(stored);
  EXPECT_THROW(index.Insert(40), CMemoryAlloc);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
  EXPECT_EQ(index.Stored().Bytes().size(), stored.Bytes().size());
}

TEST(TreeInsertionFailure, WithoutARootThereIsNoPlaceForAKey) {
  const TreeFile stored = TreeFile::Of("1 2 3");
  IndexFile index(stored);
  index->Root = 0;
  EXPECT_THROW(index.Insert(4), CFileInsertion);
  EXPECT_EQ(index->EntryCount, 3);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeInsertionFailure, AReadOnlyFileTakesNoKey) {
  const TreeFile stored = TreeFile::Of("1 2 3");
  IndexFile index(stored, vbReadOnly);
  EXPECT_THROW(index.Insert(4), CFileNotWriteable);
  EXPECT_EQ(index->EntryCount, 3);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeInsertionFailure, DamageOnTheWayDownLeavesTheTreeAsItIs) {
  TreeFile stored = TreeFile::Of("(1 2) 3 (4 5)");
  stored.Put(NodeAddress(2) + 100, "damage");
  IndexFile index(stored);
  EXPECT_THROW(index.Insert(6), CChecksum);
  index.Insert(0);
  EXPECT_EQ(index.Current().Text(), "(0..2) 3 (<bad checksum>)");
}

TEST(TreeInsertionFailure, TheNewNodeIsWrittenBeforeTheOneThatIsSplit) {
  // The new node lies before the old one, which is on a full disk.
  IndexFile index;
  const vbINT32 low = index->Root;
  index->InitBtree(1, kTreeHeader);
  const long high = index->Root;
  index.Database().Remove(low);
  for (long number = 1; number <= 31; ++number) index.Insert(number);
  index->Flush();
  {
    const FileSizeLimit fullDisk(static_cast<unsigned long>(high - 28));
    EXPECT_THROW(index.Insert(32), CFileWrite);
  }
  const TreeFile stored = index.Stored();
  EXPECT_EQ(stored.KeyCount(low), 15);
  EXPECT_EQ(stored.Name(low, 0), NumberName(18));
  EXPECT_TRUE(stored.IsSealed(low));
  EXPECT_EQ(stored.KeyCount(high), 31);
  EXPECT_EQ(index->EntryCount, 31);
  EXPECT_EQ(index->NodeCount, 2);
}

}  // namespace
