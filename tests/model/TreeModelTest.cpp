#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Log.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TreeFile.h"

// Two trees in one file beside two std::maps, under a long row of operations at random. The trees
// grow and shrink down to empty again and again. Builds for a debugger keep the trees small and
// take the whole file apart after every operation, others do so now and then.

namespace {

#ifdef NDEBUG
constexpr long kMostKeys = 2500;
constexpr long kCheckEvery = 250;
#else
constexpr long kMostKeys = 120;
constexpr long kCheckEvery = 1;
#endif
constexpr long kChecksumsEvery = 250;
constexpr long kReopenEvery = 3000;

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}
  long Below(long limit) {
    return static_cast<long>(random_() % static_cast<unsigned long>(limit));
  }
  bool Percent(long chance) { return Below(100) < chance; }

 private:
  std::mt19937 random_;
};

/// The images of a tree's keys by their numbers.
using Model = std::map<long, std::string>;

/// What one tree is about to do: grow to a size, stay there for a while, shrink to nothing.
class Season {
 public:
  explicit Season(Dice& dice) : dice_(dice) { Grow(); }

  /// Goes on to the next part when this one is over.
  void Turn(std::size_t size) {
    if (insertPercent_ > 50 && size >= target_) {
      insertPercent_ = 50;
      left_ = dice_.Below(1500);
    } else if (insertPercent_ == 50 && left_-- <= 0) {
      insertPercent_ = 15;
      pattern_ = dice_.Below(4);
    } else if (size == 0 && insertPercent_ < 50) {
      Grow();
    }
  }

  bool Inserts() { return dice_.Percent(insertPercent_); }

  /// A number that is probably not in the tree.
  long NewNumber(const Model& model) {
    if (model.empty() || pattern_ > 1) return dice_.Below(range_);
    const long edge = pattern_ == 0 ? model.rbegin()->first + 1 + dice_.Below(2)
                                    : model.begin()->first - 1 - dice_.Below(2);
    return edge >= 0 ? edge : dice_.Below(range_);
  }

  /// A number that is probably in it.
  long OldNumber(const Model& model) {
    if (model.empty() || dice_.Percent(10)) return dice_.Below(range_);
    if (pattern_ == 0) return model.begin()->first;
    if (pattern_ == 1) return model.rbegin()->first;
    const auto found = model.lower_bound(dice_.Below(range_));
    return found == model.end() ? model.begin()->first : found->first;
  }

 private:
  void Grow() {
    insertPercent_ = 85;
    target_ = static_cast<std::size_t>(kMostKeys / 2 + dice_.Below(kMostKeys / 2));
    range_ = kMostKeys + dice_.Below(4 * kMostKeys);
    pattern_ = dice_.Below(4);
  }

  Dice& dice_;
  long insertPercent_;
  std::size_t target_;
  long range_;
  long left_ = 0;
  /// Keys are added at the upper edge (0), at the lower one (1), else anywhere, and taken from the
  /// other edge.
  long pattern_;
};

/// A walk through one stored tree beside its model. The fault that is met first is kept.
class Inspection {
 public:
  Inspection(const TreeFile& file, const vBtree& tree, long leastKeys)
      : file_(file), mostKeys_(tree.Order - 1), leastKeys_(leastKeys), root_(tree.Root) {}

  void Walk(const Model& model) {
    entry_ = model.begin();
    end_ = model.end();
    Node(root_, 1);
    if (fault_.empty() && entry_ != end_) Fail("keys are missing behind", root_);
  }

  const std::string& Fault() const { return fault_; }
  const std::vector<long>& Nodes() const { return nodes_; }
  long Height() const { return leafLevel_; }

 private:
  void Fail(const char* what, long node) {
    if (fault_.empty()) fault_ = std::string(what) + " node " + std::to_string(node);
  }

  void Node(long node, long level) {
    if (!fault_.empty()) return;
    nodes_.push_back(node);
    const long count = file_.KeyCount(node);
    const bool leaf = file_.Branch(node, -1) == 0;
    if (count > mostKeys_ || (node != root_ && count < leastKeys_))
      Fail("too few or many keys", node);
    if (leaf && leafLevel_ == 0) leafLevel_ = level;
    if (leaf ? level != leafLevel_ : level > 40) Fail("leaves on several levels", node);
    if (!leaf && count == 0) Fail("no key in inner", node);
    for (long i = -1; i < count && fault_.empty(); ++i) {
      if (i >= 0) Entry(node, i);
      const long child = file_.Branch(node, i);
      if ((child == 0) != leaf) Fail("a leaf's branch in", node);
      if (!leaf) Node(child, level + 1);
    }
  }

  /// The next entry in order has to be the model's next one.
  void Entry(long node, long i) {
    if (entry_ == end_) return Fail("more keys than there should be in", node);
    if (file_.Image(node, i) != entry_->second) Fail("not the next entry in", node);
    ++entry_;
  }

  const TreeFile& file_;
  long mostKeys_;
  long leastKeys_;
  long root_;
  Model::const_iterator entry_, end_;
  std::vector<long> nodes_;
  long leafLevel_ = 0;
  std::string fault_;
};

class TreesAndModels {
 public:
  TreesAndModels(long order, long leastKeys, unsigned seed)
      : leastKeys_(leastKeys), dice_(seed), seasons_{Season(dice_), Season(dice_)} {
    KSBKey key;
    file_.Create(path_, 2 * 40, 'C');
    for (const long i : {0, 1}) {
      trees_[i] = std::make_unique<vBtree>(key, order, i);
      trees_[i]->InitBtree(&file_, 1, kTreeHeader + 40 * i);
    }
  }
  TreesAndModels(const TreesAndModels&) = delete;
  TreesAndModels& operator=(const TreesAndModels&) = delete;
  ~TreesAndModels() { file_.Abandon(); }

  /// One operation on one of the trees.
  void Step() {
    chosen_ = dice_.Below(2);
    seasons_[chosen_].Turn(Chosen().size());
    if (dice_.Percent(20)) return Ask();
    if (seasons_[chosen_].Inserts()) return Insert(seasons_[chosen_].NewNumber(Chosen()));
    Delete(seasons_[chosen_].OldNumber(Chosen()));
    if (Chosen().empty()) ++timesEmpty;
    tallest = std::max<long>(tallest, Tree().Height);
  }

  void Drain() {
    for (chosen_ = 0; chosen_ < 2; ++chosen_) {
      while (!Chosen().empty()) Delete(seasons_[chosen_].OldNumber(Chosen()));
    }
  }

  void Reopen() {
    for (const std::unique_ptr<vBtree>& tree : trees_) tree->Close();
    file_.Close();
    file_.Open(path_, vbReadWrite);
    KSBKey key;
    for (const long i : {0, 1}) {
      trees_[i] = std::make_unique<vBtree>(key, 9, 1000);
      trees_[i]->InitBtree(&file_, 0, kTreeHeader + 40 * i);
    }
  }

  /// What is wrong with the file, empty when all is well.
  std::string Fault(bool withChecksums) {
    const TreeFile stored = Stored();
    std::vector<long> nodes;
    for (const long i : {0, 1}) {
      Inspection inspection(stored, *trees_[i], leastKeys_);
      inspection.Walk(models_[i]);
      if (!inspection.Fault().empty()) return inspection.Fault();
      if (trees_[i]->EntryCount != static_cast<long>(models_[i].size())) return "EntryCount";
      if (trees_[i]->NodeCount != static_cast<long>(inspection.Nodes().size())) return "NodeCount";
      if (trees_[i]->Height != inspection.Height()) return "Height";
      nodes.insert(nodes.end(), inspection.Nodes().begin(), inspection.Nodes().end());
    }
    return FaultOfBlocks(stored, nodes, withChecksums);
  }

  long timesEmpty = 0;
  long tallest = 0;
  long failures = 0;

 private:
  Model& Chosen() { return models_[chosen_]; }
  vBtree& Tree() { return *trees_[chosen_]; }

  void Insert(long number) {
    const long address = dice_.Below(1000000);
    KSBKey key(NumberName(number).c_str(), address, kNumberClass), work;
    if (Chosen().emplace(number, NumberImage(number, address)).second) {
      EXPECT_TRUE(Tree().Insert(key, work, dice_.Percent(10)));
      return;
    }
    EXPECT_THROW(Tree().Insert(key, work, true), CDuplicateEntry);
    ++failures;
    ClearLog();
  }

  void Delete(long number) {
    KSBKey key(NumberName(number).c_str(), 0, 0), work;
    if (Chosen().erase(number) == 1) {
      EXPECT_TRUE(Tree().Delete(key, work, dice_.Percent(10)));
      return;
    }
    EXPECT_THROW(Tree().Delete(key, work, true), CObjectNotFound);
    ++failures;
    ClearLog();
  }

  /// A search of some kind.
  void Ask() {
    const Model& model = Chosen();
    const long number =
        dice_.Percent(50) ? seasons_[chosen_].OldNumber(model) : seasons_[chosen_].NewNumber(model);
    const auto at = model.find(number);
    KSBKey key(NumberName(number).c_str(), -1, -1), work;
    switch (dice_.Below(5)) {
      case 0:
        return Answer(Tree().Find(key, work, true), key, at);
      case 1:
        return Answer(Tree().FindFirst(key, true), key, model.begin());
      case 2:
        return Answer(Tree().FindLast(key, true), key,
                      model.empty() ? model.end() : std::prev(model.end()));
      case 3:
        return Answer(Tree().FindNext(key, work, true), key,
                      at == model.end() ? at : std::next(at));
      default:
        return Answer(Tree().FindPrev(key, work, true), key,
                      at == model.end() || at == model.begin() ? model.end() : std::prev(at));
    }
  }

  void Answer(bool found, const KSBKey& key, Model::const_iterator expected) {
    ASSERT_EQ(found, expected != Chosen().end());
    if (!found) {
      EXPECT_EQ(key.ObjectAddress, -1) << "the key has changed";
      return;
    }
    EXPECT_EQ(std::string(static_cast<const char*>(key.KeyData), 72), expected->second);
  }

  /// The file as it would be if its header were written now.
  TreeFile Stored() {
    std::fflush(file_.Stream());
    std::string bytes(static_cast<std::size_t>(file_.Length()), '\0');
    std::FILE* file = std::fopen(path_.c_str(), "rb");
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    std::fclose(file);
    std::memcpy(bytes.data(), &file_.FileHeader(), sizeof(vbFileHeader));
    return TreeFile(std::move(bytes));
  }

  /// Every block is a node that was met once, or free and on the free list once.
  static std::string FaultOfBlocks(const TreeFile& stored, std::vector<long>& nodes,
                                   bool withChecksums) {
    std::vector<long> free = stored.FreeObjects();
    std::vector<long> normalBlocks, freeBlocks;
    for (const StoredBlock& block : stored.Blocks()) {
      (block.status == 'N' ? normalBlocks : freeBlocks).push_back(block.object);
      if (block.status != 'N' && block.status != 'R') return "a block's status";
      if (withChecksums && block.status == 'N' && !stored.IsSealed(block.object))
        return "a checksum";
    }
    std::sort(nodes.begin(), nodes.end());
    std::sort(free.begin(), free.end());
    if (nodes != normalBlocks) return "the nodes are not the normal blocks";
    return free == freeBlocks ? "" : "the free list is not the free blocks";
  }

  TempFolder folder_;
  std::string path_ = folder_ / "trees.kx";
  vbDatabase file_;
  std::unique_ptr<vBtree> trees_[2];
  Model models_[2];
  long leastKeys_;
  Dice dice_;
  Season seasons_[2];
  long chosen_ = 0;
};

void Play(TreesAndModels& both, long operations) {
  for (long i = 1; i <= operations; ++i) {
    both.Step();
    if (i % kReopenEvery == 0) both.Reopen();
    if (i % kCheckEvery == 0) {
      ASSERT_EQ(both.Fault(i % kChecksumsEvery == 0), "") << "after operation " << i;
    }
    ASSERT_FALSE(testing::Test::HasFailure()) << "at operation " << i;
  }
  both.Drain();
  ASSERT_EQ(both.Fault(true), "");
  EXPECT_GE(both.timesEmpty, 4) << "the run is to go through empty trees";
  EXPECT_GE(both.failures, 100);
}

TEST(TreeModel, OrderOfTheIndexFiles) {
  TreesAndModels both(32, 15, 20011126);
  Play(both, 110000);
  EXPECT_GE(both.tallest, kMostKeys > 1000 ? 3 : 2);
}

TEST(TreeModel, SmallOddOrder) {
  // A split at the second position leaves one key where two are the least.
  TreesAndModels both(5, 1, 4);
  Play(both, 40000);
  EXPECT_GE(both.tallest, kMostKeys > 1000 ? 6 : 4);
}

TEST(TreeModel, SmallEvenOrder) {
  TreesAndModels both(6, 2, 6);
  Play(both, 30000);
  EXPECT_GE(both.tallest, kMostKeys > 1000 ? 6 : 4);
}

}  // namespace
