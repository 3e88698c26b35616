#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "engine/run_state.h"
#include "quorva/front_end.h"

namespace quorva {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Four fields: a distribution, a monitored result, an unmonitored result, a monitored result.
class Convergence : public testing::Test {
protected:
    void SetUp() override {
        run = RunState{};
        run.fields.nFields = 4;
        run.fields.nRes = 3;
        run.fields.FieldTable = matrix<double>(4, fieldcolumn::columns);
        run.fields.FieldFlags = matrix<double>(4, momentcolumn::columns);
        const double kinds[] = {1, 3, 3, 3};
        const double flagged[] = {0, 1, 0, 1};
        for (int i = 1; i <= 4; ++i) {
            run.fields.FieldTable(i, fieldcolumn::kind) = kinds[i - 1];
            run.fields.FieldTable(i, fieldcolumn::convergence) = flagged[i - 1];
        }
        run.sampling.nSim = 1000;
        run.sampling.SampleStore = matrix<double>(1000, 4);
        auto& convergence = run.convergence;
        convergence.iCheckConv = hostTrue;
        convergence.iconf = 0.975;
        convergence.iconvPerc = 0.5;
        convergence.inCrit = 1;
        convergence.firstCheck = hostTrue;
        convergence.table = matrix<double>(3, 6);
    }
    void TearDown() override { run = RunState{}; }

    /// Moments of n values with the given mean, variance (divisor n - 1) and fourth central sum.
    static void setMoments(int field, double n, double mean, double variance, double m4 = 0.0) {
        auto& flags = run.fields.FieldFlags;
        flags(field, momentcolumn::weight) = flags(field, momentcolumn::count) = n;
        flags(field, momentcolumn::mean) = mean;
        flags(field, momentcolumn::m2) = variance * (n - 1.0);
        flags(field, momentcolumn::m4) = m4;
    }

    static double table(int row, int column) { return run.convergence.table(row, column); }
};

TEST_F(Convergence, MeanIntervalHasTheNormalWidth) {
    run.sampling.iteration = 400;
    setMoments(2, 400, 10, 4);
    setMoments(4, 400, -3, 4);
    EXPECT_EQ(Cpp_SimConv(), 0);
    const double h = 1.959963984540054 * 2 / 20;
    EXPECT_NEAR(h, 0.196, 1e-4);
    EXPECT_NEAR(table(1, 1), 10 - h, 1e-14);
    EXPECT_NEAR(table(1, 2), 10 + h, 1e-14);
    EXPECT_NEAR(table(1, 3), -3 - h, 1e-14);
    EXPECT_NEAR(table(1, 4), -3 + h, 1e-14);
    for (int j = 1; j <= 6; ++j) {
        EXPECT_EQ(table(2, j), 0.0);
    }
    EXPECT_EQ(table(3, 1), 2.0);
    EXPECT_EQ(table(3, 2), 2.0);
    EXPECT_EQ(table(3, 3), 4.0);
    EXPECT_EQ(table(3, 4), 4.0);
    EXPECT_EQ(table(3, 5), 0.0);
}

TEST_F(Convergence, WidthUsesTheIterationNotTheFieldsOwnCount) {
    run.sampling.iteration = 100;
    setMoments(2, 400, 10, 4);
    Cpp_SimConv();
    EXPECT_NEAR(table(1, 2) - table(1, 1), 2 * 1.959963984540054 * 2 / 10, 1e-13);
}

TEST_F(Convergence, TheFirstCheckNeverConverges) {
    run.sampling.iteration = 400;
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(run.convergence.firstCheck, hostFalse);
    EXPECT_EQ(Cpp_SimConv(), 1);
}

/// A zero-width interval at `bound`, so that both bounds are known exactly.
void setBound(int field, double bound) {
    auto& flags = run.fields.FieldFlags;
    flags(field, momentcolumn::weight) = 10;
    flags(field, momentcolumn::mean) = bound;
}

TEST_F(Convergence, MovementsWithinTheToleranceConverge) {
    run.sampling.iteration = 100;
    run.fields.FieldTable(4, fieldcolumn::convergence) = 0;
    // Bounds 9.8 and 10.2, then 9.79 and 10.21.
    const double z = 1.959963984540054;
    setMoments(2, 100, 10, std::pow(0.2 * 10 / z, 2));
    EXPECT_EQ(Cpp_SimConv(), 0);
    setMoments(2, 100, 10, std::pow(0.21 * 10 / z, 2));
    EXPECT_EQ(Cpp_SimConv(), 1);
    EXPECT_NEAR(table(2, 1), 0.00102, 5e-6);
    EXPECT_NEAR(table(2, 2), 0.00098, 5e-6);
    EXPECT_NEAR(table(1, 1), 9.79, 1e-13);
    EXPECT_NEAR(table(1, 2), 10.21, 1e-13);
    run.convergence.iconvPerc = 0.1;
    setMoments(2, 100, 10, std::pow(0.22 * 10 / z, 2));
    EXPECT_EQ(Cpp_SimConv(), 0);
}

// Intended: divided by the signed old bound; what is compared with the tolerance is the size of the movement.
TEST_F(Convergence, ANegativeBoundMovesByANegativeAmount) {
    run.sampling.iteration = 100;
    setBound(2, -5);
    EXPECT_EQ(Cpp_SimConv(), 0);
    setBound(2, -6);
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(table(2, 1), -0.2);
    EXPECT_EQ(table(2, 2), -0.2);
    run.convergence.iconvPerc = 25;
    setBound(2, -7.2);
    EXPECT_EQ(Cpp_SimConv(), 1);
}

TEST_F(Convergence, ABoundThatWasZeroHasNotMoved) {
    run.sampling.iteration = 100;
    setBound(2, 0);
    EXPECT_EQ(Cpp_SimConv(), 0);
    setBound(2, 50);
    EXPECT_EQ(Cpp_SimConv(), 1);
    EXPECT_EQ(table(2, 1), 0.0);
    EXPECT_EQ(table(1, 1), 50.0);
}

TEST_F(Convergence, AMovementOfExactlyTheToleranceConverges) {
    run.sampling.iteration = 100;
    run.convergence.iconvPerc = 25;
    setBound(2, 4);
    EXPECT_EQ(Cpp_SimConv(), 0);
    setBound(2, 5);
    EXPECT_EQ(Cpp_SimConv(), 1);
}

TEST_F(Convergence, AMovementThatIsNoNumberDoesNotHinder) {
    run.sampling.iteration = 100;
    setBound(2, 4);
    EXPECT_EQ(Cpp_SimConv(), 0);
    setBound(2, kNaN);
    EXPECT_EQ(Cpp_SimConv(), 1);
}

TEST_F(Convergence, AllResultsAreWatchedOnlyForTheHostsTrue) {
    run.sampling.iteration = 100;
    run.convergence.iallRes = 1;  // not the host's true
    Cpp_SimConv();
    EXPECT_EQ(table(3, 3), 4.0);
    EXPECT_EQ(table(3, 5), 0.0);
    SetUp();
    run.sampling.iteration = 100;
    run.convergence.iallRes = hostTrue;
    Cpp_SimConv();
    EXPECT_EQ(table(3, 1), 2.0);
    EXPECT_EQ(table(3, 3), 3.0);
    EXPECT_EQ(table(3, 5), 4.0);
}

TEST_F(Convergence, AnyMarkAboveZeroIsWatched) {
    run.sampling.iteration = 100;
    run.fields.FieldTable(2, fieldcolumn::convergence) = 1e-9;
    run.fields.FieldTable(3, fieldcolumn::convergence) = -1;
    Cpp_SimConv();
    EXPECT_EQ(table(3, 1), 2.0);
    EXPECT_EQ(table(3, 3), 4.0);
}

TEST_F(Convergence, WithNothingToWatchEveryLaterCheckConverges) {
    run.sampling.iteration = 100;
    run.fields.FieldTable(2, fieldcolumn::convergence) = 0;
    run.fields.FieldTable(4, fieldcolumn::convergence) = -1;
    run.convergence.table = matrix<double>(3, 1);
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(Cpp_SimConv(), 1);
    EXPECT_EQ(Cpp_SimConv(), 1);
}

TEST_F(Convergence, AFieldWithFewerThanTwoValuesTakesTheSpreadOfTheOneBefore) {
    run.sampling.iteration = 100;
    setMoments(2, 100, 10, 4);
    setMoments(4, 1, 7, 0);
    Cpp_SimConv();
    const double h = 1.959963984540054 * 2 / 10;
    EXPECT_NEAR(table(1, 3), 7 - h, 1e-14);
    EXPECT_NEAR(table(1, 4), 7 + h, 1e-14);
    SetUp();
    run.sampling.iteration = 100;
    setMoments(2, 1, 10, 0);
    Cpp_SimConv();
    EXPECT_EQ(table(1, 1), 10.0);  // the first field has nobody before it
    EXPECT_EQ(table(1, 2), 10.0);
}

// Intended: no confidence quantile, and the excess kurtosis less 1.
TEST_F(Convergence, DeviationIntervalUsesTheExcessKurtosisLessOne) {
    run.convergence.inCrit = 2;
    run.sampling.iteration = 26;
    // Variance 9, and a fourth moment that gives an excess kurtosis of 5.
    setMoments(2, 26, 1, 9, 8.0 * 81 * 26);
    Cpp_SimConv();
    const double h = 3 * std::sqrt((5.0 - 1.0) / (4.0 * 26 - 4));
    EXPECT_DOUBLE_EQ(table(1, 1), 3 - h);
    EXPECT_DOUBLE_EQ(table(1, 2), 3 + h);
}

TEST_F(Convergence, ANegativeRadicandMakesTheWidthMissing) {
    run.convergence.inCrit = 2;
    run.sampling.iteration = 26;
    setMoments(2, 26, 1, 9, 3.0 * 81 * 26);  // excess kurtosis 0
    Cpp_SimConv();
    EXPECT_EQ(table(1, 1), 3 - MissingValue);
    EXPECT_EQ(table(1, 2), 3 + MissingValue);
}

TEST_F(Convergence, PercentileBoundsAreOrderStatisticsOfTheIterationsSoFar) {
    run.convergence.inCrit = 3;
    run.convergence.ipercentile = 50;
    run.sampling.iteration = 100;
    for (int i = 1; i <= 1000; ++i) {
        run.sampling.SampleStore(i, 2) = i <= 100 ? 101 - i : -5000;
    }
    Cpp_SimConv();
    // Ranks 50 -+ 1.96 * 5, outwards.
    EXPECT_EQ(table(1, 1), 40.0);
    EXPECT_EQ(table(1, 2), 60.0);
}

TEST_F(Convergence, PercentileBoundsStayWithinTheStore) {
    run.convergence.inCrit = 3;
    run.convergence.ipercentile = 50;
    run.sampling.iteration = std::numeric_limits<int>::max();
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(table(1, 1), 0.0);
    run.sampling.iteration = 0;
    EXPECT_EQ(Cpp_SimConv(), 1);
    EXPECT_EQ(table(1, 1), MissingValue);
    EXPECT_EQ(table(1, 2), MissingValue);
}

TEST_F(Convergence, PercentileBoundsOfASingleIterationAreItsValue) {
    run.convergence.inCrit = 3;
    run.convergence.ipercentile = 90;
    run.sampling.iteration = 1;
    run.sampling.SampleStore(1, 4) = 7.5;
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(table(1, 3), 7.5);
    EXPECT_EQ(table(1, 4), 7.5);
}

// A lower percentile has its own ranks: 10 -+ 1.96 * 3, outwards.
TEST_F(Convergence, PercentileIsGivenInPercent) {
    run.convergence.inCrit = 3;
    run.convergence.ipercentile = 10;
    run.sampling.iteration = 100;
    for (int i = 1; i <= 100; ++i) {
        run.sampling.SampleStore(i, 2) = (i * 37) % 101;
    }
    Cpp_SimConv();
    EXPECT_EQ(table(1, 1), 4.0);
    EXPECT_EQ(table(1, 2), 16.0);
}

TEST_F(Convergence, OneBoundThatMovesIsEnoughToGoOn) {
    run.sampling.iteration = 100;
    run.convergence.iconvPerc = 1;
    const double z = 1.959963984540054;
    // The bounds are 9.8 and 10.2; then the mean and the width move so that only one of them does.
    setMoments(2, 100, 10, std::pow(0.2 * 10 / z, 2));
    setMoments(4, 100, 10, std::pow(0.2 * 10 / z, 2));
    for (const double direction : {-1.0, 1.0}) {
        run.convergence.firstCheck = hostTrue;
        setMoments(4, 100, 10, std::pow(0.2 * 10 / z, 2));
        EXPECT_EQ(Cpp_SimConv(), 0);
        setMoments(4, 100, 10 + direction * 0.1, std::pow(0.3 * 10 / z, 2));
        EXPECT_EQ(Cpp_SimConv(), 0);
        EXPECT_NEAR(table(2, direction > 0 ? 3 : 4), 0.0, 1e-14);
        EXPECT_GT(table(2, direction > 0 ? 4 : 3), 0.019);
    }
}

TEST_F(Convergence, AnyOtherCriterionLeavesTheTableAlone) {
    run.convergence.inCrit = 4;
    run.sampling.iteration = 100;
    setMoments(2, 100, 10, 4);
    run.convergence.table(1, 1) = 77;
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(table(1, 1), 77.0);
    EXPECT_EQ(table(3, 1), 2.0);
    EXPECT_EQ(Cpp_SimConv(), 1);
}

TEST_F(Convergence, WithoutATableNothingConverges) {
    run.convergence.table = matrix<double>();
    EXPECT_EQ(Cpp_SimConv(), 0);
    EXPECT_EQ(Cpp_SimConv(), 0);
}

}  // namespace
}  // namespace quorva
