#include <algorithm>

#include "maintenance/Lock.h"
#include "results/RApproxMod.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/walk.h"
#include "task/Task.h"

// Which tasks there are, by what they are and whether they were run.

namespace {

bool IsOptimisation(const CTask& task) {
  return task.m_nType == 0 || task.m_nType == 1 || task.m_nType == 3;
}

bool HasFinalModel(POD* pod, const CTask& task) {
  CRApproxMod model(pod);
  model.m_nTaskID = task.m_nID;
  return model.FindObject();
}

bool PassesFilter(POD* pod, const CTask& task, int filter) {
  switch (filter) {
    case 0:
      return true;
    case 1:
      return IsOptimisation(task);
    case 2:
      return task.m_nType == 2;
    case 3:
      return HasFinalModel(pod, task);
    case 5:
      return task.m_nType == 1;
    default:
      return false;
  }
}

bool IsSelected(POD* pod, const CTask& task, int filter, bool unfinished) {
  const auto result = kestdb::RequireByID<CResult, CFindResult>(pod, task.m_nID);
  const bool wasRun = result.m_nRunStatus != 0;
  return unfinished ? !wasRun : wasRun && PassesFilter(pod, task, filter);
}

}  // namespace

void CTask::GetTasks(POD* pod, std::vector<int>& ids, int nFilter, bool bUnfinished) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  ids.clear();
  kestdb::VisitInFileOrder<CTask>(pod, [&](const CTask& task) {
    const bool isChild = task.m_nParent > 0;
    if (!isChild && IsSelected(pod, task, nFilter, bUnfinished)) {
      ids.push_back(static_cast<int>(long{task.m_nID}));
    }
    return true;
  });
  std::sort(ids.begin(), ids.end());
}
LOG_AND_RETHROW
