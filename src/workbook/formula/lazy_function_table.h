// Functions that the evaluator computes itself, since they see their arguments before evaluation.
#pragma once

#include <span>
#include <string_view>

#include "workbook/formula/function_table.h"

namespace quorva::workbook {

/// Functions that see their arguments before evaluation: branches, references, lambdas.
enum class Form : std::uint8_t {
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

struct FormRow {
    std::string_view name;
    Form form;
    int minArgs;
    int maxArgs;
    Category category;
    Volatility volatility = Volatility::Stable;
};
std::span<const FormRow> allForms();
const FormRow* findForm(std::string_view name);

}  // namespace quorva::workbook
