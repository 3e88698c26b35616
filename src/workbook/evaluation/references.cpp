#include "workbook/evaluation/references.h"

namespace quorva::workbook {

Value intersectReference(const Call& call, const Value& reference) {
    if (reference.areas().size() != 1) {
        return ErrorCode::Value;
    }
    const Area& area = reference.areas()[0];
    if (area.single()) {
        return call.cells.get(area.sheet, area.firstRow, area.firstColumn);
    }
    if (area.firstColumn == area.lastColumn && call.row >= area.firstRow && call.row <= area.lastRow) {
        return call.cells.get(area.sheet, call.row, area.firstColumn);
    }
    if (area.firstRow == area.lastRow && call.column >= area.firstColumn && call.column <= area.lastColumn) {
        return call.cells.get(area.sheet, area.firstRow, call.column);
    }
    return ErrorCode::Value;
}

Value readReference(const Call& call, const Value& reference) {
    if (reference.areas().size() != 1) {
        return ErrorCode::Value;
    }
    const Area& area = reference.areas()[0];
    if (area.single()) {
        return call.cells.get(area.sheet, area.firstRow, area.firstColumn);
    }
    if (static_cast<std::int64_t>(area.rows()) * area.columns() > largestArray) {
        return ErrorCode::Num;
    }
    call.spend(static_cast<double>(area.rows()) * area.columns());
    std::vector<Value> cells(static_cast<std::size_t>(area.rows()) * area.columns());
    call.cells.forEachSlot(area, [&](int row, int column, Slot slot) {
        cells[static_cast<std::size_t>(row - area.firstRow) * area.columns() + (column - area.firstColumn)] =
            call.cells.get(slot);
    });
    return Value::array(area.rows(), area.columns(), std::move(cells));
}

void refuseReferenceArray(const Value& value) {
    if (value.isReferenceArray()) {
        throw Unsupported{"an array of references at this place"};
    }
}

}  // namespace quorva::workbook
