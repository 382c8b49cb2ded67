#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "index/KSBKey.h"
#include "index/btnode.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/IndexFile.h"
#include "tests/support/LetterKey.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TreeFile.h"

// Nodes go to the file and back.

namespace {

const long kRootNode = NodeAddress(0);

std::string Entries(const BtreeNode& node) {
  return {node.Entries.get(), static_cast<std::size_t>(node.KeyCount * node.EntrySize)};
}

std::string ZeroHex(int count) {
  std::string hex;
  for (int i = 0; i < count; ++i) hex += "00 ";
  return hex;
}

/// A node of order 5 as it lies in the file: two entries, in the last the greatest numbers.
std::string TwoEntries() {
  return "02 00 00 00 34 12 00 00 "
         "45 23 00 00 20 20 20 20 20 20 20 20 20 20 37 " +
         ZeroHex(53) +
         "EF CD AB 00 03 00 00 00 "
         "56 34 00 00 20 20 20 20 20 20 20 20 20 31 32 " +
         ZeroHex(53) + "04 03 02 01 FF FF FF FF";
}

TEST(vBtreeNode, IsWrittenToTheByte) {
  IndexFile index(5);
  BtreeNode node(76, 5);
  KSBKey first("          7", 0x00ABCDEF, 3), second("         12", 0x01020304, -1);
  node.LeftBranch = 0x1234;
  first.Branch = 0x2345;
  second.Branch = 0x3456;
  node.InsertDatabaseKey(first, 0);
  node.InsertDatabaseKey(second, 1);
  index->WriteNode(node, kRootNode);
  const TreeFile stored = index.Stored();
  EXPECT_EQ(Hex(stored.Part(kRootNode, 160)), Hex(Bytes(TwoEntries())));
  EXPECT_EQ(Hex(stored.Part(kRootNode + 160, 156)), Hex(Bytes(ZeroHex(152) + "5C D7 2E EF")));
}

TEST(vBtreeNode, IsReadFromItsBytes) {
  TreeFile stored = TreeFile::Of("", 5);
  stored.Put(kRootNode, Bytes(TwoEntries()));
  stored.Put(kRootNode + 312, Bytes("5C D7 2E EF"));
  IndexFile index(stored);
  BtreeNode node(76, 5);
  node.Address = 4711;
  index->ReadNode(node, kRootNode);
  EXPECT_EQ(node.KeyCount, 2);
  EXPECT_EQ(node.LeftBranch, 0x1234);
  EXPECT_EQ(Hex(Entries(node)), Hex(Bytes(TwoEntries()).substr(8)));
  EXPECT_EQ(node.Address, 4711) << "is the caller's";
  KSBKey key;
  node.LoadKey(key, 1);
  EXPECT_EQ(key.Branch, 0x3456);
  EXPECT_STREQ(key.ObjectName, "         12");
  EXPECT_EQ(key.ObjectAddress, 0x01020304);
  EXPECT_EQ(key.ObjectClassID, -1);
}

TEST(vBtreeNode, OnlyTheEntriesInUseAreWritten) {
  TreeFile stored = TreeFile::Of("", 5);
  stored.Put(kRootNode, std::string(312, '\x5A'));
  IndexFile index(stored);
  BtreeNode node(76, 5);
  KSBKey key("A", 1, 2);
  node.InsertDatabaseKey(key, 0);
  index->WriteNode(node, kRootNode);
  EXPECT_EQ(index.Stored().Part(kRootNode + 84, 228), std::string(228, '\x5A'));
  EXPECT_TRUE(index.Stored().IsSealed(kRootNode));
}

TEST(vBtreeNode, WhatLiesBehindTheEntriesStaysWhenANodeChanges) {
  TreeFile stored = TreeFile::Of("1..3", 5);
  stored.Put(TreeFile::Entry(kRootNode, 3), std::string(76, '\x5A'));
  stored.Seal(kRootNode);
  IndexFile index(stored);
  index.Delete(1);
  const TreeFile after = index.Stored();
  EXPECT_EQ(after.Text(), "2 3");
  EXPECT_EQ(Hex(after.Part(TreeFile::Entry(kRootNode, 2), 152)),
            Hex(stored.Part(TreeFile::Entry(kRootNode, 2), 152)));
}

TEST(vBtreeNode, WhatLiesBehindTheEntriesStaysWhenAKeyCameAndWent) {
  TreeFile stored = TreeFile::Of("1..3", 5);
  stored.Put(TreeFile::Entry(kRootNode, 3), std::string(76, '\x5A'));
  stored.Seal(kRootNode);
  IndexFile index(stored);
  BtreeNode node(76, 5);
  index->ReadNode(node, kRootNode);
  KSBKey key = NumberKey(0);
  node.InsertDatabaseKey(key, 0);
  node.DeleteDatabaseKey(0);
  index->WriteNode(node, kRootNode);
  EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "");
}

TEST(vBtreeNode, OfOneBlockMayBeWrittenToAnother) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)", 5));
  BtreeNode node(76, 5);
  index->ReadNode(node, NodeAddress(1, 5));
  index->WriteNode(node, NodeAddress(2, 5));
  EXPECT_EQ(index.Stored().Text(), "(1 2) 3 (1 2)");
}

TEST(vBtreeNode, ThatWasReadIsWrittenWithWhatChanged) {
  IndexFile index(TreeFile::Of("(1 2) 3 (4 5)", 5));
  BtreeNode node(76, 5);
  index->ReadNode(node, kRootNode);
  node.LeftBranch = NodeAddress(2, 5);
  index->WriteNode(node, kRootNode);
  EXPECT_EQ(index.Stored().Text(), "(4 5) 3 (4 5)");
  node.KeyCount = 0;
  index->WriteNode(node, kRootNode);
  EXPECT_EQ(index.Stored().Text(), "(4 5)");
}

TEST(vBtreeNode, WithoutKeysEightBytesAreWritten) {
  TreeFile stored = TreeFile::Of("", 5);
  stored.Put(kRootNode, std::string(312, '\x5A'));
  IndexFile index(stored);
  BtreeNode node(76, 5);
  node.LeftBranch = 5;
  index->WriteNode(node, kRootNode);
  const TreeFile after = index.Stored();
  EXPECT_EQ(Hex(after.Part(kRootNode, 8)), "00 00 00 00 05 00 00 00");
  EXPECT_EQ(after.Part(kRootNode + 8, 304), std::string(304, '\x5A'));
  EXPECT_EQ(Hex(after.Part(kRootNode + 312, 4)), "DD 50 02 35");
}

TEST(vBtreeNode, AnEmptyOneIsReadWithoutTouchingTheEntries) {
  IndexFile index(TreeFile::Of(""));
  BtreeNode node(76, 32);
  std::memset(node.Entries.get(), 0x5A, 31 * 76);
  node.KeyCount = 31;
  node.LeftBranch = 8;
  const std::string before = Entries(node);
  index->ReadNode(node, kRootNode);
  EXPECT_EQ(node.KeyCount, 0);
  EXPECT_EQ(node.LeftBranch, 0);
  node.KeyCount = 31;
  EXPECT_EQ(Differences(before, Entries(node)), "");
}

TEST(vBtreeNode, EntriesBehindTheCountAreNotRead) {
  IndexFile index(TreeFile::Of("1..3"));
  BtreeNode node(76, 32);
  std::memset(node.Entries.get(), 0x5A, 31 * 76);
  index->ReadNode(node, kRootNode);
  EXPECT_EQ(node.KeyCount, 3);
  node.KeyCount = 31;
  EXPECT_EQ(Differences(std::string(28 * 76, '\x5A'), Entries(node).substr(3 * 76)), "");
}

TEST(vBtreeNode, ADamagedOneIsAChecksumErrorAndShowsWhatWasRead) {
  TreeFile stored = TreeFile::Of("(1 2) 3 (4 5)", 5);
  stored.Put(TreeFile::Entry(kRootNode, 0) + 4, "damage");
  IndexFile index(stored);
  BtreeNode node(76, 5);
  EXPECT_THROW(index->ReadNode(node, kRootNode), CChecksum);
  EXPECT_EQ(node.KeyCount, 1);
  EXPECT_EQ(node.LeftBranch, NodeAddress(1, 5));
  EXPECT_EQ(Hex(Entries(node)), Hex(stored.Part(kRootNode + 8, 76)));
}

TEST(vBtreeNode, DamageAnywhereInItsObjectIsAChecksumError) {
  for (const long offset : {0L, 4L, 8L, 100L, 2363L, 2364L, 2367L}) {
    TreeFile stored = TreeFile::Of("1..3");
    stored.PutWord(kRootNode + offset - offset % 4,
                   stored.WordAt(kRootNode + offset - offset % 4) ^ 1);
    IndexFile index(stored);
    BtreeNode node(76, 32);
    EXPECT_THROW(index->ReadNode(node, kRootNode), CChecksum) << offset;
  }
}

TEST(vBtreeNode, MayBeReadFromAFileThatIsReadOnly) {
  IndexFile index(TreeFile::Of("1..3"), vbReadOnly);
  BtreeNode node(76, 32);
  index->ReadNode(node, kRootNode);
  EXPECT_EQ(node.KeyCount, 3);
  EXPECT_THROW(index->WriteNode(node, kRootNode), CFileNotWriteable);
}

TEST(vBtreeNode, LargerThanTheOneItIsReadIntoIsCorrupt) {
  IndexFile index(TreeFile::Of("1..31"));
  BtreeNode small(76, 5);
  EXPECT_THROW(index->ReadNode(small, kRootNode), CFileCorrupt);
  BtreeNode large(76, 33);
  EXPECT_THROW(index->ReadNode(large, kRootNode), CFileCorrupt);
}

TEST(vBtreeNode, OfFewerThanNoKeysIsWrittenWithoutEntries) {
  IndexFile index(TreeFile::Of("1..3"));
  const std::string before = index.Stored().Part(kRootNode + 8, 2356);
  BtreeNode node(76, 32);
  node.KeyCount = -1;
  index->WriteNode(node, kRootNode);
  EXPECT_EQ(Hex(index.Stored().Part(kRootNode, 8)), "FF FF FF FF 00 00 00 00");
  EXPECT_EQ(index.Stored().Part(kRootNode + 8, 2356), before);
}

TEST(vBtreeNode, OfMoreKeysThanItHoldsIsNotWritten) {
  const TreeFile stored = TreeFile::Of("1..3");
  IndexFile index(stored);
  for (const long count : {32L, 100000L, 2147483647L}) {
    BtreeNode node(76, 32);
    node.KeyCount = count;
    EXPECT_THROW(index->WriteNode(node, kRootNode), CKestErr) << count;
    EXPECT_EQ(Differences(stored.Bytes(), index.Stored().Bytes()), "") << count;
  }
}

TEST(vBtreeNode, IsNotWrittenWhereThereIsNoBlock) {
  IndexFile index(TreeFile::Of("(1..15) 16 (17..31)"));
  EXPECT_THROW(index->WriteNode(BtreeNode(76, 32), kRootNode + 1000), CSync);
  EXPECT_THROW(index->WriteNode(BtreeNode(76, 32), 100000), CKestErr);
}

TEST(vBtreeNode, KeysMayBeOfAnyClass) {
  TempFolder folder;
  vbDatabase file;
  file.Create(folder / "letters.kx", 40, 'C');
  LetterKey key("WXYZ"), work;
  vBtree tree(key, 5, 0);
  tree.InitBtree(&file, 1, 40);
  EXPECT_TRUE(tree.Insert(key, work, true));
  EXPECT_EQ(tree.TotalNodeSize(), 72);
  EXPECT_EQ(HexAt(folder / "letters.kx", 108, 16),
            "01 00 00 00 00 00 00 00 00 00 00 00 57 58 59 5A");
  EXPECT_EQ(HexAt(folder / "letters.kx", 148, 4), "F2 A2 3F 89");
  for (const char* const text : {"B", "A", "D", "C", "F", "E", "G"}) {
    LetterKey next(text);
    tree.Insert(next, work, false);
  }
  EXPECT_EQ(tree.Height, 2);
  std::string letters;
  LetterKey at;
  for (bool more = tree.FindFirst(at, true); more; more = tree.FindNext(at, work, true)) {
    letters += at.letters[0];
  }
  EXPECT_EQ(letters, "ABCDEFGW");
}

TEST(vBtreeNode, TotalSizeCountsTheHeadersAndTheChecksum) {
  struct {
    signed char revision;
    long size;
  } const shapes[] = {{'C', 2396}, {'B', 2384}, {'A', 2384}, {'\0', 2380}, {' ', 2380}};
  KSBKey key;
  vBtree tree(key, 32, 0);
  for (const auto& shape : shapes) {
    vbDatabase file;
    file.SetRevisionLetter(shape.revision);
    tree.Database = &file;
    EXPECT_EQ(tree.TotalNodeSize(), shape.size) << static_cast<int>(shape.revision);
  }
}

/// An index of revision A with one key of four letters.
const char* const kOldIndex =
    // file header, no lock header behind it
    "00 00 00 00 74 00 00 00 38 00 00 00 38 00 00 00 56 42 44 42 41 53 45 41 B9 0B 00 00 "
    // tree header: its slot is 28 bytes
    "05 00 00 00 08 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 48 00 00 00 00 00 00 00 "
    // block header, no record lock behind it
    "FE FE 00 00 3C 00 00 00 4E 00 00 00 00 00 00 00 "
    // the node and its checksum
    "01 00 00 00 00 00 00 00 00 00 00 00 57 58 59 5A "
    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
    "F2 A2 3F 89";

TEST(vBtreeNode, OfAFileOfRevisionAIsRead) {
  TempFolder folder;
  const std::string path = folder / "old.kx";
  WriteBytes(path, Bytes(kOldIndex));
  vbDatabase file;
  file.Open(path, vbReadWrite);
  LetterKey key, work;
  vBtree tree(key, 32, 0);
  tree.InitBtree(&file, 0, 28);
  EXPECT_EQ(tree.TotalNodeSize(), 60);
  EXPECT_TRUE(tree.FindFirst(key, true));
  EXPECT_EQ(std::string(key.letters, 4), "WXYZ");
  EXPECT_EQ(key.Branch, 0);
}

}  // namespace
