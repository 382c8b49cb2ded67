#include "task/Task.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "control/ControlFields.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The record of a task. How it is made: TaskMake.cpp and the files of its makers.

template <>
struct kestdb::ClassOf<CTask> {
  static constexpr vbINT32 Index = CTask::m_nTASK_INDX;
  static constexpr vbINT32 Version = CTask::m_nTASK_VER;
  static constexpr std::array Keys{&CTask::m_nID};
  static constexpr auto Fields = [](auto& file, auto& task) {
    file(task.m_nID, task.m_nType, task.m_strTitle, task.m_strProgram);
    file.since(11, task.m_nUserRoutine);
    file.since(19, task.m_nUseApprox, task.m_nApproxTask);
    file(task.m_strArgs, task.m_strVarFile, task.m_strRespFile);
    file.since(12, task.m_nRemote, task.m_strConnectTemplate, task.m_strCopyToTemplate);
    file.since(12, task.m_strCopyFromTemplate, task.m_strUser, task.m_strHost, task.m_strRemoteDir);
    file.since(13, task.m_nRemoteTimeout);
    file.blocks(Embedding::Task, task.m_DGO, task.m_RSA, task.m_DOE, task.m_NGO, task.m_ANL);
    file(task.m_vnAnalyzeFlags, task.m_vnPointLocked);
    file(task.m_uNumIndDV, task.m_uNumLinkDV, task.m_uNumSynDV, task.m_uNumConstDV);
    file(task.m_uNumIndResp, task.m_uNumLinkResp, task.m_uNumSynResp);
    file(task.m_uNumCons, task.m_uNumObj, task.m_uNumLinks, task.m_uNumEqns, task.m_uNumSets);
    file(task.m_uNumPoints);
    file.since(10, task.m_uNumRandDV, task.m_uNumRandResp);
    file(task.m_strCreated, task.m_nParent);
    file.since(20, task.m_nRestartOf);
    file(task.m_vnChildren);
    file.since(21, task.m_vnRestarts);
  };
  /// What came before is not known.
  static constexpr int OldestVersion = 9;
};
template class vbPersistentClass<CTask>;

void CTask::SetDefaultAttributes() {
  CTask fresh(Database());
  fresh.m_DGO = std::move(m_DGO);
  fresh.m_RSA = m_RSA;
  fresh.m_DOE = std::move(m_DOE);
  fresh.m_NGO = m_NGO;
  fresh.m_ANL = m_ANL;
  *this = std::move(fresh);
}

void CTask::GetAllTasks(POD* pod, std::vector<int>& ids) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  ids.clear();
  kestdb::VisitInFileOrder<CTask>(pod, [&ids](const CTask& task) {
    if (task.m_nParent <= 0) ids.push_back(static_cast<int>(long{task.m_nID}));
    return true;
  });
  std::sort(ids.begin(), ids.end());
}
LOG_AND_RETHROW

void CTask::SetAnalyzeFlags(const std::vector<int>& flags) {
  m_vnAnalyzeFlags.assign(flags.begin(), flags.end());
}

void CTask::SetCreateTime() {
  const std::time_t now = std::time(nullptr);
  const char* text = std::ctime(&now);
  const std::string created = text == nullptr ? "" : text;
  m_strCreated = created.substr(0, created.find('\n'));
}
