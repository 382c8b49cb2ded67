// Private to the library, not installed.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "results/DPoint.h"
#include "results/Iter.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"

// The tables in the report of an iteration. Their rows are made before a line is printed, so that a
// damaged iteration isn't printed in part.

namespace kestdb {

/// An iteration with the tables of its task and the point that is shown.
struct Iteration {
  CTask task;
  CIter iter;
  CDVar vars;
  CDResp resps;
  CDCons cons;
  CDObj terms;  ///< Empty for a design of experiments, which has none
  CDPoint point;

  bool IsOptimization() const;
  /// A run that looks for a front of designs has no one best among them.
  bool HasBestDesign() const;
};

// Rows point into the iteration. A value is null where the point has none.

struct VariableRow {
  struct Bounds {
    double lower;
    double upper;
  };
  const std::string* name;
  const char* type;
  const double* value;
  std::optional<Bounds> bounds;  ///< None where nothing bounds the variable
  char lowerFlag;
  char upperFlag;
};

struct ObjectiveRow {
  const std::string* name;
  const char* type;
  std::string target;
  std::string worst;
  const double* value;
  double objective;
};

struct ConstraintRow {
  const std::string* name;
  const char* type;
  char side;
  const double* value;
  double scaled;  ///< Above 0 where the constraint is not met
  double bound;
  char flag;
};

// Each THROWS CInvalidType for an entry of no known kind, CInvalidArgument for one outside its
// table and for columns that don't fit each other.

std::vector<VariableRow> VariableRows(const Iteration& iteration);
std::vector<ObjectiveRow> ObjectiveRows(const Iteration& iteration);
/// The constraints on responses: all, or those that are active, violated or without a value.
std::vector<ConstraintRow> ConstraintRows(const Iteration& iteration, bool all);

// Each ends with an empty line, but for a table without a constraint.

void PrintVariables(std::FILE* stream, const std::vector<VariableRow>& rows);
/// Prints nothing where there are no objectives.
void PrintObjectives(std::FILE* stream, const std::vector<ObjectiveRow>& rows);
void PrintConstraints(std::FILE* stream, const std::vector<ConstraintRow>& rows);

}  // namespace kestdb
