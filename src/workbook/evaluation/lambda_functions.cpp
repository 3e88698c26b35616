// Functions that call a lambda for the elements of arrays: MAP, REDUCE, SCAN, BYROW, BYCOL, MAKEARRAY.
#include <algorithm>
#include <cmath>

#include "common/cell_names.h"
#include "workbook/evaluation/evaluator.h"

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

/// What a lambda is called for, element by element. The cells of a range are passed as references, so that the lambda
/// may ask where they stand: SUM(A1:x), SUBTOTAL(103,x).
class Elements {
public:
    Elements(Evaluator& evaluator, Value value) : value_(std::move(value)) {
        const bool block = value_.isReference() && value_.areas().size() == 1;
        if (block &&
            static_cast<std::int64_t>(value_.areas()[0].rows()) * value_.areas()[0].columns() <= largestArray) {
            rows_ = value_.areas()[0].rows();
            columns_ = value_.areas()[0].columns();
            return;
        }
        value_ = evaluator.operand(std::move(value_));
        if (value_.isArray()) {
            rows_ = value_.arrayRows();
            columns_ = value_.arrayColumns();
        }
    }

    int rows() const { return rows_; }
    int columns() const { return columns_; }
    /// #N/A beyond the last row and column.
    Value at(int row, int column) const {
        return row < rows_ && column < columns_ ? block(row, column, row, column) : Value(ErrorCode::NA);
    }
    Value row(int row) const { return block(row, 0, row, columns_ - 1); }
    Value column(int column) const { return block(0, column, rows_ - 1, column); }

private:
    Value block(int top, int left, int bottom, int right) const {
        if (value_.isReference()) {
            const Area& all = value_.areas()[0];
            return Value::reference({{all.sheet, all.firstRow + top, all.firstColumn + left, all.firstRow + bottom,
                                      all.firstColumn + right}});
        }
        if (top == bottom && left == right) {
            return combinedElement(value_, top, left);
        }
        std::vector<Value> cells;
        for (int row = top; row <= bottom; ++row) {
            for (int column = left; column <= right; ++column) {
                cells.push_back(combinedElement(value_, row, column));
            }
        }
        return Value::array(bottom - top + 1, right - left + 1, std::move(cells));
    }

    Value value_;
    int rows_ = 1;
    int columns_ = 1;
};

/// What a lambda gave as the content of one element: an array there is #CALC!.
Value element(Evaluator& evaluator, Value value) {
    value = evaluator.operand(std::move(value));
    if (value.isArray()) {
        return value.arrayCells().size() == 1 ? value.arrayCells()[0] : Value(ErrorCode::Calc);
    }
    return value.isLambda() ? Value(ErrorCode::Calc) : value;
}

}  // namespace

Value Evaluator::mapFunction(const Node& node) {
    const WithMode guard(*this);
    std::vector<Elements> arrays;
    int rows = 1;
    int columns = 1;
    for (std::size_t i = 0; i + 1 < node.children.size(); ++i) {
        arrays.emplace_back(*this, evaluate(node.children[i]));
        rows = std::max(rows, arrays.back().rows());
        columns = std::max(columns, arrays.back().columns());
    }
    if (static_cast<std::int64_t>(rows) * columns > largestArray) {
        return ErrorCode::Num;
    }
    const Value lambda = evaluate(node.children.back());
    call.spend(static_cast<double>(rows) * columns);
    std::vector<Value> cells;
    std::vector<Value> arguments(arrays.size());
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            std::transform(arrays.begin(), arrays.end(), arguments.begin(),
                           [&](const Elements& elements) { return elements.at(row, column); });
            cells.push_back(element(*this, invoke(lambda, arguments)));
        }
    }
    return Value::array(rows, columns, std::move(cells));
}

Value Evaluator::reduceFunction(const Node& node, bool scan) {
    const WithMode guard(*this);
    const bool initial = node.children.size() == 3;
    const bool given = initial && node.children[0].kind != Node::Kind::Missing;
    Value total = given ? evaluateOperand(node.children[0]) : Value();
    const Elements elements(*this, evaluate(node.children[initial ? 1 : 0]));
    const Value lambda = evaluate(node.children.back());
    call.spend(static_cast<double>(elements.rows()) * elements.columns());
    std::vector<Value> cells;
    bool first = !given;
    for (int row = 0; row < elements.rows(); ++row) {
        for (int column = 0; column < elements.columns(); ++column) {
            if (first) {
                total = operand(elements.at(row, column));  // without a starting value the first element is it
                first = false;
            } else {
                const Value arguments[2] = {total, elements.at(row, column)};
                total = operand(invoke(lambda, arguments));
            }
            if (scan) {
                cells.push_back(total.isArray() ? Value(ErrorCode::Calc) : total);
            }
        }
    }
    return scan ? Value::array(elements.rows(), elements.columns(), std::move(cells)) : total;
}

Value Evaluator::byFunction(const Node& node, bool rows) {
    const WithMode guard(*this);
    const Elements elements(*this, evaluate(node.children[0]));
    const Value lambda = evaluate(node.children[1]);
    const int count = rows ? elements.rows() : elements.columns();
    call.spend(static_cast<double>(elements.rows()) * elements.columns());
    std::vector<Value> cells;
    for (int i = 0; i < count; ++i) {
        const Value argument = rows ? elements.row(i) : elements.column(i);
        cells.push_back(element(*this, invoke(lambda, {&argument, 1})));
    }
    return rows ? Value::array(count, 1, std::move(cells)) : Value::array(1, count, std::move(cells));
}

Value Evaluator::makeArrayFunction(const Node& node) {
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
    if (size[0] * size[1] > largestArray) {
        return ErrorCode::Num;
    }
    const Value lambda = evaluate(node.children[2]);
    call.spend(size[0] * size[1]);
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
