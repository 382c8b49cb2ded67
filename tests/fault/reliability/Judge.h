#pragma once

#include <string>

#include "tests/fault/reliability/Endings.h"
#include "tests/fault/reliability/Snapshot.h"
#include "tests/fault/reliability/Units.h"

/// Finds out what a unit of work left of a study, from what the study held before the unit and what
/// it holds after it undisturbed. It does what the guide tells a user of the study to do, and the
/// unit once more.
class Judge {
 public:
  Judge(const Unit& unit, std::string base, const std::string& before, const std::string& after);

  /// Of a unit that ended, of one that reported a failure, of a process that died.
  Judgement OfDone();
  Judgement OfReported();
  Judgement OfKilled();
  /// Of a unit that reported a failure, and whose user goes on without a check.
  Judgement OfRetried();

 private:
  bool IsClean();
  void Upkeep();
  Judgement Open();
  Judgement Compare(const Snapshot& found) const;
  Verdict CompareObject(const std::string& name, const Snapshot& found) const;
  Counters CompareCounters(const Snapshot& found) const;
  Judgement Again(Judgement judgement);
  Snapshot Untouched() const;

  const Unit& unit_;
  std::string base_;
  Snapshot before_;
  Snapshot after_;
  bool toldOfDamage_ = false;  ///< a rebuild did
  bool isSecond_ = false;      ///< the unit was done once more
};
