// Turns the trees of live formulas into instructions. A formula that the instructions could not compute exactly as the
// evaluator does is left to it.
#pragma once

#include <map>
#include <optional>

#include "workbook/recalculation/program.h"
#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {

class Compiler {
public:
    explicit Compiler(Recalculation& recalculation);
    std::unique_ptr<Program> compile();

private:
    struct Operand {
        std::int32_t slot;
        bool boolean = false;
    };
    using Compiled = std::optional<Operand>;

    bool formula(const Formula& formula);
    Compiled expression(const Node& node);
    Compiled reference(const Node& node);
    Compiled binary(const Node& node);
    Compiled branch(const Node& node);
    Compiled call(const Node& node);
    Compiled sum(const Node& node);
    Compiled extreme(const Node& node, bool largest);
    Compiled average(const Node& node);
    Compiled sumProduct(const Node& node);
    Compiled presentValue(const Node& node);
    Compiled countIf(const Node& node);
    Compiled conjunction(const Node& node, Operation operation);
    Compiled model(const Node& node);

    bool numbersOf(const Node& node, SlotPacker& slots, bool keepOthers = false);
    bool mayReferToOthers(const Node& node) const;
    Compiled listed(const Node& node);
    Operand emit(Operation operation, std::int32_t a = 0, std::int32_t b = 0, Operator comparison = {});
    void finish(std::int32_t result, Slot cell, bool sumOfTwo);
    Operand constant(double number);
    std::int32_t temporary();
    int list(SlotPacker& slots);
    bool liveSlot(Slot slot) const;
    bool holdsNumber(Slot slot) const;

    Recalculation& recalculation_;
    std::unique_ptr<Program> program_ = std::make_unique<Program>();
    std::map<std::uint64_t, std::int32_t> constants_;  ///< slots by the bits of the number: 0 and -0 differ
    std::vector<double> scratchValues_;
    std::int32_t base_ = 0;
    int temporaries_ = 0;
    bool tooManyTemporaries_ = false;
    std::vector<bool> spilled_;  ///< by slot: an array of the live part fills the cell, or has filled it
    const Formula* formula_ = nullptr;
};

}  // namespace quorva::workbook
