#include <cmath>

#include "model_test.h"
#include "quorva/catalogue.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

class FieldKinds : public ModelTest {
protected:
    std::size_t statistic(const Address& address, const char* name, const Address& of, int identifier) {
        return cell(address, [=] {
            XLOPER reference = ownSheetReference(of.row, of.column);
            return QUORVA_SimStat(name, &reference, identifier, 1);
        });
    }
    void startRun(int nSim) {
        prepare();
        begin(nSim);
    }
};

// Row 0 of the store does not exist: inputs write the scratch element, and all read what was last written there.
TEST_F(FieldKinds, BeforeTheFirstIterationTheSampleStoresScratchElementServes) {
    normal({0, 0}, "a");
    cell({1, 0}, [] { return QUORVA_SimSVar("b", 1, 4, 1, 1, 1, 3.7, 1); });
    result({2, 0}, "c", [] { return 8.0; });
    startRun(5);
    const double drawn = evaluate(0);
    EXPECT_EQ(run.sampling.SampleStore.scratch(), drawn);
    EXPECT_EQ(evaluate(0), drawn) << "drawn once";
    EXPECT_EQ(evaluate(2), 8.0);
    EXPECT_EQ(evaluate(2), drawn) << "a result reads the element and does not write it";
    evaluate(1);
    EXPECT_EQ(evaluate(0), 3.7);
    EXPECT_EQ(evaluate(2), 3.7);
    ASSERT_EQ(iterate(), 0);
    EXPECT_EQ(value(2), 8.0);
    EXPECT_EQ(stored(1, u"c"), 8.0);
    EXPECT_EQ(stored(1, u"a"), value(0));
}

// --- scenario variables

TEST_F(FieldKinds, AScenarioVariableShowsTheMiddleOrItsDefault) {
    EXPECT_EQ(QUORVA_SimSVar("d", 1, 4, 2, 1, 0, 0, 1), 2.0) << "rounded down when qualitative";
    EXPECT_EQ(QUORVA_SimSVar("d", 1, 4, 1, 1, 0, 0, 1), 2.5);
    EXPECT_EQ(QUORVA_SimSVar("d", -4, 1, 2, 1, 0, 0, 1), -2.0);
    EXPECT_EQ(QUORVA_SimSVar("d", 1, 4, 2, 1, 1, 3.7, 1), 3.7);
    EXPECT_EQ(QUORVA_SimSVar("d", 1, 4, 1, 1, -1, 3.7, 1), 3.7);
    EXPECT_EQ(QUORVA_SimSVar("d", 4, 1, 9, 0, 0, 0, 1), 2.5) << "nothing is refused";
}

TEST_F(FieldKinds, AScenarioVariableHoldsItsValueThroughTheRun) {
    double lower = 1;
    cell({0, 0}, [&] { return QUORVA_SimSVar("d", lower, 4, 2, 3, 0, 0, 5); });
    normal({1, 0}, "x");
    result({2, 0}, "r", [this] { return value(0); });
    statistic({3, 0}, "variance", {0, 0}, 15);
    startRun(20);
    const int d = numberOf(u"d");
    const matrix<double>& t = run.fields.FieldTable;
    EXPECT_EQ(t(d, fieldcolumn::kind), 2);
    EXPECT_EQ(t(d, fieldcolumn::lowerBound), 1);
    EXPECT_EQ(t(d, fieldcolumn::upperBound), 4);
    EXPECT_EQ(t(d, fieldcolumn::stepMode), 2);
    EXPECT_EQ(t(d, fieldcolumn::step), 3);
    EXPECT_EQ(t(d, fieldcolumn::defaultValue), 2);
    EXPECT_EQ(t(d, fieldcolumn::visible), 5);
    EXPECT_EQ(run.fields.nSVar, 1);
    for (int k = 1; k <= 20; ++k) {
        lower = k;  // a bound that changes during the run changes nothing
        ASSERT_EQ(iterate(), 0);
        EXPECT_EQ(value(0), 2.0);
        EXPECT_EQ(evaluate(0), 2.0);
        EXPECT_EQ(stored(k, u"d"), 2.0);
    }
    EXPECT_EQ(run.fields.FieldFlags(d, momentcolumn::count), 20.0);
    EXPECT_EQ(run.fields.FieldFlags(d, momentcolumn::m2), 0.0);
}

TEST_F(FieldKinds, AScenarioVariableShowsItsPlainValueWhileAnErrorStands) {
    double lower = 1;
    cell({0, 0}, [&] { return QUORVA_SimSVar("d", lower, 4, 1, 1, 0, 0, 1); });
    normal({1, 0}, "x");
    result({2, 0}, "r", [] { return 0.0; });
    startRun(3);
    ASSERT_EQ(iterate(), 0);
    EXPECT_EQ(value(0), 2.5);
    EXPECT_NE(run.sampling.lastValue, 2.5) << "the normal was drawn last";
    lower = 3;
    EXPECT_EQ(evaluate(0), 2.5);
    run.error.flag = hostTrue;
    EXPECT_EQ(evaluate(0), 3.5);
    EXPECT_EQ(stored(1, u"d"), 2.5);
}

// --- result fields

TEST_F(FieldKinds, OnlyMinusOneMarksAResultForConvergence) {
    cell({0, 0}, [] { return QUORVA_SimRes("one", 1, 0, 1, 0); });
    cell({1, 0}, [] { return QUORVA_SimRes("true", 1, 0, -1, 3); });
    normal({2, 0}, "x");
    prepare();
    EXPECT_EQ(run.fields.FieldTable(1, fieldcolumn::convergence), 0.0);
    EXPECT_EQ(run.fields.FieldTable(2, fieldcolumn::convergence), 1.0);
    EXPECT_EQ(run.fields.FieldTable(2, fieldcolumn::visible), 3.0);
    EXPECT_EQ(run.fields.FieldTable(2, fieldcolumn::kind), 3.0);
}

TEST_F(FieldKinds, TheFirstValueOfAResultInAnIterationStands) {
    double formula = 1;
    result({0, 0}, "r", [&] { return formula; });
    normal({1, 0}, "x");
    startRun(3);
    iterate();
    formula = 2;
    EXPECT_EQ(evaluate(0), 1.0);
    EXPECT_EQ(stored(1, u"r"), 1.0);
    iterate();
    EXPECT_EQ(value(0), 2.0);
    EXPECT_EQ(stored(2, u"r"), 2.0);
}

// --- statistic fields

TEST_F(FieldKinds, TheDescriptionOfAStatistic) {
    normal({0, 0}, "x");
    result({0, 1}, "r", [] { return 0.0; });
    statistic({5, 6}, "mean of x", {0, 0}, 13);
    cell({5, 7}, [] {
        XLOPER elsewhere{};
        elsewhere.type = hosttype::reference;
        return QUORVA_SimStat("elsewhere", &elsewhere, 14, 0);
    });
    prepare(true);
    const matrix<double>& t = run.fields.FieldTable;
    EXPECT_EQ(t(3, fieldcolumn::kind), 4);
    EXPECT_EQ(t(3, fieldcolumn::statistic), 13);
    EXPECT_EQ(t(3, fieldcolumn::referenceRow), 0);
    EXPECT_EQ(t(3, fieldcolumn::referenceColumn), 0);
    EXPECT_EQ(t(3, fieldcolumn::referenceSheet), 1);
    EXPECT_EQ(t(4, fieldcolumn::referenceSheet), 0) << "another sheet is not resolved";
    EXPECT_EQ(t(4, fieldcolumn::statistic), 14);
}

TEST_F(FieldKinds, ARunningMean) {
    double formula = 0;
    result({0, 0}, "a", [&] { return formula; });
    normal({1, 0}, "x");
    statistic({2, 0}, "mean", {0, 0}, 13);
    startRun(10);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"a"), momentcolumn::collect), 1.0);
    double sum = 0;
    for (int k = 1; k <= 10; ++k) {
        formula = k * k;
        sum += formula;
        ASSERT_EQ(iterate(), 0);
        EXPECT_NEAR(value(2), sum / k, 1e-12);
        EXPECT_EQ(evaluate(2), value(2));
        EXPECT_EQ(stored(k, u"mean"), value(2));
    }
}

TEST_F(FieldKinds, AStatisticOfAStatisticCountsEachIterationOnce) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [this] { return value(0); });
    statistic({0, 2}, "c mean", {0, 1}, 13);
    statistic({0, 3}, "d count", {0, 2}, 1);
    startRun(5);
    for (int k = 1; k <= 5; ++k) {
        iterate();
        evaluate(2);
        evaluate(3);
        EXPECT_EQ(value(3), k);
    }
}

TEST_F(FieldKinds, AStatisticOfAnEmptyCellIsMissing) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    statistic({0, 2}, "c", {40, 40}, 13);
    startRun(2);
    iterate();
    EXPECT_EQ(value(2), MissingValue);
}

TEST_F(FieldKinds, AStatisticWithoutACallingCellIsMissingWhileARunIsOn) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    statistic({0, 2}, "c", {0, 1}, 13);
    const auto called = [] {
        fakeHost.calledFromCell = false;
        XLOPER of = ownSheetReference(0, 1);
        const double value = QUORVA_SimStat("c", &of, 13, 1);
        fakeHost.calledFromCell = true;
        return value;
    };
    EXPECT_EQ(called(), 0.0) << "no run";
    startRun(2);
    iterate();
    EXPECT_EQ(called(), MissingValue);
    EXPECT_EQ(value(2), 1.0);
    EXPECT_EQ(reportedError().code, 0) << "and nothing is wrong with that";
    recordError(-14, 0, 0, u"");
    EXPECT_EQ(called(), 0.0);
}

TEST_F(FieldKinds, AStatisticAboveItsFieldShowsZeroAndIsFilledInLater) {
    // "a" precedes "z" by name, and its cell is evaluated first.
    statistic({0, 0}, "a", {1, 0}, 13);
    double formula = 0;
    result({1, 0}, "z", [&] { return formula; });
    normal({2, 0}, "x");
    startRun(4);
    next();
    for (int k = 1; k <= 4; ++k) {
        formula = 10 * k;
        recalculate();
        EXPECT_EQ(value(0), 0.0);
        next();
        EXPECT_EQ(stored(k % 4 + 1, u"a"), 5.0 * (k + 1)) << "one row below the iteration's, the last in row 1";
    }
}

TEST_F(FieldKinds, AReferenceBeyondTheGridIsAnError) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    statistic({0, 2}, "c", {65'001, 3}, 13);
    startRun(2);
    iterate();
    EXPECT_EQ(value(2), 0.0);
    const ReportedError error = reportedError();
    EXPECT_EQ(error.code, -15);
    EXPECT_EQ(error.line, 65'001);
    EXPECT_EQ(error.column, 3);
    EXPECT_EQ(error.texts[0], u"[Book]Sheet1");
}

TEST_F(FieldKinds, TheGridOfReferencesEndsAtRow65000AndColumn256) {
    int row = 64'999;
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    cell({0, 2}, [&] {
        XLOPER reference = ownSheetReference(row, 3);
        return QUORVA_SimStat("c", &reference, 13, 1);
    });
    startRun(2);
    iterate();
    EXPECT_EQ(value(2), MissingValue) << "an empty cell of the last row";
    EXPECT_EQ(run.error.flag, hostFalse);
    reset();
    row = 65'000;
    startRun(2);
    iterate();
    EXPECT_EQ(value(2), 0.0);
    EXPECT_EQ(reportedError().code, -15);
    reset();
    row = 5;
    startRun(2);
    run.fields.FieldTable(numberOf(u"c"), fieldcolumn::referenceColumn) = 256;
    iterate();
    EXPECT_EQ(value(2), 0.0);
    EXPECT_EQ(reportedError().code, -15);
    EXPECT_EQ(reportedError().column, 256);
}

TEST_F(FieldKinds, AStatisticAboveItsFieldIsComputedWhenTheFieldIsDoneAlready) {
    double formula = 0;
    result({1, 0}, "z", [&] { return formula; });
    statistic({0, 0}, "a", {1, 0}, 13);  // lower number, later cell
    normal({2, 0}, "x");
    startRun(4);
    ASSERT_LT(numberOf(u"a"), numberOf(u"z"));
    for (int k = 1; k <= 4; ++k) {
        formula = 10 * k;
        ASSERT_EQ(iterate(), 0);
        EXPECT_EQ(value(1), 5.0 * (k + 1));
        EXPECT_EQ(stored(k, u"a"), 5.0 * (k + 1));
    }
}

TEST_F(FieldKinds, AStatisticLooksAtNoMoreObservationsThanArePlanned) {
    double formula = 0;
    result({0, 0}, "r", [&] { return formula; });
    statistic({0, 1}, "z median", {0, 0}, 10);
    normal({1, 0}, "x");
    startRun(3);
    for (int k = 1; k <= 5; ++k) {
        formula = 10 * k;
        ASSERT_EQ(iterate(), 0);
    }
    EXPECT_EQ(value(1), 40.0) << "rows 40, 50, 30: the rows started again";
}

TEST_F(FieldKinds, AValueInPlaceOfAReferenceMeansTheFirstCell) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    cell({0, 2}, [] {
        XLOPER number{};
        number.type = hosttype::number;
        number.value.number = 3;
        return QUORVA_SimStat("c", &number, 1, 1);
    });
    startRun(2);
    iterate();
    EXPECT_EQ(value(2), 1.0) << "the count of the field in the first cell";
}

TEST_F(FieldKinds, StatisticsAreZeroOutsideTheIterations) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    statistic({0, 2}, "c", {0, 0}, 13);
    prepare();
    EXPECT_EQ(value(2), 0.0);
    begin(2);
    iterate();
    run.status.become(RunStatus::Analysing);
    EXPECT_EQ(evaluate(2), 0.0);
}

TEST_F(FieldKinds, EveryStatisticWrapperPassesItsIdentifierAndVisible) {
    normal({0, 0}, "a");
    result({0, 1}, "b", [] { return 1.0; });
    int row = 1;
#define QUORVA_ADD_STATISTIC(NAME)                  \
    cell({row++, 0}, [] {                           \
        XLOPER reference = ownSheetReference(0, 0); \
        return NAME(#NAME, &reference, 17);         \
    });
    QUORVA_STATISTIC_FUNCTIONS(QUORVA_ADD_STATISTIC)
    prepare();
    ASSERT_EQ(run.fields.nStat, 59);
    for (int i = 0; i < 59; ++i) {
        const StatisticEntry& entry = statisticTable[static_cast<std::size_t>(i)];
        EXPECT_EQ(run.fields.FieldNames(i + 3, 1), std::u16string(entry.wrapper.begin(), entry.wrapper.end()))
            << "the list of functions has the catalogue's order";
        EXPECT_EQ(run.fields.FieldTable(i + 3, fieldcolumn::statistic), entry.statistic);
        EXPECT_EQ(run.fields.FieldTable(i + 3, fieldcolumn::visible), 17);
    }
}

// --- what all kinds share

TEST_F(FieldKinds, AllKindsAreCountedAndNumberedOnOnePath) {
    cell({0, 0}, [] { return QUORVA_SimSVar("s", 0, 1, 1, 1, 0, 0, 1); });
    normal({0, 1}, "d");
    result({0, 2}, "r", [] { return 0.0; });
    statistic({0, 3}, "t", {0, 1}, 13);
    init();
    recalculate();
    for (int column = 0; column < 4; ++column) {
        EXPECT_EQ(getFieldInfo(column, 0, 0), static_cast<std::uint32_t>(column + 1));
    }
    EXPECT_EQ(run.fields.registered, 4);
    init2();
    recalculate();
    EXPECT_EQ(run.fields.nFields, 4);
    begin(3);
    EXPECT_EQ(run.fields.nFields, 4);
    EXPECT_EQ(run.fields.nDist, 1);
    EXPECT_EQ(run.fields.nSVar, 1);
    EXPECT_EQ(run.fields.nRes, 1);
    EXPECT_EQ(run.fields.nStat, 1);
    EXPECT_EQ(run.fields.FieldTable(numberOf(u"d"), fieldcolumn::stream), 1) << "counted among distributions";
}

TEST_F(FieldKinds, ATakenCellIsReportedBeforeTheLackOfNumbers) {
    normal({0, 0}, "x");
    result({0, 1}, "y", [] { return 0.0; });
    prepare();
    run.fields.nFields = 10'000;
    evaluate(0);
    EXPECT_EQ(reportedError().code, -10);
}

TEST_F(FieldKinds, EveryKindReportsASecondFieldInItsCellAndAnUnknownCell) {
    const std::vector<Formula> kinds{[] { return QUORVA_SimSVar("s", 0, 1, 1, 1, 0, 0, 1); },
                                     [] { return QUORVA_SimNormalStd("d", 0, 0, 0, 0, 0, 1); },
                                     [] { return QUORVA_SimRes("r", 0, 0, 0, 1); },
                                     [] {
                                         XLOPER reference = ownSheetReference(0, 0);
                                         return QUORVA_SimStat("t", &reference, 13, 1);
                                     }};
    for (const Formula& kind : kinds) {
        cells.clear();
        normal({0, 0}, "x");
        result({0, 1}, "y", [] { return 0.0; });
        cell({2, 2}, kind);
        prepare();
        evaluate(2);
        EXPECT_EQ(reportedError().code, -10);
        EXPECT_EQ(reportedError().line, 2);
        reset();
        prepare();
        begin(2);
        next();
        evaluate({30, 31}, kind);
        EXPECT_EQ(reportedError().code, -11);
        EXPECT_EQ(reportedError().line, 30);
        EXPECT_EQ(reportedError().column, 31);
        reset();
    }
}

TEST_F(FieldKinds, SheetIdentifiersCountIn32Bits) {
    fakeHost.sheetIds["[B]A"] = 0x1'0000'0007;
    fakeHost.sheetIds["[B]B"] = 0x2'0000'0007;
    init(true);
    evaluate({1, 1, "[B]A"}, [] { return QUORVA_SimRes("a", 0, 0, 0, 0); });
    evaluate({2, 2, "[B]B"}, [] { return QUORVA_SimRes("b", 0, 0, 0, 0); });
    EXPECT_EQ(run.sheets.inUse, 1);
    EXPECT_EQ(run.sheets.identifiers[0], 7U);
}

}  // namespace
