#include "numerics/laws.h"

#include <gtest/gtest.h>

#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/core.h"
#include "numerics/newton.h"

namespace quorva {
namespace {

TEST(Core, NormalAndStudentQuantilesInvertTheirFunctions) {
    EXPECT_DOUBLE_EQ(CDFNormalStd(0), 0.5);
    EXPECT_DOUBLE_EQ(InvCDFNormalStd(0.975), 1.9599639845400543);
    EXPECT_DOUBLE_EQ(InvCDFStudent(0.975, 10), 2.2281388519862745);
    EXPECT_EQ(InvCDFStudent(0.5, 3), 0);
}

TEST(Laws, UnknownIndexesGiveNaN) {
    for (const int law : {-1, 33, 35, 60, 1000000}) {
        EXPECT_TRUE(std::isnan(CDFFunction(law, 0.5, 0.5, 0.5, 0.5, 0.5))) << law;
        EXPECT_TRUE(std::isnan(InvCDFFunction(law, 0.5, 0.5, 0.5, 0.5, 0.5))) << law;
    }
}

TEST(Laws, DegenerateParametersGiveThePointMass) {
    EXPECT_EQ(InvCDFFunction(14, 0.3, 5, 0, 0, 0), 5);
    EXPECT_EQ(CDFFunction(14, 5, 5, 0, 0, 0), 1);
    EXPECT_EQ(CDFFunction(14, 4.9, 5, 0, 0, 0), 0);
    EXPECT_EQ(InvCDFFunction(19, 0, 2, 2, 0, 0), 2);
}

// Where beta is 1 the beta law is a power, and Fisher's law with 2 and 2 degrees of freedom is x / (x + 1). The numbers
// in between are too small for normal doubles.
TEST(Laws, BetaLawsKeepTheirPrecisionNextToTheEndOfTheirSupport) {
    for (const double x : {0x1p-1074, 0x3p-1074, 0x1.2345p-1030, 0x1.8p-1000}) {
        EXPECT_NEAR(CDFFunction(0, x, 0.5, 1, 0, 0), std::sqrt(x), 1e-15 * std::sqrt(x)) << x;
        const double stretched = std::sqrt(x) * 0x1p-12;
        EXPECT_NEAR(CDFFunction(29, x, 0.5, 1, 0, 0x1p24), stretched, 1e-15 * stretched) << x;
    }
    EXPECT_NEAR(CDFFunction(6, 0x1.8p-1060, 1, 2, 0, 0), std::sqrt(0x1.8p-1061), 1e-15 * std::sqrt(0x1.8p-1061));
    EXPECT_NEAR(CDFFunction(34, 0x1p-1074, 0.3, 0, 0, 0), 8.746250550142038e-98, 1e-112);
    // Q(u) = d u^(1/alpha)
    EXPECT_EQ(InvCDFFunction(29, 0x1.8p-520, 0.5, 1, 0, 0x1p30), 0x1.2p-1009);
    const double half = std::pow(0x1.8p-17, 32);
    EXPECT_NEAR(InvCDFFunction(29, 0x1.8p-17, 0x1p-6, 1, 0, 0x1p1000), 0x1p1000 * half * half, 1e-15 * 0x1p-50);
    EXPECT_EQ(InvCDFFunction(0, 0x1.8p-530, 0.5, 1, 0, 0), 0x1.2p-1059);
}

// Location and 1/k all but cancel: the end of the support is 2^-30.
TEST(Laws, ExtremeValuesKeepTheirPrecisionWhereTheLocationCancels) {
    const double location = 0x1p-30 - 0.5;
    for (const double u : {0.5, 0.9, 0.999, 1 - 0x1p-20}) {
        const double x = InvCDFFunction(23, u, 1, 2, location, 0);
        const long double logarithm = std::log(static_cast<long double>(u));
        const auto expected = static_cast<double>(0x1p-30L - logarithm * logarithm / 2);
        EXPECT_NEAR(x, expected, 1e-14 * std::abs(expected)) << u;
    }
}

// exp(-(1 - k z)^(1/k)) with k = 2, which ends at z = 1/2: at 2^20 + 1/3, between two doubles.
TEST(Laws, ExtremeValuesReachTheEndOfTheirSupportAndNotBefore) {
    constexpr double location = 0x1p20;
    constexpr double scale = 2.0 / 3;
    constexpr double inside = 0x1.0000055555555p+20;
    const double outside = std::nextafter(inside, 2e6);
    EXPECT_NEAR(CDFFunction(23, inside, scale, 2, location, 0), 0.9999847413291711, 1e-15);
    EXPECT_EQ(CDFFunction(23, outside, scale, 2, location, 0), 1);
    EXPECT_EQ(InvCDFFunction(23, 1, scale, 2, location, 0), outside);
    // The same law turned round: with k = -2 exp(-(1 + 2 z)^(-1/2)) begins there.
    EXPECT_EQ(CDFFunction(23, -outside, scale, -2, -location, 0), 0);
    EXPECT_NEAR(CDFFunction(23, -inside, scale, -2, -location, 0), std::exp(-1 / std::sqrt(2.328305881427184e-10)),
                1e-15);
}

// The last term of a series that was cut off is off by any amount; here 4 percent.
TEST(Convergence, AnEvaluationThatDoesNotConvergeIsNaN) {
    EXPECT_TRUE(std::isnan(orNaN([] { return boost::math::gamma_p(1e10L, 1e10L + 5e4L, NumericPolicy()); })));
    EXPECT_TRUE(std::isnan(polished(1.0, 0.3, [](double) { return TailPoint{std::nan(""), 1.0}; })));
    // A tail that Newton's method turns round and round.
    EXPECT_TRUE(std::isnan(polished(1.0, 0.25, [](double x) {
        return x > 0.5 ? TailPoint{0.5, 0.5 / x} : TailPoint{0.125, 0.125 / x};
    })));
}

// The law is narrower than a step of 1e-7 that would be small for others.
TEST(Convergence, AStepIsJudgedByTheProbabilityItMoves) {
    constexpr double deviation = 1e-8;
    const auto tail = [](double x) {
        const double z = (x - 1) / deviation;
        return TailPoint{CDFNormalStd(z), std::exp(-z * z / 2) / 2.5066282746310002 / deviation};
    };
    const double x = polished(1.0, CDFNormalStd(-2), tail);
    EXPECT_NEAR((x - 1) / deviation, -2, 1e-7);
}

}  // namespace
}  // namespace quorva
