// Every function called with arguments that nobody would write on purpose.
#include <gtest/gtest.h>

#include <cmath>
#include <exception>
#include <random>

#include "workbook/functions/families.h"

namespace quorva::workbook {
namespace {

std::vector<Value> oddValues() {
    std::vector<Value> values{0.0,         1.0,          -1.0,          2.0,
                              0.5,         -0.5,         3.7,           12.0,
                              1e6,         -1e6,         1e15,          1e300,
                              -1e300,      1e-300,       39448.25,      60.0,
                              2958465.0,   2958466.0,    true,          false,
                              Value(),     "",           "x",           "3+4i",
                              "-i",        "1e300i",     "0.00",        "# ?/",
                              "[<5]0",     "\"",         "[",           "\\",
                              "E+",        "/",          "_",           ";;;;",
                              "12",        "1/2/2020",   "1111100",     "km",
                              "~*?",       "FFFFFFFFFF", ErrorCode::NA, ErrorCode::Div0,
                              2147483648.0};
    values.push_back("#,##0.0?;(0);;@");
    values.push_back("yyyy-mm-dd [h]:mm:ss.000 AM/PM");
    values.push_back("\xC3\x9C\xF0\x9F\x98\x80");
    values.push_back(std::string(300, 'a'));
    values.push_back(Value::array(2, 2, {1.0, "a", Value(), ErrorCode::Num}));
    values.push_back(Value::array(1, 3, {-100.0, 50.0, 70.0}));
    values.push_back(Value::array(3, 1, {39448.0, 39500.0, 39800.0}));
    values.push_back(Value::array(3, 1, {"a", "b", "c"}));
    values.push_back(Value::array(1, 1, {Value()}));
    return values;
}

std::string shown(const Value& value) {
    if (value.isArray()) {
        return "{...}";
    }
    const auto text = toText(value);
    return value.isError() ? std::string(errorText(value.error())) : *text;
}

TEST(FunctionTable, OddArgumentsNeverThrowAndGiveFiniteNumbers) {
    const CellStore cells;
    const std::vector<Value> values = oddValues();
    std::mt19937 generator(20261120);
    const auto draw = [&](std::size_t count) { return generator() % count; };
    long calls = 0;
    for (const FunctionRow* row : worksheetFunctions().rows()) {
        if (row->volatility == Volatility::Volatile || row->kinds.find_first_of("FL") != std::string_view::npos) {
            continue;
        }
        for (int i = 0; i < 200; ++i) {
            Call call{.cells = cells, .date1904 = draw(8) == 0, .arrayMode = true};
            const int most = std::min(row->maxArgs, row->minArgs + 4);
            std::vector<Argument> arguments(static_cast<std::size_t>(row->minArgs) +
                                            draw(static_cast<std::size_t>(most - row->minArgs) + 1));
            std::string formula(row->name);
            for (Argument& argument : arguments) {
                argument.value = values[draw(values.size())];
                argument.missing = argument.value.isBlank();
                formula += " | " + shown(argument.value);
            }
            try {
                const Allowance::Grant grant(cells.allowance(), 1'000'000);
                const Value result = callFunction(call, *row, arguments);
                EXPECT_TRUE(!result.isNumber() || std::isfinite(result.number())) << formula;
                EXPECT_FALSE(result.isReference()) << formula;
            } catch (const Unsupported&) {  // sizes such as 1e6 rows of 1e6 columns
            } catch (const std::exception& failure) {
                ADD_FAILURE() << formula << ": " << failure.what();
            }
            ++calls;
        }
    }
    EXPECT_GT(calls, 30000);
}

}  // namespace
}  // namespace quorva::workbook
