#include <gtest/gtest.h>

#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "tests/oldfiles/OldStudy.h"

namespace {

class OldDefinition : public OldStudy {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Old, OldDefinition, kOldCases, NameOf);

TEST_P(OldDefinition, Counters) {
  const auto control = Only<CDBCtrl>();
  EXPECT_EQ(control.NextTaskID, 2);
  EXPECT_EQ(control.NextInputID, 4);
  EXPECT_EQ(control.NextRespID, 3);
  EXPECT_EQ(control.NextAuxID, 5);
  EXPECT_EQ(control.TaskIDs, later ? Ints{1} : Ints{});
}

TEST_P(OldDefinition, Inputs) {
  EXPECT_EQ(CInput(GetPOD()).CountObjects(), 2);
  for (const int id : {1, 2}) {
    const auto input = Numbered(&CInput::m_nID, id);
    EXPECT_EQ(input.m_strName, id == 1 ? "width" : "area");
    EXPECT_EQ(input.m_strText, id == 1 ? "note\nof 1" : "note\nof 2");
    EXPECT_EQ(input.m_nObjective, 1);
    EXPECT_EQ(input.m_uIndex, id == 1 ? 0U : 1U);
    EXPECT_EQ(input.m_uSize, 1U);
    EXPECT_EQ(input.m_nType, id == 1 ? 0 : 2);
    EXPECT_EQ(input.m_nAuxID, id == 1 ? 0 : 2);
    EXPECT_EQ(input.m_vnArg, id == 1 ? Ints{} : (Ints{-1, -3}));
    EXPECT_EQ(input.m_vnIdx, id == 1 ? Ints{} : (Ints{0, 0}));
    EXPECT_EQ(input.m_nGoal, 2);
    EXPECT_EQ(input.m_nHasWorst, 1);
    EXPECT_EQ(input.m_fWorst, 9.5);
    EXPECT_EQ(input.m_fTarget, 4.0);
    EXPECT_EQ(input.m_fWeight, 2.0);
    EXPECT_EQ(input.m_fLower, -1.0);
    EXPECT_EQ(input.m_fUpper, 1e30);
    EXPECT_EQ(input.m_fInitial, 0.1);
  }
}

TEST_P(OldDefinition, WhatTheirInputsLack) {
  for (const int id : {1, 2}) {
    const auto input = Numbered(&CInput::m_nID, id);
    EXPECT_EQ(input.m_vnLength, id == 1 ? Ints{} : (Ints{1, 1}));
    EXPECT_EQ(input.m_fScale, later ? 3.5 : 0.0);
    EXPECT_EQ(input.m_nUserScale, later ? 1 : 0);
    EXPECT_EQ(input.m_nRandom, later ? 1 : 0);
    EXPECT_EQ(input.m_nRandomParam, later ? -2 : 0);
    EXPECT_EQ(input.m_nDistribution, later ? 3 : 0);
  }
}

TEST_P(OldDefinition, Responses) {
  EXPECT_EQ(CResp(GetPOD()).CountObjects(), 2);
  for (const int id : {1, 2}) {
    const auto resp = Numbered(&CResp::m_nID, id);
    EXPECT_EQ(resp.m_strName, id == 1 ? "stress" : "ratio");
    EXPECT_EQ(resp.m_strText, "");
    EXPECT_EQ(resp.m_nConstraint, 0);
    EXPECT_EQ(resp.m_nObjective, 1);
    EXPECT_EQ(resp.m_uIndex, id == 1 ? 0U : 1U);
    EXPECT_EQ(resp.m_uSize, 2U);
    EXPECT_EQ(resp.m_nType, id == 1 ? 0 : 2);
    EXPECT_EQ(resp.m_nAuxID, id == 1 ? 0 : 2);
    EXPECT_EQ(resp.m_vnArg, id == 1 ? Ints{} : (Ints{1, -1, -2}));
    EXPECT_EQ(resp.m_vnIdx, id == 1 ? Ints{} : (Ints{0, 0, 1}));
    EXPECT_EQ(resp.m_vnLength, id == 1 ? Ints{} : (Ints{1, 1, 1}));
    EXPECT_EQ(resp.m_nRandom, later ? 1 : 0);
    EXPECT_EQ(resp.m_nRandomParam, later ? -3 : 0);
  }
}

TEST_P(OldDefinition, GoalsAndBoundsOfResponses) {
  for (const int id : {1, 2}) {
    const auto resp = Numbered(&CResp::m_nID, id);
    EXPECT_EQ(resp.m_nGoal, 1);
    EXPECT_EQ(resp.m_nHasWorst, 1);
    EXPECT_EQ(resp.m_fWorst, 8.5);
    EXPECT_EQ(resp.m_fTarget, -4.0);
    EXPECT_EQ(resp.m_fWeight, 3.0);
    EXPECT_EQ(resp.m_nHasLower, 1);
    EXPECT_EQ(resp.m_fLower, -250.0);
    EXPECT_EQ(resp.m_nHasLowerScale, 1);
    EXPECT_EQ(resp.m_fLowerScale, 0.5);
    EXPECT_EQ(resp.m_nHasUpper, 1);
    EXPECT_EQ(resp.m_fUpper, 250.0);
    EXPECT_EQ(resp.m_nHasUpperScale, 1);
    EXPECT_EQ(resp.m_fUpperScale, 0.25);
  }
}

TEST_P(OldDefinition, EquationsHaveNoLineBreaks) {
  const auto equation = Numbered(&CAuxiliary::m_nID, 2);
  EXPECT_EQ(equation.m_strEquation, "a*b  +1");
  EXPECT_EQ(equation.m_strName, "area\nof it");
  EXPECT_EQ(equation.m_nAuxType, 2);
  EXPECT_EQ(equation.m_nNumber, 1);
  EXPECT_EQ(equation.m_vfValues, Reals{});
  EXPECT_EQ(equation.m_strArgs, "a,\nb");
  EXPECT_EQ(equation.m_vfCoef, Reals{});
  EXPECT_EQ(equation.m_vstrArgNames, Texts{});
}

TEST_P(OldDefinition, LinksAndSets) {
  if (later) {
    EXPECT_EQ(CAuxiliary(GetPOD()).CountObjects(), 1);
    return;
  }
  EXPECT_EQ(CAuxiliary(GetPOD()).CountObjects(), 3);
  const auto link = Numbered(&CAuxiliary::m_nID, 1);
  EXPECT_EQ(link.m_strName, "same");
  EXPECT_EQ(link.m_nAuxType, 1);
  EXPECT_EQ(link.m_nNumber, 1);
  EXPECT_EQ(link.m_strArgs, "");
  EXPECT_EQ(link.m_strEquation, "");
  EXPECT_EQ(link.m_vfCoef, (Reals{0.5, 1.0}));
  EXPECT_EQ(link.m_vstrArgNames, (Texts{"", "w"}));
  const auto set = Numbered(&CAuxiliary::m_nID, 4);
  EXPECT_EQ(set.m_strName, "sizes");
  EXPECT_EQ(set.m_nAuxType, 4);
  EXPECT_EQ(set.m_vfValues, (Reals{1.0, 1.5}));
}

TEST_P(OldDefinition, UserPoints) {
  const auto points = Only<CGPoint>();
  EXPECT_EQ(points.m_vnUsed, later ? (Ints{1, 0}) : Ints{});
  EXPECT_EQ(points.m_vnRun, later ? (Ints{1, 1}) : Ints{});
  EXPECT_EQ(points.m_vnLocked, later ? (Ints{0, 1}) : Ints{});
  const std::vector<Reals> variables = {Reals{0.5}, Reals{1e30}};
  const std::vector<Reals> responses = {Reals{2.5}, Reals{}};
  EXPECT_EQ(points.m_vDVars, later ? variables : std::vector<Reals>{});
  EXPECT_EQ(points.m_vResps, later ? responses : std::vector<Reals>{});
}
