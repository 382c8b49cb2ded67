#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "definition/DBCtrl.h"
#include "store/KestErr.h"
#include "tests/task/MakeStudy.h"

namespace {

// ---- Failures that take the task back, in part ----

class TaskMakeRollBack : public MakeStudy {
 protected:
  /// Expects the lines between start and end, and nothing new in the file but these records of
  /// task 1.
  void ExpectLeftBehind(const Names& lines, const Names& records,
                        const std::vector<long>& classes) {
    auto counts = ClassCounts();
    const CTask task = Make();
    EXPECT_EQ(PrintedLines(), Between(lines));
    EXPECT_EQ(RecordsOf(1), records);
    for (const long id : classes) counts[id] = 1;
    EXPECT_EQ(ClassCounts(), counts);
    ExpectSoundFiles();
  }

  /// Expects that a sound study makes task 1, all left-overs replaced.
  void ExpectSoundTask() {
    const CTask task = MakeWell();
    EXPECT_EQ(task.m_nID, 1);
    EXPECT_EQ(RecordsOf(1), (Names{"CTask", "CResult", "CDVar", "CDPoint 0", "CDResp", "CDCons",
                                   "CDObj", "CDLink", "CDEqn", "CDSet", "CMessage"}));
    ExpectSoundFiles();
  }

  const Names kTooLong{
      "LPrint:      Input argument x has total length of 1\n",
      "LPrint:      but is specified with starting index 0 and length 3\n",
      "LPrint:      This starting index/length combination will exceed the total\n",
      "LPrint:      length of the argument\n", kNotDefined};
};

TEST_F(TaskMakeRollBack, AFailureWithTheVariablesLeavesNothing) {
  const int function = AddEquation("sum", "a", "a+1");
  Add(Input("x"));
  CInput y = Function(Input("y", 2), function, {-1});
  y.m_vnLength = {3};
  Add(y);
  Add(Objective("f"));
  Names lines{"LError: Invalid synthetic function argument starting index/length combination\n",
              "LPrint:      Synthetic design variable y\n"};
  lines.insert(lines.end(), kTooLong.begin(), kTooLong.end());
  ExpectLeftBehind(lines, {}, {});
  y.m_vnLength = {1};
  y.PutObject();
  ExpectSoundTask();
}

TEST_F(TaskMakeRollBack, AFailureWithTheResponsesLeavesTheFirstPoint) {
  const int function = AddEquation("sum", "a", "a+1");
  Add(Input("x"));
  CResp f = Function(Objective("f"), function, {-1});
  f.m_nType = 2;
  f.m_vnLength = {3};
  Add(f);
  Names lines{"LError: Invalid synthetic function argument starting index/length combination\n",
              "LPrint:      Synthetic response variable f\n"};
  lines.insert(lines.end(), kTooLong.begin(), kTooLong.end());
  ExpectLeftBehind(lines, {"CDPoint 0"}, {12000});
  f.m_vnLength = {1};
  f.PutObject();
  ExpectSoundTask();
}

TEST_F(TaskMakeRollBack, ARandomFaultLeavesTheFirstPointAndTheConstraints) {
  CInput mean = Input("m");
  mean.m_nRandom = 1;
  mean.m_nRandomParam = -1;
  Add(mean);
  CInput deviation = Input("s");
  deviation.m_nRandom = 1;
  deviation.m_nRandomParam = -2;
  deviation.m_fLower = 0.0;
  Add(deviation);
  CResp failure = Resp("pof");
  failure.m_nRandom = 1;
  failure.m_nRandomParam = -4;
  Add(failure);
  Add(Objective("f"));
  Add(Constrained("g", 3.0));
  ExpectLeftBehind({"LError: (Make Task) : Invalid lower bound standard deviation value for\n",
                    "LPrint:      the Normal distribution of dvar 0 (m).\n",
                    "LPrint:      The supplied value = 0\n",
                    "LPrint:      The allowed value should be > 0\n", kNotDefined},
                   {"CDPoint 0", "CDCons"}, {12000, 6000});
  deviation.m_fLower = 0.25;
  deviation.m_fInitial = 0.5;
  deviation.PutObject();
  ExpectSoundTask();
}

TEST_F(TaskMakeRollBack, TheExceptionIsInTheLogBeforeTheWarning) {
  const int function = AddEquation("sum", "a", "a+1");
  Add(Input("x"));
  CInput y = Function(Input("y", 2), function, {-1});
  y.m_vnLength = {3};
  Add(y);
  Add(Objective("f"));
  Make();
  const auto& log = Log();
  ASSERT_GE(log.size(), 3U);
  EXPECT_EQ(log[log.size() - 3].kind, "LException");
  EXPECT_EQ(log[log.size() - 3].text, "Index file does not match the data file");
  EXPECT_EQ(log[log.size() - 2].text, "Could not define the task. Errors found!");
  EXPECT_EQ(log.back().text, "\n***** End -- Make Task *****\n");
}

// ---- Exceptions that pass to the caller ----

class TaskMakeExceptions : public MakeStudy {
 protected:
  /// Expects the exception, these lines between start and end, the failure in the log right before
  /// the end, and exactly these records of task 1.
  template <class Exception>
  void ExpectThrown(const Names& lines, const Names& records) {
    const std::string what = Exception("", 0).what();
    ClearLog();
    CTask task(Pod());
    EXPECT_THROW(task.DefineTask(true, true), Exception);
    EXPECT_EQ(PrintedLines(), Between(lines));
    const auto& log = Log();
    ASSERT_GE(log.size(), 2U);
    EXPECT_EQ(log[log.size() - 2].kind, "LException");
    EXPECT_EQ(log[log.size() - 2].text, what);
    EXPECT_EQ(log.back().text, "\n***** End -- Make Task *****\n");
    EXPECT_EQ(RecordsOf(1), records);
    ExpectSoundFiles();
  }
  /// The same where the file keeps its objects as they are.
  template <class Exception>
  void ExpectThrownEarly(const Names& lines) {
    const auto before = Objects();
    ExpectThrown<Exception>(lines, {});
    EXPECT_EQ(Objects(), before);
  }
  void Change(const std::function<void(CDesignControl&)>& change) {
    CDesignControl control = Control();
    change(control);
    control.PutObject();
  }

  const Names kUpToConstraints{"CTask", "CResult", "CDVar", "CDPoint 0", "CDResp", "CDCons"};
};

TEST_F(TaskMakeExceptions, WithoutADatabasePrintNothing) {
  ClearLog();
  CTask task;
  EXPECT_THROW(task.DefineTask(true, true), CNoDatabaseOpen);
  EXPECT_EQ(PrintedLines(), Names{});
}

TEST_F(TaskMakeExceptions, OfTheLockPrintTheEndOnly) {
  AddSmallStudy();
  std::filesystem::create_directory(study.LockPath());
  ClearLog();
  CTask task(Pod());
  EXPECT_THROW(task.DefineTask(true, true), CFileLock);
  std::filesystem::remove_all(study.LockPath());
  ASSERT_FALSE(PrintedLines().empty());
  EXPECT_EQ(PrintedLines().back(), kEndLine);
  for (const std::string& line : PrintedLines()) EXPECT_NE(line, kStartLine);
  EXPECT_EQ(MakeWell().m_nID, 1);
}

TEST_F(TaskMakeExceptions, OfAnUnknownTypeOfInput) {
  AddSmallStudy();
  Add(Input("y", 7));
  ExpectThrownEarly<CInvalidType>({});
}

TEST_F(TaskMakeExceptions, OfAnUnknownTypeOfResponse) {
  AddSmallStudy();
  Add(Resp("h", 4));
  ExpectThrownEarly<CInvalidType>({});
}

TEST_F(TaskMakeExceptions, OfAMissingTableOfPoints) {
  AddSmallStudy();
  ASSERT_TRUE(CGPoint(Pod()).RemoveObject());
  ClearLog();
  CTask task(Pod());
  EXPECT_THROW(task.DefineTask(true, true), CGetObject);
  EXPECT_EQ(PrintedLines(), Between({}));
  EXPECT_EQ(RecordsOf(1), Names{});
}

TEST_F(TaskMakeExceptions, OfMissingSettings) {
  AddSmallStudy();
  ASSERT_TRUE(CDesignControl(Pod()).RemoveObject());
  ClearLog();
  CTask task(Pod());
  EXPECT_THROW(task.DefineTask(true, true), CObjectNotFound);
  EXPECT_EQ(PrintedLines(), Between({}));
  EXPECT_EQ(RecordsOf(1), Names{});
}

TEST_F(TaskMakeExceptions, OfMissingIDs) {
  AddSmallStudy();
  ASSERT_TRUE(CDBCtrl(Pod()).RemoveObject());
  ClearLog();
  CTask task(Pod());
  EXPECT_THROW(task.DefineTask(true, true), CObjectNotFound);
  EXPECT_EQ(PrintedLines(), Between({}));
  EXPECT_EQ(RecordsOf(1), Names{});
}

TEST_F(TaskMakeExceptions, OfAnUnknownTypeOfAuxiliary) {
  AddSmallStudy();
  CAuxiliary auxiliary(Pod());
  auxiliary.m_nID = 1;
  auxiliary.m_nAuxType = 0;
  auxiliary.PutObject();
  ExpectThrownEarly<CInvalidType>({});
}

TEST_F(TaskMakeExceptions, OfAnUnknownDesignOfTheResponseSurface) {
  AddSmallStudy();
  Change([](CDesignControl& control) { control.m_RSA.m_nInitialDOE = 3; });
  ExpectThrownEarly<CMakeTask>(
      {"LError: Unknown DOE design method (code = 3) was specified for RSA.\n"});
}

TEST_F(TaskMakeExceptions, OfAResponseSurfaceWithoutUserPoints) {
  AddSmallStudy();
  SetPoints({{0, 1, 0, {0.25}, {0, 0}}});
  Change([](CDesignControl& control) { control.m_RSA.m_nInitialDOE = 11; });
  ExpectThrownEarly<CMakeTask>(
      {"LError: User defined DOE was specified for RSA but no user "
       "defined design points exist!\n"});
}

TEST_F(TaskMakeExceptions, OfAnUnknownStartOfTheSwarm) {
  AddSmallStudy();
  Change([](CDesignControl& control) { control.m_NGO.m_nStart = 12; });
  ExpectThrownEarly<CMakeTask>(
      {"LError: Unknown DOE design method (code = 12) was specified for NGO.\n"});
}

TEST_F(TaskMakeExceptions, OfASwarmWithoutUserPoints) {
  AddSmallStudy();
  Change([](CDesignControl& control) { control.m_NGO.m_nStart = 11; });
  ExpectThrownEarly<CMakeTask>(
      {"LError: User defined DOE was specified for NGO but no user "
       "defined design points exist!\n"});
}

TEST_F(TaskMakeExceptions, OfAConstantObjectiveLeaveAHalfMadeTask) {
  AddSmallStudy();
  CInput constant = Input("c", 3);
  constant.m_nObjective = 1;
  Add(constant);
  ExpectThrown<CInvalidType>({"LError: A constant design variable cannot be part\n",
                              "LPrint:      of the objective function\n"},
                             kUpToConstraints);
  // The study goes on; the half-made task keeps its ID.
  EXPECT_EQ(Stored<CTask>(1).m_uNumObj, 2);
  constant.m_nObjective = 0;
  constant.PutObject();
  EXPECT_EQ(MakeWell().m_nID, 2);
  EXPECT_EQ(RecordsOf(2).back(), "CMessage");
  EXPECT_EQ(RecordsOf(1), kUpToConstraints);
  ExpectSoundFiles();
}

TEST_F(TaskMakeExceptions, OfACombinatorialObjectiveLeaveAHalfMadeTask) {
  AddSmallStudy();
  CInput choice = Input("choice", 6);
  choice.m_nAuxID = AddSet("set", {0.0, 1.0});
  choice.m_nObjective = 1;
  Add(choice);
  ExpectThrown<CInvalidType>({"LError: A combinatorial design variable cannot be part\n",
                              "LPrint:      of the objective function\n"},
                             kUpToConstraints);
}

TEST_F(TaskMakeExceptions, OfAShortRowOfUserPointsLeaveAllButTheMessages) {
  AddSmallStudy();
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}, {1, 1, 0, {}, {}}});
  Change([](CDesignControl& control) { control.m_DGO.m_nMultiStart = 1; });
  ExpectThrown<CInvalidArgument>({}, {"CTask", "CResult", "CDVar", "CDPoint 0", "CDPoint 1",
                                      "CDResp", "CDCons", "CDObj", "CDLink", "CDEqn", "CDSet"});
  // The task in the file is the one of the first write: its counts aren't final.
  EXPECT_EQ(Stored<CTask>(1).m_uNumPoints, 1);
  EXPECT_EQ(Stored<CResult>(1).m_nNumPoints, 1);
  SetPoints({{1, 1, 0, {0.25}, {0, 0}}});
  EXPECT_EQ(MakeWell().m_nID, 2);
}

}  // namespace
