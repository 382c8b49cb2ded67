#include "SqliteTables.h"

#include <sqlite3.h>

#include <cmath>

#include "Ending.h"

namespace {

std::string Identifier(const std::string& name) {
  std::string quoted = "\"";
  for (const char letter : name) {
    if (letter == '"') quoted += '"';
    quoted += letter;
  }
  return quoted + '"';
}

}  // namespace

SqliteTables::SqliteTables(const std::string& path) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  const int result = sqlite3_open_v2(path.c_str(), &database_, flags, nullptr);
  if (result != SQLITE_OK) {
    sqlite3_close(database_);
    throw Refusal(kNotOpened, path + ": " + sqlite3_errstr(result));
  }
  // The file gets its name only when it is whole, so that no journal is needed.
  sqlite3_exec(database_, "PRAGMA journal_mode = OFF", nullptr, nullptr, nullptr);
  sqlite3_exec(database_, "BEGIN", nullptr, nullptr, nullptr);
}

SqliteTables::~SqliteTables() {
  sqlite3_finalize(insert_);
  sqlite3_close(database_);
}

void SqliteTables::Check(int result) const {
  if (result == SQLITE_OK || result == SQLITE_DONE) return;
  throw Refusal(kNotOpened, std::string("SQLite: ") + sqlite3_errmsg(database_));
}

void SqliteTables::Execute(const std::string& statement) {
  Check(sqlite3_exec(database_, statement.c_str(), nullptr, nullptr, nullptr));
}

void SqliteTables::Begin(const std::string& table, const std::vector<std::string>& columns) {
  std::string names;
  std::string places;
  for (const std::string& column : columns) {
    names += (names.empty() ? "" : ", ") + Identifier(column);
    places += places.empty() ? "?" : ", ?";
  }
  Execute("CREATE TABLE " + Identifier(table) + " (" + names + ")");
  const std::string insert = "INSERT INTO " + Identifier(table) + " VALUES (" + places + ")";
  Check(sqlite3_prepare_v2(database_, insert.c_str(), -1, &insert_, nullptr));
}

void SqliteTables::Bind(int place, const Cell& cell) {
  if (cell.Is(Cell::Kind::Nothing)) {
    Check(sqlite3_bind_null(insert_, place));
  } else if (cell.Is(Cell::Kind::Integer)) {
    Check(sqlite3_bind_int64(insert_, place, cell.Integer()));
  } else if (cell.Is(Cell::Kind::Number) && !std::isnan(cell.Number())) {
    Check(sqlite3_bind_double(insert_, place, cell.Number()));
  } else {
    const std::string text = CellText(cell);
    Check(sqlite3_bind_text(insert_, place, text.c_str(), static_cast<int>(text.size()),
                            SQLITE_TRANSIENT));
  }
}

void SqliteTables::Add(const Row& row) {
  for (std::size_t i = 0; i < row.size(); ++i) Bind(static_cast<int>(i) + 1, row[i]);
  Check(sqlite3_step(insert_));
  Check(sqlite3_reset(insert_));
}

void SqliteTables::End() {
  sqlite3_finalize(insert_);
  insert_ = nullptr;
}

void SqliteTables::Finish() {
  Execute("COMMIT");
}
