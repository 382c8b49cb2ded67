// Private to the library, not installed.
#pragma once

#include "control/Rules.h"

// The rules that several control blocks share, on fields of the same name.

namespace kestdb {

template <class Block>
void CheckPrintingAndTolerances(Rules& rules, const Block& block) {
  rules.Between(block.m_nIPRINT, 0, 7,
                "(Design Control): The ZEF print level (IPRINT=%d) should be larger than or equal",
                "     to 0 (no output) or less than or equal to 7 (debug output).\n\n");
  rules.OneOf(block.m_nMINMAX, {0, 1},
              "(Design Control): The ZEF minimize flag (MINMAX=%d) should be",
              "      either FALSE=0 or TRUE=1.\n\n");
  rules.NotAbove(block.m_fCT, 0, "(Design Control): The ZEF constraint tolerance (CT=%g) should be",
                 "     less than or equal to 0.\n\n");
  rules.NotBelow(block.m_fCTMIN, 0,
                 "(Design Control): The ZEF violated constraint tolerance (CTMIN=%g) should be",
                 "      larger than or equal to 0.\n\n");
}

inline void CheckSoftConvergence(Rules& rules, const vbFLOAT64& relative,
                                 const vbFLOAT64& absolute) {
  rules.NotBelow(relative, 0,
                 "(Design Control): The ZEF relative soft convergence criterion (%g) should be",
                 "     larger than or equal to 0.\n\n");
  rules.NotBelow(absolute, 0,
                 "(Design Control): The ZEF absolute soft convergence criterion (%g) should be",
                 "     larger than or equal to 0.\n\n");
}

template <class Block>
void CheckMethodsAndIterations(Rules& rules, const Block& block) {
  rules.OneOf(block.m_nMETHOD, {0, 2, 3, 4},
              "(Design Control): The ZEF constrained method (METHOD=%d) should be",
              "     equal to 0 (MMFD), 2 (SLP), 3 (SQP) or 4 (MEGZEF).\n\n");
  rules.OneOf(block.m_nUncMETHOD, {0, 2, 4},
              "(Design Control): The ZEF unconstrained method (METHOD=%d) should be",
              "     equal to 0 (BFGS), 2 (FR) or 4(MEGZEF).\n\n");
  rules.NotBelow(block.m_nISCAL, -1,
                 "(Design Control): The ZEF design variable scale value (ISCAL=%d) should be",
                 "     larger than or equal to -1.\n\n");
  rules.NotBelow(block.m_nITMAX, 0,
                 "(Design Control): The ZEF maximum number of iterations (ITMAX=%d) should be ",
                 "     larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_nJTMAX, 0,
                 "(Design Control): The ZEF maximum number of sub-iterations (JTMAX=%d) should be",
                 "     larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_nITRMOP, 0,
                 "(Design Control): The ZEF number of iterations to convergence (ITRMOP=%d)",
                 "     should be larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_nITRMST, 0,
                 "(Design Control): The ZEF number of sub-iterations to convergence (ITRMST=%d)",
                 "     should be larger than or equal to 0.\n\n");
}

template <class Block>
void CheckPenalties(Rules& rules, const Block& block) {
  rules.NotBelow(block.m_fPENALT, 0,
                 "(Design Control): The MEGZEF continuous penalty parameter (PENALT=%d) should be",
                 "     larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_fPMULT, 0,
                 "(Design Control): The MEGZEF continuous penalty multiplier (PMULT=%d) should be",
                 "     larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_fPENLTD, 0,
                 "(Design Control): The MEGZEF discrete penalty parameter (PENLTD=%d) should be",
                 "     larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_fPMULTD, 0,
                 "(Design Control): The MEGZEF discrete penalty multiplier (PMULTD=%d) should be",
                 "     larger than or equal to 0.\n\n");
}

template <class Block>
void CheckRandomPoints(Rules& rules, const Block& block) {
  rules.NotBelow(block.m_nRandomPoints, 1,
                 "(Design Control): The number of simulation points for a random analysis\n",
                 "     should be greater than 0.\n\n");
}

template <class Block>
void CheckSavePoints(Rules& rules, const Block& block) {
  rules.OneOf(block.m_nSavePoints, {0, 1}, "(Design Control): The save simulation points flag (%d)",
              "     should be either FALSE=0 or TRUE=1.\n\n");
}

/// The rules of a random analysis that may be any of the five; `first` and `rest` name the faulty
/// method.
template <class Block, class... Lines>
void CheckAnyRandomAnalysis(Rules& rules, const Block& block, const char* first, Lines... rest) {
  constexpr int meanValue = 2;  // the one method without simulation points
  rules.Between(block.m_nRandomMethod, 0, 4, first, rest...);
  const bool legal = block.m_nRandomMethod >= 0 && block.m_nRandomMethod <= 4;
  if (legal && block.m_nRandomMethod != meanValue) CheckRandomPoints(rules, block);
  CheckSavePoints(rules, block);
}

}  // namespace kestdb
