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
        const double result = compiled.row->numeric(arguments, count);
        slots[code.target] = result;
        return finite(result);
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
        const Value result = compiled.row->function(call, {arguments, compiled.operands.size()});
        slots[code.target] = result.number();
        return result.isNumber();
    }

    bool extreme(const Instruction& code, bool largest) {
        double best = slots[code.b];
        for (const std::int32_t slot : program.lists[static_cast<std::size_t>(code.a)]) {
            const double x = slots[slot];
            if (x != x) {
                return false;
            }
            best = largest ? (x > best ? x : best) : (x < best ? x : best);
        }
        slots[code.target] = best;
        return true;
    }

    void sumProduct(const Instruction& code) {
        const std::int32_t* cells = program.lists[static_cast<std::size_t>(code.a)].data();
        double total = 0;
        for (int i = 0; i < code.b; ++i) {
            double product = slots[cells[i]];
            for (int k = 1; k < code.count; ++k) {
                product *= slots[cells[k * code.b + i]];
            }
            total += product;
        }
        slots[code.target] = total;
    }

    bool presentValue(const Instruction& code) {
        const double step = 1 + slots[code.b];
        if (step == 0 || !finite(step)) {
            return false;
        }
        double discount = 1;
        double total = 0;
        for (const std::int32_t slot : program.lists[static_cast<std::size_t>(code.a)]) {
            discount *= step;
            total += slots[slot] / discount;
        }
        slots[code.target] = total;
        return finite(discount) && discount != 0;
    }

    bool countIf(const Instruction& code) {
        int count = 0;
        const double bound = slots[code.b];
        for (const std::int32_t slot : program.lists[static_cast<std::size_t>(code.a)]) {
            const double x = slots[slot];
            if (x != x) {
                return false;
            }
            count += holds(code.comparison, x, bound) ? 1 : 0;
        }
        slots[code.target] = count;
        return true;
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
        const double result =
            recalculation.module->call(function, site.arguments, site.cell.sheet, site.cell.row, site.cell.column);
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
                slots[now.target] = slots[now.a] * slots[now.b];
                break;
            case Operation::Divide: {
                const double divisor = slots[now.b];
                slots[now.target] = slots[now.a] / divisor;
                fine = divisor != 0 && finite(divisor);
                break;
            }
            case Operation::Power: {
                const double base = slots[now.a];
                slots[now.target] = std::pow(base, slots[now.b]);
                fine = base != 0 && finite(base) && finite(slots[now.b]);
                break;
            }
            case Operation::Negate:
                slots[now.target] = -slots[now.a];
                break;
            case Operation::Percent:
                slots[now.target] = slots[now.a] / 100;
                break;
            case Operation::AddToCell:
            case Operation::SubtractToCell: {
                const double b = slots[now.b];
                const double result = now.operation == Operation::AddToCell ? slots[now.a] + b : slots[now.a] - b;
                // What vanishes on 15 digits is 0 there; the evaluator sees to that.
                fine = finite(result) && (std::fabs(result) > 2e-15 * std::fabs(b) || result == 0);
                if (fine) {
                    slots[now.target] = result;
                }
                break;
            }
            case Operation::MultiplyToCell: {
                const double result = slots[now.a] * slots[now.b];
                fine = finite(result);
                if (fine) {
                    slots[now.target] = result;
                }
                break;
            }
            case Operation::Store:
                fine = finite(slots[now.a]);
                if (fine) {
                    slots[now.target] = slots[now.a];
                }
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
                slots[now.target] = recalculation.context.nextRandom();
                break;
            case Operation::Call:
                fine = callNumeric(now);
                break;
            case Operation::CallRow:
                fine = callRow(now);
                break;
            case Operation::Sum: {
                double total = slots[now.b];
                for (const std::int32_t slot : program.lists[static_cast<std::size_t>(now.a)]) {
                    total += slots[slot];
                }
                slots[now.target] = total;
                break;
            }
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
                fine = a == a && b == b;
                slots[now.target] = (now.operation == Operation::Minimum ? b < a : b > a) ? b : a;
                break;
            }
            case Operation::SumProduct:
                sumProduct(now);
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
        if (program.instructions[at].operation == Operation::Tree) {
            recalculation.computeLive(cell->formula, false);
        } else {
            recalculation.computeLive(cell->formula, true);
        }
        if (recalculation.module) {
            recalculation.module->replay.clear();
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
