#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/IndexFile.h"
#include "tests/support/ScarceMemory.h"
#include "tests/support/TreeFile.h"

// The lazy delete, and what the other operations make of the trees it leaves.

namespace {

constexpr std::optional<long> kNone;

/// Order 5: a node with fewer than two keys is underfull.
constexpr long kSmall = 5;

/// A tree before and after one key is deleted.
struct Deletion {
  const char* before;
  long number;
  const char* after;
  const char* counts;
};

void Check(const Deletion& deletion) {
  IndexFile index(TreeFile::Of(deletion.before, kSmall));
  index.LazyDelete(deletion.number);
  EXPECT_EQ(index.Current().Text(), deletion.after)
      << deletion.before << " less " << deletion.number;
  EXPECT_EQ(index.Current().Counts(), deletion.counts) << deletion.before;
}

TEST(TreeLazyDeletion, ALeafKeyJustGoes) {
  Check({"1 2 3", 2, "1 3", "2 1 1"});
  Check({"7", 7, "", "0 1 1"});
  Check({"(1 2) 3 (4 5)", 4, "(1 2) 3 (5)", "4 3 2"});
  Check({"(1 2) 3 (5)", 5, "(1 2) 3 ()", "3 3 2"});
  Check({"(1) 3 (4 5)", 1, "() 3 (4 5)", "3 3 2"});
}

TEST(TreeLazyDeletion, TheSuccessorTakesThePlaceOfAnInnerKey) {
  Check({"(1 2) 3 (4 5)", 3, "(1 2) 4 (5)", "4 3 2"});
  Check({"(1 2) 3 (4)", 3, "(1 2) 4 ()", "3 3 2"});
  Check({"((1) 2 (3)) 4 ((5 6) 7 (8))", 4, "((1) 2 (3)) 5 ((6) 7 (8))", "7 7 3"});
  Check({"((1) 2 (3)) 4 ((5 6) 7 (8))", 7, "((1) 2 (3)) 4 ((5 6) 8 ())", "7 7 3"});
}

TEST(TreeLazyDeletion, EmptyNodesBelowTheSuccessorAreFreed) {
  Check({"((1) 2 (3)) 4 (() 6 (7) 8 (9))", 4, "((1) 2 (3)) 6 ((7) 8 (9))", "7 7 3"});
  Check({"((1) 2 (3)) 4 (() 6 (7))", 4, "((1) 2 (3)) 6 ((7))", "5 6 3"});
}

TEST(TreeLazyDeletion, WithoutASuccessorTheKeyGoesWithAllThatIsOnItsRight) {
  Check({"(1 2) 3 () 5 (6)", 3, "(1 2) 5 (6)", "4 3 2"});
  Check({"((1) 2 (3) 4 ()) 5 ((6) 7 (8))", 4, "((1) 2 (3)) 5 ((6) 7 (8))", "7 7 3"});
  Check({"(((1)) 2 (())) 4 (((5)))", 2, "(((1))) 4 (((5)))", "3 7 4"});
}

TEST(TreeLazyDeletion, ARootThatIsEmptyThenGoesAway) {
  Check({"(1 2) 3 ()", 3, "1 2", "2 1 1"});
  Check({"((1) 2 (3)) 4 (())", 4, "(1) 2 (3)", "3 3 2"});
  Check({"(1 2)", 1, "2", "1 1 1"});
}

TEST(TreeLazyDeletion, OnlyADeletionAtTheRootOrInALeafLooksAtTheRoot) {
  Check({"((1 2) 3 (4 5))", 3, "((1 2) 4 (5))", "4 4 3"});
  Check({"((1 2) 3 ())", 3, "((1 2))", "2 3 3"});
}

TEST(TreeLazyDeletion, FreedNodesAreOnTheFreeList) {
  IndexFile index(TreeFile::Of("((1) 2 (3)) 4 (())", kSmall));
  index.LazyDelete(4);
  const std::vector<long> freed{NodeAddress(0, kSmall), NodeAddress(4, kSmall),
                                NodeAddress(5, kSmall)};
  EXPECT_EQ(index.Current().FreeObjects(), freed) << "the deepest was the first";
}

TEST(TreeLazyDeletion, AKeyThatIsNotThereIsNotFoundAndNothingChanges) {
  for (const char* const text : {"", "(1 2) 4 (6 7)", "(1) 4 ()"}) {
    const TreeFile stored = TreeFile::Of(text, kSmall);
    IndexFile index(stored);
    for (const long number : {0, 3, 5, 8}) {
      EXPECT_THROW(index.LazyDelete(number), CObjectNotFound) << text << " less " << number;
    }
    EXPECT_TRUE(index->HeaderCurrent);
    EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
  }
}

TEST(TreeLazyDeletion, TheCallersKeyIsTheSuccessorWhereThereIsOne) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5) 6 ()", kSmall));
  KSBKey key("          3", 1, 1), work;
  EXPECT_TRUE(index->LazyDelete(key, work, false));
  EXPECT_EQ(NumberOf(key), 4);
  EXPECT_EQ(key.ObjectAddress, NumberAddress(4));
  key = KSBKey("          6", 1, 1);
  EXPECT_TRUE(index->LazyDelete(key, work, false));
  EXPECT_EQ(NumberOf(key), 6);
  EXPECT_EQ(key.ObjectAddress, 1);
}

TEST(TreeLazyDeletion, HeaderReachesTheFileOnlyWithTheFlush) {
  IndexFile index(TreeFile::Of("1 2 3"));
  KSBKey key = NumberKey(1), work;
  EXPECT_TRUE(index->LazyDelete(key, work, false));
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Stored().Counts(), "3 1 1");
  key = NumberKey(2);
  EXPECT_TRUE(index->LazyDelete(key, work, true));
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(TreeFile(ReadBytes(index.Path())).Counts(), "1 1 1");
  key = NumberKey(3);
  index->LazyDeleteDatabaseKey(key, work);
  EXPECT_EQ(index->EntryCount, 0);
}

TEST(TreeLazyDeletion, OnlyTheWayToTheSuccessorTakesMemory) {
  const TreeFile stored = TreeFile::Of("((1) 2 (3)) 4 ((5 6) 7 (8))", kSmall);
  IndexFile index(stored);
  for (const int left : {0, 1}) {
    const ScarceMemory scarce(left);
    EXPECT_THROW(index.LazyDelete(4), CMemoryAlloc) << left;
  }
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
  {
    const ScarceMemory none(0);
    index.LazyDelete(8);
  }
  const ScarceMemory enough(2);
  index.LazyDelete(4);
  EXPECT_EQ(index.Current().Text(), "((1) 2 (3)) 5 ((6) 7 ())");
}

TEST(TreeLazyDeletion, ATreeMayBeEmptiedBehindItself) {
  IndexFile index(kSmall);
  for (long number = 0; number < 200; ++number) index.Insert(number);
  for (long number = 199; number >= 0; --number) {
    index.LazyDelete(number);
    ASSERT_EQ(index->EntryCount, number);
    ASSERT_FALSE(index.Holds(number));
    ASSERT_EQ(index.Holds(number - 1), number > 0);
  }
  EXPECT_EQ(index.First(), kNone);
  index.Insert(5);
  EXPECT_TRUE(index.Holds(5));
}

// -- What others make of such trees.

TEST(TreeAfterLazyDeletions, AnEmptyLeafAtTheEdgeHidesTheFirstKey) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)", kSmall));
  index.LazyDelete(1);
  EXPECT_EQ(index.First(), 2);
  index.LazyDelete(2);
  EXPECT_EQ(index->EntryCount, 3);
  EXPECT_EQ(index.First(), kNone);
  EXPECT_EQ(index.Last(), 5);
  for (const long number : {3, 4, 5}) EXPECT_TRUE(index.Holds(number));
}

TEST(TreeAfterLazyDeletions, AnEmptyLeafTakesKeysAgain) {
  IndexFile index(TreeFile::Of("() 3 ()", kSmall));
  for (const long number : {1, 2, 4, 5}) index.Insert(number);
  EXPECT_EQ(index.Current().Text(), "(1 2) 3 (4 5)");
  EXPECT_EQ(index.Current().Counts(), "5 3 2");
}

TEST(TreeAfterLazyDeletions, AFullDeleteRepairsWhatItTouches) {
  const Deletion table[] = {{"(1) 2 (3)", 3, "1 2", "2 1 1"},
                            {"(1) 2 (3) 4 (5)", 3, "(1 2) 4 (5)", "4 3 2"},
                            {"() 2 (3) 4 (5 6 7)", 3, "() 2 (4) 5 (6 7)", "5 4 2"},
                            {"() 2 (3) 4 ()", 3, "(2) 4 ()", "2 3 2"}};
  for (const Deletion& deletion : table) {
    IndexFile index(TreeFile::Of(deletion.before, kSmall));
    index.Delete(deletion.number);
    EXPECT_EQ(index.Current().Text(), deletion.after) << deletion.before;
    EXPECT_EQ(index.Current().Counts(), deletion.counts) << deletion.before;
  }
}

TEST(TreeAfterLazyDeletions, AFullDeleteOfAKeyWithoutASuccessorIsRefused) {
  const TreeFile stored = TreeFile::Of("(1 2) 3 () 5 (6 7)", kSmall);
  IndexFile index(stored);
  EXPECT_THROW(index.Delete(3), CFileCorrupt);
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
  index.LazyDelete(3);
  EXPECT_EQ(index.Current().Text(), "(1 2) 5 (6 7)");
}

TEST(TreeAfterLazyDeletions, AFullDeleteBelowANodeWithoutKeysTakesTheKeyButRepairsNothing) {
  IndexFile index(TreeFile::Of("((1 2)) 3 ((4 5) 6 (7 8))", kSmall));
  EXPECT_THROW(index.Delete(1), CFileCorrupt);
  EXPECT_EQ(index.Current().Text(), "((2)) 3 ((4 5) 6 (7 8))");
  EXPECT_EQ(index.Current().Counts(), "7 6 3");
}

TEST(TreeAfterLazyDeletions, SearchesAreNeverWrong) {
  IndexFile index(kSmall);
  for (long number = 0; number < 300; ++number) index.Insert(number * 7 % 300);
  for (long number = 0; number < 300; ++number) {
    if (number % 4 != 1) index.LazyDelete(number);
  }
  EXPECT_EQ(index->EntryCount, 75);
  for (long number = 0; number < 300; ++number) {
    EXPECT_EQ(index.Holds(number), number % 4 == 1) << number;
    const std::optional<long> next = index.Next(number), previous = index.Previous(number);
    EXPECT_TRUE(!next || (*next == number + 4 && number % 4 == 1)) << number;
    EXPECT_TRUE(!previous || (*previous == number - 4 && number % 4 == 1)) << number;
  }
}

}  // namespace
