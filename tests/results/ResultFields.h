#pragma once

#include <gtest/gtest.h>

#include <valarray>
#include <vector>

#include "results/Result.h"

// Results for tests.

/// A result with a value of its own in every field.
inline CResult FilledResult(POD* pod) {
  CResult result(pod);
  result.m_nID = 7;
  result.m_nNumPoints = 258;
  result.m_nTotalPoints = 259;
  result.m_nEngineWord1 = -2;
  result.m_nAnalysisCalls = 11;
  result.m_nGradientRequests = 12;
  result.m_nBestIter = 13;
  result.m_nBestSubIter = 14;
  result.m_fBestObjective = -2.5;
  result.m_fWorstConstraint = 0.125;
  result.m_strLastMessage = "end";
  result.m_nRunStatus = 2;
  result.m_nStopCode = 15;
  result.m_nBestSubTask = 16;
  result.m_nEngineWord2 = 17;
  result.m_nEngineWord3 = 18;
  result.m_strStarted = "Mon";
  result.m_strStopped = "Tue!";
  for (std::size_t i = 0; i < 20; ++i) result.m_fTimes[i] = 1.0 + static_cast<double>(i);
  result.m_EngineArray1 = {19, -20, 21};
  result.m_EngineArray2 = {0.1, -1.0};
  result.m_EngineArray3 = {22};
  result.m_nEngineWord4 = 23;
  return result;
}

template <class Element>
std::vector<Element> ListOf(const std::valarray<Element>& values) {
  return {begin(values), end(values)};
}

inline void ExpectSameFields(const CResult& result, const CResult& expected) {
  EXPECT_EQ(result.m_nID, expected.m_nID);
  EXPECT_EQ(result.m_nNumPoints, expected.m_nNumPoints);
  EXPECT_EQ(result.m_nTotalPoints, expected.m_nTotalPoints);
  EXPECT_EQ(result.m_nEngineWord1, expected.m_nEngineWord1);
  EXPECT_EQ(result.m_nAnalysisCalls, expected.m_nAnalysisCalls);
  EXPECT_EQ(result.m_nGradientRequests, expected.m_nGradientRequests);
  EXPECT_EQ(result.m_nBestIter, expected.m_nBestIter);
  EXPECT_EQ(result.m_nBestSubIter, expected.m_nBestSubIter);
  EXPECT_EQ(result.m_fBestObjective, expected.m_fBestObjective);
  EXPECT_EQ(result.m_fWorstConstraint, expected.m_fWorstConstraint);
  EXPECT_EQ(result.m_strLastMessage, expected.m_strLastMessage);
  EXPECT_EQ(result.m_nRunStatus, expected.m_nRunStatus);
  EXPECT_EQ(result.m_nStopCode, expected.m_nStopCode);
  EXPECT_EQ(result.m_nBestSubTask, expected.m_nBestSubTask);
  EXPECT_EQ(result.m_nEngineWord2, expected.m_nEngineWord2);
  EXPECT_EQ(result.m_nEngineWord3, expected.m_nEngineWord3);
  EXPECT_EQ(result.m_strStarted, expected.m_strStarted);
  EXPECT_EQ(result.m_strStopped, expected.m_strStopped);
  EXPECT_EQ(result.m_fTimes, expected.m_fTimes);
  EXPECT_EQ(ListOf(result.m_EngineArray1), ListOf(expected.m_EngineArray1));
  EXPECT_EQ(ListOf(result.m_EngineArray2), ListOf(expected.m_EngineArray2));
  EXPECT_EQ(ListOf(result.m_EngineArray3), ListOf(expected.m_EngineArray3));
  EXPECT_EQ(result.m_nEngineWord4, expected.m_nEngineWord4);
}
