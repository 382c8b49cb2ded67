#include "tests/fuzz/Mutator.h"

#include <algorithm>
#include <iterator>

#include "tests/support/RawFile.h"

// Only the fuzzer has it; a replay doesn't mutate.
extern "C" [[gnu::weak]] std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size,
                                                      std::size_t mostSize);

namespace {

constexpr std::size_t kFileHeader = 28;
constexpr std::size_t kRevision = 23;
constexpr std::size_t kTreeSlot = 40;

/// What stands before and behind the object of a block.
struct Shape {
  std::size_t header;
  std::size_t checksum;
  std::size_t Overhead() const { return header + checksum; }
};

Shape ShapeOf(const std::string& file) {
  switch (file.size() > kRevision ? file[kRevision] : 'C') {
    case '\0':
    case ' ':
      return {16, 0};
    case 'A':
    case 'a':
    case 'B':
    case 'b':
      return {16, 4};
    default:
      return {28, 4};
  }
}

struct Place {
  std::size_t at;
  std::size_t length;
};

std::size_t UnsignedAt(const std::string& file, std::size_t offset) {
  return static_cast<std::uint32_t>(WordAt(file, offset));
}

void PutAt(std::string& file, std::size_t offset, std::size_t word) {
  for (std::size_t i = 0; i < 4 && offset + i < file.size(); ++i) {
    file[offset + i] = static_cast<char>(word >> 8 * i);
  }
}

/// The blocks that follow each other from the heap's start on, each within the file.
std::vector<Place> BlocksOf(const std::string& file) {
  std::vector<Place> blocks;
  if (file.size() < kFileHeader) return blocks;
  const std::size_t least = ShapeOf(file).Overhead();
  std::size_t at = UnsignedAt(file, 8);
  while (at < file.size() && file.size() - at >= std::max(least, std::size_t{8})) {
    const std::size_t length = UnsignedAt(file, at + 4);
    if (length < least || length > file.size() - at) break;
    blocks.push_back({at, length});
    at += length;
  }
  return blocks;
}

/// Whether the objects have addresses of themselves: nodes, which stand behind the header of a tree
/// at least, don't.
bool HoldsObjects(const std::string& file) {
  return file.size() >= kFileHeader && UnsignedAt(file, 8) < 2 * kTreeSlot;
}

/// Gives each block the checksum of its object.
void Seal(std::string& file) {
  const Shape shape = ShapeOf(file);
  if (shape.checksum == 0) return;
  for (const Place& block : BlocksOf(file)) {
    const std::size_t size = block.length - shape.Overhead();
    const std::string object = file.substr(block.at + shape.header, size);
    PutAt(file, block.at + shape.header + size, PlainCRC(object));
  }
}

/// The words of the file header that follow from where the blocks are.
void MendEnd(std::string& file) {
  if (file.size() < kFileHeader) return;
  const std::vector<Place> blocks = BlocksOf(file);
  PutAt(file, 4, file.size());
  PutAt(file, 12, blocks.empty() ? 0 : blocks.back().at);
}

void MendAddresses(std::string& file) {
  if (!HoldsObjects(file)) return;
  const Shape shape = ShapeOf(file);
  for (const Place& block : BlocksOf(file)) {
    const std::size_t object = block.at + shape.header;
    if (block.length >= shape.Overhead() + 8) PutAt(file, object + 4, object);
  }
}

}  // namespace

void MutateText(std::string& text, std::size_t mostBytes) {
  const std::size_t size = text.size();
  if (mostBytes == 0) return;
  text.resize(std::max(size, mostBytes));
  text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()),
                               std::min(size, mostBytes), mostBytes));
}

std::size_t HandOver(const std::string& input, std::uint8_t* place, std::size_t mostSize) {
  const std::size_t size = std::min(input.size(), mostSize);
  std::copy_n(input.begin(), size, place);
  return size;
}

void Mutator::Mutate(std::string& file, std::size_t mostBytes, const std::string& other) {
  static constexpr Change kChanges[] = {
      &Mutator::ChangeHeaders, &Mutator::ChangeBlockHeader, &Mutator::ChangeObject,
      &Mutator::ChangeObject,  &Mutator::ChangeObject,      &Mutator::PutWord,
      &Mutator::PutWord,       &Mutator::PutWord,           &Mutator::CopyWords,
      &Mutator::InsertBlock,   &Mutator::EraseBlock,        &Mutator::FreeBlock,
      &Mutator::MoveEnd};
  const std::size_t size = file.size();
  for (std::size_t i = Below(4) + 1; i > 0; --i) {
    if (BlocksOf(file).empty() || Below(16) == 0) {
      ChangeBytes(file, mostBytes, other);
    } else {
      (this->*kChanges[Below(std::size(kChanges))])(file, mostBytes, other);
    }
  }
  if (file.size() != size && Below(4) != 0) MendEnd(file);
  if (file.size() != size && Below(4) != 0) MendAddresses(file);
  if (Below(8) != 0) Seal(file);
}

/// Anywhere, of any length.
void Mutator::ChangeBytes(std::string& file, std::size_t mostBytes, const std::string&) {
  MutateText(file, mostBytes);
}

/// What became shorter keeps its old end.
void Mutator::MutatePart(std::string& file, std::size_t offset, std::size_t size) {
  size = std::min(size, file.size() - offset);
  if (size == 0) return;
  LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(file.data()) + offset, size, size);
}

/// The headers before the heap: of the file, or of one tree.
void Mutator::ChangeHeaders(std::string& file, std::size_t, const std::string&) {
  const std::size_t heap = BlocksOf(file).front().at;
  const std::size_t slot = kTreeSlot * Below(heap / kTreeSlot + 1);
  MutatePart(file, slot, std::min(heap - slot, kFileHeader));
}

void Mutator::ChangeBlockHeader(std::string& file, std::size_t, const std::string&) {
  const std::vector<Place> blocks = BlocksOf(file);
  MutatePart(file, blocks[Below(blocks.size())].at, ShapeOf(file).header);
}

void Mutator::ChangeObject(std::string& file, std::size_t, const std::string&) {
  const std::vector<Place> blocks = BlocksOf(file);
  const Shape shape = ShapeOf(file);
  const Place& block = blocks[Below(blocks.size())];
  MutatePart(file, block.at + shape.header, block.length - shape.Overhead());
}

/// A word that means something in some file.
std::size_t Mutator::SomeWord(const std::string& file) {
  const std::vector<Place> blocks = BlocksOf(file);
  const std::size_t other = blocks[Below(blocks.size())].at;
  const std::size_t words[] = {0,
                               1,
                               2,
                               5,
                               31,
                               32,
                               65535,
                               Below(256),
                               other,
                               other + ShapeOf(file).header,
                               other + ShapeOf(file).header,
                               file.size(),
                               file.size() - other,
                               blocks.size(),
                               1000 * Below(26),
                               0x7FFFFFFF,
                               0x80000000,
                               0xFFFFFFFF,
                               0xFEFEFEFE};
  return words[Below(std::size(words))];
}

/// Where a word may stand.
std::size_t Mutator::SomePlace(const std::string& file) {
  const std::vector<Place> blocks = BlocksOf(file);
  const Place& block = blocks[Below(blocks.size())];
  const std::size_t object = block.at + ShapeOf(file).header;
  const std::size_t places[] = {4 * Below(blocks.front().at / 4 + 1),
                                block.at + 4 * Below(8),
                                object + 4 * Below(4),
                                object + 8 + 76 * Below(4),       // a child in a node
                                object + 8 + 76 * Below(4) + 68,  // an object address in a node
                                object + 4 * Below(block.length / 4 + 1),
                                block.at + Below(block.length)};
  return places[Below(std::size(places))];
}

/// Puts a word, or one that is a little more or less than what stands there.
void Mutator::PutWord(std::string& file, std::size_t, const std::string&) {
  const std::size_t place = SomePlace(file);
  if (place + 4 > file.size()) return;
  const std::size_t step = Below(2) == 0 ? Below(8) : 0 - Below(8);
  PutAt(file, place, Below(4) == 0 ? UnsignedAt(file, place) + step : SomeWord(file));
}

/// Copies some words, the entry of a node, or a whole node to another place.
void Mutator::CopyWords(std::string& file, std::size_t, const std::string& other) {
  const std::string& source = BlocksOf(other).empty() || Below(2) == 0 ? file : other;
  const std::size_t from = SomePlace(source);
  const std::size_t to = SomePlace(file);
  const std::size_t sizes[] = {4, 8, 64, 76, 152, 312};
  const std::size_t size = sizes[Below(std::size(sizes))];
  if (from + size > source.size() || to + size > file.size()) return;
  const std::string words = source.substr(from, size);
  file.replace(to, size, words);
}

/// Puts a copy of a block before another one or at the end.
void Mutator::InsertBlock(std::string& file, std::size_t mostBytes, const std::string& other) {
  const std::string& source = BlocksOf(other).empty() || Below(2) == 0 ? file : other;
  const std::vector<Place> from = BlocksOf(source);
  const Place& block = from[Below(from.size())];
  if (file.size() + block.length > mostBytes) return;
  const std::vector<Place> blocks = BlocksOf(file);
  const std::size_t at =
      Below(2) == 0 ? blocks[Below(blocks.size())].at : blocks.back().at + blocks.back().length;
  const std::string bytes = source.substr(block.at, block.length);
  file.insert(at, bytes);
}

void Mutator::EraseBlock(std::string& file, std::size_t, const std::string&) {
  const std::vector<Place> blocks = BlocksOf(file);
  const Place& block = blocks[Below(blocks.size())];
  file.erase(block.at, block.length);
}

/// Frees a block, or brings one back, mostly with the free list as it has to be then.
void Mutator::FreeBlock(std::string& file, std::size_t, const std::string&) {
  const std::vector<Place> blocks = BlocksOf(file);
  const Place& block = blocks[Below(blocks.size())];
  const std::size_t next = Below(4) == 0 ? SomeWord(file) : UnsignedAt(file, 0);
  PutAt(file, block.at + 8, static_cast<unsigned char>("NDDRRX"[Below(6)]));
  if (Below(4) == 0) return;
  PutAt(file, block.at + 12, next);
  PutAt(file, 0, block.at);
}

/// Lets a block end elsewhere: with the next one, or within itself, where another then begins.
void Mutator::MoveEnd(std::string& file, std::size_t, const std::string&) {
  const std::vector<Place> blocks = BlocksOf(file);
  const std::size_t n = Below(blocks.size());
  const Place& block = blocks[n];
  const std::size_t least = ShapeOf(file).Overhead();
  if (Below(2) == 0 && n + 1 < blocks.size()) {
    PutAt(file, block.at + 4, block.length + blocks[n + 1].length);
  } else if (block.length >= 2 * least) {
    const std::size_t length = least + Below(block.length - 2 * least + 1);
    const std::string header = file.substr(block.at, ShapeOf(file).header);
    file.replace(block.at + length, header.size(), header);
    PutAt(file, block.at + length + 4, block.length - length);
    PutAt(file, block.at + 4, length);
  }
}
