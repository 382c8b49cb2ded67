#pragma once

#include <string>

#include "tests/fault/reliability/Endings.h"

/// What came of a case.
struct Outcome {
  enum class End { Unchanged, Reported, Killed, Wrong, Crashed, Hung };

  End end = End::Wrong;
  Judgement judgement;      ///< where it was reported or killed
  bool isNewStudy = false;  ///< one that can't be opened held nothing
  bool isBadRetry = false;  ///< going on without a check leads astray
  bool noMemory = false;    ///< reported by std::bad_alloc
  std::string what;         ///< what is wrong, in words; empty when nothing is

  bool IsGood() const { return what.empty(); }
};

struct Figures {
  long cases = 0;
  long unchanged = 0;
  long reported = 0;
  long withUpkeep = 0;  ///< of those reported, where the study needed it
  long badRetry = 0;    ///< of those reported, where going on without a check leads astray
  long old = 0;
  long fresh = 0;
  long part = 0;
  long torn = 0;
  long lost = 0;
  long refused = 0;
  long wrong = 0;
  long crashed = 0;
  long hung = 0;
  long wholeCounters = 0;
  long lostCounters = 0;
  long killed = 0;
  long noMemory = 0;

  bool IsGood() const { return wrong + crashed + hung == 0; }
  bool HasCounters() const { return wholeCounters + lostCounters > 0; }
  void Count(const Outcome& outcome);
  void Add(const Figures& other);

 private:
  void Count(const Judgement& judgement, bool isNewStudy);
};

/// A table of all that became of the studies, in Markdown.
void PrintHead();
void Print(const std::string& unit, const std::string& fault, const Figures& of);

/// A table of what became of the counters of new definitions.
void PrintCountersHead();
void PrintCounters(const std::string& unit, const std::string& fault, const Figures& of);

/// Adds a line to the file that KESTDB_SUMMARY names, if any. THROWS std::runtime_error when it
/// can't be written.
void Summarize(const std::string& done, const Figures& of);
