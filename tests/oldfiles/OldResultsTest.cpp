#include <gtest/gtest.h>

#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/Result.h"
#include "tests/oldfiles/OldStudy.h"

namespace {

using Numbers = std::vector<int>;
using Values = std::vector<double>;

class OldResults : public OldStudy {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Old, OldResults, kOldCases, NameOf);

TEST_P(OldResults, HowTheRunWent) {
  const auto result = Numbered(&CResult::m_nID, 1);
  EXPECT_EQ(result.m_nNumPoints, 12);
  EXPECT_EQ(result.m_nTotalPoints, later ? 13 : 0);
  EXPECT_EQ(result.m_nEngineWord1, 14);
  EXPECT_EQ(result.m_nAnalysisCalls, 15);
  EXPECT_EQ(result.m_nGradientRequests, later ? 16 : 0);
  EXPECT_EQ(result.m_nBestIter, 17);
  EXPECT_EQ(result.m_nBestSubIter, 18);
  EXPECT_EQ(result.m_fBestObjective, -2.5);
  EXPECT_EQ(result.m_fWorstConstraint, 0.125);
  EXPECT_EQ(result.m_strLastMessage, "done");
  EXPECT_EQ(result.m_nRunStatus, 2);
  EXPECT_EQ(result.m_nStopCode, 3);
  EXPECT_EQ(result.m_nBestSubTask, -1);
}

TEST_P(OldResults, TimesAndWordsOfTheEngine) {
  const auto result = Numbered(&CResult::m_nID, 1);
  EXPECT_EQ(result.m_nEngineWord2, 19);
  EXPECT_EQ(result.m_nEngineWord3, 20);
  EXPECT_EQ(result.m_strStarted, "Mon");
  EXPECT_EQ(result.m_strStopped, "Tue");
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(result.m_fTimes[static_cast<std::size_t>(i)], i + 0.25);
  }
  EXPECT_EQ(ListOf(result.m_EngineArray1), (Numbers{21, 22}));
  EXPECT_EQ(ListOf(result.m_EngineArray2), Values{23.5});
  EXPECT_EQ(ListOf(result.m_EngineArray3), Numbers{});
  EXPECT_EQ(result.m_nEngineWord4, 0);
}

TEST_P(OldResults, Points) {
  const int count = later ? 1 : 2;
  EXPECT_EQ(CDPoint(GetPOD()).CountObjects(), count);
  for (int i = 0; i < count; ++i) {
    CDPoint point(GetPOD());
    point.m_nTaskID = 1;
    point.m_nPointID = i;
    ASSERT_TRUE(point.GetObject());
    EXPECT_EQ(point.m_nPointFlag, later ? -7 : 0);
    EXPECT_EQ(ListOf(point.m_IDVar), (Values{i + 0.5, -1e30}));
    EXPECT_EQ(ListOf(point.m_LDVar), Values{});
    EXPECT_EQ(ListOf(point.m_SDVar), Values{1.0 * i});
    EXPECT_EQ(ListOf(point.m_CDVar), Values{6.0});
    EXPECT_EQ(ListOf(point.m_IResp), Values{200.0});
    EXPECT_EQ(ListOf(point.m_LResp), Values{});
    EXPECT_EQ(ListOf(point.m_SResp), Values{0.75});
  }
}

TEST_P(OldResults, Iterations) {
  CIter iter(GetPOD());
  iter.m_nTaskID = 1;
  iter.m_nIter = 2;
  ASSERT_TRUE(iter.GetObject());
  EXPECT_EQ(iter.m_nThisPoint, 4);
  EXPECT_EQ(iter.m_nBestPoint, 5);
  EXPECT_EQ(iter.m_fBestObjective, 1.5);
  EXPECT_EQ(iter.m_fBestConstraint, -0.5);
  EXPECT_EQ(iter.m_fThisObjective, 2.5);
  EXPECT_EQ(iter.m_fThisConstraint, 0.5);
  EXPECT_EQ(ListOf(iter.m_ParetoPoints), later ? (Numbers{4, 5}) : Numbers{});
  EXPECT_EQ(ListOf(iter.m_ParetoValues), later ? Values{1.5} : Values{});
}

TEST_P(OldResults, Messages) {
  EXPECT_EQ(CMessage(GetPOD()).CountObjects(), later ? 0 : 1);
  if (later) return;
  const auto messages = Numbered(&CMessage::m_nID, 1);
  EXPECT_EQ(messages.m_Messages, (Texts{"WARNING: slow", "line\nfeed"}));
}
