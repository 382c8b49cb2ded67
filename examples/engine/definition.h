#pragma once

#include <optional>
#include <string>
#include <vector>

class CInput;
class CResp;

/// Between which bounds a variable lies, and where it starts.
struct Range {
  double lower;
  double upper;
  double initial;
};

/// What a response is for: nothing by default.
struct Role {
  bool objective = false;         ///< to be minimised
  std::optional<double> worst{};  ///< its worst value, which several objectives need
  std::optional<double> lower{};  ///< as a constraint
  std::optional<double> upper{};
};

inline Role Objective() {
  return {.objective = true};
}
inline Role Objective(double worst) {
  return {.objective = true, .worst = worst};
}
inline Role AtLeast(double lower) {
  return {.lower = lower};
}
inline Role AtMost(double upper) {
  return {.upper = upper};
}

/// An argument of a link or a function: a variable or response, by the number that Definitions gave
/// it, and its element, from 0.
struct Argument {
  std::string name;
  int number;
  int element = 0;
};

/// A term of a link.
struct Term {
  double factor;
  Argument argument;
};

/// The user interface's part: stores what a study is about in the open database. Each definition
/// gets an ID of the study, and the next place in the order of transfer. The numbers returned are
/// those by which arguments name a definition: negative for variables.
class Definitions {
 public:
  int AddVariable(const std::string& name, const Range& range);
  int AddArray(const std::string& name, unsigned size, const Range& range);
  int AddInteger(const std::string& name, const Range& range);
  /// A variable that takes only the values of a set, which are in ascending order.
  int AddDiscrete(const std::string& name, const Range& range, const std::vector<double>& set);

  /// A response that the analysis program gives.
  int AddAnalysed(const std::string& name, const Role& role);
  /// The constant and the sum of the terms.
  int AddLink(const std::string& name, const Role& role, double constant,
              const std::vector<Term>& terms);
  int AddFunction(const std::string& name, const Role& role, const std::string& equation,
                  const std::vector<Argument>& arguments);

 private:
  int Store(CInput& variable, const std::string& name, const Range& range);
  int Store(CResp& response, const std::string& name, const Role& role);

  unsigned long nextVariable_ = 1;
  unsigned long nextResponse_ = 1;
};

/// Sets up a direct optimisation by gradients, accurate to some six digits.
void DefineGradientTask(const std::string& title);

/// Makes a task of what the open study defines. Its ID.
/// THROWS std::runtime_error when there are faults, which are in the log.
int MakeTask();
