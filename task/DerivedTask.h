// Private to the library, not installed.
#pragma once

#include <vector>

#include "results/DPoint.h"
#include "results/KnownPoints.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/walk.h"
#include "task/Task.h"

// What the ways have in common to make a task from another one. Nothing is undone when they fail.
// All REQUIRE that the caller holds CLock.

namespace kestdb {

/// A copy of the task with an ID of its own, without children. It is not stored.
CTask DeriveTask(POD* pod, const CTask& source);

/// Stores an empty log for a task.
void StoreEmptyMessages(POD* pod, const vbINT32& task);
/// Stores a result for a task that has its first point and was not run.
void StoreFreshResult(POD* pod, const vbINT32& task);

/// Stores a record of one task for another one, as `change(record)` leaves it.
/// THROWS a `Failure` when there is none.
template <class Record, class Failure, class Change>
void CopyRecord(POD* pod, const vbINT32& from, const vbINT32& to, Change change) {
  auto record = RequireByID<Record, Failure>(pod, from);
  record.m_nID = to;
  change(record);
  record.PutObject();
}
template <class Record>
void CopyRecord(POD* pod, const vbINT32& from, const vbINT32& to) {
  CopyRecord<Record, CGetObject>(pod, from, to, [](const Record&) {});
}

void StorePoint(CDPoint& point, const vbINT32& task, int number);

/// A response surface task may have several starting points. Stores those of `source` but `first`,
/// which is point 0 of `task` already, as its points from 1 on, as `change(point)` leaves them,
/// and tells `task` and its result of them. REQUIRES that the result of `task` is stored.
template <class Change>
void CopyOtherStartingPoints(const CTask& source, long first, CTask& task, Change change);

/// Makes so many points the task's starting points, which are not to be analysed again.
void SetStartingPoints(CTask& task, int count);

template <class Change>
void CopyOtherStartingPoints(const CTask& source, long first, CTask& task, Change change) {
  const auto count = static_cast<long>(static_cast<unsigned long>(source.m_uNumPoints));
  if (source.m_nType != 1 || count == 0) return;
  // Kept: point 0 is left out as well where `first` is none of the starting points.
  const bool isStartingPoint = first >= 1 && first < count;
  int next = 1;
  for (long i = isStartingPoint ? 0 : 1; i < count; ++i) {
    if (i == first) continue;
    CDPoint point = RequirePoint(task.Database(), source.m_nID, i);
    change(point);
    StorePoint(point, task.m_nID, next++);
  }
  SetStartingPoints(task, next);
}

}  // namespace kestdb
