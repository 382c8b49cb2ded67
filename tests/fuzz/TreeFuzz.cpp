#include <algorithm>
#include <string_view>

#include "tests/fuzz/Fuzzing.h"
#include "tests/fuzz/Mutator.h"
#include "tests/fuzz/Target.h"
#include "tests/support/IndexFile.h"
#include "tests/support/TreeFile.h"

// An index file of arbitrary bytes, mostly with right checksums, under the operations of a tree.
//
// An input is a byte for the number of operations, a byte for each, and the file. An operation is
// three bits of what to do and five of a number.

namespace {

constexpr std::size_t kMostOperations = 32;
constexpr int kMostSteps = 5000;  // of a walk through a file of some hundred keys

std::size_t OperationCount(std::string_view input) {
  if (input.empty()) return 0;
  const std::size_t wanted = static_cast<unsigned char>(input[0]) % kMostOperations;
  return std::min(wanted, input.size() - 1);
}

void OperateOnTree(IndexFile& index, long number) {
  switch (number % 4) {
    case 0:
      index->CollapseRoot();
      break;
    case 1:
      index->TestTree(true);
      break;
    case 2:
      index->ReInit(true);
      break;
    default:
      index->ReInit(false);
  }
}

void Operate(IndexFile& index, unsigned operation) {
  const long number = operation & 31;
  switch (operation >> 5) {
    case 0:
      index.Holds(number);
      break;
    case 1:
      index.Next(number);
      break;
    case 2:
      index.Previous(number);
      break;
    case 3:
    case 4:
      index.Insert(number);
      break;
    case 5:
      index.Delete(number);
      break;
    case 6:
      index.LazyDelete(number);
      break;
    default:
      OperateOnTree(index, number);
  }
}

template <class First, class Next>
void Walk(IndexFile& index, First first, Next next) {
  KSBKey key;
  KSBKey work;
  int steps = 0;
  for (bool more = ((*index).*first)(key, true); more; more = ((*index).*next)(key, work, true)) {
    Require(++steps <= kMostSteps, "an endless walk");
  }
}

void UseTree(const std::string& file, std::string_view operations) {
  IndexFile index{TreeFile(file)};
  Try([&] { Walk(index, &vBtree::FindFirst, &vBtree::FindNext); });
  Try([&] { Walk(index, &vBtree::FindLast, &vBtree::FindPrev); });
  Require(index.Stored().Bytes() == file, "a search has changed the file");
  for (const char operation : operations) {
    Try([&] { Operate(index, static_cast<unsigned char>(operation)); });
  }
  Try([&] { Walk(index, &vBtree::FindFirst, &vBtree::FindNext); });
  Try([&] { index->Flush(); });
}

}  // namespace

namespace {

struct Input {
  std::string operations;  ///< with their number
  std::string file;
};

Input Split(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t head = std::min(size, 1 + OperationCount(input));
  return {input.substr(0, head), input.substr(head)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Input input = Split(data, size);
  const Budget budget(size);
  Try([&] { UseTree(input.file, std::string_view(input.operations).substr(1)); });
  budget.Check();
  return 0;
}

namespace {

void MutateOperations(std::string& operations, Mutator& mutator) {
  if (mutator.Below(4) == 0) {
    operations.resize(1 + mutator.Below(kMostOperations), static_cast<char>(3 << 5 | 17));
    operations[0] = static_cast<char>(operations.size() - 1);
  }
  for (std::size_t i = mutator.Below(4); i > 0 && operations.size() > 1; --i) {
    operations[1 + mutator.Below(operations.size() - 1)] = static_cast<char>(mutator.Below(256));
  }
}

std::size_t Mutate(Input& input, const Input& other, Mutator& mutator, std::uint8_t* place,
                   std::size_t mostSize) {
  if (input.operations.empty() || mutator.Below(4) == 0) {
    MutateOperations(input.operations, mutator);
  } else if (mostSize > input.operations.size()) {
    mutator.Mutate(input.file, mostSize - input.operations.size(), other.file);
  }
  return HandOver(input.operations + input.file, place, mostSize);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t mostSize, unsigned seed) {
  Input input = Split(data, size);
  Mutator mutator(seed);
  const Input same = input;
  return Mutate(input, same, mutator, data, mostSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                                 const std::uint8_t* data2, std::size_t size2,
                                                 std::uint8_t* out, std::size_t mostSize,
                                                 unsigned seed) {
  Input input = Split(data1, size1);
  const Input other = Split(data2, size2);
  Mutator mutator(seed);
  if (mutator.Below(4) == 0) input.operations = other.operations;
  return Mutate(input, other, mutator, out, mostSize);
}

std::vector<std::string> Seeds() {
  // Each of the operations, and what makes nodes be split, merged and borrow.
  const std::string operations = {8,
                                  0 << 5 | 3,
                                  1 << 5 | 3,
                                  2 << 5 | 9,
                                  3 << 5 | 30,
                                  static_cast<char>(4 << 5 | 31),
                                  static_cast<char>(5 << 5 | 6),
                                  static_cast<char>(6 << 5 | 7),
                                  static_cast<char>(7 << 5)};
  // Down to nothing, up again.
  std::string many(1, kMostOperations - 1);
  for (unsigned i = 1; i < kMostOperations; ++i) {
    many += static_cast<char>(i < 16 ? 5 << 5 | i : 4 << 5 | i);
  }
  std::vector<std::string> seeds;
  for (const auto& [order, text] :
       {std::pair{5, "(1 2) 3 (4 5) 6 (7 8)"},
        {5, "(1..4) 5 (6..9) 10 (11..14)"},
        {5, "((1 2) 3 (4 5)) 6 ((7 8) 9 (10 11))"},
        {2, "() 1 (2) 3 () 4 (5 6 7 8)"},
        {5, "((1 2) 3 (4 5) 6 (7 8)) 9 ((10 11) 12 (13 14) 15 (16..19))"},
        {9, "(1..4) 5 (6..9) 10 (11..18) 19 (20..27)"},
        {5, ""}}) {
    const std::string file = TreeFile::Of(text, order).Bytes();
    seeds.push_back(operations + file);
    seeds.push_back(many + file);
  }
  return seeds;
}
