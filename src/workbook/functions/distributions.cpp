#include "workbook/functions/families.h"

namespace quorva::workbook {

std::span<const FunctionRow> distributionFunctions() { return {}; }

}  // namespace quorva::workbook
