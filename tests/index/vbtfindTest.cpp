#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// Search: exact, first and last, neighbours.

namespace {

constexpr std::optional<long> kNone;

/// Three levels of order 5; the even numbers from 2 to 70.
const char* const kThreeLevels =
    "((2 4) 6 (8 10) 12 (14 16)) 18 ((20 22) 24 (26 28 30) 32 (34 36)) 38 "
    "((40 42) 44 (46 48 50 52) 54 (56 58) 60 (62 64) 66 (68 70))";

/// A file that fails the test when a node is read: the checksum of the root is wrong.
TreeFile Unreadable(const std::string& text) {
  TreeFile stored = TreeFile::Of(text);
  stored.Put(NodeAddress(0) + 100, "damage");
  return stored;
}

TEST(TreeSearch, FindsEveryKeyOnEveryLevel) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  for (long number = 2; number <= 70; number += 2) EXPECT_TRUE(index.Holds(number)) << number;
}

TEST(TreeSearch, DoesNotFindWhatIsNotThere) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  for (long number = 1; number <= 71; number += 2) EXPECT_FALSE(index.Holds(number)) << number;
}

TEST(TreeSearch, FindGivesTheStoredEntryWhateverTheKeyHeld) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)"));
  KSBKey key("          3", 55, 66), work;
  key.Branch = 77;
  EXPECT_TRUE(index->Find(key, work, true));
  EXPECT_EQ(key.ObjectAddress, NumberAddress(3));
  EXPECT_EQ(key.ObjectClassID, kNumberClass);
  EXPECT_EQ(key.Branch, NodeAddress(2));
}

TEST(TreeSearch, FindInALeafGivesNoBranch) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)"));
  KSBKey key = NumberKey(4), work;
  key.Branch = 77;
  EXPECT_TRUE(index->Find(key, work, true));
  EXPECT_EQ(key.Branch, 0);
}

TEST(TreeSearch, FindGivesTheWholeImageOfTheEntry) {
  TreeFile stored = TreeFile::Of("1");
  stored.Put(TreeFile::Entry(NodeAddress(0), 0) + 4 + 12, "behind the name");
  stored.Seal(NodeAddress(0));
  IndexFile index(stored);
  KSBKey key = NumberKey(1), work;
  EXPECT_TRUE(index->Find(key, work, true));
  EXPECT_STREQ(key.ObjectName + 12, "behind the name");
}

TEST(TreeSearch, AnEmptyTreeHoldsNothing) {
  IndexFile index;
  EXPECT_FALSE(index.Holds(1));
  EXPECT_EQ(index.First(), kNone);
  EXPECT_EQ(index.Last(), kNone);
  EXPECT_EQ(index.Next(1), kNone);
  EXPECT_EQ(index.Previous(1), kNone);
}

TEST(TreeSearch, FindReadsTheRootOfAnEmptyTree) {
  IndexFile index(Unreadable(""));
  EXPECT_THROW(index.Holds(1), CChecksum);
}

TEST(TreeSearch, WithoutEntriesFirstAndLastReadNoNode) {
  IndexFile index(Unreadable(""));
  EXPECT_EQ(index.First(), kNone);
  EXPECT_EQ(index.Last(), kNone);
}

TEST(TreeSearch, FirstAndLastAreTheEdges) {
  for (const char* const text : {"3 5 9", "(3) 4 (9)", "((3) 4 (5)) 6 ((7) 8 (9))"}) {
    IndexFile index(TreeFile::Of(text, 5));
    EXPECT_EQ(index.First(), 3) << text;
    EXPECT_EQ(index.Last(), 9) << text;
  }
  IndexFile single(TreeFile::Of("7"));
  EXPECT_EQ(single.First(), 7);
  EXPECT_EQ(single.Last(), 7);
}

TEST(TreeSearch, FirstAndLastGiveTheWholeEntry) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  KSBKey key;
  EXPECT_TRUE(index->FindFirst(key, true));
  EXPECT_EQ(key.ObjectAddress, NumberAddress(2));
  EXPECT_EQ(key.ObjectClassID, kNumberClass);
  EXPECT_TRUE(index->FindLast(key, true));
  EXPECT_EQ(key.ObjectAddress, NumberAddress(70));
  EXPECT_EQ(key.Branch, 0);
}

TEST(TreeSearch, NextGoesThroughTheWholeTree) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  for (long number = 2; number < 70; number += 2) EXPECT_EQ(index.Next(number), number + 2);
}

TEST(TreeSearch, PreviousGoesThroughTheWholeTree) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  for (long number = 70; number > 2; number -= 2) EXPECT_EQ(index.Previous(number), number - 2);
}

TEST(TreeSearch, NeighboursGiveTheWholeEntry) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  KSBKey key("         36", 1, 1), work;
  EXPECT_TRUE(index->FindNext(key, work, true));
  EXPECT_EQ(key.ObjectAddress, NumberAddress(38));
  EXPECT_EQ(key.ObjectClassID, kNumberClass);
  EXPECT_EQ(key.Branch, index.Stored().Branch(NodeAddress(0, 5), 1));
}

TEST(TreeSearch, BeyondTheEdgesThereIsNoNeighbour) {
  for (const char* const text : {"7", "3 5 7", "(3) 4 (7)", kThreeLevels}) {
    IndexFile index(TreeFile::Of(text, 5));
    EXPECT_EQ(index.Previous(*index.First()), kNone) << text;
    EXPECT_EQ(index.Next(*index.Last()), kNone) << text;
  }
}

TEST(TreeSearch, AKeyThatIsNotInTheTreeHasNoNeighbours) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  for (long number = 1; number <= 71; number += 2) {
    EXPECT_EQ(index.Next(number), kNone) << number;
    EXPECT_EQ(index.Previous(number), kNone) << number;
  }
}

TEST(TreeSearch, WhatFailsLeavesTheKeyAsItWas) {
  IndexFile full(TreeFile::Of(kThreeLevels, 5));
  IndexFile empty;
  KSBKey key("          5", 11, 22), work;
  key.Branch = 33;
  const std::string before(key.ObjectName, 72);
  EXPECT_FALSE(full->Find(key, work, true));
  EXPECT_FALSE(full->FindNext(key, work, true));
  EXPECT_FALSE(full->FindPrev(key, work, true));
  EXPECT_FALSE(empty->FindFirst(key, true));
  EXPECT_FALSE(empty->FindLast(key, true));
  EXPECT_EQ(key.Branch, 33);
  EXPECT_EQ(Hex({static_cast<char*>(key.KeyData), 72}), Hex(before));
}

TEST(TreeSearch, AnEdgeKeyIsLeftAsItWas) {
  IndexFile index(TreeFile::Of(kThreeLevels, 5));
  KSBKey first("          2", 11, 22), last("         70", 11, 22), work;
  EXPECT_FALSE(index->FindPrev(first, work, true));
  EXPECT_FALSE(index->FindNext(last, work, true));
  EXPECT_EQ(first.ObjectAddress, 11);
  EXPECT_EQ(last.ObjectAddress, 11);
}

TEST(TreeSearch, TheFlagHasNoEffect) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)"));
  for (const bool flag : {false, true}) {
    KSBKey key = NumberKey(3), work;
    EXPECT_TRUE(index->Find(key, work, flag));
    EXPECT_TRUE(index->FindNext(key, work, flag));
    EXPECT_EQ(NumberOf(key), 4);
    EXPECT_TRUE(index->FindPrev(key, work, flag));
    EXPECT_EQ(NumberOf(key), 3);
    EXPECT_TRUE(index->FindFirst(key, flag));
    EXPECT_EQ(NumberOf(key), 1);
    EXPECT_TRUE(index->FindLast(key, flag));
    EXPECT_EQ(NumberOf(key), 5);
  }
}

TEST(TreeSearch, ChangesNeitherTheFileNorTheHeader) {
  const TreeFile stored = TreeFile::Of(kThreeLevels, 5);
  IndexFile index(stored, vbReadOnly);
  index->HeaderCurrent = false;
  index->NodeCount = 999;
  EXPECT_TRUE(index.Holds(38));
  EXPECT_EQ(index.First(), 2);
  EXPECT_EQ(index.Last(), 70);
  EXPECT_EQ(index.Next(38), 40);
  EXPECT_EQ(index.Previous(38), 36);
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index->NodeCount, 999);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeSearch, GoesByTheHeaderInMemory) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)"));
  index->Root = NodeAddress(1);
  EXPECT_FALSE(index.Holds(3));
  EXPECT_TRUE(index.Holds(2));
  index->EntryCount = 0;
  EXPECT_EQ(index.First(), kNone);
  EXPECT_TRUE(index.Holds(2)) << "only the edges ask for the number of entries";
}

TEST(TreeSearch, SeesNamesOfSixtyThreeCharacters) {
  IndexFile index;
  const std::string common(62, 'n');
  for (const char last : {'b', 'a', 'c'}) {
    KSBKey key((common + last + "cut off").c_str(), last, 0), work;
    index->Insert(key, work, false);
  }
  KSBKey key((common + "b and anything").c_str(), 0, 0), work;
  EXPECT_TRUE(index->Find(key, work, true));
  EXPECT_EQ(key.ObjectAddress, 'b');
  EXPECT_TRUE(index->FindNext(key, work, true));
  EXPECT_EQ(key.ObjectAddress, 'c');
}

// -- Empty nodes, as lazy deletions leave them.

TEST(TreeSearch, AnEmptyLeafAtAnEdgeHidesTheFirstAndTheLastKey) {
  IndexFile index(TreeFile::Of("() 3 (4 5) 6 ()"));
  EXPECT_EQ(index->EntryCount, 4);
  EXPECT_EQ(index.First(), kNone);
  EXPECT_EQ(index.Last(), kNone);
  EXPECT_TRUE(index.Holds(3));
  EXPECT_FALSE(index.Holds(1));
  EXPECT_FALSE(index.Holds(9));
}

TEST(TreeSearch, AnEmptyLeafOnTheWayToANeighbourHidesIt) {
  IndexFile index(TreeFile::Of("(1 2) 3 () 5 (6 7)"));
  EXPECT_EQ(index.Next(3), kNone);
  EXPECT_EQ(index.Previous(5), kNone);
  EXPECT_EQ(index.Next(2), 3);
  EXPECT_EQ(index.Next(5), 6);
  EXPECT_EQ(index.Previous(6), 5);
  EXPECT_EQ(index.Previous(3), 2);
}

TEST(TreeSearch, AnEmptyInnerNodeIsPassed) {
  // The node on the left holds no key and one child.
  IndexFile index(TreeFile::Of("((1 2)) 3 ((4 5))"));
  for (const long number : {1, 2, 3, 4, 5}) EXPECT_TRUE(index.Holds(number)) << number;
  EXPECT_EQ(index.First(), 1);
  EXPECT_EQ(index.Last(), 5);
  EXPECT_EQ(index.Next(2), 3);
  EXPECT_EQ(index.Previous(3), 2);
  EXPECT_EQ(index.Previous(4), 3);
}

}  // namespace
