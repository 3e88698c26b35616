#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> dateFunctions() { return {}; }

}  // namespace quorva::workbook
