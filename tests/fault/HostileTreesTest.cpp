#include <gtest/gtest.h>

#include <cstdint>

#include "tests/fault/FileMap.h"
#include "tests/fault/Forgery.h"

// Tree headers that lie, and nodes that lie behind checksums that are right.

namespace {

constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;
constexpr std::uint32_t kMostPositive = 0x7FFFFFFF;
constexpr std::uint32_t kMostNegative = 0x80000000;

// Words of a tree header.
constexpr std::size_t kOrder = 0;
constexpr std::size_t kEntrySize = 4;
constexpr std::size_t kEntryCount = 8;
constexpr std::size_t kNodeCount = 12;
constexpr std::size_t kHeight = 16;
constexpr std::size_t kRoot = 20;
constexpr std::size_t kClassID = 24;

// Parts of a node.
constexpr std::size_t kBlockHeader = 28;
constexpr std::size_t kKeyCount = 0;
constexpr std::size_t kLeftBranch = 4;
constexpr std::size_t kEntries = 8;
constexpr std::size_t kEntry = 76;
constexpr std::size_t kName = 4;
constexpr std::size_t kAddress = 68;
constexpr std::size_t kTag = 72;

constexpr std::size_t Header(std::size_t tree) {
  return 40 * (tree + 1);
}

class HostileTrees : public testing::Test {
 protected:
  Forgery Forged() const { return Forgery(study); }
  std::uint32_t Word(std::size_t offset) const {
    return static_cast<std::uint32_t>(NumberAt(study.Files().index, offset));
  }
  std::uint32_t Root(std::size_t tree) const { return Word(Header(tree) + kRoot); }
  /// A word of a node, sealed.
  Forgery Node(std::size_t node, std::size_t offset, std::uint32_t value) const {
    return Forged().Set(Which::Index, node + offset, value).Seal(Which::Index, node - kBlockHeader);
  }

  const HostileStudy study;
  const std::uint32_t samples = Root(22);
  const std::uint32_t plains = Root(23);                             // six keys, above seven leaves
  const std::uint32_t left = Word(plains + kLeftBranch);             // 1 to 4
  const std::uint32_t middle = Word(plains + kEntries);              // 7 to 9
  const std::uint32_t right = Word(plains + kEntries + 5 * kEntry);  // the last four
};

std::string Number(std::uint32_t value) {
  return std::to_string(static_cast<std::int32_t>(value));
}

}  // namespace

TEST_F(HostileTrees, HasTwoLevels) {
  EXPECT_EQ(Word(Header(23) + kHeight), 2U);
  EXPECT_EQ(Word(Header(23) + kOrder), 8U);
  EXPECT_EQ(Word(plains + kKeyCount), 6U);
  EXPECT_EQ(Word(left + kKeyCount), 4U);
  EXPECT_EQ(Word(middle + kKeyCount), 3U);
  EXPECT_EQ(Word(right + kKeyCount), 4U);
  EXPECT_EQ(Word(left + kLeftBranch), 0U);
  EXPECT_EQ(Word(Root(24) + kKeyCount), 7U);
  EXPECT_EQ(FreeList(study.Files().index).size(), 2U);
  EXPECT_EQ(FreeList(study.Files().data).size(), 6U);
}

TEST_F(HostileTrees, WordsOfTheHeaders) {
  std::vector<HostileValue> values;
  const auto size = static_cast<std::uint32_t>(study.Files().index.size());
  const std::pair<const char*, std::size_t> fields[] = {
      {"order", kOrder},   {"entry size", kEntrySize}, {"entry count", kEntryCount},
      {"height", kHeight}, {"node count", kNodeCount}, {"class ID", kClassID},
      {"root", kRoot}};
  for (const std::size_t tree : {23U, 24U, 22U, 14U}) {
    for (const auto& [name, field] : fields) {
      for (const std::uint32_t value : {0U,
                                        1U,
                                        2U,
                                        4U,
                                        5U,
                                        7U,
                                        9U,
                                        32U,
                                        75U,
                                        77U,
                                        1000U,
                                        1040U,
                                        size,
                                        size * 2,
                                        0x01000000U,
                                        0x10000000U,
                                        0x1C000000U,
                                        kMostPositive,
                                        kMostNegative,
                                        kAllOnes,
                                        kAllOnes - 3}) {
        values.push_back({"tree " + std::to_string(tree) + ", " + name + ' ' + Number(value),
                          Forged().Set(Which::Index, Header(tree) + field, value), Ending::Silent});
      }
    }
  }
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, OrderAndEntrySizeWhoseProductsPassEachOther) {
  std::vector<HostileValue> values;
  for (const auto& [order, size] : {std::pair{0x10000001U, 16U},
                                    {0x08000000U, 32U},
                                    {0x10000000U, 76U},
                                    {5U, 0x1FFFFFFFU},
                                    {kMostPositive, kMostPositive},
                                    {kMostNegative, kMostNegative},
                                    {2U, 133U},
                                    {32U, 76U}}) {
    values.push_back({"order " + Number(order) + ", entry size " + Number(size),
                      Forged()
                          .Set(Which::Index, Header(23) + kOrder, order)
                          .Set(Which::Index, Header(23) + kEntrySize, size)});
  }
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, RootsElsewhere) {
  std::vector<HostileValue> values;
  for (const std::uint32_t root : {left, middle, right, samples, Root(14), Root(24), Root(0)}) {
    values.push_back({"root " + Number(root), Forged().Set(Which::Index, Header(23) + kRoot, root),
                      Ending::Silent});
  }
  const auto free = static_cast<std::uint32_t>(FreeList(study.Files().index)[0] + kBlockHeader);
  values.push_back({"root in a free block", Forged().Set(Which::Index, Header(23) + kRoot, free),
                    Ending::Silent});
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, KeyCounts) {
  std::vector<HostileValue> values;
  for (const std::uint32_t node : {plains, left, middle, right, samples, Root(14)}) {
    for (const std::uint32_t count :
         {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 1000U, 0x035E50D8U /* 2^32 + 32 bytes */,
          kMostPositive, kMostNegative, kAllOnes}) {
      values.push_back({"node " + Number(node) + ", " + Number(count) + " keys",
                        Node(node, kKeyCount, count), Ending::Silent,
                        // A singleton that the index has lost is made again.
                        node == Root(14) ? study.Object(Kind::Points, 0).address : 0});
    }
  }
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, Branches) {
  std::vector<HostileValue> values;
  const auto size = static_cast<std::uint32_t>(study.Files().index.size());
  const std::pair<std::uint32_t, std::size_t> branches[] = {{plains, kLeftBranch},
                                                            {plains, kEntries},
                                                            {plains, kEntries + 5 * kEntry},
                                                            {left, kLeftBranch},
                                                            {left, kEntries + 3 * kEntry},
                                                            {right, kLeftBranch},
                                                            {right, kEntries},
                                                            {samples, kEntries}};
  for (const auto& [node, branch] : branches) {
    for (const std::uint32_t to :
         {0U, 1U, 28U, 40U, 1068U, plains, left, right, samples, Root(0), Root(24), left + 1,
          left - 28, size, size - 28, kMostPositive, kMostNegative, kAllOnes}) {
      values.push_back(
          {"node " + Number(node) + " + " + std::to_string(branch) + " to " + Number(to),
           Node(node, branch, to), Ending::Silent});
    }
  }
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, CyclesOfBranches) {
  std::vector<HostileValue> values;
  // The first and the last leaf lead back to the root: cycles of two.
  values.push_back(
      {"leaves whose left branch is the root", Forged()
                                                   .Set(Which::Index, left + kLeftBranch, plains)
                                                   .Seal(Which::Index, left - kBlockHeader)
                                                   .Set(Which::Index, right + kLeftBranch, plains)
                                                   .Seal(Which::Index, right - kBlockHeader)});
  values.push_back({"leaves whose last branch is the root",
                    Forged()
                        .Set(Which::Index, left + kEntries + 3 * kEntry, plains)
                        .Seal(Which::Index, left - kBlockHeader)
                        .Set(Which::Index, right + kEntries + 3 * kEntry, plains)
                        .Seal(Which::Index, right - kBlockHeader)});
  values.push_back({"leaves that lead to each other, then to the root",
                    Forged()
                        .Set(Which::Index, left + kEntries + 3 * kEntry, right)
                        .Seal(Which::Index, left - kBlockHeader)
                        .Set(Which::Index, right + kLeftBranch, plains)
                        .Seal(Which::Index, right - kBlockHeader)});
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, EntriesThatLeadElsewhere) {
  std::vector<HostileValue> values;
  const auto size = static_cast<std::uint32_t>(study.Files().data.size());
  const auto own = static_cast<std::uint32_t>(study.Object(Kind::Plain, 1).address);
  const auto other = static_cast<std::uint32_t>(study.Object(Kind::Plain, 10).address);
  const auto sample = static_cast<std::uint32_t>(study.Object(Kind::Sample, 2).address);
  const auto free = static_cast<std::uint32_t>(FreeList(study.Files().data)[0] + kBlockHeader);
  for (const std::uint32_t address : {0U,
                                      1U,
                                      27U,
                                      28U,
                                      40U,
                                      68U,
                                      own - 28,
                                      own + 1,
                                      other,
                                      sample,
                                      free,
                                      size - 8,
                                      size - 1,
                                      size,
                                      size + 1,
                                      kMostPositive - 7,
                                      kMostPositive,
                                      kMostNegative,
                                      kAllOnes,
                                      kAllOnes - 1}) {
    values.push_back(
        {"object address " + Number(address), Node(left, kEntries + kAddress, address)});
  }
  for (const std::uint32_t tag : {0U, 1000U, kMostPositive, kAllOnes}) {
    values.push_back({"class ID " + Number(tag), Node(left, kEntries + kTag, tag), Ending::Clean});
  }
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileTrees, Names) {
  std::vector<HostileValue> values;
  const auto name = [&](std::size_t entry, const std::string& text) {
    return Forged()
        .SetBytes(Which::Index, left + kEntries + entry * kEntry + kName, text)
        .Seal(Which::Index, left - kBlockHeader);
  };
  for (const std::size_t entry : {0U, 2U, 3U}) {
    const std::string which = "entry " + std::to_string(entry) + ", ";
    values.push_back({which + "64 ones", name(entry, std::string(64, '1')), Ending::Silent});
    values.push_back(
        {which + "64 bytes of FF", name(entry, std::string(64, '\xFF')), Ending::Silent});
    values.push_back({which + "no text", name(entry, std::string(64, '\0')), Ending::Silent});
    values.push_back({which + "a key of another leaf", name(entry, "         33"), Ending::Silent});
    values.push_back({which + "a neighbour's key", name(entry, "          2"), Ending::Silent});
  }
  ExerciseAll(study, values, Writing::MayLose);
}
