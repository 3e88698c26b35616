#include <cmath>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

Value sum(Call& call, Arguments arguments) {
    double total = 0;
    if (const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) { total += x; })) {
        return *error;
    }
    return total;
}

double absolute(const double* x, int) { return std::fabs(x[0]); }
double squareRoot(const double* x, int) { return std::sqrt(x[0]); }

constexpr FunctionRow table[] = {
    {.name = "ABS", .minArgs = 1, .maxArgs = 1, .kinds = "N", .category = Category::Math, .numeric = absolute},
    {.name = "SQRT", .minArgs = 1, .maxArgs = 1, .kinds = "N", .category = Category::Math, .numeric = squareRoot},
    {.name = "SUM", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .category = Category::Math, .function = sum},
};

}  // namespace

std::span<const FunctionRow> mathFunctions() { return table; }

}  // namespace quorva::workbook
