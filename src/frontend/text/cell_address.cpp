#include "frontend/text/cell_address.h"

#include "common/cell_names.h"

namespace quorva::frontend {

std::string cellAddress(std::string_view sheet, int row, int column) {
    return (sheet.empty() ? "" : sheetPrefix(sheet)) + cellName(row, column);
}

std::string sheetOfHostName(std::string_view hostName) {
    const auto bracket = hostName.find(']');
    return std::string(hostName.starts_with('[') && bracket != std::string_view::npos ? hostName.substr(bracket + 1)
                                                                                      : hostName);
}

}  // namespace quorva::frontend
