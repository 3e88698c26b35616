// Textbook statistics of the values that a run stored. NaN values take no part.
#pragma once

#include <span>
#include <vector>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// The numbers among the values, ascending, and where they came from.
struct SortedColumn {
    std::vector<double> values;  ///< ascending, without NaN
    std::vector<int> positions;  ///< index of each sorted value in the column
};

SortedColumn sortColumn(std::span<const double> column);

/// Quantile of ascending values at position 1 + (n - 1) p (Hyndman and Fan 1996, type 7); NaN without values.
double quantileOfSorted(std::span<const double> sorted, double p);

/// Moments and percentiles of the numbers of a column; its other values are the errors.
Summary summarise(const Field& field, std::span<const double> column, const SortedColumn& sorted);

Interval centralInterval(const Field& field, const SortedColumn& sorted, double tail);

/// Classes of equal width: one per value for few whole numbers, else by Freedman and Diaconis (1981) within 10..60.
Histogram histogramOf(const SortedColumn& sorted);

/// Ranks 1..n of the numbers with ties at their mean; NaN stays NaN.
std::vector<double> ranksOf(std::span<const double> column, const SortedColumn& sorted);

/// Pearson correlations of the columns; pairs with a NaN are left out. NaN where a column does not vary.
/// The columns are used up: large runs have no room for another copy.
LabelledMatrix correlationMatrix(std::vector<std::string> names, std::vector<std::vector<double>> columns);

/// Two-sided interval of the standard deviation of n values: s -+ z s sqrt((b2 - 1) / (4 (n - 1))), b2 the
/// Pearson kurtosis and z the standard normal quantile of (1 + confidence) / 2.
void stdevInterval(std::span<const double> values, double confidence, double& lower, double& upper);
/// Two-sided normal interval of the mean.
void meanInterval(std::span<const double> values, double confidence, double& lower, double& upper);
/// Two-sided large-sample interval of the p-quantile.
void percentileInterval(std::span<const double> values, double p, double confidence, double& lower, double& upper);

/// How far a bound moved from one check to the next, in percent, by the module's rule: a bound of 0 does not move.
double movementPercent(double now, double before);

/// Running mean with its 95 % interval at up to 60 iterations.
Trace traceOf(std::span<const double> column);

/// The 23 capability indices of the values.
Capability capabilityOf(const SpecificationLimits& limits, std::span<const double> column, double confidence);

}  // namespace quorva::frontend
