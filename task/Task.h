#pragma once

#include <cstdio>
#include <set>
#include <string>
#include <valarray>
#include <vector>

#include "control/ANLControl.h"
#include "control/DGOControl.h"
#include "control/DOEControl.h"
#include "control/NGOControl.h"
#include "control/RSAControl.h"
#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CTask;
extern template class KESTDB_API vbPersistentClass<CTask>;

/// The kinds of the entries in all task-side tables and results: what a variable or a response is
/// once its study has been frozen.
enum vbEntryKind : int {
  vbIndependentVar = 20,
  vbLinkedVar = 21,
  vbSyntheticVar = 22,
  vbConstantVar = 23,
  vbIndependentResp = 24,
  vbLinkedResp = 25,
  vbSyntheticResp = 26,
};

/// One run, frozen from the user's definitions: identity, program, a copy of all control settings,
/// and the counts of what it contains. Its tables are seven sister records under the same key:
/// CDVar, CDResp, CDCons, CDObj, CDLink, CDEqn and CDSet; its state is CResult, CMessage, CDPoint.
///
/// All operations THROW CNoDatabaseOpen without a database.
class KESTDB_API CTask : public vbPersistentClass<CTask> {
 public:
  using vbPersistentClass::vbPersistentClass;
  CTask() : vbPersistentClass(static_cast<POD*>(nullptr)) {}

  static constexpr vbINT32 m_nTASK_INDX{2};
  static constexpr vbINT32 m_nTASK_ID = vbClassIDOf(m_nTASK_INDX);
  static constexpr vbINT32 m_nTASK_VER{22};
  inline static const std::string m_strCLASS_NAME{"CTask"};

  /// Sets all but the control blocks.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database, the ID included.
  void Copy(const CTask& other) { *this = other; }

  /// The IDs of all tasks that have no parent, ascending.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex.
  static void GetAllTasks(POD* pod, std::vector<int>& ids);

  /// The IDs of those among them that `nFilter` selects, ascending: with `bUnfinished`, all that
  /// were not run; else, of those that were, 0 all, 1 the optimisations, 2 the designs of
  /// experiments, 3 those with a final approximation model, 5 the response surfaces, others none.
  /// THROWS what GetAllTasks does, CKestErr for a task without a result.
  static void GetTasks(POD* pod, std::vector<int>& ids, int nFilter, bool bUnfinished);

  /// Removes a task with all its records. Its children stay, and so does its ID in the lists of
  /// other tasks. THROWS what GetAllTasks does, CInvalidArgument for an ID below 1.
  static void RemoveSpecifiedTask(POD* pod, int nTask);
  /// Removes this task and its children, but not theirs.
  void RemoveTask();
  /// Removes the children, and stores the task without them.
  void RemoveChildTasks();

  /// Makes a task that goes on from point `nPoint` of another one, or from its best with -1. With
  /// `bLink` both tasks tell of each other; `bSingleStart` gives up several starting points.
  /// The ID of the new task.
  ///
  /// THROWS CGetObject without a record of the old task, CMakeTask for a design of experiments and,
  /// without `bLink`, for a single analysis. What it wrote until then stays.
  int RestartTask(int nTask, int nPoint, std::string strTitle, bool bLink, bool bSingleStart);

  /// Makes a task like the stored one of this ID, in which some independent variables are constants
  /// and constraints are tightened. The arrays have an element for each scalar independent
  /// variable: whether to fix it, at what value, and the bounds for constraints on it. The ID of
  /// the new task.
  ///
  /// THROWS CInvalidArgument, with nothing written, for arrays that are too short; CMakeTask
  /// without the task's table of responses, CGetObject without another record. What it wrote until
  /// then stays.
  int CreateModifiedGPostTask(std::string strTitle, std::valarray<bool>& vbFix,
                              std::valarray<double>& vfValue, std::valarray<double>& vfLower,
                              std::valarray<double>& vfUpper);

  /// Prints what the task is: its type, settings and counts, or nothing without that task.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  // -- The way back.

  /// Puts the definitions and settings that a task was made of into the place of the study's, with
  /// the values of its first point. THROWS, with the study as it was, CNullPtr for a null argument
  /// or a database without files, CNoIndex, CGetObject without a record of the task; with what was
  /// stored until then, CInvalidType and CInvalidArgument for tables that don't fit each other.
  static void LoadTask(POD* pod, int nTask);

  // -- Make Task.

  /// Makes a task of the study's definitions: counts and checks them, takes an ID, and writes the
  /// task with all its records. Call it on a new object. Both flags go to CheckDesignControl.
  ///
  /// Faults of the user's definitions are in the log, and the call returns; it has succeeded when
  /// the ID is positive and the task is stored. THROWS, with a half-made task in the file, what the
  /// making of its tables throws.
  void DefineTask(bool bFlag1, bool bFlag2);

  /// Adds the study's Inputs to the counters, in scalars.
  /// THROWS CInvalidType for an Input of no known kind.
  void CountInputs(int* independent, int* linked, int* synthetic, int* constant, int* combinatorial,
                   int* discrete, int* constraints, int* objectives, int* random);
  /// The same for the responses.
  void CountResps(int* independent, int* linked, int* synthetic, int* constraints, int* objectives,
                  int* random);
  /// Adds the user's points. THROWS CGetObject without the table of points.
  void CountGPoints(int* used, int* run, int* locked);
  /// The IDs of all auxiliary definitions, by kind. THROWS CInvalidType for a kind below 1.
  void AssociateAux(std::set<int>& links, std::set<int>& eqns, std::set<int>& sets);
  /// Copies the control settings. THROWS CObjectNotFound without them, CGetObject, CMakeTask.
  void SetupTask(int nInd, int nCons, int nDiscrete, int nRandDV, int nRandResp);

  // The makers of the sister records. The tables of IDs are in transfer order, with nothing
  // positive at the further elements of an array.

  void SetupDVar(int nInd, int nLink, int nSyn, int nConst, int nRandom,
                 const std::vector<int>& vnIDs);
  void SetupDResp(int nInd, int nLink, int nSyn, int nRandom, const std::vector<int>& vnIDs);
  void SetupDCons(int nCons, const std::vector<int>& vnInputs, const std::vector<int>& vnResps);
  void SetupDObj(int nObj, const std::vector<int>& vnInputs, const std::vector<int>& vnResps);
  void SetupDLink(std::set<int>& ids);
  void SetupDEqn(std::set<int>& ids);
  void SetupDSet(std::set<int>& ids);

  /// Resolves those arguments that are of type `nType` and kind `nCode` to positions in the table
  /// `vnID`; the others wait for another pass. `nOwner` and `strName` are for messages.
  /// THROWS CObjectNotFound, CInvalidType, CIndexError for an argument past the end of its array.
  void ID2Index(int nOwner, std::string strName, std::vector<int>& vnID, int nType, int nCode,
                std::vector<int>& vnArg, std::vector<int>& vnIdx, std::vector<int>& vnLen,
                std::vector<int>& vnOutIdx, std::vector<int>& vnOutType,
                std::vector<int>& vnOutLen);
  bool IsAuxRef(int nID, std::vector<int>& vnA, std::vector<int>& vnB);

  // Probabilistic checks, on the frozen tables.

  /// Reports what is wrong with the random variables and responses; true when nothing is.
  bool CheckRandDVarResp(POD* pod, int nRandDV, int nRandResp);
  bool CheckRandDVarLB(bool bMeanStd, std::string& strName, int nNumber, int nDist, double a,
                       double b, double c);
  double GetDVLowerBnd(POD* pod, int nKind, int nSeq);
  bool IsRespConstrained(POD* pod, int nTask, int nSubj, int nKind);

  // Starting points.

  /// The user's points become the task's starting points.
  void SetupDPoints(int nInd, int nLink, int nSyn, int nConst, int nIResp, int nLResp, int nSResp);
  /// One point for each combination of the values of combinatorial variables. Their number; with
  /// `bCreate` unset, nothing is made.
  int SetupDPointsCombin(POD* pod, int nTask, bool bCreate);
  void CopyPointModifyConst(POD* pod, int nTask, int nFrom, int nTo, int nConst, double fValue,
                            bool bModify);
  /// Drops the constraints that a design of experiments can't evaluate before it runs.
  void SetupDOEDCons();

  void SetAnalyzeFlags(const std::vector<int>& flags);
  /// The current time, as by ctime, without the line end.
  void SetCreateTime();

  vbINT32 m_nID;           ///< The key
  vbINT32 m_nType;         ///< 0 direct gradient, 1 response surface, 2 design of experiments,
                           ///< 3 non-gradient, 4 analysis only
  std::string m_strTitle;  ///< Title of the study
  std::string m_strProgram{"analyze.exe"};  ///< Analysis program
  vbINT32 m_nUserRoutine;                 ///< Non-zero: a linked user routine instead of a program
  vbINT32 m_nUseApprox;                   ///< Non-zero: analyses use approximations
  vbINT32 m_nApproxTask;                  ///< The task whose approximations are used
  std::string m_strArgs;                  ///< Arguments of the program
  std::string m_strVarFile{"dvar.kef"};   ///< Design variable transfer file
  std::string m_strRespFile{"resp.kef"};  ///< Responses transfer file
  vbINT32 m_nRemote;                      ///< Non-zero: run on a remote machine
  std::string m_strConnectTemplate{"ssh ${RMT_HOST} -x -l ${USER} \"${COMMAND}\""};
  std::string m_strCopyToTemplate{"scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}"};
  std::string m_strCopyFromTemplate{"scp -r ${USER}@${RMT_HOST}:${RMT_DIR}${FILE} ."};
  std::string m_strUser{"user"};         ///< User name on the remote machine
  std::string m_strHost{"host"};         ///< The remote machine
  std::string m_strRemoteDir{"rmtdir"};  ///< Work directory there
  vbINT32 m_nRemoteTimeout{-1};
  CDGOControl m_DGO;
  CRSAControl m_RSA;
  CDOEControl m_DOE;
  CNGOControl m_NGO;
  CANLControl m_ANL;
  std::vector<vbINT32> m_vnAnalyzeFlags;  ///< For each starting point: 1 when it is to be analysed
  std::vector<vbINT32> m_vnPointLocked;   ///< For each starting point: its locked flag

  // Counts, variables and responses in scalars.
  vbUINT32 m_uNumIndDV;     ///< Independent variables, discrete and integer ones included
  vbUINT32 m_uNumLinkDV;    ///< Linked variables
  vbUINT32 m_uNumSynDV;     ///< Synthetic variables
  vbUINT32 m_uNumConstDV;   ///< Constants, combinatorial variables included
  vbUINT32 m_uNumIndResp;   ///< Independent responses, pass/fail ones included
  vbUINT32 m_uNumLinkResp;  ///< Linked responses
  vbUINT32 m_uNumSynResp;   ///< Synthetic responses
  vbUINT32 m_uNumCons;      ///< Constraints
  vbUINT32 m_uNumObj;       ///< Objective terms
  vbUINT32 m_uNumLinks;     ///< Link definitions in use
  vbUINT32 m_uNumEqns;      ///< Synthetic functions in use
  vbUINT32 m_uNumSets;      ///< Discrete sets in use
  vbUINT32 m_uNumPoints;    ///< Starting points
  vbUINT32 m_uNumRandDV;    ///< Random variables
  vbUINT32 m_uNumRandResp;  ///< Random responses

  std::string m_strCreated;           ///< When the task was made
  vbINT32 m_nParent;                  ///< The parent task; 0 for none
  vbINT32 m_nRestartOf;               ///< The task that this one restarts, where that was asked for
  std::vector<vbINT32> m_vnChildren;  ///< The child tasks
  std::vector<vbINT32> m_vnRestarts;  ///< The tasks that restart this one
};
