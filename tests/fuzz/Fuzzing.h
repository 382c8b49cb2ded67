#pragma once

#include <cstddef>
#include <exception>
#include <random>
#include <stdexcept>
#include <string>

#include "store/KestErr.h"

// What the targets share.

/// Runs a step. Failures of the library's family are its good right, all others pass.
template <class Step>
bool Try(Step step) {
  try {
    step();
    return true;
  } catch (const CKestErr&) {
    return false;
  }
}

/// What an assertion of the library throws here in place of stopping the program.
struct StoppedByAssertion : std::exception {};

/// A report too may stop where the tables of a record don't fit each other.
template <class Report>
void TryReport(Report report) {
  try {
    Try(report);
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
  /// measure.
  void Check() const;

 private:
  std::size_t bytes_;
  int handle_;
};

/// Changes variable-block files.
class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  std::size_t Below(std::size_t limit) { return random_() % limit; }

  /// Changes something in the file. Mostly the blocks stay where they are, and the checksums are
  /// made right again.
  void Mutate(std::string& file, std::size_t mostBytes);

 private:
  void MutatePart(std::string& file, std::size_t offset, std::size_t size);
  void PutWord(std::string& file);

  std::mt19937 random_;
};

/// Gives each block from the heap's start on, as long as one follows the other, the checksum of
/// its object.
void Seal(std::string& file);
