#pragma once

#include <kestdb.h>

#include <exception>

#include "tests/fault/processes/Crew.h"
#include "tests/fault/processes/Environment.h"
#include "tests/fault/processes/Ledger.h"

/// Does one operation and notes how it fared. False when it got no lock in time: then it changed
/// nothing. Any other exception is a fault.
template <class Step>
bool Measure(Log& log, int process, Step step) {
  Ledger& ledger = log.ledgers[process];
  ShowLife();
  const double start = Now();
  const double slept = SleptForLock();
  bool inTime = true;
  try {
    step();
  } catch (const CFileLock&) {
    ++ledger.timeOuts;
    inTime = false;
  } catch (const std::exception& failure) {
    ledger.Fault(failure.what());
  }
  const double wait = SleptForLock() - slept;
  ledger.waits[ledger.operations] = wait;
  ledger.works[ledger.operations] = Now() - start - wait;
  ++ledger.operations;
  log.NoteEnd(process);
  return inTime;
}

/// Does something again as long as there is no lock in time.
template <class Step>
void UntilInTime(Ledger& ledger, Step step) {
  for (;;) {
    try {
      return step();
    } catch (const CFileLock&) {
      ++ledger.timeOuts;
    }
  }
}

/// At the end of all operations of this process.
inline void NoteEndOfWork(Ledger& ledger) {
  ledger.firstSleep = FirstSleep();
  ledger.releaseSleeps = ReleaseSleeps();
  ledger.end = Now();
}
