// Discrete distributions: the arguments that count lose their fractions.
#include <algorithm>
#include <cmath>

#include "workbook/functions/families.h"
#include "workbook/functions/laws.h"

namespace quorva::workbook {

namespace {

using namespace laws;

/// Whole numbers from here on cannot be counted one by one.
constexpr double wholeLimit = 9007199254740992;  // 2^53

double binomial(const double* x, int) {
    const double successes = std::trunc(x[0]);
    const double trials = std::trunc(x[1]);
    if (x[0] < 0 || successes > trials || !isProbability(x[2])) {
        return nan;
    }
    const Binomial law(trials, x[2]);
    return x[3] != 0 ? cdf(law, successes) : pdf(law, successes);
}

/// BINOM.DIST.RANGE(trials, p, from, to): the probability of from..to successes.
double binomialRange(const double* x, int count) {
    const double trials = std::trunc(x[0]);
    const double from = std::trunc(x[2]);
    const double to = count > 3 ? std::trunc(x[3]) : from;
    if (x[0] < 0 || !isProbability(x[1]) || x[2] < 0 || from > trials || to < from || to > trials) {
        return nan;
    }
    const Binomial law(trials, x[1]);
    if (to - from < 64) {
        double total = 0;
        for (double i = 0; i <= to - from; ++i) {
            total += pdf(law, from + i);
        }
        return total;
    }
    return from > 0 ? cdf(law, to) - cdf(law, from - 1) : cdf(law, to);
}

/// BINOM.INV(trials, p, alpha): the fewest successes whose cumulative probability reaches alpha, which lies between 0
/// and 1 and is neither.
double binomialInverse(const double* x, int) {
    const double trials = std::trunc(x[0]);
    if (x[0] < 0 || trials >= wholeLimit || !isProbability(x[1]) || !(x[2] > 0 && x[2] < 1)) {
        return nan;
    }
    const Binomial law(trials, x[1]);
    double low = -1;  // cumulative probability below alpha
    double high = trials;
    while (high - low > 1) {
        const double middle = std::floor((low + high) / 2);
        (cdf(law, middle) >= x[2] ? high : low) = middle;
    }
    return high;
}

double negativeBinomial(double failures, double successes, double p, bool cumulative) {
    if (failures < 0 || successes < 1 || !isProbability(p) || p == 0) {
        return nan;
    }
    const NegativeBinomial law(std::trunc(successes), p);
    return cumulative ? cdf(law, std::trunc(failures)) : pdf(law, std::trunc(failures));
}
double negativeBinomialLaw(const double* x, int) { return negativeBinomial(x[0], x[1], x[2], x[3] != 0); }
double negativeBinomialMass(const double* x, int) { return negativeBinomial(x[0], x[1], x[2], false); }

double poisson(const double* x, int) {
    const double k = std::trunc(x[0]);
    if (x[0] < 0 || x[1] < 0) {
        return nan;
    }
    if (x[1] == 0) {
        return x[2] != 0 || k == 0 ? 1 : 0;
    }
    const Poisson law(x[1]);
    return x[2] != 0 ? cdf(law, k) : pdf(law, k);
}

double logFactorial(double n) { return boost::math::lgamma(n + 1, Policy()); }

/// The probability of k successes in a sample of n from a population with m successes among `total`, without products
/// that overflow; by exact products while the numbers are small.
double hypergeometricMass(double k, double n, double m, double total) {
    if (total <= 1000) {
        // C(m, k) C(total - m, n - k) / C(total, n), one factor of each at a time.
        double mass = 1;
        for (double i = 0; i < k; ++i) {
            mass *= (m - i) / (total - i) * (n - i) / (k - i);
        }
        for (double i = 0; i < n - k; ++i) {
            mass *= (total - m - i) / (total - k - i);
        }
        return mass;
    }
    return std::exp(logFactorial(m) - logFactorial(k) - logFactorial(m - k) + logFactorial(total - m) -
                    logFactorial(n - k) - logFactorial(total - m - n + k) - logFactorial(total) + logFactorial(n) +
                    logFactorial(total - n));
}

double hypergeometric(const double* x, bool cumulative) {
    const double k = std::trunc(x[0]);
    const double n = std::trunc(x[1]);
    const double m = std::trunc(x[2]);
    const double total = std::trunc(x[3]);
    const double least = std::max(0.0, n + m - total);
    if (total <= 0 || total >= wholeLimit || n <= 0 || n > total || m <= 0 || m > total || k < least ||
        k > std::min(n, m)) {
        return nan;
    }
    if (!cumulative) {
        return hypergeometricMass(k, n, m, total);
    }
    // The tail that begins at k and falls off: to the left below the mean, else to the right.
    const bool left = k * total <= n * m;
    double sum = 0;
    double i = left ? k : k + 1;
    const double most = std::min(n, m);
    double mass = i <= most ? hypergeometricMass(i, n, m, total) : 0;
    while (mass > sum * 1e-18) {
        sum += mass;
        const double upper = left ? i : i + 1;  // the larger of two neighbouring counts
        const double ratio = upper * (total - m - n + upper) / ((m - upper + 1) * (n - upper + 1));
        mass = left ? mass * ratio : i < most ? mass / ratio : 0;
        i += left ? -1 : 1;
    }
    return left ? std::min(sum, 1.0) : 1 - sum;
}
Value hypergeometricLaw(Call& call, Arguments arguments) {
    double x[5];
    std::transform(arguments.begin(), arguments.end(), x, [](const Argument& argument) { return argument.number(); });
    // A tail is summed over some standard deviations; of a sample of n they are no larger than the root of n / 4.
    call.spend(5 * std::sqrt(std::clamp(x[1], 0.0, wholeLimit)));
    return hypergeometric(x, x[4] != 0);
}
double hypergeometricMassOnly(const double* x, int) { return hypergeometric(x, false); }

constexpr FunctionRow table[] = {
    numericRow("BINOM.DIST", "NNNB", binomial),
    numericRow("BINOM.DIST.RANGE", "NNNN", binomialRange, 1),
    numericRow("BINOM.INV", "NNN", binomialInverse),
    numericRow("BINOMDIST", "NNNB", binomial),
    numericRow("CRITBINOM", "NNN", binomialInverse),
    {.name = "HYPGEOM.DIST",
     .minArgs = 5,
     .maxArgs = 5,
     .kinds = "NNNNB",
     .category = Category::Distribution,
     .function = hypergeometricLaw},
    numericRow("HYPGEOMDIST", "NNNN", hypergeometricMassOnly),
    numericRow("NEGBINOM.DIST", "NNNB", negativeBinomialLaw),
    numericRow("NEGBINOMDIST", "NNN", negativeBinomialMass),
    numericRow("POISSON", "NNB", poisson),
    numericRow("POISSON.DIST", "NNB", poisson),
};

}  // namespace

std::span<const FunctionRow> discreteDistributionFunctions() { return table; }

}  // namespace quorva::workbook
