#include "definition/DBCtrl.h"

#include <algorithm>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"
#include "task/Task.h"

template <>
struct kestdb::ClassOf<CDBCtrl> {
  static constexpr vbINT32 Index = CDBCtrl::m_nCTRL_INDX;
  static constexpr vbINT32 Version = CDBCtrl::m_nCTRL_VER;
  static constexpr NoKeys<CDBCtrl> Keys{};
  static constexpr auto Fields = [](auto& file, auto& control) {
    file(control.NextTaskID, control.NextInputID, control.NextRespID, control.NextAuxID);
    file.since(2, control.TaskIDs);
  };
};
template class vbPersistentClass<CDBCtrl>;

void CDBCtrl::SetDefaultAttributes() {
  NextInputID = NextRespID = NextAuxID = NextTaskID = 1;
}

void CDBCtrl::Copy(const CDBCtrl& other) {
  NextTaskID = other.NextTaskID;
  NextInputID = other.NextRespID;
  NextAuxID = other.NextAuxID;
  TaskIDs = other.TaskIDs;
}

// -- Requests.

/// REQUIRES that the caller holds CLock.
void CDBCtrl::Load() {
  if (!FindObject()) Throw<CObjectNotFound>();
  ReadObject(-1);
}

void CDBCtrl::Commit() {
  if (!ReplaceObject()) Throw<CObjectNotRemoved>();
}

int CDBCtrl::Take(vbINT32 CDBCtrl::*counter, bool commit) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  Load();
  const int id = static_cast<int>(long{this->*counter});
  this->*counter = this->*counter + 1;
  if (commit) Commit();
  return id;
}
LOG_AND_RETHROW

int CDBCtrl::GetInputID(bool commit) {
  return Take(&CDBCtrl::NextInputID, commit);
}

int CDBCtrl::GetRespID(bool commit) {
  return Take(&CDBCtrl::NextRespID, commit);
}

int CDBCtrl::GetAuxID(bool commit) {
  return Take(&CDBCtrl::NextAuxID, commit);
}

int CDBCtrl::GetTaskID(bool commit) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  Load();
  std::vector<int> ids;
  CTask::GetAllTasks(Database(), ids);
  if (commit) Commit();
  return GetNewTaskID(ids);
}
LOG_AND_RETHROW

int CDBCtrl::GetNewTaskID(std::vector<int> ids) const {
  std::sort(ids.begin(), ids.end());
  int candidate = 1;
  for (const int id : ids) {
    if (id == candidate) ++candidate;
  }
  return candidate;
}

/// The tasks of a study that only counted them.
void CDBCtrl::ListCountedTasks() {
  for (const int id : kestdb::AllIDs<CTask>(Database())) {
    if (id < NextTaskID) TaskIDs.push_back(id);
  }
  NextTaskID = 1;
}

void CDBCtrl::RemoveTaskID(int id, bool commit) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  Load();
  if (NextTaskID >= 2) ListCountedTasks();
  RemoveID(id);
  if (commit) Commit();
}
LOG_AND_RETHROW

void CDBCtrl::RemoveID(int id) {
  if (TaskIDs.empty()) return;
  const auto place = std::find(TaskIDs.begin(), TaskIDs.end(), id);
  TaskIDs.erase(place == TaskIDs.end() ? place - 1 : place);
}

void CDBCtrl::Dump(POD* pod, std::FILE* stream) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CDBCtrl control(pod);
  if (control.GetObject()) {
    std::fprintf(stream, "                             DATABASE CONTROL OBJECT\n");
    kestdb::PrintBar(stream, '=');
    std::fprintf(stream, "Next available task ID = %d\n", control.GetTaskID(false));
    std::fprintf(stream, "Next available input ID = %d\n", control.GetInputID(false));
    std::fprintf(stream, "Next available response ID = %d\n", control.GetRespID(false));
    std::fprintf(stream, "Next available auxiliary ID = %d\n", control.GetAuxID(false));
    kestdb::PrintBar(stream, '=');
    std::fprintf(stream, "\n");
  }
  std::fflush(nullptr);
}
LOG_AND_RETHROW
