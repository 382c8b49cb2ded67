#include <stdexcept>

#include "tests/guide/Guide.h"

namespace {

// [best-iteration]
/// The iteration at which a run found its best design.
CIter BestIteration(int task) {
  CResult result(GetPOD());
  result.m_nID = task;
  if (!result.GetObject()) throw std::runtime_error("no such task");
  CIter iteration(GetPOD());
  iteration.m_nTaskID = task;
  iteration.m_nIter = result.m_nBestIter;
  iteration.m_nSubIter = result.m_nBestSubIter;
  if (!iteration.GetObject()) throw std::runtime_error("the task was not run");
  return iteration;
}
// [end]

}  // namespace

// [best]
Design BestDesign(int task) {
  const CLock lock(GetPOD(), 0);
  CDPoint point(GetPOD());
  point.m_nTaskID = task;
  point.m_nPointID = BestIteration(task).m_nBestPoint;
  if (!point.GetObject() || point.m_IDVar.size() != 2 || point.m_LResp.size() != 1) {
    throw std::runtime_error("the best point is missing");
  }
  return {point.m_IDVar[0], point.m_IDVar[1], point.m_LResp[0]};
}
// [end]

// [reports]
void PrintRun(std::FILE* stream, int task) {
  const CLock lock(GetPOD(), 0);
  const auto best = static_cast<int>(BestIteration(task).m_nIter.PackBits());
  CTask::Dump(GetPOD(), stream, task);
  CDVar::Dump(GetPOD(), stream, task);
  CDResp::Dump(GetPOD(), stream, task);
  CResult::Dump(GetPOD(), stream, task, false);
  CMessage::Dump(GetPOD(), stream, task);
  CIter::Dump(GetPOD(), stream, task, true, best, 0, true);
}
// [end]
