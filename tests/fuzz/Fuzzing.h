#pragma once

#include <cstddef>
#include <exception>
#include <stdexcept>
#include <string>

#include "store/KestErr.h"

// What the targets share.

/// Counts a failure that was reported.
void CountReport();

/// Runs a step. Failures of the library's family are its good right, all others pass.
template <class Step>
bool Try(Step step) {
  try {
    step();
    return true;
  } catch (const CKestErr&) {
    CountReport();
    return false;
  }
}

/// What an assertion of the library throws here in place of stopping the program.
struct StoppedByAssertion : std::exception {};

/// A report may miss objects, or stop where the tables of a record don't fit each other.
template <class Report>
void TryReport(Report report) {
  try {
    report();
  } catch (const CKestErr&) {
    // Nothing was asked that counts.
  } catch (const StoppedByAssertion&) {
    // That is how the library takes such records.
  }
}

/// THROWS std::logic_error: a finding.
inline void Require(bool holds, const std::string& what) {
  if (!holds) throw std::logic_error(what);
}

/// What a run may take from the machine, seen from its start to Check.
class Budget {
 public:
  /// For files of `bytes` bytes in all.
  explicit Budget(std::size_t bytes);

  /// REQUIREs that all files are closed again and no request for memory was beyond the files'
  /// measure, and counts the run. The fuzzer tells at its end how many there were, with and without
  /// a failure that was reported.
  void Check() const;

 private:
  std::size_t bytes_;
  int handle_;
};
