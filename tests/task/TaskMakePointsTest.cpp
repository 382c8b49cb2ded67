#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/MakeStudy.h"

// The starting points of whole studies, and the constraints that filter points.

namespace {

// ---- Combinations ----

class TaskMakeCombinatorial : public MakeStudy {
 protected:
  CInput Choice(const std::string& name, int set, double lower, double upper, double initial) {
    CInput choice = Input(name, 6);
    choice.m_nAuxID = set;
    choice.m_fLower = lower;
    choice.m_fUpper = upper;
    choice.m_fInitial = initial;
    return choice;
  }
};

TEST_F(TaskMakeCombinatorial, FirstVariableVariesFastest) {
  const int plates = AddSet("plates", {1.0, 2.0, 3.0, 5.0});
  const int bars = AddSet("bars", {10.0, 20.0});
  Add(Choice("b", bars, -1e30, 1e30, 15.0));
  CInput c = Input("c", 3);
  c.m_fInitial = 9.0;
  Add(c);
  Add(Input("x"));
  Add(Choice("a", plates, 2.0, 4.0, 2.5));
  Add(Objective("f"));

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
  const int plates = AddSet("plates", {1.0, 5.0});
  Add(Choice("a", plates, 2.0, 4.0, 3.0));
  Add(Input("x"));
  Add(Objective("f"));
  MakeWell();
  // The copy of the base point is made before any value is looked at.
  EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_CDVar), Numbers{3});
  EXPECT_EQ(AsNumbers(StoredPoint(1, 1).m_CDVar), Numbers{3});
  EXPECT_EQ(CDPoint(Pod()).CountObjects(), 2);
}

// ---- User points ----

/// x, c (constant), y (linked); f, g (linked), with three rows of points of which two are used.
class TaskMakeUserPoints : public MakeStudy {
 protected:
  void SetUp() override {
    const int twice = AddLink("twice", {0.0, 2.0});
    CInput x = Input("x");
    x.m_fInitial = 0.5;
    Add(x);
    CInput c = Input("c", 3);
    c.m_fInitial = 9.0;
    Add(c);
    Add(Function(Input("y", 1), twice, {-1}));
    Add(Objective("f"));
    Add(Function(Resp("g", 1), twice, {1}));
    SetPoints({{1, 1, 0, {0.125, 5.0, 0.25}, {100.0, 200.0}},
               {0, 0, 1, {0.0, 0.0, 0.0}, {1.0, 2.0}},
               {1, 0, 1, {0.375, 6.0, 0.75}, {11.0, 22.0}}});
  }

  void ExpectAnalysedPoint(const CDPoint& point) {
    EXPECT_EQ(AsNumbers(point.m_IDVar), Numbers{0.125});
    EXPECT_EQ(AsNumbers(point.m_CDVar), Numbers{5});
    EXPECT_EQ(AsNumbers(point.m_LDVar), Numbers{0.25});
    EXPECT_EQ(point.m_SDVar.size(), 0U);
    ExpectNoResponses(point);
  }
  void ExpectKnownPoint(const CDPoint& point) {
    EXPECT_EQ(AsNumbers(point.m_IDVar), Numbers{0.375});
    EXPECT_EQ(AsNumbers(point.m_CDVar), Numbers{6});
    EXPECT_EQ(AsNumbers(point.m_LDVar), Numbers{0.75});
    EXPECT_EQ(AsNumbers(point.m_IResp), Numbers{11});
    EXPECT_EQ(AsNumbers(point.m_LResp), Numbers{22});
    EXPECT_EQ(point.m_SResp.size(), 0U);
  }
};

TEST_F(TaskMakeUserPoints, FollowTheFirstPointOfAnOptimisation) {
  CDesignControl control = Control();
  control.m_DGO.m_nMultiStart = 1;
  control.PutObject();
  MakeWell();
  const auto task = Stored<CTask>(1);
  EXPECT_EQ(task.m_uNumPoints, 3);
  EXPECT_EQ(AsNumbers(task.m_vnAnalyzeFlags), (Numbers{1, 1, 0}));
  EXPECT_EQ(AsNumbers(task.m_vnPointLocked), (Numbers{0, 0, 1}));
  EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_IDVar), Numbers{0.5});
  EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_CDVar), Numbers{9});
  ExpectAnalysedPoint(StoredPoint(1, 1));
  ExpectKnownPoint(StoredPoint(1, 2));
  EXPECT_EQ(CDPoint(Pod()).CountObjects(), 3);
  ExpectPointCount(Stored<CResult>(1), 3);
  ExpectSoundFiles();
}

TEST_F(TaskMakeUserPoints, AreThePointsOfADesignOfExperiments) {
  CDesignControl control = Control();
  control.m_nTaskType = 2;
  control.m_DOE.m_nMethod = 11;
  control.PutObject();
  MakeWell();
  const auto task = Stored<CTask>(1);
  EXPECT_EQ(task.m_uNumPoints, 2);
  EXPECT_EQ(AsNumbers(task.m_vnAnalyzeFlags), (Numbers{1, 0}));
  EXPECT_EQ(AsNumbers(task.m_vnPointLocked), (Numbers{0, 1}));
  ExpectAnalysedPoint(StoredPoint(1, 0));
  ExpectKnownPoint(StoredPoint(1, 1));
  EXPECT_EQ(CDPoint(Pod()).CountObjects(), 2);
  ExpectPointCount(Stored<CResult>(1), 2);
  ExpectSoundFiles();
}

// ---- Designs of experiments ----

/// Constraints on y (linked), f, g (a link of variables), h (a link of f and a variable), s
/// (synthetic, of variables).
class TaskMakeFilter : public MakeStudy {
 protected:
  void SetUp() override {
    const int twice = AddLink("twice", {0.0, 2.0});
    const int sum = AddLink("sum", {0.0, 1.0, 1.0});
    const int square = AddEquation("square", "a", "a*a");
    Add(Input("x"));
    CInput y = Function(Input("y", 1), twice, {-1});
    y.m_fLower = -1e30;
    y.m_fUpper = 1.5;
    Add(y);
    Add(Constrained("f", 10.0));
    Add(Function(Constrained("g", 20.0, 1), sum, {-1, -2}));
    Add(Function(Constrained("h", 30.0, 1), sum, {-1, 1}));
    Add(Function(Constrained("s", 40.0, 2), square, {-2}));
  }
  CTask MakeFiltered(int method, int filter) {
    CDesignControl control = Control();
    control.m_nTaskType = 2;
    SetRandomDesign(control, 6);
    control.m_DOE.m_nMethod = method;
    control.m_DOE.m_nFilter = filter;
    control.PutObject();
    return Make();
  }
};

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
