#pragma once

#include <string>
#include <vector>

#include "tests/fault/processes/Crew.h"
#include "tests/fault/processes/Ledger.h"

/// Where the values lie. THROWS std::invalid_argument for none.
struct Spread {
  explicit Spread(std::vector<double> values);

  double median = 0.0;
  double hundredth = 0.0;  ///< which one of a hundred values is above
  double longest = 0.0;
};

/// How a crew fared. Times are in seconds.
struct CrewFigures {
  CrewFigures(const Log& log, int processes, double start);

  int operations = 0;
  double elapsed = 0.0;    ///< until the last one was done
  double atWork = 0.0;     ///< the work of all operations, as part of that time
  double waited = 0.0;     ///< part of the operations that had to wait
  double endRatio = 1.0;   ///< the time of the slowest process to that of the fastest
  double waitRatio = 1.0;  ///< the same of all that they waited; 0 when the fastest didn't wait
  int turns = 0;           ///< how many times another process was next
  int longestRow = 0;      ///< operations of one process, one after the other, while others wanted
  int timeOuts = 0;
  int releaseSleeps = 0;
  int faults = 0;
  int firstSleeps = 0;  ///< how many different ones
  std::vector<double> waits;
};

/// What became of the cases of one row.
struct Outcome {
  std::string what;
  long cases = 0;
  long reported = 0;
  long wrong = 0;
  long crashed = 0;
  long hung = 0;

  /// Counts those that ended neither well nor by our hand, and tells of them.
  void Judge(const std::vector<Ending>& endings);
  /// Counts and tells what processes and inspection found wrong.
  void Judge(const Log& log, int processes);
  /// Adds what was wrong with another one.
  void Add(const Outcome& other);
  long Bad() const { return wrong + crashed + hung; }
  bool IsGood() const { return Bad() == 0; }
  /// Appends the row to the file that KESTDB_SUMMARY names, if it does.
  void Append() const;
};
