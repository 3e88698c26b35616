// The operands of formulas: constants and references, and which of them an identifier is.
#include <algorithm>

#include "common/cell_names.h"
#include "workbook/formula/parser_pass.h"
#include "workbook/formula/words.h"
#include "workbook/values/convert.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

Node Parser::primary() {
    Node node = primaryWithoutPostfix();
    for (;;) {
        if (peek() == '#' && !(peek(1) >= 'A' && peek(1) <= 'Z')) {
            ++at_;
            node = lazyNode(LazyFunction::AnchorArray, std::move(node));
        } else if (peek() == '(' && (node.kind == Node::Kind::Call || node.kind == Node::Kind::LazyCall)) {
            node = invocation(std::move(node));
        } else {
            return node;
        }
    }
}

Node Parser::primaryWithoutPostfix() {
    const Depth guard(*this);
    skipBlanks();
    const char c = peek();
    if (at_ >= text_.size()) {
        fail("it ends too early");
    }
    if (c == '(') {
        ++at_;
        return unionInParentheses();
    }
    if (c == '"') {
        return quotedText();
    }
    if (c == '#') {
        Node error = errorLiteral();
        if (error.value.error() == ErrorCode::Ref) {
            cellOfLostSheet();
        }
        return error;
    }
    if (c == '{') {
        return arrayConstant();
    }
    if (c == '\'') {
        return quotedSheet();
    }
    if (c == '[') {
        return bracketStart();
    }
    if (isDigit(c) || c == '.') {
        std::size_t end = at_;
        while (end < text_.size() && isDigit(text_[end])) {
            ++end;
        }
        if (end < text_.size() && text_[end] == ':' && end > at_) {
            return wholeRows(place_.sheet, place_.sheet, false);
        }
        // A sheet name may begin with a digit.
        const std::size_t start = at_;
        const std::string_view word = token();
        if (peek() == '!' && symbols_.sheet(word) >= 0) {
            ++at_;
            const int sheet = symbols_.sheet(word);
            return afterSheet(sheet, sheet);
        }
        at_ = start;
        return number();
    }
    if (c == '$' && isDigit(peek(1))) {
        return wholeRows(place_.sheet, place_.sheet, false);
    }
    if (isNamePart(c)) {
        return identifier();
    }
    fail(std::string("'") + c + "' is not expected");
}

Node Parser::number() {
    std::size_t end = at_;
    while (end < text_.size() && (isDigit(text_[end]) || text_[end] == '.')) {
        ++end;
    }
    if (end < text_.size() && (text_[end] == 'E' || text_[end] == 'e')) {
        std::size_t exponent = end + 1;
        if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) {
            ++exponent;
        }
        if (exponent < text_.size() && isDigit(text_[exponent])) {
            end = exponent;
            while (end < text_.size() && isDigit(text_[end])) {
                ++end;
            }
        }
    }
    const auto parsed = parsePlainNumber(text_.substr(at_, end - at_));
    if (!parsed) {
        fail("a number cannot be read");
    }
    at_ = end;
    return constant(Value(*parsed));
}

std::string Parser::quoted(char mark, const char* unfinished) {
    std::string text;
    for (++at_;; ++at_) {
        if (at_ >= text_.size()) {
            fail(unfinished);
        }
        if (text_[at_] == mark) {
            if (peek(1) != mark) {
                break;
            }
            ++at_;
        }
        text.push_back(text_[at_]);
    }
    ++at_;
    return text;
}

Node Parser::quotedText() { return constant(Value(quoted('"', "a text does not end"))); }

Node Parser::errorLiteral() {
    for (int i = 0; i <= static_cast<int>(ErrorCode::Calc); ++i) {
        const auto code = static_cast<ErrorCode>(i);
        if (text_.substr(at_).starts_with(errorText(code))) {
            at_ += errorText(code).size();
            return constant(Value(code));
        }
    }
    fail("an error value is not known");
}

/// #REF!A1, #REF!$A$1:$B$2, #REF!#REF!: a cell of a sheet that was deleted is #REF! as a whole.
void Parser::cellOfLostSheet() {
    const std::string_view lost = errorText(ErrorCode::Ref);
    if (text_.substr(at_).starts_with(lost)) {
        at_ += lost.size();
        return;
    }
    if (!token().empty() && peek() == ':' && isNamePart(peek(1))) {
        ++at_;
        token();
    }
}

Value Parser::arrayElement() {
    skipBlanks();
    bool negative = false;
    while (peek() == '-' || peek() == '+') {
        negative = negative != (peek() == '-');
        ++at_;
    }
    const char c = peek();
    if (c == '"') {
        return quotedText().value;
    }
    if (c == '#') {
        return errorLiteral().value;
    }
    if (isDigit(c) || c == '.') {
        const Value value = number().value;
        return negative ? Value(-value.number()) : value;
    }
    const std::string word = toUpper(token());
    if (word == "TRUE" || word == "FALSE") {
        return Value(word == "TRUE");
    }
    fail("an array constant holds something else than constants");
}

Node Parser::arrayConstant() {
    ++at_;
    std::vector<Value> cells;
    int rows = 0;
    int columns = 0;
    int column = 0;
    for (;;) {
        cells.push_back(arrayElement());
        ++column;
        if (accept(',')) {
            continue;
        }
        if (rows > 0 && column != columns) {
            fail("the rows of an array constant differ in length");
        }
        columns = column;
        column = 0;
        ++rows;
        if (accept(';')) {
            continue;
        }
        expect('}');
        return constant(Value::array(rows, columns, std::move(cells)));
    }
}

std::string_view Parser::token() {
    const std::size_t start = at_;
    while (at_ < text_.size() && isNamePart(text_[at_])) {
        ++at_;
    }
    return text_.substr(start, at_ - start);
}

/// 'My sheet'!A1, 'First sheet:Last sheet'!A1, '[1]Other'!A1
Node Parser::quotedSheet() {
    std::string name = quoted('\'', "a sheet's name does not end");
    if (peek() != '!') {
        fail("'!' is missing behind a sheet's name");
    }
    ++at_;
    int first = symbols_.sheet(name);
    int last = first;
    const auto colon = name.find(':');
    if (first < 0 && colon != std::string::npos) {
        first = symbols_.sheet(std::string_view(name).substr(0, colon));
        last = symbols_.sheet(std::string_view(name).substr(colon + 1));
    }
    return afterSheet(first, last);
}

/// [1]Sheet!A1 of an external book, or [Column] and [@Column] inside a table.
Node Parser::bracketStart() {
    std::size_t end = at_ + 1;
    while (end < text_.size() && isDigit(text_[end])) {
        ++end;
    }
    if (end > at_ + 1 && end < text_.size() && text_[end] == ']') {
        const std::size_t start = at_;
        at_ = end + 1;
        token();
        if (peek() == '!') {
            const std::string_view name = text_.substr(start, at_ - start);
            ++at_;
            if (name == "[0]") {  // this workbook
                return definedName(token(), place_.sheet);
            }
            if (name.back() == ']') {
                return unsupported("a name of another workbook (" + std::string(token()) + ")");
            }
            const int sheet = symbols_.sheet(name);
            return afterSheet(sheet, sheet);
        }
        at_ = start;
    }
    const RawTable* table = symbols_.tableAt(place_.sheet, place_.row, place_.column);
    if (!table) {
        fail("a column is named outside any table");
    }
    return structured(table);
}

/// What follows "Sheet!"; a sheet of -1 does not exist, and the reference is #REF!.
Node Parser::afterSheet(int firstSheet, int lastSheet) {
    if (peek() == '#') {
        return errorLiteral();
    }
    if (firstSheet > lastSheet) {
        std::swap(firstSheet, lastSheet);
    }
    if (isDigit(peek()) || (peek() == '$' && isDigit(peek(1)))) {
        return wholeRows(firstSheet, lastSheet, true);
    }
    const std::string_view word = token();
    Node node;
    if (word.empty()) {
        fail("a reference is missing behind a sheet's name");
    }
    if (wholeColumns(word, firstSheet, lastSheet, true, node) || cell(word, firstSheet, lastSheet, true, node)) {
        return node;
    }
    return definedName(word, firstSheet);
}

Node Parser::reference(int firstSheet, int lastSheet, Area area, bool explicitSheet) {
    if (firstSheet < 0 || lastSheet < 0) {
        return constant(Value(ErrorCode::Ref));
    }
    if (area.firstRow > area.lastRow) {
        std::swap(area.firstRow, area.lastRow);
    }
    if (area.firstColumn > area.lastColumn) {
        std::swap(area.firstColumn, area.lastColumn);
    }
    std::vector<Area> areas;
    for (int sheet = firstSheet; sheet <= lastSheet; ++sheet) {
        area.sheet = sheet;
        areas.push_back(area);
    }
    Node node;
    node.kind = Node::Kind::Reference;
    node.explicitSheet = explicitSheet;
    node.value = Value::reference(std::move(areas));
    return node;
}

Node Parser::wholeRows(int firstSheet, int lastSheet, bool explicitSheet) {
    const ReferencePart first = rowPart(token());
    if (peek() != ':') {
        fail("a reference cannot be read");
    }
    ++at_;
    const ReferencePart last = rowPart(token());
    if (first.position < 0 || last.position < 0) {
        fail("a reference to rows cannot be read");
    }
    return reference(
        firstSheet, lastSheet,
        {0, shifted(first, place_.shiftRows, maxRows), 0, shifted(last, place_.shiftRows, maxRows), maxColumns - 1},
        explicitSheet);
}

bool Parser::wholeColumns(std::string_view word, int firstSheet, int lastSheet, bool explicitSheet, Node& node) {
    const ReferencePart first = columnPart(word);
    if (first.position < 0 || peek() != ':') {
        return false;
    }
    const std::size_t start = at_;
    ++at_;
    const ReferencePart last = columnPart(token());
    if (last.position < 0 || peek() == '(' || peek() == '!') {
        at_ = start;
        return false;
    }
    node = reference(firstSheet, lastSheet,
                     {0, 0, shifted(first, place_.shiftColumns, maxColumns), maxRows - 1,
                      shifted(last, place_.shiftColumns, maxColumns)},
                     explicitSheet);
    return true;
}

bool Parser::cell(std::string_view word, int firstSheet, int lastSheet, bool explicitSheet, Node& node) {
    const CellParts parts = cellParts(word);
    if (!parts.valid()) {
        return false;
    }
    const int r = shifted(parts.row, place_.shiftRows, maxRows);
    const int c = shifted(parts.column, place_.shiftColumns, maxColumns);
    node = reference(firstSheet, lastSheet, {0, r, c, r, c}, explicitSheet);
    return true;
}

int Parser::variable(std::string_view name) const {
    const std::string lower = toLower(withoutPrefix(name));
    for (auto entry = scope_.rbegin(); entry != scope_.rend(); ++entry) {
        if (entry->first == lower) {
            return entry->second;
        }
    }
    return -1;
}

/// "SUM (A1)", which some programs write; a name before a parenthesis is intersected with it.
bool Parser::blanksBeforeArguments(std::string_view word) {
    const std::size_t behind = at_;
    const std::string name = toUpper(withoutPrefix(word));
    if (skipBlanks() && peek() == '(' && (symbols_.function(name) || findLazyFunction(name)) &&
        !symbols_.name(word, place_.sheet)) {
        return true;
    }
    at_ = behind;
    return false;
}

Node Parser::identifier() {
    const std::string_view word = token();
    const std::size_t behind = at_;
    if (peek() == '!') {
        ++at_;
        const int sheet = symbols_.sheet(word);
        return afterSheet(sheet, sheet);
    }
    if (peek() == ':') {  // First:Last!A1
        ++at_;
        const std::string_view last = token();
        if (peek() == '!' && symbols_.sheet(word) >= 0 && symbols_.sheet(last) >= 0) {
            ++at_;
            return afterSheet(symbols_.sheet(word), symbols_.sheet(last));
        }
        at_ = behind;
    }
    if (const int index = variable(word); index >= 0) {
        Node node;
        node.kind = Node::Kind::Variable;
        node.index = index;
        return peek() == '(' ? invocation(std::move(node)) : node;
    }
    if (peek() == '(' || blanksBeforeArguments(word)) {
        expect('(');
        return call(word);
    }
    if (peek() == '[') {
        if (const RawTable* table = symbols_.table(word)) {
            return structured(table);
        }
        fail("a table named " + std::string(word) + " does not exist");
    }
    Node node;
    if (wholeColumns(word, place_.sheet, place_.sheet, false, node) ||
        cell(word, place_.sheet, place_.sheet, false, node)) {
        return node;
    }
    const std::string upper = toUpper(word);
    if (upper.starts_with("_XLETA.")) {  // a function named without arguments, as BYROW(A1:B2, SUM)
        return functionAsLambda(upper.substr(7));
    }
    if (upper == "TRUE" || upper == "FALSE") {
        return constant(Value(upper == "TRUE"));
    }
    return definedName(word, place_.sheet);
}

}  // namespace quorva::workbook
