// The regularised incomplete gamma and beta functions for parameters of any size.
#pragma once

#include <algorithm>
#include <boost/math/special_functions/log1p.hpp>
#include <cmath>
#include <numbers>

#include "numerics/boost_policy.h"

namespace quorva {

/// A probability and its complement, each to its own relative precision.
struct FunctionTails {
    long double lower;
    long double upper;
};

/// v -> log(1 + v) - v without cancellation.
inline long double log1pMinus(long double v) {
    return v > -0.9L && v < 1 ? boost::math::log1pmx(v, NumericPolicy()) : std::log1p(v) - v;
}

/// The normal tails at eta sqrt(n) with the first correction term c0.
inline FunctionTails correctedNormalTails(long double exponent, long double eta, long double n, long double c0) {
    const long double correction = std::exp(-exponent) * c0 / std::sqrt(2 * std::numbers::pi_v<long double> * n);
    const long double argument = eta * std::sqrt(n / 2);
    const long double lower = boost::math::erfc(-argument, NumericPolicy()) / 2 + correction;
    const long double upper = boost::math::erfc(argument, NumericPolicy()) / 2 - correction;
    return {std::clamp(lower, 0.0L, 1.0L), std::clamp(upper, 0.0L, 1.0L)};
}

/// P(a, x) for large a (Temme 1979; DLMF 8.12.3 with the first term of 8.12.7). The relative error is of the order
/// of 1 / a.
inline FunctionTails gammaTailsAsymptotic(long double a, long double x) {
    if (std::isinf(x)) {
        return {1, 0};
    }
    const long double distance = (x - a) / a;
    const long double exponent = std::max(-log1pMinus(distance), 0.0L);
    const long double eta = std::copysign(std::sqrt(2 * exponent), distance);
    const long double c0 = std::abs(eta) < 1e-6L ? 1.0L / 3 : 1 / eta - 1 / distance;
    return correctedNormalTails(a * exponent, eta, a, c0);
}

/// I_x(a, b) for large a and b (Temme 1982; DLMF 8.18.9, first term). The relative error is of the order of
/// 1 / (a + b).
inline FunctionTails betaTailsAsymptotic(long double a, long double b, long double x, long double y) {
    const long double n = a + b;
    const long double x0 = a / n;
    const long double y0 = b / n;
    // x - x0 from whichever of x and y is given more precisely.
    const long double distance = x <= y ? x - x0 : y0 - y;
    const long double exponent = std::max(-(x0 * log1pMinus(distance / x0) + y0 * log1pMinus(-distance / y0)), 0.0L);
    const long double eta = std::copysign(std::sqrt(2 * exponent), distance);
    const long double spread = std::sqrt(x0 * y0);
    const long double c0 = std::abs(eta) < 1e-6L ? (1 - 2 * x0) / (3 * spread) : 1 / eta - spread / distance;
    return correctedNormalTails(n * exponent, eta, n, c0);
}

/// Where the general function would need tens of thousands of steps and the expansion is exact to double precision
/// but for the far tails.
template <class Real>
bool isAsymptotic(Real a, Real b) {
    return std::min(a, b) > Real(1e6) && std::max(a, b) > Real(1e9);
}

/// P(a, x).
template <class Real>
Real gammaLower(Real a, Real x) {
    return a > Real(1e10) ? static_cast<Real>(gammaTailsAsymptotic(a, x).lower)
                          : boost::math::gamma_p(a, x, NumericPolicy());
}

/// Q(a, x) = 1 - P(a, x).
template <class Real>
Real gammaUpper(Real a, Real x) {
    return a > Real(1e10) ? static_cast<Real>(gammaTailsAsymptotic(a, x).upper)
                          : boost::math::gamma_q(a, x, NumericPolicy());
}

/// I_x(a, b), y = 1 - x. With one parameter beyond 1e17 and the other one of ordinary size it is a gamma function to
/// the last digit.
template <class Real>
Real betaLower(Real a, Real b, Real x, Real y) {
    constexpr Real gammaLike = Real(1e17);
    if (isAsymptotic(a, b)) {
        return static_cast<Real>(betaTailsAsymptotic(a, b, x, y).lower);
    }
    if (std::max(a, b) > gammaLike) {
        return b > a ? gammaLower(a, b * x) : gammaUpper(b, a * y);
    }
    return x <= y ? boost::math::ibeta(a, b, x, NumericPolicy()) : boost::math::ibetac(b, a, y, NumericPolicy());
}

/// 1 - I_x(a, b), y = 1 - x.
template <class Real>
Real betaUpper(Real a, Real b, Real x, Real y) {
    return betaLower(b, a, y, x);
}

}  // namespace quorva
