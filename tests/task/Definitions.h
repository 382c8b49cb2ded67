#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "task/Task.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

// Definitions of a study, from which the makers of task 7 make their tables.

using Ints = std::vector<vbINT32>;
using IntRows = std::vector<std::vector<vbINT32>>;
using Floats = std::vector<vbFLOAT64>;
using FloatRows = std::vector<std::vector<vbFLOAT64>>;
using Texts = std::vector<std::string>;

class Definitions : public testing::Test {
 protected:
  /// Stores an Input of that type, named X and its ID.
  void PutInput(int id, int type, const std::function<void(CInput&)>& change = {}) {
    Put<CInput>("X", id, type, change);
  }
  /// Stores a response of that type, named R and its ID.
  void PutResp(int id, int type, const std::function<void(CResp&)>& change = {}) {
    Put<CResp>("R", id, type, change);
  }
  void PutAuxiliary(int id, int kind, const std::function<void(CAuxiliary&)>& change = {}) {
    CAuxiliary auxiliary(study.Pod());
    auxiliary.m_nID = id;
    auxiliary.m_nAuxType = kind;
    auxiliary.m_strName = "A" + std::to_string(id);
    if (change) change(auxiliary);
    auxiliary.PutObject();
  }

  CTask Task() {
    CTask task(study.Pod());
    task.m_nID = 7;
    return task;
  }

  /// A table of task 7 as it is stored.
  template <class Table>
  Table Stored() {
    Table table(study.Pod());
    table.m_nID = 7;
    EXPECT_TRUE(table.GetObject());
    return table;
  }
  template <class Table>
  bool IsStored() {
    Table table(study.Pod());
    table.m_nID = 7;
    return table.FindObject();
  }

  Study study;

 private:
  template <class Definition>
  void Put(const char* prefix, int id, int type, const std::function<void(Definition&)>& change) {
    Definition definition(study.Pod());
    definition.m_nID = id;
    definition.m_nType = type;
    definition.m_strName = prefix + std::to_string(id);
    if (change) change(definition);
    definition.PutObject();
  }
};

/// What was logged but for the exceptions' own lines.
inline std::vector<LogEntry> Messages() {
  std::vector<LogEntry> messages;
  for (const LogEntry& entry : Log()) {
    if (entry.file.empty()) messages.push_back(entry);
  }
  return messages;
}

using LogLines = std::vector<LogEntry>;
