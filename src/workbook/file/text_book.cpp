// Workbooks written as lines of text, for tests:
//     A1: 5                    a number, "a text", TRUE, #N/A
//     A2: =A1*2                a formula, evaluated as today's Excel does: arrays spill
//     A3: legacy =A1:A2        a formula of the time before: ranges are intersected
//     B1:B3: {=A1:A3*2}        an array formula that fills the cells named
//     Sheet2!A1: 7             another sheet; the first is Sheet1
//     name Total: Sheet1!$A$1  a defined name;  name Sheet2!Total: ... one of a sheet
//     table Sales: A1:C4       a table with one row of headers, whose names are its constants
//     hidden 3                 row 3 of the first sheet is hidden
//     date1904                 the date system
#include "workbook/file/text_book.h"

#include <algorithm>

#include "common/cell_names.h"
#include "workbook/values/areas.h"
#include "workbook/values/convert.h"
#include "workbook/values/failure.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

std::string_view trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\r')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

struct TextReader {
    RawBook book;
    int lineNumber = 0;

    [[noreturn]] void fail(const std::string& what) const {
        throw Failure(Failure::Kind::Unreadable, "Line " + std::to_string(lineNumber) + ": " + what + ".");
    }

    int sheet(std::string_view name) {
        for (std::size_t i = 0; i < book.sheets.size(); ++i) {
            if (compareTexts(book.sheets[i].name, name) == 0) {
                return static_cast<int>(i);
            }
        }
        book.sheets.push_back({std::string(name), {}, {}, {}});
        return static_cast<int>(book.sheets.size()) - 1;
    }

    Area area(std::string_view text) {
        Area found;
        if (const auto mark = text.find('!'); mark != std::string_view::npos) {
            std::string_view name = text.substr(0, mark);
            if (name.size() > 2 && name.front() == '\'' && name.back() == '\'') {
                name = name.substr(1, name.size() - 2);
            }
            found.sheet = sheet(name);
            text = text.substr(mark + 1);
        }
        if (!parseArea(text, found)) {
            fail("a cell cannot be read");
        }
        return found;
    }

    Value constant(std::string_view text) const {
        ErrorCode error{};
        if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
            std::string content;
            for (std::size_t i = 1; i + 1 < text.size(); ++i) {
                content.push_back(text[i]);
                i += text[i] == '"' && i + 2 < text.size() && text[i + 1] == '"' ? 1 : 0;
            }
            return Value(content);
        }
        if (text == "TRUE" || text == "FALSE") {
            return Value(text == "TRUE");
        }
        if (text.empty() || text == "blank") {
            return {};
        }
        if (errorFromText(text, error)) {
            return error;
        }
        if (const auto number = parsePlainNumber(text)) {
            return *number;
        }
        fail("a value cannot be read");
    }

    void cell(const Area& place, std::string_view content) {
        RawCell cell;
        cell.row = place.firstRow;
        cell.column = place.firstColumn;
        cell.spill = place;
        if (content.starts_with('=')) {
            cell.kind = FormulaKind::Dynamic;
            cell.formula = content.substr(1);
        } else if (content.starts_with("legacy =")) {
            cell.kind = FormulaKind::Normal;
            cell.formula = content.substr(8);
        } else if (content.starts_with("{=") && content.ends_with('}')) {
            cell.kind = FormulaKind::Array;
            cell.formula = content.substr(2, content.size() - 3);
        } else {
            cell.value = constant(content);
            cell.hasValue = true;
        }
        book.sheets[static_cast<std::size_t>(place.sheet)].cells.push_back(std::move(cell));
    }

    void line(std::string_view text) {
        if (text.empty() || text.front() == '#') {
            return;
        }
        if (text == "date1904") {
            book.date1904 = true;
        } else if (text.starts_with("hidden ")) {
            const auto row = parsePlainNumber(trim(text.substr(7)));
            if (!row || *row < 1 || *row > maxRows) {
                fail("a row cannot be read");
            }
            auto& hidden = book.sheets[0].hiddenRows;
            hidden.resize(std::max(hidden.size(), static_cast<std::size_t>(*row)));
            hidden[static_cast<std::size_t>(*row) - 1] = true;
        } else if (text.starts_with("name ")) {
            named(trim(text.substr(5)));
        } else if (text.starts_with("table ")) {
            const auto colon = text.find(':');
            if (colon == std::string_view::npos) {
                fail("':' is missing");
            }
            book.tables.push_back(
                {std::string(trim(text.substr(6, colon - 6))), area(trim(text.substr(colon + 1))), 1, 0, {}});
        } else {
            std::size_t colon = text.find(": ");
            if (colon == std::string_view::npos && text.back() == ':') {
                colon = text.size() - 1;
            }
            if (colon == std::string_view::npos) {
                fail("':' and a blank are missing");
            }
            const Area place = area(trim(text.substr(0, colon)));
            cell(place, trim(text.substr(colon + 1)));
        }
    }

    void named(std::string_view text) {
        const auto colon = text.find(": ");
        if (colon == std::string_view::npos) {
            fail("':' is missing");
        }
        RawName name;
        std::string_view label = trim(text.substr(0, colon));
        if (const auto mark = label.find('!'); mark != std::string_view::npos) {
            name.sheet = sheet(label.substr(0, mark));
            label = label.substr(mark + 1);
        }
        name.name = label;
        name.formula = trim(text.substr(colon + 2));
        if (name.formula.starts_with('=')) {
            name.formula.erase(0, 1);
        }
        book.names.push_back(std::move(name));
    }

    void nameTableColumns() {
        for (RawTable& table : book.tables) {
            table.columns.resize(static_cast<std::size_t>(table.area.columns()));
            for (const RawCell& cell : book.sheets[static_cast<std::size_t>(table.area.sheet)].cells) {
                if (cell.row == table.area.firstRow && table.area.contains(cell.row, cell.column) &&
                    cell.value.isText()) {
                    table.columns[static_cast<std::size_t>(cell.column - table.area.firstColumn)] = cell.value.text();
                }
            }
        }
    }
};

}  // namespace

std::unique_ptr<RawBook> readText(std::string_view lines) {
    TextReader reader;
    reader.sheet("Sheet1");
    while (!lines.empty()) {
        const auto end = lines.find('\n');
        ++reader.lineNumber;
        reader.line(trim(lines.substr(0, end)));
        lines = end == std::string_view::npos ? std::string_view() : lines.substr(end + 1);
    }
    reader.nameTableColumns();
    reader.book.ownSheets = static_cast<int>(reader.book.sheets.size());
    reader.book.fileName = "Book.xlsx";
    return std::make_unique<RawBook>(std::move(reader.book));
}

}  // namespace quorva::workbook
