// Finding values: VLOOKUP and its kind, MATCH, XLOOKUP; and addresses as text.
#include <algorithm>
#include <cmath>
#include <optional>

#include "common/cell_names.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

/// A row or column of a grid, from which values are looked up. Positions count from 0.
class Line {
public:
    static Line column(const Grid& grid, int column) { return {grid, column, true}; }
    static Line row(const Grid& grid, int row) { return {grid, row, false}; }
    /// The line that a one-dimensional grid is.
    static Line vector(const Grid& grid) { return grid.columns() == 1 ? column(grid, 0) : row(grid, 0); }

    int size() const { return vertical_ ? grid_.rows() : grid_.columns(); }
    /// Positions beyond which everything is blank.
    int used() const { return std::min(size(), vertical_ ? grid_.usedRows() : grid_.usedColumns()); }
    Value at(int position) const { return vertical_ ? grid_.at(position, fixed_) : grid_.at(fixed_, position); }

    /// Calls visit(value, position) for every value that exists, in order, until it returns false.
    template <class Visit>
    void forEach(Visit&& visit) const {
        if (grid_.fromCells()) {
            Area area = grid_.area();
            (vertical_ ? area.firstColumn : area.firstRow) += fixed_;
            (vertical_ ? area.lastColumn : area.lastRow) = vertical_ ? area.firstColumn : area.firstRow;
            grid_.store().forEachSlot(area, [&](int row, int column, Slot slot) -> bool {
                return visit(grid_.store().get(slot), vertical_ ? row - area.firstRow : column - area.firstColumn);
            });
            return;
        }
        for (int i = 0; i < size(); ++i) {
            if (!visit(at(i), i)) {
                return;
            }
        }
    }

private:
    Line(const Grid& grid, int fixed, bool vertical) : grid_(grid), fixed_(fixed), vertical_(vertical) {}

    Grid grid_;
    int fixed_;
    bool vertical_;
};

/// Whether a stored value takes part in a sorted search for the key: only values of the key's type do.
bool comparable(const Value& value, const Value& key) { return value.type() == key.type(); }

/// Bisection as worksheets do it, over the whole line whether sorted or not: an equal value met on the way ends it (at
/// the last of the equal ones that follow); else the last position whose value does not lie beyond the key, -1 when
/// there is none. `order` compares a value with the key; a middle value that it has no place for gives way to the next
/// one that it has.
template <class Order>
int bisect(const Line& line, bool descending, Order&& order) {
    const int used = line.used();
    const auto orderAt = [&](int position) -> std::optional<int> { return order(line.at(position)); };
    int low = 0;
    int high = line.size() - 1;
    int found = -1;
    while (low <= high) {
        const int middle = low + (high - low) / 2;
        const int last = std::min(high, used - 1);
        int at = middle;
        std::optional<int> side;
        while (at <= last && !(side = orderAt(at))) {
            ++at;
        }
        if (at > last) {
            high = middle - 1;
            continue;
        }
        if (*side == 0) {
            while (at + 1 < used && orderAt(at + 1) == 0) {
                ++at;
            }
            return at;
        }
        if (descending ? *side > 0 : *side < 0) {
            found = at;
            low = at + 1;
        } else {
            high = middle - 1;
        }
    }
    return found;
}

/// Bisection of the older functions: only values of the key's type take part.
int findSorted(const Line& line, const Value& key) {
    return bisect(line, false, [&](const Value& value) {
        return comparable(value, key) ? std::optional(compareValues(value, key)) : std::nullopt;
    });
}

enum class Match { Exact, Wildcard };

/// The first (or the last) position without a value; a cell that does not exist is one.
int scanForBlank(const Line& line, bool backwards) {
    const int used = line.used();
    if (backwards && used < line.size()) {
        return line.size() - 1;
    }
    for (int i = 0; i < used; ++i) {
        const int position = backwards ? used - 1 - i : i;
        if (line.at(position).isBlank()) {
            return position;
        }
    }
    return used < line.size() ? used : -1;
}

/// The first (or the last) position of a number: what most lookups of a simulated model do at every iteration.
int scanForNumber(const Line& line, double key, bool backwards) {
    int found = -1;
    line.forEach([&](const Value& value, int position) -> bool {
        if (value.isNumber() && compareNumbers(value.number(), key) == 0) {
            found = position;
            return backwards;
        }
        return true;
    });
    return found;
}

/// Walks the line for an exact match or a pattern; the first (or the last) of equals.
int scan(const Line& line, const Value& key, Match match, bool backwards) {
    if (key.isBlank()) {
        return scanForBlank(line, backwards);
    }
    const bool pattern = match == Match::Wildcard && key.isText() && hasWildcard(key.text());
    if (key.isNumber()) {
        return scanForNumber(line, key.number(), backwards);
    }
    int found = -1;
    line.forEach([&](const Value& value, int position) -> bool {
        if (pattern ? value.isText() && matchesWildcard(value.text(), key.text()) : equalValues(value, key)) {
            found = position;
            return backwards;
        }
        return true;
    });
    return found;
}

/// A blank key stands for 0 in the older functions.
Value lookupKey(const Value& key) { return key.isBlank() ? Value(0.0) : key; }

constexpr int longestKey = 255;

std::optional<ErrorCode> keyError(const Value& key) {
    return key.isText() && key.text().size() > longestKey && utf16Length(key.text()) > longestKey
               ? std::optional(ErrorCode::Value)
               : std::nullopt;
}

/// The position for VLOOKUP and its kind; -1 when nothing fits.
int findInTable(const Line& line, const Value& key, bool sorted) {
    return sorted ? findSorted(line, key) : scan(line, key, Match::Wildcard, false);
}

Value tableLookup(const Call& call, Arguments arguments, bool vertical) {
    if (arguments[1].value.isError()) {
        return arguments[1].value;
    }
    const Value key = lookupKey(arguments[0].value);
    const Grid table = arguments[1].grid(call);
    const double offset = std::trunc(arguments[2].number());
    if (const auto error = keyError(key)) {
        return *error;
    }
    if (offset > (vertical ? table.columns() : table.rows())) {
        return ErrorCode::Ref;
    }
    const bool sorted = arguments.size() < 4 || arguments[3].boolean();
    if (sorted && offset < 1) {
        return ErrorCode::Value;
    }
    const int found = findInTable(vertical ? Line::column(table, 0) : Line::row(table, 0), key, sorted);
    if (found < 0) {
        return ErrorCode::NA;
    }
    if (offset < 1) {
        return ErrorCode::Value;
    }
    const int other = static_cast<int>(offset) - 1;
    return vertical ? table.at(found, other) : table.at(other, found);
}
Value vlookup(Call& call, Arguments arguments) { return tableLookup(call, arguments, true); }
Value hlookup(Call& call, Arguments arguments) { return tableLookup(call, arguments, false); }

Value lookup(Call& call, Arguments arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i].value.isError()) {
            return arguments[i].value;
        }
    }
    const Value key = lookupKey(arguments[0].value);
    const Grid table = arguments[1].grid(call);
    const bool wide = table.columns() > table.rows();
    const int found = findSorted(wide ? Line::row(table, 0) : Line::column(table, 0), key);
    if (found < 0) {
        return ErrorCode::NA;
    }
    if (arguments.size() < 3) {
        return wide ? table.at(table.rows() - 1, found) : table.at(found, table.columns() - 1);
    }
    const Grid results = arguments[2].grid(call);
    if (results.rows() > 1 && results.columns() > 1) {
        return ErrorCode::NA;
    }
    const Line line = Line::vector(results);
    return found < line.size() ? line.at(found) : Value(ErrorCode::NA);
}

/// MATCH with type -1 walks down a descending line: the first equal value, or the last before they fall below the key.
int descend(const Line& line, const Value& key) {
    int found = -1;
    line.forEach([&](const Value& value, int position) -> bool {
        if (!comparable(value, key)) {
            return true;
        }
        const int order = compareValues(value, key);
        if (order < 0) {
            return false;
        }
        found = position;
        return order != 0;
    });
    return found;
}

Value match(Call& call, Arguments arguments) {
    if (arguments[1].value.isError()) {
        return arguments[1].value;
    }
    const Value key = lookupKey(arguments[0].value);
    const double type = arguments.size() > 2 ? arguments[2].number() : 1;
    const Grid grid = arguments[1].grid(call);
    if (const auto error = keyError(key)) {
        return *error;
    }
    if (grid.rows() > 1 && grid.columns() > 1) {
        return ErrorCode::NA;
    }
    const Line line = Line::vector(grid);
    const int found = type > 0   ? findSorted(line, key)
                      : type < 0 ? descend(line, key)
                                 : scan(line, key, Match::Wildcard, false);
    return found < 0 ? Value(ErrorCode::NA) : Value(found + 1);
}

// ---- XLOOKUP and XMATCH ----

/// The order of these two: numbers, texts, FALSE, TRUE, blanks. Errors have no place in it.
std::optional<int> crossOrder(const Value& a, const Value& b) {
    const auto rank = [](const Value& value) {
        return value.isNumber() ? 0 : value.isText() ? 1 : value.isBoolean() ? 2 : value.isBlank() ? 3 : -1;
    };
    if (rank(a) < 0 || rank(b) < 0) {
        return std::nullopt;
    }
    return rank(a) != rank(b) ? rank(a) - rank(b) : a.isBlank() ? 0 : compareValues(a, b);
}

/// Walks the line for an equal value or else the nearest one on a side; the first (or the last) of equals.
class NearestScan {
public:
    NearestScan(const Value& key, bool larger, bool backwards) : key_(key), larger_(larger), backwards_(backwards) {}

    int walk(const Line& line) {
        int next = 0;
        bool ended = false;
        const auto gap = [&](int end) {  // cells that do not exist are blank
            return next >= end || take(Value(), backwards_ ? end - 1 : next);
        };
        line.forEach([&](const Value& value, int position) -> bool {
            ended = !gap(position) || !take(value, position);
            next = position + 1;
            return !ended;
        });
        if (!ended) {
            gap(line.size());
        }
        return equal_ >= 0 ? equal_ : nearest_;
    }

private:
    /// False when the search is over.
    bool take(const Value& value, int position) {
        const auto order = crossOrder(value, key_);
        if (order == 0) {
            equal_ = position;
            return backwards_;
        }
        if (!order || (*order > 0) != larger_) {
            return true;
        }
        const int beyond = nearest_ < 0 ? -1 : *crossOrder(value, nearestValue_) * (larger_ ? 1 : -1);
        if (beyond < 0 || (beyond == 0 && backwards_)) {
            nearest_ = position;
            nearestValue_ = value;
        }
        return true;
    }

    const Value& key_;
    bool larger_;
    bool backwards_;
    int equal_ = -1;
    int nearest_ = -1;
    Value nearestValue_;
};

/// The position that the match and search modes find; -1 when none. #VALUE! for modes that do not exist.
Result<int> crossMatch(const Line& line, const Value& key, double matchMode, double searchMode) {
    matchMode = std::trunc(matchMode);
    searchMode = std::trunc(searchMode);
    if (matchMode < -1 || matchMode > 2 ||
        !(searchMode == 1 || searchMode == -1 || searchMode == 2 || searchMode == -2)) {
        return ErrorCode::Value;
    }
    const bool near = matchMode == -1 || matchMode == 1;
    if (std::fabs(searchMode) == 1) {
        return near ? NearestScan(key, matchMode > 0, searchMode < 0).walk(line)
                    : scan(line, key, matchMode == 2 ? Match::Wildcard : Match::Exact, searchMode < 0);
    }
    if (matchMode == 2) {
        return ErrorCode::Value;
    }
    const bool descending = searchMode < 0;
    const auto order = [&](const Value& value) { return crossOrder(value, key); };
    const int found = bisect(line, descending, order);
    if (found >= 0 && order(line.at(found)) == 0) {
        return found;
    }
    // `found` is the last value before the key's place in the order; the next one lies on its other side.
    const bool wantsBefore = (matchMode < 0) != descending;
    if (!near || wantsBefore) {
        return near ? found : -1;
    }
    const int next = found + 1;
    return next < line.size() && order(line.at(next)) ? next : -1;
}

double modeAt(Arguments arguments, std::size_t index, double otherwise) {
    return index < arguments.size() && !arguments[index].missing ? arguments[index].number() : otherwise;
}

Value crossMatchValue(Call& call, Arguments arguments) {
    if (arguments[1].value.isError()) {
        return arguments[1].value;
    }
    const Grid grid = arguments[1].grid(call);
    if (grid.rows() > 1 && grid.columns() > 1) {
        return ErrorCode::Value;
    }
    const auto found =
        crossMatch(Line::vector(grid), arguments[0].value, modeAt(arguments, 2, 0), modeAt(arguments, 3, 1));
    if (!found) {
        return found.error();
    }
    return *found < 0 ? Value(ErrorCode::NA) : Value(*found + 1);
}

/// One row or column of a grid, or its one value. Of cells it is a reference, which may end a range:
/// A1:XLOOKUP(...).
Value slice(const Grid& grid, int position, bool vertical) {
    if (grid.fromCells()) {
        Area area = grid.area();
        int& first = vertical ? area.firstRow : area.firstColumn;
        first += position;
        (vertical ? area.lastRow : area.lastColumn) = first;
        return Value::reference({area});
    }
    const int length = vertical ? grid.columns() : grid.rows();
    if (length == 1) {
        return vertical ? grid.at(position, 0) : grid.at(0, position);
    }
    std::vector<Value> cells;
    cells.reserve(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        cells.push_back(vertical ? grid.at(position, i) : grid.at(i, position));
    }
    return Value::array(vertical ? 1 : length, vertical ? length : 1, std::move(cells));
}

Value crossLookup(Call& call, Arguments arguments) {
    for (std::size_t i = 1; i < 3; ++i) {
        if (arguments[i].value.isError()) {
            return arguments[i].value;
        }
    }
    const Grid grid = arguments[1].grid(call);
    const Grid results = arguments[2].grid(call);
    if (grid.rows() > 1 && grid.columns() > 1) {
        return ErrorCode::Value;
    }
    const bool vertical = grid.columns() == 1 && (grid.rows() > 1 || results.rows() == 1);
    const Line line = vertical ? Line::column(grid, 0) : Line::row(grid, 0);
    if (line.size() != (vertical ? results.rows() : results.columns())) {
        return ErrorCode::Value;
    }
    const auto found = crossMatch(line, arguments[0].value, modeAt(arguments, 4, 0), modeAt(arguments, 5, 1));
    if (!found) {
        return found.error();
    }
    if (*found >= 0) {
        return slice(results, *found, vertical);
    }
    return arguments.size() > 3 && !arguments[3].missing ? arguments[3].scalar(call) : Value(ErrorCode::NA);
}

// ---- addresses ----

Value address(Call&, Arguments arguments) {
    const double row = std::trunc(arguments[0].number());
    const double column = std::trunc(arguments[1].number());
    const double kind = std::trunc(modeAt(arguments, 2, 1));
    const bool a1 = arguments.size() < 4 || arguments[3].missing || arguments[3].boolean();
    const bool absoluteRow = kind == 1 || kind == 2;
    const bool absoluteColumn = kind == 1 || kind == 3;
    const bool inside = a1 || (absoluteRow && absoluteColumn);
    if (!(kind >= 1 && kind <= 4) || (inside && (row < 1 || column < 1)) || row > maxRows || column > maxColumns ||
        row < -maxRows || column < -maxColumns) {
        return ErrorCode::Value;
    }
    std::string text = arguments.size() > 4 && !arguments[4].missing ? sheetPrefix(arguments[4].text()) : "";
    const std::string rowText = std::to_string(static_cast<int>(row));
    if (a1) {
        text += (absoluteColumn ? "$" : "") + columnName(static_cast<int>(column) - 1) + (absoluteRow ? "$" : "");
        return text + rowText;
    }
    const std::string columnText = std::to_string(static_cast<int>(column));
    text += absoluteRow ? "R" + rowText : row == 0 ? "R" : "R[" + rowText + "]";
    text += absoluteColumn ? "C" + columnText : column == 0 ? "C" : "C[" + columnText + "]";
    return text;
}

Value hyperlink(Call& call, Arguments arguments) {
    const Argument& shown = arguments.size() > 1 ? arguments[1] : arguments[0];
    return shown.value.isBlank() ? Value(0.0) : shown.scalar(call);
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Lookup,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("ADDRESS", 2, 5, "NNNBT", address),
    row("HLOOKUP", 3, 4, "SRNB", hlookup),
    row("HYPERLINK", 1, 2, "TS", hyperlink),
    row("LOOKUP", 2, 3, "SAA", lookup),
    row("MATCH", 2, 3, "SRN", match),
    row("VLOOKUP", 3, 4, "SRNB", vlookup),
    row("XLOOKUP", 3, 6, "SAAANN", crossLookup),
    row("XMATCH", 2, 4, "SANN", crossMatchValue),
};

}  // namespace

std::span<const FunctionRow> lookupFunctions() { return table; }

}  // namespace quorva::workbook
