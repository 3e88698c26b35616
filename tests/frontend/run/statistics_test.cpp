#include "frontend/run/statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "numerics/vector_statistics.h"

namespace quorva::frontend {
namespace {

const double none = std::nan("");

std::vector<double> draws(int n, unsigned seed) {
    std::mt19937 engine(seed);
    std::normal_distribution<double> normal(-3, 20);
    std::vector<double> values(n);
    std::generate(values.begin(), values.end(), [&] { return std::round(normal(engine) * 10) / 10; });
    return values;
}

TEST(Statistics, SortingOrdersNegativeAndEqualValuesAndLeavesOutGaps) {
    std::vector<double> values = draws(5000, 1);
    values[17] = none;
    values[18] = -0.0;
    const SortedColumn sorted = sortColumn(values);
    ASSERT_EQ(sorted.values.size(), 4999u);
    EXPECT_TRUE(std::is_sorted(sorted.values.begin(), sorted.values.end()));
    for (std::size_t i = 0; i < sorted.values.size(); ++i) {
        EXPECT_EQ(sorted.values[i], values[sorted.positions[i]]);
    }
}

TEST(Statistics, QuantilesAgreeWithTheNumericalLibrary) {
    const std::vector<double> values = draws(1001, 2);
    const SortedColumn sorted = sortColumn(values);
    for (const double p : {0.0, 0.01, 0.05, 0.333, 0.5, 0.95, 1.0}) {
        EXPECT_DOUBLE_EQ(quantileOfSorted(sorted.values, p), V_QuantileM(values.data(), 1001, nullptr, p)) << p;
    }
    EXPECT_TRUE(std::isnan(quantileOfSorted({}, 0.5)));
}

TEST(Statistics, SummaryOfAKnownSeries) {
    Field field;
    field.name = "x";
    const std::vector<double> values{3, none, 4, 5, 2, 3, 4, 5, 6, 4, 7};
    const Summary summary = summarise(field, values, sortColumn(values));
    EXPECT_EQ(summary.count, 10);
    EXPECT_EQ(summary.errors, 1);
    EXPECT_DOUBLE_EQ(summary.mean, 4.3);
    // The documented example of the spreadsheet functions SKEW and KURT.
    EXPECT_NEAR(summary.skewness, 0.359543071406797, 1e-12);
    EXPECT_NEAR(summary.kurtosis, -0.151799637208416, 1e-12);
    EXPECT_DOUBLE_EQ(summary.standardError, summary.stdev / std::sqrt(10.0));
    EXPECT_EQ(summary.minimum, 2);
    EXPECT_EQ(summary.maximum, 7);
}

TEST(Statistics, AnEmptyColumnHasNoStatistics) {
    const std::vector<double> values{none, none};
    const Summary summary = summarise(Field{}, values, sortColumn(values));
    EXPECT_EQ(summary.count, 0);
    EXPECT_EQ(summary.errors, 2);
    EXPECT_TRUE(std::isnan(summary.mean));
    EXPECT_TRUE(std::isnan(summary.maximum));
}

TEST(Statistics, TiesShareTheirMeanRank) {
    const std::vector<double> values{10, 20, none, 20, 5};
    const std::vector<double> ranks = ranksOf(values, sortColumn(values));
    EXPECT_EQ(ranks[0], 2);
    EXPECT_EQ(ranks[1], 3.5);
    EXPECT_TRUE(std::isnan(ranks[2]));
    EXPECT_EQ(ranks[3], 3.5);
    EXPECT_EQ(ranks[4], 1);
}

TEST(Statistics, CorrelationsLeaveOutGapsAndConstants) {
    const std::vector<std::vector<double>> columns{{1, 2, 3, 4}, {2, 4, 6, 8}, {4, 3, none, 1}, {5, 5, 5, 5}};
    const LabelledMatrix matrix = correlationMatrix({"a", "b", "c", "d"}, columns);
    EXPECT_DOUBLE_EQ(matrix.at(0, 1), 1);
    EXPECT_DOUBLE_EQ(matrix.at(0, 2), -1);
    EXPECT_EQ(matrix.at(2, 2), 1);
    EXPECT_TRUE(std::isnan(matrix.at(0, 3)));
    EXPECT_TRUE(std::isnan(matrix.at(3, 3)));
}

TEST(Statistics, HistogramCountsEveryValueOnce) {
    const std::vector<double> values = draws(3000, 3);
    const Histogram histogram = histogramOf(sortColumn(values));
    EXPECT_EQ(std::accumulate(histogram.counts.begin(), histogram.counts.end(), 0L), 3000);
    EXPECT_EQ(histogram.edges.size(), histogram.counts.size() + 1);
    EXPECT_EQ(histogram.cumulative.back(), 1);
    const std::vector<double> dice{1, 2, 2, 6};
    EXPECT_EQ(histogramOf(sortColumn(dice)).counts, (std::vector<long>{1, 2, 0, 0, 0, 1}));
    const std::vector<double> constant{5, 5};
    EXPECT_EQ(histogramOf(sortColumn(constant)).counts, (std::vector<long>{2}));
}

TEST(Statistics, StdevIntervalOfANormalSampleHasItsTextbookWidth) {
    std::vector<double> values = draws(20000, 4);
    double lower, upper;
    stdevInterval(values, 0.95, lower, upper);
    // For the normal law the Pearson kurtosis is 3, so that the half-width is 1.96 s / sqrt(2 (n - 1)).
    EXPECT_NEAR((upper - lower) / 2, 1.959964 * 20 / std::sqrt(2.0 * 19999), 0.02);
    EXPECT_LT(lower, 20.3);
    EXPECT_GT(upper, 19.7);
}

TEST(Statistics, MeanIntervalUsesTheTwoSidedLevel) {
    const std::vector<double> values{1, 3, 1, 3};
    double lower, upper;
    meanInterval(values, 0.95, lower, upper);
    EXPECT_NEAR(upper - 2, 1.959963984540054 * std::sqrt(4.0 / 3) / 2, 1e-14);
    EXPECT_NEAR(2 - lower, upper - 2, 1e-14);
}

TEST(Statistics, CapabilityOfAOneSidedLimit) {
    const SpecificationLimits limits{"x", none, 10, none};
    const std::vector<double> values{4, 6, none, 4, 6};
    const Capability capability = capabilityOf(limits, values, 0.95);
    EXPECT_TRUE(std::isnan(capability.indices[0]));
    EXPECT_NEAR(capability.indices[2], 5 / (3 * std::sqrt(4.0 / 3)), 1e-14);
}

}  // namespace
}  // namespace quorva::frontend
