#include "definition/Input.h"

#include "definition/DefinitionFields.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The record of an Input, and operations on all of them. Validation: InputCheck.cpp; report:
// InputDump.cpp.

template <>
struct kestdb::ClassOf<CInput> {
  static constexpr vbINT32 Index = CInput::m_nINPUT_INDX;
  static constexpr vbINT32 Version = CInput::m_nINPUT_VER;
  static constexpr std::array Keys{&CInput::m_nID};
  static constexpr auto Fields = [](auto& file, auto& input) {
    file(input.m_nID, input.m_strName, input.m_strText);
    file(input.m_nObjective, input.m_uIndex, input.m_uSize, input.m_nType, input.m_nAuxID);
    file(input.m_vnArg, input.m_vnIdx);
    file.since(4, input.m_vnLength);
    file(input.m_nGoal, input.m_nHasWorst, input.m_fWorst, input.m_fTarget, input.m_fWeight);
    file(input.m_fLower, input.m_fUpper, input.m_fInitial);
    file.since(3, input.m_fScale, input.m_nUserScale);  // the factor before its flag
    file.since(2, input.m_nRandom, input.m_nRandomParam, input.m_nDistribution);
  };
  static void Complete(CInput& input, long stored) {
    if (stored < 4) input.m_vnLength.assign(input.m_vnIdx.size(), 1);
  }
};

template class vbPersistentClass<CInput>;

void CInput::SetDefaultAttributes() {
  kestdb::ResetDefinition(*this);
}

int CInput::GetIndex(int position, const std::vector<int>& list) const {
  return kestdb::PlaceInRun(position, list);
}

void CInput::GetAllInputIDs(POD* pod, std::vector<int>& ids) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  ids = kestdb::AllIDs<CInput>(pod);
}
LOG_AND_RETHROW

void CInput::SyncInput(POD* pod, std::vector<int>& ids) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  kestdb::RemoveAllBut<CInput>(pod, ids);
}
LOG_AND_RETHROW

bool CInput::RemoveInputs(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  return kestdb::RemoveAllObjects<CInput>(pod);
}
LOG_AND_RETHROW
