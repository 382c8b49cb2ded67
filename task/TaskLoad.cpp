#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "results/KnownPoints.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"

// A study's definitions made again from a task.

namespace {

constexpr int kDesignOfExperiments = 2;

/// All that the loaders read. A study is not given up for a task that isn't there or isn't whole.
/// THROWS CGetObject.
void RequireWholeTask(POD* pod, int nTask) {
  const auto task = kestdb::RequireByID<CTask, CGetObject>(pod, nTask);
  kestdb::RequireByID<CDVar, CGetObject>(pod, nTask);
  kestdb::RequireByID<CDResp, CGetObject>(pod, nTask);
  kestdb::RequireByID<CDCons, CGetObject>(pod, nTask);
  kestdb::RequireByID<CDLink, CGetObject>(pod, nTask);
  kestdb::RequireByID<CDEqn, CGetObject>(pod, nTask);
  kestdb::RequireByID<CDSet, CGetObject>(pod, nTask);
  if (task.m_nType != kDesignOfExperiments) kestdb::RequireByID<CDObj, CGetObject>(pod, nTask);
  kestdb::RequirePoint(pod, nTask, 0);
}

}  // namespace

void CTask::LoadTask(POD* pod, int nTask) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  RequireWholeTask(pod, nTask);
  CDesignControl::RemoveDesignControl(pod);
  CInput::RemoveInputs(pod);
  CResp::RemoveResps(pod);
  CAuxiliary::RemoveAuxiliaries(pod);
  CDesignControl control(pod);
  control.LoadDesignControl(nTask);
  CInput::LoadInputs(nTask, pod, 0);
  CResp::LoadResps(nTask, pod);
  CAuxiliary::LoadAuxillaries(nTask, pod);
  if (control.m_nTaskType == kDesignOfExperiments) return;
  CInput::UpdateObj(nTask, pod);
  CResp::UpdateObj(nTask, pod);
}
LOG_AND_RETHROW
