// Gamma laws and those that are gamma laws under another name.
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/incomplete_functions.h"
#include "numerics/law_functions.h"
#include "numerics/newton.h"

namespace quorva::laws {
namespace {

using Extended = long double;

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
    return u > 0.5 ? gammaQuantile(1 - u, Side::Upper, shape) : gammaQuantile(u, Side::Lower, shape);
}

/// x -> P(X <= x) of a shape, scale and location. The law of a large shape is so narrow beside its mean that the scaled
/// argument must not be rounded to a double.
double cdfOf(double x, double shape, double scale, double location) {
    if (shape > largeShape) {
        return static_cast<double>(gammaLower<Extended>(shape, (static_cast<Extended>(x) - location) / scale));
    }
    return standardCdf((x - location) / scale, shape);
}

double quantileOf(double u, double shape, double scale, double location) {
    if (shape > largeShape) {
        const Extended excess =
            u > 0.5 ? largeShapeQuantile(1 - u, Side::Upper, shape, 0) : largeShapeQuantile(u, Side::Lower, shape, 0);
        const Extended mean = static_cast<Extended>(shape) * scale;
        return static_cast<double>(location + mean + mean * excess);
    }
    return location + scale * standardQuantile(u, shape);
}

Support gammaSupport(double shape, double scale, double location) {
    return definedIf(shape > 0 && scale >= 0, scale == 0 ? pointMass(location) : from(location));
}

}  // namespace

double gammaQuantile(double tail, Side side, double shape) {
    if (shape < pointLike) {
        return 0;
    }
    if (shape > largeShape) {
        return static_cast<double>(shape + shape * largeShapeQuantile(tail, side, shape, 0));
    }
    if (side == Side::Upper) {
        return polished(boost::math::gamma_q_inv(shape, tail, GuessPolicy()), tail, [shape](double x) {
            return TailPoint{standardSurvival(x, shape), -density(x, shape)};
        });
    }
    const double power = powerGuess(tail, shape);
    const double guess = power < 1e-3 ? power : boost::math::gamma_p_inv(shape, tail, GuessPolicy());
    return polished(guess, tail, [shape](double x) { return TailPoint{standardCdf(x, shape), density(x, shape)}; });
}

constinit const LawFunctions chiSquare{1, false, [](const LawParameters& p) { return gammaSupport(p[0], 2, 0); },
                                       [](double x, const LawParameters& p) { return cdfOf(x, p[0] / 2, 2, 0); },
                                       [](double u, const LawParameters& p) { return quantileOf(u, p[0] / 2, 2, 0); }};

constinit const LawFunctions gamma1{1, false, [](const LawParameters& p) { return gammaSupport(p[0], 1, 0); },
                                    [](double x, const LawParameters& p) { return cdfOf(x, p[0], 1, 0); },
                                    [](double u, const LawParameters& p) { return quantileOf(u, p[0], 1, 0); }};

constinit const LawFunctions gamma2{2, false, [](const LawParameters& p) { return gammaSupport(p[0], p[1], 0); },
                                    [](double x, const LawParameters& p) { return cdfOf(x, p[0], p[1], 0); },
                                    [](double u, const LawParameters& p) { return quantileOf(u, p[0], p[1], 0); }};

constinit const LawFunctions gamma3{3, false, [](const LawParameters& p) { return gammaSupport(p[0], p[1], p[2]); },
                                    [](double x, const LawParameters& p) { return cdfOf(x, p[0], p[1], p[2]); },
                                    [](double u, const LawParameters& p) { return quantileOf(u, p[0], p[1], p[2]); }};

constinit const LawFunctions erlang{
    2, false, [](const LawParameters& p) { return definedIf(p[1] > 0, gammaSupport(p[0], 1, 0)); },
    [](double x, const LawParameters& p) {
        return p[0] > largeShape ? static_cast<double>(gammaLower<Extended>(p[0], static_cast<Extended>(x) * p[1]))
                                 : standardCdf(x * p[1], p[0]);
    },
    [](double u, const LawParameters& p) { return quantileOf(u, p[0], 1, 0) / p[1]; }};

}  // namespace quorva::laws
