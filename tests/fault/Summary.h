#pragma once

#include <string>
#include <vector>

/// How many cases of a kind ended how: a row of the table that reliability.sh ends with.
struct SummaryRow {
  std::string what;  ///< was done, in words
  long unchanged = 0;
  long reported = 0;
  long wrong = 0;
  long crashed = 0;
  long hung = 0;

  long Cases() const { return unchanged + reported + wrong + crashed + hung; }
  bool IsSound() const { return wrong + crashed + hung == 0; }
  /// As a row of a table.
  std::string Line() const;
};

/// The title row of a table of such rows, whose first column is named so.
std::string SummaryTitle(const std::string& what);

/// Appends the rows to the file that the environment variable KESTDB_SUMMARY names, if it is set.
/// THROWS std::runtime_error when that can't be written.
void AppendSummary(const std::vector<SummaryRow>& rows);
