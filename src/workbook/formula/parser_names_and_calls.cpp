// Defined names, calls of functions, and the variables of LET and LAMBDA.
#include <algorithm>

#include "workbook/formula/parser_pass.h"
#include "workbook/formula/words.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

/// A name that holds another twice, which holds another twice ... is longer than any memory when it is written out.
constexpr int mostNames = 5000;
constexpr int deepestName = 30;

}  // namespace

Node Parser::functionAsLambda(const std::string& name) const {
    const FunctionRow* row = symbols_.function(name);
    if (!row) {
        return unsupported("the function " + name + " without arguments");
    }
    Node node;
    node.kind = Node::Kind::LazyCall;
    node.lazy = LazyFunction::Lambda;
    node.row = row;
    return node;
}

Node Parser::definedName(std::string_view name, int sheet) {
    const RawName* found = symbols_.name(withoutPrefix(name), sheet);
    if (!found) {
        if (const RawTable* table = symbols_.table(name)) {
            return reference(table->area.sheet, table->area.sheet,
                             {0, table->area.firstRow + table->headerRows, table->area.firstColumn,
                              table->area.lastRow - table->totalsRows, table->area.lastColumn},
                             true);
        }
        return constant(Value(ErrorCode::Name));
    }
    const NameTrail trail{found, trail_, trail_ ? trail_->count : &names_, depth_};
    int depth = 0;
    for (const NameTrail* at = trail_; at; at = at->outer) {
        if (at->name == found || ++depth > deepestName) {
            fail("names refer to each other without end");
        }
    }
    if (++*trail.count > mostNames) {
        fail("it consists of too many names");
    }
    FormulaPlace place = place_;
    place.sheet = found->sheet >= 0 ? found->sheet : place_.sheet;
    place.shiftRows = place_.row;
    place.shiftColumns = place_.column;
    try {
        Node node = Parser(found->formula, place, symbols_, &trail).parse();
        if (peek() == '(') {
            return invocation(std::move(node));
        }
        node.explicitSheet = true;
        return node;
    } catch (const ParseError& error) {
        Node node = unsupported("the name " + std::string(name) + " (" + error.what() + ")");
        node.unread = true;
        return node;
    }
}

std::vector<Node> Parser::callArguments() {
    std::vector<Node> arguments;
    if (accept(')')) {
        return arguments;
    }
    for (;;) {
        skipBlanks();
        if (peek() == ',' || peek() == ')') {
            arguments.emplace_back();
        } else {
            arguments.push_back(comparison());
        }
        if (accept(',')) {
            continue;
        }
        expect(')');
        return arguments;
    }
}

/// The call of what `callee` gives, with the arguments whose parenthesis stands here.
Node Parser::invocation(Node callee) {
    expect('(');
    Node node;
    node.kind = Node::Kind::Call;
    node.children = callArguments();
    node.children.insert(node.children.begin(), std::move(callee));
    return withDepth(std::move(node));
}

/// An identifier that a comma follows: the name of a variable in LET or LAMBDA.
bool Parser::variableAhead(std::string_view& name, bool& optional) {
    const std::size_t start = at_;
    skipBlanks();
    optional = peek() == '[';
    at_ += optional ? 1 : 0;
    name = token();
    bool ok = !name.empty() && !isDigit(name.front());
    if (optional) {
        ok = ok && accept(']');
    }
    if (ok && accept(',')) {
        optional = optional || toLower(name).starts_with("_xlop.");  // as files write [name]
        name = withoutPrefix(name);
        return true;
    }
    at_ = start;
    return false;
}

/// LET (names with their values, then what they stand in) and LAMBDA (names, then the body).
Node Parser::variablesFunction(LazyFunction function) {
    Node node;
    node.kind = Node::Kind::LazyCall;
    node.lazy = function;
    const std::size_t outer = scope_.size();
    std::string_view name;
    bool optional = false;
    while (variableAhead(name, optional)) {
        if (function == LazyFunction::Let) {
            node.children.push_back(comparison());  // the variable itself is not known yet
        }
        node.parameters.push_back(optional ? ~nextVariable_ : nextVariable_);
        scope_.emplace_back(toLower(name), nextVariable_++);
        if (function == LazyFunction::Let) {
            expect(',');
        }
    }
    if (function == LazyFunction::Let && node.children.empty()) {
        fail("LET defines no name");
    }
    node.children.push_back(comparison());
    expect(')');
    scope_.resize(outer);
    return withDepth(std::move(node));
}

Node Parser::call(std::string_view written) {
    const std::string name = toUpper(withoutPrefix(written));
    if (name == "LET" || name == "LAMBDA") {
        return variablesFunction(name == "LET" ? LazyFunction::Let : LazyFunction::Lambda);
    }
    Node node;
    node.children = callArguments();
    const int count = static_cast<int>(node.children.size());
    const auto checkCount = [&](int least, int most) {
        if (count < least || count > most) {
            fail(name + " has " + std::to_string(count) + " arguments");
        }
    };
    if (const LazyFunctionRow* lazy = findLazyFunction(name)) {
        checkCount(lazy->minArgs, lazy->maxArgs);
        node.kind = Node::Kind::LazyCall;
        node.lazy = lazy->function;
    } else if (const FunctionRow* row = symbols_.function(name)) {
        checkCount(row->minArgs, row->maxArgs);
        node.kind = Node::Kind::TableCall;
        node.row = row;
    } else if (name.starts_with("QUORVA_")) {
        node.kind = Node::Kind::ModelCall;
        node.index = symbols_.modelFunction(name);
    } else if (symbols_.name(name, place_.sheet)) {
        Node callee = definedName(name, place_.sheet);
        node.kind = Node::Kind::Call;
        node.children.insert(node.children.begin(), std::move(callee));
    } else {
        node.kind = Node::Kind::Unsupported;
        node.text = name == "TABLE" ? "a what-if table" : "the function " + name;
    }
    return withDepth(std::move(node));
}

}  // namespace quorva::workbook
