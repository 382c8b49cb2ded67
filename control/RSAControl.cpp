#include "control/RSAControl.h"

#include "control/CommonRules.h"
#include "control/ControlBlockImpl.h"
#include "store/report.h"

template class vbControlBlock<CRSAControl>;

bool CRSAControl::CheckMaxMinPoints(int nVars) {
  const long n = nVars;
  const long pairs = n * (n - 1) / 2;
  if (m_nHasMinPoints == 0) m_nMinPoints = n + 2;
  if (m_nHasMaxPoints != 0) return true;
  switch (m_nOrder) {
    case 0:
    case 4:
      m_nMaxPoints = n + 101;
      return true;
    case 1:
      m_nMaxPoints = n + pairs + 101;
      return true;
    case 2:
      m_nMaxPoints = 2 * n + 101;
      return true;
    case 3:
      m_nMaxPoints = pairs + 2 * n + 101;
      return true;
    default:
      LError("(Design Control): Invalid DOE model.\n");
      m_nMaxPoints = 100;
      return false;
  }
}

using kestdb::ToInt;

namespace {

void CheckPointLimits(kestdb::Rules& rules, const CRSAControl& block, int userPoints) {
  constexpr int userDefined = 11;
  const int least = ToInt(block.m_nMinPoints);
  const int most = ToInt(block.m_nMaxPoints);
  const long needed = long{userPoints} + block.m_nConvIters;
  if (least < 1) {
    rules.Fail();
    LError("(Design Control): Minimum number of design points (%d) to evaluate", least);
    LPrint("     must be greater than 0.\n\n");
  } else if (least > most) {
    rules.Fail();
    LError("(Design Control): Minimum number of design points (%d) to evaluate is greater", least);
    LPrint("     than the maximum number of design points (%d) for RSA.\n\n", most);
  } else if (most < 1) {
    rules.Fail();
    LError("(Design Control): Maximum number of design points (%d) to evaluate for RSA", most);
    LPrint("     must be greater than 0.\n\n");
  } else if (block.m_nInitialDOE == userDefined && needed > most) {
    rules.Fail();
    LError("(Design Control): Maximum number of design points (%d)", most);
    LPrint("     to evaluate for RSA must be equal or greater than the number of user\n");
    LPrint("     supplied design points plus the number of iterations to convergence (%d).\n\n",
           static_cast<int>(needed));
  }
}

void CheckHardConvergence(kestdb::Rules& rules, const CRSAControl& block) {
  rules.NotBelow(block.m_fDABOBJ, 0,
                 "(Design Control): The ZEF absolute hard convergence criterion (DABOBJ=%g)",
                 "     should be larger than or equal to 0.\n\n");
  rules.NotBelow(block.m_fDELOBJ, 0,
                 "(Design Control): The ZEF relative hard convergence criterion (DELOBJ=%g) should",
                 "      be larger than or equal to 0.\n\n");
}

void CheckApproximateProblem(kestdb::Rules& rules, const CRSAControl& block) {
  constexpr const char* positive = "     larger than 0.\n\n";
  rules.Above(block.m_nConvIters, 0,
              "(Design Control): The number of approximate iterations to convergence (%d)",
              "     should be larger than 0.\n\n");
  rules.Above(block.m_fHardRel, 0,
              "(Design Control): The relative hard convergence criterion (%g) should be", positive);
  rules.Above(block.m_fHardAbs, 0,
              "(Design Control): The absolute hard convergence criterion (%g) should be", positive);
  rules.Above(block.m_fSoftRelApprox, 0,
              "(Design Control): The relative soft convergence criterion (%g) should be", positive);
  rules.Above(block.m_fSoftAbsApprox, 0,
              "(Design Control): The absolute soft convergence criterion (%g) should be", positive);
  rules.Above(block.m_fMoveRelLinear, 0,
              "(Design Control): The relative linear move limit (%g) should be", positive);
  rules.Above(block.m_fMoveRelMixed, 0,
              "(Design Control): The relative mixed move limit (%g) should be", positive);
  rules.Above(block.m_fMoveRelQuad, 0,
              "(Design Control): The relative quadratic move limit (%g) should be", positive);
  rules.Above(block.m_fMoveAbsLinear, 0,
              "(Design Control): The absolute linear move limit (%g) should be", positive);
  rules.Above(block.m_fMoveAbsMixed, 0,
              "(Design Control): The absolute mixed move limit (%g) should be", positive);
  rules.Above(block.m_fMoveAbsQuad, 0,
              "(Design Control): The absolute quadratic move limit (%g) should be", positive);
  rules.Above(block.m_fPEnter, 0,
              "(Design Control): The p-value of terms to enter the model (%g) should be", positive);
  rules.Above(block.m_fPRemove, 0,
              "(Design Control): The p-value of terms to be removed from the model (%g) should be",
              positive);
}

}  // namespace

bool CRSAControl::CheckParams(bool, bool, int nVars, int, int nUserPoints, int nRandom) {
  kestdb::Rules rules(CheckMaxMinPoints(nVars));
  CheckPointLimits(rules, *this, nUserPoints);
  CheckPrintingAndTolerances(rules, *this);
  CheckHardConvergence(rules, *this);
  CheckSoftConvergence(rules, m_fSoftRelApprox, m_fSoftAbsApprox);
  CheckMethodsAndIterations(rules, *this);
  CheckPenalties(rules, *this);
  CheckApproximateProblem(rules, *this);
  if (nRandom >= 1) {
    CheckAnyRandomAnalysis(
        rules, *this, "(Design Control): The random analysis method used with response surface\n",
        "     approximate based optimization should be either Monte Carlo Sampling, \n",
        "     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n",
        "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n");
  }
  return rules.AllHold();
}
