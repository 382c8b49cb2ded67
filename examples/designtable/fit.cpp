#include "fit.h"

#include <kestdb.h>

#include <cstdio>
#include <numeric>
#include <stdexcept>
#include <valarray>
#include <vector>

#include "examples/support/LeastSquares.h"

namespace {

/// The exponents of x and y in each term: constant, x, y, x**2, y**2, x * y.
const std::valarray<int> kTerms = {0, 0, 1, 0, 0, 1, 2, 0, 0, 2, 1, 1};
constexpr int kVariables = 2;
constexpr int kYield = 0;  // the position of the yield among the independent responses

struct Design {
  std::vector<std::vector<double>> rows;  ///< a value for each term
  std::vector<double> yields;
};

std::vector<double> TermsAt(double x, double y) {
  return {1.0, x, y, x * x, y * y, x * y};
}

/// All points of the task.
Design ReadDesign(int task) {
  Design design;
  CDPoint point(GetPOD());
  point.m_nTaskID = task;
  for (point.m_nPointID = 0; point.GetObject(); point.m_nPointID = point.m_nPointID + 1) {
    design.rows.push_back(TermsAt(point.m_IDVar[0], point.m_IDVar[1]));
    design.yields.push_back(point.m_IResp[kYield]);
  }
  if (design.rows.empty()) throw std::runtime_error("the task has no points");
  return design;
}

std::valarray<double> ArrayOf(const std::vector<double>& values) {
  return {values.data(), values.size()};
}

/// One statistic of all points.
std::valarray<double> ByPoint(const LeastSquares& fit, double PointStatistics::*value) {
  std::valarray<double> values(fit.points.size());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = fit.points[i].*value;
  return values;
}

void StoreDesign(int task, std::size_t points) {
  CRDOE design(GetPOD());
  design.m_nTaskID = task;
  design.m_Points.resize(points);
  std::iota(begin(design.m_Points), end(design.m_Points), 0);
  design.PutObject();
}

void StoreModel(int task, const LeastSquares& fit) {
  CApproxModels model(GetPOD());
  model.m_nTaskID = task;
  model.m_nResp = kYield;
  model.m_Model = kTerms;
  model.m_Coefficients = ArrayOf(fit.coefficients);
  model.m_StdErrors = ArrayOf(fit.stdErrors);
  model.m_TStats = ArrayOf(fit.tStats);
  model.m_PValues = ArrayOf(fit.pValues);
  model.PutObject();
}

/// The final models have a row for each variable and a column for each term.
void StoreFinalModel(int task, const LeastSquares& fit) {
  const unsigned long terms = fit.coefficients.size();
  const CMatrix<int> exponents(kVariables, terms, kTerms, true);
  CRApproxMod models(GetPOD());
  models.m_nTaskID = task;
  models.m_nRowMod = kVariables;
  models.m_nColMod = static_cast<long>(terms);
  models.m_Model = exponents.Data();
  models.m_nRowCoeff = static_cast<long>(terms);
  models.m_nColCoeff = 1;
  models.m_Coeff = ArrayOf(fit.coefficients);
  models.PutObject();
}

void StoreResiduals(int task, const LeastSquares& fit) {
  CResidual residuals(GetPOD());
  residuals.m_nTaskID = task;
  residuals.m_nResp = kYield;
  residuals.m_HDiagonal = ByPoint(fit, &PointStatistics::leverage);
  residuals.m_Predicted = ByPoint(fit, &PointStatistics::predicted);
  residuals.m_Residual = ByPoint(fit, &PointStatistics::residual);
  residuals.m_Standardized = ByPoint(fit, &PointStatistics::standardized);
  residuals.m_Studentized = ByPoint(fit, &PointStatistics::studentized);
  residuals.m_RStudentized = ByPoint(fit, &PointStatistics::rStudentized);
  residuals.m_Press = ByPoint(fit, &PointStatistics::press);
  residuals.m_Cook = ByPoint(fit, &PointStatistics::cook);
  residuals.m_fModelSS = fit.model.sum;
  residuals.m_fModelMS = fit.model.mean;
  residuals.m_fErrorSS = fit.error.sum;
  residuals.m_fErrorMS = fit.error.mean;
  residuals.m_fTotalSS = fit.total.sum;
  residuals.m_fF0 = fit.f0;
  residuals.m_fP = fit.p;
  residuals.m_fSumResiduals = fit.sumOfResiduals;
  residuals.m_fPRESS = fit.press;
  residuals.m_fRMSE = fit.RootMeanSquareError();
  residuals.m_fMeanResponse = fit.meanResponse;
  residuals.m_fCoeffVariation = fit.CoefficientOfVariation();
  residuals.m_fR2 = fit.r2;
  residuals.m_fAdjR2 = fit.adjustedR2;
  residuals.m_fR2Press = fit.r2Press;
  residuals.PutObject();
}

}  // namespace

void FitTask(int task) {
  // One lock around all: another process sees the whole fit or nothing of it.
  const CLock lock(GetPOD(), 0);
  const Design design = ReadDesign(task);
  const LeastSquares fit = FitLeastSquares(design.rows, design.yields);
  StoreDesign(task, design.rows.size());
  StoreModel(task, fit);
  StoreFinalModel(task, fit);
  StoreResiduals(task, fit);
}

void PrintFit(int task) {
  CTask::Dump(GetPOD(), stdout, task);
  CRDOE::Dump(GetPOD(), stdout, task);
  CApproxModels::Dump(GetPOD(), stdout, task, kYield);
  CRApproxMod::Dump(GetPOD(), stdout, task);
  CResidual::Dump(GetPOD(), stdout, task, kYield, false);
}
