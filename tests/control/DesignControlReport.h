#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "control/DesignControl.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

/// The report of a study's design control.
class DesignControlReport : public testing::Test {
 protected:
  DesignControlReport() : control(study.Pod()) {}

  /// What Dump prints of the control once it is stored.
  std::string Report() {
    control.PutObject();
    return Printed([&](std::FILE* stream) { CDesignControl::Dump(study.Pod(), stream); });
  }

  /// Expects the report to have these lines, or no line that starts so.
  void ExpectLine(const std::string& line) {
    const std::string report = Report();
    EXPECT_NE(report.find('\n' + line + '\n'), std::string::npos) << line << "\nin:\n" << report;
  }
  void ExpectNoLine(const std::string& start) {
    const std::string report = Report();
    EXPECT_EQ(report.find('\n' + start), std::string::npos) << start << "\nin:\n" << report;
  }

  Study study;
  CDesignControl control;
};
