// Charts of columns with a line over them, which the spreadsheet writer cannot make itself.
#pragma once

#include <string>
#include <vector>

namespace quorva::frontend {

/// In the given charts (numbers from 1) of a finished workbook file, turns the last series of a column chart into a
/// line on a second axis from 0 to 1. Throws CommandFailure (Internal) when the file is not what the writer makes.
void lineOverColumns(const std::string& file, const std::vector<int>& charts, const std::string& axisTitle);

}  // namespace quorva::frontend
