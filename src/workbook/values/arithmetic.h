// Arithmetic whose last bits a worksheet shows. The evaluator and the compiled program both calculate with it, so that
// a cell has the same bits whichever of them computes it.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorva::workbook {

constexpr double smallestNumber = std::numeric_limits<double>::min();

/// Worksheets know no denormal numbers: they count as 0. A NaN stays.
inline double flushDenormal(double x) { return std::fabs(x) < smallestNumber ? std::copysign(0.0, x) : x; }

/// Whether a worksheet calculates with the number as it is: finite and not denormal.
inline bool isWorksheetNumber(double x) {
    const double size = std::fabs(x);
    return (size >= smallestNumber && size <= std::numeric_limits<double>::max()) || size == 0;
}

/// What closingSum gives where operands cancel (nearly): 0 or the sum.
double cancelledSum(double a, double b);

/// a + b where that is the last operation of a formula: 0 when all but the last bits cancel, that is, when the binary
/// exponent of the sum is at least 50 below that of the larger operand.
inline double closingSum(double a, double b) {
    constexpr double rarelyLess = 0x1p-48;
    const double sum = a + b;
    // Operands that cancel are about equal; this excludes nearly every sum without looking at exponents.
    if (std::fabs(sum) > std::max(rarelyLess * std::fabs(b), smallestNumber)) [[likely]] {
        return sum;
    }
    return cancelledSum(a, b);
}

/// base^exponent: whole exponents by squaring from the lowest bit up, others through the logarithm. 0 to a power that
/// is not positive has to be excluded before. NaN for roots of negative numbers.
double raise(double base, double exponent);

}  // namespace quorva::workbook
