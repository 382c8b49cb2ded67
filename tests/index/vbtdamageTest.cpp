#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "index/btnode.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/DamagedTree.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// Nodes that no tree would write, behind checksums that are right. Whatever a node says, every
// operation comes to an end with a failure of the library's own or without one, and nothing is read
// or written outside of the nodes.

namespace {

constexpr std::optional<long> kNone;

const std::vector<long> kNumbers{0, 1, 3, 5, 6, 7, 9, 11, 12};

/// Three levels, with a block behind them that is no node.
TreeFile SoundTree() {
  TreeFile stored = TreeFile::Of("((1 2) 3 (4 5)) 6 ((7 8) 9 (10 11))");
  stored.Add(std::string(100, 'f'));
  return stored;
}

// Its nodes.
const long kTop = NodeAddress(0);
const long kInner = NodeAddress(1);
const long kFirstLeaf = NodeAddress(2);
const long kOtherInner = NodeAddress(4);

void ExpectAll(const std::vector<std::string>& outcomes, const std::string& expected) {
  for (const std::string& outcome : outcomes) EXPECT_EQ(outcome, expected);
}

TEST(DamagedTree, ASoundOneFailsNowhereButWhereItShould) {
  for (const std::string& outcome : Outcomes(SoundTree(), kNumbers)) {
    EXPECT_TRUE(outcome == "done" || outcome == "Duplicate entry" || outcome == "Object not found")
        << outcome;
  }
}

// -- Key counts.

class DamagedKeyCount : public testing::TestWithParam<long> {};

TEST_P(DamagedKeyCount, InTheRootStopsEveryOperation) {
  TreeFile damaged = SoundTree();
  damaged.PutKeyCount(kTop, GetParam());
  ExpectAll(Outcomes(damaged, {0, 6, 12}), "File corrupt");
}

TEST_P(DamagedKeyCount, FurtherDownStopsWhatComesThere) {
  for (const long node : {kInner, kFirstLeaf}) {
    TreeFile damaged = SoundTree();
    damaged.PutKeyCount(node, GetParam());
    Outcomes(damaged, kNumbers);
    IndexFile index(damaged);
    EXPECT_THROW(index.Holds(1), CFileCorrupt);
    EXPECT_THROW(index.First(), CFileCorrupt);
    EXPECT_THROW(index.Insert(0), CFileCorrupt);
    EXPECT_EQ(index.Last(), 11) << "the rest of the tree is there";
    EXPECT_EQ(index.Next(9), 10);
  }
}

TEST_P(DamagedKeyCount, IsNotTakenIntoANode) {
  TreeFile damaged = SoundTree();
  damaged.PutKeyCount(kTop, GetParam());
  IndexFile index(damaged);
  BtreeNode node(76, 32);
  EXPECT_THROW(index->ReadNode(node, kTop), CFileCorrupt);
  EXPECT_GE(node.KeyCount, 0);
  EXPECT_LE(node.KeyCount, 31);
}

INSTANTIATE_TEST_SUITE_P(Values, DamagedKeyCount,
                         testing::Values(-1, 32, 33, 65535, 16777216, 2147483647, -2147483647 - 1));

TEST(DamagedTree, EntriesThatWereNeverWrittenAreReadAsTheyAre) {
  for (const char filling : {'\0', '\xFF', '\x7F', 'n'}) {
    for (const long node : {kTop, kInner, kFirstLeaf}) {
      TreeFile damaged = SoundTree();
      damaged.Put(node + 8, std::string(31 * 76, filling));
      damaged.PutKeyCount(node, 31);
      Outcomes(damaged, {0, 5, 12});
    }
  }
}

TEST(DamagedTree, ANameWithoutItsTerminatorIsNotReadOn) {
  TreeFile damaged = TreeFile::Of("1 2 3");
  for (long i = 0; i < 3; ++i) damaged.Put(TreeFile::Entry(kTop, i) + 4, std::string(72, ' '));
  damaged.Seal(kTop);
  Outcomes(damaged, kNumbers);
}

TEST(DamagedTree, ANodeWithoutKeysIsNoPlaceToRepairFrom) {
  for (const long node : {kTop, kInner, kFirstLeaf}) {
    TreeFile damaged = SoundTree();
    damaged.PutKeyCount(node, 0);
    Outcomes(damaged, kNumbers);
  }
}

TEST(DamagedTree, KeysOutOfOrderAreJustNotFound) {
  TreeFile damaged = TreeFile::Of("((9 1) 5 (2 2)) 1 ((7 0) 3 (1 1))");
  damaged.Add(std::string(100, 'f'));
  Outcomes(damaged, kNumbers);
}

// -- Children.

struct Slot {
  long node;
  long entry;
};

/// Where children are told: on the left and on the right, on each level.
const Slot kSlots[] = {{kTop, -1},       {kTop, 0},        {kInner, -1},   {kInner, 0},
                       {kOtherInner, 0}, {kFirstLeaf, -1}, {kFirstLeaf, 1}};

void ExpectHarmlessChild(long child, const std::vector<long>& numbers = kNumbers) {
  for (const Slot& slot : kSlots) {
    SCOPED_TRACE(std::to_string(slot.node) + ", " + std::to_string(slot.entry));
    TreeFile damaged = SoundTree();
    damaged.PutBranch(slot.node, slot.entry, child);
    Outcomes(damaged, numbers);
  }
}

class DamagedChild : public testing::TestWithParam<long> {};

TEST_P(DamagedChild, DoesNoHarm) {
  ExpectHarmlessChild(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Nodes, DamagedChild,
                         testing::Values(NodeAddress(0), NodeAddress(1), NodeAddress(2),
                                         NodeAddress(3), NodeAddress(4)));
INSTANTIATE_TEST_SUITE_P(NoNodes, DamagedChild,
                         testing::Values(1, 28, 40, 80, NodeAddress(1) - 28, NodeAddress(1) + 1,
                                         NodeAddress(3) + 1000, NodeAddress(7)));
INSTANTIATE_TEST_SUITE_P(BeyondTheFile, DamagedChild,
                         testing::Values(NodeAddress(8), 100000, 2147483647, 2147483620, -1, -2,
                                         -28, -2147483647 - 1));

TEST(DamagedTree, AMissingChildOfAnInnerNodeEndsTheSearchThere) {
  ExpectHarmlessChild(0);
  TreeFile damaged = SoundTree();
  damaged.PutBranch(kInner, -1, 0);
  IndexFile index(damaged);
  EXPECT_FALSE(index.Holds(1));
  EXPECT_EQ(index.First(), 3);
  EXPECT_EQ(index.Previous(3), kNone);
  EXPECT_TRUE(index.Holds(4));
}

TEST(DamagedTree, AChildThatIsNoBlockIsASynchronizationError) {
  TreeFile damaged = SoundTree();
  damaged.PutBranch(kTop, -1, kInner + 4);
  IndexFile index(damaged);
  EXPECT_THROW(index.Holds(1), CSync);
  EXPECT_TRUE(index.Holds(7));
}

TEST(DamagedTree, AFreedChildDoesNoHarm) {
  for (const Slot& slot : kSlots) {
    TreeFile damaged = SoundTree();
    const long freed = damaged.Add(std::string(static_cast<std::size_t>(NodeSize()), '\0'));
    damaged.Put(freed - 20, "R");
    damaged.PutWord(0, freed - 28);
    damaged.PutBranch(slot.node, slot.entry, freed);
    Outcomes(damaged, {0, 6, 12});
  }
}

// -- Cycles.

TEST(DamagedTree, ANodeThatIsItsOwnChildStopsTheWayDown) {
  TreeFile damaged = SoundTree();
  damaged.PutBranch(kInner, -1, kInner);
  IndexFile index(damaged);
  EXPECT_FALSE(index.Holds(1));
  EXPECT_EQ(index.Next(1), kNone);
  EXPECT_EQ(index.Previous(1), kNone);
  EXPECT_THROW(index.Delete(1), CObjectNotFound);
  EXPECT_THROW(index.LazyDelete(1), CObjectNotFound);
  EXPECT_THROW(index.First(), CFileCorrupt) << "the edges have no such guard";
  EXPECT_THROW(index.Previous(3), CFileCorrupt) << "the damage puts a greater key before it";
  EXPECT_EQ(index.Last(), 11);
  EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
}

TEST(DamagedTree, ARootThatIsItsOwnChildOnBothSides) {
  TreeFile damaged = SoundTree();
  damaged.PutBranch(kTop, -1, kTop);
  damaged.PutBranch(kTop, 0, kTop);
  Outcomes(damaged, kNumbers);
  IndexFile index(damaged);
  EXPECT_THROW(index.First(), CFileCorrupt);
  EXPECT_THROW(index.Last(), CFileCorrupt);
  EXPECT_THROW(index.Next(6), CFileCorrupt);
  EXPECT_THROW(index.Previous(6), CFileCorrupt);
  EXPECT_THROW(index.LazyDelete(6), CFileCorrupt);
  EXPECT_THROW(index.Delete(6), CFileCorrupt);
  EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
}

/// Two inner nodes that have each other for all their children.
TreeFile TwoNodesInACircle() {
  TreeFile damaged = SoundTree();
  for (const long entry : {-1, 0}) {
    damaged.PutBranch(kInner, entry, kOtherInner);
    damaged.PutBranch(kOtherInner, entry, kInner);
  }
  return damaged;
}

TEST(DamagedTree, ACircleOfTwoNodesIsNotWalkedForever) {
  const TreeFile damaged = TwoNodesInACircle();
  Outcomes(damaged, kNumbers);
  IndexFile index(damaged);
  for (const long number : {0, 5, 7, 12}) {
    EXPECT_THROW(index.Holds(number), CFileCorrupt);
    EXPECT_THROW(index.Next(number), CFileCorrupt);
    EXPECT_THROW(index.Previous(number), CFileCorrupt);
    EXPECT_THROW(index.Insert(number), CFileCorrupt);
    EXPECT_THROW(index.Delete(number), CFileCorrupt);
    EXPECT_THROW(index.LazyDelete(number), CFileCorrupt);
  }
  EXPECT_THROW(index.First(), CFileCorrupt);
  EXPECT_THROW(index.Last(), CFileCorrupt);
  for (const long number : {3, 6, 9}) {
    EXPECT_THROW(index.Next(number), CFileCorrupt);
    EXPECT_THROW(index.Previous(number), CFileCorrupt);
    EXPECT_THROW(index.Delete(number), CFileCorrupt);
    EXPECT_THROW(index.LazyDelete(number), CFileCorrupt);
  }
  EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
}

TEST(DamagedTree, ACircleOfThreeLevelsIsNotWalkedForever) {
  TreeFile damaged = SoundTree();
  damaged.PutBranch(kFirstLeaf, -1, kTop);
  damaged.PutBranch(kFirstLeaf, 1, kTop);
  Outcomes(damaged, kNumbers);
  IndexFile index(damaged);
  EXPECT_THROW(index.Holds(0), CFileCorrupt);
  EXPECT_THROW(index.First(), CFileCorrupt);
}

TEST(DamagedTree, OneChildOnBothSidesOfAKeyDoesNoHarm) {
  for (const long child : {NodeAddress(2), NodeAddress(3)}) {
    TreeFile damaged = SoundTree();
    damaged.PutBranch(kInner, -1, child);
    damaged.PutBranch(kInner, 0, child);
    Outcomes(damaged, kNumbers);
  }
}

}  // namespace
