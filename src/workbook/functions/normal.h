// The standard normal distribution, fast.
#pragma once

namespace quorva::workbook {

/// P(Z <= z).
double normalProbability(double z);
/// The z with P(Z <= z) = p; NaN unless 0 < p < 1. Relative error below 1e-15 in both tails.
double normalQuantile(double p);
/// The density at z.
double normalDensity(double z);

}  // namespace quorva::workbook
