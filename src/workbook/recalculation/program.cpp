#include "workbook/recalculation/program.h"

#include <algorithm>
#include <cmath>

#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {

namespace {

bool finite(double x) { return std::isfinite(x); }

/// Compared on 15 digits, as compareNumbers does.
bool holds(Operator comparison, double a, double b) {
    int order = a < b ? -1 : a > b ? 1 : 0;
    if (order != 0 && !(std::fabs(a - b) > 1e-14 * std::max(std::fabs(a), std::fabs(b)))) {
        order = compareNumbers(a, b);
    }
    switch (comparison) {
        case Operator::Equal:
            return order == 0;
        case Operator::Different:
            return order != 0;
        case Operator::Less:
            return order < 0;
        case Operator::LessOrEqual:
            return order <= 0;
        case Operator::Greater:
            return order > 0;
        default:
            return order >= 0;
    }
}

/// Runs instructions on the numbers of a book. Each method gives false when the cell has to be left to the evaluator.
struct Machine {
    Recalculation& recalculation;
    Program& program;
    double* slots;
    Call call;
    const ModelSite* lastSite = nullptr;
    int drawing = -1;             ///< the formula that drew the last random number
    RandomState beforeDrawing{};  ///< before its first one

    const std::vector<SlotRun>& list(std::int32_t number) const {
        return program.lists[static_cast<std::size_t>(number)];
    }

    /// A formula that the evaluator computes in the end has the random numbers that it began with: a second draw would
    /// shift the chances of whatever made it give up.
    void giveBackDraws(int formula) {
        if (drawing == formula) {
            recalculation.context.random = beforeDrawing;
        }
    }

    void draw(const Instruction& code) {
        if (drawing != code.a) {
            drawing = code.a;
            beforeDrawing = recalculation.context.random;
        }
        slots[code.target] = recalculation.context.nextRandom();
    }

    /// Stores a result; what worksheets do not calculate with (infinite, not a number, denormal) is left alone.
    bool put(const Instruction& code, double result) {
        const bool fine = isWorksheetNumber(result);
        if (fine) {
            slots[code.target] = result;
        }
        return fine;
    }

    bool callNumeric(const Instruction& code) {
        const CompiledCall& compiled = program.calls[static_cast<std::size_t>(code.a)];
        double arguments[8];
        const int count = static_cast<int>(compiled.operands.size());
        for (int i = 0; i < count; ++i) {
            arguments[i] = slots[compiled.operands[static_cast<std::size_t>(i)]];
            if (!finite(arguments[i])) {
                return false;
            }
        }
        return put(code, compiled.row->numeric(arguments, count));
    }

    bool callRow(const Instruction& code) {
        const CompiledCall& compiled = program.calls[static_cast<std::size_t>(code.a)];
        Argument arguments[8];
        for (std::size_t i = 0; i < compiled.operands.size(); ++i) {
            arguments[i].value = Value(slots[compiled.operands[i]]);
            if (arguments[i].value.isError()) {
                return false;
            }
        }
        try {
            const Allowance::Grant grant(recalculation.cells.allowance(), recalculation.context.stepLimit);
            const Value result = compiled.row->function(call, {arguments, compiled.operands.size()});
            if (!result.isNumber()) {
                return false;
            }
            slots[code.target] = result.number();
            return true;
        } catch (const Unsupported&) {
            return false;
        }
    }

    bool sum(const Instruction& code) {
        double total = slots[code.b];
        forEachOf(list(code.a), [&](std::ptrdiff_t slot) {
            total += slots[slot];
            return true;
        });
        return put(code, total);
    }

    bool extreme(const Instruction& code, bool largest) {
        double best = slots[code.b];
        const bool numbers = forEachOf(list(code.a), [&](std::ptrdiff_t slot) {
            const double x = slots[slot];
            best = largest ? (x > best ? x : best) : (x < best ? x : best);
            return x == x;
        });
        slots[code.target] = best;
        return numbers;
    }

    bool sumProduct(const Instruction& code) {
        SlotStretches factors[mostFactors];
        for (std::int32_t k = 0; k < code.count; ++k) {
            factors[k] = SlotStretches(list(code.a + k));
        }
        double total = 0;
        while (factors[0].left() > 0) {
            Slot length = factors[0].left();
            for (int k = 1; k < code.count; ++k) {
                length = std::min(length, factors[k].left());
            }
            const double* at[mostFactors];
            for (int k = 0; k < code.count; ++k) {
                at[k] = slots + factors[k].slot();
            }
            for (std::ptrdiff_t i = 0; i < length; ++i) {
                double product = at[0][i * factors[0].stride()];
                for (int k = 1; k < code.count; ++k) {
                    product *= at[k][i * factors[k].stride()];
                }
                total += product;
            }
            for (int k = 0; k < code.count; ++k) {
                factors[k].advance(length);
            }
        }
        return put(code, total);
    }

    bool presentValue(const Instruction& code) {
        const double step = 1 + slots[code.b];
        if (step == 0 || !finite(step)) {
            return false;
        }
        double discount = 1;
        double total = 0;
        forEachOf(list(code.a), [&](std::ptrdiff_t slot) {
            discount *= step;
            total += slots[slot] / discount;
            return true;
        });
        return finite(discount) && discount != 0 && put(code, total);
    }

    bool countIf(const Instruction& code) {
        int count = 0;
        const double bound = slots[code.b];
        const bool numbers = forEachOf(list(code.a), [&](std::ptrdiff_t slot) {
            const double x = slots[slot];
            count += holds(code.comparison, x, bound) ? 1 : 0;
            return x == x;
        });
        slots[code.target] = count;
        return numbers;
    }

    bool model(const Instruction& code) {
        ModelSite& site = program.sites[static_cast<std::size_t>(code.a)];
        Registered& function = *recalculation.module->function(site.function);
        for (const auto& [position, slot] : site.operands) {
            const double x = slots[slot];
            if (!finite(x) || std::fabs(x) >= 2147483648.0) {
                if (!finite(x) || function.types[position + 1] == 'J') {
                    return false;
                }
            }
            HostArgument& argument = site.arguments[position];
            argument.number = x;
            argument.integer = std::fabs(x) < 2147483648.0 ? static_cast<int>(x) : 0;
            argument.boolean = x != 0 ? 1 : 0;
        }
        const double result = flushDenormal(
            recalculation.module->call(function, site.arguments, site.cell.sheet, site.cell.row, site.cell.column));
        slots[code.target] = result;
        if (!lastSite || lastSite->cell != site.cell) {
            recalculation.module->replay.clear();
        }
        lastSite = &site;
        recalculation.module->replay.emplace_back(site.node, result);
        return finite(result);
    }

    /// Where the run stopped: at End, or behind an instruction that gave up (`gaveUp`).
    std::size_t run(std::size_t at, bool& gaveUp);
};

std::size_t Machine::run(std::size_t at, bool& gaveUp) {
    const Instruction* const code = program.instructions.data();
    for (;; ++at) {
        const Instruction& now = code[at];
        bool fine = true;
        switch (now.operation) {
            case Operation::Add:
                slots[now.target] = slots[now.a] + slots[now.b];
                break;
            case Operation::Subtract:
                slots[now.target] = slots[now.a] - slots[now.b];
                break;
            case Operation::Multiply:
                fine = put(now, slots[now.a] * slots[now.b]);
                break;
            case Operation::Divide: {
                const double divisor = slots[now.b];
                fine = put(now, slots[now.a] / divisor) && finite(divisor);
                break;
            }
            case Operation::Power: {
                const double base = slots[now.a];
                fine = base != 0 && finite(base) && finite(slots[now.b]) && put(now, raise(base, slots[now.b]));
                break;
            }
            case Operation::Negate:
                slots[now.target] = -slots[now.a];
                break;
            case Operation::Percent:
                fine = put(now, slots[now.a] / 100);
                break;
            case Operation::ClosingAdd:
                fine = put(now, closingSum(slots[now.a], slots[now.b]));
                break;
            case Operation::ClosingSubtract:
                fine = put(now, closingSum(slots[now.a], -slots[now.b]));
                break;
            case Operation::Store:
                fine = put(now, slots[now.a]);
                break;
            case Operation::Compare:
                fine = finite(slots[now.a]) && finite(slots[now.b]);
                slots[now.target] = fine && holds(now.comparison, slots[now.a], slots[now.b]) ? 1 : 0;
                break;
            case Operation::And:
            case Operation::Or: {
                fine = finite(slots[now.a]) && finite(slots[now.b]);
                const bool a = slots[now.a] != 0;
                const bool b = slots[now.b] != 0;
                slots[now.target] = (now.operation == Operation::And ? a && b : a || b) ? 1 : 0;
                break;
            }
            case Operation::Copy:
                slots[now.target] = slots[now.a];
                break;
            case Operation::Jump:
                at = static_cast<std::size_t>(now.b) - 1;
                break;
            case Operation::JumpUnless:
                fine = finite(slots[now.a]);
                if (fine && slots[now.a] == 0) {
                    at = static_cast<std::size_t>(now.b) - 1;
                }
                break;
            case Operation::Random:
                draw(now);
                break;
            case Operation::Call:
                fine = callNumeric(now);
                break;
            case Operation::CallRow:
                fine = callRow(now);
                break;
            case Operation::Sum:
                fine = sum(now);
                break;
            case Operation::Smallest:
                fine = extreme(now, false);
                break;
            case Operation::Largest:
                fine = extreme(now, true);
                break;
            case Operation::Minimum:
            case Operation::Maximum: {
                const double a = slots[now.a];
                const double b = slots[now.b];
                fine = finite(a) && finite(b);
                slots[now.target] = (now.operation == Operation::Minimum ? b < a : b > a) ? b : a;
                break;
            }
            case Operation::SumProduct:
                fine = sumProduct(now);
                break;
            case Operation::PresentValue:
                fine = presentValue(now);
                break;
            case Operation::CountIf:
                fine = countIf(now);
                break;
            case Operation::Model:
                fine = model(now);
                break;
            case Operation::Tree:
                fine = false;
                break;
            case Operation::Skip:
                if (recalculation.computed(now.a)) {
                    at = static_cast<std::size_t>(now.b) - 1;
                } else {
                    recalculation.markComputed(now.a);
                }
                break;
            case Operation::End:
                gaveUp = false;
                return at;
        }
        if (!fine) {
            gaveUp = true;
            return at;
        }
    }
}

}  // namespace

void runProgram(Recalculation& recalculation, Program& program) {
    Machine machine{recalculation, program, recalculation.cells.numbers(), Call{recalculation.cells}};
    machine.call.date1904 = recalculation.raw->date1904;
    Evaluator evaluator(recalculation.context, 0, 0, 0, false);
    machine.call.evaluator = &evaluator;
    std::size_t at = 0;
    if (recalculation.module) {
        recalculation.module->replay.clear();
    }
    for (;;) {
        bool gaveUp = false;
        at = machine.run(at, gaveUp);
        if (!gaveUp) {
            return;
        }
        const auto cell = std::prev(std::upper_bound(program.cells.begin(), program.cells.end(), at,
                                                     [](std::size_t position, const CompiledCell& one) {
                                                         return position < static_cast<std::size_t>(one.begin);
                                                     }));
        machine.giveBackDraws(cell->formula);
        recalculation.computeLive(cell->formula, program.instructions[at].operation != Operation::Tree);
        if (recalculation.module) {
            recalculation.module->replay.clear();
        }
        if (recalculation.outgrown()) {
            std::for_each(program.cells.begin(), cell,
                          [&](const CompiledCell& one) { recalculation.markComputed(one.formula); });
            return;
        }
        machine.slots = recalculation.cells.numbers();
        const auto next = std::next(cell);
        if (next == program.cells.end()) {
            return;
        }
        at = static_cast<std::size_t>(next->begin);
    }
}

}  // namespace quorva::workbook
