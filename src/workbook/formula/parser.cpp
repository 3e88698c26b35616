#include "workbook/formula/parser_pass.h"

#include <algorithm>

namespace quorva::workbook {

namespace {
constexpr std::size_t longestFormula = 65536;

/// Whether a blank behind the operand can be the intersection operator.
bool mayBeReference(const Node& node) {
    switch (node.kind) {
        case Node::Kind::Reference:
        case Node::Kind::LazyCall:
        case Node::Kind::TableCall:
        case Node::Kind::Variable:
            return true;
        case Node::Kind::Binary:
            return node.op == Operator::Range || node.op == Operator::Intersection || node.op == Operator::Union;
        case Node::Kind::Constant:
            return node.value.isError();
        default:
            return false;
    }
}

bool startsReference(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '$' || c == '\'' || c == '_' || c == '\\' ||
           c == '(' || c == '[' || static_cast<unsigned char>(c) >= 128;
}
}  // namespace

Node parseFormula(std::string_view text, const FormulaPlace& place, Symbols& symbols) {
    return Parser(text, place, symbols).parse();
}

void Parser::fail(const std::string& what) const { throw ParseError(what, at_); }

bool Parser::skipBlanks() {
    const std::size_t start = at_;
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\r' || text_[at_] == '\t')) {
        ++at_;
    }
    return at_ != start;
}

bool Parser::accept(char c) {
    skipBlanks();
    if (peek() != c || at_ >= text_.size()) {
        return false;
    }
    ++at_;
    return true;
}

void Parser::expect(char c) {
    if (!accept(c)) {
        fail(std::string("'") + c + "' is missing");
    }
}

Node Parser::parse() {
    if (text_.size() > longestFormula) {
        fail("it is too long");
    }
    Node node = comparison();
    skipBlanks();
    if (at_ != text_.size()) {
        fail("it goes on where it should end");
    }
    return node;
}

Node Parser::withDepth(Node node) const {
    for (const Node& child : node.children) {
        node.depth = std::max(node.depth, child.depth + 1);
    }
    if (node.depth > deepestTree) {
        fail(tooDeep);
    }
    return node;
}

Node Parser::unaryNode(Operator op, Node child) const {
    Node node;
    node.kind = Node::Kind::Unary;
    node.op = op;
    node.children.push_back(std::move(child));
    return withDepth(std::move(node));
}

Node Parser::lazyNode(LazyFunction function, Node child) const {
    Node node;
    node.kind = Node::Kind::LazyCall;
    node.lazy = function;
    node.children.push_back(std::move(child));
    return withDepth(std::move(node));
}

Node Parser::comparison() {
    const Depth guard(*this);
    Node left = concatenation();
    for (;;) {
        skipBlanks();
        Operator op;
        if (peek() == '=') {
            op = Operator::Equal;
        } else if (peek() == '<') {
            op = peek(1) == '>' ? Operator::Different : peek(1) == '=' ? Operator::LessOrEqual : Operator::Less;
        } else if (peek() == '>') {
            op = peek(1) == '=' ? Operator::GreaterOrEqual : Operator::Greater;
        } else {
            return left;
        }
        at_ += op == Operator::Equal || op == Operator::Less || op == Operator::Greater ? 1 : 2;
        left = binary(op, std::move(left), concatenation());
    }
}

Node Parser::concatenation() {
    Node left = additive();
    while (accept('&')) {
        left = binary(Operator::Concat, std::move(left), additive());
    }
    return left;
}

Node Parser::additive() {
    Node left = multiplicative();
    for (;;) {
        if (accept('+')) {
            left = binary(Operator::Add, std::move(left), multiplicative());
        } else if (accept('-')) {
            left = binary(Operator::Subtract, std::move(left), multiplicative());
        } else {
            return left;
        }
    }
}

Node Parser::multiplicative() {
    Node left = power();
    for (;;) {
        if (accept('*')) {
            left = binary(Operator::Multiply, std::move(left), power());
        } else if (accept('/')) {
            left = binary(Operator::Divide, std::move(left), power());
        } else {
            return left;
        }
    }
}

Node Parser::power() {
    Node left = percent();
    while (accept('^')) {
        left = binary(Operator::Power, std::move(left), percent());
    }
    return left;
}

Node Parser::percent() {
    Node node = unary();
    while (accept('%')) {
        node = unaryNode(Operator::Percent, std::move(node));
    }
    return node;
}

Node Parser::unary() {
    std::string signs;
    for (;;) {
        skipBlanks();
        const char c = peek();
        if (c != '-' && c != '+' && c != '@') {
            break;
        }
        signs.push_back(c);
        ++at_;
    }
    Node node = intersection();
    for (auto sign = signs.rbegin(); sign != signs.rend(); ++sign) {
        node = *sign == '@' ? lazyNode(LazyFunction::Single, std::move(node))
                            : unaryNode(*sign == '-' ? Operator::Negate : Operator::Plus, std::move(node));
    }
    return node;
}

/// Whole rows, such as 2:3.
bool Parser::rowsAhead() const {
    std::size_t digits = 0;
    while (peek(digits) >= '0' && peek(digits) <= '9') {
        ++digits;
    }
    return digits > 0 && peek(digits) == ':';
}

Node Parser::intersection() {
    Node left = rangeOperand();
    for (;;) {
        const std::size_t before = at_;
        if (!skipBlanks() || !mayBeReference(left) || !(startsReference(peek()) || rowsAhead())) {
            at_ = before;
            return left;
        }
        left = fold(Operator::Intersection, std::move(left), rangeOperand());
    }
}

Node Parser::rangeOperand() {
    Node left = primary();
    for (;;) {
        const std::size_t before = at_;
        skipBlanks();
        if (peek() != ':') {
            at_ = before;
            return left;
        }
        ++at_;
        skipBlanks();
        left = fold(Operator::Range, std::move(left), primary());
    }
}

Node Parser::unionInParentheses() {
    const Depth guard(*this);
    Node node = comparison();
    while (accept(',')) {
        node = fold(Operator::Union, std::move(node), comparison());
    }
    expect(')');
    node.parenthesised = true;
    return node;
}

Node Parser::binary(Operator op, Node left, Node right) const {
    Node node;
    node.kind = Node::Kind::Binary;
    node.op = op;
    node.children.reserve(2);
    node.children.push_back(std::move(left));
    node.children.push_back(std::move(right));
    return withDepth(std::move(node));
}

/// Reference operators on written references are carried out at once.
Node Parser::fold(Operator op, Node left, Node right) {
    if (left.kind == Node::Kind::Reference && right.kind == Node::Kind::Reference && op != Operator::Intersection) {
        if (op == Operator::Union) {
            std::vector<Area> areas = left.value.areas();
            areas.insert(areas.end(), right.value.areas().begin(), right.value.areas().end());
            left.value = Value::reference(std::move(areas));
            return left;
        }
        if (left.value.areas().size() == 1 && right.value.areas().size() == 1) {
            Area a = left.value.areas()[0];
            const Area& b = right.value.areas()[0];
            if (a.sheet == b.sheet || !right.explicitSheet) {
                a.firstRow = std::min(a.firstRow, b.firstRow);
                a.firstColumn = std::min(a.firstColumn, b.firstColumn);
                a.lastRow = std::max(a.lastRow, b.lastRow);
                a.lastColumn = std::max(a.lastColumn, b.lastColumn);
                left.value = Value::reference({a});
                return left;
            }
        } else if (left.value.areas().size() > 1 && right.value.areas().size() == 1 && !right.explicitSheet &&
                   left.value.areas()[0].sheet != left.value.areas()[1].sheet) {
            std::vector<Area> areas = left.value.areas();  // First:Last!A1:B2
            const Area& b = right.value.areas()[0];
            for (Area& a : areas) {
                a = {a.sheet, std::min(a.firstRow, b.firstRow), std::min(a.firstColumn, b.firstColumn),
                     std::max(a.lastRow, b.lastRow), std::max(a.lastColumn, b.lastColumn)};
            }
            left.value = Value::reference(std::move(areas));
            return left;
        }
    }
    return binary(op, std::move(left), std::move(right));
}

}  // namespace quorva::workbook
