#include <gtest/gtest.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "results/ApproxModels.h"
#include "results/Iter.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "store/KestErr.h"
#include "tests/task/MakeStudy.h"
#include "tests/task/TaskFiles.h"

namespace {

using Classes = std::map<long, int>;

/// Tasks 1 to 3 of a small study.
class TaskRemoval : public MakeStudy {
 protected:
  void SetUp() override {
    AddSmallStudy();
    for (int id = 1; id <= 3; ++id) MakeWell();
  }

  void StorePoint(int task, int number) {
    CDPoint point(Pod());
    point.m_nTaskID = task;
    point.m_nPointID = number;
    point.m_IDVar = {0.25};
    point.PutObject();
  }
  void StoreIter(int task, int iter, int subIter) {
    CIter stored(Pod());
    stored.m_nTaskID = task;
    stored.m_nIter = iter;
    stored.m_nSubIter = subIter;
    stored.PutObject();
  }
  void StoreResidual(int task, int resp) {
    CResidual stored(Pod());
    stored.m_nTaskID = task;
    stored.m_nResp = resp;
    stored.PutObject();
  }
  void StoreModel(int task, int iter, int resp) {
    CApproxModels stored(Pod());
    stored.m_nTaskID = task;
    stored.m_nIter = iter;
    stored.m_nResp = resp;
    stored.PutObject();
  }
  /// What a run may leave, without gaps in its numbering.
  void StoreResults(int task) {
    for (int number = 0; number < 4; ++number) StorePoint(task, number);
    for (const auto& [iter, subIter] : Pairs{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {2, 0}, {2, 1}}) {
      StoreIter(task, iter, subIter);
    }
    for (int resp = 0; resp < 3; ++resp) StoreResidual(task, resp);
    for (const auto& [iter, resp] : Pairs{{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
      StoreModel(task, iter, resp);
    }
    CRDOE design(Pod());
    design.m_nTaskID = task;
    design.PutObject();
    CRApproxMod final(Pod());
    final.m_nTaskID = task;
    final.PutObject();
  }

  StudyFiles Files() const { return ReadStudyFiles(study); }
  using Pairs = std::vector<std::pair<int, int>>;
};

// ---- One task ----

TEST_F(TaskRemoval, TakesEveryRecordOfTheTaskAndNothingElse) {
  for (int id = 1; id <= 3; ++id) StoreResults(id);
  const StudyFiles before = Files();
  EXPECT_EQ(ClassesOfTask(before, 2), (Classes{{3000, 1},
                                               {4000, 1},
                                               {5000, 1},
                                               {6000, 1},
                                               {7000, 1},
                                               {8000, 1},
                                               {9000, 1},
                                               {10000, 4},
                                               {11000, 1},
                                               {12000, 4},
                                               {13000, 6},
                                               {14000, 1},
                                               {17000, 1},
                                               {20000, 3},
                                               {21000, 1},
                                               {22000, 1}}));
  CTask::RemoveSpecifiedTask(Pod(), 2);
  const StudyFiles after = Files();
  EXPECT_EQ(ClassesOfTask(after, 2), Classes());
  EXPECT_EQ(after, WithoutTask(before, 2));
  EXPECT_EQ(after.objects.size() + 29, before.objects.size());
  EXPECT_EQ(after.keys.size() + 29, before.keys.size());
  ExpectSoundFiles();
}

TEST_F(TaskRemoval, TakesTheFirstAndTheLastTask) {
  const StudyFiles before = Files();
  CTask::RemoveSpecifiedTask(Pod(), 3);
  CTask::RemoveSpecifiedTask(Pod(), 1);
  EXPECT_EQ(Files(), WithoutTask(WithoutTask(before, 1), 3));
  ExpectSoundFiles();
}

TEST_F(TaskRemoval, LeavesATaskWhoseNumberBeginsAlike) {
  auto twenty = Stored<CTask>(2);
  twenty.m_nID = 20;
  twenty.PutObject();
  StorePoint(20, 0);
  const StudyFiles before = Files();
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(Files(), WithoutTask(before, 2));
  EXPECT_EQ(ClassesOfTask(Files(), 20), (Classes{{3000, 1}, {12000, 1}}));
}

TEST_F(TaskRemoval, OfADesignOfExperimentsMissesNoObjectives) {
  SetType(2);
  MakeWell();
  const StudyFiles before = Files();
  ASSERT_EQ(ClassesOfTask(before, 4).count(7000), 0U);
  CTask::RemoveSpecifiedTask(Pod(), 4);
  EXPECT_EQ(Files(), WithoutTask(before, 4));
}

TEST_F(TaskRemoval, OfWhatAFailedAttemptLeftNeedsNoTask) {
  auto task = Stored<CTask>(2);
  ASSERT_TRUE(task.RemoveObject());
  const StudyFiles before = Files();
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(ClassesOfTask(Files(), 2), Classes());
  EXPECT_EQ(Files(), WithoutTask(before, 2));
}

TEST_F(TaskRemoval, OfNoTaskChangesNothing) {
  const StudyFiles before = Files();
  CTask::RemoveSpecifiedTask(Pod(), 4);
  CTask::RemoveSpecifiedTask(Pod(), 2147483647);
  EXPECT_EQ(Files(), before);
}

TEST_F(TaskRemoval, FreesTheID) {
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(MakeWell().m_nID, 2);
}

TEST_F(TaskRemoval, CorrectsNoOtherTask) {
  auto parent = Stored<CTask>(1);
  parent.m_vnChildren = {2};
  parent.m_vnRestarts = {2, 3};
  parent.PutObject();
  CTask::RemoveSpecifiedTask(Pod(), 2);
  const auto kept = Stored<CTask>(1);
  EXPECT_EQ(AsNumbers(kept.m_vnChildren), Numbers{2});
  EXPECT_EQ(AsNumbers(kept.m_vnRestarts), (Numbers{2, 3}));
}

TEST_F(TaskRemoval, LeavesTheChildrenOfTheTask) {
  auto parent = Stored<CTask>(2);
  parent.m_vnChildren = {1, 3};
  parent.PutObject();
  const StudyFiles before = Files();
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(Files(), WithoutTask(before, 2));
  Stored<CTask>(1);
  Stored<CTask>(3);
}

// ---- Gaps in the numbering ----

TEST_F(TaskRemoval, StopsAtTheFirstMissingPoint) {
  StorePoint(2, 1);
  StorePoint(2, 3);
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(ClassesOfTask(Files(), 2), (Classes{{12000, 1}}));
  StoredPoint(2, 3);
}

TEST_F(TaskRemoval, StopsAtTheFirstMissingIteration) {
  for (const auto& [iter, subIter] : Pairs{{0, 0}, {0, 2}, {1, 0}, {3, 0}}) {
    StoreIter(2, iter, subIter);
  }
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(ClassesOfTask(Files(), 2), (Classes{{13000, 2}}));
  CIter iter(Pod());
  iter.m_nTaskID = 2;
  iter.m_nSubIter = 2;
  EXPECT_TRUE(iter.FindObject());
  iter.m_nIter = 3;
  iter.m_nSubIter = 0;
  EXPECT_TRUE(iter.FindObject());
}

TEST_F(TaskRemoval, StopsAtTheFirstMissingResidual) {
  for (const int resp : {0, 1, 3}) StoreResidual(2, resp);
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(ClassesOfTask(Files(), 2), (Classes{{20000, 1}}));
}

TEST_F(TaskRemoval, StopsAtTheFirstMissingModel) {
  for (const auto& [iter, resp] : Pairs{{0, 0}, {0, 2}, {1, 0}, {3, 0}}) StoreModel(2, iter, resp);
  CTask::RemoveSpecifiedTask(Pod(), 2);
  EXPECT_EQ(ClassesOfTask(Files(), 2), (Classes{{10000, 2}}));
}

// ---- With children ----

TEST_F(TaskRemoval, OfATaskTakesItsChildrenAlong) {
  for (int id = 1; id <= 3; ++id) StoreResults(id);
  auto parent = Stored<CTask>(1);
  parent.m_vnChildren = {3};
  const StudyFiles before = Files();
  parent.RemoveTask();
  EXPECT_EQ(Files(), WithoutTask(WithoutTask(before, 1), 3));
  ExpectSoundFiles();
}

TEST_F(TaskRemoval, OfATaskLeavesTheChildrenOfItsChildren) {
  auto child = Stored<CTask>(2);
  child.m_vnChildren = {3};
  child.PutObject();
  auto parent = Stored<CTask>(1);
  parent.m_vnChildren = {2};
  const StudyFiles before = Files();
  parent.RemoveTask();
  EXPECT_EQ(Files(), WithoutTask(WithoutTask(before, 1), 2));
  Stored<CTask>(3);
}

TEST_F(TaskRemoval, OfChildrenKeepsTheTask) {
  auto parent = Stored<CTask>(2);
  parent.m_vnChildren = {1, 3, 9};
  parent.PutObject();
  const StudyFiles before = Files();
  parent.RemoveChildTasks();
  EXPECT_TRUE(parent.m_vnChildren.empty());
  EXPECT_EQ(ClassesOfTask(Files(), 1), Classes());
  EXPECT_EQ(ClassesOfTask(Files(), 3), Classes());
  EXPECT_EQ(ClassesOfTask(Files(), 2), ClassesOfTask(before, 2));
  EXPECT_TRUE(Stored<CTask>(2).m_vnChildren.empty());
  ExpectSoundFiles();
}

TEST_F(TaskRemoval, OfNoChildrenStoresTheTaskAllTheSame) {
  auto task = Stored<CTask>(2);
  task.m_strTitle = "new";
  task.RemoveChildTasks();
  EXPECT_EQ(Stored<CTask>(2).m_strTitle, "new");
  Stored<CTask>(1);
  Stored<CTask>(3);
}

// ---- Failures ----

TEST_F(TaskRemoval, OfAnIDBelowOneIsRefused) {
  const StudyFiles before = Files();
  for (const int id : {0, -1, -2147483647 - 1}) {
    try {
      CTask::RemoveSpecifiedTask(Pod(), id);
      ADD_FAILURE() << id;
    } catch (const CInvalidArgument& error) {
      EXPECT_STREQ(error.what(), "Function/method object is invalid");
    }
  }
  EXPECT_EQ(Files(), before);
}

TEST_F(TaskRemoval, OfATaskWithoutAnIDIsRefused) {
  const StudyFiles before = Files();
  CTask task(Pod());
  EXPECT_THROW(task.RemoveTask(), CInvalidArgument);
  EXPECT_THROW(task.RemoveChildTasks(), CInvalidKey);
  EXPECT_EQ(Files(), before);
}

TEST_F(TaskRemoval, OfNoDatabaseIsANullPointer) {
  EXPECT_THROW(CTask::RemoveSpecifiedTask(nullptr, 1), CNullPtr);
}

TEST_F(TaskRemoval, WithoutIndexingIsToldSoBeforeTheID) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CTask::RemoveSpecifiedTask(&pod, 0), CNoIndex);
}

TEST_F(TaskRemoval, WithoutAFileIsANullPointer) {
  Pod()->CloseIndex();
  EXPECT_THROW(CTask::RemoveSpecifiedTask(Pod(), 1), CNullPtr);
  Pod()->CloseDataFile();
  EXPECT_THROW(CTask::RemoveSpecifiedTask(Pod(), 1), CNullPtr);
}

TEST_F(TaskRemoval, OfATaskWithoutADatabaseIsRefused) {
  CTask task;
  task.m_nID = 1;
  for (const auto remove : {&CTask::RemoveTask, &CTask::RemoveChildTasks}) {
    try {
      (task.*remove)();
      ADD_FAILURE();
    } catch (const CNoDatabaseOpen& error) {
      EXPECT_STREQ(error.what(), "No database open");
    }
  }
}

TEST_F(TaskRemoval, IsDoneUnderTheLock) {
  auto task = Stored<CTask>(2);
  const StudyFiles before = Files();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(CTask::RemoveSpecifiedTask(Pod(), 2), CFileLock);
  EXPECT_THROW(task.RemoveTask(), CFileLock);
  EXPECT_THROW(task.RemoveChildTasks(), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(Files(), before);
}

}  // namespace
