// Random numbers.
#include <algorithm>
#include <cmath>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

Value random(Call& call, Arguments) { return call.random(); }

double randomWhole(const Call& call, double least, double largest) {
    return std::min(largest, least + std::floor(call.random() * (largest - least + 1)));
}

Value randomBetween(Call& call, Arguments arguments) {
    const double least = std::ceil(arguments[0].number());
    const double largest = std::floor(arguments[1].number());
    return arguments[0].number() > arguments[1].number() ? Value(ErrorCode::Num)
                                                         : Value(randomWhole(call, least, std::max(least, largest)));
}

/// RANDARRAY(rows, columns, least, largest, whole numbers).
Value randomArray(Call& call, Arguments arguments) {
    const double rows = std::trunc(optionalNumber(arguments, 0, 1));
    const double columns = std::trunc(optionalNumber(arguments, 1, 1));
    const double least = optionalNumber(arguments, 2, 0);
    const double largest = optionalNumber(arguments, 3, 1);
    const bool whole = present(arguments, 4) && arguments[4].boolean();
    if (const auto error = sizeError(rows, columns)) {
        return *error;
    }
    if (least > largest || (whole && (least != std::trunc(least) || largest != std::trunc(largest)))) {
        return ErrorCode::Value;
    }
    return buildArray(rows, columns, [&](int, int) {
        return Value(whole ? randomWhole(call, least, largest) : least + call.random() * (largest - least));
    });
}

constexpr FunctionRow volatileRow(std::string_view name, int minArgs, int maxArgs, std::string_view kinds,
                                  Function function, bool refusesRanges = false) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Math,
            .volatility = Volatility::Volatile,
            .function = function,
            .refusesRanges = refusesRanges};
}

constexpr FunctionRow table[] = {
    volatileRow("RAND", 0, 0, "", random),
    volatileRow("RANDARRAY", 0, 5, "NNNNB", randomArray),
    volatileRow("RANDBETWEEN", 2, 2, "NN", randomBetween, true),
};

}  // namespace

std::span<const FunctionRow> randomFunctions() { return table; }

}  // namespace quorva::workbook
