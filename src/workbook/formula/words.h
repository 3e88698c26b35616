// The words of formulas: names, prefixes of files, and the parts of references.
#pragma once

#include <string_view>

namespace quorva::workbook {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
/// Whether a character may stand in a word: a name, a function, a cell with its $.
constexpr bool isNamePart(char c) {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.' || c == '\\' || c == '?' || c == '$' ||
           static_cast<unsigned char>(c) >= 128;
}

/// A name without what files put before younger functions and before variables ("_xlfn.", "_xlpm." ...).
std::string_view withoutPrefix(std::string_view name);

/// The row or the column of a reference.
struct ReferencePart {
    int position = -1;  ///< from 0; -1: it is none
    bool absolute = false;
};
ReferencePart columnPart(std::string_view text);
ReferencePart rowPart(std::string_view text);

/// Both are parts of a cell, or the word is none.
struct CellParts {
    ReferencePart column;
    ReferencePart row;
    bool valid() const { return column.position >= 0 && row.position >= 0; }
};
CellParts cellParts(std::string_view word);

/// Where the part is when its formula has moved by `shift`: beyond the sheet's end (`limit`) it starts anew.
int shifted(ReferencePart part, int shift, int limit);

}  // namespace quorva::workbook
