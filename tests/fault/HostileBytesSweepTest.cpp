#include <gtest/gtest.h>

#include "tests/fault/Damage.h"

// Every single byte of both files, every length, every bit of the headers: minutes. Each sweep goes
// in parts, which may run side by side.

namespace {

constexpr std::size_t kParts = 8;

class HostileBytesSweep : public testing::TestWithParam<std::size_t> {
 protected:
  void Exercise(const std::vector<Damage>& damages, const std::string& title) const {
    ExerciseAll(study, Part(damages, GetParam(), kParts), title);
  }

  const HostileStudy study;
};

}  // namespace

TEST_P(HostileBytesSweep, DataFileInverted) {
  Exercise(Inversions(study.Files(), Which::Data), "each byte inverted");
}

TEST_P(HostileBytesSweep, DataFileCut) {
  Exercise(Cuts(study.Files(), Which::Data), "cut at each length");
}

TEST_P(HostileBytesSweep, BitsOfTheDataFilesHeaders) {
  Exercise(HeaderBits(study.Files(), Which::Data), "each bit of the headers turned over");
}

TEST_P(HostileBytesSweep, IndexFileInverted) {
  Exercise(Inversions(study.Files(), Which::Index), "each byte inverted");
}

TEST_P(HostileBytesSweep, IndexFileCut) {
  Exercise(Cuts(study.Files(), Which::Index), "cut at each length");
}

TEST_P(HostileBytesSweep, BitsOfTheIndexFilesHeaders) {
  Exercise(HeaderBits(study.Files(), Which::Index), "each bit of the headers turned over");
}

INSTANTIATE_TEST_SUITE_P(Part, HostileBytesSweep, testing::Range<std::size_t>(0, kParts));
