#include "frontend/run/setting_tables.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "frontend/run/missing_numbers.h"
#include "frontend/text/command_failure.h"
#include "frontend/text/csv.h"
#include "frontend/text/number_text.h"
#include "frontend/text/text.h"

namespace quorva::frontend {

namespace {
[[noreturn]] void refuse(const std::string& source, const std::string& cause) {
    throw CommandFailure(ExitStatus::Model, source + ": " + cause);
}

bool isEmpty(const TableCell& cell) {
    const auto* text = std::get_if<std::string>(&cell);
    return std::holds_alternative<std::monostate>(cell) || (text && trimmed(*text).empty());
}

std::string textOf(const TableCell& cell) {
    if (const auto* text = std::get_if<std::string>(&cell)) {
        return *text;
    }
    const auto* number = std::get_if<double>(&cell);
    return number ? exactNumber(*number) : "";
}

std::string place(std::size_t row, std::size_t column) {
    return "row " + std::to_string(row + 1) + ", column " + std::to_string(column + 1);
}

/// Rows and columns at the end that hold nothing belong to the range, not to the table.
CellTable withoutEmptyEdges(CellTable table) {
    while (!table.empty() && std::all_of(table.back().begin(), table.back().end(), isEmpty)) {
        table.pop_back();
    }
    std::size_t columns = 0;
    for (const auto& row : table) {
        for (std::size_t j = 0; j < row.size(); ++j) {
            columns = isEmpty(row[j]) ? columns : std::max(columns, j + 1);
        }
    }
    for (auto& row : table) {
        row.resize(columns);
    }
    return table;
}

double numberOf(const TableCell& cell, const std::string& source, std::size_t row, std::size_t column) {
    if (isEmpty(cell)) {
        return noNumber;
    }
    const auto* number = std::get_if<double>(&cell);
    const auto value = number ? std::optional(*number) : parseNumber(textOf(cell));
    if (!value) {
        refuse(source, place(row, column) + " holds '" + textOf(cell) + "' where a number is due");
    }
    return *value;
}

void checkLabels(const std::vector<std::string>& labels, const std::vector<std::string>& known,
                 const std::string& source, const std::string& what) {
    std::set<std::string> seen;
    for (const std::string& label : labels) {
        if (!seen.insert(label).second) {
            refuse(source, "the label '" + label + "' stands twice");
        }
        if (std::find(known.begin(), known.end(), label) == known.end()) {
            refuse(source,
                   "the label '" + label + "' matches no " + what + " of the model" + nearestHint(label, known));
        }
    }
}

/// Fills the empty triangle of a matrix of which only the other one is given.
void completeTriangle(LabelledMatrix& matrix) {
    const std::size_t n = matrix.names.size();
    bool lower = false, upper = false;
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            lower = lower || !std::isnan(matrix.at(i, j));
            upper = upper || !std::isnan(matrix.at(j, i));
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (lower && !upper) {
                matrix.at(j, i) = matrix.at(i, j);
            } else if (upper && !lower) {
                matrix.at(i, j) = matrix.at(j, i);
            }
        }
    }
}

void checkEntries(const LabelledMatrix& matrix, const std::string& source) {
    for (std::size_t i = 0; i < matrix.names.size(); ++i) {
        for (std::size_t j = 0; j < matrix.names.size(); ++j) {
            const double value = matrix.at(i, j);
            const std::string pair = "the correlation of '" + matrix.names[i] + "' and '" + matrix.names[j] + "'";
            if (i == j && std::fabs(value - 1) > 1e-12) {
                refuse(source,
                       "the diagonal entry of '" + matrix.names[i] + "' is " + readableNumber(value) + " instead of 1");
            }
            if (!(std::fabs(value) <= 1)) {
                refuse(source, pair + " is " + readableNumber(value) + ", outside -1 to 1");
            }
            if (std::fabs(value - matrix.at(j, i)) > 1e-12) {
                refuse(source, "not symmetric: " + pair + " is " + readableNumber(value, 12) + " in one triangle and " +
                                   readableNumber(matrix.at(j, i), 12) + " in the other");
            }
        }
    }
}
}  // namespace

CellTable tableFromCsv(std::string_view text) {
    CellTable table;
    // Where the comma is the decimal sign, the semicolon separates.
    const bool decimalComma = csvSeparator(text) == ';';
    for (auto& row : parseCsv(text)) {
        auto& cells = table.emplace_back();
        for (auto& field : row) {
            const bool value = decimalComma && !cells.empty() && std::count(field.begin(), field.end(), ',') == 1;
            std::string point = value ? field : "";
            std::replace(point.begin(), point.end(), ',', '.');
            if (trimmed(field).empty()) {
                cells.emplace_back();
            } else if (const auto number = value ? parseNumber(point) : std::nullopt) {
                cells.emplace_back(*number);
            } else {
                cells.emplace_back(std::move(field));
            }
        }
    }
    return table;
}

LabelledMatrix correlationFromTable(const CellTable& given, const std::string& source) {
    const CellTable table = withoutEmptyEdges(given);
    if (table.size() < 2) {
        refuse(source, "a correlation matrix needs field names in its first row and column");
    }
    const std::size_t n = table.size() - 1;
    if (table[0].size() != n + 1) {
        refuse(source, "the correlation matrix is not square: " + std::to_string(n) + " rows and " +
                           std::to_string(table[0].size() - 1) + " columns beside the names");
    }
    LabelledMatrix matrix{{}, std::vector<double>(n * n, noNumber)};
    for (std::size_t i = 0; i < n; ++i) {
        const std::string name(trimmed(textOf(table[i + 1][0])));
        const std::string above(trimmed(textOf(table[0][i + 1])));
        if (name.empty() || name != above) {
            refuse(source, "the names of row and column " + std::to_string(i + 1) + " differ: '" + name + "' and '" +
                               above + "'");
        }
        matrix.names.push_back(name);
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            matrix.at(i, j) = numberOf(table[i + 1][j + 1], source, i + 1, j + 1);
        }
    }
    completeTriangle(matrix);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            if (std::isnan(matrix.at(i, j))) {
                matrix.at(i, j) = i == j ? 1 : 0;
            }
        }
    }
    checkEntries(matrix, source);
    return matrix;
}

std::vector<SpecificationLimits> capabilityFromTable(const CellTable& given, const std::string& source) {
    const CellTable table = withoutEmptyEdges(given);
    std::vector<SpecificationLimits> limits;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto& row = table[i];
        if (row.size() < 3 || row.size() > 4) {
            refuse(source, "a capability table has the columns name, LSL, USL and target");
        }
        if (i == 0 && lowerCase(trimmed(textOf(row[1]))) == "lsl") {
            continue;
        }
        if (std::all_of(row.begin(), row.end(), isEmpty)) {
            continue;
        }
        const auto value = [&](std::size_t j) { return j < row.size() ? numberOf(row[j], source, i, j) : noNumber; };
        SpecificationLimits limit{std::string(trimmed(textOf(row[0]))), value(1), value(2), value(3)};
        if (limit.name.empty()) {
            refuse(source, "row " + std::to_string(i + 1) + " has no name");
        }
        if (std::isnan(limit.lower) && std::isnan(limit.upper)) {
            refuse(source, "'" + limit.name + "' has neither LSL nor USL");
        }
        if (limit.lower >= limit.upper) {
            refuse(source, "the LSL of '" + limit.name + "' is not below its USL");
        }
        limits.push_back(std::move(limit));
    }
    if (limits.empty()) {
        refuse(source, "a capability table has the columns name, LSL, USL and target, and at least one row");
    }
    return limits;
}

void checkCorrelationLabels(const LabelledMatrix& matrix, const std::vector<Field>& fields, const std::string& source) {
    checkLabels(matrix.names, fieldNames(fields, FieldKind::Distribution), source, "distribution");
}

void checkCapabilityLabels(const std::vector<SpecificationLimits>& limits, const std::vector<Field>& fields,
                           const std::string& source) {
    std::vector<std::string> labels;
    for (const SpecificationLimits& limit : limits) {
        labels.push_back(limit.name);
    }
    checkLabels(labels, fieldNames(fields), source, "field");
}

}  // namespace quorva::frontend
