// Statistic fields: cells that report a statistic of another field while the run goes on.
#include <algorithm>

#include "engine/field_registry.h"
#include "model/field_evaluation.h"
#include "quorva/worksheet.h"
#include "stats/descriptive.h"

namespace quorva {
namespace {

/// Only a reference on the caller's own sheet is resolved; anything else leaves the described cell at the first one.
bool isOwnSheet(const XLOPER* reference) { return reference && reference->type == hosttype::localReference; }

void describe(const XLOPER* reference, int statistic, int field, const CallingCell& cell) {
    matrix<double>& table = run.fields.FieldTable;
    table(field, fieldcolumn::statistic) = statistic;
    if (!isOwnSheet(reference)) {
        return;
    }
    int slot = 0;
    fieldevaluation::findSlot(cell, slot);
    const HostRange& range = reference->value.localReference.range;
    table(field, fieldcolumn::referenceRow) = range.firstRow;
    table(field, fieldcolumn::referenceColumn) = range.firstColumn;
    table(field, fieldcolumn::referenceSheet) = slot;
}

struct ReferencedCell {
    int row = 0;
    int column = 0;
    int slot = 0;
};

ReferencedCell referencedCell(const XLOPER* reference, int own) {
    if (!isOwnSheet(reference)) {
        return {};
    }
    const matrix<double>& table = run.fields.FieldTable;
    return {wholeNumber(table(own, fieldcolumn::referenceRow)), wholeNumber(table(own, fieldcolumn::referenceColumn)),
            wholeNumber(table(own, fieldcolumn::referenceSheet))};
}

/// The statistic of the iterations so far, computed once per iteration.
double computeOnce(const XLOPER* reference, int own, int statistic) {
    const ReferencedCell cell = referencedCell(reference, own);
    if (cell.row >= limit::gridRows || cell.column >= limit::gridColumns) {
        recordError(runerror::cellBeyondGrid, cell.row, cell.column, run.fields.FieldNames(own, namecolumn::sheet));
        return 0.0;
    }
    const int described = static_cast<int>(getFieldInfo(cell.column, cell.row, cell.slot));
    if (described < 1) {
        return MissingValue;
    }
    if (isDone(own)) {
        return storedValue(own);
    }
    if (own < described && run.fields.FieldTable(described, fieldcolumn::done) == 0.0) {
        // Described later in the iteration: the value is filled in when the next iteration starts.
        run.fields.FieldTable(own, fieldcolumn::done) = 0.0;
        return 0.0;
    }
    run.fields.FieldTable(own, fieldcolumn::done) = 1.0;
    const int nObs = std::min(run.sampling.iteration, run.sampling.nSim);
    const double value = SimCalcStat(nObs, described, own, statistic);
    recordOutput(own, value);
    return value;
}

double evaluate(const char* name, const XLOPER* reference, int statistic, int visible) {
    if (!run.status.any()) {
        return 0.0;
    }
    const FieldEvaluation evaluation =
        evaluateField(FieldKind::Statistic, name, visible,
                      [&](int field, const CallingCell& cell, int) { describe(reference, statistic, field, cell); });
    if (evaluation.status != RunStatus::Running || isTrue(run.error.flag)) {
        return 0.0;
    }
    // Without a calling cell there is nothing that the statistic could be of.
    return evaluation.field > 0 ? computeOnce(reference, evaluation.field, statistic) : MissingValue;
}

}  // namespace
}  // namespace quorva

double QUORVA_SimStat(const char* StatName, quorva::XLOPER* Reference, int Statistic, int Visible) {
    return quorva::guardedCell([&] { return quorva::evaluate(StatName, Reference, Statistic, Visible); },
                               [] { return 0.0; });
}
