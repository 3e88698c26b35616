// From the text of a formula to its tree.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "workbook/formula/symbols.h"
#include "workbook/formula/syntax.h"

namespace quorva::workbook {

struct ParseError : std::runtime_error {
    ParseError(const std::string& what, std::size_t where) : std::runtime_error(what), position(where) {}
    std::size_t position;
};

/// Where a formula stands: relative references of a shared formula or a name move by the shift.
struct FormulaPlace {
    int sheet = 0;
    int row = 0;
    int column = 0;
    int shiftRows = 0;
    int shiftColumns = 0;
};

/// Parses a formula without its equals sign; throws ParseError.
Node parseFormula(std::string_view text, const FormulaPlace& place, Symbols& symbols);

}  // namespace quorva::workbook
