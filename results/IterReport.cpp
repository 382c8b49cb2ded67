#include "results/IterReport.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "results/PointValues.h"
#include "task/SubjectReport.h"
#include "task/TableReport.h"
#include "task/TaskTables.h"

namespace {

using kestdb::ConstraintRow;
using kestdb::ElementAt;
using kestdb::Iteration;
using kestdb::NamePieces;
using kestdb::ObjectiveRow;
using kestdb::PointValues;
using kestdb::VariableRow;

constexpr int kNSGA = 2;  // of CNGOControl::m_nMethod

/// Where a value should be, in a column of 14.
constexpr const char* kNoValue = "       *      ";

PointValues SubjectAt(const Iteration& iteration, const vbINT32& kind) {
  return kind < vbIndependentResp ? kestdb::VariablesAt(iteration.point, iteration.vars, kind)
                                  : kestdb::ResponsesAt(iteration.point, iteration.resps, kind);
}

// ---- What is active and what is violated ----

/// Between which violations a constraint is active; above the second it is violated.
struct Tolerances {
  double active;
  double violated;
};

/// Those of the optimiser that the task runs. A non-gradient one has the second alone. Tasks that
/// run none go by what their copy of the gradient settings says.
Tolerances TolerancesOf(const CTask& task) {
  switch (task.m_nType) {
    case 1:
      return {task.m_RSA.m_fCT, task.m_RSA.m_fCTMIN};
    case 3:
      return {-task.m_NGO.m_fCTMIN, task.m_NGO.m_fCTMIN};
    default:
      return {task.m_DGO.m_fCT, task.m_DGO.m_fCTMIN};
  }
}

/// How far a value is past its bound: negative within it.
double ViolationOf(double value, double bound, int sign, double scale) {
  return sign * (value - bound) / scale;
}

/// What is no number meets no constraint.
char FlagOf(const Tolerances& tolerances, double violation) {
  if (!(violation <= tolerances.violated)) return 'V';
  return violation >= tolerances.active ? '*' : ' ';
}

/// The bounds of variables are scaled as the constraints that are made of them.
char BoundFlag(const Tolerances& tolerances, double value, double bound, int sign) {
  constexpr double none = 1e30;
  if (bound == sign * none) return ' ';
  const double scale = std::max(1.0, std::abs(bound));
  return FlagOf(tolerances, ViolationOf(value, bound, sign, scale));
}

void PrintLegend(std::FILE* stream) {
  std::fprintf(stream, "* - active bound    V - violated bound\n\n");
}

// ---- Rows ----

/// A plain constant has no bounds, a combinatorial one those of its choice.
std::optional<VariableRow::Bounds> BoundsOf(const CDVar& vars, const vbINT32& kind, long at) {
  switch (kind) {
    case vbIndependentVar:
      return VariableRow::Bounds{ElementAt(vars.m_vfIndLower, at),
                                 ElementAt(vars.m_vfIndUpper, at)};
    case vbLinkedVar:
      return VariableRow::Bounds{ElementAt(vars.m_vfLinkLower, at),
                                 ElementAt(vars.m_vfLinkUpper, at)};
    case vbSyntheticVar:
      return VariableRow::Bounds{ElementAt(vars.m_vfSynLower, at),
                                 ElementAt(vars.m_vfSynUpper, at)};
    default:
      if (ElementAt(vars.m_vnConstSet, at) == 0) return std::nullopt;
      return VariableRow::Bounds{ElementAt(vars.m_vfConstLower, at),
                                 ElementAt(vars.m_vfConstUpper, at)};
  }
}

VariableRow VariableRowOf(const Iteration& iteration, const Tolerances& tolerances, long i) {
  const vbINT32& kind = ElementAt(iteration.vars.m_vnType, i);
  const long at = ElementAt(iteration.vars.m_vnSeq, i);
  const PointValues variables = kestdb::VariablesAt(iteration.point, iteration.vars, kind);
  VariableRow row{&variables.NameAt(at),
                  variables.type,
                  variables.ValueAt(at),
                  BoundsOf(iteration.vars, kind, at),
                  ' ',
                  ' '};
  if (row.value != nullptr && row.bounds) {
    row.lowerFlag = BoundFlag(tolerances, *row.value, row.bounds->lower, -1);
    row.upperFlag = BoundFlag(tolerances, *row.value, row.bounds->upper, 1);
  }
  return row;
}

std::string ShortNumber(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%#11.4g", value);
  return text;
}

std::string TargetText(const CDObj& terms, long i) {
  switch (ElementAt(terms.m_vnGoal, i)) {
    case 0:
      return "  minimize ";
    case 1:
      return "  maximize ";
    case 2:
      return ShortNumber(ElementAt(terms.m_vfTarget, i));
    default:
      return "ERROR!!!!";
  }
}

std::string WorstText(const CDObj& terms, long i) {
  return ElementAt(terms.m_vnHasWorst, i) == 0 ? "Undefined"
                                               : ShortNumber(ElementAt(terms.m_vfWorst, i));
}

/// A constant can't be an objective.
ObjectiveRow ObjectiveRowOf(const Iteration& iteration, long i) {
  const CDObj& terms = iteration.terms;
  const vbINT32& kind = ElementAt(terms.m_vnSubjType, i);
  const long at = ElementAt(terms.m_vnSubj, i);
  const PointValues subjects = SubjectAt(iteration, kind);
  const double* value = subjects.ValueAt(at);
  return {&subjects.NameAt(at),
          kind == vbConstantVar ? "?????" : subjects.type,
          TargetText(terms, i),
          WorstText(terms, i),
          value,
          value != nullptr ? terms.Eval(static_cast<int>(i), *value) : 0.0};
}

/// The constraints on linked and synthetic variables are their bounds, which stand with them.
bool IsBoundOfVariable(const vbINT32& kind) {
  return kind == vbLinkedVar || kind == vbSyntheticVar;
}

/// Of the variables, no others can be constrained.
ConstraintRow ConstraintRowOf(const Iteration& iteration, const Tolerances& tolerances, long i) {
  const CDCons& cons = iteration.cons;
  const vbINT32& kind = ElementAt(cons.m_vnSubjType, i);
  const long at = ElementAt(cons.m_vnSubj, i);
  const bool isLower = ElementAt(cons.m_vnMult, i) == -1;
  const PointValues subjects = SubjectAt(iteration, kind);
  ConstraintRow row{&subjects.NameAt(at),
                    kind < vbIndependentResp ? "?????" : subjects.type,
                    isLower ? 'L' : 'U',
                    subjects.ValueAt(at),
                    0.0,
                    ElementAt(cons.m_vfBound, i),
                    ' '};
  const double scale = ElementAt(cons.m_vfScale, i);
  if (row.value != nullptr) {
    row.scaled = ViolationOf(*row.value, row.bound, isLower ? -1 : 1, scale);
    row.flag = FlagOf(tolerances, row.scaled);
  }
  return row;
}

// ---- Lines ----

void PrintRow(std::FILE* stream, const VariableRow& row) {
  const std::vector<std::string> pieces = NamePieces(*row.name);
  const char* name = pieces.front().c_str();
  if (row.bounds && row.value != nullptr) {
    std::fprintf(stream, "    %14.14s  %5.5s  %#14.7g %c %#14.7g   %#14.7g %c\n", name, row.type,
                 row.bounds->lower, row.lowerFlag, *row.value, row.bounds->upper, row.upperFlag);
  } else if (row.bounds) {
    std::fprintf(stream, "    %14.14s  %5.5s  %#14.7g   %s   %#14.7g  \n", name, row.type,
                 row.bounds->lower, kNoValue, row.bounds->upper);
  } else if (row.value != nullptr) {
    std::fprintf(stream, "    %14.14s  %5.5s  %14s   %#14.7g\n", name, row.type, "", *row.value);
  } else {
    std::fprintf(stream, "    %14.14s  %5.5s  %14s   %s\n", name, row.type, "", kNoValue);
  }
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    std::fprintf(stream, "    %-14.14s\n", pieces[i].c_str());
  }
}

void PrintRow(std::FILE* stream, const ObjectiveRow& row) {
  const std::vector<std::string> pieces = NamePieces(*row.name);
  std::fprintf(stream, "%14.14s  %5.5s  %11.11s  %11.11s  ", pieces.front().c_str(), row.type,
               row.target.c_str(), row.worst.c_str());
  if (row.value != nullptr) {
    std::fprintf(stream, "%#14.7g  %#14.7g\n", *row.value, row.objective);
  } else {
    std::fprintf(stream, "%s  %s\n", kNoValue, kNoValue);
  }
  kestdb::PrintRestOfName(stream, pieces);
}

void PrintRow(std::FILE* stream, const ConstraintRow& row) {
  const std::vector<std::string> pieces = NamePieces(*row.name);
  const char* name = pieces.front().c_str();
  if (row.value != nullptr) {
    std::fprintf(stream, "%14.14s  %5.5s   %c  %#14.7g  %#14.7g  %#14.7g %c\n", name, row.type,
                 row.side, *row.value, row.scaled, row.bound, row.flag);
  } else {
    std::fprintf(stream, "%14.14s  %5.5s   %c  %s  %s  %#14.7g  \n", name, row.type, row.side,
                 kNoValue, kNoValue, row.bound);
  }
  kestdb::PrintRestOfName(stream, pieces);
}

}  // namespace

bool kestdb::Iteration::IsOptimization() const {
  return task.m_nType == 0 || task.m_nType == 1 || task.m_nType == 3;
}

bool kestdb::Iteration::HasBestDesign() const {
  return IsOptimization() && (task.m_nType != 3 || task.m_NGO.m_nMethod != kNSGA);
}

std::vector<VariableRow> kestdb::VariableRows(const Iteration& iteration) {
  const Tolerances tolerances = TolerancesOf(iteration.task);
  return TableRows(iteration.vars.m_vnType.size(),
                   [&](long i) { return VariableRowOf(iteration, tolerances, i); });
}

std::vector<ObjectiveRow> kestdb::ObjectiveRows(const Iteration& iteration) {
  return TableRows(iteration.terms.m_vnSubj.size(),
                   [&](long i) { return ObjectiveRowOf(iteration, i); });
}

std::vector<ConstraintRow> kestdb::ConstraintRows(const Iteration& iteration, bool all) {
  const Tolerances tolerances = TolerancesOf(iteration.task);
  std::vector<ConstraintRow> rows;
  for (std::size_t i = 0; i < iteration.cons.m_vnSubjType.size(); ++i) {
    if (IsBoundOfVariable(iteration.cons.m_vnSubjType[i])) continue;
    ConstraintRow row = ConstraintRowOf(iteration, tolerances, static_cast<long>(i));
    if (all || row.value == nullptr || row.flag != ' ') rows.push_back(std::move(row));
  }
  return rows;
}

void kestdb::PrintVariables(std::FILE* stream, const std::vector<VariableRow>& rows) {
  std::fprintf(stream, "                                DESIGN VARIABLES\n");
  std::fprintf(stream, "                                Lower                             Upper\n");
  std::fprintf(stream, "         Name        Type       Bound            Value            Bound\n");
  std::fprintf(stream,
               "    --------------  -----  --------------   --------------   --------------\n");
  for (const VariableRow& row : rows) PrintRow(stream, row);
  const bool flagged = std::any_of(rows.begin(), rows.end(), [](const VariableRow& row) {
    return row.lowerFlag != ' ' || row.upperFlag != ' ';
  });
  if (flagged) {
    PrintLegend(stream);
  } else {
    std::fprintf(stream, "\n");
  }
}

void kestdb::PrintObjectives(std::FILE* stream, const std::vector<ObjectiveRow>& rows) {
  if (rows.empty()) return;
  std::fprintf(stream, "                             OBJECTIVE FUNCTION(S)\n");
  std::fprintf(stream,
               "                          Target       Worst      DVar/Response     Objective\n");
  std::fprintf(stream,
               "     Name        Type     Value        Value          Value           Value\n");
  std::fprintf(stream,
               "--------------  -----  -----------  -----------  --------------  --------------\n");
  for (const ObjectiveRow& row : rows) PrintRow(stream, row);
  std::fprintf(stream, "\n");
}

void kestdb::PrintConstraints(std::FILE* stream, const std::vector<ConstraintRow>& rows) {
  std::fprintf(stream, "                             CONSTRAINED RESPONSES\n");
  std::fprintf(stream,
               "     Name        Type  U/L       Value       Scaled Value        Bound    \n");
  std::fprintf(stream,
               "--------------  -----  ---  --------------  --------------  --------------\n");
  for (const ConstraintRow& row : rows) PrintRow(stream, row);
  if (rows.empty()) {
    std::fprintf(stream, "There were no active or violated constraints for this iteration.\n");
  } else {
    PrintLegend(stream);
  }
}
