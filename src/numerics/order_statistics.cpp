// Confidence bounds of a quantile.
#include <algorithm>
#include <cmath>

#include "numerics/core.h"
#include "numerics/laws.h"
#include "numerics/quantiles.h"

namespace quorva {

void V_ConfQuantilesLargeSample(const double* values, int n, double p, double confidence, double& lower,
                                double& upper) {
    lower = upper = MissingValue;
    const double z = InvCDFNormalStd(confidence);
    if (n < 1 || !(p >= 0 && p <= 1) || std::isnan(z)) {
        return;
    }
    const double deviation = std::sqrt(n * p * (1 - p));
    const double reach = deviation > 0 ? z * deviation : 0;
    const auto rank = [n](double wanted) { return static_cast<int>(std::clamp(wanted, 1.0, static_cast<double>(n))); };
    std::vector<double> sample(values, values + n);
    lower = orderStatistic(sample, rank(std::floor(n * p - reach)));
    upper = orderStatistic(sample, rank(std::ceil(n * p + reach)));
}

}  // namespace quorva
