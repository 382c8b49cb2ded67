#include "control/NGOControl.h"

#include "control/CommonRules.h"
#include "control/ControlBlockImpl.h"

template class vbControlBlock<CNGOControl>;

namespace {

void CheckProbability(kestdb::Rules& rules, const vbFLOAT64& value, const char* text) {
  rules.Between(value, 0, 1, text,
                "     larger than or equal to zero and less than or equal to 1.\n");
}

void CheckProbabilities(kestdb::Rules& rules, const vbFLOAT64& cross, const vbFLOAT64& mutation) {
  CheckProbability(rules, cross,
                   "(Design Control): The probability of performing cross-over (%g) must be");
  CheckProbability(rules, mutation,
                   "(Design Control): The probability of performing mutation (%g) must be");
}

void CheckGenetic(kestdb::Rules& rules, const CNGOControl& block, int vars, int discreteVars) {
  rules.OneOf(block.m_nCrossType, {0, 1},
              "(Design Control): The cross-over type (%d) must be set to",
              "     either Uniform=0 or TwoPoint=1.\n\n");
  CheckProbabilities(rules, block.m_fCrossProb, block.m_fMutProb);
  rules.Require(vars == discreteVars, vars,
                "(Design Control): All design variables must be either integer or discrete",
                "     when using a genetic algorithm.\n\n");
}

void CheckNSGA(kestdb::Rules& rules, const CNGOControl& block) {
  CheckProbabilities(rules, block.m_fNSGACrossProb, block.m_fNSGAMutProb);
  rules.Between(block.m_nCrossIndex, 1, 100,
                "(Design Control): The Distribution Index for cross-over (%d) must be",
                "     larger than zero and less than or equal to 100\n");
  rules.Between(block.m_nMutIndex, 1, 100,
                "(Design Control): The Distribution Index for mutation (%d) must be",
                "     larger than zero and less than or equal to 100.\n");
  rules.Require(block.m_fSeedFraction > 0.0 && block.m_fSeedFraction < 1.0, block.m_fSeedFraction,
                "(Design Control): The Random Seed (%g) must be",
                "     larger than zero and less than 1.\n");
  rules.Require(block.m_nPopulation % 2 == 0, block.m_nPopulation,
                "(Design Control): The Population Size (%d) must be", "     even number.\n");
}

void CheckSwarm(kestdb::Rules& rules, const CNGOControl& block, int userPoints) {
  constexpr const char* notNegative = "     larger than or equal to zero.\n";
  constexpr const char* tooFew = "(Design Control): Population size (%d) must be larger than 1.\n";
  rules.NotBelow(block.m_fInertia, 0, "(Design Control): The inertia weight parameter (%g) must be",
                 notNegative);
  rules.NotBelow(block.m_fTrust1, 0, "(Design Control): The first trust parameter (%g) must be",
                 notNegative);
  rules.NotBelow(block.m_fTrust2, 0, "(Design Control): The second trust paramter (%g) must be",
                 notNegative);
  if (block.m_nStart == 10) {
    rules.NotBelow(block.m_nPopulation, 2, tooFew, "     Current starting strategy is random.\n");
  } else if (block.m_nStart == 11) {
    rules.NotBelow(userPoints, 2, tooFew, "     Current starting strategy is user defined.\n");
  } else {
    rules.Require(false, block.m_nStart,
                  "(Design Control): Invalid starting strategy specified (%d).\n");
  }
}

void CheckIterations(kestdb::Rules& rules, const CNGOControl& block) {
  rules.NotBelow(
      block.m_nMaxIters, 1,
      "(Design Control): The maximum number of iterations (%d) must be larger than 0.\n");
  rules.NotBelow(
      block.m_nMinIters, 1,
      "(Design Control): The minimum number of iterations (%d) must be larger than 0.\n");
  if (block.m_nMinIters > block.m_nMaxIters) {
    rules.Fail();
    LError("(Design Control): The minimum number of iterations (%d) must be less than",
           static_cast<int>(long{block.m_nMinIters}));
    LPrint("     or equal to the maximum maximum number of iterations (%d).\n",
           static_cast<int>(long{block.m_nMaxIters}));
  }
  rules.OneOf(block.m_nFixedSeed, {0, 1},
              "(Design Control): The random number seed flag (%d) must be set to",
              "     either FALSE=0 or TRUE=1.\n\n");
  rules.NotBelow(block.m_nConvIters, 2,
                 "(Design Control): The number of iterations to convergence (%d",
                 "     must be larger than 1.\n\n");
}

void CheckConvergence(kestdb::Rules& rules, const CNGOControl& block) {
  constexpr const char* positive = "     larger than zero.\n\n";
  rules.NotBelow(block.m_fCTMIN, 0,
                 "(Design Control): The violated constraint tolerance (%g) must be",
                 "     larger than or equal to zero.\n\n");
  rules.Above(block.m_fHardAbs, 0,
              "(Design Control): The absolute hard convergence criterion (%g) must be", positive);
  rules.Above(block.m_fHardRel, 0,
              "(Design Control): The relative hard convergence criterion (%g) must be", positive);
  rules.Above(block.m_fSoftAbs, 0,
              "(Design Control): The absolute soft convergence criterion (%g) must be", positive);
  // Kept: the absolute criterion stands in for the relative one, which has no rule.
  rules.Above(block.m_fSoftAbs, 0,
              "(Design Control): The relative soft convergence criterion (%g) must be", positive);
}

}  // namespace

bool CNGOControl::CheckParams(bool, bool, int nVars, int, int nDiscreteVars, int nUserPoints,
                              int nRandom) const {
  kestdb::Rules rules;
  switch (m_nMethod) {
    case 0:
      CheckSwarm(rules, *this, nUserPoints);
      break;
    case 1:
      CheckGenetic(rules, *this, nVars, nDiscreteVars);
      break;
    case 2:
      CheckNSGA(rules, *this);
      break;
    default:
      rules.Require(false, m_nMethod,
                    "(Design Control): Invalid non-gradient optimization method (%d).\n");
  }
  CheckIterations(rules, *this);
  CheckConvergence(rules, *this);
  if (nRandom >= 1) {
    CheckAnyRandomAnalysis(
        rules, *this, "(Design Control): The random analysis method used with non-gradient\n",
        "     based optimization should be either Monte Carlo Sampling, \n",
        "     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n",
        "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n");
  }
  return rules.AllHold();
}
