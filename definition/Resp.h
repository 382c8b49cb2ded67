#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDResp;
class CDVar;

class CResp;
extern template class KESTDB_API vbPersistentClass<CResp>;

/// A response as the user defines it: what the analysis gives, or what is computed from it.
class KESTDB_API CResp : public vbPersistentClass<CResp> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nRESP_INDX{18};
  static constexpr vbINT32 m_nRESP_ID = vbClassIDOf(m_nRESP_INDX);
  static constexpr vbINT32 m_nRESP_VER{3};
  inline static const std::string m_strCLASS_NAME{"CResp"};

  /// Sets all but texts and vectors.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CResp& other) { *this = other; }

  std::string GetName() const { return m_strName; }
  /// The place of list[position] within its run of equal values, from 0.
  /// REQUIRES that the position lies within the list.
  int GetIndex(int position, const std::vector<int>& list) const;

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Reports what is wrong with any response through LError, LWarn and LPrint; true when there is
  /// no error. THROWS CObjectNotFound without control settings.
  static bool CheckResps(POD* pod);
  static void Dump(POD* pod, std::FILE* stream);
  /// All IDs in the order of the index.
  static void GetAllRespIDs(POD* pod, std::vector<int>& ids);
  /// Removes the responses whose ID is not in `ids`.
  static void SyncResp(POD* pod, std::vector<int>& ids);
  /// False at the first response that can't be removed.
  static bool RemoveResps(POD* pod);

  // The way back from a task, as of CInput.

  /// Stores the responses that the task was made of. Those that it doesn't constrain come back as
  /// no constraints.
  static void LoadResps(int taskID, POD* pod);
  /// Makes the stored responses the objectives that they are in the task.
  static void UpdateObj(int taskID, POD* pod);

  /// Sets the arguments from places in the task's tables: positions and kinds. `lengths` of another
  /// number than `args` are taken for ones. THROWS, with the arguments as they were.
  void CreateAuxInfo(CDVar& var, CDResp& resp, std::vector<int>& args, std::vector<int>& types,
                     std::vector<int>& lengths);

  vbINT32 m_nID;                    ///< The database ID; the key
  std::string m_strName;            ///< The user's name
  std::string m_strText;            ///< A second text of the user's, kept as it is
  vbINT32 m_nConstraint{1};         ///< Non-zero: the response is a constraint. On by default
  vbINT32 m_nObjective;             ///< Non-zero: the response is an objective
  vbUINT32 m_uIndex;                ///< The translation index
  vbUINT32 m_uSize{1};              ///< Number of scalar elements
  vbINT32 m_nType;                  ///< 0 independent, 1 linked, 2 synthetic, 3 Pass/Fail
  vbINT32 m_nAuxID;                 ///< The CAuxiliary with the link or equation; below 1 for none
  std::vector<vbINT32> m_vnArg;     ///< The negated IDs of Inputs, the IDs of other responses
  std::vector<vbINT32> m_vnIdx;     ///< For each argument: the element of an array, from 0
  std::vector<vbINT32> m_vnLength;  ///< For each argument: the elements taken
  vbINT32 m_nHasLower;              ///< Non-zero: m_fLower is in force
  vbFLOAT64 m_fLower{-1e30};        ///< Lower constraint bound
  vbINT32 m_nHasLowerScale;         ///< Non-zero: m_fLowerScale is in force
  vbFLOAT64 m_fLowerScale{1.0};     ///< Scale factor of the lower bound
  vbINT32 m_nHasUpper;              ///< Non-zero: m_fUpper is in force
  vbFLOAT64 m_fUpper{1e30};         ///< Upper constraint bound
  vbINT32 m_nHasUpperScale;         ///< Non-zero: m_fUpperScale is in force
  vbFLOAT64 m_fUpperScale{1.0};     ///< Scale factor of the upper bound
  vbINT32 m_nGoal;                  ///< Objective goal: 0 minimise, 1 maximise, 2 target
  vbINT32 m_nHasWorst;              ///< Non-zero: m_fWorst is given
  vbFLOAT64 m_fWorst;               ///< Worst value of the objective
  vbFLOAT64 m_fTarget;              ///< Target value
  vbFLOAT64 m_fWeight{1.0};         ///< Weight factor
  vbINT32 m_nRandom;                ///< Non-zero: the response is random
  vbINT32 m_nRandomParam;           ///< -3 to 3: which parameter of the distribution this is
};
