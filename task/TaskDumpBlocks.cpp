#include "task/TaskDumpBlocks.h"

#include "control/ControlReport.h"
#include "store/report.h"
#include "task/Task.h"

// The settings of a task in its report, by the type of the task.

namespace {

using kestdb::FlagWord;
using kestdb::ToInt;

constexpr int kUserDefined = 11;  // of CRSAControl::m_nInitialDOE and CDOEControl::m_nMethod
constexpr int kStepwise = 4;      // of CRSAControl::m_nOrder
constexpr int kSwarm = 0;         // of CNGOControl::m_nMethod
constexpr int kGenetic = 1;
constexpr int kNSGA = 2;

bool IsConstrained(const CTask& task) {
  return task.m_uNumCons != 0;
}

template <class Block>
bool IsSequential(const CTask& task, const Block& block) {
  return IsConstrained(task) && (block.m_nMETHOD == 2 || block.m_nMETHOD == 3);
}

template <class Block>
const char* MethodWord(const CTask& task, const Block& block) {
  return IsConstrained(task)
             ? kestdb::WordFor(block.m_nMETHOD, {"MMFD", "Unknown", "SLP ", "SQP ", "MEGZEF"})
             : kestdb::WordFor(block.m_nUncMETHOD, {"BFGS", "Unknown", "FR", "Unknown", "MEGZEF"});
}

void PrintObjective(std::FILE* stream, bool minimize) {
  if (minimize) {
    std::fprintf(stream, "                            Objective : Minimize\n");
  } else {
    std::fprintf(stream, "                            Objective : Maximize\n");
  }
}

template <class Block>
void PrintMethod(std::FILE* stream, const CTask& task, const Block& block) {
  std::fprintf(stream, "                  Optimization Method : %s\n", MethodWord(task, block));
  if (block.m_nIPRINT == 0) {
    std::fprintf(stream, "                        Print Control : None\n");
  } else {
    std::fprintf(stream, "                        Print Control : Debug\n");
  }
  PrintObjective(stream, block.m_nMINMAX != 0);
  std::fprintf(stream, "                 Constraint Tolerance : %g\n", double{block.m_fCT});
  std::fprintf(stream, "        Violated Constraint Tolerance : %g\n", double{block.m_fCTMIN});
}

void PrintGradientForm(std::FILE* stream, const vbINT32& form) {
  switch (form) {
    case 0:
      std::fprintf(stream, "              Gradients Calculated By : First Forward Difference\n");
      break;
    case -1:
      std::fprintf(stream, "              Gradients Calculated By : Central Difference\n");
      break;
    case 1:
      std::fprintf(stream, "              Gradients Calculated By : User Supplied\n");
      break;
    default:
      std::fprintf(stream, "              Gradients Calculated By : Unknown\n");
  }
}

void PrintGradients(std::FILE* stream, const CDGOControl& block) {
  PrintGradientForm(stream, block.m_nIGRAD);
  if (block.m_nIGRAD == 0 || block.m_nIGRAD == -1) {
    std::fprintf(stream, "      Relative Finite Difference Step : %g\n", double{block.m_fFDCH});
    std::fprintf(stream, "       Minimum Finite Difference Step : %g\n", double{block.m_fFDCHM});
  }
  std::fprintf(stream, "                          Efficiency Level: ");
  std::fprintf(stream, "%s\n", kestdb::EfficiencyWord(block.m_nSkip));
  std::fprintf(stream, "            Save Finite Difference Points : %s\n",
               FlagWord(block.m_nStoreFD));
  std::fprintf(stream, "                 Multiple Starting Points : %s\n",
               FlagWord(block.m_nMultiStart));
}

template <class Block>
void PrintOptimiser(std::FILE* stream, const Block& block) {
  std::fprintf(stream, "----------------------- Optimizer Parameters\n");
  std::fprintf(stream, "  Relative Hard Convergence Criterion : %g\n", double{block.m_fDELOBJ});
  if (block.m_fDABOBJ == 0.0) {
    std::fprintf(stream, "  Absolute Hard Convergence Criterion : Default\n");
  } else {
    std::fprintf(stream, "  Absolute Hard Convergence Criterion : %g\n", double{block.m_fDABOBJ});
  }
  std::fprintf(stream, "    Consecutive Iter. for Convergence : %d\n", ToInt(block.m_nITRMOP));
  if (block.m_nISCAL == 0) {
    std::fprintf(stream, "    Iter. b/w Design Variable Scaling : Default\n");
  } else {
    std::fprintf(stream, "    Iter. b/w Design Variable Scaling : %d\n", ToInt(block.m_nISCAL));
  }
  std::fprintf(stream, "Max. Number of Iter. by the Optimizer : %d\n", ToInt(block.m_nITMAX));
}

template <class Block>
void PrintSubProblem(std::FILE* stream, const Block& block) {
  std::fprintf(stream, "----------------------- SLP/SQP Sub-Problem\n");
  std::fprintf(stream, "                   Maximum Iterations : %d\n", ToInt(block.m_nJTMAX));
  std::fprintf(stream, "    Consecutive Iter. for Convergence : %d\n", ToInt(block.m_nITRMST));
}

template <class Block>
void PrintPenalties(std::FILE* stream, const Block& block) {
  std::fprintf(stream, "             MEGZEF Penalty Parameter : %g\n", double{block.m_fPENALT});
  std::fprintf(stream, "            MEGZEF Penalty Multiplier : %g\n", double{block.m_fPMULT});
  std::fprintf(stream, "    MEGZEF Discrete Penalty Parameter : %g\n", double{block.m_fPENLTD});
  std::fprintf(stream, "   MEGZEF Discrete Penalty Multiplier : %g\n", double{block.m_fPMULTD});
}

/// The optimiser's parameters, behind those of its method.
template <class Block>
void PrintOptimisation(std::FILE* stream, const CTask& task, const Block& block) {
  PrintOptimiser(stream, block);
  if (IsSequential(task, block)) PrintSubProblem(stream, block);
  PrintPenalties(stream, block);
}

void PrintLibraryParameters(std::FILE* stream, const CDGOControl& block) {
  std::fprintf(stream, "----------------------- ZEF Parameters\n");
  std::fprintf(stream, "          IGRAD : %-6d           CT : %g\n", ToInt(block.m_nIGRAD),
               double{block.m_fCT});
  std::fprintf(stream, "          ISCAL : %-6d        CTMIN : %g\n", ToInt(block.m_nISCAL),
               double{block.m_fCTMIN});
  std::fprintf(stream, "          ITMAX : %-6d       DABOBJ : %g\n", ToInt(block.m_nITMAX),
               double{block.m_fDABOBJ});
  std::fprintf(stream, "         ITRMOP : %-6d       DELOBJ : %g\n", ToInt(block.m_nITRMOP),
               double{block.m_fDELOBJ});
  std::fprintf(stream, "          NGMAX : %-6d        DOBJ1 : %g\n", ToInt(block.m_nNGMAX),
               double{block.m_fDOBJ1});
  std::fprintf(stream, "          IGMAX : %-6d        DOBJ2 : %g\n", ToInt(block.m_nIGMAX),
               double{block.m_fDOBJ2});
  std::fprintf(stream, "          JTMAX : %-6d          DX1 : %g\n", ToInt(block.m_nJTMAX),
               double{block.m_fDX1});
  std::fprintf(stream, "         ITRMST : %-6d          DX2 : %g\n", ToInt(block.m_nITRMST),
               double{block.m_fDX2});
  std::fprintf(stream, "         JPRINT : %-6d         FDCH : %g\n", ToInt(block.m_nJPRINT),
               double{block.m_fFDCH});
  std::fprintf(stream, "         IPRNT1 : %-6d        FDCHM : %g\n", ToInt(block.m_nIPRNT1),
               double{block.m_fFDCHM});
  std::fprintf(stream, "         IPRNT2 : %-6d       RMVLMZ : %g\n", ToInt(block.m_nIPRNT2),
               double{block.m_fRMVLMZ});
  std::fprintf(stream, "                               DABSTR : %g\n", double{block.m_fDABSTR});
  std::fprintf(stream, "                               DELSTR : %g\n", double{block.m_fDELSTR});
}

void PrintGradientTask(std::FILE* stream, const CTask& task) {
  const CDGOControl& block = task.m_DGO;
  PrintMethod(stream, task, block);
  PrintGradients(stream, block);
  PrintOptimisation(stream, task, block);
  PrintLibraryParameters(stream, block);
}

void PrintApproximations(std::FILE* stream, const CRSAControl& block) {
  // Where the user's points are the initial design, their number is what the sub-model holds.
  const int userPoints = block.m_nInitialDOE == kUserDefined ? ToInt(block.m_nSubModel) : 0;
  std::fprintf(stream, "----------------------- Response Surface Parameters\n");
  std::fprintf(stream, "      Minimum Number of Design Points : %d\n", ToInt(block.m_nMinPoints));
  std::fprintf(stream, "      Maximum Number of Design Points : %d\n", ToInt(block.m_nMaxPoints));
  std::fprintf(stream, "          User-Supplied Design Points : %d\n", userPoints);
  std::fprintf(stream, "          Order of the Approximations : %s\n",
               kestdb::OrderWord(block.m_nOrder));
  std::fprintf(stream, "              Generate Initial Points : %s\n",
               kestdb::InitialDesignWord(block.m_nInitialDOE));
}

void PrintMoveLimits(std::FILE* stream, const CRSAControl& block) {
  std::fprintf(stream, "     Initial Rel. Move Limit (Linear) : %g\n",
               double{block.m_fMoveRelLinear});
  std::fprintf(stream, "      Initial Rel. Move Limit (Mixed) : %g\n",
               double{block.m_fMoveRelMixed});
  std::fprintf(stream, "  Initial Rel. Move Limit (Quadratic) : %g\n",
               double{block.m_fMoveRelQuad});
  std::fprintf(stream, "     Abs. Minimum Move Limit (Linear) : %g\n",
               double{block.m_fMoveAbsLinear});
  std::fprintf(stream, "      Abs. Minimum Move Limit (Mixed) : %g\n",
               double{block.m_fMoveAbsMixed});
  std::fprintf(stream, "  Abs. Minimum Move Limit (Quadratic) : %g\n",
               double{block.m_fMoveAbsQuad});
}

void PrintTolerances(std::FILE* stream, const CRSAControl& block) {
  std::fprintf(stream, " Number of iterations for convergence : %d\n", ToInt(block.m_nConvIters));
  std::fprintf(stream, "  Relative Hard Convergence Tolerance : %g\n", double{block.m_fHardRel});
  std::fprintf(stream, "  Absolute Hard Convergence Tolerance : %g\n", double{block.m_fHardAbs});
  std::fprintf(stream, "  Relative Soft Convergence Tolerance : %g\n",
               double{block.m_fSoftRelApprox});
  std::fprintf(stream, "  Absolute Soft Convergence Tolerance : %g\n",
               double{block.m_fSoftAbsApprox});
}

void PrintSurfaceTask(std::FILE* stream, const CTask& task) {
  const CRSAControl& block = task.m_RSA;
  PrintMethod(stream, task, block);
  PrintOptimisation(stream, task, block);
  PrintApproximations(stream, block);
  PrintMoveLimits(stream, block);
  PrintTolerances(stream, block);
  if (block.m_nOrder == kStepwise) {
    kestdb::PrintPValues(stream, double{block.m_fPEnter}, double{block.m_fPRemove});
  }
}

/// The number of points of a design. The user's points of today need not be those that the task was
/// made with: where they are the design, the task's own count is the number.
int DesignPoints(const CTask& task) {
  if (task.m_DOE.m_nMethod == kUserDefined) return ToInt(task.m_uNumPoints);
  return task.m_DOE.GetDOEPointCnt(nullptr, ToInt(task.m_uNumIndDV));
}

void PrintDesign(std::FILE* stream, const CTask& task) {
  const CDOEControl& block = task.m_DOE;
  const bool known = block.m_nMethod >= 0 && block.m_nMethod < CDOEControl::m_nNUM_METHODS - 1;
  std::fprintf(stream, "                           DOE Method : %s\n",
               kestdb::DesignWord(block.m_nMethod));
  if (known) {
    std::fprintf(stream, "                           DOE Option : %d\n", block.GetOption());
  }
  std::fprintf(stream, "                        Screen Points : %s\n", FlagWord(block.m_nFilter));
  if (known) {
    std::fprintf(stream, "              Number of Design Points : %d\n", DesignPoints(task));
  }
}

void PrintRetainedPoints(std::FILE* stream, const CDOEControl& block) {
  if (block.m_nDOptimal == 0) return;
  if (block.m_nRetained == 0) {
    std::fprintf(stream, "            Number of Retained Points : All\n");
  } else {
    std::fprintf(stream, "            Number of Retained Points : %d\n", ToInt(block.m_nRetained));
  }
}

void PrintDesignTask(std::FILE* stream, const CTask& task) {
  std::fprintf(stream, "----------------------- DOE Parameters\n");
  PrintDesign(stream, task);
  PrintRetainedPoints(stream, task.m_DOE);
  std::fprintf(stream, "                             DOE Task : %s\n",
               kestdb::DesignTaskWord(task.m_DOE.m_nTask));
  std::fprintf(stream, "       Generated Approximation Models : %s\n",
               kestdb::ModelWord(task.m_DOE.m_nModel));
}

/// What a search for a single best design is told, which NSGA-II isn't.
void PrintSearch(std::FILE* stream, const CNGOControl& block) {
  std::fprintf(stream, "         Minimum Number of Iterations : %d\n", ToInt(block.m_nMinIters));
  std::fprintf(stream, "  Number of Iterations to Convergence : %d\n", ToInt(block.m_nConvIters));
  PrintObjective(stream, block.m_nMinimize == 1);
  std::fprintf(stream, "                Use Fixed Random Seed : %s\n",
               FlagWord(block.m_nFixedSeed));
  if (block.m_nFixedSeed != 0) {
    std::fprintf(stream, "                    Fixed Random Seed : %d\n", ToInt(block.m_nSeed));
  }
  std::fprintf(stream, "  Absolute Hard Convergence Criterion : %g\n", double{block.m_fHardAbs});
  std::fprintf(stream, "  Relative Hard Convergence Criterion : %g\n", double{block.m_fHardRel});
  std::fprintf(stream, "  Absolute Soft Convergence Criterion : %g\n", double{block.m_fSoftAbs});
  std::fprintf(stream, "  Relative Soft Convergence Criterion : %g\n", double{block.m_fSoftRel});
}

void PrintSwarm(std::FILE* stream, const CNGOControl& block) {
  const char* start = block.m_nStart == 10             ? "Random"
                      : block.m_nStart == kUserDefined ? "User Defined"
                                                       : "Unknown";
  std::fprintf(stream, "                    Starting Strategy : %s\n", start);
  std::fprintf(stream, "             Inertia Weight Parameter : %g\n", double{block.m_fInertia});
  std::fprintf(stream, "                    Trust Parameter 1 : %g\n", double{block.m_fTrust1});
  std::fprintf(stream, "                    Trust Parameter 2 : %g\n", double{block.m_fTrust2});
}

void PrintProbabilities(std::FILE* stream, double crossOver, double mutation) {
  std::fprintf(stream, " Probability of Performing Cross-Over : %g\n", crossOver);
  std::fprintf(stream, "   Probability of Performing Mutation : %g\n", mutation);
}

void PrintGenetic(std::FILE* stream, const CNGOControl& block) {
  std::fprintf(stream, "                      Cross-Over Type : %s\n",
               kestdb::CrossOverWord(block.m_nCrossType));
  PrintProbabilities(stream, double{block.m_fCrossProb}, double{block.m_fMutProb});
}

void PrintNSGA(std::FILE* stream, const CNGOControl& block) {
  PrintProbabilities(stream, double{block.m_fNSGACrossProb}, double{block.m_fNSGAMutProb});
  std::fprintf(stream, "    Distribution Index for Cross-Over : %d\n", ToInt(block.m_nCrossIndex));
  std::fprintf(stream, "      Distribution Index for Mutation : %d\n", ToInt(block.m_nMutIndex));
  std::fprintf(stream, "                          Random Seed : %g\n",
               double{block.m_fSeedFraction});
}

void PrintNonGradientTask(std::FILE* stream, const CTask& task) {
  const CNGOControl& block = task.m_NGO;
  std::fprintf(stream, "----------------------- Non-Gradient Based Optimization Parameters\n");
  std::fprintf(stream, "                  Optimization Method : %s\n",
               kestdb::WordFor(block.m_nMethod,
                               {"Particle Swarm Optimization (PSO)", "Genetic Algorithm (GA)",
                                "Non-Dominated Sorting Genetic Algorithm II (NSGAII)"}));
  std::fprintf(stream, "        Violated Constraint Tolerance : %g\n", double{block.m_fCTMIN});
  std::fprintf(stream, "                      Population Size : %d\n", ToInt(block.m_nPopulation));
  std::fprintf(stream, "         Maximum Number of Iterations : %d\n", ToInt(block.m_nMaxIters));
  if (block.m_nMethod != kNSGA) PrintSearch(stream, block);
  if (block.m_nMethod == kSwarm) PrintSwarm(stream, block);
  if (block.m_nMethod == kGenetic) PrintGenetic(stream, block);
  if (block.m_nMethod == kNSGA) PrintNSGA(stream, block);
}

/// Tells, in a task with random variables, how it samples them.
template <class Block>
void PrintProbabilistic(std::FILE* stream, const CTask& task, const Block& block) {
  if (task.m_uNumRandDV == 0) return;
  std::fprintf(stream, "----------------------- Probabilistic Analysis Parameters\n");
  std::fprintf(stream, "        Probabilistic Analysis Method : %s\n",
               kestdb::RandomMethodWord(block.m_nRandomMethod));
  if (block.m_nRandomPoints >= 0) {
    std::fprintf(stream, "          Number of Simulation Points : %d\n",
                 ToInt(block.m_nRandomPoints));
  }
  if (task.m_nType == 4) {
    // Kept: misspelled where a task only analyses.
    std::fprintf(stream, "                Save Simulation Pints : %s\n",
                 FlagWord(block.m_nSavePoints));
  } else {
    std::fprintf(stream, "               Save Simulation Points : %s\n",
                 FlagWord(block.m_nSavePoints));
  }
  std::fprintf(stream, "Use Random Seed for Simulation Points : %s\n",
               FlagWord(block.m_nRandomSeed));
}

}  // namespace

const char* kestdb::TaskHeading(const CTask& task) {
  if (task.m_nType == 0 && !IsConstrained(task)) return "Nonlinear, Unconstrained Optimization";
  return WordFor(
      task.m_nType,
      {"Nonlinear, Constrained Optimization", "Response Surface Approximate Optimization",
       "Design of Experiments", "Non-Gradient Based Optimization", "Single Analysis Only Task"});
}

void kestdb::PrintSettings(std::FILE* stream, const CTask& task) {
  switch (task.m_nType) {
    case 0:
      PrintGradientTask(stream, task);
      PrintProbabilistic(stream, task, task.m_DGO);
      break;
    case 1:
      PrintSurfaceTask(stream, task);
      PrintProbabilistic(stream, task, task.m_RSA);
      break;
    case 2:
      PrintDesignTask(stream, task);
      PrintProbabilistic(stream, task, task.m_DOE);
      break;
    case 3:
      PrintNonGradientTask(stream, task);
      PrintProbabilistic(stream, task, task.m_NGO);
      break;
    case 4:
      PrintProbabilistic(stream, task, task.m_ANL);
      break;
    default:
      break;
  }
}
