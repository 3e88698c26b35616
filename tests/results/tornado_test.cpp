#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "filled_run.h"
#include "host_strings.h"
#include "quorva/front_end.h"
#include "results/tornado.h"

namespace quorva {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr int highestInt = std::numeric_limits<int>::max();
constexpr int lowestInt = std::numeric_limits<int>::min();

struct Limits {
    double lower, median, upper, minimum, maximum;
};

class Tornado : public testing::Test {
protected:
    void TearDown() override { run = RunState{}; }

    /// Prepares a pass for fields with these limits; returns the labels.
    static std::vector<std::u16string> prepare(int iDefCase, int iIntMeth, double ialpha, int points,
                                               const std::vector<Limits>& limits) {
        const int p = static_cast<int>(limits.size());
        std::vector<double> IntT;
        for (const auto member :
             {&Limits::lower, &Limits::median, &Limits::upper, &Limits::minimum, &Limits::maximum}) {
            for (const auto& one : limits) {
                IntT.push_back(one.*member);
            }
        }
        HostStrings labels(points);
        cases = -1;
        Cpp_PrepareTor(iDefCase, iIntMeth, ialpha, points, p, &cases, IntT.data(), labels.data());
        return labels.texts();
    }

    static std::vector<double> points(int field) {
        const auto& table = run.tornado.points;
        return {table.column(field), table.column(field) + table.rows()};
    }
    static std::vector<double> marks(int field) { return points(run.tornado.intervals.rows() + field); }

    static void scenario(int field, double lower, double upper, double mode, double step) {
        auto& table = run.fields.FieldTable;
        table(field, fieldcolumn::lowerBound) = lower;
        table(field, fieldcolumn::upperBound) = upper;
        table(field, fieldcolumn::stepMode) = mode;
        table(field, fieldcolumn::step) = step;
    }

    /// A spider and a tornado as a front end receives them.
    struct Item {
        matrix<double> tornado;
        matrix<double> spider;
    };
    static Item item(int nCases, int nFields, int iField, matrix<double> TorT, std::vector<int> FieldInd) {
        Item received{matrix<double>(nFields, 4, 99.0), matrix<double>(run.tornado.inbrPts, nFields, 99.0)};
        Cpp_GetTornadoItem(nCases, nFields, iField, TorT.data(), FieldInd.data(), received.tornado.data(),
                           received.spider.data());
        return received;
    }
    static std::vector<double> column(const matrix<double>& table, int k) {
        return {table.column(k), table.column(k) + table.rows()};
    }

    static int cases;
};
int Tornado::cases = -1;

TEST_F(Tornado, PointsAcrossTheIntervalRunEvenlyInValue) {
    fillRun({1, 3}, 2);
    const auto labels = prepare(0, 0, 0.05, 5, {{10, 12, 20, 0, 40}, {1, 2, 3, 0, 4}});
    EXPECT_THAT(points(1), ElementsAre(10, 12.5, 15, 17.5, 20));
    EXPECT_THAT(points(2), ElementsAre(1, 1.5, 2, 2.5, 3));
    EXPECT_THAT(marks(1), Each(0.0));
    // Intended: the labels name positions in probability.
    EXPECT_THAT(labels, ElementsAre(u"5.00%", u"27.50%", u"50.00%", u"72.50%", u"95.00%"));
}

TEST_F(Tornado, PointsAcrossTheIntervalAreNotClamped) {
    fillRun({1, 3}, 2);
    prepare(0, 0, 0.05, 2, {{10, 12, 20, 11, 19}, {1, 2, 3, 0, 4}});
    EXPECT_THAT(points(1), ElementsAre(10, 20));
    EXPECT_THAT(marks(1), Each(0.0));
}

TEST_F(Tornado, TwoAndElevenPoints) {
    fillRun({1, 3}, 2);
    EXPECT_THAT(prepare(0, 0, 0.05, 2, {{10, 12, 20, 0, 40}, {1, 2, 3, 0, 4}}), ElementsAre(u"5.00%", u"95.00%"));
    EXPECT_THAT(points(1), ElementsAre(10, 20));
    EXPECT_EQ(cases, 2);
    EXPECT_THAT(prepare(1, 1, 0.5, 11, {{10, 12, 20, 0, 4000}, {1, 2, 3, 0, 4}}),
                ElementsAre(u"-50.00%", u"-40.00%", u"-30.00%", u"-20.00%", u"-10.00%", u"0.00%", u"10.00%", u"20.00%",
                            u"30.00%", u"40.00%", u"50.00%"));
    const double base = run.fields.FieldTable(1, fieldcolumn::defaultValue);
    ASSERT_EQ(points(1).size(), 11U);
    for (int j = 0; j < 11; ++j) {
        EXPECT_NEAR(points(1)[static_cast<std::size_t>(j)], base * (0.5 + 0.1 * j), 1e-10);
    }
    EXPECT_EQ(cases, 11);
}

TEST_F(Tornado, ABandAroundTheMedianIsClampedToWhatWasSimulated) {
    fillRun({1, 3}, 2);
    const auto labels = prepare(0, 1, 0.1, 5, {{97, 100, 180, 95, 200}, {1, 2, 3, 0, 4}});
    ASSERT_EQ(points(1).size(), 5U);
    EXPECT_EQ(points(1)[0], 95.0);
    EXPECT_NEAR(points(1)[1], 95, 1e-12);
    EXPECT_NEAR(points(1)[2], 100, 1e-12);
    EXPECT_NEAR(points(1)[3], 105, 1e-12);
    EXPECT_NEAR(points(1)[4], 110, 1e-12);
    EXPECT_THAT(marks(1), ElementsAre(1, 0, 0, 0, 0));
    EXPECT_THAT(labels, ElementsAre(u"-10.00%", u"-5.00%", u"0.00%", u"5.00%", u"10.00%"));
}

TEST_F(Tornado, ABandAroundTheDefaultIsClampedAtBothEnds) {
    fillRun({1, 3}, 2);
    run.fields.FieldTable(1, fieldcolumn::defaultValue) = 64;
    prepare(1, 2, 0.5, 5, {{0, 100, 0, 40, 90}, {1, 2, 3, 0, 4}});
    EXPECT_THAT(points(1), ElementsAre(40, 48, 64, 80, 90));
    EXPECT_THAT(marks(1), ElementsAre(1, 0, 0, 0, 1));
    EXPECT_THAT(marks(2), Each(1.0));  // the result's default lies far outside its range
}

TEST_F(Tornado, ScenarioVariablesMoveOverTheirBoundsOrByTheirStep) {
    fillRun({1, 2, 2, 3}, 2);
    scenario(2, 0, 8, 1, 3);
    scenario(3, 0, 8, 2, 3);
    const std::vector<Limits> limits(4, {10, 12, 20, 0, 40});
    for (const int method : {0, 1}) {
        prepare(0, method, 0.05, 5, limits);
        EXPECT_THAT(points(2), ElementsAre(0, 2, 4, 6, 8));
        EXPECT_THAT(points(3), ElementsAre(0, 3, 6, 9, 12));  // past the upper bound, not clamped
        EXPECT_THAT(marks(2), Each(0.0));
        EXPECT_THAT(marks(3), Each(0.0));
    }
}

TEST_F(Tornado, ScenarioVariablesStartAtTheirLowerBound) {
    fillRun({1, 2, 2, 2, 3}, 2);
    scenario(2, -3, 9, 1, 7);
    scenario(3, -3, 9, 2, 7);
    scenario(4, 9, -3, 1, 7);
    prepare(1, 0, 0.05, 4, std::vector<Limits>(5, {10, 12, 20, 0, 40}));
    EXPECT_THAT(points(2), ElementsAre(-3, 1, 5, 9));
    EXPECT_THAT(points(3), ElementsAre(-3, 4, 11, 18));
    EXPECT_THAT(points(4), ElementsAre(9, 5, 1, -3));
}

TEST_F(Tornado, OnlyAStepModeOfOneRunsOverTheBounds) {
    fillRun({1, 2, 2, 2, 3}, 2);
    scenario(2, 0, 8, 0, 3);
    scenario(3, 0, 8, -1, 3);
    scenario(4, 0, 8, 1.5, 3);
    prepare(0, 0, 0.05, 3, std::vector<Limits>(5, {10, 12, 20, 0, 40}));
    for (const int field : {2, 3, 4}) {
        EXPECT_THAT(points(field), ElementsAre(0, 3, 6)) << field;
    }
}

TEST_F(Tornado, APointOnTheEdgeOfWhatWasSimulatedIsNotClamped) {
    fillRun({1, 3}, 2);
    prepare(0, 1, 0.5, 3, {{0, 64, 0, 32, 96}, {0, -64, 0, -96, -32}});
    EXPECT_THAT(points(1), ElementsAre(32, 64, 96));
    EXPECT_THAT(marks(1), Each(0.0));
    EXPECT_THAT(points(2), ElementsAre(-32, -64, -96));
    EXPECT_THAT(marks(2), Each(0.0));
}

TEST_F(Tornado, LabelsBeyondThePointsStay) {
    fillRun({1, 3}, 2);
    matrix<double> intervals(2, 5);
    matrix<std::u16string> labels(4, 1, u"as passed");
    PrepareTor(0, 0, 0.25, 3, 2, nullptr, &intervals, &labels);
    EXPECT_EQ(labels(3, 1), u"75.00%");
    EXPECT_EQ(labels(4, 1), u"as passed");
}

TEST_F(Tornado, StatisticsAndFieldsWithoutAnUpperBoundHaveNoPoints) {
    fillRun({1, 4, 2, 3}, 2);
    scenario(3, 0, 8, 1, 3);
    prepare(0, 0, 0.05, 3,
            {{10, 12, MissingValue, 0, 40}, {1, 2, 3, 0, 4}, {1, 2, MissingValue, 0, 4}, {1, 2, 3, 0, 4}});
    EXPECT_THAT(points(1), Each(0.0));
    EXPECT_THAT(points(2), Each(0.0));
    EXPECT_THAT(points(3), Each(0.0));
    EXPECT_THAT(points(4), ElementsAre(1, 2, 3));
}

TEST_F(Tornado, PreparingStartsAnEmptyPass) {
    fillRun({1, 3, 3, 3, 2}, 2);
    run.tornado.point = run.tornado.position = run.tornado.nextResult = run.tornado.clockField = 7;
    run.status.become(RunStatus::Idle);
    prepare(3, 4, 0.25, 5, std::vector<Limits>(5, {10, 12, 20, 0, 40}));
    EXPECT_EQ(cases, 15);
    EXPECT_TRUE(isTrue(run.status.analysing));
    const auto& plan = run.tornado;
    EXPECT_EQ(plan.iDefCase, 3);
    EXPECT_EQ(plan.iIntMeth, 4);
    EXPECT_EQ(plan.ialpha, 0.25);
    EXPECT_EQ(plan.inbrPts, 5);
    EXPECT_EQ(plan.point, 1);
    EXPECT_EQ(plan.position, 1);
    EXPECT_EQ(plan.nextResult, 1);
    EXPECT_EQ(plan.clockField, 0);
    EXPECT_EQ(plan.intervals.rows(), 5);
    EXPECT_EQ(plan.intervals(3, 3), 20.0);
    EXPECT_EQ(plan.points.rows(), 5);
    EXPECT_EQ(plan.points.columns(), 10);
    EXPECT_EQ(plan.store.rows(), 15);
    EXPECT_EQ(plan.store.columns(), 5);
    EXPECT_EQ(plan.resultOrder.rows(), 5);
    EXPECT_EQ(plan.resultOrder(2, 1), 0);
}

TEST_F(Tornado, TheIntervalTableIsACopy) {
    fillRun({1, 3}, 2);
    double IntT[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    Cpp_PrepareTor(0, 0, 0.05, 2, 2, nullptr, IntT, nullptr);
    IntT[0] = 77;
    EXPECT_EQ(run.tornado.intervals(1, 1), 1.0);
}

TEST_F(Tornado, WithoutFieldsOnlyTheLabelsAreMade) {
    fillRun({1, 3}, 2);
    HostStrings labels(2);
    Cpp_PrepareTor(0, 0, 0.25, 2, 0, &cases, nullptr, labels.data());
    EXPECT_THAT(labels.texts(), ElementsAre(u"25.00%", u"75.00%"));
    EXPECT_EQ(cases, 2);
    EXPECT_TRUE(isTrue(run.status.analysing));
}

TEST_F(Tornado, ASinglePointIsNoNumber) {
    fillRun({1, 3}, 2);
    EXPECT_THAT(prepare(0, 0, 0.05, 1, {{10, 12, 20, 0, 40}, {1, 2, 3, 0, 4}}), ElementsAre(u"nan%"));
    EXPECT_TRUE(std::isnan(points(1)[0]));
}

TEST_F(Tornado, LabelsEndWithTheRoomThatTheyHave) {
    fillRun({1, 3}, 2);
    const auto labels = prepare(0, 1, 1e300, 3, {{10, 12, 20, 0, 40}, {1, 2, 3, 0, 4}});
    EXPECT_EQ(labels[0].size(), 19U);
    EXPECT_EQ(labels[1], u"0.00%");
}

TEST_F(Tornado, ALabelThatIsAlreadyThereKeepsItsString) {
    fillRun({1, 3}, 2);
    HostStrings labels(2, u"5.00%");
    const auto first = labels.at(0);
    double IntT[10] = {};
    Cpp_PrepareTor(0, 0, 0.05, 2, 2, nullptr, IntT, labels.data());
    EXPECT_EQ(labels.at(0), first);
    EXPECT_EQ(labels.text(1), u"95.00%");
}

TEST_F(Tornado, ImpossibleSizesChangeNothing) {
    fillRun({1, 3}, 2);
    for (const int count : {highestInt, lowestInt, -1, 0}) {
        Cpp_PrepareTor(0, 0, 0.05, count, highestInt, nullptr, nullptr, nullptr);
        Cpp_PrepareTor(0, 0, 0.05, highestInt, count, nullptr, nullptr, nullptr);
        Cpp_GetTornado(count, 0, nullptr, nullptr, nullptr, nullptr);
        Cpp_GetTornadoItem(count, 0, count, nullptr, nullptr, nullptr, nullptr);
    }
    EXPECT_LE(run.tornado.store.size(), static_cast<std::size_t>(limit::sampleCells));
}

class TornadoTable : public Tornado {
protected:
    /// Fields of kinds 1, 3, 2, 1 with five points each and one result.
    void SetUp() override {
        fillRun({1, 3, 2, 1}, 2);
        scenario(3, 0, 8, 1, 3);
        prepare(0, 1, 0.1, 5, {{97, 100, 180, 95, 200}, {1, 2, 3, 0, 400}, {1, 2, 3, 0, 4}, {97, 100, 180, 80, 107}});
        for (int i = 1; i <= 4; ++i) {
            for (int c = 1; c <= 5; ++c) {
                run.tornado.store(c, i) = 10 * i + c;
            }
        }
        run.tornado.resultOrder(2, 1) = 1;
    }

    struct Received {
        explicit Received(int nCases, int nFields)
            : TorT(nCases, nFields, 4242.0),
              FieldInd(static_cast<std::size_t>(nFields), 4242),
              ResInd(static_cast<std::size_t>(run.fields.nFields), 4242),
              FieldName(nFields, u"as passed") {
            Cpp_GetTornado(nCases, nFields, TorT.data(), FieldInd.data(), ResInd.data(), FieldName.data());
        }
        matrix<double> TorT;
        std::vector<int> FieldInd, ResInd;
        HostStrings FieldName;
    };
};

TEST_F(TornadoTable, HasAColumnForEveryInputAndMissingWhereClamped) {
    const Received received(5, 3);
    EXPECT_THAT(received.FieldInd, ElementsAre(1, 3, 4));
    EXPECT_THAT(received.FieldName.texts(), ElementsAre(u"a", u"c", u"d"));
    EXPECT_THAT(received.ResInd, ElementsAre(0, 1, 0, 0));
    EXPECT_THAT(column(received.TorT, 1), ElementsAre(MissingValue, 12, 13, 14, 15));
    EXPECT_THAT(column(received.TorT, 2), ElementsAre(31, 32, 33, 34, 35));
    EXPECT_THAT(column(received.TorT, 3), ElementsAre(41, 42, 43, 44, MissingValue));
}

TEST_F(TornadoTable, FetchingItEndsThePass) {
    EXPECT_TRUE(isTrue(run.status.analysing));
    const Received received(5, 3);
    EXPECT_FALSE(run.status.any());
}

TEST_F(TornadoTable, MoreColumnsThanInputsKeepWhatTheCallerPassed) {
    const Received received(5, 4);
    EXPECT_THAT(received.FieldInd, ElementsAre(1, 3, 4, 4242));
    EXPECT_THAT(column(received.TorT, 4), Each(4242.0));
    EXPECT_EQ(received.FieldName.text(3), u"as passed");
}

TEST_F(TornadoTable, FewerColumnsThanInputsDropTheRest) {
    const Received received(5, 1);
    EXPECT_THAT(received.FieldInd, ElementsAre(1));
    EXPECT_EQ(received.TorT(5, 1), 15.0);
}

TEST_F(TornadoTable, OnlyTheCasesAskedForAreFilled) {
    matrix<double> TorT(5, 3, 4242.0);
    matrix<int> FieldInd(3, 1), ResInd(4, 1);
    matrix<std::u16string> FieldName(3, 1);
    GetTornado(2, 3, &TorT, &FieldInd, &ResInd, &FieldName);
    EXPECT_THAT(column(TorT, 2), ElementsAre(31, 32, 4242, 4242, 4242));
}

TEST_F(TornadoTable, CasesBeyondTheStoreReadMinusOne) {
    const Received received(7, 3);
    EXPECT_THAT(column(received.TorT, 2), ElementsAre(31, 32, 33, 34, 35, -1, -1));
    // Intended: the marks repeat every five cases.
    EXPECT_THAT(column(received.TorT, 1), ElementsAre(MissingValue, 12, 13, 14, 15, MissingValue, -1));
}

// Intended: the cases are matched with the marks as if every input had five points.
TEST_F(Tornado, MarksAreMatchedWithCasesModuloFiveWhateverTheNumberOfPoints) {
    fillRun({1, 3, 3}, 2);
    run.fields.FieldTable(1, fieldcolumn::defaultValue) = 100;
    prepare(1, 1, 0.1, 3, {{97, 100, 180, 95, 200}, {1, 2, 3, 0, 4}, {1, 2, 3, 0, 4}});
    EXPECT_THAT(marks(1), ElementsAre(1, 0, 0));
    for (int c = 1; c <= 6; ++c) {
        run.tornado.store(c, 1) = c;
    }
    matrix<double> table(6, 1);
    int inputs[1], results[3];
    Cpp_GetTornado(6, 1, table.data(), inputs, results, nullptr);
    EXPECT_THAT(column(table, 1), ElementsAre(MissingValue, 2, 3, 4, 5, MissingValue));  // not case 4
}

TEST_F(Tornado, ItemCutsOutOneResultAndRanksItsInputs) {
    fillRun({1, 1, 3, 3, 1}, 2);
    prepare(0, 0, 0.05, 3, std::vector<Limits>(5, {10, 12, 20, 0, 40}));
    run.tornado.resultOrder(3, 1) = 2;
    run.tornado.resultOrder(4, 1) = 1;
    matrix<double> table(6, 3);
    const double second[3][3] = {{1, 2, 3}, {5, -5, 0}, {7, 9, 8}};  // inputs 1, 2, 5 for field 3
    for (int k = 1; k <= 3; ++k) {
        for (int j = 1; j <= 3; ++j) {
            table(j, k) = 1000 + k;
            table(3 + j, k) = second[k - 1][j - 1];
        }
    }
    const auto received = item(6, 3, 3, table, {1, 2, 5});
    EXPECT_THAT(column(received.spider, 1), ElementsAre(1, 2, 3));
    EXPECT_THAT(column(received.spider, 2), ElementsAre(5, -5, 0));
    EXPECT_THAT(column(received.spider, 3), ElementsAre(7, 9, 8));
    EXPECT_THAT(column(received.tornado, 1), ElementsAre(2, 1, 5));  // equal swings keep field-number order
    EXPECT_THAT(column(received.tornado, 2), ElementsAre(-5, 1, 7));
    EXPECT_THAT(column(received.tornado, 3), ElementsAre(5, 3, 9));
    EXPECT_THAT(column(received.tornado, 4), ElementsAre(10, 2, 2));
    const auto other = item(6, 3, 4, table, {1, 2, 5});
    EXPECT_THAT(column(other.spider, 2), Each(1002.0));
    EXPECT_THAT(column(other.tornado, 4), Each(0.0));
}

TEST_F(Tornado, ClampedPointsAreMissingAndWidenNoSwing) {
    fillRun({1, 3}, 2);
    run.fields.FieldTable(1, fieldcolumn::defaultValue) = 100;
    // Two columns for two fields of the interval table, so that the marks are met.
    prepare(1, 1, 0.1, 5, {{97, 100, 180, 95, 200}, {1, 2, 3, 0, 4}});
    run.tornado.resultOrder(2, 1) = 1;
    matrix<double> table(5, 2);
    for (int j = 1; j <= 5; ++j) {
        table(j, 1) = j == 1 ? -1e6 : j;
    }
    const auto received = item(5, 2, 2, table, {1, 0});
    EXPECT_THAT(column(received.spider, 1), ElementsAre(MissingValue, 2, 3, 4, 5));
    EXPECT_EQ(received.tornado(1, 1), 1.0);
    EXPECT_EQ(received.tornado(1, 2), 2.0);
    EXPECT_EQ(received.tornado(1, 4), 3.0);
}

TEST_F(Tornado, AnInputThatIsClampedThroughoutHasNoSwing) {
    fillRun({1, 3}, 2);
    run.fields.FieldTable(1, fieldcolumn::defaultValue) = 100;
    prepare(1, 1, 0.1, 5, {{97, 100, 180, 300, 400}, {1, 2, 3, 0, 4}});
    run.tornado.resultOrder(2, 1) = 1;
    const auto received = item(5, 2, 2, matrix<double>(5, 2, 7.0), {1, 0});
    EXPECT_THAT(column(received.spider, 1), Each(MissingValue));
    EXPECT_EQ(received.tornado(1, 2), MissingValue);
    EXPECT_EQ(received.tornado(1, 3), MissingValue);
    EXPECT_EQ(received.tornado(1, 4), 0.0);
}

// Intended: the marks are looked up nFields columns on, whatever the number of fields in the interval table.
TEST_F(Tornado, ItemLooksForMarksBehindTheColumnsOfTheCallersTable) {
    fillRun({1, 3, 1}, 2);
    run.fields.FieldTable(3, fieldcolumn::defaultValue) = 2;
    // Field 1 has a point of exactly 1.0 where the mark of an input of two is looked for.
    prepare(0, 0, 0.05, 3, {{0, 1, 2, 0, 40}, {1, 2, 3, 0, 4}, {0, 1, 2, 0, 4}});
    run.tornado.resultOrder(2, 1) = 1;
    matrix<double> table(3, 2, 5.0);
    const auto received = item(3, 2, 2, table, {1, 3});
    // Column 2 + 1 holds field 3's points 0, 1, 2.
    EXPECT_THAT(column(received.spider, 1), ElementsAre(5, MissingValue, 5));
    EXPECT_THAT(column(received.spider, 2), Each(5.0));
}

TEST_F(Tornado, AnInputWithoutFieldNumberIsNeverMissing) {
    fillRun({1, 3}, 2);
    // Column nFields + 0 holds a point of exactly 1.0.
    prepare(0, 0, 0.05, 3, {{0, 1, 2, 0, 40}, {0, 1, 2, 0, 4}});
    run.tornado.resultOrder(2, 1) = 1;
    const auto received = item(3, 1, 2, matrix<double>(3, 1, 5.0), {0});
    EXPECT_THAT(column(received.spider, 1), Each(5.0));
    EXPECT_EQ(received.tornado(1, 1), 0.0);
}

TEST_F(Tornado, AResultThatWasNeverEvaluatedReadsMinusOne) {
    fillRun({1, 3}, 2);
    prepare(0, 0, 0.05, 3, {{0, 2, 4, 0, 40}, {10, 11, 12, 0, 14}});
    for (const int field : {1, 2, 0, -1, 3, highestInt, lowestInt}) {
        const auto received = item(3, 1, field, matrix<double>(3, 1, 5.0), {1});
        EXPECT_THAT(column(received.spider, 1), Each(-1.0)) << field;
    }
}

TEST_F(Tornado, FieldNumbersOfAnySizeAreLookedUpWithoutHarm) {
    fillRun({1, 3}, 2);
    prepare(0, 0, 0.05, 3, {{0, 2, 4, 0, 40}, {0, 1, 2, 0, 4}});
    run.tornado.resultOrder(2, 1) = 1;
    for (const int number : {highestInt, lowestInt, -1}) {
        const auto received = item(3, 1, 2, matrix<double>(3, 1, 5.0), {number});
        EXPECT_THAT(column(received.spider, 1), Each(5.0));
        EXPECT_EQ(received.tornado(1, 1), number);
    }
}

TEST_F(Tornado, TheSameItemCanBeAskedForAgain) {
    fillRun({1, 3}, 2);
    prepare(0, 0, 0.05, 3, {{0, 2, 4, 0, 40}, {0, 1, 2, 0, 4}});
    run.tornado.resultOrder(2, 1) = 1;
    matrix<double> table(3, 1);
    table(2, 1) = 6;
    EXPECT_EQ(column(item(3, 1, 2, table, {1}).tornado, 4), column(item(3, 1, 2, table, {1}).tornado, 4));
}

}  // namespace
}  // namespace quorva
