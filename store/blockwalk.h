// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include "store/vbdbase.h"

namespace kestdb {

/// Looks into a file through a buffer that is read ahead, so that headers close to each other cost
/// one transfer. REQUIRES that nobody writes to the file meanwhile.
class FileWindow {
 public:
  explicit FileWindow(vbDatabase& file);

  /// The length that the file has on the disk, whatever its header says.
  long Length() const { return length_; }

  /// The `size` bytes at `address`, null where the file doesn't hold all of them. Valid until the
  /// next call, and no longer than this object.
  const char* At(long address, std::size_t size);

 private:
  vbDatabase& file_;
  long length_;
  long start_ = 0;
  std::vector<char> bytes_;
};

/// A block that walks can step over: its length holds its headers and ends within the file.
struct FoundBlock {
  long address;
  vbBlockHeader header;
};

/// The blocks of a file in the order in which they lie there, up to the end that the file has on
/// the disk, and past any damage: what the diagnostics and the rebuilds go through.
class BlockWalk {
 public:
  explicit BlockWalk(vbDatabase& file) : file_(file), window_(file) {}

  FileWindow& Window() { return window_; }

  /// Calls `good(block)` for each block, which tells how many bytes to step over, and
  /// `bad(address)` where there should be a block and isn't; then the next check word is looked
  /// for. False when there is none.
  template <class Good, class Bad>
  bool Run(long first, Good good, Bad bad) {
    FoundBlock block;
    for (long address = first; address > 0 && address < window_.Length();) {
      if (Load(address, block)) {
        address += good(block);
        continue;
      }
      bad(address);
      address = NextCheckWord(address + 1);
      if (address == 0) return false;
    }
    return true;
  }

  /// Whether there is a good block at `address`.
  bool Load(long address, FoundBlock& block);

  /// Where the next block at or behind `address` seems to start; 0 when none does.
  long NextCheckWord(long address);

 private:
  vbDatabase& file_;
  FileWindow window_;
};

}  // namespace kestdb
