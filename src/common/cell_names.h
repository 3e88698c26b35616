// Cells and sheets by name: "A1", "$B$3", "'My sheet'!". Rows and columns count from 0.
#pragma once

#include <string>
#include <string_view>

namespace quorva {

/// What a sheet of today holds.
constexpr int maxRows = 1048576;
constexpr int maxColumns = 16384;

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

}  // namespace quorva
