#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> financeFunctions() { return {}; }

}  // namespace quorva::workbook
