// Quantiles out of tables against the laws themselves.
#include "numerics/quantile_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

#include "numerics/laws.h"

namespace quorva {
namespace {

struct Law {
    int identifier;
    std::array<double, 4> p;

    double quantile(double u) const { return InvCDFFunction(identifier - 1, u, p[0], p[1], p[2], p[3]); }
    double cdf(double x) const { return CDFFunction(identifier - 1, x, p[0], p[1], p[2], p[3]); }
};

const std::vector<Law> continuousLaws{{1, {2, 5}},
                                      {1, {0.5, 0.5}},
                                      {1, {30, 2}},
                                      {5, {3}},
                                      {5, {250}},
                                      {6, {0.25}},
                                      {7, {5, 7}},
                                      {8, {}},
                                      {9, {3}},
                                      {10, {2, -40}},
                                      {11, {0.3}},
                                      {11, {2.5}},
                                      {12, {2.5, 40}},
                                      {13, {1, 2, -7}},
                                      {14, {4.59, 0.15}},
                                      {15, {100, 15}},
                                      {16, {}},
                                      {17, {3, 2}},
                                      {19, {7}},
                                      {19, {1.2}},
                                      {21, {2}},
                                      {22, {2, 113}},
                                      {23, {0.7, 5, 1}},
                                      {24, {1, 0.2, 3}},
                                      {24, {1, -0.2, 3}},
                                      {25, {4, 0.5}},
                                      {26, {60, 100, 140}},
                                      {27, {60, 100, 140}},
                                      {28, {5, 2}},
                                      {30, {2, 3, -1, 4}},
                                      {31, {0, 1, 3, 7}},
                                      {33, {100, 20}},
                                      {35, {0.3}}};

const std::vector<Law> discreteLaws{{2, {200, 0.5}}, {2, {10, 0.03}}, {3, {2.5, 0.2}},  {4, {3, 2}},
                                    {18, {4}},       {18, {300}},     {29, {-3, 1000}}, {32, {0.4}}};

std::vector<double> uniforms(int n, unsigned seed) {
    std::mt19937_64 engine(seed);
    std::vector<double> us(static_cast<std::size_t>(n));
    std::generate(us.begin(), us.end(), [&] { return (static_cast<double>(engine() >> 12) + 0.5) * 0x1p-52; });
    return us;
}

/// Calls of a law before its table is sure to be there.
void warmUp(const Law& law) {
    for (int i = 0; i < 5000; ++i) {
        law.quantile(0.3);
    }
}

class QuantileTable : public testing::Test {
protected:
    QuantileTable() { useQuantileTables(true); }
    ~QuantileTable() override { useQuantileTables(true); }
};

TEST_F(QuantileTable, ContinuousLawsAreWithinTheResolutionInTheProbability) {
    for (const Law& law : continuousLaws) {
        warmUp(law);
        for (const double u : uniforms(3000, 11)) {
            const double x = law.quantile(u);
            const double tail = std::min(u, 1 - u);
            // The distribution function near 1 is itself rounded to 1.1e-16. Where it is steep, the neighbours of x
            // are further apart than the resolution.
            const double allowed = std::min(1e-14, 1e-11 * tail + 1.2e-16);
            const double slack = 4 * (std::nextafter(std::fabs(x), INFINITY) - std::fabs(x));
            ASSERT_LE(law.cdf(x - slack), u + allowed) << "law " << law.identifier << " u " << u;
            ASSERT_GE(law.cdf(x + slack), u - allowed) << "law " << law.identifier << " u " << u;
        }
    }
}

TEST_F(QuantileTable, TablesReallyAnswer) {
    const Law gamma{11, {2.5, 0, 0, 0}};
    const double before = gamma.quantile(0.37);
    warmUp(gamma);
    int differing = 0;
    for (const double u : uniforms(1000, 5)) {
        const double tabulated = gamma.quantile(u);
        useQuantileTables(false);
        const double direct = gamma.quantile(u);
        differing += tabulated != direct;
        EXPECT_NEAR(tabulated, direct, 1e-13 * direct);
        useQuantileTables(true);
        if (differing > 0) {
            break;
        }
        warmUp(gamma);
    }
    EXPECT_GT(differing, 0) << "every value agreed to the last bit, so no table was used";
    useQuantileTables(false);
    EXPECT_EQ(gamma.quantile(0.37), before);
}

TEST_F(QuantileTable, DiscreteLawsAreExactAlsoAtTheirSteps) {
    for (const Law& law : discreteLaws) {
        std::vector<double> us = uniforms(500, 3);
        useQuantileTables(false);
        const std::size_t plain = us.size();
        for (std::size_t i = 0; i < plain; i += 10) {
            const double step = std::min(law.cdf(law.quantile(us[i])), std::nextafter(1.0, 0.0));
            us.push_back(step);
            us.push_back(std::nextafter(step, 0.0));
            us.push_back(std::nextafter(step, 1.0));
        }
        std::vector<double> direct;
        for (const double u : us) {
            direct.push_back(law.quantile(u));
        }
        useQuantileTables(true);
        warmUp(law);
        for (std::size_t i = 0; i < us.size(); ++i) {
            ASSERT_EQ(law.quantile(us[i]), direct[i]) << "law " << law.identifier << " u " << us[i];
        }
    }
}

TEST_F(QuantileTable, OuterTailsAndEndsComeFromTheLaw) {
    const Law normal{15, {0, 1, 0, 0}};
    useQuantileTables(false);
    const double tail = normal.quantile(1e-5);
    const double upper = normal.quantile(1 - 1e-5);
    useQuantileTables(true);
    warmUp(normal);
    EXPECT_EQ(normal.quantile(1e-5), tail);
    EXPECT_EQ(normal.quantile(1 - 1e-5), upper);
    EXPECT_EQ(normal.quantile(0), -INFINITY);
    EXPECT_EQ(normal.quantile(1), INFINITY);
    EXPECT_TRUE(std::isnan(normal.quantile(1.5)));
    EXPECT_TRUE(std::isnan(normal.quantile(NAN)));
    EXPECT_NEAR(normal.quantile(0.5), 0.0, 1e-16);
}

TEST_F(QuantileTable, ForgettingMakesARunIndependentOfTheOneBefore) {
    const auto draws = [] {
        std::vector<double> values;
        for (const double u : uniforms(2000, 9)) {
            values.push_back(Law{19, {7, 0, 0, 0}}.quantile(u));
        }
        return values;
    };
    useQuantileTables(true);
    const auto first = draws();
    useQuantileTables(true);
    EXPECT_EQ(draws(), first);
}

// Whole-numbered parameters once shared a slot, and of several such fields none but the first had a table.
TEST_F(QuantileTable, AnyNumberOfShapesOfOneLawHaveTablesWhenAskedInTurn) {
    std::vector<Law> laws;
    for (int i = 0; i < 40; ++i) {
        laws.push_back({1, {2.0 + i % 8, 3.0 + i / 8, 0, 0}});
    }
    for (int round = 0; round < 1500; ++round) {
        for (const Law& law : laws) {
            law.quantile(0.3);
        }
    }
    const auto us = uniforms(200, 31);
    std::vector<std::vector<double>> tabulated;
    for (const Law& law : laws) {
        auto& values = tabulated.emplace_back();
        for (const double u : us) {
            values.push_back(law.quantile(u));
        }
    }
    useQuantileTables(false);
    for (std::size_t i = 0; i < laws.size(); ++i) {
        int differing = 0;
        for (std::size_t j = 0; j < us.size(); ++j) {
            const double direct = laws[i].quantile(us[j]);
            EXPECT_NEAR(tabulated[i][j], direct, 1e-12 * direct);
            differing += tabulated[i][j] != direct;
        }
        EXPECT_GT(differing, 0) << "no table for shape " << i;
    }
}

TEST_F(QuantileTable, ChangingParametersAreAskedDirectly) {
    std::vector<double> tabulated;
    const auto us = uniforms(2000, 21);
    for (const bool on : {true, false}) {
        useQuantileTables(on);
        for (std::size_t i = 0; i < us.size(); ++i) {
            const double x = Law{11, {2.0 + static_cast<double>(i) * 1e-3, 0, 0, 0}}.quantile(us[i]);
            if (on) {
                tabulated.push_back(x);
            } else {
                ASSERT_EQ(x, tabulated[i]);
            }
        }
    }
}

TEST_F(QuantileTable, ParametersThatDefineNoLawStayWithoutValue) {
    for (int i = 0; i < 2000; ++i) {
        ASSERT_TRUE(std::isnan(InvCDFFunction(14, 0.5, 0, -1, 0, 0)));
        ASSERT_TRUE(std::isnan(InvCDFFunction(10, 0.25, -2, 0, 0, 0)));
        ASSERT_TRUE(std::isnan(InvCDFFunction(14, 0.25, 0, 1, 0, NAN)));
        ASSERT_EQ(InvCDFFunction(14, 0.25, 3, 0, 0, 0), 3.0) << "a point mass";
    }
}

TEST_F(QuantileTable, SeveralThreadsMayRead) {
    const Law law{1, {2, 5, 0, 0}};
    std::array<double, 4> worst{};
    std::vector<std::thread> threads;
    for (std::size_t k = 0; k < worst.size(); ++k) {
        threads.emplace_back([&, k] {
            for (const double u : uniforms(2000, static_cast<unsigned>(k))) {
                worst[k] = std::max(worst[k], std::fabs(law.cdf(law.quantile(u)) - u));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_LE(*std::max_element(worst.begin(), worst.end()), 1e-14);
}

TEST(SteppedQuantile, FindsTheStepOfEveryProbability) {
    const std::array<double, 4> thresholds{0.1, 0.1000001, 0.9, 1.0};
    const SteppedQuantile steps(5, 8, 0.0, [&](double k) { return thresholds[static_cast<std::size_t>(k - 5)]; });
    EXPECT_EQ(steps(1e-300), 5);
    EXPECT_EQ(steps(0.1), 5);
    EXPECT_EQ(steps(std::nextafter(0.1, 1.0)), 6);
    EXPECT_EQ(steps(0.5), 7);
    EXPECT_EQ(steps(1.0), 8);
    EXPECT_TRUE(std::isnan(steps(0.0)));
}

}  // namespace
}  // namespace quorva
