#include "numerics/vector_statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "numerics/core.h"
#include "numerics/laws.h"
#include "quorva/automation.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

/// Type 7 by its definition, on the sorted sample.
double sortedQuantile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    const double position = static_cast<double>(values.size() - 1) * p;
    const auto k = static_cast<std::size_t>(position);
    const double fraction = position - static_cast<double>(k);
    return fraction == 0 ? values[k] : values[k] + fraction * (values[k + 1] - values[k]);
}

TEST(VectorStatistics, MomentsMatchExactRationalArithmetic) {
    std::ifstream file(std::string(QUORVA_SOURCE_DIR) + "/tests/numerics/reference/moments.txt");
    int rows = 0;
    for (std::string line; std::getline(file, line); ++rows) {
        std::istringstream words(line);
        int n = 0;
        words >> n;
        std::vector<double> x(static_cast<std::size_t>(n));
        std::vector<double> w(x.size());
        const auto next = [&words] {
            std::string word;
            words >> word;
            return word == "-" ? MissingValue : std::strtod(word.c_str(), nullptr);
        };
        std::generate(x.begin(), x.end(), next);
        std::generate(w.begin(), w.end(), next);
        double results[8] = {};
        V_MeanVarSkewPKurtP(x.data(), n, results[0], results[1], results[2], results[3], results[4], results[5],
                            results[6], results[7], nullptr, w.data(), 0, 0);
        for (const double result : results) {
            const double expected = next();
            EXPECT_LE(std::abs(result - expected),
                      1e-14 * std::max(std::abs(expected), expected == MissingValue ? 0 : 1e-3))
                << "series " << rows << ": " << result << " for " << expected;
        }
    }
    EXPECT_EQ(rows, 11);
}

TEST(VectorStatistics, QuantileIsTheSpreadsheetsInclusiveOne) {
    const double values[] = {4, 1, 3, 2};
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 0.25), 1.75);
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 0), 1);
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 1), 4);
    EXPECT_EQ(V_QuantileM(values, 0, nullptr, 0.5), MissingValue);
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 1.5), MissingValue);
    const short flags[] = {0, -1, 0, 0};
    EXPECT_EQ(V_QuantileM(values, 4, flags, 0), 2);
}

TEST(VectorStatistics, SelectedQuantilesEqualSortedOnesToTheBit) {
    std::mt19937_64 engine(3);
    for (const int n : {1, 2, 3, 10, 101, 1000}) {
        std::vector<double> values(static_cast<std::size_t>(n));
        std::generate(values.begin(), values.end(),
                      [&] { return std::ldexp(static_cast<double>(engine() >> 40), -7); });
        const std::vector<double> ones(values.size(), 1.0);
        for (const double p : {0.0, 0.025, 0.05, 0.25, 1.0 / 3, 0.5, 0.77, 0.95, 1.0}) {
            EXPECT_EQ(V_QuantileM(values.data(), n, nullptr, p), sortedQuantile(values, p));
            EXPECT_EQ(V_QuantileMW(values.data(), n, nullptr, ones.data(), p), sortedQuantile(values, p));
        }
    }
}

TEST(VectorStatistics, WholeWeightsEqualRepetition) {
    const std::vector<double> values{7, 1, 4, 2.5};
    const std::vector<double> weights{2, 3, 1, 0};
    const std::vector<double> repeated{7, 7, 1, 1, 1, 4};
    for (const double p : {0.0, 0.1, 0.33, 0.5, 0.6, 0.75, 0.9, 1.0}) {
        EXPECT_EQ(V_QuantileMW(values.data(), 4, nullptr, weights.data(), p), sortedQuantile(repeated, p)) << p;
    }
}

TEST(VectorStatistics, NaNObservationsSortLastAndDoNotDerailTheSelection) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double values[] = {nan, 2, nan, 1, 3};
    EXPECT_EQ(V_QuantileM(values, 5, nullptr, 0.25), 2);
    EXPECT_TRUE(std::isnan(V_QuantileM(values, 5, nullptr, 1)));
    EXPECT_EQ(V_Min(values, 5, nullptr), 1);
    EXPECT_EQ(V_Max(values, 5, nullptr), 3);
}

TEST(VectorStatistics, ANaNObservationMakesMomentsNaNAndShapesMissing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double values[] = {3, nan, 1, 2};
    double mean = 0, stdev = 0, variance = 0, skewnessP = 0, kurtosisP = 0, skewness = 0, kurtosis = 0, error1 = 0,
           error2 = 0;
    V_MeanStdev(values, 4, mean, stdev, nullptr, nullptr, hostTrue, 0);
    EXPECT_TRUE(std::isnan(mean));
    EXPECT_TRUE(std::isnan(stdev));
    V_MeanVarSkewPKurtP(values, 4, mean, variance, skewnessP, kurtosisP, skewness, kurtosis, error1, error2, nullptr,
                        nullptr, 0, 0);
    EXPECT_TRUE(std::isnan(mean));
    EXPECT_TRUE(std::isnan(variance));
    for (const double shape : {skewnessP, kurtosisP, skewness, kurtosis}) {
        EXPECT_EQ(shape, MissingValue);
    }
    V_GMeanGSD(values, 4, nullptr, nullptr, mean, stdev);
    EXPECT_EQ(mean, MissingValue);
    EXPECT_EQ(stdev, MissingValue);
    EXPECT_EQ(V_HarmonicMean(values, 4, nullptr, nullptr), MissingValue);
    EXPECT_TRUE(std::isnan(V_MeanAbsDev(values, 4, 2, nullptr, nullptr)));
    EXPECT_EQ(V_Min(values, 4, nullptr), 1.0);
    EXPECT_EQ(V_Max(values, 4, nullptr), 3.0);
    EXPECT_EQ(V_Freq(values, 4, nullptr, nan, 0), 0.0);

    const double none[] = {nan, nan};
    EXPECT_TRUE(std::isnan(V_Mean2(none, 2)));
    EXPECT_TRUE(std::isnan(V_Max(none, 2, nullptr)));
}

TEST(VectorStatistics, MeanAndDeviationWithBothDivisors) {
    const double values[] = {2, 4, 4, 4, 5, 5, 7, 9};
    double mean = 0;
    double stdev = 0;
    V_MeanStdev(values, 8, mean, stdev, nullptr, nullptr, 0, 0);
    EXPECT_EQ(mean, 5);
    EXPECT_EQ(stdev, 2);
    V_MeanStdev(values, 8, mean, stdev, nullptr, nullptr, hostTrue, 0);
    EXPECT_DOUBLE_EQ(stdev, std::sqrt(32.0 / 7));
    V_MeanStdev(values, 1, mean, stdev, nullptr, nullptr, hostTrue, 0);
    EXPECT_EQ(mean, 2);
    EXPECT_EQ(stdev, MissingValue);
    V_MeanStdev(values, 0, mean, stdev, nullptr, nullptr, hostTrue, 0);
    EXPECT_EQ(mean, MissingValue);
}

TEST(VectorStatistics, GeometricAndHarmonicMeansNeedPositiveValues) {
    const double values[] = {1, 4, 16};
    double mean = 0;
    double deviation = 0;
    V_GMeanGSD(values, 3, nullptr, nullptr, mean, deviation);
    EXPECT_DOUBLE_EQ(mean, 4);
    EXPECT_DOUBLE_EQ(deviation, 4);
    EXPECT_DOUBLE_EQ(V_HarmonicMean(values, 3, nullptr, nullptr), 3 / (1 + 0.25 + 0.0625));
    const double withZero[] = {1, 0, 16};
    V_GMeanGSD(withZero, 3, nullptr, nullptr, mean, deviation);
    EXPECT_EQ(mean, MissingValue);
    EXPECT_EQ(deviation, MissingValue);
    EXPECT_EQ(V_HarmonicMean(withZero, 3, nullptr, nullptr), MissingValue);
}

// A logarithm of 690 rounded to a double loses three digits of the mean.
TEST(VectorStatistics, GeometricMeansKeepTheirDigitsFarFromOne) {
    double mean = 0;
    double deviation = 0;
    for (const double x : {0.1, 3.7, 1e-300, 0x1.fffffffffffffp+1000, 7e250}) {
        const double equal[] = {x, x, x};
        V_GMeanGSD(equal, 3, nullptr, nullptr, mean, deviation);
        EXPECT_EQ(mean, x);
        EXPECT_EQ(deviation, 1);
        const double apart[] = {x / 2, x * 2};
        V_GMeanGSD(apart, 2, nullptr, nullptr, mean, deviation);
        EXPECT_DOUBLE_EQ(mean, x);
        EXPECT_DOUBLE_EQ(deviation, 2.6651441426902251886);  // exp(sqrt(2) log 2) = 2^sqrt(2)
    }
}

TEST(VectorStatistics, NaNAmongEqualValuesIsNoConstant) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::vector<double>& values : {std::vector<double>{4, nan, 4, 4}, {nan, 4, 4, 4}, {4, 4, 4, nan}}) {
        double found[8] = {};
        V_MeanVarSkewPKurtP(values.data(), 4, found[0], found[1], found[2], found[3], found[4], found[5], found[6],
                            found[7], nullptr, nullptr, 0, 0);
        EXPECT_TRUE(std::isnan(found[0]));
        EXPECT_TRUE(std::isnan(found[1]));
        double mean = 0;
        double stdev = 0;
        V_MeanStdev(values.data(), 4, mean, stdev, nullptr, nullptr, hostTrue, 0);
        EXPECT_TRUE(std::isnan(mean));
        EXPECT_TRUE(std::isnan(stdev));
        EXPECT_TRUE(std::isnan(V_Mean2(values.data(), 4)));
        EXPECT_EQ(V_IsConstant(values.data(), 4, -1, 1), hostFalse);
        V_GMeanGSD(values.data(), 4, nullptr, nullptr, mean, stdev);
        EXPECT_FALSE(mean == 4 || stdev == 1);
    }
}

TEST(VectorStatistics, AbsoluteDeviationsFrequenciesAndExtremes) {
    const double values[] = {1, 2, 3, 4, 10};
    EXPECT_EQ(V_MeanAbsDev(values, 5, 4, nullptr, nullptr), 2.4);
    EXPECT_EQ(V_MedianAbsDev(values, 5, 3, nullptr, nullptr), 1);
    EXPECT_EQ(V_Mean2(values, 5), 4);
    EXPECT_EQ(V_Sum(values, 5), 20);
    const double weights[] = {1, 2, 3, 4, 5};
    EXPECT_EQ(V_Freq(values, 5, weights, 3.5, 0.5), 7);
    EXPECT_EQ(V_Freq(values, 5, nullptr, 10, 2.220446049250313e-16), 1);
    EXPECT_EQ(V_IsConstant(values, 5, -1, 1), hostFalse);
    EXPECT_EQ(V_IsConstant(values, 1, -1, 1), hostTrue);
    const short flags[] = {-1, 0, 0, 0, -1};
    EXPECT_EQ(V_Min(values, 5, flags), 2);
    EXPECT_EQ(V_Max(values, 5, flags), 4);
    EXPECT_EQ(V_Min(values, 0, nullptr), MissingValue);
}

/// Everything that observations, flags and weights enter.
std::vector<double> allStatistics(const std::vector<double>& x, const short* flags, const double* weights) {
    const int n = static_cast<int>(x.size());
    std::vector<double> found(16);
    V_MeanVarSkewPKurtP(x.data(), n, found[0], found[1], found[2], found[3], found[4], found[5], found[6], found[7],
                        flags, weights, 0, 0);
    V_MeanStdev(x.data(), n, found[8], found[9], flags, weights, hostTrue, 0);
    V_MeanStdev(x.data(), n, found[8], found[10], flags, weights, 0, 0);
    V_GMeanGSD(x.data(), n, flags, weights, found[11], found[12]);
    found[13] = V_HarmonicMean(x.data(), n, flags, weights);
    found[14] = V_MeanAbsDev(x.data(), n, 3.25, flags, weights);
    found[15] = V_MedianAbsDev(x.data(), n, 3.25, flags, weights);
    return found;
}

void expectAlmostEqual(const std::vector<double>& found, const std::vector<double>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_NEAR(found[i], expected[i], 1e-14 * std::abs(expected[i])) << i;
    }
}

TEST(VectorStatistics, FlaggedObservationsTakeNoPart) {
    const short flags[] = {0, -1, 0, 0, 1, 0, 0};
    const double weights[] = {1, 5, 1, 1, 5, 1, 1};
    const std::vector<double> given{1.5, -3, 2.25, 9, 1e6, 4, 3};
    const auto expected = allStatistics({1.5, 2.25, 9, 4, 3}, nullptr, nullptr);
    expectAlmostEqual(allStatistics(given, flags, nullptr), expected);
    expectAlmostEqual(allStatistics(given, flags, weights), expected);
}

TEST(VectorStatistics, WholeWeightsEqualRepetitionInEveryStatistic) {
    const double weights[] = {2, 0, 1, 3};
    expectAlmostEqual(allStatistics({1.5, 7, 2.25, 9}, nullptr, weights),
                      allStatistics({1.5, 9, 2.25, 9, 1.5, 9}, nullptr, nullptr));
}

TEST(VectorStatistics, LargeSampleBoundsOfAQuantileAreOrderStatistics) {
    std::vector<double> values(400);
    for (int i = 0; i < 400; ++i) {
        values[static_cast<std::size_t>(i)] = (i * 7) % 400 + 1;
    }
    double lower = 0;
    double upper = 0;
    // 200 -+ 1.96 * 10 = 180.4 and 219.6
    V_ConfQuantilesLargeSample(values.data(), 400, 0.5, 0.975, lower, upper);
    EXPECT_EQ(lower, 180);
    EXPECT_EQ(upper, 220);
    // 40 -+ 1.6449 * 6 = 30.13 and 49.87: whole ranks outwards, not the nearest
    V_ConfQuantilesLargeSample(values.data(), 400, 0.1, 0.95, lower, upper);
    EXPECT_EQ(lower, 30);
    EXPECT_EQ(upper, 50);
    // 399.6 -+ 1.24 and 0.4 -+ 1.24: kept within the sample
    V_ConfQuantilesLargeSample(values.data(), 400, 0.999, 0.975, lower, upper);
    EXPECT_EQ(lower, 398);
    EXPECT_EQ(upper, 400);
    V_ConfQuantilesLargeSample(values.data(), 400, 0.001, 0.975, lower, upper);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 2);
    // The ends of the probabilities have no width.
    V_ConfQuantilesLargeSample(values.data(), 400, 0, 0.975, lower, upper);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 1);
    V_ConfQuantilesLargeSample(values.data(), 400, 1, 1, lower, upper);
    EXPECT_EQ(lower, 400);
    EXPECT_EQ(upper, 400);
    V_ConfQuantilesLargeSample(values.data(), 1, 0.5, 0.975, lower, upper);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 1);
    V_ConfQuantilesLargeSample(values.data(), 400, 1.01, 0.975, lower, upper);
    EXPECT_EQ(lower, MissingValue);
    EXPECT_EQ(upper, MissingValue);
    V_ConfQuantilesLargeSample(values.data(), 400, 0.5, 1, lower, upper);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 400);
    V_ConfQuantilesLargeSample(values.data(), 0, 0.5, 0.975, lower, upper);
    EXPECT_EQ(lower, MissingValue);
}

TEST(TriangularByQuantiles, EndsReproduceTheQuantiles) {
    struct Case {
        double a, m, b, q1, q2;
    };
    for (const auto& [a, m, b, q1, q2] :
         {Case{1, 3, 7, 0.1, 0.9}, Case{10, 10, 20, 0.05, 0.95}, Case{-5, 0, 1, 0, 1}, Case{4, 1, 13, 0.4, 0.9625},
          Case{-13, -1, -4, 0.0375, 0.6}, Case{100, 101, 500, 0.001, 0.8}, Case{3, 8, 8, 0.25, 0.75}}) {
        double lower = 0;
        double upper = 0;
        TriangularQFindAB(a, m, b, q1, q2, lower, upper);
        EXPECT_NEAR(InvCDFFunction(25, q1, lower, m, upper, 0), a, 1e-12 * (upper - lower));
        EXPECT_NEAR(InvCDFFunction(25, q2, lower, m, upper, 0), b, 1e-12 * (upper - lower));
    }
    double lower = 0;
    double upper = 0;
    // Both quantiles on the falling side of the triangle 0, 1, 16: 16 - sqrt(240 (1 - q)).
    TriangularQFindAB(4, 1, 13, 0.4, 0.9625, lower, upper);
    EXPECT_NEAR(lower, 0, 2e-14);
    EXPECT_NEAR(upper, 16, 2e-14);
    // The falling side through these two is so steep that it begins above the mode.
    TriangularQFindAB(2, 1, 4, 0.5, 0.99, lower, upper);
    EXPECT_TRUE(std::isnan(lower) && std::isnan(upper));
    TriangularQFindAB(-4, -1, -2, 0.01, 0.5, lower, upper);
    EXPECT_TRUE(std::isnan(lower) && std::isnan(upper));
    TriangularQFindAB(1, 3, 7, 0.9, 0.1, lower, upper);
    EXPECT_TRUE(std::isnan(lower) && std::isnan(upper));
    TriangularQFindAB(7, 3, 1, 0.1, 0.9, lower, upper);
    EXPECT_TRUE(std::isnan(lower) && std::isnan(upper));
}

// The mode of these laws is one of their ends, which rounding may put an epsilon beyond it.
TEST(TriangularByQuantiles, AModeAtAnEndOfTheLawIsThatEnd) {
    for (const double mode : {0.0, 1.0, -7.3, 1e6, 0.1}) {
        for (const double width : {1.0, 0.3, 12.5, 1e-3}) {
            for (const double q1 : {0.01, 0.05, 0.1, 0.25, 1.0 / 3}) {
                for (const double q2 : {0.5, 0.75, 0.9, 0.95, 0.99}) {
                    SCOPED_TRACE(testing::Message() << mode << " " << width << " " << q1 << " " << q2);
                    // Falling from the mode: Q(q) = mode + width (1 - sqrt(1 - q)).
                    double lower = 0;
                    double upper = 0;
                    TriangularQFindAB(mode + width * (1 - std::sqrt(1 - q1)), mode,
                                      mode + width * (1 - std::sqrt(1 - q2)), q1, q2, lower, upper);
                    const double accuracy = 1e-12 * width + 20 * std::abs(mode) * 0x1p-52;
                    EXPECT_NEAR(lower, mode, accuracy);
                    EXPECT_LE(lower, mode);
                    EXPECT_NEAR(upper, mode + width, accuracy);
                    // Rising to it: Q(q) = mode - width (1 - sqrt(q)).
                    TriangularQFindAB(mode - width * (1 - std::sqrt(1 - q2)), mode,
                                      mode - width * (1 - std::sqrt(1 - q1)), 1 - q2, 1 - q1, lower, upper);
                    EXPECT_NEAR(lower, mode - width, accuracy);
                    EXPECT_NEAR(upper, mode, accuracy);
                    EXPECT_GE(upper, mode);
                }
            }
        }
    }
}

}  // namespace
}  // namespace quorva
