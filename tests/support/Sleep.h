#pragma once

#include <functional>
#include <vector>

// A double of COSUtil::mySleep: a test program with Sleep.cpp among its sources never waits, but
// keeps what it was asked for.

/// The waits since the start of the program or the last ClearSleeps.
const std::vector<unsigned>& Sleeps();

/// What is to happen in each wait from now on.
void OnSleep(std::function<void()> action);

/// Forgets the waits and what is to happen in them.
void ClearSleeps();
