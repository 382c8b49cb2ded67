#include <gtest/gtest.h>

#include "tests/task/PointStudies.h"
#include "tests/task/RandomStudy.h"

// Tasks with random or combinatorial variables, some of whose independent variables are fixed.

namespace {

using Flags = std::valarray<bool>;

/// Fixes the variables of task 1 at 50, 51, ...; the ID of the new task.
int Modify(POD* pod, Flags fix) {
  std::valarray<double> values(fix.size());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = 50.0 + static_cast<double>(i);
  std::valarray<double> none(fix.size());
  CTask task(pod);
  task.m_nID = 1;
  return task.CreateModifiedGPostTask("", fix, values, none, none);
}

/// Entries m_1 s_1 m_2 s_2 u w1 w2 w3, of which w3 is a constant.
class TaskModifiedRandom : public TaskMakeRandom {};

TEST_F(TaskModifiedRandom, KeepTheRandomVariableOfEachEntry) {
  const auto before = Stored<CDVar>(1);
  ASSERT_EQ(before.m_vstrIndName, (Names{"m_1", "s_1", "m_2", "s_2", "u", "w1", "w2"}));
  ASSERT_EQ(Modify(Pod(), {false, true, false, false, true, false, true}), 2);
  const auto vars = Stored<CDVar>(2);
  EXPECT_EQ(vars.m_vstrIndName, (Names{"m_1", "m_2", "s_2", "w1"}));
  EXPECT_EQ(vars.m_vstrConstName, (Names{"w3", "s_1", "u", "w2"}));
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{0, 1, 1, 2, 2, 3, 3, 0}));
  EXPECT_EQ(AsNumbers(vars.m_vnType), (Numbers{20, 23, 20, 20, 23, 20, 23, 23}));
  EXPECT_EQ(AsNumbers(vars.m_vnRandIndex), (Numbers{0, 0, 1, 1, -1, 2, 2, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vnRandParam), (Numbers{-1, -2, -1, -2, 0, 0, 1, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vnRandDist), (Numbers{2, 2, 3}));
  EXPECT_EQ(AsNumbers(vars.m_vfConstLower), (Numbers{-1, 0.5, -1, 1}));
  EXPECT_EQ(AsNumbers(vars.m_vfConstUpper), (Numbers{1, 2, 1, 5}));
  const auto task = Stored<CTask>(2);
  EXPECT_EQ(task.m_uNumRandDV, Stored<CTask>(1).m_uNumRandDV);
  EXPECT_EQ(task.m_uNumRandResp, Stored<CTask>(1).m_uNumRandResp);
  EXPECT_EQ(task.m_uNumIndDV, 4);
  EXPECT_EQ(task.m_uNumConstDV, 4);
  const CDPoint point = StoredPoint(2, 0);
  EXPECT_EQ(AsNumbers(point.m_IDVar), (Numbers{3, 3, 1, 1}));
  EXPECT_EQ(AsNumbers(point.m_CDVar), (Numbers{6, 51, 54, 56}));
}

TEST_F(TaskModifiedRandom, KeepTheRandomResponses) {
  auto resps = Stored<CDResp>(1);
  ASSERT_EQ(Modify(Pod(), {true, true, true, true, true, true, true}), 2);
  const auto copied = Stored<CDResp>(2);
  EXPECT_EQ(copied.m_vnRandIndex, resps.m_vnRandIndex);
  EXPECT_EQ(copied.m_vnRBOParam, resps.m_vnRBOParam);
  EXPECT_EQ(copied.m_vstrIndName, resps.m_vstrIndName);
}

using TaskModifiedCombinatorial = TaskMakeCombinatorial;

TEST_F(TaskModifiedCombinatorial, KeepTheirSetsBeforeTheFixedOnes) {
  AddTwoChoices();
  MakeWell();
  ASSERT_EQ(Modify(Pod(), Flags(true, 1)), 2);
  const auto vars = Stored<CDVar>(2);
  EXPECT_EQ(vars.m_vstrConstName, (Names{"b", "c", "a", "x"}));
  EXPECT_EQ(AsNumbers(vars.m_vnConstSet), (Numbers{2, 0, 1, 0}));
  EXPECT_EQ(AsNumbers(vars.m_vfConstLower), (Numbers{-1e30, -1, 2, -1}));
  EXPECT_EQ(AsNumbers(vars.m_vfConstUpper), (Numbers{1e30, 1, 4, 1}));
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{0, 1, 3, 2}));
  EXPECT_EQ(AsNumbers(StoredPoint(2, 0).m_CDVar), (Numbers{15, 9, 2.5, 50}));
  EXPECT_EQ(CTask(Pod()).SetupDPointsCombin(Pod(), 2, false), 4);
}

}  // namespace
