#include "workbook/values/arithmetic.h"

#include <cstdint>

namespace quorva::workbook {

namespace {

double wholePower(double base, double exponent) {
    double power = 1;
    for (auto rest = static_cast<std::uint64_t>(std::fabs(exponent));; base *= base) {
        if ((rest & 1) != 0) {
            power *= base;
        }
        rest >>= 1;
        if (rest == 0) {
            return exponent < 0 ? 1 / power : power;
        }
    }
}

}  // namespace

double cancelledSum(double a, double b) {
    constexpr int lostBits = 50;
    const double sum = a + b;
    const bool vanishes =
        std::isnormal(sum) && std::ilogb(std::max(std::fabs(a), std::fabs(b))) - std::ilogb(sum) >= lostBits;
    return vanishes ? 0 : flushDenormal(sum);
}

double raise(double base, double exponent) {
    constexpr double countable = 0x1p63;
    return exponent == std::trunc(exponent) && std::fabs(exponent) < countable ? wholePower(base, exponent)
                                                                               : std::exp(exponent * std::log(base));
}

}  // namespace quorva::workbook
