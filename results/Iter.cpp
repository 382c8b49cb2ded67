#include "results/Iter.h"

#include <cstdint>
#include <limits>

#include "maintenance/Lock.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The record of an iteration. Report: IterDump.cpp.

template <>
struct kestdb::ClassOf<CIter> {
  static constexpr vbINT32 Index = CIter::m_nITER_INDX;
  static constexpr vbINT32 Version = CIter::m_nITER_VER;
  static constexpr std::array Keys{&CIter::m_nTaskID, &CIter::m_nIter, &CIter::m_nSubIter};
  static constexpr auto Fields = [](auto& file, auto& iter) {
    file(iter.m_nTaskID, iter.m_nIter, iter.m_nSubIter);
    file(iter.m_nThisPoint, iter.m_nBestPoint);
    file(iter.m_fBestObjective, iter.m_fBestConstraint);
    file(iter.m_fThisObjective, iter.m_fThisConstraint);
    file.since(2, iter.m_ParetoPoints, iter.m_ParetoValues);
  };
};
template class vbPersistentClass<CIter>;

void CIter::SetDefaultAttributes() {
  *this = CIter(Database());
}

void CIter::RemoveIters(POD* pod, int taskID) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CIter iter(pod);
  iter.m_nTaskID = taskID;
  while (kestdb::RemoveNumbered(iter, &CIter::m_nSubIter, &vbPersistent::FindObject)) {
    if (iter.m_nIter == std::numeric_limits<std::int32_t>::max()) break;
    iter.m_nIter = iter.m_nIter + 1;
    iter.m_nSubIter = 0;
  }
}
LOG_AND_RETHROW
