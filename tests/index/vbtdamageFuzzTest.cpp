#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>

#include "tests/support/DamagedTree.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// Trees that are damaged at random, behind checksums that are right, under operations at random.

namespace {

struct Sound {
  long order;
  const char* text;
};

const Sound kSoundTrees[] = {{32, "((1 2) 3 (4 5)) 6 ((7 8) 9 (10 11))"},
                             {32, "(1..31) 32 (33..63)"},
                             {5, "((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16 17))"},
                             {5, "(1..4) 5 (6..9) 10 (11..14) 15 (16..19) 20 (21..24)"},
                             {2, "() 1 (2) 3 () 4 (5 6 7 8)"}};

class Damager {
 public:
  explicit Damager(unsigned seed) : random_(seed) {}

  long Below(long limit) { return std::uniform_int_distribution<long>(0, limit - 1)(random_); }

  TreeFile Damaged(const Sound& sound) {
    TreeFile stored = TreeFile::Of(sound.text, sound.order);
    nodes_ = stored.Header(kNodeCount);
    order_ = sound.order;
    foreign_ = stored.Add(std::string(100, 'f'));
    for (long i = Below(4); i >= 0; --i) DamageOnce(stored);
    return stored;
  }

 private:
  long Node() { return NodeAddress(Below(nodes_), order_); }

  long Anything() {
    const long values[] = {0, 1, -1, 28, 31, 32, 40, 65535, foreign_, 2147483647, -2147483647 - 1};
    return values[Below(std::size(values))];
  }

  void DamageOnce(TreeFile& stored) {
    const long most = (order_ < 5 ? 5 : order_) - 1;
    const long node = Node();
    switch (Below(8)) {
      case 0:
      case 1:
      case 2:
        return stored.PutBranch(node, Below(most + 1) - 1, Node());
      case 3:
        return stored.PutBranch(node, Below(most + 1) - 1, Anything());
      case 4:
        return stored.PutKeyCount(node, Below(2) == 0 ? Below(most + 1) : Anything());
      case 5:
        return stored.PutHeader(static_cast<TreeHeaderWord>(Below(4) + kEntryCount),
                                Below(2) == 0 ? Node() : Anything());
      case 6: {
        // A node that is in use is on the free list, too.
        stored.PutWord(node - 28 + 8, 'R');
        return stored.PutWord(0, node - 28);
      }
      default: {
        stored.Put(node + Below(NodeSize(order_)), std::string(1, static_cast<char>(Below(256))));
        return stored.Seal(node);
      }
    }
  }

  std::mt19937 random_;
  long nodes_ = 0;
  long order_ = 0;
  long foreign_ = 0;
};

class DamageAtRandom : public testing::TestWithParam<unsigned> {};

TEST_P(DamageAtRandom, ComesToAnEndAndStaysInsideTheNodes) {
  constexpr int kFiles = 60;
  constexpr int kOperations = 12;
  Damager damager(GetParam());
  for (int file = 0; file < kFiles; ++file) {
    const Sound& sound = kSoundTrees[damager.Below(std::size(kSoundTrees))];
    const TreeFile damaged = damager.Damaged(sound);
    IndexFile index(damaged);
    std::string story = std::string(sound.text) + ':';
    for (int i = 0; i < kOperations; ++i) {
      const TreeOperation& operation = damager.Below(3) == 0
                                           ? kSearches[damager.Below(std::size(kSearches))]
                                           : kChanges[damager.Below(std::size(kChanges))];
      const long number = damager.Below(26);
      story += std::string(" ") + operation.name + ' ' + std::to_string(number);
      story += " (" + Outcome(operation, index, number) + ')';
    }
    ExpectOnlyNodesChanged(damaged, index.Stored(), index.Database().GetEOF(), story, sound.order);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, DamageAtRandom, testing::Range(0u, 8u));

}  // namespace
