// What every evaluation of a model function does, whatever its kind: the calling cell, its sheet, its
// registration or description, its number, and the errors on the way.
#pragma once

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/run_state.h"
#include "model/calling_cell.h"

namespace quorva {

/// The steps of an evaluation; evaluateField puts them in order.
namespace fieldevaluation {

/// Registration pass: counts the field and claims its cell.
void registerField(FieldKind kind, const CallingCell& cell);

/// The sheet slot of the cell, 0 in a single-sheet model. False when the sheet is not listed, which is reported.
bool findSlot(const CallingCell& cell, int& slot);

/// Description pass: gives the cell the next field number and describes what all kinds have in common. Returns the
/// number, or 0 when the cell is taken or no number is left, which is reported.
int numberField(FieldKind kind, const CallingCell& cell, int slot, const char* name, int visible);

/// The number of the field in the cell, remembered as the current one. `reported`: this evaluation has recorded an
/// error, which a cell without a field does not replace.
int lookUpField(const CallingCell& cell, int slot, bool reported);

}  // namespace fieldevaluation

/// What an evaluation in a run knows about its field.
struct FieldEvaluation {
    RunStatus status = RunStatus::Idle;
    int field = 0;  ///< field number; 0 in the registration pass and where no field was found

    /// Whether the evaluation takes part in the iteration or case being calculated.
    bool takesPart() const { return field > 0 && !isTrue(run.error.flag); }
};

/// Takes the steps. `describe(field, cell, slot)` fills what a kind has of its own in the row of FieldTable.
template <class Describe>
FieldEvaluation evaluateField(FieldKind kind, const char* name, int visible, Describe&& describe) {
    FieldEvaluation evaluation{run.status.current(), 0};
    const CallingCell cell;
    if (!cell.known()) {
        return evaluation;
    }
    if (evaluation.status == RunStatus::Initialised) {
        fieldevaluation::registerField(kind, cell);
        return evaluation;
    }
    int slot = 0;
    bool reported = !fieldevaluation::findSlot(cell, slot);
    if (evaluation.status == RunStatus::Prepared && !reported) {
        const int numbered = fieldevaluation::numberField(kind, cell, slot, name, visible);
        reported = numbered == 0;
        if (!reported) {
            describe(numbered, cell, slot);
        }
    }
    evaluation.field = fieldevaluation::lookUpField(cell, slot, reported);
    return evaluation;
}

/// Whether the field has its value of this iteration already.
inline bool isDone(int field) { return run.fields.FieldTable(field, fieldcolumn::done) == 1.0; }

/// The field's value of this iteration.
inline double storedValue(int field) { return run.sampling.SampleStore(sampleRow(), field); }

/// Takes the value that a distribution or scenario variable has in this iteration into the sample store and into the
/// running moments, makes it the run's last value, and marks the field done. Before the first iteration, in row 0, the
/// store's scratch element takes it, as it does any access outside, and storedValue reads it there.
void recordInput(int field, double value);

/// The same for a result or statistic, which leaves the scratch element alone and is not the last value.
void recordOutput(int field, double value);

/// The barrier of a worksheet function: its plain value when memory runs out, which is recorded.
template <class Body, class PlainValue>
double guardedCell(Body&& body, PlainValue&& plainValue) noexcept {
    try {
        return body();
    } catch (...) {
        recordOutOfMemory();
        return plainValue();
    }
}

}  // namespace quorva
