// SORT, SORTBY, FILTER and UNIQUE.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

/// The array of the first argument, seen as lines to be ordered or chosen: its rows, or its columns.
struct Lines {
    Grid grid;
    bool columns = false;

    int count() const { return columns ? grid.columns() : grid.rows(); }
    int length() const { return columns ? grid.rows() : grid.columns(); }
    Value at(int line, int place) const { return columns ? grid.at(place, line) : grid.at(line, place); }

    /// The lines at these places, in their order.
    Value pick(const std::vector<int>& places) const {
        const int n = static_cast<int>(places.size());
        const int rows = columns ? grid.rows() : n;
        const int width = columns ? n : grid.columns();
        if (static_cast<std::int64_t>(rows) * width > largestArray) {
            return ErrorCode::Num;
        }
        std::vector<Value> cells;
        cells.reserve(static_cast<std::size_t>(rows) * width);
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < width; ++column) {
                cells.push_back(columns ? grid.at(row, places[static_cast<std::size_t>(column)])
                                        : grid.at(places[static_cast<std::size_t>(row)], column));
            }
        }
        return arrayOrScalar(rows, width, std::move(cells));
    }
};

/// Numbers, texts, Booleans, errors; blanks stand at the end in either direction.
int kindRank(const Value& value) {
    switch (value.type()) {
        case Value::Type::Number:
            return 0;
        case Value::Type::Text:
            return 1;
        case Value::Type::Boolean:
            return 2;
        default:
            return 3;
    }
}

/// Negative when a stands before b, positive after.
int sortOrder(const Value& a, const Value& b, bool descending) {
    if (a.isBlank() || b.isBlank()) {
        return static_cast<int>(a.isBlank()) - static_cast<int>(b.isBlank());
    }
    int order = kindRank(a) - kindRank(b);
    if (order == 0 && !a.isError()) {
        order = a.isNumber() ? (a.number() > b.number()) - (a.number() < b.number()) : compareValues(a, b);
    }
    return descending ? -order : order;
}

struct Key {
    std::vector<Value> values;  ///< one for each line
    bool descending = false;
};

Value sortLines(const Lines& lines, const std::vector<Key>& keys) {
    std::vector<int> places(static_cast<std::size_t>(lines.count()));
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [&](int a, int b) {
        for (const Key& key : keys) {
            const int order = sortOrder(key.values[static_cast<std::size_t>(a)],
                                        key.values[static_cast<std::size_t>(b)], key.descending);
            if (order != 0) {
                return order < 0;
            }
        }
        return false;
    });
    return lines.pick(places);
}

/// 1 ascending, -1 descending, anything else #VALUE!.
Result<bool> isDescending(const Value& order, bool date1904) {
    const auto number = toNumber(order, date1904);
    if (!number) {
        return number.error();
    }
    const double whole = std::trunc(*number);
    return whole == 1 || whole == -1 ? Result<bool>(whole == -1) : ErrorCode::Value;
}

/// SORT(array, line numbers, orders, by column).
Value sort(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const auto byColumn = present(arguments, 3) ? toBoolean(arguments[3].scalar(call)) : Result<bool>(false);
    if (!byColumn) {
        return byColumn.error();
    }
    const Lines lines{arguments[0].grid(call), *byColumn};
    std::vector<Value> indexes{Value(1.0)};
    if (present(arguments, 1)) {
        const Grid given = arguments[1].grid(call);
        indexes.clear();
        for (std::int64_t i = 0; i < given.size(); ++i) {
            indexes.push_back(given.at(i));
        }
    }
    std::vector<Key> keys;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const auto index = toNumber(indexes[i], call.date1904);
        if (!index) {
            return index.error();
        }
        const double place = std::trunc(*index);
        if (place < 1 || place > lines.length()) {
            return ErrorCode::Value;
        }
        Key key;
        for (int line = 0; line < lines.count(); ++line) {
            key.values.push_back(lines.at(line, static_cast<int>(place) - 1));
        }
        if (present(arguments, 2)) {
            const Grid orders = arguments[2].grid(call);
            if (orders.size() != 1 && orders.size() != static_cast<std::int64_t>(indexes.size())) {
                return ErrorCode::Value;
            }
            const auto descending =
                isDescending(orders.at(orders.size() == 1 ? 0 : static_cast<std::int64_t>(i)), call.date1904);
            if (!descending) {
                return descending.error();
            }
            key.descending = *descending;
        }
        keys.push_back(std::move(key));
    }
    return sortLines(lines, keys);
}

/// SORTBY(array, by, order, by, order ...): a column sorts rows, a row sorts columns.
Value sortBy(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const Grid grid = arguments[0].grid(call);
    const Grid first = arguments[1].grid(call);
    const bool sortsRows = first.columns() == 1 && first.rows() == grid.rows();
    if (!sortsRows && !(first.rows() == 1 && first.columns() == grid.columns())) {
        return ErrorCode::Value;
    }
    const Lines lines{grid, !sortsRows};
    std::vector<Key> keys;
    for (std::size_t i = 1; i < arguments.size(); i += 2) {
        if (arguments[i].value.isError()) {
            return arguments[i].value;
        }
        const Grid by = arguments[i].grid(call);
        if (by.rows() != first.rows() || by.columns() != first.columns()) {
            return ErrorCode::Value;
        }
        Key key;
        for (std::int64_t line = 0; line < by.size(); ++line) {
            key.values.push_back(by.at(line));
        }
        if (present(arguments, i + 1)) {
            const auto descending = isDescending(arguments[i + 1].scalar(call), call.date1904);
            if (!descending) {
                return descending.error();
            }
            key.descending = *descending;
        }
        keys.push_back(std::move(key));
    }
    return sortLines(lines, keys);
}

/// FILTER(array, which, otherwise): a column of Booleans chooses rows, a row of them columns.
Value filter(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const Grid grid = arguments[0].grid(call);
    const Grid which = arguments[1].grid(call);
    const bool choosesRows = which.columns() == 1 && which.rows() == grid.rows();
    if (!choosesRows && !(which.rows() == 1 && which.columns() == grid.columns())) {
        return arguments[1].value.isError() ? arguments[1].value : Value(ErrorCode::Value);
    }
    std::vector<int> places;
    for (std::int64_t i = 0; i < which.size(); ++i) {
        const Value chosen = which.at(i);
        const auto number = chosen.isText() ? Result<double>(ErrorCode::Value) : toNumber(chosen);
        if (!number) {
            return number.error();
        }
        if (*number != 0) {
            places.push_back(static_cast<int>(i));
        }
    }
    if (places.empty()) {
        return present(arguments, 2) ? arguments[2].value : Value(ErrorCode::Calc);
    }
    return Lines{grid, !choosesRows}.pick(places);
}

std::size_t hashOf(const Value& value) {
    switch (value.type()) {
        case Value::Type::Number:
            return std::hash<double>()(value.number() + 0.0);
        case Value::Type::Text:
            return std::hash<std::string>()(toLower(value.text()));
        default:
            return static_cast<std::size_t>(value.type()) * 31 + (value.isBoolean() && value.boolean() ? 1 : 0);
    }
}

/// UNIQUE(array, by column, exactly once).
Value unique(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const auto byColumn = present(arguments, 1) ? toBoolean(arguments[1].scalar(call)) : Result<bool>(false);
    const auto once = present(arguments, 2) ? toBoolean(arguments[2].scalar(call)) : Result<bool>(false);
    if (!byColumn || !once) {
        return byColumn ? once.error() : byColumn.error();
    }
    const Lines lines{arguments[0].grid(call), *byColumn};
    const auto same = [&](int a, int b) {
        for (int place = 0; place < lines.length(); ++place) {
            if (!equalValues(lines.at(a, place), lines.at(b, place))) {
                return false;
            }
        }
        return true;
    };
    std::unordered_multimap<std::size_t, std::size_t> seen;  // hash of a line to its index in `found`
    std::vector<std::pair<int, int>> found;                  // first place, how often
    for (int line = 0; line < lines.count(); ++line) {
        std::size_t hash = 0;
        for (int place = 0; place < lines.length(); ++place) {
            hash = hash * 1000003 + hashOf(lines.at(line, place));
        }
        const auto [first, last] = seen.equal_range(hash);
        const auto known =
            std::find_if(first, last, [&](const auto& entry) { return same(found[entry.second].first, line); });
        if (known != last) {
            ++found[known->second].second;
        } else {
            seen.emplace(hash, found.size());
            found.emplace_back(line, 1);
        }
    }
    std::vector<int> places;
    for (const auto& [place, times] : found) {
        if (!*once || times == 1) {
            places.push_back(place);
        }
    }
    return places.empty() ? Value(ErrorCode::Calc) : lines.pick(places);
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Array,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("FILTER", 2, 3, "A", filter),
    row("SORT", 1, 4, "A", sort),
    row("SORTBY", 2, anyCount, "A", sortBy),
    row("UNIQUE", 1, 3, "ABB", unique),
};

}  // namespace

std::span<const FunctionRow> sortingFunctions() { return table; }

}  // namespace quorva::workbook
