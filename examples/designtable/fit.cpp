#include "fit.h"

#include <kestdb.h>

#include <cstdio>
#include <numeric>
#include <stdexcept>
#include <vector>

#include "examples/support/surface.h"

namespace {

constexpr int kYield = 0;  // the position of the yield among the independent responses

struct Design {
  std::vector<std::vector<double>> rows;  ///< a value for each term
  std::vector<double> yields;
};

/// All points of the task.
Design ReadDesign(int task, const std::vector<std::vector<int>>& terms) {
  Design design;
  CDPoint point(GetPOD());
  point.m_nTaskID = task;
  for (point.m_nPointID = 0; point.GetObject(); point.m_nPointID = point.m_nPointID + 1) {
    design.rows.push_back(TermsAt(terms, {point.m_IDVar[0], point.m_IDVar[1]}));
    design.yields.push_back(point.m_IResp[kYield]);
  }
  if (design.rows.empty()) throw std::runtime_error("the task has no points");
  return design;
}

void StoreDesign(int task, std::size_t points) {
  CRDOE design(GetPOD());
  design.m_nTaskID = task;
  design.m_Points.resize(points);
  std::iota(begin(design.m_Points), end(design.m_Points), 0);
  design.PutObject();
}

}  // namespace

void FitTask(int task) {
  // One lock around all: another process sees the whole fit or nothing of it.
  const CLock lock(GetPOD(), 0);
  const auto terms = QuadraticTerms(2);  // constant, x, y, x**2, y**2, x * y
  const Design design = ReadDesign(task, terms);
  const LeastSquares fit = FitLeastSquares(design.rows, design.yields);
  StoreDesign(task, design.rows.size());
  StoreModel(task, 0, kYield, terms, fit);
  StoreFinalModel(task, terms, fit);
  StoreResiduals(task, kYield, fit);
}

void PrintFit(int task) {
  CTask::Dump(GetPOD(), stdout, task);
  CRDOE::Dump(GetPOD(), stdout, task);
  CApproxModels::Dump(GetPOD(), stdout, task, kYield);
  CRApproxMod::Dump(GetPOD(), stdout, task);
  CResidual::Dump(GetPOD(), stdout, task, kYield, false);
}
