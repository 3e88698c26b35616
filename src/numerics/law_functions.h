// What a law is made of: where it lives, its distribution function and its quantile function.
#pragma once

#include <array>
#include <limits>

#include "numerics/large_shapes.h"
#include "quorva/catalogue.h"

namespace quorva {

/// The four parameters of a law in the order of the law table; unused ones are 0.
using LawParameters = std::array<double, 4>;

/// The closed interval that carries the law. Equal ends are a point mass.
struct Support {
    bool defined;
    double lower;
    double upper;
};

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr Support noLaw{false, 0, 0};
constexpr Support pointMass(double at) { return {true, at, at}; }
constexpr Support from(double lower, double upper = infinite) { return {true, lower, upper}; }
constexpr Support everywhere{true, -infinite, infinite};
constexpr Support definedIf(bool condition, Support support) { return condition ? support : noLaw; }

/// One law. `cdf` is asked for lower < x < upper (integers from lower for a discrete law), `quantile` for 0 < u < 1,
/// both only where the support is defined and no point mass. `parameters` counts those that must be finite.
struct LawFunctions {
    int parameters;
    bool discrete;
    Support (*support)(const LawParameters&);
    double (*cdf)(double x, const LawParameters&);
    double (*quantile)(double u, const LawParameters&);
    /// Discrete laws: the largest u whose quantile is at most the integer k of the support.
    double (*largestProbability)(double k, const LawParameters&) = nullptr;
};

/// The index of a law in the functions that are asked by index.
constexpr int lawIndex(int law) { return law - 1; }
constexpr std::size_t lawCount = law::last;

/// Quantile of the law itself, without tables; see InvCDFFunction.
double directQuantile(int law, double u, const LawParameters& parameters);
/// The support at these parameters; not defined for NaN or infinite ones.
Support supportOf(const LawFunctions& law, const LawParameters& parameters);

namespace laws {
/// The point beyond which, on the given side, lies the probability `tail` <= 1/2 of the gamma law of scale 1.
double gammaQuantile(double tail, Side side, double shape);

// Families; each is defined in the file of its name.
extern const LawFunctions beta, fisher, pert, beta4, arcsine;                                    // laws_beta.cpp
extern const LawFunctions chiSquare, gamma1, gamma2, gamma3, erlang;                             // laws_gamma.cpp
extern const LawFunctions logNormal, normal, normalStd, student, logNormal2;                     // laws_normal.cpp
extern const LawFunctions uniform, triangular, trapezoidal;                                      // laws_polygonal.cpp
extern const LawFunctions exponential, pareto, logistic;                                         // laws_extreme.cpp
extern const LawFunctions gumbel, fisherTippett1, fisherTippett2, weibull1, weibull2, weibull3;  // laws_extreme.cpp
extern const LawFunctions gev;                                                                   // laws_extreme.cpp
extern const LawFunctions binomial, negativeBinomial1, negativeBinomial2, poisson, uniformDiscrete,
    bernoulli;  // laws_discrete.cpp
}  // namespace laws

}  // namespace quorva
