#pragma once

#include <muParser.h>

#include <string>
#include <vector>

/// The right side of a synthetic function, ready to be evaluated. It stays where it was made: the
/// parser knows its arguments by their addresses.
class Formula {
 public:
  /// `names` are separated by commas. THROWS std::runtime_error for a text that is no formula.
  Formula(const std::string& names, const std::string& equation);
  Formula(const Formula&) = delete;
  Formula& operator=(const Formula&) = delete;

  /// THROWS std::runtime_error for another number of arguments than names.
  double operator()(const std::vector<double>& arguments);

 private:
  std::vector<double> arguments_;
  mu::Parser parser_;
};
