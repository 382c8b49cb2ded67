#include "tests/support/RawFile.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/Bytes.h"

namespace {

/// What each byte does to the running value, bit by bit.
std::array<std::uint32_t, 256> Steps() {
  std::array<std::uint32_t, 256> steps{};
  for (std::uint32_t byte = 0; byte < steps.size(); ++byte) {
    std::uint32_t step = byte;
    for (int bit = 0; bit < 8; ++bit) step = (step & 1) != 0 ? step >> 1 ^ 0xEDB88320 : step >> 1;
    steps[byte] = step;
  }
  return steps;
}

/// The whole file in one go: some tests read large ones often.
std::string ReadAtOnce(const std::string& path) {
  std::string bytes(std::filesystem::file_size(path), '\0');
  std::ifstream file(path, std::ios::binary);
  if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("cannot read " + path);
  }
  return bytes;
}

[[noreturn]] void Fail(const std::string& what, long where) {
  throw std::runtime_error(what + " at " + std::to_string(where));
}

std::string Piece(const std::string& bytes, long offset, long size) {
  if (offset < 0 || size < 0 || offset + size > static_cast<long>(bytes.size())) {
    Fail("bytes outside of the file", offset);
  }
  return bytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

long Word(const std::string& bytes, long offset) {
  return WordAt(Piece(bytes, offset, 4), 0);
}

RawBlock ReadRawBlock(const std::string& bytes, long address) {
  if (Piece(bytes, address, 4) != Bytes("FE FE FE FE")) Fail("no block", address);
  RawBlock block;
  block.address = address;
  block.length = Word(bytes, address + 4);
  if (block.length < 32) Fail("a block too short", address);
  block.status = Piece(bytes, address + 8, 1)[0];
  block.next = Word(bytes, address + 12);
  block.lock = Piece(bytes, address + 16, 12);
  block.object = Piece(bytes, address + 28, block.length - 32);
  block.checksum = Piece(bytes, address + block.length - 4, 4) == ChecksumOf(block.object);
  return block;
}

bool IsNormal(const RawBlock& block) {
  return block.status == 'N';
}

std::string At(const RawBlock& block) {
  return " at " + std::to_string(block.address);
}

std::string BlockFault(const RawBlock& block) {
  if (block.status == 'D' || block.status == 'R') return "";
  if (!IsNormal(block)) return "unknown status" + At(block);
  if (block.next != 0) return "a normal block with a successor" + At(block);
  if (block.lock != std::string(12, '\0')) return "a record lock in use" + At(block);
  if (!block.checksum) return "a wrong checksum" + At(block);
  return "";
}

/// Takes the members of the free list out of `freeBlocks`.
std::string FreeListFault(const RawFile& file, std::map<long, long> freeBlocks) {
  for (long address = file.freeSpace; address != 0;) {
    const auto found = freeBlocks.find(address);
    if (found == freeBlocks.end()) return "free list leads to " + std::to_string(address);
    address = found->second;
    freeBlocks.erase(found);
  }
  if (freeBlocks.empty()) return "";
  return "not on the free list: " + std::to_string(freeBlocks.begin()->first);
}

/// One tree on its way through the index file.
class TreeReader {
 public:
  TreeReader(const RawFile& index, long tree) : m_tree(tree) {
    for (const RawBlock& block : index.blocks) {
      if (IsNormal(block)) m_nodes[block.ObjectAddress()] = &block;
    }
  }

  void ReadNode(long address, long levels) {
    const auto found = m_nodes.find(address);
    if (found == m_nodes.end() || levels == 0) Fail("no node", address);
    if (!found->second->checksum) Fail("a node with a wrong checksum", address);
    const std::string& node = found->second->object;
    m_nodes.erase(found);
    ++nodes;
    const long keys = Word(node, 0);
    ReadChild(Word(node, 4), levels);
    for (long i = 0; i < keys; ++i) {
      const std::string entry = Piece(node, 8 + 76 * i, 76);
      AddEntry(entry);
      ReadChild(Word(entry, 0), levels);
    }
  }

  std::map<std::string, long> entries;
  long nodes = 0;

 private:
  void ReadChild(long address, long levels) {
    if ((address != 0) != (levels > 1)) Fail("a leaf on the wrong level", address);
    if (address != 0) ReadNode(address, levels - 1);
  }

  void AddEntry(const std::string& entry) {
    const std::string key = entry.substr(4, 64);
    const std::string text = key.substr(0, key.find('\0'));
    if (!entries.empty() && entries.rbegin()->first >= text) {
      throw std::runtime_error("key out of order: " + text);
    }
    if (Word(entry, 72) != 1000 * (m_tree + 1)) Fail("a key of another class", m_tree);
    entries[text] = Word(entry, 68);
  }

  long m_tree;
  std::map<long, const RawBlock*> m_nodes;
};

}  // namespace

std::uint32_t PlainCRC(const std::string& bytes) {
  static const std::array<std::uint32_t, 256> steps = Steps();
  std::uint32_t running = 0xFFFFFFFF;
  for (const char byte : bytes) {
    running = running >> 8 ^ steps[(running ^ static_cast<unsigned char>(byte)) & 0xFF];
  }
  return ~running;
}

std::string HexWord(long value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return Hex(bytes);
}

std::string ChecksumOf(const std::string& object) {
  return Bytes(HexWord(PlainCRC(object)));
}

long WordAt(const std::string& bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
  }
  return static_cast<std::int32_t>(value);
}

RawFile ReadRawFile(const std::string& path) {
  RawFile file;
  file.bytes = ReadAtOnce(path);
  file.freeSpace = Word(file.bytes, 0);
  file.endOfFile = Word(file.bytes, 4);
  file.heapStart = Word(file.bytes, 8);
  file.highest = Word(file.bytes, 12);
  long address = file.heapStart;
  while (address < file.endOfFile) {
    file.blocks.push_back(ReadRawBlock(file.bytes, address));
    address += file.blocks.back().length;
  }
  if (address != file.endOfFile) Fail("a block over the end of the file", address);
  return file;
}

std::string FaultOf(const RawFile& file) {
  std::map<long, long> freeBlocks;
  bool highest = file.highest == 0 && file.blocks.empty();
  for (const RawBlock& block : file.blocks) {
    if (const std::string fault = BlockFault(block); !fault.empty()) return fault;
    if (!IsNormal(block)) freeBlocks[block.address] = block.next;
    if (block.address == file.highest) highest = true;
  }
  if (!highest) return "the highest block is none: " + std::to_string(file.highest);
  return FreeListFault(file, freeBlocks);
}

std::map<long, std::string> ObjectsOf(const RawFile& file, long classID) {
  std::map<long, std::string> objects;
  for (const RawBlock& block : file.blocks) {
    if (IsNormal(block) && Word(block.object, 0) == classID) {
      objects[block.ObjectAddress()] = block.object;
    }
  }
  return objects;
}

std::map<std::string, long> ReadRawTree(const RawFile& index, long tree) {
  const long header = 40 * (tree + 1);
  TreeReader reader(index, tree);
  reader.ReadNode(Word(index.bytes, header + 20), Word(index.bytes, header + 16));
  if (static_cast<long>(reader.entries.size()) != Word(index.bytes, header + 8)) {
    Fail("wrong number of entries in tree", tree);
  }
  if (reader.nodes != Word(index.bytes, header + 12)) Fail("wrong number of nodes in tree", tree);
  return reader.entries;
}

std::string FaultOfClass(const RawFile& data, const RawFile& index, long classID) {
  if (const std::string fault = FaultOf(data); !fault.empty()) return "data: " + fault;
  if (const std::string fault = FaultOf(index); !fault.empty()) return "index: " + fault;
  std::map<long, std::string> objects = ObjectsOf(data, classID);
  for (const auto& [key, address] : ReadRawTree(index, classID / 1000 - 1)) {
    if (objects.erase(address) == 0) return "no object for the key " + key;
  }
  if (objects.empty()) return "";
  return "no key for the object at " + std::to_string(objects.begin()->first);
}
