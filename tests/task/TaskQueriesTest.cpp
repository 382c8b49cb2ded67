#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "results/RApproxMod.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "task/Task.h"
#include "tests/support/Study.h"

namespace {

using IDs = std::vector<int>;

class TaskQueries : public testing::Test {
 protected:
  struct Kept {
    int id;
    int type = 0;
    int status = 2;
    int parent = 0;
  };
  void StoreTask(const Kept& kept) {
    CTask task(study.Pod());
    task.m_nID = kept.id;
    task.m_nType = kept.type;
    task.m_nParent = kept.parent;
    task.PutObject();
  }
  void Store(const Kept& kept) {
    StoreTask(kept);
    CResult result(study.Pod());
    result.m_nID = kept.id;
    result.m_nRunStatus = kept.status;
    result.PutObject();
  }
  /// Tasks 1 to 5 of the types 0 to 4, which were run, and 11 to 15, which were not.
  void StoreEachType() {
    for (int type = 0; type < 5; ++type) {
      Store({type + 1, type, 2});
      Store({type + 11, type, 0});
    }
  }
  void StoreModel(int task) {
    CRApproxMod model(study.Pod());
    model.m_nTaskID = task;
    model.PutObject();
  }

  IDs Finished(int filter) { return Get(filter, false); }
  IDs Unfinished(int filter) { return Get(filter, true); }
  IDs Get(int filter, bool unfinished) {
    IDs ids{77};
    CTask::GetTasks(study.Pod(), ids, filter, unfinished);
    return ids;
  }

  Study study;
};

TEST_F(TaskQueries, OfAnEmptyStudyFindNothing) {
  EXPECT_EQ(Finished(0), IDs());
  EXPECT_EQ(Unfinished(0), IDs());
}

TEST_F(TaskQueries, ForUnfinishedTasksHaveNoFilter) {
  StoreEachType();
  for (const int filter : {-1, 0, 1, 2, 3, 4, 5, 6}) {
    EXPECT_EQ(Unfinished(filter), (IDs{11, 12, 13, 14, 15})) << filter;
  }
}

TEST_F(TaskQueries, TakeEveryTaskThatWasRun) {
  StoreEachType();
  EXPECT_EQ(Finished(0), (IDs{1, 2, 3, 4, 5}));
}

TEST_F(TaskQueries, TakeAnyStatusButNotRunForRun) {
  int id = 0;
  for (const int status : {0, 1, 2, 4, -1, 99}) Store({++id, 0, status});
  EXPECT_EQ(Finished(0), (IDs{2, 3, 4, 5, 6}));
  EXPECT_EQ(Unfinished(0), IDs{1});
}

TEST_F(TaskQueries, TakeOptimisations) {
  StoreEachType();
  EXPECT_EQ(Finished(1), (IDs{1, 2, 4}));
}

TEST_F(TaskQueries, TakeDesignsOfExperiments) {
  StoreEachType();
  EXPECT_EQ(Finished(2), IDs{3});
}

TEST_F(TaskQueries, TakeTasksWithAFinalModel) {
  StoreEachType();
  StoreModel(2);
  StoreModel(5);
  StoreModel(12);
  EXPECT_EQ(Finished(3), (IDs{2, 5}));
}

TEST_F(TaskQueries, TakeResponseSurfaces) {
  StoreEachType();
  EXPECT_EQ(Finished(5), IDs{2});
}

TEST_F(TaskQueries, ByAnyOtherFilterFindNothing) {
  StoreEachType();
  for (const int filter : {4, 6, -1, 100}) EXPECT_EQ(Finished(filter), IDs()) << filter;
}

TEST_F(TaskQueries, LeaveChildrenOut) {
  Store({1, 0, 2, 5});
  Store({2, 0, 0, 1});
  Store({3, 0, 2, 0});
  Store({4, 0, 2, -1});
  EXPECT_EQ(Finished(0), (IDs{3, 4}));
  EXPECT_EQ(Unfinished(0), IDs());
  IDs all;
  CTask::GetAllTasks(study.Pod(), all);
  EXPECT_EQ(all, (IDs{3, 4}));
}

TEST_F(TaskQueries, AscendWhateverTheOrderInTheFile) {
  for (const int id : {30, 4, 200, 1}) Store({id});
  EXPECT_EQ(Finished(0), (IDs{1, 4, 30, 200}));
}

TEST_F(TaskQueries, NeedTheResultOfEachTask) {
  Store({1});
  StoreTask({2});
  for (const bool unfinished : {false, true}) {
    try {
      Get(4, unfinished);
      ADD_FAILURE();
    } catch (const CKestErr& error) {
      EXPECT_STREQ(error.what(), "Could not find Result object");
    }
  }
}

TEST_F(TaskQueries, NeedNoResultOfAChild) {
  Store({1});
  StoreTask({2, 0, 0, 1});
  EXPECT_EQ(Finished(0), IDs{1});
}

TEST_F(TaskQueries, OfNoDatabaseAreANullPointer) {
  IDs ids;
  EXPECT_THROW(CTask::GetTasks(nullptr, ids, 0, false), CNullPtr);
}

TEST_F(TaskQueries, WithoutIndexingAreToldSo) {
  POD pod(study.folder / "other.ksb");
  IDs ids;
  EXPECT_THROW(CTask::GetTasks(&pod, ids, 0, false), CNoIndex);
}

TEST_F(TaskQueries, WithoutAFileAreANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(Finished(0), CNullPtr);
  study.Pod()->CloseDataFile();
  EXPECT_THROW(Finished(0), CNullPtr);
}

TEST_F(TaskQueries, AreMadeUnderTheLock) {
  Store({1});
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Finished(0), CFileLock);
  std::filesystem::remove(study.LockPath());
  const CLock lock(study.Pod(), 0);
  EXPECT_EQ(Finished(0), IDs{1});
}

}  // namespace
