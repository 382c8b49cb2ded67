#pragma once

#include <cstdio>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CRApproxMod;
extern template class KESTDB_API vbPersistentClass<CRApproxMod>;

/// The final polynomial models of a task, all responses on the same terms. The run engine fills it.
/// Both matrices stand row by row.
class KESTDB_API CRApproxMod : public vbPersistentClass<CRApproxMod> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nRAPPMOD_INDX{21};
  static constexpr vbINT32 m_nRAPPMOD_ID = vbClassIDOf(m_nRAPPMOD_INDX);
  static constexpr vbINT32 m_nRAPPMOD_VER{1};
  inline static const std::string m_strCLASS_NAME{"CRApproxMod"};

  /// Sets the task and the shapes to 0, and leaves the matrices' elements.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CRApproxMod& other) { *this = other; }

  /// The number of terms. REQUIRES that both matrices have the same.
  int GetNumTerms() const;

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Removes the record of a task, if it has one. THROWS CObjectNotRemoved.
  static void RemoveRApproxMod(POD* pod, int taskID);

  /// Prints the model of each response. THROWS CGetObject without the record, the task or its
  /// tables, CInvalidArgument for a record whose shapes don't fit its elements, each other or the
  /// tables.
  static void Dump(POD* pod, std::FILE* stream, int taskID);

  vbINT32 m_nTaskID;              ///< The task; the key
  vbINT32 m_nRowMod;              ///< A row for each independent variable
  vbINT32 m_nColMod;              ///< A column for each term
  std::valarray<int> m_Model;     ///< The exponents
  vbINT32 m_nRowCoeff;            ///< A row for each term
  vbINT32 m_nColCoeff;            ///< A column for each independent response
  std::valarray<double> m_Coeff;  ///< The coefficients
};
