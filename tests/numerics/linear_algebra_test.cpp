#include "numerics/linear_algebra.h"

#include <gtest/gtest.h>

namespace quorva {
namespace {

TEST(LinearAlgebra, CholeskyRefusesCorrelationOneAndTheSquareRootTakesIt) {
    const matrix<double> a(2, 2, 1.0);
    matrix<double> factor(2, 2, 0.0);
    EXPECT_LT(M_CholDecomp(&a, 2, &factor), 0);
    EXPECT_EQ(M_SquareRoot(&a, 2, &factor), 0);
    EXPECT_NEAR(factor(1, 2), 0.70710678118654752, 1e-15);
    EXPECT_EQ(factor(1, 1), factor(2, 2));
}

}  // namespace
}  // namespace quorva
