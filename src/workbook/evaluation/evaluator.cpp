#include "workbook/evaluation/evaluator.h"

#include <algorithm>
#include <boost/container/small_vector.hpp>
#include <cmath>

#include "workbook/evaluation/stack_room.h"

namespace quorva::workbook {

namespace {

/// A lambda holds its scope, whose variables may be lambdas, and so on without end: what becomes free with the first
/// waits until that is gone, instead of going deeper into the stack.
void destroyLambda(Body* body) {
    thread_local std::vector<std::unique_ptr<LambdaBody>> waiting;
    thread_local bool emptying = false;
    waiting.emplace_back(static_cast<LambdaBody*>(body));
    if (emptying) {
        return;
    }
    emptying = true;
    while (!waiting.empty()) {
        const std::unique_ptr<LambdaBody> last = std::move(waiting.back());
        waiting.pop_back();
    }
    emptying = false;
}

Value power(double base, double exponent) {
    if (base == 0 && exponent == 0) {
        return ErrorCode::Num;
    }
    if (base == 0 && exponent < 0) {
        return ErrorCode::Div0;
    }
    return raise(base, exponent);
}

Value compare(Operator op, const Value& left, const Value& right) {
    if (left.isError() || right.isError()) {
        return left.isError() ? left : right;
    }
    if (left.isLambda() || right.isLambda()) {
        return ErrorCode::Calc;
    }
    const int order = compareValues(left, right);
    switch (op) {
        case Operator::Equal:
            return Value(order == 0);
        case Operator::Different:
            return Value(order != 0);
        case Operator::Less:
            return Value(order < 0);
        case Operator::LessOrEqual:
            return Value(order <= 0);
        case Operator::Greater:
            return Value(order > 0);
        default:
            return Value(order >= 0);
    }
}

Value concatenate(const Value& left, const Value& right) {
    const auto first = toText(left);
    if (!first) {
        return first.error();
    }
    const auto second = toText(right);
    if (!second) {
        return second.error();
    }
    if (first->size() + second->size() > 32767 && utf16Length(*first) + utf16Length(*second) > 32767) {
        return ErrorCode::Value;
    }
    return Value(*first + *second);
}

}  // namespace

Scope::~Scope() {
    // A chain of scopes may be longer than the stack is deep: one after the other.
    while (outer && outer.use_count() == 1) {
        const std::shared_ptr<Scope> last = std::move(outer);
        outer = std::move(last->outer);
    }
}

Value lambdaValue(const Node& definition, std::shared_ptr<Scope> scope) {
    return Value::adopt(Value::Type::Lambda, new LambdaBody(definition, std::move(scope), destroyLambda));
}

double EvaluationContext::nextRandom() {
    const auto rotate = [](std::uint64_t x, int k) { return (x << k) | (x >> (64 - k)); };
    RandomState& s = random;
    const std::uint64_t result = rotate(s[0] + s[3], 23) + s[0];
    const std::uint64_t t = s[1] << 17;
    s[2] ^= s[0];
    s[3] ^= s[1];
    s[1] ^= s[2];
    s[0] ^= s[3];
    s[2] ^= t;
    s[3] = rotate(s[3], 45);
    return (static_cast<double>(result >> 12) + 0.5) * 0x1p-52;
}

void EvaluationContext::seedRandom(std::uint64_t seed) {
    for (std::uint64_t& word : random) {  // splitmix64, as the generator's authors recommend
        seed += 0x9E3779B97F4A7C15;
        std::uint64_t z = seed;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        word = z ^ (z >> 31);
    }
}

double Call::random() const { return evaluator->context.nextRandom(); }
double Call::now() const { return evaluator->context.now; }
std::optional<Value> Call::copiedDown(int ofSheet, int ofRow, int ofColumn, int rowsDown) const {
    return evaluator->context.copiedDown(ofSheet, ofRow, ofColumn, rowsDown);
}
Value Call::invoke(const Value& lambda, std::span<const Value> arguments) const {
    return evaluator->invoke(lambda, arguments);
}

Value operate(Operator op, const Value& left, const Value& right, bool date1904, Sums sums) {
    if (op >= Operator::Equal && op <= Operator::GreaterOrEqual) {
        return compare(op, left, right);
    }
    if (op == Operator::Concat) {
        return concatenate(left, right);
    }
    const auto a = toNumber(left, date1904);
    if (!a) {
        return a.error();
    }
    const auto b = toNumber(right, date1904);
    if (!b) {
        return b.error();
    }
    switch (op) {
        case Operator::Add:
            return sums == Sums::Closing ? closingSum(*a, *b) : *a + *b;
        case Operator::Subtract:
            return sums == Sums::Closing ? closingSum(*a, -*b) : *a - *b;
        case Operator::Multiply:
            return *a * *b;
        case Operator::Divide:
            return *b == 0 ? Value(ErrorCode::Div0) : Value(*a / *b);
        default:
            return power(*a, *b);
    }
}

Value combine(const Call& call, const Value& left, const Value& right,
              const std::function<Value(const Value&, const Value&)>& fn) {
    const int rows = std::max(left.isArray() ? left.arrayRows() : 1, right.isArray() ? right.arrayRows() : 1);
    const int columns = std::max(left.isArray() ? left.arrayColumns() : 1, right.isArray() ? right.arrayColumns() : 1);
    if (static_cast<std::int64_t>(rows) * columns > largestArray) {
        return ErrorCode::Num;
    }
    call.spend(static_cast<double>(rows) * columns);
    std::vector<Value> cells;
    cells.reserve(static_cast<std::size_t>(rows) * columns);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            cells.push_back(fn(combinedElement(left, row, column), combinedElement(right, row, column)));
            call.spendText(cells.back());
        }
    }
    return Value::array(rows, columns, std::move(cells));
}

Evaluator::Evaluator(EvaluationContext& bookContext, int sheet, int row, int column, bool arrayFormula)
    : context(bookContext),
      call{*bookContext.cells, sheet, row, column, bookContext.raw->date1904, arrayFormula, this},
      mode(arrayFormula ? Mode::ArrayFormula : Mode::Scalar) {}

Value Evaluator::operand(Value value) {
    if (!value.isReference()) {
        refuseReferenceArray(value);
        return value;
    }
    return mode == Mode::Scalar ? intersectReference(call, value) : readReference(call, value);
}

Value Evaluator::evaluateScalar(const Node& node) {
    Value value = evaluateOperand(node);
    return value.isArray() ? value.arrayCells()[0] : value;
}

Value Evaluator::evaluateFormula(const Node& tree) {
    const bool sum = tree.kind == Node::Kind::Binary && (tree.op == Operator::Add || tree.op == Operator::Subtract);
    return sum && !tree.parenthesised ? binary(tree, Sums::Closing) : evaluateOperand(tree);
}

Value Evaluator::evaluate(const Node& node) {
    switch (node.kind) {
        case Node::Kind::Constant:
        case Node::Kind::Reference:
            return node.value;
        case Node::Kind::Missing:
            return Value();
        case Node::Kind::Unsupported:
            throw Unsupported{node.text};
        case Node::Kind::Variable:
            return variable(node);
        default:
            break;
    }
    call.spend(1);
    if (!roomForEvaluation()) {
        throw Unsupported{"a formula nested so deeply, or a recursion of lambdas"};
    }
    switch (node.kind) {
        case Node::Kind::Unary:
            return unary(node);
        case Node::Kind::Binary:
            return binary(node);
        case Node::Kind::TableCall:
            return tableCall(node);
        case Node::Kind::LazyCall:
            return lazyCall(node);
        case Node::Kind::ModelCall:
            return context.callModel(*this, node);
        default: {
            const Value callee = evaluate(node.children[0]);
            if (!callee.isLambda()) {
                return callee.isError() ? callee : Value(ErrorCode::Value);
            }
            std::vector<Value> arguments;
            for (std::size_t i = 1; i < node.children.size(); ++i) {
                arguments.push_back(evaluate(node.children[i]));
            }
            return invoke(callee, arguments);
        }
    }
}

Value Evaluator::unary(const Node& node) {
    const Value value = evaluateOperand(node.children[0]);
    if (node.op == Operator::Plus) {
        return value;  // any value as it is, but no reference any more: EDATE(+A1:A3,1) maps over an array
    }
    const auto apply = [&](const Value& x, const Value&) -> Value {
        const auto number = toNumber(x, call.date1904);
        if (!number) {
            return number.error();
        }
        return node.op == Operator::Negate ? -*number : *number / 100;
    };
    return value.isArray() ? combine(call, value, Value(), apply) : apply(value, value);
}

Value Evaluator::binary(const Node& node, Sums sums) {
    if (node.op >= Operator::Range) {
        return referenceOperator(node);
    }
    const Value left = evaluateOperand(node.children[0]);
    const Value right = evaluateOperand(node.children[1]);
    if (left.isArray() || right.isArray()) {
        return combine(call, left, right,
                       [&](const Value& a, const Value& b) { return operate(node.op, a, b, call.date1904); });
    }
    Value result = operate(node.op, left, right, call.date1904, sums);
    call.spendText(result);
    return result;
}

Value Evaluator::referenceOperator(const Node& node) {
    const Value left = evaluate(node.children[0]);
    const Value right = evaluate(node.children[1]);
    if (left.isError() || right.isError()) {
        return left.isError() ? left : right;
    }
    if (!left.isReference() || !right.isReference()) {
        return ErrorCode::Value;
    }
    std::vector<Area> areas = left.areas();
    const std::vector<Area>& others = right.areas();
    switch (node.op) {
        case Operator::Union:
            areas.insert(areas.end(), others.begin(), others.end());
            return Value::reference(areas);
        case Operator::Range: {
            Area box = areas[0];
            areas.insert(areas.end(), others.begin(), others.end());
            for (const Area& area : areas) {
                if (area.sheet != box.sheet) {
                    return ErrorCode::Ref;
                }
                box = {box.sheet, std::min(box.firstRow, area.firstRow), std::min(box.firstColumn, area.firstColumn),
                       std::max(box.lastRow, area.lastRow), std::max(box.lastColumn, area.lastColumn)};
            }
            context.bringUpToDate(box);
            return Value::reference({box});
        }
        default: {
            std::vector<Area> common;
            for (const Area& a : areas) {
                for (const Area& b : others) {
                    const Area both{a.sheet, std::max(a.firstRow, b.firstRow), std::max(a.firstColumn, b.firstColumn),
                                    std::min(a.lastRow, b.lastRow), std::min(a.lastColumn, b.lastColumn)};
                    if (a.sheet == b.sheet && both.firstRow <= both.lastRow && both.firstColumn <= both.lastColumn) {
                        common.push_back(both);
                    }
                }
            }
            return common.empty() ? Value(ErrorCode::Null) : Value::reference(std::move(common));
        }
    }
}

Value Evaluator::tableCall(const Node& node) {
    boost::container::small_vector<Argument, 6> arguments(node.children.size());
    const Mode outer = mode;
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        const char kind = argumentKind(node.row->kinds, static_cast<int>(i));
        if ((kind == 'A' || kind == 'L') && outer == Mode::Scalar) {
            mode = Mode::ArrayArgument;
        }
        arguments[i].value = evaluate(node.children[i]);
        arguments[i].missing = node.children[i].kind == Node::Kind::Missing;
        mode = outer;
    }
    call.arrayMode = mode != Mode::Scalar;
    return callFunction(call, *node.row, {arguments.data(), arguments.size()});
}

Value Evaluator::variable(const Node& node) {
    for (const Scope* at = scope.get(); at; at = at->outer.get()) {
        if (at->variable == node.index) {
            return at->omitted ? Value() : at->value;
        }
    }
    return ErrorCode::Name;
}

/// A table function in a lambda's place.
Value Evaluator::invokeRow(const FunctionRow& row, std::span<const Value> given) {
    const int count = static_cast<int>(given.size());
    if (count < row.minArgs || count > row.maxArgs) {
        return ErrorCode::Value;
    }
    boost::container::small_vector<Argument, 6> arguments;
    for (const Value& value : given) {
        arguments.push_back({value});
    }
    return callFunction(call, row, {arguments.data(), arguments.size()});
}

Value Evaluator::invoke(const Value& lambda, std::span<const Value> arguments) {
    if (!lambda.isLambda()) {
        return lambda.isError() ? lambda : Value(ErrorCode::Value);
    }
    const auto* body = static_cast<const LambdaBody*>(lambda.body());
    if (body->node->row) {
        return invokeRow(*body->node->row, arguments);
    }
    const std::vector<int>& parameters = body->node->parameters;
    if (arguments.size() > parameters.size()) {
        return ErrorCode::Value;
    }
    std::shared_ptr<Scope> inner = body->scope;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const bool optional = parameters[i] < 0;
        const bool omitted = i >= arguments.size();
        if (omitted && !optional) {
            return ErrorCode::Value;
        }
        inner = std::make_shared<Scope>(optional ? ~parameters[i] : parameters[i], omitted,
                                        omitted ? Value() : arguments[i], inner);
    }
    std::swap(scope, inner);
    const Value held = lambda;
    Value result = evaluate(body->node->children[0]);
    std::swap(scope, inner);
    return result;
}

}  // namespace quorva::workbook
