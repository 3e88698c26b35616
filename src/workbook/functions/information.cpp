#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> informationFunctions() { return {}; }

}  // namespace quorva::workbook
