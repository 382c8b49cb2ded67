#include "control/DesignControl.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/walk.h"
#include "task/Task.h"

// The settings that a task was made with.

namespace {

void LoadProgram(const CTask& task, CDesignControl& control) {
  control.m_strProgram = task.m_strProgram;
  control.m_nUserRoutine = task.m_nUserRoutine;
  control.m_nUseApprox = task.m_nUseApprox;
  control.m_nApproxTask = task.m_nApproxTask;
  control.m_strArgs = task.m_strArgs;
  control.m_strVarFile = task.m_strVarFile;
  control.m_strRespFile = task.m_strRespFile;
}

/// Kept: a task has the templates of one way to connect and doesn't tell which; they come back for
/// both.
void LoadRemote(const CTask& task, CDesignControl& control) {
  control.m_nRemote = task.m_nRemote;
  control.m_nUseSSH = 1;
  control.m_strSSHConnect = control.m_strConnect = task.m_strConnectTemplate;
  control.m_strSSHCopyTo = control.m_strCopyTo = task.m_strCopyToTemplate;
  control.m_strSSHCopyFrom = control.m_strCopyFrom = task.m_strCopyFromTemplate;
  control.m_strUser = task.m_strUser;
  control.m_strHost = task.m_strHost;
  control.m_strRemoteDir = task.m_strRemoteDir;
  control.m_nTimeout = task.m_nRemoteTimeout;
}

/// Kept: with what making the task has noted in its blocks.
void LoadBlocks(const CTask& task, CDesignControl& control) {
  control.m_DGO.Copy(task.m_DGO);
  control.m_RSA.Copy(task.m_RSA);
  control.m_DOE.Copy(task.m_DOE);
  control.m_NGO.Copy(task.m_NGO);
  control.m_ANL.Copy(task.m_ANL);
}

}  // namespace

void CDesignControl::LoadDesignControl(int taskID) try {
  kestdb::RequireIndexed(Database());
  const CLock lock(Database(), 0);
  const auto task = kestdb::RequireByID<CTask, CGetObject>(Database(), taskID);
  m_nTaskType = task.m_nType;
  m_strTitle = task.m_strTitle;
  LoadProgram(task, *this);
  LoadRemote(task, *this);
  LoadBlocks(task, *this);
  PutObject();
}
LOG_AND_RETHROW
