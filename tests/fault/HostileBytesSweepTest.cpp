#include <gtest/gtest.h>

#include "tests/fault/Damage.h"

// Every single byte of both files, every length, every bit of the headers: minutes. The index file
// is the larger one; it is gone through in parts, which may run side by side.

namespace {

constexpr std::size_t kParts = 8;

class HostileIndexSweep : public testing::TestWithParam<std::size_t> {};

}  // namespace

TEST(HostileDataSweep, EachByteInverted) {
  const HostileStudy study;
  ExerciseAll(study, Inversions(study, Which::Data), "each byte inverted");
}

TEST(HostileDataSweep, CutAtEachLength) {
  const HostileStudy study;
  ExerciseAll(study, Cuts(study, Which::Data), "cut at each length");
}

TEST(HostileDataSweep, EachBitOfTheHeaders) {
  const HostileStudy study;
  ExerciseAll(study, HeaderBits(study, Which::Data), "each bit of the headers turned over");
}

TEST_P(HostileIndexSweep, EachByteInverted) {
  const HostileStudy study;
  ExerciseAll(study, Part(Inversions(study, Which::Index), GetParam(), kParts),
              "each byte inverted");
}

TEST_P(HostileIndexSweep, CutAtEachLength) {
  const HostileStudy study;
  ExerciseAll(study, Part(Cuts(study, Which::Index), GetParam(), kParts), "cut at each length");
}

TEST_P(HostileIndexSweep, EachBitOfTheHeaders) {
  const HostileStudy study;
  ExerciseAll(study, Part(HeaderBits(study, Which::Index), GetParam(), kParts),
              "each bit of the headers turned over");
}

INSTANTIATE_TEST_SUITE_P(Part, HostileIndexSweep, testing::Range<std::size_t>(0, kParts));
