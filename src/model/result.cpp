// Result fields: cells that watch a formula.
#include "model/field_evaluation.h"
#include "model/tornado_plan.h"
#include "quorva/worksheet.h"

namespace quorva {
namespace {

/// The first value of an iteration is recorded; later evaluations of the iteration show it again.
double recordOnce(int field, double formula) {
    if (isDone(field)) {
        return storedValue(field);
    }
    recordOutput(field, formula);
    return formula;
}

double evaluate(const char* name, double formula, HostBool monitored, int visible) {
    if (!run.status.any()) {
        return formula;
    }
    const FieldEvaluation evaluation =
        evaluateField(FieldKind::Result, name, visible, [&](int field, const CallingCell&, int) {
            run.fields.FieldTable(field, fieldcolumn::convergence) = isTrue(monitored) ? 1.0 : 0.0;
        });
    if (!evaluation.takesPart()) {
        return formula;
    }
    if (evaluation.status == RunStatus::Running) {
        return recordOnce(evaluation.field, formula);
    }
    if (evaluation.status == RunStatus::Analysing) {
        recordTornadoResult(evaluation.field, formula);
    }
    return formula;
}

}  // namespace
}  // namespace quorva

// The cell shows its formula outside a run, too: DefaultValue is not read; intended.
double QUORVA_SimRes(const char* ResName, double Formula, double /*DefaultValue*/, short ConvCheck, int Visible) {
    return quorva::guardedCell([&] { return quorva::evaluate(ResName, Formula, ConvCheck, Visible); },
                               [&] { return Formula; });
}
