#include "results/KnownPoints.h"

#include <limits>

#include "results/Iter.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/walk.h"

namespace kestdb {

CDPoint RequirePoint(POD* pod, const vbINT32& task, long number) {
  if (number < 0 || number > std::numeric_limits<int>::max()) Throw<CGetObject>();
  CDPoint point(pod);
  point.m_nTaskID = task;
  point.m_nPointID = number;
  if (!point.CheckKey() || !point.GetObject()) Throw<CGetObject>();
  return point;
}

long BestPointOf(POD* pod, const vbINT32& task) {
  const auto result = RequireByID<CResult, CGetObject>(pod, task);
  CIter best(pod);
  best.m_nTaskID = task;
  best.m_nIter = result.m_nBestIter;
  best.m_nSubIter = result.m_nBestSubIter;
  if (!best.CheckKey() || !best.GetObject()) Throw<CGetObject>();
  return best.m_nBestPoint;
}

}  // namespace kestdb
