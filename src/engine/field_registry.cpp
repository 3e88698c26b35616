#include "engine/field_registry.h"

#include <algorithm>

#include "common/guarded.h"

namespace quorva {
namespace {

bool isWorkbookModel() { return isTrue(run.sheets.workbookModel); }

bool isSlot(int slot) { return slot >= 1 && slot <= limit::sheets; }

FieldGrid& gridOf(int slot) { return run.sheets.grids[static_cast<std::size_t>(slot - 1)]; }

/// Lists a sheet that is new to the model and makes its grid; 0 when there is no room for it.
int addSheet(std::uint32_t sheetId) {
    SheetList& sheets = run.sheets;
    if (sheets.inUse >= limit::sheets) {
        return 0;
    }
    const int slot = ++sheets.inUse;
    sheets.identifiers[static_cast<std::size_t>(slot - 1)] = sheetId;
    return slot;
}

/// The slot of a sheet, listed now when it is new; 0, with the code, when it cannot be.
int enterSheet(std::uint32_t sheetId, int& code) {
    int slot = findSheetSlot(sheetId);
    if (slot != 0) {
        return slot;
    }
    slot = addSheet(sheetId);
    if (slot == 0) {
        code = runerror::tooManySheets;
    } else if (slot > 1 && !gridOf(slot).clear()) {
        code = runerror::outOfMemory;
        --run.sheets.inUse;
        slot = 0;
    }
    return slot;
}

void registerCell(int column, int row, int& slot, std::uint32_t sheetId, const std::u16string& sheetName) {
    if (row >= limit::gridRows || column >= limit::gridColumns) {
        recordError(runerror::cellBeyondGrid, row, column, sheetName);
        return;
    }
    if (isWorkbookModel()) {
        int code = 0;
        const int entered = enterSheet(sheetId, code);
        if (entered == 0) {
            recordError(code, row, column, sheetName);
            return;
        }
        slot = entered;
    }
    if (getFieldInfo(column, row, slot) != 0) {
        recordError(runerror::cellTaken, row, column, sheetName);
        return;
    }
    setFieldInfo(column, row, slot, static_cast<std::uint32_t>(run.fields.registered));
}

}  // namespace

int findSheetSlot(std::uint32_t sheetId) {
    const SheetList& sheets = run.sheets;
    const auto end = sheets.identifiers.begin() + sheets.inUse;
    const auto found = std::find(sheets.identifiers.begin(), end, sheetId);
    return found == end ? 0 : static_cast<int>(found - sheets.identifiers.begin()) + 1;
}

}  // namespace quorva

using namespace quorva;

void checkfieldentry(int* column, int* row, int* slot, std::uint32_t sheetId, std::u16string sheetName) {
    guarded([&] { registerCell(*column, *row, *slot, sheetId, sheetName); });
}

void getSheetId(int* column, int* row, int* slot, std::uint32_t sheetId, std::u16string sheetName) {
    if (!isWorkbookModel()) {
        *slot = 0;
        return;
    }
    const int found = findSheetSlot(sheetId);
    if (found == 0) {
        guarded([&] { recordError(runerror::tooManySheets, *row, *column, sheetName); });
        return;
    }
    *slot = found;
}

std::uint32_t getFieldInfo(int column, int row, int slot) {
    return (isWorkbookModel() && isSlot(slot) ? gridOf(slot) : run.sheets.grids.front()).at(row, column);
}

void setFieldInfo(int column, int row, int slot, std::uint32_t value) {
    if (!isWorkbookModel()) {
        run.sheets.grids.front().set(row, column, value);
    } else if (isSlot(slot)) {
        gridOf(slot).set(row, column, value);
    }
}
