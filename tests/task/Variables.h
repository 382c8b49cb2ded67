#pragma once

#include <iterator>
#include <string>
#include <valarray>
#include <vector>

#include "results/DPoint.h"
#include "task/DVar.h"
#include "tests/task/Definitions.h"

// The tables of variables that task 7 makes of a study.

template <class Value>
std::vector<Value> AsList(const std::valarray<Value>& values) {
  return {std::begin(values), std::end(values)};
}

inline void ExpectSameBounds(const CDVar& vars, const CDVar& expected) {
  EXPECT_EQ(AsList(vars.m_vfIndLowerIn), AsList(expected.m_vfIndLowerIn));
  EXPECT_EQ(AsList(vars.m_vfIndLower), AsList(expected.m_vfIndLower));
  EXPECT_EQ(AsList(vars.m_vfIndUpperIn), AsList(expected.m_vfIndUpperIn));
  EXPECT_EQ(AsList(vars.m_vfIndUpper), AsList(expected.m_vfIndUpper));
  EXPECT_EQ(AsList(vars.m_vfIndScale), AsList(expected.m_vfIndScale));
  EXPECT_EQ(AsList(vars.m_vfLinkLower), AsList(expected.m_vfLinkLower));
  EXPECT_EQ(AsList(vars.m_vfLinkUpper), AsList(expected.m_vfLinkUpper));
  EXPECT_EQ(AsList(vars.m_vfSynLower), AsList(expected.m_vfSynLower));
  EXPECT_EQ(AsList(vars.m_vfSynUpper), AsList(expected.m_vfSynUpper));
  EXPECT_EQ(AsList(vars.m_vfConstLower), AsList(expected.m_vfConstLower));
  EXPECT_EQ(AsList(vars.m_vfConstUpper), AsList(expected.m_vfConstUpper));
}

inline void ExpectSameArguments(const CDVar& vars, const CDVar& expected) {
  EXPECT_EQ(vars.m_vnLinkRef, expected.m_vnLinkRef);
  EXPECT_EQ(vars.m_vnSynRef, expected.m_vnSynRef);
  EXPECT_EQ(vars.m_mnLinkSubj, expected.m_mnLinkSubj);
  EXPECT_EQ(vars.m_mnLinkType, expected.m_mnLinkType);
  EXPECT_EQ(vars.m_mnSynSubj, expected.m_mnSynSubj);
  EXPECT_EQ(vars.m_mnSynType, expected.m_mnSynType);
  EXPECT_EQ(vars.m_mnSynLen, expected.m_mnSynLen);
}

/// Every field but the ID.
inline void ExpectSameVariables(const CDVar& vars, const CDVar& expected) {
  EXPECT_EQ(vars.m_vnSeq, expected.m_vnSeq);
  EXPECT_EQ(vars.m_vnType, expected.m_vnType);
  EXPECT_EQ(vars.m_vnIndIDs, expected.m_vnIndIDs);
  EXPECT_EQ(vars.m_vnLinkIDs, expected.m_vnLinkIDs);
  EXPECT_EQ(vars.m_vnSynIDs, expected.m_vnSynIDs);
  EXPECT_EQ(vars.m_vnConstIDs, expected.m_vnConstIDs);
  ExpectSameBounds(vars, expected);
  EXPECT_EQ(vars.m_vstrIndName, expected.m_vstrIndName);
  EXPECT_EQ(vars.m_vstrLinkName, expected.m_vstrLinkName);
  EXPECT_EQ(vars.m_vstrSynName, expected.m_vstrSynName);
  EXPECT_EQ(vars.m_vstrConstName, expected.m_vstrConstName);
  EXPECT_EQ(AsList(vars.m_vnConstSet), AsList(expected.m_vnConstSet));
  ExpectSameArguments(vars, expected);
  EXPECT_EQ(vars.m_vnDiscreteRef, expected.m_vnDiscreteRef);
  EXPECT_EQ(vars.m_vnRandIndex, expected.m_vnRandIndex);
  EXPECT_EQ(vars.m_vnRandParam, expected.m_vnRandParam);
  EXPECT_EQ(vars.m_vnRandDist, expected.m_vnRandDist);
}

class Variables : public Definitions {
 protected:
  struct Counts {
    int independent = 0;
    int linked = 0;
    int synthetic = 0;
    int constant = 0;
    int random = 0;
  };

  /// The table of variables that task 7 makes.
  CDVar Make(const Counts& counts, const std::vector<int>& ids) {
    Task().SetupDVar(counts.independent, counts.linked, counts.synthetic, counts.constant,
                     counts.random, ids);
    return Stored<CDVar>();
  }

  /// What all variables are expected to be where a test says nothing else.
  CDVar Expected() { return CDVar(study.Pod()); }

  CDPoint FirstPoint() {
    CDPoint point(study.Pod());
    point.m_nTaskID = 7;
    point.m_nPointID = 0;
    EXPECT_TRUE(point.GetObject());
    return point;
  }

  void ExpectNothingMade() {
    EXPECT_FALSE(IsStored<CDVar>());
    EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 0);
  }
};
