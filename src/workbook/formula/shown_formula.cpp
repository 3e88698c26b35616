#include "workbook/formula/shown_formula.h"

#include <algorithm>
#include <vector>

#include "common/cell_names.h"
#include "workbook/formula/words.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

struct Writer {
    std::string_view text;
    int shiftRows;
    int shiftColumns;
    std::string_view ownTable;
    std::size_t at = 0;
    std::string shown;
    std::vector<std::string_view> closers;  ///< what the parentheses still open are closed with

    char peek(std::size_t ahead = 0) const { return at + ahead < text.size() ? text[at + ahead] : '\0'; }
    void copy(std::size_t count) {
        shown += text.substr(at, count);
        at = std::min(at + count, text.size());
    }

    void write() {
        while (at < text.size()) {
            const char c = peek();
            if (c == '"' || c == '\'') {
                copyQuoted(c);
            } else if (c == '[') {
                copyBrackets();
            } else if (c == '#') {
                copyError();
            } else if (c == '(') {
                copy(1);
                closers.push_back(")");
            } else if (c == ')') {
                shown += closers.empty() ? ")" : closers.back();
                if (!closers.empty()) {
                    closers.pop_back();
                }
                ++at;
            } else if (isNamePart(c)) {
                writeWord();
            } else {
                copy(1);
            }
        }
    }

    /// Up to the closing mark; a doubled mark is two texts in a row here, which makes no difference.
    void copyQuoted(char mark) { copy(std::min(text.find(mark, at + 1), text.size() - 1) - at + 1); }

    void copyError() {
        std::size_t end = at + 1;
        while (end < text.size() && (isNamePart(text[end]) || text[end] == '/')) {
            ++end;
        }
        copy(end - at + (end < text.size() && text[end] == '!' ? 1 : 0));
    }

    /// The end of what stands in brackets, nested ones included; ' takes away the meaning of the next character.
    std::size_t endOfBrackets() const {
        int depth = 0;
        for (std::size_t i = at; i < text.size(); ++i) {
            depth += text[i] == '[' ? 1 : text[i] == ']' ? -1 : 0;
            i += text[i] == '\'' ? 1 : 0;
            if (depth == 0) {
                return i + 1;
            }
        }
        return text.size();
    }

    /// Columns of a table, or the number of another workbook.
    void copyBrackets() {
        const std::size_t end = endOfBrackets();
        const std::string_view inside = text.substr(at, end - at);
        constexpr std::string_view thisRow = "[[#This Row],";
        if (inside == "[#This Row]") {
            shown += "[@]";
        } else if (inside.starts_with(thisRow) && inside.ends_with("]]") && inside.size() > thisRow.size() + 3) {
            const std::string_view columns = inside.substr(thisRow.size(), inside.size() - thisRow.size() - 1);
            const std::string_view name = columns.substr(1, columns.size() - 2);
            const bool plain = std::all_of(name.begin(), name.end(), [](char c) {
                return isLetter(c) || isDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 128;
            });
            shown += "[@";
            shown += plain ? name : columns;
            shown += ']';
        } else {
            shown += inside;
        }
        at = end;
    }

    std::string_view word(std::size_t from) const {
        std::size_t end = from;
        while (end < text.size() && isNamePart(text[end])) {
            ++end;
        }
        return text.substr(from, end - from);
    }

    void writeWord() {
        const std::string_view first = word(at);
        const std::size_t behind = at + first.size();
        const char next = behind < text.size() ? text[behind] : '\0';
        const std::string_view second = next == ':' ? word(behind + 1) : std::string_view();
        const std::size_t end = behind + 1 + second.size();
        // "First:Last!A1", which "Sheet1!A1:Sheet1!B2" is not
        const bool sheets = !second.empty() && end < text.size() && text[end] == '!' && !shown.ends_with('!');
        if (next == '!' || sheets) {
            copy(sheets ? end - at : first.size());
        } else if (next == '(') {
            at = behind;
            writeFunction(withoutPrefix(first));
        } else if (next == '[' && !ownTable.empty() && compareTexts(first, ownTable) == 0) {
            at = behind;
        } else if (!second.empty() && (writePair(first, second, columnPart, shiftColumns, maxColumns) ||
                                       writePair(first, second, rowPart, shiftRows, maxRows))) {
            at = end;
        } else {
            at = behind;
            writeReference(first);
        }
    }

    /// ANCHORARRAY(A1) is A1#, SINGLE(A1:A9) is @A1:A9.
    void writeFunction(std::string_view name) {
        ++at;
        const std::string upper = toUpper(name);
        if (upper == "ANCHORARRAY") {
            closers.push_back("#");
        } else if (upper == "SINGLE") {
            shown += '@';
            closers.push_back("");
        } else {
            shown += name;
            shown += '(';
            closers.push_back(")");
        }
    }

    /// "A:C" or "$2:5".
    bool writePair(std::string_view first, std::string_view second, ReferencePart (*part)(std::string_view), int shift,
                   int limit) {
        const ReferencePart from = part(first);
        const ReferencePart to = part(second);
        if (from.position < 0 || to.position < 0) {
            return false;
        }
        const auto write = [&](ReferencePart one) {
            shown += one.absolute ? "$" : "";
            const int position = shifted(one, shift, limit);
            shown += limit == maxColumns ? columnName(position) : std::to_string(position + 1);
        };
        write(from);
        shown += ':';
        write(to);
        return true;
    }

    void writeReference(std::string_view name) {
        const CellParts cell = cellParts(name);
        if (!cell.valid()) {
            constexpr std::string_view function = "_xleta.";  // one that is handed over without arguments
            name = withoutPrefix(name);
            shown += name.substr(name.starts_with(function) ? function.size() : 0);
            return;
        }
        shown += cell.column.absolute ? "$" : "";
        shown += columnName(shifted(cell.column, shiftColumns, maxColumns));
        shown += cell.row.absolute ? "$" : "";
        shown += std::to_string(shifted(cell.row, shiftRows, maxRows) + 1);
    }
};

}  // namespace

std::string shownFormula(std::string_view text, int shiftRows, int shiftColumns, std::string_view ownTable) {
    Writer writer{text, shiftRows, shiftColumns, ownTable, 0, {}, {}};
    writer.write();
    return writer.shown;
}

}  // namespace quorva::workbook
