#include "tests/fuzz/Fuzzing.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <vector>

#include "store/assertion.h"
#include "tests/fault/LargestRequest.h"
#include "tests/support/RawFile.h"

// Only the fuzzer has it; a replay doesn't mutate.
extern "C" [[gnu::weak]] std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size,
                                                      std::size_t mostSize);

namespace {

constexpr std::size_t kFileHeader = 28;
constexpr std::size_t kBlockHeader = 28;
constexpr std::size_t kShortestBlock = kBlockHeader + 4;
constexpr std::size_t kMostExtraMemory = 1 << 20;

/// The number that the next file opened gets.
int LowestHandle() {
  const int handle = open("/dev/null", O_RDONLY);
  close(handle);
  return handle;
}

std::size_t UnsignedAt(const std::string& file, std::size_t offset) {
  return static_cast<std::uint32_t>(WordAt(file, offset));
}

/// The blocks that follow each other from the heap's start on, each within the file.
std::vector<std::size_t> BlocksOf(const std::string& file) {
  std::vector<std::size_t> blocks;
  if (file.size() < kFileHeader) return blocks;
  std::size_t at = UnsignedAt(file, 8);
  while (at < file.size() && file.size() - at >= kShortestBlock) {
    const std::size_t length = UnsignedAt(file, at + 4);
    if (length < kShortestBlock || length > file.size() - at) break;
    blocks.push_back(at);
    at += length;
  }
  return blocks;
}

}  // namespace

// In the place of the library's own.
void kestdb::FailAssertion(const char*, const char*, int) {
  throw StoppedByAssertion();
}

Budget::Budget(std::size_t bytes) : bytes_(bytes), handle_(LowestHandle()) {
  ForgetRequests();
}

void Budget::Check() const {
  Require(LowestHandle() == handle_, "a stream is left open");
  Require(LargestRequest() <= 2 * bytes_ + kMostExtraMemory,
          "a request for " + std::to_string(LargestRequest()) + " bytes of memory");
}

void Seal(std::string& file) {
  for (const std::size_t at : BlocksOf(file)) {
    const std::size_t size = UnsignedAt(file, at + 4) - kShortestBlock;
    const std::string object = file.substr(at + kBlockHeader, size);
    file.replace(at + kBlockHeader + size, 4, ChecksumOf(object));
  }
}

void Mutator::Mutate(std::string& file, std::size_t mostBytes) {
  const std::vector<std::size_t> blocks = BlocksOf(file);
  switch (blocks.empty() ? 0 : Below(8)) {
    case 0: {  // anywhere, of any length
      const std::size_t size = file.size();
      file.resize(std::max(size, mostBytes));
      file.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(file.data()), size, mostBytes));
      break;
    }
    case 1:  // the headers before the heap
      MutatePart(file, 0, std::min(file.size(), blocks.front()));
      break;
    case 2: {  // a block's header
      MutatePart(file, blocks[Below(blocks.size())], kBlockHeader);
      break;
    }
    case 3:
    case 4:
      PutWord(file);
      break;
    default: {  // an object
      const std::size_t block = blocks[Below(blocks.size())];
      const std::size_t size = UnsignedAt(file, block + 4) - kShortestBlock;
      MutatePart(file, block + kBlockHeader, size);
    }
  }
  if (Below(8) != 0) Seal(file);
}

/// What became shorter keeps its old end.
void Mutator::MutatePart(std::string& file, std::size_t offset, std::size_t size) {
  if (size == 0) return;
  LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(file.data()) + offset, size, size);
}

/// Puts a word that means something in some file to a place where one may be.
void Mutator::PutWord(std::string& file) {
  const std::vector<std::size_t> blocks = BlocksOf(file);
  const std::size_t block = blocks[Below(blocks.size())];
  const std::size_t other = blocks[Below(blocks.size())];
  const std::size_t words[] = {
      0,          1,           2,          31,         32,         65535,        other,
      other + 28, file.size(), 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, blocks.size()};
  const std::size_t heap = blocks.front();
  const std::size_t places[] = {4 * Below(heap / 4 + 1), block + 4 * Below(8),
                                block + 28 + 4 * Below(4),
                                block + Below(UnsignedAt(file, block + 4) - 3)};
  const std::size_t place = places[Below(std::size(places))];
  const std::size_t word = words[Below(std::size(words))];
  for (std::size_t i = 0; i < 4 && place + i < file.size(); ++i) {
    file[place + i] = static_cast<char>(word >> 8 * i);
  }
}
