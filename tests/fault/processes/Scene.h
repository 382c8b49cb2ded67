#pragma once

#include <string>

#include "tests/fault/processes/Figures.h"
#include "tests/fault/processes/Ledger.h"
#include "tests/fault/processes/Shared.h"
#include "tests/support/TempFolder.h"

/// A folder with a study for a crew, and what is known of both.
class Scene {
 public:
  explicit Scene(const std::string& what) { outcome_.what = what; }

  std::string Base() const { return folder_ / "study"; }
  const std::string& Folder() const { return folder_.Path(); }
  Log& TheLog() const { return *log_; }
  Outcome& TheOutcome() { return outcome_; }

  /// Makes a study with definitions and a task. THROWS std::runtime_error.
  void Prepare();
  /// When all processes have ended: has the study inspected, by a process of its own.
  void Inspect(int processes, bool afterCrash);

 private:
  TempFolder folder_;
  Shared<Log> log_;
  Outcome outcome_;
  int tasks_ = 0;
};

/// How long the library waits between two tries for the lock.
struct Waiting {
  const char* name;  ///< in milliseconds
  int timeOut;       ///< "LockTimeOut", 0 for the default
  int unit;          ///< microseconds
};

constexpr Waiting kUsual{"75 to 150", 0, 1000};
constexpr Waiting kShortest{"1 to 2", 4, 1000};  // as short as a user can have it
constexpr Waiting kRestless{"0.05 to 0.1", 4, 50};

inline double Milliseconds(double seconds) {
  return 1000.0 * seconds;
}
