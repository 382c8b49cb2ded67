#pragma once

#include <gtest/gtest.h>

#include <valarray>
#include <vector>

#include "results/DPoint.h"
#include "results/Result.h"
#include "task/Task.h"
#include "tests/support/Study.h"

using Values = std::vector<double>;

inline Values ValuesOf(const std::valarray<double>& values) {
  return {std::begin(values), std::end(values)};
}

/// A study with task 7, which has a result but no points yet.
class StartingPoints : public testing::Test {
 protected:
  StartingPoints() {
    task.m_nID = 7;
    StoreResult(7);
  }

  void StoreResult(int id) {
    CResult result(study.Pod());
    result.m_nID = id;
    result.m_nNumPoints = 41;
    result.m_nTotalPoints = 42;
    result.m_nBestIter = 43;
    result.PutObject();
  }
  /// The numbers of points that the result of task 7 tells.
  std::pair<long, long> Counts() {
    CResult result(study.Pod());
    result.m_nID = 7;
    EXPECT_TRUE(result.GetObject());
    EXPECT_EQ(result.m_nBestIter, 43);
    return {result.m_nNumPoints, result.m_nTotalPoints};
  }
  static std::pair<long, long> Same(long count) { return {count, count}; }

  CDPoint Point(int number) {
    CDPoint point(study.Pod());
    point.m_nTaskID = 7;
    point.m_nPointID = number;
    EXPECT_TRUE(point.GetObject()) << number;
    return point;
  }
  /// Of all tasks.
  long CountPoints() { return CDPoint(study.Pod()).CountObjects(); }

  Study study;
  CTask task{study.Pod()};
};
