#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

/// Arguments of a response, each an ID and the element of an array.
struct RespArgument {
  long id;
  long element = 0;
};

/// A study whose responses are checked, for a direct gradient task.
class RespChecks : public testing::Test {
 protected:
  RespChecks() { SetTaskType(0); }

  void SetTaskType(int type) {
    CDesignControl control(study.Pod());
    control.m_nTaskType = type;
    control.PutObject();
  }

  void StoreInput(long id, int type, unsigned long size = 1) {
    CInput input(study.Pod());
    input.m_nID = id;
    input.m_nType = type;
    input.m_uSize = size;
    input.PutObject();
  }

  /// A link of that many coefficients, the constant among them.
  void StoreLink(long id, std::size_t coefficients) {
    CAuxiliary link(study.Pod());
    link.m_nID = id;
    link.m_nAuxType = 1;
    link.m_vfCoef.resize(coefficients);
    link.PutObject();
  }

  void StoreEquation(long id, const std::string& arguments) {
    CAuxiliary equation(study.Pod());
    equation.m_nID = id;
    equation.m_nAuxType = 2;
    equation.m_strArgs = arguments;
    equation.PutObject();
  }

  /// A response called "R" and its ID, whose index is 100 above the ID.
  CResp Resp(long id, int type) {
    CResp resp(study.Pod());
    resp.m_nID = id;
    resp.m_strName = "R" + std::to_string(id);
    resp.m_uIndex = static_cast<unsigned long>(id + 100);
    resp.m_nType = type;
    return resp;
  }
  void StoreResp(long id, int type, unsigned long size = 1) {
    CResp resp = Resp(id, type);
    resp.m_uSize = size;
    resp.PutObject();
  }
  void StoreFunction(long id, int type, long auxiliary,
                     const std::vector<RespArgument>& arguments) {
    CResp resp = Resp(id, type);
    resp.m_nAuxID = auxiliary;
    for (const auto& [argument, element] : arguments) {
      resp.m_vnArg.push_back(argument);
      resp.m_vnIdx.push_back(element);
    }
    resp.PutObject();
  }
  /// Response 50, linked or synthetic, with a function of its own for as many arguments.
  void StoreFifty(int type, const std::vector<RespArgument>& arguments) {
    StoreLink(50, arguments.size() + 1);
    StoreFunction(50, type, 50, arguments);
  }

  /// Expects the check to log these lines, each its kind, ": " and its text, and nothing else.
  void ExpectLog(bool holds, const std::vector<std::string>& lines) {
    ClearLog();
    EXPECT_EQ(CResp::CheckResps(study.Pod()), holds);
    std::vector<std::string> logged;
    for (const LogEntry& entry : Log()) logged.push_back(entry.kind + ": " + entry.text);
    EXPECT_EQ(logged, lines);
  }
  void ExpectErrors(std::vector<std::string> lines) {
    for (std::string& line : lines) line.insert(0, "LError: ");
    ExpectLog(false, lines);
  }
  void ExpectSilence() { ExpectLog(true, {}); }

  Study study;
};
