// Beta laws and those that are beta laws under another name.
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/law_functions.h"

namespace quorva::laws {
namespace {

/// A point of the unit interval by its distances from both ends, each to full precision.
struct UnitPoint {
    double fromZero;
    double fromOne;
};

double standardCdf(UnitPoint z, double alpha, double beta) {
    return z.fromZero <= 0.5 ? boost::math::ibeta(alpha, beta, z.fromZero, NumericPolicy())
                             : boost::math::ibetac(beta, alpha, z.fromOne, NumericPolicy());
}

UnitPoint standardQuantile(double u, double alpha, double beta) {
    UnitPoint z{};
    z.fromZero = u < 0.5 ? boost::math::ibeta_inv(alpha, beta, u, &z.fromOne, NumericPolicy())
                         : boost::math::ibetac_inv(alpha, beta, 1 - u, &z.fromOne, NumericPolicy());
    return z;
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
