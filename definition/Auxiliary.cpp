#include "definition/Auxiliary.h"

#include <algorithm>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/vbdbase.h"
#include "store/walk.h"

template <>
struct kestdb::ClassOf<CAuxiliary> {
  static constexpr vbINT32 Index = CAuxiliary::m_nAUXILIARY_INDX;
  static constexpr vbINT32 Version = CAuxiliary::m_nAUXILIARY_VER;
  static constexpr std::array Keys{&CAuxiliary::m_nID};
  static constexpr auto Fields = [](auto& file, auto& definition) {
    file(definition.m_nID, definition.m_strName, definition.m_nAuxType, definition.m_nNumber);
    file(definition.m_vfValues, definition.m_strArgs, definition.m_strEquation);
    file(definition.m_vfCoef, definition.m_vstrArgNames);
  };
};

template class vbPersistentClass<CAuxiliary>;

void CAuxiliary::SetDefaultAttributes() {
  const CAuxiliary fresh(Database());
  m_nID = fresh.m_nID;
  m_nAuxType = fresh.m_nAuxType;
  m_nNumber = fresh.m_nNumber;
}

unsigned CAuxiliary::GetNumArgs() const {
  constexpr unsigned none = ~0U;
  if (m_nAuxType == 1) return static_cast<unsigned>(m_vfCoef.size()) - 1;
  if (m_nAuxType != 2) return none;
  if (m_strArgs.empty()) return 0;
  return static_cast<unsigned>(std::count(m_strArgs.begin(), m_strArgs.end(), ',')) + 1;
}

int CAuxiliary::NumType(int type, POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  int count = 0;
  kestdb::VisitInIndexOrder<CAuxiliary>(pod, [&](const CAuxiliary& definition) {
    if (definition.m_nAuxType == type) ++count;
    return true;
  });
  return count;
}
LOG_AND_RETHROW

void CAuxiliary::GetAllIDs(int type, std::vector<int>& ids) try {
  if (Database() == nullptr || Database()->DataFile() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  ids.clear();
  kestdb::VisitInIndexOrder<CAuxiliary>(Database(), [&](const CAuxiliary& definition) {
    if (definition.m_nAuxType == type) ids.push_back(static_cast<int>(long{definition.m_nID}));
    return true;
  });
}
LOG_AND_RETHROW

bool CAuxiliary::RemoveAuxiliaries(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  return kestdb::RemoveAllObjects<CAuxiliary>(pod);
}
LOG_AND_RETHROW
