// Functions that choose what to evaluate: IF, IFS, SWITCH, CHOOSE, IFERROR, LET.
#include <algorithm>

#include "workbook/evaluation/evaluator.h"

namespace quorva::workbook {

namespace {

Value branchValue(Value value) { return value.isBlank() ? Value(0.0) : value; }

/// The common shape of several values; scalars are 1 x 1.
std::pair<int, int> commonShape(const std::vector<Value>& values) {
    int rows = 1;
    int columns = 1;
    for (const Value& value : values) {
        if (value.isArray()) {
            rows = std::max(rows, value.arrayRows());
            columns = std::max(columns, value.arrayColumns());
        }
    }
    return {rows, columns};
}

/// Applies pick to the elements of the values at every place of their common shape.
template <class Pick>
Value mapElements(const Call& call, const std::vector<Value>& values, Pick&& pick) {
    const auto [rows, columns] = commonShape(values);
    call.spend(static_cast<double>(rows) * columns);
    std::vector<Value> cells;
    std::vector<Value> elements(values.size());
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                elements[i] = combinedElement(values[i], row, column);
            }
            cells.push_back(pick(elements));
        }
    }
    return Value::array(rows, columns, std::move(cells));
}

Value pickIfs(const std::vector<Value>& values) {
    for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
        const auto condition = toBoolean(values[i]);
        if (!condition) {
            return condition.error();
        }
        if (*condition) {
            return branchValue(values[i + 1]);
        }
    }
    return ErrorCode::NA;
}

/// Whether SWITCH takes a value for one of its cases: a blank is 0 or "", but not FALSE.
bool isCase(const Value& value, const Value& candidate) {
    if (value.type() == candidate.type()) {
        return equalValues(value, candidate);
    }
    const bool blank = value.isBlank() || candidate.isBlank();
    return blank && !value.isBoolean() && !candidate.isBoolean() && compareValues(value, candidate) == 0;
}

Value pickSwitch(const std::vector<Value>& values) {
    if (values[0].isError()) {
        return values[0];
    }
    std::size_t i = 1;
    for (; i + 1 < values.size(); i += 2) {
        if (values[i].isError()) {
            return values[i];
        }
        if (isCase(values[0], values[i])) {
            return branchValue(values[i + 1]);
        }
    }
    return i < values.size() ? branchValue(values[i]) : Value(ErrorCode::NA);
}

Value pickChoose(const std::vector<Value>& values) {
    const auto index = toNumber(values[0]);
    if (!index) {
        return index.error();
    }
    if (!(*index >= 1) || *index >= static_cast<double>(values.size())) {
        return ErrorCode::Value;
    }
    return branchValue(values[static_cast<std::size_t>(*index)]);
}

}  // namespace

Value Evaluator::lazyCall(const Node& node) {
    switch (node.lazy) {
        case LazyFunction::If:
            return ifFunction(node);
        case LazyFunction::Ifs:
            return ifsFunction(node);
        case LazyFunction::Switch:
            return switchFunction(node);
        case LazyFunction::Choose:
            return chooseFunction(node);
        case LazyFunction::IfError:
            return ifErrorFunction(node, false);
        case LazyFunction::IfNa:
            return ifErrorFunction(node, true);
        case LazyFunction::Let:
            return letFunction(node);
        case LazyFunction::Lambda:
            return lambdaValue(node, scope);
        case LazyFunction::Map:
            return mapFunction(node);
        case LazyFunction::Reduce:
            return reduceFunction(node, false);
        case LazyFunction::Scan:
            return reduceFunction(node, true);
        case LazyFunction::ByRow:
            return byFunction(node, true);
        case LazyFunction::ByCol:
            return byFunction(node, false);
        case LazyFunction::MakeArray:
            return makeArrayFunction(node);
        case LazyFunction::Offset:
            return offsetFunction(node);
        case LazyFunction::Index:
            return indexFunction(node);
        case LazyFunction::Indirect:
            return indirectFunction(node);
        case LazyFunction::Row:
            return rowFunction(node, false);
        case LazyFunction::Column:
            return rowFunction(node, true);
        case LazyFunction::Rows:
            return countFunction(node, false);
        case LazyFunction::Columns:
            return countFunction(node, true);
        case LazyFunction::Cell:
            return cellFunction(node);
        case LazyFunction::FormulaText:
            return formulaFunction(node, true);
        case LazyFunction::IsFormula:
            return formulaFunction(node, false);
        case LazyFunction::Sheet:
            return sheetFunction(node, false);
        case LazyFunction::Sheets:
            return sheetFunction(node, true);
        case LazyFunction::Areas: {
            const Value value = evaluate(node.children[0]);
            return value.isReference() ? Value(value.areas().size())
                   : value.isError()   ? value
                                       : Value(ErrorCode::Value);
        }
        case LazyFunction::IsRef:
            return Value(evaluate(node.children[0]).isReference());
        case LazyFunction::Single: {
            const Value value = evaluate(node.children[0]);
            if (value.isReference()) {
                return intersectReference(call, value);
            }
            return value.isArray() ? value.arrayCells()[0] : value;
        }
        case LazyFunction::AnchorArray:
            return anchorFunction(node);
        case LazyFunction::IsOmitted: {
            if (node.children[0].kind == Node::Kind::Variable) {
                for (const Scope* at = scope.get(); at; at = at->outer.get()) {
                    if (at->variable == node.children[0].index) {
                        return Value(at->omitted);
                    }
                }
            }
            return Value(false);
        }
    }
    return ErrorCode::Value;
}

Value Evaluator::ifFunction(const Node& node) {
    const Mode outer = mode;
    if (mode == Mode::ArrayArgument) {
        mode = Mode::Scalar;  // IF inside SUMPRODUCT takes arrays only in an array formula
    }
    Value condition = evaluateOperand(node.children[0]);
    mode = outer;
    if (condition.isArray()) {
        std::vector<Value> values{condition};
        for (std::size_t i = 1; i < node.children.size(); ++i) {
            values.push_back(evaluateOperand(node.children[i]));
        }
        return mapElements(call, values, [](const std::vector<Value>& elements) -> Value {
            const auto yes = toBoolean(elements[0]);
            if (!yes) {
                return yes.error();
            }
            if (*yes) {
                return branchValue(elements[1]);
            }
            return elements.size() > 2 ? branchValue(elements[2]) : Value(false);
        });
    }
    const auto yes = toBoolean(condition);
    if (!yes) {
        return yes.error();
    }
    if (*yes) {
        return branchValue(evaluate(node.children[1]));
    }
    return node.children.size() > 2 ? branchValue(evaluate(node.children[2])) : Value(false);
}

Value Evaluator::ifErrorFunction(const Node& node, bool onlyNA) {
    const auto caught = [&](const Value& value) {
        return value.isError() && (!onlyNA || value.error() == ErrorCode::NA);
    };
    const Value value = evaluateOperand(node.children[0]);
    if (value.isArray()) {
        const Value other = evaluateOperand(node.children[1]);
        return mapElements(call, {value, other}, [&](const std::vector<Value>& elements) {
            return branchValue(caught(elements[0]) ? elements[1] : elements[0]);
        });
    }
    return branchValue(caught(value) ? evaluate(node.children[1]) : value);
}

Value Evaluator::ifsFunction(const Node& node) {
    std::vector<Value> values;
    bool arrays = false;
    for (std::size_t i = 0; i + 1 < node.children.size(); i += 2) {
        values.push_back(evaluateOperand(node.children[i]));
        arrays = arrays || values.back().isArray();
        if (!arrays) {
            const auto condition = toBoolean(values.back());
            if (!condition) {
                return condition.error();
            }
            if (*condition) {
                return branchValue(evaluate(node.children[i + 1]));
            }
        }
        values.push_back(arrays ? evaluateOperand(node.children[i + 1]) : Value());
    }
    if (node.children.size() % 2 != 0) {
        return ErrorCode::NA;
    }
    return arrays ? mapElements(call, values, pickIfs) : Value(ErrorCode::NA);
}

Value Evaluator::switchFunction(const Node& node) {
    std::vector<Value> values{evaluateOperand(node.children[0])};
    if (!values[0].isArray()) {
        if (values[0].isError()) {
            return values[0];
        }
        std::size_t i = 1;
        for (; i + 1 < node.children.size(); i += 2) {
            const Value candidate = evaluateScalar(node.children[i]);
            if (candidate.isError()) {
                return candidate;
            }
            if (isCase(values[0], candidate)) {
                return branchValue(evaluate(node.children[i + 1]));
            }
        }
        return i < node.children.size() ? branchValue(evaluate(node.children[i])) : Value(ErrorCode::NA);
    }
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        values.push_back(evaluateOperand(node.children[i]));
    }
    return mapElements(call, values, pickSwitch);
}

Value Evaluator::chooseFunction(const Node& node) {
    const Value selector = evaluateOperand(node.children[0]);
    if (selector.isArray()) {
        const Mode outer = mode;
        mode = mode == Mode::Scalar ? Mode::ArrayArgument : mode;  // whole ranges side by side, also in older formulas
        std::vector<Value> values{selector};
        for (std::size_t i = 1; i < node.children.size(); ++i) {
            values.push_back(evaluateOperand(node.children[i]));
        }
        mode = outer;
        return mapElements(call, values, pickChoose);
    }
    const auto index = toNumber(selector, call.date1904);
    if (!index) {
        return index.error();
    }
    if (!(*index >= 1) || *index >= static_cast<double>(node.children.size())) {
        return ErrorCode::Value;
    }
    return branchValue(evaluate(node.children[static_cast<std::size_t>(*index)]));
}

Value Evaluator::letFunction(const Node& node) {
    const auto outer = scope;
    for (std::size_t i = 0; i < node.parameters.size(); ++i) {
        Value value = evaluate(node.children[i]);
        const int variable = node.parameters[i] < 0 ? ~node.parameters[i] : node.parameters[i];
        scope = std::make_shared<Scope>(variable, false, std::move(value), scope);
    }
    Value result = evaluate(node.children.back());
    scope = outer;
    return result;
}

}  // namespace quorva::workbook
