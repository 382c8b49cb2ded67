#pragma once

/// While one lives, only the first `left` allocations succeed of those that report by a null
/// pointer, new (std::nothrow); all others are as ever. For test programs with ScarceMemory.cpp
/// among their sources.
class ScarceMemory {
 public:
  explicit ScarceMemory(int left);
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;
  ~ScarceMemory();
};
