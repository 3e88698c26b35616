// Decimal rounding as worksheets do it, shared by the functions that round.
#pragma once

#include <cmath>

namespace quorva::workbook {

/// 10^exponent for exponents from 0 to 308.
double powerOfTen(int exponent);

/// Rounds at `digits` decimals (negative: before the point; its fraction is left out), ties away from zero. Scaling by
/// a power of ten costs up to an ulp, so that what lies within two ulps of a tie counts as the tie it was meant to be:
/// ROUND(1.005, 2) is 1.01.
double roundHalfAway(double number, double digits);
/// Rounds towards zero at `digits` decimals what 15 significant digits show of the number.
double roundTowardsZero(double number, double digits);
/// Rounds away from zero at `digits` decimals.
double roundAwayFromZero(double number, double digits);

/// The whole number that `quotient` stands for when it is one but for the rounding of a division or multiplication;
/// otherwise the quotient itself.
inline double snapToWhole(double quotient) {
    const double whole = std::round(quotient);
    return std::fabs(quotient - whole) <= std::fabs(quotient) * 4.5e-16 ? whole : quotient;
}

}  // namespace quorva::workbook
