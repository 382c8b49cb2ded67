#include "task/DSet.h"

#include <algorithm>

#include "definition/Auxiliary.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

template <>
struct kestdb::ClassOf<CDSet> {
  static constexpr vbINT32 Index = CDSet::m_nDSET_INDX;
  static constexpr vbINT32 Version = CDSet::m_nDSET_VER;
  static constexpr std::array Keys{&CDSet::m_nID};
  static constexpr auto Fields = [](auto& file, auto& sets) {
    file(sets.m_nID, sets.m_vstrName, sets.m_vnAuxID, sets.m_mdValues);
  };
};
template class vbPersistentClass<CDSet>;

void CDSet::SetDefaultAttributes() {
  *this = CDSet(Database());
}

void CDSet::AddSet(CAuxiliary& set) {
  m_vnAuxID.push_back(set.m_nID);
  m_vstrName.push_back(set.m_strName);
  m_mdValues.push_back(set.m_vfValues);
}

void CDSet::GetAllSets(POD* pod, std::vector<int>& ids) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  ids.clear();
  kestdb::VisitInFileOrder<CDSet>(pod, [&ids](const CDSet& sets) {
    ids.push_back(static_cast<int>(long{sets.m_nID}));
    return true;
  });
  std::sort(ids.begin(), ids.end());
}
LOG_AND_RETHROW
