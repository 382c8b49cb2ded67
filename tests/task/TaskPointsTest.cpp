#include <filesystem>

#include "definition/GPoint.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "tests/task/PrintedFaults.h"
#include "tests/task/StartingPoints.h"

namespace {

using Flags = std::vector<vbINT32>;

/// Task 7 with six variable and four response entries, two of them constants. The columns of a
/// user's point are the entries, those of an array the positions of a kind.
class UserPoints : public StartingPoints {
 protected:
  UserPoints() {
    vars.m_nID = resps.m_nID = 7;
    vars.m_vnType = {23, 20, 21, 20, 22, 23};
    vars.m_vnSeq = {1, 1, 0, 0, 0, 0};
    resps.m_vnType = {26, 24, 25, 24};
    resps.m_vnSeq = {0, 1, 0, 0};
    vars.PutObject();
    resps.PutObject();
    task.m_uNumPoints = 1;
    task.m_vnAnalyzeFlags = {61};
    task.m_vnPointLocked = {62};
    StoreFirst();
  }

  void StoreFirst() {
    CDPoint point(study.Pod());
    point.m_nTaskID = 7;
    point.m_IDVar = {-1.0};
    point.PutObject();
  }

  /// The user's point k has the values 10k+1, 10k+2 ... for variables, 10k+0.1 ... for responses.
  void AddPoint(int used, int run, int locked) {
    const double base = 10.0 * static_cast<double>(points.m_vnUsed.size());
    points.m_vnUsed.push_back(used);
    points.m_vnRun.push_back(run);
    points.m_vnLocked.push_back(locked);
    points.m_vDVars.push_back({base + 1, base + 2, base + 3, base + 4, base + 5, base + 6});
    points.m_vResps.push_back({base + 0.125, base + 0.25, base + 0.375, base + 0.5});
  }
  void MakePoints() {
    points.PutObject();
    MakeStored();
  }
  void MakeStored() {
    ClearLog();
    task.SetupDPoints(2, 1, 1, 2, 2, 1, 1);
  }

  /// The point holds the variables of the user's point `row`.
  void ExpectVariables(int number, int row) {
    SCOPED_TRACE(number);
    const double base = 10.0 * row;
    const CDPoint point = Point(number);
    EXPECT_EQ(point.m_nPointFlag, 0);
    EXPECT_EQ(ValuesOf(point.m_IDVar), (Values{base + 4, base + 2}));
    EXPECT_EQ(ValuesOf(point.m_LDVar), (Values{base + 3}));
    EXPECT_EQ(ValuesOf(point.m_SDVar), (Values{base + 5}));
    EXPECT_EQ(ValuesOf(point.m_CDVar), (Values{base + 6, base + 1}));
  }
  void ExpectResponses(int number, int row) {
    SCOPED_TRACE(number);
    const double base = 10.0 * row;
    const CDPoint point = Point(number);
    EXPECT_EQ(ValuesOf(point.m_IResp), (Values{base + 0.5, base + 0.25}));
    EXPECT_EQ(ValuesOf(point.m_LResp), (Values{base + 0.375}));
    EXPECT_EQ(ValuesOf(point.m_SResp), (Values{base + 0.125}));
  }
  void ExpectNoResponses(int number) {
    const CDPoint point = Point(number);
    EXPECT_EQ(point.m_IResp.size() + point.m_LResp.size() + point.m_SResp.size(), 0U) << number;
  }
  void ExpectTask(unsigned long count, const Flags& analyze, const Flags& locked) {
    EXPECT_EQ(task.m_uNumPoints, count);
    EXPECT_EQ(task.m_vnAnalyzeFlags, analyze);
    EXPECT_EQ(task.m_vnPointLocked, locked);
  }
  void ExpectUntouched() {
    ExpectTask(1, {61}, {62});
    EXPECT_EQ(Counts(), (std::pair<long, long>{41, 42}));
    EXPECT_EQ(CountPoints(), 1);
    EXPECT_EQ(ValuesOf(Point(0).m_IDVar), (Values{-1.0}));
  }

  CDVar vars{study.Pod()};
  CDResp resps{study.Pod()};
  CGPoint points{study.Pod()};
};

// ---- None ----

TEST_F(UserPoints, OfAnEmptyTableLeaveTheTask) {
  MakePoints();
  ExpectUntouched();
}

TEST_F(UserPoints, ThatAreUnusedLeaveTheTask) {
  AddPoint(0, 1, 1);
  AddPoint(0, 0, 0);
  ASSERT_TRUE(vars.RemoveObject());  // The tables are not even looked for.
  MakePoints();
  ExpectUntouched();
}

// ---- Behind the point that is there, or over it ----

TEST_F(UserPoints, OfGradientAndSurfaceTasksFollowTheFirstPoint) {
  AddPoint(1, 1, 0);
  AddPoint(1, 0, 1);
  for (const int type : {0, 1}) {
    SCOPED_TRACE(type);
    task.m_nType = type;
    MakePoints();
    ExpectTask(3, {1, 1, 0}, {0, 0, 1});
    EXPECT_EQ(Counts(), Same(3));
    EXPECT_EQ(CountPoints(), 3);
    EXPECT_EQ(ValuesOf(Point(0).m_IDVar), (Values{-1.0}));
    ExpectVariables(1, 0);
    ExpectVariables(2, 1);
  }
}

TEST_F(UserPoints, OfOtherTasksReplaceTheFirstPoint) {
  AddPoint(1, 1, 0);
  AddPoint(1, 0, 1);
  for (const int type : {2, 3, 4}) {
    SCOPED_TRACE(type);
    StoreFirst();
    task.m_nType = type;
    MakePoints();
    ExpectTask(2, {1, 0}, {0, 1});
    EXPECT_EQ(Counts(), Same(2));
    EXPECT_EQ(CountPoints(), 2);
    ExpectVariables(0, 0);
    ExpectVariables(1, 1);
  }
}

TEST_F(UserPoints, ThatAreUnusedLeaveNoGap) {
  AddPoint(0, 1, 1);
  AddPoint(1, 1, 1);
  AddPoint(0, 0, 1);
  AddPoint(1, 0, 0);
  AddPoint(1, 1, 0);
  task.m_nType = 0;
  MakePoints();
  ExpectTask(4, {1, 1, 0, 1}, {0, 1, 0, 0});
  EXPECT_EQ(CountPoints(), 4);
  ExpectVariables(1, 1);
  ExpectVariables(2, 3);
  ExpectVariables(3, 4);
}

TEST_F(UserPoints, AreUsedByAnyFlagButNotBySuchAlone) {
  AddPoint(2, 1, 0);
  MakePoints();
  ExpectUntouched();  // None is counted as used.
  AddPoint(1, 1, 0);
  MakePoints();
  ExpectTask(3, {1, 1, 1}, {0, 0, 0});
  ExpectVariables(1, 0);
  ExpectVariables(2, 1);
}

TEST_F(UserPoints, KeepTheirFlagsAsTheyAre) {
  AddPoint(1, 5, -3);
  AddPoint(1, -1, 7);
  task.m_nType = 2;
  MakePoints();
  ExpectTask(2, {5, -1}, {-3, 7});
}

// ---- Responses ----

TEST_F(UserPoints, ThatAreNotToBeRunStoreTheirResponses) {
  AddPoint(1, 0, 0);
  AddPoint(1, 1, 0);
  AddPoint(1, 0, 1);
  MakePoints();
  ExpectNoResponses(0);
  ExpectResponses(1, 0);
  ExpectNoResponses(2);
  ExpectResponses(3, 2);
}

TEST_F(UserPoints, ThatAreToBeRunNeedNoResponses) {
  AddPoint(1, 1, 0);
  AddPoint(1, 2, 0);
  points.m_vResps.clear();
  MakePoints();
  ExpectNoResponses(1);
  ExpectNoResponses(2);
  ExpectTask(3, {1, 1, 2}, {0, 0, 0});
}

TEST_F(UserPoints, HaveArraysOfTheSizesGivenFilledWithZeros) {
  AddPoint(1, 0, 0);
  points.PutObject();
  task.SetupDPoints(4, 3, 2, 5, 3, 4, 2);
  const CDPoint point = Point(1);
  EXPECT_EQ(ValuesOf(point.m_IDVar), (Values{4.0, 2.0, 0.0, 0.0}));
  EXPECT_EQ(ValuesOf(point.m_LDVar), (Values{3.0, 0.0, 0.0}));
  EXPECT_EQ(ValuesOf(point.m_SDVar), (Values{5.0, 0.0}));
  EXPECT_EQ(ValuesOf(point.m_CDVar), (Values{6.0, 1.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(ValuesOf(point.m_IResp), (Values{0.5, 0.25, 0.0}));
  EXPECT_EQ(ValuesOf(point.m_LResp), (Values{0.375, 0.0, 0.0, 0.0}));
  EXPECT_EQ(ValuesOf(point.m_SResp), (Values{0.125, 0.0}));
}

TEST_F(UserPoints, ReplaceAPointWithItsResponses) {
  CDPoint old(study.Pod());
  old.m_nTaskID = 7;
  old.m_nPointFlag = 9;
  old.m_IResp = {1.0, 2.0};
  old.PutObject();
  AddPoint(1, 1, 0);
  task.m_nType = 3;
  MakePoints();
  ExpectVariables(0, 0);
  ExpectNoResponses(0);
  EXPECT_EQ(CountPoints(), 1);
}

TEST_F(UserPoints, AreThoseOfTheTaskAlone) {
  StoreResult(8);
  AddPoint(1, 1, 0);
  MakePoints();
  CResult other(study.Pod());
  other.m_nID = 8;
  ASSERT_TRUE(other.GetObject());
  EXPECT_EQ(other.m_nNumPoints, 41);
  EXPECT_EQ(Counts(), Same(2));
}

// ---- Failures ----

TEST_F(UserPoints, OfAVariableOfNoKnownKindAreRefused) {
  AddPoint(1, 1, 0);
  for (const int kind : {0, 19, 24, 26, -1}) {
    vars.m_vnType[2] = kind;
    vars.PutObject();
    try {
      MakePoints();
      ADD_FAILURE() << kind;
    } catch (const CInvalidType& error) {
      EXPECT_STREQ(error.what(), "Object type is invalid");
    }
    EXPECT_EQ(PrintedLines(), Faults({{"Invalid Input object type!\n"}}));
    ExpectUntouched();
  }
}

TEST_F(UserPoints, OfAResponseOfNoKnownKindAreRefusedWhereItIsKnown) {
  AddPoint(1, 1, 0);
  resps.m_vnType[2] = 27;
  resps.PutObject();
  MakePoints();
  ExpectTask(2, {1, 1}, {0, 0});
  points.m_vnRun = {0};
  for (const int kind : {0, 20, 23, 27, -1}) {
    resps.m_vnType[2] = kind;
    resps.PutObject();
    EXPECT_THROW(MakePoints(), CInvalidType) << kind;
    EXPECT_EQ(PrintedLines(), Faults({{"Invalid Resp object type!\n"}}));
  }
}

TEST_F(UserPoints, OfTooFewColumnsAreRefused) {
  AddPoint(1, 0, 0);
  points.m_vDVars[0].pop_back();
  EXPECT_THROW(MakePoints(), CInvalidArgument);
  points.m_vDVars.clear();
  EXPECT_THROW(MakePoints(), CInvalidArgument);
  points = CGPoint(study.Pod());
  AddPoint(1, 0, 0);
  points.m_vResps[0].pop_back();
  EXPECT_THROW(MakePoints(), CInvalidArgument);
  points.m_vResps.clear();
  EXPECT_THROW(MakePoints(), CInvalidArgument);
  ExpectUntouched();
}

TEST_F(UserPoints, OfPositionsOutsideTheArraysAreRefused) {
  AddPoint(1, 0, 0);
  for (const int position : {-1, 2, 2147483647}) {
    vars.m_vnSeq[1] = position;
    vars.PutObject();
    EXPECT_THROW(MakePoints(), CInvalidArgument) << position;
  }
  vars.m_vnSeq[1] = 1;
  vars.PutObject();
  resps.m_vnSeq[2] = 1;
  resps.PutObject();
  EXPECT_THROW(MakePoints(), CInvalidArgument);
  ExpectUntouched();
}

template <class Action>
void ExpectNotGot(Action action) {
  try {
    action();
    ADD_FAILURE();
  } catch (const CGetObject& error) {
    EXPECT_STREQ(error.what(), "Could not get object");
  }
}

TEST_F(UserPoints, NeedTheirTable) {
  ASSERT_TRUE(points.RemoveObject());
  ExpectNotGot([this] { MakeStored(); });
  ExpectUntouched();
}

TEST_F(UserPoints, NeedTheVariablesOfTheTask) {
  AddPoint(1, 1, 0);
  ASSERT_TRUE(vars.RemoveObject());
  ExpectNotGot([this] { MakePoints(); });
  ExpectUntouched();
}

TEST_F(UserPoints, NeedTheResponsesOfTheTask) {
  AddPoint(1, 1, 0);
  ASSERT_TRUE(resps.RemoveObject());
  ExpectNotGot([this] { MakePoints(); });
  ExpectUntouched();
}

TEST_F(UserPoints, NeedTheResultOfTheTask) {
  AddPoint(1, 1, 0);
  CResult result(study.Pod());
  result.m_nID = 7;
  ASSERT_TRUE(result.RemoveObject());
  ExpectNotGot([this] { MakePoints(); });
  ExpectTask(1, {61}, {62});
}

TEST_F(UserPoints, NeedADatabase) {
  CTask loose;
  EXPECT_THROW(loose.SetupDPoints(2, 1, 1, 2, 2, 1, 1), CNoDatabaseOpen);
}

TEST_F(UserPoints, AreTakenUnderTheLock) {
  AddPoint(1, 1, 0);
  points.PutObject();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(MakeStored(), CFileLock);
  std::filesystem::remove(study.LockPath());
  ExpectUntouched();
  const CLock lock(study.Pod(), 0);
  MakeStored();
  ExpectTask(2, {1, 1}, {0, 0});
}

}  // namespace
