#include <algorithm>
#include <cstring>

#include "index/btnode.h"
#include "index/btstack.h"
#include "index/vbtree.h"
#include "index/vbtwalk.h"
#include "store/KestErr.h"

// Insertion. A key goes into a leaf; a full node always splits, even beside one with room, and the
// split runs up the way that the descent came down.

namespace {

void CopyKey(DatabaseKeyB& from, DatabaseKeyB& to) {
  to.Branch = from.Branch;
  std::memcpy(to.KeyData, from.KeyData, static_cast<std::size_t>(from.KeySize()));
}

/// Shares the entries of the full node `left` and the new `key`, which belongs at `pos`, between
/// `left` and the empty node `right`, and leaves in `key` the one that goes up a level.
void Share(BtreeNode& left, BtreeNode& right, vbINT32 pos, long middle, DatabaseKeyB& key,
           DatabaseKeyB& work) {
  if (pos < middle) middle--;
  left.SplitNode(right, middle);
  if (pos == middle) return;
  right.LoadKey(work, 0);
  if (pos > middle) {
    right.DeleteDatabaseKey(0);
    right.InsertDatabaseKey(key, pos - 1 - middle);
  } else {
    left.InsertDatabaseKey(key, pos);
    right.DeleteDatabaseKey(0);
  }
  CopyKey(work, key);
}

}  // namespace

bool vBtree::Insert(DatabaseKeyB& key, DatabaseKeyB& work, bool flush) try {
  InsertDatabaseKey(key, work);
  if (flush) Flush();
  return true;
}
LOG_AND_RETHROW

void vBtree::InsertDatabaseKey(DatabaseKeyB& key, DatabaseKeyB& work) try {
  kestdb::TreeWalk walk(*this, key);
  BtreeNode node = walk.NewNode();
  BtreeStack path;
  vbINT32 address;
  vbINT32 pos;
  key.Branch = 0;
  const auto push = [&path](vbINT32 passed, int) {
    if (path.Push(passed) == nullptr) Throw<CStackFull>();
  };
  if (walk.Descend(node, key, work, address, pos, push)) Throw<CDuplicateEntry>();

  for (bool leaf = true;; leaf = false) {
    if (path.Head == nullptr) Throw<CFileInsertion>();
    address = path.Pop();
    if (!leaf) {
      ReadNode(node, address);
      node.FindKeyLocation(key, work, pos);
    }
    pos++;
    if (node.KeyCount < node.MaxKeys) {
      node.InsertDatabaseKey(key, pos);
      WriteNode(node, address);
      break;
    }
    SplitFullNode(node, address, pos, key, work);
    if (address == Root) {
      GrowNewRoot(key);
      break;
    }
  }
  CountEntries(1);
}
LOG_AND_RETHROW

/// Makes two of the full node `left` at `address`, with `key` at `pos`. `key` is left with the key
/// that goes up, the new node on its right.
void vBtree::SplitFullNode(BtreeNode& left, vbINT32 address, vbINT32 pos, DatabaseKeyB& key,
                           DatabaseKeyB& work) {
  BtreeNode right(EntrySize, Order);
  const vbINT32 rightAddress = AllocNode();
  if (rightAddress == 0) Throw<CMemoryAlloc>();
  CountNodes(1);
  Share(left, right, pos, std::max<long>(Order, 0) / 2, key, work);
  right.LeftBranch = key.Branch;
  key.Branch = rightAddress;
  WriteNode(right, rightAddress);
  WriteNode(left, address);
}

void vBtree::GrowNewRoot(DatabaseKeyB& key) try {
  BtreeNode root = kestdb::TreeWalk(*this, key).NewNode();
  const vbINT32 address = AllocNode();
  if (address == 0) Throw<CMemoryAlloc>();
  root.LeftBranch = Root;
  root.InsertDatabaseKey(key, 0);
  CountNodes(1);
  Height = Height + 1;
  Root = address;
  WriteNode(root, address);
}
LOG_AND_RETHROW
