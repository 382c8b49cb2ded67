#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/fault/Summary.h"

/// How a case ended, from the best to the worst.
enum class Ending : std::uint8_t {
  Clean,     ///< everything was as stored
  Reported,  ///< an exception told of the damage
  Silent,    ///< something was lost, and nothing told of it
  Failed,    ///< what must not happen, as the note says
  Crashed,
  Hung,
  NotRun
};

const char* EndingName(Ending ending);

struct CaseResult {
  Ending ending = Ending::NotRun;
  bool silentRead = false;  ///< nothing told of a loss until the files were written to
  std::uint8_t figure = 0;  ///< which figure of the caller's own the case counts for
  char note[94] = {};       ///< what was seen, for a reader
  char spread[16] = {};     ///< an object that was lost by writing into the damaged files
};

/// Counts the case in the row.
void Count(SummaryRow& row, const CaseResult& result);

/// Runs case 0 to `count` - 1, many in each child process, and gives their results in order. A
/// case that crashes or takes more than a second of processor time ends its child alone, and is
/// told as such. Stops early behind very many of those.
///
/// With a leak checker in the program, a batch of cases that leaks has its last case fail.
std::vector<CaseResult> RunCases(std::size_t count,
                                 const std::function<CaseResult(std::size_t)>& run);
