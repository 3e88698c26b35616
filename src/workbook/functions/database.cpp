// DSUM and its kind: statistics of a field over the records of a table that meet a range of conditions.
#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "workbook/functions/families.h"
#include "workbook/functions/samples.h"

namespace quorva::workbook {

namespace {

/// The column of the table whose heading is this text, -1 when there is none.
int headedColumn(const Grid& table, const std::string& heading) {
    for (int column = 0; column < table.usedColumns(); ++column) {
        const auto text = toText(table.at(0, column));
        if (text && compareTexts(*text, heading) == 0) {
            return column;
        }
    }
    return -1;
}

/// A condition on a field, or (column -1) a formula that is computed anew for every record: written for the first one,
/// it is copied down to the others.
struct Requirement {
    int column;
    Criterion criterion;
    int conditionRow = 0;  ///< of the formula among the conditions, from 0
    int conditionColumn = 0;
};
/// One row of the conditions: all of them must hold.
using Alternative = std::vector<Requirement>;

/// In a table of conditions a plain text means "begins with".
Value asCondition(const Value& cell) {
    if (!cell.isText() || cell.text().empty()) {
        return cell;
    }
    const char first = cell.text().front();
    const bool plain = first != '=' && first != '<' && first != '>' && !parseNumber(cell.text());
    return plain ? Value(cell.text() + "*") : cell;
}

/// Every row below the headings is an alternative; an empty row (none of its cells filled) is met by every record.
/// A formula under a heading that the table does not have, or none, is a computed condition.
std::vector<Alternative> readAlternatives(const Call& call, const Grid& table, const Grid& conditions) {
    std::vector<Alternative> alternatives;
    for (int row = 1; row < conditions.rows(); ++row) {
        Alternative alternative;
        for (int column = 0; column < conditions.usedColumns() && row < conditions.usedRows(); ++column) {
            const Value cell = conditions.at(row, column);
            const auto heading = toText(conditions.at(0, column));
            const int field = heading && !heading->empty() ? headedColumn(table, *heading) : -1;
            if (cell.isBlank()) {
                continue;
            }
            const Area& area = conditions.area();
            if (field < 0 && !call.copiedDown(area.sheet, area.firstRow + row, area.firstColumn + column, 0)) {
                throw Unsupported{"a condition of a database function under a heading that its table does not have"};
            }
            alternative.push_back({field, Criterion(asCondition(cell), call.date1904), row, column});
        }
        const bool metByAll = alternative.empty();
        alternatives.push_back(std::move(alternative));
        if (metByAll) {
            break;
        }
    }
    return alternatives;
}

/// Numbers other than 0 and TRUE hold; errors do not.
bool holds(const Call& call, const Grid& table, const Grid& conditions, int record, const Requirement& requirement) {
    if (requirement.column >= 0) {
        return requirement.criterion.matches(table.at(record, requirement.column));
    }
    const Area& area = conditions.area();
    const auto value = call.copiedDown(area.sheet, area.firstRow + requirement.conditionRow,
                                       area.firstColumn + requirement.conditionColumn, record - 1);
    return value && (value->isNumber() || value->isBoolean()) && value->number() != 0;
}

bool meets(const Call& call, const Grid& table, const Grid& conditions, int record,
           const std::vector<Alternative>& alternatives) {
    return std::any_of(alternatives.begin(), alternatives.end(), [&](const Alternative& alternative) {
        return std::all_of(alternative.begin(), alternative.end(), [&](const Requirement& requirement) {
            return holds(call, table, conditions, record, requirement);
        });
    });
}

/// The field's column: a heading, or its number from 1.
Result<int> fieldColumn(const Call& call, const Grid& table, const Argument& field) {
    const Value chosen = field.scalar(call);
    if (chosen.isError()) {
        return chosen.error();
    }
    if (chosen.isText()) {
        const int column = headedColumn(table, chosen.text());
        return column >= 0 ? Result<int>(column) : ErrorCode::Value;
    }
    const double number = std::trunc(chosen.number());
    if (!chosen.isNumber() || number < 1 || number > table.columns()) {
        return ErrorCode::Value;
    }
    return static_cast<int>(number) - 1;
}

/// The field's values in the records that meet the conditions; with no field given, one TRUE for each such record.
Result<std::vector<Value>> selectedValues(const Call& call, Arguments arguments, bool fieldMayBeMissing) {
    const Grid table = arguments[0].grid(call);
    if (table.rows() < 2) {
        return ErrorCode::Value;
    }
    std::optional<int> column;
    if (!(fieldMayBeMissing && arguments[1].missing)) {
        const auto field = fieldColumn(call, table, arguments[1]);
        if (!field) {
            return field.error();
        }
        column = *field;
    }
    const Grid conditions = arguments[2].grid(call);
    if (conditions.rows() < 2) {
        return ErrorCode::Value;
    }
    const auto alternatives = readAlternatives(call, table, conditions);
    std::vector<Value> values;
    for (int record = 1; record < table.usedRows(); ++record) {
        call.spend(static_cast<double>(alternatives.size()));
        if (meets(call, table, conditions, record, alternatives)) {
            values.push_back(column ? table.at(record, *column) : Value(true));
        }
    }
    return values;
}

/// A statistic of the numbers selected.
template <Value (*statistic)(Sample)>
Value ofRecords(Call& call, Arguments arguments) {
    const auto values = selectedValues(call, arguments, false);
    if (!values) {
        return values.error();
    }
    std::vector<double> numbers;
    for (const Value& value : *values) {
        if (value.isError()) {
            return value;
        }
        if (value.isNumber()) {
            numbers.push_back(value.number());
        }
    }
    return statistic(numbers);
}

Value total(Sample sample) { return sumOf(sample); }
Value deviation(Sample sample) { return rootOf(varianceOf(sample)); }
Value populationDeviation(Sample sample) { return rootOf(populationVarianceOf(sample)); }

/// DCOUNT and DCOUNTA: without a field, the number of records.
template <bool numbersOnly>
Value countRecords(Call& call, Arguments arguments) {
    const auto values = selectedValues(call, arguments, true);
    if (!values) {
        return values.error();
    }
    std::int64_t count = 0;
    for (const Value& value : *values) {
        const bool counted = numbersOnly && !arguments[1].missing ? value.isNumber() : !value.isBlank();
        count += counted ? 1 : 0;
    }
    return count;
}

/// The one value selected: none is #VALUE!, several are #NUM!.
Value getRecord(Call& call, Arguments arguments) {
    const auto values = selectedValues(call, arguments, false);
    if (!values) {
        return values.error();
    }
    if (values->size() != 1) {
        return values->empty() ? ErrorCode::Value : ErrorCode::Num;
    }
    return values->front();
}

constexpr FunctionRow row(std::string_view name, Function function) {
    return {
        .name = name, .minArgs = 3, .maxArgs = 3, .kinds = "FRF", .category = Category::Database, .function = function};
}

constexpr FunctionRow table[] = {
    row("DAVERAGE", ofRecords<meanOf>),
    row("DCOUNT", countRecords<true>),
    row("DCOUNTA", countRecords<false>),
    row("DGET", getRecord),
    row("DMAX", ofRecords<maximumOf>),
    row("DMIN", ofRecords<minimumOf>),
    row("DPRODUCT", ofRecords<productOf>),
    row("DSTDEV", ofRecords<deviation>),
    row("DSTDEVP", ofRecords<populationDeviation>),
    row("DSUM", ofRecords<total>),
    row("DVAR", ofRecords<varianceOf>),
    row("DVARP", ofRecords<populationVarianceOf>),
};

}  // namespace

std::span<const FunctionRow> databaseFunctions() { return table; }

}  // namespace quorva::workbook
