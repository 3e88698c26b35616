#include "numerics/laws.h"

#include <gtest/gtest.h>

#include <cmath>

#include "numerics/core.h"

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

}  // namespace
}  // namespace quorva
