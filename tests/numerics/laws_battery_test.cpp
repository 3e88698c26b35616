// Properties that every law of the table must have, whatever its formula.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "numerics/core.h"
#include "numerics/laws.h"
#include "numerics/uniforms.h"
#include "quorva/automation.h"
#include "quorva/catalogue.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

/// A law with its moments from reference/law_moments.py.
struct LawCase {
    int law;
    std::array<double, 4> p;
    double mean;
    double variance;
    double kurtosis;     ///< fourth central moment over the variance squared
    double sixthMoment;  ///< sixth central moment over the variance cubed
    double F(double x) const { return CDFFunction(law - 1, x, p[0], p[1], p[2], p[3]); }
    double Q(double u) const { return InvCDFFunction(law - 1, u, p[0], p[1], p[2], p[3]); }
    bool discrete() const { return (law >= 2 && law <= 4) || law == 18 || law == 29 || law == 32; }
};

/// One law of ordinary shape for every identifier.
std::vector<LawCase> readCases() {
    std::ifstream file(QUORVA_SOURCE_DIR "/tests/numerics/reference/law_moments.txt");
    std::vector<LawCase> cases;
    LawCase one{};
    while (file >> one.law >> one.p[0] >> one.p[1] >> one.p[2] >> one.p[3] >> one.mean >> one.variance >>
           one.kurtosis >> one.sixthMoment) {
        cases.push_back(one);
    }
    return cases;
}
const std::vector<LawCase> lawCases = readCases();

const LawCase& caseOf(int law) {
    return *std::find_if(lawCases.begin(), lawCases.end(), [law](const LawCase& c) { return c.law == law; });
}

/// Every law, with the quantile tables that its draws earn and without.
class LawBattery : public testing::TestWithParam<std::tuple<int, bool>> {
protected:
    LawBattery() { useQuantileTables(std::get<1>(GetParam())); }
    ~LawBattery() override { useQuantileTables(true); }
    const LawCase& law() const { return caseOf(std::get<0>(GetParam())); }
};

TEST(LawBatteryTable, EveryLawOfTheCatalogueIsCovered) {
    for (const LawEntry& entry : lawTable) {
        EXPECT_TRUE(std::any_of(lawCases.begin(), lawCases.end(), [&](const LawCase& c) { return c.law == entry.law; }))
            << entry.wrapper;
    }
}

TEST_P(LawBattery, QuantileInvertsTheDistributionFunction) {
    for (int i = 1; i < 400; ++i) {
        const double u = i / 400.0 + 1e-4;
        const double x = law().Q(u);
        if (law().discrete()) {
            EXPECT_EQ(x, std::floor(x));
            EXPECT_GE(law().F(x), u);
            EXPECT_LT(law().F(x - 1), u);
        } else {
            EXPECT_NEAR(law().F(x), u, 1e-11 * std::min(u, 1 - u) + 2e-16) << u;
        }
    }
}

TEST(LawBatteryTable, AStepOfADiscreteLawIsReachedByItsOwnProbability) {
    for (const LawCase& law : lawCases) {
        for (double x = law.Q(0); law.discrete() && law.F(x) < 1 - 1e-9; ++x) {
            EXPECT_EQ(law.Q(law.F(x)), x) << law.law;
            EXPECT_EQ(law.F(x + 0.5), law.F(x)) << law.law;
        }
    }
    // Steps that are exact in double, and those that users write as decimal fractions.
    EXPECT_EQ(InvCDFFunction(1, 0.623046875, 10, 0.5, 0, 0), 5);
    EXPECT_EQ(InvCDFFunction(1, std::nextafter(0.623046875, 1), 10, 0.5, 0, 0), 6);
    EXPECT_EQ(InvCDFFunction(28, 0.9, 1, 10, 0, 0), 9);
    EXPECT_EQ(InvCDFFunction(31, 0.9, 0.1, 0, 0, 0), 0);
}

TEST_P(LawBattery, DistributionFunctionAndQuantileRise) {
    double before = law().Q(0);
    double probability = 0;
    for (int i = 1; i < 2000; ++i) {
        const double u = i / 2000.0;
        const double x = law().Q(u);
        EXPECT_GE(x, before);
        EXPECT_GE(law().F(x), probability);
        before = x;
        probability = law().F(x);
    }
    EXPECT_LE(before, law().Q(1));
}

TEST_P(LawBattery, EndsOfTheSupportCarryAllProbability) {
    EXPECT_EQ(law().F(-INFINITY), 0);
    EXPECT_EQ(law().F(INFINITY), 1);
    EXPECT_EQ(law().F(law().Q(1)), 1);
    EXPECT_LE(law().Q(0), law().Q(1e-300));
    EXPECT_GE(law().Q(1), law().Q(1 - 0x1p-53));
}

/// Where the mean of n squared deviations from the law's mean, over the variance, lies but for a probability of 1e-6 on
/// both sides together: from its exact mean, variance and skewness by the first term of Cornish and Fisher's expansion.
std::pair<double, double> varianceBounds(const LawCase& law, int n, double z) {
    const double deviation = std::sqrt(law.kurtosis - 1);  // of one squared deviation
    const double skewness = (law.sixthMoment - 3 * law.kurtosis + 2) / std::pow(deviation, 3) / std::sqrt(n);
    const double shift = (z * z - 1) * skewness / 6;
    const double scale = deviation / std::sqrt(n);
    return {1 + scale * (shift - z), 1 + scale * (shift + z)};
}

/// Moments and goodness of fit on one fixed stream. Failure probability of each check for a correct law and a fresh
/// seed: 1e-6 for the mean (normal limit), 1e-6 for the variance (normal limit with the skewness), 1e-6 for the fit.
TEST_P(LawBattery, DrawsHaveTheLawsMeanVarianceAndShape) {
    constexpr int n = 40000;
    constexpr int cells = 50;
    matrix<double> u(n, 1, 0.0);
    int seed = 1000 + law().law;
    int update = 0;
    M_GenerateRandom01(u, n, 1, &seed, hostTrue, &update);
    long double sum = 0;
    std::vector<double> draws;
    for (int i = 1; i <= n; ++i) {
        draws.push_back(law().Q(u(i, 1)));
        sum += draws.back();
    }
    const double mean = static_cast<double>(sum / n);
    long double squares = 0;
    for (const double x : draws) {
        squares += (x - law().mean) * (x - law().mean);
    }
    constexpr double z = 4.8916384756;  // two-sided 1e-6
    EXPECT_NEAR(mean, law().mean, z * std::sqrt(law().variance / n));
    const double variance = static_cast<double>(squares / n);
    const auto [least, greatest] = varianceBounds(law(), n, z);
    EXPECT_GT(variance / law().variance, least) << "mean " << mean << ", variance " << variance;
    EXPECT_LT(variance / law().variance, greatest) << "mean " << mean << ", variance " << variance;

    // Pearson's statistic over cells cut at quantiles; equal cuts of a discrete law merge.
    std::vector<double> cuts;
    for (int i = 1; i < cells; ++i) {
        const double cut = law().Q(i / static_cast<double>(cells));
        if (cuts.empty() || cut > cuts.back()) {
            cuts.push_back(cut);
        }
    }
    std::vector<int> counts(cuts.size() + 1, 0);
    for (const double x : draws) {
        ++counts[static_cast<std::size_t>(std::lower_bound(cuts.begin(), cuts.end(), x) - cuts.begin())];
    }
    double statistic = 0;
    int used = 0;
    double below = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double upTo = i < cuts.size() ? law().F(cuts[i]) : 1;
        const double expected = n * (upTo - below);
        below = upTo;
        if (expected > 0) {
            statistic += (counts[i] - expected) * (counts[i] - expected) / expected;
            ++used;
        } else {
            EXPECT_EQ(counts[i], 0);
        }
    }
    if (used > 1) {
        EXPECT_LT(statistic, InvCDFFunction(4, 1 - 1e-6, used - 1, 0, 0, 0)) << used << " cells, mean " << mean;
    }
}

std::vector<int> identifiers() {
    std::vector<int> result;
    for (const LawEntry& entry : lawTable) {
        if (std::find(result.begin(), result.end(), entry.law) == result.end()) {
            result.push_back(entry.law);
        }
    }
    return result;
}

INSTANTIATE_TEST_SUITE_P(Laws, LawBattery, testing::Combine(testing::ValuesIn(identifiers()), testing::Bool()),
                         [](const auto& given) {
                             return "Law" + std::to_string(std::get<0>(given.param)) +
                                    (std::get<1>(given.param) ? "WithTables" : "Direct");
                         });

}  // namespace
}  // namespace quorva
