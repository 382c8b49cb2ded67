#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "results/Iter.h"
#include "store/KestErr.h"
#include "tests/task/DerivedTasks.h"

namespace {

constexpr bool kLink = true;
constexpr bool kSingleStart = true;

class TaskRestart : public DerivedTasks {
 protected:
  int Restart(int point, bool link = false, bool singleStart = false) {
    return CTask(Pod()).RestartTask(1, point, "again", link, singleStart);
  }

  /// What task 1 has to become as task 2.
  CTask Expected() {
    auto task = Stored<CTask>(1);
    task.m_nID = 2;
    task.m_strTitle = "again";
    task.m_strCreated = "now";
    return task;
  }

  void StoreBest(int iter, int subIter) {
    CResult result(Pod());
    result.m_nID = 1;
    result.m_nBestIter = iter;
    result.m_nBestSubIter = subIter;
    result.PutObject();
  }
  void StoreIter(int iter, int subIter, int thisPoint, int bestPoint) {
    CIter stored(Pod());
    stored.m_nTaskID = 1;
    stored.m_nIter = iter;
    stored.m_nSubIter = subIter;
    stored.m_nThisPoint = thisPoint;
    stored.m_nBestPoint = bestPoint;
    stored.PutObject();
  }

  /// Task 2 has these points of task 1, numbered from 0, and no others.
  void ExpectPoints(const std::vector<int>& from) {
    for (std::size_t i = 0; i < from.size(); ++i) {
      SCOPED_TRACE(i);
      ExpectStored(PointOf(2, static_cast<int>(i), from[i]));
    }
    EXPECT_EQ(CountPoints(2), static_cast<int>(from.size()));
  }

  template <class Failure>
  void ExpectRefused(const std::function<void()>& restart, const char* text) {
    const StudyFiles before = Files();
    try {
      restart();
      ADD_FAILURE();
    } catch (const Failure& error) {
      EXPECT_STREQ(error.what(), text);
    }
    EXPECT_EQ(Files(), before);
  }
  void ExpectNotGot(int point) {
    ExpectRefused<CGetObject>([&] { Restart(point); }, "Could not get object");
  }
};

// ---- The new task ----

TEST_F(TaskRestart, CopiesTheTaskAndItsTables) {
  StorePoint(0);
  for (const int type : {0, 1, 3}) {
    SCOPED_TRACE(type);
    SetStoredType(type);
    CTask expected = Expected();
    if (type == 1) expected.m_vnAnalyzeFlags = {0};
    ASSERT_EQ(Restart(0), 2);
    EXPECT_EQ(ClassesOfTask(Files(), 2), ClassesOfTask(Files(), 1));
    ExpectStored(expected);
    ExpectNoMessages(2);
    ExpectTablesCopied(2);
    ExpectNotRun(2, 1);
    ExpectPoints({0});
    CTask::RemoveSpecifiedTask(Pod(), 2);
  }
  ExpectSoundFiles();
}

TEST_F(TaskRestart, OfAnAnalysisIsLinked) {
  StorePoint(0);
  SetStoredType(4);
  CTask expected = Expected();
  expected.m_nRestartOf = 1;
  ASSERT_EQ(Restart(0, kLink), 2);
  ExpectStored(expected);
  ExpectNoMessages(2);
  ExpectTablesCopied(2);
  ExpectNotRun(2, 1);
  ExpectPoints({0});
}

TEST_F(TaskRestart, LeavesTheOldTaskAsItWas) {
  const StudyFiles before = Files();
  Restart(0);
  ExpectUnchangedBut(before, 2);
}

TEST_F(TaskRestart, LeavesTheObjectThatItIsCalledOn) {
  CTask caller(Pod());
  caller.m_nID = 77;
  caller.m_strTitle = "caller";
  EXPECT_EQ(caller.RestartTask(1, 0, "again", kLink, kSingleStart), 2);
  EXPECT_EQ(caller.m_nID, 77);
  EXPECT_EQ(caller.m_strTitle, "caller");
}

TEST_F(TaskRestart, TakesTheSmallestFreeID) {
  auto other = Stored<CTask>(1);
  other.m_nID = 2;
  other.PutObject();
  EXPECT_EQ(Restart(0), 3);
  EXPECT_EQ(Restart(0), 4);
}

TEST_F(TaskRestart, HasNoChildrenButKeepsItsParentAndRestarts) {
  auto old = Stored<CTask>(1);
  old.m_nParent = -3;
  old.m_nRestartOf = 8;
  old.m_vnChildren = {5, 6};
  old.m_vnRestarts = {9};
  old.PutObject();
  CTask expected = Expected();
  expected.m_vnChildren.clear();
  Restart(0);
  ExpectStored(expected);
  EXPECT_EQ(AsNumbers(Stored<CTask>(1).m_vnChildren), (Numbers{5, 6}));
}

TEST_F(TaskRestart, ReplacesWhatAFailedAttemptLeft) {
  StorePoint(0);
  auto vars = Stored<CDVar>(1);
  vars.m_nID = 2;
  vars.m_vstrIndName[0] = "left";
  vars.PutObject();
  CMessage messages(Pod());
  messages.m_nID = 2;
  messages.m_Messages = {"left"};
  messages.PutObject();
  PointOf(2, 0, 5).PutObject();
  EXPECT_EQ(Restart(0), 2);
  ExpectTablesCopied(2);
  ExpectNoMessages(2);
  ExpectPoints({0});
}

// ---- Link and single start ----

TEST_F(TaskRestart, WithoutALinkIsToldByNeitherTask) {
  Restart(0);
  EXPECT_EQ(Stored<CTask>(2).m_nRestartOf, 0);
  EXPECT_TRUE(Stored<CTask>(1).m_vnRestarts.empty());
}

TEST_F(TaskRestart, WithALinkIsToldByBothTasks) {
  auto old = Stored<CTask>(1);
  old.m_vnRestarts = {9};
  old.PutObject();
  CTask expected = Expected();
  expected.m_nRestartOf = 1;
  CTask linked = Stored<CTask>(1);
  linked.m_vnRestarts = {9, 2};
  Restart(0, kLink);
  ExpectStored(expected);
  ExpectStored(linked);
}

TEST_F(TaskRestart, WithASingleStartGivesUpSeveral) {
  auto old = Stored<CTask>(1);
  old.m_DGO.m_nMultiStart = 1;
  old.PutObject();
  CTask expected = Expected();
  EXPECT_EQ(Restart(0), 2);
  ExpectStored(expected);
  expected.m_DGO.m_nMultiStart = 0;
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(Restart(0, false, kSingleStart), 2);
  ExpectStored(expected);
  EXPECT_EQ(Stored<CTask>(1).m_DGO.m_nMultiStart, 1);
}

// ---- The point ----

TEST_F(TaskRestart, GoesOnFromTheGivenPoint) {
  for (int number = 0; number < 4; ++number) StorePoint(number);
  Restart(3);
  ExpectPoints({3});
}

TEST_F(TaskRestart, GoesOnFromTheBestPointOfTheBestIteration) {
  for (int number = 0; number < 7; ++number) StorePoint(number);
  StoreBest(4, 2);
  StoreIter(0, 0, 1, 1);
  StoreIter(4, 0, 2, 2);
  StoreIter(4, 2, 3, 5);
  StoreIter(4, 3, 4, 4);
  StoreIter(5, 0, 6, 6);
  Restart(-1);
  ExpectPoints({5});
}

TEST_F(TaskRestart, GoesOnFromTheFirstIterationWhenThatWasTheBest) {
  for (int number = 0; number < 3; ++number) StorePoint(number);
  StoreBest(0, 0);
  StoreIter(0, 0, 2, 2);
  Restart(-1);
  ExpectPoints({2});
}

// ---- Several starting points ----

struct StartingPointsCase {
  const char* name;
  int point;
  std::vector<int> from;
};

class TaskRestartOfSurface : public TaskRestart,
                             public testing::WithParamInterface<StartingPointsCase> {};

TEST_P(TaskRestartOfSurface, CarriesTheOtherStartingPointsOver) {
  StorePoints(4);
  StorePoint(4);
  StorePoint(6);
  SetStoredType(1);
  CTask expected = Expected();
  expected.m_vnAnalyzeFlags = {0, 0, 0, 0};
  EXPECT_EQ(Restart(GetParam().point), 2);
  ExpectStored(expected);
  ExpectNotRun(2, 4);
  ExpectPoints(GetParam().from);
  ExpectSoundFiles();
}

INSTANTIATE_TEST_SUITE_P(Points, TaskRestartOfSurface,
                         testing::Values(StartingPointsCase{"TheFirst", 0, {0, 1, 2, 3}},
                                         StartingPointsCase{"OneInside", 2, {2, 0, 1, 3}},
                                         StartingPointsCase{"TheLast", 3, {3, 0, 1, 2}},
                                         StartingPointsCase{"OneBehindThem", 4, {4, 1, 2, 3}},
                                         StartingPointsCase{"OneFarBehindThem", 6, {6, 1, 2, 3}}),
                         [](const auto& test) { return test.param.name; });

TEST_F(TaskRestart, OfASurfaceTaskTakesTheBestPointOutOfTheOthers) {
  StorePoints(3);
  SetStoredType(1);
  StoreBest(1, 0);
  StoreIter(1, 0, 2, 1);
  Restart(-1);
  ExpectPoints({1, 0, 2});
  ExpectNotRun(2, 3);
}

TEST_F(TaskRestart, OfASurfaceTaskWithoutStartingPointsHasOne) {
  StorePoints(3);
  auto old = Stored<CTask>(1);
  old.m_nType = 1;
  old.m_uNumPoints = 0;
  old.PutObject();
  CTask expected = Expected();
  Restart(0);
  ExpectStored(expected);
  ExpectNotRun(2, 1);
  ExpectPoints({0});
}

TEST_F(TaskRestart, OfOtherTasksLeavesTheOtherStartingPoints) {
  StorePoints(3);
  for (const int type : {0, 3}) {
    SetStoredType(type);
    CTask expected = Expected();
    Restart(1);
    ExpectStored(expected);
    ExpectNotRun(2, 1);
    ExpectPoints({1});
    CTask::RemoveSpecifiedTask(Pod(), 2);
  }
}

// ---- Failures ----

TEST_F(TaskRestart, OfADesignOfExperimentsIsRefusedAndTakesNoID) {
  SetStoredType(2);
  for (const bool link : {false, true}) {
    ExpectRefused<CMakeTask>([&] { Restart(0, link); },
                             "Task could not be created - data error found");
  }
  SetStoredType(0);
  EXPECT_EQ(Restart(0), 2);
}

TEST_F(TaskRestart, OfAnAnalysisWithoutALinkIsRefused) {
  SetStoredType(4);
  ExpectRefused<CMakeTask>([&] { Restart(0); }, "Task could not be created - data error found");
}

TEST_F(TaskRestart, NeedsTheTask) {
  for (const int id : {0, -1, 3}) {
    ExpectRefused<CGetObject>([&] { CTask(Pod()).RestartTask(id, 0, "again", false, false); },
                              "Could not get object");
  }
}

TEST_F(TaskRestart, NeedsThePoint) {
  for (const int point : {1, 2147483647, -2, -2147483647 - 1}) ExpectNotGot(point);
}

TEST_F(TaskRestart, FromTheBestPointNeedsResultIterationAndPoint) {
  StoreBest(4, 2);
  StoreIter(4, 0, 0, 0);
  ExpectNotGot(-1);
  for (const int missing : {1, -1}) {
    StoreIter(4, 2, 0, missing);
    ExpectNotGot(-1);
  }
  StoreBest(-1, 0);
  ExpectNotGot(-1);
  StoreBest(4, -1);
  ExpectNotGot(-1);
  auto result = Stored<CResult>(1);
  ASSERT_TRUE(result.RemoveObject());
  ExpectNotGot(-1);
}

class TaskRestartWithout : public TaskRestart, public testing::WithParamInterface<MissingRecord> {};

TEST_P(TaskRestartWithout, FailsAndLeavesWhatItWrote) {
  GetParam().remove(Pod(), 1);
  const StudyFiles before = Files();
  try {
    Restart(0, kLink);
    ADD_FAILURE();
  } catch (const CGetObject& error) {
    EXPECT_STREQ(error.what(), "Could not get object");
  }
  EXPECT_EQ(RecordsOf(2), GetParam().left);
  ExpectUnchangedBut(before, 2);
  ExpectSoundFiles();
}

INSTANTIATE_TEST_SUITE_P(
    Table, TaskRestartWithout,
    testing::Values(
        MissingRecord{"DVar", RemoveOf<CDVar>, {"CMessage"}},
        MissingRecord{"DResp", RemoveOf<CDResp>, {"CDVar", "CMessage"}},
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

TEST_F(TaskRestart, OfASurfaceTaskNeedsAllStartingPoints) {
  StorePoints(4);
  SetStoredType(1);
  CDPoint point = PointOf(1, 2, 2);
  ASSERT_TRUE(point.RemoveObject());
  const StudyFiles before = Files();
  EXPECT_THROW(Restart(0, kLink), CGetObject);
  EXPECT_EQ(RecordsOf(2), (Names{"CResult", "CDVar", "CDPoint 0", "CDPoint 1", "CDResp", "CDCons",
                                 "CDObj", "CDLink", "CDEqn", "CDSet", "CMessage"}));
  ExpectNotRun(2, 1);
  ExpectUnchangedBut(before, 2);
}

TEST_F(TaskRestart, EndsAtTheFirstMissingStartingPointWhateverTheCount) {
  StorePoints(2);
  auto old = Stored<CTask>(1);
  old.m_nType = 1;
  old.m_uNumPoints = 0xFFFFFFFFUL;
  old.PutObject();
  EXPECT_THROW(Restart(0), CGetObject);
  EXPECT_EQ(CountPoints(2), 2);
}

TEST_F(TaskRestart, NeedsADatabase) {
  CTask task;
  try {
    task.RestartTask(1, 0, "again", false, false);
    ADD_FAILURE();
  } catch (const CNoDatabaseOpen& error) {
    EXPECT_STREQ(error.what(), "No database open");
  }
}

TEST_F(TaskRestart, IsMadeUnderTheLock) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Restart(0), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(Restart(0), 2);
}

}  // namespace
