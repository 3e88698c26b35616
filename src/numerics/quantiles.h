// Order statistics of a vector, without sorting where one quantile is asked for.
#pragma once

#include <cmath>
#include <span>
#include <vector>

#include "quorva/wire_format.h"

namespace quorva {

/// Ascending order with NaN behind every number, so that a NaN observation cannot derail a selection.
struct NanLast {
    bool operator()(double a, double b) const { return a < b || (std::isnan(b) && !std::isnan(a)); }
};

/// p-quantile as V_QuantileM (weights null or all 1) and V_QuantileMW define it. Observations that are flagged or
/// without positive weight take no part; MissingValue when none is left or p is outside [0, 1].
double quantileOf(const double* values, int n, const short* flags, const double* weights, double p);

/// Quantiles at several probabilities of values that count once each, by selections within selections; every one is
/// what quantileOf gives, MissingValue for a probability outside [0, 1] and for no values. Rearranges the values.
void quantilesOf(std::vector<double>& values, std::span<const double> probabilities, std::span<double> quantiles);

/// The same of values in ascending order, NaN last.
double quantileOfOrdered(std::span<const double> ordered, double p);

/// The rank-th smallest (rank from 1 to the number of values); rearranges the values.
double orderStatistic(std::vector<double>& values, int rank);

/// The value that comes first under `before`; NaN when no observation is a number, MissingValue when every observation
/// is flagged.
template <class Before>
double extremeOf(const double* values, int n, const short* flags, Before before) {
    double best = MissingValue;
    bool found = false;
    for (int i = 0; i < n; ++i) {
        if ((flags == nullptr || flags[i] == 0) && (!found || before(values[i], best) || std::isnan(best))) {
            best = values[i];
            found = true;
        }
    }
    return best;
}

}  // namespace quorva
