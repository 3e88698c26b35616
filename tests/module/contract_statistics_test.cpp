// Statistics of a running model: moments, stored samples, capability, statistic cells and convergence.
#include <algorithm>
#include <limits>
#include <numeric>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

constexpr double infinity = std::numeric_limits<double>::infinity();

double inverseNormal(double p) {
    double low = -40, high = 40;
    for (int i = 0; i < 200; ++i) {
        const double middle = 0.5 * (low + high);
        (0.5 * std::erfc(-middle / std::sqrt(2.0)) < p ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

class StatisticsContract : public ContractModel {
protected:
    /// A running model of a distribution "in" (1) and results "out" (2) and "plain" (3), moments kept for the results.
    void startMoments() {
        cells.clear();
        normal({sheet, 0, 0}, "in", 5, 2);
        result({sheet, 1, 0}, "out", [] { return 0.0; });
        result({sheet, 2, 0}, "plain", [] { return 0.0; });
        prepare();
        ASSERT_EQ(beginConverging(50, 0, hostTrue, 1), 0);
    }
    void feed(const std::vector<double>& series, int field = 2) {
        for (const double x : series) {
            QUORVA_EXPORT(CalcSimStat)(field, x);
        }
    }
    static double ask(int nObs, int field, int statistic) {
        return QUORVA_EXPORT(SimCalcStat)(nObs, field, 0, statistic);
    }
    /// A finished run of a result "out" (2) that took `series`; "in" is field 1.
    void runSeries(const std::vector<double>& series) {
        cells.clear();
        normal({sheet, 0, 0}, "in", 5, 2);
        seriesResult({sheet, 1, 0}, "out", series);
        prepare();
        const int n = static_cast<int>(series.size());
        ASSERT_EQ(beginConverging(n, 0, hostTrue, 1), 0);
        run(n);
    }
    static std::vector<double> storedValues(int field, int nSim) {
        std::vector<double> values(static_cast<std::size_t>(nSim));
        QUORVA_EXPORT(Cpp_GetSimRes)(field, nSim, values.data());
        return values;
    }
    static double quantile(std::vector<double> x, double p) {
        std::sort(x.begin(), x.end());
        const double at = p * static_cast<double>(x.size() - 1);
        const auto i = static_cast<std::size_t>(at);
        return i + 1 < x.size() ? x[i] + (at - static_cast<double>(i)) * (x[i + 1] - x[i]) : x[i];
    }
};

void expectRelative(double actual, double expected, const std::string& what) {
    EXPECT_NEAR(actual, expected, 1e-12 * std::max(1.0, std::fabs(expected))) << what;
}

TEST_F(StatisticsContract, TheRunningStatisticsFollowTheirFormulas) {
    startMoments();
    const std::vector<double> x{3, -1, 4, 1, 5, -9, 2.5};
    feed(x);
    const double n = 7, m = std::accumulate(x.begin(), x.end(), 0.0) / n;
    double m2 = 0, m3 = 0;
    for (const double v : x) {
        m2 += (v - m) * (v - m);
        m3 += std::pow(v - m, 3);
    }
    const double g1 = m3 / n / std::pow(m2 / n, 1.5);
    const double s27 = std::sqrt(6 * n * (n - 1) / ((n - 2) * (n + 1) * (n + 3)));
    const std::vector<std::pair<int, double>> expected{
        {1, 30},
        {2, 0},
        {3, 30},
        {4, -9},
        {5, 5},
        {8, 14},
        {12, 30 * m},
        {13, m},
        {14, m2 / n},
        {15, m2 / (n - 1)},
        {16, std::sqrt(m2 / n)},
        {17, std::sqrt(m2 / (n - 1))},
        {18, std::sqrt(m2 / n) / m},
        {19, g1},
        {20, std::sqrt((n - 1) * n) * g1 / (n - 2)},
        {24, 0},
        {25, m},
        {26, m},
        {27, s27},
        {28, std::sqrt(4 * (n * n - 1) * s27 * s27 / ((n + 5) * (n - 3)))},
    };
    for (const auto& [identifier, value] : expected) {
        expectRelative(ask(30, 2, identifier), value, std::to_string(identifier));
    }
    EXPECT_EQ(ask(30, 2, 22), infinity) << "the running kurtosis divides by 0 squared: intended";
    EXPECT_EQ(ask(30, 2, 23), infinity);
    EXPECT_EQ(ask(1, 2, 25), 0.0);
    EXPECT_EQ(ask(1, 2, 26), 0.0);
}

TEST_F(StatisticsContract, ShortSeriesHaveTheStatisticsThatExist) {
    startMoments();
    for (const int identifier : {1, 2, 3, 12, 13, 15, 17, 18, 24, 25, 26, 28}) {
        EXPECT_EQ(ask(0, 2, identifier), 0.0) << identifier << " of no value";
    }
    for (const int identifier : {14, 16, 19, 22, 23}) {
        EXPECT_TRUE(std::isnan(ask(0, 2, identifier))) << identifier << " of no value";
    }
    EXPECT_EQ(ask(0, 2, 4), MissingValueTwin);
    EXPECT_EQ(ask(0, 2, 5), MissingValue);
    feed({6});
    for (const int identifier : {14, 15, 16, 17, 18, 28}) {
        EXPECT_EQ(ask(1, 2, identifier), 0.0) << identifier << " of one value";
    }
    EXPECT_EQ(ask(1, 2, 13), 6.0);
    EXPECT_EQ(ask(1, 2, 4), 6.0);
    EXPECT_EQ(ask(1, 2, 5), 6.0);
    EXPECT_EQ(ask(1, 2, 20), MissingValue);
    EXPECT_EQ(ask(1, 2, 27), MissingValue);
    EXPECT_TRUE(std::isnan(ask(1, 2, 23)));
    for (const double more : {8.0, 1.0}) {
        feed({more});
        EXPECT_EQ(ask(2, 2, 23), MissingValue);
        EXPECT_EQ(ask(2, 2, 28), MissingValue);
    }
    EXPECT_NE(ask(3, 2, 20), MissingValue) << "three values have a skewness";

    feed({2, 2, 2, 2}, 3);
    EXPECT_TRUE(std::isnan(ask(4, 3, 22))) << "a constant series";
    EXPECT_TRUE(std::isnan(ask(4, 3, 19)));
    startMoments();
    feed({-1, 1, -1, 1});
    EXPECT_EQ(ask(4, 2, 18), 0.0) << "no variation about a mean of 0";
    EXPECT_EQ(ask(4, 2, 16), 1.0);
}

TEST_F(StatisticsContract, AMissingValueOnlyMovesTheMinimum) {
    startMoments();
    feed({2, 4, MissingValue});
    EXPECT_EQ(ask(3, 2, 4), MissingValue) << "intended";
    EXPECT_EQ(ask(3, 2, 5), 4.0);
    EXPECT_EQ(ask(3, 2, 13), 3.0);
    EXPECT_EQ(ask(3, 2, 15), 2.0);
    feed({1, 2}, 1);
    EXPECT_EQ(ask(2, 1, 4), MissingValueTwin) << "nobody asked for this field's statistics";
    EXPECT_EQ(ask(2, 1, 5), MissingValue);
    EXPECT_EQ(ask(2, 1, 13), 0.0);
    feed({1, 2}, 0);
    feed({1, 2}, 99);
}

TEST_F(StatisticsContract, TheStoredSamplesAnswerTheRest) {
    const std::vector<double> x{3, 1, 4, 1, 5, 9, 2, 9};
    runSeries(x);
    const double n = 8;
    const double q1 = quantile(x, 0.25), median = quantile(x, 0.5), q3 = quantile(x, 0.75);
    const double mean = std::accumulate(x.begin(), x.end(), 0.0) / n;
    std::vector<double> fromMedian;
    double deviation = 0, logs = 0, squares = 0, reciprocals = 0;
    for (const double v : x) {
        fromMedian.push_back(std::fabs(v - median));
        deviation += std::fabs(v - mean) / n;
        logs += std::log(v) / n;
        reciprocals += 1 / v;
    }
    for (const double v : x) {
        squares += (std::log(v) - logs) * (std::log(v) - logs) / (n - 1);
    }
    const std::vector<std::pair<int, double>> expected{
        {6, 2},
        {7, 2},
        {9, q1},
        {10, median},
        {11, q3},
        {21, (q1 - 2 * median + q3) / (q3 - q1)},
        {29, deviation},
        {30, quantile(fromMedian, 0.5)},
        {31, std::exp(logs)},
        {32, std::exp(std::sqrt(squares))},
        {33, n / reciprocals},
    };
    for (const auto& [identifier, value] : expected) {
        expectRelative(ask(8, 2, identifier), value, std::to_string(identifier));
        EXPECT_EQ(ask(0, 2, identifier), 0.0);
    }
    for (const int identifier : {0, -1, -1000, 34, 50, 54, 80, 81, 103, 104, 1000}) {
        EXPECT_EQ(ask(8, 2, identifier), MissingValue) << identifier;
        EXPECT_EQ(ask(0, 2, identifier), 0.0) << identifier << " of no value";
    }
    EXPECT_EQ(ask(3, 2, 10), 3.0) << "only the first observations count";
    EXPECT_EQ(ask(8, 1, 51), 5.0);
    EXPECT_EQ(ask(8, 1, 52), 4.0);
    EXPECT_EQ(ask(8, 1, 53), 2.0);
    EXPECT_EQ(ask(8, 1, 54), MissingValue);
    EXPECT_EQ(ask(8, 2, 51), MissingValue) << "a result has no law";

    runSeries({7, 7, 7, 7});
    EXPECT_EQ(ask(4, 2, 21), 0.0) << "quartiles that coincide";
    EXPECT_EQ(ask(4, 2, 6), 4.0);
    EXPECT_EQ(ask(4, 2, 32), 1.0);
    runSeries({7, 0, 7, 7});
    for (const int identifier : {31, 32, 33}) {
        EXPECT_EQ(ask(4, 2, identifier), MissingValue) << "not positive";
    }
}

TEST_F(StatisticsContract, CapabilityWithBothOneAndNoLimit) {
    const std::vector<double> x{9.8, 10.1, 10.4, 9.9, 10.3, 10.0};
    normal({sheet, 0, 0}, "in");
    for (const char* name : {"a both", "b lower", "c upper", "d none", "e unbound"}) {
        seriesResult({sheet, static_cast<int>(cells.size()), 0}, name, x);
    }
    statistic({sheet, 20, 0}, "s cpk", {sheet, 1, 0}, 84);
    init();
    recalculate();
    constexpr double lower = 9.5, upper = 10.6, target = 10.0, none = MissingValue;
    std::vector<double> noCorrelation;
    ASSERT_EQ(
        init2With({}, noCorrelation, {u"d none", u"a both", u"c upper", u"nobody", u"b lower"},
                  {none, lower, none, 1, lower}, {none, upper, upper, 2, none}, {target, target, target, 1.5, target}),
        0);
    recalculate();
    ASSERT_EQ(start(6), 0);
    run(6);
    const double n = 6, m = std::accumulate(x.begin(), x.end(), 0.0) / n;
    double squares = 0;
    for (const double v : x) {
        squares += (v - m) * (v - m);
    }
    const double s = std::sqrt(squares / (n - 1));
    const double tau = std::sqrt(s * s + (m - target) * (m - target));
    const double boyles = std::sqrt((n - 1) / n * s * s + (m - target) * (m - target));
    const double cpl = (m - lower) / (3 * s), cpu = (upper - m) / (3 * s), near = std::min(upper - m, m - lower);
    const double below = 0.5 * std::erfc(3 * cpl / std::sqrt(2.0)), above = 0.5 * std::erfc(3 * cpu / std::sqrt(2.0));
    const double cp = (upper - lower) / (6 * s), cpk = std::min(cpl, cpu);
    const std::vector<double> both{cp,
                                   cpl,
                                   cpu,
                                   cpk,
                                   cp,
                                   cpl,
                                   cpu,
                                   cpk,
                                   (upper - lower) / (6 * tau),
                                   (upper - lower) / (6 * boyles),
                                   (upper - lower) / (5.15 * s),
                                   near / (2.575 * s),
                                   near / (3 * tau),
                                   near / (3 * tau),
                                   3 * cpl,
                                   3 * cpu,
                                   -inverseNormal(below + above),
                                   below,
                                   above,
                                   below + above,
                                   1e6 * below,
                                   1e6 * above,
                                   1e6 * (below + above)};
    for (int i = 0; i < 23; ++i) {
        EXPECT_NEAR(ask(6, 1, 81 + i), both[static_cast<std::size_t>(i)],
                    1e-9 * std::max(1.0, both[static_cast<std::size_t>(i)]))
            << 81 + i;
        EXPECT_EQ(ask(6, 5, 81 + i), MissingValue) << "a field without limits";
    }
    EXPECT_EQ(ask(6, 1, 104), MissingValue);
    for (const int twoSided : {81, 85, 89, 90, 91}) {
        EXPECT_EQ(ask(6, 2, twoSided), MissingValue) << twoSided;
        EXPECT_EQ(ask(6, 3, twoSided), MissingValue) << twoSided;
        EXPECT_EQ(ask(6, 4, twoSided), MissingValue) << twoSided;
    }
    expectRelative(ask(6, 2, 82), cpl, "lower side alone");
    expectRelative(ask(6, 2, 95), 3 * cpl, "Z below alone");
    expectRelative(ask(6, 2, 98), below, "p below alone");
    EXPECT_EQ(ask(6, 2, 83), MissingValue);
    EXPECT_EQ(ask(6, 2, 99), 0.0);
    EXPECT_EQ(ask(6, 2, 102), 0.0);
    expectRelative(ask(6, 2, 100), below, "p total is the side that exists");
    expectRelative(ask(6, 3, 83), cpu, "upper side alone");
    expectRelative(ask(6, 3, 96), 3 * cpu, "Z above alone");
    EXPECT_EQ(ask(6, 3, 82), MissingValue);
    EXPECT_EQ(ask(6, 3, 98), 0.0);
    EXPECT_NEAR(storedValues(7, 6)[5], cpk, 1e-12) << "the statistic cell";
    EXPECT_EQ(storedValues(7, 6)[0], MissingValue) << "one value has no deviation";
}

TEST_F(StatisticsContract, AStatisticAboveItsFieldIsFilledInOneRowLater) {
    // The cell's own path stores in the row of the iteration; the later filling in runs before the counter moves and
    // stores one row further. Intended.
    const std::vector<double> x{10, 20, 60, 30};
    normal({sheet, 0, 0}, "in");
    statistic({sheet, 1, 0}, "a mean", {sheet, 2, 0}, 13);
    seriesResult({sheet, 2, 0}, "out", x);
    statistic({sheet, 3, 0}, "z mean", {sheet, 2, 0}, 13);
    prepare();
    ASSERT_EQ(start(4), 0);
    for (int k = 0; k < 4; ++k) {
        ASSERT_EQ(step(), 0);
        EXPECT_EQ(value(1), 0.0) << "not yet computed in this iteration";
    }
    EXPECT_EQ(storedValues(4, 4), (std::vector<double>{10, 15, 30, 30}));
    EXPECT_EQ(storedValues(1, 4), (std::vector<double>{0, 10, 15, 30}));
    ASSERT_EQ(next(), 0);
    EXPECT_EQ(storedValues(1, 4), (std::vector<double>{30, 10, 15, 30})) << "the row wraps around";
}

TEST_F(StatisticsContract, TheOrderOfFieldNumbersDecidesNotThatOfTheCells) {
    normal({sheet, 0, 0}, "in");
    statistic({sheet, 1, 0}, "z mean", {sheet, 2, 0}, 13);
    seriesResult({sheet, 2, 0}, "out", {10, 20, 60});
    prepare();
    ASSERT_EQ(start(3), 0);
    std::vector<double> shown;
    for (int k = 0; k < 3; ++k) {
        ASSERT_EQ(step(), 0);
        shown.push_back(value(1));
        EXPECT_EQ(evaluate(1), value(1)) << "computed once an iteration";
    }
    EXPECT_EQ(shown, (std::vector<double>{0, 10, 15})) << "of the values so far";
    EXPECT_EQ(storedValues(3, 3), shown);
}

TEST_F(StatisticsContract, AfterTheLastRowObservationsStayAtThePlannedNumber) {
    normal({sheet, 0, 0}, "in");
    statistic({sheet, 1, 0}, "a count", {sheet, 2, 0}, 1);
    result({sheet, 2, 0}, "out", [] { return 1.0; });
    prepare();
    ASSERT_EQ(start(100), 0);
    run(149);
    EXPECT_EQ(storedValues(1, 100)[49], 49.0);
    ASSERT_EQ(next(), 0);
    EXPECT_EQ(storedValues(1, 100)[49], 100.0) << "the 150th call writes row 50";
    EXPECT_EQ(storedValues(1, 100)[50], 50.0);
}

TEST_F(StatisticsContract, StatisticsOfStatisticsScenariosAndEmptyCells) {
    normal({sheet, 0, 0}, "in", 3, 4);
    seriesResult({sheet, 1, 0}, "out", {10, 20, 60});
    scenario({sheet, 2, 0}, "plan", 1, 4, 2);
    statistic({sheet, 3, 0}, "s1", {sheet, 1, 0}, 13);
    statistic({sheet, 4, 0}, "s2", {sheet, 3, 0}, 13);
    statistic({sheet, 5, 0}, "s3", {sheet, 2, 0}, 15);
    statistic({sheet, 6, 0}, "s4", {sheet, 77, 7}, 13);
    statistic({sheet, 7, 0}, "s5", {sheet, 0, 0}, 53);
    statistic({sheet, 8, 0}, "s6", {sheet, 2, 0}, 13);
    statistic({sheet, 9, 0}, "s7", {sheet, 2, 0}, 51);
    prepare();
    ASSERT_EQ(start(3), 0);
    run(3);
    EXPECT_EQ(storedValues(4, 3), (std::vector<double>{10, 15, 30})) << "s1";
    EXPECT_EQ(storedValues(5, 3), (std::vector<double>{10, 12.5, 55 / 3.0})) << "s2";
    EXPECT_EQ(value(5), 0.0) << "a scenario does not vary";
    EXPECT_EQ(value(6), MissingValue);
    EXPECT_EQ(value(7), 4.0);
    EXPECT_EQ(value(8), 2.0);
    EXPECT_EQ(value(9), MissingValue);
    EXPECT_EQ(storedValues(3, 3), std::vector<double>(3, 2.0)) << "plan";
}

TEST_F(StatisticsContract, AReferenceToAnotherSheetReadsTheFirstCell) {
    // Only references on the caller's own sheet are resolved; any other counts as row 0, column 0. Intended.
    seriesResult({sheet, 0, 0}, "first", {10, 20});
    normal({sheet, 1, 0}, "in");
    HostRangeList area{1, {{1, 1, 0, 0}}};
    cell({sheet, 2, 0}, [&area, call = QUORVA_EXPORT(QUORVA_SimStat)] {
        XLOPER reference{};
        reference.type = hosttype::reference;
        reference.value.reference = {&area, 4242};
        return call("s elsewhere", &reference, 13, 1);
    });
    cell({sheet, 3, 0}, [call = QUORVA_EXPORT(QUORVA_SimStat)] {
        XLOPER number{};
        number.type = hosttype::number;
        number.value.number = 7;
        return call("s number", &number, 5, 1);
    });
    prepare();
    ASSERT_EQ(start(2), 0);
    run(2);
    EXPECT_EQ(value(2), 15.0);
    EXPECT_EQ(value(3), 20.0);
}

TEST_F(StatisticsContract, AReferenceBeyondTheGridIsAnError) {
    normal({sheet, 0, 0}, "in");
    result({sheet, 1, 0}, "out", [] { return 1.0; });
    statistic({sheet, 2, 0}, "s", {sheet, 65'100, 8}, 13);
    prepare();
    ASSERT_EQ(start(2), 0);
    ASSERT_EQ(step(), 0);
    EXPECT_EQ(value(2), 0.0);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -15);
    EXPECT_EQ(std::make_pair(error.line, error.column), std::make_pair(65'100, 8));
    EXPECT_EQ(error.texts, std::vector<std::u16string>{u"[Book]1"});
    EXPECT_EQ(next(), -1);
}

}  // namespace
