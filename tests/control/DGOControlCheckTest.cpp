#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/DGOControl.h"
#include "tests/control/CommonRuleCases.h"
#include "tests/support/Log.h"

// What the check of a gradient optimisation's settings reports.

namespace {

using Gradient = CDGOControl;
using Rules = std::vector<RuleCase<Gradient>>;

Rules SkipRule() {
  return {{&Gradient::m_nSkip,
           {0, 2, 4},
           {{-1, "-1"}, {5, "5"}},
           "(Design Control): The gradient iteration skip count ({}) should be larger",
           "      than or equal to 0 (no skip) or less than or equal to 4 (agressive skip).\n\n"}};
}

Rules HardConvergenceRules() {
  return {
      NotNegative(&Gradient::m_fDELOBJ,
                  "(Design Control): The ZEF relative hard convergence criterion (DELOBJ={})",
                  kNotNegative),
      NotNegative(
          &Gradient::m_fDABOBJ,
          "(Design Control): The ZEF absolute hard convergence criterion (DABOBJ={}) should",
          "      be larger than or equal to 0.\n\n"),
  };
}

Rules StepRules() {
  return {
      NotNegative(&Gradient::m_fDOBJ1, "(Design Control): The ZEF DOBJ1 parameter (DOBJ1={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fDOBJ2, "(Design Control): The ZEF DOBJ2 parameter (DOBJ2={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fDX1, "(Design Control): The ZEF DX1 parameter (DX1={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fDX2, "(Design Control): The ZEF DX2 parameter (DX2={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fFDCH,
                  "(Design Control): The ZEF relative finite difference step size (FDCH={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fFDCHM,
                  "(Design Control): The ZEF absolute finite difference step size (FDCHM={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fRMVLMZ, "(Design Control): The ZEF RMVLMZ parameter (RMVLMZ={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fDABSTR, "(Design Control): The ZEF DABSTR parameter (DABSTR={})",
                  kNotNegative),
      NotNegative(&Gradient::m_fDELSTR, "(Design Control): The ZEF DELSTR parameter (DELSTR={})",
                  kNotNegative),
  };
}

/// Integers; all but the last are shown as reals.
Rules FlagRules() {
  const std::string leastAsReal = "-2.14748e+09";
  return {
      {&Gradient::m_nIGRAD,
       {-1, 0, 1},
       {{-2, "-2"}, {2, "2"}, {1234567, "1.23457e+06"}},
       "(Design Control): The ZEF gradient flag (IGRAD={}) should be",
       "     larger than or equal to -1 and less than or equal to 1.\n\n"},
      NotNegative(&Gradient::m_nNGMAX, "(Design Control): The ZEF NGMAX parameter (NGMAX={})",
                  kNotNegative, leastAsReal),
      NotNegative(&Gradient::m_nIGMAX, "(Design Control): The ZEF IGMAX parameter (IGMAX={})",
                  kNotNegative, leastAsReal),
      NotNegative(&Gradient::m_nJPRINT, "(Design Control): The ZEF JPRINT parameter (JPRINT={})",
                  kNotNegative, leastAsReal),
      {&Gradient::m_nIPRNT1,
       {0, 1},
       {{-1, "-1"}, {2, "2"}},
       "(Design Control): The ZEF IPRNT1 parameter (IPRNT1={}) should be",
       "     larger than or equal to 0 and less than or equal to 1.\n\n"},
      {&Gradient::m_nIPRNT2,
       {0, 1, 2},
       {{-1, "-1"}, {3, "3"}},
       "(Design Control): The ZEF IPRNT1 parameter (IPRNT2={}) should be",
       "     larger than or equal to 0 and less than or equal to 2.\n\n"},
      {&Gradient::m_nStoreFD,
       {0, 1},
       {{-1, "-1"}, {2, "2"}},
       "(Design Control): The ZEF save finite difference analyses flag ({})",
       "     should be either FALSE=0 or TRUE=1.\n\n"},
  };
}

/// The whole table, in the order of the check.
Rules AllRules() {
  Rules all;
  for (const Rules& part : {
           SkipRule(),
           ToleranceRules<Gradient>(),
           HardConvergenceRules(),
           SoftConvergenceRules(&Gradient::m_fSoftRel, &Gradient::m_fSoftAbs),
           MethodRules<Gradient>(),
           PenaltyRules<Gradient>(),
           StepRules(),
           FlagRules(),
       }) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

bool Check(const Gradient& block) {
  return block.CheckParams(false, false, 0, 0);
}

bool CheckWithARandomVariable(const Gradient& block) {
  return block.CheckParams(false, false, 0, 1);
}

// ---- The table ----

TEST(GradientCheck, PassesANewBlock) {
  ClearLog();
  EXPECT_TRUE(Check(Gradient()));
  EXPECT_TRUE(CheckWithARandomVariable(Gradient()));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST(GradientCheck, ReportsEachRuleByItself) {
  ASSERT_EQ(AllRules().size(), 36U);
  ExpectRules(Gradient(), AllRules(), Check);
}

TEST(GradientCheck, LooksAtTheTableWithARandomVariableToo) {
  ExpectRules(Gradient(), AllRules(), CheckWithARandomVariable);
}

TEST(GradientCheck, TakesAConstraintToleranceUpToZero) {
  Gradient block;
  for (const double legal : {0.0, -0.03}) {
    block.m_fCT = legal;
    EXPECT_TRUE(Check(block));
  }
  block.m_fCT = 0.001;
  EXPECT_FALSE(Check(block));
}

TEST(GradientCheck, KnowsNoMethodOne) {
  Gradient block;
  block.m_nMETHOD = 1;
  EXPECT_FALSE(Check(block));
  block.m_nMETHOD = 0;
  EXPECT_TRUE(Check(block));
}

TEST(GradientCheck, LooksNeitherAtTheReservedFieldNorAtTheProgram) {
  Gradient block;
  block.m_nReserved = -1;
  block.m_nMultiStart = -1;
  block.m_nGradUserRoutine = -1;
  block.m_nRandomSeed = -1;
  block.m_strGradProgram = block.m_strGradVarFile = block.m_strGradRespFile = "";
  EXPECT_TRUE(CheckWithARandomVariable(block));
}

TEST(GradientCheck, TakesNoNoticeOfItsOtherArguments) {
  Gradient wrong;
  wrong.m_nSkip = 5;
  for (const bool flag : {false, true}) {
    for (const int responses : {-1, 0, 7}) {
      EXPECT_TRUE(Gradient().CheckParams(flag, !flag, responses, 1));
      ClearLog();
      EXPECT_FALSE(wrong.CheckParams(flag, flag, responses, 1));
      EXPECT_EQ(Log().size(), 2U);
    }
  }
}

// ---- The random analysis ----

const std::vector<LogEntry> wrongMethod{
    {"LError", "(Design Control): The random analysis method used with gradient \n", "", 0},
    {"LPrint", "     based optimization should be either Monte Carlo Sampling, \n", "", 0},
    {"LPrint", "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n", "", 0},
};

Gradient WithRandomMethod(int method) {
  Gradient block;
  block.m_nRandomMethod = method;
  return block;
}

TEST(GradientCheck, KnowsThreeMethodsOfRandomAnalysis) {
  ClearLog();
  for (const int method : {0, 1, 2}) {
    EXPECT_TRUE(CheckWithARandomVariable(WithRandomMethod(method)));
  }
  EXPECT_TRUE(Log().empty()) << PrintedLog();
  for (const int method : {-1, 3, 4}) {
    ClearLog();
    EXPECT_FALSE(CheckWithARandomVariable(WithRandomMethod(method)));
    EXPECT_EQ(Log(), wrongMethod);
  }
}

TEST(GradientCheck, WantsPointsForTheMethodsThatSimulate) {
  for (const int method : {0, 1}) {
    ExpectRules(WithRandomMethod(method), {RandomPointsRule<Gradient>()}, CheckWithARandomVariable);
  }
}

TEST(GradientCheck, WantsNoPointsForTheMeanValueMethod) {
  Gradient block = WithRandomMethod(2);
  block.m_nRandomPoints = 0;
  ClearLog();
  EXPECT_TRUE(CheckWithARandomVariable(block));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST(GradientCheck, LooksAtNoPointsOfAnUnknownMethod) {
  Gradient block = WithRandomMethod(3);
  block.m_nRandomPoints = 0;
  ClearLog();
  EXPECT_FALSE(CheckWithARandomVariable(block));
  EXPECT_EQ(Log(), wrongMethod);
}

TEST(GradientCheck, WantsASaveFlagForEveryMethod) {
  for (const int method : {0, 1, 2}) {
    ExpectRules(WithRandomMethod(method), {SavePointsRule<Gradient>()}, CheckWithARandomVariable);
  }
}

TEST(GradientCheck, LooksAtNoRandomAnalysisWithoutARandomVariable) {
  Gradient block = WithRandomMethod(9);
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = 9;
  ClearLog();
  for (const int nRandom : {0, -1}) EXPECT_TRUE(block.CheckParams(false, false, 0, nRandom));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

// ---- Everything wrong ----

TEST(GradientCheck, ReportsAllFaultsInOrder) {
  Gradient block;
  std::vector<LogEntry> expected;
  BreakAll(block, AllRules(), expected);
  ClearLog();
  EXPECT_FALSE(Check(block));
  EXPECT_EQ(Log(), expected);

  block.m_nRandomMethod = 3;
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = 4;
  Append(expected, wrongMethod);
  Append(expected, Fault("(Design Control): The save simulation points flag (4)",
                         {"     should be either FALSE=0 or TRUE=1.\n\n"}));
  ClearLog();
  EXPECT_FALSE(CheckWithARandomVariable(block));
  EXPECT_EQ(Log(), expected);
}

TEST(GradientCheck, ReportsPointsBeforeTheSaveFlag) {
  Gradient block = WithRandomMethod(1);
  block.m_nRandomPoints = -5;
  block.m_nSavePoints = 2;
  ClearLog();
  EXPECT_FALSE(CheckWithARandomVariable(block));
  std::vector<LogEntry> expected =
      Fault("(Design Control): The number of simulation points for a random analysis\n",
            {"     should be greater than 0.\n\n"});
  Append(expected, Fault("(Design Control): The save simulation points flag (2)",
                         {"     should be either FALSE=0 or TRUE=1.\n\n"}));
  EXPECT_EQ(Log(), expected);
}

}  // namespace
