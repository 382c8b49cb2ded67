#pragma once

#include <chrono>

/// What the process has used since its start: differences of two are what lies between them.
struct PeerCounters {
  static PeerCounters Now();

  std::chrono::steady_clock::time_point time;
  double transfers = 0;  ///< system calls that read or write, of all files
  double syncs = 0;      ///< calls of fsync and fdatasync
};
