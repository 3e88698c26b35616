// Fields without functions: they register, describe and record themselves in a recalculation, as the functions of a
// model do, with values that the test chooses.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "../host/fake_host.h"
#include "common/whole_number.h"
#include "engine/field_registry.h"
#include "stats/running_moments.h"

namespace quorva::testing {

class DescribedFields {
protected:
    using Value = std::function<double()>;
    struct Field {
        Address address;
        FieldKind kind;
        std::u16string name;
        Value formula;
        bool marked = false;  ///< result: for convergence
        Address described;    ///< statistic: the cell that it describes
        double value = 0.0;
    };

    std::size_t field(Field added) {
        cells.push_back(std::move(added));
        return cells.size() - 1;
    }
    /// A distribution that draws 1, 2, 3, ...
    std::size_t normal(const Address& address, const std::string& name) {
        return field({address, FieldKind::Distribution, wide(name), [this] { return ++draws; }, false, {}});
    }
    std::size_t result(const Address& address, const std::string& name, Value formula, bool marked = false) {
        return field({address, FieldKind::Result, wide(name), std::move(formula), marked, {}});
    }
    std::size_t scenario(const Address& address, const std::string& name) {
        return field({address, FieldKind::ScenarioVariable, wide(name), [] { return 0.5; }, false, {}});
    }
    std::size_t statistic(const Address& address, const std::string& name, const Address& described) {
        return field({address, FieldKind::Statistic, wide(name), [] { return 0.0; }, false, described});
    }
    void evaluate(std::size_t index) { evaluate(cells[index]); }
    /// What the cell of a field does in the status that the run is in.
    void evaluate(Field& field) {
        switch (run.status.current()) {
            case RunStatus::Initialised:
                enrol(field);
                break;
            case RunStatus::Prepared:
                describe(field);
                break;
            case RunStatus::Running:
                record(field);
                break;
            default:
                break;
        }
    }
    void recalculate() {
        for (Field& each : cells) {
            evaluate(each);
        }
    }
    double value(std::size_t index) const { return cells[index].value; }

    std::vector<Field> cells;
    double draws = 0.0;

private:
    static std::u16string wide(const std::string& text) { return {text.begin(), text.end()}; }
    static std::uint32_t sheetId(const Address& address) {
        return static_cast<std::uint32_t>(fakeHost.idOf(address.sheet));
    }
    static int slotOf(const Address& address) {
        return isTrue(run.sheets.workbookModel) ? findSheetSlot(sheetId(address)) : 0;
    }
    static int& counterOf(FieldKind kind) {
        FieldTables& fields = run.fields;
        return kind == FieldKind::Distribution       ? fields.nDist
               : kind == FieldKind::ScenarioVariable ? fields.nSVar
               : kind == FieldKind::Result           ? fields.nRes
                                                     : fields.nStat;
    }
    static void enrol(const Field& field) {
        ++run.fields.registered;
        ++counterOf(field.kind);
        int column = field.address.column;
        int row = field.address.row;
        int slot = 0;
        checkfieldentry(&column, &row, &slot, sheetId(field.address), wide(field.address.sheet));
    }
    static void describe(const Field& field) {
        const auto& [row, column, sheet] = field.address;
        const int slot = slotOf(field.address);
        if (getFieldInfo(column, row, slot) != 0) {
            recordError(runerror::cellTaken, row, column, wide(sheet));
            return;
        }
        const int number = ++run.fields.nFields;
        ++counterOf(field.kind);
        setFieldInfo(column, row, slot, static_cast<std::uint32_t>(number));
        matrix<double>& table = run.fields.FieldTable;
        table(number, fieldcolumn::kind) = static_cast<double>(field.kind);
        table(number, fieldcolumn::row) = row;
        table(number, fieldcolumn::column) = column;
        table(number, fieldcolumn::sheetSlot) = slot;
        if (field.kind == FieldKind::Distribution) {
            table(number, fieldcolumn::upperProbability) = 1.0;
            table(number, fieldcolumn::stream) = run.fields.nDist;
        } else if (field.kind == FieldKind::Result) {
            table(number, fieldcolumn::convergence) = field.marked ? 1.0 : 0.0;
        } else if (field.kind == FieldKind::Statistic) {
            table(number, fieldcolumn::referenceRow) = field.described.row;
            table(number, fieldcolumn::referenceColumn) = field.described.column;
            table(number, fieldcolumn::referenceSheet) = slotOf(field.described);
        }
        run.fields.FieldNames(number, namecolumn::field) = field.name;
        run.fields.FieldNames(number, namecolumn::sheet) = wide(sheet);
    }
    static void record(Field& field) {
        const auto& [row, column, sheet] = field.address;
        const auto number = static_cast<int>(getFieldInfo(column, row, slotOf(field.address)));
        if (number == 0) {
            recordError(runerror::notDescribed, row, column, wide(sheet));
            return;
        }
        field.value = field.formula();
        matrix<double>& store = run.sampling.SampleStore;
        if (store.contains(sampleRow(), number)) {
            store(sampleRow(), number) = field.value;
        }
        CalcSimStat(number, field.value);
        run.fields.FieldTable(number, fieldcolumn::done) = 1.0;
    }
};

}  // namespace quorva::testing
