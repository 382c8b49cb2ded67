#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/Resp.h"

// Responses that several tests use.

/// A response with a value of its own in every field, whether it makes sense there or not.
inline CResp FullResp(POD* pod) {
  CResp resp(pod);
  resp.m_nID = 42;
  resp.m_strName = "Stress";
  resp.m_strText = "at the tip";
  resp.m_nConstraint = 2;
  resp.m_nObjective = 3;
  resp.m_uIndex = 4;
  resp.m_uSize = 5;
  resp.m_nType = 6;
  resp.m_nAuxID = 7;
  resp.m_vnArg = {-8, 9, 10};
  resp.m_vnIdx = {11, 12};
  resp.m_vnLength = {13};
  resp.m_nHasLower = 16;
  resp.m_fLower = -2.5;
  resp.m_nHasLowerScale = 17;
  resp.m_fLowerScale = 4.0;
  resp.m_nHasUpper = 18;
  resp.m_fUpper = 10.0;
  resp.m_nHasUpperScale = 19;
  resp.m_fUpperScale = 0.25;
  resp.m_nGoal = 14;
  resp.m_nHasWorst = 15;
  resp.m_fWorst = 0.5;
  resp.m_fTarget = -1.0;
  resp.m_fWeight = 2.0;
  resp.m_nRandom = 20;
  resp.m_nRandomParam = -3;
  return resp;
}

/// The texts and vectors of FullResp.
inline void ExpectFullTexts(const CResp& resp) {
  EXPECT_EQ(resp.m_strName, "Stress");
  EXPECT_EQ(resp.m_strText, "at the tip");
  EXPECT_EQ(resp.m_vnArg, (std::vector<vbINT32>{-8, 9, 10}));
  EXPECT_EQ(resp.m_vnIdx, (std::vector<vbINT32>{11, 12}));
  EXPECT_EQ(resp.m_vnLength, (std::vector<vbINT32>{13}));
}

/// All fields of FullResp but the lengths and those of a random response, which older records lack.
inline void ExpectFullScalars(const CResp& resp) {
  EXPECT_EQ(resp.m_nID, 42);
  EXPECT_EQ(resp.m_nConstraint, 2);
  EXPECT_EQ(resp.m_nObjective, 3);
  EXPECT_EQ(resp.m_uIndex, 4);
  EXPECT_EQ(resp.m_uSize, 5);
  EXPECT_EQ(resp.m_nType, 6);
  EXPECT_EQ(resp.m_nAuxID, 7);
  EXPECT_EQ(resp.m_nHasLower, 16);
  EXPECT_EQ(resp.m_fLower, -2.5);
  EXPECT_EQ(resp.m_nHasLowerScale, 17);
  EXPECT_EQ(resp.m_fLowerScale, 4.0);
  EXPECT_EQ(resp.m_nHasUpper, 18);
  EXPECT_EQ(resp.m_fUpper, 10.0);
  EXPECT_EQ(resp.m_nHasUpperScale, 19);
  EXPECT_EQ(resp.m_fUpperScale, 0.25);
  EXPECT_EQ(resp.m_nGoal, 14);
  EXPECT_EQ(resp.m_nHasWorst, 15);
  EXPECT_EQ(resp.m_fWorst, 0.5);
  EXPECT_EQ(resp.m_fTarget, -1.0);
  EXPECT_EQ(resp.m_fWeight, 2.0);
}

inline void ExpectFull(const CResp& resp) {
  ExpectFullTexts(resp);
  ExpectFullScalars(resp);
  EXPECT_EQ(resp.m_nRandom, 20);
  EXPECT_EQ(resp.m_nRandomParam, -3);
}
