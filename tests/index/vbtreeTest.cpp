#include "index/vbtree.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/IndexFile.h"
#include "tests/support/LetterKey.h"
#include "tests/support/Log.h"
#include "tests/support/ScarceFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TreeFile.h"

// A tree is made and attached, and its header goes to the file and back.

namespace {

/// The seven words of the header.
std::vector<long> HeaderOf(const vBtree& tree) {
  return {tree.Order,  tree.EntrySize, tree.EntryCount, tree.NodeCount,
          tree.Height, tree.Root,      tree.ClassID};
}

using Words = std::vector<long>;

/// An index file as a database has it: 25 empty trees of order 32.
class FreshIndex {
 public:
  FreshIndex() {
    KSBKey key;
    file.Create(path, static_cast<long>(25 * file.FileHeaderSize()), 'C');
    for (long i = 0; i < 25; ++i) {
      trees.push_back(std::make_unique<vBtree>(key, 32, i));
      trees.back()->InitBtree(&file, 1, static_cast<long>(file.FileHeaderSize()) * (i + 1));
    }
    file.Flush();
  }
  FreshIndex(const FreshIndex&) = delete;
  FreshIndex& operator=(const FreshIndex&) = delete;
  ~FreshIndex() { file.Abandon(); }

  TempFolder folder;
  std::string path = folder / "fresh.kx";
  vbDatabase file;
  std::vector<std::unique_ptr<vBtree>> trees;
};

TEST(FreshIndexFile, FileHeaderIsFollowedByTheStaticAreaAndTheRoots) {
  FreshIndex index;
  EXPECT_EQ(ReadBytes(index.path).size(), 1040u + 25 * 2396);
  EXPECT_EQ(HexAt(index.path, 0, 40),
            "00 00 00 00 0C EE 00 00 10 04 00 00 B0 E4 00 00 "
            "56 42 44 42 41 53 45 43 B9 0B 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST(FreshIndexFile, HeadersLieFortyBytesApart) {
  FreshIndex index;
  EXPECT_EQ(HexAt(index.path, 40, 28),
            "20 00 00 00 4C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 2C 04 00 00 00 00 00 00");
  EXPECT_EQ(HexAt(index.path, 80, 28),
            "20 00 00 00 4C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 88 0D 00 00 01 00 00 00");
  EXPECT_EQ(HexAt(index.path, 1000, 28),
            "20 00 00 00 4C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 CC E4 00 00 18 00 00 00");
}

TEST(FreshIndexFile, RootsAreEmptyLeavesInTreeOrderFromTheHeapOn) {
  FreshIndex index;
  const TreeFile stored(ReadBytes(index.path));
  const std::vector<StoredBlock> blocks = stored.Blocks();
  ASSERT_EQ(blocks.size(), 25u);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const long root = 1068 + 2396 * static_cast<long>(i);
    EXPECT_EQ(index.trees[i]->Root, root);
    EXPECT_EQ(blocks[i].object, root);
    EXPECT_EQ(blocks[i].status, 'N');
    EXPECT_EQ(stored.KeyCount(root), 0);
    EXPECT_EQ(stored.Branch(root, -1), 0);
  }
}

TEST(FreshIndexFile, AHeaderDiffersFromTheStoredOneWhileAFieldIsChanged) {
  FreshIndex index;
  vBtree& tree = *index.trees[3];
  EXPECT_FALSE(tree.HeaderDiffers());
  tree.EntryCount = 7;
  EXPECT_TRUE(tree.HeaderDiffers());
  tree.WriteBtreeHeader();
  EXPECT_FALSE(tree.HeaderDiffers());
  tree.Height = 4;
  tree.ReadBtreeHeader();
  EXPECT_FALSE(tree.HeaderDiffers());
  EXPECT_EQ(tree.EntryCount, 7);
}

TEST(FreshIndexFile, RootBlockIsWrittenToTheByte) {
  FreshIndex index;
  EXPECT_EQ(HexAt(index.path, 1040, 36),
            "FE FE FE FE 5C 09 00 00 4E 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00");
  EXPECT_EQ(HexAt(index.path, 1068 + 2364, 4), "F3 E0 66 4D");
}

TEST(FreshIndexFile, EveryTreeIsEmptyAndHasItsNumberForATag) {
  FreshIndex index;
  for (long i = 0; i < 25; ++i) {
    const vBtree& tree = *index.trees[static_cast<std::size_t>(i)];
    EXPECT_EQ(HeaderOf(tree), Words({32, 76, 0, 1, 1, 1068 + 2396 * i, i}));
    EXPECT_EQ(tree.HeaderAddress, 40 * (i + 1));
    EXPECT_TRUE(tree.HeaderCurrent);
  }
}

TEST(FreshIndexFile, TreesShareTheHeapInTheOrderOfTheirGrowth) {
  FreshIndex index;
  for (long number = 1; number <= 32; ++number) {
    for (const std::size_t i : {3u, 7u}) {
      KSBKey key = NumberKey(number), work;
      index.trees[i]->Insert(key, work, true);
    }
  }
  const long end = 1068 + 2396 * 25;
  EXPECT_EQ(HeaderOf(*index.trees[3]), Words({32, 76, 32, 3, 2, end + 2396, 3}));
  EXPECT_EQ(HeaderOf(*index.trees[7]), Words({32, 76, 32, 3, 2, end + 3 * 2396, 7}));
  EXPECT_EQ(HeaderOf(*index.trees[4]), Words({32, 76, 0, 1, 1, 1068 + 4 * 2396, 4}));
  KSBKey key = NumberKey(20), work;
  EXPECT_TRUE(index.trees[3]->Find(key, work, true));
  EXPECT_TRUE(index.trees[7]->Find(key, work, true));
  EXPECT_FALSE(index.trees[4]->Find(key, work, true));
}

TEST(FreshIndexFile, NothingIsWrittenToTheRestOfASlot) {
  FreshIndex index;
  const std::string rest(12, '\x5A');
  for (long i = 0; i < 25; ++i) index.file.Write(rest.data(), 12, 40 * (i + 1) + 28, true, true);
  for (const std::unique_ptr<vBtree>& tree : index.trees) {
    for (long number = 1; number <= 40; ++number) {
      KSBKey key = NumberKey(number), work;
      tree->Insert(key, work, true);
    }
    KSBKey key = NumberKey(10), work;
    tree->Delete(key, work, true);
    tree->Close();
  }
  index.file.Flush();
  const TreeFile stored(ReadBytes(index.path));
  for (long i = 0; i < 25; ++i) EXPECT_EQ(stored.Part(40 * (i + 1) + 28, 12), rest);
}

TEST(vBtree, IsMadeWithoutAFile) {
  KSBKey key;
  const vBtree tree(key, 32, 1000);
  EXPECT_EQ(HeaderOf(tree), Words({32, 76, 0, 0, 0, 0, 1000}));
  EXPECT_EQ(tree.HeaderAddress, 0);
  EXPECT_FALSE(tree.HeaderCurrent);
  EXPECT_EQ(tree.Database, nullptr);
}

TEST(vBtree, EntrySizeIsThatOfTheKeyAndABranch) {
  LetterKey key;
  EXPECT_EQ(vBtree(key, 32, 0).EntrySize, 8);
}

TEST(vBtree, KeepsNoReferenceToTheKey) {
  IndexFile index;
  auto key = std::make_unique<KSBKey>();
  vBtree tree(*key, 32, 0);
  key.reset();
  tree.InitBtree(&index.Database(), 1, kTreeHeader);
  EXPECT_EQ(tree.EntrySize, 76);
}

TEST(vBtree, ANewTreeHasOneEmptyRoot) {
  IndexFile index;
  EXPECT_EQ(HeaderOf(*index), Words({32, 76, 0, 1, 1, 108, 7}));
  EXPECT_EQ(index->HeaderAddress, 40);
  EXPECT_EQ(index->Database, &index.Database());
  EXPECT_TRUE(index->HeaderCurrent);
  const TreeFile stored = index.Stored();
  EXPECT_EQ(Hex(stored.Part(40, 28)),
            "20 00 00 00 4C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 6C 00 00 00 07 00 00 00");
  EXPECT_EQ(stored.Text(), "");
}

TEST(vBtree, ANewRootTakesAFreedBlockOfItsSize) {
  IndexFileOf<ScarceFile> index;
  const vbINT32 freed = index.Database().Alloc(2364, vbReclaimNone);
  index.Database().Remove(freed);
  index->InitBtree(1, kTreeHeader);
  EXPECT_EQ(index->Root, freed);
  EXPECT_EQ(index.Database().requests.back().size, 2364u);
  EXPECT_EQ(index.Database().requests.back().method, vbReclaimFirstFit);
}

TEST(vBtree, ANullFileIsRefused) {
  KSBKey key;
  vBtree tree(key, 32, 0);
  EXPECT_THROW(tree.InitBtree(nullptr, 0, 40), CBadObjectAddress);
  EXPECT_THROW(tree.InitBtree(nullptr, 1, 40), CBadObjectAddress);
  EXPECT_EQ(tree.Database, nullptr);
}

TEST(vBtree, NothingGoesWithoutAFile) {
  KSBKey key, work;
  vBtree tree(key, 32, 0);
  BtreeNode node(76, 32);
  EXPECT_THROW(tree.InitBtree(1, 40), CBadObjectAddress);
  EXPECT_THROW(tree.InitBtree(0, 40), CBadObjectAddress);
  EXPECT_THROW(tree.ReadBtreeHeader(), CKestErr);
  EXPECT_THROW(tree.WriteBtreeHeader(), CKestErr);
  EXPECT_THROW(tree.ReadNode(node, 108), CKestErr);
  EXPECT_THROW(tree.WriteNode(node, 108), CKestErr);
  EXPECT_THROW(tree.TotalNodeSize(), CKestErr);
  EXPECT_THROW(tree.Flush(), CKestErr);
  EXPECT_THROW(tree.Close(), CKestErr);
  EXPECT_THROW(tree.ReInit(false), CKestErr);
  EXPECT_THROW(tree.TestTree(false), CKestErr);
  EXPECT_THROW(tree.Find(key, work, true), CKestErr);
  EXPECT_THROW(tree.Insert(key, work, false), CKestErr);
  EXPECT_THROW(tree.GrowNewRoot(key), CKestErr);
  EXPECT_THROW(tree.Delete(key, work, false), CKestErr);
  EXPECT_THROW(tree.LazyDelete(key, work, false), CKestErr);
  EXPECT_THROW(tree.CollapseRoot(), CKestErr);
}

TEST(vBtree, ReleaseLetsGoOfTheFileOnly) {
  IndexFile index;
  index.Insert(5);
  index->Release();
  EXPECT_EQ(index->Database, nullptr);
  EXPECT_EQ(index->EntryCount, 1);
  EXPECT_TRUE(index.Database().IsOpen());
  index->Database = &index.Database();
  EXPECT_TRUE(index.Holds(5));
}

TEST(vBtree, WithoutABlockThereIsNoNewTree) {
  IndexFileOf<ScarceFile> index;
  const std::string before = index.Stored().Bytes();
  index.Database().left = 0;
  KSBKey key;
  vBtree tree(key, 32, 5);
  EXPECT_THROW(tree.InitBtree(&index.Database(), 1, kTreeHeader), CBlockAlloc);
  EXPECT_EQ(Differences(before, index.Stored().Bytes()), "");
}

TEST(vBtree, ATreeWhoseNodesNoFileCouldHoldIsNotMade) {
  IndexFile index;
  const std::string before = index.Stored().Bytes();
  KSBKey key;
  for (const long order : {2147483647L, 28256366L}) {
    vBtree tree(key, order, 5);
    EXPECT_THROW(tree.InitBtree(&index.Database(), 1, kTreeHeader), CBlockAlloc) << order;
    EXPECT_EQ(Differences(before, index.Stored().Bytes()), "") << order;
  }
}

TEST(vBtree, OpeningTakesTheHeaderOfTheFileInPlaceOfTheArguments) {
  const TreeFile stored = TreeFile::Of("(1 2) 3 (4 5)", 6);
  IndexFile index(stored);
  KSBKey key;
  vBtree tree(key, 32, 1000);
  tree.InitBtree(&index.Database(), 0, kTreeHeader);
  EXPECT_EQ(HeaderOf(tree), Words({6, 76, 5, 3, 2, 108, 7}));
  EXPECT_TRUE(tree.HeaderCurrent);
  LetterKey letters;
  vBtree other(letters, 32, 1000);
  other.InitBtree(&index.Database(), 0, kTreeHeader);
  EXPECT_EQ(other.EntrySize, 76);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(vBtree, HeaderIsReadWordByWord) {
  TreeFile stored = TreeFile::Of("");
  stored.Put(40, Bytes("01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 "
                       "FF FF FF FF"));
  IndexFile index(stored);
  EXPECT_EQ(HeaderOf(*index),
            Words({0x04030201, 0x08070605, 0x0C0B0A09, 0x100F0E0D, 0x14131211, 0x18171615, -1}));
}

TEST(vBtree, HeaderIsWrittenWordByWord) {
  IndexFile index;
  index->HeaderAddress = 44;
  index->Order = 0x04030201;
  index->EntrySize = 0x08070605;
  index->EntryCount = 0x0C0B0A09;
  index->NodeCount = 0x100F0E0D;
  index->Height = 0x14131211;
  index->Root = 0x18171615;
  index->ClassID = -1;
  index->HeaderCurrent = false;
  index->WriteBtreeHeader();
  EXPECT_TRUE(index->HeaderCurrent);
  EXPECT_EQ(Hex(index.Stored().Part(44, 32)),
            "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 FF FF FF FF "
            "00 00 00 00");
}

TEST(vBtree, HeaderOfAClosedFileIsNotReady) {
  IndexFile index;
  index.Database().Close();
  EXPECT_THROW(index->ReadBtreeHeader(), CFileNotReady);
  EXPECT_THROW(index->WriteBtreeHeader(), CFileNotReady);
}

TEST(vBtree, HeaderOfAReadOnlyFileIsReadButNotWritten) {
  const TreeFile stored = TreeFile::Of("1 2 3");
  IndexFile index(stored, vbReadOnly);
  index->EntryCount = 99;
  index->ReadBtreeHeader();
  EXPECT_EQ(index->EntryCount, 3);
  EXPECT_THROW(index->WriteBtreeHeader(), CFileNotReady);
  EXPECT_EQ(Differences(stored.Bytes(), ReadBytes(index.Path())), "");
}

TEST(vBtree, HeaderBeyondTheFileIsAFailedRead) {
  IndexFile index;
  EXPECT_THROW(index->InitBtree(0, 100000), CFileRead);
  EXPECT_EQ(index->HeaderAddress, 100000);
}

TEST(vBtree, OrderBelowFiveStaysInTheHeader) {
  for (const long order : {4L, 1L, 0L, -5L}) {
    IndexFile index(order);
    EXPECT_EQ(index->Order, order);
    EXPECT_EQ(index.Current().Header(kOrder), order);
    EXPECT_EQ(index.Current().Blocks().at(0).length, NodeBlock(5)) << "four keys";
    for (const long number : {1, 2, 3, 4}) index.Insert(number);
    EXPECT_EQ(index.Current().Text(), "1..4");
    EXPECT_EQ(index->Order, order);
  }
}

TEST(vBtree, FailuresAreLoggedWhereverTheyPass) {
  TreeFile stored = TreeFile::Of("1 2 3");
  stored.Put(NodeAddress(0) + 8, "x");
  IndexFile index(stored);
  ClearLog();
  EXPECT_THROW(index.Holds(1), CChecksum);
  ASSERT_EQ(Log().size(), 3u);
  EXPECT_EQ(Log()[0].kind, "LNewException");
  EXPECT_EQ(Log()[0].file, "index/vbtree.cpp");
  EXPECT_EQ(Log()[1].kind, "LException");
  EXPECT_EQ(Log()[1].file, "index/vbtree.cpp");
  EXPECT_EQ(Log()[2].kind, "LException");
  EXPECT_EQ(Log()[2].file, "index/vbtfind.cpp");
  for (const LogEntry& entry : Log()) EXPECT_EQ(entry.text, "Checksum error");
}

}  // namespace
