#include "common/matrix.h"

#include <gtest/gtest.h>

#include <climits>

namespace quorva {
namespace {

TEST(Matrix, ElementsStandColumnByColumnFromOne) {
    const double source[] = {1, 2, 3, 4, 5, 6};
    const matrix<double> m(2, 3, source);
    EXPECT_EQ(m(1, 1), 1);
    EXPECT_EQ(m(2, 1), 2);
    EXPECT_EQ(m(1, 2), 3);
    EXPECT_EQ(m(2, 3), 6);
}

TEST(Matrix, AccessOutsideReadsWhatTheScratchElementLastReceived) {
    matrix<double> m(2, 2, 7.0);
    EXPECT_EQ(m(3, 1), -1.0);
    m(0, 1) = 5.0;
    EXPECT_EQ(m(INT_MIN, INT_MAX), 5.0);
    EXPECT_EQ(m(1, -4), 5.0);
    EXPECT_EQ(m(2, 2), 7.0);
}

TEST(Matrix, ZeroResizeKeepsLargerDimensions) {
    matrix<double> m(3, 5, 2.0);
    m.zeroResize(3, 4);
    EXPECT_EQ(m.columns(), 5);
    EXPECT_EQ(m(3, 4), 0.0);
    EXPECT_EQ(m(1, 5), 2.0);
    m.zeroResize(4, 2);
    EXPECT_EQ(m.rows(), 4);
    EXPECT_EQ(m.columns(), 2);
    EXPECT_EQ(m(4, 2), 0.0);
}

TEST(Matrix, BlockCopyReadsScratchOutsideTheSourceAndSkipsOutsideTheTarget) {
    matrix<double> source(2, 2, 1.0);
    matrix<double> target(3, 2, 0.0);
    copyBlock(source, 1, 9, 2, 9, target);
    EXPECT_EQ(target(2, 1), 1.0);
    EXPECT_EQ(target(3, 1), -1.0);
    EXPECT_EQ(target(1, 2), -1.0);
    copyBlock(source, INT_MIN, INT_MAX, INT_MIN, INT_MAX, target);
    EXPECT_EQ(target(1, 1), -1.0);
}

}  // namespace
}  // namespace quorva
