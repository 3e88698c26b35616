#include "frontend/commands/progress.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorva::frontend {
namespace {

TEST(Progress, ShowsShareRateAndTimeLeft) {
    EXPECT_EQ(progressLine(25000, 100000, 0.5),
              " 25 % [######..................] 25,000 of 100,000, 50,000/s, 2 s left");
}

TEST(Progress, FitsANarrowTerminalInOneLine) {
    EXPECT_EQ(progressLine(25000, 100000, 0.5, 60), " 25 % 25,000 of 100,000, 50,000/s, 2 s left");
    EXPECT_EQ(progressLine(25000, 100000, 0.5, 40), " 25 % 25,000 of 100,000, 2 s left");
    for (const int columns : {0, 1, 5, 20, 34, 60, 80, 200}) {
        EXPECT_LE(progressLine(99999, 100000, 123456, columns).size(), std::max(columns - 1, 0)) << columns;
    }
}

}  // namespace
}  // namespace quorva::frontend
