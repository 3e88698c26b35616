#include "numerics/quantiles.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <random>

namespace quorva {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The bits, so that a NaN equals itself.
std::uint64_t bits(double x) { return std::bit_cast<std::uint64_t>(x); }

TEST(Quantiles, SeveralAtOnceAreThoseOneByOne) {
    std::mt19937 generator(3);
    for (const std::size_t n : {1, 2, 3, 4, 5, 10, 99, 100, 1000}) {
        for (const unsigned distinct : {1U, 3U, 1000U}) {
            std::vector<double> values(n);
            for (auto& x : values) {
                x = static_cast<double>(generator() % distinct) * 0.1;
            }
            for (const double tail : {0.05, 0.0, 0.5, 0.9, 1.0 / 3, 1e-9, 1.0}) {
                const std::array<double, 5> probabilities{tail, 0.5, 1.0 - tail, 0.0, 1.0};
                std::array<double, 5> quantiles{};
                auto rearranged = values;
                quantilesOf(rearranged, probabilities, quantiles);
                for (std::size_t i = 0; i < probabilities.size(); ++i) {
                    EXPECT_EQ(quantiles[i],
                              quantileOf(values.data(), static_cast<int>(n), nullptr, nullptr, probabilities[i]));
                }
            }
        }
    }
}

TEST(Quantiles, NaNStandsBehindEveryNumber) {
    const std::vector<double> values{kNaN, 3, kNaN, 1, std::numeric_limits<double>::infinity(), 2};
    const std::array<double, 6> probabilities{0.0, 0.25, 0.5, 0.6, 0.8, 1.0};
    std::array<double, 6> quantiles{};
    auto rearranged = values;
    quantilesOf(rearranged, probabilities, quantiles);
    for (std::size_t i = 0; i < probabilities.size(); ++i) {
        const double alone = quantileOf(values.data(), 6, nullptr, nullptr, probabilities[i]);
        EXPECT_TRUE(bits(quantiles[i]) == bits(alone) || (std::isnan(quantiles[i]) && std::isnan(alone))) << i;
    }
}

TEST(Quantiles, EndsTooFarApartForADoubleAndInfiniteOnesAreInterpolated) {
    const double wide[] = {1.5e308, -1.25e308};
    EXPECT_DOUBLE_EQ(quantileOf(wide, 2, nullptr, nullptr, 0.5), 1.25e307);
    EXPECT_DOUBLE_EQ(quantileOf(wide, 2, nullptr, nullptr, 0.25), -5.625e307);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double equal[] = {infinity, infinity, 3};
    EXPECT_EQ(quantileOf(equal, 3, nullptr, nullptr, 0.75), infinity);
    EXPECT_EQ(quantileOf(equal, 3, nullptr, nullptr, 0.25), infinity);
    EXPECT_EQ(quantileOf(equal, 3, nullptr, nullptr, 0), 3);
}

TEST(Quantiles, ImproperProbabilitiesAndNoValuesAreMissing) {
    const std::array<double, 4> probabilities{-0.1, 0.5, 1.1, kNaN};
    std::array<double, 4> quantiles{};
    std::vector<double> values{4, 2};
    quantilesOf(values, probabilities, quantiles);
    EXPECT_EQ(quantiles, (std::array<double, 4>{MissingValue, 3, MissingValue, MissingValue}));
    values.clear();
    quantilesOf(values, probabilities, quantiles);
    EXPECT_EQ(quantiles[1], MissingValue);
    EXPECT_EQ(quantileOfOrdered({}, 0.5), MissingValue);
}

}  // namespace
}  // namespace quorva
