#pragma once

#include <string>

// How long a command waits for the lock of a study.

/// Sets how long, in seconds. The library's own short waits count too, but for those of less than
/// a second.
void SetLockWait(double seconds);

/// Waits until the lock directory is gone, and says so.
/// THROWS Refusal when it still stands at the end of the wait, at once when that is 0.
void AwaitLock(const std::string& lockPath);

/// "locked since 2001-02-03 04:05:06", by the age of the lock directory.
std::string LockedSince(const std::string& lockPath);
