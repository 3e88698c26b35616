// References as values: what the evaluator and the calls of functions share.
#pragma once

#include "workbook/evaluation/function_api.h"

namespace quorva::workbook {

/// The one cell of a reference that belongs to the calling cell's row or column; #VALUE! when there is none.
Value intersectReference(const Call& call, const Value& reference);
/// The values of a reference: a scalar for one cell, else an array; #VALUE! for several areas.
Value readReference(const Call& call, const Value& reference);

/// An array of references can only be taken apart by functions that want ranges (SUMIF, SUBTOTAL ...), N and T;
/// anything else throws Unsupported.
void refuseReferenceArray(const Value& value);

}  // namespace quorva::workbook
