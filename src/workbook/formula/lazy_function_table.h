// Functions that the evaluator computes itself, since they see their arguments before evaluation.
#pragma once

#include <span>
#include <string_view>

#include "workbook/formula/function_table.h"

namespace quorva::workbook {

/// Functions that see their arguments before evaluation: branches, references, lambdas.
enum class LazyFunction : std::uint8_t {
    If,
    Ifs,
    Switch,
    Choose,
    IfError,
    IfNa,
    Let,
    Lambda,
    Map,
    Reduce,
    Scan,
    ByRow,
    ByCol,
    MakeArray,
    Offset,
    Index,
    Indirect,
    Row,
    Column,
    Rows,
    Columns,
    Cell,
    FormulaText,
    IsFormula,
    Sheet,
    Sheets,
    Areas,
    IsRef,
    Single,
    AnchorArray,
    IsOmitted
};

struct LazyFunctionRow {
    std::string_view name;
    LazyFunction function;
    int minArgs;
    int maxArgs;
    Category category;
    Volatility volatility = Volatility::Stable;
};
std::span<const LazyFunctionRow> lazyFunctions();
const LazyFunctionRow* findLazyFunction(std::string_view name);

}  // namespace quorva::workbook
