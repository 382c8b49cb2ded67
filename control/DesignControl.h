#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "control/ANLControl.h"
#include "control/DGOControl.h"
#include "control/DOEControl.h"
#include "control/NGOControl.h"
#include "control/RSAControl.h"
#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDesignControl;
extern template class KESTDB_API vbPersistentClass<CDesignControl>;

/// What the user wants run, one singleton object of a study: the kind of task, the analysis program
/// and its files, remote execution, reuse of points, and the settings of each kind of task.
class KESTDB_API CDesignControl : public vbPersistentClass<CDesignControl> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDESCTRL_INDX{17};
  static constexpr vbINT32 m_nDESCTRL_ID = vbClassIDOf(m_nDESCTRL_INDX);
  static constexpr vbINT32 m_nDESCTRL_VER{18};
  inline static const std::string m_strCLASS_NAME{"CDesignControl"};

  /// Sets all but the blocks and the list of tasks.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDesignControl& other) { *this = other; }

  /// Looks whether the program and its transfer files can be used, those of the gradients with
  /// `gradient` in a task of kind 0. True when they can, or with `skip`. With `warnOnly` a missing
  /// program is a warning.
  bool CheckExeParams(bool warnOnly, bool gradient, bool skip) const;

  /// Takes over the settings that a task was made with, and stores them. What a task doesn't keep
  /// stays: reuse of points. THROWS CNullPtr without a database or its files, CNoIndex, CGetObject
  /// without the task.
  void LoadDesignControl(int taskID);

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Reports what is wrong with the settings for the chosen kind of task through LError, LWarn and
  /// LPrint; true when there is no error. Stores the settings that the check fills in.
  /// THROWS CObjectNotFound without settings.
  static bool CheckDesignControl(POD* pod, bool warnOnly, bool skipPrograms, int nVars,
                                 int nDiscreteVars, int nCombinatorial, int nIndResp,
                                 int nObjectives, int nAnalysedPoints, int nUserPoints,
                                 int nLockedPoints, int nRandom, int nRandResp);
  /// Returns the stored settings to their defaults.
  static bool RemoveDesignControl(POD* pod);
  static void Dump(POD* pod, std::FILE* stream);

  vbINT32 m_nTaskType;     ///< 0 direct gradient, 1 response surface, 2 design of experiments, 3
                           ///< non-gradient, 4 analysis only
  std::string m_strTitle;  ///< Title of the study
  std::string m_strProgram{"analyze.exe"};  ///< Analysis program
  vbINT32 m_nUserRoutine;                   ///< Non-zero: call the user routine
  vbINT32 m_nUseApprox;                     ///< Non-zero: use approximations
  vbINT32 m_nApproxTask;                    ///< The task that the approximation comes from
  std::string m_strArgs;                    ///< Arguments of the program
  std::string m_strVarFile{"dvar.kef"};     ///< Design variable transfer file
  std::string m_strRespFile{"resp.kef"};    ///< Response transfer file
  vbINT32 m_nRemote;                        ///< Non-zero: run on a remote machine
  vbINT32 m_nUseSSH{1};                     ///< Non-zero: connect using SSH
  std::string m_strSSHConnect;              ///< Connect template, SSH
  std::string m_strSSHCopyTo;               ///< Copy-to template, SSH
  std::string m_strSSHCopyFrom;             ///< Copy-from template, SSH
  std::string m_strConnect;                 ///< Connect template without SSH
  std::string m_strCopyTo;                  ///< Copy-to template without SSH
  std::string m_strCopyFrom;                ///< Copy-from template without SSH
  std::string m_strUser;                    ///< Remote user name
  std::string m_strHost;                    ///< Remote host name
  std::string m_strRemoteDir;               ///< Remote work directory
  vbINT32 m_nTimeout{-1};                   ///< Remote run timeout
  vbINT32 m_nReusePoints;                   ///< Non-zero: reuse design points
  vbFLOAT64 m_fPointTol;                    ///< Design point tolerance
  std::vector<vbINT32> m_vnCheckTasks;      ///< Other tasks to look for points in
  CDGOControl m_DGO;                        ///< Gradient settings
  CRSAControl m_RSA;                        ///< Response surface settings
  CDOEControl m_DOE;                        ///< Design of experiments settings
  CNGOControl m_NGO;                        ///< Non-gradient settings
  CANLControl m_ANL;                        ///< Analysis settings
};
