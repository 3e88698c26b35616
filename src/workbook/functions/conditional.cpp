// Sums, counts, averages and extremes of the cells that meet conditions.
#include <algorithm>
#include <optional>
#include <vector>

#include "common/cell_names.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

/// Ranges of equal shape, each with its condition: a place meets them when every range's cell there does.
struct Conditions {
    std::vector<Grid> ranges;
    std::vector<Criterion> criteria;

    void add(const Call& call, const Argument& range, const Argument& condition) {
        ranges.push_back(range.grid(call));
        criteria.emplace_back(condition.scalar(call), call.date1904);
    }
    bool sameShape(const Grid& other) const {
        return std::all_of(ranges.begin(), ranges.end(), [&](const Grid& range) {
            return range.rows() == other.rows() && range.columns() == other.columns();
        });
    }
    bool met(int row, int column) const {
        for (std::size_t i = 0; i < ranges.size(); ++i) {
            if (!criteria[i].matches(ranges[i].at(row, column))) {
                return false;
            }
        }
        return true;
    }
    bool metByBlanks() const {
        return std::all_of(criteria.begin(), criteria.end(),
                           [](const Criterion& criterion) { return criterion.matchesBlank(); });
    }
};

/// These functions take one block of cells in each place: no unions and no ranges over several sheets.
bool severalAreas(Arguments arguments) {
    return std::any_of(arguments.begin(), arguments.end(), [](const Argument& argument) {
        return argument.value.isReference() && argument.value.areas().size() != 1;
    });
}

/// The pairs range, condition, range, condition ... from the argument at `first` on.
Conditions readConditions(const Call& call, Arguments arguments, std::size_t first) {
    Conditions conditions;
    for (std::size_t i = first; i + 1 < arguments.size(); i += 2) {
        conditions.add(call, arguments[i], arguments[i + 1]);
    }
    return conditions;
}

/// What the chosen numbers come to.
struct Tally {
    double sum = 0;
    double count = 0;
    double least = 0;
    double largest = 0;

    void add(double x) {
        least = count == 0 ? x : std::min(least, x);
        largest = count == 0 ? x : std::max(largest, x);
        sum += x;
        ++count;
    }
};

/// The numbers of `values` at the places that meet the conditions; an error there is the result.
Result<Tally> tally(const Grid& values, const Conditions& conditions) {
    Tally result;
    std::optional<ErrorCode> error;
    values.forEach([&](const Value& value, int row, int column) -> bool {
        if ((value.isNumber() || value.isError()) && conditions.met(row, column)) {
            if (value.isError()) {
                error = value.error();
                return false;
            }
            result.add(value.number());
        }
        return true;
    });
    return error ? Result<Tally>(*error) : Result<Tally>(result);
}

Value sumOf(const Tally& t) { return t.sum; }
Value averageOf(const Tally& t) { return t.count == 0 ? Value(ErrorCode::Div0) : Value(t.sum / t.count); }
Value leastOf(const Tally& t) { return t.least; }
Value largestOf(const Tally& t) { return t.largest; }

/// SUMIF and AVERAGEIF (range, condition, values): the values' range begins where it says and has the shape of the
/// first.
template <Value (*result)(const Tally&)>
Value ofOneCondition(Call& call, Arguments arguments) {
    if (severalAreas(arguments)) {
        return ErrorCode::Value;
    }
    Conditions conditions;
    conditions.add(call, arguments[0], arguments[1]);
    Grid values = conditions.ranges[0];
    if (arguments.size() > 2 && !arguments[2].missing) {
        const Grid given = arguments[2].grid(call);
        if (given.fromCells()) {
            Area area = given.area();
            area.lastRow = std::min(area.firstRow + values.rows(), maxRows) - 1;
            area.lastColumn = std::min(area.firstColumn + values.columns(), maxColumns) - 1;
            values = Grid(call.cells, area);
        } else {
            values = given;
        }
    }
    const auto numbers = tally(values, conditions);
    return numbers ? result(*numbers) : Value(numbers.error());
}

/// SUMIFS, AVERAGEIFS, MAXIFS, MINIFS (values, range, condition, ...).
template <Value (*result)(const Tally&)>
Value ofConditions(Call& call, Arguments arguments) {
    if (arguments.size() % 2 == 0 || severalAreas(arguments)) {
        return ErrorCode::Value;
    }
    const Grid values = arguments[0].grid(call);
    const Conditions conditions = readConditions(call, arguments, 1);
    if (!conditions.sameShape(values)) {
        return ErrorCode::Value;
    }
    const auto numbers = tally(values, conditions);
    return numbers ? result(*numbers) : Value(numbers.error());
}

/// COUNTIF and COUNTIFS (range, condition, ...).
Value countIf(Call& call, Arguments arguments) {
    if (arguments.size() % 2 == 1 || severalAreas(arguments)) {
        return ErrorCode::Value;
    }
    const Conditions conditions = readConditions(call, arguments, 0);
    const Grid& first = conditions.ranges[0];
    if (!conditions.sameShape(first)) {
        return ErrorCode::Value;
    }
    std::int64_t count = 0;
    if (!conditions.criteria[0].matchesBlank()) {
        first.forEach([&](const Value&, int row, int column) { count += conditions.met(row, column) ? 1 : 0; });
        return count;
    }
    int rows = 0;
    int columns = 0;
    for (const Grid& range : conditions.ranges) {
        rows = std::max(rows, range.usedRows());
        columns = std::max(columns, range.usedColumns());
    }
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            count += conditions.met(row, column) ? 1 : 0;
        }
    }
    const std::int64_t untouched = first.size() - static_cast<std::int64_t>(rows) * columns;
    return count + (conditions.metByBlanks() ? untouched : 0);
}

/// Empty texts count as blank.
Value countBlank(Call& call, Arguments arguments) {
    if (severalAreas(arguments)) {
        return ErrorCode::Value;
    }
    const Grid range = arguments[0].grid(call);
    std::int64_t filled = 0;
    range.forEach([&](const Value& value, int, int) {
        filled += value.isBlank() || (value.isText() && value.text().empty()) ? 0 : 1;
    });
    return range.size() - filled;
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function,
                          Category category = Category::Statistics) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = category,
            .function = function};
}

// Conditions are E: an error is a condition too, it is met by the cells that hold it.
constexpr FunctionRow table[] = {
    row("AVERAGEIF", 2, 3, "FEF", ofOneCondition<averageOf>),
    row("AVERAGEIFS", 3, anyCount, "F(FE)", ofConditions<averageOf>),
    row("COUNTBLANK", 1, 1, "F", countBlank),
    row("COUNTIF", 2, 2, "FE", countIf),
    row("COUNTIFS", 2, anyCount, "(FE)", countIf),
    row("MAXIFS", 3, anyCount, "F(FE)", ofConditions<largestOf>),
    row("MINIFS", 3, anyCount, "F(FE)", ofConditions<leastOf>),
    row("SUMIF", 2, 3, "FEF", ofOneCondition<sumOf>, Category::Math),
    row("SUMIFS", 3, anyCount, "F(FE)", ofConditions<sumOf>, Category::Math),
};

}  // namespace

std::span<const FunctionRow> conditionalFunctions() { return table; }

}  // namespace quorva::workbook
