#include "examples/support/LeastSquares.h"

#include <Eigen/Dense>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <cstddef>

namespace {

using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;
using Eigen::Index;

Matrix MatrixOf(const std::vector<std::vector<double>>& rows) {
  Matrix matrix(static_cast<Index>(rows.size()), static_cast<Index>(rows.front().size()));
  for (Index i = 0; i < matrix.rows(); ++i) {
    matrix.row(i) = Eigen::Map<const Eigen::RowVectorXd>(rows[static_cast<std::size_t>(i)].data(),
                                                         matrix.cols());
  }
  return matrix;
}

std::vector<double> ListOf(const Vector& vector) {
  return {vector.begin(), vector.end()};
}

double TwoSided(double t, double freedom) {
  const boost::math::students_t distribution(freedom);
  return 2.0 * boost::math::cdf(boost::math::complement(distribution, std::abs(t)));
}

double AboveF(double f, double modelFreedom, double errorFreedom) {
  const boost::math::fisher_f distribution(modelFreedom, errorFreedom);
  return boost::math::cdf(boost::math::complement(distribution, f));
}

/// The matrices of a fit, and its degrees of freedom.
struct Fit {
  Fit(const Matrix& design, const Vector& observed)
      : x(design),
        y(observed),
        inverse((x.transpose() * x).inverse()),
        coefficients(x.colPivHouseholderQr().solve(y)),
        residuals(y - x * coefficients) {}

  double Points() const { return static_cast<double>(x.rows()); }
  double Terms() const { return static_cast<double>(x.cols()); }
  double ErrorFreedom() const { return Points() - Terms(); }
  double ErrorSum() const { return residuals.squaredNorm(); }
  double ErrorMean() const { return ErrorSum() / ErrorFreedom(); }

  Matrix x;
  Vector y;
  Matrix inverse;
  Vector coefficients;
  Vector residuals;
};

void FillCoefficients(const Fit& fit, LeastSquares& result) {
  const Vector errors = (fit.inverse.diagonal() * fit.ErrorMean()).cwiseSqrt();
  const Vector ratios = fit.coefficients.cwiseQuotient(errors);
  result.coefficients = ListOf(fit.coefficients);
  result.stdErrors = ListOf(errors);
  result.tStats = ListOf(ratios);
  for (const double t : result.tStats) result.pValues.push_back(TwoSided(t, fit.ErrorFreedom()));
}

PointStatistics StatisticsOf(const Fit& fit, Index i) {
  const double residual = fit.residuals[i];
  const double leverage = fit.x.row(i) * fit.inverse * fit.x.row(i).transpose();
  const double left = 1.0 - leverage;
  const double studentized = residual / std::sqrt(fit.ErrorMean() * left);
  const double meanWithout =
      (fit.ErrorSum() - residual * residual / left) / (fit.ErrorFreedom() - 1.0);
  return {leverage,        fit.y[i] - residual,
          residual,        residual / std::sqrt(fit.ErrorMean()),
          studentized,     residual / std::sqrt(meanWithout * left),
          residual / left, studentized * studentized / fit.Terms() * leverage / left};
}

void FillVariance(const Fit& fit, LeastSquares& result) {
  const double modelFreedom = fit.Terms() - 1.0;
  const double totalFreedom = fit.Points() - 1.0;
  result.meanResponse = fit.y.mean();
  result.total.sum = (fit.y.array() - result.meanResponse).square().sum();
  result.total.mean = result.total.sum / totalFreedom;
  result.error = {fit.ErrorSum(), fit.ErrorMean()};
  result.model.sum = result.total.sum - result.error.sum;
  result.model.mean = result.model.sum / modelFreedom;
  result.f0 = result.model.mean / result.error.mean;
  result.p = AboveF(result.f0, modelFreedom, fit.ErrorFreedom());
}

}  // namespace

double LeastSquares::RootMeanSquareError() const {
  return std::sqrt(error.mean);
}

double LeastSquares::CoefficientOfVariation() const {
  return 100.0 * RootMeanSquareError() / meanResponse;
}

LeastSquares FitLeastSquares(const std::vector<std::vector<double>>& rows,
                             const std::vector<double>& responses) {
  const Fit fit(MatrixOf(rows),
                Eigen::Map<const Vector>(responses.data(), static_cast<Index>(responses.size())));
  LeastSquares result;
  FillCoefficients(fit, result);
  FillVariance(fit, result);
  for (Index i = 0; i < fit.x.rows(); ++i) {
    result.points.push_back(StatisticsOf(fit, i));
    result.sumOfResiduals += result.points.back().residual;
    result.press += result.points.back().press * result.points.back().press;
  }
  result.r2 = 1.0 - result.error.sum / result.total.sum;
  result.adjustedR2 = 1.0 - result.error.mean / result.total.mean;
  result.r2Press = 1.0 - result.press / result.total.sum;
  return result;
}
