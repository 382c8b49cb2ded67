#include <sstream>

#include "environment/Utilities.h"

namespace {

std::string WithoutComment(const std::string& line) {
  return line.substr(0, line.find_first_of("#;"));
}

std::string WithoutOuterBlanks(const std::string& text) {
  const char* blanks = " \t\r\v\f";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

}  // namespace

// Lines of `Key = value`. A comment goes from # or ; to the end of its line, blanks around key and
// value don't count, lines without = say nothing, and of several lines with a key the first holds.
bool CInitFile::Get(const std::string& key, std::string& value) {
  std::istringstream lines(m_strText);
  for (std::string line; std::getline(lines, line);) {
    const std::string entry = WithoutComment(line);
    const std::size_t equals = entry.find('=');
    if (equals == std::string::npos || WithoutOuterBlanks(entry.substr(0, equals)) != key) continue;
    value = WithoutOuterBlanks(entry.substr(equals + 1));
    return true;
  }
  return false;
}
