// Turns the trees of live formulas into instructions.
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
    Compiled folded(const Node& node, Operation scalar, Operation range, double start);
    Compiled average(const Node& node);
    Compiled sumProduct(const Node& node);
    Compiled presentValue(const Node& node);
    Compiled countIf(const Node& node);
    Compiled conjunction(const Node& node, Operation operation);
    Compiled model(const Node& node);

    /// The slots of the numbers in a written range: cells that can only hold numbers now, and live ones.
    bool numbersOf(const Node& node, std::vector<std::int32_t>& slots, bool keepOthers = false);
    Operand emit(Operation operation, std::int32_t a = 0, std::int32_t b = 0, Operator comparison = {});
    void finish(std::int32_t result, Slot cell, bool sumOfTwo);
    Operand constant(double number);
    std::int32_t temporary();
    int list(std::vector<std::int32_t> slots);
    bool liveSlot(Slot slot) const;

    Recalculation& recalculation_;
    std::unique_ptr<Program> program_ = std::make_unique<Program>();
    std::map<double, std::int32_t> constants_;
    std::vector<double> scratchValues_;
    std::int32_t base_ = 0;
    int temporaries_ = 0;
    const Formula* formula_ = nullptr;
};

}  // namespace quorva::workbook
