// Gamma laws and those that are gamma laws under another name.
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/incomplete_functions.h"
#include "numerics/law_functions.h"
#include "numerics/newton.h"

namespace quorva::laws {
namespace {

/// Below this shape all but the last digit of the probability lies on numbers too small for a double.
constexpr double pointLike = 1e-250;

/// Above this shape the tails magnify the last digit so much that they are computed in extended precision.
constexpr double magnifying = 1000;

double standardCdf(double x, double shape) {
    if (shape > magnifying) {
        return static_cast<double>(gammaLower<long double>(shape, x));
    }
    return shape < pointLike ? 1.0 : gammaLower(shape, x);
}

double standardSurvival(double x, double shape) {
    return shape > magnifying ? static_cast<double>(gammaUpper<long double>(shape, x)) : gammaUpper(shape, x);
}

double density(double x, double shape) { return boost::math::gamma_p_derivative(shape, x, NumericPolicy()); }

/// Far down the lower tail P(X <= x) is x^shape / Gamma(shape + 1), as long as x is small against 1.
double powerGuess(double u, double shape) {
    return std::exp((std::log(u) + boost::math::lgamma(shape + 1, NumericPolicy())) / shape);
}

double standardQuantile(double u, double shape) {
    if (shape < pointLike) {
        return 0;
    }
    if (u > 0.5) {
        const double rest = 1 - u;
        return polished(boost::math::gamma_q_inv(shape, rest, NumericPolicy()), rest, [shape](double x) {
            return TailPoint{standardSurvival(x, shape), -density(x, shape)};
        });
    }
    const double power = powerGuess(u, shape);
    const double guess = power < 1e-3 ? power : boost::math::gamma_p_inv(shape, u, NumericPolicy());
    return polished(guess, u, [shape](double x) { return TailPoint{standardCdf(x, shape), density(x, shape)}; });
}

Support gammaSupport(double shape, double scale, double location) {
    return definedIf(shape > 0 && scale >= 0, scale == 0 ? pointMass(location) : from(location));
}

}  // namespace

constinit const LawFunctions chiSquare{
    1, false, [](const LawParameters& p) { return gammaSupport(p[0], 2, 0); },
    [](double x, const LawParameters& p) { return standardCdf(x / 2, p[0] / 2); },
    [](double u, const LawParameters& p) { return 2 * standardQuantile(u, p[0] / 2); }};

constinit const LawFunctions gamma1{1, false, [](const LawParameters& p) { return gammaSupport(p[0], 1, 0); },
                                    [](double x, const LawParameters& p) { return standardCdf(x, p[0]); },
                                    [](double u, const LawParameters& p) { return standardQuantile(u, p[0]); }};

constinit const LawFunctions gamma2{2, false, [](const LawParameters& p) { return gammaSupport(p[0], p[1], 0); },
                                    [](double x, const LawParameters& p) { return standardCdf(x / p[1], p[0]); },
                                    [](double u, const LawParameters& p) { return p[1] * standardQuantile(u, p[0]); }};

constinit const LawFunctions gamma3{
    3, false, [](const LawParameters& p) { return gammaSupport(p[0], p[1], p[2]); },
    [](double x, const LawParameters& p) { return standardCdf((x - p[2]) / p[1], p[0]); },
    [](double u, const LawParameters& p) { return p[2] + p[1] * standardQuantile(u, p[0]); }};

constinit const LawFunctions erlang{
    2, false, [](const LawParameters& p) { return definedIf(p[1] > 0, gammaSupport(p[0], 1, 0)); },
    [](double x, const LawParameters& p) { return standardCdf(x * p[1], p[0]); },
    [](double u, const LawParameters& p) { return standardQuantile(u, p[0]) / p[1]; }};

}  // namespace quorva::laws
