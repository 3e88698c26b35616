// Complex numbers, which worksheets keep as texts such as "3+4i", and Bessel functions.
#include <boost/math/special_functions/bessel.hpp>
#include <cmath>
#include <complex>
#include <limits>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

using Complex = std::complex<double>;

/// A complex number as read: with the letter that it was written with, 0 for none.
struct Imaginary {
    Complex value;
    char suffix = 0;
};

/// The length of the decimal number at the start of a text: sign, digits, exponent. 0 when there is none.
std::size_t numberLength(std::string_view text) {
    std::size_t at = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    const std::size_t first = at;
    const auto digits = [&] {
        const std::size_t from = at;
        while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
            ++at;
        }
        return at - from;
    };
    std::size_t count = digits();
    if (at < text.size() && text[at] == '.') {
        ++at;
        count += digits();
    }
    if (count == 0) {
        return at = first, 0;
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        const std::size_t mark = at++;
        at += at < text.size() && (text[at] == '+' || text[at] == '-') ? 1 : 0;
        if (digits() == 0) {
            at = mark;
        }
    }
    return at;
}

/// Reads "3+4i", "-j", "2.5", "1e3i" ...; nothing when the text is no complex number.
std::optional<Imaginary> parseComplex(std::string_view text) {
    Imaginary number;
    if (text.empty()) {
        return number;
    }
    const bool imaginary = text.back() == 'i' || text.back() == 'j';
    if (!imaginary) {
        const auto real = numberLength(text) == text.size() ? parsePlainNumber(text) : std::nullopt;
        return real ? std::optional(Imaginary{*real, 0}) : std::nullopt;
    }
    number.suffix = text.back();
    text.remove_suffix(1);
    std::size_t realLength = numberLength(text);
    if (realLength == text.size()) {
        realLength = 0;  // only an imaginary part
    }
    double real = 0;
    if (realLength > 0) {
        real = parsePlainNumber(text.substr(0, realLength)).value_or(0);
        text.remove_prefix(realLength);
        if (text[0] != '+' && text[0] != '-') {
            return std::nullopt;
        }
    }
    double part = 1;
    if (text == "-") {
        part = -1;
    } else if (!text.empty() && text != "+") {
        const auto read = numberLength(text) == text.size() ? parsePlainNumber(text) : std::nullopt;
        if (!read) {
            return std::nullopt;
        }
        part = *read;
    }
    number.value = {real, part};
    return number;
}

Result<Imaginary> toComplex(const Value& value) {
    switch (value.type()) {
        case Value::Type::Error:
            return value.error();
        case Value::Type::Number:
            return Imaginary{value.number(), 0};
        case Value::Type::Blank:
            return Imaginary{};
        case Value::Type::Text: {
            const auto number = parseComplex(value.text());
            return number ? Result<Imaginary>(*number) : ErrorCode::Num;
        }
        default:
            return ErrorCode::Value;
    }
}

/// The text of a complex number: "0", "3", "-i", "3+4i".
Value writeComplex(Complex value, char suffix) {
    if (!std::isfinite(value.real()) || !std::isfinite(value.imag())) {
        return ErrorCode::Num;
    }
    const std::string letter(1, suffix == 0 ? 'i' : suffix);
    if (value.imag() == 0) {
        return numberToText(value.real());
    }
    const double part = std::fabs(value.imag());
    const std::string magnitude = (part == 1 ? "" : numberToText(part)) + letter;
    const std::string sign = value.imag() < 0 ? "-" : "";
    return value.real() == 0 ? sign + magnitude : numberToText(value.real()) + (sign.empty() ? "+" : "-") + magnitude;
}

template <class Operation>
Value mapComplex(Arguments arguments, Operation operation) {
    const auto number = toComplex(arguments[0].value);
    return number ? writeComplex(operation(number->value), number->suffix) : Value(number.error());
}
template <class Operation>
Value measureComplex(Arguments arguments, Operation operation) {
    const auto number = toComplex(arguments[0].value);
    return number ? Value(operation(number->value)) : Value(number.error());
}

/// Both numbers and the letter of the result; different letters do not mix.
struct Pair {
    Complex first;
    Complex second;
    char suffix = 0;
};
Result<Pair> complexPair(Arguments arguments) {
    const auto first = toComplex(arguments[0].value);
    const auto second = toComplex(arguments[1].value);
    if (!first || !second) {
        return first ? second.error() : first.error();
    }
    if (first->suffix != 0 && second->suffix != 0 && first->suffix != second->suffix) {
        return ErrorCode::Num;
    }
    return Pair{first->value, second->value, first->suffix != 0 ? first->suffix : second->suffix};
}

Value makeComplex(Call&, Arguments arguments) {
    char suffix = 'i';
    if (arguments.size() > 2) {
        const std::string& text = arguments[2].text();
        if (!text.empty() && text != "i" && text != "j") {
            return ErrorCode::Value;
        }
        suffix = text.empty() ? 'i' : text[0];
    }
    return writeComplex({arguments[0].number(), arguments[1].number()}, suffix);
}

Value magnitude(Call&, Arguments arguments) {
    return measureComplex(arguments, [](Complex z) { return std::abs(z); });
}
Value realPart(Call&, Arguments arguments) {
    return measureComplex(arguments, [](Complex z) { return z.real(); });
}
Value imaginaryPart(Call&, Arguments arguments) {
    return measureComplex(arguments, [](Complex z) { return z.imag(); });
}
Value argument(Call&, Arguments arguments) {
    return measureComplex(arguments, [](Complex z) {
        return z == Complex() ? Value(ErrorCode::Div0) : Value(std::atan2(z.imag(), z.real()));
    });
}
Value conjugate(Call&, Arguments arguments) {
    return mapComplex(arguments, [](Complex z) { return Complex(z.real(), -z.imag()); });
}

/// 1 / z, with parts that are not finite for 0.
Complex reciprocal(Complex z) {
    return z == Complex() ? Complex(std::numeric_limits<double>::infinity(), 0) : Complex(1) / z;
}

template <Complex (*operation)(const Complex&)>
Value apply(Call&, Arguments arguments) {
    return mapComplex(arguments, [](Complex z) { return operation(z); });
}
Complex cosecant(const Complex& z) { return reciprocal(std::sin(z)); }
Complex hyperbolicCosecant(const Complex& z) { return reciprocal(std::sinh(z)); }
Complex secant(const Complex& z) { return reciprocal(std::cos(z)); }
Complex hyperbolicSecant(const Complex& z) { return reciprocal(std::cosh(z)); }
Complex cotangent(const Complex& z) { return reciprocal(std::tan(z)); }
Complex sine(const Complex& z) { return std::sin(z); }
Complex cosine(const Complex& z) { return std::cos(z); }
Complex tangent(const Complex& z) { return std::tan(z); }
Complex hyperbolicSine(const Complex& z) { return std::sinh(z); }
Complex hyperbolicCosine(const Complex& z) { return std::cosh(z); }
Complex exponential(const Complex& z) { return std::exp(z); }
Complex naturalLogarithm(const Complex& z) { return std::log(z); }
Complex logarithm10(const Complex& z) { return {std::log10(std::abs(z)), std::arg(z) / std::log(10.0)}; }
Complex logarithm2(const Complex& z) { return {std::log2(std::abs(z)), std::arg(z) / std::log(2.0)}; }
Complex squareRoot(const Complex& z) {
    return std::sqrt(std::abs(z)) * Complex(std::cos(std::arg(z) / 2), std::sin(std::arg(z) / 2));
}

Value power(Call&, Arguments arguments) {
    const double exponent = arguments[1].number();
    const auto number = toComplex(arguments[0].value);
    if (!number) {
        return number.error();
    }
    if (number->value == Complex()) {
        return exponent > 0 ? Value("0") : Value(ErrorCode::Num);
    }
    // In polar coordinates, as the documentation of the function defines it.
    const double length = std::pow(std::abs(number->value), exponent);
    const double angle = std::arg(number->value) * exponent;
    return writeComplex({length * std::cos(angle), length * std::sin(angle)}, number->suffix);
}

Value difference(Call&, Arguments arguments) {
    const auto pair = complexPair(arguments);
    return pair ? writeComplex(pair->first - pair->second, pair->suffix) : Value(pair.error());
}
Value quotient(Call&, Arguments arguments) {
    const auto pair = complexPair(arguments);
    if (!pair) {
        return pair.error();
    }
    const auto [a, b, suffix] = *pair;
    const double square = b.real() * b.real() + b.imag() * b.imag();
    if (square == 0) {
        return ErrorCode::Num;
    }
    return writeComplex(
        {(a.real() * b.real() + a.imag() * b.imag()) / square, (a.imag() * b.real() - a.real() * b.imag()) / square},
        suffix);
}

/// Combines every number of the arguments; blanks in ranges are left out.
template <class Operation>
Value foldComplex(const Call& call, Arguments arguments, Complex start, Operation operation) {
    Imaginary total{start, 0};
    std::optional<ErrorCode> error;
    const auto take = [&](const Value& value) -> bool {
        const auto number = toComplex(value);
        if (!number) {
            error = number.error();
        } else if (total.suffix != 0 && number->suffix != 0 && total.suffix != number->suffix) {
            error = ErrorCode::Num;
        } else {
            total.value = operation(total.value, number->value);
            total.suffix = total.suffix != 0 ? total.suffix : number->suffix;
        }
        return !error;
    };
    for (const Argument& argument : arguments) {
        if (argument.value.isScalar()) {
            take(argument.value);
        } else {
            argument.grid(call).forEach(
                [&](const Value& value, int, int) -> bool { return value.isBlank() || take(value); });
        }
        if (error) {
            return *error;
        }
    }
    return writeComplex(total.value, total.suffix);
}
Value sum(Call& call, Arguments arguments) {
    return foldComplex(call, arguments, 0, [](Complex a, Complex b) { return a + b; });
}
Value product(Call& call, Arguments arguments) {
    return foldComplex(call, arguments, 1, [](Complex a, Complex b) {
        return Complex(a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real());
    });
}

// ---- Bessel functions: argument, order (0, 1, 2 ...) ----

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double highestOrder = 100000;

using QuietPolicy =
    boost::math::policies::policy<boost::math::policies::domain_error<boost::math::policies::ignore_error>,
                                  boost::math::policies::pole_error<boost::math::policies::ignore_error>,
                                  boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
                                  boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;

/// The function of |x|, with the sign that an odd order gives a negative argument.
template <class F>
double besselOf(const double* x, bool positiveOnly, F&& f) {
    const double order = std::trunc(x[1]);
    if (!(order >= 0) || order > highestOrder || (positiveOnly && !(x[0] > 0))) {
        return nan;
    }
    const double value = f(static_cast<int>(order), std::fabs(x[0]));
    return x[0] < 0 && std::fmod(order, 2) == 1 ? -value : value;
}
double besselJ(const double* x, int) {
    return besselOf(x, false, [](int n, double z) { return boost::math::cyl_bessel_j(n, z, QuietPolicy()); });
}
double besselI(const double* x, int) {
    return besselOf(x, false, [](int n, double z) { return boost::math::cyl_bessel_i(n, z, QuietPolicy()); });
}
double besselK(const double* x, int) {
    return besselOf(x, true, [](int n, double z) { return boost::math::cyl_bessel_k(n, z, QuietPolicy()); });
}
double besselY(const double* x, int) {
    return besselOf(x, true, [](int n, double z) { return boost::math::cyl_neumann(n, z, QuietPolicy()); });
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Engineering,
            .function = function,
            .refusesRanges = true};
}
constexpr FunctionRow one(std::string_view name, Function function) { return row(name, 1, 1, "S", function); }
constexpr FunctionRow bessel(std::string_view name, NumericFunction function) {
    return {.name = name,
            .minArgs = 2,
            .maxArgs = 2,
            .kinds = "N",
            .category = Category::Engineering,
            .numeric = function,
            .refusesRanges = true};
}

constexpr FunctionRow table[] = {
    bessel("BESSELI", besselI),
    bessel("BESSELJ", besselJ),
    bessel("BESSELK", besselK),
    bessel("BESSELY", besselY),
    row("COMPLEX", 2, 3, "NNT", makeComplex),
    one("IMABS", magnitude),
    one("IMAGINARY", imaginaryPart),
    one("IMARGUMENT", argument),
    one("IMCONJUGATE", conjugate),
    one("IMCOS", apply<cosine>),
    one("IMCOSH", apply<hyperbolicCosine>),
    one("IMCOT", apply<cotangent>),
    one("IMCSC", apply<cosecant>),
    one("IMCSCH", apply<hyperbolicCosecant>),
    row("IMDIV", 2, 2, "S", quotient),
    one("IMEXP", apply<exponential>),
    one("IMLN", apply<naturalLogarithm>),
    one("IMLOG10", apply<logarithm10>),
    one("IMLOG2", apply<logarithm2>),
    row("IMPOWER", 2, 2, "SN", power),
    row("IMPRODUCT", 1, anyCount, "R", product),
    one("IMREAL", realPart),
    one("IMSEC", apply<secant>),
    one("IMSECH", apply<hyperbolicSecant>),
    one("IMSIN", apply<sine>),
    one("IMSINH", apply<hyperbolicSine>),
    one("IMSQRT", apply<squareRoot>),
    row("IMSUB", 2, 2, "S", difference),
    row("IMSUM", 1, anyCount, "R", sum),
    one("IMTAN", apply<tangent>),
};

}  // namespace

std::span<const FunctionRow> complexFunctions() { return table; }

}  // namespace quorva::workbook
