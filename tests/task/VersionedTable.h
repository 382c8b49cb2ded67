#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"
#include "tests/task/TableColumns.h"

// The two tables of a task that have grown with the versions: variables and responses.

/// A column, the version that first stores it, and what a filled table of an older version has in
/// its place; nothing by default.
template <class Table>
struct VersionedColumn {
  using Expectation = std::function<void(const Table&)>;

  template <class Elements>
  VersionedColumn(Elements Table::*member, const Content<std::type_identity_t<Elements>>& content,
                  const Content<std::type_identity_t<Elements>>& otherContent,
                  std::vector<std::size_t> countPlaces = {0}, long sinceVersion = 1,
                  Expectation missing = nullptr)
      : column(member, content, otherContent, std::move(countPlaces)),
        since(sinceVersion),
        expectMissing(missing ? std::move(missing) : column.expectEmpty) {}

  Column<Table> column;
  long since;
  Expectation expectMissing;
};

/// All columns of a table, in the order of its record.
template <class Table>
using VersionedColumns = std::vector<VersionedColumn<Table>>;

/// Of a table: `ID`, `Index`, `Version` and `Name` of its class, and `All()`, its columns.
template <class Table>
struct VersionedTableOf;

/// The whole table with ID 7.
template <class Table>
Table FilledTable(POD* pod) {
  Table table(pod);
  table.m_nID = 7;
  for (const auto& [column, since, missing] : VersionedTableOf<Table>::All()) column.fill(table);
  return table;
}

template <class Table>
void ExpectFilled(const Table& table) {
  EXPECT_EQ(table.m_nID, 7);
  for (const auto& [column, since, missing] : VersionedTableOf<Table>::All()) {
    SCOPED_TRACE(column.filled);
    column.expectFilled(table);
  }
}

template <class Table>
void ExpectEmpty(const Table& table) {
  for (const auto& [column, since, missing] : VersionedTableOf<Table>::All()) {
    column.expectEmpty(table);
  }
}

/// The bytes of FilledTable's record in a version.
template <class Table>
std::string RecordOf(long version) {
  std::string record = HexWord(version) + " 07 00 00 00 ";
  for (const auto& [column, since, missing] : VersionedTableOf<Table>::All()) {
    if (since <= version) record += column.filled;
  }
  return Bytes(record);
}
