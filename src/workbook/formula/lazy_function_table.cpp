#include "workbook/formula/lazy_function_table.h"

#include <unordered_map>

namespace quorva::workbook {

namespace {
constexpr FormRow forms[] = {
    {"AREAS", Form::Areas, 1, 1, Category::Lookup},
    {"ANCHORARRAY", Form::AnchorArray, 1, 1, Category::Lookup},
    {"BYCOL", Form::ByCol, 2, 2, Category::Logic},
    {"BYROW", Form::ByRow, 2, 2, Category::Logic},
    {"CELL", Form::Cell, 1, 2, Category::Information, Volatility::Volatile},
    {"CHOOSE", Form::Choose, 2, 255, Category::Lookup},
    {"COLUMN", Form::Column, 0, 1, Category::Lookup},
    {"COLUMNS", Form::Columns, 1, 1, Category::Lookup},
    {"FORMULATEXT", Form::FormulaText, 1, 1, Category::Lookup},
    {"IF", Form::If, 2, 3, Category::Logic},
    {"IFERROR", Form::IfError, 2, 2, Category::Logic},
    {"IFNA", Form::IfNa, 2, 2, Category::Logic},
    {"IFS", Form::Ifs, 2, 254, Category::Logic},
    {"INDEX", Form::Index, 2, 4, Category::Lookup},
    {"INDIRECT", Form::Indirect, 1, 2, Category::Lookup, Volatility::Volatile},
    {"ISFORMULA", Form::IsFormula, 1, 1, Category::Information},
    {"ISOMITTED", Form::IsOmitted, 1, 1, Category::Logic},
    {"ISREF", Form::IsRef, 1, 1, Category::Information},
    {"LAMBDA", Form::Lambda, 1, 254, Category::Logic},
    {"LET", Form::Let, 3, 253, Category::Logic},
    {"MAKEARRAY", Form::MakeArray, 3, 3, Category::Logic},
    {"MAP", Form::Map, 2, 254, Category::Logic},
    {"OFFSET", Form::Offset, 3, 5, Category::Lookup, Volatility::Volatile},
    {"REDUCE", Form::Reduce, 2, 3, Category::Logic},
    {"ROW", Form::Row, 0, 1, Category::Lookup},
    {"ROWS", Form::Rows, 1, 1, Category::Lookup},
    {"SCAN", Form::Scan, 2, 3, Category::Logic},
    {"SHEET", Form::Sheet, 0, 1, Category::Information},
    {"SHEETS", Form::Sheets, 0, 1, Category::Information},
    {"SINGLE", Form::Single, 1, 1, Category::Lookup},
    {"SWITCH", Form::Switch, 3, 254, Category::Logic},
};
}  // namespace

std::span<const FormRow> allForms() { return forms; }

const FormRow* findForm(std::string_view name) {
    static const std::unordered_map<std::string_view, const FormRow*> byName = [] {
        std::unordered_map<std::string_view, const FormRow*> map;
        for (const FormRow& row : forms) {
            map.emplace(row.name, &row);
        }
        return map;
    }();
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

}  // namespace quorva::workbook
