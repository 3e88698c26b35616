// Result matrices, tornado and spider, and sensitivity as a front end receives them.
#include <algorithm>
#include <limits>
#include <set>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

using Texts = std::vector<std::u16string>;
constexpr double infinity = std::numeric_limits<double>::infinity();

class ResultsContract : public ContractModel {
protected:
    /// Fields of kinds 1, 2, 3, 1, 4, 3 in number order; three iterations done.
    void sixKinds() {
        uniform({sheet, 0, 0}, "a", 0, 1);
        scenario({sheet, 1, 0}, "b", 0, 8);
        seriesResult({sheet, 2, 0}, "c", {10, 20, 60});
        uniform({sheet, 3, 0}, "d", 5, 6);
        statistic({sheet, 4, 0}, "e", {sheet, 2, 0}, 5);
        seriesResult({sheet, 5, 0}, "f", {-1, -2, -3});
        prepare();
        ASSERT_EQ(start(3), 0);
        run(3);
    }
    std::vector<double> stored(int field) const { return column(samples(3), field); }
};

TEST_F(ResultsContract, MatricesOfOneFieldAndOfAll) {
    sixKinds();
    std::vector<double> one(3, 7);
    const auto get = QUORVA_EXPORT(Cpp_GetSimRes);
    get(6, 3, one.data());
    EXPECT_EQ(one, (std::vector<double>{-1, -2, -3}));
    for (const int wrong : {7, 100, 0, -1, -2147483647 - 1, 2147483647}) {
        one.assign(3, 7);
        get(wrong, 3, one.data());
        EXPECT_EQ(one, std::vector<double>(3, 0)) << wrong;
    }
    std::vector<double> more(5, 7);
    get(6, 5, more.data());
    EXPECT_EQ(more, (std::vector<double>{-1, -2, -3, -1, -1})) << "rows that the store lacks read -1";
    matrix<double> wide(2, 8, 7.0);
    QUORVA_EXPORT(Cpp_GetSimMat)(2, 8, wide.data());
    EXPECT_EQ(row(wide, 2), (std::vector<double>{samples(3)(2, 1), 4, 20, samples(3)(2, 4), 20, -2, -1, -1}));
}

TEST_F(ResultsContract, MatricesByKind) {
    sixKinds();
    matrix<double> table(3, 6, 7.0);
    FrontEndStrings names(6, u"mine");
    QUORVA_EXPORT(Cpp_GetSimMatSorted)(3, 6, table.data(), names.data());
    EXPECT_EQ(names.all(), (Texts{u"a", u"d", u"c", u"f", u"e", u"mine"}));
    const std::vector<int> sorted{1, 4, 3, 6, 5};
    for (int k = 1; k <= 5; ++k) {
        EXPECT_EQ(column(table, k), stored(sorted[static_cast<std::size_t>(k - 1)]));
    }
    EXPECT_EQ(column(table, 6), std::vector<double>(3, 0.0));

    FrontEndStrings reducedNames(5, u"mine");
    QUORVA_EXPORT(Cpp_GetSimMatRed)(3, 5, table.data(), reducedNames.data());
    EXPECT_EQ(reducedNames.all(), (Texts{u"a", u"d", u"c", u"f", u"mine"}));
    EXPECT_EQ(column(table, 4), stored(6));

    FrontEndStrings scenarioNames(2, u"mine");
    matrix<double> two(3, 2, 7.0);
    QUORVA_EXPORT(Cpp_GetSimMatGrp)(3, 2, two.data(), 2, scenarioNames.data());
    EXPECT_EQ(scenarioNames.all(), (Texts{u"b", u"mine"}));
    EXPECT_EQ(column(two, 1), std::vector<double>(3, 4.0));
    for (const int kind : {0, 5, -1}) {
        FrontEndStrings untouched(2, u"mine");
        HostString kept = untouched.at(0);
        two = matrix<double>(3, 2, 7.0);
        QUORVA_EXPORT(Cpp_GetSimMatGrp)(3, 2, two.data(), kind, untouched.data());
        EXPECT_EQ(untouched.at(0), kept);
        EXPECT_EQ(column(two, 2), std::vector<double>(3, 0.0));
    }
    FrontEndStrings few(3);
    matrix<double> cut(3, 3);
    QUORVA_EXPORT(Cpp_GetSimMatSorted)(3, 3, cut.data(), few.data());
    EXPECT_EQ(few.all(), (Texts{u"a", u"d", u"c"}));
    EXPECT_EQ(column(cut, 3), stored(3));
}

TEST_F(ResultsContract, MatricesWithFewerRowsAreNotOverrun) {
    sixKinds();
    std::vector<double> table(2 * 4 + 4, 7.0);
    FrontEndStrings names(4);
    QUORVA_EXPORT(Cpp_GetSimMatRed)(2, 4, table.data(), names.data());
    EXPECT_EQ(table[6], -1);
    EXPECT_EQ(table[7], -2);
    EXPECT_EQ(std::vector<double>(table.begin() + 8, table.end()), std::vector<double>(4, 7.0));
    matrix<double> tall(5, 4, 7.0);
    QUORVA_EXPORT(Cpp_GetSimMatRed)(5, 4, tall.data(), names.data());
    EXPECT_EQ(column(tall, 4), (std::vector<double>{-1, -2, -3, 0, 0})) << "only stored rows are copied";
}

class TornadoContract : public ResultsContract {
protected:
    struct Tornado {
        matrix<double> table;
        std::vector<int> inputs, results;
        Texts names;
    };
    Texts plan(int defaultCase, int method, double alpha, int points, matrix<double>& intervals) {
        FrontEndStrings labels(static_cast<std::size_t>(points), u"x");
        cases = -1;
        QUORVA_EXPORT(Cpp_PrepareTor)
        (defaultCase, method, alpha, points, intervals.rows(), &cases, intervals.data(), labels.data());
        return labels.all();
    }
    Tornado collect(int inputs) {
        Tornado tornado{matrix<double>(cases, inputs, 7.0),
                        std::vector<int>(static_cast<std::size_t>(inputs), -5),
                        std::vector<int>(static_cast<std::size_t>(fields), -5),
                        {}};
        FrontEndStrings names(static_cast<std::size_t>(inputs), u"x");
        QUORVA_EXPORT(Cpp_GetTornado)
        (cases, inputs, tornado.table.data(), tornado.inputs.data(), tornado.results.data(), names.data());
        tornado.names = names.all();
        return tornado;
    }
    void described() {
        prepare();
        ASSERT_EQ(start(3), 0);
        run(3);
        end(0.05, 3);
    }
    /// The values that a cell shows over the cases.
    std::vector<std::vector<double>> watch(int count) {
        std::vector<std::vector<double>> shown(cells.size());
        for (int k = 0; k < count; ++k) {
            recalculate();
            for (std::size_t i = 0; i < cells.size(); ++i) {
                shown[i].push_back(value(i));
            }
        }
        return shown;
    }
    int cases = 0;
};

TEST_F(TornadoContract, LabelsNamePercentilesOrChanges) {
    sixKinds();
    matrix<double> intervals = end(0.05, 3).intervals;
    EXPECT_EQ(plan(0, 0, 0.05, 5, intervals), (Texts{u"5.00%", u"27.50%", u"50.00%", u"72.50%", u"95.00%"}));
    EXPECT_EQ(cases, 10) << "two results at five points";
    EXPECT_EQ(status(), 4);
    EXPECT_EQ(plan(0, 1, 0.1, 5, intervals), (Texts{u"-10.00%", u"-5.00%", u"0.00%", u"5.00%", u"10.00%"}));
    EXPECT_EQ(plan(1, 2, 0.125, 3, intervals), (Texts{u"-12.50%", u"0.00%", u"12.50%"}));
    EXPECT_EQ(plan(0, 0, 0.005, 2, intervals), (Texts{u"0.50%", u"99.50%"}));
    EXPECT_EQ(cases, 4);
    collect(3);
    EXPECT_EQ(status(), 0);
}

TEST_F(TornadoContract, TheFirstEvaluatedInputStepsThePlan) {
    uniform({sheet, 0, 0}, "a");
    uniform({sheet, 1, 0}, "b");
    result({sheet, 2, 0}, "c", [this] { return 100 * value(0) + value(1) + 1000 * value(3); });
    scenario({sheet, 3, 0}, "d", 0, 8);
    std::swap(cells[2], cells[3]);
    cells[3].formula = [this] {
        return QUORVA_EXPORT(QUORVA_SimRes)("c", 100 * value(0) + value(1) + 1000 * value(2), 0, 0, 1);
    };
    described();
    // Rows: lower, median, upper, minimum, maximum of a, b, c and d.
    matrix<double> intervals(4, 5);
    const double given[4][5] = {{10, 14, 20, 0, 99}, {1, 2, 3, 0, 99}, {0, 0, 5, 0, 9}, {4, 4, 4, 4, 4}};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 5; ++j) {
            intervals(i + 1, j + 1) = given[i][j];
        }
    }
    plan(0, 0, 0.05, 5, intervals);
    ASSERT_EQ(cases, 5);
    const auto shown = watch(15);
    using Row = std::vector<double>;
    EXPECT_EQ(shown[0], (Row{10, 12.5, 15, 17.5, 20, 14, 14, 14, 14, 14, 14, 14, 14, 14, 14})) << "evenly in value";
    EXPECT_EQ(shown[1], (Row{2, 2, 2, 2, 2, 1, 1.5, 2, 2.5, 3, 2, 2, 2, 2, 2}));
    EXPECT_EQ(shown[2], (Row{4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 0, 2, 4, 6, 8})) << "results take no part in the plan";
    const Tornado tornado = collect(3);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(tornado.inputs, (std::vector<int>{1, 2, 4}));
    EXPECT_EQ(tornado.names, (Texts{u"a", u"b", u"d"}));
    EXPECT_EQ(tornado.results, (std::vector<int>{0, 0, 1, 0}));
    EXPECT_EQ(column(tornado.table, 1), (Row{5002, 5252, 5502, 5752, 6002}));
    EXPECT_EQ(column(tornado.table, 2), (Row{5401, 5401.5, 5402, 5402.5, 5403}));
    EXPECT_EQ(column(tornado.table, 3), (Row{1402, 3402, 5402, 7402, 9402}));

    matrix<double> bars(3, 4), spider(5, 3);
    matrix<double> table = tornado.table;
    std::vector<int> inputs = tornado.inputs;
    QUORVA_EXPORT(Cpp_GetTornadoItem)(5, 3, 3, table.data(), inputs.data(), bars.data(), spider.data());
    EXPECT_EQ(row(bars, 1), (Row{4, 1402, 9402, 8000})) << "widest first";
    EXPECT_EQ(row(bars, 2), (Row{1, 5002, 6002, 1000}));
    EXPECT_EQ(row(bars, 3), (Row{2, 5401, 5403, 2}));
    EXPECT_EQ(column(spider, 3), column(tornado.table, 3));
}

TEST_F(TornadoContract, BaseCasesAndInputsWithoutPoints) {
    cell({sheet, 0, 0}, [] { return QUORVA_EXPORT(QUORVA_SimUniform)("a", 0, 1, 0, 0, 0, -1, 0.25, 1); });
    uniform({sheet, 1, 0}, "b", 2, 4);
    uniform({sheet, 2, 0}, "c", 10, 20);
    result({sheet, 3, 0}, "z", [this] { return value(0) + value(1) + value(2); });
    described();
    matrix<double> intervals(4, 5);
    for (int i = 1; i <= 4; ++i) {
        intervals(i, 1) = i;
        intervals(i, 2) = i + 0.5;
        intervals(i, 3) = i + 1;
        intervals(i, 5) = 1000;
    }
    intervals(2, 3) = MissingValue;
    plan(1, 0, 0.05, 2, intervals);
    const auto shown = watch(5);
    using Row = std::vector<double>;
    EXPECT_EQ(shown[0], (Row{1, 2, 0.25, 0.25, 1})) << "after the last input the plan starts anew";
    EXPECT_EQ(shown[1], Row(5, 3.0)) << "no points: always its default";
    EXPECT_EQ(shown[2], (Row{15, 15, 3, 4, 15}));
}

TEST_F(TornadoContract, PointsOfABandAreKeptWithinTheSimulatedRange) {
    uniform({sheet, 0, 0}, "a", 90, 110);
    scenario({sheet, 1, 0}, "b", 0, 8, 2, 3);
    result({sheet, 2, 0}, "z", [this] { return value(0); });
    described();
    matrix<double> intervals(3, 5);
    const double given[] = {96, 100, 150, 95, 200};
    for (int j = 0; j < 5; ++j) {
        intervals(1, j + 1) = given[j];
    }
    for (const int defaultCase : {0, 1}) {
        plan(defaultCase, 1, 0.1, 5, intervals);
        const auto shown = watch(10);
        const std::vector<double> expected{95, 95, 100, 105, 110};
        for (std::size_t j = 0; j < 5; ++j) {
            EXPECT_NEAR(shown[0][j], expected[j], 1e-12) << j;
        }
        EXPECT_EQ(std::vector<double>(shown[1].begin() + 5, shown[1].end()), (std::vector<double>{0, 3, 6, 9, 12}))
            << "steps of a qualitative variable pass its upper bound";
        Tornado tornado = collect(2);
        EXPECT_EQ(tornado.table(1, 1), MissingValue) << "a clamped point";
        EXPECT_NE(tornado.table(3, 1), MissingValue);
        matrix<double> bars(2, 4), spider(5, 2);
        QUORVA_EXPORT(Cpp_GetTornadoItem)
        (5, 2, 3, tornado.table.data(), tornado.inputs.data(), bars.data(), spider.data());
        EXPECT_EQ(spider(1, 1), MissingValue);
        EXPECT_EQ(bars(1, 1), 1);
        EXPECT_EQ(bars(1, 2), std::min(tornado.table(2, 1), tornado.table(3, 1))) << "clamped points do not count";
    }
}

TEST_F(TornadoContract, ClampMarksRepeatEveryFiveCasesWhateverThePoints) {
    uniform({sheet, 0, 0}, "a", 90, 110);
    result({sheet, 1, 0}, "y", [this] { return value(0); });
    result({sheet, 2, 0}, "z", [this] { return -value(0); });
    described();
    matrix<double> intervals(3, 5);
    const double given[] = {96, 100, 150, 95, 200};
    for (int j = 0; j < 5; ++j) {
        intervals(1, j + 1) = given[j];
    }
    plan(0, 1, 0.1, 4, intervals);
    ASSERT_EQ(cases, 8);
    const auto shown = watch(4);
    const Tornado tornado = collect(1);
    // Only the first of the four points is clamped; the marks are read at case modulo 5: intended.
    std::set<int> missing;
    for (int c = 1; c <= 8; ++c) {
        if (tornado.table(c, 1) == MissingValue) {
            missing.insert(c);
        }
    }
    EXPECT_EQ(missing, (std::set<int>{1, 6}));
    EXPECT_EQ(tornado.table(5, 1), -95.0) << "the clamped case of the second result keeps its value";
}

TEST_F(ResultsContract, ContributionsKeepTheSignAndRank) {
    result({sheet, 0, 0}, "a", [] { return 1.0; });
    uniform({sheet, 1, 0}, "b");
    scenario({sheet, 2, 0}, "c", 0, 1);
    uniform({sheet, 3, 0}, "d");
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    const auto get = QUORVA_EXPORT(Cpp_GetSensitivity);
    matrix<double> links(4, 4, 9.0);
    links(1, 2) = 0.6;
    links(1, 4) = -0.8;
    matrix<double> table(2, 4, 7.0);
    get(4, links.data(), 2, 1, 0, table.data());
    const double expected[2][4] = {{2, 0.6, 0.36, 0.36}, {4, -0.8, -0.64, 0.64}};
    for (int j = 1; j <= 4; ++j) {
        EXPECT_NEAR(table(1, j), expected[0][j - 1], 1e-15);
        EXPECT_NEAR(table(2, j), expected[1][j - 1], 1e-15);
    }
    get(4, links.data(), 2, 1, 1, table.data());
    EXPECT_EQ(column(table, 1), (std::vector<double>{4, 2}));
    get(4, links.data(), 2, 1, -1, table.data());
    EXPECT_EQ(column(table, 1), (std::vector<double>{2, 4})) << "only 1 ranks";

    links(1, 2) = links(1, 4) = 0;
    get(4, links.data(), 2, 1, 1, table.data());
    EXPECT_EQ(column(table, 3), (std::vector<double>{0, 0}));
    EXPECT_EQ(column(table, 1), (std::vector<double>{2, 4})) << "equal ranks keep their order";

    links(1, 2) = 0.5;
    links(1, 4) = MissingValue;
    get(4, links.data(), 2, 1, 1, table.data());
    EXPECT_EQ(row(table, 1), (std::vector<double>{4, MissingValue, -infinity, infinity})) << "ranks first: intended";
    EXPECT_EQ(row(table, 2), (std::vector<double>{2, 0.5, 1, 1}));

    links(1, 4) = std::nan("");
    get(4, links.data(), 2, 1, 0, table.data());
    EXPECT_TRUE(std::isnan(table(1, 3)));

    get(4, links.data(), 2, 5, 0, table.data());
    EXPECT_EQ(row(table, 2), (std::vector<double>{4, -1, -0.5, 0.5})) << "a row that the matrix lacks reads -1";

    std::vector<double> one(4 + 4, 7.0);
    links(1, 4) = 0.5;
    get(4, links.data(), 1, 1, 0, one.data());
    EXPECT_EQ(one, (std::vector<double>{2, 0.5, 0.5, 0.5, 7, 7, 7, 7})) << "rows beyond the table are dropped";
}

}  // namespace
