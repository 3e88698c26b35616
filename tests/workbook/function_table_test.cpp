// What holds for every row of the function table, and functions that need more than a text workbook can say.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <set>

#include "workbook/functions/families.h"
#include "workbook/functions/normal.h"

namespace quorva::workbook {
namespace {

Value callRow(const CellStore& cells, const FunctionRow& row, std::vector<Value> values) {
    Call call{.cells = cells, .arrayMode = true};
    std::vector<Argument> arguments;
    for (Value& value : values) {
        arguments.push_back({std::move(value)});
    }
    return callFunction(call, row, arguments);
}

TEST(FunctionTable, HasEveryNameOnceWithSensibleArities) {
    std::set<std::string_view> names;
    for (const FunctionRow* row : worksheetFunctions().rows()) {
        EXPECT_TRUE(names.insert(row->name).second) << row->name << " stands in two tables";
        EXPECT_LE(row->minArgs, row->maxArgs) << row->name;
        EXPECT_TRUE(row->function || row->numeric) << row->name;
        EXPECT_EQ(row->kinds.empty(), row->maxArgs == 0) << row->name;
        EXPECT_EQ(worksheetFunctions().find(row->name), row);
    }
}

/// The compiled program calls the numeric form directly: it must be the same function.
TEST(FunctionTable, NumericFormsAgreeWithTheGeneralOnes) {
    const CellStore cells;
    const double samples[] = {-3, -0.5, 0, 0.25, 1, 2.5, 10};
    int compared = 0;
    for (const FunctionRow* row : worksheetFunctions().rows()) {
        if (!row->numeric || !row->function || row->minArgs > 3) {
            continue;
        }
        for (int i = 0; i < 343; ++i) {
            const double x[] = {samples[i % 7], samples[i / 7 % 7], samples[i / 49]};
            const double direct = row->numeric(x, row->minArgs);
            if (!std::isfinite(direct)) {
                continue;  // then the general form is called
            }
            const Value general = callRow(cells, *row, std::vector<Value>(x, x + row->minArgs));
            ASSERT_TRUE(general.isNumber()) << row->name << '(' << x[0] << ", " << x[1] << ", " << x[2] << ')';
            ASSERT_EQ(general.number(), direct) << row->name;
            ++compared;
        }
    }
    EXPECT_GT(compared, 1000);
}

/// Every numeric function answers every number, however odd, with a number or a NaN.
TEST(FunctionTable, NumericFormsSurviveExtremeArguments) {
    const double samples[] = {-1e308, -1e15, -1, 0, 1e-308, 0.01, 1, 3, 1e9, 1e308};
    for (const FunctionRow* row : worksheetFunctions().rows()) {
        if (!row->numeric) {
            continue;
        }
        const int combinations = static_cast<int>(std::pow(10, std::min(row->minArgs, 4)));
        for (int i = 0; i < combinations; ++i) {
            const double x[] = {samples[i % 10],   samples[i / 10 % 10], samples[i / 100 % 10],
                                samples[i / 1000], samples[i % 7],       samples[i % 3]};
            EXPECT_NO_THROW(row->numeric(x, row->minArgs)) << row->name;
        }
    }
}

/// Functions of which the host computes a part.
bool mayRefuse(const FunctionRow& row) {
    const std::string_view partly[] = {"ASC", "BAHTTEXT", "DBCS", "PHONETIC", "TRIMRANGE"};
    return row.category == Category::Database || row.name.starts_with("REGEX") ||
           std::find(std::begin(partly), std::end(partly), row.name) != std::end(partly);
}

/// Whatever the arguments are, a function gives a value: it neither throws nor runs away.
TEST(FunctionTable, FunctionsSurviveArgumentsOfEveryKind) {
    CellStore cells;
    cells.build({{cellKey(0, 0), cellKey(0, 1), cellKey(1, 0)}});
    cells.set(cells.find(0, 0, 0), Value(2.0));
    cells.set(cells.find(0, 0, 1), Value("text"));
    cells.set(cells.find(0, 1, 0), Value(ErrorCode::Div0));
    const std::vector<Value> samples = {-1e308,
                                        -1.0,
                                        0.0,
                                        0.5,
                                        3.0,
                                        1e308,
                                        "text",
                                        "",
                                        true,
                                        Value(),
                                        ErrorCode::NA,
                                        Value::array(2, 2, {1.0, 2.0, "x", Value()}),
                                        Value::reference({Area{0, 0, 0, 0, 0}}),
                                        Value::reference({Area{0, 0, 0, 2, 1}})};
    for (const FunctionRow* row : worksheetFunctions().rows()) {
        if (row->volatility == Volatility::Volatile || row->kinds.find('L') != std::string_view::npos) {
            continue;  // they need a recalculation in progress
        }
        const int count = std::clamp(row->maxArgs, row->minArgs, std::max(row->minArgs, 3));
        const int combinations = static_cast<int>(std::pow(samples.size(), std::min(count, 3)));
        for (int i = 0; i < combinations; ++i) {
            std::vector<Value> arguments;
            for (int argument = 0, rest = i; argument < count; ++argument) {
                arguments.push_back(samples[static_cast<std::size_t>(rest) % samples.size()]);
                rest = argument == 2 ? i : rest / static_cast<int>(samples.size());
            }
            try {
                callRow(cells, *row, arguments);
            } catch (const Unsupported& unsupported) {
                EXPECT_TRUE(mayRefuse(*row)) << row->name << ": " << unsupported.what;
            } catch (...) {
                ADD_FAILURE() << row->name << " throws with arguments of set " << i;
            }
        }
    }
}

TEST(NormalQuantile, IsTheInverseOfTheProbabilityInBothTails) {
    const boost::math::normal_distribution<long double> exact;
    for (const double p :
         {1e-300, 1e-100, 1e-20, 1e-5, 0.001, 0.02, 0.0749, 0.0751, 0.3, 0.4999, 0.5, 0.6, 0.925, 0.99999}) {
        const auto expected = static_cast<double>(quantile(exact, static_cast<long double>(p)));
        EXPECT_NEAR(normalQuantile(p), expected, 4e-16 * std::fabs(expected) + 1e-17) << p;
    }
    EXPECT_TRUE(std::isnan(normalQuantile(0)));
    EXPECT_TRUE(std::isnan(normalQuantile(1)));
    EXPECT_TRUE(std::isnan(normalQuantile(NAN)));
}

TEST(Subtotal, NeverCountsFilteredRowsAndCountsRowsHiddenByHandUnlessAskedNotTo) {
    CellStore cells;
    cells.build({{cellKey(0, 0), cellKey(1, 0), cellKey(2, 0)}});
    for (int row = 0; row < 3; ++row) {
        cells.set(cells.find(0, row, 0), Value(std::pow(10, row)));
    }
    cells.sheet(0).hiddenRows = {false, true, true};
    cells.sheet(0).filteredRows = {false, false, true};
    const Value range = Value::reference({Area{0, 0, 0, 2, 0}});
    const FunctionRow& subtotal = *worksheetFunctions().find("SUBTOTAL");
    EXPECT_EQ(callRow(cells, subtotal, {9, range}).number(), 11);
    EXPECT_EQ(callRow(cells, subtotal, {109, range}).number(), 1);
}

}  // namespace
}  // namespace quorva::workbook
