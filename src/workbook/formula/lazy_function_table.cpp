#include "workbook/formula/lazy_function_table.h"

#include <unordered_map>

namespace quorva::workbook {

namespace {
constexpr LazyFunctionRow rows[] = {
    {"AREAS", LazyFunction::Areas, 1, 1, Category::Lookup},
    {"ANCHORARRAY", LazyFunction::AnchorArray, 1, 1, Category::Lookup},
    {"BYCOL", LazyFunction::ByCol, 2, 2, Category::Logic},
    {"BYROW", LazyFunction::ByRow, 2, 2, Category::Logic},
    {"CELL", LazyFunction::Cell, 1, 2, Category::Information, Volatility::Volatile},
    {"CHOOSE", LazyFunction::Choose, 2, 255, Category::Lookup},
    {"COLUMN", LazyFunction::Column, 0, 1, Category::Lookup},
    {"COLUMNS", LazyFunction::Columns, 1, 1, Category::Lookup},
    {"FORMULATEXT", LazyFunction::FormulaText, 1, 1, Category::Lookup},
    {"IF", LazyFunction::If, 2, 3, Category::Logic},
    {"IFERROR", LazyFunction::IfError, 2, 2, Category::Logic},
    {"IFNA", LazyFunction::IfNa, 2, 2, Category::Logic},
    {"IFS", LazyFunction::Ifs, 2, 254, Category::Logic},
    {"INDEX", LazyFunction::Index, 2, 4, Category::Lookup},
    {"INDIRECT", LazyFunction::Indirect, 1, 2, Category::Lookup, Volatility::Volatile},
    {"ISFORMULA", LazyFunction::IsFormula, 1, 1, Category::Information},
    {"ISOMITTED", LazyFunction::IsOmitted, 1, 1, Category::Logic},
    {"ISREF", LazyFunction::IsRef, 1, 1, Category::Information},
    {"LAMBDA", LazyFunction::Lambda, 1, 254, Category::Logic},
    {"LET", LazyFunction::Let, 3, 253, Category::Logic},
    {"MAKEARRAY", LazyFunction::MakeArray, 3, 3, Category::Logic},
    {"MAP", LazyFunction::Map, 2, 254, Category::Logic},
    {"OFFSET", LazyFunction::Offset, 3, 5, Category::Lookup, Volatility::Volatile},
    {"REDUCE", LazyFunction::Reduce, 2, 3, Category::Logic},
    {"ROW", LazyFunction::Row, 0, 1, Category::Lookup},
    {"ROWS", LazyFunction::Rows, 1, 1, Category::Lookup},
    {"SCAN", LazyFunction::Scan, 2, 3, Category::Logic},
    {"SHEET", LazyFunction::Sheet, 0, 1, Category::Information},
    {"SHEETS", LazyFunction::Sheets, 0, 1, Category::Information},
    {"SINGLE", LazyFunction::Single, 1, 1, Category::Lookup},
    {"SWITCH", LazyFunction::Switch, 3, 254, Category::Logic},
};
}  // namespace

std::span<const LazyFunctionRow> lazyFunctions() { return rows; }

const LazyFunctionRow* findLazyFunction(std::string_view name) {
    static const std::unordered_map<std::string_view, const LazyFunctionRow*> byName = [] {
        std::unordered_map<std::string_view, const LazyFunctionRow*> map;
        for (const LazyFunctionRow& row : rows) {
            map.emplace(row.name, &row);
        }
        return map;
    }();
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

}  // namespace quorva::workbook
