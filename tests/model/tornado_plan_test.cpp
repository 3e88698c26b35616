#include "model_test.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

// Two distributions, a scenario variable and a result; the plan is set by hand: three points for each input.
class TornadoPlan : public ModelTest {
protected:
    void startPlan(int iDefCase) {
        cell({0, 0}, [] { return QUORVA_SimNormal("a", 5, 2, 0, 0, 0, 0, 0, 1); });
        cell({1, 0}, [] { return QUORVA_SimSVar("b", 0, 8, 1, 1, 0, 0, 1); });
        cell({2, 0}, [] { return QUORVA_SimNormal("d", 7, 2, 0, 0, 0, 0, 0, 1); });
        result({3, 0}, "c", [this] { return value(0) + 100 * value(1) + 10'000 * value(2); });
        prepare();
        begin(5);
        iterate();
        TornadoState& plan = run.tornado;
        plan.iDefCase = iDefCase;
        plan.inbrPts = points;
        plan.point = plan.position = plan.nextResult = 1;
        plan.intervals = matrix<double>(4, intervalcolumn::columns);
        plan.points = matrix<double>(points, 2 * 4);
        for (int i = 1; i <= 4; ++i) {
            plan.intervals(i, intervalcolumn::median) = i + 0.5;
            plan.intervals(i, intervalcolumn::upper) = i + 2;
            for (int point = 1; point <= points; ++point) {
                plan.points(point, i) = i == 2 ? 4 * (point - 1) : i + (point - 1);
            }
        }
        plan.store = matrix<double>(run.fields.nRes * points, run.fields.nFields);
        plan.resultOrder = matrix<int>(run.fields.nFields, 1);
        run.status.become(RunStatus::Analysing);
    }
    static constexpr int points = 3;
};

TEST_F(TornadoPlan, EachInputStepsThroughItsPointsWhileTheOthersKeepTheirMedian) {
    startPlan(0);
    // Fields by name: 1 a, 2 b (scenario), 3 c (result, passed by), 4 d. The first input evaluated, a, is the clock.
    const double expected[4][3] = {{1, 2, 3}, {0, 4, 8}, {}, {4, 5, 6}};
    for (const int input : {1, 2, 4}) {
        for (int point = 1; point <= 3; ++point) {
            recalculate();
            EXPECT_EQ(run.tornado.position, input);
            EXPECT_EQ(run.tornado.point, point);
            const double x = expected[input - 1][point - 1];
            EXPECT_EQ(value(0), input == 1 ? x : 1.5);
            EXPECT_EQ(value(1), input == 2 ? x : 2.5);
            EXPECT_EQ(value(2), input == 4 ? x : 4.5);
            EXPECT_EQ(run.tornado.store(point, input), value(3));
        }
    }
    recalculate();
    EXPECT_EQ(run.tornado.position, 1) << "around again";
    EXPECT_EQ(run.tornado.resultOrder(3, 1), 1);
    EXPECT_EQ(run.tornado.clockField, 1);
}

TEST_F(TornadoPlan, AnyOtherBaseIsTheDefaultValue) {
    for (const int iDefCase : {1, 2, -1}) {
        cells.clear();
        startPlan(iDefCase);
        recalculate();
        EXPECT_EQ(value(0), 1.0);
        EXPECT_EQ(value(1), 4.0) << iDefCase;
        EXPECT_EQ(value(2), 7.0) << iDefCase;
    }
}

TEST_F(TornadoPlan, TheFirstEvaluationOfTheClockDoesNotAdvanceAndOthersNeverDo) {
    startPlan(0);
    evaluate(3);  // a result is no clock
    EXPECT_EQ(run.tornado.clockField, 0);
    evaluate(1);  // a scenario variable can be
    EXPECT_EQ(run.tornado.clockField, 2);
    EXPECT_EQ(run.tornado.point, 1);
    evaluate(0);
    evaluate(2);
    EXPECT_EQ(run.tornado.point, 1);
    evaluate(1);
    EXPECT_EQ(run.tornado.point, 2);
}

TEST_F(TornadoPlan, FieldsWithoutAnIntervalArePassedByExceptAtTheStart) {
    startPlan(0);
    run.tornado.intervals(1, intervalcolumn::upper) = MissingValue;
    run.tornado.intervals(2, intervalcolumn::upper) = MissingValue;
    for (int k = 0; k < 3; ++k) {
        recalculate();
        EXPECT_EQ(run.tornado.position, 1) << "the starting position is not passed by";
    }
    recalculate();
    EXPECT_EQ(run.tornado.position, 4);
    for (int k = 0; k < 3; ++k) {
        recalculate();
    }
    EXPECT_EQ(run.tornado.position, 4) << "the only one left";
    EXPECT_EQ(run.tornado.point, 1);
}

TEST_F(TornadoPlan, WithNothingToMoveThePlanStays) {
    startPlan(0);
    for (int i = 1; i <= 4; ++i) {
        run.tornado.intervals(i, intervalcolumn::upper) = MissingValue;
    }
    for (int k = 0; k < 10; ++k) {
        recalculate();
    }
    EXPECT_EQ(run.tornado.position, 1);
}

TEST_F(TornadoPlan, APointOutsideTheTableIsTheTablesFallback) {
    startPlan(0);
    run.tornado.points = matrix<double>();
    recalculate();
    EXPECT_EQ(value(0), -1.0);
}

TEST_F(TornadoPlan, ResultsAreNumberedInTheOrderOfTheirFirstEvaluation) {
    result({4, 0}, "e", [] { return 77.0; });
    cell({5, 0}, [] { return QUORVA_SimRes("aa", 88, 0, 0, 1); });
    startPlan(0);
    recalculate();
    EXPECT_EQ(run.tornado.resultOrder(numberOf(u"e"), 1), 1);
    EXPECT_EQ(run.tornado.resultOrder(numberOf(u"aa"), 1), 2);
    EXPECT_EQ(run.tornado.resultOrder(numberOf(u"c"), 1), 3);
    EXPECT_EQ(run.tornado.store(1, 1), 77.0);
    EXPECT_EQ(run.tornado.store(4, 1), 88.0);
}

TEST_F(TornadoPlan, WhileAnErrorStandsTheDefaultsAreShownAndNothingMoves) {
    startPlan(0);
    recordError(-11, 0, 0, u"");
    recalculate();
    EXPECT_EQ(value(0), 5.0);
    EXPECT_EQ(value(1), 4.0);
    EXPECT_EQ(run.tornado.clockField, 0);
}

}  // namespace
