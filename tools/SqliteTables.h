#pragma once

#include "Table.h"

struct sqlite3;
struct sqlite3_stmt;

/// Writes tables into a new SQLite database. What is no number is stored as the text "nan", for
/// SQLite takes it for NULL. All THROW Refusal with SQLite's own message.
class SqliteTables : public TableWriter {
 public:
  explicit SqliteTables(const std::string& path);
  ~SqliteTables() override;

  void Begin(const std::string& table, const std::vector<std::string>& columns) override;
  void Add(const Row& row) override;
  void End() override;
  /// Brings all to the file.
  void Finish();

 private:
  void Check(int result) const;
  void Execute(const std::string& statement);
  void Bind(int place, const Cell& cell);

  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
};
