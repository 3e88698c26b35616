#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> statisticsFunctions() { return {}; }

}  // namespace quorva::workbook
