#include <gtest/gtest.h>

#include "tests/fault/Damage.h"
#include "tests/fault/FileMap.h"

// A sample of the damages that HostileBytesSweepTest.cpp goes through in full.

namespace {

constexpr std::size_t kSample = 300;

}  // namespace

TEST(HostileBytes, NoDamageEndsClean) {
  const HostileStudy study;
  const auto results =
      RunCases(1, [&](std::size_t) { return study.Exercise(study.Files()); });
  EXPECT_EQ(results[0].ending, Ending::Clean) << results[0].note;
  EXPECT_STREQ(results[0].spread, "");
}

TEST(HostileBytes, InvertedBytesOfTheDataFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Inversions(study, Which::Data), kSample), "bytes inverted");
}

TEST(HostileBytes, InvertedBytesOfTheIndexFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Inversions(study, Which::Index), kSample), "bytes inverted");
}

TEST(HostileBytes, CutDataFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Cuts(study, Which::Data), kSample), "cut");
}

TEST(HostileBytes, CutIndexFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Cuts(study, Which::Index), kSample), "cut");
}

TEST(HostileBytes, SingleBitsOfTheDataFilesHeaders) {
  const HostileStudy study;
  ExerciseAll(study, Sample(HeaderBits(study, Which::Data), kSample), "header bits turned over");
}

TEST(HostileBytes, SingleBitsOfTheIndexFilesHeaders) {
  const HostileStudy study;
  ExerciseAll(study, Sample(HeaderBits(study, Which::Index), kSample), "header bits turned over");
}
