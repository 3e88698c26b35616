#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "filled_run.h"
#include "host_strings.h"
#include "quorva/front_end.h"
#include "results/summary.h"

namespace quorva {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr double guard = 4242.0;

/// What a front end passes to Cpp_SimEnd, with a guard behind every array.
struct Summary {
    Summary()
        : fields(run.fields.nFields),
          columns(2 * run.fields.nRes),
          ResGen(table(fields * 14)),
          ResConv(table(2 * std::max(1, columns))),
          IntT(table(fields * 5)),
          ResStr(fields * 2),
          ConvStr(columns, u"as passed") {}

    void end(double TorProb, int nSim) {
        Cpp_SimEnd(TorProb, nSim, ResGen.data(), ResStr.data(), ResConv.data(), ConvStr.data(), &pConv, IntT.data());
        EXPECT_EQ(ResGen.back(), guard);
        EXPECT_EQ(ResConv.back(), guard);
        EXPECT_EQ(IntT.back(), guard);
    }
    static std::vector<double> table(int size) {
        return std::vector<double>(static_cast<std::size_t>(size) + 1, guard);
    }
    double interval(int field, int column) const {
        return IntT[static_cast<std::size_t>((column - 1) * fields + field - 1)];
    }

    int fields;
    int columns;
    std::vector<double> ResGen, ResConv, IntT;
    HostStrings ResStr, ConvStr;
    int pConv = -77;
};

class SummaryOfARun : public testing::Test {
protected:
    void SetUp() override {
        fillRun({1, 3, 3, 4}, 101);
        run.status.become(RunStatus::Running);
    }
    void TearDown() override { run = RunState{}; }

    static void monitor(HostBool on, std::initializer_list<double> fieldNumbers) {
        run.convergence.iCheckConv = on;
        run.convergence.table = matrix<double>(3, 4);
        int j = 0;
        for (const double number : fieldNumbers) {
            ++j;
            run.convergence.table(1, j) = 10 + j;
            run.convergence.table(2, j) = 20 + j;
            run.convergence.table(3, j) = number;
        }
    }
};

TEST_F(SummaryOfARun, FieldTableAndNamesAreCopiedAsTheyStand) {
    Summary summary;
    summary.end(0.05, 101);
    for (int i = 1; i <= 4; ++i) {
        for (int c = 1; c <= 14; ++c) {
            EXPECT_EQ(summary.ResGen[static_cast<std::size_t>((c - 1) * 4 + i - 1)], run.fields.FieldTable(i, c));
        }
    }
    EXPECT_THAT(summary.ResStr.texts(),
                ElementsAre(u"a", u"b", u"c", u"d", u"[Book]Model", u"[Book]Model", u"[Book]Model", u"[Book]Model"));
}

TEST_F(SummaryOfARun, IntervalsAreQuantilesMedianAndExtremes) {
    // 101 values in an order of their own, with known type 7 quantiles.
    for (int i = 0; i < 101; ++i) {
        run.sampling.SampleStore(i + 1, 1) = (i * 37) % 101;
    }
    Summary summary;
    summary.end(0.05, 101);
    EXPECT_EQ(summary.interval(1, 1), 5.0);
    EXPECT_EQ(summary.interval(1, 2), 50.0);
    EXPECT_EQ(summary.interval(1, 3), 95.0);
    EXPECT_EQ(summary.interval(1, 4), 0.0);
    EXPECT_EQ(summary.interval(1, 5), 100.0);
}

TEST_F(SummaryOfARun, EveryFieldOfEveryKindHasItsIntervals) {
    Summary summary;
    summary.end(0.25, 101);
    for (int field = 1; field <= 4; ++field) {
        EXPECT_EQ(summary.interval(field, 1), 100 * field + 26) << field;
        EXPECT_EQ(summary.interval(field, 2), 100 * field + 51) << field;
        EXPECT_EQ(summary.interval(field, 3), 100 * field + 76) << field;
        EXPECT_EQ(summary.interval(field, 4), 100 * field + 1) << field;
        EXPECT_EQ(summary.interval(field, 5), 100 * field + 101) << field;
    }
}

TEST_F(SummaryOfARun, IntervalsInterpolateBetweenOrderStatistics) {
    const double values[] = {4, -2, 10, 1};
    std::copy(std::begin(values), std::end(values), run.sampling.SampleStore.column(2));
    Summary summary;
    summary.end(0.1, 4);
    EXPECT_DOUBLE_EQ(summary.interval(2, 1), -2 + 0.3 * 3);
    EXPECT_DOUBLE_EQ(summary.interval(2, 2), 2.5);
    EXPECT_DOUBLE_EQ(summary.interval(2, 3), 4 + 0.7 * 6);
    EXPECT_EQ(summary.interval(2, 4), -2.0);
    EXPECT_EQ(summary.interval(2, 5), 10.0);
}

TEST_F(SummaryOfARun, AConstantFieldHasFiveEqualEntries) {
    std::fill_n(run.sampling.SampleStore.column(3), 101, 0.1);
    Summary summary;
    summary.end(0.05, 101);
    for (int c = 1; c <= 5; ++c) {
        EXPECT_EQ(summary.interval(3, c), 0.1);
    }
}

TEST_F(SummaryOfARun, ATailAboveOneHalfTurnsTheIntervalRound) {
    Summary summary;
    summary.end(0.9, 101);
    EXPECT_DOUBLE_EQ(summary.interval(1, 1), 191.0);
    EXPECT_DOUBLE_EQ(summary.interval(1, 3), 111.0);
}

TEST_F(SummaryOfARun, ExtremesAndMedianStandWhateverTheTail) {
    for (const double tail : {0.0, 1.0, -0.25, 1.5, std::numeric_limits<double>::quiet_NaN()}) {
        Summary summary;
        summary.end(tail, 101);
        EXPECT_EQ(summary.interval(1, 2), 151.0);
        EXPECT_EQ(summary.interval(1, 4), 101.0);
        EXPECT_EQ(summary.interval(1, 5), 201.0);
        const bool proper = tail == 0.0 || tail == 1.0;
        EXPECT_EQ(summary.interval(1, 1), tail == 0.0 ? 101.0 : proper ? 201.0 : MissingValue) << tail;
        EXPECT_EQ(summary.interval(1, 3), tail == 0.0 ? 201.0 : proper ? 101.0 : MissingValue) << tail;
    }
}

TEST_F(SummaryOfARun, IntervalsCoverTheIterationsAskedForWithinTheStore) {
    Summary summary;
    summary.end(0.05, 11);
    EXPECT_EQ(summary.interval(1, 5), 111.0);
    summary.end(0.05, 1);
    for (int c = 1; c <= 5; ++c) {
        EXPECT_EQ(summary.interval(1, c), 101.0);
    }
    summary.end(0.05, std::numeric_limits<int>::max());
    EXPECT_EQ(summary.interval(1, 5), 201.0);
    summary.end(0.05, 0);
    EXPECT_EQ(summary.interval(1, 2), MissingValue);
    summary.end(0.05, -5);
    EXPECT_EQ(summary.interval(1, 4), MissingValue);
}

TEST_F(SummaryOfARun, ANaNCountsBehindEveryNumber) {
    run.sampling.SampleStore(1, 1) = std::numeric_limits<double>::quiet_NaN();
    Summary summary;
    summary.end(0.25, 101);
    EXPECT_EQ(summary.interval(1, 1), 127.0);
    EXPECT_EQ(summary.interval(1, 2), 152.0);
    EXPECT_EQ(summary.interval(1, 4), 102.0);
}

TEST_F(SummaryOfARun, ARunAndATornadoPassAreOver) {
    Summary summary;
    run.status.analysing = hostTrue;
    summary.end(0.05, 101);
    EXPECT_FALSE(run.status.any());
    EXPECT_EQ(run.sampling.SampleStore(1, 1), 101.0);  // the values stay
}

TEST_F(SummaryOfARun, OtherStatusFlagsStay) {
    Summary summary;
    run.status.become(RunStatus::Prepared);
    summary.end(0.05, 101);
    EXPECT_TRUE(isTrue(run.status.prepared));
}

TEST_F(SummaryOfARun, ConvergenceResultsComeWithTheNamesOfTheirFields) {
    monitor(hostTrue, {2, 2, 3, 3});
    Summary summary;
    summary.end(0.05, 101);
    summary.ResConv.pop_back();
    EXPECT_THAT(summary.ResConv, ElementsAre(11, 21, 12, 22, 13, 23, 14, 24));
    EXPECT_THAT(summary.ConvStr.texts(), ElementsAre(u"b", u"b", u"c", u"c"));
    EXPECT_EQ(summary.pConv, 4);  // the last column with a field, not a count
}

TEST_F(SummaryOfARun, TheFirstFieldCanBeMonitored) {
    monitor(hostTrue, {1, 1, 2, 2});
    Summary summary;
    summary.end(0.05, 101);
    EXPECT_THAT(summary.ConvStr.texts(), ElementsAre(u"a", u"a", u"b", u"b"));
}

TEST_F(SummaryOfARun, ColumnsWithoutAFieldKeepTheirName) {
    monitor(hostTrue, {3, 3, 0, -1});
    Summary summary;
    summary.end(0.05, 101);
    EXPECT_THAT(summary.ConvStr.texts(), ElementsAre(u"c", u"c", u"as passed", u"as passed"));
    EXPECT_EQ(summary.pConv, 2);
}

TEST_F(SummaryOfARun, WithNoMonitoredFieldBoundsAreStillCopied) {
    monitor(hostTrue, {0, 0, 0, 0});
    Summary summary;
    summary.end(0.05, 101);
    EXPECT_THAT(summary.ConvStr.texts(), Each(std::u16string(u"as passed")));
    EXPECT_EQ(summary.pConv, -77);
    EXPECT_EQ(summary.ResConv[0], 11.0);
}

TEST_F(SummaryOfARun, MonitoringThatIsNotTheHostsTrueIsOff) {
    for (const HostBool on : {HostBool{0}, HostBool{1}, HostBool{-2}}) {
        monitor(on, {2, 2, 3, 3});
        Summary summary;
        summary.end(0.05, 101);
        summary.ResConv.pop_back();
        EXPECT_THAT(summary.ResConv, Each(0.0));
        EXPECT_THAT(summary.ConvStr.texts(), Each(std::u16string(u"as passed")));
        EXPECT_EQ(summary.pConv, -77);
    }
}

TEST_F(SummaryOfARun, ANameThatIsAlreadyThereKeepsItsString) {
    monitor(hostTrue, {2, 2, 3, 3});
    Summary summary;
    summary.end(0.05, 101);
    const auto name = summary.ConvStr.at(1);
    const auto field = summary.ResStr.at(0);
    summary.end(0.05, 101);
    EXPECT_EQ(summary.ConvStr.at(1), name);
    EXPECT_EQ(summary.ResStr.at(0), field);
}

TEST_F(SummaryOfARun, SmallerTablesReceiveACutSummary) {
    matrix<double> general(2, 3), convergence(1, 1), intervals(2, 2);
    matrix<std::u16string> names(1, 1), monitored(1, 1);
    int last = 0;
    monitor(hostTrue, {2, 2, 3, 3});
    SimEnd(0.05, 101, &general, &names, &convergence, &monitored, &last, &intervals);
    EXPECT_EQ(general(2, 3), 2003.0);
    EXPECT_EQ(names(1, 1), u"a");
    EXPECT_EQ(convergence(1, 1), 11.0);
    EXPECT_EQ(monitored(1, 1), u"b");
    EXPECT_EQ(intervals(2, 2), 251.0);
    EXPECT_EQ(last, 4);
}

TEST_F(SummaryOfARun, WithoutARunNothingIsTouched) {
    run = RunState{};
    double none[3] = {5, 5, 5};
    Cpp_SimEnd(0.05, 0, nullptr, nullptr, none, nullptr, nullptr, nullptr);
    EXPECT_THAT(none, ElementsAre(0, 0, 5));  // two rows and at least one column
}

}  // namespace
}  // namespace quorva
