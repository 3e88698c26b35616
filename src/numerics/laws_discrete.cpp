// Laws on the integers. Tails come from incomplete beta and gamma functions in extended precision, so that a quantile
// at a step of the distribution function finds that step.
#include <algorithm>
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/incomplete_functions.h"
#include "numerics/law_functions.h"
#include "numerics/normal.h"

namespace quorva::laws {
namespace {

using Extended = long double;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// P(X <= k) and P(X > k), each to its own relative precision.
struct Tails {
    Extended lower;
    Extended upper;
};

/// Which of the tails a comparison looks at; the other may stay 0.
enum class Needed { Both, Lower, Upper };

/// Close to 1 only the exact comparison of the upper tail tells steps apart.
Needed neededFor(double u) {
    constexpr double closeToOne = 1e-12;
    return 1 - u > closeToOne ? Needed::Lower : Needed::Upper;
}

/// What the quantile search needs of a law. `tails` is asked for integers of lowest..highest.
struct Shape {
    double mean;
    double deviation;
    double skewness;
    double lowest;
    double highest;
};

/// Whether k reaches u: F(k) >= u. A u that is F(k) rounded to a double counts as reached although the exact F(k) may
/// lie half a unit below it (0.9 of ten equal steps).
bool reaches(const Tails& tails, double u) {
    return neededFor(u) == Needed::Lower ? static_cast<double>(tails.lower) >= u : tails.upper <= 1 - u;
}

/// Whether the evaluation did not converge.
bool isUnknown(const Tails& tails) { return std::isnan(tails.lower) || std::isnan(tails.upper); }

/// The largest u that these tails reach: next to the distribution function, to the last bit. NaN where it is unknown.
double largestReached(const Tails& tails) {
    if (isUnknown(tails)) {
        return notANumber;
    }
    double u = tails.upper <= 0 ? 1.0 : std::min(static_cast<double>(tails.lower), 1.0);
    while (u > 0 && !reaches(tails, u)) {
        u = std::nextafter(u, 0.0);
    }
    while (u < 1 && reaches(tails, std::nextafter(u, 2.0))) {
        u = std::nextafter(u, 2.0);
    }
    return u;
}

/// The smallest integer that reaches u: from a normal guess corrected for skewness, steps that double until the answer
/// is enclosed, then bisection. NaN where a tail on the way is unknown.
template <class TailsAt>
double smallestReaching(double u, const Shape& shape, TailsAt tailsAt) {
    bool known = true;
    const auto reachedAt = [&](double k) {
        const Tails tails = tailsAt(k);
        known = known && !isUnknown(tails);
        return reaches(tails, u);
    };
    const double z = normalQuantile(u);
    const double guess = shape.mean + shape.deviation * (z + shape.skewness * (z * z - 1) / 6);
    const double start = std::clamp(std::floor(std::isfinite(guess) ? guess : shape.mean), shape.lowest, shape.highest);
    double step = std::max(1.0, std::floor(shape.deviation / 16));
    double reached = start;
    double below = start;
    if (reachedAt(start)) {
        do {
            reached = below;
            below = std::max(reached - step, shape.lowest - 1);
            step *= 2;
        } while (below >= shape.lowest && reachedAt(below));
    } else {
        do {
            below = reached;
            reached = std::min(below + step, shape.highest);
            step *= 2;
        } while (reached < shape.highest && reached > below && !reachedAt(reached));
    }
    while (reached - below > 1) {
        const double middle = std::floor(below + (reached - below) / 2);
        if (middle <= below || middle >= reached) {
            break;
        }
        (reachedAt(middle) ? reached : below) = middle;
    }
    return known ? reached : notANumber;
}

bool isWhole(double x) { return x == std::floor(x); }

// Binomial(n, p).

Tails binomialTails(double k, const LawParameters& p, Needed needed = Needed::Both) {
    const Extended a = static_cast<Extended>(k) + 1;
    const Extended b = static_cast<Extended>(p[0]) - k;
    const Extended success = p[1];
    return {needed == Needed::Upper ? 0 : betaUpper(a, b, success, 1 - success),
            needed == Needed::Lower ? 0 : betaLower(a, b, success, 1 - success)};
}

Support binomialSupport(const LawParameters& p) {
    if (!(p[0] >= 0 && isWhole(p[0]) && p[1] >= 0 && p[1] <= 1)) {
        return noLaw;
    }
    return p[1] == 0 ? pointMass(0) : p[1] == 1 ? pointMass(p[0]) : from(0, p[0]);
}

double binomialQuantile(double u, const LawParameters& p) {
    const double deviation = std::sqrt(p[0] * p[1] * (1 - p[1]));
    const Shape shape{p[0] * p[1], deviation, (1 - 2 * p[1]) / deviation, 0, p[0]};
    const Needed needed = neededFor(u);
    return smallestReaching(u, shape, [&](double k) { return k >= p[0] ? Tails{1, 0} : binomialTails(k, p, needed); });
}

// Negative binomial laws: failures before the size-th success. The success probability is given with its complement.

Tails negativeBinomialTails(double k, double size, Extended success, Extended failure, Needed needed = Needed::Both) {
    const Extended a = size;
    const Extended b = static_cast<Extended>(k) + 1;
    return {needed == Needed::Upper ? 0 : betaLower(a, b, success, failure),
            needed == Needed::Lower ? 0 : betaUpper(a, b, success, failure)};
}

double negativeBinomialQuantile(double u, double size, Extended success, Extended failure) {
    const double ratio = static_cast<double>(failure / success);
    const double deviation = std::sqrt(size * ratio / static_cast<double>(success));
    const double skewness = (1 + static_cast<double>(failure)) / std::sqrt(size * static_cast<double>(failure));
    const Shape shape{size * ratio, deviation, std::min(skewness, 3.0), 0, infinite};
    const Needed needed = neededFor(u);
    return smallestReaching(u, shape,
                            [=](double k) { return negativeBinomialTails(k, size, success, failure, needed); });
}

Extended success2(const LawParameters& p) { return 1 / (1 + static_cast<Extended>(p[1])); }
Extended failure2(const LawParameters& p) { return p[1] / (1 + static_cast<Extended>(p[1])); }

// Poisson(lambda).

Tails poissonTails(double k, const LawParameters& p, Needed needed = Needed::Both) {
    const Extended shape = static_cast<Extended>(k) + 1;
    const Extended mean = p[0];
    return {needed == Needed::Upper ? 0 : gammaUpper(shape, mean),
            needed == Needed::Lower ? 0 : gammaLower(shape, mean)};
}

// Discrete uniform: the integers of a..b.

Tails uniformTails(double k, const LawParameters& p) {
    const Extended first = std::ceil(p[0]);
    const Extended last = std::floor(p[1]);
    const Extended count = last - first + 1;
    return {(k - first + 1) / count, (last - k) / count};
}

Support uniformSupport(const LawParameters& p) {
    return definedIf(std::ceil(p[0]) <= std::floor(p[1]), from(std::ceil(p[0]), std::floor(p[1])));
}

double uniformQuantile(double u, const LawParameters& p) {
    const Extended first = std::ceil(p[0]);
    const Extended last = std::floor(p[1]);
    const Extended count = last - first + 1;
    const Extended guess = u <= 0.5 ? first + std::ceil(u * count) - 1 : last - std::floor((1 - u) * count);
    double k = static_cast<double>(std::clamp(guess, first, last));
    while (k > first && k - 1 < k && reaches(uniformTails(k - 1, p), u)) {
        --k;
    }
    while (k < last && k + 1 > k && !reaches(uniformTails(k, p), u)) {
        ++k;
    }
    return k;
}

}  // namespace

constinit const LawFunctions binomial{
    2,
    true,
    binomialSupport,
    [](double x, const LawParameters& p) { return static_cast<double>(binomialTails(x, p).lower); },
    binomialQuantile,
    [](double k, const LawParameters& p) { return k >= p[0] ? 1.0 : largestReached(binomialTails(k, p)); }};

constinit const LawFunctions negativeBinomial1{
    2,
    true,
    [](const LawParameters& p) {
        return definedIf(p[0] > 0 && p[1] > 0 && p[1] <= 1, p[1] == 1 ? pointMass(0) : from(0));
    },
    [](double x, const LawParameters& p) {
        return static_cast<double>(negativeBinomialTails(x, p[0], p[1], 1 - static_cast<Extended>(p[1])).lower);
    },
    [](double u, const LawParameters& p) {
        return negativeBinomialQuantile(u, p[0], p[1], 1 - static_cast<Extended>(p[1]));
    },
    [](double k, const LawParameters& p) {
        return largestReached(negativeBinomialTails(k, p[0], p[1], 1 - static_cast<Extended>(p[1])));
    }};

constinit const LawFunctions negativeBinomial2{
    2,
    true,
    [](const LawParameters& p) { return definedIf(p[0] > 0 && p[1] >= 0, p[1] == 0 ? pointMass(0) : from(0)); },
    [](double x, const LawParameters& p) {
        return static_cast<double>(negativeBinomialTails(x, p[0], success2(p), failure2(p)).lower);
    },
    [](double u, const LawParameters& p) { return negativeBinomialQuantile(u, p[0], success2(p), failure2(p)); },
    [](double k, const LawParameters& p) {
        return largestReached(negativeBinomialTails(k, p[0], success2(p), failure2(p)));
    }};

constinit const LawFunctions poisson{
    1,
    true,
    [](const LawParameters& p) { return definedIf(p[0] >= 0, p[0] == 0 ? pointMass(0) : from(0)); },
    [](double x, const LawParameters& p) { return static_cast<double>(poissonTails(x, p).lower); },
    [](double u, const LawParameters& p) {
        const double deviation = std::sqrt(p[0]);
        const Shape shape{p[0], deviation, std::min(1 / deviation, 3.0), 0, infinite};
        const Needed needed = neededFor(u);
        return smallestReaching(u, shape, [&](double k) { return poissonTails(k, p, needed); });
    },
    [](double k, const LawParameters& p) { return largestReached(poissonTails(k, p)); }};

constinit const LawFunctions uniformDiscrete{
    2,
    true,
    uniformSupport,
    [](double x, const LawParameters& p) { return static_cast<double>(uniformTails(x, p).lower); },
    uniformQuantile,
    [](double k, const LawParameters& p) { return largestReached(uniformTails(k, p)); }};

constinit const LawFunctions bernoulli{
    1, true,
    [](const LawParameters& p) {
        return definedIf(p[0] >= 0 && p[0] <= 1, p[0] == 0 || p[0] == 1 ? pointMass(p[0]) : from(0, 1));
    },
    [](double, const LawParameters& p) { return static_cast<double>(1 - static_cast<Extended>(p[0])); },
    [](double u, const LawParameters& p) {
        return reaches({1 - static_cast<Extended>(p[0]), p[0]}, u) ? 0.0 : 1.0;
    }};

}  // namespace quorva::laws
