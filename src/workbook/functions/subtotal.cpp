// SUBTOTAL and AGGREGATE: a statistic of the visible cells, without the subtotals among them.
#include <cmath>
#include <optional>

#include "workbook/functions/families.h"
#include "workbook/functions/samples.h"

namespace quorva::workbook {

namespace {

struct Leaving {
    bool subtotals = true;  ///< cells whose formula SUBTOTAL or AGGREGATE heads are left out
    bool hiddenRows = false;
    bool errors = false;
};

/// The numbers that remain of the references, and how many cells hold anything.
struct Collected {
    std::vector<double> numbers;
    std::int64_t filled = 0;
};

Result<Collected> collect(const Call& call, Arguments arguments, Leaving leaving) {
    Collected collected;
    std::optional<ErrorCode> error;
    const auto take = [&](const Value& value) {
        if (value.isError() && leaving.errors) {
            return true;
        }
        collected.filled += value.isBlank() ? 0 : 1;
        if (value.isNumber()) {
            collected.numbers.push_back(value.number());
        } else if (value.isError()) {
            error = value.error();
        }
        return !error;
    };
    for (const Argument& argument : arguments) {
        if (!argument.value.isReference()) {
            argument.grid(call).forEach([&](const Value& value, int, int) -> bool { return take(value); });
            continue;
        }
        for (const Area& area : argument.value.areas()) {
            const SheetIndex& sheet = call.cells.sheet(area.sheet);
            call.cells.forEachSlot(area, [&](int row, int, Slot slot) -> bool {
                const bool leave =
                    (leaving.subtotals && call.cells.isSubtotal(slot)) || (leaving.hiddenRows && sheet.hidden(row));
                return leave || take(call.cells.get(slot));
            });
        }
    }
    return error ? Result<Collected>(*error) : Result<Collected>(std::move(collected));
}

/// The functions 1 to 13 that both share (SUBTOTAL has the first 11).
Value summarize(int function, const Collected& collected) {
    const Sample sample = collected.numbers;
    switch (function) {
        case 1:
            return meanOf(sample);
        case 2:
            return static_cast<std::int64_t>(sample.size());
        case 3:
            return collected.filled;
        case 4:
            return maximumOf(sample);
        case 5:
            return minimumOf(sample);
        case 6:
            return productOf(sample);
        case 7:
            return rootOf(varianceOf(sample));
        case 8:
            return rootOf(populationVarianceOf(sample));
        case 9:
            return sumOf(sample);
        case 10:
            return varianceOf(sample);
        case 11:
            return populationVarianceOf(sample);
        case 12:
            return medianOf(sample);
        case 13:
            return modeOf(sample);
        default:
            return ErrorCode::Value;
    }
}

/// COUNT and COUNTA do not see errors as errors.
bool countsOnly(int function) { return function == 2 || function == 3; }

Result<Collected> collectFor(const Call& call, int function, Arguments arguments, Leaving leaving) {
    if (!countsOnly(function) || leaving.errors) {
        return collect(call, arguments, leaving);
    }
    Leaving withoutErrors = leaving;
    withoutErrors.errors = true;
    auto collected = collect(call, arguments, withoutErrors);
    if (collected && function == 3) {
        for (const Argument& argument : arguments) {
            for (const Area& area : argument.value.areas()) {
                const SheetIndex& sheet = call.cells.sheet(area.sheet);
                call.cells.forEachSlot(area, [&](int row, int, Slot slot) {
                    const bool leave =
                        (leaving.subtotals && call.cells.isSubtotal(slot)) || (leaving.hiddenRows && sheet.hidden(row));
                    collected->filled += !leave && call.cells.get(slot).isError() ? 1 : 0;
                });
            }
        }
    }
    return collected;
}

/// SUBTOTAL(function, references): 101 to 111 leave hidden rows out, 1 to 11 do not.
Value subtotal(Call& call, Arguments arguments) {
    const double chosen = std::trunc(arguments[0].number());
    const bool visibleOnly = chosen > 100;
    const double function = visibleOnly ? chosen - 100 : chosen;
    if (function < 1 || function > 11) {
        return ErrorCode::Value;
    }
    const auto collected =
        collectFor(call, static_cast<int>(function), arguments.subspan(1), {.hiddenRows = visibleOnly});
    return collected ? summarize(static_cast<int>(function), *collected) : Value(collected.error());
}

/// The functions 14 to 19 of AGGREGATE, with their parameter.
Value orderStatistic(int function, Sample sample, double k) {
    switch (function) {
        case 14:
            return largestOf(sample, k);
        case 15:
            return smallestOf(sample, k);
        case 16:
            return percentileOf(sample, k, Ranks::Inclusive);
        case 17:
            return quartileOf(sample, k, Ranks::Inclusive);
        case 18:
            return percentileOf(sample, k, Ranks::Exclusive);
        default:
            return quartileOf(sample, k, Ranks::Exclusive);
    }
}

/// AGGREGATE(function, options, references) and AGGREGATE(function, options, array, k).
Value aggregate(Call& call, Arguments arguments) {
    const double function = std::trunc(arguments[0].number());
    const double options = std::trunc(arguments[1].number());
    if (function < 1 || function > 19 || options < 0 || options > 7) {
        return ErrorCode::Value;
    }
    const int option = static_cast<int>(options);
    const Leaving leaving{.subtotals = option < 4,
                          .hiddenRows = option % 2 == 1,
                          .errors = option == 2 || option == 3 || option == 6 || option == 7};
    if (function >= 14) {
        if (arguments.size() != 4) {
            return ErrorCode::Value;
        }
        const auto collected = collect(call, arguments.subspan(2, 1), leaving);
        const auto k = toNumber(arguments[3].scalar(call), call.date1904);
        if (!collected || !k) {
            return collected ? k.error() : collected.error();
        }
        return orderStatistic(static_cast<int>(function), collected->numbers, *k);
    }
    for (const Argument& argument : arguments.subspan(2)) {
        if (!argument.value.isReference()) {
            return argument.value.isError() ? argument.value : Value(ErrorCode::Value);
        }
    }
    const auto collected = collectFor(call, static_cast<int>(function), arguments.subspan(2), leaving);
    return collected ? summarize(static_cast<int>(function), *collected) : Value(collected.error());
}

constexpr FunctionRow table[] = {
    {.name = "AGGREGATE", .minArgs = 3, .maxArgs = anyCount, .kinds = "NNA", .function = aggregate},
    {.name = "SUBTOTAL", .minArgs = 2, .maxArgs = anyCount, .kinds = "NF", .function = subtotal},
};

}  // namespace

std::span<const FunctionRow> subtotalFunctions() { return table; }

}  // namespace quorva::workbook
