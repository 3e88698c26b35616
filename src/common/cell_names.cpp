#include "common/cell_names.h"

#include <algorithm>

namespace quorva {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isWordByte(char c) {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.' || static_cast<unsigned char>(c) >= 128;
}

/// Whether a sheet's name reads as a cell, such as A1, XFD12 or R1C1, so that it has to be quoted.
bool looksLikeCell(std::string_view name) {
    const auto letters = std::find_if(name.begin(), name.end(), isDigit) - name.begin();
    for (const std::string_view reference : {"R", "C", "RC"}) {  // the other style of references, without numbers
        if (std::equal(name.begin(), name.end(), reference.begin(), reference.end(),
                       [](char a, char b) { return (a & ~32) == b; })) {
            return true;
        }
    }
    return letters >= 1 && letters <= 3 && static_cast<std::size_t>(letters) < name.size() &&
           std::all_of(name.begin(), name.begin() + letters,
                       [](char c) { return isWordByte(c) && c != '_' && c != '.'; }) &&
           std::all_of(name.begin() + letters, name.end(), isDigit);
}

}  // namespace

std::string columnName(int column) {
    std::string letters;
    for (int rest = column + 1; rest > 0; rest = (rest - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
    }
    return letters;
}

std::string cellName(int row, int column) { return columnName(column) + std::to_string(row + 1); }

std::string sheetPrefix(std::string_view sheet) {
    const bool plain =
        std::all_of(sheet.begin(), sheet.end(), [](char c) { return isWordByte(c) || c == '[' || c == ']'; }) &&
        !sheet.empty() && !isDigit(sheet[0]) && sheet[0] != '.' && !looksLikeCell(sheet);
    if (sheet.empty() || plain) {
        return std::string(sheet) + "!";
    }
    std::string quoted = "'";
    for (const char c : sheet) {
        quoted += c;
        if (c == '\'') {
            quoted += c;
        }
    }
    return quoted + "'!";
}

int columnFromLetters(std::string_view letters) {
    if (letters.empty() || letters.size() > 3 || !std::all_of(letters.begin(), letters.end(), isLetter)) {
        return -1;
    }
    int column = 0;
    for (const char c : letters) {
        column = column * 26 + ((c & ~32) - 'A' + 1);
    }
    return column <= maxColumns ? column - 1 : -1;
}

int rowFromDigits(std::string_view digits) {
    if (digits.empty() || digits.size() > 7 || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        return -1;
    }
    int row = 0;
    for (const char c : digits) {
        row = row * 10 + (c - '0');
    }
    return row >= 1 && row <= maxRows ? row - 1 : -1;
}

bool parseCellName(std::string_view text, int& row, int& column) {
    const auto skipDollar = [&text] { text.remove_prefix(text.starts_with('$') ? 1 : 0); };
    skipDollar();
    const auto letters = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isLetter) - text.begin());
    const int foundColumn = columnFromLetters(text.substr(0, letters));
    text.remove_prefix(letters);
    skipDollar();
    const int foundRow = rowFromDigits(text);
    if (foundColumn < 0 || foundRow < 0) {
        return false;
    }
    row = foundRow;
    column = foundColumn;
    return true;
}

}  // namespace quorva
