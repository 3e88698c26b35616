#include "workbook/recalculation/compiler.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace quorva::workbook {

namespace {
constexpr int mostTemporaries = 400;
constexpr std::size_t mostOperands = 8;

bool isCall(const Node& node, std::string_view name) {
    return node.kind == Node::Kind::TableCall && node.row->name == name;
}

/// Whether the operation stores numbers only, so that it may write into a cell.
bool checksItsResult(Operation operation) {
    switch (operation) {
        case Operation::Multiply:
        case Operation::Divide:
        case Operation::Power:
        case Operation::Percent:
        case Operation::Call:
        case Operation::Sum:
        case Operation::SumProduct:
        case Operation::PresentValue:
            return true;
        default:
            return false;
    }
}
}  // namespace

Compiler::Compiler(Recalculation& recalculation) : recalculation_(recalculation) {
    base_ = recalculation.cells.slotCount();
    scratchValues_.assign(mostTemporaries, std::numeric_limits<double>::quiet_NaN());
    spilled_.resize(static_cast<std::size_t>(base_));
    for (const Formula& one : recalculation.formulas) {
        for (const Area& block : one.reach) {
            if (one.live && !one.removed && !block.single()) {
                recalculation.cells.forEachSlot(
                    block, [&](int, int, Slot slot) { spilled_[static_cast<std::size_t>(slot)] = true; });
            }
        }
    }
}

std::unique_ptr<Program> Compiler::compile() {
    Program& program = *program_;
    for (const int index : recalculation_.liveOrder) {
        const Formula& one = recalculation_.formulas[static_cast<std::size_t>(index)];
        const auto begin = static_cast<std::int32_t>(program.instructions.size());
        program.cells.push_back({begin, index});
        if (recalculation_.anyDynamic()) {
            program.instructions.push_back({Operation::Skip, {}, 0, 0, index, 0});
        }
        const std::size_t lists = program.lists.size();
        const std::size_t calls = program.calls.size();
        const std::size_t sites = program.sites.size();
        if (!formula(one)) {
            program.instructions.resize(static_cast<std::size_t>(begin));
            program.lists.resize(lists);
            program.calls.resize(calls);
            program.sites.resize(sites);
            program.instructions.push_back({Operation::Tree, {}, 0, 0, index, 0});
            program.usesClock = true;
        } else if (recalculation_.anyDynamic()) {
            program.instructions[static_cast<std::size_t>(begin)].b =
                static_cast<std::int32_t>(program.instructions.size());
        }
    }
    program.instructions.push_back({Operation::End, {}, 0, 0, 0, 0});
    program.scratch = recalculation_.cells.appendScratch(scratchValues_.size());
    program.scratchEnd = recalculation_.cells.slotCount();
    std::copy(scratchValues_.begin(), scratchValues_.end(), recalculation_.cells.numbers() + program.scratch);
    return std::move(program_);
}

bool Compiler::formula(const Formula& one) {
    formula_ = &one;
    temporaries_ = 0;
    tooManyTemporaries_ = false;
    // A tree so deep would take a temporary for each of its levels: its walk can be spared.
    if (!one.spill.single() || one.kind == FormulaKind::Array || recalculation_.raw->precisionAsDisplayed ||
        one.tree.depth >= mostTemporaries) {
        return false;
    }
    const Compiled result = expression(one.tree);
    if (!result || result->boolean || tooManyTemporaries_) {
        return false;
    }
    const bool sumOfTwo = one.tree.kind == Node::Kind::Binary && !one.tree.parenthesised &&
                          (one.tree.op == Operator::Add || one.tree.op == Operator::Subtract);
    finish(result->slot, one.slot, sumOfTwo);
    return true;
}

/// Stores the result, or lets the last operation store it itself.
void Compiler::finish(std::int32_t result, Slot cell, bool sumOfTwo) {
    const bool emitted = !program_->instructions.empty();
    Instruction none{Operation::End};
    Instruction& last = emitted ? program_->instructions.back() : none;
    const bool fresh = last.target == result && result >= base_ && result < base_ + mostTemporaries;
    if (fresh && sumOfTwo && (last.operation == Operation::Add || last.operation == Operation::Subtract)) {
        last.operation = last.operation == Operation::Add ? Operation::ClosingAdd : Operation::ClosingSubtract;
        last.target = cell;
    } else if (fresh && checksItsResult(last.operation)) {
        last.target = cell;
    } else {
        program_->instructions.push_back({Operation::Store, {}, 0, cell, result, 0});
    }
}

/// A slot for a result inside the formula. Past the last one the formula cannot be compiled, which formula() sees to.
std::int32_t Compiler::temporary() {
    if (temporaries_ == mostTemporaries) {
        tooManyTemporaries_ = true;
        return base_;
    }
    return base_ + temporaries_++;
}

Compiler::Operand Compiler::emit(Operation operation, std::int32_t a, std::int32_t b, Operator comparison) {
    const std::int32_t target = temporary();
    program_->instructions.push_back({operation, comparison, 0, target, a, b});
    return {target, false};
}

Compiler::Operand Compiler::constant(double number) {
    const auto [found, added] = constants_.emplace(std::bit_cast<std::uint64_t>(number),
                                                   base_ + static_cast<std::int32_t>(scratchValues_.size()));
    if (added) {
        scratchValues_.push_back(number);
    }
    return {found->second, false};
}

int Compiler::list(SlotPacker& slots) {
    program_->lists.push_back(slots.take());
    return static_cast<int>(program_->lists.size()) - 1;
}

bool Compiler::liveSlot(Slot slot) const {
    const int formula = recalculation_.formulaAt(slot);
    return spilled_[static_cast<std::size_t>(slot)] ||
           (formula >= 0 && recalculation_.formulas[static_cast<std::size_t>(formula)].live);
}

/// A number now, or something that is looked at when it is needed.
bool Compiler::holdsNumber(Slot slot) const { return liveSlot(slot) || recalculation_.cells.isNumber(slot); }

Compiler::Compiled Compiler::expression(const Node& node) {
    switch (node.kind) {
        case Node::Kind::Constant:
            if (node.value.isNumber()) {
                return constant(node.value.number());
            }
            if (node.value.isBoolean()) {
                return Operand{constant(node.value.boolean() ? 1 : 0).slot, true};
            }
            return std::nullopt;
        case Node::Kind::Reference:
            return reference(node);
        case Node::Kind::Unary: {
            const Compiled inner = expression(node.children[0]);
            if (!inner || node.op == Operator::Plus) {
                return inner;
            }
            return emit(node.op == Operator::Negate ? Operation::Negate : Operation::Percent, inner->slot);
        }
        case Node::Kind::Binary:
            return binary(node);
        case Node::Kind::LazyCall:
            return node.lazy == LazyFunction::If && node.children.size() == 3 ? branch(node) : std::nullopt;
        case Node::Kind::TableCall:
            return call(node);
        case Node::Kind::ModelCall:
            return model(node);
        default:
            return std::nullopt;
    }
}

Compiler::Compiled Compiler::reference(const Node& node) {
    const auto& areas = node.value.areas();
    if (areas.size() != 1 || !areas[0].single()) {
        return std::nullopt;
    }
    const Slot slot = recalculation_.cells.find(areas[0].sheet, areas[0].firstRow, areas[0].firstColumn);
    if (slot == noSlot) {
        return constant(0);
    }
    if (holdsNumber(slot)) {
        return Operand{slot, false};
    }
    const Value& fixed = recalculation_.cells.other(slot);
    if (fixed.isBlank()) {
        return constant(0);
    }
    return fixed.isBoolean() ? Compiled(Operand{constant(fixed.boolean() ? 1 : 0).slot, true}) : std::nullopt;
}

Compiler::Compiled Compiler::binary(const Node& node) {
    if (node.op >= Operator::Negate || node.op == Operator::Concat) {
        return std::nullopt;
    }
    const Compiled left = expression(node.children[0]);
    const Compiled right = left ? expression(node.children[1]) : std::nullopt;
    if (!left || !right) {
        return std::nullopt;
    }
    switch (node.op) {
        case Operator::Add:
            return emit(Operation::Add, left->slot, right->slot);
        case Operator::Subtract:
            return emit(Operation::Subtract, left->slot, right->slot);
        case Operator::Multiply:
            return emit(Operation::Multiply, left->slot, right->slot);
        case Operator::Divide:
            return emit(Operation::Divide, left->slot, right->slot);
        case Operator::Power:
            return emit(Operation::Power, left->slot, right->slot);
        default:
            if (left->boolean || right->boolean) {
                return std::nullopt;  // Booleans order after numbers
            }
            Operand result = emit(Operation::Compare, left->slot, right->slot, node.op);
            result.boolean = true;
            return result;
    }
}

Compiler::Compiled Compiler::branch(const Node& node) {
    const Compiled condition = expression(node.children[0]);
    if (!condition) {
        return std::nullopt;
    }
    const std::int32_t target = temporary();
    auto& code = program_->instructions;
    const std::size_t unless = code.size();
    code.push_back({Operation::JumpUnless, {}, 0, 0, condition->slot, 0});
    const Compiled yes = expression(node.children[1]);
    if (!yes || node.children[1].kind == Node::Kind::Missing) {
        return std::nullopt;
    }
    code.push_back({Operation::Copy, {}, 0, target, yes->slot, 0});
    const std::size_t jump = code.size();
    code.push_back({Operation::Jump, {}, 0, 0, 0, 0});
    code[unless].b = static_cast<std::int32_t>(code.size());
    const Compiled no = expression(node.children[2]);
    if (!no || no->boolean != yes->boolean) {
        return std::nullopt;
    }
    code.push_back({Operation::Copy, {}, 0, target, no->slot, 0});
    code[jump].b = static_cast<std::int32_t>(code.size());
    return Operand{target, yes->boolean};
}

/// Adds the slots of the numbers in a written range: cells that can only hold numbers now, and live ones. False when
/// one of the other cells is an error; with `keepOthers`, unless all of them are blank.
bool Compiler::numbersOf(const Node& node, SlotPacker& slots, bool keepOthers) {
    if (node.kind != Node::Kind::Reference) {
        return false;
    }
    bool fits = true;
    for (const Area& area : node.value.areas()) {
        recalculation_.cells.forEachSlot(area, [&](int, int, Slot slot) {
            if (holdsNumber(slot)) {
                slots.add(slot);
            } else {
                const Value& other = recalculation_.cells.other(slot);
                fits = !other.isError() && (!keepOthers || other.isBlank());
            }
            return fits;
        });
    }
    return fits;
}

/// Whether the value may be a reference to a cell that never holds a number. In a list such as SUM's it is left out,
/// where the same value written directly would count.
bool Compiler::mayReferToOthers(const Node& node) const {
    if (node.kind == Node::Kind::LazyCall) {
        return std::any_of(node.children.begin(), node.children.end(),
                           [&](const Node& child) { return mayReferToOthers(child); });
    }
    if (node.kind != Node::Kind::Reference) {
        return false;
    }
    const Area& area = node.value.areas()[0];
    const Slot slot = recalculation_.cells.find(area.sheet, area.firstRow, area.firstColumn);
    return slot == noSlot || !holdsNumber(slot);
}

/// One of the values that SUM, MIN, AND and their kind take, when it is no range.
Compiler::Compiled Compiler::listed(const Node& node) {
    return node.kind == Node::Kind::Missing || mayReferToOthers(node) ? std::nullopt : expression(node);
}

Compiler::Compiled Compiler::call(const Node& node) {
    if (isCall(node, "SUM")) {
        return sum(node);
    }
    if (isCall(node, "MIN") || isCall(node, "MAX")) {
        return extreme(node, isCall(node, "MAX"));
    }
    if (isCall(node, "AVERAGE")) {
        return average(node);
    }
    if (isCall(node, "SUMPRODUCT")) {
        return sumProduct(node);
    }
    if (isCall(node, "NPV")) {
        return presentValue(node);
    }
    if (isCall(node, "COUNTIF")) {
        return countIf(node);
    }
    if (isCall(node, "AND") || isCall(node, "OR")) {
        return conjunction(node, isCall(node, "AND") ? Operation::And : Operation::Or);
    }
    if (isCall(node, "RAND")) {
        return emit(Operation::Random, recalculation_.formulaAt(formula_->slot));
    }
    if (node.row->kinds.find_first_not_of("N") != std::string_view::npos || node.row->kinds.empty() ||
        node.children.empty() || node.children.size() > mostOperands || node.row->volatility == Volatility::Volatile) {
        return std::nullopt;
    }
    CompiledCall compiled{node.row, {}};
    for (const Node& child : node.children) {
        const Compiled operand = child.kind == Node::Kind::Missing ? std::nullopt : expression(child);
        if (!operand || (operand->boolean && node.row->refusesRanges)) {
            return std::nullopt;  // functions that refuse ranges refuse Booleans too
        }
        compiled.operands.push_back(operand->slot);
    }
    program_->calls.push_back(std::move(compiled));
    const auto number = static_cast<std::int32_t>(program_->calls.size()) - 1;
    return emit(node.row->numeric ? Operation::Call : Operation::CallRow, number);
}

/// Numbers are added to the total one by one, from 0 on, as the evaluator does.
Compiler::Compiled Compiler::sum(const Node& node) {
    Operand total = constant(0);
    SlotPacker cells;
    const auto addCells = [&] {
        if (cells.size() > 0) {
            total = emit(Operation::Sum, list(cells), total.slot);
        }
    };
    for (const Node& child : node.children) {
        if (child.kind == Node::Kind::Reference) {
            if (!numbersOf(child, cells)) {
                return std::nullopt;
            }
            continue;
        }
        addCells();
        const Compiled next = listed(child);
        if (!next) {
            return std::nullopt;
        }
        total = emit(Operation::Add, total.slot, next->slot);
    }
    addCells();
    return total;
}

Compiler::Compiled Compiler::extreme(const Node& node, bool largest) {
    const double start = (largest ? -1 : 1) * std::numeric_limits<double>::infinity();
    Compiled best;
    for (const Node& child : node.children) {
        Compiled next;
        if (child.kind == Node::Kind::Reference) {
            SlotPacker cells;
            if (!numbersOf(child, cells)) {
                return std::nullopt;
            }
            if (cells.size() == 0) {
                continue;
            }
            const Slot first = cells.first();
            next = cells.size() == 1
                       ? Operand{first, false}
                       : emit(largest ? Operation::Largest : Operation::Smallest, list(cells), constant(start).slot);
        } else {
            next = listed(child);
        }
        if (!next) {
            return std::nullopt;
        }
        best = best ? emit(largest ? Operation::Maximum : Operation::Minimum, best->slot, next->slot)
                    : Operand{next->slot, false};
    }
    return best;
}

Compiler::Compiled Compiler::average(const Node& node) {
    SlotPacker cells;
    if (node.children.size() != 1 || !numbersOf(node.children[0], cells) || cells.size() == 0) {
        return std::nullopt;
    }
    const auto count = static_cast<double>(cells.size());
    const Operand total = emit(Operation::Sum, list(cells), constant(0).slot);
    return emit(Operation::Divide, total.slot, constant(count).slot);
}

Compiler::Compiled Compiler::sumProduct(const Node& node) {
    if (node.children.size() > mostFactors) {
        return std::nullopt;
    }
    int first = 0;
    for (const Node& child : node.children) {
        SlotPacker cells;
        if (child.kind != Node::Kind::Reference || child.value.areas().size() != 1 || !numbersOf(child, cells, true)) {
            return std::nullopt;
        }
        const Area& area = child.value.areas()[0];
        const Area& shape = node.children[0].value.areas()[0];
        // Every cell must hold a number, so that the arrays run side by side.
        if (area.rows() != shape.rows() || area.columns() != shape.columns() ||
            cells.size() != static_cast<std::size_t>(area.rows()) * area.columns()) {
            return std::nullopt;
        }
        const int number = list(cells);
        first = &child == node.children.data() ? number : first;
    }
    const Operand result = emit(Operation::SumProduct, first);
    program_->instructions.back().count = static_cast<std::uint16_t>(node.children.size());
    return result;
}

Compiler::Compiled Compiler::presentValue(const Node& node) {
    SlotPacker cells;
    if (node.children.size() != 2 || !numbersOf(node.children[1], cells)) {
        return std::nullopt;
    }
    const Compiled rate = expression(node.children[0]);
    return rate ? Compiled(emit(Operation::PresentValue, list(cells), rate->slot)) : std::nullopt;
}

/// COUNTIF with a condition such as "<0" that is written in the formula.
Compiler::Compiled Compiler::countIf(const Node& node) {
    const Value& condition = node.children[1].value;
    SlotPacker cells;
    if (node.children[1].kind != Node::Kind::Constant || !condition.isText() ||
        !numbersOf(node.children[0], cells, true) || node.children[0].value.areas().size() != 1) {
        return std::nullopt;
    }
    std::string_view text = condition.text();
    Operator comparison = Operator::Equal;
    const std::pair<std::string_view, Operator> operators[] = {{"<=", Operator::LessOrEqual},
                                                               {">=", Operator::GreaterOrEqual},
                                                               {"<", Operator::Less},
                                                               {">", Operator::Greater}};
    for (const auto& [written, op] : operators) {
        if (text.starts_with(written)) {
            comparison = op;
            text.remove_prefix(written.size());
            break;
        }
    }
    const auto number = parsePlainNumber(text);
    if (!number || comparison == Operator::Equal) {
        return std::nullopt;
    }
    const Operand bound = constant(*number);
    return emit(Operation::CountIf, list(cells), bound.slot, comparison);
}

Compiler::Compiled Compiler::conjunction(const Node& node, Operation operation) {
    Compiled total;
    for (const Node& child : node.children) {
        if (child.kind == Node::Kind::Reference) {
            return std::nullopt;  // blanks and texts in cells are left out
        }
        const Compiled next = listed(child);
        if (!next) {
            return std::nullopt;
        }
        total = emit(operation, total ? total->slot : next->slot, next->slot);
    }
    if (total) {
        total->boolean = true;
    }
    return total;
}

Compiler::Compiled Compiler::model(const Node& node) {
    Registered* function = recalculation_.module ? recalculation_.module->function(node.index) : nullptr;
    if (!function || !function->address || formula_->cell.row > 0xFFFF || formula_->cell.column > 0xFF) {
        return std::nullopt;
    }
    const std::size_t count = function->types.size() - 1;
    if (node.children.size() != count || function->types.find_first_of("RO") != std::string::npos) {
        return std::nullopt;
    }
    ModelSite site{&node, node.index, formula_->cell, {}, {}, {}};
    site.texts.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Node& child = node.children[i];
        const char letter = function->types[i + 1];
        const bool fixed = child.kind == Node::Kind::Constant || child.kind == Node::Kind::Missing;
        if (fixed && !child.value.isArray()) {
            if (!convertArgument(letter, child.value, recalculation_.raw->date1904, site.arguments[i], site.texts[i])) {
                return std::nullopt;
            }
            continue;
        }
        const Compiled operand = letter == 'F' ? std::nullopt : expression(child);
        if (!operand) {
            return std::nullopt;
        }
        site.operands.emplace_back(i, operand->slot);
    }
    program_->sites.push_back(std::move(site));
    return emit(Operation::Model, static_cast<std::int32_t>(program_->sites.size()) - 1);
}

std::unique_ptr<Program> compileProgram(Recalculation& recalculation) { return Compiler(recalculation).compile(); }

}  // namespace quorva::workbook
