#include "workbook/file/sheet_reader.h"

#include <algorithm>
#include <limits>
#include <map>

#include "common/cell_names.h"
#include "workbook/values/areas.h"
#include "workbook/values/convert.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

struct SharedFormula {
    std::string text;
    int row;
    int column;
};

struct SheetReader {
    const Package& package;
    const std::string& part;
    const SharedTexts& texts;
    RawSheet& sheet;
    std::string_view cellTag = "c";
    std::map<int, SharedFormula> shared;
    int row = -1;
    int column = -1;

    [[noreturn]] void fail(const std::string& what) const {
        package.fail(part, "cell " + cellName(std::max(row, 0), std::max(column, 0)) + ": " + what);
    }

    void readRows(pugi::xml_node data) {
        forEachChild(data, "row", [&](pugi::xml_node node) {
            row += 1;
            if (const auto number = attribute(node, "r")) {
                const auto parsed = wholeNumber(number.value(), 1, maxRows);
                if (!parsed) {
                    package.fail(part, std::string("a row numbered \"") + number.value() + "\" cannot exist");
                }
                row = *parsed - 1;
            } else if (row >= maxRows) {
                package.fail(part, "it has more rows than a sheet can have");
            }
            if (isTrue(attribute(node, "hidden"))) {
                sheet.hiddenRows.resize(std::max(sheet.hiddenRows.size(), static_cast<std::size_t>(row) + 1));
                sheet.hiddenRows[static_cast<std::size_t>(row)] = true;
            }
            column = -1;
            forEachChild(node, cellTag, [&](pugi::xml_node cell) { readCell(cell); });
        });
    }

    void readCell(pugi::xml_node node) {
        column += 1;
        if (const auto name = attribute(node, "r")) {
            int cellRow = 0;
            int cellColumn = 0;
            if (!parseCellName(name.value(), cellRow, cellColumn)) {
                package.fail(part, std::string("a cell named \"") + name.value() + "\" cannot exist");
            }
            row = cellRow;
            column = cellColumn;
        } else if (column >= maxColumns) {
            fail("the row has more cells than a sheet has columns");
        }
        RawCell cell;
        cell.row = row;
        cell.column = column;
        cell.style = attribute(node, "s").as_int(0);
        readValue(node, cell);
        if (const pugi::xml_node formula = child(node, "f")) {
            readFormula(node, formula, cell);
        }
        if (cell.hasValue || cell.kind != FormulaKind::None) {
            sheet.cells.push_back(std::move(cell));
        }
    }

    void readValue(pugi::xml_node node, RawCell& cell) const {
        const std::string_view type = attribute(node, "t").value();
        if (type == "inlineStr") {
            if (const pugi::xml_node text = child(node, "is")) {
                cell.value = Value(richText(text));
                cell.hasValue = true;
            }
            return;
        }
        const pugi::xml_node saved = child(node, "v");
        const char* text = saved.child_value();
        if (!saved || (*text == '\0' && type != "str")) {
            return;
        }
        if (*text == '\0' && !child(node, "f")) {
            return;
        }
        cell.hasValue = !(*text == '\0' && saved.first_child().empty() && type != "str");
        if (type == "s") {
            const auto index = wholeNumber(text, 0, static_cast<int>(texts.size()) - 1);
            if (!index) {
                fail(std::string("the shared text ") + text + " does not exist");
            }
            cell.value = texts[static_cast<std::size_t>(*index)];
        } else if (type == "str") {
            cell.value = Value(decodeEscapes(text));
        } else if (type == "b") {
            cell.value = Value(std::string_view(text) == "1" || std::string_view(text) == "true");
        } else if (type == "e") {
            ErrorCode code = ErrorCode::Value;
            const bool known = errorFromText(text, code);
            const bool formula = static_cast<bool>(child(node, "f"));
            if (!known && !formula) {
                fail(std::string("the error value ") + text + " is not known");
            }
            // Errors younger than the format (#SPILL!, #CALC! ...) are saved as #VALUE! with what they are elsewhere.
            cell.hasValue = known && !(formula && code == ErrorCode::Value && attribute(node, "vm"));
            cell.value = code;
        } else if (type == "d") {
            std::string date = text;
            std::replace(date.begin(), date.end(), 'T', ' ');
            date = date.substr(0, date.find('Z'));
            const auto serial = parseNumber(date);
            if (!serial) {
                fail("a date cannot be read");
            }
            cell.value = *serial;
        } else if (type.empty() || type == "n") {
            const auto number = parsePlainNumber(text);
            if (!number) {
                fail(std::string("the number \"") + std::string(std::string_view(text).substr(0, 40)) +
                     "\" cannot be read");
            }
            cell.value = *number;
        } else {
            fail("its type \"" + std::string(type) + "\" is not known");
        }
    }

    /// A what-if table is reported as unsupported, with what it depends on: the cells above it, left of it, and its
    /// input cells.
    void readWhatIfTable(pugi::xml_node formula, RawCell& cell) {
        cell.kind = FormulaKind::Array;
        cell.spill = {0, row, column, row, column};
        const auto range = attribute(formula, "ref");
        if (range &&
            (!parseArea(range.value(), cell.spill) || cell.spill.firstRow != row || cell.spill.firstColumn != column)) {
            fail("the range of its what-if table cannot be read");
        }
        const int top = std::max(row - 1, 0);
        const int left = std::max(column - 1, 0);
        std::vector<std::string> uses;
        if (row > 0) {
            uses.push_back(cellName(top, left) + ":" + cellName(top, cell.spill.lastColumn));
        }
        if (column > 0) {
            uses.push_back(cellName(row, left) + ":" + cellName(cell.spill.lastRow, left));
        }
        for (const char* name : {"r1", "r2"}) {
            int inputRow = 0;
            int inputColumn = 0;
            if (parseCellName(attribute(formula, name).value(), inputRow, inputColumn)) {
                uses.push_back(cellName(inputRow, inputColumn));
            }
        }
        cell.formula = "TABLE(";
        for (const std::string& use : uses) {
            cell.formula += (cell.formula.back() == '(' ? "" : ",") + use;
        }
        cell.formula += ")";
    }

    void readFormula(pugi::xml_node node, pugi::xml_node formula, RawCell& cell) {
        const std::string_view type = attribute(formula, "t").value();
        cell.formula = formula.child_value();
        if (cell.formula.starts_with('=')) {
            cell.formula.erase(0, 1);
        }
        if (type == "shared") {
            const std::string_view index = attribute(formula, "si").value();
            const auto number = wholeNumber(index, 0, std::numeric_limits<int>::max());
            if (!number) {
                fail("a shared formula numbered \"" + std::string(index) + "\" cannot exist");
            }
            if (!cell.formula.empty()) {
                shared[*number] = {cell.formula, row, column};
            } else {
                const auto found = shared.find(*number);
                if (found == shared.end()) {
                    fail("the shared formula " + std::string(index) + " does not exist");
                }
                cell.formula = found->second.text;
                cell.shiftRows = row - found->second.row;
                cell.shiftColumns = column - found->second.column;
            }
        }
        if (type == "dataTable") {
            readWhatIfTable(formula, cell);
            return;
        }
        if (cell.formula.empty()) {
            return;
        }
        cell.kind = FormulaKind::Normal;
        if (type == "array") {
            cell.kind = attribute(node, "cm") ? FormulaKind::Dynamic : FormulaKind::Array;
            const auto range = attribute(formula, "ref");
            cell.spill = {0, row, column, row, column};
            if (range && !parseArea(range.value(), cell.spill)) {
                fail("the range of its array formula cannot be read");
            }
            if (cell.spill.firstRow != row || cell.spill.firstColumn != column) {
                fail("the range of its array formula does not begin at the cell");
            }
        }
    }
};

}  // namespace

std::string decodeEscapes(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '_' && i + 6 < text.size() && text[i + 1] == 'x' && text[i + 6] == '_') {
            const std::string digits(text.substr(i + 2, 4));
            if (digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos) {
                const char16_t unit = static_cast<char16_t>(std::stoi(digits, nullptr, 16));
                decoded += toUtf8(std::u16string_view(&unit, 1));
                i += 6;
                continue;
            }
        }
        decoded.push_back(text[i]);
    }
    return decoded;
}

std::string richText(pugi::xml_node node) {
    std::string text;
    for (pugi::xml_node one = node.first_child(); one; one = one.next_sibling()) {
        if (localName(one.name()) == "t") {
            text += one.child_value();
        } else if (localName(one.name()) == "r") {
            text += child(one, "t").child_value();
        }
    }
    return decodeEscapes(text);
}

void readSheet(const Package& package, const std::string& part, const SharedTexts& texts, RawSheet& sheet) {
    pugi::xml_document document;
    package.read(part, document);
    const pugi::xml_node root = child(document, "worksheet");
    if (!root) {
        package.fail(part, "it is not a worksheet");
    }
    SheetReader reader{package, part, texts, sheet, "c", {}, -1, -1};
    reader.readRows(child(root, "sheetData"));
    markFilteredRows(child(root, "autoFilter"), sheet);
}

void markFilteredRows(pugi::xml_node filter, RawSheet& sheet) {
    Area filtered;
    if (!child(filter, "filterColumn") || !parseArea(attribute(filter, "ref").value(), filtered)) {
        return;
    }
    sheet.filteredRows.resize(sheet.hiddenRows.size());
    const int end = std::min(filtered.lastRow + 1, static_cast<int>(sheet.hiddenRows.size()));
    for (int row = filtered.firstRow; row < end; ++row) {
        sheet.filteredRows[static_cast<std::size_t>(row)] = sheet.hiddenRows[static_cast<std::size_t>(row)];
    }
}

void readSavedValues(const Package& package, const std::string& part, pugi::xml_node rows, const SharedTexts& texts,
                     RawSheet& sheet) {
    SheetReader reader{package, part, texts, sheet, "cell", {}, -1, -1};
    reader.readRows(rows);
}

}  // namespace quorva::workbook
