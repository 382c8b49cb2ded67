#include "tests/fault/Summary.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

std::string SummaryRow::Line() const {
  std::string line = "| " + what + " |";
  for (const long count : {Cases(), unchanged, reported, wrong, crashed, hung}) {
    line += ' ' + std::to_string(count) + " |";
  }
  return line + '\n';
}

std::string SummaryTitle(const std::string& what) {
  return "| " + what + " | cases | unchanged | reported | wrong | crash | hang |\n" +
         "|---|---:|---:|---:|---:|---:|---:|\n";
}

void AppendSummary(const std::vector<SummaryRow>& rows) {
  const char* path = std::getenv("KESTDB_SUMMARY");
  if (path == nullptr) return;
  std::ofstream file(path, std::ios::app);
  for (const SummaryRow& row : rows) file << row.Line();
  file.close();
  if (!file) throw std::runtime_error(std::string("no line can be added to ") + path);
}
