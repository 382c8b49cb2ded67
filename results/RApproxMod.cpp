#include "results/RApproxMod.h"

#include "definition/DefinitionReport.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/assertion.h"
#include "store/podcheck.h"

// The record of the final models. Report: RApproxModDump.cpp.

template <>
struct kestdb::ClassOf<CRApproxMod> {
  static constexpr vbINT32 Index = CRApproxMod::m_nRAPPMOD_INDX;
  static constexpr vbINT32 Version = CRApproxMod::m_nRAPPMOD_VER;
  static constexpr std::array Keys{&CRApproxMod::m_nTaskID};
  static constexpr auto Fields = [](auto& file, auto& models) {
    file(models.m_nTaskID);
    file(models.m_nRowMod, models.m_nColMod, models.m_Model);
    file(models.m_nRowCoeff, models.m_nColCoeff, models.m_Coeff);
  };
};
template class vbPersistentClass<CRApproxMod>;

void CRApproxMod::SetDefaultAttributes() {
  m_nTaskID = m_nRowMod = m_nColMod = m_nRowCoeff = m_nColCoeff = 0;
}

int CRApproxMod::GetNumTerms() const {
  KESTDB_ASSERT(m_nColMod == m_nRowCoeff, "m_nColMod == m_nRowCoeff");
  return kestdb::ToInt(m_nRowCoeff);
}

void CRApproxMod::RemoveRApproxMod(POD* pod, int taskID) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CRApproxMod models(pod);
  models.m_nTaskID = taskID;
  if (models.FindObject() && !models.RemoveObject()) Throw<CObjectNotRemoved>();
}
LOG_AND_RETHROW
