#include "control/DesignControl.h"

#include <utility>

#include "control/ControlFields.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"

// The record of the settings. Validation: DesignControlCheck.cpp; report: DesignControlDump.cpp.

template <>
struct kestdb::ClassOf<CDesignControl> {
  static constexpr vbINT32 Index = CDesignControl::m_nDESCTRL_INDX;
  static constexpr vbINT32 Version = CDesignControl::m_nDESCTRL_VER;
  static constexpr NoKeys<CDesignControl> Keys{};
  static constexpr auto Fields = [](auto& file, auto& control) {
    file(control.m_nTaskType, control.m_strTitle, control.m_strProgram);
    file.since(8, control.m_nUserRoutine);
    file.since(16, control.m_nUseApprox, control.m_nApproxTask);
    file(control.m_strArgs, control.m_strVarFile, control.m_strRespFile);
    file.since(9, control.m_nRemote, control.m_nUseSSH, control.m_strSSHConnect);
    file.since(9, control.m_strSSHCopyTo, control.m_strSSHCopyFrom, control.m_strConnect);
    file.since(9, control.m_strCopyTo, control.m_strCopyFrom, control.m_strUser);
    file.since(9, control.m_strHost, control.m_strRemoteDir);
    file.since(10, control.m_nTimeout);
    file(control.m_nReusePoints, control.m_fPointTol, control.m_vnCheckTasks);
    file.blocks(Embedding::Control, control.m_DGO, control.m_RSA, control.m_DOE, control.m_NGO,
                control.m_ANL);
  };
  /// The blocks stand in the record since version 6; what came before is not known.
  static constexpr int OldestVersion = 6;
};

template class vbPersistentClass<CDesignControl>;

void CDesignControl::SetDefaultAttributes() {
  CDesignControl fresh(Database());
  fresh.m_vnCheckTasks = std::move(m_vnCheckTasks);
  fresh.m_DGO = std::move(m_DGO);
  fresh.m_RSA = m_RSA;
  fresh.m_DOE = std::move(m_DOE);
  fresh.m_NGO = m_NGO;
  fresh.m_ANL = m_ANL;
  *this = std::move(fresh);
}

bool CDesignControl::RemoveDesignControl(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  return CDesignControl(pod).PutObject();
}
LOG_AND_RETHROW
