#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/control/DesignControlRecord.h"
#include "tests/control/DesignControlReport.h"

namespace {

TEST_F(DesignControlReport, OfAnUnknownNonGradientMethodHasNoProblemParameters) {
  control.m_NGO.m_nMethod = 3;
  ExpectLine("NGO Method: Unknown");
  ExpectLine("Relative Soft Convergnece Criterion: 0.001");
  ExpectNoLine("Inertia");
  ExpectNoLine("Cross-Over");
}

TEST_F(DesignControlReport, WithSSHShowsItsTemplates) {
  ChangeAll(control, OuterFields());
  control.m_nUseSSH = 1;
  ExpectLine(
      "Connect using SSH: Yes\nConnect To Template: c\nCopy To Template: t\n"
      "Copy From Template: f\nUser name: u");
}

TEST_F(DesignControlReport, NamesEveryCode) {
  const std::vector<std::string> tasks{"Direct-Gradient Optimization",
                                       "Response Surface Optimization", "Design of Experiments",
                                       "Non-Gradient Based Optimization", "Analysis Only Task"};
  const std::vector<std::string> methods{"MMFD", "Unknown", "SLP", "SQP", "MEGZEF"};
  const std::vector<std::string> unconstrained{"BFGS", "Unknown", "FR", "Unknown", "MEGZEF"};
  const std::vector<std::string> levels{"Most Accurate", "Accurate", "Mixed", "Efficient",
                                        "Most Efficient"};
  const std::vector<std::string> orders{"Linear Terms Only", "Linear Terms and Interaction Terms",
                                        "Linear and Quadratic Terms", "Full Quadratic",
                                        "Forward Stepwise Regression"};
  for (int code = 0; code < 5; ++code) {
    const auto at = static_cast<std::size_t>(code);
    control.m_nTaskType = control.m_DGO.m_nMETHOD = control.m_DGO.m_nUncMETHOD = code;
    control.m_DGO.m_nSkip = control.m_RSA.m_nOrder = code;
    ExpectLine("Current Task Type: " + tasks[at]);
    ExpectLine("Constrained Optimization Algorithm: " + methods[at] +
               "\nUnconstraint Optimization Algorithm: " + unconstrained[at]);
    ExpectLine("Efficiency Level: " + levels[at]);
    ExpectLine("Desired Order of the Approximations: " + orders[at]);
  }
  control.m_DGO.m_nIGRAD = 1;
  ExpectLine("Gradient Calculation: User Supplied");
}

TEST_F(DesignControlReport, NamesEveryDesign) {
  const std::vector<std::string> designs{
      "Factorial",       "Composite",   "Box-Behnken",
      "Plackett-Burman", "Notz",        "Koshal",
      "Rechtschaffner",  "Hybrid",      "Three-Level Taguchi Orthogonal Arrays",
      "Simplex",         "Random",      "User Defined Design Points",
      "Latin (Std)",     "Latin (Opt)", "Unknown"};
  const std::vector<std::string> initial{
      "Unknown",       "Unknown",      "Unknown",     "Unknown",     "Unknown",
      "Linear Koshal", "Unknown",      "Unknown",     "Unknown",     "Simplex",
      "Linear Random", "User Defined", "Latin (Std)", "Latin (Opt)", "Unknown"};
  const std::vector<std::string> tasks{"Points Only", "Points and Responses",
                                       "Points, Responses, and Approximation Models"};
  for (int code = 0; code < 15; ++code) {
    const auto at = static_cast<std::size_t>(code);
    control.m_DOE.m_nMethod = control.m_DOE.m_nTask = control.m_RSA.m_nInitialDOE = code;
    ExpectLine("DOE Task: " + (at < 3 ? tasks[at] : "Unknown") + "\nDesign Type: " + designs[at]);
    ExpectLine("Initial DOE: " + initial[at]);
  }
}

TEST_F(DesignControlReport, NamesTheModelByTheDesign) {
  const std::vector<std::string> models{
      "Linear",         "Linear with Interactions", "Linear and Quadratic",
      "Full Quadratic", "Mixed Forward Regression", "Unknown"};
  control.m_DOE.m_nModel = 0;
  for (int design = 0; design < 6; ++design) {
    control.m_DOE.m_nMethod = design;
    ExpectLine("Generated Approximation Models: " + models[static_cast<std::size_t>(design)]);
  }
}

TEST_F(DesignControlReport, OfUnknownCodes) {
  for (const int code : {-2, 99, 2147483647}) {
    SCOPED_TRACE(code);
    control.m_nTaskType = control.m_DGO.m_nMETHOD = control.m_DGO.m_nUncMETHOD = code;
    control.m_DGO.m_nIGRAD = control.m_DGO.m_nSkip = control.m_DGO.m_nRandomMethod = code;
    control.m_RSA.m_nMETHOD = control.m_RSA.m_nUncMETHOD = control.m_RSA.m_nInitialDOE = code;
    control.m_RSA.m_nOrder = control.m_DOE.m_nTask = control.m_DOE.m_nMethod = code;
    control.m_NGO.m_nMethod = 1;
    control.m_NGO.m_nCrossType = code;
    const std::string report = Report();
    int unknown = 0;
    for (std::size_t at = 0; (at = report.find(": Unknown\n", at)) != std::string::npos; ++at) {
      ++unknown;
    }
    EXPECT_EQ(unknown, 14) << report;
  }
}

TEST_F(DesignControlReport, OfAllRetainedPoints) {
  control.m_DOE.m_nDOptimal = 1;
  ExpectLine("D-Optimal Design: Yes\nNumber of Retained Points: All");
}

TEST_F(DesignControlReport, OfPValuesForRegressionOnly) {
  control.m_RSA.m_fPEnter = 0.25;
  control.m_RSA.m_fPRemove = 0.75;
  ExpectNoLine("      P-value");
  control.m_RSA.m_nOrder = 4;
  ExpectLine(
      "      P-value of Terms to Enter into the Model: 0.25\n"
      " P-value of Terms to be Removed from the Model: 0.25");
}

TEST_F(DesignControlReport, OfALimitThatTheUserSet) {
  control.m_RSA.m_nMinPoints = 4;
  control.m_RSA.m_nMaxPoints = 5;
  control.m_RSA.m_nHasMinPoints = 1;
  ExpectLine(
      "Minimum Number of Design Points to Evaluate: 4\n"
      "Maximum Number of Design Points to Evaluate: Default");
}

TEST_F(DesignControlReport, OfNoSimulationPoints) {
  const std::string type = "Probabilistic Analysis Type: Direct Monte-Carlo Sampling\n";
  control.m_ANL.m_nRandomPoints = 0;
  ExpectLine(type + "Number of Probabilistic Simulation Points: 0");
  control.m_ANL.m_nRandomPoints = -1;
  ExpectLine(type + "Probabilistic Simulation Points Saved: No");
}

TEST_F(DesignControlReport, OfReals) {
  control.m_fPointTol = 1.23456789e-7;
  control.m_DGO.m_fPMULT = 1234567.891;
  control.m_DGO.m_fPMULTD = 1234567.891;
  ExpectLine("Design Point Tolerance: 1.23457e-07");
  ExpectLine("MEGZEF Penalty Multiplier: 1234567.891000");
  ExpectLine("MEGZEF Discrete Problem Penalty Multiplier: 1.23457e+06");
}

TEST_F(DesignControlReport, TakesNamesAsTheyStand) {
  control.m_strTitle = std::string(300, 't') + "%s%n";
  ExpectLine("Title: " + std::string(300, 't') + "%s%n");
}

}  // namespace
