#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> databaseFunctions() { return {}; }

}  // namespace quorva::workbook
