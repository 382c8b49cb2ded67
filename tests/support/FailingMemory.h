#pragma once

/// While one lives, the allocation number `at`, from 1, of those made with new fails as one does
/// where memory runs out. For test programs with FailingMemory.cpp among their sources.
class FailingMemory {
 public:
  explicit FailingMemory(int at);
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
  ~FailingMemory();

  /// Whether that many were made.
  static bool HasFailed();
};
