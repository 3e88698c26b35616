#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> conditionalFunctions() { return {}; }

}  // namespace quorva::workbook
