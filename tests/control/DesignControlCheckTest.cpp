#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "control/DesignControl.h"
#include "definition/GPoint.h"
#include "store/KestErr.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

namespace {

using Lines = std::vector<LogEntry>;

LogEntry Error(const std::string& text) {
  return {"LError", text, "", 0};
}
LogEntry Print(const std::string& text) {
  return {"LPrint", text, "", 0};
}

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// The arguments of the check, a study with nothing to object to.
struct Counts {
  bool warnOnly = false;
  bool skipPrograms = false;
  int vars = 3;
  int discreteVars = 0;
  int combinatorial = 0;
  int indResp = 1;
  int objectives = 1;
  int analysedPoints = 0;
  int userPoints = 0;
  int lockedPoints = 0;
  int random = 0;
  int randResp = 0;
};

class DesignControlCheck : public testing::Test {
 protected:
  DesignControlCheck() : control(study.Pod()) {
    // A program that needn't be there, and files that aren't.
    control.m_nUseApprox = 1;
    control.m_strVarFile = control.m_DGO.m_strGradVarFile = study.folder / "dvar.kef";
    control.m_strRespFile = control.m_DGO.m_strGradRespFile = study.folder / "resp.kef";
  }

  /// Makes the check of a program and the check of each block report something.
  void BreakEverything() {
    control.m_strVarFile = control.m_DGO.m_strGradRespFile = "";
    control.m_DGO.m_nSkip = 9;
    control.m_RSA.m_nConvIters = -5;
    control.m_DOE.m_nMethod = 9;
    control.m_DOE.m_nDOptimal = control.m_DOE.m_nRetained = 4;
    control.m_NGO.m_nFixedSeed = 7;
    control.m_ANL.m_nRandomMethod = 2;
  }

  bool Check(const Counts& counts) {
    control.PutObject();
    ClearLog();
    return CDesignControl::CheckDesignControl(
        study.Pod(), counts.warnOnly, counts.skipPrograms, counts.vars, counts.discreteVars,
        counts.combinatorial, counts.indResp, counts.objectives, counts.analysedPoints,
        counts.userPoints, counts.lockedPoints, counts.random, counts.randResp);
  }
  void ExpectPassed(const Counts& counts) {
    EXPECT_TRUE(Check(counts));
    EXPECT_EQ(Log(), Lines());
  }
  void ExpectFailed(const Counts& counts, const Lines& log) {
    EXPECT_FALSE(Check(counts));
    EXPECT_EQ(Log(), log);
  }
  CDesignControl Stored() {
    CDesignControl stored(study.Pod());
    EXPECT_TRUE(stored.GetObject());
    return stored;
  }

  Study study;
  CDesignControl control;
};

const Lines analysisProgram{
    Error("(Design Control): Analysis variable transfer file not specified.\n")};
const Lines gradientProgram{
    Error("(Design Control): Gradient response transfer file not specified.\n")};
const Lines noObjective{Error("(Design Control): Objective not defined.\n")};
const Lines combinatorial{
    Error("(Design Control): Combinatroial design variables can not be used with DOE.\n")};
const Lines switched{
    {"LWarn", "(Design Control): Independent responses not defined.", "", 0},
    Print("     Approximate Optimization (RSA) cannot generate approximations\n"),
    Print("     without independent responses.\n"),
    Print("     Switching to Direct Optimization (DGO).\n\n"),
};
const Lines wrongGradient{
    Error("(Design Control): The gradient iteration skip count (9) should be larger"),
    Print("      than or equal to 0 (no skip) or less than or equal to 4 (agressive skip).\n\n"),
};
const Lines wrongSurface{
    Error("(Design Control): The number of approximate iterations to convergence (-5)"),
    Print("     should be larger than 0.\n\n"),
};
/// A simplex of three variables has four points.
const Lines wrongDesign{
    Error("(Design Control): The number of locked D-optimal design points (6) is greater"),
    Print("     than the required number of D-optimal design points (4).\n\n"),
};
const Lines wrongNonGradient{
    Error("(Design Control): The random number seed flag (7) must be set to"),
    Print("     either FALSE=0 or TRUE=1.\n\n"),
};
const Lines wrongAnalysis{
    Error("(Design Control): The random analysis method should be either\n"),
    Print("     Monte Carlo Sampling or Latin Hypercube Sampling.\n\n"),
};

/// What each kind of task reports of a study in which each block has a fault.
const std::vector<std::pair<int, Lines>> wrongTasks{{0, wrongGradient},
                                                    {1, wrongSurface},
                                                    {2, wrongDesign},
                                                    {3, wrongNonGradient},
                                                    {4, wrongAnalysis}};

// ---- Kinds of task ----

TEST_F(DesignControlCheck, PassesDefaultsOfEachKind) {
  for (int type = 0; type <= 4; ++type) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectPassed({});
    ExpectPassed({.random = 1});
  }
}

TEST_F(DesignControlCheck, LooksAtTheBlockOfTheTaskOnly) {
  BreakEverything();
  for (const auto& [type, log] : wrongTasks) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectFailed({.skipPrograms = true, .lockedPoints = 6, .random = 1}, log);
  }
}

TEST_F(DesignControlCheck, LooksAtTheProgramBeforeTheBlock) {
  BreakEverything();
  control.m_DOE.m_nTask = 1;
  for (const auto& [type, log] : wrongTasks) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectFailed({.lockedPoints = 6, .random = 1}, analysisProgram + log);
  }
}

TEST_F(DesignControlCheck, LooksAtTheProgramIfItsBlockIsSound) {
  control.m_strVarFile = "";
  control.m_DOE.m_nTask = 1;
  for (int type = 0; type <= 4; ++type) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectFailed({}, analysisProgram);
    ExpectPassed({.skipPrograms = true});
  }
}

TEST_F(DesignControlCheck, KnowsFiveKindsOfTask) {
  for (const int type : {-1, 5, 2147483647}) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    const Lines invalid{
        Error("(Design Control):  Invalid task type (" + std::to_string(type) + ").\n")};
    ExpectFailed({}, invalid);
    ExpectFailed({.combinatorial = 1, .objectives = 0}, noObjective + invalid);
  }
}

TEST_F(DesignControlCheck, PassesWarnOnlyToTheProgram) {
  control.m_nUseApprox = 0;
  control.m_strProgram = "no such program";
  const std::string text = "(Design Control): Analysis program (no such program) not found.\n";
  control.m_DOE.m_nTask = 1;
  for (int type = 0; type <= 4; ++type) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectFailed({}, {Error(text)});
    EXPECT_TRUE(Check({.warnOnly = true}));
    EXPECT_EQ(Log(), (Lines{{"LWarn", text, "", 0}}));
  }
}

// ---- Who needs the program ----

TEST_F(DesignControlCheck, NeedsTheProgramForMoreResponsesThanRandomOnesGive) {
  struct Case {
    int indResp, randResp;
    bool needed;
  };
  const Case cases[] = {{0, 0, false}, {1, 0, true},  {-1, 0, false}, {0, -3, false}, {1, -3, true},
                        {0, 1, false}, {1, 1, false}, {2, 1, true},   {3, 2, false},  {4, 2, true}};
  control.m_strVarFile = "";
  for (const int type : {0, 3, 4}) {
    for (const auto& [indResp, randResp, needed] : cases) {
      SCOPED_TRACE(testing::Message() << type << ' ' << indResp << ' ' << randResp);
      control.m_nTaskType = type;
      const Counts counts{.indResp = indResp, .randResp = randResp};
      if (needed) {
        ExpectFailed(counts, analysisProgram);
      } else {
        ExpectPassed(counts);
      }
    }
  }
}

TEST_F(DesignControlCheck, TakesTheGradientProgramForGradientsOfTheUserOnly) {
  BreakEverything();
  control.m_DGO.m_nSkip = 0;
  control.m_DGO.m_nIGRAD = 1;
  ExpectFailed({}, gradientProgram);
  for (const int difference : {0, -1}) {
    control.m_DGO.m_nIGRAD = difference;
    ExpectFailed({}, analysisProgram);
  }
}

TEST_F(DesignControlCheck, TakesTheAnalysisProgramInOtherTasks) {
  control.m_strVarFile = "";
  control.m_DGO.m_nIGRAD = 1;
  control.m_DOE.m_nTask = 1;
  for (int type = 1; type <= 4; ++type) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectFailed({}, analysisProgram);
  }
}

TEST_F(DesignControlCheck, NeedsTheProgramForADesignWithResponses) {
  control.m_strVarFile = "";
  control.m_nTaskType = 2;
  ExpectPassed({});
  ExpectPassed({.analysedPoints = 1});
  control.m_DOE.m_nTask = 1;
  ExpectFailed({}, analysisProgram);
  ExpectFailed({.indResp = 0}, analysisProgram);
  ExpectFailed({.analysedPoints = 1, .randResp = 5}, analysisProgram);
  control.m_DOE.m_nTask = 2;
  ExpectFailed({}, analysisProgram);
}

TEST_F(DesignControlCheck, NeedsTheProgramForPointsOfTheUserThatAreAnalysed) {
  CGPoint(study.Pod()).PutObject();
  control.m_strVarFile = "";
  control.m_nTaskType = 2;
  control.m_DOE.m_nMethod = 11;
  control.m_DOE.m_nTask = 1;
  ExpectPassed({});
  ExpectFailed({.analysedPoints = 1}, analysisProgram);
  ExpectFailed({.analysedPoints = -1}, analysisProgram);
  control.m_DOE.m_nTask = 0;
  ExpectPassed({.analysedPoints = 1});
}

// ---- Tasks without responses ----

TEST_F(DesignControlCheck, MakesASurfaceTaskWithoutResponsesAGradientTask) {
  control.m_nTaskType = 1;
  control.m_strTitle = "kept";
  EXPECT_TRUE(Check({.indResp = 0}));
  EXPECT_EQ(Log(), switched);
  EXPECT_EQ(Stored().m_nTaskType, 0);
  EXPECT_EQ(Stored().m_strTitle, "kept");
  EXPECT_EQ(Stored().m_RSA.m_nMaxPoints, 0);
  EXPECT_EQ(CDesignControl(study.Pod()).CountObjects(), 1);
}

TEST_F(DesignControlCheck, ChecksASwitchedTaskAsAGradientTask) {
  BreakEverything();
  control.m_nTaskType = 1;
  ExpectFailed({.indResp = 0, .objectives = 0}, switched + noObjective + wrongGradient);
  EXPECT_EQ(Stored().m_nTaskType, 0);
}

TEST_F(DesignControlCheck, SwitchesWhereRandomResponsesGiveAll) {
  struct Case {
    int indResp, randResp;
    bool switches;
  };
  for (const auto& [indResp, randResp, switches] :
       {Case{0, 0, true}, Case{-1, 0, true}, Case{1, 0, false}, Case{0, -1, true},
        Case{1, -1, false}, Case{1, 1, true}, Case{2, 1, false}, Case{3, 2, true},
        Case{4, 2, false}}) {
    SCOPED_TRACE(testing::Message() << indResp << ' ' << randResp);
    control.m_nTaskType = 1;
    EXPECT_TRUE(Check({.indResp = indResp, .randResp = randResp}));
    EXPECT_EQ(Log(), switches ? switched : Lines());
    EXPECT_EQ(Stored().m_nTaskType, switches ? 0 : 1);
  }
}

TEST_F(DesignControlCheck, SwitchesNoOtherTask) {
  for (const int type : {0, 2, 3, 4}) {
    control.m_nTaskType = type;
    ExpectPassed({.indResp = 0});
    EXPECT_EQ(Stored().m_nTaskType, type);
  }
}

// ---- Objectives and combinatorial variables ----

TEST_F(DesignControlCheck, WantsAnObjectiveToOptimise) {
  for (const int type : {0, 1, 3}) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectFailed({.objectives = 0}, noObjective);
    ExpectFailed({.objectives = -1}, noObjective);
    ExpectPassed({.objectives = 2});
  }
  for (const int type : {2, 4}) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectPassed({.objectives = 0});
  }
}

TEST_F(DesignControlCheck, WantsNoCombinatorialVariablesInADesign) {
  control.m_nTaskType = 2;
  ExpectFailed({.combinatorial = 1}, combinatorial);
  ExpectFailed({.combinatorial = 9}, combinatorial);
  ExpectPassed({.combinatorial = -1});
  for (const int type : {0, 1, 3, 4}) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectPassed({.combinatorial = 1});
  }
}

// ---- What the blocks are given ----

TEST_F(DesignControlCheck, StoresTheLimitsOfPoints) {
  control.m_nTaskType = 1;
  ExpectPassed({.vars = 10});
  EXPECT_EQ(Stored().m_RSA.m_nMinPoints, 12);
  EXPECT_EQ(Stored().m_RSA.m_nMaxPoints, 166);
  EXPECT_EQ(CDesignControl(study.Pod()).CountObjects(), 1);
}

TEST_F(DesignControlCheck, StoresTheLimitsOfPointsOfAFaultyTask) {
  control.m_nTaskType = 1;
  control.m_RSA.m_nOrder = 7;
  ExpectFailed({.vars = 10}, {Error("(Design Control): Invalid DOE model.\n")});
  EXPECT_EQ(Stored().m_RSA.m_nMinPoints, 12);
  EXPECT_EQ(Stored().m_RSA.m_nMaxPoints, 100);
}

TEST_F(DesignControlCheck, LeavesTheUsersLimitsOfPoints) {
  control.m_nTaskType = 1;
  control.m_RSA.m_nHasMinPoints = control.m_RSA.m_nHasMaxPoints = 1;
  control.m_RSA.m_nMinPoints = 20;
  control.m_RSA.m_nMaxPoints = 21;
  ExpectPassed({.vars = 10});
  EXPECT_EQ(Stored().m_RSA.m_nMinPoints, 20);
  EXPECT_EQ(Stored().m_RSA.m_nMaxPoints, 21);
}

TEST_F(DesignControlCheck, StoresNoLimitsOfPointsForOtherTasks) {
  for (const int type : {0, 2, 3, 4}) {
    control.m_nTaskType = type;
    ExpectPassed({});
    EXPECT_EQ(Stored().m_RSA.m_nMaxPoints, 0);
  }
}

TEST_F(DesignControlCheck, GivesTheUsersPointsToTheSurfaceTask) {
  control.m_nTaskType = 1;
  control.m_RSA.m_nInitialDOE = 11;
  ExpectPassed({.vars = 10, .userPoints = 164});
  ExpectFailed(
      {.vars = 10, .userPoints = 165},
      {Error("(Design Control): Maximum number of design points (166)"),
       Print("     to evaluate for RSA must be equal or greater than the number of user\n"),
       Print(
           "     supplied design points plus the number of iterations to convergence (167).\n\n")});
}

TEST_F(DesignControlCheck, GivesVariablesAndResponsesToTheDesign) {
  control.m_nTaskType = 2;
  control.m_DOE.m_nTask = 2;
  control.m_DOE.m_vnOptions[1] = 3;
  const Lines wrongOption{
      Error("(Design Control): Wrong option specified for Composite DOE: 3\n"),
      Print("       You may specify values from 0 to (# of independent variables - 1)\n"),
      Print("       # of independent variables = 3.\n"),
  };
  ExpectFailed({}, wrongOption);
  ExpectPassed({.vars = 4});
  control.m_DOE.m_vnOptions[1] = 0;
  ExpectFailed(
      {.indResp = 0},
      {Error("(Design Control): Number of independent responses (0) must be greater than 0 to"),
       Print("     generate approximations.\n\n"),
       Error("(Design Control): Independent responses not defined."),
       Print("     DOE cannot generate approximations without independent responses.\n\n")});
}

TEST_F(DesignControlCheck, NeedsTheUsersPointsForADesignOfThem) {
  control.m_nTaskType = 2;
  control.m_DOE.m_nMethod = 11;
  CGPoint(study.Pod()).RemoveObject();
  EXPECT_THROW(Check({}), CGetObject);
}

TEST_F(DesignControlCheck, GivesVariablesAndUsersPointsToTheNonGradientTask) {
  control.m_nTaskType = 3;
  control.m_NGO.m_nStart = 11;
  ExpectPassed({.userPoints = 2});
  ExpectFailed({.userPoints = 1},
               {Error("(Design Control): Population size (1) must be larger than 1.\n"),
                Print("     Current starting strategy is user defined.\n")});
  control.m_NGO.m_nMethod = 1;
  ExpectPassed({.vars = 3, .discreteVars = 3});
  const Lines continuous{
      Error("(Design Control): All design variables must be either integer or discrete"),
      Print("     when using a genetic algorithm.\n\n"),
  };
  ExpectFailed({.vars = 3, .discreteVars = 2}, continuous);
}

TEST_F(DesignControlCheck, GivesTheNumberOfRandomVariablesToEachBlock) {
  control.m_DGO.m_nSavePoints = control.m_RSA.m_nSavePoints = control.m_DOE.m_nSavePoints = 2;
  control.m_NGO.m_nSavePoints = control.m_ANL.m_nSavePoints = 2;
  for (int type = 0; type <= 4; ++type) {
    SCOPED_TRACE(type);
    control.m_nTaskType = type;
    ExpectPassed({.random = 0});
    ExpectFailed({.random = 1}, {Error("(Design Control): The save simulation points flag (2)"),
                                 Print("     should be either FALSE=0 or TRUE=1.\n\n")});
  }
}

}  // namespace
