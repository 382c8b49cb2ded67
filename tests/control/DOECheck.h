#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/DOEControl.h"
#include "tests/control/CommonRuleCases.h"
#include "tests/support/Log.h"

// The check of the settings of a design of experiments, and what it reports.

using LogLines = std::vector<LogEntry>;

/// What the settings are checked for.
struct DOEProblem {
  int vars = 3;
  int responses = 1;
  int locked = 0;
  int random = 0;
  POD* pod = nullptr;
};

inline bool CheckDOE(const CDOEControl& block, const DOEProblem& problem = {}) {
  return block.CheckParams(problem.pod, false, false, problem.vars, problem.responses, 0,
                           problem.locked, problem.random);
}

/// A design with its option, of which only points are asked for.
inline CDOEControl DOEDesign(int method, int option) {
  CDOEControl block;
  block.m_nMethod = method;
  block.m_vnOptions.at(static_cast<std::size_t>(method)) = option;
  return block;
}

/// A random design of so many points, D-optimal, with no fault for 3 variables and 10 points.
inline CDOEControl DOptimal(int points, int retained) {
  CDOEControl block = DOEDesign(10, points);
  block.m_nDOptimal = 1;
  block.m_nRetained = retained;
  return block;
}

/// The same design with a model to fit.
inline CDOEControl WithModel(CDOEControl block, int model) {
  block.m_nTask = 2;
  block.m_nModel = model;
  return block;
}

inline LogLines Warning(const std::string& first, const std::vector<std::string>& rest) {
  LogLines lines = Fault(first, rest);
  lines.front().kind = "LWarn";
  return lines;
}

inline LogLines Joined(const std::vector<LogLines>& parts) {
  LogLines all;
  for (const LogLines& part : parts) Append(all, part);
  return all;
}

/// Expects that the check holds, and logs only the lines.
inline void ExpectWarned(const CDOEControl& block, const DOEProblem& problem,
                         const LogLines& lines) {
  ClearLog();
  EXPECT_TRUE(CheckDOE(block, problem));
  EXPECT_EQ(Log(), lines) << PrintedLog();
}

inline void ExpectSound(const CDOEControl& block, const DOEProblem& problem = {}) {
  ExpectWarned(block, problem, {});
}

/// Expects that the check fails, and logs just the lines.
inline void ExpectFault(const CDOEControl& block, const DOEProblem& problem,
                        const LogLines& lines) {
  ClearLog();
  EXPECT_FALSE(CheckDOE(block, problem));
  EXPECT_EQ(Log(), lines) << PrintedLog();
}

/// What a D-optimal design with too few points is told.
inline LogLines FewerThanVariables(int points, int varsAndOne) {
  return Fault("(Design Control): The number of D-optimal design points (" +
                   std::to_string(points) + ") must be greater",
               {"     than the number of independent design variables + 1 (" +
                std::to_string(varsAndOne) + ").\n\n"});
}
