#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/ModifiedTasks.h"

namespace {

using TaskModified = ModifiedTasks;

// ---- Whole tasks ----

TEST_F(TaskModified, WithNothingFixedIsACopy) {
  StorePoint(0);
  ASSERT_EQ(Modify({false, false, false, false, false}), 2);
  EXPECT_EQ(ClassesOfTask(Files(), 2), ClassesOfTask(Files(), 1));
  ExpectStored(Expected(5, 1));
  ExpectNoMessages(2);
  ExpectTablesCopied(2);
  ExpectNotRun(2, 1);
  ExpectStored(PointOf(2, 0, 0));
  ExpectSoundFiles();
}

/// k becomes the second constant; x and d move up by one.
TEST_F(TaskModified, WithTheFirstFixedMovesAllOthers) {
  StorePoint(0);
  ASSERT_EQ(Modify({true, false, false, false, false}), 2);
  ExpectStored(Expected(4, 2));
  ExpectNoMessages(2);
  ExpectNotRun(2, 1);

  auto vars = CopyFor<CDVar>(2);
  vars.m_vnSeq = {1, 0, 1, 2, 0, 0, 0, 1, 3};
  vars.m_vnType = {23, 20, 20, 20, 23, 21, 22, 22, 20};
  vars.m_vnIndIDs = {1, 1, 1, 6};
  vars.m_vnConstIDs = {2, 5};
  vars.m_vfIndLowerIn = {0.0, 0.0, 0.0, 1.5};
  vars.m_vfIndLower = {0.0, 0.0, 0.0, 2.0};
  vars.m_vfIndUpperIn = {10.0, 10.0, 10.0, 5.0};
  vars.m_vfIndUpper = {10.0, 10.0, 10.0, 4.0};
  vars.m_vfIndScale = {0.0, 0.0, 0.0, 0.0};
  vars.m_vstrIndName = {"x_1", "x_2", "x_3", "d"};
  vars.m_vstrConstName = {"c", "k"};
  vars.m_vnConstSet = {0, 0};
  vars.m_vfConstLower = {-1.0, -2.5};
  vars.m_vfConstUpper = {1.0, 2.5};
  vars.m_mnLinkSubj = {{2, 0}};
  vars.m_mnSynSubj = {{1, 0}, {1, 0}};
  vars.m_vnDiscreteRef = {0, 0, 0, 6};
  ExpectStored(vars);

  auto resps = CopyFor<CDResp>(2);
  resps.m_mnLinkSubj = {{1, 1}};
  ExpectStored(resps);
  ExpectCopied<CDCons>(2);
  auto terms = CopyFor<CDObj>(2);
  terms.m_vnSubj = {1, 0, 1};
  terms.m_vnSubjType = {23, 24, 24};
  ExpectStored(terms);
  ExpectCopied<CDLink>(2);
  ExpectCopied<CDEqn>(2);
  ExpectCopied<CDSet>(2);
  ExpectPoint(0, {1, 2, 3, 4}, {8, 100});
  ExpectSoundFiles();
}

/// x_1, x_3 and d, which is discrete, become constants in this order; k and x_2 stay.
TEST_F(TaskModified, WithSeveralFixedKeepsTheirOrder) {
  StorePoint(0);
  ASSERT_EQ(Modify({false, true, false, true, true}), 2);
  ExpectStored(Expected(2, 4));

  auto vars = CopyFor<CDVar>(2);
  vars.m_vnSeq = {0, 1, 1, 2, 0, 0, 0, 1, 3};
  vars.m_vnType = {20, 23, 20, 23, 23, 21, 22, 22, 23};
  vars.m_vnIndIDs = {5, 1};
  vars.m_vnConstIDs = {2, 1, 1, 6};
  vars.m_vfIndLowerIn = {-2.5, 0.0};
  vars.m_vfIndLower = {-1.0, 0.0};
  vars.m_vfIndUpperIn = {2.5, 10.0};
  vars.m_vfIndUpper = {2.0, 10.0};
  vars.m_vfIndScale = {2.0, 0.0};
  vars.m_vstrIndName = {"k", "x_2"};
  vars.m_vstrConstName = {"c", "x_1", "x_3", "d"};
  vars.m_vnConstSet = {0, 0, 0, 0};
  vars.m_vfConstLower = {-1.0, 0.0, 0.0, 1.5};
  vars.m_vfConstUpper = {1.0, 10.0, 10.0, 5.0};
  vars.m_mnLinkSubj = {{2, 0}};
  vars.m_mnLinkType = {{23, 23}};
  vars.m_mnSynSubj = {{1, 2, 0}, {1, 2, 0}};
  vars.m_mnSynType = {{20, 23, 21}, {20, 23, 21}};
  vars.m_mnSynLen = {{1, 1, 1}, {1, 1, 1}};
  vars.m_vnDiscreteRef = {-1, 0};
  ExpectStored(vars);

  auto resps = CopyFor<CDResp>(2);
  resps.m_mnLinkSubj = {{1, 1}};
  ExpectStored(resps);
  ExpectCopied<CDObj>(2);
  ExpectPoint(0, {0, 2}, {8, 101, 103, 104});
}

/// The array elements x_2 and x_3 stay together as an argument of z.
TEST_F(TaskModified, WithAnArgumentFixedAsAWholeKeepsItWhole) {
  ASSERT_EQ(Modify({false, false, true, true, false}), 2);
  const auto vars = Stored<CDVar>(2);
  EXPECT_EQ(AsRows(vars.m_mnSynSubj), (Rows{{1, 0}, {1, 0}}));
  EXPECT_EQ(AsRows(vars.m_mnSynType), (Rows{{23, 21}, {23, 21}}));
  EXPECT_EQ(AsRows(vars.m_mnSynLen), (Rows{{2, 1}, {2, 1}}));
  EXPECT_EQ(AsRows(vars.m_mnLinkSubj), (Rows{{2, 0}}));
  EXPECT_EQ(AsRows(vars.m_mnLinkType), (Rows{{23, 23}}));
  const auto resps = Stored<CDResp>(2);
  EXPECT_EQ(AsRows(resps.m_mnLinkSubj), (Rows{{1, 1}}));
  EXPECT_EQ(AsRows(resps.m_mnLinkType), (Rows{{23, 24}}));
}

TEST_F(TaskModified, WithAllFixedHasNoIndependentVariable) {
  StorePoint(0);
  ASSERT_EQ(Modify({true, true, true, true, true}), 2);
  ExpectStored(Expected(0, 6));
  const auto vars = Stored<CDVar>(2);
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{1, 2, 3, 4, 0, 0, 0, 1, 5}));
  EXPECT_EQ(AsNumbers(vars.m_vnType), (Numbers{23, 23, 23, 23, 23, 21, 22, 22, 23}));
  EXPECT_EQ(vars.m_vstrConstName, (Names{"c", "k", "x_1", "x_2", "x_3", "d"}));
  EXPECT_TRUE(vars.m_vstrIndName.empty());
  EXPECT_EQ(vars.m_vfIndScale.size(), 0U);
  ExpectPoint(0, {}, {8, 100, 101, 102, 103, 104});
}

TEST_F(TaskModified, LeavesTheOldTaskAndTheObjectThatItIsCalledOn) {
  const StudyFiles before = Files();
  CTask task(Pod());
  task.m_nID = 1;
  task.m_strTitle = "caller";
  Flags fix{true, false, true, false, false};
  EXPECT_EQ(task.CreateModifiedGPostTask("what if", fix, values, lower, upper), 2);
  EXPECT_EQ(task.m_nID, 1);
  EXPECT_EQ(task.m_strTitle, "caller");
  ExpectUnchangedBut(before, 2);
}

TEST_F(TaskModified, HasNoChildrenButKeepsItsParentAndRestarts) {
  auto old = Stored<CTask>(1);
  old.m_nParent = -3;
  old.m_nRestartOf = 8;
  old.m_vnChildren = {5, 6};
  old.m_vnRestarts = {9};
  old.PutObject();
  CTask expected = Expected(5, 1);
  expected.m_vnChildren.clear();
  Modify({false, false, false, false, false});
  ExpectStored(expected);
}

TEST_F(TaskModified, CanBeModifiedAgain) {
  StorePoint(0);
  ASSERT_EQ(Modify({false, true, false, false, false}), 2);
  ASSERT_EQ(Modify({true, false, false, true}, 2), 3);
  const auto vars = Stored<CDVar>(3);
  EXPECT_EQ(vars.m_vstrIndName, (Names{"x_2", "x_3"}));
  EXPECT_EQ(vars.m_vstrConstName, (Names{"c", "x_1", "k", "d"}));
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{2, 1, 0, 1, 0, 0, 0, 1, 3}));
  const CDPoint point = StoredPoint(3, 0);
  EXPECT_EQ(AsNumbers(point.m_IDVar), (Numbers{2, 3}));
  EXPECT_EQ(AsNumbers(point.m_CDVar), (Numbers{8, 101, 100, 103}));
  EXPECT_EQ(Stored<CTask>(3).m_uNumIndDV, 2);
  EXPECT_EQ(Stored<CTask>(3).m_uNumConstDV, 4);
}

TEST_F(TaskModified, FoldsBackIntoTheSameInputs) {
  ASSERT_EQ(Modify({true, false, false, false, true}), 2);
  std::vector<int> ids, kinds, positions, sizes, entries;
  Stored<CDVar>(2).IDInputObjects(ids, kinds, positions, sizes, entries);
  EXPECT_EQ(ids, (std::vector<int>{5, 1, 2, 3, 4, 6}));
  EXPECT_EQ(kinds, (std::vector<int>{23, 20, 23, 21, 22, 23}));
  EXPECT_EQ(positions, (std::vector<int>{1, 0, 0, 0, 0, 2}));
  EXPECT_EQ(sizes, (std::vector<int>{1, 3, 1, 1, 2, 1}));
  EXPECT_EQ(entries, (std::vector<int>{0, 1, 4, 5, 6, 8}));
}

// ---- Constraints and objectives ----

/// Constraints on k and d, as other programs may store them, and one on y.
TEST_F(TaskModified, TightensConstraintsOnIndependentVariables) {
  auto cons = Stored<CDCons>(1);
  cons.m_vnSubj = {0, 0, 0, 4, 4, 4, 0};
  cons.m_vnSubjType = {20, 20, 20, 20, 20, 20, 21};
  cons.m_vnMult = {-1, 1, 0, -1, 1, 2, 1};
  cons.m_vfBound = {-11.0, 11.0, 50.0, -13.0, 13.0, 51.0, 20.0};
  cons.m_vfScale = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0};
  cons.PutObject();
  ASSERT_EQ(Modify({true, true, false, false, false}), 2);
  cons.m_nID = 2;
  cons.m_vnSubj = {1, 1, 1, 2, 2, 2, 0};
  cons.m_vnSubjType = {23, 23, 23, 20, 20, 20, 21};
  cons.m_vfBound = {-10.0, 10.0, 50.0, -13.0, 13.0, 51.0, 20.0};
  ExpectStored(cons);
}

TEST_F(TaskModified, LeavesConstraintsThatAreTighterAlready) {
  auto cons = Stored<CDCons>(1);
  cons.m_vnSubj = {3, 3};
  cons.m_vnSubjType = {20, 20};
  cons.m_vnMult = {-1, 1};
  cons.m_vfBound = {-1.0, 1.0};
  cons.m_vfScale = {1.0, 1.0};
  cons.PutObject();
  ASSERT_EQ(Modify({false, false, false, true, false}), 2);
  cons.m_nID = 2;
  cons.m_vnSubj = {1, 1};
  cons.m_vnSubjType = {23, 23};
  ExpectStored(cons);
}

TEST_F(TaskModified, KeepsObjectivesOnWhatStays) {
  ASSERT_EQ(Modify({false, true, true, true, true}), 2);
  ExpectCopied<CDObj>(2);
}

// ---- Starting points ----

TEST_F(TaskModified, OfASurfaceTaskCopiesItsStartingPoints) {
  StorePoints(3);
  SetStoredType(1);
  CTask expected = Expected(4, 2);
  expected.m_vnAnalyzeFlags = {0, 0, 0};
  ASSERT_EQ(Modify({false, false, true, false, false}), 2);
  ExpectStored(expected);
  ExpectNotRun(2, 3);
  ExpectPoint(0, {0, 1, 3, 4}, {8, 102});
  ExpectPoint(1, {10, 11, 13, 14}, {18, 102});
  ExpectPoint(2, {20, 21, 23, 24}, {28, 102});
  EXPECT_EQ(CountPoints(2), 3);
}

TEST_F(TaskModified, OfASurfaceTaskWithoutStartingPointsHasOne) {
  StorePoints(3);
  auto old = Stored<CTask>(1);
  old.m_nType = 1;
  old.m_uNumPoints = 0;
  old.PutObject();
  CTask expected = Expected(5, 1);
  Modify({false, false, false, false, false});
  ExpectStored(expected);
  ExpectNotRun(2, 1);
  EXPECT_EQ(CountPoints(2), 1);
}

TEST_F(TaskModified, OfOtherTasksTakesTheFirstPointAlone) {
  StorePoints(3);
  for (const int type : {0, 3, 4}) {
    SetStoredType(type);
    CTask expected = Expected(4, 2);
    Modify({true, false, false, false, false});
    ExpectStored(expected);
    ExpectNotRun(2, 1);
    ExpectPoint(0, {1, 2, 3, 4}, {8, 100});
    EXPECT_EQ(CountPoints(2), 1);
    CTask::RemoveSpecifiedTask(Pod(), 2);
  }
}

}  // namespace
