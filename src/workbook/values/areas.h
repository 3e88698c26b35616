// Single cells and blocks of cells.
#pragma once

#include <compare>
#include <string_view>

#include "workbook/values/value.h"

namespace quorva::workbook {

/// Sheets, rows and columns count from 0.
struct CellAddress {
    int sheet = 0;
    int row = 0;
    int column = 0;
    friend auto operator<=>(const CellAddress&, const CellAddress&) = default;
};

/// "A1" or "A1:B3"; false when the text is no range. The sheet is left as it is.
bool parseArea(std::string_view text, Area& area);

}  // namespace quorva::workbook
