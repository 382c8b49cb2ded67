#include "results/Result.h"

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"

// The record of a result. Report: ResultDump.cpp.

template <>
struct kestdb::ClassOf<CResult> {
  static constexpr vbINT32 Index = CResult::m_nRTASK_INDX;
  static constexpr vbINT32 Version = CResult::m_nRTASK_VER;
  static constexpr std::array Keys{&CResult::m_nID};
  static constexpr auto Fields = [](auto& file, auto& result) {
    file(result.m_nID, result.m_nNumPoints);
    file.since(6, result.m_nTotalPoints);
    file(result.m_nEngineWord1, result.m_nAnalysisCalls);
    file.since(5, result.m_nGradientRequests);
    file(result.m_nBestIter, result.m_nBestSubIter);
    file(result.m_fBestObjective, result.m_fWorstConstraint, result.m_strLastMessage);
    file(result.m_nRunStatus, result.m_nStopCode, result.m_nBestSubTask);
    file(result.m_nEngineWord2, result.m_nEngineWord3, result.m_strStarted, result.m_strStopped);
    for (auto& time : result.m_fTimes) file(time);
    file(result.m_EngineArray1, result.m_EngineArray2);
    file.since(7, result.m_EngineArray3);
    file.since(8, result.m_nEngineWord4);
  };
};
template class vbPersistentClass<CResult>;

void CResult::SetDefaultAttributes() {
  *this = CResult(Database());
}

void CResult::CleanResult(int points) try {
  const CLock lock(Database(), 0);
  CResult fresh(Database());
  fresh.m_nID = m_nID;
  fresh.m_nNumPoints = fresh.m_nTotalPoints = points;
  fresh.PutObject();
}
LOG_AND_RETHROW
