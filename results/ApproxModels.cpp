#include "results/ApproxModels.h"

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The record of a model. Report: ApproxModelsDump.cpp.

template <>
struct kestdb::ClassOf<CApproxModels> {
  static constexpr vbINT32 Index = CApproxModels::m_nAPPMOD_INDX;
  static constexpr vbINT32 Version = CApproxModels::m_nAPPMOD_VER;
  static constexpr std::array Keys{&CApproxModels::m_nTaskID, &CApproxModels::m_nIter,
                                   &CApproxModels::m_nResp};
  static constexpr auto Fields = [](auto& file, auto& model) {
    file(model.m_nTaskID, model.m_nIter, model.m_nResp);
    file(model.m_Values, model.m_Model);
    file(model.m_Coefficients, model.m_StdErrors, model.m_TStats, model.m_PValues);
  };
};
template class vbPersistentClass<CApproxModels>;

void CApproxModels::SetDefaultAttributes() {
  m_nTaskID = m_nIter = m_nResp = 0;
}

void CApproxModels::RemoveApproxModels(POD* pod, int taskID) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CApproxModels model(pod);
  model.m_nTaskID = taskID;
  const auto removeIteration = [&model] {
    model.m_nResp = 0;
    return kestdb::RemoveNumbered(model, &CApproxModels::m_nResp, &vbPersistent::FindObject);
  };
  while (removeIteration()) model.m_nIter++;
}
LOG_AND_RETHROW
