#include "tests/fault/pairs/Lies.h"

#include <algorithm>

#include "tests/fault/Damage.h"
#include "tests/fault/FileMap.h"
#include "tests/fault/pairs/ObjectList.h"
#include "tests/fault/pairs/RecordFields.h"

namespace {

constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;
constexpr std::uint32_t kMostPositive = 0x7FFFFFFF;
constexpr std::uint32_t kMostNegative = 0x80000000;
constexpr std::uint32_t kMostShort = 65535;
constexpr std::uint32_t kUsualOrder = 32;

constexpr std::size_t kTrees = 25;
constexpr std::size_t kBlockHeader = 28;
constexpr std::size_t kLength = 4;
constexpr std::size_t kNextDeleted = 12;
constexpr std::size_t kAddressWord = 4;
constexpr std::size_t kRecord = 8;
constexpr std::size_t kLeftBranch = 4;
constexpr std::size_t kEntries = 8;
constexpr std::size_t kEntry = 76;
constexpr std::size_t kEntryAddress = 68;
constexpr std::size_t kTreeHeader = 40;
constexpr std::size_t kRoot = 20;

std::uint32_t Word(const std::string& bytes, std::size_t offset) {
  return static_cast<std::uint32_t>(NumberAt(bytes, offset));
}

std::uint32_t Address(std::size_t offset) {
  return static_cast<std::uint32_t>(offset);
}

std::uint32_t SizeOf(const std::string& bytes) {
  return static_cast<std::uint32_t>(bytes.size());
}

std::vector<std::size_t> BlocksOf(const std::string& bytes, Which file) {
  return FileMap(bytes, file == Which::Index ? kTrees : 0).Blocks();
}

/// Adds a lie for each value but the one that is there.
class LiesAt {
 public:
  explicit LiesAt(const FilePair& sound) : sound_(sound) {}

  /// A word that no checksum covers.
  void Add(const std::string& name, Which file, std::size_t offset,
           const std::vector<std::uint32_t>& values, long changed = 0) {
    for (const std::uint32_t value : values) {
      if (Word(BytesOf(sound_, file), offset) == value) continue;
      lies.push_back({name + ": " + std::to_string(value),
                      [=](Forgery& files) { files.Set(file, offset, value); }, changed});
    }
  }
  /// A word in the object of a block, which gets its checksum.
  void AddSealed(const std::string& name, Which file, std::size_t block, std::size_t offset,
                 const std::vector<std::uint32_t>& values, long changed = 0) {
    for (const std::uint32_t value : values) {
      if (Word(BytesOf(sound_, file), offset) == value) continue;
      lies.push_back({name + ": " + std::to_string(value),
                      [=](Forgery& files) { files.Set(file, offset, value).Seal(file, block); },
                      changed});
    }
  }

  std::vector<Lie> lies;

 private:
  const FilePair& sound_;
};

long AddressOf(const ListedObject& object) {
  return static_cast<long>(object.block + kBlockHeader);
}

}  // namespace

// ---- Records ----

namespace {

std::vector<Lie> RecordCounts(const FilePair& sound, RecordCount::Of of) {
  LiesAt at(sound);
  for (const ListedObject& object : ObjectsIn(sound.data)) {
    for (const RecordCount& count : CountsIn(object)) {
      if (count.of != of) continue;
      const std::uint32_t now = Word(object.record, count.offset);
      const std::size_t behind = object.record.size() - count.offset - 4;
      const std::uint32_t fits = Address(behind / count.element);
      at.AddSealed(NameOf(object) + ", word at " + std::to_string(count.offset), Which::Data,
                   object.block, object.block + kBlockHeader + kRecord + count.offset,
                   {0, 1, kUsualOrder, kMostShort, now + 1, fits, fits + 1, 0x20000000, 0x40000000,
                    kMostPositive, kMostNegative, kAllOnes},
                   AddressOf(object));
    }
  }
  return at.lies;
}

}  // namespace

std::vector<Lie> TextLengths(const FilePair& sound) {
  return RecordCounts(sound, RecordCount::Of::Text);
}

std::vector<Lie> ListCounts(const FilePair& sound) {
  return RecordCounts(sound, RecordCount::Of::Elements);
}

std::vector<Lie> ClassIDs(const FilePair& sound) {
  LiesAt at(sound);
  for (const ListedObject& object : ObjectsIn(sound.data)) {
    at.AddSealed(NameOf(object) + ", class ID", Which::Data, object.block,
                 object.block + kBlockHeader, {0, 1, 1000, 16000, 23000, kMostPositive, kAllOnes},
                 AddressOf(object));
  }
  return at.lies;
}

std::vector<Lie> AddressWords(const FilePair& sound) {
  LiesAt at(sound);
  const std::vector<ListedObject> objects = ObjectsIn(sound.data);
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const ListedObject& object = objects[i];
    const ListedObject& next = objects[(i + 1) % objects.size()];
    const std::uint32_t own = Address(object.block + kBlockHeader);
    // Its own fields are what they were.
    at.AddSealed(NameOf(object) + ", address", Which::Data, object.block,
                 object.block + kBlockHeader + kAddressWord,
                 {0, 28, own - 28, own + 1, Address(next.block + kBlockHeader), SizeOf(sound.data),
                  kMostPositive, kMostNegative, kAllOnes});
  }
  return at.lies;
}

// ---- Blocks ----

namespace {

std::vector<std::uint32_t> Lengths(const std::string& bytes, std::size_t block) {
  const std::uint32_t own = Word(bytes, block + kLength);
  const std::uint32_t rest = SizeOf(bytes) - Address(block);
  return {0,
          1,
          27,
          28,
          31,
          32,
          33,
          40,
          44,
          own - 1,
          own + 1,
          own + 33,
          rest - 1,
          rest,
          rest + 1,
          kMostShort,
          kMostPositive,
          kMostNegative,
          kAllOnes};
}

}  // namespace

std::vector<Lie> LiveLengths(const FilePair& sound) {
  LiesAt at(sound);
  for (const ListedObject& object : ObjectsIn(sound.data)) {
    at.Add(NameOf(object) + ", block length", Which::Data, object.block + kLength,
           Lengths(sound.data, object.block), AddressOf(object));
  }
  return at.lies;
}

std::vector<Lie> FreeLengths(const FilePair& sound, Which file) {
  LiesAt at(sound);
  const std::string& bytes = BytesOf(sound, file);
  for (const std::size_t block : FreeList(bytes)) {
    at.Add("free block at " + std::to_string(block) + ", length", file, block + kLength,
           Lengths(bytes, block));
  }
  return at.lies;
}

std::vector<Lie> NodeLengths(const FilePair& sound) {
  LiesAt at(sound);
  for (const std::size_t block : BlocksOf(sound.index, Which::Index)) {
    at.Add("node block at " + std::to_string(block) + ", length", Which::Index, block + kLength,
           Lengths(sound.index, block));
  }
  return at.lies;
}

std::vector<Lie> HeaderWords(const FilePair& sound, Which file, std::size_t offset) {
  LiesAt at(sound);
  const std::string& bytes = BytesOf(sound, file);
  const std::vector<std::size_t> blocks = BlocksOf(bytes, file);
  const std::uint32_t size = SizeOf(bytes);
  const std::uint32_t first = Address(blocks.front());
  const std::uint32_t last = Address(blocks.back());
  const std::uint32_t middle = Address(blocks[blocks.size() / 2]);
  at.Add("header word at " + std::to_string(offset), file, offset,
         {0,
          1,
          kUsualOrder,
          39,
          40,
          41,
          first,
          first + 1,
          first + 28,
          middle,
          middle + 1,
          last,
          last + 1,
          size - 28,
          size - 1,
          size,
          size + 1,
          size + 100000,
          kMostShort,
          kMostPositive,
          kMostNegative,
          kAllOnes - 1,
          kAllOnes});
  return at.lies;
}

// ---- Free lists ----

std::vector<Lie> FreeCycles(const FilePair& sound, Which file) {
  LiesAt at(sound);
  const std::vector<std::size_t> free = FreeList(BytesOf(sound, file));
  for (std::size_t from = 0; from < free.size(); ++from) {
    for (std::size_t to = 0; to <= from; ++to) {
      at.Add("cycle of " + std::to_string(from - to + 1) + ", from member " + std::to_string(from),
             file, free[from] + kNextDeleted, {Address(free[to])});
    }
  }
  return at.lies;
}

std::vector<Lie> FreeLists(const FilePair& sound, Which file) {
  LiesAt at(sound);
  const std::string& bytes = BytesOf(sound, file);
  const std::vector<std::size_t> blocks = BlocksOf(bytes, file);
  const auto isLive = [&](std::size_t block) { return bytes[block + 8] == 'N'; };
  const auto live = Address(
      *std::find_if(blocks.begin() + static_cast<long>(blocks.size() / 2), blocks.end(), isLive));
  for (const std::size_t block : FreeList(bytes)) {
    at.Add("free block at " + std::to_string(block) + ", next", file, block + kNextDeleted,
           {1, kUsualOrder, 39, 40, live, live + 1, live + 28, SizeOf(bytes) - 28, SizeOf(bytes),
            SizeOf(bytes) + 1, kMostShort, kMostPositive, kMostNegative, kAllOnes - 1, kAllOnes});
  }
  return at.lies;
}

// ---- Trees ----

namespace {

struct Node {
  std::size_t at;      ///< address of the node
  std::size_t parent;  ///< 0 for a root
  std::size_t tree;
  std::size_t keys;
};

void AddNodes(const std::string& index, const Node& node, std::vector<Node>& nodes) {
  nodes.push_back(node);
  std::vector<std::size_t> children = {NumberAt(index, node.at + kLeftBranch)};
  for (std::size_t i = 0; i < node.keys; ++i) {
    children.push_back(NumberAt(index, node.at + kEntries + i * kEntry));
  }
  for (const std::size_t child : children) {
    if (child != 0) {
      AddNodes(index, {child, node.at, node.tree, NumberAt(index, child)}, nodes);
    }
  }
}

/// The nodes of all trees.
std::vector<Node> NodesOf(const std::string& index) {
  std::vector<Node> nodes;
  for (std::size_t tree = 0; tree < kTrees; ++tree) {
    const std::size_t root = NumberAt(index, kTreeHeader * (tree + 1) + kRoot);
    AddNodes(index, {root, 0, tree, NumberAt(index, root)}, nodes);
  }
  return nodes;
}

std::string NameOf(const Node& node) {
  return "tree " + std::to_string(node.tree) + ", node at " + std::to_string(node.at);
}

/// Itself, what is above and beside it, nodes of other trees, and what is no node.
std::vector<std::uint32_t> Targets(const std::string& index, const std::vector<Node>& nodes,
                                   const Node& node) {
  std::vector<std::uint32_t> targets = {0,
                                        1,
                                        28,
                                        kUsualOrder,
                                        40,
                                        1040,
                                        1068,
                                        kMostShort,
                                        Address(node.at),
                                        Address(node.at) + 1,
                                        Address(node.at - kBlockHeader),
                                        SizeOf(index) - 28,
                                        SizeOf(index),
                                        SizeOf(index) + 28,
                                        kMostPositive,
                                        kMostNegative,
                                        kAllOnes};
  if (node.parent != 0) targets.push_back(Address(node.parent));
  for (const Node& other : nodes) {
    const bool near = other.tree == node.tree || other.tree == (node.tree + 1) % kTrees;
    if (near && other.at != node.parent && other.at != node.at) {
      targets.push_back(Address(other.at));
    }
  }
  for (const std::size_t block : FreeList(index)) targets.push_back(Address(block + kBlockHeader));
  return targets;
}

void AddBranch(const std::string& index, const std::vector<Node>& nodes, const Node& node,
               std::size_t offset, LiesAt& at) {
  at.AddSealed(NameOf(node) + ", branch at " + std::to_string(offset), Which::Index,
               node.at - kBlockHeader, node.at + offset, Targets(index, nodes, node));
}

}  // namespace

std::vector<Lie> TreeWords(const FilePair& sound, std::size_t offset) {
  LiesAt at(sound);
  const std::uint32_t size = SizeOf(sound.index);
  for (std::size_t tree = 0; tree < kTrees; ++tree) {
    const std::size_t word = kTreeHeader * (tree + 1) + offset;
    const std::uint32_t now = Word(sound.index, word);
    const std::uint32_t other = Word(sound.index, kTreeHeader * ((tree + 1) % kTrees + 1) + offset);
    at.Add("tree " + std::to_string(tree) + ", word at " + std::to_string(offset), Which::Index,
           word,
           {0, 1, 2, 5, kUsualOrder, 75, 77, 1000, kMostShort, now + 1, now - 1, other, size,
            0x10000000, 0x1C000000, kMostPositive, kMostNegative, kAllOnes - 3, kAllOnes});
  }
  return at.lies;
}

std::vector<Lie> KeyCounts(const FilePair& sound) {
  LiesAt at(sound);
  for (const Node& node : NodesOf(sound.index)) {
    const std::uint32_t now = Address(node.keys);
    at.AddSealed(NameOf(node) + ", keys", Which::Index, node.at - kBlockHeader, node.at,
                 {0, 1, 2, 3, 4, now + 1, now - 1, kUsualOrder, kMostShort, 0x035E50D8,
                  kMostPositive, kMostNegative, kAllOnes});
  }
  return at.lies;
}

std::vector<Lie> LeftBranches(const FilePair& sound) {
  LiesAt at(sound);
  const std::vector<Node> nodes = NodesOf(sound.index);
  for (const Node& node : nodes) AddBranch(sound.index, nodes, node, kLeftBranch, at);
  return at.lies;
}

std::vector<Lie> EntryBranches(const FilePair& sound) {
  LiesAt at(sound);
  const std::vector<Node> nodes = NodesOf(sound.index);
  for (const Node& node : nodes) {
    for (std::size_t i = 0; i < node.keys; ++i) {
      AddBranch(sound.index, nodes, node, kEntries + i * kEntry, at);
    }
  }
  return at.lies;
}

std::vector<Lie> EntryAddresses(const FilePair& sound) {
  LiesAt at(sound);
  const std::uint32_t size = SizeOf(sound.data);
  std::vector<std::uint32_t> targets = {0,
                                        1,
                                        27,
                                        28,
                                        40,
                                        kMostShort,
                                        size - 8,
                                        size - 1,
                                        size,
                                        size + 1,
                                        kMostPositive,
                                        kMostNegative,
                                        kAllOnes};
  // Every live object and every freed one: some are of the class, others not.
  for (const std::size_t block : BlocksOf(sound.data, Which::Data)) {
    targets.push_back(Address(block + kBlockHeader));
  }
  for (const Node& node : NodesOf(sound.index)) {
    for (std::size_t i = 0; i < node.keys; ++i) {
      const std::size_t offset = node.at + kEntries + i * kEntry + kEntryAddress;
      at.AddSealed(NameOf(node) + ", address in entry " + std::to_string(i), Which::Index,
                   node.at - kBlockHeader, offset, targets);
    }
  }
  return at.lies;
}
