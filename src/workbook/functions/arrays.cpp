// Dynamic arrays that cut, join and reshape; SEQUENCE.
#include <algorithm>
#include <cmath>
#include <optional>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

/// A number in an argument that is not mapped; `otherwise` when there is none.
Result<double> numberAt(const Call& call, Arguments arguments, std::size_t index, double otherwise) {
    return present(arguments, index) ? toNumber(arguments[index].scalar(call), call.date1904) : otherwise;
}

/// SEQUENCE(rows, columns, start, step).
Value sequence(Call&, Arguments arguments) {
    const double rows = std::trunc(optionalNumber(arguments, 0, 1));
    const double columns = std::trunc(optionalNumber(arguments, 1, 1));
    const double start = optionalNumber(arguments, 2, 1);
    const double step = optionalNumber(arguments, 3, 1);
    if (const auto error = sizeError(rows, columns)) {
        return *error;
    }
    return buildArray(rows, columns,
                      [&](int row, int column) { return Value(start + step * (row * columns + column)); });
}

// ---- parts of an array ----

struct Slice {
    int from = 0;
    int count = 0;
};

/// The first (or, negative, last) `wanted` of `size`: TAKE. Nothing left: #CALC!.
Result<Slice> taken(const Call& call, Arguments arguments, std::size_t index, int size) {
    if (!present(arguments, index)) {
        return Slice{0, size};
    }
    const auto wanted = numberAt(call, arguments, index, 0);
    if (!wanted) {
        return wanted.error();
    }
    const int count = static_cast<int>(std::min<double>(size, std::fabs(std::trunc(*wanted))));
    if (count == 0) {
        return ErrorCode::Calc;
    }
    return Slice{*wanted < 0 ? size - count : 0, count};
}

/// What is left without the first (or last) `wanted` of `size`: DROP.
Result<Slice> dropped(const Call& call, Arguments arguments, std::size_t index, int size) {
    const auto wanted = numberAt(call, arguments, index, 0);
    if (!wanted) {
        return wanted.error();
    }
    const int count = size - static_cast<int>(std::min<double>(size, std::fabs(std::trunc(*wanted))));
    if (count == 0) {
        return ErrorCode::Calc;
    }
    return Slice{*wanted < 0 ? 0 : size - count, count};
}

/// TAKE and DROP (array, rows, columns).
template <Result<Slice> (*slice)(const Call&, Arguments, std::size_t, int)>
Value part(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const Grid grid = arguments[0].grid(call);
    const auto rows = slice(call, arguments, 1, grid.rows());
    if (!rows) {
        return rows.error();
    }
    const auto columns = slice(call, arguments, 2, grid.columns());
    if (!columns) {
        return columns.error();
    }
    return buildArray(rows->count, columns->count,
                      [&](int row, int column) { return grid.at(rows->from + row, columns->from + column); });
}

/// The sides that TRIMRANGE cuts blanks from: 0 none, 1 leading, 2 trailing, 3 both.
struct Sides {
    bool leading = false;
    bool trailing = false;
};
std::optional<Sides> sidesAt(Arguments arguments, std::size_t index) {
    const double code = std::trunc(optionalNumber(arguments, index, 3));
    if (code < 0 || code > 3) {
        return std::nullopt;
    }
    return Sides{code == 1 || code == 3, code >= 2};
}

/// TRIMRANGE(range, rows, columns): without the blank rows and columns at its edges; of cells a reference.
Value trimRange(Call& call, Arguments arguments) {
    const auto rowSides = sidesAt(arguments, 1);
    const auto columnSides = sidesAt(arguments, 2);
    if (!rowSides || !columnSides || arguments[0].value.isError()) {
        return arguments[0].value.isError() ? arguments[0].value : Value(ErrorCode::Value);
    }
    const Grid grid = arguments[0].grid(call);
    int top = grid.rows();
    int left = grid.columns();
    int bottom = -1;
    int right = -1;
    grid.forEach([&](const Value& value, int row, int column) {
        if (!value.isBlank()) {
            top = std::min(top, row);
            left = std::min(left, column);
            bottom = std::max(bottom, row);
            right = std::max(right, column);
        }
    });
    if (bottom < 0) {
        throw Unsupported{"TRIMRANGE of blanks alone"};
    }
    top = rowSides->leading ? top : 0;
    bottom = rowSides->trailing ? bottom : grid.rows() - 1;
    left = columnSides->leading ? left : 0;
    right = columnSides->trailing ? right : grid.columns() - 1;
    if (grid.fromCells()) {
        const Area& all = grid.area();
        return Value::reference(
            {{all.sheet, all.firstRow + top, all.firstColumn + left, all.firstRow + bottom, all.firstColumn + right}});
    }
    return buildArray(bottom - top + 1, right - left + 1,
                      [&](int row, int column) { return grid.at(top + row, left + column); });
}

/// EXPAND(array, rows, columns, pad).
Value expand(Call& call, Arguments arguments) {
    const Grid grid = arguments[0].grid(call);
    const auto rows = numberAt(call, arguments, 1, grid.rows());
    const auto columns = numberAt(call, arguments, 2, grid.columns());
    if (!rows || !columns) {
        return rows ? columns.error() : rows.error();
    }
    const Value pad = present(arguments, 3) ? arguments[3].scalar(call) : Value(ErrorCode::NA);
    if (std::trunc(*rows) < grid.rows() || std::trunc(*columns) < grid.columns()) {
        return ErrorCode::Value;
    }
    return buildArray(std::trunc(*rows), std::trunc(*columns), [&](int row, int column) {
        return row < grid.rows() && column < grid.columns() ? grid.at(row, column) : pad;
    });
}

/// The rows or columns named by the arguments from 1 on (from 1; negative: from the end), as places from 0.
Result<std::vector<int>> chosenPlaces(const Call& call, Arguments arguments, int size) {
    std::vector<int> places;
    std::optional<ErrorCode> error;
    for (const Argument& argument : arguments.subspan(1)) {
        const Grid numbers = argument.grid(call);
        for (std::int64_t i = 0; i < numbers.size(); ++i) {
            const auto number = toNumber(numbers.at(i), call.date1904);
            if (!number) {
                return number.error();
            }
            const double place = std::trunc(*number);
            if (place == 0 || std::fabs(place) > size) {
                return ErrorCode::Value;
            }
            places.push_back(static_cast<int>(place > 0 ? place - 1 : size + place));
        }
    }
    return places;
}

Value chooseRows(Call& call, Arguments arguments) {
    const Grid grid = arguments[0].grid(call);
    const auto rows = chosenPlaces(call, arguments, grid.rows());
    return rows ? buildArray(
                      static_cast<double>(rows->size()), grid.columns(),
                      [&](int row, int column) { return grid.at((*rows)[static_cast<std::size_t>(row)], column); })
                : Value(rows.error());
}

Value chooseColumns(Call& call, Arguments arguments) {
    const Grid grid = arguments[0].grid(call);
    const auto columns = chosenPlaces(call, arguments, grid.columns());
    return columns ? buildArray(grid.rows(), static_cast<double>(columns->size()),
                                [&](int row, int column) {
                                    return grid.at(row, (*columns)[static_cast<std::size_t>(column)]);
                                })
                   : Value(columns.error());
}

// ---- joining and reshaping ----

/// HSTACK and VSTACK; what is missing of shorter arrays is #N/A.
template <bool sideBySide>
Value stack(Call& call, Arguments arguments) {
    std::vector<Grid> grids;
    std::vector<std::pair<std::size_t, int>> lines;  // for each stacked line, the array and the line in it
    int across = 0;
    for (const Argument& argument : arguments) {
        grids.push_back(argument.grid(call));
        const Grid& grid = grids.back();
        across = std::max(across, sideBySide ? grid.rows() : grid.columns());
        for (int line = 0; line < (sideBySide ? grid.columns() : grid.rows()); ++line) {
            lines.emplace_back(grids.size() - 1, line);
        }
    }
    const auto cellAt = [&](int stacked, int other) {
        const auto& [which, line] = lines[static_cast<std::size_t>(stacked)];
        const Grid& grid = grids[which];
        if (other >= (sideBySide ? grid.rows() : grid.columns())) {
            return Value(ErrorCode::NA);
        }
        return sideBySide ? grid.at(other, line) : grid.at(line, other);
    };
    const auto count = static_cast<double>(lines.size());
    return sideBySide ? buildArray(across, count, [&](int row, int column) { return cellAt(column, row); })
                      : buildArray(count, across, [&](int row, int column) { return cellAt(row, column); });
}

/// TOCOL and TOROW (array, what to leave out: 1 blanks, 2 errors, 3 both; column by column).
template <bool asColumn>
Value flatten(Call& call, Arguments arguments) {
    const Grid grid = arguments[0].grid(call);
    const auto ignored = numberAt(call, arguments, 1, 0);
    const auto byColumn = present(arguments, 2) ? toBoolean(arguments[2].scalar(call)) : Result<bool>(false);
    if (!ignored || !byColumn) {
        return ignored ? byColumn.error() : ignored.error();
    }
    const double leave = std::trunc(*ignored);
    if (leave < 0 || leave > 3) {
        return ErrorCode::Value;
    }
    if (grid.size() > largestArray) {
        return ErrorCode::Num;
    }
    std::vector<Value> cells;
    for (std::int64_t i = 0; i < grid.size(); ++i) {
        const Value value =
            *byColumn ? grid.at(static_cast<int>(i % grid.rows()), static_cast<int>(i / grid.rows())) : grid.at(i);
        const bool left = ((leave == 1 || leave == 3) && value.isBlank()) || (leave >= 2 && value.isError());
        if (!left) {
            cells.push_back(value);
        }
    }
    if (cells.empty()) {
        return ErrorCode::Calc;
    }
    const int count = static_cast<int>(cells.size());
    return asColumn ? arrayOrScalar(count, 1, std::move(cells)) : arrayOrScalar(1, count, std::move(cells));
}

/// WRAPROWS and WRAPCOLS (vector, length of a line, pad).
template <bool rows>
Value wrap(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const Grid grid = arguments[0].grid(call);
    const auto given = numberAt(call, arguments, 1, 0);
    if (!given) {
        return given.error();
    }
    const double length = std::trunc(*given);
    if (grid.rows() != 1 && grid.columns() != 1) {
        return ErrorCode::Value;
    }
    if (length < 1) {
        return ErrorCode::Num;
    }
    const Value pad = present(arguments, 2) ? arguments[2].scalar(call) : Value(ErrorCode::NA);
    const auto at = [&](int line, int place) {
        const double index = line * length + place;
        return index < static_cast<double>(grid.size()) ? grid.at(static_cast<std::int64_t>(index)) : pad;
    };
    const double lines = std::ceil(static_cast<double>(grid.size()) / length);
    return rows ? buildArray(lines, length, [&](int row, int column) { return at(row, column); })
                : buildArray(length, lines, [&](int row, int column) { return at(column, row); });
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
    row("CHOOSECOLS", 2, anyCount, "A", chooseColumns),
    row("CHOOSEROWS", 2, anyCount, "A", chooseRows),
    row("DROP", 2, 3, "AN", part<dropped>),
    row("EXPAND", 2, 4, "ANNE", expand),
    row("HSTACK", 1, anyCount, "A", stack<true>),
    row("SEQUENCE", 1, 4, "NNNN", sequence),
    row("TAKE", 2, 3, "AN", part<taken>),
    row("TOCOL", 1, 3, "ANB", flatten<true>),
    row("TOROW", 1, 3, "ANB", flatten<false>),
    row("TRIMRANGE", 1, 3, "RNN", trimRange),
    row("VSTACK", 1, anyCount, "A", stack<false>),
    row("WRAPCOLS", 2, 3, "ANE", wrap<false>),
    row("WRAPROWS", 2, 3, "ANE", wrap<true>),
};

}  // namespace

std::span<const FunctionRow> arrayFunctions() { return table; }

}  // namespace quorva::workbook
