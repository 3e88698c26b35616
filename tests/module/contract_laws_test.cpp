// Laws as worksheet cells: theoretical moments, values outside a run, truncation, defaults and lists of values.
#include <limits>
#include <map>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

constexpr double pi = 3.141592653589793;
constexpr double piSquared = 9.869604401089358;
constexpr double euler = 0.5772156649015329;
constexpr double infinity = std::numeric_limits<double>::infinity();

class LawContract : public ContractModel {};

double theory(int law, int statistic, double a = 0, double b = 0, double c = 0, double d = 0) {
    return QUORVA_EXPORT(TheoStat)(law, statistic, a, b, c, d);
}

struct Moments {
    int law;
    double p[4];
    double mean, variance;
};

/// The module's formulas, written once more; those of laws 14, 21 to 24, 26 to 28 and 31 are not the textbook's:
/// intended.
std::vector<Moments> expectedMoments() {
    const auto G = [](double x) { return std::tgamma(x); };
    const auto triangle = [](double a, double m, double b) {
        return (a * a + m * m + b * b - a * m - a * b - m * m) / 18;
    };
    const double A = (4 * 5 + 9.5 + 5 * 2) / 7.5, B = (5 * 9.5 - 2 - 4 * 5) / 7.5;
    return {
        {1, {2, 3}, 0.4, 6 / (25.0 * 6)},
        {2, {10, 0.3}, 3, 2.1},
        {3, {4, 0.25}, 12, 48},
        {4, {3, 2}, 6, 18},
        {5, {7}, 7, 14},
        {6, {4}, 0.25, 0.0625},
        {7, {5, 8}, 8 / 6.0, 2 * 64.0 * 11 / (5 * 36.0 * 4)},
        {8, {}, euler, pi * pi / 6},
        {9, {2}, 2 * euler, 4 * pi * pi / 6},
        {10, {2, -3}, 2 * euler - 3, 4 * pi * pi / 6},
        {11, {3}, 3, 3},
        {12, {3, 2}, 6, 12},
        {13, {3, 2, 10}, 16, 12},
        {14, {0.5, 0.75}, std::exp(0.28125 + 0.5), std::exp(1 + 0.5625) * std::exp(0.28125 - 1)},
        {15, {5, 2}, 5, 4},
        {16, {}, 0, 1},
        {17, {3, 2}, 3, 4 * 3 / (4.0 * 1)},
        {18, {6.5}, 6.5, 6.5},
        {19, {10}, 0, 1.25},
        {20, {2, 8}, 5, 3},
        {21, {2, 4}, G(1.5), G(1.5) - G(1.25) * G(1.25)},
        {22, {2, 3}, G(1.5) * 3, G(2.0) * 9 - G(1.5) * G(1.5)},
        {23, {2, 3, 10}, G(1.5) * 3 + 10, G(2.0) * 9 - G(1.5) * G(1.5)},
        {24, {3, 0.25, 100}, 12, (G(1.5) - G(1.25) * G(1.25)) * 144},
        {25, {6, 2}, 3, 1.5},
        {26, {1, 4, 10}, 5, triangle(1, 4, 10)},
        {27, {2, 5, 9.5}, 31.5 / 6, 56.25 * A * B / ((A + B) * (A + B) * (A + B + 1))},
        {28, {3, 2}, 3, piSquared / 12},
        {29, {1, 6}, 3.5, 35 / 12.0},
        {30, {2, 3, 10, 20}, 14, 100 * 6 / (25.0 * 6)},
        {31, {1, 4, 10, 12}, 5, triangle(1, 4, 10)},
        {32, {0.3}, 0.3, 0.21},
        {33, {5, 2}, 5, 4},
        {34, {1, 2, 3, 4}, 0, 0},
        {35, {0.25}, 0.25, 0.25 * 0.75 / 2},
    };
}

void expectClose(double actual, double expected, int law, const char* what) {
    EXPECT_NEAR(actual, expected, 1e-13 * std::max(1.0, std::fabs(expected))) << what << " of law " << law;
}

TEST_F(LawContract, EveryLawHasItsTheoreticalMoments) {
    for (const Moments& m : expectedMoments()) {
        const auto ask = [&](int statistic) { return theory(m.law, statistic, m.p[0], m.p[1], m.p[2], m.p[3]); };
        expectClose(ask(1), m.mean, m.law, "mean");
        expectClose(ask(3), std::sqrt(m.variance), m.law, "standard deviation");
        for (const int other : {2, 0, -1, 4, 99}) {
            expectClose(ask(other), m.variance, m.law, "variance");
        }
    }
}

TEST_F(LawContract, UnknownLawsHaveMomentsOfZero) {
    for (const int law : {36, 60, 61, 62, 0, -1, 1000}) {
        for (const int statistic : {1, 2, 3}) {
            EXPECT_EQ(theory(law, statistic, 1, 2, 3, 4), 0.0) << law;
        }
    }
}

TEST_F(LawContract, MomentsAtTheirSpecialParameters) {
    EXPECT_EQ(theory(15, 1, 5, 2), 5.0);
    EXPECT_EQ(theory(15, 3, 5, 2), 2.0);
    EXPECT_EQ(theory(7, 1, 3, 2), 1.0);
    EXPECT_EQ(theory(16, 1, 7, 8), 0.0);
    EXPECT_EQ(theory(19, 1, 10), 0.0);
    EXPECT_EQ(theory(30, 1, 1, -1, 0, 1), infinity);
    EXPECT_EQ(theory(19, 3, 1), MissingValue) << "a negative variance has no square root";
    EXPECT_EQ(theory(19, 2, 1), -1.0);
    EXPECT_EQ(theory(24, 1, 3, 0, 100), 0.0);
    EXPECT_EQ(theory(25, 1, 3, 0), 0.0);
    EXPECT_EQ(theory(25, 2, 3, 0), infinity);
    EXPECT_EQ(theory(27, 1, 4, 4, 4), 0.0);
    EXPECT_TRUE(std::isnan(theory(21, 2, 2))) << "its variance asks for a parameter that the law lacks: intended";
    EXPECT_TRUE(std::isnan(theory(21, 3, 2)));
}

TEST_F(LawContract, OutsideARunACellShowsItsMeanOrDefaultAndTheHostIsNotAsked) {
    host().recordCalls = true;
    host().calls.clear();
    const auto dist = QUORVA_EXPORT(QUORVA_SimDist);
    for (const Moments& m : expectedMoments()) {
        expectClose(dist("x", m.law, m.p[0], m.p[1], m.p[2], m.p[3], MissingValue, 0, 0, 0, 1), m.mean, m.law, "mean");
        EXPECT_EQ(dist("x", m.law, m.p[0], m.p[1], m.p[2], m.p[3], -7.5, 0, 0, 0, 1), -7.5);
    }
    EXPECT_TRUE(std::isnan(dist("x", 15, 5, 2, 0, 0, std::nan(""), 0, 0, 0, 1))) << "NaN is a default, too";
    const auto normal = QUORVA_EXPORT(QUORVA_SimNormal);
    EXPECT_EQ(normal("x", 5, 2, 0, 0, 0, 0, 0, 1), 5.0);
    for (const auto given : std::initializer_list<short>{1, -1, 2, 256, -32768}) {
        EXPECT_EQ(normal("x", 5, 2, 0, 0, 0, given, 7, 1), 7.0) << given << ": anything but 0 is true";
    }
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimRes)("r", 5, 99, 0, 0), 5.0) << "the default of a result is never read";
    const auto variable = QUORVA_EXPORT(QUORVA_SimSVar);
    EXPECT_EQ(variable("d", 1, 4, 2, 1, 0, 0, 1), 2.0);
    EXPECT_EQ(variable("d", -4, -1, 2, 1, 0, 0, 1), -3.0) << "rounded down, not towards zero";
    EXPECT_EQ(variable("d", 1, 4, 1, 1, 0, 0, 1), 2.5);
    EXPECT_EQ(variable("d", 1, 4, 3, 1, 0, 0, 1), 2.5);
    EXPECT_EQ(variable("d", 1, 4, 2, 1, 1, 3.7, 1), 3.7);
    XLOPER reference = localReference(0, 0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimStat)("s", &reference, 13, 1), 0.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimTheoMean)("s", &reference, 1), 0.0);
    EXPECT_TRUE(host().calls.empty());
}

TEST_F(LawContract, TheWrappersPutTheirParametersInOrder) {
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimGamma3)("x", 3, 2, 10, 0, 0, 0, 0, 0, 1), 16.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimBeta4)("x", 2, 3, 10, 20, 0, 0, 0, 0, 0, 1), 14.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimTrapezoidal)("x", 1, 4, 10, 12, 0, 0, 0, 0, 0, 1), 5.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimErlang)("x", 6, 2, 0, 0, 0, 0, 0, 1), 3.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimGumbel)("x", 0, 0, 0, 0, 0, 1), euler);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimNormalStd)("x", 0, 0, 0, 0, 0, 1), 0.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimGEV)("x", 3, 0.25, 100, 0, 0, 0, 0, 0, 1), 12.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimArcsineG)("x", 0.25, 0, 0, 0, 0, 0, 1), 0.25);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimLogNormal2)("x", 5, 2, 0, 0, 0, 0, 0, 1), 5.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimPareto)("x", 3, 2, 0, 0, 0, 0, 0, 1), 3.0);
}

TEST_F(LawContract, TruncationBoundsAreValuesOrProbabilities) {
    const auto call = QUORVA_EXPORT(QUORVA_SimNormal);
    const std::vector<int> modes{1, 2, 0, 3, -1};
    for (std::size_t i = 0; i < modes.size(); ++i) {
        const double lower = modes[i] == 2 ? 0.05 : 4, upper = modes[i] == 2 ? 0.95 : 6;
        const std::string name = "d" + std::to_string(i);
        cell({sheet, static_cast<int>(i), 0},
             [=, mode = modes[i]] { return call(name.c_str(), 5, 2, mode, lower, upper, 0, 0, 1); });
    }
    result({sheet, 9, 0}, "r", [] { return 1.0; });
    prepare();
    constexpr int n = 400;
    ASSERT_EQ(start(n, 100), 0);
    run(n);
    const Summary summary = end(0.05, n);
    EXPECT_NEAR(summary.general(1, 13), 0.5 * std::erfc(0.5 / std::sqrt(2.0)), 1e-15);
    EXPECT_NEAR(summary.general(1, 14), 0.5 * std::erfc(-0.5 / std::sqrt(2.0)), 1e-15);
    EXPECT_EQ(summary.general(2, 13), 0.05);
    EXPECT_EQ(summary.general(2, 14), 0.95);
    for (const int i : {3, 4, 5}) {
        EXPECT_EQ(summary.general(i, 13), 0.0);
        EXPECT_EQ(summary.general(i, 14), 1.0);
        EXPECT_LT(summary.intervals(i, 4), 1.0) << "no truncation";
    }
    EXPECT_GE(summary.intervals(1, 4), 4 - 1e-12);
    EXPECT_LE(summary.intervals(1, 5), 6 + 1e-12);
    EXPECT_GE(summary.intervals(2, 4), 5 - 2 * 1.6448536269514722 - 1e-12);
    EXPECT_LE(summary.intervals(2, 5), 5 + 2 * 1.6448536269514722 + 1e-12);
}

TEST_F(LawContract, AListOfValuesShowsItsMeanOutsideARunAndItsValuesDuringIt) {
    const auto call = QUORVA_EXPORT(QUORVA_SimEmpiricUniform);
    std::uint16_t rows = 3, columns = 1, none = 0;
    double values[] = {1, 2, 10};
    EXPECT_NEAR(call("e", &rows, &columns, values, 0, 0, 1), 13 / 3.0, 1e-15);
    EXPECT_EQ(call("e", &rows, &columns, values, 1, 8, 1), 8.0);
    EXPECT_EQ(call("e", &rows, &columns, values, 2, 8, 1), 8.0);
    EXPECT_EQ(call("e", &none, &columns, values, 0, 0, 1), 1.0) << "no row counts as one";
    EXPECT_EQ(call("e", &rows, &none, values, 1, 8, 1), 0.0);
    EXPECT_EQ(call("e", &rows, &columns, values, 1, MissingValue, 1), 0.0) << "the mean of its law is 0";

    cell({sheet, 0, 0}, [&, call] { return call("e", &rows, &columns, values, 0, 0, 3); });
    result({sheet, 1, 0}, "r", [this] { return value(0); });
    prepare();
    EXPECT_NEAR(value(0), 13 / 3.0, 1e-15) << "its default while it is described";
    ASSERT_EQ(start(90, 90), 0);
    std::map<double, int> seen;
    for (int k = 1; k <= 90; ++k) {
        ASSERT_EQ(step(), 0);
        const double first = value(0);
        EXPECT_EQ(evaluate(0), first) << "a second evaluation shows the same value";
        ++seen[first];
    }
    EXPECT_EQ(seen, (std::map<double, int>{{1, 30}, {2, 30}, {10, 30}})) << "each with equal probability";
    const Summary summary = end(0.05, 90);
    EXPECT_EQ(row(summary.general, 1), (std::vector<double>{1, 61, 0, 0, 3, 0, 1, 3, 0, 0, 13 / 3.0, 0, 0, 1}));
    EXPECT_EQ(summary.intervals(1, 4), 1.0);
    EXPECT_EQ(summary.intervals(1, 5), 10.0);
}

TEST_F(LawContract, ATriangleGivenByPercentilesIsATriangularLaw) {
    const auto call = QUORVA_EXPORT(QUORVA_SimTriangularQ);
    cell({sheet, 0, 0}, [=] { return call("t", 10, 14, 30, 10, 95, 0, 0, 0, 0, 0, 1); });
    result({sheet, 1, 0}, "r", [] { return 0.0; });
    recalculate();
    const double outside = value(0);
    prepare();
    ASSERT_EQ(start(1), 0);
    run(1);
    const Summary summary = end(0.05, 1);
    EXPECT_EQ(summary.names, (std::vector<std::u16string>{u"r", u"t"}));
    const double low = summary.general(2, 7), mode = summary.general(2, 8), high = summary.general(2, 9);
    EXPECT_EQ(summary.general(2, 2), 26.0);
    EXPECT_EQ(mode, 14.0);
    EXPECT_NEAR((10 - low) * (10 - low) / ((high - low) * (mode - low)), 0.10, 1e-11);
    EXPECT_NEAR((high - 30) * (high - 30) / ((high - low) * (high - mode)), 0.05, 1e-11);
    EXPECT_NEAR(outside, (low + mode + high) / 3, 1e-13);
    EXPECT_EQ(summary.general(2, 11), outside);
}

}  // namespace
