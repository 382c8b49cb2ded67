#pragma once

#include <vector>

// A run engine's fit of a linear model: ordinary least squares with the statistics of
// the coefficients, of the fit and of each point.

/// What is told of each point.
struct PointStatistics {
  double leverage = 0;  ///< diagonal of the hat matrix
  double predicted = 0;
  double residual = 0;
  double standardized = 0;  ///< by the root mean square error
  double studentized = 0;   ///< by the residual's own standard error
  double rStudentized = 0;  ///< by that of the fit without the point
  double press = 0;         ///< residual of the fit without the point
  double cook = 0;          ///< Cook's distance
};

/// A sum of squares and its mean.
struct Squares {
  double sum = 0;
  double mean = 0;
};

struct LeastSquares {
  // For each column of the model:
  std::vector<double> coefficients;
  std::vector<double> stdErrors;
  std::vector<double> tStats;
  std::vector<double> pValues;  ///< two-sided

  std::vector<PointStatistics> points;

  Squares model;  ///< about the mean
  Squares error;
  Squares total;
  double f0 = 0;
  double p = 0;
  double sumOfResiduals = 0;
  double press = 0;
  double meanResponse = 0;
  double r2 = 0;
  double adjustedR2 = 0;
  double r2Press = 0;

  double RootMeanSquareError() const;
  /// In percent of the mean response.
  double CoefficientOfVariation() const;
};

/// Fits the responses by the columns of `rows`, the first of which is the constant 1. REQUIRES two
/// points more than columns, and columns that don't depend on each other.
LeastSquares FitLeastSquares(const std::vector<std::vector<double>>& rows,
                             const std::vector<double>& responses);
