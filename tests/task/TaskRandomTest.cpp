#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "results/DPoint.h"
#include "store/KestErr.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Study.h"
#include "tests/task/PrintedFaults.h"

namespace {

enum Distribution { kNormal, kUniform, kLognormal, kWeibull };

constexpr bool kMoments = true;
constexpr bool kParameters = false;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::nan("");

using Bounds = std::array<double, 3>;
using Lines = std::vector<std::string>;

/// The check of the variable "Width", number 12, on an empty log.
bool Check(bool moments, int distribution, const Bounds& bounds, std::string name = "Width",
           int number = 12) {
  ClearLog();
  CTask task;
  return task.CheckRandDVarLB(moments, name, number, distribution, bounds[0], bounds[1], bounds[2]);
}

/// A rule that one bound is not below a least value.
struct LeastValue {
  const char* name;
  bool moments;
  int distribution;
  std::size_t parameter;
  Lines words;
  const char* allowed;
  double least = 1e-12;
  const char* belowLeast = "1e-12";  ///< how the greatest illegal value is printed

  bool CheckValue(double value) const {
    Bounds bounds{2.0, 2.0, 2.0};
    bounds[parameter] = value;
    return Check(moments, distribution, bounds);
  }
  Lines Fault(const std::string& value) const {
    Lines lines = words;
    lines.push_back("     The supplied value = " + value + "\n");
    lines.push_back(allowed);
    return lines;
  }
};

constexpr char kAllowed[] = "     The allowed value should be > 0\n";
constexpr char kDeviation[] = "(Make Task) : Invalid lower bound standard deviation value for\n";

const std::array kLeastValues{
    LeastValue{"deviation of a Normal",
               kMoments,
               kNormal,
               1,
               {kDeviation, "     the Normal distribution of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"deviation of a Uniform",
               kMoments,
               kUniform,
               1,
               {kDeviation, "     the Uniform distribution of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"deviation of a Lognormal",
               kMoments,
               kLognormal,
               1,
               {kDeviation, "     the Log Normal distribution of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"mean of a Lognormal",
               kMoments,
               kLognormal,
               0,
               {"(Make Task) : Invalid lower bound mean value for the Log Normal\n",
                "     distribution of dvar 12 (Width).\n"},
               "     The allowed value should be > 1\n",
               1.000000000001,
               "1"},
    LeastValue{"deviation of a Weibull",
               kMoments,
               kWeibull,
               1,
               {kDeviation, "     the Weibull distribution of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"mean of a Weibull",
               kMoments,
               kWeibull,
               0,
               {"(Make Task) : Invalid lower bound mean value for the Weibull\n",
                "     distribution of dvar 12 (Width).\n"},
               "     The allowed mean value should be > 0\n"},
    LeastValue{"second parameter of a Normal",
               kParameters,
               kNormal,
               1,
               {"(Make Task) : Invalid standard deviation lower bound value\n",
                "     (2nd parameter) for the Normal distribution of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"lambda of a Lognormal",
               kParameters,
               kLognormal,
               0,
               {"(Make Task) : Invalid lower bound natural logarithm value of the\n",
                "     mean value (1st parameter, lambda) for the Lognormal distribution\n",
                "     of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"epsilon of a Lognormal",
               kParameters,
               kLognormal,
               1,
               {"(Make Task) : Invalid lower bound natural logarithm value of the standard\n",
                "     deviation (2nd parameter, epsilon) for the Lognormal distribution\n",
                "     of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"eta of a Weibull",
               kParameters,
               kWeibull,
               1,
               {"(Make Task) : Invalid lower bound scale parameter (2nd parameter, eta)\n",
                "     value for the Weibull distribution of dvar 12 (Width).\n"},
               kAllowed},
    LeastValue{"beta of a Weibull",
               kParameters,
               kWeibull,
               2,
               {"(Make Task) : Invalid lower bound shape parameter or slope (3rd parameter,\n",
                "     beta) value for the Weibull distribution of dvar 12 (Width).\n"},
               kAllowed},
};

// ---- Least values ----

TEST(RandomLowerBounds, OfTheLeastValuePass) {
  for (const auto& rule : kLeastValues) {
    SCOPED_TRACE(rule.name);
    EXPECT_TRUE(rule.CheckValue(rule.least));
    EXPECT_TRUE(Log().empty());
  }
}

TEST(RandomLowerBounds, AboveTheLeastValuePass) {
  for (const auto& rule : kLeastValues) {
    for (const double value : {std::nextafter(rule.least, 2.0), 1.5, 1e300, kInfinity}) {
      SCOPED_TRACE(rule.name);
      EXPECT_TRUE(rule.CheckValue(value)) << value;
      EXPECT_TRUE(Log().empty()) << value;
    }
  }
}

TEST(RandomLowerBounds, JustBelowTheLeastValueFail) {
  for (const auto& rule : kLeastValues) {
    SCOPED_TRACE(rule.name);
    EXPECT_FALSE(rule.CheckValue(std::nextafter(rule.least, 0.0)));
    EXPECT_EQ(PrintedLines(), Faults({rule.Fault(rule.belowLeast)}));
  }
}

TEST(RandomLowerBounds, FarBelowTheLeastValueFail) {
  struct Illegal {
    double value;
    const char* printed;
  };
  for (const auto& rule : kLeastValues) {
    for (const auto& [value, printed] : {Illegal{1e-13, "1e-13"}, Illegal{0.0, "0"},
                                         Illegal{-2.5, "-2.5"}, Illegal{-kInfinity, "-inf"}}) {
      SCOPED_TRACE(rule.name);
      EXPECT_FALSE(rule.CheckValue(value)) << value;
      EXPECT_EQ(PrintedLines(), Faults({rule.Fault(printed)}));
    }
  }
}

TEST(RandomLowerBounds, ThatAreNoNumberPass) {
  for (const auto& rule : kLeastValues) {
    SCOPED_TRACE(rule.name);
    EXPECT_TRUE(rule.CheckValue(kNaN));
    EXPECT_TRUE(Log().empty());
  }
}

TEST(RandomLowerBounds, OfANormalDeviationPassFrom1em12) {
  EXPECT_TRUE(Check(kMoments, kNormal, {0.0, 1e-12, 0.0}));
  EXPECT_FALSE(Check(kMoments, kNormal, {0.0, 0.0, 0.0}));
  EXPECT_TRUE(Check(kParameters, kNormal, {0.0, 1e-12, 0.0}));
  EXPECT_FALSE(Check(kParameters, kNormal, {0.0, 0.0, 0.0}));
}

TEST(RandomLowerBounds, OfAUniformDeviationFailAt1em13) {
  EXPECT_FALSE(Check(kMoments, kUniform, {5.0, 1e-13, 0.0}));
  EXPECT_EQ(PrintedLines(),
            Faults({{kDeviation, "     the Uniform distribution of dvar 12 (Width).\n",
                     "     The supplied value = 1e-13\n", kAllowed}}));
}

TEST(RandomLowerBounds, OfALognormalMeanFailAtExactlyOne) {
  EXPECT_FALSE(Check(kMoments, kLognormal, {1.0, 0.5, 0.0}));
  EXPECT_EQ(PrintedLines(),
            Faults({{"(Make Task) : Invalid lower bound mean value for the Log Normal\n",
                     "     distribution of dvar 12 (Width).\n", "     The supplied value = 1\n",
                     "     The allowed value should be > 1\n"}}));
  EXPECT_TRUE(Check(kMoments, kLognormal, {1.000000000001, 0.5, 0.0}));
}

TEST(RandomLowerBounds, ArePrintedWithSixDigits) {
  EXPECT_FALSE(Check(kMoments, kNormal, {0.0, -1234567.0, 0.0}));
  EXPECT_EQ(PrintedLines().at(2).text, "     The supplied value = -1.23457e+06\n");
}

// ---- What is not looked at ----

TEST(RandomLowerBounds, OfParametersWithoutARuleAreFree) {
  for (const double value : {-1e300, -1.0, 0.0, 1e300, kInfinity, -kInfinity, kNaN}) {
    SCOPED_TRACE(value);
    EXPECT_TRUE(Check(kMoments, kNormal, {value, 2.0, value}));
    EXPECT_TRUE(Check(kMoments, kUniform, {value, 2.0, value}));
    EXPECT_TRUE(Check(kMoments, kLognormal, {2.0, 2.0, value}));
    EXPECT_TRUE(Check(kMoments, kWeibull, {2.0, 2.0, value}));
    EXPECT_TRUE(Check(kParameters, kNormal, {value, 2.0, value}));
    EXPECT_TRUE(Check(kParameters, kUniform, {2.0, 2.0, value}));
    EXPECT_TRUE(Check(kParameters, kLognormal, {2.0, 2.0, value}));
    EXPECT_TRUE(Check(kParameters, kWeibull, {value, 2.0, 2.0}));
  }
}

// ---- The bounds of a Uniform ----

TEST(RandomLowerBounds, OfAUniformMayBeEqualOrAscending) {
  for (const auto& [lower, upper] : {std::pair{1.0, 1.0},
                                     {1.0, std::nextafter(1.0, 2.0)},
                                     {-2.0, -1.0},
                                     {0.0, -0.0},
                                     {-kInfinity, kInfinity},
                                     {kNaN, 1.0},
                                     {1.0, kNaN},
                                     {kNaN, kNaN}}) {
    EXPECT_TRUE(Check(kParameters, kUniform, {lower, upper, 0.0})) << lower << ' ' << upper;
    EXPECT_TRUE(Log().empty());
  }
}

Lines UniformFault(const char* values) {
  return {"(Make Task) : Invalid lower bound bounds specification for the\n",
          "     Uniform distribution of dvar 12 (Width).\n",
          "     Upper bound (2nd parameter) is < Lower bound (1st parameter)\n", values};
}

TEST(RandomLowerBounds, OfAUniformMayNotDescend) {
  EXPECT_FALSE(Check(kParameters, kUniform, {2.5, 1.25, 9.0}));
  EXPECT_EQ(PrintedLines(), Faults({UniformFault("     (1.25 < 2.5)\n")}));
  EXPECT_FALSE(Check(kParameters, kUniform, {std::nextafter(1.0, 2.0), 1.0, 9.0}));
  EXPECT_EQ(PrintedLines(), Faults({UniformFault("     (1 < 1)\n")}));
  EXPECT_FALSE(Check(kParameters, kUniform, {-1.0, -1e7, 9.0}));
  EXPECT_EQ(PrintedLines(), Faults({UniformFault("     (-1e+07 < -1)\n")}));
}

// ---- Two rules of one distribution ----

TEST(RandomLowerBounds, OfLognormalMomentsAreBothReported) {
  EXPECT_FALSE(Check(kMoments, kLognormal, {0.5, -1.0, 0.0}));
  EXPECT_EQ(PrintedLines(),
            Faults({{kDeviation, "     the Log Normal distribution of dvar 12 (Width).\n",
                     "     The supplied value = -1\n", kAllowed},
                    {"(Make Task) : Invalid lower bound mean value for the Log Normal\n",
                     "     distribution of dvar 12 (Width).\n", "     The supplied value = 0.5\n",
                     "     The allowed value should be > 1\n"}}));
}

TEST(RandomLowerBounds, OfWeibullMomentsAreBothReported) {
  EXPECT_FALSE(Check(kMoments, kWeibull, {-0.5, -1.0, 0.0}));
  EXPECT_EQ(PrintedLines(),
            Faults({{kDeviation, "     the Weibull distribution of dvar 12 (Width).\n",
                     "     The supplied value = -1\n", kAllowed},
                    {"(Make Task) : Invalid lower bound mean value for the Weibull\n",
                     "     distribution of dvar 12 (Width).\n", "     The supplied value = -0.5\n",
                     "     The allowed mean value should be > 0\n"}}));
}

TEST(RandomLowerBounds, OfLognormalParametersAreBothReported) {
  EXPECT_FALSE(Check(kParameters, kLognormal, {-0.5, -1.0, 0.0}));
  EXPECT_EQ(PrintedLines(),
            Faults({{"(Make Task) : Invalid lower bound natural logarithm value of the\n",
                     "     mean value (1st parameter, lambda) for the Lognormal distribution\n",
                     "     of dvar 12 (Width).\n", "     The supplied value = -0.5\n", kAllowed},
                    {"(Make Task) : Invalid lower bound natural logarithm value of the standard\n",
                     "     deviation (2nd parameter, epsilon) for the Lognormal distribution\n",
                     "     of dvar 12 (Width).\n", "     The supplied value = -1\n", kAllowed}}));
}

TEST(RandomLowerBounds, OfWeibullParametersAreBothReported) {
  EXPECT_FALSE(Check(kParameters, kWeibull, {9.0, -0.5, -1.0}));
  EXPECT_EQ(PrintedLines(),
            Faults({{"(Make Task) : Invalid lower bound scale parameter (2nd parameter, eta)\n",
                     "     value for the Weibull distribution of dvar 12 (Width).\n",
                     "     The supplied value = -0.5\n", kAllowed},
                    {"(Make Task) : Invalid lower bound shape parameter or slope (3rd parameter,\n",
                     "     beta) value for the Weibull distribution of dvar 12 (Width).\n",
                     "     The supplied value = -1\n", kAllowed}}));
}

// ---- Names and unknown distributions ----

TEST(RandomLowerBounds, NameTheirVariableLiterally) {
  EXPECT_FALSE(Check(kMoments, kNormal, {0.0, 0.0, 0.0}, "100%s %d", 0));
  EXPECT_EQ(PrintedLines().at(1).text, "     the Normal distribution of dvar 0 (100%s %d).\n");
  EXPECT_FALSE(Check(kMoments, kNormal, {0.0, 0.0, 0.0}, "", 2147483647));
  EXPECT_EQ(PrintedLines().at(1).text, "     the Normal distribution of dvar 2147483647 ().\n");
}

TEST(RandomLowerBounds, OfUnknownDistributionsAreRefused) {
  for (const bool moments : {kMoments, kParameters}) {
    for (const int distribution : {-1, 4, 1000}) {
      try {
        Check(moments, distribution, {2.0, 2.0, 2.0});
        ADD_FAILURE() << distribution;
      } catch (const CInvalidType& error) {
        EXPECT_STREQ(error.what(), "Object type is invalid");
      }
      EXPECT_EQ(PrintedLines(),
                Faults({{"(Make Task) : Invalid distribution type of the random variable.\n"}}));
    }
  }
}

// ---- The lower bound of a scalar ----

class ScalarLowerBounds : public testing::Test {
 protected:
  ScalarLowerBounds() { task.m_nID = 7; }

  void StoreVars(int id = 7) {
    CDVar vars(study.Pod());
    vars.m_nID = id;
    vars.m_vfIndLowerIn = {1.5, 2.5};
    vars.m_vfIndLower = {91.0, 92.0};
    vars.m_vfLinkLower = {3.5, 4.5};
    vars.m_vfSynLower = {5.5, 6.5};
    vars.m_vfConstLower = {93.0, 94.0};
    vars.PutObject();
  }
  void StorePoint(int number, std::valarray<double> constants, int id = 7) {
    CDPoint point(study.Pod());
    point.m_nTaskID = id;
    point.m_nPointID = number;
    point.m_IDVar = {71.0, 72.0};
    point.m_CDVar = std::move(constants);
    point.PutObject();
  }
  void StoreBoth() {
    StoreVars();
    StorePoint(0, {7.5, 8.5});
  }
  double Bound(int kind, int position) { return task.GetDVLowerBnd(study.Pod(), kind, position); }

  Study study;
  CTask task;  ///< Without a database of its own: the argument is the one that counts.
};

TEST_F(ScalarLowerBounds, AreTakenFromTheTableOfTheirKind) {
  StoreBoth();
  EXPECT_EQ(Bound(20, 0), 1.5);
  EXPECT_EQ(Bound(20, 1), 2.5);
  EXPECT_EQ(Bound(21, 0), 3.5);
  EXPECT_EQ(Bound(21, 1), 4.5);
  EXPECT_EQ(Bound(22, 0), 5.5);
  EXPECT_EQ(Bound(22, 1), 6.5);
}

TEST_F(ScalarLowerBounds, OfConstantsAreTheirValuesInTheFirstPoint) {
  StoreBoth();
  StorePoint(1, {95.0, 96.0});
  StorePoint(0, {97.0, 98.0}, 8);
  EXPECT_EQ(Bound(23, 0), 7.5);
  EXPECT_EQ(Bound(23, 1), 8.5);
}

TEST_F(ScalarLowerBounds, OfOtherKindsAreZero) {
  StoreBoth();
  for (const int kind : {-1, 0, 19, 24, 25, 26, 2147483647}) {
    EXPECT_EQ(Bound(kind, 0), 0.0) << kind;
    EXPECT_EQ(Bound(kind, 99), 0.0) << kind;
  }
}

TEST_F(ScalarLowerBounds, OutsideTheirTableAreRefused) {
  StoreBoth();
  for (const int kind : {20, 21, 22, 23}) {
    for (const int position : {-1, 2, 2147483647}) {
      EXPECT_THROW(Bound(kind, position), CInvalidArgument) << kind << ' ' << position;
    }
  }
}

TEST_F(ScalarLowerBounds, NeedADatabase) {
  try {
    task.GetDVLowerBnd(nullptr, 20, 0);
    ADD_FAILURE();
  } catch (const CNoDatabaseOpen& error) {
    EXPECT_STREQ(error.what(), "No database open");
  }
}

TEST_F(ScalarLowerBounds, NeedTheTablesOfTheirTask) {
  StoreVars(8);
  StorePoint(0, {7.5, 8.5});
  try {
    Bound(20, 0);
    ADD_FAILURE();
  } catch (const CObjectNotFound& error) {
    EXPECT_STREQ(error.what(), "Object not found");
  }
}

TEST_F(ScalarLowerBounds, NeedTheFirstPointOfTheirTask) {
  StoreVars();
  StorePoint(1, {7.5, 8.5});
  StorePoint(0, {7.5, 8.5}, 8);
  for (const int kind : {20, 23}) {
    EXPECT_THROW(Bound(kind, 0), CObjectNotFound) << kind;
  }
}

TEST_F(ScalarLowerBounds, AreReadUnderTheLock) {
  StoreBoth();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Bound(20, 0), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(Bound(20, 0), 1.5);
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
}

}  // namespace
