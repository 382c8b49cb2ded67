#include <gtest/gtest.h>

#include <string>

#include "index/KSBKey.h"
#include "index/btnode.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// The repairs that the full delete is made of, each by itself, and the order of its writes.

namespace {

constexpr long kOrder6 = 6;

/// The root of the tree, as the repairs want a parent: with its address.
BtreeNode Parent(IndexFile& index) {
  BtreeNode parent(index->EntrySize, index->Order);
  index->ReadNode(parent, index->Root);
  parent.Address = index->Root;
  return parent;
}

using Repair = void (vBtree::*)(BtreeNode&, vbINT32, DatabaseKeyB&);

std::string Repaired(const char* text, Repair repair, long position) {
  IndexFile index(TreeFile::Of(text, kOrder6));
  BtreeNode parent = Parent(index);
  KSBKey work;
  ((*index).*repair)(parent, position, work);
  EXPECT_EQ(parent.KeyCount, index.Stored().KeyCount(index->Root)) << "the node in hand follows";
  return index.Current().Text();
}

TEST(TreeRepair, LeftRotationMovesAKeyFromRightToLeft) {
  const char* const text = "(1 2) 3 (4 5) 6 (7..9)";
  EXPECT_EQ(Repaired(text, &vBtree::InsertLeftRotation, 0), "(1..3) 4 (5) 6 (7..9)");
  EXPECT_EQ(Repaired(text, &vBtree::InsertLeftRotation, 1), "(1 2) 3 (4..6) 7 (8 9)");
}

TEST(TreeRepair, RightRotationMovesAKeyFromLeftToRight) {
  const char* const text = "(1 2) 3 (4 5) 6 (7..9)";
  EXPECT_EQ(Repaired(text, &vBtree::InsertRightRotation, 0), "(1) 2 (3..5) 6 (7..9)");
  EXPECT_EQ(Repaired(text, &vBtree::InsertRightRotation, 1), "(1 2) 3 (4) 5 (6..9)");
}

TEST(TreeRepair, RotationsMoveAChildWithTheKey) {
  const char* const text = "((1) 2 (3)) 4 ((5) 6 (7)) 8 ((9) 10 (11))";
  EXPECT_EQ(Repaired(text, &vBtree::InsertLeftRotation, 0),
            "((1) 2 (3) 4 (5)) 6 ((7)) 8 ((9) 10 (11))");
  EXPECT_EQ(Repaired(text, &vBtree::InsertRightRotation, 1),
            "((1) 2 (3)) 4 ((5)) 6 ((7) 8 (9) 10 (11))");
}

TEST(TreeRepair, MergeFoldsTheRightChildAndTheKeyIntoTheLeft) {
  EXPECT_EQ(Repaired("(1 2) 3 (4 5) 6 (7 8)", &vBtree::Merge, 0), "(1..5) 6 (7 8)");
  EXPECT_EQ(Repaired("(1 2) 3 (4 5) 6 (7 8)", &vBtree::Merge, 1), "(1 2) 3 (4..8)");
  EXPECT_EQ(Repaired("((1) 2 (3)) 4 ((5) 6 (7))", &vBtree::Merge, 0), "((1) 2 (3) 4 (5) 6 (7))");
}

TEST(TreeRepair, MergeTakesUpAnEmptyChild) {
  EXPECT_EQ(Repaired("(1 2) 3 () 4 (5)", &vBtree::Merge, 0), "(1..3) 4 (5)");
  EXPECT_EQ(Repaired("() 3 (4 5) 6 (7)", &vBtree::Merge, 0), "(3..5) 6 (7)");
  EXPECT_EQ(Repaired("() 3 ()", &vBtree::Merge, 0), "(3)");
}

TEST(TreeRepair, MergeFreesTheRightChildAndCountsIt) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5) 6 (7 8)", kOrder6));
  BtreeNode parent = Parent(index);
  KSBKey work;
  index->Merge(parent, 1, work);
  EXPECT_EQ(index->NodeCount, 3);
  EXPECT_EQ(index->EntryCount, 8) << "no key has gone";
  EXPECT_EQ(index->Height, 2);
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Current().FreeObjects(), std::vector<long>{NodeAddress(3, kOrder6)});
}

TEST(TreeRepair, RotationsCountNothing) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5) 6 (7 8)", kOrder6));
  BtreeNode parent = Parent(index);
  KSBKey work;
  index->InsertLeftRotation(parent, 0, work);
  index->InsertRightRotation(parent, 1, work);
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(index.Current().Counts(), "8 4 2");
  EXPECT_TRUE(index.Current().FreeObjects().empty());
}

TEST(TreeRepair, BalanceAsksTheSiblingsByTheTable) {
  const struct {
    const char* before;
    long position;
    const char* after;
  } table[] = {{"(1) 2 (3..5) 6 (7 8)", -1, "(1 2) 3 (4 5) 6 (7 8)"},
               {"(1) 2 (3 4) 6 (7..9)", -1, "(1..4) 6 (7..9)"},
               {"(1 2) 3 (4..6) 7 (8)", 1, "(1 2) 3 (4 5) 6 (7 8)"},
               {"(1..3) 4 (5 6) 7 (8)", 1, "(1..3) 4 (5..8)"},
               {"(1..3) 4 (5) 6 (7..9)", 0, "(1 2) 3 (4 5) 6 (7..9)"},
               {"(1 2) 4 (5) 6 (7..9)", 0, "(1 2) 4 (5 6) 7 (8 9)"},
               {"(1 2) 4 (5) 6 (7 8)", 0, "(1 2 4 5) 6 (7 8)"},
               {"(1 2) 4 (5)", 0, "(1 2 4 5)"},
               {"(1) 4 (5 6)", -1, "(1 4..6)"}};
  for (const auto& row : table) {
    EXPECT_EQ(Repaired(row.before, &vBtree::InsertBalance, row.position),
              TreeFile::Of(row.after, kOrder6).Text())
        << row.before;
  }
}

TEST(TreeRepair, PositionsThatTheParentDoesNotHaveAreRefused) {
  const TreeFile stored = TreeFile::Of("(1 2) 3 (4 5) 6 (7 8)", kOrder6);
  IndexFile index(stored);
  BtreeNode parent = Parent(index);
  KSBKey work;
  for (const long position : {-2147483648L, -2L, 2L, 3L, 5L, 1000000L}) {
    EXPECT_THROW(index->InsertBalance(parent, position, work), CKestErr) << position;
    EXPECT_THROW(index->InsertLeftRotation(parent, position, work), CKestErr) << position;
    EXPECT_THROW(index->InsertRightRotation(parent, position, work), CKestErr) << position;
    EXPECT_THROW(index->Merge(parent, position, work), CKestErr) << position;
  }
  EXPECT_THROW(index->Merge(parent, -1, work), CKestErr);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeRepair, RotationsFromAnEmptyNodeAndIntoAFullOneAreRefused) {
  const TreeFile stored = TreeFile::Of("(1..5) 6 () 7 (8..12)", kOrder6);
  IndexFile index(stored);
  BtreeNode parent = Parent(index);
  KSBKey work;
  EXPECT_THROW(index->InsertLeftRotation(parent, 0, work), CFileCorrupt);
  EXPECT_THROW(index->InsertRightRotation(parent, 1, work), CFileCorrupt);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(TreeRepair, MergesThatDoNotFitAreRefused) {
  const TreeFile stored = TreeFile::Of("(1..3) 4 (5 6)", kOrder6);
  IndexFile index(stored);
  BtreeNode parent = Parent(index);
  KSBKey work;
  EXPECT_THROW(index->Merge(parent, 0, work), CFileCorrupt);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

// -- The root.

TEST(TreeRepair, CollapseRootTakesOutARootWithoutKeys) {
  IndexFile index(TreeFile::Of("((1 2) 3 (4 5))", kOrder6));
  index->CollapseRoot();
  EXPECT_EQ(index->Root, NodeAddress(1, kOrder6));
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Current().Text(), "(1 2) 3 (4 5)");
  EXPECT_EQ(index.Current().Counts(), "5 3 2");
  EXPECT_EQ(index.Current().FreeObjects(), std::vector<long>{NodeAddress(0, kOrder6)});
}

TEST(TreeRepair, CollapseRootTakesOutOneLevel) {
  IndexFile index(TreeFile::Of("(((1 2)))", kOrder6));
  index->CollapseRoot();
  EXPECT_EQ(index.Current().Text(), "((1 2))");
  EXPECT_EQ(index.Current().Counts(), "2 3 3");
}

TEST(TreeRepair, CollapseRootLeavesALeafAndARootWithKeys) {
  for (const char* const text : {"", "1", "(1) 2 (3)"}) {
    const TreeFile stored = TreeFile::Of(text, kOrder6);
    IndexFile index(stored);
    index->CollapseRoot();
    EXPECT_TRUE(index->HeaderCurrent) << text;
    EXPECT_EQ(Differences(stored.Bytes(), index.Current().Bytes()), "") << text;
  }
}

TEST(TreeRepair, CollapseRootGoesByTheNodeInHand) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)", kOrder6));
  BtreeNode root(76, kOrder6);
  root.LeftBranch = NodeAddress(2, kOrder6);
  index->CollapseRoot(root);
  EXPECT_EQ(index.Current().Text(), "4 5");
  EXPECT_EQ(index.Current().Counts(), "5 2 1");
  EXPECT_EQ(index.Current().FreeObjects(), std::vector<long>{NodeAddress(0, kOrder6)});
}

TEST(TreeRepair, CollapseRootOfARootWithoutAChildIsRefused) {
  const TreeFile stored = TreeFile::Of("", kOrder6);
  IndexFile index(stored);
  index->Height = 2;
  EXPECT_THROW(index->CollapseRoot(), CFileCorrupt);
  EXPECT_EQ(index->Root, NodeAddress(0, kOrder6));
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

// -- The order of the writes, seen by a disk that is full from some address on.

/// Lets two children of the root change places in the file.
void Swap(TreeFile& stored, long left, long right) {
  const long root = NodeAddress(0, kOrder6);
  const std::string one = stored.Part(NodeAddress(left, kOrder6), NodeSize(kOrder6) + 4);
  const std::string two = stored.Part(NodeAddress(right, kOrder6), NodeSize(kOrder6) + 4);
  stored.Put(NodeAddress(left, kOrder6), two);
  stored.Put(NodeAddress(right, kOrder6), one);
  stored.PutBranch(root, left - 2, NodeAddress(right, kOrder6));
  stored.PutBranch(root, right - 2, NodeAddress(left, kOrder6));
}

/// The file after a deletion that failed because the disk is full from node `full` on.
TreeFile AfterFailure(const TreeFile& stored, long number, long full) {
  IndexFile index(stored);
  const FileSizeLimit fullDisk(static_cast<unsigned long>(NodeAddress(full, kOrder6) - 28));
  EXPECT_THROW(index.Delete(number), CFileWrite);
  return index.Stored();
}

/// The key counts of nodes 0, 1 and 2.
std::string KeyCounts(const TreeFile& stored) {
  std::string counts;
  for (const long node : {0, 1, 2}) {
    counts += std::to_string(stored.KeyCount(NodeAddress(node, kOrder6))) + ' ';
  }
  return counts;
}

/// The first key of the root, which a rotation replaces.
long RootKey(const TreeFile& stored) {
  return std::stol(std::string(stored.Name(NodeAddress(0, kOrder6), 0)));
}

TEST(TreeRepair, ARotationWritesTheParentThenTheRightThenTheLeftChild) {
  // The parent, the left and the right child lie in this order.
  TreeFile after = AfterFailure(TreeFile::Of("(1 2) 3 (4..7)", kOrder6), 1, 2);
  EXPECT_EQ(RootKey(after), 4) << "the parent before the right child";
  EXPECT_EQ(KeyCounts(after), "1 1 4 ") << "the left child not before the right";
  // Now the left child lies last.
  TreeFile stored = TreeFile::Of("(1..4) 5 (6 7)", kOrder6);
  Swap(stored, 1, 2);
  after = AfterFailure(stored, 6, 2);
  EXPECT_EQ(RootKey(after), 4);
  EXPECT_EQ(KeyCounts(after), "1 2 4 ") << "the right child before the left";
}

TEST(TreeRepair, AMergeFreesTheRightChildThenWritesTheParentThenTheLeftChild) {
  TreeFile stored = TreeFile::Of("(1 2) 3 (4 5) 6 (7 8)", kOrder6);
  // The right child, which is to be freed, lies behind the two others.
  EXPECT_EQ(KeyCounts(AfterFailure(stored, 1, 2)), "2 1 2 ") << "neither of them before it";
  // Now the left child lies last, the one that takes up the other.
  Swap(stored, 1, 2);
  EXPECT_EQ(KeyCounts(AfterFailure(stored, 5, 2)), "1 1 2 ") << "the parent before it";
}

TEST(TreeRepair, AnInnerKeyIsReplacedBeforeTheLeafGivesItsKeyUp) {
  const TreeFile after = AfterFailure(TreeFile::Of("(1 2) 3 (4..6)", kOrder6), 3, 2);
  EXPECT_EQ(RootKey(after), 4);
  EXPECT_EQ(KeyCounts(after), "1 2 3 ");
}

}  // namespace
