// The last step of a quantile: from a good guess to full precision.
#pragma once

#include <cmath>
#include <limits>

namespace quorva {

/// Value and derivative of a tail probability.
struct TailPoint {
    double probability;
    double slope;
};

/// x > 0 with tail(x) = target, by Newton's method on the logarithms of both, in which the tails of the laws are nearly
/// straight lines. A guess that is already right costs one evaluation. Where the tail is too small for a double the
/// guess stands; NaN where it does not converge.
template <class Tail>
double polished(double x, double target, Tail tail) {
    for (int round = 0; x > 0 && std::isfinite(x); ++round) {
        const TailPoint point = tail(x);
        constexpr int rounds = 50;
        if (std::isnan(point.probability) || round == rounds) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        const double elasticity = point.slope * x / point.probability;
        const double excess = (point.probability - target) / target;
        double step =
            (excess > -0.5 && excess < 1 ? std::log1p(excess) : std::log(point.probability / target)) / elasticity;
        if (!std::isfinite(step)) {
            break;
        }
        constexpr double longest = 20;
        step = step > longest ? longest : step < -longest ? -longest : step;
        const double next = std::abs(step) < 1e-5 ? x - x * step * (1 - step / 2) : x * std::exp(-step);
        // A step that is small against x may be large against the width of the law.
        const bool settled = (std::abs(step) < 1e-7 && std::abs(excess) < 1e-7) || next == x;
        x = next;
        if (settled) {
            break;
        }
    }
    return x;
}

}  // namespace quorva
