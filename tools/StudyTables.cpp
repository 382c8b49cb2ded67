#include "StudyTables.h"

#include <kestdb.h>

#include <algorithm>
#include <limits>

#include "Visit.h"

// ---- Names of codes ----

namespace {

/// Codes that nobody knows stand as the number.
std::string NameOf(long code, const std::vector<const char*>& names) {
  const bool known = code >= 0 && code < static_cast<long>(names.size());
  return known ? names[static_cast<std::size_t>(code)] : std::to_string(code);
}

std::string InputTypeName(long type) {
  return NameOf(type, {"independent", "linked", "synthetic", "constant", "discrete", "integer",
                       "combinatorial"});
}

std::string RespTypeName(long type) {
  return NameOf(type, {"independent", "linked", "synthetic", "pass/fail"});
}

template <class Definition>
Cell GoalOf(const Definition& definition) {
  if (definition.m_nObjective == 0) return {};
  return NameOf(definition.m_nGoal, {"minimise", "maximise", "target"});
}

/// The number, where there is one.
Cell NumberIf(bool given, double number) {
  return given ? Cell(number) : Cell();
}

template <class Definition>
Cell TargetOf(const Definition& definition) {
  return NumberIf(definition.m_nObjective != 0 && definition.m_nGoal == 2, definition.m_fTarget);
}

}  // namespace

std::string TaskTypeName(long type) {
  return NameOf(type, {"direct gradient", "response surface", "design of experiments",
                       "non-gradient", "analysis"});
}

std::string RunStatusName(long status) {
  return NameOf(status, {"not run", "running", "completed", "3", "terminated"});
}

// ---- Tasks ----

namespace {

Row TaskRow(POD* pod, const CTask& task) {
  CResult result(pod);
  const bool hasResult = Load(result, task.m_nID);
  const Cell status = hasResult ? Cell(RunStatusName(result.m_nRunStatus)) : Cell();
  const Cell points = hasResult ? Cell(long{result.m_nNumPoints}) : Cell();
  const bool isChild = task.m_nParent > 0;
  return {long{task.m_nID},
          TaskTypeName(task.m_nType),
          task.m_strTitle,
          status,
          points,
          BestObjective(pod, static_cast<int>(long{task.m_nID})),
          isChild ? Cell(long{task.m_nParent}) : Cell(),
          task.m_strCreated};
}

}  // namespace

Cell BestObjective(POD* pod, int task) {
  CResult result(pod);
  const bool wasRun = Load(result, task) && result.m_nRunStatus != 0;
  const double best = result.m_fBestObjective;
  return NumberIf(wasRun && best != std::numeric_limits<double>::max(), best);
}

void WriteTasks(POD* pod, TableWriter& writer) {
  writer.Begin("tasks", {"task", "type", "title", "status", "points", "best", "parent", "created"});
  VisitAll<CTask>(pod, [&](const CTask& task) { writer.Add(TaskRow(pod, task)); });
  writer.End();
}

// ---- Definitions ----

void WriteInputs(POD* pod, TableWriter& writer) {
  writer.Begin("inputs", {"id", "name", "type", "size", "place", "lower", "upper", "initial",
                          "goal", "target", "text"});
  VisitAll<CInput>(pod, [&writer](const CInput& input) {
    writer.Add({long{input.m_nID}, input.m_strName, InputTypeName(input.m_nType),
                static_cast<long>(input.m_uSize.PackBits()),
                static_cast<long>(input.m_uIndex.PackBits()),
                NumberIf(input.m_fLower != -1e30, input.m_fLower),
                NumberIf(input.m_fUpper != 1e30, input.m_fUpper), double{input.m_fInitial},
                GoalOf(input), TargetOf(input), input.m_strText});
  });
  writer.End();
}

void WriteResponses(POD* pod, TableWriter& writer) {
  writer.Begin("responses",
               {"id", "name", "type", "size", "place", "lower", "upper", "goal", "target", "text"});
  VisitAll<CResp>(pod, [&writer](const CResp& response) {
    const bool bounded = response.m_nConstraint != 0;
    writer.Add({long{response.m_nID}, response.m_strName, RespTypeName(response.m_nType),
                static_cast<long>(response.m_uSize.PackBits()),
                static_cast<long>(response.m_uIndex.PackBits()),
                NumberIf(bounded && response.m_nHasLower != 0, response.m_fLower),
                NumberIf(bounded && response.m_nHasUpper != 0, response.m_fUpper), GoalOf(response),
                TargetOf(response), response.m_strText});
  });
  writer.End();
}

// ---- The user's points ----

namespace {

struct Place {
  unsigned long index;
  unsigned long size;
  std::string name;
};

/// The first `columns` names of the scalars of a class, in the order of their places. Columns that
/// nothing is defined for are numbered.
template <class Definition>
std::vector<std::string> ScalarNames(POD* pod, std::size_t columns, const std::string& other) {
  std::vector<Place> places;
  VisitAll<Definition>(pod, [&places](const Definition& definition) {
    places.push_back(
        {definition.m_uIndex.PackBits(), definition.m_uSize.PackBits(), definition.m_strName});
  });
  std::stable_sort(places.begin(), places.end(),
                   [](const Place& a, const Place& b) { return a.index < b.index; });
  std::vector<std::string> names;
  for (const Place& place : places) {
    for (unsigned long i = 1; i <= place.size && names.size() < columns; ++i) {
      const std::string element = place.size > 1 ? "[" + std::to_string(i) + "]" : "";
      names.push_back(place.name + element);
    }
  }
  while (names.size() < columns) names.push_back(other + std::to_string(names.size() + 1));
  return names;
}

std::size_t LongestRow(const std::vector<std::vector<vbFLOAT64>>& rows) {
  std::size_t longest = 0;
  for (const auto& row : rows) longest = std::max(longest, row.size());
  return longest;
}

Cell FlagAt(const std::vector<vbINT32>& flags, std::size_t i) {
  return i < flags.size() ? Cell(long{flags[i]}) : Cell();
}

void AppendValues(Row& row, const std::vector<std::vector<vbFLOAT64>>& values, std::size_t point,
                  std::size_t columns) {
  for (std::size_t i = 0; i < columns; ++i) {
    const bool isThere = point < values.size() && i < values[point].size();
    row.push_back(isThere ? Cell(double{values[point][i]}) : Cell());
  }
}

}  // namespace

void WriteUserPoints(POD* pod, TableWriter& writer) {
  CGPoint points(pod);
  points.GetObject();
  const std::size_t variables = LongestRow(points.m_vDVars);
  const std::size_t responses = LongestRow(points.m_vResps);
  std::vector<std::string> columns{"point", "used", "run", "locked"};
  for (auto& name : ScalarNames<CInput>(pod, variables, "variable")) columns.push_back(name);
  for (auto& name : ScalarNames<CResp>(pod, responses, "response")) columns.push_back(name);
  writer.Begin("points", Distinct(columns));
  const std::size_t count =
      std::max({points.m_vnUsed.size(), points.m_vDVars.size(), points.m_vResps.size()});
  for (std::size_t i = 0; i < count; ++i) {
    StopIfInterrupted();
    Row row{static_cast<long>(i + 1), FlagAt(points.m_vnUsed, i), FlagAt(points.m_vnRun, i),
            FlagAt(points.m_vnLocked, i)};
    AppendValues(row, points.m_vDVars, i, variables);
    AppendValues(row, points.m_vResps, i, responses);
    writer.Add(row);
  }
  writer.End();
}
