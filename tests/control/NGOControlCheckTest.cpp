#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/NGOControl.h"
#include "tests/control/CommonRuleCases.h"
#include "tests/support/Log.h"

namespace {

using Block = CNGOControl;
using Lines = std::vector<LogEntry>;
using Cases = std::vector<RuleCase<Block>>;

constexpr int kSwarm = 0;
constexpr int kGenetic = 1;
constexpr int kNSGA = 2;

/// What the settings are checked for; without a fault by default.
struct Problem {
  int vars = 3;
  int discreteVars = 3;
  int userPoints = 2;
  int random = 0;
};

bool Check(const Block& block, const Problem& problem = {}) {
  return block.CheckParams(false, false, problem.vars, 0, problem.discreteVars, problem.userPoints,
                           problem.random);
}

Block WithMethod(int method) {
  Block block;
  block.m_nMethod = method;
  return block;
}

void ExpectSound(const Block& block, const Problem& problem = {}) {
  ClearLog();
  EXPECT_TRUE(Check(block, problem));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

void ExpectFault(const Block& block, const Problem& problem, const Lines& lines) {
  ClearLog();
  EXPECT_FALSE(Check(block, problem));
  EXPECT_EQ(Log(), lines) << PrintedLog();
}

void ExpectMethodsRules(int method, const Cases& rules, const Problem& problem = {}) {
  ExpectRules(WithMethod(method), rules, [&](const Block& block) { return Check(block, problem); });
}

// ---- The rules of each method ----

RuleCase<Block> Probability(vbFLOAT64 Block::*field, const std::string& name) {
  return {field,
          {0, -0.0, kTiny, 0.5, 1},
          {{-kTiny, "-4.94066e-324"}, {1.001, "1.001"}, {1e300, "1e+300"}, {-0.25, "-0.25"}},
          "(Design Control): The probability of performing " + name + " ({}) must be",
          "     larger than or equal to zero and less than or equal to 1.\n"};
}

RuleCase<Block> SwarmParameter(vbFLOAT64 Block::*field, const std::string& name) {
  return {field,
          {0, -0.0, kTiny, 1e300},
          {{-kTiny, "-4.94066e-324"}, {-1234567, "-1.23457e+06"}, {-0.5, "-0.5"}},
          "(Design Control): The " + name + " ({}) must be",
          "     larger than or equal to zero.\n"};
}

Cases SwarmRules() {
  return {SwarmParameter(&Block::m_fInertia, "inertia weight parameter"),
          SwarmParameter(&Block::m_fTrust1, "first trust parameter"),
          SwarmParameter(&Block::m_fTrust2, "second trust paramter"),
          {&Block::m_nPopulation,
           {2, 3, 101, kMostInt},
           {{1, "1"}, {0, "0"}, {kLeastInt, "-2147483648"}},
           "(Design Control): Population size ({}) must be larger than 1.\n",
           "     Current starting strategy is random.\n"}};
}

Cases GeneticRules() {
  return {{&Block::m_nCrossType,
           {0, 1},
           {{-1, "-1"}, {2, "2"}},
           "(Design Control): The cross-over type ({}) must be set to",
           "     either Uniform=0 or TwoPoint=1.\n\n"},
          Probability(&Block::m_fCrossProb, "cross-over"),
          Probability(&Block::m_fMutProb, "mutation")};
}

Cases NSGARules() {
  return {Probability(&Block::m_fNSGACrossProb, "cross-over"),
          Probability(&Block::m_fNSGAMutProb, "mutation"),
          {&Block::m_nCrossIndex,
           {1, 50, 100},
           {{0, "0"}, {-1, "-1"}, {101, "101"}},
           "(Design Control): The Distribution Index for cross-over ({}) must be",
           "     larger than zero and less than or equal to 100\n"},
          {&Block::m_nMutIndex,
           {1, 50, 100},
           {{0, "0"}, {-1, "-1"}, {101, "101"}},
           "(Design Control): The Distribution Index for mutation ({}) must be",
           "     larger than zero and less than or equal to 100.\n"},
          {&Block::m_fSeedFraction,
           {kTiny, 0.5, 0.999999},
           {{0, "0"}, {-0.5, "-0.5"}, {2.5, "2.5"}, {1, "1"}},
           "(Design Control): The Random Seed ({}) must be",
           "     larger than zero and less than 1.\n"},
          {&Block::m_nPopulation,
           {-2, 0, 2, 100},
           {{1, "1"}, {-1, "-1"}, {kMostInt, "2147483647"}, {101, "101"}},
           "(Design Control): The Population Size ({}) must be",
           "     even number.\n"}};
}

TEST(NonGradientCheck, FreshDefaultsPassForASwarm) {
  ExpectSound(CNGOControl());
  ExpectSound(CNGOControl(), {.random = 1});
}

TEST(NonGradientCheck, FreshDefaultsPassForTheOtherMethods) {
  ExpectSound(WithMethod(kGenetic));
  ExpectSound(WithMethod(kNSGA));
}

TEST(NonGradientCheck, RulesOfASwarm) {
  ExpectMethodsRules(kSwarm, SwarmRules());
}

TEST(NonGradientCheck, RulesOfAGeneticAlgorithm) {
  ExpectMethodsRules(kGenetic, GeneticRules());
}

TEST(NonGradientCheck, RulesOfNSGA) {
  ExpectMethodsRules(kNSGA, NSGARules());
}

Lines TooFewUserPoints(const std::string& points) {
  return Fault("(Design Control): Population size (" + points + ") must be larger than 1.\n",
               {"     Current starting strategy is user defined.\n"});
}

TEST(NonGradientCheck, ASwarmThatStartsFromTheUsersPointsNeedsTwo) {
  Block block;
  block.m_nStart = 11;
  ExpectSound(block, {.userPoints = 2});
  ExpectSound(block, {.userPoints = 3});
  ExpectFault(block, {.userPoints = 1}, TooFewUserPoints("1"));
  ExpectFault(block, {.userPoints = 0}, TooFewUserPoints("0"));
  ExpectFault(block, {.userPoints = -1}, TooFewUserPoints("-1"));
}

TEST(NonGradientCheck, AStartLooksAtItsOwnPointsOnly) {
  Block block;
  ExpectSound(block, {.userPoints = 0});
  block.m_nStart = 11;
  block.m_nPopulation = 1;
  ExpectSound(block);
}

TEST(NonGradientCheck, OtherStartsAreInvalid) {
  for (const int start : {9, 12, 0, -1}) {
    Block block;
    block.m_nStart = start;
    ExpectFault(block, {},
                Fault("(Design Control): Invalid starting strategy specified (" +
                          std::to_string(start) + ").\n",
                      {}));
  }
}

TEST(NonGradientCheck, OtherMethodsAreInvalid) {
  for (const int method : {-1, 3, 2147483647}) {
    ExpectFault(WithMethod(method), {},
                Fault("(Design Control): Invalid non-gradient optimization method (" +
                          std::to_string(method) + ").\n",
                      {}));
  }
}

const Lines continuousVariables =
    Fault("(Design Control): All design variables must be either integer or discrete",
          {"     when using a genetic algorithm.\n\n"});

TEST(NonGradientCheck, AGeneticAlgorithmTakesNoContinuousVariable) {
  ExpectFault(WithMethod(kGenetic), {.vars = 3, .discreteVars = 2}, continuousVariables);
  ExpectFault(WithMethod(kGenetic), {.vars = 2, .discreteVars = 3}, continuousVariables);
  ExpectSound(WithMethod(kGenetic), {.vars = 0, .discreteVars = 0});
  ExpectSound(WithMethod(kNSGA), {.vars = 3, .discreteVars = 2});
  ExpectSound(WithMethod(kSwarm), {.vars = 3, .discreteVars = 2});
}

TEST(NonGradientCheck, AnOddPopulationFailsForNSGAOnly) {
  for (const int method : {kSwarm, kGenetic, kNSGA}) {
    Block block = WithMethod(method);
    block.m_nPopulation = 101;
    ClearLog();
    EXPECT_EQ(Check(block), method != kNSGA);
  }
}

TEST(NonGradientCheck, AMethodLooksAtItsOwnFieldsOnly) {
  const std::vector<Cases> rulesOf{SwarmRules(), GeneticRules(), NSGARules()};
  for (const int method : {kSwarm, kGenetic, kNSGA}) {
    Block block = WithMethod(method);
    Lines ignored;
    for (const int other : {kSwarm, kGenetic, kNSGA}) {
      if (other != method) BreakAll(block, rulesOf[static_cast<std::size_t>(other)], ignored);
    }
    block.m_nPopulation = 100;
    if (method != kSwarm) block.m_nStart = 0;
    ExpectSound(block, {.userPoints = 0});
  }
}

// ---- The rules of all methods ----

Lines TooFewMaxIters(const std::string& value) {
  return Fault(
      "(Design Control): The maximum number of iterations (" + value + ") must be larger than 0.\n",
      {});
}

Lines TooFewMinIters(const std::string& value) {
  return Fault(
      "(Design Control): The minimum number of iterations (" + value + ") must be larger than 0.\n",
      {});
}

Lines MinAboveMax(const std::string& least, const std::string& most) {
  return Fault(
      "(Design Control): The minimum number of iterations (" + least + ") must be less than",
      {"     or equal to the maximum maximum number of iterations (" + most + ").\n"});
}

Lines Joined(const std::vector<Lines>& parts) {
  Lines all;
  for (const Lines& part : parts) Append(all, part);
  return all;
}

RuleCase<Block> Positive(vbFLOAT64 Block::*field, const std::string& name) {
  return {field,
          {kTiny, 1, 1e300},
          {{0, "0"}, {-kTiny, "-4.94066e-324"}, {-0.5, "-0.5"}},
          "(Design Control): The " + name + " convergence criterion ({}) must be",
          "     larger than zero.\n\n"};
}

Cases CommonRules() {
  return {{&Block::m_nFixedSeed,
           {0, 1},
           {{-1, "-1"}, {2, "2"}},
           "(Design Control): The random number seed flag ({}) must be set to",
           "     either FALSE=0 or TRUE=1.\n\n"},
          {&Block::m_nConvIters,
           {2, 3, kMostInt},
           {{0, "0"}, {kLeastInt, "-2147483648"}, {1, "1"}},
           "(Design Control): The number of iterations to convergence ({}",
           "     must be larger than 1.\n\n"},
          {&Block::m_fCTMIN,
           {0, -0.0, kTiny, 1e300},
           {{-kTiny, "-4.94066e-324"}, {-0.5, "-0.5"}},
           "(Design Control): The violated constraint tolerance ({}) must be",
           "     larger than or equal to zero.\n\n"},
          Positive(&Block::m_fHardAbs, "absolute hard"),
          Positive(&Block::m_fHardRel, "relative hard")};
}

Lines SoftAbsFault(const std::string& value) {
  const std::string positive = "     larger than zero.\n\n";
  return Joined(
      {Fault("(Design Control): The absolute soft convergence criterion (" + value + ") must be",
             {positive}),
       Fault("(Design Control): The relative soft convergence criterion (" + value + ") must be",
             {positive})});
}

TEST(NonGradientCheck, RulesOfAllMethods) {
  for (const int method : {kSwarm, kGenetic, kNSGA}) ExpectMethodsRules(method, CommonRules());
}

TEST(NonGradientCheck, LimitsOfTheIterations) {
  struct Limits {
    int least, most;
    Lines faults;
  };
  const Limits cases[] = {
      {1, 1, {}},
      {1, 2147483647, {}},
      {7, 7, {}},
      {8, 7, MinAboveMax("8", "7")},
      {0, 1, TooFewMinIters("0")},
      {-1, 100, TooFewMinIters("-1")},
      {0, 0, Joined({TooFewMaxIters("0"), TooFewMinIters("0")})},
      {1, 0, Joined({TooFewMaxIters("0"), MinAboveMax("1", "0")})},
      {0, -1, Joined({TooFewMaxIters("-1"), TooFewMinIters("0"), MinAboveMax("0", "-1")})},
  };
  for (const Limits& limits : cases) {
    SCOPED_TRACE(std::to_string(limits.least) + " to " + std::to_string(limits.most));
    Block block;
    block.m_nMinIters = limits.least;
    block.m_nMaxIters = limits.most;
    if (limits.faults.empty()) {
      ExpectSound(block);
    } else {
      ExpectFault(block, {}, limits.faults);
    }
  }
}

TEST(NonGradientCheck, TheAbsoluteSoftCriterionIsReportedTwice) {
  Block block;
  block.m_fSoftAbs = 0;
  ExpectFault(block, {}, SoftAbsFault("0"));
  block.m_fSoftAbs = -0.25;
  ExpectFault(block, {}, SoftAbsFault("-0.25"));
  block.m_fSoftAbs = kTiny;
  ExpectSound(block);
}

TEST(NonGradientCheck, TheRelativeSoftCriterionHasNoRule) {
  for (const double value : {-1.0, 0.0, -1e300}) {
    Block block;
    block.m_fSoftRel = value;
    ExpectSound(block);
  }
}

TEST(NonGradientCheck, SomeFieldsHaveNoRule) {
  Block block;
  block.m_nOldPopulation = -1;
  block.m_nSeed = -1;
  block.m_nMinimize = -1;
  block.m_nRandomSeed = -1;
  ExpectSound(block, {.random = 1});
}

// ---- The random analysis ----

const Lines wrongRandomMethod =
    Fault("(Design Control): The random analysis method used with non-gradient\n",
          {"     based optimization should be either Monte Carlo Sampling, \n",
           "     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n",
           "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n"});

TEST(NonGradientCheck, RandomSettingsMatterWithARandomVariableOnly) {
  Block block;
  block.m_nRandomMethod = 5;
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = 2;
  ExpectSound(block, {.random = 0});
  ExpectSound(block, {.random = -1});
  ClearLog();
  EXPECT_FALSE(Check(block, {.random = 1}));
  EXPECT_FALSE(Check(block, {.random = 2}));
}

TEST(NonGradientCheck, RandomMethodIsOneOfFive) {
  Block block;
  for (const int method : {0, 1, 2, 3, 4}) {
    block.m_nRandomMethod = method;
    ExpectSound(block, {.random = 1});
  }
  for (const int method : {-1, 5}) {
    block.m_nRandomMethod = method;
    ExpectFault(block, {.random = 1}, wrongRandomMethod);
  }
}

void ExpectRandomRule(int method, const RuleCase<Block>& rule) {
  Block block;
  block.m_nRandomMethod = method;
  ExpectRules<Block>(block, {rule}, [](const Block& wrong) { return Check(wrong, {.random = 1}); });
}

TEST(NonGradientCheck, SimulationPointsAreNeededByMethodsThatSimulate) {
  for (const int method : {0, 1, 3, 4}) ExpectRandomRule(method, RandomPointsRule<Block>());
}

TEST(NonGradientCheck, SimulationPointsDoNotMatterToOtherMethods) {
  Block block;
  block.m_nRandomPoints = 0;
  block.m_nRandomMethod = 2;
  ExpectSound(block, {.random = 1});
  block.m_nRandomMethod = 5;
  ExpectFault(block, {.random = 1}, wrongRandomMethod);
}

TEST(NonGradientCheck, SavePointsIsAFlagWithEachRandomMethod) {
  for (const int method : {0, 1, 2, 3, 4}) ExpectRandomRule(method, SavePointsRule<Block>());
}

// ---- Everything wrong at once ----

/// Breaks what all methods have in common, and what is reported for it.
Lines BreakCommon(Block& block) {
  block.m_nMinIters = 0;
  block.m_nMaxIters = -1;
  Lines lines = Joined({TooFewMaxIters("-1"), TooFewMinIters("0"), MinAboveMax("0", "-1")});
  BreakAll(block, CommonRules(), lines);
  block.m_fSoftAbs = -3;
  Append(lines, SoftAbsFault("-3"));
  return lines;
}

/// The same for the random analysis, with a method that is illegal or one that simulates points.
Lines BreakRandom(Block& block, int method) {
  block.m_nRandomMethod = method;
  Lines lines;
  if (method == 5) {
    Append(lines, wrongRandomMethod);
  } else {
    BreakAll(block, {RandomPointsRule<Block>()}, lines);
  }
  BreakAll(block, {SavePointsRule<Block>()}, lines);
  return lines;
}

void ExpectAllReported(int method, const Cases& rules, const Lines& others, int randomMethod) {
  Block block = WithMethod(method);
  Lines expected;
  BreakAll(block, rules, expected);
  Append(expected, others);
  Append(expected, BreakCommon(block));
  Append(expected, BreakRandom(block, randomMethod));
  ExpectFault(block, {.vars = 3, .discreteVars = 2, .userPoints = 0, .random = 1}, expected);
}

TEST(NonGradientCheck, EveryFaultOfASwarmIsReportedInOrder) {
  ExpectAllReported(kSwarm, SwarmRules(), {}, 4);
}

TEST(NonGradientCheck, EveryFaultOfAGeneticAlgorithmIsReportedInOrder) {
  ExpectAllReported(kGenetic, GeneticRules(), continuousVariables, 5);
}

TEST(NonGradientCheck, EveryFaultOfNSGAIsReportedInOrder) {
  ExpectAllReported(kNSGA, NSGARules(), {}, 0);
}

TEST(NonGradientCheck, EveryFaultOfAnUnknownMethodIsReportedInOrder) {
  ExpectAllReported(
      3, {}, Fault("(Design Control): Invalid non-gradient optimization method (3).\n", {}), 5);
}

TEST(NonGradientCheck, UnnamedArgumentsHaveNoEffect) {
  Block block;
  block.m_fInertia = -1;
  for (const bool first : {false, true}) {
    for (const bool second : {false, true}) {
      for (const int fourth : {-1, 0, 1000}) {
        EXPECT_TRUE(CNGOControl().CheckParams(first, second, 3, fourth, 3, 2, 0));
        ClearLog();
        EXPECT_FALSE(block.CheckParams(first, second, 3, fourth, 3, 2, 0));
        EXPECT_EQ(Log().size(), 2U);
      }
    }
  }
}

}  // namespace
