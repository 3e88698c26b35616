// The row sort that every ranking of the system uses.
#pragma once

#include <string>

#include "common/matrix.h"

namespace quorva {

/// Sorts the first `count` rows by the 1-based column `keyColumn`, carrying the other columns along. Stable; strings
/// compare by code unit, NaN keys come last. `ignored` is accepted and not used. `rows` and `cols` are the matrix's
/// dimensions; above 50,000 elements the other columns are rearranged by two tasks, joined before return.
void SortQMatrixCol(matrix<double>& table, int rows, int cols, int keyColumn, int ignored, int count, bool descending);
void SortQMatrixCol(matrix<std::u16string>& table, int rows, int cols, int keyColumn, int ignored, int count,
                    bool descending);

}  // namespace quorva
