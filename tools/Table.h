#pragma once

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

/// A value of a table, or nothing.
class Cell {
 public:
  enum class Kind { Nothing, Integer, Number, Text };

  Cell() = default;
  Cell(long integer) : kind_(Kind::Integer), integer_(integer) {}
  Cell(double number) : kind_(Kind::Number), number_(number) {}
  Cell(std::string text) : kind_(Kind::Text), text_(std::move(text)) {}

  bool Is(Kind kind) const { return kind_ == kind; }
  // 0 and empty for a cell of another kind.
  long Integer() const { return integer_; }
  double Number() const { return number_; }
  const std::string& Text() const { return text_; }

 private:
  Kind kind_ = Kind::Nothing;
  long integer_ = 0;
  double number_ = 0.0;
  std::string text_;
};
using Row = std::vector<Cell>;

/// The shortest text that reads back as the same number; "nan", "inf" and "-inf".
std::string NumberText(double number);

/// The text of a cell, empty for nothing.
std::string CellText(const Cell& cell);

/// The names with a number behind those that stood before, also in the other case: no two are
/// alike.
std::vector<std::string> Distinct(const std::vector<std::string>& names);

/// Takes tables row by row, in whatever form.
class TableWriter {
 public:
  TableWriter() = default;
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;
  virtual ~TableWriter() = default;

  virtual void Begin(const std::string& table, const std::vector<std::string>& columns) = 0;
  /// REQUIRES a cell for each column.
  virtual void Add(const Row& row) = 0;
  virtual void End() = 0;
};

/// Prints aligned columns.
class AlignedTable : public TableWriter {
 public:
  /// `bold` is given back the head of the table, as it is to be shown.
  AlignedTable(std::FILE* out, std::string (*bold)(const std::string&)) : out_(out), bold_(bold) {}

  void Begin(const std::string& table, const std::vector<std::string>& columns) override;
  void Add(const Row& row) override;
  void End() override;

 private:
  struct Line {
    std::vector<std::string> cells;
    std::vector<bool> isNumber;
  };
  std::string Join(const Line& line, const std::vector<std::size_t>& widths) const;

  std::FILE* out_;
  std::string (*bold_)(const std::string&);
  Line head_;
  std::vector<Line> lines_;
};

/// Prints comma-separated values under a line of names.
class CsvTable : public TableWriter {
 public:
  explicit CsvTable(std::FILE* out) : out_(out) {}

  void Begin(const std::string& table, const std::vector<std::string>& columns) override;
  void Add(const Row& row) override;
  void End() override {}

 private:
  void Print(const std::vector<std::string>& cells) const;

  std::FILE* out_;
};
