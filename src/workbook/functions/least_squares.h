// Linear least squares for LINEST, LOGEST, TREND and GROWTH.
#pragma once

#include <vector>

#include "workbook/evaluation/function_api.h"

namespace quorva::workbook {

/// y = intercept + sum of slopes[j] * x_j, fitted.
struct LinearFit {
    std::vector<double> slopes;
    double intercept = 0;
    std::vector<double> slopeErrors;  ///< standard errors; 0 for variables left out as collinear
    double interceptError = 0;
    double freedom = 0;            ///< n less the coefficients that were estimated
    double regressionSquares = 0;  ///< explained sum of squares (around the mean, or around 0 without intercept)
    double residualSquares = 0;
};

/// Fits by orthogonal decomposition. `x` holds one observation a row and one variable a column; its rows are y's size.
/// A variable that the ones before it explain gets the slope 0 and costs no degree of freedom.
LinearFit fitLinear(const NumberMatrix& x, const std::vector<double>& y, bool withIntercept);

}  // namespace quorva::workbook
