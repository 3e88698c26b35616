#include "stats/running_moments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "engine/field_registry.h"

using namespace quorva;

namespace {

class RunningMoments : public ::testing::Test {
protected:
    void SetUp() override {
        run = RunState{};
        run.fields.FieldFlags = matrix<double>(2, momentcolumn::columns);
        for (int i = 1; i <= 2; ++i) {
            run.fields.FieldFlags(i, momentcolumn::minimum) = MissingValueTwin;
            run.fields.FieldFlags(i, momentcolumn::maximum) = MissingValue;
        }
        run.fields.FieldFlags(1, momentcolumn::collect) = 1.0;
    }
    void TearDown() override { run = RunState{}; }
    static double get(int column, int field = 1) { return run.fields.FieldFlags(field, column); }

    /// Exact central sums of the whole numbers 1..n times `scale` plus `offset`.
    static void expectSeries(int n, double scale, double offset, double precision) {
        const double m = n;
        const double m2 = m * (m * m - 1) / 12;
        const double m4 = m * (m * m - 1) * (3 * m * m - 7) / 240;
        EXPECT_EQ(get(momentcolumn::weight), m);
        EXPECT_EQ(get(momentcolumn::count), m);
        const double mean = offset + scale * (m + 1) / 2;
        EXPECT_NEAR(get(momentcolumn::mean), mean, precision * std::fabs(mean));
        EXPECT_NEAR(get(momentcolumn::m2), scale * scale * m2, precision * scale * scale * m2);
        EXPECT_NEAR(get(momentcolumn::m3), 0.0, precision * std::pow(scale, 3) * std::pow(m2, 1.5));
        EXPECT_NEAR(get(momentcolumn::m4), std::pow(scale, 4) * m4, precision * std::pow(scale, 4) * m4);
        EXPECT_EQ(get(momentcolumn::minimum), offset + scale);
        EXPECT_EQ(get(momentcolumn::maximum), offset + scale * m);
    }
};

TEST_F(RunningMoments, OneValue) {
    CalcSimStat(1, 3.5);
    EXPECT_EQ(get(momentcolumn::weight), 1.0);
    EXPECT_EQ(get(momentcolumn::count), 1.0);
    EXPECT_EQ(get(momentcolumn::mean), 3.5);
    for (const int column : {momentcolumn::m2, momentcolumn::m3, momentcolumn::m4}) {
        EXPECT_EQ(get(column), 0.0);
    }
    EXPECT_EQ(get(momentcolumn::minimum), 3.5);
    EXPECT_EQ(get(momentcolumn::maximum), 3.5);
}

TEST_F(RunningMoments, AMissingValueTouchesOnlyTheMinimum) {
    CalcSimStat(1, 2);
    CalcSimStat(1, 5);
    CalcSimStat(1, MissingValue);
    EXPECT_EQ(get(momentcolumn::weight), 2.0);
    EXPECT_EQ(get(momentcolumn::count), 2.0);
    EXPECT_EQ(get(momentcolumn::mean), 3.5);
    EXPECT_EQ(get(momentcolumn::m2), 4.5);
    EXPECT_EQ(get(momentcolumn::maximum), 5.0);
    EXPECT_EQ(get(momentcolumn::minimum), MissingValue);
}

TEST_F(RunningMoments, ANaNIsCountedSpoilsTheSumsAndLeavesTheExtremes) {
    for (const double x : {2.0, std::nan(""), 5.0}) {
        CalcSimStat(1, x);
    }
    EXPECT_EQ(get(momentcolumn::count), 3.0);
    for (const int column : {momentcolumn::mean, momentcolumn::m2, momentcolumn::m3, momentcolumn::m4}) {
        EXPECT_TRUE(std::isnan(get(column))) << column;
    }
    EXPECT_EQ(get(momentcolumn::minimum), 2.0);
    EXPECT_EQ(get(momentcolumn::maximum), 5.0);
}

TEST_F(RunningMoments, AFieldNobodyAsksForKeepsItsStartValues) {
    CalcSimStat(2, 4);
    EXPECT_EQ(get(momentcolumn::minimum, 2), MissingValueTwin);
    EXPECT_EQ(get(momentcolumn::maximum, 2), MissingValue);
    EXPECT_EQ(get(momentcolumn::count, 2), 0.0);
    run.fields.FieldFlags(2, momentcolumn::collect) = 2.0;
    CalcSimStat(2, 4);
    EXPECT_EQ(get(momentcolumn::count, 2), 0.0) << "exactly 1 collects";
}

TEST_F(RunningMoments, RowsThatDoNotExistAreIgnored) {
    for (const int field : {0, -1, 3, 2'147'483'647}) {
        CalcSimStat(field, 4);
    }
    run.fields.FieldFlags = {};
    CalcSimStat(1, 4);
    EXPECT_TRUE(run.fields.FieldFlags.empty());
}

TEST_F(RunningMoments, AConstantSeriesHasNoSpread) {
    for (int i = 0; i < 100'000; ++i) {
        CalcSimStat(1, 0.1);
    }
    EXPECT_EQ(get(momentcolumn::mean), 0.1);
    EXPECT_EQ(get(momentcolumn::m2), 0.0);
    EXPECT_EQ(get(momentcolumn::m3), 0.0);
    EXPECT_EQ(get(momentcolumn::m4), 0.0);
}

TEST_F(RunningMoments, WholeNumbersAreExactToRounding) {
    for (int i = 1; i <= 1000; ++i) {
        CalcSimStat(1, i);
    }
    expectSeries(1000, 1, 0, 1e-13);
}

TEST_F(RunningMoments, TinyValues) {
    for (int i = 1; i <= 1000; ++i) {
        CalcSimStat(1, i * 1e-70);
    }
    EXPECT_NEAR(get(momentcolumn::mean), 500.5e-70, 1e-13 * 500.5e-70);
    EXPECT_NEAR(get(momentcolumn::m2), 83'333'250e-140, 1e-13 * 83'333'250e-140);
    EXPECT_NEAR(get(momentcolumn::m4), 1000.0 * 999'999 * (3e6 - 7) / 240 * 1e-280, 1e-12 * 1.25e13 * 1e-280);
}

TEST_F(RunningMoments, AHugeOffsetKeepsTheSpread) {
    for (int i = 1; i <= 1000; ++i) {
        CalcSimStat(1, 1e9 + i);
    }
    // A mean near 1e9 is known to 1e-7; that is what the spread of the order 1000 can lose.
    expectSeries(1000, 1, 1e9, 1e-9);
}

TEST_F(RunningMoments, ALongSeriesInAnyOrder) {
    constexpr int n = 1'000'000;
    long long k = 0;
    for (int i = 0; i < n; ++i) {
        k = (k + 618'033) % n;  // prime to n: every number once
        CalcSimStat(1, static_cast<double>(k + 1));
    }
    expectSeries(n, 1, 0, 1e-11);
}

TEST_F(RunningMoments, TheThirdSumOfASkewedSeries) {
    // 0, 0, 0, 8: mean 2, deviations -2 three times and 6.
    for (const double x : {0.0, 0.0, 0.0, 8.0}) {
        CalcSimStat(1, x);
    }
    EXPECT_NEAR(get(momentcolumn::m2), 48, 1e-13);
    EXPECT_NEAR(get(momentcolumn::m3), 192, 1e-12);
    EXPECT_NEAR(get(momentcolumn::m4), 1344, 1e-11);
}

// Reports are compared from one version to the next: the sums are taken in one order, to the last bit.
TEST_F(RunningMoments, TheSumsAreTakenInOneOrder) {
    double n = 0.0, mean = 0.0, m2 = 0.0, m3 = 0.0, m4 = 0.0;
    for (int i = 1; i <= 500; ++i) {
        const double x = std::sin(i * 1.7) * i - 20.0;
        CalcSimStat(1, x);
        n += 1.0;
        const double d = x - mean;
        const double b = 1.0 / n;
        const double b2 = std::pow(b, 2.0);
        m4 = m4 + (std::pow(d, 4.0) * ((6.0 * b - 4.0 - 3.0 * b2) * b + 1.0) +
                   (3.0 * b * d * m2 - 2.0 * m3) * (2.0 * b * d));
        m3 = m3 + std::pow(d, 3.0) * (1.0 - 3.0 * b + 2.0 * b2) - 3.0 * b * d * m2;
        m2 = m2 + std::pow(d, 2.0) * (1.0 - b);
        mean = mean + d * b;
    }
    EXPECT_EQ(get(momentcolumn::mean), mean);
    EXPECT_EQ(get(momentcolumn::m2), m2);
    EXPECT_EQ(get(momentcolumn::m3), m3);
    EXPECT_EQ(get(momentcolumn::m4), m4);
}

/// A result y, field 1, and statistic fields that count its values, of which none is recalculated but those that a test
/// marks as done.
class CloseOfAnIteration : public ::testing::Test {
protected:
    static constexpr int numberOfObservations = 1;  // the statistic

    static void start(int statistics, int nSim) {
        run = RunState{};
        const int fields = 1 + statistics;
        run.fields.nFields = fields;
        run.fields.FieldTable = matrix<double>(fields, fieldcolumn::columns);
        run.fields.FieldFlags = matrix<double>(fields, momentcolumn::columns);
        run.sampling.nSim = nSim;
        run.sampling.SampleStore = matrix<double>(nSim, fields);
        ASSERT_TRUE(run.sheets.grids.front().clear());
        for (int field = 1; field <= fields; ++field) {
            matrix<double>& table = run.fields.FieldTable;
            const FieldKind kind = field == 1 ? FieldKind::Result : FieldKind::Statistic;
            table(field, fieldcolumn::kind) = static_cast<double>(kind);
            table(field, fieldcolumn::row) = field;
            table(field, fieldcolumn::column) = 0;
            setFieldInfo(0, field, 0, static_cast<std::uint32_t>(field));
            if (kind == FieldKind::Statistic) {
                table(field, fieldcolumn::statistic) = numberOfObservations;
                table(field, fieldcolumn::referenceRow) = 1;
            }
        }
    }
    void TearDown() override { run = RunState{}; }

    static void step() {
        SimUpdateStat();
        ++run.sampling.iteration;
    }
    static void finish(int field) { run.fields.FieldTable(field, fieldcolumn::done) = 1.0; }
};

TEST_F(CloseOfAnIteration, PastTheLastIterationTheRowsStartAgainOneBelow) {
    start(1, 100);
    for (int k = 1; k <= 149; ++k) {
        step();
    }
    matrix<double>& store = run.sampling.SampleStore;
    std::fill_n(store.column(2), 100, -5.0);
    step();  // the 150th
    for (int row = 1; row <= 100; ++row) {
        EXPECT_EQ(store(row, 2), row == 50 ? 100.0 : -5.0) << row;
    }
}

TEST_F(CloseOfAnIteration, EveryStatisticThatWasNotRecalculatedIsFilledIn) {
    start(3, 3);
    step();
    finish(3);
    const matrix<double>& store = run.sampling.SampleStore;
    step();
    EXPECT_EQ(store(2, 2), 1.0);
    EXPECT_EQ(store(2, 4), 1.0) << "the last field";
    EXPECT_EQ(store(2, 3), 0.0) << "it had its value";
    for (int field = 1; field <= 4; ++field) {
        EXPECT_EQ(run.fields.FieldTable(field, fieldcolumn::done), 0.0) << field;
    }
    step();
    EXPECT_EQ(store(3, 3), 2.0) << "now it had not";
}

TEST_F(CloseOfAnIteration, WithOneIterationAndWithNoneStatisticsAreFilledInWithoutHarm) {
    for (const int nSim : {1, 0}) {
        start(1, nSim);
        for (int k = 1; k <= 3; ++k) {
            step();
        }
        EXPECT_EQ(run.sampling.SampleStore(1, 2), nSim == 1 ? 1.0 : -1.0);
    }
}

TEST_F(CloseOfAnIteration, EveryMarkIsClearedForTheNextIteration) {
    start(0, 10);
    finish(1);
    SimUpdateStat();
    EXPECT_EQ(run.fields.FieldTable(1, fieldcolumn::done), 0.0);
}

}  // namespace
