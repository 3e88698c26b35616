// Tables of text for a terminal.
#pragma once

#include <string>
#include <vector>

namespace quorva::frontend {

/// A header line, then the rows, columns aligned on the left; the last column is as wide as it has to be.
std::string textTable(const std::vector<std::string>& header, const std::vector<std::vector<std::string>>& rows);

}  // namespace quorva::frontend
