#include "Table.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <set>

// ---- Texts ----

std::string NumberText(double number) {
  if (std::isnan(number)) return "nan";
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, number).ptr;
  return std::string(text, end);
}

std::string CellText(const Cell& cell) {
  if (cell.Is(Cell::Kind::Integer)) return std::to_string(cell.Integer());
  if (cell.Is(Cell::Kind::Number)) return NumberText(cell.Number());
  return cell.Text();
}

namespace {

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) {
    return static_cast<char>(letter < 128 ? std::tolower(letter) : letter);
  });
  return text;
}

}  // namespace

std::vector<std::string> Distinct(const std::vector<std::string>& names) {
  std::set<std::string> seen;
  std::vector<std::string> distinct;
  for (const std::string& name : names) {
    std::string candidate = name;
    for (int number = 2; !seen.insert(LowerCase(candidate)).second; ++number) {
      candidate = name + "_" + std::to_string(number);
    }
    distinct.push_back(candidate);
  }
  return distinct;
}

// ---- Aligned columns ----

namespace {

/// Characters, not bytes.
std::size_t WidthOf(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  }));
}

/// A name may hold anything; no line of the table is to be broken by it.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char letter) { return letter < 32 || letter == 127; },
      ' ');
  return text;
}

}  // namespace

void AlignedTable::Begin(const std::string&, const std::vector<std::string>& columns) {
  head_ = {};
  lines_.clear();
  for (const std::string& column : columns) head_.cells.push_back(OneLine(column));
  head_.isNumber.assign(columns.size(), false);
}

void AlignedTable::Add(const Row& row) {
  Line line;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const bool isNothing = row[i].Is(Cell::Kind::Nothing);
    const bool isNumber = row[i].Is(Cell::Kind::Integer) || row[i].Is(Cell::Kind::Number);
    line.cells.push_back(isNothing ? "-" : OneLine(CellText(row[i])));
    line.isNumber.push_back(isNumber);
    if (isNumber && i < head_.isNumber.size()) head_.isNumber[i] = true;
  }
  lines_.push_back(std::move(line));
}

void AlignedTable::End() {
  std::vector<std::size_t> widths;
  for (const std::string& cell : head_.cells) widths.push_back(WidthOf(cell));
  for (const Line& line : lines_) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], WidthOf(line.cells[i]));
    }
  }
  std::fprintf(out_, "%s\n", bold_(Join(head_, widths)).c_str());
  for (const Line& line : lines_) std::fprintf(out_, "%s\n", Join(line, widths).c_str());
}

/// Numbers stand at the right of their column.
std::string AlignedTable::Join(const Line& line, const std::vector<std::size_t>& widths) const {
  std::string joined;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const std::string blanks(widths[i] - WidthOf(line.cells[i]), ' ');
    if (i > 0) joined += "  ";
    joined += line.isNumber[i] ? blanks + line.cells[i] : line.cells[i] + blanks;
  }
  joined.erase(joined.find_last_not_of(' ') + 1);
  return joined;
}

// ---- Comma-separated values ----

namespace {

std::string Quoted(const std::string& cell) {
  if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
  std::string quoted = "\"";
  for (const char letter : cell) {
    if (letter == '"') quoted += '"';
    quoted += letter;
  }
  return quoted + '"';
}

}  // namespace

void CsvTable::Begin(const std::string&, const std::vector<std::string>& columns) {
  Print(columns);
}

void CsvTable::Add(const Row& row) {
  std::vector<std::string> cells;
  for (const Cell& cell : row) cells.push_back(CellText(cell));
  Print(cells);
}

void CsvTable::Print(const std::vector<std::string>& cells) const {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += ',';
    line += Quoted(cells[i]);
  }
  std::fprintf(out_, "%s\n", line.c_str());
}
