// Cells and sheets by name: "A1", "$B$3:C7", "'My sheet'!".
#pragma once

#include <compare>
#include <string>
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

/// "A" for 0.
std::string columnName(int column);
/// "A1" for (0, 0).
std::string cellName(int row, int column);
/// A sheet's name as it stands before a cell, quoted where it has to be: "Sheet1!", "'My sheet'!".
std::string sheetPrefix(std::string_view sheet);

/// A column in letters, from 0; -1 when the letters are none.
int columnFromLetters(std::string_view letters);
/// A row number, from 0; -1 when the digits are none.
int rowFromDigits(std::string_view digits);
/// The position a text such as "B3" or "$B$3" means; false when it means none.
bool parseCellName(std::string_view text, int& row, int& column);
/// "A1" or "A1:B3"; false when the text is no range. The sheet is left as it is.
bool parseArea(std::string_view text, Area& area);

}  // namespace quorva::workbook
