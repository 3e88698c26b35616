#include "control/checks.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/run_state.h"

namespace quorva {
namespace {

struct Pair {
    int first = 0;
    int second = 0;
};

/// The first pair of fields with one name, in the order of (first, second); zeros when all names differ.
Pair firstDuplicate() {
    const matrix<std::u16string>& names = run.fields.FieldNames;
    std::unordered_map<std::u16string_view, int> firstWith;
    firstWith.reserve(static_cast<std::size_t>(std::max(run.fields.nFields, 0)));
    Pair found;
    for (int field = 1; field <= run.fields.nFields; ++field) {
        const auto [earlier, fresh] = firstWith.try_emplace(names(field, namecolumn::field), field);
        if (!fresh && (found.first == 0 || earlier->second < found.first)) {
            found = {earlier->second, field};
        }
    }
    return found;
}

CellLocation locationOf(int field) {
    const matrix<double>& table = run.fields.FieldTable;
    return {wholeNumber(table(field, fieldcolumn::row)), wholeNumber(table(field, fieldcolumn::column)),
            run.fields.FieldNames(field, namecolumn::sheet)};
}

/// The first field with that name, of any kind or a distribution only; 0 when there is none.
int fieldNamed(const std::u16string& name, bool distributionsOnly) {
    for (int field = 1; field <= run.fields.nFields; ++field) {
        if (distributionsOnly && !isKind(field, FieldKind::Distribution)) {
            continue;
        }
        if (run.fields.FieldNames(field, namecolumn::field) == name) {
            return field;
        }
    }
    return 0;
}

int reportDuplicates() {
    const Pair pair = firstDuplicate();
    if (pair.first == 0) {
        return 0;
    }
    run.error.code = runerror::duplicateName;
    run.error.flag = hostTrue;
    run.error.first = locationOf(pair.first);
    run.error.second = locationOf(pair.second);
    run.error.extraText = run.fields.FieldNames(pair.first, namecolumn::field);
    return -1;
}

}  // namespace
}  // namespace quorva

using namespace quorva;

int checkVarlistDoubles() {
    const int found = guarded([] { return reportDuplicates(); }, 1);
    if (found == 1) {
        recordOutOfMemory();
        return -1;
    }
    return found;
}

int checkVarlistCorr() {
    matrix<double>& table = run.fields.FieldTable;
    matrix<double>& groups = run.correlation.CorrGroups;
    for (int label = 1; label <= run.correlation.nCorr; ++label) {
        const bool given = label <= run.correlation.CorrLabels.rows();
        const int field = given ? fieldNamed(run.correlation.CorrLabels(label, 1), true) : 0;
        if (field == 0) {
            return callcode::labelUnknown;
        }
        table(field, fieldcolumn::correlationGroup) = groups(label, groupcolumn::group);
        table(field, fieldcolumn::correlationPosition) = label;
        table(field, fieldcolumn::groupOpening) = groups(label, groupcolumn::opening);
        groups(label, groupcolumn::field) = field;
        groups(label, groupcolumn::stream) = table(field, fieldcolumn::stream);
    }
    return 0;
}

int checkVarlistSPC() {
    const int labels = std::min(run.capability.inSpc, run.capability.SpcLabels.rows());
    for (int label = 1; label <= labels; ++label) {
        const int field = fieldNamed(run.capability.SpcLabels(label, 1), false);
        if (field != 0) {
            run.fields.FieldTable(field, fieldcolumn::capability) = label;
            run.capability.SpcTable(label, capabilitycolumn::field) = field;
        }
    }
    return 0;
}
