#include "frontend/run/model_session.h"

#include <algorithm>

#include "frontend/text/cell_address.h"
#include "frontend/text/command_failure.h"

namespace quorva::frontend {

using workbook::CellValue;

namespace {
/// Names, and an entry for every field that a model can have.
constexpr int mostTableRows = limit::fields + 1;

TableCell tableCell(const CellValue& value) {
    switch (value.type) {
        case CellValue::Type::Blank:
            return {};
        case CellValue::Type::Number:
            return value.number;
        case CellValue::Type::Text:
            return value.text;
        case CellValue::Type::Boolean:
            return std::string(value.number != 0 ? "TRUE" : "FALSE");
        case CellValue::Type::Error:
            return value.text;
    }
    return {};
}
}  // namespace

ModelSession::ModelSession(const std::string& file) : book_(file) {
    book_.attach();
    // The order of calculation, and with it what calls the module, is known from the first recalculation on.
    book_.recalculate();
    if (book_.modelCells().empty()) {
        throw CommandFailure(ExitStatus::Model,
                             "nothing to simulate: '" + file +
                                 "' has no model function; a model needs at least one distribution (such as "
                                 "QUORVA_SimNormal) and one result (QUORVA_SimRes)");
    }
}

Host ModelSession::host() {
    return {[this] { book_.recalculate(); }, [this](std::span<const Field> fields) { watch(fields); },
            [this](std::size_t index) { return book_.value(watched_[index]).type == CellValue::Type::Error; },
            [this](int seed) { book_.seed(static_cast<std::uint64_t>(seed)); }};
}

void ModelSession::watch(std::span<const Field> fields) {
    watched_.clear();
    for (const Field& field : fields) {
        int sheet = 0;
        while (sheet < book_.sheetCount() && book_.sheetName(sheet) != field.sheet) {
            ++sheet;
        }
        if (sheet == book_.sheetCount()) {
            throw CommandFailure(ExitStatus::Internal,
                                 "the sheet '" + field.sheet + "' of a field is not in the workbook");
        }
        watched_.push_back({sheet, field.row, field.column});
    }
}

std::optional<CellTable> ModelSession::table(std::string_view reference) const {
    const auto range = book_.resolve(reference);
    if (!range) {
        return std::nullopt;
    }
    const int rows = range->lastRow - range->firstRow + 1, columns = range->lastColumn - range->firstColumn + 1;
    if (rows > mostTableRows || columns > mostTableRows) {
        throw CommandFailure(ExitStatus::Model, "'" + std::string(reference) +
                                                    "' is too large for a table of settings: " + std::to_string(rows) +
                                                    " rows and " + std::to_string(columns) + " columns");
    }
    CellTable table(rows);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            table[r].push_back(tableCell(book_.value({range->sheet, range->firstRow + r, range->firstColumn + c})));
        }
    }
    return table;
}

std::vector<std::string> ModelSession::absentFunctions(const std::vector<Field>& fields) const {
    std::vector<std::string> sentences;
    for (const workbook::CellAddress& cell : book_.modelCells()) {
        const std::string& sheet = book_.sheetName(cell.sheet);
        const bool present = std::any_of(fields.begin(), fields.end(), [&](const Field& field) {
            return field.row == cell.row && field.column == cell.column && field.sheet == sheet;
        });
        const CellValue value = present ? CellValue{} : book_.value(cell);
        if (value.type == CellValue::Type::Error) {
            sentences.push_back("the model function in " + cellAddress(sheet, cell.row, cell.column) +
                                " takes no part in the run: it shows " + value.text +
                                ", so an argument is an error or not numeric");
        }
    }
    return sentences;
}

}  // namespace quorva::frontend
