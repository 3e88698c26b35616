// The plan of the tornado and spider analysis, which the input fields step through as they are evaluated.
#pragma once

namespace quorva {

/// The value of an input field (distribution or scenario variable) in the case being calculated: its point when the
/// field is under study, else its base value. The first input evaluated becomes the clock, whose later evaluations
/// advance the plan.
double tornadoInput(int field);

/// Stores the value of a result field in the case being calculated.
void recordTornadoResult(int field, double value);

}  // namespace quorva
