#include "frontend/text/cell_address.h"

#include <algorithm>
#include <cctype>

namespace quorva::frontend {

std::string cellAddress(int row, int column) {
    std::string letters;
    for (int c = column; c >= 0; c = c / 26 - 1) {
        letters.insert(letters.begin(), static_cast<char>('A' + c % 26));
    }
    return letters + std::to_string(row + 1);
}

std::string cellAddress(std::string_view sheet, int row, int column) {
    if (sheet.empty()) {
        return cellAddress(row, column);
    }
    const auto plain = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '.' || c >= 0x80; };
    const bool digitFirst = std::isdigit(static_cast<unsigned char>(sheet.front())) != 0;
    std::string name(sheet);
    if (digitFirst || !std::all_of(sheet.begin(), sheet.end(), plain)) {
        name = "'";
        for (const char c : sheet) {
            name += c;
            if (c == '\'') {
                name += c;
            }
        }
        name += "'";
    }
    return name + "!" + cellAddress(row, column);
}

std::string sheetOfHostName(std::string_view hostName) {
    const auto bracket = hostName.find(']');
    return std::string(hostName.starts_with('[') && bracket != std::string_view::npos ? hostName.substr(bracket + 1)
                                                                                      : hostName);
}

}  // namespace quorva::frontend
