// Field numbers in name order.
#pragma once

namespace quorva {

/// Renumbers the described fields so that field number r is the r-th name in code unit order: permutes FieldTable and
/// FieldNames, and records in FieldOrder where each old number went.
void renumberInNameOrder();

/// Writes the field numbers into the grids, at the cells that FieldTable holds.
void enterFieldsInGrids();

}  // namespace quorva
