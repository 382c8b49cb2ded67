#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "task/Task.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"
#include "tests/task/TaskRecord.h"

/// Task 7 of a study, stored when its report is asked for.
class TaskDump : public testing::Test {
 protected:
  TaskDump() : task(study.Pod()) { task.m_nID = 7; }

  /// Sets each field to a value that no neighbour has.
  void FillAll() { ChangeAll(task, AllTaskFields()); }

  std::string Report() {
    task.PutObject();
    return Printed([&](std::FILE* stream) { CTask::Dump(study.Pod(), stream, 7); });
  }

  /// Expects the report to have these lines, or no such text.
  void ExpectLines(const std::string& lines) {
    const std::string report = Report();
    EXPECT_NE(report.find('\n' + lines + '\n'), std::string::npos) << lines << "\nin:\n" << report;
  }
  void ExpectNo(const std::string& text) {
    const std::string report = Report();
    EXPECT_EQ(report.find(text), std::string::npos) << text << "\nin:\n" << report;
  }

  Study study;
  CTask task;
};
