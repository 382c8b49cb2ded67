// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "maintenance/Lock.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"

// What the reports of a task's smaller tables share: constraints, objectives, links, functions and
// sets.

namespace kestdb {

/// The pieces in which a name fills a column of that width; at least one.
std::vector<std::string> NamePieces(std::string name, int columns = 14);

/// The lines that a text fills in a column of that width; at least one.
std::vector<std::string> TextPieces(std::string text, int columns);

/// The title above its bar, and the heads of the columns.
void PrintTableHead(std::FILE* stream, const char* title,
                    std::initializer_list<const char*> columns);

/// What `rowOf(position)` makes of each position of a table.
template <class RowOf>
auto TableRows(std::size_t count, RowOf rowOf) {
  std::vector<decltype(rowOf(0L))> rows;
  rows.reserve(count);
  for (std::size_t i = 0; i < count; ++i) rows.push_back(rowOf(static_cast<long>(i)));
  return rows;
}

/// Prints a table whose rows are made already, so that a damaged one isn't printed in part.
template <class Row, class PrintRow>
void PrintTable(std::FILE* stream, const char* title, std::initializer_list<const char*> columns,
                const std::vector<Row>& rows, PrintRow printRow) {
  PrintTableHead(stream, title, columns);
  for (const Row& row : rows) printRow(stream, row);
  PrintEnd(stream);
}

/// Hands a task's table to `print`, unless the task has none.
template <class Table, class Print>
void ReportTable(POD* pod, const std::FILE* stream, int task, Print print) {
  RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  Table table(pod);
  if (LoadByID(table, task)) print(table);
}

}  // namespace kestdb
