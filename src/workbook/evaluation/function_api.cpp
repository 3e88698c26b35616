// Calls of table functions: conversion of arguments, mapping over arrays.
#include "workbook/evaluation/function_api.h"

#include <algorithm>
#include <boost/container/small_vector.hpp>

#include "workbook/evaluation/references.h"

namespace quorva::workbook {

namespace {

bool isScalarKind(char kind) { return kind == 'N' || kind == 'T' || kind == 'B' || kind == 'S' || kind == 'E'; }

/// Whether an array in such a place maps the function over its elements.
bool isMappedKind(char kind) { return isScalarKind(kind) || kind == 'C' || kind == 'F'; }

/// Converts in place as the kind says; false when the value is (or became) an error that is passed on.
bool convert(char kind, Argument& argument, bool date1904) {
    Value& value = argument.value;
    switch (kind) {
        case 'N':
            if (!value.isNumber()) {
                const auto number = toNumber(value, date1904);
                value = number ? Value(*number) : Value(number.error());
            }
            break;
        case 'T':
            if (!value.isText()) {
                const auto text = toText(value);
                value = text ? Value(*text) : Value(text.error());
            }
            break;
        case 'B':
            if (!value.isBoolean()) {
                const auto boolean = toBoolean(value);
                value = boolean ? Value(*boolean) : Value(boolean.error());
            }
            break;
        case 'S':
        case 'C':
        case 'F':
            break;
        default:
            return true;
    }
    return !value.isError();
}

Value callScalars(Call& call, const FunctionRow& row, std::span<Argument> arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const char kind = argumentKind(row.kinds, static_cast<int>(i));
        if (kind == 'N' && row.refusesRanges && arguments[i].value.isBoolean()) {
            return ErrorCode::Value;
        }
        if (isMappedKind(kind) && !convert(kind, arguments[i], call.date1904)) {
            return arguments[i].value;
        }
    }
    if (row.function) {
        // Here no function can forget it: the elements and the text that it made are charged.
        Value result = row.function(call, arguments);
        if (result.isArray()) {
            call.spend(static_cast<double>(result.arrayCells().size()));
        }
        call.spendText(result);
        return result;
    }
    boost::container::small_vector<double, 8> numbers;
    for (const Argument& argument : arguments) {
        numbers.push_back(argument.value.number());
    }
    return Value(row.numeric(numbers.data(), static_cast<int>(numbers.size())));
}

struct Shape {
    int rows = 1;
    int columns = 1;
};

Shape shapeOf(const Value& value) {
    if (value.isArray()) {
        return {value.arrayRows(), value.arrayColumns()};
    }
    return {};
}

/// A range as its first cell, an array of ranges as the first cells of each.
Value firstCells(const Call& call, const Value& value) {
    if (value.isReference()) {
        const Area& area = value.areas()[0];
        return call.cells.get(area.sheet, area.firstRow, area.firstColumn);
    }
    if (!value.isReferenceArray()) {
        return value;
    }
    call.spend(static_cast<double>(value.arrayCells().size()));
    std::vector<Value> cells;
    cells.reserve(value.arrayCells().size());
    for (const Value& one : value.arrayCells()) {
        cells.push_back(firstCells(call, one));
    }
    return Value::array(value.arrayRows(), value.arrayColumns(), std::move(cells));
}

Value mapFunction(Call& call, const FunctionRow& row, std::span<Argument> arguments, Shape shape) {
    if (static_cast<std::int64_t>(shape.rows) * shape.columns > largestArray) {
        return ErrorCode::Num;
    }
    call.spend(static_cast<double>(shape.rows) * shape.columns);
    std::vector<Value> cells;
    cells.reserve(static_cast<std::size_t>(shape.rows) * shape.columns);
    boost::container::small_vector<Argument, 8> one(arguments.size());
    for (int r = 0; r < shape.rows; ++r) {
        for (int c = 0; c < shape.columns; ++c) {
            for (std::size_t i = 0; i < arguments.size(); ++i) {
                one[i] = arguments[i];
                if (isMappedKind(argumentKind(row.kinds, static_cast<int>(i)))) {
                    one[i].value = combinedElement(arguments[i].value, r, c);
                }
            }
            Value result = callScalars(call, row, {one.data(), one.size()});
            if (result.isReference()) {
                result = firstCells(call, result);
            }
            cells.push_back(result.isArray() ? result.arrayCells()[0] : std::move(result));
        }
    }
    return Value::array(shape.rows, shape.columns, std::move(cells));
}

}  // namespace

Value callFunction(Call& call, const FunctionRow& row, std::span<Argument> arguments) {
    Shape shape;
    bool mapped = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        Argument& argument = arguments[i];
        const char kind = argumentKind(row.kinds, static_cast<int>(i));
        if (isScalarKind(kind)) {
            if (argument.value.isReference()) {
                const bool several = argument.value.areas().size() != 1 || !argument.value.areas()[0].single();
                if (several && row.refusesRanges) {
                    return ErrorCode::Value;
                }
                argument.value = several && !call.arrayMode ? intersectReference(call, argument.value)
                                                            : readReference(call, argument.value);
            }
        } else if (kind == 'C') {
            argument.value = firstCells(call, argument.value);
        } else if (kind != 'F') {
            refuseReferenceArray(argument.value);
        } else if (!argument.value.isReference() && !argument.value.isReferenceArray()) {
            return argument.value.isError() ? argument.value : Value(ErrorCode::Value);
        }
        if (isMappedKind(kind) && argument.value.isArray()) {
            const Shape own = shapeOf(argument.value);
            shape = {std::max(shape.rows, own.rows), std::max(shape.columns, own.columns)};
            mapped = true;
        }
    }
    return mapped ? mapFunction(call, row, arguments, shape) : callScalars(call, row, arguments);
}

Grid Argument::grid(const Call& call) const {
    if (value.isReference()) {
        if (value.areas().size() != 1) {
            throw Unsupported{"a reference to several areas at this place"};
        }
        return Grid(call.cells, value.areas()[0]);
    }
    if (value.isArray()) {
        call.spend(static_cast<double>(value.arrayCells().size()));
        return Grid(value);
    }
    return Grid(Value::array(1, 1, {value}));
}

Value Argument::scalar(const Call& call) const {
    if (value.isReference() && value.areas().size() == 1 && value.areas()[0].single()) {
        return readReference(call, value);
    }
    if (value.isArray() && value.arrayCells().size() == 1) {
        return value.arrayCells()[0];
    }
    return value;
}

Result<double> directNumber(const Argument& argument) {
    return argument.value.isLambda() ? Result<double>(ErrorCode::Value) : toNumber(argument.value);
}

Result<std::vector<double>> collectNumbers(const Call& call, Arguments arguments, NumberRule rule) {
    std::vector<double> numbers;
    if (const auto error = forEachNumber(call, arguments, rule, [&](double x) { numbers.push_back(x); })) {
        return *error;
    }
    return numbers;
}

Result<NumberPairs> collectPairs(const Call& call, const Argument& first, const Argument& second) {
    if (first.value.isError() || second.value.isError()) {
        return first.value.isError() ? first.value.error() : second.value.error();
    }
    const Grid a = first.grid(call);
    const Grid b = second.grid(call);
    if (a.size() != b.size()) {
        return ErrorCode::NA;
    }
    NumberPairs pairs;
    const bool sameShape = a.rows() == b.rows();
    const std::int64_t used =
        sameShape && a.fromCells() ? static_cast<std::int64_t>(a.usedRows()) * a.columns() : a.size();
    for (std::int64_t i = 0; i < used; ++i) {
        const Value x = a.at(i);
        const Value y = b.at(i);
        if (x.isError() || y.isError()) {
            return x.isError() ? x.error() : y.error();
        }
        if (x.isNumber() && y.isNumber()) {
            pairs.first.push_back(x.number());
            pairs.second.push_back(y.number());
        }
    }
    return pairs;
}

Result<NumberMatrix> toMatrix(const Call& call, const Argument& argument) {
    const Grid grid = argument.grid(call);
    if (grid.size() > largestArray) {
        return ErrorCode::Num;
    }
    NumberMatrix matrix{grid.rows(), grid.columns(), {}};
    matrix.cells.reserve(static_cast<std::size_t>(grid.size()));
    for (int row = 0; row < grid.rows(); ++row) {
        for (int column = 0; column < grid.columns(); ++column) {
            const Value value = grid.at(row, column);
            if (!value.isNumber()) {
                return value.isError() ? value.error() : ErrorCode::Value;
            }
            matrix.cells.push_back(value.number());
        }
    }
    return matrix;
}

Value fromMatrix(const NumberMatrix& matrix) {
    if (matrix.cells.size() == 1) {
        return matrix.cells[0];
    }
    return Value::array(matrix.rows, matrix.columns, std::vector<Value>(matrix.cells.begin(), matrix.cells.end()));
}

}  // namespace quorva::workbook
