// The parser's inside: one pass over the text of a formula.
#pragma once

#include "workbook/formula/parser.h"

namespace quorva::workbook {

/// How deep the tree of a formula may be, names written out. A chain of operators is a tree as deep as it is long, and
/// the longest one that fits Excel's 8192 characters has 4095 of them. Everything that walks trees may recurse: a walk
/// of this depth takes up to 2 MB of the stack, 4 MB with sanitizers.
constexpr int deepestTree = 4200;
/// How deep parentheses, calls and names may stand in each other, in calls of the parser's own: a call of a function
/// takes two, a parenthesis three. Excel nests 64 functions.
constexpr int deepestNesting = 400;
constexpr const char* tooDeep = "it is nested too deeply";

/// The names that are being written out where they stand, innermost first.
struct NameTrail {
    const RawName* name;
    const NameTrail* outer;
    int* count;   ///< of all names written out in the formula
    int nesting;  ///< how deep the name stands
};

inline Node constant(Value value) {
    Node node;
    node.kind = Node::Kind::Constant;
    node.value = std::move(value);
    return node;
}

inline Node unsupported(std::string what) {
    Node node;
    node.kind = Node::Kind::Unsupported;
    node.text = std::move(what);
    return node;
}

class Parser {
public:
    Parser(std::string_view text, const FormulaPlace& place, Symbols& symbols, const NameTrail* trail = nullptr)
        : text_(text), place_(place), symbols_(symbols), trail_(trail), depth_(trail ? trail->nesting : 0) {}
    Node parse();

private:
    // parser.cpp: operators
    Node comparison();
    Node concatenation();
    Node additive();
    Node multiplicative();
    Node power();
    Node percent();
    Node unary();
    Node intersection();
    bool rowsAhead() const;
    Node rangeOperand();
    Node unionInParentheses();
    /// The node with its depth: every node that has children goes through here.
    Node withDepth(Node node) const;
    Node unaryNode(Operator op, Node child) const;
    Node lazyNode(LazyFunction function, Node child) const;
    Node binary(Operator op, Node left, Node right) const;
    Node fold(Operator op, Node left, Node right);

    // parser_operands.cpp: constants, references
    Node primary();
    Node primaryWithoutPostfix();
    Node number();
    /// What stands between marks, a doubled mark standing for one; `unfinished` is the complaint when it does not end.
    std::string quoted(char mark, const char* unfinished);
    Node quotedText();
    Node errorLiteral();
    void cellOfLostSheet();
    Node arrayConstant();
    Value arrayElement();
    Node quotedSheet();
    Node bracketStart();
    Node identifier();
    bool blanksBeforeArguments(std::string_view word);
    Node afterSheet(int firstSheet, int lastSheet);
    Node wholeRows(int firstSheet, int lastSheet, bool explicitSheet);
    bool wholeColumns(std::string_view token, int firstSheet, int lastSheet, bool explicitSheet, Node& node);
    bool cell(std::string_view token, int firstSheet, int lastSheet, bool explicitSheet, Node& node);
    Node reference(int firstSheet, int lastSheet, Area area, bool explicitSheet);
    std::string_view token();
    int variable(std::string_view name) const;

    // parser_names_and_calls.cpp: names, calls, variables
    Node definedName(std::string_view name, int sheet);
    Node call(std::string_view name);
    Node functionAsLambda(const std::string& name) const;
    Node variablesFunction(LazyFunction function);
    Node invocation(Node callee);
    std::vector<Node> callArguments();
    bool variableAhead(std::string_view& name, bool& optional);

    // parser_tables.cpp: tables
    Node structured(const RawTable* table);

    char peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    bool skipBlanks();
    bool accept(char c);
    void expect(char c);
    [[noreturn]] void fail(const std::string& what) const;

    struct Depth {
        explicit Depth(Parser& parser) : parser_(parser) {
            if (++parser_.depth_ > deepestNesting) {
                parser_.fail(tooDeep);
            }
        }
        ~Depth() { --parser_.depth_; }
        Parser& parser_;
    };

    std::string_view text_;
    FormulaPlace place_;
    Symbols& symbols_;
    const NameTrail* trail_ = nullptr;
    int depth_ = 0;  ///< of the nesting
    int names_ = 0;
    std::size_t at_ = 0;
    int nextVariable_ = 0;
    std::vector<std::pair<std::string, int>> scope_;
};

}  // namespace quorva::workbook
