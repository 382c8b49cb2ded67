#pragma once

#include <gtest/gtest.h>

#include <array>
#include <valarray>
#include <vector>

#include "results/DPoint.h"

// Design points for tests.

using PointValues = std::vector<double>;

/// The seven arrays of a point in the order of its record.
inline std::array<std::valarray<double>*, 7> ArraysOf(CDPoint& point) {
  return {&point.m_IDVar, &point.m_LDVar, &point.m_SDVar, &point.m_CDVar,
          &point.m_IResp, &point.m_LResp, &point.m_SResp};
}
inline std::array<const std::valarray<double>*, 7> ArraysOf(const CDPoint& point) {
  return {&point.m_IDVar, &point.m_LDVar, &point.m_SDVar, &point.m_CDVar,
          &point.m_IResp, &point.m_LResp, &point.m_SResp};
}

inline std::valarray<double> Values(const PointValues& values) {
  return {values.data(), values.size()};
}

inline CDPoint PointOf(int task, int number, int flag, const std::array<PointValues, 7>& arrays,
                       POD* pod = nullptr) {
  CDPoint point(pod);
  point.m_nTaskID = task;
  point.m_nPointID = number;
  point.m_nPointFlag = flag;
  for (std::size_t i = 0; i < arrays.size(); ++i) *ArraysOf(point)[i] = Values(arrays[i]);
  return point;
}

/// A point with a value of its own in every field.
inline CDPoint FilledPoint(POD* pod) {
  return PointOf(7, 258, -2,
                 {{{1.0, -2.0, 0.1}, {3.0}, {4.0, 5.0}, {6.0}, {7.0, 8.0}, {9.0}, {10.0, 11.0}}},
                 pod);
}

inline void ExpectSameFields(const CDPoint& point, const CDPoint& expected) {
  EXPECT_EQ(point.m_nTaskID, expected.m_nTaskID);
  EXPECT_EQ(point.m_nPointID, expected.m_nPointID);
  EXPECT_EQ(point.m_nPointFlag, expected.m_nPointFlag);
  for (std::size_t i = 0; i < 7; ++i) {
    SCOPED_TRACE(i);
    const std::valarray<double>& values = *ArraysOf(point)[i];
    const std::valarray<double>& others = *ArraysOf(expected)[i];
    EXPECT_EQ(PointValues(begin(values), end(values)), PointValues(begin(others), end(others)));
  }
}
