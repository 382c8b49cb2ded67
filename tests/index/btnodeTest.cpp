#include "index/btnode.h"

#include <gtest/gtest.h>

#include <string>

#include "index/KSBKey.h"
#include "tests/support/Bytes.h"
#include "tests/support/LetterKey.h"

namespace {

constexpr long kLetterEntry = 8;

BtreeNode LetterNode(long order = 5) {
  return {kLetterEntry, order};
}

void Add(BtreeNode& node, const char* text, long branch) {
  LetterKey key(text);
  key.Branch = branch;
  node.InsertDatabaseKey(key, node.KeyCount);
}

/// A leaf with keys of one letter each.
BtreeNode NodeWith(const std::string& letters) {
  BtreeNode node = LetterNode(9);
  for (const char letter : letters) Add(node, std::string(1, letter).c_str(), 0);
  return node;
}

/// The entries up to KeyCount.
std::string Entries(const BtreeNode& node) {
  return Hex({node.Entries.get(), static_cast<std::size_t>(node.KeyCount * node.EntrySize)});
}

/// The first letters of the keys.
std::string Letters(const BtreeNode& node) {
  std::string letters;
  LetterKey key;
  for (long i = 0; i < node.KeyCount; ++i) {
    node.LoadKey(key, i);
    letters += key.letters[0];
  }
  return letters;
}

TEST(BtreeNode, StartsEmptyAndWithoutAnAddress) {
  const BtreeNode node(76, 32);
  EXPECT_EQ(node.MaxKeys, 31);
  EXPECT_EQ(node.EntrySize, 76);
  EXPECT_EQ(node.Address, -1);
  EXPECT_EQ(node.KeyCount, 0);
  EXPECT_EQ(node.LeftBranch, 0);
  EXPECT_TRUE(node.IsEmpty());
}

TEST(BtreeNode, HoldsOneKeyLessThanItsOrder) {
  for (const long order : {5, 6, 32, 255}) EXPECT_EQ(LetterNode(order).MaxKeys, order - 1);
}

TEST(BtreeNode, AnOrderBelowFiveGivesFourKeys) {
  for (const long order : {4L, 3L, 2L, 1L, 0L, -5L, -2147483648L}) {
    const BtreeNode node = LetterNode(order);
    EXPECT_EQ(node.MaxKeys, 4) << order;
    EXPECT_EQ(node.SizeOfBtreeNode(), 40) << order;
  }
}

TEST(BtreeNode, TakesItsEntriesAndEightBytesInTheFile) {
  EXPECT_EQ(BtreeNode(76, 32).SizeOfBtreeNode(), 2364);
  EXPECT_EQ(BtreeNode(76, 5).SizeOfBtreeNode(), 312);
  EXPECT_EQ(BtreeNode(8, 32).SizeOfBtreeNode(), 256);
  EXPECT_EQ(BtreeNode::SizeFor(76, 32), 2364);
}

TEST(BtreeNode, IsEmptyWithoutKeysAndWithFewerThanNone) {
  BtreeNode node = LetterNode();
  for (const long count : {0, -1, -100}) {
    node.KeyCount = count;
    EXPECT_TRUE(node.IsEmpty());
  }
  node.KeyCount = 1;
  EXPECT_FALSE(node.IsEmpty());
}

TEST(BtreeNode, AnEntryIsTheBranchAndTheImage) {
  BtreeNode node = LetterNode();
  Add(node, "B", 0x01020304);
  Add(node, "DEFG", -2);
  EXPECT_EQ(Entries(node), "04 03 02 01 42 00 00 00 FE FF FF FF 44 45 46 47");
}

TEST(BtreeNode, AnEntryOfTheNormalKeyTakes76Bytes) {
  BtreeNode node(76, 32);
  KSBKey key("K", 0x0A0B0C0D, 3);
  key.Branch = 0x100;
  node.InsertDatabaseKey(key, 0);
  EXPECT_EQ(Entries(node),
            "00 01 00 00 "
            "4B 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "0D 0C 0B 0A 03 00 00 00");
}

TEST(BtreeNode, BranchesAreThoseOnTheRightOfTheKeys) {
  BtreeNode node = LetterNode();
  node.LeftBranch = 10;
  Add(node, "B", 20);
  Add(node, "D", 30);
  EXPECT_EQ(node.GetBranch(0), 20);
  EXPECT_EQ(node.GetBranch(1), 30);
}

TEST(BtreeNode, EveryNegativePositionIsTheLeftBranch) {
  BtreeNode node = LetterNode();
  node.LeftBranch = 10;
  for (const long position : {-1L, -2L, -100L, -2147483648L}) {
    EXPECT_EQ(node.GetBranch(position), 10);
  }
}

struct Location {
  const char* target;
  int side;
  long position;
};

TEST(BtreeNode, FindsTheGreatestKeyThatIsNotAboveTheTarget) {
  const BtreeNode node = NodeWith("BD");
  const Location locations[] = {{"A", -1, -1}, {"B", 0, 0}, {"C", 1, 0}, {"D", 0, 1}, {"E", 1, 1}};
  for (const Location& expected : locations) {
    const LetterKey target(expected.target);
    LetterKey work;
    vbINT32 position = 77;
    EXPECT_EQ(node.FindKeyLocation(target, work, position), expected.side) << expected.target;
    EXPECT_EQ(position, expected.position) << expected.target;
  }
}

TEST(BtreeNode, InAnEmptyNodeEveryTargetIsBelow) {
  const BtreeNode node = LetterNode();
  const LetterKey target("A");
  LetterKey work("work");
  vbINT32 position = 77;
  EXPECT_EQ(node.FindKeyLocation(target, work, position), -1);
  EXPECT_EQ(position, -1);
  EXPECT_EQ(Hex({work.letters, 4}), "77 6F 72 6B");
}

TEST(BtreeNode, TheSearchLeavesTheEntryItStoppedAtInTheScratchKey) {
  BtreeNode node = LetterNode();
  Add(node, "B", 20);
  Add(node, "D", 30);
  LetterKey work;
  vbINT32 position;
  EXPECT_EQ(node.FindKeyLocation(LetterKey("D"), work, position), 0);
  EXPECT_EQ(work.letters[0], 'D');
  EXPECT_EQ(work.Branch, 30);
  EXPECT_EQ(node.FindKeyLocation(LetterKey("C"), work, position), 1);
  EXPECT_EQ(work.letters[0], 'B');
  EXPECT_EQ(work.Branch, 20);
}

/// A key that is both above and equal to every other one.
class Contradiction : public LetterKey {
 public:
  bool operator==(const DatabaseKeyB&) const override { return true; }
  bool operator>(const DatabaseKeyB&) const override { return true; }
};

TEST(BtreeNode, WhetherTheTargetIsAboveIsAskedFirst) {
  const BtreeNode node = NodeWith("BD");
  LetterKey work;
  vbINT32 position;
  EXPECT_EQ(node.FindKeyLocation(Contradiction(), work, position), 1);
  EXPECT_EQ(position, 1);
}

TEST(BtreeNode, LoadKeyTakesBranchAndImage) {
  BtreeNode node = LetterNode();
  Add(node, "B", 20);
  Add(node, "DEFG", 30);
  LetterKey key("keys");
  node.LoadKey(key, 1);
  EXPECT_EQ(key.Branch, 30);
  EXPECT_EQ(Hex({key.letters, 4}), "44 45 46 47");
  EXPECT_EQ(node.KeyCount, 2);
}

TEST(BtreeNode, OverwritingAnEntryLeavesTheOthersAndTheCount) {
  BtreeNode node = LetterNode();
  Add(node, "B", 1);
  Add(node, "D", 2);
  Add(node, "F", 3);
  LetterKey key("E");
  key.Branch = 9;
  node.OverWriteDatabaseKey(key, 1);
  EXPECT_EQ(node.KeyCount, 3);
  EXPECT_EQ(Entries(node),
            "01 00 00 00 42 00 00 00 09 00 00 00 45 00 00 00 03 00 00 00 46 00 00 00");
}

TEST(BtreeNode, InsertingMovesTheEntriesBehindUp) {
  const char* const results[] = {"XBDF", "BXDF", "BDXF", "BDFX"};
  for (long i = 0; i < 4; ++i) {
    BtreeNode node = NodeWith("BDF");
    node.LeftBranch = 10;
    LetterKey key("X");
    node.InsertDatabaseKey(key, i);
    EXPECT_EQ(Letters(node), results[i]);
    EXPECT_EQ(node.KeyCount, 4);
    EXPECT_EQ(node.LeftBranch, 10);
  }
}

TEST(BtreeNode, MayBeFilledToItsLastEntry) {
  BtreeNode node = LetterNode();
  for (const char* const text : {"D", "C", "B", "A"}) {
    LetterKey key(text);
    node.InsertDatabaseKey(key, 0);
  }
  EXPECT_EQ(node.KeyCount, node.MaxKeys);
  EXPECT_EQ(Letters(node), "ABCD");
}

TEST(BtreeNode, DeletingMovesTheEntriesBehindDown) {
  const char* const results[] = {"DFH", "BFH", "BDH", "BDF"};
  for (long i = 0; i < 4; ++i) {
    BtreeNode node = NodeWith("BDFH");
    node.LeftBranch = 10;
    node.DeleteDatabaseKey(i);
    EXPECT_EQ(Letters(node), results[i]);
    EXPECT_EQ(node.KeyCount, 3);
    EXPECT_EQ(node.LeftBranch, 10);
  }
}

TEST(BtreeNode, DeletingFromAFullNodeStaysWithinIt) {
  BtreeNode node = LetterNode();
  for (const char* const text : {"A", "B", "C", "D"}) Add(node, text, 0);
  node.DeleteDatabaseKey(3);
  node.DeleteDatabaseKey(0);
  EXPECT_EQ(Letters(node), "BC");
}

TEST(BtreeNode, SplittingMovesTheUpperEntriesOver) {
  const char* const lower[] = {"", "B", "BD", "BDF", "BDFH"};
  const char* const upper[] = {"BDFH", "DFH", "FH", "H", ""};
  for (long at = 0; at <= 4; ++at) {
    BtreeNode node = NodeWith("BDFH");
    BtreeNode right = NodeWith("xyz");
    node.LeftBranch = 10;
    right.LeftBranch = 20;
    node.SplitNode(right, at);
    EXPECT_EQ(Letters(node), lower[at]);
    EXPECT_EQ(Letters(right), upper[at]);
    EXPECT_EQ(node.LeftBranch, 10);
    EXPECT_EQ(right.LeftBranch, 20) << "is not the split's business";
  }
}

TEST(BtreeNode, SplittingKeepsTheBranchesWithTheirKeys) {
  BtreeNode node = LetterNode();
  BtreeNode right = LetterNode();
  Add(node, "B", 1);
  Add(node, "D", 2);
  Add(node, "F", 3);
  node.SplitNode(right, 1);
  EXPECT_EQ(Entries(node), "01 00 00 00 42 00 00 00");
  EXPECT_EQ(Entries(right), "02 00 00 00 44 00 00 00 03 00 00 00 46 00 00 00");
}

TEST(BtreeNode, MergingAppendsTheEntriesButNotTheLeftBranch) {
  BtreeNode node = LetterNode();
  BtreeNode other = LetterNode();
  node.LeftBranch = 10;
  other.LeftBranch = 20;
  Add(node, "B", 1);
  Add(other, "D", 2);
  Add(other, "F", 3);
  node.MergeNode(other);
  EXPECT_EQ(Entries(node),
            "01 00 00 00 42 00 00 00 02 00 00 00 44 00 00 00 03 00 00 00 46 00 00 00");
  EXPECT_EQ(node.LeftBranch, 10);
  EXPECT_EQ(Letters(other), "DF");
}

TEST(BtreeNode, MergingAnEmptyNodeChangesNothing) {
  BtreeNode node = NodeWith("BD");
  node.MergeNode(LetterNode());
  EXPECT_EQ(Letters(node), "BD");
}

TEST(BtreeNode, NoOperationSetsTheAddress) {
  BtreeNode node = NodeWith("BD");
  BtreeNode right = LetterNode(9);
  node.SplitNode(right, 1);
  node.MergeNode(right);
  node.DeleteDatabaseKey(0);
  EXPECT_EQ(node.Address, -1);
  EXPECT_EQ(right.Address, -1);
}

}  // namespace
