#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/RSAControl.h"
#include "tests/control/CommonRuleCases.h"
#include "tests/support/Log.h"

// The limits of points that are filled in, and what the check of an approximate optimisation's
// settings reports.

namespace {

using Surface = CRSAControl;
using Rules = std::vector<RuleCase<Surface>>;

// ---- The limits of points ----

struct Limits {
  long least;
  long most;

  bool operator==(const Limits&) const = default;
};

Limits LimitsOf(const Surface& block) {
  return {block.m_nMinPoints, block.m_nMaxPoints};
}

Surface OfOrder(int order) {
  Surface block;
  block.m_nOrder = order;
  return block;
}

Limits LimitsFor(int order, int nVars) {
  Surface block = OfOrder(order);
  ClearLog();
  EXPECT_TRUE(block.CheckMaxMinPoints(nVars));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
  return LimitsOf(block);
}

TEST(SurfaceLimits, OfTenVariablesAndAFullQuadraticModelAre12And166) {
  EXPECT_EQ(LimitsFor(3, 10), (Limits{12, 166}));
}

TEST(SurfaceLimits, OfForwardStepwiseRegressionAreThoseOfALinearModel) {
  EXPECT_EQ(LimitsFor(4, 10), (Limits{12, 111}));
  EXPECT_EQ(LimitsFor(0, 10), (Limits{12, 111}));
}

TEST(SurfaceLimits, AreTheTermsOfTheModelAndAHundred) {
  EXPECT_EQ(LimitsFor(1, 10), (Limits{12, 156}));
  EXPECT_EQ(LimitsFor(2, 10), (Limits{12, 121}));
  EXPECT_EQ(LimitsFor(0, 3), (Limits{5, 104}));
  EXPECT_EQ(LimitsFor(1, 3), (Limits{5, 107}));
  EXPECT_EQ(LimitsFor(2, 3), (Limits{5, 107}));
  EXPECT_EQ(LimitsFor(3, 3), (Limits{5, 110}));
  EXPECT_EQ(LimitsFor(4, 3), (Limits{5, 104}));
}

TEST(SurfaceLimits, OfOneVariableHaveNoInteraction) {
  EXPECT_EQ(LimitsFor(0, 1), (Limits{3, 102}));
  EXPECT_EQ(LimitsFor(1, 1), (Limits{3, 102}));
  EXPECT_EQ(LimitsFor(2, 1), (Limits{3, 103}));
  EXPECT_EQ(LimitsFor(3, 1), (Limits{3, 103}));
}

TEST(SurfaceLimits, OfNoVariableLeaveTheConstantTerm) {
  for (const int order : {0, 1, 2, 3, 4}) EXPECT_EQ(LimitsFor(order, 0), (Limits{2, 101}));
}

TEST(SurfaceLimits, OfManyVariablesDoNotOverflowOnTheWay) {
  EXPECT_EQ(LimitsFor(3, 46342), (Limits{46344, 1073860096}));
}

TEST(SurfaceLimits, FillInNewValuesEachTime) {
  Surface block;
  block.CheckMaxMinPoints(10);
  block.CheckMaxMinPoints(1);
  EXPECT_EQ(LimitsOf(block), (Limits{3, 103}));
}

TEST(SurfaceLimits, OfTheUserAreLeftAlone) {
  Surface block;
  block.m_nMinPoints = 1;
  block.m_nMaxPoints = 20;
  block.m_nHasMinPoints = 1;
  block.m_nHasMaxPoints = 1;
  EXPECT_TRUE(block.CheckMaxMinPoints(10));
  EXPECT_EQ(LimitsOf(block), (Limits{1, 20}));
  block.m_nHasMinPoints = 0;
  EXPECT_TRUE(block.CheckMaxMinPoints(10));
  EXPECT_EQ(LimitsOf(block), (Limits{12, 20}));
  block.m_nHasMinPoints = -1;
  block.m_nHasMaxPoints = 0;
  EXPECT_TRUE(block.CheckMaxMinPoints(2));
  EXPECT_EQ(LimitsOf(block), (Limits{12, 106}));
}

TEST(SurfaceLimits, OfAnUnknownOrderAreAHundredAndAFault) {
  for (const int order : {-1, 5, 7}) {
    Surface block = OfOrder(order);
    ClearLog();
    EXPECT_FALSE(block.CheckMaxMinPoints(10));
    EXPECT_EQ(LimitsOf(block), (Limits{12, 100}));
    EXPECT_EQ(Log(), Fault("(Design Control): Invalid DOE model.\n", {}));
  }
}

TEST(SurfaceLimits, OfTheUserNeedNoOrder) {
  Surface block = OfOrder(7);
  block.m_nHasMaxPoints = 2;
  block.m_nMaxPoints = 50;
  ClearLog();
  EXPECT_TRUE(block.CheckMaxMinPoints(10));
  EXPECT_EQ(LimitsOf(block), (Limits{12, 50}));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

// ---- The check: limits of points ----

bool Check(Surface& block) {
  return block.CheckParams(false, false, 10, 0, 0, 0);
}

bool CheckWithARandomVariable(Surface& block) {
  return block.CheckParams(false, false, 10, 0, 0, 1);
}

Surface WithLimits(int least, int most) {
  Surface block;
  block.m_nHasMinPoints = 1;
  block.m_nMinPoints = least;
  block.m_nHasMaxPoints = 1;
  block.m_nMaxPoints = most;
  return block;
}

void ExpectSilence(Surface block, int nUserPoints = 0) {
  ClearLog();
  EXPECT_TRUE(block.CheckParams(false, false, 10, 0, nUserPoints, 0));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

void ExpectFault(Surface block, const std::string& first, const std::vector<std::string>& rest,
                 int nUserPoints = 0) {
  ClearLog();
  EXPECT_FALSE(block.CheckParams(false, false, 10, 0, nUserPoints, 0));
  EXPECT_EQ(Log(), Fault(first, rest));
}

TEST(SurfaceCheck, PassesANewBlockAndFillsInItsLimits) {
  Surface block;
  ClearLog();
  EXPECT_TRUE(CheckWithARandomVariable(block));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
  EXPECT_EQ(LimitsOf(block), (Limits{12, 166}));
}

TEST(SurfaceCheck, WantsAMinimumOfPointsAboveZero) {
  ExpectSilence(WithLimits(1, 1));
  for (const auto& [least, shown] :
       std::vector<std::pair<int, std::string>>{{0, "0"}, {-3, "-3"}}) {
    ExpectFault(WithLimits(least, 5),
                "(Design Control): Minimum number of design points (" + shown + ") to evaluate",
                {"     must be greater than 0.\n\n"});
  }
}

TEST(SurfaceCheck, WantsAMinimumOfPointsUpToTheMaximum) {
  ExpectSilence(WithLimits(7, 7));
  ExpectFault(WithLimits(8, 7),
              "(Design Control): Minimum number of design points (8) to evaluate is greater",
              {"     than the maximum number of design points (7) for RSA.\n\n"});
}

/// A maximum below 1 lies below every legal minimum, so that the message of its own never comes.
TEST(SurfaceCheck, ReportsAMaximumBelowOneByTheMinimum) {
  ExpectFault(WithLimits(1, 0),
              "(Design Control): Minimum number of design points (1) to evaluate is greater",
              {"     than the maximum number of design points (0) for RSA.\n\n"});
  ExpectFault(WithLimits(0, -1),
              "(Design Control): Minimum number of design points (0) to evaluate",
              {"     must be greater than 0.\n\n"});
}

TEST(SurfaceCheck, ComparesAFilledInMinimumWithTheUsersMaximum) {
  Surface block = WithLimits(0, 11);
  block.m_nHasMinPoints = 0;
  ExpectFault(block,
              "(Design Control): Minimum number of design points (12) to evaluate is greater",
              {"     than the maximum number of design points (11) for RSA.\n\n"});
  block.m_nMaxPoints = 12;
  ExpectSilence(block);
}

TEST(SurfaceCheck, WantsRoomForTheUsersPointsAndTheIterations) {
  Surface block = WithLimits(5, 20);
  block.m_nInitialDOE = 11;
  block.m_nConvIters = 3;
  ExpectSilence(block, 17);
  ExpectFault(
      block, "(Design Control): Maximum number of design points (20)",
      {"     to evaluate for RSA must be equal or greater than the number of user\n",
       "     supplied design points plus the number of iterations to convergence (21).\n\n"},
      18);
  block.m_nInitialDOE = 9;
  ExpectSilence(block, 18);
}

TEST(SurfaceCheck, ReportsOneFaultOfTheLimitsOnly) {
  Surface block = WithLimits(21, 20);
  block.m_nInitialDOE = 11;
  ExpectFault(block,
              "(Design Control): Minimum number of design points (21) to evaluate is greater",
              {"     than the maximum number of design points (20) for RSA.\n\n"}, 50);
}

// ---- The check: rules on single fields ----

Rules HardConvergenceRules() {
  return {
      NotNegative(&Surface::m_fDABOBJ,
                  "(Design Control): The ZEF absolute hard convergence criterion (DABOBJ={})",
                  kNotNegative),
      NotNegative(
          &Surface::m_fDELOBJ,
          "(Design Control): The ZEF relative hard convergence criterion (DELOBJ={}) should",
          "      be larger than or equal to 0.\n\n"),
  };
}

Rules SoftConvergenceRulesOfTheApproximation() {
  return SoftConvergenceRules(&Surface::m_fSoftRelApprox, &Surface::m_fSoftAbsApprox);
}

/// The field must be above 0.
RuleCase<Surface> Positive(vbFLOAT64 Surface::*field, const std::string& first,
                           const std::vector<IllegalValue>& negative = {{-kTiny, "-4.94066e-324"},
                                                                        {-1, "-1"}}) {
  std::vector<IllegalValue> illegal{{0, "0"}, {-0.0, "-0"}};
  illegal.insert(illegal.end(), negative.begin(), negative.end());
  return {field, {kTiny, 0.2, 1e300}, illegal, first, "     larger than 0.\n\n"};
}

/// Negative values of the two soft criteria break another rule as well.
Rules ApproximationRules() {
  return {
      {&Surface::m_nConvIters,
       {1, 2, kMostInt},
       {{0, "0"}, {kLeastInt, "-2147483648"}, {-1, "-1"}},
       "(Design Control): The number of approximate iterations to convergence ({})",
       "     should be larger than 0.\n\n"},
      Positive(&Surface::m_fHardRel,
               "(Design Control): The relative hard convergence criterion ({}) should be"),
      Positive(&Surface::m_fHardAbs,
               "(Design Control): The absolute hard convergence criterion ({}) should be"),
      Positive(&Surface::m_fSoftRelApprox,
               "(Design Control): The relative soft convergence criterion ({}) should be", {}),
      Positive(&Surface::m_fSoftAbsApprox,
               "(Design Control): The absolute soft convergence criterion ({}) should be", {}),
      Positive(&Surface::m_fMoveRelLinear,
               "(Design Control): The relative linear move limit ({}) should be"),
      Positive(&Surface::m_fMoveRelMixed,
               "(Design Control): The relative mixed move limit ({}) should be"),
      Positive(&Surface::m_fMoveRelQuad,
               "(Design Control): The relative quadratic move limit ({}) should be"),
      Positive(&Surface::m_fMoveAbsLinear,
               "(Design Control): The absolute linear move limit ({}) should be"),
      Positive(&Surface::m_fMoveAbsMixed,
               "(Design Control): The absolute mixed move limit ({}) should be"),
      Positive(&Surface::m_fMoveAbsQuad,
               "(Design Control): The absolute quadratic move limit ({}) should be"),
      Positive(&Surface::m_fPEnter,
               "(Design Control): The p-value of terms to enter the model ({}) should be"),
      Positive(
          &Surface::m_fPRemove,
          "(Design Control): The p-value of terms to be removed from the model ({}) should be"),
  };
}

TEST(SurfaceCheck, ReportsEachRuleByItself) {
  ExpectRules(Surface(), ToleranceRules<Surface>(), Check);
  ExpectRules(Surface(), HardConvergenceRules(), Check);
  ExpectRules(Surface(), MethodRules<Surface>(), Check);
  ExpectRules(Surface(), PenaltyRules<Surface>(), Check);
  ASSERT_EQ(ApproximationRules().size(), 13U);
  ExpectRules(Surface(), ApproximationRules(), Check);
}

TEST(SurfaceCheck, LooksAtTheRulesWithARandomVariableToo) {
  ExpectRules(Surface(), ToleranceRules<Surface>(), CheckWithARandomVariable);
  ExpectRules(Surface(), ApproximationRules(), CheckWithARandomVariable);
}

TEST(SurfaceCheck, ReportsANegativeSoftCriterionTwice) {
  Surface block;
  block.m_fSoftAbsApprox = -0.5;
  std::vector<LogEntry> expected =
      Fault("(Design Control): The ZEF absolute soft convergence criterion (-0.5) should be",
            {"     larger than or equal to 0.\n\n"});
  Append(expected,
         Fault("(Design Control): The absolute soft convergence criterion (-0.5) should be",
               {"     larger than 0.\n\n"}));
  ClearLog();
  EXPECT_FALSE(Check(block));
  EXPECT_EQ(Log(), expected);
}

TEST(SurfaceCheck, LooksNeitherAtTheInnerSoftCriteriaNorAtTheDesign) {
  Surface block;
  block.m_fSoftRel = -1;
  block.m_fSoftAbs = -1;
  block.m_nReserved = -1;
  block.m_nInitialDOE = -1;
  block.m_nSubModel = -1;
  block.m_nRandomSeed = -1;
  ClearLog();
  EXPECT_TRUE(CheckWithARandomVariable(block));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST(SurfaceCheck, TakesNoNoticeOfItsOtherArguments) {
  for (const bool flag : {false, true}) {
    for (const int responses : {-1, 0, 7}) {
      Surface block;
      EXPECT_TRUE(block.CheckParams(flag, !flag, 10, responses, 0, 1));
      block.m_nIPRINT = 8;
      ClearLog();
      EXPECT_FALSE(block.CheckParams(flag, flag, 10, responses, 0, 1));
      EXPECT_EQ(Log().size(), 2U);
    }
  }
}

// ---- The check: random analysis ----

const std::vector<LogEntry> wrongMethod =
    Fault("(Design Control): The random analysis method used with response surface\n",
          {"     approximate based optimization should be either Monte Carlo Sampling, \n",
           "     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n",
           "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n"});

Surface WithRandomMethod(int method) {
  Surface block;
  block.m_nRandomMethod = method;
  return block;
}

TEST(SurfaceCheck, KnowsFiveMethodsOfRandomAnalysis) {
  for (const int method : {0, 1, 2, 3, 4}) {
    Surface block = WithRandomMethod(method);
    EXPECT_TRUE(CheckWithARandomVariable(block));
  }
  for (const int method : {-1, 5}) {
    Surface block = WithRandomMethod(method);
    block.m_nRandomPoints = 0;
    ClearLog();
    EXPECT_FALSE(CheckWithARandomVariable(block));
    EXPECT_EQ(Log(), wrongMethod);
  }
}

TEST(SurfaceCheck, WantsPointsForTheMethodsThatSimulate) {
  for (const int method : {0, 1, 3, 4}) {
    ExpectRules(WithRandomMethod(method), {RandomPointsRule<Surface>()}, CheckWithARandomVariable);
  }
  Surface meanValue = WithRandomMethod(2);
  meanValue.m_nRandomPoints = 0;
  EXPECT_TRUE(CheckWithARandomVariable(meanValue));
}

TEST(SurfaceCheck, WantsASaveFlagForEveryMethod) {
  for (const int method : {0, 1, 2, 3, 4}) {
    ExpectRules(WithRandomMethod(method), {SavePointsRule<Surface>()}, CheckWithARandomVariable);
  }
}

TEST(SurfaceCheck, LooksAtNoRandomAnalysisWithoutARandomVariable) {
  Surface block = WithRandomMethod(9);
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = 9;
  ClearLog();
  for (const int nRandom : {0, -1}) {
    EXPECT_TRUE(block.CheckParams(false, false, 10, 0, 0, nRandom));
  }
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

// ---- Everything wrong ----

TEST(SurfaceCheck, GoesOnBehindAnUnknownOrder) {
  Surface block = OfOrder(7);
  block.m_nIPRINT = 8;
  std::vector<LogEntry> expected = Fault("(Design Control): Invalid DOE model.\n", {});
  Append(expected, Fault("(Design Control): The ZEF print level (IPRINT=8) should be larger than "
                         "or equal",
                         {"     to 0 (no output) or less than or equal to 7 (debug output).\n\n"}));
  ClearLog();
  EXPECT_FALSE(Check(block));
  EXPECT_EQ(block.m_nMaxPoints, 100);
  EXPECT_EQ(Log(), expected);
}

TEST(SurfaceCheck, FailsForAnUnknownOrderAlone) {
  ExpectFault(OfOrder(7), "(Design Control): Invalid DOE model.\n", {});
}

/// As BreakAll, with -1 for all fields.
void BreakByMinusOne(Surface& block, const Rules& rules, std::vector<LogEntry>& log) {
  for (const auto& rule : rules) {
    SetField(block, rule, -1);
    Append(log, Fault(WithValue(rule.first, "-1"), {rule.second}));
  }
}

TEST(SurfaceCheck, ReportsAllFaultsInOrder) {
  Surface block = OfOrder(7);
  std::vector<LogEntry> expected = Fault("(Design Control): Invalid DOE model.\n", {});
  block.m_nHasMinPoints = 1;
  Append(expected, Fault("(Design Control): Minimum number of design points (0) to evaluate",
                         {"     must be greater than 0.\n\n"}));
  BreakAll(block, ToleranceRules<Surface>(), expected);
  BreakAll(block, HardConvergenceRules(), expected);
  BreakByMinusOne(block, SoftConvergenceRulesOfTheApproximation(), expected);
  BreakAll(block, MethodRules<Surface>(), expected);
  BreakAll(block, PenaltyRules<Surface>(), expected);
  BreakByMinusOne(block, ApproximationRules(), expected);
  ClearLog();
  EXPECT_FALSE(Check(block));
  EXPECT_EQ(Log(), expected);

  block.m_nRandomMethod = 5;
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = 2;
  Append(expected, wrongMethod);
  Append(expected, Fault("(Design Control): The save simulation points flag (2)",
                         {"     should be either FALSE=0 or TRUE=1.\n\n"}));
  ClearLog();
  EXPECT_FALSE(CheckWithARandomVariable(block));
  EXPECT_EQ(Log(), expected);
}

}  // namespace
