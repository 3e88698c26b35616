#include "frontend/run/block_run.h"

#include <gtest/gtest.h>

#include <set>

namespace quorva::frontend {
namespace {

TEST(Blocks, DependOnIterationsAndSeedAlone) {
    for (const int iterations : {1, 3, 4, 5, 99'999, 100'000, 100'003, 60'000'000}) {
        const auto blocks = blocksOf(iterations, 7);
        int sum = 0;
        std::set<int> seeds;
        for (const Block& block : blocks) {
            EXPECT_GE(block.iterations, 1);
            EXPECT_GE(block.seed, 1);
            sum += block.iterations;
            seeds.insert(block.seed);
        }
        EXPECT_EQ(sum, iterations);
        EXPECT_EQ(seeds.size(), blocks.size()) << "every block has a seed of its own";
        EXPECT_LE(blocks.size(), 64u);
    }
    EXPECT_NE(blocksOf(100'000, 7).front().seed, blocksOf(100'000, 8).front().seed);
}

}  // namespace
}  // namespace quorva::frontend
