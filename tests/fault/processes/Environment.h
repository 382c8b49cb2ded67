#pragma once

#include <string>

// The environment of a process of a crew: it measures the library's waits for the lock, and writes
// the log into a file.

/// Before the first lock of the process. With `timeOut` as "LockTimeOut", the library waits from a
/// quarter to half of that many units between two tries, 0 stands for its default of 300. A unit is
/// a millisecond wherever the environment is the usual one.
void SetUpEnvironment(const std::string& folder, int process, int timeOut,
                      int microsecondsInAUnit = 1000);

/// How long this process slept until now since it wanted the lock, in seconds.
double SleptForLock();
/// The first wait that the library asked for, in units; 0 before it.
unsigned FirstSleep();
/// How many times the lock could not be given back at once.
int ReleaseSleeps();
/// How many times LError and LWarn were called until now.
int LoggedFaults();
