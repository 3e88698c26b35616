#include "frontend/run/verification.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "frontend/text/cell_address.h"
#include "frontend/text/number_text.h"
#include "frontend/text/text.h"

namespace quorva::frontend {

using workbook::CellValue;

namespace {
/// Whether a formula calls a function that solves by iteration.
bool solvesByIteration(std::string_view formula) {
    constexpr std::array<std::string_view, 4> solvers{"irr(", "xirr(", "rate(", "yield("};
    const std::string lower = lowerCase(formula);
    return std::any_of(solvers.begin(), solvers.end(), [&](auto name) { return lower.find(name) != lower.npos; });
}

std::string shown(const CellValue& value) {
    switch (value.type) {
        case CellValue::Type::Blank:
            return "";
        case CellValue::Type::Number:
            return exactNumber(value.number);
        case CellValue::Type::Text:
            return "\"" + value.text + "\"";
        case CellValue::Type::Boolean:
            return value.number != 0 ? "TRUE" : "FALSE";
        case CellValue::Type::Error:
            return value.text;
    }
    return "";
}

void count(VerificationCounts& counts, const workbook::FormulaCell& cell, bool equal) {
    ++counts.formulas;
    int& place = cell.unsupported  ? counts.unsupported
                 : cell.isVolatile ? counts.isVolatile
                 : !cell.saved     ? counts.unsaved
                 : equal           ? counts.equal
                                   : counts.different;
    ++place;
}
}  // namespace

bool equalAsSaved(const CellValue& saved, const CellValue& computed, std::string_view formula) {
    // A formula that gives an empty cell is saved as the number 0.
    const auto number = [](const CellValue& v) {
        return v.type == CellValue::Type::Number || v.type == CellValue::Type::Blank;
    };
    if (number(saved) && number(computed)) {
        const double tolerance = solvesByIteration(formula) ? 1e-9 : 1e-14;
        const double scale = std::max(std::fabs(saved.number), std::fabs(computed.number));
        return saved.number == computed.number || std::fabs(saved.number - computed.number) <= tolerance * scale;
    }
    if (saved.type != computed.type) {
        return false;
    }
    return saved.type == CellValue::Type::Boolean ? saved.number == computed.number : saved.text == computed.text;
}

Verification verifyBook(const workbook::Book& book) {
    Verification verification;
    int sheet = -1;
    for (const workbook::FormulaCell& cell : book.formulas()) {
        if (cell.cell.sheet != sheet) {
            sheet = cell.cell.sheet;
            verification.sheets.emplace_back(book.sheetName(sheet), VerificationCounts{});
        }
        const bool equal = cell.saved && equalAsSaved(*cell.saved, cell.computed, cell.formula);
        count(verification.sheets.back().second, cell, equal);
        count(verification.total, cell, equal);
        const bool different = !cell.isVolatile && cell.saved && !equal;
        if (cell.unsupported || different) {
            verification.differences.push_back({cellAddress(book.sheetName(sheet), cell.cell.row, cell.cell.column),
                                                cell.formula, cell.saved ? shown(*cell.saved) : "",
                                                cell.unsupported ? cell.why : shown(cell.computed), cell.unsupported});
        }
    }
    return verification;
}

}  // namespace quorva::frontend
