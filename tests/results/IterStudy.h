#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "results/DPoint.h"
#include "results/Iter.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// A task with an iteration for tests of its report: all kinds of variables and responses, in the
// middle of their bounds. A test changes what it is about; the report stores everything first.

class IterStudy : public testing::Test {
 protected:
  IterStudy() {
    task.m_nID = vars.m_nID = resps.m_nID = cons.m_nID = terms.m_nID = 1;
    point.m_nTaskID = iter.m_nTaskID = 1;
    FillVars();
    FillResps();
    FillGoals();
    FillPoint();
    FillIter();
  }

  void Store() {
    for (vbPersistent* object :
         {static_cast<vbPersistent*>(&task), static_cast<vbPersistent*>(&vars),
          static_cast<vbPersistent*>(&resps), static_cast<vbPersistent*>(&cons),
          static_cast<vbPersistent*>(&point), static_cast<vbPersistent*>(&iter)}) {
      object->PutObject();
    }
    if (task.m_nType != 2) terms.PutObject();  // a design of experiments has none
  }

  std::string Stored(bool allConstraints = false, bool bestPoint = false) {
    return Printed([&](std::FILE* stream) {
      CIter::Dump(study.Pod(), stream, 1, allConstraints, ToInt(iter.m_nIter),
                  ToInt(iter.m_nSubIter), bestPoint);
    });
  }
  std::string Report(bool allConstraints = false, bool bestPoint = false) {
    Store();
    return Stored(allConstraints, bestPoint);
  }

  /// That the report throws, and prints nothing.
  template <class Error>
  void ExpectNoReport(int taskID = 1, int number = 2, int subIter = 0, bool bestPoint = false) {
    std::FILE* stream = std::tmpfile();
    EXPECT_THROW(CIter::Dump(study.Pod(), stream, taskID, false, number, subIter, bestPoint),
                 Error);
    EXPECT_EQ(std::ftell(stream), 0);
    std::fclose(stream);
  }

  static int ToInt(const vbINT32& value) { return static_cast<int>(long{value}); }

  Study study;
  CTask task{study.Pod()};
  CDVar vars{study.Pod()};
  CDResp resps{study.Pod()};
  CDCons cons{study.Pod()};
  CDObj terms{study.Pod()};
  CDPoint point{study.Pod()};
  CIter iter{study.Pod()};

  const std::string bar =
      "================================================================================\n";
  const std::string heading = "                         FINAL RESULTS FOR ITERATION 2\n" + bar;
  const std::string state =
      "                      Best Design Point :  1\n"
      "                         Best Objective :  118.25\n"
      "                       Worst Constraint : -0.1000000\n"
      "                      This Design Point :  3\n"
      "                         This Objective :  120\n"
      "                  This Worst Constraint :  0.001000000\n"
      "\n";
  const std::string variablesHead =
      "                                DESIGN VARIABLES\n"
      "                                Lower                             Upper\n"
      "         Name        Type       Bound            Value            Bound\n"
      "    --------------  -----  --------------   --------------   --------------\n";
  const std::string variables =
      variablesHead +
      "             width  IDVar       0.5000000         2.500000         10.00000  \n"
      "            height  IDVar        1.000000         7.000000         20.00000  \n"
      "             depth  LDVar   -1.000000e+30         12.00000         30.00000  \n"
      "              area  SDVar        2.000000         17.50000     1.000000e+30  \n"
      "              load  CDVar                         1000.000\n"
      "          material  CDVar        1.000000         2.000000         3.000000  \n"
      "\n";
  const std::string objectivesHead =
      "                             OBJECTIVE FUNCTION(S)\n"
      "                          Target       Worst      DVar/Response     Objective\n"
      "     Name        Type     Value        Value          Value           Value\n"
      "--------------  -----  -----------  -----------  --------------  --------------\n";
  const std::string objectives =
      objectivesHead +
      "        weight  IResp    minimize     Undefined        120.0000        120.0000\n"
      "\n";
  const std::string constraintsHead =
      "                             CONSTRAINED RESPONSES\n"
      "     Name        Type  U/L       Value       Scaled Value        Bound    \n"
      "--------------  -----  ---  --------------  --------------  --------------\n";
  const std::string noConstraints =
      constraintsHead + "There were no active or violated constraints for this iteration.\n";
  const std::string legend = "* - active bound    V - violated bound\n\n";
  const std::string end = bar + "\n";

 private:
  void FillVars() {
    vars.m_vnType = {20, 20, 21, 22, 23, 23};
    vars.m_vnSeq = {0, 1, 0, 0, 0, 1};
    vars.m_vstrIndName = {"width", "height"};
    vars.m_vfIndLower = {0.5, 1.0};
    vars.m_vfIndUpper = {10.0, 20.0};
    vars.m_vstrLinkName = {"depth"};
    vars.m_vfLinkLower = {-1e30};
    vars.m_vfLinkUpper = {30.0};
    vars.m_vstrSynName = {"area"};
    vars.m_vfSynLower = {2.0};
    vars.m_vfSynUpper = {1e30};
    vars.m_vstrConstName = {"load", "material"};
    vars.m_vnConstSet = {0, 5};
    vars.m_vfConstLower = {0.0, 1.0};
    vars.m_vfConstUpper = {0.0, 3.0};
  }
  void FillResps() {
    resps.m_vnType = {24, 24, 25, 26};
    resps.m_vnSeq = {0, 1, 0, 0};
    resps.m_vstrIndName = {"weight", "stress"};
    resps.m_vstrLinkName = {"slack"};
    resps.m_vstrSynName = {"ratio"};
  }
  /// Constraints on the linked variable, and on one response of each kind.
  void FillGoals() {
    cons.m_vnSubjType = {21, 24, 25, 26};
    cons.m_vnSubj = {0, 1, 0, 0};
    cons.m_vfBound = {30.0, 50.0, 2.0, 0.5};
    cons.m_vnMult = {1, 1, -1, 1};
    cons.m_vfScale = {30.0, 50.0, 2.0, 1.0};
    terms.m_vnSubjType = {24};
    terms.m_vnSubj = {0};
    terms.m_vnGoal = {0};
    terms.m_vnHasWorst = {0};
    terms.m_vfWorst = {0.0};
    terms.m_vfWeight = {1.0};
    terms.m_vfTarget = {0.0};
  }
  void FillPoint() {
    point.m_nPointID = 3;
    point.m_IDVar = {2.5, 7.0};
    point.m_LDVar = {12.0};
    point.m_SDVar = {17.5};
    point.m_CDVar = {1000.0, 2.0};
    point.m_IResp = {120.0, 45.0};
    point.m_LResp = {8.0};
    point.m_SResp = {0.125};
  }
  void FillIter() {
    iter.m_nIter = 2;
    iter.m_nThisPoint = 3;
    iter.m_nBestPoint = 1;
    iter.m_fBestObjective = 118.25;
    iter.m_fBestConstraint = -0.1;
    iter.m_fThisObjective = 120.0;
    iter.m_fThisConstraint = 0.001;
  }
};
