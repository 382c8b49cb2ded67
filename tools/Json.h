#pragma once

#include "Table.h"

/// A text as JSON holds it, in quotes. Bytes that are no UTF-8 become U+FFFD.
std::string JsonText(const std::string& text);

/// A value as JSON holds it: null for nothing, and the texts "NaN", "Infinity" and "-Infinity" for
/// what JSON has no number for.
std::string JsonValue(const Cell& cell);

/// Prints one object with a member for each table: an array with an object for each row. It ends
/// with Finish.
class JsonTables : public TableWriter {
 public:
  explicit JsonTables(std::FILE* out) : out_(out) {}

  void Begin(const std::string& table, const std::vector<std::string>& columns) override;
  void Add(const Row& row) override;
  void End() override;
  void Finish();

 private:
  std::FILE* out_;
  std::vector<std::string> columns_;  // as JSON holds them
  bool hasTable_ = false;
  bool hasRow_ = false;
};
