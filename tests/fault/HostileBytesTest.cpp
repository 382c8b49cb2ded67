#include <gtest/gtest.h>

#include "tests/fault/Damage.h"

// A sample of the damages that HostileBytesSweepTest.cpp goes through in full.

namespace {

constexpr std::size_t kSample = 250;
constexpr int kUsualOrder = 32;

}  // namespace

TEST(HostileBytes, NoDamageEndsClean) {
  const HostileStudy study;
  const HostileStudy usual(kUsualOrder);
  const auto results = RunCases(2, [&](std::size_t i) {
    const HostileStudy& one = i == 0 ? study : usual;
    return one.Exercise(one.Files());
  });
  for (const CaseResult& result : results) {
    EXPECT_EQ(result.ending, Ending::Clean) << result.note;
    EXPECT_STREQ(result.spread, "");
  }
}

TEST(HostileBytes, InvertedBytesOfTheDataFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Inversions(study.Files(), Which::Data), kSample), "bytes inverted");
}

TEST(HostileBytes, InvertedBytesOfTheIndexFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Inversions(study.Files(), Which::Index), kSample), "bytes inverted");
}

TEST(HostileBytes, CutDataFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Cuts(study.Files(), Which::Data), kSample), "cut");
}

TEST(HostileBytes, CutIndexFile) {
  const HostileStudy study;
  ExerciseAll(study, Sample(Cuts(study.Files(), Which::Index), kSample), "cut");
}

TEST(HostileBytes, SingleBitsOfTheDataFilesHeaders) {
  const HostileStudy study;
  ExerciseAll(study, Sample(HeaderBits(study.Files(), Which::Data), kSample),
              "header bits turned over");
}

TEST(HostileBytes, SingleBitsOfTheIndexFilesHeaders) {
  const HostileStudy study;
  ExerciseAll(study, Sample(HeaderBits(study.Files(), Which::Index), kSample),
              "header bits turned over");
}

TEST(HostileBytes, IndexFileOfTheUsualOrder) {
  const HostileStudy study(kUsualOrder);
  ExerciseAll(study, Sample(Inversions(study.Files(), Which::Index), kSample), "bytes inverted");
  ExerciseAll(study, Sample(Cuts(study.Files(), Which::Index), kSample), "cut");
}
