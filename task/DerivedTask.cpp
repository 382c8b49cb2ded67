#include "task/DerivedTask.h"

#include "definition/DBCtrl.h"
#include "results/Message.h"
#include "results/Result.h"

namespace kestdb {

CTask DeriveTask(POD* pod, const CTask& source) {
  CTask task(pod);
  const int id = CDBCtrl(pod).GetTaskID(true);
  task.Copy(source);
  task.m_nID = id;
  task.m_vnChildren.clear();
  task.SetCreateTime();
  return task;
}

void StoreEmptyMessages(POD* pod, const vbINT32& task) {
  CMessage messages(pod);
  messages.m_nID = task;
  messages.PutObject();
}

void StoreFreshResult(POD* pod, const vbINT32& task) {
  CResult result(pod);
  result.m_nID = task;
  result.m_nNumPoints = result.m_nTotalPoints = 1;
  result.PutObject();
}

void StorePoint(CDPoint& point, const vbINT32& task, int number) {
  point.m_nTaskID = task;
  point.m_nPointID = number;
  point.PutObject();
}

/// Kept: of the two counts of the result only one follows, and the locked flags stay as they were.
void SetStartingPoints(CTask& task, int count) {
  auto result = RequireByID<CResult, CGetObject>(task.Database(), task.m_nID);
  result.m_nNumPoints = count;
  result.PutObject();
  task.m_uNumPoints = static_cast<unsigned long>(count);
  task.SetAnalyzeFlags(std::vector<int>(static_cast<std::size_t>(count), 0));
}

}  // namespace kestdb
