#pragma once

#include <string>

#include "store/vbdbase.h"
#include "tests/support/TempFolder.h"

// Variable-block files for tests: made by the library, or put together by hand.

/// Four bytes, least significant first.
std::string Word(long value);

/// A header of 28 bytes, with version 3001 and the signature "VBDBASE".
std::string FileHeaderBytes(long freeSpace, long endOfFile, long heapStart, long highest,
                            char revision = 'C');

/// A whole file of revision C without static area: its headers, and `blocks` behind them.
std::string FileOf(const std::string& blocks, long freeSpace = 0);

/// A block of revision C of `length` bytes in all, at least 28, with a free record lock. `fill` is
/// every byte behind its headers.
std::string Block(std::size_t length, char status, long next = 0, char fill = 'x');

/// The bytes of the file header in memory, as hex.
std::string HeaderOf(const vbDatabase& file);

/// A block file of its own for a test, in a temporary folder. Heap start is 40 in revision C.
class BlockFile {
 public:
  /// An empty file.
  explicit BlockFile(signed char revision = 'C');
  /// A file of these bytes.
  explicit BlockFile(const std::string& bytes, vbDatabaseAccessMode mode = vbReadWrite);
  BlockFile(const BlockFile&) = delete;
  BlockFile& operator=(const BlockFile&) = delete;
  ~BlockFile() noexcept;

  const std::string& Path() const { return path_; }

  /// A new block at the end of the file for this object, checksum and all. Its object address.
  long Add(const std::string& object);
  /// The same for an object of `length` bytes of which the first eight are an object header: class
  /// ID 1 and its own address.
  long AddObject(std::size_t length);

  void Reopen(vbDatabaseAccessMode mode = vbReadWrite);
  /// Overwrites bytes of the file behind the back of the database, which has to be open for
  /// writing.
  void Patch(long offset, const std::string& bytes);
  /// Cuts the file or makes it longer, in the same way.
  void Resize(unsigned long size);

  /// Bytes of the file as hex, with all written bytes brought out before.
  std::string HexAt(long offset, unsigned long size);

 private:
  TempFolder folder_;
  std::string path_ = folder_ / "file.vbd";

 public:
  vbDatabase db;
};
