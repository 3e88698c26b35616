// Laws in closed form over logarithms: exponential, Weibull, Gumbel, generalised extreme value, Pareto, logistic.
// Distribution functions work in extended precision: exp(-exp(-x)) magnifies an error of x by up to 700.
#include <algorithm>
#include <cmath>

#include "numerics/law_functions.h"

namespace quorva::laws {
namespace {

using Extended = long double;

double gumbelCdf(double x, double scale, double location) {
    return static_cast<double>(std::exp(-std::exp((location - static_cast<Extended>(x)) / scale)));
}

double gumbelQuantile(double u, double scale, double location) { return location - scale * std::log(-std::log(u)); }

double weibullCdf(double x, double shape, double scale, double location) {
    const Extended z = (static_cast<Extended>(x) - location) / scale;
    return static_cast<double>(-std::expm1(-std::pow(z, static_cast<Extended>(shape))));
}

double weibullQuantile(double u, double shape, double scale, double location) {
    return location + scale * std::pow(-std::log1p(-u), 1 / shape);
}

Support weibullSupport(double shape, double scale, double location) {
    return definedIf(shape > 0 && scale >= 0, scale == 0 ? pointMass(location) : from(location));
}

Support gumbelSupport(double scale, double location) {
    return scale == 0 ? pointMass(location) : definedIf(scale > 0, everywhere);
}

/// The least double that is not below x.
double notBelow(Extended x) {
    const double nearest = static_cast<double>(x);
    return nearest < x ? std::nextafter(nearest, infinite) : nearest;
}

/// Parameters (beta, k, mu): scale, shape, location. The law ends at mu + beta/k, above for k > 0, below for k < 0,
/// rounded outwards: between the end and the next double inside lies more than rounding when mu is large.
Support gevSupport(const LawParameters& p) {
    const auto [scale, shape, location, unused] = p;
    if (scale == 0 || shape == 0) {
        return gumbelSupport(scale, location);
    }
    const Extended end = location + static_cast<Extended>(scale) / shape;
    return definedIf(scale > 0, shape > 0 ? from(-infinite, notBelow(end)) : from(-notBelow(-end)));
}

double gevCdf(double x, const LawParameters& p) {
    const auto [scale, shape, location, unused] = p;
    if (shape == 0) {
        return gumbelCdf(x, scale, location);
    }
    const Extended z = (static_cast<Extended>(x) - location) / scale;
    const Extended beforeEnd = std::max(-shape * z, Extended{-1});
    return static_cast<double>(std::exp(-std::exp(std::log1p(beforeEnd) / shape)));
}

double gevQuantile(double u, const LawParameters& p) {
    const auto [scale, shape, location, unused] = p;
    if (shape == 0) {
        return gumbelQuantile(u, scale, location);
    }
    // Near the end of the support what the location and the rest leave of each other may be small.
    const Extended exponent = shape * std::log(-std::log(static_cast<Extended>(u)));
    return static_cast<double>(location - scale * (std::expm1(exponent) / shape));
}

double logisticCdf(double x, const LawParameters& p) {
    const Extended z = (static_cast<Extended>(x) - p[0]) / p[1];
    if (z >= 0) {
        return static_cast<double>(1 / (1 + std::exp(-z)));
    }
    const Extended e = std::exp(z);
    return static_cast<double>(e / (1 + e));
}

double logisticQuantile(double u, const LawParameters& p) {
    // Near the median log(u / (1 - u)) is the logarithm of almost 1.
    const double logit = u > 0.25 && u < 0.75 ? std::log1p((2 * u - 1) / (1 - u)) : std::log(u) - std::log1p(-u);
    return p[0] + p[1] * logit;
}

double paretoCdf(double x, const LawParameters& p) {
    const Extended excess = (static_cast<Extended>(x) - p[1]) / p[1];
    return static_cast<double>(-std::expm1(-p[0] * std::log1p(excess)));
}

}  // namespace

constinit const LawFunctions exponential{
    1, false, [](const LawParameters& p) { return definedIf(p[0] > 0, from(0)); },
    [](double x, const LawParameters& p) { return static_cast<double>(-std::expm1(-static_cast<Extended>(p[0]) * x)); },
    [](double u, const LawParameters& p) { return -std::log1p(-u) / p[0]; }};

constinit const LawFunctions pareto{
    2, false, [](const LawParameters& p) { return definedIf(p[0] > 0 && p[1] > 0, from(p[1])); }, paretoCdf,
    [](double u, const LawParameters& p) { return p[1] * std::exp(-std::log1p(-u) / p[0]); }};

constinit const LawFunctions logistic{
    2, false, [](const LawParameters& p) { return p[1] == 0 ? pointMass(p[0]) : definedIf(p[1] > 0, everywhere); },
    logisticCdf, logisticQuantile};

constinit const LawFunctions gumbel{0, false, [](const LawParameters&) { return everywhere; },
                                    [](double x, const LawParameters&) { return gumbelCdf(x, 1, 0); },
                                    [](double u, const LawParameters&) { return gumbelQuantile(u, 1, 0); }};

constinit const LawFunctions fisherTippett1{
    1, false, [](const LawParameters& p) { return gumbelSupport(p[0], 0); },
    [](double x, const LawParameters& p) { return gumbelCdf(x, p[0], 0); },
    [](double u, const LawParameters& p) { return gumbelQuantile(u, p[0], 0); }};

constinit const LawFunctions fisherTippett2{
    2, false, [](const LawParameters& p) { return gumbelSupport(p[0], p[1]); },
    [](double x, const LawParameters& p) { return gumbelCdf(x, p[0], p[1]); },
    [](double u, const LawParameters& p) { return gumbelQuantile(u, p[0], p[1]); }};

constinit const LawFunctions weibull1{1, false, [](const LawParameters& p) { return weibullSupport(p[0], 1, 0); },
                                      [](double x, const LawParameters& p) { return weibullCdf(x, p[0], 1, 0); },
                                      [](double u, const LawParameters& p) { return weibullQuantile(u, p[0], 1, 0); }};

constinit const LawFunctions weibull2{
    2, false, [](const LawParameters& p) { return weibullSupport(p[0], p[1], 0); },
    [](double x, const LawParameters& p) { return weibullCdf(x, p[0], p[1], 0); },
    [](double u, const LawParameters& p) { return weibullQuantile(u, p[0], p[1], 0); }};

constinit const LawFunctions weibull3{
    3, false, [](const LawParameters& p) { return weibullSupport(p[0], p[1], p[2]); },
    [](double x, const LawParameters& p) { return weibullCdf(x, p[0], p[1], p[2]); },
    [](double u, const LawParameters& p) { return weibullQuantile(u, p[0], p[1], p[2]); }};

constinit const LawFunctions gev{3, false, gevSupport, gevCdf, gevQuantile};

}  // namespace quorva::laws
