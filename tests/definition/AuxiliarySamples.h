#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/Auxiliary.h"

/// A definition with something in every field.
inline CAuxiliary FilledAuxiliary(POD* pod) {
  CAuxiliary definition(pod);
  definition.m_nID = 7;
  definition.m_strName = "stress";
  definition.m_nAuxType = 2;
  definition.m_nNumber = 3;
  definition.m_vfValues = {-0.5, 2.5};
  definition.m_strArgs = "a,b";
  definition.m_strEquation = "a*b+1";
  definition.m_vfCoef = {1.0, 2.0, -3.0};
  definition.m_vstrArgNames = {"", "x", "y1"};
  return definition;
}

inline void ExpectFilledTextsAndVectors(const CAuxiliary& definition) {
  EXPECT_EQ(definition.m_strName, "stress");
  EXPECT_EQ(definition.m_vfValues, (std::vector<vbFLOAT64>{-0.5, 2.5}));
  EXPECT_EQ(definition.m_strArgs, "a,b");
  EXPECT_EQ(definition.m_strEquation, "a*b+1");
  EXPECT_EQ(definition.m_vfCoef, (std::vector<vbFLOAT64>{1.0, 2.0, -3.0}));
  EXPECT_EQ(definition.m_vstrArgNames, (std::vector<std::string>{"", "x", "y1"}));
}

inline void ExpectFilledAuxiliary(const CAuxiliary& definition) {
  EXPECT_EQ(definition.m_nID, 7);
  EXPECT_EQ(definition.m_nAuxType, 2);
  EXPECT_EQ(definition.m_nNumber, 3);
  ExpectFilledTextsAndVectors(definition);
}

inline void ExpectAuxiliaryDefaults(const CAuxiliary& definition) {
  EXPECT_EQ(definition.m_nAuxType, 1);
  EXPECT_EQ(definition.m_nNumber, 0);
  EXPECT_EQ(definition.m_strName, "");
  EXPECT_TRUE(definition.m_vfValues.empty());
  EXPECT_EQ(definition.m_strArgs, "");
  EXPECT_EQ(definition.m_strEquation, "");
  EXPECT_TRUE(definition.m_vfCoef.empty());
  EXPECT_TRUE(definition.m_vstrArgNames.empty());
}
