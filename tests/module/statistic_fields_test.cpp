// Statistic fields in the built module: what they may refer to, and when their values are taken.
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <numeric>
#include <string>
#include <utility>

#include "common/matrix.h"
#include "exported_routines.h"
#include "model_sheet.h"
#include "quorva/catalogue.h"
#include "quorva/wire_format.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

double normal(const char* name, double mean, double deviation) {
    return QUORVA_EXPORT(QUORVA_SimNormal)(name, mean, deviation, 0, 0, 0, 0, 0, 1);
}
double result(const char* name, double formula) { return QUORVA_EXPORT(QUORVA_SimRes)(name, formula, 0, 0, 1); }
double scenario(const char* name) { return QUORVA_EXPORT(QUORVA_SimSVar)(name, 1, 4, 1, 1, 0, 0, 1); }

double meanOf(const std::vector<double>& values, int n) {
    return std::accumulate(values.begin(), values.begin() + n, 0.0) / n;
}

/// Type 7 median.
double medianOf(std::vector<double> values, int n) {
    values.resize(static_cast<std::size_t>(n));
    std::sort(values.begin(), values.end());
    return 0.5 * (values[static_cast<std::size_t>((n - 1) / 2)] + values[static_cast<std::size_t>(n / 2)]);
}

class StatisticFields : public ::testing::Test {
protected:
    void SetUp() override { host().reset(); }
    void TearDown() override {
        int seed = 1, used = 0;
        QUORVA_EXPORT(Cpp_SimReset)(&seed, -1, &used);
    }

    void begin(const RunSettings& settings = {}, const RunTables& tables = {}) {
        ASSERT_EQ(beginRun(model, settings, counts, tables), 0);
    }

    ModelSheet model;
    FieldCounts counts;
};

TEST_F(StatisticFields, ReferToDistributionsResultsScenarioVariablesAndStatistics) {
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [](auto&) { return scenario("b_scenario"); });
    model.set(2, [](auto& m) { return result("c_result", m.value(0) * m.value(1)); });
    model.set(3, [](auto&) { return statisticCell("QUORVA_SimStatMean", "d_of_dist", 0); });
    model.set(4, [](auto&) { return statisticCell("QUORVA_SimStatVarianceN", "e_of_scenario", 1); });
    model.set(5, [](auto&) { return statisticCell("QUORVA_SimStatMedian", "f_of_result", 2); });
    model.set(6, [](auto&) { return statisticCell("QUORVA_SimStatMaximum", "g_of_statistic", 3); });
    model.set(7, [](auto&) { return statisticCell("QUORVA_SimTheoStdev", "h_theory", 0); });
    EXPECT_EQ(statisticCell("QUORVA_SimStatMean", "outside a run", 0), 0.0);
    begin();
    EXPECT_EQ(counts.all, 8);
    EXPECT_EQ(counts.ofKind[3], 5);
    double highestMean = -INFINITY;
    for (int k = 1; k <= 20; ++k) {
        ASSERT_EQ(iterate(model), 0);
        const auto drawn = storedValues(1, 20);
        const auto results = storedValues(3, 20);
        EXPECT_EQ(drawn[static_cast<std::size_t>(k - 1)], model.value(0));
        EXPECT_NEAR(model.value(3), meanOf(drawn, k), 1e-12);
        EXPECT_EQ(model.value(4), 0.0);
        EXPECT_NEAR(model.value(5), medianOf(results, k), 1e-12);
        highestMean = std::max(highestMean, model.value(3));
        EXPECT_EQ(model.value(6), highestMean);
        EXPECT_EQ(model.value(7), 2.0);
        // The path of a statistic is kept like any other field's values.
        EXPECT_EQ(storedValues(4, 20)[static_cast<std::size_t>(k - 1)], model.value(3));
    }
}

TEST_F(StatisticFields, AnEmptyCellIsMissing) {
    model.set(0, [](auto&) { return normal("dist", 10, 2); });
    model.set(1, [](auto& m) { return result("res", m.value(0)); });
    model.set(2, [](auto&) { return statisticCell("QUORVA_SimStatMean", "stat", 77); });
    begin();
    ASSERT_EQ(iterate(model), 0);
    EXPECT_EQ(model.value(2), MissingValue);
    EXPECT_EQ(iterate(model), 0) << "an empty cell is no run error";
}

TEST_F(StatisticFields, ACellOnAnotherSheetIsNotResolved) {
    const auto elsewhere = [](const HostCell& cell, const char* name) {
        return QUORVA_EXPORT(QUORVA_SimStat)(name, host().referenceTo(cell), 13, 1);
    };
    model.set({"[Book1]Data", 4, 1}, [](auto&) { return normal("dist", 10, 2); });
    model.set(2, [](auto& m) { return result("res", m.value({"[Book1]Data", 4, 1})); });
    model.set(3, [&](auto&) { return elsewhere({"[Book1]Data", 4, 1}, "stat"); });
    begin();
    ASSERT_EQ(iterate(model), 0);
    // It stands for the first cell of the first sheet, which is empty here.
    EXPECT_EQ(model.value(3), MissingValue);
}

// The field with the lower number is asked before the one that it describes: it shows 0, and its value is filled in
// when the next iteration starts, one row further on; intended.
TEST_F(StatisticFields, AFieldThatComesLaterFillsTheValueInWithTheNextIteration) {
    model.set(0, [](auto&) { return statisticCell("QUORVA_SimStatMean", "a_stat", 1); });
    model.set(1, [](auto&) { return normal("b_dist", 10, 2); });
    model.set(2, [](auto& m) { return result("c_res", m.value(1)); });
    RunSettings settings;
    settings.nSim = 6;
    begin(settings);
    for (int k = 1; k <= 6; ++k) {
        ASSERT_EQ(iterate(model), 0);
        EXPECT_EQ(model.value(0), 0.0);
        const auto kept = storedValues(1, 6);
        const auto drawn = storedValues(2, 6);
        for (int i = 2; i <= k; ++i) {
            EXPECT_NEAR(kept[static_cast<std::size_t>(i - 1)], meanOf(drawn, i - 1), 1e-12) << "row " << i;
        }
    }
    const auto drawn = storedValues(2, 6);
    ASSERT_EQ(iterate(model), 0);  // beyond the planned iterations, rows start again at the top
    EXPECT_NEAR(storedValues(1, 6)[0], meanOf(drawn, 6), 1e-12);
}

TEST_F(StatisticFields, AHigherNumberedFieldThatIsAskedEarlyUsesWhatIsThere) {
    model.set(0, [](auto&) { return statisticCell("QUORVA_SimStatMean", "z_stat", 1); });
    model.set(1, [](auto&) { return normal("b_dist", 10, 2); });
    model.set(2, [](auto& m) { return result("c_res", m.value(1)); });
    begin();
    for (int k = 1; k <= 5; ++k) {
        ASSERT_EQ(iterate(model), 0);
        const auto drawn = storedValues(1, 20);
        EXPECT_NEAR(model.value(0), k == 1 ? 0.0 : meanOf(drawn, k - 1), 1e-12);
    }
}

// A stored statistic sees the row of the iteration before it is drawn as 0.
TEST_F(StatisticFields, AStoredStatisticThatIsAskedEarlySeesTheRowNotYetDrawn) {
    model.set(0, [](auto&) { return statisticCell("QUORVA_SimStat1stQuartile", "z_stat", 1); });
    model.set(1, [](auto&) { return normal("b_dist", 100, 2); });
    model.set(2, [](auto& m) { return result("c_res", m.value(1)); });
    begin();
    for (int k = 1; k <= 5; ++k) {
        ASSERT_EQ(iterate(model), 0);
        if (k == 2) {
            EXPECT_NEAR(model.value(0), 0.25 * storedValues(1, 20)[0], 1e-12);
        }
        if (k == 5) {
            auto drawn = storedValues(1, 20);
            drawn.resize(4);
            EXPECT_EQ(model.value(0), *std::min_element(drawn.begin(), drawn.end()));
        }
    }
}

TEST_F(StatisticFields, ACellThatARecalculationSkipsGetsItsValueOneRowFurtherOn) {
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [](auto& m) { return result("b_res", m.value(0)); });
    model.set(2, [](auto&) { return statisticCell("QUORVA_SimStatMean", "c_stat", 0); });
    begin();
    iterate(model);
    iterate(model, {2});
    iterate(model, {2});
    EXPECT_EQ(QUORVA_EXPORT(Cpp_SimNext)(), 0);
    const auto drawn = storedValues(1, 20);
    auto kept = storedValues(3, 20);
    EXPECT_EQ(kept[0], drawn[0]);
    EXPECT_EQ(kept[1], 0.0);                        // skipped in iteration 2
    EXPECT_NEAR(kept[2], meanOf(drawn, 2), 1e-12);  // filled in for it, one row on
    EXPECT_NEAR(kept[3], meanOf(drawn, 3), 1e-12);
    model.recalculate();
    EXPECT_NEAR(storedValues(3, 20)[3], meanOf(storedValues(1, 20), 4), 1e-12) << "the field's own value replaces it";
}

TEST_F(StatisticFields, ASecondCalculationInAnIterationReturnsTheStoredValue) {
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [](auto& m) { return result("b_res", m.value(0)); });
    model.set(2, [](auto&) { return statisticCell("QUORVA_SimStatMean", "c_stat", 0); });
    model.set(3, [](auto&) { return statisticCell("QUORVA_SimStatMean", "d_mean_of_means", 2); });
    begin();
    double sum = 0;
    for (int k = 1; k <= 5; ++k) {
        iterate(model);
        const double first = model.value(2);
        sum += first;
        model.recalculate();
        model.recalculate();
        EXPECT_EQ(model.value(2), first);
        EXPECT_NEAR(model.value(3), sum / k, 1e-12) << "counted once in an iteration";
    }
}

TEST_F(StatisticFields, EveryWrapperStandsForItsStatistic) {
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [](auto& m) { return result("b_res", m.value(0) * m.value(0)); });
    std::vector<std::string> names;
    for (const auto& entry : statisticTable) {
        names.push_back("s" + std::to_string(1000 + entry.statistic));
    }
    for (std::size_t i = 0; i < statisticTable.size(); ++i) {
        model.set(static_cast<int>(i) + 2, [i, &names](auto&) {
            return statisticCell(std::string(statisticTable[i].wrapper), names[i].c_str(), 0);
        });
    }
    begin({}, {{}, {}, {u"a_dist"}, {4}, {15}, {9}});
    for (int k = 1; k <= 12; ++k) {
        ASSERT_EQ(iterate(model), 0);
    }
    std::vector<double> drawn = storedValues(1, 12);
    for (std::size_t i = 0; i < statisticTable.size(); ++i) {
        const double shown = model.value(static_cast<int>(i) + 2);
        const double asked = QUORVA_EXPORT(SimCalcStat)(12, 1, 3, statisticTable[i].statistic);
        if (!std::isnan(asked) || !std::isnan(shown)) {
            EXPECT_EQ(shown, asked) << statisticTable[i].wrapper;
        }
        EXPECT_NE(shown, MissingValue) << statisticTable[i].wrapper;
    }
    const auto shown = [&](int statistic) {
        for (std::size_t i = 0; i < statisticTable.size(); ++i) {
            if (statisticTable[i].statistic == statistic) {
                return model.value(static_cast<int>(i) + 2);
            }
        }
        return 0.0;
    };
    const double mean = meanOf(drawn, 12);
    double squares = 0;
    for (const double x : drawn) {
        squares += (x - mean) * (x - mean);
    }
    const double stdev = std::sqrt(squares / 11);
    EXPECT_EQ(shown(1), 12.0);
    EXPECT_NEAR(shown(10), medianOf(drawn, 12), 1e-12);
    EXPECT_NEAR(shown(13), mean, 1e-12);
    EXPECT_NEAR(shown(17), stdev, 1e-12);
    EXPECT_EQ(shown(51), 10.0);
    EXPECT_EQ(shown(53), 2.0);
    EXPECT_NEAR(shown(81), 11 / (6 * stdev), 1e-12);
    EXPECT_NEAR(shown(84), std::min(15 - mean, mean - 4) / (3 * stdev), 1e-12);
    EXPECT_NEAR(shown(101), 1e6 * 0.5 * std::erfc((mean - 4) / stdev / std::sqrt(2.0)), 1e-6);
}

/// What the wrappers' names have always stood for: the number that a front end reads in column 2 of the field table.
constexpr std::pair<const char*, int> numbersOfNames[] = {{"StatNbrObs", 1},
                                                          {"StatNbrMiss", 2},
                                                          {"StatSumOfWeights", 3},
                                                          {"StatMinimum", 4},
                                                          {"StatMaximum", 5},
                                                          {"StatFreqMin", 6},
                                                          {"StatFreqMax", 7},
                                                          {"StatAmplitude", 8},
                                                          {"Stat1stQuartile", 9},
                                                          {"StatMedian", 10},
                                                          {"Stat3rdQuartile", 11},
                                                          {"StatSum", 12},
                                                          {"StatMean", 13},
                                                          {"StatVarianceN", 14},
                                                          {"StatVarianceN1", 15},
                                                          {"StatStdevN", 16},
                                                          {"StatStdevN1", 17},
                                                          {"StatVariation", 18},
                                                          {"StatSkewnessPearson", 19},
                                                          {"StatSkewnessFisher", 20},
                                                          {"StatSkewnessBowley", 21},
                                                          {"StatKurtosisPearson", 22},
                                                          {"StatKurtosisFisher", 23},
                                                          {"StatStdErrorOfMean", 24},
                                                          {"StatLowerBound95Perc", 25},
                                                          {"StatUpperBound95Perc", 26},
                                                          {"StatStdErrorOfSkewness", 27},
                                                          {"StatStdErrorOfKurtosis", 28},
                                                          {"StatMeanAbsDeviation", 29},
                                                          {"StatMedianAbsDeviation", 30},
                                                          {"StatGeometricMean", 31},
                                                          {"StatGSD", 32},
                                                          {"StatHarmonicMean", 33},
                                                          {"TheoMean", 51},
                                                          {"TheoVariance", 52},
                                                          {"TheoStdev", 53},
                                                          {"SPCCp", 81},
                                                          {"SPCCpl", 82},
                                                          {"SPCCpu", 83},
                                                          {"SPCCpk", 84},
                                                          {"SPCPp", 85},
                                                          {"SPCPpl", 86},
                                                          {"SPCPpu", 87},
                                                          {"SPCPpk", 88},
                                                          {"SPCCpm", 89},
                                                          {"SPCCpmBoyles", 90},
                                                          {"SPCCp55", 91},
                                                          {"SPCCpk55", 92},
                                                          {"SPCCpmk", 93},
                                                          {"SPCCsWright", 94},
                                                          {"SPCZbelow", 95},
                                                          {"SPCZabove", 96},
                                                          {"SPCZtotal", 97},
                                                          {"SPCpNCbelow", 98},
                                                          {"SPCpNCabove", 99},
                                                          {"SPCpNCtotal", 100},
                                                          {"SPCPPMbelow", 101},
                                                          {"SPCPPMabove", 102},
                                                          {"SPCPPMtotal", 103}};

TEST_F(StatisticFields, TheNumberOfEveryWrapperIsFixed) {
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [](auto& m) { return result("b_res", m.value(0)); });
    constexpr int wrappers = static_cast<int>(std::size(numbersOfNames));
    ASSERT_EQ(wrappers, static_cast<int>(statisticTable.size()));
    for (int i = 0; i < wrappers; ++i) {
        model.set(i + 2, [i](auto&) {
            const std::string number = std::to_string(1000 + i);
            return statisticCell(std::string("QUORVA_Sim") + numbersOfNames[i].first, ("s" + number).c_str(), 0);
        });
    }
    begin();
    ASSERT_EQ(counts.all, wrappers + 2);
    matrix<double> general(counts.all, 14), intervals(counts.all, 5), convergence(2, 2);
    QUORVA_EXPORT(Cpp_SimEnd)
    (0.05, 1, general.data(), nullptr, convergence.data(), nullptr, nullptr, intervals.data());
    for (int i = 0; i < wrappers; ++i) {
        EXPECT_EQ(general(i + 3, 2), numbersOfNames[i].second) << numbersOfNames[i].first;
    }
}

TEST_F(StatisticFields, AfterTheRunTheyShowZero) {
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [](auto& m) { return result("b_res", m.value(0)); });
    model.set(2, [](auto&) { return statisticCell("QUORVA_SimStatMean", "c_stat", 0); });
    begin();
    iterate(model);
    EXPECT_NE(model.value(2), 0.0);
    double general[3 * 14], intervals[3 * 5], convergence[4];
    QUORVA_EXPORT(Cpp_SimEnd)(0.05, 20, general, nullptr, convergence, nullptr, nullptr, intervals);
    EXPECT_EQ(QUORVA_EXPORT(Cpp_SimGetStatus)(), 0);
    model.recalculate();
    EXPECT_EQ(model.value(2), 0.0);
}

/// Convergence of the mean of 1, 2, 1, 2 …, whose bounds are known at every iteration.
TEST_F(StatisticFields, ConvergenceOfAnAlternatingResultIsKnown) {
    int k = 0;
    model.set(0, [](auto&) { return normal("a_dist", 10, 2); });
    model.set(1, [&](auto&) { return result("b_res", k % 2 == 1 ? 1.0 : 2.0); });
    RunSettings settings;
    settings.nSim = 200;
    settings.checkConvergence = -1;
    settings.tolerance = 2.0;
    begin(settings);
    double before[2] = {0, 0};
    for (k = 1; k <= 200; ++k) {
        iterate(model);
        if (k % 20 != 0) {
            continue;
        }
        const double s = std::sqrt(0.25 * k / (k - 1.0));
        const double h = 1.959963984540054 * s / std::sqrt(static_cast<double>(k));
        const double now[2] = {1.5 - h, 1.5 + h};
        const double moved =
            std::max(std::abs(now[0] - before[0]) / before[0], std::abs(now[1] - before[1]) / before[1]);
        EXPECT_EQ(QUORVA_EXPORT(Cpp_SimConv)(), k > 20 && moved * 100 <= 2.0 ? 1 : 0) << k;
        before[0] = now[0];
        before[1] = now[1];
    }
    double general[2 * 14], intervals[2 * 5], convergence[4];
    HostString names[2] = {};
    int last = 0;
    QUORVA_EXPORT(Cpp_SimEnd)(0.05, 200, general, nullptr, convergence, names, &last, intervals);
    EXPECT_NEAR(convergence[0], before[0], 1e-12);
    EXPECT_NEAR(convergence[2], before[1], 1e-12);
    EXPECT_EQ(std::u16string(names[1]), u"b_res");
    EXPECT_EQ(last, 2);
    for (auto* name : names) {
        SysFreeString(name);
    }
}

}  // namespace
