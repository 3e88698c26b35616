// Arguments that no law knows: NaN, infinities, probabilities outside [0, 1], parameters at and past their limits.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "numerics/core.h"
#include "numerics/laws.h"

namespace quorva {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int lawCount = 35;

void check(int law, double x, const std::array<double, 4>& p) {
    const double f = CDFFunction(law, x, p[0], p[1], p[2], p[3]);
    const auto where = [&] {
        return testing::Message() << "index " << law << " at " << x << " of (" << p[0] << ", " << p[1] << ", " << p[2]
                                  << ", " << p[3] << ")";
    };
    EXPECT_TRUE(std::isnan(f) || (f >= 0 && f <= 1)) << where() << ": F = " << f;
    const double q = InvCDFFunction(law, x, p[0], p[1], p[2], p[3]);
    if (!(x >= 0 && x <= 1)) {
        EXPECT_TRUE(std::isnan(q)) << where();
    }
    // What one function takes for a law the other takes for one, too.
    if (!std::isnan(x) && x >= 0 && x <= 1) {
        EXPECT_EQ(std::isnan(f), std::isnan(q)) << where() << ": F = " << f << ", Q = " << q;
    }
}

TEST(LawsBadInput, NoCombinationOfOddArgumentsThrowsHangsOrLeavesTheUnitInterval) {
    const std::vector<double> odd{nan,  infinity, -infinity, -1, -0.0, 0,    1e-320, 1e-10,
                                  0.25, 1,        2,         50, 1e6,  1e18, 1e308};
    for (int law = 0; law < lawCount; ++law) {
        for (const double p1 : odd) {
            for (const double p2 : odd) {
                for (const double p3 : {0.5, 3.0, 1e308}) {
                    for (const double x : {nan, -infinity, 0.0, 1e-300, 0.3, 0.999999, 1.0, 7.0, infinity}) {
                        check(law, x, {p1, p2, p3, p3 == 3.0 ? 4.0 : 0.0});
                    }
                }
            }
        }
    }
}

TEST(LawsBadInput, NaNInAnyArgumentGivesNaN) {
    for (int law = 0; law < lawCount; ++law) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::array<double, 4> p{0.5, 0.5, 0.5, 0.5};
            p[i] = nan;
            EXPECT_TRUE(std::isnan(CDFFunction(law, 0.5, p[0], p[1], p[2], p[3]))) << law;
            EXPECT_TRUE(std::isnan(InvCDFFunction(law, 0.5, p[0], p[1], p[2], p[3]))) << law;
        }
        EXPECT_TRUE(std::isnan(CDFFunction(law, nan, 0.5, 0.5, 0.5, 0.5))) << law;
        EXPECT_TRUE(std::isnan(InvCDFFunction(law, nan, 0.5, 0.5, 0.5, 0.5))) << law;
    }
}

TEST(LawsBadInput, ProbabilitiesOutsideTheUnitIntervalGiveNaN) {
    for (int law = 0; law < lawCount; ++law) {
        for (const double u : {-1e-300, -1.0, 1.0000000000000002, 2.0, infinity, -infinity}) {
            EXPECT_TRUE(std::isnan(InvCDFFunction(law, u, 0.5, 0.5, 0.5, 0.5))) << law << " " << u;
        }
    }
    for (const double p : {-1e-300, 1.0000000000000002, nan, infinity}) {
        EXPECT_TRUE(std::isnan(InvCDFNormalStd(p)));
        EXPECT_TRUE(std::isnan(InvCDFStudent(p, 3)));
    }
    for (const double df : {0.0, -1.0, nan}) {
        EXPECT_TRUE(std::isnan(InvCDFStudent(0.3, df)));
    }
}

TEST(LawsBadInput, ParametersThatDefineNoLawGiveNaN) {
    struct Case {
        int id;
        std::array<double, 4> p;
    };
    const std::vector<Case> cases{
        {1, {0, 1}},
        {1, {1, -1}},
        {2, {2.5, 0.5}},
        {2, {-1, 0.5}},
        {2, {5, 1.1}},
        {2, {5, -0.1}},
        {3, {0, 0.5}},
        {3, {5, 0}},
        {3, {5, 1.5}},
        {4, {0, 1}},
        {4, {1, -1}},
        {5, {0}},
        {6, {0}},
        {6, {-1}},
        {7, {0, 1}},
        {7, {1, 0}},
        {9, {-1}},
        {10, {-1, 0}},
        {11, {0}},
        {12, {1, -1}},
        {13, {0, 1, 1}},
        {14, {0, -1}},
        {15, {0, -1}},
        {17, {0, 1}},
        {17, {1, 0}},
        {18, {-1}},
        {19, {0}},
        {20, {1, 0}},
        {21, {0}},
        {22, {1, -1}},
        {23, {-1, 1, 0}},
        {24, {-1, 0, 0}},
        {25, {1, 0}},
        {25, {0, 1}},
        {26, {0, 2, 1}},
        {26, {0, -1, 1}},
        {27, {0, 2, 1}},
        {28, {0, -1}},
        {29, {2, 1}},
        {29, {0.25, 0.75}},
        {30, {0, 1, 0, 1}},
        {30, {1, 1, 1, 0}},
        {31, {0, 2, 1, 3}},
        {31, {0, 1, 2, 1}},
        {32, {1.5}},
        {32, {-0.5}},
        {33, {0, 1}},
        {33, {1, -1}},
        {35, {-0.1}},
        {35, {1.1}},
        {15, {infinity, 1}},
        {15, {0, infinity}},
        {20, {-infinity, 0}},
    };
    for (const auto& [id, p] : cases) {
        EXPECT_TRUE(std::isnan(CDFFunction(id - 1, 0.5, p[0], p[1], p[2], p[3]))) << id << " " << p[0] << " " << p[1];
        EXPECT_TRUE(std::isnan(InvCDFFunction(id - 1, 0.5, p[0], p[1], p[2], p[3])))
            << id << " " << p[0] << " " << p[1];
    }
}

TEST(LawsBadInput, DegenerateParametersGiveThePointMass) {
    struct Case {
        int id;
        std::array<double, 4> p;
        double at;
    };
    const std::vector<Case> cases{
        {2, {7, 0}, 0},        {2, {7, 1}, 7},        {2, {0, 0.5}, 0},   {3, {2.5, 1}, 0},   {4, {3, 0}, 0},
        {9, {0}, 0},           {10, {0, 3}, 3},       {12, {2, 0}, 0},    {13, {2, 0, 5}, 5}, {14, {0, 0}, 1},
        {15, {5, 0}, 5},       {18, {0}, 0},          {20, {2, 2}, 2},    {22, {2, 0}, 0},    {23, {2, 0, -1}, -1},
        {24, {0, 0.5, 4}, 4},  {26, {3, 3, 3}, 3},    {27, {3, 3, 3}, 3}, {28, {1, 0}, 1},    {29, {4, 4}, 4},
        {30, {2, 3, 1, 1}, 1}, {31, {2, 2, 2, 2}, 2}, {32, {0}, 0},       {32, {1}, 1},       {33, {2, 0}, 2},
        {35, {0}, 0},          {35, {1}, 1},
    };
    for (const auto& [id, p, at] : cases) {
        for (const double u : {0.0, 1e-300, 0.3, 1.0}) {
            EXPECT_EQ(InvCDFFunction(id - 1, u, p[0], p[1], p[2], p[3]), at) << id;
        }
        EXPECT_EQ(CDFFunction(id - 1, at, p[0], p[1], p[2], p[3]), 1) << id;
        EXPECT_EQ(CDFFunction(id - 1, at - 0.5, p[0], p[1], p[2], p[3]), 0) << id;
    }
}

TEST(LawsBadInput, EndsOfTheSupport) {
    struct Case {
        int id;
        std::array<double, 4> p;
        double lower;
        double upper;
    };
    const std::vector<Case> cases{
        {1, {2, 3}, 0, 1},
        {2, {7, 0.5}, 0, 7},
        {3, {2, 0.5}, 0, infinity},
        {4, {2, 0.5}, 0, infinity},
        {5, {2}, 0, infinity},
        {6, {2}, 0, infinity},
        {7, {2, 3}, 0, infinity},
        {8, {}, -infinity, infinity},
        {13, {2, 3, 7}, 7, infinity},
        {14, {0, 1}, 0, infinity},
        {15, {0, 1}, -infinity, infinity},
        {16, {}, -infinity, infinity},
        {17, {2, 3}, 3, infinity},
        {18, {2}, 0, infinity},
        {19, {2}, -infinity, infinity},
        {20, {2, 3}, 2, 3},
        {23, {2, 3, -4}, -4, infinity},
        {24, {2, 0.5, 1}, -infinity, 5},
        {24, {2, -0.5, 1}, -3, infinity},
        {24, {2, 0, 1}, -infinity, infinity},
        {25, {2, 3}, 0, infinity},
        {26, {1, 2, 4}, 1, 4},
        {27, {1, 2, 4}, 1, 4},
        {28, {0, 1}, -infinity, infinity},
        {29, {-2, 3}, -2, 3},
        {30, {2, 3, -1, 5}, -1, 5},
        {31, {1, 2, 3, 4}, 1, 4},
        {32, {0.5}, 0, 1},
        {33, {1, 1}, 0, infinity},
        {35, {0.5}, 0, 1},
    };
    for (const auto& [id, p, lower, upper] : cases) {
        EXPECT_EQ(InvCDFFunction(id - 1, 0, p[0], p[1], p[2], p[3]), lower) << id;
        EXPECT_EQ(InvCDFFunction(id - 1, 1, p[0], p[1], p[2], p[3]), upper) << id;
        EXPECT_EQ(CDFFunction(id - 1, upper, p[0], p[1], p[2], p[3]), 1) << id;
        EXPECT_EQ(CDFFunction(id - 1, -infinity, p[0], p[1], p[2], p[3]), 0) << id;
        EXPECT_EQ(CDFFunction(id - 1, infinity, p[0], p[1], p[2], p[3]), 1) << id;
        EXPECT_EQ(CDFFunction(id - 1, lower - 1, p[0], p[1], p[2], p[3]), 0) << id;
    }
}

TEST(LawsBadInput, GammaFunctionAtItsPolesAndLimits) {
    EXPECT_EQ(GammaF(infinity), infinity);
    EXPECT_EQ(GammaF(5), 24);
    EXPECT_NEAR(GammaF(0.5), 1.7724538509055160273, 4e-16);
    EXPECT_NEAR(GammaF(-1.5), 2.3632718012073547031, 1e-15);
    EXPECT_EQ(GammaF(200), infinity);
    for (const double pole : {0.0, -0.0, -1.0, -2.0, -1e18, -infinity, nan}) {
        EXPECT_TRUE(std::isnan(GammaF(pole))) << pole;
    }
}

}  // namespace
}  // namespace quorva
