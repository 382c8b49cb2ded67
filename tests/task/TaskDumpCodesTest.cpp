#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/TaskDumpReport.h"

// The words for the codes of a task in its report.

namespace {

class TaskDumpCodes : public TaskDump {
 protected:
  /// Expects these words behind `label` for the codes from 0, and "Unknown" for others.
  template <class Set>
  void ExpectWords(const std::string& label, const std::vector<std::string>& words, Set set) {
    for (std::size_t code = 0; code < words.size(); ++code) {
      set(static_cast<long>(code));
      ExpectLines(label + words[code]);
    }
    for (const long code : {static_cast<long>(words.size()), -2L, 2147483647L, -2147483648L}) {
      set(code);
      ExpectLines(label + "Unknown");
    }
  }
};

TEST_F(TaskDumpCodes, HeadATaskByItsType) {
  const std::string bar =
      "================================================================================\n";
  const std::vector<std::string> headings{
      "Nonlinear, Constrained Optimization", "Response Surface Approximate Optimization",
      "Design of Experiments", "Non-Gradient Based Optimization", "Single Analysis Only Task"};
  task.m_uNumCons = 1;
  for (int type = 0; type < 5; ++type) {
    task.m_nType = type;
    const std::string& heading = headings[static_cast<std::size_t>(type)];
    EXPECT_NE(Report().find(bar + heading + "\n---"), std::string::npos) << type;
  }
  task.m_uNumCons = 0;
  for (int type = 1; type < 5; ++type) {
    task.m_nType = type;
    ExpectLines(headings[static_cast<std::size_t>(type)]);
  }
  task.m_nType = 0;
  ExpectLines("Nonlinear, Unconstrained Optimization");
}

TEST_F(TaskDumpCodes, NameConstrainedMethods) {
  task.m_uNumCons = 1;
  for (const int type : {0, 1}) {
    task.m_nType = type;
    ExpectWords(
        "                  Optimization Method : ", {"MMFD", "Unknown", "SLP ", "SQP ", "MEGZEF"},
        [&](long code) { task.m_DGO.m_nMETHOD = task.m_RSA.m_nMETHOD = code; });
  }
}

TEST_F(TaskDumpCodes, NameUnconstrainedMethods) {
  for (const int type : {0, 1}) {
    task.m_nType = type;
    ExpectWords(
        "                  Optimization Method : ", {"BFGS", "Unknown", "FR", "Unknown", "MEGZEF"},
        [&](long code) { task.m_DGO.m_nUncMETHOD = task.m_RSA.m_nUncMETHOD = code; });
  }
}

TEST_F(TaskDumpCodes, NameEveryPrintLevelButNoneDebug) {
  for (const int level : {-1, 1, 7, 8}) {
    task.m_DGO.m_nIPRINT = level;
    ExpectLines("                        Print Control : Debug");
  }
  task.m_DGO.m_nIPRINT = 0;
  ExpectLines("                        Print Control : None");
}

TEST_F(TaskDumpCodes, NameObjectives) {
  for (const int goal : {-1, 1, 2}) {
    task.m_DGO.m_nMINMAX = goal;
    ExpectLines("                            Objective : Minimize");
  }
  task.m_DGO.m_nMINMAX = 0;
  ExpectLines("                            Objective : Maximize");
  task.m_nType = 3;
  ExpectLines("                            Objective : Minimize");
  for (const int goal : {-1, 0, 2}) {
    task.m_NGO.m_nMinimize = goal;
    ExpectLines("                            Objective : Maximize");
  }
}

TEST_F(TaskDumpCodes, NameEfficiencyLevels) {
  ExpectWords("                          Efficiency Level: ",
              {"Most Accurate", "Accurate", "Mixed", "Efficient", "Most Efficient"},
              [&](long code) { task.m_DGO.m_nSkip = code; });
}

TEST_F(TaskDumpCodes, NameOrdersOfApproximations) {
  task.m_nType = 1;
  ExpectWords("          Order of the Approximations : ",
              {"Linear Terms Only", "Linear Terms and Interaction Terms",
               "Linear and Quadratic Terms", "Full Quadratic", "Forward Stepwise Regression"},
              [&](long code) { task.m_RSA.m_nOrder = code; });
}

TEST_F(TaskDumpCodes, NameInitialDesigns) {
  task.m_nType = 1;
  ExpectWords(
      "              Generate Initial Points : ",
      {"Unknown", "Unknown", "Unknown", "Unknown", "Unknown", "Linear Koshal", "Unknown", "Unknown",
       "Unknown", "Simplex", "Linear Random", "User Defined", "Latin (Std)", "Latin (Opt)"},
      [&](long code) { task.m_RSA.m_nInitialDOE = code; });
}

TEST_F(TaskDumpCodes, NameDesigns) {
  task.m_nType = 2;
  ExpectWords("                           DOE Method : ",
              {"Factorial", "Composite", "Box-Behnken", "Plackett-Burman", "Notz", "Koshal",
               "Rechtschaffner", "Hybrid", "Three-Level Taguchi Orthogonal Arrays", "Simplex",
               "Random", "User Defined Design Points", "Latin (Std)", "Latin (Opt)"},
              [&](long code) { task.m_DOE.m_nMethod = code; });
}

TEST_F(TaskDumpCodes, NameTasksOfDesigns) {
  task.m_nType = 2;
  ExpectWords(
      "                             DOE Task : ",
      {"Points Only", "Points and Responses", "Points, Responses, and Approximation Models"},
      [&](long code) { task.m_DOE.m_nTask = code; });
}

TEST_F(TaskDumpCodes, NameModelsByTheModel) {
  task.m_nType = 2;
  task.m_DOE.m_nMethod = 0;
  ExpectWords("       Generated Approximation Models : ",
              {"Linear", "Linear with Interactions", "Linear and Quadratic", "Full Quadratic",
               "Mixed Forward Regression"},
              [&](long code) { task.m_DOE.m_nModel = code; });
}

TEST_F(TaskDumpCodes, NameNonGradientMethods) {
  task.m_nType = 3;
  ExpectWords("                  Optimization Method : ",
              {"Particle Swarm Optimization (PSO)", "Genetic Algorithm (GA)",
               "Non-Dominated Sorting Genetic Algorithm II (NSGAII)"},
              [&](long code) { task.m_NGO.m_nMethod = code; });
}

TEST_F(TaskDumpCodes, OfAnUnknownNonGradientMethodHaveNoParametersOfOne) {
  task.m_nType = 3;
  task.m_NGO.m_nMethod = 3;
  ExpectLines(
      "  Relative Soft Convergence Criterion : 0.001\n"
      "--------------------------------------------------------------------------------");
}

TEST_F(TaskDumpCodes, NameStartingStrategies) {
  task.m_nType = 3;
  ExpectWords("                    Starting Strategy : ",
              {"Unknown", "Unknown", "Unknown", "Unknown", "Unknown", "Unknown", "Unknown",
               "Unknown", "Unknown", "Unknown", "Random", "User Defined"},
              [&](long code) { task.m_NGO.m_nStart = code; });
}

TEST_F(TaskDumpCodes, NameCrossOvers) {
  task.m_nType = 3;
  task.m_NGO.m_nMethod = 1;
  ExpectWords("                      Cross-Over Type : ", {"Uniform", "Two Point"},
              [&](long code) { task.m_NGO.m_nCrossType = code; });
}

TEST_F(TaskDumpCodes, NameRandomMethods) {
  task.m_uNumRandDV = 1;
  for (const int type : {0, 1, 2, 3, 4}) {
    task.m_nType = type;
    ExpectWords("        Probabilistic Analysis Method : ",
                {"Direct Monte-Carlo Sampling", "Latin Hypercube Sampling",
                 "Mean Value Approximation Method", "Approximate Direct Monte-Carlo Sampling",
                 "Approximate Latin Hypercube Sampling"},
                [&](long code) {
                  task.m_DGO.m_nRandomMethod = task.m_RSA.m_nRandomMethod = code;
                  task.m_DOE.m_nRandomMethod = task.m_NGO.m_nRandomMethod = code;
                  task.m_ANL.m_nRandomMethod = code;
                });
  }
}

TEST_F(TaskDumpCodes, TakeEveryFlagButZeroForYes) {
  for (const int flag : {1, -1, 2147483647}) {
    task.m_DGO.m_nStoreFD = task.m_DGO.m_nMultiStart = flag;
    task.m_nRemote = task.m_nUserRoutine = task.m_nUseApprox = flag;
    ExpectLines(
        "            Save Finite Difference Points : Yes\n"
        "                 Multiple Starting Points : Yes");
    ExpectLines("   Run on Remote Machine : Yes");
    ExpectLines("    Link to User Routine : Yes\n      Use Approximations : Yes");
  }
}

}  // namespace
