#include "model/tornado_plan.h"

#include "engine/run_state.h"

namespace quorva {
namespace {

/// Positions that the plan passes by: fields without an interval, and results.
bool isSkipped(int position) {
    return run.tornado.intervals(position, intervalcolumn::upper) == MissingValue ||
           isKind(position, FieldKind::Result);
}

void advance() {
    TornadoState& plan = run.tornado;
    if (plan.point < plan.inbrPts) {
        ++plan.point;
        return;
    }
    plan.point = 1;
    // At most once around: where every position is passed by, the plan stays where it is.
    for (int step = 0; step < run.fields.nFields; ++step) {
        plan.position = plan.position >= run.fields.nFields ? 1 : plan.position + 1;
        if (!isSkipped(plan.position)) {
            return;
        }
    }
}

}  // namespace

double tornadoInput(int field) {
    TornadoState& plan = run.tornado;
    if (plan.clockField == 0) {
        plan.clockField = field;
    } else if (plan.clockField == field) {
        advance();
    }
    if (field == plan.position) {
        return plan.points(plan.point, field);
    }
    return plan.iDefCase != static_cast<int>(TornadoBase::Median)
               ? run.fields.FieldTable(field, fieldcolumn::defaultValue)
               : plan.intervals(field, intervalcolumn::median);
}

void recordTornadoResult(int field, double value) {
    TornadoState& plan = run.tornado;
    int& order = plan.resultOrder(field, 1);
    if (order == 0) {
        order = plan.nextResult++;
    }
    const long long row = plan.point + (order - 1LL) * plan.inbrPts;
    if (row >= 1 && row <= plan.store.rows()) {
        plan.store(static_cast<int>(row), plan.position) = value;
    }
}

}  // namespace quorva
