#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDBCtrl;
extern template class KESTDB_API vbPersistentClass<CDBCtrl>;

/// The singleton object that hands out the IDs of a study. Every request reads the stored counters
/// anew and, with `commit`, stores the advanced ones, under one lock: no two processes get the same
/// ID. IDs of definitions are never used again, those of tasks always the smallest free one.
///
/// Requests THROW CNoDatabaseOpen without a database, CObjectNotFound without the stored object,
/// CObjectNotRemoved.
class KESTDB_API CDBCtrl : public vbPersistentClass<CDBCtrl> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nCTRL_INDX{15};
  static constexpr vbINT32 m_nCTRL_ID = vbClassIDOf(m_nCTRL_INDX);
  static constexpr vbINT32 m_nCTRL_VER{2};
  inline static const std::string m_strCLASS_NAME{"CDBCtrl"};

  /// Sets the four counters to 1.
  void SetDefaultAttributes();
  /// Kept: takes all but NextRespID, whose value in `other` ends up in NextInputID.
  void Copy(const CDBCtrl& other);

  /// The next ID; without `commit` it is only shown, and handed out again by the next request.
  int GetInputID(bool commit);
  int GetRespID(bool commit);
  int GetAuxID(bool commit);
  /// The smallest ID that no task has. Nothing reserves it until the task is stored.
  int GetTaskID(bool commit);

  /// Takes a task ID out of the stored list, which a counter of an older record is turned into
  /// first.
  void RemoveTaskID(int id, bool commit);
  /// The same in memory. Kept: an ID that isn't in the list takes its last entry off.
  void RemoveID(int id);
  /// The smallest positive number that isn't among `ids`.
  int GetNewTaskID(std::vector<int> ids) const;

  /// Prints the next IDs, or nothing without the stored object.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex.
  static void Dump(POD* pod, std::FILE* stream);

  vbINT32 NextInputID{1};
  vbINT32 NextRespID{1};
  vbINT32 NextAuxID{1};
  vbINT32 NextTaskID{1};  ///< Above 1 only in an older record: the tasks are 1 up to one less
  std::vector<vbINT32> TaskIDs;

 private:
  void Load();
  int Take(vbINT32 CDBCtrl::*counter, bool commit);
  void Commit();
  void ListCountedTasks();
};
