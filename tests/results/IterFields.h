#pragma once

#include <gtest/gtest.h>

#include "results/Iter.h"
#include "tests/results/ResultFields.h"

// Iterations for tests.

inline CIter IterOf(int task, int number, int subIter, POD* pod = nullptr) {
  CIter iter(pod);
  iter.m_nTaskID = task;
  iter.m_nIter = number;
  iter.m_nSubIter = subIter;
  return iter;
}

/// An iteration with a value of its own in every field.
inline CIter FilledIter(POD* pod) {
  CIter iter = IterOf(7, 258, 3, pod);
  iter.m_nThisPoint = 4;
  iter.m_nBestPoint = -5;
  iter.m_fBestObjective = -2.5;
  iter.m_fBestConstraint = 0.125;
  iter.m_fThisObjective = 1.0;
  iter.m_fThisConstraint = 0.1;
  iter.m_ParetoPoints = {19, -20, 21};
  iter.m_ParetoValues = {4.0, 5.0};
  return iter;
}

inline void ExpectSameFields(const CIter& iter, const CIter& expected) {
  EXPECT_EQ(iter.m_nTaskID, expected.m_nTaskID);
  EXPECT_EQ(iter.m_nIter, expected.m_nIter);
  EXPECT_EQ(iter.m_nSubIter, expected.m_nSubIter);
  EXPECT_EQ(iter.m_nThisPoint, expected.m_nThisPoint);
  EXPECT_EQ(iter.m_nBestPoint, expected.m_nBestPoint);
  EXPECT_EQ(iter.m_fBestObjective, expected.m_fBestObjective);
  EXPECT_EQ(iter.m_fBestConstraint, expected.m_fBestConstraint);
  EXPECT_EQ(iter.m_fThisObjective, expected.m_fThisObjective);
  EXPECT_EQ(iter.m_fThisConstraint, expected.m_fThisConstraint);
  EXPECT_EQ(ListOf(iter.m_ParetoPoints), ListOf(expected.m_ParetoPoints));
  EXPECT_EQ(ListOf(iter.m_ParetoValues), ListOf(expected.m_ParetoValues));
}
