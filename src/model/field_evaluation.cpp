#include "model/field_evaluation.h"

#include "engine/field_registry.h"
#include "stats/running_moments.h"

namespace quorva {
namespace {

int& counterOf(FieldKind kind) {
    FieldTables& fields = run.fields;
    switch (kind) {
        case FieldKind::Distribution:
            return fields.nDist;
        case FieldKind::ScenarioVariable:
            return fields.nSVar;
        case FieldKind::Result:
            return fields.nRes;
        default:
            return fields.nStat;
    }
}

void count(int field, double value) {
    CalcSimStat(field, value);
    run.fields.FieldTable(field, fieldcolumn::done) = 1.0;
}

void report(int code, const CallingCell& cell) { recordError(code, cell.row(), cell.column(), cell.sheetName()); }

}  // namespace

namespace fieldevaluation {

void registerField(FieldKind kind, const CallingCell& cell) {
    run.fields.current = ++run.fields.registered;
    ++counterOf(kind);
    int column = cell.column();
    int row = cell.row();
    int slot = 0;
    checkfieldentry(&column, &row, &slot, cell.sheetId(), cell.sheetName());
}

bool findSlot(const CallingCell& cell, int& slot) {
    slot = isTrue(run.sheets.workbookModel) ? findSheetSlot(cell.sheetId()) : 0;
    if (slot == 0 && isTrue(run.sheets.workbookModel)) {
        report(runerror::tooManySheets, cell);
        return false;
    }
    return true;
}

int numberField(FieldKind kind, const CallingCell& cell, int slot, const char* name, int visible) {
    FieldTables& fields = run.fields;
    if (getFieldInfo(cell.column(), cell.row(), slot) != 0) {
        report(runerror::cellTaken, cell);
        return 0;
    }
    if (fields.nFields >= limit::fields) {
        report(runerror::tooManyFields, cell);
        return 0;
    }
    ++counterOf(kind);
    const int field = ++fields.nFields;
    setFieldInfo(cell.column(), cell.row(), slot, static_cast<std::uint32_t>(field));
    matrix<double>& table = fields.FieldTable;
    table(field, fieldcolumn::kind) = static_cast<double>(kind);
    table(field, fieldcolumn::row) = cell.row();
    table(field, fieldcolumn::column) = cell.column();
    table(field, fieldcolumn::visible) = visible;
    table(field, fieldcolumn::sheetSlot) = slot;
    fields.FieldNames(field, namecolumn::field) = wideFromHostText(name, hostFalse);
    fields.FieldNames(field, namecolumn::sheet) = cell.sheetName();
    return field;
}

int lookUpField(const CallingCell& cell, int slot, bool reported) {
    const int field = static_cast<int>(getFieldInfo(cell.column(), cell.row(), slot));
    run.fields.current = field;
    if (field == 0 && !reported) {
        report(runerror::notDescribed, cell);
    }
    return field;
}

}  // namespace fieldevaluation

void recordInput(int field, double value) {
    run.sampling.SampleStore(sampleRow(), field) = value;
    run.sampling.lastValue = value;
    count(field, value);
}

void recordOutput(int field, double value) {
    matrix<double>& store = run.sampling.SampleStore;
    if (store.contains(sampleRow(), field)) {
        store(sampleRow(), field) = value;
    }
    count(field, value);
}

}  // namespace quorva
