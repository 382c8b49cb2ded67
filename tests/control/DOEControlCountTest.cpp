#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "control/DOEControl.h"
#include "definition/GPoint.h"
#include "store/KestErr.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

// The numbers of points of designs, worked out by hand. P(n, k) stands for the running product, for
// i from 1 to k, of (n - i + 1) / i without its fraction.

namespace {

enum Method {
  kFactorial,
  kComposite,
  kBoxBehnken,
  kPlackettBurman,
  kNotz,
  kKoshal,
  kRechtschaffner,
  kHybrid,
  kTaguchi,
  kSimplex,
  kRandom,
  kUserDefined,
  kLatinStandard,
  kLatinOptimal
};

constexpr int kLeast = INT_MIN;
constexpr int kMost = INT_MAX;
/// What a count below the range of an integer ends as.
constexpr int kLowest = -INT_MAX;

CDOEControl Design(int method, int option) {
  CDOEControl block;
  block.m_nMethod = method;
  block.m_vnOptions[static_cast<std::size_t>(method)] = option;
  return block;
}

struct Count {
  int option;
  int vars;
  int points;
};

void ExpectCounts(int method, const std::vector<Count>& counts) {
  for (const auto& [option, vars, points] : counts) {
    SCOPED_TRACE("option " + std::to_string(option) + ", " + std::to_string(vars) + " variables");
    ClearLog();
    EXPECT_EQ(Design(method, option).GetDOEPointCnt(nullptr, vars), points);
    EXPECT_TRUE(Log().empty());
  }
}

// ---- Factorial and composite ----

TEST(DesignPointCount, OfAFactorialIsAPowerOfTwo) {
  ExpectCounts(kFactorial, {{0, 0, 1},
                            {0, 1, 2},
                            {0, 3, 8},
                            {1, 3, 4},
                            {2, 3, 2},
                            {3, 3, 1},
                            {0, 10, 1024},
                            {3, 10, 128},
                            {-1, 3, 16},
                            {0, 30, 1073741824},
                            {70, 100, 1073741824}});
}

TEST(DesignPointCount, OfAFractionBelowOnePointIsNone) {
  ExpectCounts(kFactorial, {{4, 3, 0}, {1, 0, 0}, {100, 3, 0}, {0, -1, 0}});
}

TEST(DesignPointCount, OfACompositeAddsCentreAndAxes) {
  ExpectCounts(kComposite, {{0, 0, 2},
                            {0, 2, 9},
                            {0, 3, 15},
                            {1, 3, 11},
                            {2, 3, 9},
                            {4, 3, 7},
                            {0, 5, 43},
                            {2, 5, 19},
                            {-1, 2, 13}});
}

TEST(DesignPointCount, OfACompositeWithOneVariableIsThree) {
  ExpectCounts(kComposite, {{0, 1, 3}, {1, 1, 3}, {5, 1, 3}, {-3, 1, 3}});
}

// ---- Box-Behnken ----

TEST(DesignPointCount, OfBoxBehnkenWithOneVariableAtATime) {
  ExpectCounts(kBoxBehnken, {{1, 5, 10}, {1, 1, 2}, {1, 3, 6}, {1, 0, 0}});
}

TEST(DesignPointCount, OfBoxBehnkenDividesInEachStep) {
  // P(4, 2) = 4 * 1, P(6, 2) = 6 * 2, P(2, 2) = 2 * 0
  ExpectCounts(kBoxBehnken, {{2, 2, 0},
                             {2, 3, 12},
                             {2, 4, 16},
                             {2, 5, 40},
                             {2, 6, 48},
                             {2, 7, 84},
                             {2, 8, 96},
                             {2, -1, 4}});
  // P(6, 3) = 6 * 2 * 1, P(8, 3) = 8 * 3 * 2, P(4, 3) = 4 * 1 * 0
  ExpectCounts(
      kBoxBehnken,
      {{3, 3, 0}, {3, 4, 0}, {3, 5, 80}, {3, 6, 96}, {3, 7, 168}, {3, 8, 384}, {3, 9, 576}});
}

TEST(DesignPointCount, OfBoxBehnkenWithManyVariablesAtATime) {
  // P(10, 4) = 10 * 4 * 2 * 1; P(21, 11) = 21 * 10 * 6 * 4 * 3 * 2 * 2
  ExpectCounts(kBoxBehnken, {{4, 8, 768}, {4, 10, 1280}, {11, 11, 0}, {11, 21, 123863040}});
}

TEST(DesignPointCount, OfBoxBehnkenBelowOptionOneTakesTheVariablesForTheProduct) {
  ExpectCounts(kBoxBehnken, {{0, 3, 3}, {0, 7, 7}, {0, 1, 1}});
}

TEST(DesignPointCount, OfBoxBehnkenBelowOptionZeroIsNone) {
  // the power of two is a fraction, and cut
  ExpectCounts(kBoxBehnken, {{-1, 3, 0}, {-2, 100, 0}});
}

TEST(DesignPointCount, OfBoxBehnkenWithTwoDigitsAddsBothEnds) {
  ExpectCounts(kBoxBehnken, {{12, 2, 4},
                             {12, 3, 18},
                             {12, 4, 24},
                             {12, 5, 50},
                             {13, 3, 6},
                             {13, 5, 90},
                             {13, 8, 400},
                             {23, 3, 12},
                             {23, 5, 120},
                             {23, 6, 144},
                             {14, 10, 1300},
                             {24, 10, 1440}});
}

TEST(DesignPointCount, OfBoxBehnkenWithTwoLikeDigitsCountsOnce) {
  // P(17, 9) = 17 * 8 * 5 * 3 * 2 * 2
  ExpectCounts(kBoxBehnken, {{22, 5, 40}, {33, 5, 80}, {99, 17, 4177920}});
}

TEST(DesignPointCount, OfBoxBehnkenWithFallingDigitsIsNone) {
  ExpectCounts(kBoxBehnken, {{21, 5, 0}, {20, 5, 0}, {98, 17, 0}, {100, 5, 0}, {122, 5, 0}});
}

TEST(DesignPointCount, OfBoxBehnkenFromOption123OnAddsAllThree) {
  ExpectCounts(
      kBoxBehnken,
      {{123, 3, 18}, {123, 4, 24}, {123, 5, 130}, {123, 8, 496}, {124, 5, 130}, {999, 5, 130}});
}

// ---- Designs whose option is the count ----

TEST(DesignPointCount, OfPlackettBurmanRandomAndLatinIsTheOption) {
  for (const int method : {kPlackettBurman, kRandom, kLatinStandard, kLatinOptimal}) {
    SCOPED_TRACE(method);
    ExpectCounts(method, {{12, 1, 12},
                          {12, 11, 12},
                          {20, 0, 20},
                          {0, 5, 0},
                          {-5, 5, -5},
                          {kMost, 5, kMost},
                          {kLeast, 5, kLeast}});
  }
}

// ---- Notz, Koshal, Rechtschaffner ----

TEST(DesignPointCount, OfNotzAddsTheVariables) {
  ExpectCounts(kNotz, {{0, 3, 11}, {1, 3, 7}, {3, 3, 4}, {4, 3, 3}, {0, 1, 3}});
}

TEST(DesignPointCount, OfNotzBelowOptionZeroLeavesOnePointOut) {
  ExpectCounts(kNotz, {{-1, 1, 2}, {-1, 3, 10}, {-7, 3, 10}, {-1, 5, 36}});
}

TEST(DesignPointCount, OfKoshalAndRechtschaffnerAddsWhatTheOptionAsksFor) {
  for (const int method : {kKoshal, kRechtschaffner}) {
    SCOPED_TRACE(method);
    ExpectCounts(method, {{10, 1, 2}, {10, 3, 4}, {10, 4, 5}, {10, 5, 6}});
    ExpectCounts(method, {{11, 1, 2}, {11, 3, 7}, {11, 4, 11}, {11, 5, 16}});
    ExpectCounts(method, {{20, 1, 3}, {20, 3, 7}, {20, 4, 9}, {20, 5, 11}});
    ExpectCounts(method, {{21, 1, 3}, {21, 3, 10}, {21, 4, 15}, {21, 5, 21}});
    ExpectCounts(method, {{0, 4, 5}, {12, 4, 5}, {22, 4, 5}, {-11, 4, 5}});
  }
}

// ---- Hybrid, Taguchi, simplex ----

TEST(DesignPointCount, OfAHybridIsPackedInItsOption) {
  ExpectCounts(kHybrid, {{3101, 3, 10},
                         {3111, 3, 11},
                         {3112, 3, 11},
                         {4161, 4, 16},
                         {4163, 4, 16},
                         {6281, 6, 28},
                         {6282, 6, 28},
                         {3101, 4, -90},
                         {0, 0, 0},
                         {-19, 0, -1}});
}

TEST(DesignPointCount, OfTaguchiIsThreeOrTheOption) {
  ExpectCounts(kTaguchi, {{1, 3, 3},
                          {2, 3, 3},
                          {8, 3, 3},
                          {9, 3, 9},
                          {10, 3, 10},
                          {27, 5, 27},
                          {81, 40, 81},
                          {0, 3, 3},
                          {-4, 3, 3}});
}

TEST(DesignPointCount, OfASimplexIsOneMoreThanItsVariables) {
  ExpectCounts(kSimplex, {{0, 0, 1}, {0, 1, 2}, {99, 7, 8}, {-3, -1, 0}});
}

// ---- The user's points ----

TEST(DesignPointCount, OfTheUsersDesignIsThatOfTheUsedPoints) {
  const Study study;
  const CDOEControl block = Design(kUserDefined, 77);
  EXPECT_EQ(block.GetDOEPointCnt(study.Pod(), 3), 0);
  CGPoint points(study.Pod());
  points.m_vnUsed = {1, 0, 1, 1, 2};
  ASSERT_TRUE(points.PutObject());
  EXPECT_EQ(block.GetDOEPointCnt(study.Pod(), 3), 3);
  EXPECT_EQ(block.GetDOEPointCnt(study.Pod(), -3), 3);
}

TEST(DesignPointCount, OfTheUsersDesignNeedsTheUsersPoints) {
  const Study study;
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  try {
    Design(kUserDefined, 0).GetDOEPointCnt(study.Pod(), 3);
    FAIL() << "nothing thrown";
  } catch (const CGetObject& failure) {
    EXPECT_STREQ(failure.what(), "Could not get object");
  }
}

TEST(DesignPointCount, OfTheUsersDesignNeedsADatabase) {
  EXPECT_THROW(Design(kUserDefined, 0).GetDOEPointCnt(nullptr, 3), CKestErr);
}

// ---- Designs that there aren't ----

TEST(DesignPointCount, OfAnInvalidDesignIsReported) {
  for (const long method : {14L, 15L, -1L, 2147483647L, -2147483648L}) {
    SCOPED_TRACE(method);
    CDOEControl block;
    block.m_nMethod = method;
    ClearLog();
    EXPECT_EQ(block.GetDOEPointCnt(nullptr, 3), -1);
    EXPECT_EQ(Log(), (std::vector<LogEntry>{
                         {"LError", "(Design Control): Invalid DOE design/method.\n", "", 0}}));
  }
}

TEST(DesignPointCount, OfADesignWithoutAnOptionIsRefused) {
  CDOEControl block = Design(kTaguchi, 9);
  block.m_vnOptions.resize(8);
  EXPECT_THROW(block.GetDOEPointCnt(nullptr, 3), CInvalidArgument);
}

// ---- Numbers that no design has ----

TEST(DesignPointCount, BeyondAnIntegerIsTheLargest) {
  ExpectCounts(kFactorial, {{0, 31, kMost}, {0, 1000, kMost}, {kLeast, kMost, kMost}});
  ExpectCounts(kComposite, {{0, 31, kMost}, {kMost, kMost, kMost}, {0, kMost, kMost}});
  ExpectCounts(kBoxBehnken, {{1, kMost, kMost},
                             {0, kMost, kMost},
                             {11, kMost, kMost},
                             {12, kMost, kMost},
                             {99, kMost, kMost},
                             {kMost, kMost, kMost}});
  ExpectCounts(kNotz, {{0, 31, kMost}, {-1, 32, kMost}, {kLeast, kMost, kMost}, {1, kMost, kMost}});
  for (const int method : {kKoshal, kRechtschaffner}) {
    ExpectCounts(method, {{10, kMost, kMost},
                          {11, kMost, kMost},
                          {20, kMost, kMost},
                          {21, kMost, kMost},
                          {11, 70000, kMost}});
  }
  ExpectCounts(kHybrid, {{kMost, kLeast, kMost}, {0, kLeast, kMost}});
  ExpectCounts(kTaguchi, {{kMost, kMost, kMost}});
  ExpectCounts(kSimplex, {{0, kMost, kMost}});
}

TEST(DesignPointCount, BelowAnIntegerIsTheSmallest) {
  ExpectCounts(kComposite, {{0, kLeast, kLowest}, {kMost, kLeast, kLowest}});
  ExpectCounts(kBoxBehnken, {{1, kLeast, kLowest}, {0, kLeast, kLowest}});
  ExpectCounts(kNotz, {{0, kLeast, kLowest}, {-1, kLeast, kLowest}});
  ExpectCounts(kHybrid, {{0, kMost, kLowest}, {kLeast, kMost, kLowest}});
}

TEST(DesignPointCount, OfNegativeNumbersOfVariablesIsDefined) {
  ExpectCounts(kFactorial, {{kMost, kLeast, 0}, {kLeast, 0, kMost}, {-5, -5, 1}});
  // P(-1, 3) = -1 * -1 * -1, P(-5, 2) = -5 * -3
  ExpectCounts(kBoxBehnken, {{3, -1, -8}, {2, -5, 60}, {kLeast, kLeast, 0}, {-1, kMost, 0}});
  ExpectCounts(kTaguchi, {{kLeast, kLeast, 3}});
  ExpectCounts(kSimplex, {{0, kLeast, kLeast + 1}});
  // n(n - 1)/2 of the smallest integer is large
  ExpectCounts(kKoshal, {{10, kLeast, kLeast + 1}, {11, kLeast, kMost}, {20, -4, -7}, {21, -4, 3}});
}

}  // namespace
