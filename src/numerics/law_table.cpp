#include "numerics/law_table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "common/guarded.h"
#include "numerics/laws.h"
#include "quorva/catalogue.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

constexpr double euler = 0.5772156649015329;
constexpr double pi = 3.141592653589793;
constexpr double piSquared = 9.869604401089358;
constexpr double infinity = std::numeric_limits<double>::infinity();

double square(double x) { return x * x; }

double zero(const LawParameters&) { return 0.0; }
double first(const LawParameters& p) { return p[0]; }
double midpoint(const LawParameters& p) { return (p[0] + p[1]) / 2.0; }
double gumbelVariance(const LawParameters& p) { return square(p[0] * pi) / 6.0; }
double gammaVariance(const LawParameters& p) { return square(p[1]) * p[0]; }

double betaVariance(double alpha, double beta) { return alpha * beta / (square(alpha + beta) * (alpha + beta + 1.0)); }

double fisherMean(const LawParameters& p) { return p[1] == 2.0 ? 1.0 : p[1] / (p[1] - 2.0); }
double fisherVariance(const LawParameters& p) {
    return 2.0 * square(p[1]) * (p[0] + p[1] - 2.0) / (p[0] * square(p[1] - 2.0) * (p[1] - 4.0));
}

double weibullMean(const LawParameters& p) { return GammaF(1.0 / p[0] + 1.0) * p[1]; }
double weibullVariance(const LawParameters& p) {
    return GammaF(2.0 / p[0] + 1.0) * square(p[1]) - square(GammaF(1.0 / p[0] + 1.0));
}
/// Reads the second parameter, which the law with one parameter leaves 0.
double weibull1Variance(const LawParameters& p) { return GammaF(2.0 / p[1] + 1.0) - square(GammaF(1.0 / p[1] + 1.0)); }

double extremeValueMean(const LawParameters& p) { return p[1] == 0.0 ? 0.0 : p[0] / p[1]; }
double extremeValueVariance(const LawParameters& p) {
    return (GammaF(2.0 * p[1] + 1.0) - square(GammaF(p[1] + 1.0))) * square(p[0] / p[1]);
}

double threePointMean(const LawParameters& p) { return (p[0] + p[1] + p[2]) / 3.0; }
double threePointVariance(const LawParameters& p) {
    return (p[0] * p[0] + p[1] * p[1] + p[2] * p[2] - p[0] * p[1] - p[0] * p[2] - p[1] * p[1]) / 18.0;
}

double pertMean(const LawParameters& p) { return p[2] - p[0] == 0.0 ? 0.0 : (p[0] + 4.0 * p[1] + p[2]) / 6.0; }
double pertVariance(const LawParameters& p) {
    const double range = p[2] - p[0];
    const double shapeA = (4.0 * p[1] + p[2] + 5.0 * p[0]) / range;
    const double shapeB = (5.0 * p[2] - p[0] - 4.0 * p[1]) / range;
    return square(range) * betaVariance(shapeA, shapeB);
}

double beta4Mean(const LawParameters& p) {
    return p[0] + p[1] == 0.0 ? infinity : (p[3] - p[2]) * p[0] / (p[0] + p[1]) + p[2];
}
double beta4Variance(const LawParameters& p) { return square(p[2] - p[3]) * betaVariance(p[0], p[1]); }

double uniformVariance(const LawParameters& p) { return square(p[0] - p[1]) / 12.0; }
double discreteUniformVariance(const LawParameters& p) { return (square(p[1] - p[0] + 1.0) - 1.0) / 12.0; }

constexpr int numberWithoutLaw = 34;

}  // namespace

constexpr std::array<Law, lawCount> lawsByIndex{{
    {law::beta, &laws::beta, [](const LawParameters& p) { return p[0] / (p[0] + p[1]); },
     [](const LawParameters& p) { return betaVariance(p[0], p[1]); }},
    {law::binomial, &laws::binomial, [](const LawParameters& p) { return p[0] * p[1]; },
     [](const LawParameters& p) { return p[0] * p[1] * (1.0 - p[1]); }},
    {law::negativeBinomial1, &laws::negativeBinomial1,
     [](const LawParameters& p) { return (1.0 - p[1]) * p[0] / p[1]; },
     [](const LawParameters& p) { return (1.0 - p[1]) * p[0] / square(p[1]); }},
    {law::negativeBinomial2, &laws::negativeBinomial2, [](const LawParameters& p) { return p[0] * p[1]; },
     [](const LawParameters& p) { return p[0] * p[1] * (p[1] + 1.0); }},
    {law::chiSquare, &laws::chiSquare, first, [](const LawParameters& p) { return 2.0 * p[0]; }},
    {law::exponential, &laws::exponential, [](const LawParameters& p) { return 1.0 / p[0]; },
     [](const LawParameters& p) { return 1.0 / square(p[0]); }},
    {law::fisher, &laws::fisher, fisherMean, fisherVariance},
    {law::gumbel, &laws::gumbel, [](const LawParameters&) { return euler; },
     [](const LawParameters&) { return piSquared / 6.0; }},
    {law::fisherTippett1, &laws::fisherTippett1, [](const LawParameters& p) { return p[0] * euler; }, gumbelVariance},
    {law::fisherTippett2, &laws::fisherTippett2, [](const LawParameters& p) { return p[0] * euler + p[1]; },
     gumbelVariance},
    {law::gamma1, &laws::gamma1, first, first},
    {law::gamma2, &laws::gamma2, [](const LawParameters& p) { return p[0] * p[1]; }, gammaVariance},
    {law::gamma3, &laws::gamma3, [](const LawParameters& p) { return p[0] * p[1] + p[2]; }, gammaVariance},
    {law::logNormal, &laws::logNormal, [](const LawParameters& p) { return std::exp(square(p[1]) / 2.0 + p[0]); },
     [](const LawParameters& p) { return std::exp(2.0 * p[0] + square(p[1])) * std::exp(square(p[1]) / 2.0 - 1.0); }},
    {law::normal, &laws::normal, first, [](const LawParameters& p) { return square(p[1]); }},
    {law::normalStd, &laws::normalStd, zero, [](const LawParameters&) { return 1.0; }},
    {law::pareto, &laws::pareto, [](const LawParameters& p) { return p[0] * p[1] / (p[0] - 1.0); },
     [](const LawParameters& p) { return square(p[1]) * p[0] / (square(p[0] - 1.0) * (p[0] - 2.0)); }},
    {law::poisson, &laws::poisson, first, first},
    {law::student, &laws::student, zero, [](const LawParameters& p) { return p[0] / (p[0] - 2.0); }},
    {law::uniform, &laws::uniform, midpoint, uniformVariance},
    {law::weibull1, &laws::weibull1, [](const LawParameters& p) { return GammaF(1.0 / p[0] + 1.0); }, weibull1Variance},
    {law::weibull2, &laws::weibull2, weibullMean, weibullVariance},
    {law::weibull3, &laws::weibull3, [](const LawParameters& p) { return weibullMean(p) + p[2]; }, weibullVariance},
    {law::gev, &laws::gev, extremeValueMean, extremeValueVariance},
    {law::erlang, &laws::erlang, [](const LawParameters& p) { return p[1] == 0.0 ? 0.0 : p[0] / p[1]; },
     [](const LawParameters& p) { return p[0] / square(p[1]); }},
    {law::triangular, &laws::triangular, threePointMean, threePointVariance},
    {law::pert, &laws::pert, pertMean, pertVariance},
    {law::logistic, &laws::logistic, first, [](const LawParameters& p) { return piSquared / (3.0 * square(p[1])); }},
    {law::uniformDiscrete, &laws::uniformDiscrete, midpoint, discreteUniformVariance},
    {law::beta4, &laws::beta4, beta4Mean, beta4Variance},
    {law::trapezoidal, &laws::trapezoidal, threePointMean, threePointVariance},
    {law::bernoulli, &laws::bernoulli, first, [](const LawParameters& p) { return (1.0 - p[0]) * p[0]; }},
    {law::logNormal2, &laws::logNormal2, first, [](const LawParameters& p) { return square(p[1]); }},
    {numberWithoutLaw, nullptr, zero, zero},
    {law::arcsine, &laws::arcsine, first, [](const LawParameters& p) { return (1.0 - p[0]) * p[0] / 2.0; }},
}};

namespace {

static_assert([] {
    for (std::size_t k = 0; k < lawsByIndex.size(); ++k) {
        if (lawsByIndex[k].law != static_cast<int>(k) + 1) {
            return false;
        }
    }
    return true;
}());
static_assert(std::all_of(lawTable.begin(), lawTable.end(), [](const LawEntry& entry) {
    return entry.law >= 1 && entry.law <= law::last && entry.law != numberWithoutLaw;
}));

constexpr int meanStatistic = 1;
constexpr int deviationStatistic = 3;

double theoreticalStatistic(const Law& law, int statistic, const LawParameters& parameters) {
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
    if (law < 1 || law > law::last) {
        return 0.0;
    }
    return guarded(
        [&] {
            return theoreticalStatistic(lawsByIndex[static_cast<std::size_t>(law - 1)], statistic,
                                        {Param1, Param2, Param3, Param4});
        },
        std::numeric_limits<double>::quiet_NaN());
}
