// What a reader hands to the book: sheets, cells, names and tables as the file has them, nothing interpreted.
#pragma once

#include <string>
#include <vector>

#include "workbook/values/value.h"

namespace quorva::workbook {

enum class FormulaKind : std::uint8_t { None, Normal, Array, Dynamic };

struct RawCell {
    int row = 0;
    int column = 0;
    FormulaKind kind = FormulaKind::None;
    bool hasValue = false;
    Value value;          ///< the constant, or what the file saved for the formula
    std::string formula;  ///< without the equals sign
    /// A shared formula's text is its first cell's; these many rows and columns further down it stands.
    int shiftRows = 0;
    int shiftColumns = 0;
    Area spill;     ///< of array formulas: the cells that the file gives them
    int style = 0;  ///< position in RawBook::numberFormats
};

struct RawSheet {
    std::string name;
    std::vector<RawCell> cells;
    std::vector<bool> hiddenRows;    ///< by hand or by a filter
    std::vector<bool> filteredRows;  ///< of these, those that a filter hides
};

struct RawName {
    std::string name;
    int sheet = -1;  ///< -1: of the whole book
    std::string formula;
};

struct RawTable {
    std::string name;
    Area area;  ///< with headers and totals
    int headerRows = 1;
    int totalsRows = 0;
    std::vector<std::string> columns;
};

struct RawBook {
    /// The book's own sheets, then those of external books (their saved values), named "[1]Sheet1".
    std::vector<RawSheet> sheets;
    int ownSheets = 0;
    std::vector<RawName> names;
    std::vector<RawTable> tables;
    bool date1904 = false;
    bool precisionAsDisplayed = false;       ///< numbers of formulas are rounded as their cells show them
    std::vector<std::string> numberFormats;  ///< by a cell's style; only read for precision as displayed
    std::string fileName;
};

}  // namespace quorva::workbook
