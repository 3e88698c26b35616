// Arithmetic, powers and logarithms, sums.
#include <cmath>
#include <limits>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double absolute(const double* x, int) { return std::fabs(x[0]); }
double exponential(const double* x, int) { return std::exp(x[0]); }
double naturalLogarithm(const double* x, int) { return x[0] > 0 ? std::log(x[0]) : nan; }
double decimalLogarithm(const double* x, int) { return x[0] > 0 ? std::log10(x[0]) : nan; }
double sign(const double* x, int) { return x[0] > 0 ? 1 : x[0] < 0 ? -1 : 0; }
double squareRoot(const double* x, int) { return std::sqrt(x[0]); }

// The numeric forms below give NaN for every error; the general forms, which are then called, say which error it is.

double logarithm(const double* x, int count) {
    const double base = count > 1 ? x[1] : 10;
    if (!(x[0] > 0) || !(base > 0) || base == 1) {
        return nan;
    }
    // The bases of the library's own logarithms give whole numbers where they should.
    return base == 10 ? std::log10(x[0]) : base == 2 ? std::log2(x[0]) : std::log(x[0]) / std::log(base);
}
Value logarithmValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments.size() > 1 ? arguments[1].number() : 10};
    return x[0] > 0 && x[1] == 1 ? Value(ErrorCode::Div0) : Value(logarithm(x, 2));
}

double power(const double* x, int) { return x[0] == 0 && x[1] <= 0 ? nan : raise(x[0], x[1]); }
Value powerValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments[1].number()};
    return x[0] == 0 && x[1] < 0 ? Value(ErrorCode::Div0) : Value(power(x, 2));
}

/// The remainder has the divisor's sign. Quotients beyond 2^50 are #NUM!.
double modulo(const double* x, int) {
    constexpr double quotientLimit = 1125899906842624;  // 2^50
    const double number = x[0];
    const double divisor = x[1];
    if (divisor == 0 || std::fabs(number / divisor) >= quotientLimit) {
        return nan;
    }
    if (number == std::trunc(number) && divisor == std::trunc(divisor)) {
        const double remainder = std::fmod(number, divisor);
        return remainder != 0 && (remainder < 0) != (divisor < 0) ? remainder + divisor : remainder + 0.0;
    }
    return number - divisor * std::floor(number / divisor);
}
Value moduloValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments[1].number()};
    return x[1] == 0 ? Value(ErrorCode::Div0) : Value(modulo(x, 2));
}

double quotient(const double* x, int) { return x[1] == 0 ? nan : std::trunc(x[0] / x[1]) + 0.0; }
Value quotientValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments[1].number()};
    return x[1] == 0 ? Value(ErrorCode::Div0) : Value(quotient(x, 2));
}

Value sum(Call& call, Arguments arguments) {
    double total = 0;
    const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) { total += x; });
    return error ? Value(*error) : Value(total);
}

/// PERCENTOF(part, all): the share that the sum of one has in the sum of the other.
Value percentOf(Call& call, Arguments arguments) {
    const Value part = sum(call, arguments.subspan(0, 1));
    const Value all = sum(call, arguments.subspan(1, 1));
    if (part.isError() || all.isError()) {
        return part.isError() ? part : all;
    }
    return all.number() == 0 ? Value(ErrorCode::Div0) : Value(part.number() / all.number());
}

Value sumOfSquares(Call& call, Arguments arguments) {
    double total = 0;
    const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) { total += x * x; });
    return error ? Value(*error) : Value(total);
}

Value product(Call& call, Arguments arguments) {
    double total = 1;
    bool any = false;
    const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) {
        total *= x;
        any = true;
    });
    return error ? Value(*error) : Value(any ? total : 0);
}

/// SUMX2MY2, SUMX2PY2, SUMXMY2: the sum of `term` over pairs of numbers; #DIV/0! without any.
template <double (*term)(double, double)>
Value sumOfPairs(Call& call, Arguments arguments) {
    const auto pairs = collectPairs(call, arguments[0], arguments[1]);
    if (!pairs) {
        return pairs.error();
    }
    if (pairs->first.empty()) {
        return ErrorCode::Div0;
    }
    double total = 0;
    for (std::size_t i = 0; i < pairs->first.size(); ++i) {
        total += term(pairs->first[i], pairs->second[i]);
    }
    return total;
}
double squaresDifference(double x, double y) { return x * x - y * y; }
double squaresSum(double x, double y) { return x * x + y * y; }
double differenceSquared(double x, double y) { return (x - y) * (x - y); }

/// SERIESSUM(x, n, m, coefficients): the coefficients times x^n, x^(n + m), x^(n + 2m) ...
Value seriesSum(Call& call, Arguments arguments) {
    const double x = arguments[0].number();
    double exponent = arguments[1].number();
    const auto coefficients = toMatrix(call, arguments[3]);
    if (!coefficients) {
        return coefficients.error();
    }
    double total = 0;
    for (const double coefficient : coefficients->cells) {
        if (x == 0 && exponent == 0) {
            return ErrorCode::Num;
        }
        total += coefficient * std::pow(x, exponent);
        exponent += arguments[2].number();
    }
    return total;
}

constexpr FunctionRow one(std::string_view name, NumericFunction numeric) {
    return {.name = name, .minArgs = 1, .maxArgs = 1, .kinds = "N", .category = Category::Math, .numeric = numeric};
}

constexpr FunctionRow table[] = {
    one("ABS", absolute),
    one("EXP", exponential),
    one("LN", naturalLogarithm),
    {.name = "LOG", .minArgs = 1, .maxArgs = 2, .kinds = "NN", .function = logarithmValue, .numeric = logarithm},
    one("LOG10", decimalLogarithm),
    {.name = "MOD", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .function = moduloValue, .numeric = modulo},
    {.name = "PERCENTOF", .minArgs = 2, .maxArgs = 2, .kinds = "R", .function = percentOf},
    {.name = "POWER", .minArgs = 2, .maxArgs = 2, .kinds = "NN", .function = powerValue, .numeric = power},
    {.name = "PRODUCT", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .function = product},
    {.name = "QUOTIENT",
     .minArgs = 2,
     .maxArgs = 2,
     .kinds = "NN",
     .function = quotientValue,
     .numeric = quotient,
     .refusesRanges = true},
    {.name = "SERIESSUM", .minArgs = 4, .maxArgs = 4, .kinds = "NNNR", .function = seriesSum, .refusesRanges = true},
    one("SIGN", sign),
    one("SQRT", squareRoot),
    {.name = "SUM", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .function = sum},
    {.name = "SUMSQ", .minArgs = 1, .maxArgs = anyCount, .kinds = "R", .function = sumOfSquares},
    {.name = "SUMX2MY2", .minArgs = 2, .maxArgs = 2, .kinds = "AA", .function = sumOfPairs<squaresDifference>},
    {.name = "SUMX2PY2", .minArgs = 2, .maxArgs = 2, .kinds = "AA", .function = sumOfPairs<squaresSum>},
    {.name = "SUMXMY2", .minArgs = 2, .maxArgs = 2, .kinds = "AA", .function = sumOfPairs<differenceSquared>},
};

}  // namespace

std::span<const FunctionRow> mathFunctions() { return table; }

}  // namespace quorva::workbook
