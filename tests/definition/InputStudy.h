#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

// Inputs for tests, and a study to check them in.

/// An Input with a value of its own in every field.
inline CInput FilledInput(POD* pod) {
  CInput input(pod);
  input.m_nID = 7;
  input.m_strName = "width";
  input.m_strText = "of beam";
  input.m_nObjective = 12;
  input.m_uIndex = 0xFEDCBA98UL;
  input.m_uSize = 16;
  input.m_nType = 2;
  input.m_nAuxID = 11;
  input.m_vnArg = {-8, -9};
  input.m_vnIdx = {0, 2};
  input.m_vnLength = {1, 4};
  input.m_fLower = -3.0;
  input.m_fUpper = 4.0;
  input.m_fInitial = 0.25;
  input.m_nUserScale = 14;
  input.m_fScale = 10.0;
  input.m_nGoal = 1;
  input.m_nHasWorst = 13;
  input.m_fWorst = 100.0;
  input.m_fTarget = -2.5;
  input.m_fWeight = 0.5;
  input.m_nRandom = 15;
  input.m_nRandomParam = -2;
  input.m_nDistribution = 3;
  return input;
}

inline void ExpectSameFields(const CInput& input, const CInput& expected) {
  EXPECT_EQ(input.m_nID, expected.m_nID);
  EXPECT_EQ(input.m_strName, expected.m_strName);
  EXPECT_EQ(input.m_strText, expected.m_strText);
  EXPECT_EQ(input.m_nObjective, expected.m_nObjective);
  EXPECT_EQ(input.m_uIndex, expected.m_uIndex);
  EXPECT_EQ(input.m_uSize, expected.m_uSize);
  EXPECT_EQ(input.m_nType, expected.m_nType);
  EXPECT_EQ(input.m_nAuxID, expected.m_nAuxID);
  EXPECT_EQ(input.m_vnArg, expected.m_vnArg);
  EXPECT_EQ(input.m_vnIdx, expected.m_vnIdx);
  EXPECT_EQ(input.m_vnLength, expected.m_vnLength);
  EXPECT_EQ(input.m_fLower, expected.m_fLower);
  EXPECT_EQ(input.m_fUpper, expected.m_fUpper);
  EXPECT_EQ(input.m_fInitial, expected.m_fInitial);
  EXPECT_EQ(input.m_nUserScale, expected.m_nUserScale);
  EXPECT_EQ(input.m_fScale, expected.m_fScale);
  EXPECT_EQ(input.m_nGoal, expected.m_nGoal);
  EXPECT_EQ(input.m_nHasWorst, expected.m_nHasWorst);
  EXPECT_EQ(input.m_fWorst, expected.m_fWorst);
  EXPECT_EQ(input.m_fTarget, expected.m_fTarget);
  EXPECT_EQ(input.m_fWeight, expected.m_fWeight);
  EXPECT_EQ(input.m_nRandom, expected.m_nRandom);
  EXPECT_EQ(input.m_nRandomParam, expected.m_nRandomParam);
  EXPECT_EQ(input.m_nDistribution, expected.m_nDistribution);
}

/// A study with control settings, to put Inputs into and to check them.
class InputStudy : public testing::Test {
 protected:
  InputStudy() { SetTask(0); }

  void SetTask(int type, int method = 0) {
    CDesignControl control(study.Pod());
    control.m_nTaskType = type;
    control.m_DOE.m_nMethod = method;
    control.PutObject();
  }

  /// An independent Input with an index of its ID and a hundred, which passes in every task.
  CInput Sound(int id, const std::string& name) {
    CInput input(study.Pod());
    input.m_nID = id;
    input.m_strName = name;
    input.m_uIndex = static_cast<unsigned long>(id + 100);
    input.m_fLower = -1.0;
    input.m_fUpper = 1.0;
    return input;
  }

  CInput Sound(int id, const std::string& name, int type, int auxiliary = 0) {
    CInput input = Sound(id, name);
    input.m_nType = type;
    input.m_nAuxID = auxiliary;
    return input;
  }

  /// A linked or synthetic Input with the first element of each argument.
  CInput Function(int id, const std::string& name, int type, int auxiliary,
                  const std::vector<vbINT32>& arguments) {
    CInput input = Sound(id, name, type, auxiliary);
    input.m_vnArg = arguments;
    input.m_vnIdx.assign(arguments.size(), 0);
    input.m_vnLength.assign(arguments.size(), 1);
    return input;
  }

  /// Stores a link that takes so many arguments.
  void PutLink(int id, std::size_t arguments) {
    CAuxiliary link(study.Pod());
    link.m_nID = id;
    link.m_nAuxType = 1;
    link.m_vfCoef.assign(arguments + 1, 1.0);
    link.PutObject();
  }

  void PutEquation(int id, const std::string& arguments) {
    CAuxiliary equation(study.Pod());
    equation.m_nID = id;
    equation.m_nAuxType = 2;
    equation.m_strArgs = arguments;
    equation.PutObject();
  }

  void PutSet(int id, const std::vector<vbFLOAT64>& values) {
    CAuxiliary set(study.Pod());
    set.m_nID = id;
    set.m_nAuxType = 4;
    set.m_vfValues = values;
    set.PutObject();
  }

  /// Expects the result of the check, and its whole log as "LError: text".
  void ExpectCheck(bool result, const std::vector<std::string>& lines) {
    ClearLog();
    EXPECT_EQ(CInput::CheckInputs(study.Pod()), result);
    std::vector<std::string> logged;
    for (const LogEntry& entry : Log()) logged.push_back(entry.kind + ": " + entry.text);
    EXPECT_EQ(logged, lines);
  }

  /// The same for a study with this Input changed or added.
  void ExpectCheckOf(CInput input, bool result, const std::vector<std::string>& lines) {
    input.Connect(study.Pod());
    ASSERT_TRUE(input.PutObject());
    ExpectCheck(result, lines);
  }

  Study study;
};
