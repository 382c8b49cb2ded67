#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDCons;
extern template class KESTDB_API vbPersistentClass<CDCons>;

/// A task's constraints. A constraint refers to its subject by kind and position.
class KESTDB_API CDCons : public vbPersistentClass<CDCons> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDCONS_INDX{5};
  static constexpr vbINT32 m_nDCONS_ID = vbClassIDOf(m_nDCONS_INDX);
  static constexpr vbINT32 m_nDCONS_VER{1};
  inline static const std::string m_strCLASS_NAME{"CDCons"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDCons& other) { *this = other; }

  void SetSubj(const std::vector<int>& subjects);
  void SetSubjType(const std::vector<int>& kinds);
  void SetMult(const std::vector<int>& signs);
  void SetBound(const std::vector<double>& bounds);
  void SetScale(const std::vector<double>& scales);

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CObjectNotFound
  /// without the table of a subject, CInvalidArgument for columns that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each constraint:
  std::vector<vbINT32> m_vnSubj;      ///< position of the subject within its kind
  std::vector<vbINT32> m_vnSubjType;  ///< its kind: 21, 22, 24, 25 or 26
  std::vector<vbFLOAT64> m_vfBound;   ///< the limit
  std::vector<vbINT32> m_vnMult;      ///< -1 for a lower bound, +1 for an upper bound
  std::vector<vbFLOAT64> m_vfScale;   ///< scale factor
};
