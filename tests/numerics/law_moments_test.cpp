#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "numerics/law_table.h"
#include "quorva/wire_format.h"

using namespace quorva;

namespace {

double mean(int law, double a = 0, double b = 0, double c = 0, double d = 0) { return TheoStat(law, 1, a, b, c, d); }
double variance(int law, double a = 0, double b = 0, double c = 0, double d = 0) {
    return TheoStat(law, 2, a, b, c, d);
}

TEST(LawMoments, NormalLaw) {
    EXPECT_EQ(TheoStat(15, 1, 5, 2, 0, 0), 5.0);
    EXPECT_EQ(TheoStat(15, 3, 5, 2, 0, 0), 2.0);
    EXPECT_EQ(TheoStat(15, 0, 5, 2, 0, 0), 4.0) << "any other statistic is the variance";
    EXPECT_EQ(TheoStat(15, 77, 5, 2, 0, 0), 4.0);
}

TEST(LawMoments, SpecialCases) {
    EXPECT_EQ(mean(7, 3, 2), 1.0);
    EXPECT_EQ(mean(7, 3, 6), 1.5);
    EXPECT_EQ(mean(16), 0.0);
    EXPECT_EQ(mean(19, 10), 0.0);
    EXPECT_EQ(mean(30, 1, -1, 0, 1), std::numeric_limits<double>::infinity());
    EXPECT_EQ(TheoStat(19, 3, 1, 0, 0, 0), MissingValue) << "a negative variance has no deviation";
    EXPECT_EQ(mean(24, 3, 0, 1), 0.0);
    EXPECT_EQ(mean(25, 3, 0), 0.0);
    EXPECT_EQ(mean(27, 4, 4, 4), 0.0);
}

TEST(LawMoments, IdentifiersWithoutALawAreZero) {
    for (const int law : {36, 61, 0, -1, 34, 60, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        for (const int statistic : {1, 2, 3}) {
            EXPECT_EQ(TheoStat(law, statistic, 1.5, 2.5, 3.5, 4.5), 0.0) << law;
        }
    }
}

struct Expected {
    int law;
    double p[4];
    double mean;
    double variance;
};

class LawMomentsTable : public ::testing::TestWithParam<Expected> {};

TEST_P(LawMomentsTable, FollowsTheFormula) {
    const Expected& e = GetParam();
    EXPECT_NEAR(mean(e.law, e.p[0], e.p[1], e.p[2], e.p[3]), e.mean, 1e-14 * std::fabs(e.mean)) << e.law;
    EXPECT_NEAR(variance(e.law, e.p[0], e.p[1], e.p[2], e.p[3]), e.variance, 1e-13 * std::fabs(e.variance)) << e.law;
}

// Worked out from the formulas by hand, with shapes that make the gamma function rational: G(2) = 1, G(3) = 2, G(5)
// = 24.
INSTANTIATE_TEST_SUITE_P(
    AllLaws, LawMomentsTable,
    ::testing::Values(Expected{1, {2, 3}, 0.4, 0.04}, Expected{2, {10, 0.25}, 2.5, 1.875}, Expected{3, {4, 0.5}, 4, 8},
                      Expected{4, {4, 0.5}, 2, 3}, Expected{5, {7}, 7, 14}, Expected{6, {4}, 0.25, 0.0625},
                      Expected{7, {4, 6}, 1.5, 2.0 * 36 * 8 / (4 * 16 * 2)},
                      Expected{8, {}, 0.5772156649015329, 1.6449340668482264},
                      Expected{9, {2}, 1.1544313298030658, 6.579736267392906},
                      Expected{10, {2, 3}, 4.154431329803066, 6.579736267392906}, Expected{11, {3}, 3, 3},
                      Expected{12, {3, 2}, 6, 12}, Expected{13, {3, 2, 1}, 7, 12},
                      Expected{14, {0.5, 1}, 2.718281828459045, 4.4816890703380645},  // e^2 e^-1/2, not e^2 (e - 1)
                      Expected{15, {5, 3}, 5, 9}, Expected{16, {}, 0, 1}, Expected{17, {3, 2}, 3, 3},
                      Expected{18, {6}, 6, 6}, Expected{19, {4}, 0, 2}, Expected{20, {2, 8}, 5, 3},
                      Expected{21, {1, 1}, 1, 1},             // the second parameter is the one read
                      Expected{22, {0.5, 3}, 6, 24 * 9 - 4},  // the square of the gamma value is not scaled
                      Expected{23, {0.5, 3, 1}, 7, 24 * 9 - 4},
                      Expected{24, {6, 2, 1}, 3, (24 - 4) * 9.0},  // the location takes no part
                      Expected{25, {6, 2}, 3, 1.5},
                      Expected{26, {1, 2, 6}, 3, (1 + 4 + 36 - 2 - 6 - 4) / 18.0},  // m m, not m b
                      Expected{27, {1, 2, 6}, 2.5, 25 * 3.8 * 4.2 / (64 * 9.0)},    // + 5a, not - 5a
                      Expected{28, {3, 2}, 3, 9.869604401089358 / 12},              // divided by sigma squared
                      Expected{29, {1, 6}, 3.5, 35.0 / 12}, Expected{30, {2, 3, 1, 6}, 3, 1.0},
                      Expected{31, {1, 2, 6, 9}, 3, 29.0 / 18}, Expected{32, {0.25}, 0.25, 0.1875},
                      Expected{33, {3, 2}, 3, 4}, Expected{35, {0.25}, 0.25, 0.09375}));

}  // namespace
