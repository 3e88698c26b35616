// Functions that make references or look at them: INDEX, OFFSET, INDIRECT, ROW, CELL ...
#include <algorithm>
#include <cmath>

#include "common/cell_names.h"
#include "workbook/evaluation/evaluator.h"

namespace quorva::workbook {

namespace {

Value arraySlice(const Value& array, int firstRow, int firstColumn, int rows, int columns) {
    std::vector<Value> cells;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            cells.push_back(array.arrayCells()[static_cast<std::size_t>(firstRow + row) * array.arrayColumns() +
                                               firstColumn + column]);
        }
    }
    return Value::array(rows, columns, std::move(cells));
}

/// The number behind a letter of "R2C[-1]": relative to `base` in brackets, `base` itself when there is none.
bool parseRelative(std::string_view& text, int base, int limit, int& position) {
    text.remove_prefix(1);
    const bool relative = text.starts_with('[');
    std::size_t end = relative ? 1 : 0;
    while (end < text.size() && ((text[end] >= '0' && text[end] <= '9') || (relative && text[end] == '-'))) {
        ++end;
    }
    const auto number = parsePlainNumber(text.substr(relative ? 1 : 0, end - (relative ? 1 : 0)));
    if (relative && (end >= text.size() || text[end] != ']' || !number)) {
        return false;
    }
    text.remove_prefix(end + (relative ? 1 : 0));
    const double place = relative ? base + *number : number ? *number - 1 : base;
    if (!(place >= 0 && place < limit)) {
        return false;
    }
    position = static_cast<int>(place);
    return true;
}

/// "R2C3", "R[1]C[-1]", "RC", "R2" (a whole row), "C" (a whole column) at the front of the text.
bool parseRelative(std::string_view& text, const Call& call, Area& area) {
    const auto at = [&](char letter) { return !text.empty() && (text.front() & ~32) == letter; };
    const bool row = at('R');
    if (row && !parseRelative(text, call.row, maxRows, area.firstRow)) {
        return false;
    }
    const bool column = at('C');
    if (column && !parseRelative(text, call.column, maxColumns, area.firstColumn)) {
        return false;
    }
    area.lastRow = row ? area.firstRow : maxRows - 1;
    area.lastColumn = column ? area.firstColumn : maxColumns - 1;
    return row || column;
}

/// A sheet's name without its quotes.
std::string unquoted(std::string_view name) {
    if (name.size() < 2 || name.front() != '\'' || name.back() != '\'') {
        return std::string(name);
    }
    std::string plain;
    for (std::size_t i = 1; i + 1 < name.size(); ++i) {
        plain.push_back(name[i]);
        i += name[i] == '\'' && i + 2 < name.size() && name[i + 1] == '\'' ? 1 : 0;
    }
    return plain;
}

}  // namespace

Value Evaluator::indexFunction(const Node& node) {
    const Mode outer = mode;
    mode = mode == Mode::Scalar ? Mode::ArrayArgument : mode;  // INDEX((A1:A9=1)*B1:B9, 0) computes the whole array
    const Value base = evaluate(node.children[0]);
    mode = outer;
    if (base.isError()) {
        return base;
    }
    const auto optional = [&](std::size_t i) {
        return node.children.size() > i ? evaluateOperand(node.children[i]) : Value(i == 3 ? 1.0 : 0.0);
    };
    const Value row = optional(1);
    const Value column = optional(2);
    const Value area = optional(3);
    const int given = static_cast<int>(node.children.size());
    if (row.isArray() || column.isArray()) {
        return combine(call, row, column, [&](const Value& r, const Value& c) {
            Value one = indexOne(base, r, c, area, given);
            one = one.isReference() ? readReference(call, one) : one;
            return one.isArray() ? one.arrayCells()[0] : one;
        });
    }
    return indexOne(base, row, column, area, given);
}

Value Evaluator::indexOne(const Value& base, const Value& row, const Value& column, const Value& area, int given) {
    const auto r = toNumber(row, call.date1904);
    if (!r) {
        return r.error();
    }
    const auto c = toNumber(column, call.date1904);
    if (!c) {
        return c.error();
    }
    const auto n = toNumber(area, call.date1904);
    if (!n) {
        return n.error();
    }
    Area whole;
    if (base.isReference()) {
        if (*n < 1 || *n >= static_cast<double>(base.areas().size()) + 1) {
            return ErrorCode::Ref;
        }
        whole = base.areas()[static_cast<std::size_t>(*n) - 1];
    } else {
        whole = {0, 0, 0, base.isArray() ? base.arrayRows() - 1 : 0, base.isArray() ? base.arrayColumns() - 1 : 0};
    }
    double wantedRow = std::trunc(*r);
    double wantedColumn = std::trunc(*c);
    if (given == 2 && whole.rows() == 1) {
        std::swap(wantedRow, wantedColumn);
        wantedRow = whole.columns() == 1 ? wantedColumn : 0;
        wantedColumn = whole.columns() == 1 ? 0 : wantedColumn;
    }
    if (wantedRow < 0 || wantedColumn < 0) {
        return ErrorCode::Value;
    }
    if (wantedRow > whole.rows() || wantedColumn > whole.columns()) {
        return ErrorCode::Ref;
    }
    const int firstRow = wantedRow == 0 ? 0 : static_cast<int>(wantedRow) - 1;
    const int firstColumn = wantedColumn == 0 ? 0 : static_cast<int>(wantedColumn) - 1;
    const int rows = wantedRow == 0 ? whole.rows() : 1;
    const int columns = wantedColumn == 0 ? whole.columns() : 1;
    if (base.isReference()) {
        const int top = whole.firstRow + firstRow;
        const int left = whole.firstColumn + firstColumn;
        return Value::reference({{whole.sheet, top, left, top + rows - 1, left + columns - 1}});
    }
    if (!base.isArray()) {
        return base;
    }
    call.spend(static_cast<double>(rows) * columns);
    Value slice = arraySlice(base, firstRow, firstColumn, rows, columns);
    return rows == 1 && columns == 1 ? slice.arrayCells()[0] : slice;
}

Value Evaluator::offsetFunction(const Node& node) {
    const Value base = evaluate(node.children[0]);
    if (!base.isReference()) {
        refuseReferenceArray(base);
        return base.isError() ? base : Value(ErrorCode::Value);
    }
    if (base.areas().size() != 1) {
        return ErrorCode::Value;
    }
    const Area& from = base.areas()[0];
    std::vector<Value> numbers{0.0, 0.0, from.rows(), from.columns()};
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        if (i < 3 || node.children[i].kind != Node::Kind::Missing) {
            numbers[i - 1] = evaluateOperand(node.children[i]);
        }
    }
    return forEachReference(numbers, [&](std::span<const Value> one) { return offsetOne(from, one); });
}

/// One reference, `numbers` away from a block: rows down, columns right, height, width.
Value Evaluator::offsetOne(const Area& from, std::span<const Value> numbers) {
    double steps[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const auto number = toNumber(numbers[i], call.date1904);
        if (!number) {
            return number.error();
        }
        steps[i] = std::trunc(*number);
    }
    if (steps[2] == 0 || steps[3] == 0) {
        return ErrorCode::Ref;
    }
    double top = from.firstRow + steps[0];
    double left = from.firstColumn + steps[1];
    if (steps[2] < 0) {
        top += steps[2] + 1;
    }
    if (steps[3] < 0) {
        left += steps[3] + 1;
    }
    const double bottom = top + std::fabs(steps[2]) - 1;
    const double right = left + std::fabs(steps[3]) - 1;
    if (!(top >= 0 && left >= 0 && bottom < maxRows && right < maxColumns)) {
        return ErrorCode::Ref;
    }
    const Area area{from.sheet, static_cast<int>(top), static_cast<int>(left), static_cast<int>(bottom),
                    static_cast<int>(right)};
    context.bringUpToDate(area);
    return Value::reference({area});
}

/// The reference that the values describe; for arrays among them an array of references.
Value Evaluator::forEachReference(std::span<const Value> values,
                                  const std::function<Value(std::span<const Value>)>& refer) {
    int rows = 1;
    int columns = 1;
    for (const Value& value : values) {
        rows = std::max(rows, value.isArray() ? value.arrayRows() : 1);
        columns = std::max(columns, value.isArray() ? value.arrayColumns() : 1);
    }
    if (static_cast<std::int64_t>(rows) * columns > largestArray) {
        return ErrorCode::Num;
    }
    call.spend(static_cast<double>(rows) * columns);
    std::vector<Value> references;
    std::vector<Value> one(values.size());
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            std::transform(values.begin(), values.end(), one.begin(),
                           [&](const Value& value) { return combinedElement(value, row, column); });
            references.push_back(refer(one));
        }
    }
    return references.size() == 1 ? references[0] : Value::references(rows, columns, std::move(references));
}

Value Evaluator::indirectFunction(const Node& node) {
    std::vector<Value> values{evaluateOperand(node.children[0]), true};
    if (node.children.size() > 1 && node.children[1].kind != Node::Kind::Missing) {
        values[1] = evaluateOperand(node.children[1]);
    }
    return forEachReference(values, [&](std::span<const Value> one) -> Value {
        const auto text = toText(one[0]);
        if (!text) {
            return text.error();
        }
        const auto a1 = toBoolean(one[1]);
        if (!a1) {
            return a1.error();
        }
        Area area;
        if (*a1 || context.symbols->name(*text, call.sheet)) {
            return referenceFromText(*text);
        }
        if (!areaFromNumbers(*text, area)) {
            return ErrorCode::Ref;
        }
        context.bringUpToDate(area);
        return Value::reference({area});
    });
}

/// "A1", "Sheet2!B:B", a name, ...
Value Evaluator::referenceFromText(const std::string& text) {
    try {
        const Node parsed = parseFormula(text, {call.sheet, call.row, call.column, 0, 0}, *context.symbols);
        const Value value = parsed.kind == Node::Kind::Reference || parsed.kind == Node::Kind::LazyCall ||
                                    parsed.kind == Node::Kind::Binary
                                ? evaluate(parsed)
                                : Value(ErrorCode::Ref);
        if (!value.isReference()) {
            return ErrorCode::Ref;
        }
        for (const Area& area : value.areas()) {
            context.bringUpToDate(area);
        }
        return value;
    } catch (const ParseError&) {
        return ErrorCode::Ref;
    }
}

/// "R1C1", "R[-1]C:RC", "Sheet2!C3" (a whole column) ...; false when the text is none.
bool Evaluator::areaFromNumbers(std::string_view text, Area& area) {
    area.sheet = call.sheet;
    if (const auto mark = text.rfind('!'); mark != std::string_view::npos) {
        area.sheet = context.symbols->sheet(unquoted(text.substr(0, mark)));
        text.remove_prefix(mark + 1);
    }
    if (area.sheet < 0 || !parseRelative(text, call, area)) {
        return false;
    }
    if (text.starts_with(':')) {
        text.remove_prefix(1);
        Area other;
        if (!parseRelative(text, call, other)) {
            return false;
        }
        area = {area.sheet, std::min(area.firstRow, other.firstRow), std::min(area.firstColumn, other.firstColumn),
                std::max(area.lastRow, other.lastRow), std::max(area.lastColumn, other.lastColumn)};
    }
    return text.empty();
}

Value Evaluator::rowFunction(const Node& node, bool column) {
    if (node.children.empty()) {
        return column ? call.column + 1 : call.row + 1;
    }
    const Value value = evaluate(node.children[0]);
    if (!value.isReference() || value.areas().size() != 1) {
        return value.isError() ? value : Value(ErrorCode::Value);
    }
    const Area& area = value.areas()[0];
    const int first = column ? area.firstColumn : area.firstRow;
    const int count = column ? area.columns() : area.rows();
    if (count == 1 || mode == Mode::Scalar) {
        return first + 1;
    }
    call.spend(count);
    std::vector<Value> cells;
    for (int i = 0; i < count; ++i) {
        cells.emplace_back(first + i + 1);
    }
    return column ? Value::array(1, count, std::move(cells)) : Value::array(count, 1, std::move(cells));
}

Value Evaluator::countFunction(const Node& node, bool columns) {
    const Mode outer = mode;
    mode = mode == Mode::Scalar ? Mode::ArrayArgument : mode;
    const Value value = evaluate(node.children[0]);
    mode = outer;
    if (value.isReference()) {
        if (value.areas().size() != 1) {
            return ErrorCode::Ref;
        }
        return columns ? value.areas()[0].columns() : value.areas()[0].rows();
    }
    if (value.isArray()) {
        return columns ? value.arrayColumns() : value.arrayRows();
    }
    return value.isError() ? value : Value(1);
}

Value Evaluator::cellFunction(const Node& node) {
    const auto what = toText(evaluateScalar(node.children[0]));
    if (!what) {
        return what.error();
    }
    Area area{call.sheet, call.row, call.column, call.row, call.column};
    if (node.children.size() > 1) {
        const Value value = evaluate(node.children[1]);
        if (!value.isReference()) {
            return value.isError() ? value : Value(ErrorCode::Value);
        }
        area = value.areas()[0];
    }
    const std::string kind = toLower(*what);
    const Value content = call.cells.get(area.sheet, area.firstRow, area.firstColumn);
    if (kind == "row") {
        return area.firstRow + 1;
    }
    if (kind == "col") {
        return area.firstColumn + 1;
    }
    if (kind == "contents") {
        return content.isBlank() ? Value(0.0) : content;
    }
    if (kind == "type") {
        return content.isBlank() ? "b" : content.isText() ? "l" : "v";
    }
    if (kind == "address") {
        const std::string column = cellName(0, area.firstColumn);
        const std::string address = "$" + column.substr(0, column.size() - 1) + "$" + std::to_string(area.firstRow + 1);
        if (area.sheet == call.sheet) {
            return address;
        }
        return sheetPrefix("[" + context.raw->fileName + "]" + context.raw->sheets[area.sheet].name) + address;
    }
    constexpr std::string_view others[] = {"color", "filename", "format", "parentheses", "prefix", "protect", "width"};
    if (std::find(std::begin(others), std::end(others), kind) == std::end(others)) {
        return ErrorCode::Value;
    }
    throw Unsupported{"the function CELL with \"" + *what + "\""};
}

Value Evaluator::sheetFunction(const Node& node, bool count) {
    if (node.children.empty()) {
        return count ? context.raw->ownSheets : call.sheet + 1;
    }
    const Value value = evaluate(node.children[0]);
    if (value.isReference()) {
        return count ? static_cast<int>(value.areas().size()) : value.areas()[0].sheet + 1;
    }
    if (value.isText() && !count) {
        const int sheet = context.symbols->sheet(value.text());
        return sheet < 0 ? Value(ErrorCode::NA) : Value(sheet + 1);
    }
    return value.isError() ? value : Value(count ? ErrorCode::Ref : ErrorCode::NA);
}

Value Evaluator::anchorFunction(const Node& node) {
    const Value value = evaluate(node.children[0]);
    if (!value.isReference() || value.areas().size() != 1) {
        return value.isError() ? value : Value(ErrorCode::Ref);
    }
    const Area& cell = value.areas()[0];
    Area spill;
    if (!cell.single() || !context.spillOf(cell.sheet, cell.firstRow, cell.firstColumn, spill)) {
        return ErrorCode::Ref;
    }
    return Value::reference({spill});
}

Value Evaluator::formulaFunction(const Node& node, bool text) {
    const Value value = evaluate(node.children[0]);
    if (!value.isReference()) {
        return value.isError() ? value : Value(text ? ErrorCode::NA : ErrorCode::Value);
    }
    const Area& cell = value.areas()[0];
    const auto formula = context.formulaText(cell.sheet, cell.firstRow, cell.firstColumn);
    if (!text) {
        return Value(formula.has_value());
    }
    return formula ? Value(*formula) : Value(ErrorCode::NA);
}

}  // namespace quorva::workbook
