#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "store/vbscalar.h"
#include "tests/support/Log.h"

// Rules on single fields of a control block, tested from a list.

/// A value that breaks a rule, and how the message shows it.
struct IllegalValue {
  double value;
  std::string shown;
};

/// A rule: values of the field that it allows, values that it doesn't, and the two lines that it
/// reports, with "{}" where the first shows the value.
template <class Block>
struct RuleCase {
  std::variant<vbINT32 Block::*, vbFLOAT64 Block::*> field;
  std::vector<double> legal;
  std::vector<IllegalValue> illegal;
  std::string first;
  std::string second;
};

template <class Block>
void SetField(Block& block, const RuleCase<Block>& rule, double value) {
  std::visit(
      [&](auto field) {
        if constexpr (std::is_same_v<decltype(field), vbINT32 Block::*>) {
          block.*field = static_cast<int>(value);
        } else {
          block.*field = value;
        }
      },
      rule.field);
}

inline std::string WithValue(std::string line, const std::string& shown) {
  const auto place = line.find("{}");
  return place == std::string::npos ? line : line.replace(place, 2, shown);
}

/// Expects of each rule, with all other fields as in `legal`, that `check(block)` holds without a
/// word for a legal value, and fails with just the two lines for an illegal one.
template <class Block, class Check>
void ExpectRules(const Block& legal, const std::vector<RuleCase<Block>>& rules, Check check) {
  for (const RuleCase<Block>& rule : rules) {
    SCOPED_TRACE(rule.first);
    for (const double value : rule.legal) {
      SCOPED_TRACE(value);
      Block block;
      block.Copy(legal);
      SetField(block, rule, value);
      ClearLog();
      EXPECT_TRUE(check(block));
      EXPECT_TRUE(Log().empty()) << PrintedLog();
    }
    for (const auto& [value, shown] : rule.illegal) {
      SCOPED_TRACE(value);
      Block block;
      block.Copy(legal);
      SetField(block, rule, value);
      ClearLog();
      EXPECT_FALSE(check(block));
      EXPECT_EQ(Log(), (std::vector<LogEntry>{{"LError", WithValue(rule.first, shown), "", 0},
                                              {"LPrint", rule.second, "", 0}}));
    }
  }
}
