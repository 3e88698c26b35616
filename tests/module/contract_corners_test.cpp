// Unusual but legal uses: laws beyond the table, passes repeated, empty settings, plans that meet every kind of field.
#include <algorithm>
#include <limits>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

using Row = std::vector<double>;
using Texts = std::vector<std::u16string>;

class CornerContract : public ContractModel {
protected:
    static Row stored(int field, int nSim) {
        Row values(static_cast<std::size_t>(nSim));
        QUORVA_EXPORT(Cpp_GetSimRes)(field, nSim, values.data());
        return values;
    }
    void twoFields() {
        uniform({sheet, 0, 0}, "a");
        result({sheet, 1, 0}, "b", [this] { return value(0); });
    }
    /// Intervals of `count` fields, field i from i to i + 1.
    static matrix<double> unitIntervals(int count) {
        matrix<double> intervals(count, 5);
        for (int i = 1; i <= count; ++i) {
            intervals(i, 1) = intervals(i, 4) = i;
            intervals(i, 2) = i + 0.5;
            intervals(i, 3) = intervals(i, 5) = i + 1;
        }
        return intervals;
    }
    static int plan(matrix<double>& intervals, int points, double alpha = 0.05, int method = 0) {
        int cases = -1;
        FrontEndStrings labels(static_cast<std::size_t>(std::max(points, 1)));
        QUORVA_EXPORT(Cpp_PrepareTor)
        (0, method, alpha, points, intervals.rows(), &cases, intervals.data(), labels.data());
        return cases;
    }
};

TEST_F(CornerContract, ALawAboveSixtyDrawsADiscreteUniformThatOnlyAListStores) {
    cell({sheet, 0, 0}, [] { return QUORVA_EXPORT(QUORVA_SimDist)("a", 62, 3, 5, 0, 0, 4, 0, 0, 0, 1); });
    result({sheet, 1, 0}, "b", [] { return 0.0; });
    prepare();
    ASSERT_EQ(start(3), 0);
    ASSERT_EQ(step(), 0);
    std::vector<double> seen;
    for (int k = 0; k < 60; ++k) {
        seen.push_back(evaluate(0));
    }
    std::sort(seen.begin(), seen.end());
    seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
    EXPECT_EQ(seen, (Row{3, 4, 5})) << "every evaluation draws: intended";
    EXPECT_EQ(stored(1, 3), Row(3, 0.0));
}

TEST_F(CornerContract, ParametersThatDefineNoLawDrawNaNWithoutAnError) {
    cell({sheet, 0, 0}, [] { return QUORVA_EXPORT(QUORVA_SimNormal)("a", 0, -1, 1, -1, 1, 0, 0, 1); });
    cell({sheet, 1, 0}, [] { return QUORVA_EXPORT(QUORVA_SimDist)("c", 34, 0, 0, 0, 0, 0, 0, 0, 0, 1); });
    result({sheet, 2, 0}, "b", [] { return 0.0; });
    prepare();
    ASSERT_EQ(start(2), 0);
    run(2);
    EXPECT_TRUE(std::isnan(value(0)));
    EXPECT_TRUE(std::isnan(value(1)));
    EXPECT_TRUE(std::isnan(stored(1, 2)[1]));
}

TEST_F(CornerContract, BeginningAgainStartsFromTheFirstIteration) {
    uniform({sheet, 0, 0}, "b");
    result({sheet, 1, 0}, "a", [this] { return 1 + value(0); });
    prepare();
    ASSERT_EQ(start(3), 0);
    run(3);
    ASSERT_EQ(start(2), 0);
    EXPECT_EQ(status(), 3);
    EXPECT_EQ(fields, 2);
    EXPECT_EQ(stored(1, 2), Row(2, 0.0));
    ASSERT_EQ(next(), 0);
    evaluate(0);
    EXPECT_EQ(evaluate(1), 1 + value(0));
    EXPECT_EQ(stored(1, 2), (Row{value(1), 0}));
}

TEST_F(CornerContract, SetUpTwiceWithoutADescriptionHasNothingToSimulate) {
    twoFields();
    init();
    recalculate();
    EXPECT_EQ(init2(), 0);
    EXPECT_EQ(init2(), -3);
    EXPECT_EQ(status(), 0);
}

TEST_F(CornerContract, NoIterationsAndNegativeStrataAreHarmless) {
    twoFields();
    for (const int nSim : {0, -1}) {
        prepare();
        if (start(nSim, -5) == 0) {
            step();
            step();
        }
        end(0.1, 0);
        EXPECT_EQ(status(), 0) << nSim;
    }
    prepare();
    ASSERT_EQ(start(2, -5), 0) << "plain random sampling";
    run(2);
}

TEST_F(CornerContract, CorrelationsWithoutLabelsChangeNothing) {
    twoFields();
    init();
    recalculate();
    Labels none({});
    double unused = 0;
    EXPECT_EQ(QUORVA_EXPORT(Cpp_SimInit2)(hostTrue, 0, &unused, none.get(), hostTrue, 0, 0.95, &unused, &unused,
                                          &unused, none.get()),
              0);
    recalculate();
    ASSERT_EQ(start(3), 0);
    run(3);
    EXPECT_NE(stored(1, 3)[0], 0.0);
}

TEST_F(CornerContract, LabelsMayStartAtAnyBoundAndLackEntries) {
    twoFields();
    uniform({sheet, 2, 0}, "c");
    init();
    recalculate();
    HostStringArray* labels = SafeArrayCreateVector(hostStringVariant, 1, 2);
    void* data = nullptr;
    SafeArrayAccessData(labels, &data);
    static_cast<HostString*>(data)[0] = SysAllocString(u"c");
    static_cast<HostString*>(data)[1] = SysAllocString(u"a");
    SafeArrayUnaccessData(labels);
    std::vector<double> full{1, 1, 1, 1};
    EXPECT_EQ(
        QUORVA_EXPORT(Cpp_SimInit2)(hostTrue, 2, full.data(), &labels, 0, 0, 0.95, nullptr, nullptr, nullptr, nullptr),
        0);
    recalculate();
    ASSERT_EQ(start(3), 0);
    ASSERT_EQ(step(), 0);
    EXPECT_NEAR(value(0), value(2), 1e-12);
    std::vector<double> three{1, 0, 0, 0, 1, 0, 0, 0, 1};
    init();
    recalculate();
    EXPECT_EQ(
        QUORVA_EXPORT(Cpp_SimInit2)(hostTrue, 3, three.data(), &labels, 0, 0, 0.95, nullptr, nullptr, nullptr, nullptr),
        0);
    recalculate();
    EXPECT_EQ(start(3), -1) << "an entry that is absent names nothing";
    SafeArrayDestroy(labels);
}

TEST_F(CornerContract, StatisticsOfAWorkbookReadTheirOwnSheet) {
    for (const char* where : {"[Book]1", "[Book]2"}) {
        const double shown = where[6] == '1' ? 10 : 20;
        const std::string name = std::string("r") + where[6];
        result({where, 5, 5}, name, [shown] { return shown; });
        statistic({where, 6, 5}, "s" + name, {where, 5, 5}, 13);
        statistic({where, 4, 5}, "early" + name, {where, 5, 5}, 10);
    }
    normal({"[Book]1", 0, 0}, "in");
    std::rotate(cells.begin(), cells.begin() + 2, cells.begin() + 3);
    std::rotate(cells.begin() + 3, cells.begin() + 5, cells.begin() + 6);
    prepare(true);
    ASSERT_EQ(start(3), 0);
    run(3);
    const Summary summary = end(0.1, 3);
    EXPECT_EQ(summary.names, (Texts{u"earlyr1", u"earlyr2", u"in", u"r1", u"r2", u"sr1", u"sr2"}));
    EXPECT_EQ(column(summary.intervals, 5)[5], 10.0);
    EXPECT_EQ(column(summary.intervals, 5)[6], 20.0);
    EXPECT_EQ(stored(1, 3), (Row{0, 10, 10})) << "filled in one row later";
    EXPECT_EQ(stored(2, 3), (Row{0, 20, 20}));
}

TEST_F(CornerContract, TheFirstCellOfALargerReferenceCounts) {
    uniform({sheet, 0, 0}, "a");
    seriesResult({sheet, 3, 2}, "b", {7, 9});
    cell({sheet, 5, 0}, [] {
        XLOPER reference{};
        reference.type = hosttype::localReference;
        reference.value.localReference = {1, {3, 9, 2, 6}};
        return QUORVA_EXPORT(QUORVA_SimStatMaximum)("c", &reference, 1);
    });
    prepare();
    ASSERT_EQ(start(2), 0);
    run(2);
    EXPECT_EQ(stored(3, 2), (Row{7, 9}));
}

TEST_F(CornerContract, StatisticFieldsTakeTheirTurnInAPlanAndResultsDoNot) {
    // A statistic has no points, yet its position lasts as many recalculations as any other. Intended.
    uniform({sheet, 0, 0}, "a");
    statistic({sheet, 1, 0}, "b", {sheet, 3, 0}, 13);
    uniform({sheet, 2, 0}, "c");
    result({sheet, 3, 0}, "z", [this] { return 10 * value(0) + value(2); });
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    end(0.1, 1);
    matrix<double> intervals = unitIntervals(4);
    EXPECT_EQ(plan(intervals, 2), 2);
    Row a, c;
    for (int k = 0; k < 8; ++k) {
        recalculate();
        a.push_back(value(0));
        c.push_back(value(2));
        EXPECT_EQ(value(1), 0.0) << "a statistic shows nothing";
    }
    EXPECT_EQ(a, (Row{1, 2, 1.5, 1.5, 1.5, 1.5, 1, 2}));
    EXPECT_EQ(c, (Row{3.5, 3.5, 3.5, 3.5, 3, 4, 3.5, 3.5}));
}

TEST_F(CornerContract, APlanStartsAtTheFirstFieldWhateverItsKind) {
    result({sheet, 1, 0}, "a", [this] { return value(1); });
    uniform({sheet, 0, 0}, "b");
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    end(0.1, 1);
    matrix<double> intervals = unitIntervals(2);
    plan(intervals, 2);
    Row shown;
    for (int k = 0; k < 6; ++k) {
        shown.push_back(evaluate(1));
    }
    EXPECT_EQ(shown, (Row{2.5, 2.5, 2, 3, 2, 3}));
}

TEST_F(CornerContract, APlanWithoutAnyPointsEnds) {
    twoFields();
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    end(0.1, 1);
    matrix<double> intervals = unitIntervals(2);
    intervals(1, 3) = intervals(2, 3) = MissingValue;
    plan(intervals, 2);
    for (int k = 0; k < 5; ++k) {
        recalculate();
    }
    EXPECT_EQ(status(), 4);
    plan(intervals, 1, 1e300, 1);
    plan(intervals, 3, 1e300, 0);
    plan(intervals, 3, std::numeric_limits<double>::infinity(), 1);
    plan(intervals, 0);
    recalculate();
}

TEST_F(CornerContract, ASpiderLooksUpItsClampMarksByTheNumberOfInputs) {
    // Column inputs + field of the point table, which holds marks only when every field is an input. Intended.
    uniform({sheet, 0, 0}, "a");
    uniform({sheet, 1, 0}, "b");
    result({sheet, 2, 0}, "c", [this] { return value(0) + value(1); });
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    end(0.1, 1);
    matrix<double> intervals = unitIntervals(3);
    for (int j = 1; j <= 5; ++j) {
        intervals(3, j) = 1.0;  // every point of the result is 1
    }
    const int cases = plan(intervals, 3);
    ASSERT_EQ(cases, 3);
    for (int k = 0; k < 6; ++k) {
        recalculate();
    }
    matrix<double> table(3, 2);
    std::vector<int> inputs(2), results_(3);
    FrontEndStrings names(2);
    QUORVA_EXPORT(Cpp_GetTornado)(cases, 2, table.data(), inputs.data(), results_.data(), names.data());
    EXPECT_EQ(column(table, 1), (Row{3.5, 4, 4.5}));
    matrix<double> bars(2, 4), spider(3, 2);
    QUORVA_EXPORT(Cpp_GetTornadoItem)(cases, 2, 3, table.data(), inputs.data(), bars.data(), spider.data());
    EXPECT_EQ(column(spider, 1), Row(3, MissingValue));
    EXPECT_EQ(column(spider, 2), (Row{3.5, 4, 4.5}));
    EXPECT_EQ(row(bars, 1), (Row{2, 3.5, 4.5, 1}));
    EXPECT_EQ(row(bars, 2), (Row{1, MissingValue, MissingValue, 0}));

    inputs[0] = 0;
    QUORVA_EXPORT(Cpp_GetTornadoItem)(cases, 2, 3, table.data(), inputs.data(), bars.data(), spider.data());
    EXPECT_EQ(column(spider, 1), (Row{3.5, 4, 4.5})) << "an entry of 0 is never replaced";
}

TEST_F(CornerContract, TheEndOfARunLeavesTheOtherStatusesAlone) {
    twoFields();
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    init();
    end(0.1, 1);
    EXPECT_EQ(status(), 1);
}

TEST_F(CornerContract, ACellWithoutACallerIsNotCounted) {
    host().override = nullptr;
    host().caller.reset();
    twoFields();
    int seed = 1, used = 0;
    QUORVA_EXPORT(Cpp_SimInit)(0, &seed, hostTrue, &used);
    QUORVA_EXPORT(QUORVA_SimUniform)("a", 2, 4, 0, 0, 0, 0, 0, 1);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimRes)("b", 8, 0, 0, 1), 8.0);
    EXPECT_EQ(init2(), -3) << "nothing was registered";
    EXPECT_EQ(host().outstanding(), 0U);
    EXPECT_EQ(host().foreignFrees, 0);
}

}  // namespace
