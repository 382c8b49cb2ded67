#pragma once

#include <memory>
#include <vector>

#include "index/dbasekey.h"
#include "store/api.h"
#include "store/vbscalar.h"

/// A working copy of one node of a tree in memory. Entry i is EntrySize bytes: the address of the
/// child on the right of the key, 4 bytes, and the key's image. Positions are not checked against
/// KeyCount or MaxKeys: vBtree guarantees them.
class KESTDB_API BtreeNode {
 public:
  /// An order below 5 gives a node of order 5. REQUIRES entrySize above 4.
  BtreeNode(vbINT32 entrySize, vbINT32 order);

  /// Bytes of a node of these measures in the file.
  static long SizeFor(vbINT32 entrySize, vbINT32 order);
  long SizeOfBtreeNode() const { return SizeFor(EntrySize, MaxKeys + 1); }

  /// The child on the right of entry i, or LeftBranch for a negative i.
  vbINT32 GetBranch(vbINT32 i) const;

  /// Looks for `key` from the top of the node. Returns 0 when entry `pos` is the key, else 1 or,
  /// below all entries, -1, with GetBranch(pos) the child to go on in. `work` is overwritten, with
  /// entry `pos` unless -1 is returned.
  int FindKeyLocation(const DatabaseKeyB& key, DatabaseKeyB& work, vbINT32& pos) const;

  void LoadKey(DatabaseKeyB& key, vbINT32 i) const;
  void OverWriteDatabaseKey(DatabaseKeyB& key, vbINT32 i);
  void InsertDatabaseKey(DatabaseKeyB& key, vbINT32 i);
  void DeleteDatabaseKey(vbINT32 i);

  /// Moves the entries from `at` on to `right`, which holds none of its own then.
  void SplitNode(BtreeNode& right, vbINT32 at);
  /// Appends the entries of `other`; its LeftBranch is not carried over.
  void MergeNode(const BtreeNode& other);

  bool IsEmpty() const { return KeyCount <= 0; }

  vbINT32 MaxKeys;
  vbINT32 EntrySize;
  vbINT32 Address{-1};  ///< the node's own, set by whoever needs it; not stored in the file
  vbINT32 KeyCount;
  vbINT32 LeftBranch;  ///< the child on the left of entry 0
  std::unique_ptr<char[]> Entries;

 private:
  friend class vBtree;

  char* Entry(long i) const { return Entries.get() + i * EntrySize; }

  // The node as the file holds it at FileAddress, for what lies behind the entries; 0 for unknown.
  mutable std::vector<char> FileImage;
  mutable vbINT32 FileAddress;
};
