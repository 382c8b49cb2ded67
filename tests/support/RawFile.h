#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Block files and the trees in them, taken apart byte by byte with no help from the library, for
// tests of what it has written. The bytes have to be in the file: outside of any lock, or with the
// file closed.

/// The CRC-32, worked out from its polynomial apart from the library.
std::uint32_t PlainCRC(const std::string& bytes);

/// The four bytes of a number, as "2A 00 00 00".
std::string HexWord(long value);
/// The checksum that belongs behind the bytes of an object, as four bytes of a file.
std::string ChecksumOf(const std::string& object);

/// A number of four bytes, least significant first.
long WordAt(const std::string& bytes, std::size_t offset);

struct RawBlock {
  long address = 0;
  long length = 0;
  char status = 0;
  long next = 0;
  std::string lock;       ///< the 12 bytes behind the block header
  std::string object;     ///< without the checksum
  bool checksum = false;  ///< whether the one behind the object is right

  long ObjectAddress() const { return address + 28; }
};

/// A file of revision C.
struct RawFile {
  long freeSpace = 0;
  long endOfFile = 0;
  long heapStart = 0;
  long highest = 0;
  std::string bytes;
  std::vector<RawBlock> blocks;
};

/// Throws std::runtime_error where the bytes can't be taken apart: for a block without its check
/// word, or one that doesn't end where another or the file's end is.
RawFile ReadRawFile(const std::string& path);

/// What is wrong with the file, nothing for a sound one: every normal block has its checksum, a
/// free record lock and no successor, every other block is on the free list exactly once, and the
/// highest block is one of them.
std::string FaultOf(const RawFile& file);

/// The objects in the normal blocks of a class, by object address.
std::map<long, std::string> ObjectsOf(const RawFile& file, long classID);

/// What is wrong with a class of a study, nothing where both files are sound, and the class's tree
/// leads to all of its objects in normal blocks and to nothing else.
std::string FaultOfClass(const RawFile& data, const RawFile& index, long classID);

/// The entries of a tree: object addresses by key text. Throws std::runtime_error for a tree whose
/// order, height, number of entries or number of nodes is not as its header says, and for an entry
/// of another class ID than the tree's.
std::map<std::string, long> ReadRawTree(const RawFile& index, long tree);
