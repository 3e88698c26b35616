// Theoretical mean, variance and standard deviation of the laws. The formulas are the ones that users' reports have
// always shown, those included that differ from the textbook (14, 21, 22, 23, 24, 26, 27, 28, 31); intended.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "common/guarded.h"
#include "common/missing_value.h"
#include "numerics/law_table.h"
#include "numerics/laws.h"
#include "quorva/catalogue.h"

namespace quorva {
namespace {

struct Parameters {
    double a, b, c, d;
};

using Moment = double (*)(const Parameters&);

struct LawMoments {
    int law;
    Moment mean;
    Moment variance;
};

constexpr double euler = 0.5772156649015329;
constexpr double pi = 3.141592653589793;
constexpr double piSquared = 9.869604401089358;
constexpr double infinity = std::numeric_limits<double>::infinity();

double square(double x) { return x * x; }

double zero(const Parameters&) { return 0.0; }
double first(const Parameters& p) { return p.a; }
double midpoint(const Parameters& p) { return (p.a + p.b) / 2.0; }
double gumbelVariance(const Parameters& p) { return square(p.a * pi) / 6.0; }
double gammaVariance(const Parameters& p) { return square(p.b) * p.a; }

double betaVariance(double alpha, double beta) { return alpha * beta / (square(alpha + beta) * (alpha + beta + 1.0)); }

double fisherMean(const Parameters& p) { return p.b == 2.0 ? 1.0 : p.b / (p.b - 2.0); }
double fisherVariance(const Parameters& p) {
    return 2.0 * square(p.b) * (p.a + p.b - 2.0) / (p.a * square(p.b - 2.0) * (p.b - 4.0));
}

double weibullMean(const Parameters& p) { return GammaF(1.0 / p.a + 1.0) * p.b; }
double weibullVariance(const Parameters& p) {
    return GammaF(2.0 / p.a + 1.0) * square(p.b) - square(GammaF(1.0 / p.a + 1.0));
}
/// Reads the second parameter, which the law with one parameter leaves 0.
double weibull1Variance(const Parameters& p) { return GammaF(2.0 / p.b + 1.0) - square(GammaF(1.0 / p.b + 1.0)); }

double extremeValueMean(const Parameters& p) { return p.b == 0.0 ? 0.0 : p.a / p.b; }
double extremeValueVariance(const Parameters& p) {
    return (GammaF(2.0 * p.b + 1.0) - square(GammaF(p.b + 1.0))) * square(p.a / p.b);
}

double threePointMean(const Parameters& p) { return (p.a + p.b + p.c) / 3.0; }
double threePointVariance(const Parameters& p) {
    return (p.a * p.a + p.b * p.b + p.c * p.c - p.a * p.b - p.a * p.c - p.b * p.b) / 18.0;
}

double pertMean(const Parameters& p) { return p.c - p.a == 0.0 ? 0.0 : (p.a + 4.0 * p.b + p.c) / 6.0; }
double pertVariance(const Parameters& p) {
    const double range = p.c - p.a;
    const double shapeA = (4.0 * p.b + p.c + 5.0 * p.a) / range;
    const double shapeB = (5.0 * p.c - p.a - 4.0 * p.b) / range;
    return square(range) * betaVariance(shapeA, shapeB);
}

double beta4Mean(const Parameters& p) { return p.a + p.b == 0.0 ? infinity : (p.d - p.c) * p.a / (p.a + p.b) + p.c; }
double beta4Variance(const Parameters& p) { return square(p.c - p.d) * betaVariance(p.a, p.b); }

double uniformVariance(const Parameters& p) { return square(p.a - p.b) / 12.0; }
double discreteUniformVariance(const Parameters& p) { return (square(p.b - p.a + 1.0) - 1.0) / 12.0; }

/// Row k is law k + 1.
constexpr std::array<LawMoments, 35> moments{{
    {1, [](const Parameters& p) { return p.a / (p.a + p.b); },
     [](const Parameters& p) { return betaVariance(p.a, p.b); }},
    {2, [](const Parameters& p) { return p.a * p.b; }, [](const Parameters& p) { return p.a * p.b * (1.0 - p.b); }},
    {3, [](const Parameters& p) { return (1.0 - p.b) * p.a / p.b; },
     [](const Parameters& p) { return (1.0 - p.b) * p.a / square(p.b); }},
    {4, [](const Parameters& p) { return p.a * p.b; }, [](const Parameters& p) { return p.a * p.b * (p.b + 1.0); }},
    {5, first, [](const Parameters& p) { return 2.0 * p.a; }},
    {6, [](const Parameters& p) { return 1.0 / p.a; }, [](const Parameters& p) { return 1.0 / square(p.a); }},
    {7, fisherMean, fisherVariance},
    {8, [](const Parameters&) { return euler; }, [](const Parameters&) { return piSquared / 6.0; }},
    {9, [](const Parameters& p) { return p.a * euler; }, gumbelVariance},
    {10, [](const Parameters& p) { return p.a * euler + p.b; }, gumbelVariance},
    {11, first, first},
    {12, [](const Parameters& p) { return p.a * p.b; }, gammaVariance},
    {13, [](const Parameters& p) { return p.a * p.b + p.c; }, gammaVariance},
    {14, [](const Parameters& p) { return std::exp(square(p.b) / 2.0 + p.a); },
     [](const Parameters& p) { return std::exp(2.0 * p.a + square(p.b)) * std::exp(square(p.b) / 2.0 - 1.0); }},
    {15, first, [](const Parameters& p) { return square(p.b); }},
    {16, zero, [](const Parameters&) { return 1.0; }},
    {17, [](const Parameters& p) { return p.a * p.b / (p.a - 1.0); },
     [](const Parameters& p) { return square(p.b) * p.a / (square(p.a - 1.0) * (p.a - 2.0)); }},
    {18, first, first},
    {19, zero, [](const Parameters& p) { return p.a / (p.a - 2.0); }},
    {20, midpoint, uniformVariance},
    {21, [](const Parameters& p) { return GammaF(1.0 / p.a + 1.0); }, weibull1Variance},
    {22, weibullMean, weibullVariance},
    {23, [](const Parameters& p) { return weibullMean(p) + p.c; }, weibullVariance},
    {24, extremeValueMean, extremeValueVariance},
    {25, [](const Parameters& p) { return p.b == 0.0 ? 0.0 : p.a / p.b; },
     [](const Parameters& p) { return p.a / square(p.b); }},
    {26, threePointMean, threePointVariance},
    {27, pertMean, pertVariance},
    {28, first, [](const Parameters& p) { return piSquared / (3.0 * square(p.b)); }},
    {29, midpoint, discreteUniformVariance},
    {30, beta4Mean, beta4Variance},
    {31, threePointMean, threePointVariance},
    {32, first, [](const Parameters& p) { return (1.0 - p.a) * p.a; }},
    {33, first, [](const Parameters& p) { return square(p.b); }},
    {34, zero, zero},  // a number without a law
    {35, first, [](const Parameters& p) { return (1.0 - p.a) * p.a / 2.0; }},
}};

constexpr bool inLawOrder() {
    for (std::size_t k = 0; k < moments.size(); ++k) {
        if (moments[k].law != static_cast<int>(k) + 1) {
            return false;
        }
    }
    return true;
}
static_assert(inLawOrder());
static_assert(std::all_of(lawTable.begin(), lawTable.end(), [](const LawEntry& entry) {
    return entry.law >= 1 && entry.law <= static_cast<int>(moments.size()) && entry.law != 34;
}));

constexpr int meanStatistic = 1;
constexpr int deviationStatistic = 3;

double theoreticalStatistic(const LawMoments& law, int statistic, const Parameters& parameters) {
    if (statistic == meanStatistic) {
        return law.mean(parameters);
    }
    const double variance = law.variance(parameters);
    if (statistic != deviationStatistic) {
        return variance;
    }
    return variance < 0.0 ? MissingValue : std::sqrt(variance);
}

}  // namespace
}  // namespace quorva

using namespace quorva;

double TheoStat(int law, int statistic, double Param1, double Param2, double Param3, double Param4) {
    if (law < 1 || law > static_cast<int>(moments.size())) {
        return 0.0;
    }
    return guarded(
        [&] {
            const auto& row = moments[static_cast<std::size_t>(law - 1)];
            return theoreticalStatistic(row, statistic, {Param1, Param2, Param3, Param4});
        },
        std::numeric_limits<double>::quiet_NaN());
}
