#include <gtest/gtest.h>

#include <string>

#include "tests/task/TableReportTests.h"
#include "tests/task/TaskDumpReport.h"

// Whole reports of tasks, and what holds for every report.

namespace {

using TaskTypes = testing::Types<CTask>;
INSTANTIATE_TYPED_TEST_SUITE_P(OfTheTask, TaskTableReport, TaskTypes);

std::string SmallHead(const std::string& heading) {
  return "                        DESIGN TASK CONTROL INFORMATION\n"
         "================================================================================\n" +
         heading + '\n' +
         "--------------------------------------------------------------------------------\n"
         "                     Task Database ID : 7\n"
         "                      Task Created On : \n";
}

const std::string smallTail =
    R"(--------------------------------------------------------------------------------
         Independent Design Variables : 0
              Linked Design Variables : 0
           Synthetic Design Variables : 0
            Constant Design Variables : 0
              Random Design Variables : 0
                Independent Responses : 0
                     Linked Responses : 0
                  Synthetic Responses : 0
                     Random Responses : 0
                          Constraints : 0
                           Objectives : 0
                  Link Specifications : 0
    Synthetic Function Specifications : 0
Number of Discrete Set Specifications : 0
--------------------------------------------------------------------------------
        Analysis Program : analyze.exe
Design Variable Transfer : dvar.kef
      Responses Transfer : resp.kef
   Run on Remote Machine : No
    Link to User Routine : No
      Use Approximations : No
================================================================================

)";

std::string FullHead(const std::string& heading) {
  return "                        DESIGN TASK CONTROL INFORMATION\n"
         "================================================================================\n"
         "                                      A b\n" +
         heading + '\n' +
         "--------------------------------------------------------------------------------\n"
         "                     Task Database ID : 7\n"
         "                      Task Created On : Mon\n";
}

const std::string fullTail =
    R"(--------------------------------------------------------------------------------
         Independent Design Variables : 4275878552
              Linked Design Variables : 33
           Synthetic Design Variables : 34
            Constant Design Variables : 35
              Random Design Variables : 45
                Independent Responses : 36
                     Linked Responses : 37
                  Synthetic Responses : 38
                     Random Responses : 46
                          Constraints : 39
                           Objectives : 40
                  Link Specifications : 41
    Synthetic Function Specifications : 42
Number of Discrete Set Specifications : 43
                          Parent Task : -2
                       Child Task IDs : { 48 50 }
--------------------------------------------------------------------------------
        Analysis Program : p
     Program's Arguments : a
Design Variable Transfer : v
      Responses Transfer : r
   Run on Remote Machine : Yes
     Connect To Template : C
        Copy To Template : T
      Copy From Template : F
               User name : u
               Host name : h
   Remote work directory : d
      Remote run timeout : 60
    Link to User Routine : Yes
      Use Approximations : Yes
 Approximations from task: 10
)";

// ---- Direct gradient ----

TEST_F(TaskDump, OfANewGradientTask) {
  EXPECT_EQ(Report(), SmallHead("Nonlinear, Unconstrained Optimization") +
                          R"(                  Optimization Method : BFGS
                        Print Control : None
                            Objective : Minimize
                 Constraint Tolerance : -0.03
        Violated Constraint Tolerance : 0.003
              Gradients Calculated By : First Forward Difference
      Relative Finite Difference Step : 0.01
       Minimum Finite Difference Step : 0.001
                          Efficiency Level: Most Accurate
            Save Finite Difference Points : No
                 Multiple Starting Points : No
----------------------- Optimizer Parameters
  Relative Hard Convergence Criterion : 0.001
  Absolute Hard Convergence Criterion : Default
    Consecutive Iter. for Convergence : 2
    Iter. b/w Design Variable Scaling : Default
Max. Number of Iter. by the Optimizer : 100
             MEGZEF Penalty Parameter : 1
            MEGZEF Penalty Multiplier : 5
    MEGZEF Discrete Penalty Parameter : 0.01
   MEGZEF Discrete Penalty Multiplier : 5
----------------------- ZEF Parameters
          IGRAD : 0                CT : -0.03
          ISCAL : 0             CTMIN : 0.003
          ITMAX : 100          DABOBJ : 0
         ITRMOP : 2            DELOBJ : 0.001
          NGMAX : 0             DOBJ1 : 0.1
          IGMAX : 0             DOBJ2 : 0
          JTMAX : 100             DX1 : 0.01
         ITRMST : 2               DX2 : 0
         JPRINT : 0              FDCH : 0.01
         IPRNT1 : 0             FDCHM : 0.001
         IPRNT2 : 0            RMVLMZ : 0.4
                               DABSTR : 0
                               DELSTR : 0.001
)" + smallTail);
}

TEST_F(TaskDump, OfAFullGradientTask) {
  FillAll();
  task.m_nType = 0;
  EXPECT_EQ(Report(), FullHead("Nonlinear, Constrained Optimization") +
                          R"(                  Optimization Method : SQP 
                        Print Control : Debug
                            Objective : Maximize
                 Constraint Tolerance : -3
        Violated Constraint Tolerance : 4
              Gradients Calculated By : Central Difference
      Relative Finite Difference Step : 11
       Minimum Finite Difference Step : 12
                          Efficiency Level: Mixed
            Save Finite Difference Points : Yes
                 Multiple Starting Points : Yes
----------------------- Optimizer Parameters
  Relative Hard Convergence Criterion : 6
  Absolute Hard Convergence Criterion : 5
    Consecutive Iter. for Convergence : 16
    Iter. b/w Design Variable Scaling : -2
Max. Number of Iter. by the Optimizer : 101
----------------------- SLP/SQP Sub-Problem
                   Maximum Iterations : 19
    Consecutive Iter. for Convergence : 20
             MEGZEF Penalty Parameter : 16
            MEGZEF Penalty Multiplier : 17
    MEGZEF Discrete Penalty Parameter : 18
   MEGZEF Discrete Penalty Multiplier : 19
----------------------- ZEF Parameters
          IGRAD : -1               CT : -3
          ISCAL : -2            CTMIN : 4
          ITMAX : 101          DABOBJ : 5
         ITRMOP : 16           DELOBJ : 6
          NGMAX : 17            DOBJ1 : 7
          IGMAX : 18            DOBJ2 : 8
          JTMAX : 19              DX1 : 9
         ITRMST : 20              DX2 : 10
         JPRINT : 21             FDCH : 11
         IPRNT1 : 22            FDCHM : 12
         IPRNT2 : 23           RMVLMZ : 13
                               DABSTR : 14
                               DELSTR : 15
----------------------- Probabilistic Analysis Parameters
        Probabilistic Analysis Method : Mean Value Approximation Method
          Number of Simulation Points : 258
               Save Simulation Points : Yes
Use Random Seed for Simulation Points : No
)" + fullTail + reportEnd);
}

TEST_F(TaskDump, OfAGradientTaskWithGradientsOfTheUser) {
  task.m_DGO.m_nIGRAD = 1;
  task.m_strArgs = "-n 1";
  const std::string bar =
      "--------------------------------------------------------------------------------\n";
  const std::string body = Report();
  EXPECT_EQ(body.substr(body.rfind(bar)), bar +
                                              R"(Link to User Grad. Rout. : No
  Grad. Analysis Program : analyze.exe
 Grad. Program Arguments : 
Design Variable Transfer : dvar.kef
      Gradients Transfer : resp.kef
)" + reportEnd);
  ExpectLines(R"(              Gradients Calculated By : User Supplied
                          Efficiency Level: Most Accurate)");
}

TEST_F(TaskDump, OfAFullGradientTaskWithGradientsOfTheUser) {
  FillAll();
  task.m_nType = 0;
  task.m_DGO.m_nIGRAD = 1;
  const std::string report = Report();
  const std::string end =
      fullTail +
      R"(--------------------------------------------------------------------------------
Link to User Grad. Rout. : Yes
  Grad. Analysis Program : P
 Grad. Program Arguments : A
Design Variable Transfer : V
      Gradients Transfer : R
)" + reportEnd;
  EXPECT_TRUE(report.ends_with(end)) << report;
}

// ---- Response surface ----

TEST_F(TaskDump, OfANewSurfaceTask) {
  task.m_nType = 1;
  EXPECT_EQ(Report(), SmallHead("Response Surface Approximate Optimization") +
                          R"(                  Optimization Method : BFGS
                        Print Control : None
                            Objective : Minimize
                 Constraint Tolerance : -0.03
        Violated Constraint Tolerance : 0.003
----------------------- Optimizer Parameters
  Relative Hard Convergence Criterion : 0.001
  Absolute Hard Convergence Criterion : Default
    Consecutive Iter. for Convergence : 2
    Iter. b/w Design Variable Scaling : Default
Max. Number of Iter. by the Optimizer : 100
             MEGZEF Penalty Parameter : 1
            MEGZEF Penalty Multiplier : 5
    MEGZEF Discrete Penalty Parameter : 0.01
   MEGZEF Discrete Penalty Multiplier : 5
----------------------- Response Surface Parameters
      Minimum Number of Design Points : 0
      Maximum Number of Design Points : 0
          User-Supplied Design Points : 0
          Order of the Approximations : Full Quadratic
              Generate Initial Points : Simplex
     Initial Rel. Move Limit (Linear) : 0.2
      Initial Rel. Move Limit (Mixed) : 0.2
  Initial Rel. Move Limit (Quadratic) : 0.2
     Abs. Minimum Move Limit (Linear) : 0.02
      Abs. Minimum Move Limit (Mixed) : 0.02
  Abs. Minimum Move Limit (Quadratic) : 0.02
 Number of iterations for convergence : 2
  Relative Hard Convergence Tolerance : 0.001
  Absolute Hard Convergence Tolerance : 0.0001
  Relative Soft Convergence Tolerance : 0.001
  Absolute Soft Convergence Tolerance : 0.0001
)" + smallTail);
}

TEST_F(TaskDump, OfAFullSurfaceTask) {
  FillAll();
  task.m_nType = 1;
  EXPECT_EQ(Report(), FullHead("Response Surface Approximate Optimization") +
                          R"(                  Optimization Method : MEGZEF
                        Print Control : Debug
                            Objective : Maximize
                 Constraint Tolerance : -3
        Violated Constraint Tolerance : -4
----------------------- Optimizer Parameters
  Relative Hard Convergence Criterion : -6
  Absolute Hard Convergence Criterion : -5
    Consecutive Iter. for Convergence : 34
    Iter. b/w Design Variable Scaling : 32
Max. Number of Iter. by the Optimizer : 33
             MEGZEF Penalty Parameter : -7
            MEGZEF Penalty Multiplier : -8
    MEGZEF Discrete Penalty Parameter : -9
   MEGZEF Discrete Penalty Multiplier : -10
----------------------- Response Surface Parameters
      Minimum Number of Design Points : 39
      Maximum Number of Design Points : 65536
          User-Supplied Design Points : 38
          Order of the Approximations : Forward Stepwise Regression
              Generate Initial Points : User Defined
     Initial Rel. Move Limit (Linear) : -15
      Initial Rel. Move Limit (Mixed) : -16
  Initial Rel. Move Limit (Quadratic) : -17
     Abs. Minimum Move Limit (Linear) : -18
      Abs. Minimum Move Limit (Mixed) : -19
  Abs. Minimum Move Limit (Quadratic) : -20
 Number of iterations for convergence : 40
  Relative Hard Convergence Tolerance : -11
  Absolute Hard Convergence Tolerance : -12
  Relative Soft Convergence Tolerance : -13
  Absolute Soft Convergence Tolerance : -14
      P-value of Terms to Enter into the Model: -21
 P-value of Terms to be Removed from the Model: -22
----------------------- Probabilistic Analysis Parameters
        Probabilistic Analysis Method : Approximate Direct Monte-Carlo Sampling
          Number of Simulation Points : 258
               Save Simulation Points : Yes
Use Random Seed for Simulation Points : No
)" + fullTail + reportEnd);
}

// ---- Design of experiments ----

TEST_F(TaskDump, OfANewDesignOfExperiments) {
  task.m_nType = 2;
  EXPECT_EQ(Report(), SmallHead("Design of Experiments") +
                          R"(----------------------- DOE Parameters
                           DOE Method : Composite
                           DOE Option : 0
                        Screen Points : No
              Number of Design Points : 2
                             DOE Task : Points Only
       Generated Approximation Models : Mixed Forward Regression
)" + smallTail);
}

TEST_F(TaskDump, OfAFullDesignOfExperiments) {
  FillAll();
  task.m_nType = 2;
  EXPECT_EQ(Report(), FullHead("Design of Experiments") +
                          R"(----------------------- DOE Parameters
                           DOE Method : Plackett-Burman
                           DOE Option : 4
                        Screen Points : Yes
              Number of Design Points : 4
            Number of Retained Points : 48
                             DOE Task : Points and Responses
       Generated Approximation Models : Linear and Quadratic
----------------------- Probabilistic Analysis Parameters
        Probabilistic Analysis Method : Approximate Latin Hypercube Sampling
          Number of Simulation Points : 258
               Save Simulation Points : Yes
Use Random Seed for Simulation Points : No
)" + fullTail + reportEnd);
}

// ---- Non-gradient ----

TEST_F(TaskDump, OfANewSwarm) {
  task.m_nType = 3;
  EXPECT_EQ(Report(), SmallHead("Non-Gradient Based Optimization") +
                          R"(----------------------- Non-Gradient Based Optimization Parameters
                  Optimization Method : Particle Swarm Optimization (PSO)
        Violated Constraint Tolerance : 0.003
                      Population Size : 100
         Maximum Number of Iterations : 100
         Minimum Number of Iterations : 5
  Number of Iterations to Convergence : 5
                            Objective : Minimize
                Use Fixed Random Seed : Yes
                    Fixed Random Seed : 234567890
  Absolute Hard Convergence Criterion : 0.0001
  Relative Hard Convergence Criterion : 0.001
  Absolute Soft Convergence Criterion : 0.0001
  Relative Soft Convergence Criterion : 0.001
                    Starting Strategy : Random
             Inertia Weight Parameter : 1.2
                    Trust Parameter 1 : 1.5
                    Trust Parameter 2 : 2.5
)" + smallTail);
}

const std::string fullProbabilities =
    R"(----------------------- Probabilistic Analysis Parameters
        Probabilistic Analysis Method : Latin Hypercube Sampling
          Number of Simulation Points : 258
               Save Simulation Points : Yes
Use Random Seed for Simulation Points : No
)";

TEST_F(TaskDump, OfAFullSwarm) {
  FillAll();
  task.m_nType = 3;
  task.m_NGO.m_nMethod = 0;
  EXPECT_EQ(Report(), FullHead("Non-Gradient Based Optimization") +
                          R"(----------------------- Non-Gradient Based Optimization Parameters
                  Optimization Method : Particle Swarm Optimization (PSO)
        Violated Constraint Tolerance : 1.5
                      Population Size : 65
         Maximum Number of Iterations : 66
         Minimum Number of Iterations : 68
  Number of Iterations to Convergence : 67
                            Objective : Maximize
                Use Fixed Random Seed : No
  Absolute Hard Convergence Criterion : 3.5
  Relative Hard Convergence Criterion : 4.5
  Absolute Soft Convergence Criterion : 5.5
  Relative Soft Convergence Criterion : 6.5
                    Starting Strategy : User Defined
             Inertia Weight Parameter : 7.5
                    Trust Parameter 1 : 8.5
                    Trust Parameter 2 : 9.5
)" + fullProbabilities + fullTail +
                          reportEnd);
}

TEST_F(TaskDump, OfAFullGeneticAlgorithm) {
  FillAll();
  task.m_nType = 3;
  task.m_NGO.m_nMethod = 1;
  EXPECT_EQ(Report(), FullHead("Non-Gradient Based Optimization") +
                          R"(----------------------- Non-Gradient Based Optimization Parameters
                  Optimization Method : Genetic Algorithm (GA)
        Violated Constraint Tolerance : 1.5
                      Population Size : 65
         Maximum Number of Iterations : 66
         Minimum Number of Iterations : 68
  Number of Iterations to Convergence : 67
                            Objective : Maximize
                Use Fixed Random Seed : No
  Absolute Hard Convergence Criterion : 3.5
  Relative Hard Convergence Criterion : 4.5
  Absolute Soft Convergence Criterion : 5.5
  Relative Soft Convergence Criterion : 6.5
                      Cross-Over Type : Two Point
 Probability of Performing Cross-Over : 10.5
   Probability of Performing Mutation : 11.5
)" + fullProbabilities + fullTail +
                          reportEnd);
}

TEST_F(TaskDump, OfAFullNSGA) {
  FillAll();
  task.m_nType = 3;
  EXPECT_EQ(Report(), FullHead("Non-Gradient Based Optimization") +
                          R"(----------------------- Non-Gradient Based Optimization Parameters
                  Optimization Method : Non-Dominated Sorting Genetic Algorithm II (NSGAII)
        Violated Constraint Tolerance : 1.5
                      Population Size : 65
         Maximum Number of Iterations : 66
 Probability of Performing Cross-Over : 12.5
   Probability of Performing Mutation : 13.5
    Distribution Index for Cross-Over : 69
      Distribution Index for Mutation : 70
                          Random Seed : 2.5
)" + fullProbabilities + fullTail +
                          reportEnd);
}

// ---- Analysis only, and no known type ----

TEST_F(TaskDump, OfANewAnalysis) {
  task.m_nType = 4;
  EXPECT_EQ(Report(), SmallHead("Single Analysis Only Task") + smallTail);
}

TEST_F(TaskDump, OfAFullAnalysisIsMisspelled) {
  FillAll();
  task.m_nType = 4;
  EXPECT_EQ(Report(), FullHead("Single Analysis Only Task") +
                          R"(----------------------- Probabilistic Analysis Parameters
        Probabilistic Analysis Method : Latin Hypercube Sampling
          Number of Simulation Points : 258
                Save Simulation Pints : Yes
Use Random Seed for Simulation Points : No
)" + fullTail + reportEnd);
}

TEST_F(TaskDump, OfAnUnknownTypeHasNoSettings) {
  for (const long type : {5L, -1L, 2147483647L, -2147483648L}) {
    task.m_nType = type;
    EXPECT_EQ(Report(), SmallHead("Unknown") + smallTail) << type;
  }
  FillAll();
  task.m_nType = 5;
  EXPECT_EQ(Report(), FullHead("Unknown") + fullTail + reportEnd);
}

}  // namespace
