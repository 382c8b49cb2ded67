#include <gtest/gtest.h>

#include <string>

#include "results/Iter.h"
#include "tests/task/FunctionsStudy.h"
#include "tests/task/LoadedStudy.h"
#include "tests/task/PointStudies.h"
#include "tests/task/RandomStudy.h"

// Studies of which a task is made, put back from it, and made a task again: what comes back, and
// what a task doesn't keep.

namespace {

// ---- The smallest study, in each type of task ----

class TaskLoadByType : public LoadedStudy<MakeStudy>, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    AddSmallStudy();
    SetType(GetParam());
    MakeWell();
  }
  bool IsDesign() const { return GetParam() == 2; }
};

TEST_P(TaskLoadByType, DefinitionsComeBack) {
  StudyDefinitions expected = AllDefinitions();
  expected.LoseConstraint(1);                // a constraint without a bound
  expected.resps.at(2).m_fUpperScale = 2.0;  // the task's default scale, which the user hasn't set
  if (IsDesign()) StudyDefinitions::LoseObjective(expected.resps.at(1));
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
  ExpectSoundFiles();
}

TEST_P(TaskLoadByType, SecondTaskIsTheSame) {
  LoadTask();
  const CTask second = MakeAgain();
  EXPECT_EQ(RecordsOf(2), RecordsOf(1));
  EXPECT_EQ(ContentOf<CDVar>(2), ContentOf<CDVar>(1));
  ExpectSameOtherTables();
  ExpectSamePoints(1);
  if (!IsDesign()) {
    EXPECT_EQ(ContentOf<CDObj>(2), ContentOf<CDObj>(1));
  } else {
    // A design has no table of objectives, only their number.
    EXPECT_EQ(second.m_uNumObj, 0);
    auto first = Stored<CTask>(1);
    EXPECT_EQ(first.m_uNumObj, 1);
    first.m_uNumObj = 0;
    first.PutObject();
  }
  ExpectSameTask();
}

TEST_P(TaskLoadByType, SettingsAreThoseOfTheTask) {
  const CDesignControl before = Control();
  LoadTask();
  const CDesignControl control = Control();
  EXPECT_EQ(control.m_nTaskType, GetParam());
  EXPECT_EQ(control.m_strProgram, before.m_strProgram);
  EXPECT_EQ(control.m_strVarFile, before.m_strVarFile);
  EXPECT_EQ(control.m_strRespFile, before.m_strRespFile);
  EXPECT_EQ(control.m_nTimeout, before.m_nTimeout);
  EXPECT_EQ(control.m_DOE.m_nMethod, before.m_DOE.m_nMethod);
  EXPECT_EQ(control.m_NGO.m_nPopulation, before.m_NGO.m_nPopulation);
  // A task fills in what the user left empty, and notes some of its own in the blocks.
  EXPECT_EQ(before.m_strUser, "");
  EXPECT_EQ(control.m_strUser, "user");
  EXPECT_EQ(control.m_strHost, "host");
  EXPECT_EQ(control.m_strRemoteDir, "rmtdir");
  EXPECT_EQ(control.m_strSSHCopyTo, "scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}");
  EXPECT_EQ(control.m_strCopyTo, control.m_strSSHCopyTo);
  EXPECT_EQ(before.m_NGO.m_nOldPopulation, 0);
  EXPECT_EQ(control.m_NGO.m_nOldPopulation, 100);
}

std::string TypeName(const testing::TestParamInfo<int>& type) {
  const char* const names[] = {"Gradient", "Surface", "Design", "NonGradient", "Analysis"};
  return names[type.param];
}
INSTANTIATE_TEST_SUITE_P(TaskLoad, TaskLoadByType, testing::Range(0, 5), TypeName);

// ---- Arrays, links, synthetic functions, sets ----

class TaskLoadFunctions : public LoadedStudy<FunctionsStudy> {
 protected:
  StudyDefinitions Expected() {
    StudyDefinitions expected = AllDefinitions();
    expected.RenumberInputs({5, 1, 2, 3, 4, 6});
    expected.RenumberResps({1, 2, 3, 4});
    expected.LoseBounds(2);
    // The first point's values lie between the bounds in force.
    expected.inputs.at(5).m_fInitial = 2.0;
    expected.inputs.at(6).m_fInitial = 2.0;
    expected.LoseConstraint(1);
    expected.LoseConstraint(4);
    // Scales come back as numbers; the default of a bound below 1 as the user's own.
    expected.resps.at(2).m_fLowerScale = 3.0;
    expected.resps.at(3).m_nHasUpperScale = 1;
    EXPECT_EQ(expected.resps.at(3).m_fUpperScale, 1.0);
    // Auxiliary definitions are those in use, numbered, with new names for arguments.
    expected.auxiliaries.erase(3);
    expected.NumberAuxiliary(1, 1, {"Arg__1", "Arg__2", "Arg__3"});
    expected.NumberAuxiliary(5, 2, {"Arg__1", "Arg__2", "Arg__3"});
    expected.NumberAuxiliary(2, 1);
    expected.NumberAuxiliary(4, 2);
    expected.NumberAuxiliary(6, 1);
    return expected;
  }
};

TEST_F(TaskLoadFunctions, DefinitionsComeBack) {
  const StudyDefinitions expected = Expected();
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
  EXPECT_EQ(Stored<CInput>(1).m_strName, "x");
  EXPECT_EQ(Stored<CInput>(1).m_uSize, 3);
  ExpectSoundFiles();
}

TEST_F(TaskLoadFunctions, SecondTaskDiffersInTheBoundsOfItsConstantOnly) {
  LoadTask();
  MakeAgain();
  EXPECT_EQ(AsNumbers(Stored<CDVar>(1).m_vfConstLower), Numbers{-1});
  EXPECT_EQ(AsNumbers(Stored<CDVar>(2).m_vfConstLower), Numbers{-1e30});
  ExpectSameVariablesWithoutConstantBounds();
  EXPECT_EQ(ContentOf<CDObj>(2), ContentOf<CDObj>(1));
  ExpectSameOtherTables();
  ExpectSameTask();
  ExpectSamePoints(1);
}

TEST_F(TaskLoadFunctions, ThirdTimeNothingIsLostAnyMore) {
  LoadTask();
  const StudyDefinitions once = AllDefinitions();
  MakeAgain();
  CTask::LoadTask(Pod(), 2);
  ExpectSameDefinitions(AllDefinitions(), once);
}

// ---- Random variables and responses ----

using TaskLoadRandom = LoadedStudy<TaskMakeRandom>;

TEST_F(TaskLoadRandom, DefinitionsComeBack) {
  StudyDefinitions expected = AllDefinitions();
  expected.RenumberInputs({1, 2, 3, 4, 5, 6});
  expected.RenumberResps({1, 2, 3, 4, 5});
  expected.LoseBounds(6);
  for (const int id : {1, 2, 3, 4}) expected.LoseConstraint(id);
  expected.resps.at(5).m_fUpperScale = 7.0;
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
}

TEST_F(TaskLoadRandom, SecondTaskDiffersInTheBoundsOfItsConstantOnly) {
  LoadTask();
  MakeAgain();
  ExpectSameVariablesWithoutConstantBounds();
  EXPECT_EQ(ContentOf<CDObj>(2), ContentOf<CDObj>(1));
  ExpectSameOtherTables();
  ExpectSameTask();
  ExpectSamePoints(1);
}

TEST_F(TaskLoadRandom, ChildTakesTheDistributionOfItsParent) {
  auto s = Stored<CInput>(2);
  s.m_nDistribution = 1;
  s.PutObject();
  MakeAgain();
  EXPECT_EQ(ContentOf<CDVar>(2), ContentOf<CDVar>(1));
  CTask::LoadTask(Pod(), 2);
  EXPECT_EQ(Stored<CInput>(2).m_nDistribution, 2);
}

TEST_F(TaskLoadRandom, ElementOfAnArrayComesBackAsWhatStandsAtItsPosition) {
  const int link = AddLink("one", {0.0, 1.0});
  CInput y = Function(Input("y", 1), link, {-1});
  y.m_vnIdx = {1};
  const int id = Add(y);
  MakeAgain();
  EXPECT_EQ(AsRows(Stored<CDVar>(2).m_mnLinkSubj), (Rows{{1}}));  // s_1
  CTask::LoadTask(Pod(), 2);
  EXPECT_EQ(AsNumbers(Stored<CInput>(id).m_vnArg), Numbers{-2});
  EXPECT_EQ(AsNumbers(Stored<CInput>(id).m_vnIdx), Numbers{0});
  MakeWell();
  EXPECT_EQ(AsRows(Stored<CDVar>(3).m_mnLinkSubj), (Rows{{1}}));
}

// ---- Scales ----

using TaskLoadScales = LoadedStudy<MakeStudy>;

TEST_F(TaskLoadScales, ScaleOfTheUsersThatEqualsASmallBoundIsLost) {
  AddSmallStudy();
  CResp h = Constrained("h", 0.25);
  h.m_nHasUpperScale = 1;
  h.m_fUpperScale = 0.25;
  Add(h);
  MakeWell();
  LoadTask();
  EXPECT_EQ(Stored<CResp>(3).m_nHasUpperScale, 0);
  EXPECT_EQ(Stored<CResp>(3).m_fUpperScale, 0.25);
  MakeAgain();
  EXPECT_EQ(AsNumbers(Stored<CDCons>(1).m_vfScale), (Numbers{2, 0.25}));
  EXPECT_EQ(AsNumbers(Stored<CDCons>(2).m_vfScale), (Numbers{2, 1}));
}

TEST_F(TaskLoadScales, WhatIsSwitchedOffIsLost) {
  CInput x = Input("x");
  x.m_strText = "of beam";
  x.m_fScale = 5.0;
  x.m_nGoal = 1;
  x.m_fWeight = 3.0;
  Add(x);
  CInput k = Input("k");
  k.m_nUserScale = 1;
  k.m_fScale = 0.5;
  Add(k);
  CResp f = Objective("f");
  f.m_strText = "of weld";
  f.m_fUpper = 9.0;
  f.m_fUpperScale = 9.0;
  Add(f);
  MakeWell();
  StudyDefinitions expected = AllDefinitions();
  expected.inputs.at(1).m_strText = "";
  expected.inputs.at(1).m_fScale = 0.0;
  StudyDefinitions::LoseObjective(expected.inputs.at(1));
  expected.LoseConstraint(1);
  expected.resps.at(1).m_strText = "";
  expected.resps.at(1).m_fUpperScale = 1.0;
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
  MakeAgain();
  ExpectSameTables();
}

// ---- Combinations ----

using TaskLoadCombinatorial = LoadedStudy<TaskMakeCombinatorial>;

TEST_F(TaskLoadCombinatorial, DefinitionsComeBackWithTheValuesOfTheBasePoint) {
  AddTwoChoices();
  MakeWell();
  StudyDefinitions expected = AllDefinitions();
  expected.LoseBounds(2);
  expected.LoseBounds(4);
  expected.LoseConstraint(1);
  expected.NumberAuxiliary(1, 1);
  expected.NumberAuxiliary(2, 2);
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
}

TEST_F(TaskLoadCombinatorial, SecondTaskAdmitsAllMembers) {
  AddTwoChoices();
  MakeWell();
  LoadTask();
  MakeAgain();
  ExpectSameVariablesWithoutConstantBounds();
  EXPECT_EQ(ContentOf<CDObj>(2), ContentOf<CDObj>(1));
  ExpectSameOtherTables();
  ExpectSameTask();
  const Rows constants{{15, 9, 2.5}, {10, 9, 1}, {20, 9, 1}, {10, 9, 2}, {20, 9, 2},
                       {10, 9, 3},   {20, 9, 3}, {10, 9, 5}, {20, 9, 5}};
  for (int number = 0; number <= 8; ++number) {
    EXPECT_EQ(AsNumbers(StoredPoint(2, number).m_CDVar),
              constants[static_cast<std::size_t>(number)]);
  }
  ExpectPointCount(Stored<CResult>(1), 5);
  ExpectPointCount(Stored<CResult>(2), 9);
}

TEST_F(TaskLoadCombinatorial, PointOfACombinationHasItsValues) {
  AddTwoChoices();
  MakeWell();
  CInput::LoadInputs(1, Pod(), 4);
  EXPECT_EQ(Stored<CInput>(1).m_fInitial, 20.0);
  EXPECT_EQ(Stored<CInput>(2).m_fInitial, 9.0);
  EXPECT_EQ(Stored<CInput>(3).m_fInitial, 0.0);
  EXPECT_EQ(Stored<CInput>(4).m_fInitial, 3.0);
}

// ---- User points ----

class TaskLoadUserPoints : public LoadedStudy<TaskMakeUserPoints> {
 protected:
  StudyDefinitions Expected() {
    StudyDefinitions expected = AllDefinitions();
    expected.LoseBounds(2);
    expected.LoseConstraint(1);
    expected.LoseConstraint(2);
    expected.NumberAuxiliary(1, 1, {"Arg__1", "Arg__2"});
    return expected;
  }
  static void SetValues(StudyDefinitions& definitions, double x, double c, double y) {
    definitions.inputs.at(1).m_fInitial = x;
    definitions.inputs.at(2).m_fInitial = c;
    definitions.inputs.at(3).m_fInitial = y;
  }
  void ExpectSameTablesButForConstants() {
    ExpectSameVariablesWithoutConstantBounds();
    ExpectSameOtherTables();
  }
};

TEST_F(TaskLoadUserPoints, StartingPointsComeBackFromTheUsersTable) {
  MakeMultiStart();
  const StudyDefinitions expected = Expected();
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
  MakeAgain();
  ExpectSameTablesButForConstants();
  EXPECT_EQ(ContentOf<CDObj>(2), ContentOf<CDObj>(1));
  ExpectSameTask();
  ExpectSamePoints(3);
}

TEST_F(TaskLoadUserPoints, DesignGivesTheValuesOfItsFirstPoint) {
  MakeDesign();
  StudyDefinitions expected = Expected();
  SetValues(expected, 0.125, 5.0, 0.25);
  StudyDefinitions::LoseObjective(expected.resps.at(1));
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
  MakeAgain();
  ExpectSameTablesButForConstants();
  ExpectSamePoints(2);
}

TEST_F(TaskLoadUserPoints, AnotherPointBecomesTheStartOfTheSecondTask) {
  MakeMultiStart();
  StudyDefinitions expected = Expected();
  SetValues(expected, 0.375, 6.0, 0.75);
  LoadTask();
  CInput::LoadInputs(1, Pod(), 2);
  ExpectSameDefinitions(AllDefinitions(), expected);
  MakeAgain();
  ExpectSameTablesButForConstants();
  ExpectSameTask();
  const CDPoint start = StoredPoint(2, 0);
  EXPECT_EQ(AsNumbers(start.m_IDVar), Numbers{0.375});
  EXPECT_EQ(AsNumbers(start.m_CDVar), Numbers{6});
  EXPECT_EQ(AsNumbers(start.m_LDVar), Numbers{0});
  EXPECT_EQ(PointOf(2, 1), PointOf(1, 1));
  EXPECT_EQ(PointOf(2, 2), PointOf(1, 2));
}

TEST_F(TaskLoadUserPoints, FinalPointOfARunBecomesTheStartOfTheSecondTask) {
  MakeMultiStart();
  auto result = Stored<CResult>(1);
  result.m_nBestIter = 3;
  result.m_nBestSubIter = 1;
  result.PutObject();
  CIter best(Pod());
  best.m_nTaskID = 1;
  best.m_nIter = 3;
  best.m_nSubIter = 1;
  best.m_nThisPoint = 2;
  best.m_nBestPoint = 1;
  best.PutObject();
  StudyDefinitions expected = Expected();
  SetValues(expected, 0.125, 5.0, 0.25);
  LoadTask();
  CInput::LoadInputs(1, Pod(), -1);
  ExpectSameDefinitions(AllDefinitions(), expected);
  MakeAgain();
  ExpectSameTablesButForConstants();
  EXPECT_EQ(AsNumbers(StoredPoint(2, 0).m_IDVar), Numbers{0.125});
}

// ---- Designs that filter their points ----

using TaskLoadFilter = LoadedStudy<TaskMakeFilter>;

TEST_F(TaskLoadFilter, ConstraintsThatWereDroppedAreGone) {
  MakeFiltered(10, 5);
  StudyDefinitions expected = AllDefinitions();
  expected.LoseConstraint(1);
  expected.LoseConstraint(3);
  expected.resps.at(2).m_fUpperScale = 20.0;
  expected.resps.at(4).m_fUpperScale = 40.0;
  expected.NumberAuxiliary(1, 1, {"Arg__1", "Arg__2"});
  expected.NumberAuxiliary(2, 2, {"Arg__1", "Arg__2", "Arg__3"});
  expected.NumberAuxiliary(3, 1);
  LoadTask();
  ExpectSameDefinitions(AllDefinitions(), expected);
}

TEST_F(TaskLoadFilter, SecondTaskIsTheSame) {
  MakeFiltered(10, 5);
  LoadTask();
  MakeAgain();
  EXPECT_EQ(ContentOf<CDVar>(2), ContentOf<CDVar>(1));
  ExpectSameOtherTables();
  ExpectSameTask();
  ExpectSamePoints(1);
}

}  // namespace
