// SUBTOTAL and AGGREGATE: a statistic of visible cells, without the subtotals among them.
#include <cmath>
#include <optional>

#include "workbook/functions/families.h"
#include "workbook/functions/samples.h"

namespace quorva::workbook {

namespace {

struct Leaving {
    bool subtotals = true;  ///< cells whose formula SUBTOTAL or AGGREGATE heads are left out
    bool filteredRows = false;
    bool hiddenRows = false;  ///< by a filter or by hand
    bool errors = false;
};

/// What remains of the arguments.
struct Collected {
    std::vector<double> numbers;
    std::int64_t filled = 0;  ///< cells that hold anything, errors too
    std::optional<ErrorCode> error;

    void take(const Value& value, Leaving leaving) {
        if (value.isBlank() || (value.isError() && leaving.errors)) {
            return;
        }
        ++filled;
        if (value.isNumber()) {
            numbers.push_back(value.number());
        } else if (value.isError() && !error) {
            error = value.error();
        }
    }
};

Collected collect(const Call& call, Arguments arguments, Leaving leaving) {
    Collected collected;
    for (const Argument& argument : arguments) {
        if (!argument.value.isReference()) {
            argument.grid(call).forEach([&](const Value& value, int, int) { collected.take(value, leaving); });
            continue;
        }
        for (const Area& area : argument.value.areas()) {
            const SheetIndex& sheet = call.cells.sheet(area.sheet);
            call.cells.forEachSlot(area, [&](int row, int, Slot slot) {
                const bool leave = (leaving.subtotals && call.cells.isSubtotal(slot)) ||
                                   (leaving.hiddenRows && sheet.hidden(row)) ||
                                   (leaving.filteredRows && sheet.filtered(row));
                if (!leave) {
                    collected.take(call.cells.get(slot), leaving);
                }
            });
        }
    }
    return collected;
}

/// The functions 1 to 13 that both share (SUBTOTAL has the first 11).
Value summarize(int function, const Collected& collected) {
    const bool countsOnly = function == 2 || function == 3;
    if (collected.error && !countsOnly) {
        return *collected.error;
    }
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

/// SUBTOTAL(function, references): 1 to 11 leave out the rows that a filter hides, 101 to 111 every hidden row.
Value subtotal(Call& call, Arguments arguments) {
    const double chosen = std::trunc(arguments[0].number());
    const bool visibleOnly = chosen > 100;
    const double function = visibleOnly ? chosen - 100 : chosen;
    if (function < 1 || function > 11) {
        return ErrorCode::Value;
    }
    return summarize(static_cast<int>(function),
                     collect(call, arguments.subspan(1), {.filteredRows = true, .hiddenRows = visibleOnly}));
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
        const Collected collected = collect(call, arguments.subspan(2, 1), leaving);
        const auto k = toNumber(arguments[3].scalar(call), call.date1904);
        if (collected.error || !k) {
            return collected.error ? *collected.error : k.error();
        }
        return orderStatistic(static_cast<int>(function), collected.numbers, *k);
    }
    for (const Argument& argument : arguments.subspan(2)) {
        if (!argument.value.isReference()) {
            return argument.value.isError() ? argument.value : Value(ErrorCode::Value);
        }
    }
    return summarize(static_cast<int>(function), collect(call, arguments.subspan(2), leaving));
}

constexpr FunctionRow table[] = {
    {.name = "AGGREGATE", .minArgs = 3, .maxArgs = anyCount, .kinds = "NNA", .function = aggregate},
    {.name = "SUBTOTAL", .minArgs = 2, .maxArgs = anyCount, .kinds = "NF", .function = subtotal},
};

}  // namespace

std::span<const FunctionRow> subtotalFunctions() { return table; }

}  // namespace quorva::workbook
