#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DSet.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

/// A study with task 5, whose links, functions and sets are stored as a test leaves them.
class TaskReports : public testing::Test {
 protected:
  TaskReports() { links.m_nID = functions.m_nID = sets.m_nID = 5; }

  void AddLink(int id, const std::vector<vbFLOAT64>& coefficients) {
    links.m_vnAuxID.push_back(id);
    links.m_vstrName.push_back("link");
    links.m_mdCoef.push_back(coefficients);
  }
  void AddFunction(int id, const std::string& name) {
    functions.m_vnAuxID.push_back(id);
    functions.m_vstrName.push_back(name);
    functions.m_vstrArgs.push_back("a,b");
    functions.m_vstrEquation.push_back("a*b");
  }
  void AddSet(int id, const std::vector<vbFLOAT64>& members) {
    sets.m_vnAuxID.push_back(id);
    sets.m_vstrName.push_back("set");
    sets.m_mdValues.push_back(members);
  }
  void StoreDefinitions() {
    links.PutObject();
    functions.PutObject();
    sets.PutObject();
  }

  /// What Table::Dump prints of task 5.
  template <class Table>
  std::string ReportOf(int task = 5) {
    return Printed([&](std::FILE* stream) { Table::Dump(study.Pod(), stream, task); });
  }

  /// What Table::Dump prints of task 5 before it throws.
  template <class Table, class Error>
  std::string ReportUntil() {
    return Printed(
        [&](std::FILE* stream) { EXPECT_THROW(Table::Dump(study.Pod(), stream, 5), Error); });
  }

  /// That Table::Dump looks at its arguments in the order in which all reports do.
  template <class Table>
  void ExpectChecksOfArguments() {
    EXPECT_THROW(Table::Dump(nullptr, stdout, 5), CNullPtr);
    EXPECT_THROW(Table::Dump(study.Pod(), nullptr, 5), CNullPtr);
    POD pod(study.folder / "other.ksb");
    EXPECT_THROW(Table::Dump(&pod, stdout, 5), CNoIndex);
    KSBKey key;
    pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
    EXPECT_THROW(Table::Dump(&pod, stdout, 5), CNoIndex);
    study.Pod()->CloseIndex();
    EXPECT_THROW(Table::Dump(study.Pod(), stdout, 5), CNullPtr);
    study.Pod()->CloseDataFile();
    EXPECT_THROW(Table::Dump(study.Pod(), stdout, 5), CNullPtr);
  }

  inline static const std::string reportEnd =
      "================================================================================\n"
      "\n";

  Study study;
  CDLink links{study.Pod()};
  CDEqn functions{study.Pod()};
  CDSet sets{study.Pod()};
};
