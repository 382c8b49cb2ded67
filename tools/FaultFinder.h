#pragma once

#include <cstdio>
#include <string>

/// As long as it lives, the library's log is the result of the command: it goes to `out`, and is
/// looked through for faults of the data, of which the library throws only some.
class FaultFinder {
 public:
  /// THROWS Refusal.
  explicit FaultFinder(std::FILE* out);
  FaultFinder(const FaultFinder&) = delete;
  FaultFinder& operator=(const FaultFinder&) = delete;
  ~FaultFinder();

  /// Whether what was printed by now tells of a fault.
  bool HasFaults() const;

 private:
  static ssize_t Take(void* self, const char* text, std::size_t size);
  void EndLine();
  void TakeStatus();

  std::FILE* out_;
  std::FILE* stream_;
  std::FILE* before_;
  std::string line_;     // so far
  bool isFree_ = false;  // the block that the report is at
  bool hasFaults_ = false;
};
