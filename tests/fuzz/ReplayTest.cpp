#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/fuzz/Target.h"

// What a target starts from, and what was found by it or reaches far, as tests.

namespace {

void Replay(const std::string& input) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(input.data());
  EXPECT_NO_THROW(LLVMFuzzerTestOneInput(data, input.size()));
}

TEST(KESTDB_FUZZ_SUITE, TakesSoundInputs) {
  const std::vector<std::string> seeds = Seeds();
  ASSERT_FALSE(seeds.empty());
  for (const std::string& seed : seeds) Replay(seed);
}

TEST(KESTDB_FUZZ_SUITE, TakesInputsThatEndEarly) {
  Replay("");
  for (const std::string& seed : Seeds()) Replay(seed.substr(0, seed.size() / 2));
}

TEST(KESTDB_FUZZ_SUITE, TakesTheCorpus) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KESTDB_FUZZ_CORPUS)) {
    SCOPED_TRACE(entry.path());
    std::ifstream file(entry.path(), std::ios::binary);
    Replay({std::istreambuf_iterator<char>(file), {}});
    ++count;
  }
  EXPECT_GT(count, 0U);
}

}  // namespace
