#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "results/Message.h"
#include "results/Result.h"
#include "task/Task.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

/// Task 1, its result and its messages, stored when a report is asked for, and the result of
/// task 5.
class Summary : public testing::Test {
 protected:
  Summary() : task(study.Pod()), result(study.Pod()), messages(study.Pod()), subTask(study.Pod()) {
    task.m_nID = result.m_nID = messages.m_nID = 1;
    subTask.m_nID = 5;
  }

  void Store() {
    task.PutObject();
    result.PutObject();
    messages.PutObject();
  }
  std::string Report(bool subIterations = false) {
    Store();
    return Printed(
        [&](std::FILE* stream) { CResult::Dump(study.Pod(), stream, 1, subIterations); });
  }
  /// The line of the report that begins so, without that beginning.
  std::string LineBehind(const std::string& beginning) {
    const std::string report = Report();
    const std::size_t place = report.find("\n" + beginning);
    if (place == std::string::npos) return "no such line";
    const std::size_t first = place + 1 + beginning.size();
    return report.substr(first, report.find('\n', first) - first);
  }
  std::string StopText() { return LineBehind("                   Continuous Stop Code : "); }

  /// That the report throws, and prints nothing.
  template <class Error>
  void ExpectNoReport(int taskID = 1) {
    std::FILE* stream = std::tmpfile();
    EXPECT_THROW(CResult::Dump(study.Pod(), stream, taskID, true), Error);
    EXPECT_EQ(std::ftell(stream), 0);
    std::fclose(stream);
  }

  Study study;
  CTask task;
  CResult result;
  CMessage messages;
  CResult subTask;
};
