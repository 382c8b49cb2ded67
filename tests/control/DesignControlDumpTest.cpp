#include <gtest/gtest.h>

#include <string>

#include "tests/control/DesignControlRecord.h"
#include "tests/control/DesignControlReport.h"

namespace {

const std::string freshReport = R"(                             Design Control Object
================================================================================
Current Task Type: Direct-Gradient Optimization
Title: 
Analysis Program: analyze.exe
Call User Routine: No
Use Approxmations: No
The Approxmation is from task: 0
Arguments: 
Design Variable Transfer File: dvar.kef
Responses Transfer File: resp.kef
Run on Remote Machine: No
Connect using SSH: Yes
Connect To Template: 
Copy To Template: 
Copy From Template: 
User name: 
Host name: 
Remote work directory: 
Remote Run Timeout: -1
Reuse Design Points? No
Design Point Tolerance: 0
Check Points in This Task Only.
--------------------------------------------------------------------------------
                  Direct-Gradient Optimimzation Parameters
--------------------------------------------------------------------------------
Debug Print Code: 0
Minimize: True
Constraint Tolerance: -0.03
Violated Constraint Tolerance: 0.003
Relative Hard Convergence Criterion: 0.001
Absolute Hard Convergence: default
Constrained Optimization Algorithm: MMFD
Unconstraint Optimization Algorithm: BFGS
Number of Iterations Between Design Variable Scaling: 0
Maximum Number of Iterations by the Optimizer: 100
Maximum Number of Iterations in the SLP/SQP subproblem: 100
Number of Consecutive Iterations for Convergence: 2
Number of Consecutive Iterations for Convergence in the SLP/SQP subproblem: 2
MEGZEF Initial Penalty Parameter: 1
MEGZEF Penalty Multiplier: 5.000000
MEGZEF Initial Discrete Problem Penalty Parameter: 0.01
MEGZEF Discrete Problem Penalty Multiplier: 5
Relative Finite Difference Step-Size: 0.01
Absolute Minimum Finite Difference Step-Size: 0.001
Gradient Calculation: First-Forward Difference
Store FD Step Analyses: No
Multiple Starting Points : No
Efficiency Level: Most Accurate
Gradient Analysis Program: analyze.exe
Call User Gradient Routine: No
Arguments: 
Gradient Design Variable Transfer File: dvar.kef
Response Gradients Transfer File: resp.kef
Probabilistic Analysis Type: Direct Monte-Carlo Sampling
Number of Probabilistic Simulation Points: 1000
Probabilistic Simulation Points Saved: No
Random Probabilistic Initial Seed: Yes
----------------------------- ZEF IPRM Parameters ------------------------------
IGRAD : 0
ISCAL : 0
ITMAX : 100
ITRMOP: 2
NGMAX : 0
IGMAX : 0
JTMAX : 100
ITRMST: 2
JPRINT: 0
IPRNT1: 0
IPRNT2: 0
----------------------------- ZEF RPRM Parameters ------------------------------
CT    : -0.03
CTMIN : 0.003
DABOBJ: 0
DELOBJ: 0.001
DOBJ1 : 0.1
DOBJ2 : 0
DX1   : 0.01
DX2   : 0
FDCH  : 0.01
FDCHM : 0.001
RMVMLZ: 0.4
DABSTR: 0
DELSTR: 0.001
--------------------------------------------------------------------------------
                  Response Surface Optimimzation Parameters
--------------------------------------------------------------------------------
Debug Print Code: 0
Minimize: True
Constraint Tolerance: -0.03
Violated Constraint Tolerance: 0.003
Relative Hard Convergence Criterion: 0.001
Absolute Hard Convergence: default
Constrained Optimization Algorithm: MMFD
Unconstraint Optimization Algorithm: BFGS
Number of Iterations Between Design Variable Scaling: 0
Maximum Number of Iterations by the Optimizer: 100
Maximum Number of Iterations in the SLP/SQP subproblem: 100
Number of Consecutive Iterations for Convergence: 2
Number of Consecutive Iterations for Convergence in the SLP/SQP subproblem: 2
MEGZEF Initial Penalty Parameter: 1
MEGZEF Penalty Multiplier: 5.000000
MEGZEF Initial Discrete Problem Penalty Parameter: 0.01
MEGZEF Discrete Problem Penalty Multiplier: 5
Initial DOE: Simplex
Sub-Model Code: 0
Desired Order of the Approximations: Full Quadratic
Minimum Number of Design Points to Evaluate: Default
Maximum Number of Design Points to Evaluate: Default
Probabilistic Analysis Type: Direct Monte-Carlo Sampling
Number of Probabilistic Simulation Points: 1000
Probabilistic Simulation Points Saved: No
Random Probabilistic Initial Seed: Yes
------------------ Approximate Optimization Problem Parameters -----------------
Number of iterations for convergence: 2
Relative Hard Convergence Tolerance: 0.001
Absolute Hard Convergence Tolerance: 0.0001
Relative Soft Convergence Tolerance: 0.001
Absolute Soft Convergence Tolerance: 0.0001
Initial Relative Move Limit for Linear Approximations: 0.2
Initial Relative Move Limit for Mixed Approximations: 0.2
Initial Relative Move Limit for Quadratic Approximations: 0.2
Absolute Minimum Move Limit for Linear Approximations: 0.02
Absolute Minimum Move Limit for Mixed Approximations: 0.02
Absolute Minimum Move Limit for Quadratic Approximations: 0.02
--------------------------------------------------------------------------------
                   Design of Experiments (DOE) Parameters
--------------------------------------------------------------------------------
DOE Task: Points Only
Design Type: Composite
DOE Option Codes: 0  0  1  12  -1  10  10  3101  1  0  0  0  0  0  0  
GUI Sub-Item Indices: 0  0  0  0  0  0  0  0  0  0  0  0  0  0  0  
Generated Approximation Models: Linear with Interactions
D-Optimal Design: No
Filter Points Using Design Variable Constraints: No
Probabilistic Analysis Type: Direct Monte-Carlo Sampling
Number of Probabilistic Simulation Points: 1000
Probabilistic Simulation Points Saved: No
Random Probabilistic Initial Seed: Yes
--------------------------------------------------------------------------------
                   Non-Gradient Optimization (NGO) Parameters
--------------------------------------------------------------------------------
Probabilistic Analysis Type: Direct Monte-Carlo Sampling
Number of Probabilistic Simulation Points: 1000
Probabilistic Simulation Points Saved: No
Random Probabilistic Initial Seed: Yes
NGO Method: Particle Swarm Optimization (PSO)
Violated Constraint Tolerance: 0.003
Population Size: 0
Maximum Number of Iterations: 100
Minimum Number of Iterations: 5
Number of Iterations to Convergence: 5
Overall Minimize Flag: Minimize
Use Fixed Random Seed: Yes
Absolute Hard Convergence Criterion: 0.0001
Relative Hard Convergence Criteiron: 0.001
Absolute Soft Convergence Criterion: 0.0001
Relative Soft Convergnece Criterion: 0.001
----------------- Particle Swarm Optimization Problem Parameters ---------------
Inertia Weight Parameter: 1.2
Trust Parameter 1: 1.5
Trust Parameter 2: 2.5
--------------------------------------------------------------------------------
                   Analysis Only Task (ANL) Parameters
--------------------------------------------------------------------------------
Probabilistic Analysis Type: Direct Monte-Carlo Sampling
Number of Probabilistic Simulation Points: 1000
Probabilistic Simulation Points Saved: No
Random Probabilistic Initial Seed: Yes
================================================================================

)";

/// Of the values that DesignControlRecord.cpp names, with a genetic algorithm and without SSH.
const std::string changedReport = R"(                             Design Control Object
================================================================================
Current Task Type: Analysis Only Task
Title: A b
Analysis Program: p
Call User Routine: Yes
Use Approxmations: Yes
The Approxmation is from task: 10
Arguments: a
Design Variable Transfer File: v
Responses Transfer File: r
Run on Remote Machine: Yes
Connect using SSH: No
Connect To Template: C
Copy To Template: T
Copy From Template: F
User name: u
Host name: h
Remote work directory: d
Remote Run Timeout: 60
Reuse Design Points? Yes
Design Point Tolerance: 0.25
Check Points in Multiple Tasks.
--------------------------------------------------------------------------------
                  Direct-Gradient Optimimzation Parameters
--------------------------------------------------------------------------------
Debug Print Code: 7
Minimize: False
Constraint Tolerance: -3
Violated Constraint Tolerance: 4
Relative Hard Convergence Criterion: 6
Absolute Hard Convergence: 5
Constrained Optimization Algorithm: SQP
Unconstraint Optimization Algorithm: MEGZEF
Number of Iterations Between Design Variable Scaling: -2
Maximum Number of Iterations by the Optimizer: 101
Maximum Number of Iterations in the SLP/SQP subproblem: 19
Number of Consecutive Iterations for Convergence: 16
Number of Consecutive Iterations for Convergence in the SLP/SQP subproblem: 20
MEGZEF Initial Penalty Parameter: 16
MEGZEF Penalty Multiplier: 17.000000
MEGZEF Initial Discrete Problem Penalty Parameter: 18
MEGZEF Discrete Problem Penalty Multiplier: 19
Relative Finite Difference Step-Size: 11
Absolute Minimum Finite Difference Step-Size: 12
Gradient Calculation: Central Difference
Store FD Step Analyses: Yes
Multiple Starting Points : Yes
Efficiency Level: Mixed
Gradient Analysis Program: P
Call User Gradient Routine: Yes
Arguments: A
Gradient Design Variable Transfer File: V
Response Gradients Transfer File: R
Probabilistic Analysis Type: Mean Value Approximation Method
Number of Probabilistic Simulation Points: 258
Probabilistic Simulation Points Saved: Yes
Random Probabilistic Initial Seed: No
----------------------------- ZEF IPRM Parameters ------------------------------
IGRAD : -1
ISCAL : -2
ITMAX : 101
ITRMOP: 16
NGMAX : 17
IGMAX : 18
JTMAX : 19
ITRMST: 20
JPRINT: 21
IPRNT1: 22
IPRNT2: 23
----------------------------- ZEF RPRM Parameters ------------------------------
CT    : -3
CTMIN : 4
DABOBJ: 5
DELOBJ: 6
DOBJ1 : 7
DOBJ2 : 8
DX1   : 9
DX2   : 10
FDCH  : 11
FDCHM : 12
RMVMLZ: 13
DABSTR: 14
DELSTR: 15
--------------------------------------------------------------------------------
                  Response Surface Optimimzation Parameters
--------------------------------------------------------------------------------
Debug Print Code: 6
Minimize: False
Constraint Tolerance: -3
Violated Constraint Tolerance: -4
Relative Hard Convergence Criterion: -6
Absolute Hard Convergence: -5
Constrained Optimization Algorithm: MEGZEF
Unconstraint Optimization Algorithm: FR
Number of Iterations Between Design Variable Scaling: 32
Maximum Number of Iterations by the Optimizer: 33
Maximum Number of Iterations in the SLP/SQP subproblem: 35
Number of Consecutive Iterations for Convergence: 34
Number of Consecutive Iterations for Convergence in the SLP/SQP subproblem: 36
MEGZEF Initial Penalty Parameter: -7
MEGZEF Penalty Multiplier: -8.000000
MEGZEF Initial Discrete Problem Penalty Parameter: -9
MEGZEF Discrete Problem Penalty Multiplier: -10
Initial DOE: User Defined
Sub-Model Code: 38
Desired Order of the Approximations: Forward Stepwise Regression
      P-value of Terms to Enter into the Model: -21
 P-value of Terms to be Removed from the Model: -21
Minimum Number of Design Points to Evaluate: 39
Maximum Number of Design Points to Evaluate: 65536
Probabilistic Analysis Type: Approximate Direct Monte-Carlo Sampling
Number of Probabilistic Simulation Points: 258
Probabilistic Simulation Points Saved: Yes
Random Probabilistic Initial Seed: No
------------------ Approximate Optimization Problem Parameters -----------------
Number of iterations for convergence: 40
Relative Hard Convergence Tolerance: -11
Absolute Hard Convergence Tolerance: -12
Relative Soft Convergence Tolerance: -13
Absolute Soft Convergence Tolerance: -14
Initial Relative Move Limit for Linear Approximations: -15
Initial Relative Move Limit for Mixed Approximations: -16
Initial Relative Move Limit for Quadratic Approximations: -17
Absolute Minimum Move Limit for Linear Approximations: -18
Absolute Minimum Move Limit for Mixed Approximations: -19
Absolute Minimum Move Limit for Quadratic Approximations: -20
--------------------------------------------------------------------------------
                   Design of Experiments (DOE) Parameters
--------------------------------------------------------------------------------
DOE Task: Points and Responses
Design Type: Plackett-Burman
DOE Option Codes: 1  2  3  4  5  6  7  8  9  10  11  12  13  14  -2  
GUI Sub-Item Indices: 31  30  29  28  27  26  25  24  23  22  21  20  19  18  17  
Generated Approximation Models: Full Quadratic
D-Optimal Design: Yes
Number of Retained Points: 48
Filter Points Using Design Variable Constraints: Yes
Probabilistic Analysis Type: Approximate Latin Hypercube Sampling
Number of Probabilistic Simulation Points: 258
Probabilistic Simulation Points Saved: Yes
Random Probabilistic Initial Seed: No
--------------------------------------------------------------------------------
                   Non-Gradient Optimization (NGO) Parameters
--------------------------------------------------------------------------------
Probabilistic Analysis Type: Latin Hypercube Sampling
Number of Probabilistic Simulation Points: 258
Probabilistic Simulation Points Saved: Yes
Random Probabilistic Initial Seed: No
NGO Method: Genetic Algorithm (GA)
Violated Constraint Tolerance: 1.5
Population Size: 64
Maximum Number of Iterations: 66
Minimum Number of Iterations: 68
Number of Iterations to Convergence: 67
Overall Minimize Flag: Maximize
Use Fixed Random Seed: No
Absolute Hard Convergence Criterion: 3.5
Relative Hard Convergence Criteiron: 4.5
Absolute Soft Convergence Criterion: 5.5
Relative Soft Convergnece Criterion: 6.5
----------------------- Genetic Algorithm Problem Parameters -------------------
Cross-Over Type: Two Point
Probability of Performing Cross-Over: 10.5
Probability of Performing Mutation: 11.5
--------------------------------------------------------------------------------
                   Analysis Only Task (ANL) Parameters
--------------------------------------------------------------------------------
Probabilistic Analysis Type: Latin Hypercube Sampling
Number of Probabilistic Simulation Points: 258
Probabilistic Simulation Points Saved: Yes
Random Probabilistic Initial Seed: No
================================================================================

)";

TEST_F(DesignControlReport, OfDefaults) {
  EXPECT_EQ(Report(), freshReport);
}

TEST_F(DesignControlReport, OfChangedSettings) {
  ChangeAll(control, AllFields());
  control.m_NGO.m_nMethod = 1;
  control.m_nUseSSH = 0;
  EXPECT_EQ(Report(), changedReport);
}

TEST_F(DesignControlReport, OfNSGAStopsAtTheIterations) {
  control.m_NGO.m_nMethod = 2;
  std::string expected = freshReport;
  const std::string swarm = "NGO Method: Particle Swarm Optimization (PSO)\n";
  expected.replace(expected.find(swarm), swarm.size(),
                   "NGO Method: Non-Dominated Sorting Genetic Algorithm II (NSGA-II)\n");
  const std::size_t start = expected.find("Minimum Number of Iterations: 5\n");
  const std::string end = "Trust Parameter 2: 2.5\n";
  expected.erase(start, expected.find(end) + end.size() - start);
  EXPECT_EQ(Report(), expected);
}

}  // namespace
