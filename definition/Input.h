#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDVar;

class CInput;
extern template class KESTDB_API vbPersistentClass<CInput>;

/// A design variable as the user defines it.
class KESTDB_API CInput : public vbPersistentClass<CInput> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nINPUT_INDX{0};
  static constexpr vbINT32 m_nINPUT_ID = vbClassIDOf(m_nINPUT_INDX);
  static constexpr vbINT32 m_nINPUT_VER{4};
  inline static const std::string m_strCLASS_NAME{"CInput"};

  /// Sets all but texts and vectors.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CInput& other) { *this = other; }

  std::string GetName() const { return m_strName; }
  /// The place of list[position] within its run of equal values, from 0.
  /// REQUIRES that the position lies within the list.
  int GetIndex(int position, const std::vector<int>& list) const;

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Reports what is wrong with any Input through LError, LWarn and LPrint; true when there is no
  /// error. THROWS CObjectNotFound without control settings.
  static bool CheckInputs(POD* pod);
  static void Dump(POD* pod, std::FILE* stream);
  /// All IDs in the order of the index.
  static void GetAllInputIDs(POD* pod, std::vector<int>& ids);
  /// Removes the Inputs whose ID is not in `ids`.
  static void SyncInput(POD* pod, std::vector<int>& ids);
  /// False at the first Input that can't be removed.
  static bool RemoveInputs(POD* pod);

  // The way back from a task, whose tables hold the IDs. What is stored already with one of them is
  // replaced, all else stays; so does what was stored before a failure. Without a record of the
  // task, THROW CGetObject; CInvalidType for a code that isn't known, CInvalidArgument for tables
  // that don't fit each other.

  /// Stores the Inputs that the task was made of, with the values of one of its points, of the
  /// run's best one with a negative number.
  static void LoadInputs(int taskID, POD* pod, int pointID);
  /// Makes the stored Inputs the objectives that they are in the task.
  static void UpdateObj(int taskID, POD* pod);

  /// Sets the arguments from places in the task's tables: positions and kinds. `lengths` of another
  /// number than `args` are taken for ones. THROWS, with the arguments as they were.
  void CreateAuxInfo(CDVar& var, std::vector<int>& args, std::vector<int>& types,
                     std::vector<int>& lengths);

  vbINT32 m_nID;          ///< The database ID; the key
  std::string m_strName;  ///< The user's name
  std::string m_strText;  ///< A second text of the user's, kept as it is
  vbINT32 m_nObjective;   ///< Non-zero: this Input is also an objective of the study
  vbUINT32 m_uIndex;      ///< The translation index
  vbUINT32 m_uSize{1};    ///< Number of scalar elements; above 1 the Input is an array
  vbINT32 m_nType;   ///< 0 independent, 1 linked, 2 synthetic, 3 constant, 4 discrete, 5 integer, 6
                     ///< combinatorial
  vbINT32 m_nAuxID;  ///< The CAuxiliary with the link, equation or set; below 1 for none
  std::vector<vbINT32> m_vnArg;  ///< Of a link or synthetic Input: the negated IDs of other Inputs
  std::vector<vbINT32> m_vnIdx;  ///< For each argument: the element of an array, from 0
  std::vector<vbINT32> m_vnLength;  ///< For each argument: the elements taken
  vbFLOAT64 m_fLower{-1e30};        ///< Lower bound; exactly -1e30 means no lower bound
  vbFLOAT64 m_fUpper{1e30};         ///< Upper bound; exactly 1e30 means no upper bound
  vbFLOAT64 m_fInitial;             ///< Initial value
  vbINT32 m_nUserScale;             ///< Non-zero: use the user's scale factor
  vbFLOAT64 m_fScale;               ///< The user's scale factor; its default fails the check
  vbINT32 m_nGoal;                  ///< Objective goal: 0 minimise, 1 maximise, 2 target
  vbINT32 m_nHasWorst;              ///< Non-zero: m_fWorst is given
  vbFLOAT64 m_fWorst;               ///< Worst value of the objective
  vbFLOAT64 m_fTarget;              ///< Target value; meaningful for goal 2
  vbFLOAT64 m_fWeight{1.0};         ///< Weight factor of the objective
  vbINT32 m_nRandom;                ///< Non-zero: the Input is a random variable
  vbINT32 m_nRandomParam;           ///< -3 to 3: which parameter of the distribution this is
  vbINT32 m_nDistribution;          ///< 0 normal, 1 uniform, 2 lognormal, 3 Weibull
};
