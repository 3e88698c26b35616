// Number bases, bits, error functions, steps.
#include <cmath>
#include <cstdint>
#include <limits>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int mostDigits = 10;

/// One of the three bases: bits per digit, so that ten digits hold 10, 30 or 40 bits in two's complement.
struct Base {
    int bits = 1;

    std::int64_t range() const { return std::int64_t{1} << (bits * mostDigits); }
};
constexpr Base binary{1};
constexpr Base octal{3};
constexpr Base hexadecimal{4};

/// Reads up to ten digits; ten digits with the highest bit set are negative. A blank or an empty text is 0.
Result<std::int64_t> readDigits(const Argument& argument, Base base) {
    if (argument.value.isBoolean()) {
        return ErrorCode::Value;
    }
    const auto text = toText(argument.value);
    if (!text) {
        return text.error();
    }
    if (text->size() > mostDigits) {
        return ErrorCode::Num;
    }
    std::int64_t number = 0;
    for (const char c : *text) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                 : 16;
        if (digit >= 1 << base.bits) {
            return ErrorCode::Num;
        }
        number = number << base.bits | digit;
    }
    return number >= base.range() / 2 ? number - base.range() : number;
}

Result<std::int64_t> readDecimal(const Call& call, const Argument& argument) {
    if (argument.value.isBoolean()) {
        return ErrorCode::Value;
    }
    const auto number = toNumber(argument.value, call.date1904);
    if (!number) {
        return number.error();
    }
    return std::fabs(*number) < 1e15 ? Result<std::int64_t>(static_cast<std::int64_t>(std::trunc(*number)))
                                     : ErrorCode::Num;
}

/// The places of an argument list, 1 to 10; 0 when there are none.
Result<int> readPlaces(const Call& call, Arguments arguments) {
    if (arguments.size() < 2 || arguments[1].missing) {
        return 0;
    }
    const auto wanted =
        arguments[1].value.isBoolean() ? Result<double>(ErrorCode::Value) : toNumber(arguments[1].value, call.date1904);
    if (!wanted) {
        return wanted.error();
    }
    const double places = std::trunc(*wanted);
    return places >= 1 && places <= mostDigits ? Result<int>(static_cast<int>(places)) : ErrorCode::Num;
}

/// Writes a number in a base, padded to a count of digits. Negative numbers take ten digits whatever the places.
Value writeDigits(std::int64_t number, Base base, int places) {
    if (number < -base.range() / 2 || number >= base.range() / 2) {
        return ErrorCode::Num;
    }
    const bool negative = number < 0;
    std::uint64_t rest = static_cast<std::uint64_t>(negative ? number + base.range() : number);
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789ABCDEF"[rest & ((1u << base.bits) - 1)]);
        rest >>= base.bits;
    } while (rest > 0);
    const int count = static_cast<int>(digits.size());
    if (places == 0 || negative) {
        return digits;
    }
    return count > places ? Value(ErrorCode::Num)
                          : Value(std::string(static_cast<std::size_t>(places - count), '0') + digits);
}

/// Wrong places win over a wrong number.
Value writeDigits(const Call& call, const Result<std::int64_t>& number, Base base, Arguments arguments) {
    const auto places = readPlaces(call, arguments);
    if (!places) {
        return places.error();
    }
    return number ? writeDigits(*number, base, *places) : Value(number.error());
}

template <int fromBits, int toBits>
Value convertDigits(Call& call, Arguments arguments) {
    return writeDigits(call, readDigits(arguments[0], Base{fromBits}), Base{toBits}, arguments);
}
template <int fromBits>
Value toDecimal(Call&, Arguments arguments) {
    const auto number = readDigits(arguments[0], Base{fromBits});
    return number ? Value(static_cast<double>(*number)) : Value(number.error());
}
template <int toBits>
Value fromDecimal(Call& call, Arguments arguments) {
    return writeDigits(call, readDecimal(call, arguments[0]), Base{toBits}, arguments);
}

// ---- bits ----

constexpr double bitLimit = 281474976710656.0;  // 2^48

bool isBits(double x) { return x >= 0 && x < bitLimit && x == std::floor(x); }

template <class Operation>
double bitwise(const double* x, Operation operation) {
    if (!isBits(x[0]) || !isBits(x[1])) {
        return nan;
    }
    return static_cast<double>(operation(static_cast<std::uint64_t>(x[0]), static_cast<std::uint64_t>(x[1])));
}
double bitAnd(const double* x, int) {
    return bitwise(x, [](std::uint64_t a, std::uint64_t b) { return a & b; });
}
double bitOr(const double* x, int) {
    return bitwise(x, [](std::uint64_t a, std::uint64_t b) { return a | b; });
}
double bitXor(const double* x, int) {
    return bitwise(x, [](std::uint64_t a, std::uint64_t b) { return a ^ b; });
}
double shifted(double number, double places) {
    places = std::trunc(places);
    if (!isBits(number) || std::fabs(places) > 53) {
        return nan;
    }
    const double result = std::floor(std::ldexp(number, static_cast<int>(places)));
    return result < bitLimit ? result : nan;
}
double shiftLeft(const double* x, int) { return shifted(x[0], x[1]); }
double shiftRight(const double* x, int) { return shifted(x[0], -x[1]); }

// ---- error functions, comparisons ----

double errorFunction(const double* x, int count) {
    if (count < 2) {
        return std::erf(x[0]);
    }
    // In the tails the difference of the complements keeps the digits.
    if (x[0] > 0.5 && x[1] > 0.5) {
        return std::erfc(x[0]) - std::erfc(x[1]);
    }
    return x[0] < -0.5 && x[1] < -0.5 ? std::erfc(-x[1]) - std::erfc(-x[0]) : std::erf(x[1]) - std::erf(x[0]);
}
double complementaryErrorFunction(const double* x, int) { return std::erfc(x[0]); }
double delta(const double* x, int count) { return x[0] == (count > 1 ? x[1] : 0) ? 1 : 0; }
double step(const double* x, int count) { return x[0] >= (count > 1 ? x[1] : 0) ? 1 : 0; }

constexpr FunctionRow digits(std::string_view name, int maxArgs, Function function) {
    return {.name = name,
            .minArgs = 1,
            .maxArgs = maxArgs,
            .kinds = "S",
            .category = Category::Engineering,
            .function = function,
            .refusesRanges = true};
}
constexpr FunctionRow numbers(std::string_view name, int minArgs, int maxArgs, NumericFunction function,
                              bool toolPack = false) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = "N",
            .category = Category::Engineering,
            .numeric = function,
            .refusesRanges = toolPack};
}

constexpr FunctionRow table[] = {
    digits("BIN2DEC", 1, toDecimal<binary.bits>),
    digits("BIN2HEX", 2, convertDigits<binary.bits, hexadecimal.bits>),
    digits("BIN2OCT", 2, convertDigits<binary.bits, octal.bits>),
    numbers("BITAND", 2, 2, bitAnd),
    numbers("BITLSHIFT", 2, 2, shiftLeft),
    numbers("BITOR", 2, 2, bitOr),
    numbers("BITRSHIFT", 2, 2, shiftRight),
    numbers("BITXOR", 2, 2, bitXor),
    digits("DEC2BIN", 2, fromDecimal<binary.bits>),
    digits("DEC2HEX", 2, fromDecimal<hexadecimal.bits>),
    digits("DEC2OCT", 2, fromDecimal<octal.bits>),
    numbers("DELTA", 1, 2, delta, true),
    numbers("ERF", 1, 2, errorFunction, true),
    numbers("ERF.PRECISE", 1, 1, errorFunction, true),
    numbers("ERFC", 1, 1, complementaryErrorFunction, true),
    numbers("ERFC.PRECISE", 1, 1, complementaryErrorFunction),
    numbers("GESTEP", 1, 2, step, true),
    digits("HEX2BIN", 2, convertDigits<hexadecimal.bits, binary.bits>),
    digits("HEX2DEC", 1, toDecimal<hexadecimal.bits>),
    digits("HEX2OCT", 2, convertDigits<hexadecimal.bits, octal.bits>),
    digits("OCT2BIN", 2, convertDigits<octal.bits, binary.bits>),
    digits("OCT2DEC", 1, toDecimal<octal.bits>),
    digits("OCT2HEX", 2, convertDigits<octal.bits, hexadecimal.bits>),
};

}  // namespace

std::span<const FunctionRow> engineeringFunctions() { return table; }

}  // namespace quorva::workbook
