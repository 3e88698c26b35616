// The module's functions as this host knows and calls them.
#pragma once

#include "workbook/evaluator.h"

namespace quorva::workbook {

class Workings;

struct ModuleLink {
    Workings* workings = nullptr;
};

Value callModel(ModuleLink& link, Evaluator& evaluator, const Node& node);

}  // namespace quorva::workbook
