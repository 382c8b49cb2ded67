#include "index/btnode.h"
#include "index/btstack.h"
#include "index/vbtree.h"
#include "index/vbtwalk.h"
#include "store/KestErr.h"

// Deletion. The full delete keeps every node but the root at half its keys or more, by a rotation
// from a sibling that can give or a merge with it; the lazy delete frees only empty nodes.

namespace {

long LeastKeys(const BtreeNode& node) {
  return node.MaxKeys / 2;
}

bool IsUnderfull(const BtreeNode& node) {
  return node.KeyCount < LeastKeys(node);
}

bool CanGive(const BtreeNode& node) {
  return node.KeyCount > LeastKeys(node);
}

void PushNode(BtreeStack& path, vbINT32 address) {
  if (path.Push(address) == nullptr) Throw<CMemoryAlloc>();
}

/// In a damaged tree the children may not be what the path promised.
void RequireRoom(const BtreeNode& node, long more) {
  if (node.KeyCount + more > node.MaxKeys) Throw<CFileCorrupt>();
}

}  // namespace

bool vBtree::Delete(DatabaseKeyB& key, DatabaseKeyB& work, bool flush) try {
  DeleteDatabaseKey(key, work);
  if (flush) Flush();
  return true;
}
LOG_AND_RETHROW

void vBtree::DeleteDatabaseKey(DatabaseKeyB& key, DatabaseKeyB& work) try {
  kestdb::TreeWalk walk(*this, key);
  BtreeNode found = walk.NewNode();
  BtreeStack path;
  vbINT32 address;
  vbINT32 pos;
  key.Branch = 0;
  // The root lies twice on the path: the top is always the parent of the node in hand, and the
  // root is its own.
  PushNode(path, Root);
  const auto push = [&path](vbINT32 passed, int) { PushNode(path, passed); };
  if (!walk.Descend(found, key, work, address, pos, push)) Throw<CObjectNotFound>();

  const vbINT32 child = found.GetBranch(pos);
  if (child == 0) {
    found.DeleteDatabaseKey(pos);
    WriteNode(found, address);
    CountEntries(-1);
    Rebalance(found, address, path, key, work);
  } else {
    // The key's place takes the smallest key of its right subtree, out of a leaf.
    BtreeNode leaf = walk.NewNode();
    PushNode(path, address);
    vbINT32 leafAddress = child;
    for (walk.Read(leaf, leafAddress); leaf.LeftBranch != 0; walk.Read(leaf, leafAddress)) {
      PushNode(path, leafAddress);
      leafAddress = leaf.LeftBranch;
    }
    if (leaf.IsEmpty()) Throw<CFileCorrupt>();
    leaf.LoadKey(key, 0);
    leaf.DeleteDatabaseKey(0);
    key.Branch = work.Branch;
    found.OverWriteDatabaseKey(key, pos);
    WriteNode(found, address);
    WriteNode(leaf, leafAddress);
    CountEntries(-1);
    Rebalance(leaf, leafAddress, path, key, work);
  }
  CollapseRoot();
}
LOG_AND_RETHROW

/// Repairs the leaf `changed` and then, up the path, every parent that lost too many keys by it.
void vBtree::Rebalance(const BtreeNode& changed, vbINT32 address, BtreeStack& path,
                       DatabaseKeyB& key, DatabaseKeyB& work) {
  if (!IsUnderfull(changed) || address == Root) return;
  BtreeNode parent(EntrySize, Order);
  do {
    parent.Address = path.Pop();
    ReadNode(parent, parent.Address);
    vbINT32 pos;
    parent.FindKeyLocation(key, work, pos);
    InsertBalance(parent, pos, work);
  } while (IsUnderfull(parent) && parent.Address != Root && path.Head != nullptr);
}

void vBtree::InsertBalance(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work) try {
  if (parent.IsEmpty() || pos < -1 || pos >= parent.KeyCount) Throw<CFileCorrupt>();
  BtreeNode sibling = kestdb::TreeWalk(*this, work).NewNode();
  if (pos >= 0) {
    ReadNode(sibling, parent.GetBranch(pos - 1));
    if (CanGive(sibling)) return InsertRightRotation(parent, pos, work);
  }
  if (pos < parent.KeyCount - 1) {
    ReadNode(sibling, parent.GetBranch(pos + 1));
    if (CanGive(sibling)) return InsertLeftRotation(parent, pos + 1, work);
  }
  Merge(parent, pos < 0 ? vbINT32(0) : pos, work);
}
LOG_AND_RETHROW

/// Reads the two children that entry `pos` of the parent parts.
void vBtree::ReadChildren(const BtreeNode& parent, vbINT32 pos, BtreeNode& left, BtreeNode& right) {
  if (pos < 0 || pos >= parent.KeyCount) Throw<CFileCorrupt>();
  right.Address = parent.GetBranch(pos);
  left.Address = parent.GetBranch(pos - 1);
  ReadNode(right, right.Address);
  ReadNode(left, left.Address);
}

void vBtree::WriteFamily(const BtreeNode& parent, const BtreeNode& left, const BtreeNode& right) {
  WriteNode(parent, parent.Address);
  WriteNode(right, right.Address);
  WriteNode(left, left.Address);
}

void vBtree::InsertLeftRotation(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work) try {
  const kestdb::TreeWalk walk(*this, work);
  BtreeNode left = walk.NewNode();
  BtreeNode right = walk.NewNode();
  ReadChildren(parent, pos, left, right);
  RequireRoom(left, 1);
  if (right.IsEmpty()) Throw<CFileCorrupt>();
  parent.LoadKey(work, pos);
  work.Branch = right.LeftBranch;
  left.InsertDatabaseKey(work, left.KeyCount);
  right.LeftBranch = right.GetBranch(0);
  right.LoadKey(work, 0);
  work.Branch = right.Address;
  parent.OverWriteDatabaseKey(work, pos);
  right.DeleteDatabaseKey(0);
  WriteFamily(parent, left, right);
}
LOG_AND_RETHROW

void vBtree::InsertRightRotation(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work) try {
  const kestdb::TreeWalk walk(*this, work);
  BtreeNode left = walk.NewNode();
  BtreeNode right = walk.NewNode();
  ReadChildren(parent, pos, left, right);
  RequireRoom(right, 1);
  if (left.IsEmpty()) Throw<CFileCorrupt>();
  parent.LoadKey(work, pos);
  work.Branch = right.LeftBranch;
  right.InsertDatabaseKey(work, 0);
  const vbINT32 last = left.KeyCount - 1;
  right.LeftBranch = left.GetBranch(last);
  left.LoadKey(work, last);
  work.Branch = right.Address;
  parent.OverWriteDatabaseKey(work, pos);
  left.DeleteDatabaseKey(last);
  WriteFamily(parent, left, right);
}
LOG_AND_RETHROW

void vBtree::Merge(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work) try {
  const kestdb::TreeWalk walk(*this, work);
  BtreeNode left = walk.NewNode();
  BtreeNode right = walk.NewNode();
  ReadChildren(parent, pos, left, right);
  RequireRoom(left, right.KeyCount + 1);
  parent.LoadKey(work, pos);
  work.Branch = right.LeftBranch;
  left.InsertDatabaseKey(work, left.KeyCount);
  parent.DeleteDatabaseKey(pos);
  left.MergeNode(right);
  RemoveNode(right.Address);
  WriteNode(parent, parent.Address);
  WriteNode(left, left.Address);
}
LOG_AND_RETHROW

void vBtree::CollapseRoot() try {
  BtreeNode root = kestdb::TreeWalk(*this).NewNode();
  ReadNode(root, Root);
  CollapseRoot(root);
}
LOG_AND_RETHROW

void vBtree::CollapseRoot(BtreeNode& root) try {
  if (!root.IsEmpty() || Height <= 1) return;
  if (root.LeftBranch == 0) Throw<CFileCorrupt>();
  const vbINT32 old = Root;
  Root = root.LeftBranch;
  Height = Height - 1;
  RemoveNode(old);
}
LOG_AND_RETHROW

bool vBtree::LazyDelete(DatabaseKeyB& key, DatabaseKeyB& work, bool flush) try {
  LazyDeleteDatabaseKey(key, work);
  if (flush) Flush();
  return true;
}
LOG_AND_RETHROW

void vBtree::LazyDeleteDatabaseKey(DatabaseKeyB& key, DatabaseKeyB& work) try {
  kestdb::TreeWalk walk(*this, key);
  BtreeNode found = walk.NewNode();
  vbINT32 address;
  vbINT32 pos;
  key.Branch = 0;
  if (!walk.Descend(found, key, work, address, pos, [](vbINT32, int) {})) {
    Throw<CObjectNotFound>();
  }
  BtreeNode successor = walk.NewNode();
  vbINT32 child = found.GetBranch(pos);
  const bool leaf = child == 0;
  if (!leaf) child = FreeEmptyNodes(walk, successor, child);
  if (child == 0) {
    // A leaf, or nothing is left on the key's right: the key just goes.
    found.DeleteDatabaseKey(pos);
    WriteNode(found, address);
    CountEntries(-1);
    if (leaf) CollapseRoot();
    if (!leaf && found.IsEmpty() && address == Root) CollapseRoot(found);
  } else {
    successor.LoadKey(key, 0);
    // Kept: in a node above the leaves this lets go of the child that was freed as empty.
    successor.LeftBranch = key.Branch;
    successor.DeleteDatabaseKey(0);
    key.Branch = work.Branch;
    found.OverWriteDatabaseKey(key, pos);
    WriteNode(found, address);
    WriteNode(successor, child);
    CountEntries(-1);
  }
}
LOG_AND_RETHROW

/// Goes from `child` to the leaf with the first keys and frees the empty nodes at its end, upwards.
/// Leaves the deepest node with keys in `node` and returns its address, 0 when there is none.
vbINT32 vBtree::FreeEmptyNodes(kestdb::TreeWalk& walk, BtreeNode& node, vbINT32 child) {
  BtreeStack chain;
  for (; child != 0; child = node.LeftBranch) {
    PushNode(chain, child);
    walk.Read(node, child);
  }
  for (child = chain.Pop(); child != 0; child = chain.Pop()) {
    ReadNode(node, child);
    if (!node.IsEmpty()) return child;
    RemoveNode(child);
  }
  return 0;
}
