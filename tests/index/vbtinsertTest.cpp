#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "tests/support/IndexFile.h"
#include "tests/support/ScarceFile.h"
#include "tests/support/TreeFile.h"

// Insertion: where keys go, how nodes split. The failures are in vbtinsertFailureTest.cpp.

namespace {

/// How a node of order 32 shares 31 keys and a new one.
struct Shares {
  long from, to;  ///< the new key's position among the old ones
  std::size_t left, right;
  const char* up;
};

const Shares kSplitTable[] = {{0, 14, 16, 15, "the old entry 15"},
                              {15, 15, 15, 16, "the new key"},
                              {16, 16, 16, 15, "the new key"},
                              {17, 31, 16, 15, "the old entry 16"}};

const Shares& SharesAt(long position) {
  return *std::find_if(std::begin(kSplitTable), std::end(kSplitTable),
                       [&](const Shares& row) { return position <= row.to; });
}

/// The 31 even numbers from 2 to 62.
std::vector<long> EvenNumbers() {
  std::vector<long> numbers;
  for (long number = 2; number <= 62; number += 2) numbers.push_back(number);
  return numbers;
}

/// What goes up from a full node of the even numbers, by the words of the table.
long GoesUp(const Shares& row, long added) {
  const std::string up = row.up;
  if (up == "the new key") return added;
  return up == "the old entry 15" ? 32 : 34;
}

std::string Leaf(const std::vector<long>& numbers) {
  std::string text;
  for (const long number : numbers) text += std::to_string(number) + ' ';
  return text;
}

/// How TreeFile tells the tree of a text.
std::string Told(const std::string& text, long order = 32) {
  return TreeFile::Of(text, order).Text();
}

TEST(TreeInsertion, AKeyGoesBetweenItsNeighbours) {
  IndexFile index;
  for (const long number : {50, 10, 30, 20, 40, 60, 5}) index.Insert(number);
  EXPECT_EQ(index.Current().Text(), "5 10 20 30 40 50 60");
  EXPECT_EQ(index.Current().Counts(), "7 1 1");
}

TEST(TreeInsertion, AKeyGoesIntoALeaf) {
  IndexFile index(TreeFile::Of("((10) 20 (30)) 40 ((50) 60 (70))", 5));
  for (const long number : {5, 15, 25, 35, 45, 55, 65, 75}) index.Insert(number);
  EXPECT_EQ(index.Current().Text(), "((5 10 15) 20 (25 30 35)) 40 ((45 50 55) 60 (65 70 75))");
  EXPECT_EQ(index.Current().Counts(), "15 7 3");
}

TEST(TreeInsertion, AFullNodeStaysOneNode) {
  IndexFile index;
  for (long number = 1; number <= 31; ++number) index.Insert(number);
  EXPECT_EQ(index.Current().Text(), "1..31");
  EXPECT_EQ(index.Current().Counts(), "31 1 1");
}

TEST(TreeInsertion, AFullRootLeafSplitsByTheTable) {
  for (long position = 0; position <= 31; ++position) {
    const Shares& row = SharesAt(position);
    const long added = 2 * position + 1;
    std::vector<long> numbers = EvenNumbers();
    IndexFile index(TreeFile::Of(Leaf(numbers)));
    index.Insert(added);

    numbers.insert(numbers.begin() + position, added);
    const auto middle = numbers.begin() + static_cast<long>(row.left);
    EXPECT_EQ(*middle, GoesUp(row, added)) << position;
    const std::string left = Leaf({numbers.begin(), middle});
    const std::string right = Leaf({middle + 1, numbers.end()});
    EXPECT_EQ(index.Current().Text(),
              Told('(' + left + ") " + std::to_string(*middle) + " (" + right + ')'))
        << position;
    EXPECT_EQ(index.Current().Counts(), "32 3 2") << position;
    EXPECT_EQ(index.Stored().KeyCount(NodeAddress(0)), static_cast<long>(row.left)) << position;
    EXPECT_EQ(index.Stored().KeyCount(NodeAddress(1)), static_cast<long>(row.right)) << position;
  }
}

TEST(TreeInsertion, ThreeSplitsInFull) {
  const std::string full =
      "2 4 6 8 10 12 14 16 18 20 22 24 26 28 30 32 34 36 38 40 42 44 46 48 50 "
      "52 54 56 58 60 62";
  const char* const first =
      "(1 2 4 6 8 10 12 14 16 18 20 22 24 26 28 30) 32 (34 36 38 40 42 44 46 48 50 52 54 56 58 60 "
      "62)";
  const char* const middle =
      "(2 4 6 8 10 12 14 16 18 20 22 24 26 28 30) 31 (32 34 36 38 40 42 44 46 48 50 52 54 56 58 60 "
      "62)";
  const char* const last =
      "(2 4 6 8 10 12 14 16 18 20 22 24 26 28 30 32) 34 (36 38 40 42 44 46 48 50 52 54 56 58 60 62 "
      "63)";
  const struct {
    long added;
    const char* result;
  } splits[] = {{1, first}, {31, middle}, {63, last}};
  for (const auto& split : splits) {
    IndexFile index(TreeFile::Of(full));
    index.Insert(split.added);
    EXPECT_EQ(index.Current().Text(), Told(split.result));
  }
}

TEST(TreeInsertion, ALeafBelowARootSplitsByTheTable) {
  for (long position = 0; position <= 31; ++position) {
    const Shares& row = SharesAt(position);
    std::vector<long> numbers = EvenNumbers();
    for (long& number : numbers) number += 100;
    IndexFile index(TreeFile::Of("(1..9) 10 (" + Leaf(numbers) + ") 200 (201..220)"));
    const long added = 101 + 2 * position;
    index.Insert(added);

    numbers.insert(numbers.begin() + position, added);
    const auto middle = numbers.begin() + static_cast<long>(row.left);
    const std::string left = Leaf({numbers.begin(), middle});
    const std::string right = Leaf({middle + 1, numbers.end()});
    EXPECT_EQ(index.Current().Text(), Told("(1..9) 10 (" + left + ") " + std::to_string(*middle) +
                                           " (" + right + ") 200 (201..220)"))
        << position;
    EXPECT_EQ(index.Current().Counts(), "63 5 2") << position;
  }
}

/// A root of 31 keys over 32 leaves, of which the one at `fullLeaf` is full. Returns what the root
/// would be if it held one key more, after the leaf has taken the number that is given back.
struct FullRoot {
  explicit FullRoot(long fullLeaf) {
    for (long i = 0; i <= 31; ++i) {
      const long base = 100 * (i + 1);
      if (i > 0) text += ' ' + std::to_string(base) + ' ', keys.push_back(std::to_string(base));
      if (i != fullLeaf) {
        AddLeaf(std::to_string(base + 1) + ".." + std::to_string(base + 16));
        continue;
      }
      text += '(' + std::to_string(base + 1) + ".." + std::to_string(base + 31) + ')';
      added = base + 32;
      leaves.push_back('(' + std::to_string(base + 1) + ".." + std::to_string(base + 16) + ')');
      keys.push_back(std::to_string(base + 17));
      leaves.push_back('(' + std::to_string(base + 18) + ".." + std::to_string(base + 32) + ')');
    }
  }

  /// The keys from `first` on, with the leaves on both sides of them.
  std::string Node(std::size_t first, std::size_t count) const {
    std::string node = leaves[first];
    for (std::size_t i = first; i < first + count; ++i) {
      node += ' ' + keys[i] + ' ' + leaves[i + 1];
    }
    return node;
  }

  std::string text;
  std::vector<std::string> leaves, keys;
  long added = 0;

 private:
  void AddLeaf(const std::string& leaf) {
    text += '(' + leaf + ')';
    leaves.push_back('(' + leaf + ')');
  }
};

TEST(TreeInsertion, AFullInnerNodeSplitsByTheTable) {
  for (long position = 0; position <= 31; ++position) {
    const Shares& row = SharesAt(position);
    const FullRoot root(position);
    IndexFile index(TreeFile::Of(root.text));
    index.Insert(root.added);
    EXPECT_EQ(index.Current().Text(),
              Told('(' + root.Node(0, row.left) + ") " + root.keys[row.left] + " (" +
                   root.Node(row.left + 1, row.right) + ')'))
        << position;
    EXPECT_EQ(index.Current().Counts(), std::to_string(31 + 31 * 16 + 31 + 1) + " 36 3")
        << position;
  }
}

TEST(TreeInsertion, SmallOrdersSplitByTheSameRule) {
  const struct {
    long order;
    std::vector<const char*> results;  ///< by the position of the new key
  } tables[] = {
      {5, {"(1 2) 4 (6 8)", "(2) 3 (4 6 8)", "(2 4) 5 (6 8)", "(2 4) 6 (7 8)", "(2 4) 6 (8 9)"}},
      {4, {"(1 2) 4 (6 8)", "(2) 3 (4 6 8)", "(2 4) 5 (6 8)", "(2 4) 6 (7 8)", "(2 4) 6 (8 9)"}},
      {3, {"() 1 (2 4 6 8)", "(2) 3 (4 6 8)", "(2) 4 (5 6 8)", "(2) 4 (6 7 8)", "(2) 4 (6 8 9)"}},
      {2, {"() 1 (2 4 6 8)", "(2) 3 (4 6 8)", "(2) 4 (5 6 8)", "(2) 4 (6 7 8)", "(2) 4 (6 8 9)"}},
      {1,
       {"() 1 (2 4 6 8)", "() 2 (3 4 6 8)", "() 2 (4 5 6 8)", "() 2 (4 6 7 8)", "() 2 (4 6 8 9)"}},
      {6,
       {"(1 2 4) 6 (8 10)", "(2 3 4) 6 (8 10)", "(2 4) 5 (6 8 10)", "(2 4 6) 7 (8 10)",
        "(2 4 6) 8 (9 10)", "(2 4 6) 8 (10 11)"}}};
  for (const auto& table : tables) {
    long position = 0;
    for (const char* const result : table.results) {
      IndexFile index(TreeFile::Of(table.order == 6 ? "2 4 6 8 10" : "2 4 6 8", table.order));
      index.Insert(2 * position + 1);
      EXPECT_EQ(index.Current().Text(), Told(result, table.order))
          << table.order << ", " << position;
      ++position;
    }
  }
}

TEST(TreeInsertion, OrdersBelowOneSplitLikeOne) {
  for (const long order : {0L, -1L, -5L, -2147483648L}) {
    IndexFile index(TreeFile::Of("2 4 6 8", order));
    index.Insert(5);
    EXPECT_EQ(index.Current().Text(), "() 2 (4..6 8)") << order;
    EXPECT_EQ(index->Order, order);
  }
}

TEST(TreeInsertion, TreesOfTinyOrdersHoldTheirKeys) {
  for (const long order : {-3L, 0L, 1L, 2L, 3L, 4L}) {
    IndexFile index(TreeFile::Of("", order));
    for (long number = 0; number < 200; ++number) index.Insert(number * 83 % 200);
    EXPECT_EQ(index->EntryCount, 200);
    for (long number = 0; number < 200; ++number) EXPECT_TRUE(index.Holds(number)) << order;
  }
}

TEST(TreeInsertion, AscendingKeysLeaveNodesOfSixteen) {
  IndexFile index;
  for (long number = 1; number <= 110; ++number) index.Insert(number);
  EXPECT_EQ(index.Current().Text(),
            "(1..16) 17 (18..33) 34 (35..50) 51 (52..67) 68 (69..84) 85 (86..110)");
  EXPECT_EQ(index.Current().Counts(), "110 7 2");
}

TEST(TreeInsertion, DescendingKeysLeaveNodesOfFifteen) {
  IndexFile index;
  for (long number = 110; number >= 1; --number) index.Insert(number);
  EXPECT_EQ(index.Current().Text(),
            "(1..30) 31 (32..46) 47 (48..62) 63 (64..78) 79 (80..94) 95 (96..110)");
  EXPECT_EQ(index.Current().Counts(), "110 7 2");
}

TEST(TreeInsertion, ASiblingWithRoomIsNoHelp) {
  IndexFile index(TreeFile::Of("(1) 2 (3..33) 34 (35)"));
  index.Insert(40);
  index.Insert(0);
  EXPECT_EQ(index.Current().Text(), "(0 1) 2 (3..33) 34 (35 40)");
  TreeFile full = TreeFile::Of("(1) 2 (3..33) 36 (37)");
  IndexFile other(full);
  other.Insert(35);
  EXPECT_EQ(other.Current().Text(), "(1) 2 (3..18) 19 (20..33 35) 36 (37)");
  EXPECT_EQ(other->NodeCount, 5);
}

TEST(TreeInsertion, EveryKeyCountsOnceWhateverSplits) {
  IndexFile index(5);
  long nodes = 1;
  for (long number = 1; number <= 300; ++number) {
    const long height = index->Height;
    index.Insert(number * 37 % 307);
    ASSERT_EQ(index->EntryCount, number);
    const long grown = index->NodeCount - nodes;
    EXPECT_LE(index->Height - height, 1);
    EXPECT_GE(grown, index->Height - height == 1 ? height + 1 : 0) << "each level split";
    nodes = index->NodeCount;
  }
  const std::vector<StoredBlock> blocks = index.Current().Blocks();
  EXPECT_EQ(static_cast<long>(blocks.size()), nodes);
}

TEST(TreeInsertion, NodesAreAllocatedFirstFitInTheirSize) {
  IndexFileOf<ScarceFile> index;
  for (long number = 1; number <= 32; ++number) index.Insert(number);
  ASSERT_EQ(index.Database().requests.size(), 3u);
  for (const ScarceFile::Request& request : index.Database().requests) {
    EXPECT_EQ(request.size, 2364u);
    EXPECT_EQ(request.method, vbReclaimFirstFit);
  }
}

TEST(TreeInsertion, NewNodesTakeTheBlocksOfOldOnes) {
  IndexFile index(TreeFile::Of("1..31"));
  const vbINT32 one = index.Database().Alloc(2364, vbReclaimNone);
  const vbINT32 two = index.Database().Alloc(2364, vbReclaimNone);
  index.Database().Remove(one);
  index.Database().Remove(two);
  const long end = index.Database().GetEOF();
  index.Insert(32);
  EXPECT_EQ(index->Root, one) << "the right node took the block that was freed last";
  EXPECT_EQ(index.Stored().Branch(one, 0), two);
  EXPECT_EQ(index.Database().GetEOF(), end);
  EXPECT_TRUE(index.Current().FreeObjects().empty());
}

TEST(TreeInsertion, WithoutASplitTheKeyComesBackWithoutABranch) {
  IndexFile index;
  KSBKey key = NumberKey(5), work;
  key.Branch = 4711;
  EXPECT_TRUE(index->Insert(key, work, false));
  EXPECT_EQ(NumberOf(key), 5);
  EXPECT_EQ(key.Branch, 0);
  EXPECT_EQ(index.Current().Text(), "5") << "nor is one stored";
}

TEST(TreeInsertion, AfterASplitTheKeyIsTheOneThatWentUp) {
  IndexFile index(TreeFile::Of("2..32"));
  KSBKey key = NumberKey(1), work;
  EXPECT_TRUE(index->Insert(key, work, false));
  EXPECT_EQ(NumberOf(key), 17);
  EXPECT_EQ(key.ObjectAddress, NumberAddress(17));
  EXPECT_EQ(key.Branch, NodeAddress(1)) << "the new node on its right";
  EXPECT_TRUE(index.Holds(1));
  EXPECT_TRUE(index.Holds(17));
}

TEST(TreeInsertion, HeaderReachesTheFileOnlyWithTheFlush) {
  IndexFile index(TreeFile::Of("1..30"));
  KSBKey key = NumberKey(31), work;
  EXPECT_TRUE(index->Insert(key, work, false));
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Stored().Counts(), "30 1 1");
  EXPECT_EQ(index.Stored().Text(), "1..31") << "the node itself is there";
  key = NumberKey(32);
  EXPECT_TRUE(index->Insert(key, work, true));
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(TreeFile(ReadBytes(index.Path())).Counts(), "32 3 2");
}

TEST(TreeInsertion, InsertDatabaseKeyIsTheSameWithoutAFlush) {
  IndexFile index(TreeFile::Of("1..31"));
  KSBKey key = NumberKey(32), work;
  index->InsertDatabaseKey(key, work);
  EXPECT_FALSE(index->HeaderCurrent);
  EXPECT_EQ(index.Stored().Counts(), "31 1 1");
  EXPECT_EQ(index.Current().Text(), "(1..16) 17 (18..32)");
}

TEST(TreeInsertion, GrowNewRootPutsAKeyOverTheOldRoot) {
  IndexFile index(TreeFile::Of("1 2 3"));
  KSBKey key = NumberKey(5);
  key.Branch = 4711;
  index->GrowNewRoot(key);
  EXPECT_EQ(index->Height, 2);
  EXPECT_EQ(index->NodeCount, 2);
  EXPECT_EQ(index->EntryCount, 3) << "the caller counts the key";
  EXPECT_EQ(index->Root, NodeAddress(1));
  EXPECT_FALSE(index->HeaderCurrent);
  const TreeFile stored = index.Current();
  EXPECT_EQ(stored.KeyCount(NodeAddress(1)), 1);
  EXPECT_EQ(stored.Branch(NodeAddress(1), -1), NodeAddress(0));
  EXPECT_EQ(stored.Branch(NodeAddress(1), 0), 4711);
  EXPECT_EQ(stored.Name(NodeAddress(1), 0), NumberName(5));
  EXPECT_TRUE(stored.IsSealed(NodeAddress(1)));
}

}  // namespace
