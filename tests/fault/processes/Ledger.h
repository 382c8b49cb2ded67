#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <type_traits>

// What the processes of a crew tell about themselves, in memory that they share with the program:
// what is written there outlives them, however they end.

constexpr int kMostProcesses = 32;
constexpr int kMostOperations = 2000;
constexpr int kSlots = 128;     ///< points that a process may have stored at a time
constexpr int kUnitPoints = 4;  ///< which a unit stores, with a message

enum class Kind : int {
  None,
  Add,
  Update,
  LookUp,
  LookUpOther,
  Remove,
  Walk,
  Unit,
  Count,
  TakeID,
  MakeTask,
};

/// What an operation in flight is about. `from` and `to` are the versions of a point, or numbers
/// of what a process did of the kind, before the operation and after it.
struct InFlight {
  std::atomic<Kind> kind{Kind::None};
  int slot = 0;
  int from = 0;
  int to = 0;
};

/// Of one process. An operation counts from the moment when the library's call has returned.
struct Ledger {
  // What it knows to be stored.
  int versions[kSlots] = {};  ///< of its points; 0 for one that isn't there
  int lastVersion = 0;
  int units = 0;
  int counts = 0;
  int ids[kMostOperations] = {};
  int idCount = 0;
  int tasks[kMostOperations] = {};
  int taskCount = 0;
  InFlight inFlight;

  // How it fared. All times are in seconds.
  int operations = 0;
  double waits[kMostOperations] = {};  ///< for the lock, of each operation
  double works[kMostOperations] = {};  ///< the rest of its time
  unsigned firstSleep = 0;             ///< that the library asked for
  int releaseSleeps = 0;               ///< since the lock could not be given back at once
  double end = 0.0;                    ///< on the clock that all processes share
  int timeOuts = 0;
  int faults = 0;
  char firstFault[256] = {};

  void Fault(const char* what) {
    if (faults++ == 0) std::snprintf(firstFault, sizeof firstFault, "%s", what);
  }
};
static_assert(std::atomic<Kind>::is_always_lock_free);
static_assert(std::is_trivially_destructible_v<Ledger>);

/// What became of the objects of operations in flight.
struct Fates {
  int old = 0;
  int fresh = 0;
  int part = 0;
  int lost = 0;
};

/// What an inspection of the study found.
struct Findings {
  long objects = 0;  ///< compared
  int wrong = 0;
  int told = 0;  ///< what a rebuild warned of
  char first[8][160] = {};
  Fates fates;
  bool lockStood = false;

  void Wrong(const char* what, long number) {
    constexpr int places = static_cast<int>(sizeof first / sizeof first[0]);
    if (wrong < places) std::snprintf(first[wrong], sizeof first[0], "%s (%ld)", what, number);
    ++wrong;
  }
};
static_assert(std::is_trivially_destructible_v<Findings>);

/// All of a crew.
struct Log {
  Ledger ledgers[kMostProcesses];
  Findings findings;
  std::atomic<int> ended{0};                                  ///< operations
  std::uint8_t order[kMostProcesses * kMostOperations] = {};  ///< whose they were

  void NoteEnd(int process) {
    const auto place = static_cast<std::size_t>(ended.fetch_add(1));
    if (place < sizeof order) order[place] = static_cast<std::uint8_t>(process);
  }
};
static_assert(std::is_trivially_destructible_v<Log>);
