#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "engine/run_state.h"
#include "numerics/vector_statistics.h"
#include "quorva/catalogue.h"

namespace quorva {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int lowestInt = std::numeric_limits<int>::min();
constexpr int highestInt = std::numeric_limits<int>::max();

struct Series {
    std::string name;
    std::vector<double> values;
    std::vector<double> moments;  ///< mean, then sums of squared, cubed and fourth-power deviations
    std::vector<std::pair<int, double>> statistics;
};

struct CapabilityCase {
    std::string name;
    double LSL;
    double USL;
    double target;
    std::vector<double> indices;  ///< 1 to 23
};

#include "reference.inc"
#include "stats/descriptive.h"

const Series& series(const std::string& name) {
    for (const auto& one : allSeries) {
        if (one.name == name) {
            return one;
        }
    }
    throw std::out_of_range(name);
}

void expectValue(double actual, double expected, const std::string& what) {
    if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(actual)) << what << ": " << actual;
    } else if (expected == 0.0 || std::isinf(expected) || expected == MissingValue) {
        EXPECT_EQ(actual, expected) << what;
    } else {
        EXPECT_NEAR(actual, expected, 2e-14 * std::abs(expected)) << what;
    }
}

class Descriptive : public testing::Test {
protected:
    void SetUp() override { clear(); }
    void TearDown() override { run = RunState{}; }

    static void clear(int rows = 12, int fields = 3) {
        run = RunState{};
        run.fields.nFields = fields;
        run.fields.FieldTable = matrix<double>(fields, fieldcolumn::columns);
        run.fields.FieldFlags = matrix<double>(fields, momentcolumn::columns);
        run.sampling.nSim = rows;
        run.sampling.SampleStore = matrix<double>(rows, fields);
    }

    /// The series as the values of field 2, with its moments.
    static void load(const Series& data) {
        clear();
        auto& flags = run.fields.FieldFlags;
        flags(2, momentcolumn::weight) = flags(2, momentcolumn::count) = static_cast<double>(data.values.size());
        flags(2, momentcolumn::mean) = data.moments[0];
        flags(2, momentcolumn::m2) = data.moments[1];
        flags(2, momentcolumn::m3) = data.moments[2];
        flags(2, momentcolumn::m4) = data.moments[3];
        flags(2, momentcolumn::minimum) = *std::min_element(data.values.begin(), data.values.end());
        flags(2, momentcolumn::maximum) = *std::max_element(data.values.begin(), data.values.end());
        std::copy(data.values.begin(), data.values.end(), run.sampling.SampleStore.column(2));
    }

    static void setLimits(double LSL, double USL, double target) {
        run.capability.iSpcConf = 0.95;
        run.capability.SpcTable = matrix<double>(2, 4);
        auto& limits = run.capability.SpcTable;
        limits(2, 1) = 2;
        limits(2, 2) = LSL;
        limits(2, 3) = USL;
        limits(2, 4) = target;
        run.fields.FieldTable(2, fieldcolumn::capability) = 2;
    }

    static int count(const Series& data) { return static_cast<int>(data.values.size()); }
};

TEST_F(Descriptive, EveryStatisticOfEverySeriesHasItsKnownValue) {
    for (const auto& data : allSeries) {
        load(data);
        ASSERT_EQ(data.statistics.size(), 33U);
        for (const auto& [statistic, expected] : data.statistics) {
            expectValue(SimCalcStat(count(data), 2, 3, statistic), expected,
                        data.name + ", statistic " + std::to_string(statistic));
        }
    }
}

TEST_F(Descriptive, EveryStatisticOfTheCatalogueIsServed) {
    load(series("skewed"));
    setLimits(-4.0, 14.0, 5.0);
    run.fields.FieldTable(2, fieldcolumn::kind) = 1;
    for (const auto& entry : statisticTable) {
        EXPECT_NE(SimCalcStat(7, 2, 3, entry.statistic), MissingValue) << entry.wrapper;
    }
}

TEST_F(Descriptive, AnIdentifierThatDoesNotExistIsMissing) {
    load(series("skewed"));
    setLimits(-4.0, 14.0, 5.0);
    run.fields.FieldTable(2, fieldcolumn::kind) = 1;
    for (const int statistic : {lowestInt, -1, 0, 34, 50, 54, 80, 104, 132, highestInt}) {
        EXPECT_EQ(SimCalcStat(7, 2, 3, statistic), MissingValue) << statistic;
        EXPECT_EQ(SimCalcStat(0, 2, 3, statistic), 0.0) << statistic;
    }
}

TEST_F(Descriptive, WithoutObservationsMomentsStillAnswerAndTheRestIsZero) {
    const auto& data = series("skewed");
    load(data);
    run.fields.FieldTable(2, fieldcolumn::kind) = 1;
    setLimits(-4.0, 14.0, 5.0);
    for (const int nObs : {0, -1, lowestInt}) {
        EXPECT_EQ(SimCalcStat(nObs, 2, 3, 1), nObs);
        EXPECT_EQ(SimCalcStat(nObs, 2, 3, 3), nObs);
        EXPECT_EQ(SimCalcStat(nObs, 2, 3, 13), data.moments[0]);
        EXPECT_EQ(SimCalcStat(nObs, 2, 3, 4), 0.5);
        EXPECT_EQ(SimCalcStat(nObs, 2, 3, 12), nObs * data.moments[0]);
        EXPECT_EQ(SimCalcStat(nObs, 2, 3, 25), 0.0);
        for (const auto& entry : statisticTable) {
            if (entry.path != StatisticPath::RunningMoments) {
                EXPECT_EQ(SimCalcStat(nObs, 2, 3, entry.statistic), 0.0) << entry.wrapper;
            }
        }
    }
}

TEST_F(Descriptive, NumberAndSumUseTheObservationsAskedForNotTheCount) {
    load(series("ramp"));
    EXPECT_EQ(SimCalcStat(4, 2, 3, 1), 4.0);
    EXPECT_EQ(SimCalcStat(4, 2, 3, 3), 4.0);
    EXPECT_EQ(SimCalcStat(4, 2, 3, 12), 4 * 5.5);
    EXPECT_EQ(SimCalcStat(4, 2, 3, 2), 0.0);
}

TEST_F(Descriptive, OrderStatisticsUseOnlyTheObservationsAskedFor) {
    load(series("ramp"));
    EXPECT_EQ(SimCalcStat(5, 2, 3, 10), 3.0);
    EXPECT_EQ(SimCalcStat(2, 2, 3, 9), 1.25);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 11), 1.0);
}

TEST_F(Descriptive, BowleySkewnessNeedsNoWideQuartiles) {
    clear();
    const double values[] = {0.0, 0x1p-40, 0x1p-38};
    std::copy(std::begin(values), std::end(values), run.sampling.SampleStore.column(2));
    EXPECT_EQ(SimCalcStat(3, 2, 3, 21), 0.5);
}

TEST_F(Descriptive, ASingleValueHasNoSampleSpreadAndNoSkewness) {
    load(series("one"));
    EXPECT_EQ(SimCalcStat(1, 2, 3, 15), 0.0);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 17), 0.0);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 20), MissingValue);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 27), MissingValue);
    EXPECT_TRUE(std::isnan(SimCalcStat(1, 2, 3, 23)));  // intended: the condition on n holds for 1
    EXPECT_EQ(SimCalcStat(1, 2, 3, 28), 0.0);
}

TEST_F(Descriptive, TwoOrThreeValuesHaveNoFisherKurtosis) {
    for (const auto* name : {"two", "three"}) {
        load(series(name));
        EXPECT_EQ(SimCalcStat(3, 2, 3, 23), MissingValue) << name;
        EXPECT_EQ(SimCalcStat(3, 2, 3, 28), MissingValue) << name;
    }
}

// Intended: divided by the square of a constant 0.
TEST_F(Descriptive, RunningKurtosisIsInfiniteForWhatVariesAndNaNForWhatDoesNot) {
    load(series("skewed"));
    EXPECT_EQ(SimCalcStat(7, 2, 3, 22), kInfinity);
    EXPECT_EQ(SimCalcStat(7, 2, 3, 23), kInfinity);
    load(series("constant"));
    EXPECT_TRUE(std::isnan(SimCalcStat(6, 2, 3, 22)));
    EXPECT_TRUE(std::isnan(SimCalcStat(6, 2, 3, 23)));
}

// Intended: the standard error's numerator is a constant 0.
TEST_F(Descriptive, StandardErrorOfTheMeanIsZeroAndItsBoundsAreTheMean) {
    load(series("skewed"));
    EXPECT_EQ(SimCalcStat(7, 2, 3, 24), 0.0);
    EXPECT_EQ(SimCalcStat(7, 2, 3, 25), series("skewed").moments[0]);
    EXPECT_EQ(SimCalcStat(7, 2, 3, 26), series("skewed").moments[0]);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 24), 0.0);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 25), 0.0);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 26), 0.0);
}

TEST_F(Descriptive, VariationOfAMeanNearZeroIsZero) {
    load(series("four"));
    EXPECT_EQ(SimCalcStat(4, 2, 3, 18), 0.0);
    run.fields.FieldFlags(2, momentcolumn::mean) = 1e-12;
    EXPECT_EQ(SimCalcStat(4, 2, 3, 18), 0.0);
    run.fields.FieldFlags(2, momentcolumn::mean) = 1.0000001e-12;
    EXPECT_GT(SimCalcStat(4, 2, 3, 18), 1e12);
}

TEST_F(Descriptive, BowleySkewnessOfCoincidingQuartilesIsZero) {
    load(series("constant"));
    EXPECT_EQ(SimCalcStat(6, 2, 3, 21), 0.0);
}

TEST_F(Descriptive, ANegativeSumOfSquaresHasNoDeviation) {
    load(series("skewed"));
    run.fields.FieldFlags(2, momentcolumn::m2) = -1.0;
    EXPECT_EQ(SimCalcStat(7, 2, 3, 16), MissingValue);
    EXPECT_EQ(SimCalcStat(7, 2, 3, 17), MissingValue);
}

TEST_F(Descriptive, TheoreticalStatisticsAreAskedOfTheLaw) {
    clear();
    auto& table = run.fields.FieldTable;
    table(2, fieldcolumn::kind) = 1;
    table(2, fieldcolumn::law) = law::beta4;  // alpha 2, beta 3 on [1, 6]: mean 3, variance 25 * 6 / (25 * 6)
    const double parameters[] = {2, 3, 1, 6};
    for (int k = 0; k < 4; ++k) {
        table(2, fieldcolumn::param1 + k) = parameters[k];
    }
    EXPECT_EQ(SimCalcStat(1, 2, 3, 51), 3.0);
    EXPECT_NEAR(SimCalcStat(1, 2, 3, 52), 1.0, 1e-14);
    EXPECT_NEAR(SimCalcStat(1, 2, 3, 53), 1.0, 1e-14);
    table(2, fieldcolumn::law) = law::normal;
    EXPECT_EQ(SimCalcStat(1, 2, 3, 51), 2.0);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 52), 9.0);
    EXPECT_EQ(SimCalcStat(1, 2, 3, 53), 3.0);
}

TEST_F(Descriptive, OnlyDistributionsHaveTheoreticalStatistics) {
    clear();
    for (const double kind : {0.0, 2.0, 3.0, 4.0, 1.0000001, kNaN}) {
        run.fields.FieldTable(2, fieldcolumn::kind) = kind;
        EXPECT_EQ(SimCalcStat(1, 2, 3, 51), MissingValue) << kind;
    }
    run.fields.FieldTable(2, fieldcolumn::kind) = 1;
    EXPECT_EQ(SimCalcStat(1, 2, 3, 54), MissingValue);
}

TEST_F(Descriptive, CapabilityIndicesWithBothOneAndNoLimit) {
    load(series("skewed"));
    for (const auto& one : capabilityCases) {
        setLimits(one.LSL, one.USL, one.target);
        ASSERT_EQ(one.indices.size(), 23U);
        for (int index = 1; index <= 23; ++index) {
            expectValue(SimCalcStat(7, 2, 3, 80 + index), one.indices[static_cast<std::size_t>(index - 1)],
                        one.name + ", index " + std::to_string(index));
        }
    }
}

TEST_F(Descriptive, TheConfidenceLevelChangesNoCapabilityIndex) {
    load(series("skewed"));
    setLimits(-4.0, 14.0, 5.0);
    const double index = SimCalcStat(7, 2, 3, 84);
    run.capability.iSpcConf = 0.5;
    EXPECT_EQ(SimCalcStat(7, 2, 3, 84), index);
}

TEST_F(Descriptive, AFieldWithoutLimitsHasNoCapability) {
    load(series("skewed"));
    setLimits(-4.0, 14.0, 5.0);
    EXPECT_EQ(SimCalcStat(7, 2, 3, 104), MissingValue);
    for (const double row : {0.0, 0.9, -3.0, kNaN}) {
        run.fields.FieldTable(2, fieldcolumn::capability) = row;
        EXPECT_EQ(SimCalcStat(7, 2, 3, 81), MissingValue) << row;
    }
    run.fields.FieldTable(2, fieldcolumn::capability) = 2.9;  // cut to row 2
    EXPECT_NEAR(SimCalcStat(7, 2, 3, 81), 18.0 / (6 * SimCalcStat(7, 2, 3, 17)), 1e-15);
    run.fields.FieldTable(2, fieldcolumn::capability) = 1;
    run.capability.SpcTable(1, 2) = 2.0;
    run.capability.SpcTable(1, 3) = 11.0;
    EXPECT_NEAR(SimCalcStat(7, 2, 3, 81), 9.0 / (6 * SimCalcStat(7, 2, 3, 17)), 1e-15);
}

TEST_F(Descriptive, AConstantFieldHasNoCapability) {
    load(series("constant"));
    setLimits(-4.0, 14.0, 5.0);
    for (int statistic = 81; statistic <= 103; ++statistic) {
        EXPECT_EQ(SimCalcStat(6, 2, 3, statistic), MissingValue) << statistic;
    }
}

// A field that does not exist reads as the tables' scratch values, -1 throughout.
TEST_F(Descriptive, AFieldOutsideTheTablesReadsTheScratchValue) {
    load(series("skewed"));
    for (const int field : {0, -1, 4, lowestInt, highestInt}) {
        EXPECT_EQ(SimCalcStat(7, field, 3, 1), 7.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 13), -1.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 4), -1.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 14), 1.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 10), -1.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 6), 7.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 29), 0.0);
        EXPECT_EQ(SimCalcStat(7, field, 3, 31), MissingValue);
        EXPECT_EQ(SimCalcStat(7, field, 3, 51), MissingValue);
        EXPECT_EQ(SimCalcStat(7, field, 3, 81), MissingValue);
    }
}

TEST_F(Descriptive, ObservationsBeyondTheStoreReadTheScratchValue) {
    load(series("ramp"));  // the store's rows 11 and 12 are 0, every row beyond reads -1
    EXPECT_EQ(SimCalcStat(13, 2, 3, 6), 1.0);
    EXPECT_EQ(SimCalcStat(15, 2, 3, 6), 3.0);
    EXPECT_EQ(SimCalcStat(15, 2, 3, 10), 3.0);
    EXPECT_EQ(SimCalcStat(20, 2, 3, 9), -1.0);
    EXPECT_NEAR(SimCalcStat(14, 2, 3, 29), 45.0 / 14, 1e-14);  // two values of -1
}

TEST_F(Descriptive, AnyNumberOfObservationsIsAnsweredInTheRoomOfTheStore) {
    load(series("ramp"));
    EXPECT_EQ(SimCalcStat(highestInt, 2, 3, 10), -1.0);
    EXPECT_EQ(SimCalcStat(highestInt, 2, 3, 6), highestInt - 12.0);
    EXPECT_EQ(SimCalcStat(highestInt, highestInt, 3, 6), highestInt);
    EXPECT_EQ(SimCalcStat(highestInt, 2, 3, 33), MissingValue);
    EXPECT_EQ(SimCalcStat(highestInt, 2, 3, 1), highestInt);
    setLimits(-4.0, 14.0, 5.0);
    EXPECT_GT(SimCalcStat(highestInt, 2, 3, 82), 0.0);
}

TEST_F(Descriptive, WithoutARunEveryArgumentIsAnswered) {
    run = RunState{};
    for (const int nObs : {lowestInt, -1, 0, 1, 2, highestInt}) {
        for (const int field : {lowestInt, 0, 1, highestInt}) {
            for (int statistic = -2; statistic <= 110; ++statistic) {
                SimCalcStat(nObs, field, highestInt, statistic);
            }
        }
    }
    EXPECT_EQ(SimCalcStat(5, 1, 1, 10), -1.0);
}

TEST_F(Descriptive, ANaNAmongTheValuesCountsBehindEveryNumber) {
    load(series("ramp"));
    run.sampling.SampleStore(3, 2) = kNaN;
    EXPECT_EQ(SimCalcStat(10, 2, 3, 10), 6.5);
    EXPECT_EQ(SimCalcStat(10, 2, 3, 6), 1.0);
    EXPECT_EQ(SimCalcStat(10, 2, 3, 7), 1.0);
}

/// The quantile of the first n values of field 2, found anew.
double quantileAnew(int n, double p) {
    return V_QuantileM(std::as_const(run.sampling.SampleStore).column(2), n, nullptr, p);
}

TEST_F(Descriptive, QuantilesThatAreAskedForAtEveryIterationAreThoseFoundAnew) {
    clear(3000);
    std::mt19937 generator(7);
    for (int n = 1; n <= 3000; ++n) {
        // Few distinct values, an infinity and a NaN now and then.
        const auto drawn = static_cast<int>(generator() % 400);
        run.sampling.SampleStore(n, 2) = drawn == 1 ? kNaN : drawn == 2 ? kInfinity : drawn * 0.37;
        EXPECT_EQ(SimCalcStat(n, 2, 3, 9), quantileAnew(n, 0.25));
        if (n % 3 == 0) {
            EXPECT_EQ(SimCalcStat(n, 2, 3, 10), quantileAnew(n, 0.5));
            EXPECT_EQ(SimCalcStat(n, 2, 3, 11), quantileAnew(n, 0.75));
        }
    }
}

TEST_F(Descriptive, QuantilesFollowValuesThatAreReplaced) {
    clear(500);
    std::mt19937 generator(11);
    const auto draw = [&] { return static_cast<double>(generator() % 97); };
    for (int n = 1; n <= 500; ++n) {
        run.sampling.SampleStore(n, 2) = draw();
        if (n % 5 == 0) {
            run.sampling.SampleStore(n - 3, 2) = n % 25 == 0 ? kNaN : draw();
        }
        if (n % 100 == 0) {  // all of them
            std::generate_n(run.sampling.SampleStore.column(2), n, draw);
        }
        EXPECT_EQ(SimCalcStat(n, 2, 3, 10), quantileAnew(n, 0.5)) << n;
    }
    for (const int n : {500, 10, 499, 64, 3, 500}) {
        EXPECT_EQ(SimCalcStat(n, 2, 3, 10), quantileAnew(n, 0.5)) << n;
    }
}

TEST_F(Descriptive, QuantilesOfManyFieldsAreAllFoundAnewOrKept) {
    clear(70, 60);
    for (int n = 1; n <= 70; ++n) {
        for (int field = 1; field <= 60; ++field) {
            run.sampling.SampleStore(n, field) = (n * 31 + field * 17) % 53;
            EXPECT_EQ(SimCalcStat(n, field, 3, 10),
                      V_QuantileM(run.sampling.SampleStore.column(field), n, nullptr, 0.5));
        }
    }
    EXPECT_LE(run.sampling.ordered.size(), 40U);
}

}  // namespace
}  // namespace quorva
