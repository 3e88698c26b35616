#include "common/matrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>

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
    target(1, 1) = 3.0;
    copyBlock(source, INT_MAX, INT_MAX, INT_MAX, INT_MAX, target);
    EXPECT_EQ(target(1, 1), -1.0);
}

/// An element whose assignment runs out of memory when it is told to.
struct Fragile {
    static inline int alive = 0;
    static inline bool exhausted = false;
    Fragile() { ++alive; }
    Fragile(const Fragile&) { ++alive; }
    ~Fragile() { --alive; }
    Fragile& operator=(const Fragile&) {
        if (exhausted) {
            throw std::bad_alloc();
        }
        return *this;
    }
};

TEST(Matrix, ACopyThatFailsLeavesNothingBehind) {
    {
        const matrix<Fragile> source(2, 2);
        Fragile::exhausted = true;
        const int before = Fragile::alive;
        EXPECT_THROW(matrix<Fragile> copy(source), std::bad_alloc);
        EXPECT_THROW(matrix<Fragile>(2, 2), std::bad_alloc);
        EXPECT_THROW(matrix<Fragile>(2, 2, source.data()), std::bad_alloc);
        EXPECT_EQ(Fragile::alive, before);
        Fragile::exhausted = false;
    }
    EXPECT_EQ(Fragile::alive, 0);
}

}  // namespace
}  // namespace quorva
