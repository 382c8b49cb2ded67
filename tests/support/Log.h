#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// A double of the environment's logging library: a test program with Log.cpp among its sources
// logs to here in place of the log stream.

/// A line of the log. `kind` is the name of the logging function, or "fKLog" for what was written
/// to that stream.
struct LogEntry {
  std::string kind;
  std::string text;  ///< the message, what() or, for LGenException, nothing
  std::string file;  ///< of the three exception functions
  int line = 0;

  bool operator==(const LogEntry&) const = default;
};

/// How a failed comparison shows it.
std::ostream& operator<<(std::ostream& stream, const LogEntry& entry);

/// What was logged since the start of the program or the last ClearLog.
const std::vector<LogEntry>& Log();
void ClearLog();

/// The texts of LError, LWarn, LPrint and fKLog, one after the other.
std::string PrintedLog();
