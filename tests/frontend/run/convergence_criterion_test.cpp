#include "frontend/run/convergence_criterion.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(Criterion, IsReadAsItIsWritten) {
    for (const std::string text : {"mean", "stdev", "percentile=2.5", "percentile=99"}) {
        ConvergenceSettings settings;
        EXPECT_TRUE(readCriterion(text, settings)) << text;
        EXPECT_EQ(criterionText(settings), text);
    }
}

TEST(Criterion, NothingElseIsTakenForOne) {
    // A hexadecimal percentile passed the command line once and was then read as the median.
    for (const std::string text : {"", "Mean", "median", "percentile", "percentile=", "percentile=0", "percentile=100",
                                   "percentile=nan", "percentile=0x5", "percentile=5%"}) {
        ConvergenceSettings settings;
        EXPECT_FALSE(readCriterion(text, settings)) << text;
    }
}

}  // namespace
}  // namespace quorva::frontend
