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

/// A point of the unit interval by its distances from both ends, each to full precision.
struct UnitPoint {
    double fromZero;
    double fromOne;
};

bool isArcsine(double alpha, double beta) { return alpha == 0.5 && beta == 0.5; }

/// Below this size of a parameter the law lies on the ends of the interval, but for the last digit.
constexpr double pointLike = 1e-250;

bool liesOnEnds(double alpha, double beta) { return std::min(alpha, beta) < pointLike; }

/// P(Z = 0) of a law that lies on the ends.
double weightOfZero(double alpha, double beta) { return 1 / (1 + alpha / beta); }

/// P(Z <= z); in closed form for the arcsine law, on whose upper half the general function loses digits.
double standardCdf(UnitPoint z, double alpha, double beta) {
    if (isArcsine(alpha, beta)) {
        const double angle = std::asin(std::sqrt(std::min(z.fromZero, z.fromOne))) * (2 * std::numbers::inv_pi);
        return z.fromZero <= z.fromOne ? angle : 1 - angle;
    }
    if (liesOnEnds(alpha, beta)) {
        return weightOfZero(alpha, beta);
    }
    return betaLower(alpha, beta, z.fromZero, z.fromOne);
}

/// Far down the lower tail P(Z <= z) is z^alpha / (alpha B(alpha, beta)), as long as beta z is small against 1.
double powerGuess(double u, double alpha, double beta) {
    const double logBeta = boost::math::lgamma(alpha, NumericPolicy()) + boost::math::lgamma(beta, NumericPolicy()) -
                           boost::math::lgamma(alpha + beta, NumericPolicy());
    return std::exp((std::log(u) + std::log(alpha) + logBeta) / alpha);
}

/// A first estimate of the point with P(Z <= z) = u, by its distances from both ends.
UnitPoint guessOf(double u, double alpha, double beta) {
    const double power = u < 1e-10 ? powerGuess(u, alpha, beta) : 1;
    if (power * std::max(1.0, beta) < 1e-3) {
        return {power, 1};
    }
    if (isAsymptotic(alpha, beta)) {
        const double ratio = beta / alpha;
        const double mean = 1 / (1 + ratio);
        const double deviation = std::sqrt(ratio / alpha / (1 + ratio)) * mean;
        const double z = std::clamp(mean + deviation * normalQuantile(u), 0.0, 1.0);
        return {z, 1 - z};
    }
    UnitPoint z{};
    z.fromZero = boost::math::ibeta_inv(alpha, beta, u, &z.fromOne, NumericPolicy());
    return z;
}

/// The point with P(Z <= z) = u for u <= 1/2, found at the end of the interval to which it is nearer.
UnitPoint lowerQuantile(double u, double alpha, double beta) {
    UnitPoint z = guessOf(u, alpha, beta);
    if (z.fromZero <= z.fromOne) {
        z.fromZero = std::min(1.0, polished(z.fromZero, u, [=](double x) {
                                  return TailPoint{betaLower(alpha, beta, x, 1 - x),
                                                   boost::math::ibeta_derivative(alpha, beta, x, NumericPolicy())};
                              }));
        z.fromOne = 1 - z.fromZero;
    } else {
        z.fromOne = std::min(1.0, polished(z.fromOne, u, [=](double y) {
                                 return TailPoint{betaLower(alpha, beta, 1 - y, y),
                                                  -boost::math::ibeta_derivative(beta, alpha, y, NumericPolicy())};
                             }));
        z.fromZero = 1 - z.fromOne;
    }
    return z;
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
    const long double width = static_cast<long double>(law.d) - law.c;
    const UnitPoint z{static_cast<double>((static_cast<long double>(x) - law.c) / width),
                      static_cast<double>((static_cast<long double>(law.d) - x) / width)};
    return standardCdf(z, law.alpha, law.beta);
}

double quantileOf(double u, const Stretched& law) {
    const UnitPoint z = standardQuantile(u, law.alpha, law.beta);
    const long double width = static_cast<long double>(law.d) - law.c;
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
    const long double a = p[0];
    const long double m = p[1];
    const long double b = p[2];
    return {static_cast<double>(1 + 4 * ((m - a) / (b - a))), static_cast<double>(1 + 4 * ((b - m) / (b - a))), p[0],
            p[2]};
}

double fisherCdf(double x, const LawParameters& p) {
    const long double scaled = static_cast<long double>(p[0]) * x;
    const long double sum = scaled + p[1];
    return standardCdf({static_cast<double>(scaled / sum), static_cast<double>(p[1] / sum)}, p[0] / 2, p[1] / 2);
}

double fisherQuantile(double u, const LawParameters& p) {
    const UnitPoint z = standardQuantile(u, p[0] / 2, p[1] / 2);
    return static_cast<double>(static_cast<long double>(p[1]) * z.fromZero / z.fromOne / p[0]);
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
