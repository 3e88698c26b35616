// Normal, lognormal and Student laws.
#include <cmath>

#include "numerics/law_functions.h"
#include "numerics/normal.h"
#include "numerics/student.h"

namespace quorva::laws {
namespace {

using Extended = long double;

Support locationScale(const LawParameters& p) { return p[1] == 0 ? pointMass(p[0]) : definedIf(p[1] > 0, everywhere); }

double normalCdfOf(double x, const LawParameters& p) { return normalCdf((static_cast<Extended>(x) - p[0]) / p[1]); }

/// exp of a sum whose terms may be large: what the double leaves over is applied as a factor.
double expOf(Extended exponent) {
    const double head = static_cast<double>(exponent);
    const double tail = static_cast<double>(exponent - head);
    const double value = std::exp(head);
    return std::isfinite(value) && std::isfinite(head) ? value + value * tail : value;
}

/// Standard deviation of the logarithm, from mean and standard deviation of the variable.
Extended logDeviation2(const LawParameters& p) {
    const Extended ratio = static_cast<Extended>(p[1]) / p[0];
    return std::log1p(ratio * ratio);
}

}  // namespace

constinit const LawFunctions normal{2, false, locationScale, normalCdfOf,
                                    [](double u, const LawParameters& p) { return p[0] + p[1] * normalQuantile(u); }};

constinit const LawFunctions normalStd{0, false, [](const LawParameters&) { return everywhere; },
                                       [](double x, const LawParameters&) { return normalCdf(x); },
                                       [](double u, const LawParameters&) { return normalQuantile(u); }};

constinit const LawFunctions logNormal{
    2, false,
    [](const LawParameters& p) { return p[1] == 0 ? pointMass(std::exp(p[0])) : definedIf(p[1] > 0, from(0)); },
    [](double x, const LawParameters& p) { return normalCdf((std::log(static_cast<Extended>(x)) - p[0]) / p[1]); },
    [](double u, const LawParameters& p) {
        return expOf(static_cast<Extended>(p[1]) * normalQuantile(u) + static_cast<Extended>(p[0]));
    }};

constinit const LawFunctions logNormal2{
    2, false,
    [](const LawParameters& p) { return definedIf(p[0] > 0 && p[1] >= 0, p[1] == 0 ? pointMass(p[0]) : from(0)); },
    [](double x, const LawParameters& p) {
        const Extended variance = logDeviation2(p);
        const Extended ratio = (static_cast<Extended>(x) - p[0]) / p[0];
        const Extended logarithm =
            std::abs(ratio) < 0.5L ? std::log1p(ratio) : std::log(static_cast<Extended>(x) / p[0]);
        return normalCdf((logarithm + variance / 2) / std::sqrt(variance));
    },
    [](double u, const LawParameters& p) {
        const Extended variance = logDeviation2(p);
        return static_cast<double>(p[0] * std::exp(std::sqrt(variance) * normalQuantile(u) - variance / 2));
    }};

constinit const LawFunctions student{1, false, [](const LawParameters& p) { return definedIf(p[0] > 0, everywhere); },
                                     [](double x, const LawParameters& p) { return studentCdf(x, p[0]); },
                                     [](double u, const LawParameters& p) { return studentQuantile(u, p[0]); }};

}  // namespace quorva::laws
