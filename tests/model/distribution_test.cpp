#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>

#include "model_test.h"
#include "numerics/law_table.h"
#include "numerics/laws.h"
#include "quorva/catalogue.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

class Distribution : public ModelTest {
protected:
    double values[3] = {1, 2, 10};
    std::uint16_t rows = 3;
    std::uint16_t columns = 1;

    std::size_t listed(const Address& address, short defaultType = 0, double defaultValue = 0) {
        return cell(address, [=, this] {
            return QUORVA_SimEmpiricUniform("list", &rows, &columns, values, defaultType, defaultValue, 1);
        });
    }
    void addResult() {
        result({90, 9}, "~", [] { return 0.0; });
    }
};

TEST_F(Distribution, OutsideARunTheHostIsNotTouched) {
    fakeHost.requests.clear();
    EXPECT_EQ(QUORVA_SimNormal("x", 5, 2, 0, 0, 0, 0, 0, 1), 5.0);
    EXPECT_EQ(QUORVA_SimNormal("x", 5, 2, 0, 0, 0, 1, 7, 1), 7.0);
    EXPECT_EQ(QUORVA_SimDist("x", 15, 5, 2, 0, 0, MissingValue, 0, 0, 0, 1), 5.0);
    EXPECT_EQ(QUORVA_SimDist("x", 15, 5, 2, 0, 0, 3, 0, 0, 0, 1), 3.0);
    EXPECT_TRUE(std::isnan(QUORVA_SimDist("x", 15, 5, 2, 0, 0, std::nan(""), 0, 0, 0, 1))) << "NaN is a default value";
    EXPECT_EQ(QUORVA_SimRes("x", 5, 99, 0, 0), 5.0);
    EXPECT_EQ(QUORVA_SimSVar("x", 1, 4, 1, 1, 0, 0, 1), 2.5);
    XLOPER reference = ownSheetReference(0, 0);
    EXPECT_EQ(QUORVA_SimStat("x", &reference, 13, 1), 0.0);
    EXPECT_NEAR(evaluate({0, 0}, [this] { return QUORVA_SimEmpiricUniform("l", &rows, &columns, values, 0, 0, 1); }),
                13.0 / 3, 1e-15);
    EXPECT_TRUE(fakeHost.requests.empty());
}

TEST_F(Distribution, TheHostIsAskedForCallerNameAndIdentifierAndGetsItsResultsBack) {
    init();
    fakeHost.requests.clear();
    normal({3, 4}, "x");
    evaluate(0);
    EXPECT_EQ(fakeHost.requests, (std::vector<int>{hostfunction::caller, hostfunction::sheetName, hostfunction::sheetId,
                                                   hostfunction::free, hostfunction::free, hostfunction::free}));
}

TEST_F(Distribution, ACallFromNoCellTakesNoPart) {
    normal({0, 0}, "x", 5);
    addResult();
    prepare();
    begin(5);
    iterate();
    const double drawn = value(0);
    next();
    fakeHost.calledFromCell = false;
    evaluate({0, 0}, [this] { return QUORVA_SimEmpiricUniform("list", &rows, &columns, values, 0, 0, 1); });
    EXPECT_EQ(stored(1, u"x"), drawn);
    EXPECT_EQ(stored(2, u"x"), 0.0) << "not taken for the field evaluated last";
    EXPECT_EQ(stored(2, u"~"), 0.0);
    for (const RunStatus status :
         {RunStatus::Initialised, RunStatus::Prepared, RunStatus::Running, RunStatus::Analysing}) {
        run.status.become(status);
        EXPECT_EQ(evaluate(0), 5.0);
        EXPECT_EQ(evaluate(1), 0.0);
    }
    EXPECT_EQ(run.fields.registered, 2);
    EXPECT_EQ(run.fields.nFields, 2);
    EXPECT_EQ(run.error.flag, hostFalse);
}

TEST_F(Distribution, DefaultTypeIsTrueForAnythingButZero) {
    for (const short type : std::initializer_list<short>{-1, 1, 2, 256}) {
        EXPECT_EQ(QUORVA_SimGumbel("x", 0, 0, 0, type, 7, 1), 7.0);
    }
}

TEST_F(Distribution, TheDescriptionFillsTheRow) {
    normal({1, 1, "[B]Other"}, "first");
    cell({7, 5}, [] { return QUORVA_SimDist("second", 30, 1, 2, 3, 4, MissingValue, 2, 0.05, 0.95, 6); });
    addResult();
    prepare(true);
    const matrix<double>& t = run.fields.FieldTable;
    EXPECT_EQ(t(2, fieldcolumn::kind), 1);
    EXPECT_EQ(t(2, fieldcolumn::law), 30);
    EXPECT_EQ(t(2, fieldcolumn::row), 7);
    EXPECT_EQ(t(2, fieldcolumn::column), 5);
    EXPECT_EQ(t(2, fieldcolumn::visible), 6);
    EXPECT_EQ(t(2, 6), 0);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(t(2, fieldcolumn::param1 + i), i + 1);
    }
    EXPECT_EQ(t(2, fieldcolumn::defaultValue), TheoStat(30, 1, 1, 2, 3, 4));
    EXPECT_EQ(t(2, fieldcolumn::lowerProbability), 0.05);
    EXPECT_EQ(t(2, fieldcolumn::upperProbability), 0.95);
    EXPECT_EQ(t(2, fieldcolumn::stream), 2);
    EXPECT_EQ(t(2, fieldcolumn::sheetSlot), 2);
    EXPECT_EQ(t(1, fieldcolumn::sheetSlot), 1);
    EXPECT_EQ(run.fields.FieldNames(2, 1), u"second");
    EXPECT_EQ(run.fields.FieldNames(1, 2), u"[B]Other");
    EXPECT_EQ(run.fields.FieldNames(2, 2), u"[Book]Sheet1");
}

TEST_F(Distribution, BoundsByValueBecomeProbabilities) {
    cell({0, 0}, [] { return QUORVA_SimNormal("x", 5, 2, 1, 4, 8, 0, 0, 1); });
    cell({1, 0}, [] { return QUORVA_SimNormal("y", 5, 2, 3, 4, 8, 0, 0, 1); });
    cell({2, 0}, [] { return QUORVA_SimNormal("z", 5, 2, 2, 5, 95, 0, 0, 1); });
    addResult();
    prepare();
    const matrix<double>& t = run.fields.FieldTable;
    EXPECT_EQ(t(1, fieldcolumn::lowerProbability), CDFFunction(14, 4, 5, 2, 0, 0));
    EXPECT_EQ(t(1, fieldcolumn::upperProbability), CDFFunction(14, 8, 5, 2, 0, 0));
    EXPECT_EQ(t(2, fieldcolumn::lowerProbability), 0.0) << "any other mode";
    EXPECT_EQ(t(2, fieldcolumn::upperProbability), 1.0);
    EXPECT_EQ(t(3, fieldcolumn::lowerProbability), 5.0) << "percentages are taken as they are";
}

TEST_F(Distribution, BoundsByValueOfALawWithoutADistributionFunctionAreNoBounds) {
    cell({0, 0}, [] { return QUORVA_SimDist("x", 61, 1, 6, 0, 0, 0, 1, 3, 4, 1); });
    addResult();
    prepare();
    EXPECT_TRUE(std::isnan(run.fields.FieldTable(1, fieldcolumn::lowerProbability)));
    EXPECT_TRUE(std::isnan(run.fields.FieldTable(1, fieldcolumn::upperProbability)));
    begin(2);
    EXPECT_EQ(iterate(), 0);
    EXPECT_GE(value(0), 1.0);
    EXPECT_EQ(next(), 0) << "nothing is rejected";
}

TEST_F(Distribution, ADrawThatGaveUpIsRecordedAndTheCellThenShowsItsDefault) {
    uniform({0, 0}, "x", 2, 0.25, 0.25);
    addResult();
    prepare();
    begin(2);
    ASSERT_EQ(next(), 0);
    const double given = evaluate(0);
    EXPECT_EQ(run.error.code, -14);
    EXPECT_NE(given, 0.25);
    EXPECT_EQ(stored(1, u"x"), given);
    EXPECT_EQ(run.fields.FieldTable(numberOf(u"x"), fieldcolumn::done), 1.0);
    EXPECT_EQ(evaluate(0), 0.5);
    EXPECT_EQ(next(), -1);
}

TEST_F(Distribution, TruncationByProbabilityKeepsBetweenTheQuantiles) {
    cell({0, 0}, [] { return QUORVA_SimNormal("x", 5, 2, 2, 0.05, 0.95, 0, 0, 1); });
    cell({1, 0}, [] { return QUORVA_SimNormal("y", 5, 2, 1, 4, 6, 0, 0, 1); });
    addResult();
    prepare();
    begin(400, 100);
    for (int k = 0; k < 400; ++k) {
        ASSERT_EQ(iterate(), 0);
        EXPECT_GE(value(0), InvCDFFunction(14, 0.05, 5, 2, 0, 0));
        EXPECT_LE(value(0), InvCDFFunction(14, 0.95, 5, 2, 0, 0));
        EXPECT_GE(value(1), 4.0 - 1e-12);
        EXPECT_LE(value(1), 6.0 + 1e-12);
    }
}

TEST_F(Distribution, ACellEvaluatedTwiceInAnIterationKeepsItsValueAndCountsOnce) {
    normal({0, 0}, "x");
    addResult();
    prepare();
    begin(5);
    run.fields.FieldFlags(numberOf(u"x"), momentcolumn::collect) = 1.0;
    iterate();
    const double first = value(0);
    EXPECT_EQ(evaluate(0), first);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"x"), momentcolumn::count), 1.0);
    iterate();
    EXPECT_NE(value(0), first);
    EXPECT_EQ(stored(1, u"x"), first);
    EXPECT_EQ(stored(2, u"x"), value(0));
}

TEST_F(Distribution, TheFieldEvaluatedLastAndTheValueRecordedLastAreKnown) {
    normal({0, 0}, "y", 100, 0.001);
    normal({0, 1}, "x", 200, 0.001);
    addResult();
    init();
    for (const std::size_t i : {0, 1, 2}) {
        evaluate(i);
        EXPECT_EQ(run.fields.current, static_cast<int>(i) + 1) << "counted";
    }
    init2();
    for (const std::size_t i : {2, 0, 1}) {
        evaluate(i);
        EXPECT_EQ(run.fields.current, run.fields.nFields) << "numbered";
    }
    begin(5);
    next();
    evaluate(0);
    EXPECT_EQ(run.fields.current, numberOf(u"y"));
    EXPECT_EQ(run.sampling.lastValue, value(0));
    evaluate(1);
    EXPECT_EQ(run.fields.current, numberOf(u"x"));
    EXPECT_EQ(run.sampling.lastValue, value(1));
    evaluate(0);
    EXPECT_EQ(run.fields.current, numberOf(u"y"));
    EXPECT_EQ(run.sampling.lastValue, value(1)) << "the first cell was recorded before";
    evaluate(2);
    EXPECT_EQ(run.sampling.lastValue, value(1)) << "a result is no value of an input";
}

TEST_F(Distribution, AFormulaThatFillsABlockBelongsToItsFirstCell) {
    fakeHost.blockRows = 3;
    fakeHost.blockColumns = 2;
    normal({7, 5}, "x");
    addResult();
    prepare();
    EXPECT_EQ(run.fields.FieldTable(1, fieldcolumn::row), 7.0);
    EXPECT_EQ(run.fields.FieldTable(1, fieldcolumn::column), 5.0);
    EXPECT_EQ(getFieldInfo(5, 7, 0), 1U);
    EXPECT_EQ(getFieldInfo(6, 9, 0), 0U);
}

TEST_F(Distribution, CellsInOddOrdersFindTheirOwnFields) {
    normal({0, 0}, "x", 100, 0.001);
    normal({0, 1}, "y", 200, 0.001);
    addResult();
    prepare();
    begin(4);
    for (int k = 1; k <= 4; ++k) {
        next();
        for (const std::size_t i : {std::size_t{2}, std::size_t{1}, std::size_t{0}, std::size_t{1}}) {
            evaluate(i);
        }
        EXPECT_NEAR(stored(k, u"x"), 100, 1);
        EXPECT_NEAR(stored(k, u"y"), 200, 1);
    }
}

TEST_F(Distribution, AListDrawsOnlyItsValues) {
    listed({0, 0});
    addResult();
    prepare();
    EXPECT_NEAR(value(0), 13.0 / 3, 1e-15);
    EXPECT_NEAR(run.fields.FieldTable(1, fieldcolumn::defaultValue), 13.0 / 3, 1e-15);
    EXPECT_EQ(run.fields.FieldTable(1, fieldcolumn::law), empiricLaw);
    begin(200);
    run.fields.FieldFlags(numberOf(u"list"), momentcolumn::collect) = 1.0;
    std::set<double> seen;
    for (int k = 1; k <= 200; ++k) {
        iterate();
        seen.insert(value(0));
        EXPECT_EQ(stored(k, u"list"), value(0));
        EXPECT_EQ(evaluate(0), value(0));
    }
    EXPECT_EQ(seen, (std::set<double>{1, 2, 10}));
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"list"), momentcolumn::count), 200.0);
}

TEST_F(Distribution, AListsShapeAndDefault) {
    rows = 0;  // counts as one value
    listed({0, 0});
    EXPECT_EQ(evaluate(0), 1.0);
    rows = 3;
    listed({0, 1}, 1, 42);
    EXPECT_EQ(evaluate(1), 42.0);
    listed({0, 2}, 1, MissingValue);
    EXPECT_EQ(evaluate(2), 0.0) << "no default: the law of lists has the theoretical mean 0";
    columns = 0;
    EXPECT_EQ(evaluate(0), 0.0);
}

TEST_F(Distribution, AListIsReadRowByRowForAsManyValuesAsItHasRows) {
    rows = 2;
    columns = 2;
    double block[] = {1, 3, 50, 70};
    const auto formula = [&] { return QUORVA_SimEmpiricUniform("list", &rows, &columns, block, 0, 0, 1); };
    EXPECT_EQ(formula(), 2.0);
    rows = 1;
    EXPECT_EQ(formula(), 1.0) << "a list in one row is one value";
}

TEST_F(Distribution, AListWithoutAMeanShowsTheMeanOfItsLaw) {
    std::fill(std::begin(values), std::end(values), MissingValue);
    EXPECT_EQ(QUORVA_SimEmpiricUniform("list", &rows, &columns, values, 0, 7, 1), 0.0);
}

TEST_F(Distribution, ACellThatRunsOutOfMemoryShowsItsDefaultAndReportsIt) {
    init();
    fakeHost.exhausted = true;
    EXPECT_EQ(QUORVA_SimNormal("x", 5, 2, 0, 0, 0, 0, 99, 1), 5.0);
    EXPECT_EQ(reportedError().code, -15);
    EXPECT_EQ(QUORVA_SimNormal("x", 5, 2, 0, 0, 0, 1, 99, 1), 99.0);
    EXPECT_NEAR(QUORVA_SimEmpiricUniform("l", &rows, &columns, values, 0, 99, 1), 13.0 / 3, 1e-15);
    EXPECT_EQ(QUORVA_SimSVar("v", 1, 4, 1, 1, 0, 99, 1), 2.5);
    EXPECT_EQ(QUORVA_SimRes("r", 3, 99, 0, 1), 3.0);
    XLOPER reference = ownSheetReference(0, 0);
    EXPECT_EQ(QUORVA_SimStat("s", &reference, 13, 1), 0.0);
    EXPECT_EQ(next(), -1);
}

TEST_F(Distribution, LawsUpTo60AreRecordedThoughNoneHasSuchANumber) {
    cell({0, 0}, [] { return QUORVA_SimDist("x", 60, 1, 6, 0, 0, 0, 0, 0, 0, 1); });
    addResult();
    prepare();
    begin(3);
    iterate();
    EXPECT_TRUE(std::isnan(stored(1, u"x")));
    EXPECT_EQ(run.fields.FieldTable(numberOf(u"x"), fieldcolumn::done), 1.0);
}

TEST_F(Distribution, ALawAbove60IsNotStoredByItself) {
    cell({0, 0}, [] { return QUORVA_SimDist("bare", 61, 1, 6, 0, 0, 0, 0, 0, 0, 1); });
    addResult();
    prepare();
    begin(3);
    iterate();
    EXPECT_GE(value(0), 1.0);
    EXPECT_LE(value(0), 6.0);
    EXPECT_EQ(stored(1, u"bare"), 0.0);
    EXPECT_FALSE(run.fields.FieldTable(numberOf(u"bare"), fieldcolumn::done) == 1.0);
}

TEST_F(Distribution, ErrorsOfEachPassNameTheCell) {
    normal({3, 4, "[B]One"}, "x", 5);
    result({4, 4, "[B]One"}, "r", [] { return 1.5; });
    init(true);
    recalculate();
    evaluate({3, 4, "[B]One"}, [] { return QUORVA_SimNormalStd("again", 0, 0, 0, 0, 0, 1); });
    EXPECT_EQ(reportedError().code, -10);
    EXPECT_EQ(reportedError().line, 3);
    EXPECT_EQ(reportedError().column, 4);
    EXPECT_EQ(reportedError().texts[0], u"[B]One");

    reset();
    prepare(true);
    evaluate({8, 9, "[B]Two"}, [] { return QUORVA_SimNormalStd("unlisted", 0, 0, 0, 0, 0, 1); });
    EXPECT_EQ(reportedError().code, -16) << "not replaced by the missing number of the cell";
    EXPECT_EQ(reportedError().line, 8);
    EXPECT_EQ(reportedError().texts[0], u"[B]Two");
    EXPECT_EQ(run.fields.nFields, 2);

    reset();
    prepare(true);
    begin(5);
    iterate();
    EXPECT_EQ(evaluate({6, 6, "[B]One"}, [] { return QUORVA_SimDist("new", 15, 8, 1, 0, 0, 3, 0, 0, 0, 1); }), 3.0);
    EXPECT_EQ(reportedError().code, -11);
    EXPECT_EQ(reportedError().line, 6);
    EXPECT_EQ(evaluate(0), 5.0) << "cells show their defaults while an error stands";
    EXPECT_EQ(evaluate(1), 1.5);
    EXPECT_EQ(next(), -1);
}

TEST_F(Distribution, CellsThatWereNotDescribedAreErrorsInEveryLaterPass) {
    normal({3, 4, "[B]One"}, "x", 5);
    result({4, 4, "[B]One"}, "r", [] { return 1.5; });
    const auto stranger = [] { return QUORVA_SimNormal("new", 8, 1, 0, 0, 0, 0, 0, 1); };
    for (const RunStatus status : {RunStatus::Running, RunStatus::Analysing}) {
        for (const bool sheetListed : {true, false}) {
            prepare(true);
            begin(5);
            run.status.become(status);
            EXPECT_EQ(evaluate({6, 7, sheetListed ? "[B]One" : "[B]Two"}, stranger), 8.0);
            EXPECT_EQ(reportedError().code, sheetListed ? -11 : -16) << static_cast<int>(status);
            EXPECT_EQ(reportedError().line, 6);
            EXPECT_EQ(reportedError().column, 7);
            EXPECT_EQ(reportedError().texts[0], sheetListed ? u"[B]One" : u"[B]Two");
        }
    }
}

TEST_F(Distribution, TheTenThousandthFieldIsTheLast) {
    init();
    for (int i = 0; i < 10'000; ++i) {
        evaluate({i, 0}, [] { return QUORVA_SimNormalStd("d", 0, 0, 0, 0, 0, 1); });
    }
    evaluate({0, 3}, [] { return QUORVA_SimRes("r", 0, 0, 0, 1); });
    EXPECT_EQ(run.error.flag, hostFalse);
    init2();
    for (int i = 0; i < 10'000; ++i) {
        evaluate({i, 0}, [] { return QUORVA_SimNormalStd("d", 0, 0, 0, 0, 0, 1); });
    }
    EXPECT_EQ(run.error.flag, hostFalse);
    evaluate({0, 3}, [] { return QUORVA_SimRes("r", 0, 0, 0, 1); });
    EXPECT_EQ(reportedError().code, -13);
    EXPECT_EQ(reportedError().column, 3);
    EXPECT_EQ(run.fields.nFields, 10'000);
}

TEST_F(Distribution, RowsBeyondTheGridAreRefusedWhereverTheFieldIs) {
    init();
    evaluate({65'000, 1}, [] { return QUORVA_SimNormalStd("far", 0, 0, 0, 0, 0, 1); });
    EXPECT_EQ(reportedError().code, -15);
    EXPECT_EQ(reportedError().line, 65'000);
}

TEST_F(Distribution, NoNameIsAnEmptyName) {
    cell({0, 0}, [] { return QUORVA_SimNormalStd(nullptr, 0, 0, 0, 0, 0, 1); });
    addResult();
    prepare();
    EXPECT_EQ(run.fields.FieldNames(1, 1), u"");
}

}  // namespace
