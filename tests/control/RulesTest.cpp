#include "control/Rules.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/Log.h"

namespace {

using kestdb::Checked;
using kestdb::Rules;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

/// Whether the rule holds for the value. It must be told in the log just when it doesn't.
bool Holds(double value, const std::function<void(Rules&, Checked)>& rule) {
  ClearLog();
  Rules rules;
  rule(rules, vbFLOAT64(value));
  EXPECT_EQ(Log().empty(), rules.AllHold()) << value;
  return rules.AllHold();
}

// ---- Which values are legal ----

TEST(CheckedRules, BetweenTakesBothEnds) {
  const auto rule = [](Rules& rules, Checked value) { rules.Between(value, -1, 4, "fault"); };
  for (const double legal : {-1.0, -0.5, 0.0, 4.0}) EXPECT_TRUE(Holds(legal, rule));
  for (const double illegal : {-1.0 - 1e-9, 4.0 + 1e-9, -kInfinity, kInfinity, kNaN}) {
    EXPECT_FALSE(Holds(illegal, rule));
  }
}

TEST(CheckedRules, NotBelowTakesTheLimit) {
  const auto rule = [](Rules& rules, Checked value) { rules.NotBelow(value, 0, "fault"); };
  for (const double legal : {0.0, -0.0, kTiny, kInfinity}) EXPECT_TRUE(Holds(legal, rule));
  for (const double illegal : {-kTiny, -1.0, -kInfinity}) EXPECT_FALSE(Holds(illegal, rule));
}

TEST(CheckedRules, NotAboveTakesTheLimit) {
  const auto rule = [](Rules& rules, Checked value) { rules.NotAbove(value, 0, "fault"); };
  for (const double legal : {0.0, -0.0, -kTiny, -kInfinity}) EXPECT_TRUE(Holds(legal, rule));
  for (const double illegal : {kTiny, 1.0, kInfinity}) EXPECT_FALSE(Holds(illegal, rule));
}

TEST(CheckedRules, AboveLeavesTheLimitOut) {
  const auto rule = [](Rules& rules, Checked value) { rules.Above(value, 0, "fault"); };
  for (const double legal : {kTiny, 1.0, kInfinity}) EXPECT_TRUE(Holds(legal, rule));
  for (const double illegal : {0.0, -0.0, -kTiny, -kInfinity}) EXPECT_FALSE(Holds(illegal, rule));
}

TEST(CheckedRules, OneOfTakesTheListedNumbersOnly) {
  const auto rule = [](Rules& rules, Checked value) { rules.OneOf(value, {0, 2, -3}, "fault"); };
  for (const double legal : {0.0, 2.0, -3.0}) EXPECT_TRUE(Holds(legal, rule));
  for (const double illegal : {1.0, -2.0, 3.0, 0.5, 2.0 + 1e-9, kNaN}) {
    EXPECT_FALSE(Holds(illegal, rule));
  }
}

TEST(CheckedRules, RequireTakesTheCallersWord) {
  EXPECT_TRUE(Holds(1, [](Rules& rules, Checked value) { rules.Require(true, value, "fault"); }));
  EXPECT_FALSE(Holds(1, [](Rules& rules, Checked value) { rules.Require(false, value, "fault"); }));
}

TEST(CheckedRules, NoNumberIsNeitherBelowNorAboveALimit) {
  EXPECT_TRUE(Holds(kNaN, [](Rules& rules, Checked value) { rules.NotBelow(value, 0, "fault"); }));
  EXPECT_TRUE(Holds(kNaN, [](Rules& rules, Checked value) { rules.NotAbove(value, 0, "fault"); }));
  EXPECT_FALSE(Holds(kNaN, [](Rules& rules, Checked value) { rules.Above(value, 0, "fault"); }));
}

TEST(CheckedRules, TakeEveryStoredIntegerExactly) {
  const vbINT32 most(2147483647);
  const vbINT32 least(-2147483648L);
  Rules rules;
  rules.Between(most, 2147483647.0, 2147483647.0, "fault");
  rules.Between(least, -2147483648.0, -2147483648.0, "fault");
  rules.NotBelow(7, 7, "fault");
  EXPECT_TRUE(rules.AllHold());
  rules.NotAbove(most, 2147483646, "fault");
  EXPECT_FALSE(rules.AllHold());
}

// ---- What is collected ----

TEST(CheckedRules, HoldUntilOneFails) {
  Rules rules;
  EXPECT_TRUE(rules.AllHold());
  rules.Above(1, 0, "fault");
  EXPECT_TRUE(rules.AllHold());
  rules.Above(0, 0, "fault");
  EXPECT_FALSE(rules.AllHold());
  rules.Above(1, 0, "fault");
  EXPECT_FALSE(rules.AllHold());
}

TEST(CheckedRules, TakeOverAnEarlierResult) {
  EXPECT_TRUE(Rules(true).AllHold());
  EXPECT_FALSE(Rules(false).AllHold());
}

TEST(CheckedRules, FailWithoutAWordForAFaultThatTheCallerReports) {
  ClearLog();
  Rules rules;
  rules.Fail();
  EXPECT_FALSE(rules.AllHold());
  EXPECT_TRUE(Log().empty());
}

TEST(CheckedRules, ReportEveryFaultInOrder) {
  ClearLog();
  Rules rules;
  rules.Above(vbINT32(0), 0, "number %d", "second", "third\n");
  rules.Above(vbINT32(5), 0, "unseen");
  rules.OneOf(vbINT32(9), {1}, "other %d");
  const std::vector<LogEntry> expected{
      {"LError", "number 0", "", 0},
      {"LPrint", "second", "", 0},
      {"LPrint", "third\n", "", 0},
      {"LError", "other 9", "", 0},
  };
  EXPECT_EQ(Log(), expected);
}

TEST(CheckedRules, PrintFurtherLinesAsTheyAre) {
  ClearLog();
  Rules rules;
  rules.Above(vbINT32(0), 0, "first\n", "100%d of %s %n");
  const std::vector<LogEntry> expected{
      {"LError", "first\n", "", 0},
      {"LPrint", "100%d of %s %n", "", 0},
  };
  EXPECT_EQ(Log(), expected);
}

// ---- How a value is shown ----

std::string Shown(const char* text, Checked value) {
  ClearLog();
  Rules rules;
  rules.Require(false, value, text);
  return PrintedLog();
}

TEST(CheckedRules, ShowAValueInTheTypeOfItsField) {
  EXPECT_EQ(Shown("(IPRINT=%d) should be", vbINT32(-8)), "(IPRINT=-8) should be");
  EXPECT_EQ(Shown("(CT=%g) should be", vbFLOAT64(0.001)), "(CT=0.001) should be");
  EXPECT_EQ(Shown("(%g)", vbFLOAT64(1e300)), "(1e+300)");
  EXPECT_EQ(Shown("(%g)", vbFLOAT64(-kInfinity)), "(-inf)");
  EXPECT_EQ(Shown("(%d)", 12), "(12)");
}

TEST(CheckedRules, ShowAnIntegerAsAReal) {
  EXPECT_EQ(Shown("(IGRAD=%g)", vbINT32(5)), "(IGRAD=5)");
  EXPECT_EQ(Shown("(%g)", vbINT32(-2)), "(-2)");
  EXPECT_EQ(Shown("(%g)", vbINT32(1234567)), "(1.23457e+06)");
  EXPECT_EQ(Shown("(%g)", vbINT32(2147483647)), "(2.14748e+09)");
  EXPECT_EQ(Shown("(%g)", vbINT32(-2147483648L)), "(-2.14748e+09)");
}

TEST(CheckedRules, ShowARealAsAnIntegerWithoutItsFraction) {
  EXPECT_EQ(Shown("(PENALT=%d)", vbFLOAT64(-0.5)), "(PENALT=0)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(-1.99)), "(-1)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(3.75)), "(3)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(-2147483648.0)), "(-2147483648)");
}

TEST(CheckedRules, ShowARealBeyondTheIntegersAsTheLastOne) {
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(1e300)), "(2147483647)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(-1e300)), "(-2147483648)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(2147483648.0)), "(2147483647)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(kInfinity)), "(2147483647)");
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(-kInfinity)), "(-2147483648)");
}

TEST(CheckedRules, ShowNoNumberAsZeroAmongTheIntegers) {
  EXPECT_EQ(Shown("(%d)", vbFLOAT64(kNaN)), "(0)");
  EXPECT_EQ(Shown("(%g)", vbFLOAT64(kNaN)), "(nan)");
}

TEST(CheckedRules, ShowNoValueWhereTheTextHasNoPlaceForIt) {
  EXPECT_EQ(Shown("Invalid method.\n", vbINT32(5)), "Invalid method.\n");
}

}  // namespace
