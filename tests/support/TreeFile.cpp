#include "tests/support/TreeFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "tests/support/Bytes.h"

namespace {

constexpr int kDeepest = 50;

/// The CRC-32 of ISO 3309, by its definition.
constexpr std::array<std::uint32_t, 256> CrcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t n = 0; n < table.size(); ++n) {
    std::uint32_t remainder = n;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? 0xEDB88320 : 0);
    }
    table[n] = remainder;
  }
  return table;
}

std::uint32_t Crc(const char* data, std::size_t size) {
  static constexpr std::array table = CrcTable();
  std::uint32_t running = 0xFFFFFFFF;
  for (std::size_t i = 0; i < size; ++i) {
    running = table[(running ^ static_cast<unsigned char>(data[i])) & 0xFF] ^ running >> 8;
  }
  return ~running;
}

std::string EntryBytes(long branch, long number) {
  return Word(branch) + NumberImage(number, NumberAddress(number));
}

/// Puts the nodes of a tree that is told as text behind each other.
class Builder {
 public:
  Builder(const std::string& text, long order) : text_(text), order_(order) {
    Node(1);
    if (at_ != text_.size()) throw std::invalid_argument("not a tree: " + text);
  }

  std::string File() const {
    std::string heap;
    for (std::string node : nodes_) {
      node.resize(static_cast<std::size_t>(NodeSize(order_)), '\0');
      std::string block = Block(static_cast<std::size_t>(NodeBlock(order_)), 'N');
      heap += block.replace(28, node.size(), node);
    }
    const long blocks = static_cast<long>(nodes_.size());
    const long end = kTreeHeap + static_cast<long>(heap.size());
    const long header[] = {order_,  kEntrySize,     entries_,    blocks,
                           height_, NodeAddress(0), kNumberClass};
    std::string file = FileHeaderBytes(0, end, kTreeHeap, end - NodeBlock(order_));
    file.resize(kTreeHeader, '\0');
    for (const long word : header) file += Word(word);
    file.resize(kTreeHeap, '\0');
    return file + heap;
  }

  long Count() const { return static_cast<long>(nodes_.size()); }

 private:
  char Next() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    return at_ < text_.size() ? text_[at_] : ')';
  }

  long Number() {
    const char* start = text_.c_str() + at_;
    char* end;
    const long number = std::strtol(start, &end, 10);
    if (end == start) throw std::invalid_argument("no number in " + text_);
    at_ += static_cast<std::size_t>(end - start);
    return number;
  }

  /// Goes up to the bracket that closes the node and returns the node's address.
  long Node(int level) {
    if (level > height_) height_ = level;
    const long address = NodeAddress(Count(), order_);
    const std::size_t place = nodes_.size();
    nodes_.emplace_back();
    const long left = Child(level);
    long count = 0;
    std::string entries;
    while (Next() != ')') {
      const long first = Number();
      long last = first;
      if (text_.compare(at_, 2, "..") == 0) {
        at_ += 2;
        last = Number();
      }
      for (long number = first; number <= last; ++number, ++count) {
        entries += EntryBytes(left == 0 ? 0 : Child(level), number);
      }
    }
    entries_ += count;
    nodes_[place] = Word(count) + Word(left) + entries;
    return address;
  }

  /// The child that is told next, 0 for none.
  long Child(int level) {
    if (Next() != '(') return 0;
    ++at_;
    const long child = Node(level + 1);
    ++at_;
    return child;
  }

  const std::string& text_;
  long order_;
  std::size_t at_ = 0;
  std::vector<std::string> nodes_;
  long entries_ = 0;
  long height_ = 0;
};

}  // namespace

std::string NumberName(long number) {
  char name[24];
  std::snprintf(name, sizeof name, "%11ld", number);
  return name;
}

std::string NumberImage(long number, long address) {
  std::string name = NumberName(number);
  name.resize(64, '\0');
  return name + Word(address) + Word(kNumberClass);
}

std::string Differences(const std::string& before, const std::string& after) {
  if (before == after) return "";
  const std::size_t end = std::max(before.size(), after.size());
  const auto differ = [&](std::size_t i) {
    return i >= before.size() || i >= after.size() || before[i] != after[i];
  };
  std::string places;
  for (std::size_t i = 0; i < end; ++i) {
    if (!differ(i)) continue;
    places += (places.empty() ? "" : " ") + std::to_string(i);
    const std::size_t first = i;
    while (i + 1 < end && differ(i + 1)) ++i;
    if (i > first) places += ".." + std::to_string(i);
  }
  return places;
}

TreeFile TreeFile::Of(const std::string& text, long order) {
  const Builder builder(text, order);
  TreeFile file(builder.File());
  for (long i = 0; i < builder.Count(); ++i) file.Seal(NodeAddress(i, order));
  return file;
}

std::string TreeFile::Part(long offset, long size) const {
  const auto place = static_cast<std::size_t>(offset);
  const auto length = static_cast<std::size_t>(size);
  if (offset < 0 || size < 0 || place + length > bytes_.size()) {
    throw std::out_of_range("outside the file: " + std::to_string(offset));
  }
  return bytes_.substr(place, length);
}

void TreeFile::Put(long offset, const std::string& bytes) {
  bytes_.replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
}

long TreeFile::WordAt(long offset) const {
  const auto place = static_cast<std::size_t>(offset);
  if (offset < 0 || place + 4 > bytes_.size()) {
    throw std::out_of_range("outside the file: " + std::to_string(offset));
  }
  unsigned char at[4];
  std::memcpy(at, bytes_.data() + place, sizeof at);
  const std::uint32_t word = std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 |
                             std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
  return static_cast<std::int32_t>(word);
}

std::vector<StoredBlock> TreeFile::Blocks() const {
  std::vector<StoredBlock> blocks;
  const long end = WordAt(4);
  for (long at = WordAt(8); at < end;) {
    const long length = WordAt(at + 4);
    if (Part(at, 4) != "\xFE\xFE\xFE\xFE" || length < 32 || at + length > end) {
      throw std::out_of_range("no block at " + std::to_string(at));
    }
    blocks.push_back({at + 28, length, static_cast<char>(WordAt(at + 8) & 0xFF)});
    at += length;
  }
  return blocks;
}

std::vector<long> TreeFile::FreeObjects() const {
  std::vector<long> objects;
  for (long at = WordAt(0); at != 0; at = WordAt(at + 12)) {
    if (objects.size() > bytes_.size() / 32) throw std::out_of_range("a free list without an end");
    objects.push_back(at + 28);
  }
  return objects;
}

bool TreeFile::IsSealed(long object) const {
  const long size = ObjectSize(object);
  const auto stored = static_cast<std::uint32_t>(WordAt(object + size));
  return stored == Crc(bytes_.data() + object, static_cast<std::size_t>(size));
}

void TreeFile::Seal(long object) {
  const std::string sealed = Part(object, ObjectSize(object));
  PutWord(object + ObjectSize(object), Crc(sealed.data(), sealed.size()));
}

long TreeFile::Add(const std::string& object) {
  const long block = static_cast<long>(bytes_.size());
  bytes_ += Block(object.size() + 32, 'N').replace(28, object.size(), object);
  PutWord(4, static_cast<long>(bytes_.size()));
  PutWord(12, block);
  Seal(block + 28);
  return block + 28;
}

std::string_view TreeFile::Image(long node, long i) const {
  return std::string_view(bytes_).substr(static_cast<std::size_t>(Entry(node, i) + 4), 72);
}

std::string_view TreeFile::Name(long node, long i) const {
  const std::string_view name = Image(node, i).substr(0, 64);
  return name.substr(0, name.find('\0'));
}

void TreeFile::PutKeyCount(long node, long count) {
  PutWord(node, count);
  Seal(node);
}

void TreeFile::PutBranch(long node, long i, long child) {
  PutWord(i < 0 ? node + 4 : Entry(node, i), child);
  Seal(node);
}

std::string TreeFile::Counts() const {
  return std::to_string(Header(kEntryCount)) + ' ' + std::to_string(Header(kNodeCount)) + ' ' +
         std::to_string(Header(kHeight));
}

std::string TreeFile::TextOf(long node, int depth) const {
  if (depth > kDeepest) throw std::out_of_range("a tree without an end");
  if (!IsSealed(node)) return "<bad checksum>";
  if (Branch(node, -1) == 0) return LeafText(node);
  std::string text;
  for (long i = -1; i < KeyCount(node); ++i) {
    if (i >= 0) text += ' ' + KeyText(node, i) + ' ';
    const long child = Branch(node, i);
    text += '(' + (child == 0 ? "<none>" : TextOf(child, depth + 1)) + ')';
  }
  return text;
}

std::string TreeFile::LeafText(long node) const {
  std::string text;
  for (long i = 0; i < KeyCount(node); ++i) {
    const long first = Number(node, i);
    long last = first;
    if (first >= 0) {
      while (i + 1 < KeyCount(node) && Number(node, i + 1) == last + 1) ++last, ++i;
    }
    if (!text.empty()) text += ' ';
    text += KeyText(node, i - (last - first));
    if (last > first) text += (last == first + 1 ? " " : "..") + KeyText(node, i);
    if (Branch(node, i) != 0) text += " (" + std::to_string(Branch(node, i)) + ')';
  }
  return text;
}

std::string TreeFile::KeyText(long node, long i) const {
  if (const long number = Number(node, i); number >= 0) return std::to_string(number);
  return '"' + std::string(Name(node, i)) + "\" at " + std::to_string(ObjectAddress(node, i)) +
         " of " + std::to_string(ClassID(node, i));
}

long TreeFile::Number(long node, long i) const {
  const std::string name(Name(node, i));
  const long number = std::atol(name.c_str());
  const bool sound = name == NumberName(number) &&
                     ObjectAddress(node, i) == NumberAddress(number) &&
                     ClassID(node, i) == kNumberClass;
  return sound && number >= 0 ? number : -1;
}
