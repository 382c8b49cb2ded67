#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CAuxiliary;
extern template class KESTDB_API vbPersistentClass<CAuxiliary>;

/// A definition that Inputs and responses refer to: a link (a linear combination of arguments), a
/// synthetic function (an equation over named arguments) or a discrete set of values. Equations are
/// kept as text and never evaluated.
class KESTDB_API CAuxiliary : public vbPersistentClass<CAuxiliary> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nAUXILIARY_INDX{1};
  static constexpr vbINT32 m_nAUXILIARY_ID = vbClassIDOf(m_nAUXILIARY_INDX);
  static constexpr vbINT32 m_nAUXILIARY_VER{2};
  inline static const std::string m_strCLASS_NAME{"CAuxiliary"};

  /// Sets ID, kind and number, and nothing else.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CAuxiliary& other) { *this = other; }

  /// The arguments of a link or an equation; all ones, which compares as -1, for anything else.
  unsigned GetNumArgs() const;

  /// The IDs of all definitions of that kind, in the order of the index.
  /// THROWS CNoDatabaseOpen.
  void GetAllIDs(int type, std::vector<int>& ids);

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  static int NumType(int type, POD* pod);
  /// False at the first definition that can't be removed.
  static bool RemoveAuxiliaries(POD* pod);
  /// Prints all definitions, or nothing when there are none.
  static void Dump(POD* pod, std::FILE* stream);
  /// Stores the definitions that a task uses under their IDs. The names of a link's arguments are
  /// new. THROWS CGetObject without a table of the task, CInvalidArgument for columns that don't
  /// fit each other; what was stored until then stays.
  static void LoadAuxillaries(int taskID, POD* pod);

  vbINT32 m_nID;          ///< The database ID; the key
  std::string m_strName;  ///< The definition's name
  vbINT32 m_nAuxType{1};  ///< 1 link, 2 synthetic function, 4 discrete set. The value 3 is not used
  vbINT32 m_nNumber;      ///< The definition's running number within its kind, from 1
  std::vector<vbFLOAT64> m_vfValues;  ///< Set: its values, ascending
  std::string m_strArgs;              ///< Equation: argument names, separated by commas
  std::string m_strEquation;          ///< Equation: the text of its right side
  std::vector<vbFLOAT64> m_vfCoef;    ///< Link: the constant, then a coefficient for each argument
  std::vector<std::string>
      m_vstrArgNames;  ///< Link: a name for each coefficient; the first is not used
};
