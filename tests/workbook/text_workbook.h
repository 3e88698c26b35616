// Workbooks as text files with the values that their formulas must have; see tests/workbook/README.md.
#pragma once

#include <string>
#include <vector>

namespace quorva::workbook {

/// Runs a text workbook; gives one message for each expectation that is not met.
std::vector<std::string> runTextWorkbook(const std::string& text);

}  // namespace quorva::workbook
