#include <gtest/gtest.h>

#include <string>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/IndexFile.h"
#include "tests/support/ScarceMemory.h"
#include "tests/support/TreeFile.h"

// The full delete. Its repairs one by one are in vbtdeleteRepairTest.cpp.

namespace {

/// A tree before and after one key is deleted.
struct Deletion {
  const char* before;
  long number;
  const char* after;
  const char* counts;
};

void Check(const Deletion& deletion, long order) {
  IndexFile index(TreeFile::Of(deletion.before, order));
  index.Delete(deletion.number);
  EXPECT_EQ(index.Current().Text(), deletion.after)
      << deletion.before << " less " << deletion.number;
  EXPECT_EQ(index.Current().Counts(), deletion.counts) << deletion.before;
}

/// Least keys of a node: 15.
constexpr long kNormal = 32;
/// Least keys of a node: 2.
constexpr long kSmall = 5;

TEST(TreeDeletion, TheOnlyKeyLeavesAnEmptyRoot) {
  IndexFile index(TreeFile::Of("7"));
  index.Delete(7);
  EXPECT_EQ(index.Current().Text(), "");
  EXPECT_EQ(index.Current().Counts(), "0 1 1");
  EXPECT_EQ(index->Root, NodeAddress(0));
  EXPECT_FALSE(index.Holds(7));
  index.Insert(8);
  EXPECT_EQ(index.Current().Text(), "8");
}

TEST(TreeDeletion, ARootLeafMayHoldAnyNumberOfKeys) {
  IndexFile index(TreeFile::Of("1..31"));
  for (long number = 1; number <= 31; number += 2) index.Delete(number);
  EXPECT_EQ(index.Current().Text(), "2 4 6 8 10 12 14 16 18 20 22 24 26 28 30");
  EXPECT_EQ(index.Current().Counts(), "15 1 1");
}

TEST(TreeDeletion, AKeyThatIsNotThereIsNotFoundAndNothingChanges) {
  for (const char* const text : {"", "(1 2) 4 (6 7)", "((1 2) 4 (6 7)) 8 ((9 10) 11 (12 14))"}) {
    const TreeFile stored = TreeFile::Of(text, kSmall);
    IndexFile index(stored);
    for (const long number : {0, 3, 5, 13, 15}) {
      EXPECT_THROW(index.Delete(number), CObjectNotFound) << text << " less " << number;
    }
    EXPECT_TRUE(index->HeaderCurrent);
    EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
  }
}

TEST(TreeDeletion, ARootOfNoNodeHoldsNoKey) {
  IndexFile index(TreeFile::Of("1 2 3"));
  index->Root = 0;
  EXPECT_THROW(index.Delete(1), CObjectNotFound);
}

TEST(TreeDeletion, ALeafWithKeysToSpareJustLosesOne) {
  Check({"(1..16) 17 (18..48)", 5, "(1..4 6..16) 17 (18..48)", "47 3 2"}, kNormal);
  Check({"(1..31) 32 (33..48)", 48, "(1..31) 32 (33..47)", "47 3 2"}, kNormal);
  Check({"(1 2 3) 4 (5 6)", 2, "(1 3) 4 (5 6)", "5 3 2"}, kSmall);
}

TEST(TreeDeletion, AnUnderfullLeafIsRepairedByTheTable) {
  const Deletion table[] = {
      // the leftmost child: its right sibling can give, or is folded into it
      {"(1..15) 16 (17..32) 33 (34..48)", 5, "(1..4 6..16) 17 (18..32) 33 (34..48)", "47 4 2"},
      {"(1..15) 16 (17..31) 32 (33..47)", 5, "(1..4 6..31) 32 (33..47)", "46 3 2"},
      // the rightmost child: its left sibling can give, or takes it up
      {"(1..15) 16 (17..32) 33 (34..48)", 40, "(1..15) 16 (17..31) 32 (33..39 41..48)", "47 4 2"},
      {"(1..15) 16 (17..31) 32 (33..47)", 40, "(1..15) 16 (17..39 41..47)", "46 3 2"},
      // between: the left sibling is asked first, then the right one, else the left takes it up
      {"(1..16) 17 (18..32) 33 (34..49)", 20, "(1..15) 16 (17..19 21..32) 33 (34..49)", "48 4 2"},
      {"(1..15) 16 (17..31) 32 (33..48)", 20, "(1..15) 16 (17..19 21..32) 33 (34..48)", "47 4 2"},
      {"(1..15) 16 (17..31) 32 (33..47)", 20, "(1..19 21..31) 32 (33..47)", "46 3 2"}};
  for (const Deletion& deletion : table) Check(deletion, kNormal);
}

TEST(TreeDeletion, OnlyTheNextSiblingsAreAsked) {
  const Deletion table[] = {
      {"(1..31) 32 (33..47) 48 (49..63)", 50, "(1..31) 32 (33..49 51..63)", "62 3 2"},
      {"(1..15) 16 (17..31) 32 (33..63)", 1, "(2..31) 32 (33..63)", "62 3 2"}};
  for (const Deletion& deletion : table) Check(deletion, kNormal);
}

TEST(TreeDeletion, OneKeyIsMovedHoweverManyTheSiblingHas) {
  Check({"(1..31) 32 (33..47)", 40, "(1..30) 31 (32..39 41..47)", "46 3 2"}, kNormal);
  Check({"(1..15) 16 (17..47)", 1, "(2..16) 17 (18..47)", "46 3 2"}, kNormal);
}

TEST(TreeDeletion, ARootThatLosesItsLastKeyGoesAway) {
  IndexFile index(TreeFile::Of("(1..15) 16 (17..31)"));
  index.Delete(1);
  EXPECT_EQ(index.Current().Text(), "2..31");
  EXPECT_EQ(index.Current().Counts(), "30 1 1");
  EXPECT_EQ(index->Root, NodeAddress(1)) << "the left one of the merged children";
  EXPECT_EQ(index.Current().FreeObjects(), (std::vector<long>{NodeAddress(0), NodeAddress(2)}));
}

TEST(TreeDeletion, AMergeFreesTheRightNode) {
  IndexFile index(TreeFile::Of("(1..15) 16 (17..31) 32 (33..47)"));
  index.Delete(20);
  EXPECT_EQ(index.Current().FreeObjects(), std::vector<long>{NodeAddress(2)});
  for (const StoredBlock& block : index.Stored().Blocks()) {
    EXPECT_EQ(block.status, block.object == NodeAddress(2) ? 'R' : 'N');
  }
}

TEST(TreeDeletion, InnerNodesAreRepairedWithTheirChildren) {
  const Deletion table[] = {
      // the right sibling gives a key and its first child
      {"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17) 18 (19 20))", 1,
       "((2..5) 6 (7 8) 9 (10 11)) 12 ((13 14) 15 (16 17) 18 (19 20))", "19 9 3"},
      // the left sibling gives a key and its last child
      {"((1 2) 3 (4 5) 6 (7 8) 9 (10 11)) 12 ((13 14) 15 (16 17) 18 (19 20))", 20,
       "((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16..19))", "19 9 3"},
      // nobody gives, and the root goes away
      {"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17))", 1,
       "(2..5) 6 (7 8) 9 (10 11) 12 (13 14) 15 (16 17)", "16 6 2"},
      {"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17))", 17,
       "(1 2) 3 (4 5) 6 (7 8) 9 (10 11) 12 (13..16)", "16 6 2"},
      // nobody gives, and the node between folds into its left sibling
      {"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17)) 18 "
       "((19 20) 21 (22 23) 24 (25 26))",
       10, "((1 2) 3 (4 5) 6 (7 8) 9 (11..14) 15 (16 17)) 18 ((19 20) 21 (22 23) 24 (25 26))",
       "25 11 3"},
      // a leaf that finds help stops the repair
      {"((1 2) 3 (4 5 6) 7 (8 9)) 10 ((11 12) 13 (14 15) 16 (17 18))", 1,
       "((2 3) 4 (5 6) 7 (8 9)) 10 ((11 12) 13 (14 15) 16 (17 18))", "17 9 3"}};
  for (const Deletion& deletion : table) Check(deletion, kSmall);
}

TEST(TreeDeletion, ARepairRunsUpAllLevels) {
  const std::string left =
      "((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17)) 18 ((19 20) 21 (22 23) 24 (25 26))";
  const std::string right =
      "((31 32) 33 (34 35) 36 (37 38)) 39 ((40 41) 42 (43 44) 45 (46 47)) 48 "
      "((49 50) 51 (52 53) 54 (55 56))";
  const std::string before = '(' + left + ") 30 (" + right + ')';
  const char* const after =
      "((2..5) 6 (7 8) 9 (10 11) 12 (13 14) 15 (16 17)) 18 ((19 20) 21 (22 23) 24 (25 26)) 30 "
      "((31 32) 33 (34 35) 36 (37 38)) 39 ((40 41) 42 (43 44) 45 (46 47)) 48 "
      "((49 50) 51 (52 53) 54 (55 56))";
  Check({before.c_str(), 1, after, "52 23 3"}, kSmall);
}

TEST(TreeDeletion, TheLeftmostInnerNodeTakesUpItsRightSibling) {
  Check({"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17)) 18 "
         "((19 20) 21 (22 23) 24 (25 26))",
         1, "((2..5) 6 (7 8) 9 (10 11) 12 (13 14) 15 (16 17)) 18 ((19 20) 21 (22 23) 24 (25 26))",
         "25 11 3"},
        kSmall);
}

TEST(TreeDeletion, TheSmallestKeyOnTheRightTakesThePlaceOfAnInnerKey) {
  const Deletion table[] = {
      {"(1..16) 17 (18..33)", 17, "(1..16) 18 (19..33)", "32 3 2"},
      {"(1..15) 16 (17..32) 33 (34..49)", 33, "(1..15) 16 (17..32) 34 (35..49)", "48 4 2"}};
  for (const Deletion& deletion : table) Check(deletion, kNormal);
  Check({"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11 12) 13 (14 15) 16 (17 18))", 9,
         "((1 2) 3 (4 5) 6 (7 8)) 10 ((11 12) 13 (14 15) 16 (17 18))", "17 9 3"},
        kSmall);
  Check({"((1 2) 3 (4 5 6) 7 (8 9)) 10 ((11 12) 13 (14 15) 16 (17 18))", 3,
         "((1 2) 4 (5 6) 7 (8 9)) 10 ((11 12) 13 (14 15) 16 (17 18))", "17 9 3"},
        kSmall);
}

TEST(TreeDeletion, ALeafThatGaveItsKeyUpIsRepaired) {
  const Deletion normal[] = {
      // the left sibling gives, through the key that has just moved up
      {"(1..16) 17 (18..32)", 17, "(1..15) 16 (18..32)", "31 3 2"},
      // nobody gives
      {"(1..15) 16 (17..31)", 16, "1..15 17..31", "30 1 1"},
      {"(1..15) 16 (17..31) 32 (33..48)", 16, "(1..15) 17 (18..32) 33 (34..48)", "47 4 2"}};
  for (const Deletion& deletion : normal) Check(deletion, kNormal);
  const Deletion small[] = {
      {"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17))", 9,
       "(1 2) 3 (4 5) 6 (7 8) 10 (11..14) 15 (16 17)", "16 6 2"},
      {"((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14 15) 16 (17 18))", 9,
       "((1 2) 3 (4 5) 6 (7 8)) 10 ((11 12) 13 (14 15) 16 (17 18))", "17 9 3"}};
  for (const Deletion& deletion : small) Check(deletion, kSmall);
}

TEST(TreeDeletion, AfterAnInnerKeyTheCallersKeyIsTheSuccessor) {
  for (const char* const text :
       {"(1..16) 17 (18..33)", "(1..16) 17 (18..32)", "(1..15) 17 (18..32)"}) {
    IndexFile index(TreeFile::Of(text));
    KSBKey key("         17", 1, 1), work;
    EXPECT_TRUE(index->Delete(key, work, false));
    EXPECT_EQ(NumberOf(key), 18) << text;
    EXPECT_EQ(key.ObjectAddress, NumberAddress(18)) << text;
    EXPECT_EQ(key.ObjectClassID, kNumberClass) << text;
  }
}

TEST(TreeDeletion, AfterALeafKeyTheCallersKeyIsItself) {
  for (const char* const text : {"(1..16) 17 (18..33)", "(1..15) 17 (18..32)"}) {
    IndexFile index(TreeFile::Of(text));
    KSBKey key("         20", 55, 66), work;
    key.Branch = 77;
    EXPECT_TRUE(index->Delete(key, work, false));
    EXPECT_EQ(NumberOf(key), 20) << text;
    EXPECT_EQ(key.ObjectAddress, 55) << "what is deleted is found by its name alone";
    EXPECT_EQ(key.Branch, 0) << text;
  }
}

TEST(TreeDeletion, HeaderReachesTheFileOnlyWithTheFlush) {
  IndexFile index(TreeFile::Of("(1..15) 16 (17..31)"));
  KSBKey key = NumberKey(1), work;
  EXPECT_TRUE(index->Delete(key, work, false));
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Stored().Counts(), "31 3 2");
  key = NumberKey(2);
  EXPECT_TRUE(index->Delete(key, work, true));
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(TreeFile(ReadBytes(index.Path())).Counts(), "29 1 1");
  key = NumberKey(3);
  index->DeleteDatabaseKey(key, work);
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index->EntryCount, 28);
}

TEST(TreeDeletion, WithoutMemoryForThePathNothingIsWritten) {
  const TreeFile stored =
      TreeFile::Of("((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17))", 5);
  for (const long number : {9, 12, 17}) {
    IndexFile index(stored);
    for (const int left : {0, 1, 2}) {
      const ScarceMemory scarce(left);
      EXPECT_THROW(index.Delete(number), CMemoryAlloc) << number << " with " << left;
    }
    EXPECT_TRUE(index->HeaderCurrent);
    EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
    const ScarceMemory enough(3);
    index.Delete(number);
    EXPECT_EQ(index->EntryCount, 16);
  }
}

TEST(TreeDeletion, AReadOnlyFileLosesNoKey) {
  const TreeFile stored = TreeFile::Of("(1..15) 16 (17..31)");
  IndexFile index(stored, vbReadOnly);
  for (const long number : {1, 16}) EXPECT_THROW(index.Delete(number), CFileNotWriteable);
  EXPECT_EQ(index->EntryCount, 31);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeDeletion, DamageOnTheWayDownLeavesTheTreeAsItIs) {
  TreeFile stored = TreeFile::Of("(1..15) 16 (17..31)");
  stored.Put(NodeAddress(2) + 100, "damage");
  IndexFile index(stored);
  EXPECT_THROW(index.Delete(20), CChecksum);
  EXPECT_THROW(index.Delete(16), CChecksum);
  EXPECT_EQ(index->EntryCount, 31);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

class TreeEmptying : public testing::TestWithParam<long> {};

constexpr long kMany = 300;

/// Deletes keys in the order in which `next` names them and looks at the tree that is left.
template <class Next>
void DeleteAll(long order, Next next) {
  IndexFile index(order);
  for (long number = 0; number < kMany; ++number) index.Insert(number);
  for (long left = kMany - 1; left >= 0; --left) {
    index.Delete(next(kMany - 1 - left));
    ASSERT_EQ(index->EntryCount, left);
  }
  const TreeFile stored = index.Current();
  EXPECT_EQ(stored.Text(), "");
  EXPECT_EQ(stored.Counts(), "0 1 1");
  EXPECT_EQ(stored.FreeObjects().size(), stored.Blocks().size() - 1);
}

TEST_P(TreeEmptying, GoesFromEveryEnd) {
  DeleteAll(GetParam(), [](long i) { return i; });
  DeleteAll(GetParam(), [](long i) { return kMany - 1 - i; });
  DeleteAll(GetParam(), [](long i) { return i % 2 == 0 ? i / 2 : kMany - 1 - i / 2; });
  DeleteAll(GetParam(), [](long i) { return i * 187 % kMany; });
}

INSTANTIATE_TEST_SUITE_P(Orders, TreeEmptying, testing::Values(5, 6, 32));

}  // namespace
