#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "tests/task/ModifiedTasks.h"

namespace {

class TaskModifiedFailures : public ModifiedTasks {
 protected:
  /// A failure after which task 2 has these records.
  template <class Failure>
  void ExpectFailure(const char* text, const Names& left) {
    const StudyFiles before = Files();
    try {
      Modify({true, false, false, false, false});
      ADD_FAILURE();
    } catch (const Failure& error) {
      EXPECT_STREQ(error.what(), text);
    }
    EXPECT_EQ(RecordsOf(2), left);
    ExpectUnchangedBut(before, 2);
    ExpectSoundFiles();
  }
  void ExpectMisfit() { EXPECT_THROW(Modify({true, false, true, false, false}), CInvalidArgument); }
};

// ---- Arrays of the caller ----

TEST_F(TaskModifiedFailures, WithTooShortArraysIsRefused) {
  const StudyFiles before = Files();
  const std::valarray<double> all = values;
  const auto expectRefused = [&](Flags fix) {
    try {
      Modify(fix);
      ADD_FAILURE();
    } catch (const CInvalidArgument& error) {
      EXPECT_STREQ(error.what(), "Function/method object is invalid");
    }
    EXPECT_EQ(Files(), before);
  };
  expectRefused({true, false, false, false});
  expectRefused({});
  const Flags none{false, false, false, false, false};
  for (auto* array : {&values, &lower, &upper}) {
    array->resize(4);
    expectRefused(none);
    array->resize(0);
    expectRefused(none);
    *array = all;
  }
  EXPECT_EQ(Modify(none), 2);
}

TEST_F(TaskModifiedFailures, WithLongerArraysTakesTheirFirstElements) {
  StorePoint(0);
  values = {100.0, 101.0, 102.0, 103.0, 104.0, 105.0, 106.0};
  EXPECT_EQ(Modify({false, false, false, false, true, true, true}), 2);
  ExpectStored(Expected(4, 2));
  ExpectPoint(0, {0, 1, 2, 3}, {8, 104});
}

TEST_F(TaskModifiedFailures, WithArraysShorterThanTheTableIsRefused) {
  auto old = Stored<CTask>(1);
  old.m_uNumIndDV = 4;
  old.PutObject();
  values.resize(4);
  EXPECT_THROW(Modify({true, true, true, true}), CInvalidArgument);
}

// ---- Tables that don't fit each other ----

TEST_F(TaskModifiedFailures, OfPositionsOutsideTheTablesIsRefused) {
  const auto good = Stored<CDVar>(1);
  for (const int position : {-1, 5, 2147483647}) {
    for (const auto field : {&CDVar::m_mnLinkSubj, &CDVar::m_mnSynSubj}) {
      auto vars = Stored<CDVar>(1);
      (vars.*field)[0][0] = position;
      vars.PutObject();
      ExpectMisfit();
      vars.Copy(good);
      vars.PutObject();
    }
    auto vars = Stored<CDVar>(1);
    vars.m_vnSeq[0] = position;
    vars.PutObject();
    ExpectMisfit();
    vars.Copy(good);
    vars.PutObject();
  }
}

TEST_F(TaskModifiedFailures, OfLengthsBehindTheTableIsRefused) {
  for (const int length : {4, 2147483647}) {
    auto vars = Stored<CDVar>(1);
    vars.m_mnSynLen[0][0] = length;
    vars.PutObject();
    ExpectMisfit();
  }
}

TEST_F(TaskModifiedFailures, KeepsLengthsThatTellOfNoElement) {
  auto vars = Stored<CDVar>(1);
  vars.m_mnSynLen = {{0, 1}, {-5, 1}};
  vars.PutObject();
  ASSERT_EQ(Modify({true, false, true, false, false}), 2);
  const auto moved = Stored<CDVar>(2);
  EXPECT_EQ(AsRows(moved.m_mnSynSubj), (Rows{{2, 0}, {2, 0}}));
  EXPECT_EQ(AsRows(moved.m_mnSynType), (Rows{{23, 21}, {23, 21}}));
  EXPECT_EQ(AsRows(moved.m_mnSynLen), (Rows{{0, 1}, {-5, 1}}));
}

/// An argument that was not resolved when the task was made has no kind.
TEST_F(TaskModifiedFailures, KeepsArgumentsWithoutAKind) {
  auto vars = Stored<CDVar>(1);
  vars.m_mnLinkSubj = {{0, 3}};
  vars.m_mnLinkType = {{0, 20}};
  vars.m_mnSynSubj = {{0, 2}, {0, 2}};
  vars.m_mnSynType = {{0, 20}, {0, 20}};
  vars.PutObject();
  ASSERT_EQ(Modify({true, false, false, false, false}), 2);
  const auto moved = Stored<CDVar>(2);
  EXPECT_EQ(AsRows(moved.m_mnLinkSubj), (Rows{{0, 2}}));
  EXPECT_EQ(AsRows(moved.m_mnLinkType), (Rows{{0, 20}}));
  EXPECT_EQ(AsRows(moved.m_mnSynSubj), (Rows{{0, 1}, {0, 1}}));
  EXPECT_EQ(AsRows(moved.m_mnSynType), (Rows{{0, 20}, {0, 20}}));
}

TEST_F(TaskModifiedFailures, OfColumnsOfUnequalLengthIsRefused) {
  const auto good = Stored<CDVar>(1);
  const std::vector<std::function<void(CDVar&)>> faults{
      [](CDVar& vars) { vars.m_vnSeq.pop_back(); },
      [](CDVar& vars) { vars.m_mnLinkType.clear(); },
      [](CDVar& vars) { vars.m_mnLinkType[0].pop_back(); },
      [](CDVar& vars) { vars.m_mnSynType.pop_back(); },
      [](CDVar& vars) { vars.m_mnSynType[1].pop_back(); },
      [](CDVar& vars) { vars.m_mnSynLen.pop_back(); },
      [](CDVar& vars) { vars.m_mnSynLen[1].pop_back(); },
      [](CDVar& vars) { vars.m_vstrIndName.pop_back(); },
      [](CDVar& vars) { vars.m_vstrConstName.pop_back(); },
      [](CDVar& vars) { vars.m_vfIndLowerIn.resize(4); },
      [](CDVar& vars) { vars.m_vfIndLower.resize(4); },
      [](CDVar& vars) { vars.m_vfIndUpperIn.resize(4); },
      [](CDVar& vars) { vars.m_vfIndUpper.resize(6); },
      [](CDVar& vars) { vars.m_vfIndScale.resize(0); },
      [](CDVar& vars) { vars.m_vnConstSet.resize(0); },
      [](CDVar& vars) { vars.m_vfConstLower.resize(2); },
      [](CDVar& vars) { vars.m_vfConstUpper.resize(0); },
      [](CDVar& vars) { vars.m_vnDiscreteRef.push_back(0); },
  };
  for (std::size_t i = 0; i < faults.size(); ++i) {
    SCOPED_TRACE(i);
    CDVar vars(Pod());
    vars.Copy(good);
    faults[i](vars);
    vars.PutObject();
    ExpectMisfit();
  }
}

TEST_F(TaskModifiedFailures, OfResponsesConstraintsAndTermsThatMisfitIsRefused) {
  const auto resps = Stored<CDResp>(1);
  auto wrongResps = Stored<CDResp>(1);
  wrongResps.m_mnLinkSubj[0][0] = 5;
  wrongResps.PutObject();
  ExpectMisfit();
  wrongResps.Copy(resps);
  wrongResps.PutObject();

  const auto cons = Stored<CDCons>(1);
  auto wrongCons = Stored<CDCons>(1);
  wrongCons.m_vnSubjType.pop_back();
  wrongCons.PutObject();
  ExpectMisfit();
  wrongCons.Copy(cons);
  wrongCons.m_vnSubjType[0] = 20;
  wrongCons.m_vnSubj[0] = 5;
  wrongCons.PutObject();
  ExpectMisfit();
  wrongCons.m_vnSubj[0] = 4;
  wrongCons.m_vfBound.clear();
  wrongCons.PutObject();
  ExpectMisfit();
  wrongCons.Copy(cons);
  wrongCons.PutObject();

  auto terms = Stored<CDObj>(1);
  terms.m_vnSubj[0] = -1;
  terms.PutObject();
  ExpectMisfit();
}

TEST_F(TaskModifiedFailures, OfAPointOfOtherSizesIsRefused) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{4}, std::size_t{6}}) {
    CDPoint point = PointOf(1, 0, 0);
    point.m_IDVar.resize(size);
    point.PutObject();
    ExpectMisfit();
  }
  CDPoint point = PointOf(1, 0, 0);
  point.m_CDVar.resize(0);
  point.PutObject();
  ExpectMisfit();
}

// ---- Missing records ----

TEST_F(TaskModifiedFailures, NeedsTheTask) {
  const StudyFiles before = Files();
  for (const int id : {0, -1, 3}) {
    EXPECT_THROW(Modify({true, false, false, false, false}, id), CGetObject);
  }
  EXPECT_EQ(Files(), before);
}

TEST_F(TaskModifiedFailures, WithoutResponsesCouldNotBeCreated) {
  RemoveOf<CDResp>(Pod(), 1);
  ExpectFailure<CMakeTask>("Task could not be created - data error found", {"CDVar", "CMessage"});
}

class TaskModifiedWithout : public TaskModifiedFailures,
                            public testing::WithParamInterface<MissingRecord> {};

TEST_P(TaskModifiedWithout, FailsAndLeavesWhatItWrote) {
  GetParam().remove(Pod(), 1);
  ExpectFailure<CGetObject>("Could not get object", GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(
    Record, TaskModifiedWithout,
    testing::Values(
        MissingRecord{"DVar", RemoveOf<CDVar>, {"CMessage"}},
        MissingRecord{"DCons", RemoveOf<CDCons>, {"CDVar", "CDResp", "CMessage"}},
        MissingRecord{"DObj", RemoveOf<CDObj>, {"CDVar", "CDResp", "CDCons", "CMessage"}},
        MissingRecord{
            "DLink", RemoveOf<CDLink>, {"CDVar", "CDResp", "CDCons", "CDObj", "CMessage"}},
        MissingRecord{
            "DEqn", RemoveOf<CDEqn>, {"CDVar", "CDResp", "CDCons", "CDObj", "CDLink", "CMessage"}},
        MissingRecord{"DSet",
                      RemoveOf<CDSet>,
                      {"CDVar", "CDResp", "CDCons", "CDObj", "CDLink", "CDEqn", "CMessage"}}),
    [](const auto& test) { return test.param.name; });

TEST_F(TaskModifiedFailures, NeedsTheFirstPoint) {
  CDPoint point = PointOf(1, 0, 0);
  ASSERT_TRUE(point.RemoveObject());
  ExpectFailure<CGetObject>(
      "Could not get object",
      {"CResult", "CDVar", "CDResp", "CDCons", "CDObj", "CDLink", "CDEqn", "CDSet", "CMessage"});
}

TEST_F(TaskModifiedFailures, OfASurfaceTaskNeedsAllStartingPoints) {
  StorePoints(3);
  SetStoredType(1);
  CDPoint point = PointOf(1, 2, 2);
  ASSERT_TRUE(point.RemoveObject());
  ExpectFailure<CGetObject>("Could not get object",
                            {"CResult", "CDVar", "CDPoint 0", "CDPoint 1", "CDResp", "CDCons",
                             "CDObj", "CDLink", "CDEqn", "CDSet", "CMessage"});
}

TEST_F(TaskModifiedFailures, NeedsADatabase) {
  CTask task;
  task.m_nID = 1;
  Flags fix(true, 5);
  try {
    task.CreateModifiedGPostTask("what if", fix, values, lower, upper);
    ADD_FAILURE();
  } catch (const CNoDatabaseOpen& error) {
    EXPECT_STREQ(error.what(), "No database open");
  }
}

TEST_F(TaskModifiedFailures, IsMadeUnderTheLock) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Modify({true, false, false, false, false}), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(Modify({true, false, false, false, false}), 2);
}

}  // namespace
