#include "control/ANLControl.h"

#include "control/CommonRules.h"
#include "control/ControlBlockImpl.h"

template class vbControlBlock<CANLControl>;

bool CANLControl::CheckParams(bool, bool, int, int, int, int nRandom) const {
  kestdb::Rules rules;
  if (nRandom < 1) return true;
  rules.OneOf(m_nRandomMethod, {0, 1},
              "(Design Control): The random analysis method should be either\n",
              "     Monte Carlo Sampling or Latin Hypercube Sampling.\n\n");
  CheckRandomPoints(rules, *this);
  CheckSavePoints(rules, *this);
  return rules.AllHold();
}
