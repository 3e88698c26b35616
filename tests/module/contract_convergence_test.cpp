// Convergence checks between iterations, and what the end of a run reports of them.
#include <algorithm>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

constexpr double z975 = 1.9599639845400545;

class ConvergenceContract : public ContractModel {
protected:
    static int converged() { return QUORVA_EXPORT(Cpp_SimConv)(); }
    void model(const std::vector<double>& series) {
        cells.clear();
        normal({sheet, 0, 0}, "in");
        seriesResult({sheet, 1, 0}, "out", series);
        prepare();
    }
    struct Sample {
        double n = 0, mean = 0, s = 0, excess = 0;
    };
    static Sample describe(const std::vector<double>& x, std::size_t count) {
        Sample sample;
        sample.n = static_cast<double>(count);
        for (std::size_t i = 0; i < count; ++i) {
            sample.mean += x[i] / sample.n;
        }
        double m2 = 0, m4 = 0;
        for (std::size_t i = 0; i < count; ++i) {
            m2 += std::pow(x[i] - sample.mean, 2);
            m4 += std::pow(x[i] - sample.mean, 4);
        }
        const double variance = m2 / (sample.n - 1);
        sample.s = std::sqrt(variance);
        sample.excess = m4 / sample.n / (variance * variance) - 3;
        return sample;
    }
    static void expectClose(double actual, double expected) {
        EXPECT_NEAR(actual, expected, 1e-11 * std::max(1.0, std::fabs(expected)));
    }
};

TEST_F(ConvergenceContract, TheIntervalOfTheMeanAndItsMovement) {
    const std::vector<double> x{10, 12, 9, 11, 10.5, 11.5};
    model(x);
    ASSERT_EQ(beginConverging(6, hostTrue, hostTrue, 1, 30.0), 0);
    run(4);
    EXPECT_EQ(converged(), 0) << "the first check only sets the bounds";
    const Sample early = describe(x, 4);
    run(2);
    const Sample late = describe(x, 6);
    const double h4 = z975 * early.s / 2, h6 = z975 * late.s / std::sqrt(6.0);
    EXPECT_EQ(converged(), 1);
    const Summary summary = end(0.1, 6);
    expectClose(summary.convergence(1, 1), late.mean - h6);
    expectClose(summary.convergence(1, 2), late.mean + h6);
    expectClose(summary.convergence(2, 1), std::fabs(late.mean - h6 - early.mean + h4) / (early.mean - h4));
    expectClose(summary.convergence(2, 2), std::fabs(late.mean + h6 - early.mean - h4) / (early.mean + h4));
    EXPECT_EQ(summary.monitored, (std::vector<std::u16string>{u"out", u"out"}));
    EXPECT_EQ(summary.lastMonitored, 2);
}

TEST_F(ConvergenceContract, ANegativeBoundMovesNegatively) {
    const std::vector<double> x{-10, -12, -9, -11, -14, -13};
    model(x);
    ASSERT_EQ(beginConverging(6, hostTrue, hostTrue, 1, 99.0), 0);
    run(4);
    converged();
    run(2);
    EXPECT_EQ(converged(), 1);
    const Summary summary = end(0.1, 6);
    EXPECT_LT(summary.convergence(2, 1), 0.0) << "divided by the signed old value: intended";
    EXPECT_LT(summary.convergence(2, 2), 0.0);
}

TEST_F(ConvergenceContract, TheIntervalOfTheStandardDeviation) {
    std::vector<double> heavy(12, 1.0);
    heavy[11] = 50;
    heavy[3] = 2;
    model(heavy);
    ASSERT_EQ(beginConverging(12, hostTrue, hostTrue, 2), 0);
    run(12);
    EXPECT_EQ(converged(), 0);
    const Sample sample = describe(heavy, 12);
    ASSERT_GT(sample.excess, 1);
    const double h = sample.s * std::sqrt((sample.excess - 1) / (4 * 12 - 4));
    Summary summary = end(0.1, 12);
    expectClose(summary.convergence(1, 1), sample.s - h);
    expectClose(summary.convergence(1, 2), sample.s + h);
    EXPECT_EQ(summary.convergence(2, 1), 0.0);

    const std::vector<double> light{1, 2, 3, 4};
    model(light);
    ASSERT_EQ(beginConverging(4, hostTrue, hostTrue, 2), 0);
    run(4);
    converged();
    summary = end(0.1, 4);
    EXPECT_EQ(summary.convergence(1, 1), describe(light, 4).s - MissingValue) << "light tails give no width";
    EXPECT_EQ(summary.convergence(1, 2), describe(light, 4).s + MissingValue);
}

TEST_F(ConvergenceContract, TheIntervalOfAPercentileIsBetweenOrderStatistics) {
    std::vector<double> x;
    for (int i = 0; i < 100; ++i) {
        x.push_back((i * 37) % 100);
    }
    model(x);
    ASSERT_EQ(beginConverging(100, hostTrue, hostTrue, 3, 0.0, 0.975, 30.0), 0);
    run(100);
    EXPECT_EQ(converged(), 0);
    EXPECT_EQ(converged(), 1) << "nothing moved, and a tolerance of 0 accepts that";
    const Summary summary = end(0.1, 100);
    const double h = z975 * std::sqrt(100 * 0.3 * 0.7);
    EXPECT_EQ(summary.convergence(1, 1), std::floor(30 - h) - 1) << "the value of rank k is k - 1";
    EXPECT_EQ(summary.convergence(1, 2), std::ceil(30 + h) - 1);
}

TEST_F(ConvergenceContract, AnUnknownCriterionLeavesTheBoundsAlone) {
    model({1, 2, 3});
    ASSERT_EQ(beginConverging(3, hostTrue, hostTrue, 7), 0);
    run(2);
    EXPECT_EQ(converged(), 0);
    run(1);
    EXPECT_EQ(converged(), 1);
    const Summary summary = end(0.1, 3);
    EXPECT_EQ(column(summary.convergence, 1), (std::vector<double>{0, 0}));
    EXPECT_EQ(summary.lastMonitored, 2);
}

TEST_F(ConvergenceContract, OnlyMarkedResultsAreMonitoredUnlessAllAre) {
    for (const HostBool all : std::initializer_list<HostBool>{0, 1, hostTrue}) {
        cells.clear();
        normal({sheet, 0, 0}, "in");
        result({sheet, 1, 0}, "a", [] { return 1.0; });
        cell({sheet, 2, 0}, [this] { return QUORVA_EXPORT(QUORVA_SimRes)("b", 5.0 + iteration, 0, -1, 1); });
        cell({sheet, 3, 0}, [] { return QUORVA_EXPORT(QUORVA_SimRes)("c", 1.0, 0, 1, 1); });
        prepare();
        ASSERT_EQ(beginConverging(3, hostTrue, all, 1), 0);
        run(1);
        converged();
        Summary summary = end(0.1, 3);
        if (all == hostTrue) {
            EXPECT_EQ(summary.monitored, (std::vector<std::u16string>{u"a", u"a", u"b", u"b", u"c", u"c"}));
            EXPECT_EQ(summary.lastMonitored, 6);
        } else {
            EXPECT_EQ(summary.monitored, (std::vector<std::u16string>{u"b", u"b", u"as passed", u"as passed",
                                                                      u"as passed", u"as passed"}));
            EXPECT_EQ(summary.lastMonitored, 2) << all;
            EXPECT_EQ(row(summary.convergence, 1), (std::vector<double>{6, 6, 0, 0, 0, 0}))
                << "one value has an interval without width";
        }
    }
}

TEST_F(ConvergenceContract, WithoutAMonitoredResultCheckingIsSwitchedOff) {
    model({1, 2});
    ASSERT_EQ(beginConverging(2, hostTrue, 0, 1), 0);
    EXPECT_EQ(status(), 3);
    run(2);
    Summary summary = end(0.1, 2);
    EXPECT_EQ(summary.lastMonitored, -77);
    EXPECT_EQ(summary.monitored, (std::vector<std::u16string>{u"as passed", u"as passed"}));
    EXPECT_EQ(column(summary.convergence, 1), (std::vector<double>{0, 0})) << "the caller's table is zeroed";

    model({1, 2});
    ASSERT_EQ(beginConverging(2, 1, hostTrue, 1), 0) << "1 is not true";
    run(2);
    summary = end(0.1, 2);
    EXPECT_EQ(summary.lastMonitored, -77);

    model({1, 2});
    ASSERT_EQ(beginConverging(2, hostTrue, hostTrue, 1), 0);
    run(2);
    summary = end(0.1, 2);
    EXPECT_EQ(summary.lastMonitored, -77) << "no check was made";
    EXPECT_EQ(summary.monitored, (std::vector<std::u16string>{u"as passed", u"as passed"}));
}

TEST_F(ConvergenceContract, EqualStringsKeepTheCallersString) {
    model({1, 2});
    ASSERT_EQ(beginConverging(2, hostTrue, hostTrue, 1), 0);
    run(2);
    converged();
    FrontEndStrings names(4, u"in"), monitored(2, u"out");
    HostString kept = names.at(0), keptMonitored = monitored.at(1);
    matrix<double> general(2, 14), intervals(2, 5), convergence(2, 2);
    int last = 0;
    QUORVA_EXPORT(Cpp_SimEnd)
    (0.05, 2, general.data(), names.data(), convergence.data(), monitored.data(), &last, intervals.data());
    EXPECT_EQ(names.at(0), kept);
    EXPECT_EQ(monitored.at(1), keptMonitored);
    EXPECT_EQ(names.all(), (std::vector<std::u16string>{u"in", u"out", u"[Book]1", u"[Book]1"}));
    EXPECT_EQ(row(intervals, 2), (std::vector<double>{1.05, 1.5, 1.95, 1, 2}));
}

}  // namespace
