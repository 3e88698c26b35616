// Beta laws and those that are beta laws under another name.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "numerics/boost_policy.h"
#include "numerics/incomplete_functions.h"
#include "numerics/law_functions.h"
#include "numerics/newton.h"
#include "numerics/normal.h"

namespace quorva::laws {
namespace {

using Extended = long double;

/// A point of the unit interval by its distances from both ends, each to full precision: a wide interval has points
/// whose distance from an end, over its width, is no normal double.
struct UnitPoint {
    Extended fromZero;
    Extended fromOne;
};

bool isArcsine(double alpha, double beta) { return alpha == 0.5 && beta == 0.5; }

/// Below this size of a parameter the law lies on the ends of the interval, but for the last digit.
constexpr double pointLike = 1e-250;

bool liesOnEnds(double alpha, double beta) { return std::min(alpha, beta) < pointLike; }

/// P(Z = 0) of a law that lies on the ends.
double weightOfZero(double alpha, double beta) { return 1 / (1 + alpha / beta); }

/// Far down the lower tail P(Z <= z) is z^alpha / (alpha B(alpha, beta)), as long as beta z is small against 1. This is
/// the logarithm of the denominator.
Extended logPowerScale(Extended alpha, Extended beta) {
    return boost::math::lgamma(alpha + 1, NumericPolicy()) + boost::math::lgamma(beta, NumericPolicy()) -
           boost::math::lgamma(alpha + beta, NumericPolicy());
}

/// So close to 0 the power is exact, and the general functions run out of normal doubles.
bool isPower(Extended z, double beta) { return z * std::max(1.0, beta) < 1e-290L; }

double powerCdf(Extended z, double alpha, double beta) {
    return static_cast<double>(std::exp(alpha * std::log(z) - logPowerScale(alpha, beta)));
}

Extended powerQuantile(double u, double alpha, double beta) {
    return std::exp((std::log(static_cast<Extended>(u)) + logPowerScale(alpha, beta)) / alpha);
}

/// P(Z <= z); in closed form for the arcsine law, on whose upper half the general function loses digits.
double standardCdf(UnitPoint z, double alpha, double beta) {
    if (isArcsine(alpha, beta)) {
        const double nearer = static_cast<double>(std::sqrt(std::min(z.fromZero, z.fromOne)));
        const double angle = std::asin(nearer) * (2 * std::numbers::inv_pi);
        return z.fromZero <= z.fromOne ? angle : 1 - angle;
    }
    if (liesOnEnds(alpha, beta)) {
        return weightOfZero(alpha, beta);
    }
    if (isPower(z.fromZero, beta)) {
        return powerCdf(z.fromZero, alpha, beta);
    }
    return betaLower(alpha, beta, static_cast<double>(z.fromZero), static_cast<double>(z.fromOne));
}

/// A first estimate of the point with P(Z <= z) = u, by its distances from both ends.
UnitPoint guessOf(double u, double alpha, double beta) {
    const bool farDown = u < 1e-10 || std::log(u) < -500 * alpha;
    const Extended power = farDown ? powerQuantile(u, alpha, beta) : 1;
    if (power * std::max(1.0, beta) < 1e-3L) {
        return {power, 1};
    }
    if (isAsymptotic(alpha, beta)) {
        const double ratio = beta / alpha;
        const double mean = 1 / (1 + ratio);
        const double deviation = std::sqrt(ratio / alpha / (1 + ratio)) * mean;
        const double z = std::clamp(mean + deviation * normalQuantile(u), 0.0, 1.0);
        return {z, 1 - z};
    }
    double fromOne = 0;
    const double fromZero = boost::math::ibeta_inv(alpha, beta, u, &fromOne, NumericPolicy());
    return {fromZero, fromOne};
}

/// The point with P(Z <= z) = u for u <= 1/2, found at the end of the interval to which it is nearer.
UnitPoint lowerQuantile(double u, double alpha, double beta) {
    const UnitPoint guess = guessOf(u, alpha, beta);
    if (isPower(guess.fromZero, beta)) {
        return guess;
    }
    if (guess.fromZero <= guess.fromOne) {
        const double fromZero =
            std::min(1.0, polished(static_cast<double>(guess.fromZero), u, [=](double x) {
                         return TailPoint{betaLower(alpha, beta, x, 1 - x),
                                          boost::math::ibeta_derivative(alpha, beta, x, NumericPolicy())};
                     }));
        return {fromZero, 1 - fromZero};
    }
    const double fromOne =
        std::min(1.0, polished(static_cast<double>(guess.fromOne), u, [=](double y) {
                     return TailPoint{betaLower(alpha, beta, 1 - y, y),
                                      -boost::math::ibeta_derivative(beta, alpha, y, NumericPolicy())};
                 }));
    return {1 - fromOne, fromOne};
}

UnitPoint standardQuantile(double u, double alpha, double beta) {
    if (isArcsine(alpha, beta)) {
        const double sine = std::sin(std::numbers::pi / 2 * std::min(u, 1 - u));
        const double square = sine * sine;
        return u <= 0.5 ? UnitPoint{square, 1 - square} : UnitPoint{1 - square, square};
    }
    if (liesOnEnds(alpha, beta)) {
        return u <= weightOfZero(alpha, beta) ? UnitPoint{0, 1} : UnitPoint{1, 0};
    }
    if (u <= 0.5) {
        return lowerQuantile(u, alpha, beta);
    }
    const UnitPoint mirrored = lowerQuantile(1 - u, beta, alpha);
    return {mirrored.fromOne, mirrored.fromZero};
}

/// Beta law stretched over [c, d].
struct Stretched {
    double alpha;
    double beta;
    double c;
    double d;
};

double cdfOf(double x, const Stretched& law) {
    const Extended width = static_cast<Extended>(law.d) - law.c;
    return standardCdf({(static_cast<Extended>(x) - law.c) / width, (static_cast<Extended>(law.d) - x) / width},
                       law.alpha, law.beta);
}

double quantileOf(double u, const Stretched& law) {
    const UnitPoint z = standardQuantile(u, law.alpha, law.beta);
    const Extended width = static_cast<Extended>(law.d) - law.c;
    return static_cast<double>(z.fromZero <= 0.5 ? law.c + z.fromZero * width : law.d - z.fromOne * width);
}

Support stretchedSupport(const Stretched& law) {
    return definedIf(law.alpha > 0 && law.beta > 0 && law.c <= law.d, from(law.c, law.d));
}

Stretched betaOf(const LawParameters& p) { return {p[0], p[1], 0, 1}; }
Stretched beta4Of(const LawParameters& p) { return {p[0], p[1], p[2], p[3]}; }
Stretched arcsineOf(const LawParameters& p) { return {p[0], 1 - p[0], 0, 1}; }

/// (4m + b - 5a)/(b - a) and (5b - a - 4m)/(b - a), written without cancellation.
Stretched pertOf(const LawParameters& p) {
    const Extended a = p[0];
    const Extended m = p[1];
    const Extended b = p[2];
    return {static_cast<double>(1 + 4 * ((m - a) / (b - a))), static_cast<double>(1 + 4 * ((b - m) / (b - a))), p[0],
            p[2]};
}

double fisherCdf(double x, const LawParameters& p) {
    const Extended scaled = static_cast<Extended>(p[0]) * x;
    const Extended sum = scaled + p[1];
    return standardCdf({scaled / sum, p[1] / sum}, p[0] / 2, p[1] / 2);
}

double fisherQuantile(double u, const LawParameters& p) {
    const UnitPoint z = standardQuantile(u, p[0] / 2, p[1] / 2);
    return static_cast<double>(static_cast<Extended>(p[1]) * z.fromZero / z.fromOne / p[0]);
}

}  // namespace

constinit const LawFunctions beta{2, false, [](const LawParameters& p) { return stretchedSupport(betaOf(p)); },
                                  [](double x, const LawParameters& p) { return cdfOf(x, betaOf(p)); },
                                  [](double u, const LawParameters& p) { return quantileOf(u, betaOf(p)); }};

constinit const LawFunctions beta4{4, false, [](const LawParameters& p) { return stretchedSupport(beta4Of(p)); },
                                   [](double x, const LawParameters& p) { return cdfOf(x, beta4Of(p)); },
                                   [](double u, const LawParameters& p) { return quantileOf(u, beta4Of(p)); }};

// theta = 0 and 1 leave all weight at that end.
constinit const LawFunctions arcsine{
    1, false,
    [](const LawParameters& p) { return p[0] == 0 || p[0] == 1 ? pointMass(p[0]) : stretchedSupport(arcsineOf(p)); },
    [](double x, const LawParameters& p) { return cdfOf(x, arcsineOf(p)); },
    [](double u, const LawParameters& p) { return quantileOf(u, arcsineOf(p)); }};

constinit const LawFunctions pert{
    3, false, [](const LawParameters& p) { return definedIf(p[0] <= p[1] && p[1] <= p[2], from(p[0], p[2])); },
    [](double x, const LawParameters& p) { return cdfOf(x, pertOf(p)); },
    [](double u, const LawParameters& p) { return quantileOf(u, pertOf(p)); }};

constinit const LawFunctions fisher{2, false,
                                    [](const LawParameters& p) { return definedIf(p[0] > 0 && p[1] > 0, from(0)); },
                                    fisherCdf, fisherQuantile};

}  // namespace quorva::laws
