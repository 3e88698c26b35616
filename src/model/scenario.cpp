// Scenario variables: inputs that the user sets and a run holds fixed.
#include <cmath>

#include "model/field_evaluation.h"
#include "model/tornado_plan.h"
#include "quorva/worksheet.h"

namespace quorva {
namespace {

struct ScenarioVariable {
    const char* name;
    double lower;
    double upper;
    int mode;
    int step;
    int visible;
    double value;
};

double middleOf(double lower, double upper, int mode) {
    const double middle = (lower + upper) * 0.5;
    return mode == static_cast<int>(ScenarioMode::Qualitative) ? std::floor(middle) : middle;
}

void describe(const ScenarioVariable& variable, int field) {
    matrix<double>& table = run.fields.FieldTable;
    table(field, fieldcolumn::lowerBound) = variable.lower;
    table(field, fieldcolumn::upperBound) = variable.upper;
    table(field, fieldcolumn::stepMode) = variable.mode;
    table(field, fieldcolumn::step) = variable.step;
    table(field, fieldcolumn::defaultValue) = variable.value;
}

/// The value that the run holds, recorded once per iteration.
double hold(int field) {
    const double value = run.fields.FieldTable(field, fieldcolumn::defaultValue);
    if (!isDone(field)) {
        recordInput(field, value);
    }
    return value;
}

double evaluate(const ScenarioVariable& variable) {
    if (!run.status.any()) {
        return variable.value;
    }
    const FieldEvaluation evaluation =
        evaluateField(FieldKind::ScenarioVariable, variable.name, variable.visible,
                      [&](int field, const CallingCell&, int) { describe(variable, field); });
    if (!evaluation.takesPart()) {
        return variable.value;
    }
    switch (evaluation.status) {
        case RunStatus::Running:
            return hold(evaluation.field);
        case RunStatus::Analysing:
            return tornadoInput(evaluation.field);
        default:
            return variable.value;
    }
}

}  // namespace
}  // namespace quorva

using namespace quorva;

double QUORVA_SimSVar(const char* SVarName, double LowerBound, double UpperBound, int Type, int Step, short DefaultType,
                      double DefaultValue, int Visible) {
    const double value = DefaultType != 0 ? DefaultValue : middleOf(LowerBound, UpperBound, Type);
    const ScenarioVariable variable{SVarName, LowerBound, UpperBound, Type, Step, Visible, value};
    return guardedCell([&] { return evaluate(variable); }, [&] { return value; });
}
