#include <algorithm>
#include <string_view>

#include "tests/fuzz/Fuzzing.h"
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
      index->CollapseRoot();
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t count = OperationCount(input);
  if (size <= count) return 0;
  const Budget budget(size);
  Try([&] { UseTree(std::string(input.substr(1 + count)), input.substr(1, count)); });
  budget.Check();
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t mostSize, unsigned seed) {
  std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t head = std::min(size, 1 + OperationCount(input));
  std::string operations = input.substr(0, head);
  std::string file = input.substr(head);
  Mutator mutator(seed);
  if (head > 0 && mutator.Below(6) == 0) {
    for (std::size_t i = mutator.Below(4) + 1; i > 0; --i) {
      operations[mutator.Below(head)] = static_cast<char>(mutator.Below(256));
    }
  } else if (mostSize > head) {
    mutator.Mutate(file, mostSize - head);
  }
  input = operations + file;
  input.resize(std::min(input.size(), mostSize));
  std::copy(input.begin(), input.end(), data);
  return input.size();
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
  std::vector<std::string> seeds;
  for (const auto& [order, text] : {std::pair{5, "(1 2) 3 (4 5) 6 (7 8)"},
                                    {5, "(1..4) 5 (6..9) 10 (11..14)"},
                                    {5, "((1 2) 3 (4 5)) 6 ((7 8) 9 (10 11))"},
                                    {2, "() 1 (2) 3 () 4 (5 6 7 8)"},
                                    {5, ""}}) {
    seeds.push_back(operations + TreeFile::Of(text, order).Bytes());
  }
  return seeds;
}
