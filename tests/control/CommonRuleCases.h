#pragma once

#include <string>
#include <vector>

#include "tests/support/RuleCases.h"

// The rules that the blocks of optimisations share, on fields of the same name, in order.

/// The numbers next to 0 and the limits of an integer field.
inline constexpr double kTiny = 5e-324;
inline constexpr double kMostInt = 2147483647;
inline constexpr double kLeastInt = -2147483648;

inline const std::string kNotNegative = "     should be larger than or equal to 0.\n\n";

/// An integer that must not be negative, shown as the message's conversion has it.
template <class Block>
RuleCase<Block> NotNegative(vbINT32 Block::*field, const std::string& first,
                            const std::string& second, const std::string& least = "-2147483648") {
  return {field, {0, 1, kMostInt}, {{-1, "-1"}, {kLeastInt, least}}, first, second};
}

/// A real that must not be negative, shown by "%g".
template <class Block>
RuleCase<Block> NotNegative(vbFLOAT64 Block::*field, const std::string& first,
                            const std::string& second) {
  return {
      field, {0, -0.0, kTiny, 1e300}, {{-kTiny, "-4.94066e-324"}, {-0.5, "-0.5"}}, first, second};
}

/// A real that must not be negative but is shown by "%d".
template <class Block>
RuleCase<Block> NotNegativeByInteger(vbFLOAT64 Block::*field, const std::string& first,
                                     const std::string& second) {
  return {field,
          {0, -0.0, kTiny, 1e300},
          {{-kTiny, "0"}, {-0.5, "0"}, {-3.75, "-3"}, {-1e300, "-2147483648"}},
          first,
          second};
}

template <class Block>
std::vector<RuleCase<Block>> ToleranceRules() {
  return {
      {&Block::m_nIPRINT,
       {0, 3, 7},
       {{-1, "-1"}, {8, "8"}},
       "(Design Control): The ZEF print level (IPRINT={}) should be larger than or equal",
       "     to 0 (no output) or less than or equal to 7 (debug output).\n\n"},
      {&Block::m_nMINMAX,
       {0, 1},
       {{-1, "-1"}, {2, "2"}},
       "(Design Control): The ZEF minimize flag (MINMAX={}) should be",
       "      either FALSE=0 or TRUE=1.\n\n"},
      {&Block::m_fCT,
       {0, -0.0, -kTiny, -0.03, -1e300},
       {{kTiny, "4.94066e-324"}, {0.001, "0.001"}},
       "(Design Control): The ZEF constraint tolerance (CT={}) should be",
       "     less than or equal to 0.\n\n"},
      NotNegative(&Block::m_fCTMIN,
                  "(Design Control): The ZEF violated constraint tolerance (CTMIN={}) should be",
                  "      larger than or equal to 0.\n\n"),
  };
}

template <class Block>
std::vector<RuleCase<Block>> SoftConvergenceRules(vbFLOAT64 Block::*relative,
                                                  vbFLOAT64 Block::*absolute) {
  return {
      NotNegative(relative,
                  "(Design Control): The ZEF relative soft convergence criterion ({}) should be",
                  "     larger than or equal to 0.\n\n"),
      NotNegative(absolute,
                  "(Design Control): The ZEF absolute soft convergence criterion ({}) should be",
                  "     larger than or equal to 0.\n\n"),
  };
}

template <class Block>
std::vector<RuleCase<Block>> MethodRules() {
  return {
      {&Block::m_nMETHOD,
       {0, 2, 3, 4},
       {{-1, "-1"}, {1, "1"}, {5, "5"}},
       "(Design Control): The ZEF constrained method (METHOD={}) should be",
       "     equal to 0 (MMFD), 2 (SLP), 3 (SQP) or 4 (MEGZEF).\n\n"},
      {&Block::m_nUncMETHOD,
       {0, 2, 4},
       {{-1, "-1"}, {1, "1"}, {3, "3"}, {5, "5"}},
       "(Design Control): The ZEF unconstrained method (METHOD={}) should be",
       "     equal to 0 (BFGS), 2 (FR) or 4(MEGZEF).\n\n"},
      {&Block::m_nISCAL,
       {-1, 0, kMostInt},
       {{-2, "-2"}, {kLeastInt, "-2147483648"}},
       "(Design Control): The ZEF design variable scale value (ISCAL={}) should be",
       "     larger than or equal to -1.\n\n"},
      NotNegative(&Block::m_nITMAX,
                  "(Design Control): The ZEF maximum number of iterations (ITMAX={}) should be ",
                  "     larger than or equal to 0.\n\n"),
      NotNegative(&Block::m_nJTMAX,
                  "(Design Control): The ZEF maximum number of sub-iterations (JTMAX={}) should be",
                  "     larger than or equal to 0.\n\n"),
      NotNegative(&Block::m_nITRMOP,
                  "(Design Control): The ZEF number of iterations to convergence (ITRMOP={})",
                  kNotNegative),
      NotNegative(&Block::m_nITRMST,
                  "(Design Control): The ZEF number of sub-iterations to convergence (ITRMST={})",
                  kNotNegative),
  };
}

template <class Block>
std::vector<RuleCase<Block>> PenaltyRules() {
  return {
      NotNegativeByInteger(
          &Block::m_fPENALT,
          "(Design Control): The MEGZEF continuous penalty parameter (PENALT={}) should be",
          "     larger than or equal to 0.\n\n"),
      NotNegativeByInteger(
          &Block::m_fPMULT,
          "(Design Control): The MEGZEF continuous penalty multiplier (PMULT={}) should be",
          "     larger than or equal to 0.\n\n"),
      NotNegativeByInteger(
          &Block::m_fPENLTD,
          "(Design Control): The MEGZEF discrete penalty parameter (PENLTD={}) should be",
          "     larger than or equal to 0.\n\n"),
      NotNegativeByInteger(
          &Block::m_fPMULTD,
          "(Design Control): The MEGZEF discrete penalty multiplier (PMULTD={}) should be",
          "     larger than or equal to 0.\n\n"),
  };
}

/// With a method that simulates points.
template <class Block>
RuleCase<Block> RandomPointsRule() {
  return {&Block::m_nRandomPoints,
          {1, 1000, kMostInt},
          {{0, ""}, {-1, ""}, {kLeastInt, ""}},
          "(Design Control): The number of simulation points for a random analysis\n",
          "     should be greater than 0.\n\n"};
}

template <class Block>
RuleCase<Block> SavePointsRule() {
  return {&Block::m_nSavePoints,
          {0, 1},
          {{-1, "-1"}, {2, "2"}},
          "(Design Control): The save simulation points flag ({})",
          "     should be either FALSE=0 or TRUE=1.\n\n"};
}

/// What is logged: the first line as an error, the others as information.
inline std::vector<LogEntry> Fault(const std::string& first, const std::vector<std::string>& rest) {
  std::vector<LogEntry> entries{{"LError", first, "", 0}};
  for (const std::string& line : rest) entries.push_back({"LPrint", line, "", 0});
  return entries;
}

inline void Append(std::vector<LogEntry>& log, const std::vector<LogEntry>& entries) {
  log.insert(log.end(), entries.begin(), entries.end());
}

/// Breaks each rule by its last illegal value and adds what is reported then to `log`.
template <class Block>
void BreakAll(Block& block, const std::vector<RuleCase<Block>>& rules, std::vector<LogEntry>& log) {
  for (const auto& rule : rules) {
    const auto& [value, shown] = rule.illegal.back();
    SetField(block, rule, value);
    Append(log, Fault(WithValue(rule.first, shown), {rule.second}));
  }
}
