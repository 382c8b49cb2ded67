#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CAuxiliary;

class CDLink;
extern template class KESTDB_API vbPersistentClass<CDLink>;

/// The links that a task uses, frozen from the auxiliary definitions, in the order of their IDs.
class KESTDB_API CDLink : public vbPersistentClass<CDLink> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDLINK_INDX{7};
  static constexpr vbINT32 m_nDLINK_ID = vbClassIDOf(m_nDLINK_INDX);
  static constexpr vbINT32 m_nDLINK_VER{1};
  inline static const std::string m_strCLASS_NAME{"CDLink"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDLink& other) { *this = other; }

  /// Appends a definition.
  void AddLink(CAuxiliary& link);
  /// The constant and the multipliers of link i. REQUIRES that there is one.
  void GetCoef(int i, std::vector<double>& coefficients) const;

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CInvalidArgument
  /// for columns that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each link:
  std::vector<vbINT32> m_vnAuxID;                ///< ID of its CAuxiliary
  std::vector<std::string> m_vstrName;           ///< name
  std::vector<std::vector<vbFLOAT64>> m_mdCoef;  ///< the constant, then a multiplier per argument
};
