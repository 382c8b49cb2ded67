#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <valarray>
#include <vector>

#include "tests/results/IterStudy.h"
#include "tests/support/Log.h"

// The report of an iteration: its head, and the tables of variables and constraints.

namespace {

class IterReport : public IterStudy {
 protected:
  /// Puts the point on and past some of its bounds.
  void MoveToBounds() {
    point.m_IDVar = {0.5, 20.1};
    point.m_LDVar = {30.05};
    point.m_SDVar = {1.9};
    point.m_CDVar = {1000.0, 3.0};
    point.m_IResp = {120.0, 49.0};
    point.m_LResp = {1.98};
  }
};

const std::string variablesOnBounds =
    "             width  IDVar       0.5000000 *      0.5000000         10.00000  \n"
    "            height  IDVar        1.000000         20.10000         20.00000 V\n"
    "             depth  LDVar   -1.000000e+30         30.05000         30.00000 *\n"
    "              area  SDVar        2.000000 V       1.900000     1.000000e+30  \n"
    "              load  CDVar                         1000.000\n"
    "          material  CDVar        1.000000         3.000000         3.000000 *\n";

// ---- Kinds of task ----

TEST_F(IterReport, OfAnOptimisationNamesTheBestPointAndThisOne) {
  for (const int type : {0, 1, 3}) {
    SCOPED_TRACE(type);
    task.m_nType = type;
    EXPECT_EQ(Report(), heading + state + variables + objectives + noConstraints + end);
  }
}

TEST_F(IterReport, OfADesignOfExperimentsHasNeitherBestPointNorObjectives) {
  task.m_nType = 2;
  EXPECT_EQ(Report(), heading + "                      This Design Point :  3\n\n" + variables +
                          noConstraints + end);
}

TEST_F(IterReport, OfAnAnalysisOnlyTaskShowsObjectivesAndNoBestPoint) {
  task.m_nType = 4;
  EXPECT_EQ(Report(), heading + "                      This Design Point :  3\n\n" + variables +
                          objectives + noConstraints + end);
}

TEST_F(IterReport, OfARunForAFrontOfDesignsHasNoBestPoint) {
  task.m_nType = 3;
  task.m_NGO.m_nMethod = 2;
  EXPECT_EQ(Report(), heading +
                          "                      This Design Point :  3\n"
                          "                  This Worst Constraint :  0.001000000\n"
                          "\n" +
                          variables + objectives + noConstraints + end);
}

TEST_F(IterReport, OfAnUnknownKindOfTaskIsLoggedAndNamesThisPointAlone) {
  for (const int type : {-1, 5}) {
    SCOPED_TRACE(type);
    task.m_nType = type;
    ClearLog();
    EXPECT_EQ(Report(), heading + "                      This Design Point :  3\n\n" + variables +
                            objectives + noConstraints + end);
    EXPECT_EQ(Log(),
              (std::vector<LogEntry>{{"LError", "Invalid functional module type!\n", "", 0}}));
  }
}

TEST_F(IterReport, OfAKnownKindOfTaskLogsNothing) {
  for (const int type : {0, 1, 2, 3, 4}) {
    SCOPED_TRACE(type);
    task.m_nType = type;
    ClearLog();
    Report();
    EXPECT_TRUE(Log().empty());
  }
}

// ---- The head ----

TEST_F(IterReport, OfASubIterationSaysSo) {
  iter.m_nSubIter = 14;
  EXPECT_EQ(Report(), "                    RESULTS FOR ITERATION 2, SUB-ITERATION 14\n" + bar +
                          state + variables + objectives + noConstraints + end);
}

TEST_F(IterReport, IsThatOfTheIterationAskedFor) {
  Store();
  iter.m_nIter = 0;
  iter.m_nBestPoint = 8;
  const std::string report = Report();
  EXPECT_TRUE(report.starts_with("                         FINAL RESULTS FOR ITERATION 0\n" + bar +
                                 "                      Best Design Point :  8\n"))
      << report;
}

TEST_F(IterReport, WithoutConstraintsHasNoWorstConstraint) {
  cons.SetDefaultAttributes();
  cons.m_nID = 1;
  EXPECT_EQ(Report(), heading +
                          "                      Best Design Point :  1\n"
                          "                         Best Objective :  118.25\n"
                          "                      This Design Point :  3\n"
                          "                         This Objective :  120\n"
                          "\n" +
                          variables + objectives + noConstraints + end);
}

TEST_F(IterReport, WithoutObjectivesHasNoBestObjective) {
  terms.SetDefaultAttributes();
  terms.m_nID = 1;
  EXPECT_EQ(Report(), heading +
                          "                      Best Design Point :  1\n"
                          "                       Worst Constraint : -0.1000000\n"
                          "                      This Design Point :  3\n"
                          "                  This Worst Constraint :  0.001000000\n"
                          "\n" +
                          variables + noConstraints + end);
}

TEST_F(IterReport, OfATaskOfNothingIsHeadsOnly) {
  vars.SetDefaultAttributes();
  resps.SetDefaultAttributes();
  cons.SetDefaultAttributes();
  terms.SetDefaultAttributes();
  vars.m_nID = resps.m_nID = cons.m_nID = terms.m_nID = 1;
  for (std::valarray<double>* values :
       {&point.m_IDVar, &point.m_LDVar, &point.m_SDVar, &point.m_CDVar, &point.m_IResp,
        &point.m_LResp, &point.m_SResp}) {
    values->resize(0);
  }
  EXPECT_EQ(Report(), heading +
                          "                      Best Design Point :  1\n"
                          "                      This Design Point :  3\n"
                          "\n" +
                          variablesHead + "\n" + noConstraints + end);
}

TEST_F(IterReport, LeavesRoomForTheSignOfNumbers) {
  iter.m_nThisPoint = 0;
  point.m_nPointID = 0;
  iter.m_nBestPoint = -1;
  iter.m_fBestObjective = -1234567.89;
  iter.m_fBestConstraint = -1e-12;
  iter.m_fThisObjective = 0.0;
  iter.m_fThisConstraint = 1e30;
  EXPECT_EQ(Report(), heading +
                          "                      Best Design Point : -1\n"
                          "                         Best Objective : -1234568\n"
                          "                       Worst Constraint : -1.000000e-12\n"
                          "                      This Design Point :  0\n"
                          "                         This Objective :  0\n"
                          "                  This Worst Constraint :  1.000000e+30\n"
                          "\n" +
                          variables + objectives + noConstraints + end);
}

TEST_F(IterReport, ShowsTheBestPointWhereThatIsAskedFor) {
  Store();
  point.m_nPointID = 1;
  point.m_IDVar = {3.5, 7.0};
  point.m_IResp = {118.25, 45.0};
  point.PutObject();
  EXPECT_EQ(Stored(false, true),
            heading + state + variablesHead +
                "             width  IDVar       0.5000000         3.500000         10.00000  \n"
                "            height  IDVar        1.000000         7.000000         20.00000  \n"
                "             depth  LDVar   -1.000000e+30         12.00000         30.00000  \n"
                "              area  SDVar        2.000000         17.50000     1.000000e+30  \n"
                "              load  CDVar                         1000.000\n"
                "          material  CDVar        1.000000         2.000000         3.000000  \n"
                "\n" +
                objectivesHead +
                "        weight  IResp    minimize     Undefined        118.2500        118.2500\n"
                "\n" +
                noConstraints + end);
  EXPECT_EQ(Stored(), heading + state + variables + objectives + noConstraints + end);
}

TEST_F(IterReport, ShowsThisPointWhereTheTaskHasNoBest) {
  task.m_nType = 4;
  EXPECT_EQ(Report(false, true), Report(false, false));
}

// ---- Bounds ----

TEST_F(IterReport, FlagsActiveAndViolatedBounds) {
  MoveToBounds();
  EXPECT_EQ(Report(),
            heading + state + variablesHead + variablesOnBounds + legend + objectives +
                constraintsHead +
                "        stress  IResp   U        49.00000     -0.02000000        50.00000 *\n"
                "         slack  LResp   L        1.980000      0.01000000        2.000000 V\n" +
                legend + end);
}

TEST_F(IterReport, ListsAllConstraintsWhereThatIsAskedFor) {
  MoveToBounds();
  EXPECT_EQ(Report(true),
            heading + state + variablesHead + variablesOnBounds + legend + objectives +
                constraintsHead +
                "        stress  IResp   U        49.00000     -0.02000000        50.00000 *\n"
                "         slack  LResp   L        1.980000      0.01000000        2.000000 V\n"
                "         ratio  SResp   U       0.1250000      -0.3750000       0.5000000  \n" +
                legend + end);
}

TEST_F(IterReport, FlagsBothBoundsOfAVariableThatIsFixedByThem) {
  vars.m_vfIndLower = {0.5, 7.0};
  vars.m_vfIndUpper = {10.0, 7.0};
  EXPECT_EQ(Report(),
            heading + state + variablesHead +
                "             width  IDVar       0.5000000         2.500000         10.00000  \n"
                "            height  IDVar        7.000000 *       7.000000         7.000000 *\n"
                "             depth  LDVar   -1.000000e+30         12.00000         30.00000  \n"
                "              area  SDVar        2.000000         17.50000     1.000000e+30  \n"
                "              load  CDVar                         1000.000\n"
                "          material  CDVar        1.000000         2.000000         3.000000  \n" +
                legend + objectives + noConstraints + end);
}

TEST_F(IterReport, ScalesBoundsByTheirSize) {
  vars.m_vfIndLower = {0.01, -100.0};  // a small bound has the scale 1
  point.m_IDVar = {0.035, -97.5};
  EXPECT_EQ(Report(),
            heading + state + variablesHead +
                "             width  IDVar      0.01000000 *     0.03500000         10.00000  \n"
                "            height  IDVar       -100.0000 *      -97.50000         20.00000  \n"
                "             depth  LDVar   -1.000000e+30         12.00000         30.00000  \n"
                "              area  SDVar        2.000000         17.50000     1.000000e+30  \n"
                "              load  CDVar                         1000.000\n"
                "          material  CDVar        1.000000         2.000000         3.000000  \n" +
                legend + objectives + noConstraints + end);
}

TEST_F(IterReport, FlagsNoBoundThatThereIsnt) {
  point.m_LDVar = {-1e30};
  point.m_SDVar = {1e30};
  EXPECT_EQ(Report(),
            heading + state + variablesHead +
                "             width  IDVar       0.5000000         2.500000         10.00000  \n"
                "            height  IDVar        1.000000         7.000000         20.00000  \n"
                "             depth  LDVar   -1.000000e+30    -1.000000e+30         30.00000  \n"
                "              area  SDVar        2.000000     1.000000e+30     1.000000e+30  \n"
                "              load  CDVar                         1000.000\n"
                "          material  CDVar        1.000000         2.000000         3.000000  \n"
                "\n" +
                objectives + noConstraints + end);
}

TEST_F(IterReport, TakesWhatIsNoNumberForViolated) {
  point.m_IResp = {120.0, std::numeric_limits<double>::quiet_NaN()};
  EXPECT_EQ(Report(),
            heading + state + variables + objectives + constraintsHead +
                "        stress  IResp   U             nan             nan        50.00000 V\n" +
                legend + end);
}

/// The flags of the constraint on the stress for values around both tolerances.
class IterTolerances : public IterStudy {
 protected:
  std::string FlagAt(double stress) {
    point.m_IResp = {120.0, stress};
    const std::string report = Report(true);
    const std::size_t line = report.find("        stress  IResp   U");
    return report.substr(report.find('\n', line) - 1, 1);
  }
  /// With a scale of 1 and a bound of 0 the value is the violation.
  void SetUp() override {
    cons.m_vfBound[1] = 0.0;
    cons.m_vfScale[1] = 1.0;
  }
};

TEST_F(IterTolerances, OfAGradientTaskAreThoseOfItsBlock) {
  for (const int type : {0, 2, 4}) {
    SCOPED_TRACE(type);
    task.m_nType = type;
    task.m_DGO.m_fCT = -0.25;
    task.m_DGO.m_fCTMIN = 0.5;
    EXPECT_EQ(FlagAt(-0.26), " ");
    EXPECT_EQ(FlagAt(-0.25), "*");
    EXPECT_EQ(FlagAt(0.5), "*");
    EXPECT_EQ(FlagAt(0.51), "V");
  }
}

TEST_F(IterTolerances, OfAResponseSurfaceTaskAreThoseOfItsBlock) {
  task.m_nType = 1;
  task.m_RSA.m_fCT = -0.25;
  task.m_RSA.m_fCTMIN = 0.5;
  EXPECT_EQ(FlagAt(-0.26), " ");
  EXPECT_EQ(FlagAt(-0.25), "*");
  EXPECT_EQ(FlagAt(0.5), "*");
  EXPECT_EQ(FlagAt(0.51), "V");
}

TEST_F(IterTolerances, OfANonGradientTaskAreTheSameOnBothSides) {
  task.m_nType = 3;
  task.m_NGO.m_fCTMIN = 0.5;
  EXPECT_EQ(FlagAt(-0.51), " ");
  EXPECT_EQ(FlagAt(-0.5), "*");
  EXPECT_EQ(FlagAt(0.5), "*");
  EXPECT_EQ(FlagAt(0.51), "V");
}

}  // namespace
