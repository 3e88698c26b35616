#include "numerics/vector_statistics.h"

#include <gtest/gtest.h>

#include "common/missing_value.h"

namespace quorva {
namespace {

TEST(VectorStatistics, QuantileIsTheSpreadsheetsInclusiveOne) {
    const double values[] = {4, 1, 3, 2};
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 0.25), 1.75);
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 0), 1);
    EXPECT_EQ(V_QuantileM(values, 4, nullptr, 1), 4);
    EXPECT_EQ(V_QuantileM(values, 0, nullptr, 0.5), MissingValue);
}

}  // namespace
}  // namespace quorva
