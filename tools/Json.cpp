#include "Json.h"

#include <cmath>
#include <string_view>

namespace {

/// The length of the UTF-8 character that `text` begins with, 0 when there is none.
std::size_t CharacterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0;
  }
  const auto second = static_cast<unsigned char>(text[1]);
  const bool tooLong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogate = first == 0xED && second >= 0xA0;
  const bool tooLarge = first == 0xF4 && second >= 0x90;
  return tooLong || surrogate || tooLarge ? 0 : length;
}

std::string Escaped(char letter) {
  if (letter == '"' || letter == '\\') return std::string("\\") + letter;
  if (letter == '\n') return "\\n";
  if (letter == '\t') return "\\t";
  if (static_cast<unsigned char>(letter) >= 0x20) return std::string(1, letter);
  char text[8];
  std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(letter));
  return text;
}

std::string JsonNumber(double number) {
  if (std::isnan(number)) return "\"NaN\"";
  if (std::isinf(number)) return number > 0 ? "\"Infinity\"" : "\"-Infinity\"";
  return NumberText(number);
}

}  // namespace

std::string JsonText(const std::string& text) {
  std::string json = "\"";
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t length = CharacterLength(rest);
    if (length == 0) json += "\uFFFD";
    if (length == 1) json += Escaped(rest[0]);
    if (length > 1) json += rest.substr(0, length);
    rest.remove_prefix(length == 0 ? 1 : length);
  }
  return json + '"';
}

std::string JsonValue(const Cell& cell) {
  if (cell.Is(Cell::Kind::Nothing)) return "null";
  if (cell.Is(Cell::Kind::Number)) return JsonNumber(cell.Number());
  if (cell.Is(Cell::Kind::Text)) return JsonText(cell.Text());
  return CellText(cell);
}

void JsonTables::Begin(const std::string& table, const std::vector<std::string>& columns) {
  std::fprintf(out_, "%s  %s: [", hasTable_ ? ",\n" : "{\n", JsonText(table).c_str());
  columns_.clear();
  for (const std::string& column : columns) columns_.push_back(JsonText(column));
  hasTable_ = true;
  hasRow_ = false;
}

void JsonTables::Add(const Row& row) {
  std::string text;
  for (std::size_t i = 0; i < row.size(); ++i) {
    text += (i > 0 ? ", " : "") + columns_[i] + ": " + JsonValue(row[i]);
  }
  std::fprintf(out_, "%s\n    {%s}", hasRow_ ? "," : "", text.c_str());
  hasRow_ = true;
}

void JsonTables::End() {
  std::fprintf(out_, "%s]", hasRow_ ? "\n  " : "");
}

void JsonTables::Finish() {
  std::fprintf(out_, "%s\n}\n", hasTable_ ? "" : "{");
}
