// How much of the thread's stack is left: formulas nest as deeply as their authors please.
#pragma once

namespace quorva::workbook {

/// At least half of the stack: formulas that a formula turns out to need may be computed on top of it.
bool roomForFormulas();
/// At least a quarter: the evaluation of a formula may go deeper.
bool roomForEvaluation();

}  // namespace quorva::workbook
