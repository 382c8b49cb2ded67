#include <cstdio>
#include <string>

#include "control/ControlReport.h"
#include "control/DesignControl.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"

namespace {

using kestdb::FlagWord;
using kestdb::ToInt;
using kestdb::WordFor;

const char* MethodWord(const vbINT32& method) {
  return WordFor(method, {"MMFD", "Unknown", "SLP", "SQP", "MEGZEF"});
}

const char* GradientWord(const vbINT32& gradient) {
  if (gradient == -1) return "Central Difference";
  return WordFor(gradient, {"First-Forward Difference", "User Supplied"});
}

void PrintTitle(std::FILE* stream, const char* title) {
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "%s", title);
  kestdb::PrintBar(stream, '-');
}

/// The random analysis of a block.
template <class Block>
void PrintProbabilistic(std::FILE* stream, const Block& block) {
  std::fprintf(stream, "Probabilistic Analysis Type: %s\n",
               kestdb::RandomMethodWord(block.m_nRandomMethod));
  if (block.m_nRandomPoints >= 0) {
    std::fprintf(stream, "Number of Probabilistic Simulation Points: %d\n",
                 ToInt(block.m_nRandomPoints));
  }
  std::fprintf(stream, "Probabilistic Simulation Points Saved: %s\n",
               FlagWord(block.m_nSavePoints));
  std::fprintf(stream, "Random Probabilistic Initial Seed: %s\n", FlagWord(block.m_nRandomSeed));
}

void PrintUnconstrainedMethod(std::FILE* stream, const vbINT32& method) {
  switch (method) {
    case 0:
      std::fprintf(stream, "Unconstraint Optimization Algorithm: BFGS\n");
      break;
    case 2:
      std::fprintf(stream, "Unconstraint Optimization Algorithm: FR\n");
      break;
    case 4:
      std::fprintf(stream, "Unconstraint Optimization Algorithm: MEGZEF\n");
      break;
    default:
      std::fprintf(stream, "Unconstraint Optimization Algorithm: Unknown\n");
  }
}

/// The parameters of the optimiser, which is the inner one of a response surface task.
template <class Block>
void PrintOptimiser(std::FILE* stream, const Block& block) {
  std::fprintf(stream, "Debug Print Code: %d\n", ToInt(block.m_nIPRINT));
  std::fprintf(stream, "Minimize: %s\n", block.m_nMINMAX != 0 ? "True" : "False");
  std::fprintf(stream, "Constraint Tolerance: %g\n", double{block.m_fCT});
  std::fprintf(stream, "Violated Constraint Tolerance: %g\n", double{block.m_fCTMIN});
  std::fprintf(stream, "Relative Hard Convergence Criterion: %g\n", double{block.m_fDELOBJ});
  if (block.m_fDABOBJ == 0.0) {
    std::fprintf(stream, "Absolute Hard Convergence: default\n");
  } else {
    std::fprintf(stream, "Absolute Hard Convergence: %g\n", double{block.m_fDABOBJ});
  }
  std::fprintf(stream, "Constrained Optimization Algorithm: %s\n", MethodWord(block.m_nMETHOD));
  PrintUnconstrainedMethod(stream, block.m_nUncMETHOD);
  std::fprintf(stream, "Number of Iterations Between Design Variable Scaling: %s\n",
               std::to_string(ToInt(block.m_nISCAL)).c_str());
  std::fprintf(stream, "Maximum Number of Iterations by the Optimizer: %d\n",
               ToInt(block.m_nITMAX));
  std::fprintf(stream, "Maximum Number of Iterations in the SLP/SQP subproblem: %d\n",
               ToInt(block.m_nJTMAX));
  std::fprintf(stream, "Number of Consecutive Iterations for Convergence: %d\n",
               ToInt(block.m_nITRMOP));
  std::fprintf(stream,
               "Number of Consecutive Iterations for Convergence in the SLP/SQP subproblem: %d\n",
               ToInt(block.m_nITRMST));
  std::fprintf(stream, "MEGZEF Initial Penalty Parameter: %g\n", double{block.m_fPENALT});
  std::fprintf(stream, "MEGZEF Penalty Multiplier: %f\n", double{block.m_fPMULT});
  std::fprintf(stream, "MEGZEF Initial Discrete Problem Penalty Parameter: %g\n",
               double{block.m_fPENLTD});
  std::fprintf(stream, "MEGZEF Discrete Problem Penalty Multiplier: %g\n", double{block.m_fPMULTD});
}

void PrintGradients(std::FILE* stream, const CDGOControl& block) {
  std::fprintf(stream, "Relative Finite Difference Step-Size: %g\n", double{block.m_fFDCH});
  std::fprintf(stream, "Absolute Minimum Finite Difference Step-Size: %g\n",
               double{block.m_fFDCHM});
  std::fprintf(stream, "Gradient Calculation: %s\n", GradientWord(block.m_nIGRAD));
  std::fprintf(stream, "Store FD Step Analyses: %s\n", FlagWord(block.m_nStoreFD));
  std::fprintf(stream, "Multiple Starting Points : %s\n", FlagWord(block.m_nMultiStart));
  std::fprintf(stream, "Efficiency Level: ");
  std::fprintf(stream, "%s\n", kestdb::EfficiencyWord(block.m_nSkip));
  std::fprintf(stream, "Gradient Analysis Program: %s\n", block.m_strGradProgram.c_str());
  std::fprintf(stream, "Call User Gradient Routine: %s\n", FlagWord(block.m_nGradUserRoutine));
  std::fprintf(stream, "Arguments: %s\n", block.m_strGradArgs.c_str());
  std::fprintf(stream, "Gradient Design Variable Transfer File: %s\n",
               block.m_strGradVarFile.c_str());
  std::fprintf(stream, "Response Gradients Transfer File: %s\n", block.m_strGradRespFile.c_str());
}

void PrintIntegerParameters(std::FILE* stream, const CDGOControl& block) {
  std::fprintf(
      stream, "----------------------------- ZEF IPRM Parameters ------------------------------\n");
  std::fprintf(stream, "IGRAD : %d\n", ToInt(block.m_nIGRAD));
  std::fprintf(stream, "ISCAL : %d\n", ToInt(block.m_nISCAL));
  std::fprintf(stream, "ITMAX : %d\n", ToInt(block.m_nITMAX));
  std::fprintf(stream, "ITRMOP: %d\n", ToInt(block.m_nITRMOP));
  std::fprintf(stream, "NGMAX : %d\n", ToInt(block.m_nNGMAX));
  std::fprintf(stream, "IGMAX : %d\n", ToInt(block.m_nIGMAX));
  std::fprintf(stream, "JTMAX : %d\n", ToInt(block.m_nJTMAX));
  std::fprintf(stream, "ITRMST: %d\n", ToInt(block.m_nITRMST));
  std::fprintf(stream, "JPRINT: %d\n", ToInt(block.m_nJPRINT));
  std::fprintf(stream, "IPRNT1: %d\n", ToInt(block.m_nIPRNT1));
  std::fprintf(stream, "IPRNT2: %d\n", ToInt(block.m_nIPRNT2));
}

void PrintRealParameters(std::FILE* stream, const CDGOControl& block) {
  std::fprintf(
      stream, "----------------------------- ZEF RPRM Parameters ------------------------------\n");
  std::fprintf(stream, "CT    : %g\n", double{block.m_fCT});
  std::fprintf(stream, "CTMIN : %g\n", double{block.m_fCTMIN});
  std::fprintf(stream, "DABOBJ: %g\n", double{block.m_fDABOBJ});
  std::fprintf(stream, "DELOBJ: %g\n", double{block.m_fDELOBJ});
  std::fprintf(stream, "DOBJ1 : %g\n", double{block.m_fDOBJ1});
  std::fprintf(stream, "DOBJ2 : %g\n", double{block.m_fDOBJ2});
  std::fprintf(stream, "DX1   : %g\n", double{block.m_fDX1});
  std::fprintf(stream, "DX2   : %g\n", double{block.m_fDX2});
  std::fprintf(stream, "FDCH  : %g\n", double{block.m_fFDCH});
  std::fprintf(stream, "FDCHM : %g\n", double{block.m_fFDCHM});
  std::fprintf(stream, "RMVMLZ: %g\n", double{block.m_fRMVLMZ});
  std::fprintf(stream, "DABSTR: %g\n", double{block.m_fDABSTR});
  std::fprintf(stream, "DELSTR: %g\n", double{block.m_fDELSTR});
}

void PrintGradientTask(std::FILE* stream, const CDGOControl& block) {
  PrintTitle(stream, "                  Direct-Gradient Optimimzation Parameters\n");
  PrintOptimiser(stream, block);
  PrintGradients(stream, block);
  PrintProbabilistic(stream, block);
  PrintIntegerParameters(stream, block);
  PrintRealParameters(stream, block);
}

void PrintApproximations(std::FILE* stream, const CRSAControl& block) {
  std::fprintf(stream, "Initial DOE: %s\n", kestdb::InitialDesignWord(block.m_nInitialDOE));
  std::fprintf(stream, "Sub-Model Code: %d\n", ToInt(block.m_nSubModel));
  std::fprintf(stream, "Desired Order of the Approximations: %s\n",
               kestdb::OrderWord(block.m_nOrder));
  // Kept: the value for removal is not shown.
  if (block.m_nOrder == 4) {
    kestdb::PrintPValues(stream, double{block.m_fPEnter}, double{block.m_fPEnter});
  }
  if (block.m_nHasMinPoints != 0) {
    std::fprintf(stream, "Minimum Number of Design Points to Evaluate: %d\n",
                 ToInt(block.m_nMinPoints));
  } else {
    std::fprintf(stream, "Minimum Number of Design Points to Evaluate: Default\n");
  }
  if (block.m_nHasMaxPoints != 0) {
    std::fprintf(stream, "Maximum Number of Design Points to Evaluate: %d\n",
                 ToInt(block.m_nMaxPoints));
  } else {
    std::fprintf(stream, "Maximum Number of Design Points to Evaluate: Default\n");
  }
}

void PrintApproximateProblem(std::FILE* stream, const CRSAControl& block) {
  std::fprintf(
      stream, "------------------ Approximate Optimization Problem Parameters -----------------\n");
  std::fprintf(stream, "Number of iterations for convergence: %d\n", ToInt(block.m_nConvIters));
  std::fprintf(stream, "Relative Hard Convergence Tolerance: %g\n", double{block.m_fHardRel});
  std::fprintf(stream, "Absolute Hard Convergence Tolerance: %g\n", double{block.m_fHardAbs});
  std::fprintf(stream, "Relative Soft Convergence Tolerance: %g\n", double{block.m_fSoftRelApprox});
  std::fprintf(stream, "Absolute Soft Convergence Tolerance: %g\n", double{block.m_fSoftAbsApprox});
  std::fprintf(stream, "Initial Relative Move Limit for Linear Approximations: %g\n",
               double{block.m_fMoveRelLinear});
  std::fprintf(stream, "Initial Relative Move Limit for Mixed Approximations: %g\n",
               double{block.m_fMoveRelMixed});
  std::fprintf(stream, "Initial Relative Move Limit for Quadratic Approximations: %g\n",
               double{block.m_fMoveRelQuad});
  std::fprintf(stream, "Absolute Minimum Move Limit for Linear Approximations: %g\n",
               double{block.m_fMoveAbsLinear});
  std::fprintf(stream, "Absolute Minimum Move Limit for Mixed Approximations: %g\n",
               double{block.m_fMoveAbsMixed});
  std::fprintf(stream, "Absolute Minimum Move Limit for Quadratic Approximations: %g\n",
               double{block.m_fMoveAbsQuad});
}

void PrintSurfaceTask(std::FILE* stream, const CRSAControl& block) {
  PrintTitle(stream, "                  Response Surface Optimimzation Parameters\n");
  PrintOptimiser(stream, block);
  PrintApproximations(stream, block);
  PrintProbabilistic(stream, block);
  PrintApproximateProblem(stream, block);
}

void PrintCodes(std::FILE* stream, const std::vector<vbINT32>& codes) {
  for (const vbINT32& code : codes) std::fprintf(stream, "%d  ", ToInt(code));
  std::fprintf(stream, "\n");
}

void PrintDesignTask(std::FILE* stream, const CDOEControl& block) {
  PrintTitle(stream, "                   Design of Experiments (DOE) Parameters\n");
  std::fprintf(stream, "DOE Task: %s\n", kestdb::DesignTaskWord(block.m_nTask));
  std::fprintf(stream, "Design Type: %s\n", kestdb::DesignWord(block.m_nMethod));
  std::fprintf(stream, "DOE Option Codes: ");
  PrintCodes(stream, block.m_vnOptions);
  std::fprintf(stream, "GUI Sub-Item Indices: ");
  PrintCodes(stream, block.m_vnGUIIndices);
  // Kept: the design picks the word, not the model.
  std::fprintf(stream, "Generated Approximation Models: %s\n", kestdb::ModelWord(block.m_nMethod));
  if (block.m_nDOptimal == 0) {
    std::fprintf(stream, "D-Optimal Design: No\n");
  } else {
    std::fprintf(stream, "D-Optimal Design: Yes\n");
    if (block.m_nRetained == 0) {
      std::fprintf(stream, "Number of Retained Points: All\n");
    } else {
      std::fprintf(stream, "Number of Retained Points: %d\n", ToInt(block.m_nRetained));
    }
  }
  if (block.m_nFilter != 0) {
    std::fprintf(stream, "Filter Points Using Design Variable Constraints: Yes\n");
  } else {
    std::fprintf(stream, "Filter Points Using Design Variable Constraints: No\n");
  }
  PrintProbabilistic(stream, block);
}

void PrintGenetic(std::FILE* stream, const CNGOControl& block) {
  std::fprintf(
      stream, "----------------------- Genetic Algorithm Problem Parameters -------------------\n");
  std::fprintf(stream, "Cross-Over Type: %s\n", kestdb::CrossOverWord(block.m_nCrossType));
  std::fprintf(stream, "Probability of Performing Cross-Over: %g\n", double{block.m_fCrossProb});
  std::fprintf(stream, "Probability of Performing Mutation: %g\n", double{block.m_fMutProb});
}

void PrintSwarm(std::FILE* stream, const CNGOControl& block) {
  std::fprintf(
      stream, "----------------- Particle Swarm Optimization Problem Parameters ---------------\n");
  std::fprintf(stream, "Inertia Weight Parameter: %g\n", double{block.m_fInertia});
  std::fprintf(stream, "Trust Parameter 1: %g\n", double{block.m_fTrust1});
  std::fprintf(stream, "Trust Parameter 2: %g\n", double{block.m_fTrust2});
}

void PrintNonGradientTask(std::FILE* stream, const CNGOControl& block) {
  PrintTitle(stream, "                   Non-Gradient Optimization (NGO) Parameters\n");
  PrintProbabilistic(stream, block);
  std::fprintf(
      stream, "NGO Method: %s\n",
      WordFor(block.m_nMethod, {"Particle Swarm Optimization (PSO)", "Genetic Algorithm (GA)",
                                "Non-Dominated Sorting Genetic Algorithm II (NSGA-II)"}));
  std::fprintf(stream, "Violated Constraint Tolerance: %g\n", double{block.m_fCTMIN});
  // Kept: the size that older records hold.
  std::fprintf(stream, "Population Size: %d\n", ToInt(block.m_nOldPopulation));
  std::fprintf(stream, "Maximum Number of Iterations: %d\n", ToInt(block.m_nMaxIters));
  if (block.m_nMethod != 2) {
    std::fprintf(stream, "Minimum Number of Iterations: %d\n", ToInt(block.m_nMinIters));
    std::fprintf(stream, "Number of Iterations to Convergence: %d\n", ToInt(block.m_nConvIters));
    std::fprintf(stream, "Overall Minimize Flag: %s\n",
                 block.m_nMinimize == 1 ? "Minimize" : "Maximize");
    std::fprintf(stream, "Use Fixed Random Seed: %s\n", FlagWord(block.m_nFixedSeed));
    std::fprintf(stream, "Absolute Hard Convergence Criterion: %g\n", double{block.m_fHardAbs});
    std::fprintf(stream, "Relative Hard Convergence Criteiron: %g\n", double{block.m_fHardRel});
    std::fprintf(stream, "Absolute Soft Convergence Criterion: %g\n", double{block.m_fSoftAbs});
    std::fprintf(stream, "Relative Soft Convergnece Criterion: %g\n", double{block.m_fSoftRel});
  }
  if (block.m_nMethod == 1) PrintGenetic(stream, block);
  if (block.m_nMethod == 0) PrintSwarm(stream, block);
}

void PrintAnalysisTask(std::FILE* stream, const CANLControl& block) {
  PrintTitle(stream, "                   Analysis Only Task (ANL) Parameters\n");
  PrintProbabilistic(stream, block);
}

void PrintProgram(std::FILE* stream, const CDesignControl& control) {
  std::fprintf(
      stream, "Current Task Type: %s\n",
      WordFor(control.m_nTaskType,
              {"Direct-Gradient Optimization", "Response Surface Optimization",
               "Design of Experiments", "Non-Gradient Based Optimization", "Analysis Only Task"}));
  std::fprintf(stream, "Title: %s\n", control.m_strTitle.c_str());
  std::fprintf(stream, "Analysis Program: %s\n", control.m_strProgram.c_str());
  std::fprintf(stream, "Call User Routine: %s\n", FlagWord(control.m_nUserRoutine));
  std::fprintf(stream, "Use Approxmations: %s\n", FlagWord(control.m_nUseApprox));
  std::fprintf(stream, "The Approxmation is from task: %d\n", ToInt(control.m_nApproxTask));
  std::fprintf(stream, "Arguments: %s\n", control.m_strArgs.c_str());
  std::fprintf(stream, "Design Variable Transfer File: %s\n", control.m_strVarFile.c_str());
  std::fprintf(stream, "Responses Transfer File: %s\n", control.m_strRespFile.c_str());
}

void PrintRemote(std::FILE* stream, const CDesignControl& control) {
  const bool ssh = control.m_nUseSSH != 0;
  std::fprintf(stream, "Run on Remote Machine: %s\n", FlagWord(control.m_nRemote));
  std::fprintf(stream, "Connect using SSH: %s\n", FlagWord(control.m_nUseSSH));
  std::fprintf(stream, "Connect To Template: %s\n",
               (ssh ? control.m_strSSHConnect : control.m_strConnect).c_str());
  std::fprintf(stream, "Copy To Template: %s\n",
               (ssh ? control.m_strSSHCopyTo : control.m_strCopyTo).c_str());
  std::fprintf(stream, "Copy From Template: %s\n",
               (ssh ? control.m_strSSHCopyFrom : control.m_strCopyFrom).c_str());
  std::fprintf(stream, "User name: %s\n", control.m_strUser.c_str());
  std::fprintf(stream, "Host name: %s\n", control.m_strHost.c_str());
  std::fprintf(stream, "Remote work directory: %s\n", control.m_strRemoteDir.c_str());
  std::fprintf(stream, "Remote Run Timeout: %d\n", ToInt(control.m_nTimeout));
}

void PrintReuse(std::FILE* stream, const CDesignControl& control) {
  if (control.m_nReusePoints != 0) {
    std::fprintf(stream, "Reuse Design Points? Yes\n");
  } else {
    std::fprintf(stream, "Reuse Design Points? No\n");
  }
  std::fprintf(stream, "Design Point Tolerance: %g\n", double{control.m_fPointTol});
  if (control.m_vnCheckTasks.empty()) {
    std::fprintf(stream, "Check Points in This Task Only.\n");
  } else {
    std::fprintf(stream, "Check Points in Multiple Tasks.\n");
  }
}

}  // namespace

void CDesignControl::Dump(POD* pod, std::FILE* stream) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CDesignControl control(pod);
  if (!control.GetObject()) Throw<CObjectNotFound>();
  std::fprintf(stream, "                             Design Control Object\n");
  kestdb::PrintBar(stream, '=');
  PrintProgram(stream, control);
  PrintRemote(stream, control);
  PrintReuse(stream, control);
  PrintGradientTask(stream, control.m_DGO);
  PrintSurfaceTask(stream, control.m_RSA);
  PrintDesignTask(stream, control.m_DOE);
  PrintNonGradientTask(stream, control.m_NGO);
  PrintAnalysisTask(stream, control.m_ANL);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
