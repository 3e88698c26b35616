#include "numerics/studies.h"

#include <gtest/gtest.h>

#include "common/missing_value.h"

namespace quorva {
namespace {

double index(int which, double LSL, double USL, double stdev = 1, double mean = 0) {
    double result = 0;
    EXPECT_EQ(calcPcapDescOne(100, LSL, USL, 0.5, 0.95, stdev, mean, result, which), 0);
    return result;
}

TEST(Capability, OneSidedLimitsLeaveTheOtherSideMissing) {
    EXPECT_EQ(index(1, -6, 6), 2);
    EXPECT_EQ(index(1, MissingValue, 6), MissingValue);
    EXPECT_EQ(index(2, MissingValue, 6), MissingValue);
    EXPECT_EQ(index(3, MissingValue, 6), 2);
    EXPECT_EQ(index(18, MissingValue, 6), 0);
    EXPECT_EQ(index(1, -6, 6, 0), MissingValue);
}

}  // namespace
}  // namespace quorva
