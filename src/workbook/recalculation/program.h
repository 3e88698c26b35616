// The live part of a book, compiled for running again and again: one flat list of instructions on numbers. Whatever is
// not plain numbers (a text, a blank, an error, an overflow) makes the cell's instructions give up, and the evaluator
// computes the cell instead. Where cells run through to the end, they hold the evaluator's result to the last bit.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "workbook/evaluation/function_api.h"
#include "workbook/recalculation/book.h"
#include "workbook/recalculation/module_link.h"
#include "workbook/recalculation/slot_runs.h"

namespace quorva::workbook {

class Recalculation;

enum class Operation : std::uint8_t {
    Add,
    Subtract,
    Multiply,
    Divide,
    Power,
    Negate,
    Percent,
    // The last operation of a formula, straight into the cell: operands that nearly cancel give 0.
    ClosingAdd,
    ClosingSubtract,
    Store,
    Compare,
    And,
    Or,
    Copy,
    Jump,
    JumpUnless,
    Random,
    Call,
    CallRow,
    Sum,
    Smallest,
    Largest,
    Minimum,
    Maximum,
    SumProduct,
    PresentValue,
    CountIf,
    Model,
    Tree,
    Skip,
    End
};

/// `target`, `a` and `b` are slots, except: jumps (b: where to), ranges (a: number of a list of cells; SumProduct: of
/// the first of `count`), calls (a: number of the call), Random, Tree and Skip (a: number of the formula).
struct Instruction {
    Operation operation;
    Operator comparison{};
    std::uint16_t count = 0;
    std::int32_t target = 0;
    std::int32_t a = 0;
    std::int32_t b = 0;
};
static_assert(sizeof(Instruction) == 16);

/// Ranges that SumProduct takes.
constexpr std::size_t mostFactors = 16;

struct CompiledCall {
    const FunctionRow* row;
    std::vector<std::int32_t> operands;
};

/// A call of a model function: constant arguments are converted once, the others at each call.
struct ModelSite {
    const Node* node;
    int function;
    CellAddress cell;
    HostArguments arguments;
    std::vector<std::string> texts;
    std::vector<std::pair<std::size_t, std::int32_t>> operands;  ///< argument and the slot that it comes from
};

struct CompiledCell {
    std::int32_t begin;
    int formula;
};

struct Program {
    std::vector<Instruction> instructions;
    std::vector<CompiledCell> cells;
    std::vector<std::vector<SlotRun>> lists;
    std::vector<CompiledCall> calls;
    std::vector<ModelSite> sites;
    Slot scratch = noSlot;  ///< first of its own slots
    Slot scratchEnd = noSlot;
    bool usesClock = false;
};

std::unique_ptr<Program> compileProgram(Recalculation& recalculation);
/// Computes the live part; ends before that when an array outgrows what was compiled (Recalculation::outgrown).
void runProgram(Recalculation& recalculation, Program& program);

}  // namespace quorva::workbook
