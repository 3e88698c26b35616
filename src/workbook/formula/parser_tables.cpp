// Structured references: Table[Column], Table[[#This Row],[First]:[Last]], [@Column].
#include <algorithm>

#include "workbook/formula/parser_pass.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

struct Selection {
    bool all = false;
    bool headers = false;
    bool data = false;
    bool totals = false;
    bool thisRow = false;
    int firstColumn = -1;
    int lastColumn = -1;
};

int columnIndex(const RawTable& table, std::string_view name) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (compareTexts(table.columns[i], name) == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool selectRows(Selection& selection, std::string_view word) {
    const std::string lower = toLower(word);
    if (lower == "#all") {
        selection.all = true;
    } else if (lower == "#headers") {
        selection.headers = true;
    } else if (lower == "#data") {
        selection.data = true;
    } else if (lower == "#totals") {
        selection.totals = true;
    } else if (lower == "#this row") {
        selection.thisRow = true;
    } else {
        return false;
    }
    return true;
}

/// The rows that the selection means; false when the table has none of them.
bool rowsOf(const RawTable& table, const Selection& selection, int row, int& first, int& last) {
    const int dataFirst = table.area.firstRow + table.headerRows;
    const int dataLast = table.area.lastRow - table.totalsRows;
    if (selection.all) {
        first = table.area.firstRow;
        last = table.area.lastRow;
        return true;
    }
    if (selection.thisRow) {
        first = last = row;
        return row >= dataFirst && row <= dataLast;
    }
    if ((selection.headers && table.headerRows == 0) || (selection.totals && table.totalsRows == 0)) {
        if (!selection.data) {
            return false;
        }
    }
    const bool data = selection.data || (!selection.headers && !selection.totals);
    first = selection.headers && table.headerRows > 0 ? table.area.firstRow : data ? dataFirst : dataLast + 1;
    last = selection.totals && table.totalsRows > 0 ? table.area.lastRow : data ? dataLast : dataFirst - 1;
    return first <= last;
}

}  // namespace

Node Parser::structured(const RawTable* table) {
    Selection selection;
    const auto select = [&](const std::string& word, bool rangeEnd) {
        if (!rangeEnd && selectRows(selection, word)) {
            return;
        }
        const int column = columnIndex(*table, word);
        if (column < 0) {
            fail("the table " + table->name + " has no column " + word);
        }
        if (!rangeEnd) {
            selection.firstColumn = column;
        }
        selection.lastColumn = column;
    };
    const auto readWord = [&] {
        std::string word;
        while (at_ < text_.size() && peek() != ']' && peek() != '[') {
            if (peek() == '\'' && at_ + 1 < text_.size()) {
                ++at_;
            }
            word.push_back(text_[at_++]);
        }
        return word;
    };
    expect('[');
    skipBlanks();
    if (peek() == '@') {
        ++at_;
        selection.thisRow = true;
    }
    if (peek() != '[' && peek() != ']') {
        select(readWord(), false);
    }
    bool rangeEnd = false;
    while (peek() == '[') {
        ++at_;
        const std::string word = readWord();
        expect(']');
        select(word, rangeEnd);
        rangeEnd = false;
        skipBlanks();
        if (peek() == ',') {
            ++at_;
            skipBlanks();
        } else if (peek() == ':') {
            ++at_;
            rangeEnd = true;
        }
    }
    expect(']');
    Area area = table->area;
    int first = 0;
    int last = 0;
    if (!rowsOf(*table, selection, place_.row, first, last)) {
        Node node;
        node.kind = Node::Kind::Constant;
        node.value = Value(selection.thisRow ? ErrorCode::Value : ErrorCode::Ref);
        return node;
    }
    area.firstRow = first;
    area.lastRow = last;
    if (selection.firstColumn >= 0) {
        area.firstColumn = table->area.firstColumn + std::min(selection.firstColumn, selection.lastColumn);
        area.lastColumn = table->area.firstColumn + std::max(selection.firstColumn, selection.lastColumn);
    }
    return reference(area.sheet, area.sheet, area, true);
}

}  // namespace quorva::workbook
