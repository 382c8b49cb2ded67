#pragma once

#include <vector>

#include "examples/support/LeastSquares.h"

/// The terms of a quadratic polynomial of several variables, each an exponent for every variable:
/// the constant, then the linear, the pure quadratic and the mixed ones.
std::vector<std::vector<int>> QuadraticTerms(std::size_t variables);

/// The values of the terms at a point.
std::vector<double> TermsAt(const std::vector<std::vector<int>>& terms,
                            const std::vector<double>& point);

// What CApproxModels, CRApproxMod and CResidual hold of a fit to the response at that position
// among the independent ones. `frame` is what the engine has to remember of the model.

void StoreModel(int task, int iteration, int response, const std::vector<std::vector<int>>& terms,
                const LeastSquares& fit, const std::vector<double>& frame = {});
void StoreResiduals(int task, int response, const LeastSquares& fit);
/// The final models of a task whose only independent response this is.
void StoreFinalModel(int task, const std::vector<std::vector<int>>& terms, const LeastSquares& fit);
