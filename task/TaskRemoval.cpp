#include "maintenance/Lock.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"

// The removal of tasks, with all that is kept under their IDs.

namespace {

/// Not every task has every record.
template <class Record>
void RemoveRecord(POD* pod, int task) {
  Record record(pod);
  record.m_nID = task;
  record.RemoveObject();
}

void RemoveDesign(POD* pod, int task) {
  CRDOE design(pod);
  design.m_nTaskID = task;
  design.RemoveObject();
}

void RemoveResults(POD* pod, int task) {
  CDPoint::RemoveDPoints(pod, task, 0);
  CIter::RemoveIters(pod, task);
  RemoveDesign(pod, task);
  CResidual::RemoveResiduals(pod, task);
  CApproxModels::RemoveApproxModels(pod, task);
  CRApproxMod::RemoveRApproxMod(pod, task);
}

void RemoveTables(POD* pod, int task) {
  RemoveRecord<CDCons>(pod, task);
  RemoveRecord<CDEqn>(pod, task);
  RemoveRecord<CDLink>(pod, task);
  RemoveRecord<CDObj>(pod, task);
  RemoveRecord<CDResp>(pod, task);
  RemoveRecord<CDSet>(pod, task);
  RemoveRecord<CDVar>(pod, task);
}

void RemoveAll(POD* pod, const std::vector<vbINT32>& tasks) {
  for (const vbINT32& task : tasks) CTask::RemoveSpecifiedTask(pod, static_cast<int>(long{task}));
}

}  // namespace

/// The task itself goes last: it is there to be removed again when something else can't be.
void CTask::RemoveSpecifiedTask(POD* pod, int nTask) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  if (nTask < 1) Throw<CInvalidArgument>();
  RemoveResults(pod, nTask);
  RemoveTables(pod, nTask);
  RemoveRecord<CMessage>(pod, nTask);
  RemoveRecord<CResult>(pod, nTask);
  RemoveRecord<CTask>(pod, nTask);
}
LOG_AND_RETHROW

void CTask::RemoveTask() try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  RemoveAll(Database(), m_vnChildren);
  RemoveSpecifiedTask(Database(), static_cast<int>(long{m_nID}));
}
LOG_AND_RETHROW

void CTask::RemoveChildTasks() try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  RemoveAll(Database(), m_vnChildren);
  m_vnChildren.clear();
  PutObject();
}
LOG_AND_RETHROW
