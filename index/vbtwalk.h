// Private to the library, not installed.
#pragma once

#include "index/btnode.h"
#include "index/dbasekey.h"
#include "index/vbtree.h"
#include "store/vbscalar.h"

namespace kestdb {

/// The way of one operation through a tree, from node to node downwards. Whatever the file says, it
/// hands out no huge node that isn't in the file, and takes no more steps than a tree is deep.
/// THROWS CFileCorrupt.
class TreeWalk {
 public:
  explicit TreeWalk(vBtree& tree);
  /// Also checks that the tree's entries are made for keys like this one.
  TreeWalk(vBtree& tree, DatabaseKeyB& key);

  BtreeNode NewNode() const { return BtreeNode(tree_.EntrySize, tree_.Order); }

  void Read(BtreeNode& node, vbINT32 address);

  /// Reads the node at `address` and, from there, on to the leaf with the last or the first keys.
  void ReadDown(BtreeNode& node, vbINT32 address, bool last);

  /// Goes from the root towards `key`. True when it is entry `pos` of `node`, which lies at
  /// `address`. `passed(address, side)` sees each node on the way that doesn't hold the key, with
  /// what FindKeyLocation returned.
  template <class Passed>
  bool Descend(BtreeNode& node, const DatabaseKeyB& key, DatabaseKeyB& work, vbINT32& address,
               vbINT32& pos, Passed passed) {
    vbINT32 previous;
    for (address = tree_.Root; address != 0 && address != previous; address = node.GetBranch(pos)) {
      Read(node, address);
      const int side = node.FindKeyLocation(key, work, pos);
      if (side == 0) return true;
      passed(address, side);
      previous = address;
    }
    return false;
  }

 private:
  /// A split leaves no node with a single child, so that a file of 2 GiB is full before a tree has
  /// 31 levels. The walk from a key to the next one takes two ways down.
  static constexpr int kMostSteps = 64;

  vBtree& tree_;
  int stepsLeft_ = kMostSteps;
};

}  // namespace kestdb
