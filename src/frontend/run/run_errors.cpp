#include "frontend/run/run_errors.h"

#include "common/cell_names.h"
#include "frontend/run/host_arrays.h"
#include "frontend/text/cell_address.h"
#include "frontend/text/number_text.h"
#include "quorva/front_end.h"

namespace quorva::frontend {

namespace {
struct ErrorRecord {
    int code = runerror::none;
    int row = 0;
    int column = 0;
    std::vector<std::string> texts;
};

/// First location, or with `second` the second one and the extra text.
ErrorRecord readError(bool second) {
    ErrorRecord record;
    record.row = second ? askForSecondCell : 0;
    HostLabels texts;
    Cpp_SimError(&record.code, &record.row, &record.column, texts.address());
    record.texts = texts.utf8();
    return record;
}

/// The only field at the record's cell; some errors carry no sheet.
const Field* fieldAt(const ErrorRecord& record, const std::vector<Field>& fields) {
    const std::string sheet = record.texts.empty() ? "" : sheetOfHostName(record.texts[0]);
    const Field* found = nullptr;
    for (const Field& field : fields) {
        if (field.row == record.row && field.column == record.column && (sheet.empty() || field.sheet == sheet)) {
            if (found) {
                return nullptr;
            }
            found = &field;
        }
    }
    return found;
}

std::string place(const ErrorRecord& record, const std::vector<Field>& fields) {
    const Field* field = fieldAt(record, fields);
    const std::string sheet = field ? field->sheet : record.texts.empty() ? "" : sheetOfHostName(record.texts[0]);
    return "cell " + cellAddress(sheet, record.row, record.column) + (field ? " (field '" + field->name + "')" : "");
}

std::string nothingToSimulate() {
    return "nothing to simulate: a model needs at least one distribution (such as QUORVA_SimNormal) and one result "
           "(QUORVA_SimRes)";
}

std::string sentence(int code, const ErrorRecord& first, const std::vector<Field>& fields) {
    const std::string where = place(first, fields);
    switch (code) {
        case runerror::cellTaken:
            return where +
                   " holds two model functions; a cell can be one field only: give the second one a cell of "
                   "its own";
        case runerror::notDescribed:
            return where +
                   " holds a model function that was not there when the run was prepared; a model function "
                   "must not appear or vanish during a run, as it does when an argument is an error or a text "
                   "before the run, with every input at its default value, and a number later";
        case runerror::tooManyFields:
            return where + ": more than " + groupedNumber(limit::fields) + " fields";
        case runerror::noDrawInBounds:
            return where + ": no draw fell within the truncation bounds; widen them or check their order";
        case runerror::cellBeyondGrid:
            return where + " lies outside A1:" + cellName(limit::gridRows - 1, limit::gridColumns - 1) +
                   ", where model functions have to stand";
        case runerror::tooManySheets:
            return where + ": model functions on more than " + std::to_string(limit::sheets) +
                   " sheets, or on a sheet that is not part of the model";
        case runerror::duplicateName: {
            const ErrorRecord second = readError(true);
            const std::string name = second.texts.size() > 1 ? second.texts[1] : "";
            return "two fields are named '" + name + "': " + place(first, {}) + " and " + place(second, {}) +
                   "; names must be unique in the workbook";
        }
        default:
            return where + ": run error " + std::to_string(code);
    }
}
}  // namespace

bool runErrorPending() { return readError(false).code != runerror::none; }

CommandFailure runError(int code, const std::vector<Field>& fields) {
    const ErrorRecord first = readError(false);
    // Memory that cannot be had has the number of a cell beyond the grid, and no cell.
    if (first.code == runerror::outOfMemory && first.row < limit::gridRows && first.column < limit::gridColumns) {
        return {ExitStatus::Internal, "there is not enough memory for this run"};
    }
    if (first.code != runerror::none) {
        return {ExitStatus::Model, sentence(first.code, first, fields)};
    }
    switch (code) {
        case callcode::labelUnknown:
            return {ExitStatus::Model, "a label of the correlation matrix matches no distribution of the model"};
        case callcode::modelIncomplete:  // the number of matrixUnusable too
            return {ExitStatus::Model,
                    "the correlation matrix is impossible and could not be repaired, or " + nothingToSimulate()};
        case callcode::nothingRegistered:
            return {ExitStatus::Model, nothingToSimulate()};
        case callcode::tooManyCells:
            return {ExitStatus::Usage, "more than " + groupedNumber(limit::sampleCells) +
                                           " values (iterations x fields); ask for fewer iterations"};
        default:
            return {ExitStatus::Internal, "the module answered with code " + std::to_string(code)};
    }
}

}  // namespace quorva::frontend
