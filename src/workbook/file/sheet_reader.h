// Reads the cells of one sheet.
#pragma once

#include "workbook/file/package.h"
#include "workbook/values/raw_book.h"

namespace quorva::workbook {

using SharedTexts = std::vector<Value>;

/// The text of a shared or inline string, its runs joined.
std::string richText(pugi::xml_node node);
/// "_x000A_" and its like as the characters they stand for.
std::string decodeEscapes(std::string_view text);

void readSheet(const Package& package, const std::string& part, const SharedTexts& texts, RawSheet& sheet);
/// Marks the hidden rows of a filter in use (of a sheet or a table) as filtered.
void markFilteredRows(pugi::xml_node filter, RawSheet& sheet);
/// Rows of saved values of another workbook.
void readSavedValues(const Package& package, const std::string& part, pugi::xml_node rows, const SharedTexts& texts,
                     RawSheet& sheet);

}  // namespace quorva::workbook
