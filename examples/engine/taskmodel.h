#pragma once

#include <kestdb.h>

#include <array>
#include <functional>
#include <map>
#include <vector>

#include "formula.h"

/// The analysis program of a study: the values of all variables in the order of transfer go in,
/// those of the independent responses come out.
using Analysis = std::function<std::vector<double>(const std::vector<double>& variables)>;

/// A point of the task with all that follows from it.
struct Design {
  /// The values of a kind of entry (vbEntryKind), by position.
  std::vector<double>& Of(long kind);
  const std::vector<double>& Of(long kind) const;
  const std::vector<double>& Variables() const { return Of(vbIndependentVar); }

  std::array<std::vector<double>, 7> values;
  std::vector<double> objectives;   ///< the terms as they are to be minimised
  double objective = 0;             ///< their sum
  std::vector<double> constraints;  ///< scaled; positive ones are violated
  double worst = CResult::kNoConstraint;
  bool admitted = true;  ///< every discrete variable has one of its values
  int number = -1;       ///< in the study; -1 while it isn't stored
};

/// The records that a task consists of.
struct TaskTables {
  /// THROWS std::runtime_error when one is missing.
  explicit TaskTables(int id);

  CTask task;
  CDVar variables;
  CDResp responses;
  CDCons constraints;
  CDObj objectives;  ///< empty for a design of experiments, which has none
  CDLink links;
  CDEqn functions;
  CDSet sets;
  CDPoint start;
};

/// A task as a run engine sees it: evaluates designs by the task's tables alone.
class TaskModel {
 public:
  TaskModel(int id, Analysis program);

  int ID() const { return id_; }
  const CTask& Task() const { return tables_.task; }
  std::size_t Size() const { return start_.size(); }
  const std::vector<double>& Lower() const { return lower_; }
  const std::vector<double>& Upper() const { return upper_; }
  const std::vector<double>& Start() const { return start_; }
  /// The values that a discrete variable may have, ascending; none for a continuous one.
  const std::vector<double>& Choices(std::size_t variable) const { return choices_[variable]; }
  std::size_t Constraints() const { return tables_.constraints.m_vnSubj.size(); }

  /// The design at these values of the independent variables.
  Design Evaluate(const std::vector<double>& variables);

  bool IsFeasible(const Design& design) const { return design.worst <= Tolerance(); }
  /// Feasible designs go before others, and those by the objective; others by the worst constraint.
  bool IsBetter(const Design& design, const Design& than) const;

  long Analyses() const { return analyses_; }
  double AnalysisSeconds() const { return analysisSeconds_; }

 private:
  double Tolerance() const;
  std::vector<double> ChoicesOf(std::size_t variable) const;
  template <class Table>
  void Derive(const Table& table, long linked, long synthetic, Design& design);
  void Analyse(Design& design);
  void Judge(Design& design) const;
  double Link(long auxiliary, const std::vector<double>& arguments) const;

  int id_;
  Analysis program_;
  TaskTables tables_;
  std::map<long, Formula> formulas_;             ///< by the ID of the definition
  std::map<long, std::vector<double>> factors_;  ///< of links, likewise
  std::vector<double> lower_;
  std::vector<double> upper_;
  std::vector<double> start_;
  std::vector<double> constants_;
  std::vector<std::vector<double>> choices_;
  long analyses_ = 0;
  double analysisSeconds_ = 0;
};
