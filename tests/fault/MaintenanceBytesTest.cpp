#include <gtest/gtest.h>

#include <set>

#include "tests/fault/Forgery.h"
#include "tests/fault/Upkeep.h"

// A sample of the damages that MaintenanceSweepTest.cpp goes through in full.

namespace {

constexpr std::size_t kSample = 250;

// In a block.
constexpr std::size_t kStatus = 8;
constexpr std::size_t kFirstField = 40;

/// Says that no byte of the data file is known to be damaged.
constexpr Damage kNone = {Which::Index, 0};

}  // namespace

TEST(MaintenanceBytes, TheStudyHasObjectsOfEveryClass) {
  const EveryClassStudy study;
  std::set<long> classes;
  for (const StoredObject& object : study.Objects()) {
    classes.insert(object.make(nullptr)->GetVBClassID());
  }
  EXPECT_EQ(classes.size(), 22U);
  EXPECT_EQ(study.Freed().size(), 5U);
}

TEST(MaintenanceBytes, NoDamageEndsClean) {
  const EveryClassStudy study;
  const CaseResult result = UpkeepOf(study, kNone, study.Files());
  EXPECT_EQ(result.ending, Ending::Clean) << result.note;
}

TEST(MaintenanceBytes, AnotherValueUnderARightChecksumIsNoticedByTheTestAlone) {
  const EveryClassStudy study;
  Forgery forged(study.Files());
  const StoredObject& object = study.Objects().front();
  forged.SetByte(Which::Data, object.block + kFirstField, 9).Seal(Which::Data, object.block);
  const CaseResult result = UpkeepOf(study, kNone, forged.Files());
  EXPECT_EQ(result.ending, Ending::Silent);
  EXPECT_STREQ(result.note, ("lost: " + object.name).c_str());
}

TEST(MaintenanceBytes, AnObjectThatIsGoneIsNoticedByTheTestAlone) {
  const EveryClassStudy study;
  Forgery forged(study.Files());
  const StoredObject& object = study.Objects().back();
  forged.SetByte(Which::Data, object.block + kStatus, 'D');
  const CaseResult result = UpkeepOf(study, kNone, forged.Files());
  EXPECT_EQ(result.ending, Ending::Silent);
  EXPECT_STREQ(result.note, ("lost: " + object.name).c_str());
}

TEST(MaintenanceBytes, InvertedBytesOfTheDataFile) {
  const EveryClassStudy study;
  UpkeepAll(study, Sample(Inversions(study.Files(), Which::Data), kSample), "bytes inverted");
}

TEST(MaintenanceBytes, SingleBitsOfTheDataFilesHeaders) {
  const EveryClassStudy study;
  UpkeepAll(study, Sample(HeaderBits(study.Files(), Which::Data), kSample),
            "header bits turned over");
}

TEST(MaintenanceBytes, CutDataFile) {
  const EveryClassStudy study;
  UpkeepAll(study, Sample(Cuts(study.Files(), Which::Data), kSample), "cut");
}

TEST(MaintenanceBytes, InvertedBytesOfTheIndexFile) {
  const EveryClassStudy study;
  UpkeepAll(study, Sample(Inversions(study.Files(), Which::Index), kSample), "bytes inverted");
}

TEST(MaintenanceBytes, CutIndexFile) {
  const EveryClassStudy study;
  UpkeepAll(study, Sample(Cuts(study.Files(), Which::Index), kSample), "cut");
}
