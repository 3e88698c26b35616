// Functions that call a lambda for the elements of arrays: MAP, REDUCE, SCAN, BYROW, BYCOL, MAKEARRAY.
#include <algorithm>
#include <cmath>

#include "workbook/evaluator.h"

namespace quorva::workbook {

namespace {

struct WithMode {
    explicit WithMode(Evaluator& evaluator) : evaluator_(evaluator), outer_(evaluator.mode) {
        evaluator.mode = Evaluator::Mode::ArrayFormula;
        evaluator.call.arrayMode = true;
    }
    ~WithMode() {
        evaluator_.mode = outer_;
        evaluator_.call.arrayMode = outer_ != Evaluator::Mode::Scalar;
    }
    Evaluator& evaluator_;
    Evaluator::Mode outer_;
};

Value asArray(Value value) { return value.isArray() ? value : Value::array(1, 1, {std::move(value)}); }

/// What a lambda gave as the content of one element: an array there is #CALC!.
Value element(Evaluator& evaluator, Value value) {
    value = evaluator.operand(std::move(value));
    if (value.isArray()) {
        return value.arrayCells().size() == 1 ? value.arrayCells()[0] : Value(ErrorCode::Calc);
    }
    return value.isLambda() ? Value(ErrorCode::Calc) : value;
}

}  // namespace

Value Evaluator::mapForm(const Node& node) {
    const WithMode guard(*this);
    std::vector<Value> arrays;
    int rows = 1;
    int columns = 1;
    for (std::size_t i = 0; i + 1 < node.children.size(); ++i) {
        arrays.push_back(asArray(evaluateOperand(node.children[i])));
        rows = std::max(rows, arrays.back().arrayRows());
        columns = std::max(columns, arrays.back().arrayColumns());
    }
    const Value lambda = evaluate(node.children.back());
    call.spend(static_cast<double>(rows) * columns);
    std::vector<Value> cells;
    std::vector<Value> arguments(arrays.size());
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            for (std::size_t i = 0; i < arrays.size(); ++i) {
                const bool inside = row < arrays[i].arrayRows() && column < arrays[i].arrayColumns();
                arguments[i] = inside ? combinedElement(arrays[i], row, column) : Value(ErrorCode::NA);
            }
            cells.push_back(element(*this, invoke(lambda, arguments)));
        }
    }
    return Value::array(rows, columns, std::move(cells));
}

Value Evaluator::reduceForm(const Node& node, bool scan) {
    const WithMode guard(*this);
    const bool initial = node.children.size() == 3;
    const bool given = initial && node.children[0].kind != Node::Kind::Missing;
    Value total = given ? evaluateOperand(node.children[0]) : Value();
    const Value array = asArray(evaluateOperand(node.children[initial ? 1 : 0]));
    const Value lambda = evaluate(node.children.back());
    std::vector<Value> cells;
    bool first = !given;
    for (const Value& one : array.arrayCells()) {
        if (first) {
            total = one;  // without a starting value the first element is it
            first = false;
        } else {
            const Value arguments[2] = {total, one};
            total = operand(invoke(lambda, arguments));
        }
        cells.push_back(total.isArray() ? Value(ErrorCode::Calc) : total);
    }
    return scan ? Value::array(array.arrayRows(), array.arrayColumns(), std::move(cells)) : total;
}

Value Evaluator::byForm(const Node& node, bool rows) {
    const WithMode guard(*this);
    const Value array = asArray(evaluateOperand(node.children[0]));
    const Value lambda = evaluate(node.children[1]);
    const int count = rows ? array.arrayRows() : array.arrayColumns();
    const int length = rows ? array.arrayColumns() : array.arrayRows();
    std::vector<Value> cells;
    for (int i = 0; i < count; ++i) {
        std::vector<Value> line;
        for (int k = 0; k < length; ++k) {
            line.push_back(combinedElement(array, rows ? i : k, rows ? k : i));
        }
        const Value argument =
            rows ? Value::array(1, length, std::move(line)) : Value::array(length, 1, std::move(line));
        cells.push_back(element(*this, invoke(lambda, {&argument, 1})));
    }
    return rows ? Value::array(count, 1, std::move(cells)) : Value::array(1, count, std::move(cells));
}

Value Evaluator::makeArrayForm(const Node& node) {
    const WithMode guard(*this);
    double size[2];
    for (int i = 0; i < 2; ++i) {
        const auto number = toNumber(evaluateScalar(node.children[static_cast<std::size_t>(i)]), call.date1904);
        if (!number) {
            return number.error();
        }
        size[i] = std::trunc(*number);
        if (size[i] < 1 || size[i] > maxRows) {
            return ErrorCode::Value;
        }
    }
    if (size[0] * size[1] > (1 << 24)) {
        return ErrorCode::Num;
    }
    const Value lambda = evaluate(node.children[2]);
    std::vector<Value> cells;
    for (int row = 1; row <= static_cast<int>(size[0]); ++row) {
        for (int column = 1; column <= static_cast<int>(size[1]); ++column) {
            const Value arguments[2] = {Value(row), Value(column)};
            cells.push_back(element(*this, invoke(lambda, arguments)));
        }
    }
    return Value::array(static_cast<int>(size[0]), static_cast<int>(size[1]), std::move(cells));
}

}  // namespace quorva::workbook
