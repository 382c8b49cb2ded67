#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CAuxiliary;

class CDSet;
extern template class KESTDB_API vbPersistentClass<CDSet>;

/// The discrete sets that a task uses, frozen from the auxiliary definitions, in the order of their
/// IDs.
class KESTDB_API CDSet : public vbPersistentClass<CDSet> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDSET_INDX{13};
  static constexpr vbINT32 m_nDSET_ID = vbClassIDOf(m_nDSET_INDX);
  static constexpr vbINT32 m_nDSET_VER{1};
  inline static const std::string m_strCLASS_NAME{"CDSet"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDSet& other) { *this = other; }

  /// Appends a definition.
  void AddSet(CAuxiliary& set);

  /// The IDs of all tasks that have a set record, ascending.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex.
  static void GetAllSets(POD* pod, std::vector<int>& ids);

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CInvalidArgument
  /// for columns that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each set:
  std::vector<std::string> m_vstrName;             ///< name
  std::vector<vbINT32> m_vnAuxID;                  ///< ID of its CAuxiliary
  std::vector<std::vector<vbFLOAT64>> m_mdValues;  ///< members, ascending
};
