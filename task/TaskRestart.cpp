#include <utility>

#include "maintenance/Lock.h"
#include "results/KnownPoints.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/DerivedTask.h"
#include "task/Task.h"

// A task that goes on from a point of another one.

namespace {

constexpr int kBestPoint = -1;

void RequireRestartable(const CTask& task, bool link) {
  constexpr int designOfExperiments = 2;
  constexpr int analysis = 4;
  if (task.m_nType == designOfExperiments) Throw<CMakeTask>();
  if (task.m_nType == analysis && !link) Throw<CMakeTask>();
}

void CopyTables(POD* pod, const vbINT32& from, const vbINT32& to) {
  kestdb::CopyRecord<CDVar>(pod, from, to);
  kestdb::CopyRecord<CDResp>(pod, from, to);
  kestdb::CopyRecord<CDCons>(pod, from, to);
  kestdb::CopyRecord<CDObj>(pod, from, to);
  kestdb::CopyRecord<CDLink>(pod, from, to);
  kestdb::CopyRecord<CDEqn>(pod, from, to);
  kestdb::CopyRecord<CDSet>(pod, from, to);
}

}  // namespace

int CTask::RestartTask(int nTask, int nPoint, std::string strTitle, bool bLink,
                       bool bSingleStart) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  auto old = kestdb::RequireByID<CTask, CGetObject>(Database(), nTask);
  RequireRestartable(old, bLink);
  const long first = nPoint == kBestPoint ? kestdb::BestPointOf(Database(), old.m_nID) : nPoint;
  CDPoint point = kestdb::RequirePoint(Database(), old.m_nID, first);
  CTask task = kestdb::DeriveTask(Database(), old);
  if (bLink) task.m_nRestartOf = nTask;
  if (bSingleStart) task.m_DGO.m_nMultiStart = 0;
  kestdb::StoreEmptyMessages(Database(), task.m_nID);
  CopyTables(Database(), old.m_nID, task.m_nID);
  kestdb::StoreFreshResult(Database(), task.m_nID);
  kestdb::StorePoint(point, task.m_nID, 0);
  kestdb::CopyOtherStartingPoints(old, first, task, [](const CDPoint&) {});
  task.m_strTitle = std::move(strTitle);
  task.PutObject();
  if (bLink) {
    old.m_vnRestarts.push_back(task.m_nID);
    old.PutObject();
  }
  return static_cast<int>(long{task.m_nID});
}
LOG_AND_RETHROW
