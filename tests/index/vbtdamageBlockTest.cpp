#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "index/btnode.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "tests/support/DamagedTree.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// Damage around sound nodes: the blocks in which they lie and the header of their tree.

namespace {

const std::vector<long> kNumbers{0, 1, 3, 5};

TreeFile SoundTree() {
  TreeFile stored = TreeFile::Of("(1 2) 3 (4 5)");
  stored.Add(std::string(100, 'f'));
  return stored;
}

const long kTop = NodeAddress(0);
const long kLeaf = NodeAddress(1);

void ExpectAll(const std::vector<std::string>& outcomes, const std::string& expected) {
  for (const std::string& outcome : outcomes) EXPECT_EQ(outcome, expected);
}

// -- Blocks.

TEST(DamagedBlock, TooSmallForANodeIsNoneOfTheTree) {
  // The root as far as it goes into a block of each size, behind a checksum that is right.
  for (const long size : {0L, 3L, 4L, 7L, 8L, 83L, 84L, 1000L, NodeSize() - 1}) {
    SCOPED_TRACE(size);
    TreeFile damaged = SoundTree();
    const long small = damaged.Add(damaged.Part(kTop, size));
    damaged.Add(std::string(100, 'b'));
    damaged.PutHeader(kRoot, small);
    ExpectAll(Outcomes(damaged, kNumbers), "File corrupt");
  }
}

TEST(DamagedBlock, TooSmallForAChildIsNoneOfTheTree) {
  for (const long size : {8L, 84L, NodeSize() - 1}) {
    SCOPED_TRACE(size);
    TreeFile damaged = SoundTree();
    const long small = damaged.Add(damaged.Part(kLeaf, size));
    damaged.Add(std::string(100, 'b'));
    damaged.PutBranch(kTop, -1, small);
    Outcomes(damaged, kNumbers);
    IndexFile index(damaged);
    EXPECT_THROW(index.Holds(1), CFileCorrupt);
    EXPECT_THROW(index.Insert(0), CFileCorrupt);
    EXPECT_THROW(index.First(), CFileCorrupt);
    EXPECT_TRUE(index.Holds(4));
  }
}

TEST(DamagedBlock, OfAnImpossibleLengthIsASynchronizationError) {
  for (const long length : {0L, 1L, 31L, 100000L, 2147483647L, -2396L, -1L}) {
    SCOPED_TRACE(length);
    TreeFile damaged = SoundTree();
    damaged.PutWord(kTop - 24, length);
    IndexFile index(damaged);
    for (const TreeOperation& search : kSearches) {
      EXPECT_EQ(Outcome(search, index, 3), "Synchronization error") << search.name;
    }
    for (const TreeOperation& change : kChanges) {
      EXPECT_EQ(Outcome(change, index, 3), "Synchronization error") << change.name;
    }
    EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
  }
}

TEST(DamagedBlock, CutOffWithTheFileIsAFailureOfTheFamily) {
  const TreeFile sound = SoundTree();
  for (const long kept : {NodeAddress(2) - 28, NodeAddress(2) - 20, NodeAddress(2),
                          NodeAddress(2) + 4, NodeAddress(2) + 100, NodeAddress(2) + NodeSize()}) {
    SCOPED_TRACE(kept);
    IndexFile index(TreeFile(sound.Part(0, kept)));
    EXPECT_THROW(index.Holds(4), CKestErr);
    EXPECT_THROW(index.Last(), CKestErr);
    EXPECT_THROW(index.Insert(6), CKestErr);
    EXPECT_TRUE(index.Holds(1));
    EXPECT_EQ(index.Stored().Bytes().size(), static_cast<std::size_t>(kept));
  }
}

TEST(DamagedBlock, AChildOfMinusOneIsNotWrittenWhereTheFileHappensToStand) {
  // The end of the root, which no entry uses, looks like the header of a block that starts 28 bytes
  // before the place where reading the root stops, and what follows there like an empty leaf.
  TreeFile damaged = TreeFile::Of("(1 2) 3 (4 5)");
  const long root = damaged.Add(damaged.Part(kTop, NodeSize()));
  const long phantom = damaged.Add(std::string(static_cast<std::size_t>(NodeSize()), '\0'));
  const long stand = phantom - 28;
  const std::string header = damaged.Part(phantom - 28, 28);
  const std::string leaf = damaged.Part(phantom, NodeSize() + 4);
  damaged.Put(stand, leaf);
  damaged.Put(stand - 28, header.substr(0, 24));
  damaged.PutHeader(kRoot, root);
  damaged.PutBranch(root, 0, -1);

  IndexFile index(damaged);
  for (const TreeOperation& search : kSearches) {
    for (const long number : {3, 4}) Outcome(search, index, number);
  }
  EXPECT_THROW(index.Insert(4), CKestErr);
  for (const long number : {3, 4}) {
    EXPECT_THROW(index.Delete(number), CKestErr);
    EXPECT_THROW(index.LazyDelete(number), CKestErr);
  }
  EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
}

// -- The tree's header.

TEST(DamagedTreeHeader, EntriesOfAnotherSizeAreNoneOfTheKey) {
  for (const long size :
       {0L, 4L, 8L, 75L, 77L, 152L, 65536L, 2147483647L, -1L, -76L, -2147483648L}) {
    SCOPED_TRACE(size);
    TreeFile damaged = SoundTree();
    damaged.PutHeader(kEntryBytes, size);
    Outcomes(damaged, kNumbers);
    IndexFile index(damaged);
    EXPECT_THROW(index.Holds(3), CFileCorrupt);
    EXPECT_THROW(index.First(), CFileCorrupt);
    EXPECT_THROW(index.Last(), CFileCorrupt);
    EXPECT_THROW(index.Next(3), CFileCorrupt);
    EXPECT_THROW(index.Previous(3), CFileCorrupt);
    EXPECT_THROW(index.Insert(0), CFileCorrupt);
    EXPECT_THROW(index.Delete(3), CFileCorrupt);
    EXPECT_THROW(index.LazyDelete(3), CFileCorrupt);
    KSBKey key;
    EXPECT_THROW(index->GrowNewRoot(key), CFileCorrupt);
    EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
  }
}

TEST(DamagedTreeHeader, NodesLargerThanTheFileAreNoneOfIt) {
  for (const long order : {1000L, 65536L, 28256364L, 2147483646L, 2147483647L}) {
    SCOPED_TRACE(order);
    TreeFile damaged = SoundTree();
    damaged.PutHeader(kOrder, order);
    ExpectAll(Outcomes(damaged, {0}), "File corrupt");
  }
}

TEST(DamagedTreeHeader, NodesLargerThanTheirBlocksAreNoneOfTheTree) {
  TreeFile damaged = SoundTree();
  damaged.PutHeader(kOrder, 33);
  ExpectAll(Outcomes(damaged, {0, 3}), "File corrupt");
}

TEST(DamagedTreeHeader, TheGreatestOrderAndEntrySizeTogetherAreRefused) {
  TreeFile damaged = SoundTree();
  damaged.PutHeader(kOrder, 2147483647);
  damaged.PutHeader(kEntryBytes, 2147483647);
  ExpectAll(Outcomes(damaged, {0}), "File corrupt");
  damaged.PutHeader(kEntryBytes, -2147483647 - 1);
  ExpectAll(Outcomes(damaged, {0}), "File corrupt");
}

TEST(DamagedTreeHeader, ASmallOrderIsOneOfFourKeys) {
  for (const long order : {4L, 1L, 0L, -1L, -5L, -2147483648L}) {
    SCOPED_TRACE(order);
    TreeFile damaged = SoundTree();
    damaged.PutHeader(kOrder, order);
    Outcomes(damaged, kNumbers);
    IndexFile index(damaged);
    for (const long number : {1, 2, 3, 4, 5}) EXPECT_TRUE(index.Holds(number));
    TreeFile full = TreeFile::Of("1..5");
    full.PutHeader(kOrder, order);
    index.Replace(full);
    EXPECT_THROW(index.Holds(1), CFileCorrupt) << "a node of five keys";
  }
}

class DamagedRoot : public testing::TestWithParam<long> {};

TEST_P(DamagedRoot, DoesNoHarm) {
  TreeFile damaged = SoundTree();
  damaged.PutHeader(kRoot, GetParam());
  Outcomes(damaged, kNumbers);
  IndexFile index(damaged);
  EXPECT_THROW(index.Holds(1), CKestErr);
  EXPECT_THROW(index.Insert(9), CKestErr);
  EXPECT_THROW(index.Delete(1), CKestErr);
  EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "");
}

INSTANTIATE_TEST_SUITE_P(Values, DamagedRoot,
                         testing::Values(1, 27, 28, 40, 80, NodeAddress(0) - 28, NodeAddress(0) + 1,
                                         NodeAddress(3), NodeAddress(4), 2147483647, 2147483620, -1,
                                         -28, -2147483647 - 1));

TEST(DamagedTreeHeader, ARootOfNoNodeIsAnEmptyTreeThatTakesNothing) {
  TreeFile damaged = SoundTree();
  damaged.PutHeader(kRoot, 0);
  Outcomes(damaged, kNumbers);
  IndexFile index(damaged);
  EXPECT_FALSE(index.Holds(1));
  EXPECT_THROW(index.Insert(9), CFileInsertion);
  EXPECT_THROW(index.Delete(1), CObjectNotFound);
  EXPECT_THROW(index.LazyDelete(1), CObjectNotFound);
}

TEST(DamagedTreeHeader, WrongCountsAndHeightsDoNoHarm) {
  for (const TreeHeaderWord word : {kEntryCount, kNodeCount, kHeight, kTreeClassID}) {
    for (const long value : {0L, -1L, 1L, 65536L, 2147483647L, -2147483648L}) {
      SCOPED_TRACE(std::to_string(word) + " is " + std::to_string(value));
      TreeFile damaged = SoundTree();
      damaged.PutHeader(word, value);
      Outcomes(damaged, {0, 3});
      IndexFile index(damaged);
      for (const long number : {1, 2, 3, 4, 5}) EXPECT_TRUE(index.Holds(number));
    }
  }
}

TEST(DamagedTreeHeader, AnEmptyRootUnderAnyHeightDoesNoHarm) {
  for (const long height : {2L, 2147483647L, 0L, -1L}) {
    TreeFile damaged = TreeFile::Of("");
    damaged.PutHeader(kHeight, height);
    damaged.Add(std::string(100, 'f'));
    Outcomes(damaged, {0, 3});
  }
}

}  // namespace
