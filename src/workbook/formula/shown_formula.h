// A formula as the formula bar shows it, which is not quite how files hold it.
#pragma once

#include <string>
#include <string_view>

namespace quorva::workbook {

/// The formula that a user would type: without the prefixes that files put before younger functions and variables, with
/// @ and # for the functions that stand for them, and inside a table without the table's name.
/// text: as the file has it, without the equals sign.
/// shiftRows, shiftColumns: how far relative references move; of a shared formula the file has the first cell's text.
/// ownTable: the name of the table in which the formula stands; empty when there is none.
std::string shownFormula(std::string_view text, int shiftRows, int shiftColumns, std::string_view ownTable);

}  // namespace quorva::workbook
