// ROUND and its relatives, multiples (MROUND, CEILING, FLOOR ...), EVEN and ODD.
#include "workbook/functions/rounding.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const std::array<double, 309> powersOfTen = [] {
    // Read from decimal notation, so that each entry is the double nearest to the power.
    std::array<double, 309> powers{};
    for (int exponent = 0; exponent <= 308; ++exponent) {
        powers[static_cast<std::size_t>(exponent)] = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
    }
    return powers;
}();

/// The number with 15 significant decimal digits.
double toFifteenDigits(double number) {
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.14e", number);
    return std::strtod(digits, nullptr);
}

/// Applies `roundWhole` to the number scaled so that the wanted digit is the units' digit.
template <class RoundWhole>
double roundScaled(double number, double digits, RoundWhole&& roundWhole) {
    digits = std::trunc(digits);
    if (digits == 0) {
        return roundWhole(number, false);
    }
    if (digits > 0) {
        if (digits > 308) {
            return number;
        }
        const double scale = powerOfTen(static_cast<int>(digits));
        const double scaled = number * scale;
        // Past 15 digits there is nothing left to round.
        return std::fabs(scaled) < 1e15 ? roundWhole(scaled, true) / scale : number;
    }
    const double scale =
        digits < -308 ? std::numeric_limits<double>::infinity() : powerOfTen(static_cast<int>(-digits));
    const double whole = roundWhole(number / scale, true);
    return whole == 0 ? 0 : whole * scale;
}

double round(const double* x, int) { return roundHalfAway(x[0], x[1]); }
double roundUp(const double* x, int) { return roundAwayFromZero(x[0], x[1]); }
double roundDown(const double* x, int count) { return roundTowardsZero(x[0], count > 1 ? x[1] : 0); }
double integerPart(const double* x, int) { return std::floor(x[0]); }

double even(const double* x, int) { return std::copysign(2 * std::ceil(std::fabs(x[0]) / 2), x[0]) + 0.0; }

double odd(const double* x, int) {
    const double magnitude = 2 * std::ceil((std::fabs(x[0]) - 1) / 2) + 1;
    return x[0] < 0 ? -std::fmax(magnitude, 1) : std::fmax(magnitude, 1);
}

double roundToMultiple(const double* x, int) {
    if (x[0] == 0 || x[1] == 0) {
        return 0;
    }
    if ((x[0] < 0) != (x[1] < 0)) {
        return nan;
    }
    return std::round(x[0] / x[1]) * x[1];
}

double upToMultiple(double number, double significance) {
    return significance == 0 ? 0 : std::ceil(snapToWhole(number / significance)) * significance + 0.0;
}
double downToMultiple(double number, double significance) {
    return significance == 0 ? 0 : std::floor(snapToWhole(number / significance)) * significance + 0.0;
}

// With both signs negative, CEILING goes away from zero and FLOOR towards it: the quotient is positive.
double ceiling(const double* x, int) { return x[0] > 0 && x[1] < 0 ? nan : upToMultiple(x[0], x[1]); }

Value floorOf(Call&, Arguments arguments) {
    const double number = arguments[0].number();
    const double significance = arguments[1].number();
    if (number == 0) {
        return 0.0;
    }
    if (significance == 0) {
        return ErrorCode::Div0;
    }
    return number > 0 && significance < 0 ? Value(ErrorCode::Num) : Value(downToMultiple(number, significance));
}

double optionalNumber(Arguments arguments, std::size_t index, double otherwise) {
    return index < arguments.size() && !arguments[index].missing ? arguments[index].number() : otherwise;
}

Value ceilingMath(Call&, Arguments arguments) {
    const double number = arguments[0].number();
    const double significance = std::fabs(optionalNumber(arguments, 1, 1));
    const bool awayFromZero = number < 0 && optionalNumber(arguments, 2, 0) != 0;
    return awayFromZero ? downToMultiple(number, significance) : upToMultiple(number, significance);
}

Value floorMath(Call&, Arguments arguments) {
    const double number = arguments[0].number();
    const double significance = std::fabs(optionalNumber(arguments, 1, 1));
    const bool towardsZero = number < 0 && optionalNumber(arguments, 2, 0) != 0;
    return towardsZero ? upToMultiple(number, significance) : downToMultiple(number, significance);
}

constexpr FunctionRow table[] = {
    {.name = "CEILING", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = ceiling},
    {.name = "CEILING.MATH", .minArgs = 1, .maxArgs = 3, .kinds = "NNN", .function = ceilingMath},
    {.name = "CEILING.PRECISE", .minArgs = 1, .maxArgs = 2, .kinds = "NN", .function = ceilingMath},
    {.name = "EVEN", .minArgs = 1, .maxArgs = 1, .kinds = "N", .numeric = even},
    {.name = "FLOOR", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .function = floorOf},
    {.name = "FLOOR.MATH", .minArgs = 1, .maxArgs = 3, .kinds = "NNN", .function = floorMath},
    {.name = "FLOOR.PRECISE", .minArgs = 1, .maxArgs = 2, .kinds = "NN", .function = floorMath},
    {.name = "INT", .minArgs = 1, .maxArgs = 1, .kinds = "N", .numeric = integerPart},
    {.name = "ISO.CEILING", .minArgs = 1, .maxArgs = 2, .kinds = "NN", .function = ceilingMath},
    {.name = "MROUND", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = roundToMultiple, .refusesRanges = true},
    {.name = "ODD", .minArgs = 1, .maxArgs = 1, .kinds = "N", .numeric = odd},
    {.name = "ROUND", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = round},
    {.name = "ROUNDDOWN", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = roundDown},
    {.name = "ROUNDUP", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = roundUp},
    {.name = "TRUNC", .minArgs = 1, .maxArgs = 2, .kinds = "NN", .numeric = roundDown},
};

}  // namespace

double powerOfTen(int exponent) { return powersOfTen[static_cast<std::size_t>(exponent)]; }

double roundHalfAway(double number, double digits) {
    return roundScaled(number, digits, [](double scaled, bool inexact) {
        const double magnitude = std::fabs(scaled);
        const double whole = std::floor(magnitude);
        const double slack = inexact ? magnitude * 4.5e-16 : 0;
        return std::copysign(magnitude - whole + slack >= 0.5 ? whole + 1 : whole, scaled) + 0.0;
    });
}

double roundTowardsZero(double number, double digits) {
    return roundScaled(number, digits, [](double scaled, bool) {
        // The host looks at 15 digits: only beside a whole number do they tell another story than the number.
        const bool beside = std::fabs(scaled - std::round(scaled)) <= std::fabs(scaled) * 1e-14;
        return std::trunc(beside ? toFifteenDigits(scaled) : scaled) + 0.0;
    });
}

double roundAwayFromZero(double number, double digits) {
    return roundScaled(number, digits, [](double scaled, bool inexact) {
        const double exact = inexact ? snapToWhole(scaled) : scaled;
        return std::copysign(std::ceil(std::fabs(exact)), exact) + 0.0;
    });
}

std::span<const FunctionRow> roundingFunctions() { return table; }

}  // namespace quorva::workbook
