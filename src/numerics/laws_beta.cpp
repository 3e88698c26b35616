// Beta laws and those that are beta laws under another name.
#include <algorithm>
#include <boost/math/special_functions/log1p.hpp>
#include <cmath>
#include <numbers>

#include "numerics/boost_policy.h"
#include "numerics/incomplete_functions.h"
#include "numerics/law_functions.h"
#include "numerics/newton.h"

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

/// v -> log(1 + v) - v without cancellation, v > 0.
Extended log1pMinus(Extended v) { return v < 1 ? boost::math::log1pmx(v, NumericPolicy()) : std::log1p(v) - v; }

/// log Gamma(beta) - log Gamma(alpha + beta); of a large beta by Stirling's series, so that nothing cancels.
Extended logGammaRatio(Extended alpha, Extended beta) {
    if (beta < 1e5L) {
        return boost::math::lgamma(beta, NumericPolicy()) - boost::math::lgamma(alpha + beta, NumericPolicy());
    }
    const auto remainder = [](Extended x) { return (1 - 1 / (30 * x * x)) / (12 * x); };
    const Extended t = alpha / beta;
    return remainder(beta) - remainder(alpha + beta) - alpha * std::log(beta) - beta * log1pMinus(t) -
           (alpha - 0.5L) * std::log1p(t);
}

/// Far down the lower tail P(Z <= z) is z^alpha / (alpha B(alpha, beta)), as long as beta z is small against 1. This is
/// the logarithm of the denominator.
Extended logPowerScale(Extended alpha, Extended beta) {
    return boost::math::lgamma(alpha + 1, NumericPolicy()) + logGammaRatio(alpha, beta);
}

/// So close to 0 the power is exact, and the general functions run out of normal doubles.
bool isPower(Extended z, double beta) { return z * std::max(1.0, beta) < 1e-290L; }

double powerCdf(Extended z, double alpha, double beta) {
    return static_cast<double>(std::exp(alpha * std::log(z) - logPowerScale(alpha, beta)));
}

Extended powerQuantile(double u, double alpha, double beta) {
    return std::exp((std::log(static_cast<Extended>(u)) + logPowerScale(alpha, beta)) / alpha);
}

/// Above this size of a parameter the general function loses digits in doubles.
constexpr double magnifying = 1e5;

/// Below this size the general function runs out of normal doubles on its way to the result.
constexpr double vanishing = 1e-270;

/// I_x(alpha, beta), y = 1 - x.
double lowerTail(double alpha, double beta, Extended x, Extended y) {
    if (std::max(alpha, beta) <= magnifying) {
        const double tail = betaLower(alpha, beta, static_cast<double>(x), static_cast<double>(y));
        if (!(tail < vanishing)) {
            return tail;
        }
    }
    return static_cast<double>(betaLower<Extended>(alpha, beta, x, y));
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
    return lowerTail(alpha, beta, z.fromZero, z.fromOne);
}

/// The point with P(Z <= z) = u where the lower tail is a power of z; else about 1.
Extended powerEstimate(double u, double alpha, double beta) {
    const bool farDown = u < 1e-10 || std::log(u) < -500 * alpha;
    return farDown ? powerQuantile(u, alpha, beta) : 1;
}

/// The point with P(Z <= z) = u for u <= 1/2 and large parameters.
UnitPoint largeLowerQuantile(double u, Extended alpha, Extended beta) {
    const Extended smaller = std::min(alpha, beta);
    const Extended larger = std::max(alpha, beta);
    const Extended ratio = smaller / larger;
    const Extended excess = largeShapeQuantile(u, alpha <= beta ? Side::Lower : Side::Upper, smaller, ratio);
    const Extended fromSmaller = smaller / (alpha + beta) * (1 + excess);
    const Extended fromLarger = larger / (alpha + beta) * (1 - ratio * excess);
    return alpha <= beta ? UnitPoint{fromSmaller, fromLarger} : UnitPoint{fromLarger, fromSmaller};
}

/// The density of I_x(alpha, beta).
double density(double alpha, double beta, double x) {
    return std::max(alpha, beta) > magnifying
               ? static_cast<double>(
                     boost::math::ibeta_derivative<Extended, Extended, Extended>(alpha, beta, x, NumericPolicy()))
               : boost::math::ibeta_derivative(alpha, beta, x, NumericPolicy());
}

/// NaN stays NaN.
double atMostOne(double x) { return x > 1 ? 1 : x; }

/// The same where one parameter is so large that the law is a gamma law.
UnitPoint gammaLikeLowerQuantile(double u, Extended alpha, Extended beta) {
    const Extended shape = std::min(alpha, beta);
    const Extended rate = std::max(alpha, beta) + (shape - 1) / 2;
    const Extended hazard =
        gammaQuantile(u, alpha < beta ? Side::Lower : Side::Upper, static_cast<double>(shape)) / rate;
    const Extended near = -std::expm1(-hazard);
    const Extended far = std::exp(-hazard);
    return alpha < beta ? UnitPoint{near, far} : UnitPoint{far, near};
}

/// The point with P(Z <= z) = u for u <= 1/2, found at the end of the interval to which it is nearer.
UnitPoint lowerQuantile(double u, double alpha, double beta) {
    if (isLargeBeta(alpha, beta)) {
        return largeLowerQuantile(u, alpha, beta);
    }
    const Extended power = powerEstimate(u, alpha, beta);
    if (isPower(power, beta)) {
        return {power, 1};
    }
    if (std::max(alpha, beta) > gammaLike) {
        return gammaLikeLowerQuantile(u, alpha, beta);
    }
    UnitPoint guess{power, 1};
    if (!(power * std::max(1.0, beta) < 1e-3L)) {
        double fromOne = 0;
        const double fromZero = boost::math::ibeta_inv(alpha, beta, u, &fromOne, GuessPolicy());
        guess = {fromZero, fromOne};
    }
    if (guess.fromZero <= guess.fromOne) {
        const double fromZero = atMostOne(polished(static_cast<double>(guess.fromZero), u, [=](double x) {
            return TailPoint{lowerTail(alpha, beta, x, 1 - static_cast<Extended>(x)), density(alpha, beta, x)};
        }));
        return {fromZero, 1 - fromZero};
    }
    const double fromOne = atMostOne(polished(static_cast<double>(guess.fromOne), u, [=](double y) {
        return TailPoint{lowerTail(alpha, beta, 1 - static_cast<Extended>(y), y), -density(beta, alpha, y)};
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
