#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> arrayFunctions() { return {}; }

}  // namespace quorva::workbook
