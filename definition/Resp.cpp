#include "definition/Resp.h"

#include "definition/DefinitionFields.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The record of a response, and operations on all of them. Validation: RespCheck.cpp; report:
// RespDump.cpp.

template <>
struct kestdb::ClassOf<CResp> {
  static constexpr vbINT32 Index = CResp::m_nRESP_INDX;
  static constexpr vbINT32 Version = CResp::m_nRESP_VER;
  static constexpr std::array Keys{&CResp::m_nID};
  static constexpr auto Fields = [](auto& file, auto& resp) {
    file(resp.m_nID, resp.m_strName, resp.m_strText, resp.m_nConstraint, resp.m_nObjective);
    file(resp.m_uIndex, resp.m_uSize, resp.m_nType, resp.m_nAuxID);
    file(resp.m_vnArg, resp.m_vnIdx);
    file.since(3, resp.m_vnLength);
    file(resp.m_nGoal, resp.m_nHasWorst, resp.m_fWorst, resp.m_fTarget, resp.m_fWeight);
    file(resp.m_nHasLower, resp.m_fLower, resp.m_nHasLowerScale, resp.m_fLowerScale);
    file(resp.m_nHasUpper, resp.m_fUpper, resp.m_nHasUpperScale, resp.m_fUpperScale);
    file.since(2, resp.m_nRandom, resp.m_nRandomParam);
  };
  static void Complete(CResp& resp, long stored) {
    if (stored < 3) resp.m_vnLength.assign(resp.m_vnIdx.size(), 1);
  }
};

template class vbPersistentClass<CResp>;

void CResp::SetDefaultAttributes() {
  kestdb::ResetDefinition(*this);
}

int CResp::GetIndex(int position, const std::vector<int>& list) const {
  return kestdb::PlaceInRun(position, list);
}

void CResp::GetAllRespIDs(POD* pod, std::vector<int>& ids) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  ids = kestdb::AllIDs<CResp>(pod);
}
LOG_AND_RETHROW

void CResp::SyncResp(POD* pod, std::vector<int>& ids) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  kestdb::RemoveAllBut<CResp>(pod, ids);
}
LOG_AND_RETHROW

bool CResp::RemoveResps(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  return kestdb::RemoveAllObjects<CResp>(pod);
}
LOG_AND_RETHROW
