// Factorials, combinations, divisors, and numerals (ROMAN, BASE ...).
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include <boost/math/special_functions/factorials.hpp>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Whole numbers from here on are not all representable.
constexpr double wholeLimit = 9007199254740992;  // 2^53

double factorial(const double* x, int) {
    const double n = std::trunc(x[0]);
    return n >= 0 && n <= 170 && x[0] >= 0 ? boost::math::unchecked_factorial<double>(static_cast<unsigned>(n)) : nan;
}

double doubleFactorial(const double* x, int) {
    const double n = std::trunc(x[0]);
    if (!(n >= -1) || n > 300) {  // (-1)!! is 1
        return nan;
    }
    double product = 1;
    for (double factor = n; factor > 1; factor -= 2) {
        product *= factor;
    }
    return product;
}

/// n over k; both whole, 0 <= k <= n.
double binomialCoefficient(double n, double k) {
    k = std::min(k, n - k);
    double result = 1;
    for (double i = 1; i <= k && std::isfinite(result); ++i) {
        // Each step's value is a binomial coefficient itself, so that division is exact while it fits 53 bits.
        const double scaled = result * (n - k + i);
        result = scaled < wholeLimit ? scaled / i : result / i * (n - k + i);
    }
    return result < wholeLimit ? std::round(result) : result;
}

double combinations(const double* x, int) {
    const double n = std::trunc(x[0]);
    const double k = std::trunc(x[1]);
    return n < 0 || k < 0 || n < k ? nan : binomialCoefficient(n, k);
}

double combinationsWithRepetition(const double* x, int) {
    const double n = std::trunc(x[0]);
    const double k = std::trunc(x[1]);
    if (n < 0 || k < 0 || (n == 0 && k > 0)) {
        return nan;
    }
    return k == 0 ? 1 : binomialCoefficient(n + k - 1, k);
}

double permutations(const double* x, int) {
    const double n = std::trunc(x[0]);
    const double k = std::trunc(x[1]);
    if (n <= 0 || k < 0 || n < k) {
        return nan;
    }
    double product = 1;
    for (double factor = n; factor > n - k && std::isfinite(product); --factor) {
        product *= factor;
    }
    return product;
}

double permutationsWithRepetition(const double* x, int) {
    const double n = std::trunc(x[0]);
    const double k = std::trunc(x[1]);
    return n < 0 || k < 0 ? nan : std::pow(n, k);
}

/// Calls visit(whole number) for each argument of GCD, LCM and MULTINOMIAL: fractions are left out, texts are read as
/// numbers even in ranges, blank cells skipped; Booleans and other texts are #VALUE!, negative numbers #NUM!.
template <class Visit>
std::optional<ErrorCode> forEachWhole(const Call& call, Arguments arguments, Visit&& visit) {
    std::optional<ErrorCode> error;
    const auto take = [&](const Value& value) {
        if (value.isBlank()) {
            return true;
        }
        const Result<double> number = value.isBoolean() ? Result<double>(ErrorCode::Value) : toNumber(value);
        if (!number) {
            error = number.error();
        } else if (*number < 0 || *number >= wholeLimit) {
            error = ErrorCode::Num;
        } else {
            visit(std::trunc(*number));
        }
        return !error;
    };
    for (const Argument& argument : arguments) {
        if (argument.missing) {
            visit(0.0);
        } else {
            argument.grid(call).forEach([&](const Value& value, int, int) -> bool { return take(value); });
        }
        if (error) {
            break;
        }
    }
    return error;
}

double greatestCommonDivisor(double a, double b) {
    while (b != 0) {
        const double remainder = std::fmod(a, b);
        a = b;
        b = remainder;
    }
    return a;
}

Value gcd(Call& call, Arguments arguments) {
    double result = 0;
    bool any = false;
    const auto error = forEachWhole(call, arguments, [&](double x) {
        result = greatestCommonDivisor(result, x);
        any = true;
    });
    return error ? Value(*error) : any ? Value(result) : Value(ErrorCode::Value);
}

Value lcm(Call& call, Arguments arguments) {
    double result = 1;
    bool any = false;
    const auto error = forEachWhole(call, arguments, [&](double x) {
        result = x == 0 || result == 0 ? 0 : result / greatestCommonDivisor(result, x) * x;
        any = true;
    });
    if (error) {
        return *error;
    }
    if (!any) {
        return ErrorCode::Value;
    }
    return result >= wholeLimit ? Value(ErrorCode::Num) : Value(result);
}

/// (a + b + ...)! / (a! b! ...), as a product of binomial coefficients.
Value multinomial(Call& call, Arguments arguments) {
    double result = 1;
    double total = 0;
    const auto error = forEachWhole(call, arguments, [&](double x) {
        total += x;
        result *= binomialCoefficient(total, x);
    });
    return error ? Value(*error) : Value(result);
}

struct Numeral {
    int value;
    std::string_view letters;
    int form;  ///< the least concise form (0 to 4) that may use it
};
/// Each form of ROMAN allows subtracting from letters farther up; taken greedily from the largest.
constexpr Numeral romanNumerals[] = {
    {1000, "M", 0}, {999, "IM", 4}, {995, "VM", 3}, {990, "XM", 2}, {950, "LM", 1}, {900, "CM", 0}, {500, "D", 0},
    {499, "ID", 4}, {495, "VD", 3}, {490, "XD", 2}, {450, "LD", 1}, {400, "CD", 0}, {100, "C", 0},  {99, "IC", 2},
    {95, "VC", 1},  {90, "XC", 0},  {50, "L", 0},   {49, "IL", 2},  {45, "VL", 1},  {40, "XL", 0},  {10, "X", 0},
    {9, "IX", 0},   {5, "V", 0},    {4, "IV", 0},   {1, "I", 0},
};

/// ROMAN(number, form): form TRUE is the classic one, FALSE the most concise.
Value roman(Call&, Arguments arguments) {
    const double number = std::trunc(arguments[0].number());
    double form = 0;
    if (arguments.size() > 1) {
        const Value& chosen = arguments[1].value;
        if (chosen.isBoolean()) {
            form = chosen.boolean() ? 0 : 4;
        } else if (const auto read = toNumber(chosen)) {
            form = std::trunc(*read);
        } else {
            return read.error();
        }
    }
    if (arguments[0].number() < 0 || number > 3999 || form < 0 || form > 4) {
        return ErrorCode::Value;
    }
    std::string text;
    int rest = static_cast<int>(number);
    for (const Numeral& numeral : romanNumerals) {
        while (numeral.form <= form && rest >= numeral.value) {
            text += numeral.letters;
            rest -= numeral.value;
        }
    }
    return text;
}

int romanDigit(char letter) {
    switch (letter) {
        case 'M':
        case 'm':
            return 1000;
        case 'D':
        case 'd':
            return 500;
        case 'C':
        case 'c':
            return 100;
        case 'L':
        case 'l':
            return 50;
        case 'X':
        case 'x':
            return 10;
        case 'V':
        case 'v':
            return 5;
        case 'I':
        case 'i':
            return 1;
        default:
            return 0;
    }
}

Value arabic(Call&, Arguments arguments) {
    std::string_view text = arguments[0].text();
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) {
        text.remove_prefix(1);
    }
    if (text.size() > 255) {
        return ErrorCode::Value;
    }
    int total = 0;
    int following = 0;
    for (auto letter = text.rbegin(); letter != text.rend(); ++letter) {
        const int digit = romanDigit(*letter);
        if (digit == 0) {
            return ErrorCode::Value;
        }
        total += digit < following ? -digit : digit;
        following = std::max(following, digit);
    }
    return negative ? -total : total;
}

/// BASE(number, radix, least length).
Value base(Call&, Arguments arguments) {
    double number = std::trunc(arguments[0].number());
    const double radix = std::trunc(arguments[1].number());
    const double length = arguments.size() > 2 ? std::trunc(arguments[2].number()) : 0;
    if (number < 0 || number >= wholeLimit || radix < 2 || radix > 36 || length < 0 || length > 255) {
        return ErrorCode::Num;
    }
    std::string digits;
    while (number > 0 || digits.empty()) {
        const double rest = std::floor(number / radix);
        digits.push_back("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[static_cast<int>(number - rest * radix)]);
        number = rest;
    }
    digits.resize(std::max(digits.size(), static_cast<std::size_t>(length)), '0');
    std::reverse(digits.begin(), digits.end());
    return digits;
}

/// DECIMAL(text, radix).
Value decimal(Call&, Arguments arguments) {
    const std::string& text = arguments[0].text();
    const double radix = std::trunc(arguments[1].number());
    if (text.size() > 255) {
        return ErrorCode::Value;
    }
    if (radix < 2 || radix > 36) {
        return ErrorCode::Num;
    }
    double number = 0;
    for (std::size_t i = text.find_first_not_of(' '); i < text.size(); ++i) {
        const char c = text[i];
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'A' && c <= 'Z' ? c - 'A' + 10
                          : c >= 'a' && c <= 'z' ? c - 'a' + 10
                                                 : 36;
        if (digit >= radix) {
            return ErrorCode::Num;
        }
        number = number * radix + digit;
    }
    return number;
}

constexpr FunctionRow table[] = {
    {.name = "ARABIC", .minArgs = 1, .maxArgs = 1, .kinds = "T", .function = arabic},
    {.name = "BASE", .minArgs = 2, .maxArgs = 3, .kinds = "NNN", .function = base},
    {.name = "COMBIN", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = combinations},
    {.name = "COMBINA", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .numeric = combinationsWithRepetition},
    {.name = "DECIMAL", .minArgs = 2, .maxArgs = 2, .kinds = "TN", .function = decimal},
    {.name = "FACT", .minArgs = 1, .maxArgs = 1, .kinds = "N", .numeric = factorial},
    {.name = "FACTDOUBLE", .minArgs = 1, .maxArgs = 1, .kinds = "N", .numeric = doubleFactorial, .refusesRanges = true},
    {.name = "GCD", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .function = gcd},
    {.name = "LCM", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .function = lcm},
    {.name = "MULTINOMIAL", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .function = multinomial},
    {.name = "PERMUT",
     .minArgs = 2,
     .maxArgs = 2,
     .kinds = "NN",
     .category = Category::Statistics,
     .numeric = permutations},
    {.name = "PERMUTATIONA",
     .minArgs = 2,
     .maxArgs = 2,
     .kinds = "NN",
     .category = Category::Statistics,
     .numeric = permutationsWithRepetition},
    {.name = "ROMAN", .minArgs = 1, .maxArgs = 2, .kinds = "NS", .function = roman},
};

}  // namespace

std::span<const FunctionRow> combinatoricFunctions() { return table; }

}  // namespace quorva::workbook
