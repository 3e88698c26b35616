#include "numerics/large_shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "numerics/boost_policy.h"
#include "numerics/normal.h"

namespace quorva {
namespace {

using Extended = long double;

constexpr Extended inverseRootOfTwoPi = std::numbers::inv_sqrtpi_v<Extended> / std::numbers::sqrt2_v<Extended>;

/// Further from the mean the tail is far below the smallest double.
constexpr Extended farthest = 0.03L;

/// 1/3 + t/4 + t^2/5 + ..., exact up to the farthest excess.
Extended seriesAt(Extended t) {
    constexpr int terms = 12;
    Extended sum = 0;
    for (int k = terms + 2; k >= 3; --k) {
        sum = sum * t + 1 / static_cast<Extended>(k);
    }
    return sum;
}

/// q, with which minus twice the logarithm of the density is a (1 + ratio) excess^2 (1 + excess q).
Extended curvatureOf(Extended ratio, Extended excess) {
    return 2 * (ratio * ratio * seriesAt(ratio * excess) - seriesAt(-excess)) / (1 + ratio);
}

/// The transformed argument and its parts.
struct Transformed {
    Extended spread;     ///< a (1 + ratio), the inverse variance of the excess
    Extended curvature;  ///< q
    Extended stretch;    ///< sqrt(1 + excess q)
    Extended z;          ///< excess sqrt(spread) stretch

    Transformed(Extended a, Extended ratio, Extended excess)
        : spread(a * (1 + ratio)),
          curvature(curvatureOf(ratio, excess)),
          stretch(std::sqrt(1 + excess * curvature)),
          z(excess * std::sqrt(spread) * stretch) {}

    Extended normalDensity() const { return std::exp(-z * z / 2) * inverseRootOfTwoPi; }
};

FunctionTails tailsAt(const Transformed& at) {
    // 1 / z - 1 / (excess sqrt(spread)), without its cancellation next to the mean.
    const Extended correction =
        -at.curvature / (at.stretch * (at.stretch + 1) * std::sqrt(at.spread)) * at.normalDensity();
    const Extended argument = at.z / std::numbers::sqrt2_v<Extended>;
    const Extended lower = boost::math::erfc(-argument, NumericPolicy()) / 2 + correction;
    const Extended upper = boost::math::erfc(argument, NumericPolicy()) / 2 - correction;
    return {std::clamp(lower, 0.0L, 1.0L), std::clamp(upper, 0.0L, 1.0L)};
}

}  // namespace

FunctionTails largeShapeTails(Extended a, Extended ratio, Extended excess) {
    if (!(std::abs(excess) < farthest)) {
        return excess < 0 ? FunctionTails{0, 1} : FunctionTails{1, 0};
    }
    return tailsAt({a, ratio, excess});
}

Extended largeShapeQuantile(double tail, Side side, Extended a, Extended ratio) {
    const bool lower = side == Side::Lower;
    const Extended z = normalQuantile(tail);
    Extended excess = (lower ? z : -z) / std::sqrt(a * (1 + ratio));
    // Newton's method on the logarithm of the tail, from a guess that is right but for the correction.
    excess /= Transformed(a, ratio, excess).stretch;
    for (int round = 0; round < 20; ++round) {
        const Transformed at(a, ratio, excess);
        const FunctionTails tails = tailsAt(at);
        const Extended reached = lower ? tails.lower : tails.upper;
        const Extended density = at.normalDensity() * std::sqrt(at.spread) / ((1 + excess) * (1 - ratio * excess));
        const Extended miss = std::log(reached / tail);
        excess -= miss * reached / (lower ? density : -density);
        // What is left is of the order of the square.
        if (std::abs(miss) < 1e-9L) {
            return excess;
        }
    }
    return std::numeric_limits<Extended>::quiet_NaN();
}

}  // namespace quorva
