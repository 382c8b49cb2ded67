#pragma once

#include <cstdio>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CApproxModels;
extern template class KESTDB_API vbPersistentClass<CApproxModels>;

/// The polynomial that was fitted to one independent response at one iteration, with the statistics
/// of its terms. The run engine fills it.
class KESTDB_API CApproxModels : public vbPersistentClass<CApproxModels> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nAPPMOD_INDX{9};
  static constexpr vbINT32 m_nAPPMOD_ID = vbClassIDOf(m_nAPPMOD_INDX);
  static constexpr vbINT32 m_nAPPMOD_VER{1};
  inline static const std::string m_strCLASS_NAME{"CApproxModels"};

  /// Sets task, iteration and response to 0, and nothing else.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CApproxModels& other) { *this = other; }

  /// The number of terms, which is that of the coefficients.
  int GetNumTerms() const { return static_cast<int>(m_Coefficients.size()); }

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Removes the models of a task: iteration for iteration, the responses from 0 on, up to the
  /// first number that is missing. An iteration without response 0 is the end.
  /// THROWS CObjectNotRemoved.
  static void RemoveApproxModels(POD* pod, int taskID);

  /// Prints the model of a response at iteration 0. THROWS CGetObject without the model, the task
  /// or its tables, CInvalidArgument for records that don't fit each other. REQUIRES an exponent
  /// for each term and variable.
  static void Dump(POD* pod, std::FILE* stream, int taskID, int resp);

  vbINT32 m_nTaskID;                     ///< The task; first field of the key
  vbINT32 m_nIter;                       ///< The iteration, from 0; second field of the key
  vbINT32 m_nResp;                       ///< The position among the task's independent responses;
                                         ///< third field of the key
  std::valarray<double> m_Values;        ///< The run engine's
  std::valarray<int> m_Model;            ///< Term by term, the exponent of each variable
  std::valarray<double> m_Coefficients;  ///< For each term, as the next three
  std::valarray<double> m_StdErrors;
  std::valarray<double> m_TStats;
  std::valarray<double> m_PValues;
};
