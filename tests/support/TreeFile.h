#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/BlockFile.h"

// Index files by their layout, built and taken apart with none of the library's code: revision C,
// one tree whose header follows the file header, keys of 72 bytes.

inline constexpr long kTreeHeader = 40;
inline constexpr long kTreeHeap = 80;
inline constexpr long kEntrySize = 76;

constexpr long NodeSize(long order = 32) {
  return 8 + kEntrySize * ((order < 5 ? 5 : order) - 1);
}
/// A node with its block's headers and checksum.
constexpr long NodeBlock(long order = 32) {
  return 28 + NodeSize(order) + 4;
}
/// The address of node n, from 0, where the heap holds nothing but nodes.
constexpr long NodeAddress(long n, long order = 32) {
  return kTreeHeap + n * NodeBlock(order) + 28;
}

/// What the entry of a number holds: its key text, object address and class ID.
std::string NumberName(long number);
constexpr long NumberAddress(long number) {
  return 100000 + number;
}
inline constexpr long kNumberClass = 7;
/// The 72 bytes of such a key.
std::string NumberImage(long number, long address);

/// The words of the tree's header, in file order.
enum TreeHeaderWord : int {
  kOrder,
  kEntryBytes,
  kEntryCount,
  kNodeCount,
  kHeight,
  kRoot,
  kTreeClassID
};

/// Where two files differ, as "40..43 108", empty for equal ones.
std::string Differences(const std::string& before, const std::string& after);

struct StoredBlock {
  long object;  ///< its address
  long length;  ///< of the whole block
  char status;
};

/// The bytes of an index file. Places outside of it throw std::out_of_range.
///
/// Trees are told as text: a leaf by its keys, "1 2 7..9", an inner node by its children in
/// brackets with its keys between them, "(1 2) 3 (4 5)". Keys are numbers; an entry that isn't
/// that of a number, as above, is told in full.
class TreeFile {
 public:
  explicit TreeFile(std::string bytes) : bytes_(std::move(bytes)) {}

  /// A file with this tree. The nodes lie in the order in which the text names them, the root
  /// first.
  static TreeFile Of(const std::string& text, long order = 32);

  const std::string& Bytes() const { return bytes_; }
  std::string Part(long offset, long size) const;
  void Put(long offset, const std::string& bytes);
  long WordAt(long offset) const;
  void PutWord(long offset, long value) { Put(offset, Word(value)); }

  // -- Blocks, by the addresses of their objects.

  std::vector<StoredBlock> Blocks() const;
  /// The free ones, from the head of the list on.
  std::vector<long> FreeObjects() const;
  long ObjectSize(long object) const { return WordAt(object - 24) - 32; }
  /// Whether the object's checksum is right.
  bool IsSealed(long object) const;
  /// Makes it right.
  void Seal(long object);
  /// Puts a normal block at the end of the file and returns the address of its object.
  long Add(const std::string& object);

  // -- Nodes, by their addresses.

  long KeyCount(long node) const { return WordAt(node); }
  /// The child on the right of entry i, or on the left of all for -1.
  long Branch(long node, long i) const { return WordAt(i < 0 ? node + 4 : Entry(node, i)); }
  /// The 72 bytes of a key.
  std::string_view Image(long node, long i) const;
  /// The key text, up to its zero byte.
  std::string_view Name(long node, long i) const;
  long ObjectAddress(long node, long i) const { return WordAt(Entry(node, i) + 68); }
  long ClassID(long node, long i) const { return WordAt(Entry(node, i) + 72); }
  static constexpr long Entry(long node, long i) { return node + 8 + kEntrySize * i; }

  /// These seal the node again.
  void PutKeyCount(long node, long count);
  void PutBranch(long node, long i, long child);

  // -- The tree.

  long Header(TreeHeaderWord word) const { return WordAt(kTreeHeader + 4 * word); }
  void PutHeader(TreeHeaderWord word, long value) { PutWord(kTreeHeader + 4 * word, value); }
  std::string Text() const { return TextOf(Header(kRoot), 0); }
  /// The header's EntryCount, NodeCount and Height, as "32 3 2".
  std::string Counts() const;

 private:
  std::string TextOf(long node, int depth) const;
  std::string LeafText(long node) const;
  std::string KeyText(long node, long i) const;
  /// The number whose entry it is, or -1.
  long Number(long node, long i) const;

  std::string bytes_;
};
