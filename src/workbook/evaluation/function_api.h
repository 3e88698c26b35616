// What a worksheet function is written against.
//
// A function is one row of its family's table in functions/<family>.cpp:
//
//     {.name = "ROUND", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .category = Category::Math, .function = round},
//
// `kinds` has one letter per argument; the last letter, or the last group in parentheses, repeats.
//   Scalars. An array in such a place maps the function over its elements; a range is intersected with the calling cell
//   or mapped, as the formula is an ordinary or an array formula. Errors are passed on before the function is called,
//   the leftmost first:
//     N  a number: text that reads as a number, Booleans and blanks are converted, other text is #VALUE!
//     T  a text: numbers and Booleans are written out, blank is ""
//     B  a Boolean: numbers are true when not 0, the texts TRUE and FALSE are read, other text is #VALUE!
//     S  any scalar as it is, except errors, which are passed on
//     E  any scalar as it is, errors too (ISERROR, IFERROR ...)
//   Not mapped: the function receives the argument as it is, errors inside too:
//     R  a range, an array or a scalar: use grid(), forEachNumber ...
//     A  as R, and the argument's formula is evaluated as an array (SUMPRODUCT, MMULT, CORREL ...)
//     F  a reference; anything else is #VALUE!. An array of references maps the function over them
//     C  any scalar: of a range its first cell; an array, of references too, maps the function over its elements
//     L  as A; usually a lambda: use Call::invoke
// Omitted arguments at the end are simply not there (arguments.size()); an empty one, as in LOG(8,), is there, has
// `missing` set and converts like a blank cell.
//
// Examples.
//     Value round(Call&, Arguments arguments) {            // "NN"
//         return roundHalfAway(arguments[0].number(), arguments[1].number());   // NaN or infinity becomes #NUM!
//     }
//     Value left(Call&, Arguments arguments) {             // "TN", minArgs 1, maxArgs 2
//         const double count = arguments.size() > 1 ? arguments[1].number() : 1;
//         if (count < 0) return ErrorCode::Value;
//         return utf16Slice(arguments[0].text(), 0, count);
//     }
//     Value sum(Call& call, Arguments arguments) {         // "R", maxArgs anyCount
//         double total = 0;
//         if (const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) { total += x; })) {
//             return *error;
//         }
//         return total;
//     }
//     Value vlookupExact(Call& call, Arguments arguments) { // "SRN"
//         const Grid table = arguments[1].grid(call);
//         const int column = static_cast<int>(arguments[2].number()) - 1;
//         for (int row = 0; row < table.usedRows(); ++row)
//             if (equalValues(table.at(row, 0), arguments[0].value)) return table.at(row, column);
//         return ErrorCode::NA;
//     }
// A function of numbers only, free of side effects and memory, may give `numeric` instead of (or beside) `function`: it
// is what the compiled program calls directly; a NaN sends to `function`, or is #NUM! when there is none.
//     double sine(const double* x, int) { return std::fabs(x[0]) < 134217728 ? std::sin(x[0]) : NAN; }
//     {.name = "SIN", .minArgs = 1, .maxArgs = 1, .kinds = "N", .category = Category::Math, .numeric = sine},
//
// Results: return a double, bool, text, ErrorCode or Value::array(rows, columns, cells).
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "workbook/evaluation/cells.h"
#include "workbook/formula/function_table.h"
#include "workbook/values/convert.h"
#include "workbook/values/criterion.h"
#include "workbook/values/dates.h"
#include "workbook/values/texts.h"
#include "workbook/values/value.h"

namespace quorva::workbook {

/// The evaluation in progress, as a function sees it.
struct Call {
    const CellStore& cells;
    int sheet = 0;   ///< of the calling cell, from 0
    int row = 0;     ///< of the calling cell, from 0
    int column = 0;  ///< of the calling cell, from 0
    bool date1904 = false;
    bool arrayMode = false;  ///< the formula is evaluated as an array: ranges are mapped, not intersected
    struct Evaluator* evaluator = nullptr;

    /// Charges work that is not reading cells: call it before loops whose length an argument gives. The elements of
    /// the array that a table function returns, and its text, are charged where it is called.
    void spend(double steps) const { cells.allowance().spend(static_cast<std::int64_t>(std::min(steps, 9e18))); }
    /// Charges the text, if it is one, that an array keeps.
    void spendText(const Value& value) const {
        if (value.isText()) {
            cells.allowance().spend(static_cast<std::int64_t>(value.text().size()));
        }
    }
    /// A uniform random number in (0, 1).
    double random() const;
    /// The moment of this recalculation as a date serial number, local time.
    double now() const;
    /// What the formula of a cell would give if it were copied so many rows down; nothing when the cell has none.
    std::optional<Value> copiedDown(int ofSheet, int ofRow, int ofColumn, int rowsDown) const;
    /// Calls a lambda (a value of type Lambda) with the arguments.
    Value invoke(const Value& lambda, std::span<const Value> arguments) const;
};

struct Argument {
    Value value;
    bool missing = false;  ///< written as empty: ROUND(1.5,)

    double number() const { return value.number(); }
    bool boolean() const { return value.boolean(); }
    const std::string& text() const { return value.text(); }
    /// The argument as a rectangle: cells of its range, its array, or 1 x 1. Throws Unsupported for a reference to
    /// several areas.
    Grid grid(const Call& call) const;
    /// A 1 x 1 range or array as its value; others unchanged.
    Value scalar(const Call& call) const;
};
/// Checks, converts and maps the arguments as the row says and calls its function. References stay references only
/// where the row's kinds let them.
Value callFunction(Call& call, const FunctionRow& row, std::span<Argument> arguments);

// ---- helpers for numbers in arguments ----

/// Which values of an argument count as numbers.
struct NumberRule {
    bool rangeBooleans = false;    ///< Booleans in ranges and arrays count as 1 or 0 (else left out)
    bool rangeTextIsZero = false;  ///< texts in ranges and arrays count as 0 (else left out)
    bool skipErrors = false;       ///< errors are left out instead of ending the walk
};
constexpr NumberRule plainNumbers{};                                             ///< SUM, AVERAGE, STDEV ...
constexpr NumberRule allValues{.rangeBooleans = true, .rangeTextIsZero = true};  ///< AVERAGEA, STDEVA ...

/// The number that one value typed directly stands for: a text is read, a Boolean counts as 1 or 0.
Result<double> directNumber(const Argument& argument);

/// Calls visit(double) for every number of the argument, in order; the first error found ends the walk.
template <class Visit>
std::optional<ErrorCode> forEachNumber(const Call& call, const Argument& argument, NumberRule rule, Visit&& visit) {
    if (argument.value.isScalar()) {
        const auto number = directNumber(argument);
        if (!number) {
            return rule.skipErrors && argument.value.isError() ? std::nullopt : std::optional(number.error());
        }
        visit(*number);
        return std::nullopt;
    }
    std::optional<ErrorCode> error;
    const auto walk = [&](const Grid& grid) {
        grid.forEach([&](const Value& value, int, int) -> bool {
            if (value.isNumber() || (value.isBoolean() && rule.rangeBooleans)) {
                visit(value.number());
            } else if (value.isText() && rule.rangeTextIsZero) {
                visit(0.0);
            } else if (value.isError() && !rule.skipErrors) {
                error = value.error();
                return false;
            }
            return true;
        });
    };
    if (argument.value.isReference()) {
        for (const Area& area : argument.value.areas()) {
            walk(Grid(call.cells, area));
            if (error) {
                return error;
            }
        }
    } else {
        walk(argument.grid(call));
    }
    return error;
}

template <class Visit>
std::optional<ErrorCode> forEachNumber(const Call& call, Arguments arguments, NumberRule rule, Visit&& visit) {
    for (const Argument& argument : arguments) {
        if (const auto error = forEachNumber(call, argument, rule, visit)) {
            return error;
        }
    }
    return std::nullopt;
}

/// Every number of the arguments, in order.
Result<std::vector<double>> collectNumbers(const Call& call, Arguments arguments, NumberRule rule = plainNumbers);

/// Two ranges or arrays of equal size as pairs of numbers; pairs with a text, Boolean or blank on either side are left
/// out. Sizes that differ: #N/A. (CORREL, SLOPE, SUMX2MY2 ...)
struct NumberPairs {
    std::vector<double> first;
    std::vector<double> second;
};
Result<NumberPairs> collectPairs(const Call& call, const Argument& first, const Argument& second);

/// A matrix of numbers, row by row; anything but numbers in it is #VALUE! (MMULT, MDETERM ...).
struct NumberMatrix {
    int rows = 0;
    int columns = 0;
    std::vector<double> cells;
    double& at(int row, int column) { return cells[static_cast<std::size_t>(row) * columns + column]; }
    double at(int row, int column) const { return cells[static_cast<std::size_t>(row) * columns + column]; }
};
Result<NumberMatrix> toMatrix(const Call& call, const Argument& argument);
Value fromMatrix(const NumberMatrix& matrix);

}  // namespace quorva::workbook
