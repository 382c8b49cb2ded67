#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CAuxiliary;

class CDEqn;
extern template class KESTDB_API vbPersistentClass<CDEqn>;

/// The synthetic functions that a task uses, frozen from the auxiliary definitions, in the order of
/// their IDs.
class KESTDB_API CDEqn : public vbPersistentClass<CDEqn> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDEQN_INDX{8};
  static constexpr vbINT32 m_nDEQN_ID = vbClassIDOf(m_nDEQN_INDX);
  static constexpr vbINT32 m_nDEQN_VER{1};
  inline static const std::string m_strCLASS_NAME{"CDEqn"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDEqn& other) { *this = other; }

  /// Appends a definition.
  void AddEqn(CAuxiliary& function);

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CInvalidArgument
  /// for columns that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each function:
  std::vector<vbINT32> m_vnAuxID;           ///< ID of its CAuxiliary
  std::vector<std::string> m_vstrName;      ///< name
  std::vector<std::string> m_vstrArgs;      ///< argument names, separated by commas
  std::vector<std::string> m_vstrEquation;  ///< the text of its right side
};
