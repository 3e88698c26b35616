#include "workbook/functions/families.h"

#include <gtest/gtest.h>

namespace quorva::workbook {
namespace {

/// Calls a table function with values typed directly.
Value callNamed(std::string_view name, std::vector<Value> values) {
    const CellStore cells;
    Call call{.cells = cells, .arrayMode = true};
    std::vector<Argument> arguments;
    for (Value& value : values) {
        arguments.push_back({std::move(value)});
    }
    const FunctionRow* row = worksheetFunctions().find(name);
    EXPECT_NE(row, nullptr) << name;
    return row ? callFunction(call, *row, arguments) : Value();
}

TEST(FunctionCall, ConvertsScalarsAndPassesTheLeftmostErrorOn) {
    EXPECT_EQ(callNamed("ABS", {"-2.5"}).number(), 2.5);
    EXPECT_EQ(callNamed("ABS", {true}).number(), 1);
    EXPECT_EQ(callNamed("ABS", {"x"}).error(), ErrorCode::Value);
    EXPECT_EQ(callNamed("LEFT", {ErrorCode::NA, ErrorCode::Div0}).error(), ErrorCode::NA);
    EXPECT_EQ(callNamed("SQRT", {-1.0}).error(), ErrorCode::Num);
}

TEST(FunctionCall, MapsOverArraysAndPadsMismatchedShapesWithNA) {
    const Value mapped = callNamed("LEFT", {"abc", Value::array(1, 2, {1.0, 2.0})});
    ASSERT_TRUE(mapped.isArray());
    EXPECT_EQ(mapped.arrayCells()[1].text(), "ab");
    const Value uneven = callNamed("LEFT", {Value::array(1, 3, {"aa", "bb", "cc"}), Value::array(1, 2, {1.0, 2.0})});
    EXPECT_EQ(uneven.arrayCells()[2].error(), ErrorCode::NA);
}

TEST(FunctionCall, CountsDirectBooleansAndTextsButNotThoseInArrays) {
    EXPECT_EQ(callNamed("SUM", {1.0, true, "3"}).number(), 5);
    EXPECT_EQ(callNamed("SUM", {Value::array(1, 3, {1.0, true, "3"})}).number(), 1);
}

TEST(Conversion, ReadsNumbersDatesAndTimesAsEnglishTexts) {
    EXPECT_EQ(parseNumber(" 1,234.5 "), 1234.5);
    EXPECT_EQ(parseNumber("50%"), 0.5);
    EXPECT_EQ(parseNumber("(3)"), -3);
    EXPECT_EQ(parseNumber("-$5.50"), -5.5);
    EXPECT_EQ(parseNumber("1 1/2"), 1.5);
    EXPECT_EQ(parseNumber("1/31/2020"), 43861);
    EXPECT_EQ(parseNumber("31-Jan-2020"), 43861);
    EXPECT_EQ(parseNumber("2020-01-31 12:00"), 43861.5);
    EXPECT_EQ(parseNumber("6:00 PM"), 0.75);
    EXPECT_FALSE(parseNumber("12a"));
    EXPECT_FALSE(parseNumber("1,23"));
    EXPECT_FALSE(parseNumber(""));
}

TEST(Conversion, WritesNumbersWithFifteenDigits) {
    EXPECT_EQ(numberToText(0.1 + 0.2), "0.3");
    EXPECT_EQ(numberToText(1e20), "100000000000000000000");
    EXPECT_EQ(numberToText(1e21), "1E+21");
    EXPECT_EQ(numberToText(-1.5), "-1.5");
    EXPECT_EQ(numberToText(1.0 / 3 * 1e-10), "3.33333333333333E-11");
}

TEST(Conversion, KeepsTheLeapDayOf1900) {
    EXPECT_EQ(*serialFromDate(1900, 3, 1, false), 61);
    EXPECT_EQ(dateFromSerial(60, false)->day, 29);
    EXPECT_EQ(dateFromSerial(0, false)->day, 0);
    EXPECT_EQ(dateFromSerial(59, false)->day, 28);
    EXPECT_EQ(*serialFromDate(1904, 1, 2, true), 1);
    EXPECT_EQ(*serialFromDate(2008, 14, 2, false), 39846);
}

TEST(Criterion, ComparesNumbersTextsAndBlanks) {
    EXPECT_TRUE(Criterion(">=3").matches(3.0));
    EXPECT_FALSE(Criterion(">=3").matches("4"));
    EXPECT_TRUE(Criterion("3").matches("3"));
    EXPECT_TRUE(Criterion("a*").matches("Abc"));
    EXPECT_TRUE(Criterion("<>a").matches(Value()));
    EXPECT_TRUE(Criterion("=").matches(Value()));
    EXPECT_FALSE(Criterion("=").matches(""));
    EXPECT_TRUE(Criterion("").matches(""));
}

}  // namespace
}  // namespace quorva::workbook
