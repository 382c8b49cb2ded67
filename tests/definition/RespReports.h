#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "definition/Resp.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

/// A study whose responses are reported, and the fixed parts of the report.
class RespReports : public testing::Test {
 protected:
  inline static const std::string head =
      "                                Response Objects\n"
      "================================================================================\n"
      "                    Trans                       \n"
      "DB ID     Name      Index    Size   Type  Random\n"
      "-----  ----------  -------  ------  ----  ------\n";
  inline static const std::string randomHead =
      "--------------------------------------------------------------------------------\n"
      "                          Random Response Definitions\n"
      "--------------------------------------------------------------------------------\n"
      "DB ID     Name        Random Parameter   \n"
      "-----  ----------  ----------------------\n";
  inline static const std::string auxiliaryHead =
      "--------------------------------------------------------------------------------\n"
      "                         Auxiliary Response Definitions\n"
      "--------------------------------------------------------------------------------\n"
      "                    Auxil\n"
      "DB ID     Name      DB ID   Type               Argument/Index\n"
      "-----  ----------  -------  ----  ----------------------------------------------\n";
  inline static const std::string objectiveHead =
      "--------------------------------------------------------------------------------\n"
      "                          Objective Response Definitions\n"
      "--------------------------------------------------------------------------------\n"
      "DB ID     Name       Goal      Worst Value      Target Value    Weight Factor\n"
      "-----  ----------  --------  ---------------  ---------------  ---------------\n";
  inline static const std::string constraintHead =
      "--------------------------------------------------------------------------------\n"
      "                         Constraint Response Definitions\n"
      "--------------------------------------------------------------------------------\n"
      "DB ID     Name      Lower Bound    Scale Factor   Upper Bound    Scale Factor\n"
      "-----  ----------  -------------  -------------  -------------  -------------\n";
  inline static const std::string reportEnd =
      "================================================================================\n"
      "\n";

  /// A response that is no constraint.
  CResp Resp(long id, const std::string& name, int type = 0) {
    CResp resp(study.Pod());
    resp.m_nID = id;
    resp.m_strName = name;
    resp.m_nType = type;
    resp.m_nConstraint = 0;
    return resp;
  }

  std::string Report() {
    return Printed([&](std::FILE* stream) { CResp::Dump(study.Pod(), stream); });
  }

  Study study;
};
