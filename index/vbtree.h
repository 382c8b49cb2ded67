#pragma once

#include <array>

#include "index/btnode.h"
#include "index/dbasekey.h"
#include "store/api.h"
#include "store/vbscalar.h"

class BtreeStack;
class vbDatabase;
namespace kestdb {
class TreeWalk;
}

/// One B-tree on disk, of one persistent class: it maps the key text of an object to the object's
/// address in the data file. All trees of a study share the index file; each has a header in the
/// file's static area and its nodes in the heap. Only the header is kept in memory.
///
/// Every operation takes the key it is about, which is overwritten with what was found or moved,
/// and a scratch key of the same class. REQUIRES that the caller holds CLock, which keeps the
/// header in step with the file.
///
/// THROWS, beside what is told with an operation: CChecksum and CFileCorrupt for a damaged tree,
/// CBadObjectAddress for a tree without a file, and the failures of vbDatabase.
class KESTDB_API vBtree {
 public:
  /// A tree that is not attached yet; InitBtree does that. The key is not kept.
  vBtree(DatabaseKeyB& key, vbINT32 order, vbINT32 classID);
  vBtree(const vBtree&) = delete;
  vBtree& operator=(const vBtree&) = delete;
  virtual ~vBtree();

  /// Attaches the tree to the index file, which is not owned. With `create` a new empty tree is
  /// written, else the header of an old one read, which then replaces what the constructor got.
  /// THROWS CBadObjectAddress for a null file, CBlockAlloc when there is no block for the root.
  void InitBtree(vbDatabase* db, int create, vbINT32 headerAddress);
  void InitBtree(int create, vbINT32 headerAddress);

  /// THROW CFileNotReady.
  void ReadBtreeHeader();
  void WriteBtreeHeader();
  /// Takes the header over as the file's front held it when that was last read.
  void LoadBtreeHeader();
  /// Whether the header is another than the one last read or written.
  bool HeaderDiffers() const;

  /// THROWS CChecksum, CFileCorrupt for a node that is none of this tree's.
  void ReadNode(BtreeNode& node, vbINT32 address);
  void WriteNode(const BtreeNode& node, vbINT32 address);

  /// Bytes that a node takes in the file, headers and checksum included.
  long TotalNodeSize() const;

  /// Lets go of the file.
  void Release() { Database = nullptr; }

  /// Writes the header and flushes the file.
  void Flush();
  /// Writes the header; the file stays open.
  void Close();
  void ReInit(bool flushFirst);
  /// A flush goes to the old address.
  void ReInit(vbINT32 headerAddress, bool flushFirst);
  /// 0 when the header in memory is the file's, else the number, from 1, of a field that differs:
  /// the last one or, with `reload`, which takes the file's header over, the first one.
  int TestTree(bool reload);

  // -- Search. True when `key` holds an entry now; else it is unchanged. Kept: the last argument
  // has no effect.

  bool Find(DatabaseKeyB& key, DatabaseKeyB& work, bool);
  bool FindFirst(DatabaseKeyB& key, bool);
  bool FindLast(DatabaseKeyB& key, bool);
  /// The neighbours of a key that is in the tree.
  bool FindNext(DatabaseKeyB& key, DatabaseKeyB& work, bool);
  bool FindPrev(DatabaseKeyB& key, DatabaseKeyB& work, bool);

  // -- Insertion. `key` may hold another key afterwards.

  /// Returns true. THROWS CDuplicateEntry, CStackFull, CMemoryAlloc when there is no block for a
  /// node, CFileInsertion.
  bool Insert(DatabaseKeyB& key, DatabaseKeyB& work, bool flush);
  void InsertDatabaseKey(DatabaseKeyB& key, DatabaseKeyB& work);
  /// Makes a root over the old one, with `key` as its only entry.
  void GrowNewRoot(DatabaseKeyB& key);

  // -- Deletion. `key` may hold another key afterwards.

  /// Returns true. The tree stays balanced. THROWS CObjectNotFound, CMemoryAlloc.
  bool Delete(DatabaseKeyB& key, DatabaseKeyB& work, bool flush);
  void DeleteDatabaseKey(DatabaseKeyB& key, DatabaseKeyB& work);

  /// Returns true. Nodes may run underfull and stay empty. THROWS CObjectNotFound, CMemoryAlloc.
  bool LazyDelete(DatabaseKeyB& key, DatabaseKeyB& work, bool flush);
  void LazyDeleteDatabaseKey(DatabaseKeyB& key, DatabaseKeyB& work);

  /// Repairs the underfull child of `parent` at branch `pos`.
  void InsertBalance(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work);

  // The repairs. Entry `pos` of the parent parts the left child from the right one.
  void InsertLeftRotation(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work);
  void InsertRightRotation(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work);
  void Merge(BtreeNode& parent, vbINT32 pos, DatabaseKeyB& work);

  /// Takes out an empty root that is not a leaf.
  void CollapseRoot();
  void CollapseRoot(BtreeNode& root);

  vbDatabase* Database = nullptr;
  vbINT32 HeaderAddress;

  // The header, 28 bytes in the file.
  vbINT32 Order;
  vbINT32 EntrySize;
  vbINT32 EntryCount;
  vbINT32 NodeCount;
  vbINT32 Height;
  vbINT32 Root;
  vbINT32 ClassID;

  bool HeaderCurrent = false;  ///< no header field has changed since it was read or written

 private:
  void RequireDatabase() const;
  void TakeHeader(const std::array<vbINT32, 7>& image);
  template <class Write>
  void StoreHeader(Write write);
  vbINT32 AllocNode();
  void RemoveNode(vbINT32 address);
  void CountEntries(long change);
  void CountNodes(long change);

  bool FindEdge(DatabaseKeyB& key, bool last);

  void SplitFullNode(BtreeNode& left, vbINT32 address, vbINT32 pos, DatabaseKeyB& key,
                     DatabaseKeyB& work);

  void Rebalance(const BtreeNode& changed, vbINT32 address, BtreeStack& path, DatabaseKeyB& key,
                 DatabaseKeyB& work);
  void ReadChildren(const BtreeNode& parent, vbINT32 pos, BtreeNode& left, BtreeNode& right);
  void WriteFamily(const BtreeNode& parent, const BtreeNode& left, const BtreeNode& right);
  vbINT32 FreeEmptyNodes(kestdb::TreeWalk& walk, BtreeNode& node, vbINT32 child);

  std::array<vbINT32, 7> stored_;  ///< the header as it was last read or written
};

/// The same class under the spelling that some callers know it by.
using vbBtree = vBtree;
