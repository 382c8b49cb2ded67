#pragma once

#include <string>
#include <vector>

#include "tests/support/Log.h"

// What a check has printed, as a list of faults of several lines each.

/// The lines that were printed since the last ClearLog; exceptions are left out.
inline std::vector<LogEntry> PrintedLines() {
  std::vector<LogEntry> lines;
  for (const LogEntry& entry : Log()) {
    if (entry.file.empty()) lines.push_back(entry);
  }
  return lines;
}

/// The lines of faults one after the other: of each, the first is an error and the others follow by
/// LPrint.
inline std::vector<LogEntry> Faults(const std::vector<std::vector<std::string>>& faults) {
  std::vector<LogEntry> lines;
  for (const auto& fault : faults) {
    for (const std::string& line : fault) {
      lines.push_back({&line == &fault.front() ? "LError" : "LPrint", line, "", 0});
    }
  }
  return lines;
}
