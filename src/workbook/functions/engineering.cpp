#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> engineeringFunctions() { return {}; }

}  // namespace quorva::workbook
