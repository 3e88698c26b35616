#include "engine/random_permutation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "common/sort_rows.h"

using namespace quorva;

namespace {

std::vector<double> ordered(RandomPermutation& permutation, std::vector<double> uniforms) {
    permutation.order(uniforms.data(), static_cast<int>(uniforms.size()));
    return uniforms;
}

/// The row numbers that a sort of the rows (uniform, number) carries along.
std::vector<double> sorted(const std::vector<double>& uniforms) {
    const auto n = static_cast<int>(uniforms.size());
    matrix<double> rows(n, 2);
    for (int i = 1; i <= n; ++i) {
        rows(i, 1) = uniforms[static_cast<std::size_t>(i - 1)];
        rows(i, 2) = i;
    }
    SortQMatrixCol(rows, n, 2, 1, 0, n, false);
    return {rows.column(2), rows.column(2) + n};
}

std::vector<double> drawn(int n, const std::function<double(std::mt19937_64&)>& draw) {
    std::mt19937_64 engine(static_cast<unsigned>(n));
    std::vector<double> uniforms(static_cast<std::size_t>(n));
    for (double& uniform : uniforms) {
        uniform = draw(engine);
    }
    return uniforms;
}

double uniform(std::mt19937_64& engine) { return static_cast<double>((engine() >> 11) | 1) * 0x1p-53; }

const int sizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 63, 64, 65, 100, 1000, 1024, 2048, 2049, 4096, 10'000, 65'537, 100'000};

TEST(RandomPermutation, IsTheStableSortOfTheRows) {
    RandomPermutation permutation;
    for (const int n : sizes) {
        const auto uniforms = drawn(n, uniform);
        ASSERT_EQ(ordered(permutation, uniforms), sorted(uniforms)) << n;
    }
}

TEST(RandomPermutation, EqualUniformsKeepTheOrderOfTheirRows) {
    RandomPermutation permutation;
    for (const int n : sizes) {
        if (n > 10'000) {
            continue;
        }
        for (const double steps : {1.0, 2.0, 10.0, 1000.0}) {
            const auto uniforms = drawn(n, [=](auto& e) { return (std::floor(uniform(e) * steps) + 0.5) / steps; });
            ASSERT_EQ(ordered(permutation, uniforms), sorted(uniforms)) << n << " of " << steps;
        }
    }
}

TEST(RandomPermutation, UniformsThatDifferInTheirLastBitsAreInOrder) {
    RandomPermutation permutation;
    for (const int n : sizes) {
        if (n > 10'000) {
            continue;
        }
        for (const double base : {0.0, 0.25, 0.5, 1 - 0x1p-45}) {
            const auto uniforms =
                drawn(n, [=](auto& e) { return base + static_cast<double>(e() % 200 + 1) * 0x1p-53; });
            ASSERT_EQ(ordered(permutation, uniforms), sorted(uniforms)) << n << " from " << base;
        }
    }
}

TEST(RandomPermutation, EndsOfTheOpenIntervalAreInOrder) {
    RandomPermutation permutation;
    const std::vector<double> uniforms{1 - 0x1p-53, 0x1p-53, 0.5, 1 - 0x1p-53, 0x1p-53, 0.5 - 0x1p-54, 0.5};
    EXPECT_EQ(ordered(permutation, uniforms), (std::vector<double>{2, 5, 6, 3, 7, 1, 4}));
}

}  // namespace
