#include "frontend/text/number_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorva::frontend {
namespace {

TEST(NumberText, ExactNumbersReadBackAsTheSameDouble) {
    for (const double x : {0.1, 1.0 / 3, 1e300, -2.2250738585072014e-308, 123456789.123456789}) {
        EXPECT_EQ(parseNumber(exactNumber(x)), x);
    }
    EXPECT_EQ(exactNumber(std::numeric_limits<double>::quiet_NaN()), "");
}

TEST(NumberText, ReadableNumbersAreShort) {
    EXPECT_EQ(readableNumber(1234567.0), "1234567");
    EXPECT_EQ(readableNumber(0.30000000000000004), "0.3");
    EXPECT_EQ(readableNumber(-0.05), "-0.05");
    EXPECT_EQ(readableNumber(1e-9), "1e-09");
    EXPECT_EQ(readableNumber(-2.5e200), "-2.5e+200");
    EXPECT_EQ(readableNumber(1.000004e200), "1e+200");
    EXPECT_EQ(readableNumber(1.23456789e-7), "1.23457e-07");
    EXPECT_EQ(readableNumber(std::numeric_limits<double>::infinity()), "-");
}

TEST(NumberText, ParsesOnlyWholeNumbersTexts) {
    EXPECT_EQ(parseNumber(" +1.5e3 "), 1500);
    EXPECT_FALSE(parseNumber("1.5x"));
    EXPECT_FALSE(parseNumber("+-1"));
    EXPECT_FALSE(parseNumber("inf"));
    EXPECT_FALSE(parseNumber(""));
}

}  // namespace
}  // namespace quorva::frontend
