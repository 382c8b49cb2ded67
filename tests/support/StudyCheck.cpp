#include "tests/support/StudyCheck.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "tests/support/Bytes.h"

namespace {

constexpr long kFileHeader = 40;
constexpr long kBlockHeader = 28;
constexpr long kChecksum = 4;
constexpr long kTrees = 25;
constexpr long kEntry = 76;

std::uint32_t CRC(const char* bytes, long size) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (long i = 0; i < size; ++i) {
    crc ^= static_cast<unsigned char>(bytes[i]);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

/// A block file of revision C, taken apart.
class BlockFile {
 public:
  BlockFile(const std::string& path, std::ostream& faults)
      : m_path(path), m_bytes(ReadBytes(path)), m_faults(faults) {
    if (Size() < kFileHeader || m_bytes.compare(16, 8, "VBDBASEC") != 0) {
      Fault("no block file", 0);
      return;
    }
    WalkHeap();
    WalkFreeList();
    const long highest = Word(12);
    if (highest != 0 && !m_blocks.contains(highest)) Fault("no block is the highest one", highest);
  }

  long Size() const { return static_cast<long>(m_bytes.size()); }
  /// A signed word, 0 beyond the file.
  long Word(long at) const {
    if (at < 0 || at + 4 > Size()) return 0;
    std::uint32_t word = 0;
    for (int i = 3; i >= 0; --i) {
      word = (word << 8) | static_cast<unsigned char>(m_bytes[static_cast<std::size_t>(at + i)]);
    }
    return static_cast<std::int32_t>(word);
  }
  const char* At(long at) const { return m_bytes.data() + at; }
  /// The length of each normal block, by the address of its object.
  const std::map<long, long>& Objects() const { return m_objects; }
  void Fault(const char* what, long where) const {
    m_faults << m_path << ": " << what << " (" << where << ")\n";
  }

 private:
  void WalkHeap() {
    const long end = Word(4);
    if (end > Size()) Fault("the file ends too early", Size());
    for (long block = Word(8); block < end;) {
      const long length = Word(block + 4);
      if (static_cast<std::uint32_t>(Word(block)) != 0xFEFEFEFE ||
          length < kBlockHeader + kChecksum || block + length > end || block + length > Size()) {
        Fault("no good block", block);
        return;
      }
      AddBlock(block, length);
      block += length;
    }
  }

  void AddBlock(long block, long length) {
    const char status = *At(block + 8);
    m_blocks[block] = status;
    if (status == 'D' || status == 'R') return;
    if (status != 'N' || Word(block + 12) != 0) Fault("no good status", block);
    m_objects[block + kBlockHeader] = length;
    const long object = length - kBlockHeader - kChecksum;
    const auto stored = static_cast<std::uint32_t>(Word(block + length - kChecksum));
    if (stored != CRC(At(block + kBlockHeader), object)) Fault("a wrong checksum", block);
  }

  void WalkFreeList() {
    std::set<long> free;
    for (long block = Word(0); block != 0; block = Word(block + 12)) {
      const auto found = m_blocks.find(block);
      if (found == m_blocks.end() || found->second == 'N' || !free.insert(block).second) {
        Fault("a broken free list", block);
        return;
      }
    }
    for (const auto& [block, status] : m_blocks) {
      if (status != 'N' && !free.contains(block)) Fault("a free block off the list", block);
    }
  }

  std::string m_path;
  std::string m_bytes;
  std::ostream& m_faults;
  std::map<long, char> m_blocks;
  std::map<long, long> m_objects;
};

/// The keys of one tree, and what they lead to.
class TreeCheck {
 public:
  TreeCheck(const BlockFile& index, const BlockFile& data, long tree)
      : m_index(index), m_data(data), m_classID(1000 * (tree + 1)) {
    const long header = kFileHeader * (tree + 1);
    m_height = m_index.Word(header + 16);
    Visit(m_index.Word(header + 20), 1);
    if (m_index.Word(header + 8) != m_entries) Fault("a wrong number of entries", tree);
    if (m_index.Word(header + 12) != m_nodes) Fault("a wrong number of nodes", tree);
  }

  const std::set<long>& Found() const { return m_found; }

 private:
  void Fault(const char* what, long where) { m_index.Fault(what, where); }

  void Visit(long node, long level) {
    const long count = m_index.Word(node);
    if (!m_index.Objects().contains(node) || count < 0 || count > 31 || level > m_height) {
      Fault("no good node", node);
      return;
    }
    ++m_nodes;
    VisitChild(m_index.Word(node + 4), level);
    for (long entry = node + 8; entry < node + 8 + count * kEntry; entry += kEntry) {
      VisitKey(entry + 4);
      VisitChild(m_index.Word(entry), level);
    }
  }

  void VisitChild(long node, long level) {
    if ((node == 0) != (level == m_height)) Fault("a leaf on the wrong level", node);
    if (node != 0) Visit(node, level + 1);
  }

  void VisitKey(long key) {
    ++m_entries;
    const std::string name(m_index.At(key), strnlen(m_index.At(key), 64));
    if (m_entries > 1 && name <= m_last) Fault("keys out of order", key);
    m_last = name;
    const long object = m_index.Word(key + 64);
    if (!m_data.Objects().contains(object) || m_data.Word(object) != m_classID ||
        m_data.Word(object + 4) != object || !m_found.insert(object).second) {
      Fault("a key that leads to no object", key);
    }
  }

  const BlockFile& m_index;
  const BlockFile& m_data;
  long m_classID;
  long m_height = 0;
  long m_entries = 0;
  long m_nodes = 0;
  std::string m_last;
  std::set<long> m_found;
};

}  // namespace

std::string FaultsOfStudy(const std::string& base) {
  std::ostringstream faults;
  const BlockFile data(base + ".ksb", faults);
  const BlockFile index(base + ".kx", faults);
  std::set<long> found;
  for (long tree = 0; tree < kTrees; ++tree) {
    const TreeCheck check(index, data, tree);
    found.insert(check.Found().begin(), check.Found().end());
  }
  for (const auto& [object, length] : data.Objects()) {
    if (!found.contains(object)) data.Fault("an object without a key", object);
  }
  return faults.str();
}
