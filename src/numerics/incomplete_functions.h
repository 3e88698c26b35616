// The regularised incomplete gamma and beta functions for parameters of any size. NaN where an evaluation does not
// converge.
#pragma once

#include <algorithm>
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/large_shapes.h"

namespace quorva {

/// P(a, x) and Q(a, x) of a large a.
inline FunctionTails largeGammaTails(long double a, long double x) { return largeShapeTails(a, 0, (x - a) / a); }

/// P(a, x).
template <class Real>
Real gammaLower(Real a, Real x) {
    return a > Real(largeShape) ? static_cast<Real>(largeGammaTails(a, x).lower)
                                : orNaN([=] { return boost::math::gamma_p(a, x, NumericPolicy()); });
}

/// Q(a, x) = 1 - P(a, x).
template <class Real>
Real gammaUpper(Real a, Real x) {
    return a > Real(largeShape) ? static_cast<Real>(largeGammaTails(a, x).upper)
                                : orNaN([=] { return boost::math::gamma_q(a, x, NumericPolicy()); });
}

/// Whether both parameters are large.
template <class Real>
bool isLargeBeta(Real a, Real b) {
    return std::min(a, b) > Real(largeShape);
}

/// I_x(a, b) for large a and b.
inline long double largeBetaLower(long double a, long double b, long double x, long double y) {
    if (a > b) {
        const long double mean = b / (a + b);
        return largeShapeTails(b, b / a, (y <= x ? y - mean : a / (a + b) - x) / mean).upper;
    }
    const long double mean = a / (a + b);
    return largeShapeTails(a, a / b, (x <= y ? x - mean : b / (a + b) - y) / mean).lower;
}

/// Beyond this size of one parameter, the other one not being large, I_x(a, b) is a gamma function: that of
/// gammaLikeArgument, whose shape is the other parameter.
constexpr double gammaLike = 1e17;

/// The argument takes in the first correction (Didonato and Morris, "Significant digit computation of the incomplete
/// beta function ratios", ACM TOMS 18, 1992, section 9); the next one is lost in rounding.
template <class Real>
Real gammaLikeArgument(Real a, Real b, Real x) {
    return -(b + (a - 1) / 2) * std::log1p(-x);
}

/// I_x(a, b), y = 1 - x.
template <class Real>
Real betaLower(Real a, Real b, Real x, Real y) {
    if (isLargeBeta(a, b)) {
        return static_cast<Real>(largeBetaLower(a, b, x, y));
    }
    if (std::max(a, b) > Real(gammaLike)) {
        return b > a ? gammaLower(a, gammaLikeArgument(a, b, x)) : gammaUpper(b, gammaLikeArgument(b, a, y));
    }
    return orNaN([=] {
        return x <= y ? boost::math::ibeta(a, b, x, NumericPolicy()) : boost::math::ibetac(b, a, y, NumericPolicy());
    });
}

/// 1 - I_x(a, b), y = 1 - x.
template <class Real>
Real betaUpper(Real a, Real b, Real x, Real y) {
    return betaLower(b, a, y, x);
}

}  // namespace quorva
