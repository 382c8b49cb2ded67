#include "results/Residual.h"

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The record of an analysis. Report: ResidualDump.cpp.

template <>
struct kestdb::ClassOf<CResidual> {
  static constexpr vbINT32 Index = CResidual::m_nRESID_INDX;
  static constexpr vbINT32 Version = CResidual::m_nRESID_VER;
  static constexpr std::array Keys{&CResidual::m_nTaskID, &CResidual::m_nResp};
  static constexpr auto Fields = [](auto& file, auto& analysis) {
    file(analysis.m_nTaskID, analysis.m_nResp);
    file(analysis.m_HDiagonal, analysis.m_Predicted, analysis.m_Residual);
    file(analysis.m_Standardized, analysis.m_Studentized, analysis.m_RStudentized);
    file(analysis.m_Press, analysis.m_Cook);
    file(analysis.m_fErrorMS, analysis.m_fModelSS, analysis.m_fModelMS, analysis.m_fErrorSS);
    file(analysis.m_fTotalSS, analysis.m_fF0, analysis.m_fP);
    file(analysis.m_fSumResiduals, analysis.m_fPRESS, analysis.m_fRMSE, analysis.m_fMeanResponse);
    file(analysis.m_fCoeffVariation, analysis.m_fR2, analysis.m_fAdjR2, analysis.m_fR2Press);
  };
};
template class vbPersistentClass<CResidual>;

void CResidual::SetDefaultAttributes() {
  *this = CResidual(Database());
}

void CResidual::RemoveResiduals(POD* pod, int taskID) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CResidual analysis(pod);
  analysis.m_nTaskID = taskID;
  kestdb::RemoveNumbered(analysis, &CResidual::m_nResp, &vbPersistent::FindObject);
}
LOG_AND_RETHROW
