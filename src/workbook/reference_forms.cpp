// Functions that make references or look at them: INDEX, OFFSET, INDIRECT, ROW, CELL ...
#include <algorithm>
#include <cmath>

#include "workbook/book.h"
#include "workbook/evaluator.h"

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

/// "R2C3", "R[1]C[-1]", "RC" as an absolute position; false when the text is none.
bool parseRelative(std::string_view& text, char letter, int base, int limit, int& position) {
    if (text.empty() || (text.front() & ~32) != letter) {
        return false;
    }
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

}  // namespace

Value Evaluator::indexForm(const Node& node) {
    const Value base = evaluate(node.children[0]);
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
    Value slice = arraySlice(base, firstRow, firstColumn, rows, columns);
    return rows == 1 && columns == 1 ? slice.arrayCells()[0] : slice;
}

Value Evaluator::offsetForm(const Node& node) {
    const Value base = evaluate(node.children[0]);
    if (!base.isReference()) {
        return base.isError() ? base : Value(ErrorCode::Value);
    }
    if (base.areas().size() != 1) {
        return ErrorCode::Value;
    }
    const Area& from = base.areas()[0];
    double numbers[4] = {0, 0, static_cast<double>(from.rows()), static_cast<double>(from.columns())};
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        if (i > 2 && node.children[i].kind == Node::Kind::Missing) {
            continue;
        }
        const auto number = toNumber(evaluateScalar(node.children[i]), call.date1904);
        if (!number) {
            return number.error();
        }
        numbers[i - 1] = std::trunc(*number);
    }
    if (numbers[2] == 0 || numbers[3] == 0) {
        return ErrorCode::Ref;
    }
    double top = from.firstRow + numbers[0];
    double left = from.firstColumn + numbers[1];
    if (numbers[2] < 0) {
        top += numbers[2] + 1;
    }
    if (numbers[3] < 0) {
        left += numbers[3] + 1;
    }
    const double bottom = top + std::fabs(numbers[2]) - 1;
    const double right = left + std::fabs(numbers[3]) - 1;
    if (!(top >= 0 && left >= 0 && bottom < maxRows && right < maxColumns)) {
        return ErrorCode::Ref;
    }
    const Area area{from.sheet, static_cast<int>(top), static_cast<int>(left), static_cast<int>(bottom),
                    static_cast<int>(right)};
    around.bringUpToDate(area);
    return Value::reference({area});
}

Value Evaluator::indirectForm(const Node& node) {
    const Value written = evaluateScalar(node.children[0]);
    const auto text = toText(written);
    if (!text) {
        return text.error();
    }
    bool a1 = true;
    if (node.children.size() > 1 && node.children[1].kind != Node::Kind::Missing) {
        const auto style = toBoolean(evaluateScalar(node.children[1]));
        if (!style) {
            return style.error();
        }
        a1 = *style;
    }
    if (!a1) {
        std::string_view rest = *text;
        int sheet = call.sheet;
        if (const auto mark = rest.rfind('!'); mark != std::string_view::npos) {
            std::string_view name = rest.substr(0, mark);
            if (name.size() > 2 && name.front() == '\'' && name.back() == '\'') {
                name = name.substr(1, name.size() - 2);
            }
            sheet = around.symbols->sheet(name);
            rest = rest.substr(mark + 1);
        }
        Area area{sheet, 0, 0, 0, 0};
        if (sheet < 0 || !parseRelative(rest, 'R', call.row, maxRows, area.firstRow) ||
            !parseRelative(rest, 'C', call.column, maxColumns, area.firstColumn) || !rest.empty()) {
            return ErrorCode::Ref;
        }
        area.lastRow = area.firstRow;
        area.lastColumn = area.firstColumn;
        around.bringUpToDate(area);
        return Value::reference({area});
    }
    try {
        const Node parsed = parseFormula(*text, {call.sheet, call.row, call.column, 0, 0}, *around.symbols);
        const Value value = parsed.kind == Node::Kind::Reference || parsed.kind == Node::Kind::Special ||
                                    parsed.kind == Node::Kind::Binary
                                ? evaluate(parsed)
                                : Value(ErrorCode::Ref);
        if (!value.isReference()) {
            return ErrorCode::Ref;
        }
        for (const Area& area : value.areas()) {
            around.bringUpToDate(area);
        }
        return value;
    } catch (const ParseError&) {
        return ErrorCode::Ref;
    }
}

Value Evaluator::rowForm(const Node& node, bool column) {
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
    std::vector<Value> cells;
    for (int i = 0; i < count; ++i) {
        cells.emplace_back(first + i + 1);
    }
    return column ? Value::array(1, count, std::move(cells)) : Value::array(count, 1, std::move(cells));
}

Value Evaluator::countForm(const Node& node, bool columns) {
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

Value Evaluator::cellForm(const Node& node) {
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
        return "[" + around.raw->fileName + "]" + around.raw->sheets[area.sheet].name + "!" + address;
    }
    throw Unsupported{"the function CELL with \"" + *what + "\""};
}

Value Evaluator::sheetForm(const Node& node, bool count) {
    if (node.children.empty()) {
        return count ? around.raw->ownSheets : call.sheet + 1;
    }
    const Value value = evaluate(node.children[0]);
    if (value.isReference()) {
        return count ? static_cast<int>(value.areas().size()) : value.areas()[0].sheet + 1;
    }
    if (value.isText() && !count) {
        const int sheet = around.symbols->sheet(value.text());
        return sheet < 0 ? Value(ErrorCode::NA) : Value(sheet + 1);
    }
    return value.isError() ? value : Value(count ? ErrorCode::Ref : ErrorCode::NA);
}

Value Evaluator::anchorForm(const Node& node) {
    const Value value = evaluate(node.children[0]);
    if (!value.isReference() || value.areas().size() != 1) {
        return value.isError() ? value : Value(ErrorCode::Ref);
    }
    const Area& cell = value.areas()[0];
    Area spill;
    if (!cell.single() || !around.spillOf(cell.sheet, cell.firstRow, cell.firstColumn, spill)) {
        return ErrorCode::Ref;
    }
    return Value::reference({spill});
}

Value Evaluator::formulaForm(const Node& node, bool text) {
    const Value value = evaluate(node.children[0]);
    if (!value.isReference()) {
        return value.isError() ? value : Value(text ? ErrorCode::NA : ErrorCode::Value);
    }
    const Area& cell = value.areas()[0];
    const std::string* formula = around.formulaText(cell.sheet, cell.firstRow, cell.firstColumn);
    if (!text) {
        return Value(formula != nullptr);
    }
    return formula ? Value("=" + *formula) : Value(ErrorCode::NA);
}

}  // namespace quorva::workbook
