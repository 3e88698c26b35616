#include "frontend/text/text.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorva::frontend {
namespace {

TEST(Text, RoundTripsBetweenUtf8AndUtf16) {
    const std::string text = "Kosten € und 😀";
    EXPECT_EQ(toUtf8(toUtf16(text)), text);
    EXPECT_EQ(toUtf16("😀").size(), 2u);
}

TEST(Text, ReplacesMalformedBytesAndLoneSurrogates) {
    EXPECT_EQ(toUtf8(toUtf16("a\xFFz")), "a\xEF\xBF\xBDz");
    EXPECT_EQ(toUtf8(std::u16string{u'a', char16_t(0xD800)}), "a\xEF\xBF\xBD");
}

TEST(Text, ExactNumbersReadBackAsTheSameDouble) {
    for (const double x : {0.1, 1.0 / 3, 1e300, -2.2250738585072014e-308, 123456789.123456789}) {
        EXPECT_EQ(parseNumber(exactNumber(x)), x);
    }
    EXPECT_EQ(exactNumber(std::numeric_limits<double>::quiet_NaN()), "");
}

TEST(Text, ReadableNumbersAreShort) {
    EXPECT_EQ(readableNumber(1234567.0), "1234567");
    EXPECT_EQ(readableNumber(0.30000000000000004), "0.3");
    EXPECT_EQ(readableNumber(-0.05), "-0.05");
    EXPECT_EQ(readableNumber(1e-9), "1e-09");
    EXPECT_EQ(readableNumber(-2.5e200), "-2.5e+200");
    EXPECT_EQ(readableNumber(1.000004e200), "1e+200");
    EXPECT_EQ(readableNumber(1.23456789e-7), "1.23457e-07");
    EXPECT_EQ(readableNumber(std::numeric_limits<double>::infinity()), "-");
}

TEST(Text, ParsesOnlyWholeNumbersTexts) {
    EXPECT_EQ(parseNumber(" +1.5e3 "), 1500);
    EXPECT_FALSE(parseNumber("1.5x"));
    EXPECT_FALSE(parseNumber("+-1"));
    EXPECT_FALSE(parseNumber("inf"));
    EXPECT_FALSE(parseNumber(""));
}

TEST(Text, CellAddressesQuoteSheetNamesThatNeedIt) {
    EXPECT_EQ(cellAddress(6, 1), "B7");
    EXPECT_EQ(cellAddress(0, 702), "AAA1");
    EXPECT_EQ(cellAddress("Costs", 6, 1), "Costs!B7");
    EXPECT_EQ(cellAddress("My 'own' sheet", 0, 0), "'My ''own'' sheet'!A1");
    EXPECT_EQ(sheetOfHostName("[Book.xlsx]Costs"), "Costs");
}

TEST(Text, SuggestsTheNearestName) {
    const std::vector<std::string> names{"Profit", "Cost", "Revenue"};
    EXPECT_EQ(nearestName("profits", names), "Profit");
    EXPECT_EQ(nearestName("xyzzy", names), "");
}

TEST(Text, WidthOnATerminalCountsWideAndCombiningCharacters) {
    EXPECT_EQ(displayWidth("日本"), 4u);
    EXPECT_EQ(displayWidth("e\xCC\x81"), 1u);
    EXPECT_EQ(fitLeft("日本語", 4), "日… ");
    EXPECT_EQ(fitLeft("日本", 6), "日本  ");
    EXPECT_EQ(shortened("abcdef", 4), "abc…");
    EXPECT_EQ(shortened("abcd", 4), "abcd");
}

}  // namespace
}  // namespace quorva::frontend
