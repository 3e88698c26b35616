#include "numerics/student.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "numerics/boost_policy.h"
#include "numerics/normal.h"

namespace quorva {
namespace {

/// P(T > t) for t >= 0, in extended precision. The incomplete beta function is read from the side whose argument is
/// small.
long double upperTail(long double t, long double df) {
    const long double t2 = t * t;
    const long double y = t2 / (df + t2);
    return orNaN([=] {
        return y < 0.5L ? boost::math::ibetac(0.5L, df / 2, y, NumericPolicy()) / 2
                        : boost::math::ibeta(df / 2, 0.5L, df / (df + t2), NumericPolicy()) / 2;
    });
}

/// P(0 < T <= t): the distance from the median, without 1/2 to cancel.
long double central(long double t, long double df) {
    const long double t2 = t * t;
    const long double y = t2 / (df + t2);
    return orNaN([=] {
        return y < 0.5L ? boost::math::ibeta(0.5L, df / 2, y, NumericPolicy()) / 2
                        : boost::math::ibetac(df / 2, 0.5L, df / (df + t2), NumericPolicy()) / 2;
    });
}

/// The density at t; beta is B(1/2, df/2).
long double density(long double t, long double df, long double beta) {
    return std::exp(-(df + 1) / 2 * std::log1p(t * t / df)) / (std::sqrt(df) * beta);
}

/// Beyond this many degrees of freedom the law is the normal one to the last digit.
constexpr double practicallyNormal = 1e20;

/// t > 0 with P(T > t) = q, q < 1/2 given exactly together with c = 1/2 - q.
double positiveQuantile(double q, double c, double df) {
    if (df == 1) {
        return static_cast<double>(c < 0.25 ? std::tan(std::numbers::pi_v<long double> * c)
                                            : 1 / std::tan(std::numbers::pi_v<long double> * q));
    }
    if (df == 2) {
        const long double upper = q;
        return static_cast<double>(c * std::sqrt(2 / (upper * (0.5L + c))));
    }
    // Far out the tail is a power of t: with x = df / (df + t^2), q = x^(df/2) / (df B(1/2, df/2)).
    const long double beta = boost::math::beta(0.5L, static_cast<long double>(df) / 2, NumericPolicy());
    const long double x = std::exp(2 * std::log(q * df * beta) / df);
    if (x < 1e-20L) {
        return static_cast<double>(std::sqrt(df / x));
    }
    // Next to the median c is the density there times t, but for a term in t^3.
    const long double straight = c * std::sqrt(static_cast<long double>(df)) * beta;
    const long double bend = straight * straight * (df + 1.0L) / (6.0L * df);
    if (bend < 1e-10L) {
        return static_cast<double>(straight * (1 + bend));
    }
    double complement = 0;
    const double y = c < 0.25 ? boost::math::ibeta_inv(0.5, df / 2, 2 * c, &complement, GuessPolicy())
                              : boost::math::ibetac_inv(0.5, df / 2, 2 * q, &complement, GuessPolicy());
    long double t = std::sqrt(static_cast<long double>(df) * y / complement);
    if (!std::isfinite(t) || t <= 0) {
        return static_cast<double>(t);
    }
    for (int step = 0; step < 50; ++step) {
        const long double error = c < 0.25 ? c - central(t, df) : upperTail(t, df) - q;
        // Kept on its side of the median, however poor the guess.
        const long double newton = std::clamp(error / density(t, df, beta), -t / 2, t);
        t += newton;
        // The error left is of the order of the square of the step.
        if (std::abs(newton) < 1e-11L * t) {
            return static_cast<double>(t);
        }
    }
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

double studentCdf(double x, double df) {
    if (df == 1) {
        const double tail =
            static_cast<double>(std::atan(1 / std::abs(static_cast<long double>(x)))) * std::numbers::inv_pi;
        return x < -1 ? tail : x > 1 ? 1 - tail : 0.5 + std::atan(x) * std::numbers::inv_pi;
    }
    if (df >= practicallyNormal) {
        return normalCdf(x);
    }
    if (std::isinf(x)) {
        return x > 0 ? 1.0 : 0.0;
    }
    const long double t = std::abs(static_cast<long double>(x));
    return static_cast<double>(x < 0 ? upperTail(t, df) : 0.5L + central(t, df));
}

double studentQuantile(double u, double df) {
    if (df >= practicallyNormal) {
        return normalQuantile(u);
    }
    if (u == 0.5) {
        return 0;
    }
    if (u == 0 || u == 1) {
        return u == 0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    }
    return u < 0.5 ? -positiveQuantile(u, 0.5 - u, df) : positiveQuantile(1 - u, u - 0.5, df);
}

}  // namespace quorva
