#include <gtest/gtest.h>

#include <cstddef>

#include "tests/task/PointStudies.h"

// The starting points of whole studies, and the constraints that filter points.

namespace {

// ---- Combinations ----

TEST_F(TaskMakeCombinatorial, FirstVariableVariesFastest) {
  AddTwoChoices();
  const CTask task = MakeWell();
  EXPECT_EQ(task.m_uNumIndDV, 1);
  EXPECT_EQ(task.m_uNumConstDV, 3);
  EXPECT_EQ(task.m_uNumSets, 2);
  EXPECT_EQ(task.m_uNumPoints, 1);
  EXPECT_EQ(AsNumbers(task.m_vnAnalyzeFlags), Numbers{1});
  const auto vars = Stored<CDVar>(1);
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{0, 1, 0, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vnType), (Numbers{23, 23, 20, 23}));
  EXPECT_EQ(vars.m_vstrConstName, (Names{"b", "c", "a"}));
  EXPECT_EQ(AsNumbers(vars.m_vnConstSet), (Numbers{2, 0, 1}));
  EXPECT_EQ(AsNumbers(vars.m_vfConstLower), (Numbers{-1e30, -1, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vfConstUpper), (Numbers{1e30, 1, 4}));
  EXPECT_EQ(AsNumbers(Stored<CDSet>(1).m_vnAuxID), (Numbers{1, 2}));

  const Rows constants{{15, 9, 2.5}, {10, 9, 2}, {20, 9, 2}, {10, 9, 3}, {20, 9, 3}};
  for (int number = 0; number <= 4; ++number) {
    const CDPoint point = StoredPoint(1, number);
    EXPECT_EQ(AsNumbers(point.m_CDVar), constants[static_cast<std::size_t>(number)]) << number;
    EXPECT_EQ(AsNumbers(point.m_IDVar), Numbers{0});
  }
  ExpectPointCount(Stored<CResult>(1), 5);
  EXPECT_EQ(CDPoint(Pod()).CountObjects(), 5);
  ExpectSoundFiles();
}

TEST_F(TaskMakeCombinatorial, BoundsBetweenMembersAdmitNoCombination) {
  AddChoiceBetweenMembers();
  MakeWell();
  // The copy of the base point is made before any value is looked at.
  EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_CDVar), Numbers{3});
  EXPECT_EQ(AsNumbers(StoredPoint(1, 1).m_CDVar), Numbers{3});
  EXPECT_EQ(CDPoint(Pod()).CountObjects(), 2);
}

// ---- User points ----

TEST_F(TaskMakeUserPoints, FollowTheFirstPointOfAGradientOptimisation) {
  MakeMultiStart();
  ExpectToFollowTheFirstPoint();
}

TEST_F(TaskMakeUserPoints, FollowTheFirstPointOfAResponseSurfaceOptimisation) {
  CDesignControl control = Control();
  control.m_nTaskType = 1;
  control.m_RSA.m_nInitialDOE = 11;
  control.PutObject();
  MakeWell();
  ExpectToFollowTheFirstPoint();
}

TEST_F(TaskMakeUserPoints, AreThePointsOfADesignOfExperiments) {
  MakeDesign();
  ExpectToBeAllPoints();
}

TEST_F(TaskMakeUserPoints, AreThePointsOfASwarm) {
  CDesignControl control = Control();
  control.m_nTaskType = 3;
  control.m_NGO.m_nStart = 11;
  control.PutObject();
  MakeWell();
  ExpectToBeAllPoints();
}

// ---- Designs of experiments ----

TEST_F(TaskMakeFilter, KeepsTheConstraintsOnVariables) {
  MakeFiltered(10, 5);
  EXPECT_EQ(PrintedLines(), Between({}));
  const auto task = Stored<CTask>(1);
  EXPECT_EQ(task.m_uNumCons, 3);
  EXPECT_EQ(task.m_uNumPoints, 0);
  EXPECT_EQ(task.m_DOE.m_nFilter, 5);
  const auto cons = Stored<CDCons>(1);
  EXPECT_EQ(AsNumbers(cons.m_vnSubj), (Numbers{0, 0, 0}));
  EXPECT_EQ(AsNumbers(cons.m_vnSubjType), (Numbers{21, 25, 26}));
  EXPECT_EQ(AsNumbers(cons.m_vfBound), (Numbers{1.5, 20, 40}));
  EXPECT_EQ(AsNumbers(cons.m_vnMult), (Numbers{1, 1, 1}));
  EXPECT_EQ(AsNumbers(cons.m_vfScale), (Numbers{1.5, 20, 40}));
  ExpectSoundFiles();
}

TEST_F(TaskMakeFilter, KeepsThemForUserPointsToo) {
  SetPoints({{1, 1, 0, {0.0, 0.0}, {0.0, 0.0, 0.0, 0.0}}});
  EXPECT_EQ(MakeFiltered(11, 1).m_uNumCons, 3);
  EXPECT_EQ(Stored<CDCons>(1).m_vnSubj.size(), 3U);
}

TEST_F(TaskMakeFilter, CountsNoConstraintsWhenItIsOff) {
  EXPECT_EQ(MakeFiltered(10, 0).m_uNumCons, 0);
  EXPECT_EQ(AsNumbers(Stored<CDCons>(1).m_vfBound), (Numbers{1.5, 10, 20, 30, 40}));
}

TEST_F(TaskMakeFilter, IsNotForOtherDesigns) {
  EXPECT_EQ(MakeFiltered(1, 1).m_uNumCons, 0);
  EXPECT_EQ(
      PrintedLines(),
      Between({"LWarn: (Design Control): Design variable filtering can only be applied to random "
               "and user",
               "LPrint:      provided designs. Filtering will not be performed.\n\n"}));
  EXPECT_EQ(Stored<CDCons>(1).m_vnSubj.size(), 5U);
}

}  // namespace
