#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/results/Summary.h"

// The words for the codes of a run in its summary.

namespace {

class SummaryCodes : public Summary {};

TEST_F(SummaryCodes, NamesEachRunStatus) {
  const std::pair<long, const char*> statuses[] = {{0, "Not Run"},
                                                   {1, "Running"},
                                                   {2, "Completed"},
                                                   {3, "unknown"},
                                                   {4, "Task Terminated Prematurely!"},
                                                   {5, "unknown"},
                                                   {-1, "unknown"},
                                                   {2147483647, "unknown"},
                                                   {-2147483648L, "unknown"}};
  for (const auto& [status, text] : statuses) {
    result.m_nRunStatus = status;
    task.m_nType = 1;
    EXPECT_EQ(LineBehind("                  Continuous Run Status : "), text) << status;
    task.m_nType = 2;
    EXPECT_EQ(LineBehind("                             Run Status : "), text) << status;
  }
}

struct StopCode {
  long first, last;
  std::string continuous, discrete;
};

// All codes from -2 to 95, and the extremes.
const StopCode stopCodes[] = {
    {-2147483648L, -2147483648L, "unknown", "unknown"},
    {-2, -1, "unknown", "unknown"},
    {0, 0, "normal", "normal"},
    {1, 1, "absolute hard convergence", "absolute hard convergence"},
    {2, 2, "relative hard convergence", "relative hard convergence"},
    {3, 3, "Kuhn-Tucker conditions were met", "Kuhn-Tucker conditions were met"},
    {4, 4, "null search direction in the QP sub-problem",
     "null search direction in the QP sub-problem"},
    {5, 9, "unknown", "unknown"},
    {10, 13, "ERROR detected in ZEF", "ERROR detected in ZEF"},
    {14, 14, "maximum iterations reached", "maximum iterations"},
    {15, 15, "soft convergence", "soft convergence"},
    {16, 16, "synthetic function error", "synthetic function error"},
    {17, 17, "MATLAB engine error", "MATLAB engine error"},
    {18, 18, "no feasible solution", "no feasible solution"},
    {19, 50, "unknown", "unknown"},
    {51, 55, "ERROR generating design points for RSA", "unknown"},
    {56, 60, "unknown", "unknown"},
    {61, 69, "ERROR generating design points for RSA", "unknown"},
    {70, 89, "unknown", "unknown"},
    {90, 90, "approximations not changing", "approximations not changing"},
    {91, 91,
     "approximations not changing, no restart because number of points required exceeds maximum "
     "number of points specified",
     "approximations not changing, no restart because number of points required exceeds maximum "
     "number of points specified"},
    {92, 92, "approximations not changing, no restart because target is matched",
     "approximations not changing, no restart because target is matched"},
    {93, 95, "unknown", "unknown"},
    {2147483647, 2147483647, "unknown", "unknown"},
};

TEST_F(SummaryCodes, NamesEachStopCode) {
  task.m_nType = 1;
  for (const StopCode& codes : stopCodes) {
    for (long code = codes.first; code <= codes.last; ++code) {
      result.m_nStopCode = code;
      EXPECT_EQ(StopText(), codes.continuous) << code;
    }
  }
}

TEST_F(SummaryCodes, NamesEachStopCodeOfADiscreteSubTask) {
  task.m_nType = 1;
  result.m_nBestSubTask = 5;
  for (const StopCode& codes : stopCodes) {
    for (long code = codes.first; code <= codes.last; ++code) {
      subTask.m_nStopCode = code;
      subTask.PutObject();
      EXPECT_EQ(LineBehind("                     Discrete Stop Code : "), codes.discrete) << code;
    }
  }
}

TEST_F(SummaryCodes, NamesEachStopCodeOfADesignOfExperiments) {
  task.m_nType = 2;
  for (const StopCode& codes : stopCodes) {
    const bool isDesignError = codes.first == 51 || codes.first == 61;
    for (long code = codes.first; code <= codes.last; ++code) {
      result.m_nStopCode = code;
      EXPECT_EQ(LineBehind("                              Stop Code : "),
                isDesignError ? "DOE ERROR" : codes.continuous)
          << code;
    }
  }
}

TEST_F(SummaryCodes, SaysThatDesignPointsFailedInEveryTaskButADesignOfExperiments) {
  result.m_nStopCode = 52;
  for (const int type : {0, 1, 3, 4}) {
    task.m_nType = type;
    EXPECT_EQ(StopText(), "ERROR generating design points for RSA") << type;
  }
}

}  // namespace
