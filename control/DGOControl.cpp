#include "control/DGOControl.h"

#include "control/CommonRules.h"
#include "control/ControlBlockImpl.h"
#include "store/StringIO.h"

template class vbControlBlock<CDGOControl>;

unsigned long CDGOControl::StringFileLength(const std::string& text) {
  return kestdb::StringFileLength(text);
}

void CDGOControl::ReadString(POD* pod, std::string& text, vbINT32 address) try {
  kestdb::ReadString(kestdb::RequireDataFile(pod), text, address);
}
LOG_AND_RETHROW

void CDGOControl::WriteString(POD* pod, const std::string& text, vbINT32 address) const try {
  kestdb::WriteString(kestdb::RequireDataFile(pod), text, address);
}
LOG_AND_RETHROW

namespace {

constexpr const char* kNotNegative = "     should be larger than or equal to 0.\n\n";

void CheckConvergence(kestdb::Rules& rules, const CDGOControl& block) {
  rules.NotBelow(block.m_fDELOBJ, 0,
                 "(Design Control): The ZEF relative hard convergence criterion (DELOBJ=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fDABOBJ, 0,
                 "(Design Control): The ZEF absolute hard convergence criterion (DABOBJ=%g) should",
                 "      be larger than or equal to 0.\n\n");
  CheckSoftConvergence(rules, block.m_fSoftRel, block.m_fSoftAbs);
}

void CheckSteps(kestdb::Rules& rules, const CDGOControl& block) {
  rules.NotBelow(block.m_fDOBJ1, 0, "(Design Control): The ZEF DOBJ1 parameter (DOBJ1=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fDOBJ2, 0, "(Design Control): The ZEF DOBJ2 parameter (DOBJ2=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fDX1, 0, "(Design Control): The ZEF DX1 parameter (DX1=%g)", kNotNegative);
  rules.NotBelow(block.m_fDX2, 0, "(Design Control): The ZEF DX2 parameter (DX2=%g)", kNotNegative);
  rules.NotBelow(block.m_fFDCH, 0,
                 "(Design Control): The ZEF relative finite difference step size (FDCH=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fFDCHM, 0,
                 "(Design Control): The ZEF absolute finite difference step size (FDCHM=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fRMVLMZ, 0, "(Design Control): The ZEF RMVLMZ parameter (RMVLMZ=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fDABSTR, 0, "(Design Control): The ZEF DABSTR parameter (DABSTR=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_fDELSTR, 0, "(Design Control): The ZEF DELSTR parameter (DELSTR=%g)",
                 kNotNegative);
}

void CheckFlags(kestdb::Rules& rules, const CDGOControl& block) {
  rules.Between(block.m_nIGRAD, -1, 1,
                "(Design Control): The ZEF gradient flag (IGRAD=%g) should be",
                "     larger than or equal to -1 and less than or equal to 1.\n\n");
  rules.NotBelow(block.m_nNGMAX, 0, "(Design Control): The ZEF NGMAX parameter (NGMAX=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_nIGMAX, 0, "(Design Control): The ZEF IGMAX parameter (IGMAX=%g)",
                 kNotNegative);
  rules.NotBelow(block.m_nJPRINT, 0, "(Design Control): The ZEF JPRINT parameter (JPRINT=%g)",
                 kNotNegative);
  rules.Between(block.m_nIPRNT1, 0, 1,
                "(Design Control): The ZEF IPRNT1 parameter (IPRNT1=%g) should be",
                "     larger than or equal to 0 and less than or equal to 1.\n\n");
  rules.Between(block.m_nIPRNT2, 0, 2,
                "(Design Control): The ZEF IPRNT1 parameter (IPRNT2=%g) should be",
                "     larger than or equal to 0 and less than or equal to 2.\n\n");
  rules.Between(block.m_nStoreFD, 0, 1,
                "(Design Control): The ZEF save finite difference analyses flag (%d)",
                "     should be either FALSE=0 or TRUE=1.\n\n");
}

void CheckRandomAnalysis(kestdb::Rules& rules, const CDGOControl& block) {
  rules.OneOf(block.m_nRandomMethod, {0, 1, 2},
              "(Design Control): The random analysis method used with gradient \n",
              "     based optimization should be either Monte Carlo Sampling, \n",
              "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n");
  if (block.m_nRandomMethod == 0 || block.m_nRandomMethod == 1) CheckRandomPoints(rules, block);
  CheckSavePoints(rules, block);
}

}  // namespace

bool CDGOControl::CheckParams(bool, bool, int, int nRandom) const {
  kestdb::Rules rules;
  rules.Between(
      m_nSkip, 0, 4, "(Design Control): The gradient iteration skip count (%d) should be larger",
      "      than or equal to 0 (no skip) or less than or equal to 4 (agressive skip).\n\n");
  CheckPrintingAndTolerances(rules, *this);
  CheckConvergence(rules, *this);
  CheckMethodsAndIterations(rules, *this);
  CheckPenalties(rules, *this);
  CheckSteps(rules, *this);
  CheckFlags(rules, *this);
  if (nRandom >= 1) CheckRandomAnalysis(rules, *this);
  return rules.AllHold();
}
