#include "numerics/uniforms.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "numerics/mersenne_twister.h"
#include "quorva/automation.h"

namespace quorva {
namespace {

/// The generator as a run uses it: reset, then draws that hand the seed on.
struct Draws {
    int seed;
    int update = 0;

    explicit Draws(int start) : seed(start) {
        short initialise = hostTrue;
        int inUse = 0;
        GetSeed(&seed, &initialise, &inUse);
        GetSeedUpdate(&update);
    }

    double draw() {
        const double u = GenerateRandom01(&seed, hostTrue, &update);
        seed = update;
        return u;
    }
};

std::vector<double> draws(Draws run, int n) {
    std::vector<double> result;
    for (int i = 0; i < n; ++i) {
        result.push_back(run.draw());
    }
    return result;
}

TEST(Uniforms, OneSeedGivesOneStream) {
    const auto first = draws(Draws(12345), 1000);
    const auto other = draws(Draws(12346), 1000);
    EXPECT_EQ(draws(Draws(12345), 1000), first);
    EXPECT_NE(other, first);
}

TEST(MersenneTwister, GivesTheNumbersOfTheStandardsEngine) {
    for (const std::uint32_t seed : {0u, 1u, 20'260'101u, 0xFFFFFFFFu}) {
        std::seed_seq sequence{seed, ~seed, 5u};
        MersenneTwister twister;
        twister.seed(sequence);
        std::mt19937_64 standard(sequence);
        for (int i = 0; i < 2000; ++i) {
            ASSERT_EQ(twister(), standard()) << "seed " << seed << " number " << i;
        }
    }
}

TEST(Uniforms, FirstDrawsOfASeedArePinned) {
    // From reference/uniforms.py, an implementation of its own.
    const auto low = draws(Draws(1), 1000);
    EXPECT_EQ(low[0], 0x1.b05e179b63234p-3);
    EXPECT_EQ(low[1], 0x1.8b33a26d15de6p-1);
    EXPECT_EQ(low[2], 0x1.426dd0ecb8ae5p-1);
    EXPECT_EQ(low[999], 0x1.89debb4ccc5fcp-2);
    const auto high = draws(Draws(2147483647), 1000);
    EXPECT_EQ(high[0], 0x1.4f385dec7e128p-3);
    EXPECT_EQ(high[999], 0x1.3aa3e1680e167p-1);
}

TEST(Uniforms, DrawsAreMultiplesOfTheLastOf53BitsInTheOpenInterval) {
    Draws run(7);
    double sum = 0;
    constexpr int n = 100000;
    for (int i = 0; i < n; ++i) {
        const double u = run.draw();
        ASSERT_GT(u, 0);
        ASSERT_LT(u, 1);
        ASSERT_EQ(std::ldexp(u, 53), std::floor(std::ldexp(u, 53)));
        sum += u;
    }
    // Failure probability 1e-9 for a correct generator.
    EXPECT_NEAR(sum / n, 0.5, 6.1 / std::sqrt(12.0 * n));
}

TEST(Uniforms, TheStartSeedContinuesTheStreamThatTheResetOpened) {
    const auto expected = draws(Draws(99), 3);
    Draws run(99);
    EXPECT_EQ(run.seed, 99);
    EXPECT_EQ(run.update, 99);
    EXPECT_EQ(run.draw(), expected[0]);
    EXPECT_EQ(run.draw(), expected[1]);
}

TEST(Uniforms, ASeedThatWasNotHandedOutLastStartsAfresh) {
    const auto expected = draws(Draws(5), 2);
    int update = 0;
    int seed = 5;
    Draws(17).draw();
    EXPECT_EQ(GenerateRandom01(&seed, hostTrue, &update), expected[0]);
    EXPECT_EQ(GenerateRandom01(&seed, hostTrue, &update), expected[0]);
    EXPECT_EQ(GenerateRandom01(&update, hostTrue, &update), expected[1]);
}

TEST(Uniforms, AColumnIsTheSameStreamInRowOrder) {
    const auto expected = draws(Draws(42), 6);
    Draws run(42);
    EXPECT_EQ(run.draw(), expected[0]);
    matrix<double> table(4, 2, 0.0);
    M_GenerateRandom01(table, 4, 2, &run.seed, hostTrue, &run.update);
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(table(i, 2), expected[static_cast<std::size_t>(i)]);
        EXPECT_EQ(table(i, 1), 0);
    }
    // The sampler goes on with the seed as the column left it.
    EXPECT_EQ(run.draw(), expected[5]);
}

TEST(Uniforms, ASeedIsDrawnWhenNoneIsGiven) {
    int seed = 3;
    short initialise = hostFalse;
    int first = 0;
    int second = 0;
    GetSeed(&seed, &initialise, &first);
    EXPECT_EQ(seed, first);
    GetSeed(&seed, &initialise, &second);
    EXPECT_GT(first, 0);
    EXPECT_GT(second, 0);
    EXPECT_NE(first, second);  // fails once in 2^31 runs
}

TEST(Uniforms, SeedsArePositiveWith31Bits) {
    for (const int given : {0, -1, -2147483647 - 1, 2147483647}) {
        int seed = given;
        short initialise = hostTrue;
        int out = 0;
        GetSeed(&seed, &initialise, &out);
        EXPECT_GT(out, 0) << given;
    }
}

}  // namespace
}  // namespace quorva
