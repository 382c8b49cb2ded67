#include "index/btnode.h"
#include "index/vbtree.h"
#include "index/vbtwalk.h"
#include "store/KestErr.h"

// Search: nothing here changes the tree. Nodes may be empty after lazy deletions.

namespace {

constexpr auto kNothing = [](vbINT32, int) {};

/// Hands entry `i` to the caller, if the node has one there.
bool Deliver(const BtreeNode& node, vbINT32 i, DatabaseKeyB& key) {
  if (i < 0 || i >= node.KeyCount) return false;
  node.LoadKey(key, i);
  return true;
}

/// Hands on the neighbour of `key`. In a damaged tree it may lie on the wrong side, and a caller
/// who goes from key to key would never come to the end.
bool DeliverNext(const BtreeNode& node, vbINT32 i, DatabaseKeyB& key, DatabaseKeyB& work) {
  if (Deliver(node, i, work) && !(work > key)) Throw<CFileCorrupt>();
  return Deliver(node, i, key);
}

bool DeliverPrev(const BtreeNode& node, vbINT32 i, DatabaseKeyB& key, DatabaseKeyB& work) {
  if (Deliver(node, i, work) && !(key > work)) Throw<CFileCorrupt>();
  return Deliver(node, i, key);
}

}  // namespace

bool vBtree::Find(DatabaseKeyB& key, DatabaseKeyB& work, bool) try {
  kestdb::TreeWalk walk(*this, key);
  BtreeNode node = walk.NewNode();
  vbINT32 address;
  vbINT32 pos;
  return walk.Descend(node, key, work, address, pos, kNothing) && Deliver(node, pos, key);
}
LOG_AND_RETHROW

bool vBtree::FindEdge(DatabaseKeyB& key, bool last) {
  if (EntryCount == 0) return false;
  kestdb::TreeWalk walk(*this, key);
  BtreeNode node = walk.NewNode();
  walk.ReadDown(node, Root, last);
  return Deliver(node, last ? node.KeyCount - 1 : 0, key);
}

bool vBtree::FindFirst(DatabaseKeyB& key, bool) try { return FindEdge(key, false); }
LOG_AND_RETHROW

bool vBtree::FindLast(DatabaseKeyB& key, bool) try { return FindEdge(key, true); }
LOG_AND_RETHROW

bool vBtree::FindNext(DatabaseKeyB& key, DatabaseKeyB& work, bool) try {
  kestdb::TreeWalk walk(*this, key);
  BtreeNode node = walk.NewNode();
  vbINT32 address;
  vbINT32 pos;
  // The deepest node passed on the way that has an entry to the right of it.
  vbINT32 above;
  vbINT32 abovePos;
  const auto remember = [&](vbINT32 passed, int) {
    if (pos >= node.KeyCount - 1) return;
    above = passed;
    abovePos = pos;
  };
  if (!walk.Descend(node, key, work, address, pos, remember)) return false;
  if (const vbINT32 child = node.GetBranch(pos); child != 0) {
    walk.ReadDown(node, child, false);
    return DeliverNext(node, 0, key, work);
  }
  if (pos < node.KeyCount - 1) return DeliverNext(node, pos + 1, key, work);
  if (above == 0) return false;
  ReadNode(node, above);
  return DeliverNext(node, abovePos + 1, key, work);
}
LOG_AND_RETHROW

bool vBtree::FindPrev(DatabaseKeyB& key, DatabaseKeyB& work, bool) try {
  kestdb::TreeWalk walk(*this, key);
  BtreeNode node = walk.NewNode();
  vbINT32 address;
  vbINT32 pos;
  // The deepest node passed on the way that has an entry to the left of it.
  vbINT32 above;
  vbINT32 abovePos;
  const auto remember = [&](vbINT32 passed, int side) {
    if (side != 1) return;
    above = passed;
    abovePos = pos;
  };
  if (!walk.Descend(node, key, work, address, pos, remember)) return false;
  if (const vbINT32 child = node.GetBranch(pos - 1); child != 0) {
    walk.ReadDown(node, child, true);
    return DeliverPrev(node, node.KeyCount - 1, key, work);
  }
  if (pos > 0) return DeliverPrev(node, pos - 1, key, work);
  if (above == 0) return false;
  ReadNode(node, above);
  return DeliverPrev(node, abovePos, key, work);
}
LOG_AND_RETHROW
