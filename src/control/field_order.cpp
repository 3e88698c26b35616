#include "control/field_order.h"

#include <string>
#include <unordered_map>
#include <vector>

#include "common/sort_rows.h"
#include "common/whole_number.h"
#include "engine/field_registry.h"
#include "engine/run_state.h"

namespace quorva {
namespace {

struct FieldName {
    const std::u16string* name;
    const std::u16string* sheet;
    bool operator==(const FieldName& other) const { return *name == *other.name && *sheet == *other.sheet; }
};

struct HashOfName {
    std::size_t operator()(const FieldName& field) const { return std::hash<std::u16string>{}(*field.name); }
};

/// For each row in name order, the first old field number with that name and sheet (element 0 unused).
std::vector<int> oldNumbers(const matrix<std::u16string>& sorted) {
    const matrix<std::u16string>& names = run.fields.FieldNames;
    const int n = sorted.rows();
    std::unordered_map<FieldName, int, HashOfName> numberOf;
    numberOf.reserve(static_cast<std::size_t>(n));
    for (int j = 1; j <= n; ++j) {
        numberOf.try_emplace({&names(j, namecolumn::field), &names(j, namecolumn::sheet)}, j);
    }
    std::vector<int> old(static_cast<std::size_t>(n) + 1);
    for (int r = 1; r <= n; ++r) {
        old[static_cast<std::size_t>(r)] = numberOf.at({&sorted(r, namecolumn::field), &sorted(r, namecolumn::sheet)});
    }
    return old;
}

}  // namespace

void renumberInNameOrder() {
    FieldTables& fields = run.fields;
    const int n = fields.nFields;
    matrix<std::u16string> sorted(n, namecolumn::columns);
    copyBlock(fields.FieldNames, 1, n, 1, namecolumn::columns, sorted);
    SortQMatrixCol(sorted, n, namecolumn::columns, namecolumn::field, 0, n, false);
    const std::vector<int> old = oldNumbers(sorted);

    fields.FieldOrder = matrix<double>(n, 1);
    matrix<double> described(n, fieldcolumn::columns);
    copyBlock(fields.FieldTable, 1, n, 1, fieldcolumn::columns, described);
    for (int r = 1; r <= n; ++r) {
        const int j = old[static_cast<std::size_t>(r)];
        fields.FieldOrder(j, 1) = r;
        for (int column = 1; column <= fieldcolumn::columns; ++column) {
            fields.FieldTable(r, column) = described(j, column);
        }
        for (const int column : {namecolumn::field, namecolumn::sheet}) {
            fields.FieldNames(r, column) = std::move(sorted(r, column));
        }
    }
}

void enterFieldsInGrids() {
    const matrix<double>& table = run.fields.FieldTable;
    for (int field = 1; field <= run.fields.nFields; ++field) {
        setFieldInfo(wholeNumber(table(field, fieldcolumn::column)), wholeNumber(table(field, fieldcolumn::row)),
                     wholeNumber(table(field, fieldcolumn::sheetSlot)), static_cast<std::uint32_t>(field));
    }
}

}  // namespace quorva
