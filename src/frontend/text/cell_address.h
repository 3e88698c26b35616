// Names of cells and sheets.
#pragma once

#include <string>
#include <string_view>

namespace quorva::frontend {

/// "Costs!B7" of a 0-based row and column, the sheet in quotes where its name needs them; "B7" without a sheet.
std::string cellAddress(std::string_view sheet, int row, int column);
/// "Sheet" of the host's "[Book]Sheet".
std::string sheetOfHostName(std::string_view hostName);

}  // namespace quorva::frontend
