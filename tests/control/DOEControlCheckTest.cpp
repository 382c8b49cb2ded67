#include <climits>
#include <string>

#include "definition/GPoint.h"
#include "store/KestErr.h"
#include "tests/control/DOECheck.h"
#include "tests/support/Study.h"

// The rules of a design of experiments but for those on models and on options, and the whole log.

namespace {

constexpr int kFactorial = 0;
constexpr int kRandom = 10;

TEST(DesignCheck, FreshOptionsOfAllDesignsPassForThreeVariables) {
  const Study study;
  for (int method = 0; method <= 13; ++method) {
    SCOPED_TRACE(method);
    CDOEControl block;
    block.m_nMethod = method;
    ExpectSound(block, {.pod = study.Pod()});
  }
}

TEST(DesignCheck, OfAnInvalidDesignStartsWithAFalseResult) {
  const LogLines invalid = Fault("(Design Control): Invalid DOE design/method.\n", {});
  for (const int method : {14, -1, 15, INT_MAX}) {
    CDOEControl block;
    block.m_nMethod = method;
    ExpectFault(block, {}, invalid);
  }
}

TEST(DesignCheck, OfANegativeNumberOfPointsFailsWithoutAWord) {
  ExpectFault(DOEDesign(kRandom, -1), {}, {});
  ExpectSound(DOEDesign(kRandom, 0));
}

TEST(DesignCheck, OfTheUsersDesignNeedsTheUsersPoints) {
  const Study study;
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  EXPECT_THROW(CheckDOE(DOEDesign(11, 0), {.pod = study.Pod()}), CGetObject);
}

// ---- D-optimal designs ----

LogLines FewerThanRetained(int points, int retained) {
  return Fault("(Design Control): Number of design points (" + std::to_string(points) +
                   ") either generated or supplied",
               {"     by the design is less than the specified number of retained design \n",
                "     points (" + std::to_string(retained) + ") in D-optimal design.\n\n"});
}

LogLines MoreLocked(int locked, int points) {
  return Fault("(Design Control): The number of locked D-optimal design points (" +
                   std::to_string(locked) + ") is greater",
               {"     than the required number of D-optimal design points (" +
                std::to_string(points) + ").\n\n"});
}

TEST(DesignCheck, ADOptimalDesignRetainsNoMoreThanItHas) {
  ExpectSound(DOptimal(10, 10));
  ExpectSound(DOptimal(11, 10));
  ExpectFault(DOptimal(9, 10), {}, FewerThanRetained(9, 10));
}

TEST(DesignCheck, ADOptimalDesignRetainsMorePointsThanVariables) {
  ExpectSound(DOptimal(10, 4), {.vars = 3});
  ExpectFault(DOptimal(10, 3), {.vars = 3}, FewerThanVariables(3, 4));
  ExpectFault(DOptimal(10, 3), {.vars = 4}, FewerThanVariables(3, 5));
  ExpectFault(DOptimal(10, 3), {.vars = INT_MAX}, FewerThanVariables(3, INT_MAX));
}

TEST(DesignCheck, ADOptimalDesignRetainsAllLockedPoints) {
  ExpectSound(DOptimal(20, 10), {.locked = 10});
  ExpectFault(DOptimal(20, 10), {.locked = 11}, MoreLocked(11, 10));
}

TEST(DesignCheck, RetainedPointsOfNoneMakeTheCountZero) {
  ExpectFault(DOptimal(20, 0), {.vars = 3, .locked = 1},
              Joined({FewerThanVariables(0, 4), MoreLocked(1, 0)}));
  ExpectFault(DOptimal(20, 0), {.vars = 0}, FewerThanVariables(0, 1));
  ExpectSound(DOptimal(20, 0), {.vars = -1});
}

TEST(DesignCheck, AnyFlagButZeroMakesADesignDOptimal) {
  CDOEControl block = DOptimal(9, 10);
  for (const int flag : {-1, 2, INT_MAX}) {
    block.m_nDOptimal = flag;
    ExpectFault(block, {}, FewerThanRetained(9, 10));
  }
  block.m_nDOptimal = 0;
  ExpectSound(block, {.locked = 100});
}

// ---- Size and filter ----

LogLines TakesLong(int points) {
  return Warning("(Design Control): The total time to generate and analyze " +
                     std::to_string(points) + " points may be large.\n",
                 {});
}

const LogLines notFiltered =
    Warning("(Design Control): Design variable filtering can only be applied to random and user",
            {"     provided designs. Filtering will not be performed.\n\n"});

TEST(DesignCheck, WarnsOfAThousandPoints) {
  ExpectSound(DOEDesign(kRandom, 999));
  ExpectWarned(DOEDesign(kRandom, 1000), {}, TakesLong(1000));
  ExpectWarned(DOEDesign(kFactorial, 0), {.vars = 40}, TakesLong(2147483647));
}

TEST(DesignCheck, WarnsOfAThousandRetainedPoints) {
  ExpectSound(DOptimal(5000, 999));
  ExpectWarned(DOptimal(5000, 1000), {}, TakesLong(1000));
}

TEST(DesignCheck, WarnsOfAFilterForOtherThanRandomAndUsersPoints) {
  const Study study;
  for (int method = 0; method <= 13; ++method) {
    SCOPED_TRACE(method);
    CDOEControl block;
    block.m_nMethod = method;
    for (const int flag : {1, -1}) {
      block.m_nFilter = flag;
      const bool isFiltered = method == 10 || method == 11;
      ExpectWarned(block, {.pod = study.Pod()}, isFiltered ? LogLines{} : notFiltered);
    }
  }
}

// ---- The random analysis ----

const LogLines wrongRandomMethod =
    Fault("(Design Control): The random analysis method used with design of\n",
          {"     experiments should be either Monte Carlo Sampling, \n",
           "     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n",
           "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n"});

TEST(DesignCheck, RandomSettingsMatterWithARandomVariableOnly) {
  CDOEControl block;
  block.m_nRandomMethod = 5;
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = 2;
  ExpectSound(block, {.random = 0});
  ExpectSound(block, {.random = -1});
  ClearLog();
  EXPECT_FALSE(CheckDOE(block, {.random = 1}));
  EXPECT_FALSE(CheckDOE(block, {.random = 2}));
}

TEST(DesignCheck, RandomMethodIsOneOfFive) {
  CDOEControl block;
  for (const int method : {0, 1, 2, 3, 4}) {
    block.m_nRandomMethod = method;
    ExpectSound(block, {.random = 1});
  }
  for (const int method : {-1, 5}) {
    block.m_nRandomMethod = method;
    ExpectFault(block, {.random = 1}, wrongRandomMethod);
  }
}

void ExpectRandomRule(int method, const RuleCase<CDOEControl>& rule) {
  CDOEControl block;
  block.m_nRandomMethod = method;
  ExpectRules<CDOEControl>(block, {rule},
                           [](const CDOEControl& wrong) { return CheckDOE(wrong, {.random = 1}); });
}

TEST(DesignCheck, SimulationPointsAreNeededByMethodsThatSimulate) {
  for (const int method : {0, 1, 3, 4}) ExpectRandomRule(method, RandomPointsRule<CDOEControl>());
}

TEST(DesignCheck, SimulationPointsDoNotMatterToOtherMethods) {
  CDOEControl block;
  block.m_nRandomPoints = 0;
  block.m_nRandomMethod = 2;
  ExpectSound(block, {.random = 1});
  block.m_nRandomMethod = 5;
  ExpectFault(block, {.random = 1}, wrongRandomMethod);
}

TEST(DesignCheck, SavePointsIsAFlagWithEachRandomMethod) {
  for (const int method : {0, 1, 2, 3, 4}) ExpectRandomRule(method, SavePointsRule<CDOEControl>());
}

// ---- Everything wrong at once ----

LogEntry Error(const std::string& text) {
  return {"LError", text, "", 0};
}

LogEntry Warn(const std::string& text) {
  return {"LWarn", text, "", 0};
}

LogEntry Print(const std::string& text) {
  return {"LPrint", text, "", 0};
}

TEST(DesignCheck, EveryFaultOfADesignIsReportedInOrder) {
  CDOEControl block = DOEDesign(3, 5);
  block.m_nDOptimal = 1;
  block.m_nRetained = 1000;
  block.m_nFilter = 1;
  block.m_nTask = 2;
  block.m_nModel = 3;
  block.m_nRandomMethod = 5;
  block.m_nSavePoints = 2;
  ExpectFault(
      block, {.vars = 1000, .responses = 0, .locked = 1001, .random = 1},
      {Error("(Design Control): Number of design points (5) either generated or supplied"),
       Print("     by the design is less than the specified number of retained design \n"),
       Print("     points (1000) in D-optimal design.\n\n"),
       Error("(Design Control): The number of D-optimal design points (1000) must be greater"),
       Print("     than the number of independent design variables + 1 (1001).\n\n"),
       Error("(Design Control): The number of locked D-optimal design points (1001) is greater"),
       Print("     than the required number of D-optimal design points (1000).\n\n"),
       Warn("(Design Control): The total time to generate and analyze 1000 points may be "
            "large.\n"),
       Warn("(Design Control): Design variable filtering can only be applied to random and user"),
       Print("     provided designs. Filtering will not be performed.\n\n"),
       Error("(Design Control): Number of independent responses (0) must be greater than 0 to"),
       Print("     generate approximations.\n\n"),
       Error("(Design Control): The approximations cannot be created with the current design"),
       Print("     and desired model. The number of terms in the approximations (501501) is"),
       Print("     greater than the number of design points + 1 (1001).\n\n"),
       Error("(Design Control): Plackett-Burman type design cannot generate quadratic"),
       Error("(Design Control): Plackett-Burman designs are not valid for more than"),
       Print("     35 design variables.\n\n"),
       Error("(Design Control): Independent responses not defined."),
       Print("     DOE cannot generate approximations without independent responses.\n\n"),
       Error("(Design Control): The random analysis method used with design of\n"),
       Print("     experiments should be either Monte Carlo Sampling, \n"),
       Print("     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n"),
       Print("     Latin Hypercube Sampling, or the Mean value approximation method.\n\n"),
       Error("(Design Control): The save simulation points flag (2)"),
       Print("     should be either FALSE=0 or TRUE=1.\n\n")});
}

TEST(DesignCheck, EveryFaultOfAMixedRegressionIsReportedInOrder) {
  CDOEControl block = DOEDesign(5, 10);
  block.m_nDOptimal = 1;
  block.m_nFilter = 1;
  block.m_nTask = 2;
  block.m_nModel = 4;
  block.m_nRandomMethod = 3;
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = -1;
  ExpectFault(
      block, {.vars = 3, .responses = -2, .locked = 1, .random = 1},
      {Error("(Design Control): The number of D-optimal design points (0) must be greater"),
       Print("     than the number of independent design variables + 1 (4).\n\n"),
       Error("(Design Control): The number of locked D-optimal design points (1) is greater"),
       Print("     than the required number of D-optimal design points (0).\n\n"),
       Warn("(Design Control): Design variable filtering can only be applied to random and user"),
       Print("     provided designs. Filtering will not be performed.\n\n"),
       Error("(Design Control): Number of independent responses (-2) must be greater than 0 to"),
       Print("     generate approximations.\n\n"),
       Warn("(Design Control): Small number design points (0) for Mixed Forward Regression."),
       Print("     Number of design points should at least equal 4.\n\n"),
       Error("(Design Control): Invalid number of D-Optimal design points."),
       Print("     Mixed Forward Regression with D-Optimal design requires at least 4\n"),
       Print("     design points.\n\n"),
       Error("(Design Control): Mixed Forward Regression requires at least 2 design points.\n"),
       Error("(Design Control): Koshal type linear design can only generate linear"),
       Print("     approximations.\n\n"),
       Error("(Design Control): Independent responses not defined."),
       Print("     DOE cannot generate approximations without independent responses.\n\n"),
       Error("(Design Control): The number of simulation points for a random analysis\n"),
       Print("     should be greater than 0.\n\n"),
       Error("(Design Control): The save simulation points flag (-1)"),
       Print("     should be either FALSE=0 or TRUE=1.\n\n")});
}

TEST(DesignCheck, AnInvalidDesignIsCheckedToTheEnd) {
  CDOEControl block;
  block.m_nMethod = 14;
  block.m_nFilter = 1;
  block.m_nTask = 2;
  block.m_nModel = 5;
  block.m_nSavePoints = 2;
  ExpectFault(
      block, {.responses = 1, .random = 1},
      {Error("(Design Control): Invalid DOE design/method.\n"),
       Warn("(Design Control): Design variable filtering can only be applied to random and user"),
       Print("     provided designs. Filtering will not be performed.\n\n"),
       Error("(Design Control): Invalid DOE model.\n"),
       Error("(Design Control): The save simulation points flag (2)"),
       Print("     should be either FALSE=0 or TRUE=1.\n\n")});
}

// ---- Arguments ----

TEST(DesignCheck, UnnamedArgumentsHaveNoEffect) {
  const CDOEControl wrong = DOptimal(9, 10);
  for (const bool second : {false, true}) {
    for (const bool third : {false, true}) {
      for (const int sixth : {-1, 0, 1000}) {
        ClearLog();
        EXPECT_TRUE(CDOEControl().CheckParams(nullptr, second, third, 3, 1, sixth, 0, 0));
        EXPECT_TRUE(Log().empty());
        EXPECT_FALSE(wrong.CheckParams(nullptr, second, third, 3, 1, sixth, 0, 0));
        EXPECT_EQ(Log(), FewerThanRetained(9, 10));
      }
    }
  }
}

/// With hostile settings the log still explains the result: an error fails the check, and it
/// fails without one for a negative number of points only.
void ExpectExplainedResult(const CDOEControl& block, const DOEProblem& problem) {
  const int points = block.GetDOEPointCnt(nullptr, problem.vars);
  ClearLog();
  const bool holds = CheckDOE(block, problem);
  bool hasError = points < 0;
  for (const LogEntry& line : Log()) hasError = hasError || line.kind == "LError";
  EXPECT_EQ(holds, !hasError) << PrintedLog();
}

TEST(DesignCheck, OfHostileNumbersEndsInAnExplainedResult) {
  const int numbers[] = {INT_MIN, -1, 0, 3, 1000, INT_MAX};
  for (const int method : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 13}) {
    for (const int option : {INT_MIN, -1, 0, 10, 21, 99, 123, INT_MAX}) {
      for (const int vars : numbers) {
        for (const int model : {0, 3, 4}) {
          SCOPED_TRACE(std::to_string(method) + ", " + std::to_string(option) + ", " +
                       std::to_string(vars) + ", " + std::to_string(model));
          CDOEControl block = WithModel(DOEDesign(method, option), model);
          ExpectExplainedResult(block, {.vars = vars});
          block.m_nDOptimal = 1;
          for (const int retained : {INT_MIN, INT_MAX}) {
            block.m_nRetained = retained;
            ExpectExplainedResult(block, {.vars = vars, .locked = INT_MAX});
          }
        }
      }
    }
  }
}

}  // namespace
