#include "examples/support/surface.h"

#include <kestdb.h>

#include <valarray>

namespace {

std::valarray<double> ArrayOf(const std::vector<double>& values) {
  return {values.data(), values.size()};
}

/// All exponents, term by term.
std::valarray<int> ExponentsOf(const std::vector<std::vector<int>>& terms) {
  std::vector<int> exponents;
  for (const auto& term : terms) exponents.insert(exponents.end(), term.begin(), term.end());
  return {exponents.data(), exponents.size()};
}

/// One statistic of all points.
std::valarray<double> ByPoint(const LeastSquares& fit, double PointStatistics::*value) {
  std::valarray<double> values(fit.points.size());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = fit.points[i].*value;
  return values;
}

double Power(double base, int exponent) {
  double power = 1.0;
  for (; exponent > 0; --exponent) power *= base;
  return power;
}

void TakeAnalysisOfVariance(CResidual& residuals, const LeastSquares& fit) {
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
}

}  // namespace

std::vector<std::vector<int>> QuadraticTerms(std::size_t variables) {
  std::vector<std::vector<int>> terms = {std::vector<int>(variables, 0)};
  for (const int exponent : {1, 2}) {
    for (std::size_t i = 0; i < variables; ++i) {
      terms.emplace_back(variables, 0)[i] = exponent;
    }
  }
  for (std::size_t i = 0; i < variables; ++i) {
    for (std::size_t k = i + 1; k < variables; ++k) {
      std::vector<int>& mixed = terms.emplace_back(variables, 0);
      mixed[i] = mixed[k] = 1;
    }
  }
  return terms;
}

std::vector<double> TermsAt(const std::vector<std::vector<int>>& terms,
                            const std::vector<double>& point) {
  std::vector<double> values(terms.size(), 1.0);
  for (std::size_t term = 0; term < terms.size(); ++term) {
    for (std::size_t i = 0; i < point.size(); ++i) {
      values[term] *= Power(point[i], terms[term].at(i));
    }
  }
  return values;
}

void StoreModel(int task, int iteration, int response, const std::vector<std::vector<int>>& terms,
                const LeastSquares& fit, const std::vector<double>& frame) {
  CApproxModels model(GetPOD());
  model.m_nTaskID = task;
  model.m_nIter = iteration;
  model.m_nResp = response;
  model.m_Values = ArrayOf(frame);
  model.m_Model = ExponentsOf(terms);
  model.m_Coefficients = ArrayOf(fit.coefficients);
  model.m_StdErrors = ArrayOf(fit.stdErrors);
  model.m_TStats = ArrayOf(fit.tStats);
  model.m_PValues = ArrayOf(fit.pValues);
  model.PutObject();
}

void StoreResiduals(int task, int response, const LeastSquares& fit) {
  CResidual residuals(GetPOD());
  residuals.m_nTaskID = task;
  residuals.m_nResp = response;
  residuals.m_HDiagonal = ByPoint(fit, &PointStatistics::leverage);
  residuals.m_Predicted = ByPoint(fit, &PointStatistics::predicted);
  residuals.m_Residual = ByPoint(fit, &PointStatistics::residual);
  residuals.m_Standardized = ByPoint(fit, &PointStatistics::standardized);
  residuals.m_Studentized = ByPoint(fit, &PointStatistics::studentized);
  residuals.m_RStudentized = ByPoint(fit, &PointStatistics::rStudentized);
  residuals.m_Press = ByPoint(fit, &PointStatistics::press);
  residuals.m_Cook = ByPoint(fit, &PointStatistics::cook);
  TakeAnalysisOfVariance(residuals, fit);
  residuals.PutObject();
}

void StoreFinalModel(int task, const std::vector<std::vector<int>>& terms,
                     const LeastSquares& fit) {
  const std::size_t variables = terms.front().size();
  CRApproxMod models(GetPOD());
  models.m_nTaskID = task;
  models.m_nRowMod = static_cast<long>(variables);
  models.m_nColMod = static_cast<long>(terms.size());
  models.m_Model = CMatrix<int>(variables, terms.size(), ExponentsOf(terms), true).Data();
  models.m_nRowCoeff = static_cast<long>(terms.size());
  models.m_nColCoeff = 1;
  models.m_Coeff = ArrayOf(fit.coefficients);
  models.PutObject();
}
