#include "workbook/module_link.h"

namespace quorva::workbook {

Value callModel(ModuleLink&, Evaluator&, const Node&) { return ErrorCode::Name; }

}  // namespace quorva::workbook
