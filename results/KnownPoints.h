// Private to the library, not installed.
#pragma once

#include "results/DPoint.h"

class POD;

namespace kestdb {

/// A point of a task. THROWS CGetObject for one that isn't there or that no number can have.
CDPoint RequirePoint(POD* pod, const vbINT32& task, long number);

/// The number of the best design that the best iteration of a run knows: it may be older than the
/// iteration's own point. THROWS CGetObject without the task's result or that iteration.
long BestPointOf(POD* pod, const vbINT32& task);

}  // namespace kestdb
