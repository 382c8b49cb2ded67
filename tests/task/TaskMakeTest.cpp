#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/StoredRecord.h"
#include "tests/task/MakeStudy.h"

namespace {

using TaskMake = MakeStudy;

const Names kAllRecords{"CTask", "CResult", "CDVar", "CDPoint 0", "CDResp",  "CDCons",
                        "CDObj", "CDLink",  "CDEqn", "CDSet",     "CMessage"};
const Names kRecordsOfDesign{"CTask",  "CResult", "CDVar", "CDPoint 0", "CDResp",
                             "CDCons", "CDLink",  "CDEqn", "CDSet",     "CMessage"};

// ---- What there is in the end, for each type of task ----

class TaskMakeByType : public MakeStudy, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    AddSmallStudy();
    SetType(GetParam());
  }
};

TEST_P(TaskMakeByType, WritesAllRecordsAndNothingElse) {
  auto counts = ClassCounts();
  const CTask task = MakeWell();
  EXPECT_EQ(task.m_nID, 1);
  const bool design = GetParam() == 2;
  EXPECT_EQ(RecordsOf(1), design ? kRecordsOfDesign : kAllRecords);
  for (const long record : {3000, 4000, 5000, 6000, 8000, 9000, 11000, 12000, 14000, 21000}) {
    counts[record] = 1;
  }
  if (!design) counts[7000] = 1;
  EXPECT_EQ(ClassCounts(), counts);
  ExpectSoundFiles();
}

TEST_P(TaskMakeByType, CountsWhatTheTaskContains) {
  const CTask task = MakeWell();
  const bool design = GetParam() == 2;
  EXPECT_EQ(task.m_nType, GetParam());
  EXPECT_EQ(task.m_uNumIndDV, 1);
  EXPECT_EQ(task.m_uNumLinkDV, 0);
  EXPECT_EQ(task.m_uNumSynDV, 0);
  EXPECT_EQ(task.m_uNumConstDV, 0);
  EXPECT_EQ(task.m_uNumIndResp, 2);
  EXPECT_EQ(task.m_uNumLinkResp, 0);
  EXPECT_EQ(task.m_uNumSynResp, 0);
  EXPECT_EQ(task.m_uNumCons, design ? 0 : 1);
  EXPECT_EQ(task.m_uNumObj, 1);
  EXPECT_EQ(task.m_uNumLinks, 0);
  EXPECT_EQ(task.m_uNumEqns, 0);
  EXPECT_EQ(task.m_uNumSets, 0);
  EXPECT_EQ(task.m_uNumPoints, design ? 0 : 1);
  EXPECT_EQ(task.m_uNumRandDV, 0);
  EXPECT_EQ(task.m_uNumRandResp, 0);
  EXPECT_EQ(AsNumbers(task.m_vnAnalyzeFlags), design ? Numbers{} : Numbers{1});
  EXPECT_EQ(AsNumbers(task.m_vnPointLocked), Numbers{});
  EXPECT_EQ(task.m_nParent, 0);
  EXPECT_EQ(task.m_nRestartOf, 0);
  EXPECT_TRUE(task.m_vnChildren.empty());
  EXPECT_TRUE(task.m_vnRestarts.empty());
}

TEST_P(TaskMakeByType, StoresTheTaskAsItIsInMemory) {
  CTask task = MakeWell();
  auto stored = Stored<CTask>(1);
  const std::string record = StoredRecord(stored);
  task.PutObject();
  stored = Stored<CTask>(1);
  EXPECT_EQ(StoredRecord(stored), record);
}

TEST_P(TaskMakeByType, TablesHoldTheSmallStudy) {
  MakeWell();
  const auto vars = Stored<CDVar>(1);
  EXPECT_EQ(AsNumbers(vars.m_vnIndIDs), Numbers{1});
  EXPECT_EQ(vars.m_vstrIndName, Names{"x"});
  const auto resps = Stored<CDResp>(1);
  EXPECT_EQ(AsNumbers(resps.m_vnIndIDs), (Numbers{1, 2}));
  EXPECT_EQ(resps.m_vstrIndName, (Names{"f", "g"}));
  // A design of experiments keeps its constraints in the table, though it counts none.
  const auto cons = Stored<CDCons>(1);
  EXPECT_EQ(AsNumbers(cons.m_vnSubj), Numbers{1});
  EXPECT_EQ(AsNumbers(cons.m_vfBound), Numbers{2});
  if (GetParam() != 2) {
    const auto terms = Stored<CDObj>(1);
    EXPECT_EQ(AsNumbers(terms.m_vnSubj), Numbers{0});
    EXPECT_EQ(AsNumbers(terms.m_vnSubjType), Numbers{24});
  }
  EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_IDVar), Numbers{0.5});
  EXPECT_TRUE(Stored<CDLink>(1).m_vnAuxID.empty());
  EXPECT_TRUE(Stored<CDEqn>(1).m_vnAuxID.empty());
  EXPECT_TRUE(Stored<CDSet>(1).m_vnAuxID.empty());
}

TEST_P(TaskMakeByType, ResultAndMessagesStartEmpty) {
  MakeWell();
  const auto result = Stored<CResult>(1);
  EXPECT_EQ(result.m_nNumPoints, 1);
  EXPECT_EQ(result.m_nTotalPoints, 1);
  EXPECT_EQ(result.m_nRunStatus, 0);
  EXPECT_EQ(result.m_nAnalysisCalls, 0);
  EXPECT_TRUE(Stored<CMessage>(1).m_Messages.empty());
}

INSTANTIATE_TEST_SUITE_P(EachType, TaskMakeByType, testing::Range(0, 5));

// ---- IDs ----

TEST_F(TaskMake, TaskIDsAreTheSmallestFreeOnes) {
  AddSmallStudy();
  for (int id = 1; id <= 3; ++id) EXPECT_EQ(MakeWell().m_nID, id);
  CTask second(Pod());
  second.m_nID = 2;
  ASSERT_TRUE(second.RemoveObject());
  EXPECT_EQ(MakeWell().m_nID, 2);
  EXPECT_EQ(MakeWell().m_nID, 4);
  ExpectSoundFiles();
}

TEST_F(TaskMake, TaskDoesNotFollowTheDefinitionsAfterwards) {
  AddSmallStudy();
  MakeWell();
  CInput x = Input("renamed");
  x.m_nID = 1;
  x.m_uIndex = 1;
  x.PutObject();
  SetType(4);
  EXPECT_EQ(Stored<CTask>(1).m_nType, 0);
  EXPECT_EQ(Stored<CDVar>(1).m_vstrIndName, Names{"x"});
  MakeWell();
  EXPECT_EQ(Stored<CTask>(2).m_nType, 4);
  EXPECT_EQ(Stored<CDVar>(2).m_vstrIndName, Names{"renamed"});
}

TEST_F(TaskMake, CreationTimeHasNoLineEnd) {
  AddSmallStudy();
  const std::string created = MakeWell().m_strCreated;
  EXPECT_EQ(created.size(), 24U);  // "Wed Jun 30 21:49:08 1993"
  EXPECT_EQ(created.find('\n'), std::string::npos);
}

// ---- The flags ----

class TaskMakeProgram : public MakeStudy {
 protected:
  void SetUp() override {
    AddSmallStudy();
    CDesignControl control = Control();
    control.m_strProgram = "no-such-program-anywhere";
    control.PutObject();
    ClearLog();
  }
  CTask MakeWith(bool warnOnly, bool skipPrograms) {
    CTask task(Pod());
    task.DefineTask(warnOnly, skipPrograms);
    return task;
  }
};

TEST_F(TaskMakeProgram, MissingProgramIsAFault) {
  EXPECT_EQ(MakeWith(false, false).m_nID, 0);
  EXPECT_EQ(
      PrintedLines(),
      Between({"LError: (Design Control): Analysis program (no-such-program-anywhere) not found.\n",
               kNotDefined}));
  EXPECT_EQ(RecordsOf(1), Names{});
}

TEST_F(TaskMakeProgram, FirstFlagMakesItAWarning) {
  EXPECT_EQ(MakeWith(true, false).m_nID, 1);
  EXPECT_EQ(
      PrintedLines(),
      Between(
          {"LWarn: (Design Control): Analysis program (no-such-program-anywhere) not found.\n"}));
  EXPECT_EQ(RecordsOf(1), kAllRecords);
}

TEST_F(TaskMakeProgram, SecondFlagSkipsTheSearch) {
  EXPECT_EQ(MakeWith(false, true).m_nID, 1);
  EXPECT_EQ(PrintedLines(), Between({}));
  EXPECT_EQ(RecordsOf(1), kAllRecords);
}

// ---- Points and combinations ----

TEST_F(TaskMake, AnalysisTakesNoUserPoints) {
  AddSmallStudy();
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}});
  CDesignControl control = Control();
  control.m_nTaskType = 4;
  control.m_DGO.m_nMultiStart = 1;
  control.m_DOE.m_nMethod = 11;
  control.PutObject();
  const CTask task = MakeWell();
  EXPECT_EQ(task.m_uNumPoints, 1);
  EXPECT_EQ(RecordsOf(1), kAllRecords);
  EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_IDVar), Numbers{0.5});
}

TEST_F(TaskMake, GradientTaskTakesUserPointsOnlyForMultipleStarts) {
  AddSmallStudy();
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}});
  EXPECT_EQ(MakeWell().m_uNumPoints, 1);
  CDesignControl control = Control();
  control.m_DGO.m_nMultiStart = 1;
  control.PutObject();
  EXPECT_EQ(MakeWell().m_uNumPoints, 2);
  EXPECT_EQ(AsNumbers(StoredPoint(2, 0).m_IDVar), Numbers{0.5});
  EXPECT_EQ(AsNumbers(StoredPoint(2, 1).m_IDVar), Numbers{0.25});
  EXPECT_EQ(Stored<CResult>(2).m_nNumPoints, 2);
}

TEST_F(TaskMake, ResponseSurfaceTakesUserPointsForItsUserDefinedDesign) {
  AddSmallStudy();
  SetType(1);
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}});
  EXPECT_EQ(MakeWell().m_uNumPoints, 1);
  CDesignControl control = Control();
  control.m_RSA.m_nInitialDOE = 11;
  control.PutObject();
  const CTask task = MakeWell();
  EXPECT_EQ(task.m_uNumPoints, 2);
  EXPECT_EQ(task.m_RSA.m_nSubModel, 1);
}

TEST_F(TaskMake, DesignOfExperimentsTakesUserPointsForItsUserDefinedDesign) {
  AddSmallStudy();
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}, {1, 1, 0, {0.75}, {0, 0}}});
  SetType(2);
  EXPECT_EQ(MakeWell().m_uNumPoints, 0);
  CDesignControl control = Control();
  control.m_DOE.m_nMethod = 11;
  control.PutObject();
  EXPECT_EQ(MakeWell().m_uNumPoints, 2);
  EXPECT_EQ(AsNumbers(StoredPoint(2, 0).m_IDVar), Numbers{0.25});
  EXPECT_EQ(AsNumbers(StoredPoint(2, 1).m_IDVar), Numbers{0.75});
}

TEST_F(TaskMake, SwarmTakesUserPointsWhenItStartsFromThem) {
  AddSmallStudy();
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}, {1, 1, 1, {0.75}, {0, 0}}});
  SetType(3);
  CTask task = MakeWell();
  EXPECT_EQ(task.m_uNumPoints, 1);
  EXPECT_EQ(task.m_NGO.m_nOldPopulation, 100);
  CDesignControl control = Control();
  control.m_NGO.m_nStart = 11;
  control.PutObject();
  task = MakeWell();
  EXPECT_EQ(task.m_uNumPoints, 2);
  EXPECT_EQ(task.m_NGO.m_nOldPopulation, 2);
  EXPECT_EQ(AsNumbers(task.m_vnPointLocked), (Numbers{0, 1}));
}

class TaskMakeCombinations : public MakeStudy {
 protected:
  void SetUp() override {
    Add(Input("x"));
    Add(Objective("f"));
  }
  void AddCombinatorial(int values) {
    std::vector<vbFLOAT64> members;
    for (int i = 0; i < values; ++i) members.emplace_back(static_cast<double>(i));
    const int set = AddSet("set", members);
    CInput choice = Input("choice", 6);
    choice.m_nAuxID = set;
    choice.m_fLower = 0.0;
    choice.m_fUpper = 1e30;
    Add(choice);
  }
};

TEST_F(TaskMakeCombinations, HundredPrintNoWarning) {
  AddCombinatorial(100);
  const CTask task = MakeWell();
  EXPECT_EQ(Stored<CResult>(1).m_nNumPoints, 101);
  EXPECT_EQ(task.m_uNumPoints, 1);
  EXPECT_EQ(AsNumbers(StoredPoint(1, 100).m_CDVar), Numbers{99});
}

TEST_F(TaskMakeCombinations, OneMoreWarnsAndStopsNothing) {
  AddCombinatorial(101);
  const CTask task = Make();
  EXPECT_EQ(PrintedLines(),
            Between({"LWarn: (Creat Task): There is a total of 101 combinations for the current\n",
                     "LPrint:      combinatiorial optimization problem.  The total time required\n",
                     "LPrint:      to solve 101 sub-optimization problems may be large.\n "}));
  EXPECT_EQ(task.m_nID, 1);
  EXPECT_EQ(Stored<CResult>(1).m_nNumPoints, 102);
  EXPECT_EQ(Stored<CMessage>(1).m_nID, 1);
  ExpectSoundFiles();
}

}  // namespace
