#include <gtest/gtest.h>

#include "tests/fault/Upkeep.h"

// The upkeep of a study with every single byte of both files damaged, every length, every bit of
// the data file's headers: minutes. Each sweep goes in parts, which may run side by side.

namespace {

constexpr std::size_t kParts = 8;

class MaintenanceSweep : public testing::TestWithParam<std::size_t> {
 protected:
  void Run(const std::vector<Damage>& damages, const std::string& title) const {
    UpkeepAll(study, Part(damages, GetParam(), kParts), title);
  }

  const EveryClassStudy study;
};

}  // namespace

TEST_P(MaintenanceSweep, DataFileInverted) {
  Run(Inversions(study.Files(), Which::Data), "each byte inverted");
}

TEST_P(MaintenanceSweep, BitsOfTheDataFilesHeaders) {
  Run(HeaderBits(study.Files(), Which::Data), "each bit of the headers turned over");
}

TEST_P(MaintenanceSweep, DataFileCut) {
  Run(Cuts(study.Files(), Which::Data), "cut at each length");
}

TEST_P(MaintenanceSweep, IndexFileInverted) {
  Run(Inversions(study.Files(), Which::Index), "each byte inverted");
}

TEST_P(MaintenanceSweep, IndexFileCut) {
  Run(Cuts(study.Files(), Which::Index), "cut at each length");
}

INSTANTIATE_TEST_SUITE_P(Part, MaintenanceSweep, testing::Range<std::size_t>(0, kParts));
