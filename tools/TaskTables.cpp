#include <kestdb.h>

#include "Ending.h"
#include "StudyTables.h"
#include "Visit.h"

// The points and iterations of a task.

namespace {

/// Where in the records of a task's points the values of one column stand.
struct Column {
  std::valarray<double> CDPoint::*values;
  std::size_t position;
  std::string name;
};

[[noreturn]] void RefuseTables(int task) {
  throw Refusal(kFault, "the tables of task " + std::to_string(task) + " don't fit each other");
}

/// The column of an entry: what stands at `position` in the values and names of its kind.
Column ColumnOf(int task, std::valarray<double> CDPoint::*values,
                const std::vector<std::string>& names, long position) {
  if (position < 0 || position >= static_cast<long>(names.size())) RefuseTables(task);
  const auto place = static_cast<std::size_t>(position);
  return {values, place, names[place]};
}

Column VariableColumn(const CDVar& table, int task, long kind, long position) {
  switch (kind) {
    case vbIndependentVar:
      return ColumnOf(task, &CDPoint::m_IDVar, table.m_vstrIndName, position);
    case vbLinkedVar:
      return ColumnOf(task, &CDPoint::m_LDVar, table.m_vstrLinkName, position);
    case vbSyntheticVar:
      return ColumnOf(task, &CDPoint::m_SDVar, table.m_vstrSynName, position);
    case vbConstantVar:
      return ColumnOf(task, &CDPoint::m_CDVar, table.m_vstrConstName, position);
    default:
      RefuseTables(task);
  }
}

Column ResponseColumn(const CDResp& table, int task, long kind, long position) {
  switch (kind) {
    case vbIndependentResp:
      return ColumnOf(task, &CDPoint::m_IResp, table.m_vstrIndName, position);
    case vbLinkedResp:
      return ColumnOf(task, &CDPoint::m_LResp, table.m_vstrLinkName, position);
    case vbSyntheticResp:
      return ColumnOf(task, &CDPoint::m_SResp, table.m_vstrSynName, position);
    default:
      RefuseTables(task);
  }
}

/// Adds a column for each entry of a task's table, where the task has one.
template <class Table, class ToColumn>
void AddColumns(POD* pod, int task, ToColumn toColumn, std::vector<Column>& columns) {
  Table table(pod);
  if (!Load(table, task)) return;
  if (table.m_vnSeq.size() != table.m_vnType.size()) RefuseTables(task);
  for (std::size_t i = 0; i < table.m_vnSeq.size(); ++i) {
    columns.push_back(toColumn(table, task, long{table.m_vnType[i]}, long{table.m_vnSeq[i]}));
  }
}

Row PointRow(const CDPoint& point, const std::vector<Column>& columns) {
  Row row{long{point.m_nPointID}, long{point.m_nPointFlag}};
  for (const Column& column : columns) {
    const std::valarray<double>& values = point.*column.values;
    row.push_back(column.position < values.size() ? Cell(values[column.position]) : Cell());
  }
  return row;
}

/// Numbers with blanks between them; nothing for none.
template <class Number>
Cell ListOf(const std::valarray<Number>& numbers) {
  if (numbers.size() == 0) return {};
  std::string text;
  for (const Number& number : numbers) {
    if (!text.empty()) text += ' ';
    text += NumberText(static_cast<double>(number));
  }
  return text;
}

}  // namespace

void WriteTaskPoints(POD* pod, int task, TableWriter& writer) {
  std::vector<Column> columns;
  AddColumns<CDVar>(pod, task, VariableColumn, columns);
  AddColumns<CDResp>(pod, task, ResponseColumn, columns);
  std::vector<std::string> names{"point", "flag"};
  for (const Column& column : columns) names.push_back(column.name);
  writer.Begin("points", Distinct(names));
  VisitOfTask<CDPoint>(pod, task,
                       [&](const CDPoint& point) { writer.Add(PointRow(point, columns)); });
  writer.End();
}

void WriteIterations(POD* pod, int task, TableWriter& writer) {
  writer.Begin("iterations", {"iteration", "sub_iteration", "point", "objective",
                              "worst_constraint", "best_point", "best_objective", "best_constraint",
                              "pareto_points", "pareto_values"});
  VisitOfTask<CIter>(pod, task, [&writer](const CIter& iter) {
    writer.Add({long{iter.m_nIter}, long{iter.m_nSubIter}, long{iter.m_nThisPoint},
                double{iter.m_fThisObjective}, double{iter.m_fThisConstraint},
                long{iter.m_nBestPoint}, double{iter.m_fBestObjective},
                double{iter.m_fBestConstraint}, ListOf(iter.m_ParetoPoints),
                ListOf(iter.m_ParetoValues)});
  });
  writer.End();
}
