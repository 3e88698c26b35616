#include "workbook/recalculation/program.h"

#include <algorithm>
#include <boost/container/static_vector.hpp>
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
/// The methods stay out of line: inlined, they take the registers that the loop over the instructions needs.
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

    [[gnu::noinline]] void draw(const Instruction& code) {
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

    [[gnu::noinline]] bool callNumeric(const Instruction& code) {
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

    [[gnu::noinline]] bool callRow(const Instruction& code) {
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

    [[gnu::noinline]] bool sum(const Instruction& code) {
        double total = slots[code.b];
        forEachOf(list(code.a), [&](std::ptrdiff_t slot) {
            total += slots[slot];
            return true;
        });
        return put(code, total);
    }

    [[gnu::noinline]] bool extreme(const Instruction& code, bool largest) {
        double best = slots[code.b];
        const bool numbers = forEachOf(list(code.a), [&](std::ptrdiff_t slot) {
            const double x = slots[slot];
            best = largest ? (x > best ? x : best) : (x < best ? x : best);
            return x == x;
        });
        slots[code.target] = best;
        return numbers;
    }

    [[gnu::noinline]] bool sumProduct(const Instruction& code) {
        boost::container::static_vector<SlotStretches, mostFactors> factors;
        for (std::int32_t k = 0; k < code.count; ++k) {
            factors.emplace_back(list(code.a + k));
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

    [[gnu::noinline]] bool presentValue(const Instruction& code) {
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

    [[gnu::noinline]] bool countIf(const Instruction& code) {
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

    [[gnu::noinline]] bool model(const Instruction& code) {
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
    [[gnu::noinline]] std::size_t run(std::size_t at, bool& gaveUp);
};

std::size_t Machine::run(std::size_t at, bool& gaveUp) {
    const Instruction* const code = program.instructions.data();
    const Instruction* next = code + at;
    for (;; ++next) {
        const Instruction& now = *next;
        // A case that goes on continues; one that breaks gives up.
        switch (now.operation) {
            case Operation::Add:
                slots[now.target] = slots[now.a] + slots[now.b];
                continue;
            case Operation::Subtract:
                slots[now.target] = slots[now.a] - slots[now.b];
                continue;
            case Operation::Multiply:
                if (put(now, slots[now.a] * slots[now.b])) {
                    continue;
                }
                break;
            case Operation::Divide: {
                const double divisor = slots[now.b];
                if (put(now, slots[now.a] / divisor) && finite(divisor)) {
                    continue;
                }
                break;
            }
            case Operation::Power: {
                const double base = slots[now.a];
                if (base != 0 && finite(base) && finite(slots[now.b]) && put(now, raise(base, slots[now.b]))) {
                    continue;
                }
                break;
            }
            case Operation::Negate:
                slots[now.target] = -slots[now.a];
                continue;
            case Operation::Percent:
                if (put(now, slots[now.a] / 100)) {
                    continue;
                }
                break;
            case Operation::ClosingAdd:
                if (put(now, closingSum(slots[now.a], slots[now.b]))) {
                    continue;
                }
                break;
            case Operation::ClosingSubtract:
                if (put(now, closingSum(slots[now.a], -slots[now.b]))) {
                    continue;
                }
                break;
            case Operation::Store:
                if (put(now, slots[now.a])) {
                    continue;
                }
                break;
            case Operation::Compare:
                if (finite(slots[now.a]) && finite(slots[now.b])) {
                    slots[now.target] = holds(now.comparison, slots[now.a], slots[now.b]) ? 1 : 0;
                    continue;
                }
                break;
            case Operation::And:
            case Operation::Or: {
                const bool a = slots[now.a] != 0;
                const bool b = slots[now.b] != 0;
                slots[now.target] = (now.operation == Operation::And ? a && b : a || b) ? 1 : 0;
                if (finite(slots[now.a]) && finite(slots[now.b])) {
                    continue;
                }
                break;
            }
            case Operation::Copy:
                slots[now.target] = slots[now.a];
                continue;
            case Operation::Jump:
                next = code + now.b - 1;
                continue;
            case Operation::JumpUnless:
                if (finite(slots[now.a])) {
                    next = slots[now.a] == 0 ? code + now.b - 1 : next;
                    continue;
                }
                break;
            case Operation::Random:
                draw(now);
                continue;
            case Operation::Call:
                if (callNumeric(now)) {
                    continue;
                }
                break;
            case Operation::CallRow:
                if (callRow(now)) {
                    continue;
                }
                break;
            case Operation::Sum:
                if (sum(now)) {
                    continue;
                }
                break;
            case Operation::Smallest:
            case Operation::Largest:
                if (extreme(now, now.operation == Operation::Largest)) {
                    continue;
                }
                break;
            case Operation::Minimum: {
                const double a = slots[now.a];
                const double b = slots[now.b];
                slots[now.target] = b < a ? b : a;
                if (finite(a) && finite(b)) {
                    continue;
                }
                break;
            }
            case Operation::Maximum: {
                const double a = slots[now.a];
                const double b = slots[now.b];
                slots[now.target] = b > a ? b : a;
                if (finite(a) && finite(b)) {
                    continue;
                }
                break;
            }
            case Operation::SumProduct:
                if (sumProduct(now)) {
                    continue;
                }
                break;
            case Operation::PresentValue:
                if (presentValue(now)) {
                    continue;
                }
                break;
            case Operation::CountIf:
                if (countIf(now)) {
                    continue;
                }
                break;
            case Operation::Model:
                if (model(now)) {
                    continue;
                }
                break;
            case Operation::Tree:
                break;
            case Operation::Skip:
                if (recalculation.computed(now.a)) {
                    next = code + now.b - 1;
                } else {
                    recalculation.markComputed(now.a);
                }
                continue;
            case Operation::End:
                gaveUp = false;
                return static_cast<std::size_t>(next - code);
        }
        gaveUp = true;
        return static_cast<std::size_t>(next - code);
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
