#pragma once

#include <cstdio>
#include <string>
#include <valarray>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDObj;
extern template class KESTDB_API vbPersistentClass<CDObj>;

/// A task's objective terms. A term refers to its subject by kind and position.
class KESTDB_API CDObj : public vbPersistentClass<CDObj> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDOBJ_INDX{6};
  static constexpr vbINT32 m_nDOBJ_ID = vbClassIDOf(m_nDOBJ_INDX);
  static constexpr vbINT32 m_nDOBJ_VER{1};
  inline static const std::string m_strCLASS_NAME{"CDObj"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDObj& other) { *this = other; }

  /// The value of term i where its subject is x, weighted, and normalised by the worst value when
  /// there are several terms; NaN for an unknown goal. THROWS CInvalidArgument for no such term.
  double Eval(int i, double x) const;

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CObjectNotFound
  /// without the table of a subject, CInvalidArgument for columns that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each term:
  std::vector<vbINT32> m_vnSubj;        ///< position of the subject within its kind
  std::vector<vbINT32> m_vnSubjType;    ///< its kind: 20, 21, 22, 24, 25 or 26
  std::valarray<vbINT32> m_vnGoal;      ///< 0 minimise, 1 maximise, 2 target
  std::valarray<vbINT32> m_vnHasWorst;  ///< non-zero: the worst value is given
  std::valarray<vbFLOAT64> m_vfWorst;   ///< worst value
  std::valarray<vbFLOAT64> m_vfWeight;  ///< weight factor
  std::valarray<vbFLOAT64> m_vfTarget;  ///< target value
};
