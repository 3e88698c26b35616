// Trigonometric and hyperbolic functions and their inverses.
#include <cmath>
#include <limits>
#include <numbers>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

using std::numbers::pi;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Angles from here on are #NUM!: their reduction would have no correct digits left in the host.
constexpr double angleLimit = 134217728;  // 2^27

double limitedAngle(double x) { return std::fabs(x) < angleLimit ? x : nan; }

double sine(const double* x, int) { return std::sin(limitedAngle(x[0])); }
double cosine(const double* x, int) { return std::cos(limitedAngle(x[0])); }
double tangent(const double* x, int) { return std::tan(limitedAngle(x[0])); }
double secant(const double* x, int) { return 1 / std::cos(limitedAngle(x[0])); }
double hyperbolicSine(const double* x, int) { return std::sinh(x[0]); }
double hyperbolicCosine(const double* x, int) { return std::cosh(x[0]); }
double hyperbolicTangent(const double* x, int) { return std::tanh(x[0]); }
double hyperbolicSecant(const double* x, int) { return 1 / std::cosh(x[0]); }
double arcSine(const double* x, int) { return std::asin(x[0]); }
double arcCosine(const double* x, int) { return std::acos(x[0]); }
double arcTangent(const double* x, int) { return std::atan(x[0]); }
double areaSine(const double* x, int) { return std::asinh(x[0]); }
double areaCosine(const double* x, int) { return std::acosh(x[0]); }
double areaTangent(const double* x, int) { return std::atanh(x[0]); }
double degrees(const double* x, int) { return x[0] * (180 / pi); }
double radians(const double* x, int) { return x[0] * (pi / 180); }

/// In (0, pi), unlike the arc tangent of the reciprocal.
double arcCotangent(const double* x, int) {
    if (x[0] == 0) {
        return pi / 2;
    }
    return x[0] > 0 ? std::atan(1 / x[0]) : pi + std::atan(1 / x[0]);
}

double areaCotangent(const double* x, int) { return std::fabs(x[0]) > 1 ? std::atanh(1 / x[0]) : nan; }

/// The reciprocal of f(x), #DIV/0! at 0 and #NUM! for angles that are too large.
template <double (*f)(double)>
Value reciprocal(Call&, Arguments arguments) {
    const double x = arguments[0].number();
    if (x == 0) {
        return ErrorCode::Div0;
    }
    return std::fabs(x) < angleLimit ? Value(1 / f(x)) : Value(ErrorCode::Num);
}
/// As reciprocal, for functions of no angle: any number will do.
template <double (*f)(double)>
Value hyperbolicReciprocal(Call&, Arguments arguments) {
    const double x = arguments[0].number();
    return x == 0 ? Value(ErrorCode::Div0) : Value(1 / f(x));
}
double sin1(double x) { return std::sin(x); }
double tan1(double x) { return std::tan(x); }
double sinh1(double x) { return std::sinh(x); }
double tanh1(double x) { return std::tanh(x); }

Value arcTangent2(Call&, Arguments arguments) {
    const double x = arguments[0].number();
    const double y = arguments[1].number();
    return x == 0 && y == 0 ? Value(ErrorCode::Div0) : Value(std::atan2(y, x));
}

Value piConstant(Call&, Arguments) { return pi; }

Value squareRootOfPi(Call&, Arguments arguments) { return std::sqrt(arguments[0].number() * pi); }

constexpr FunctionRow numeric(std::string_view name, NumericFunction function) {
    return {.name = name,
            .minArgs = 1,
            .maxArgs = 1,
            .kinds = "N",
            .category = Category::Trigonometry,
            .numeric = function};
}
constexpr FunctionRow general(std::string_view name, Function function, std::string_view kinds = "N") {
    return {.name = name,
            .minArgs = static_cast<int>(kinds.size()),
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Trigonometry,
            .function = function};
}

constexpr FunctionRow table[] = {
    numeric("ACOS", arcCosine),
    numeric("ACOSH", areaCosine),
    numeric("ACOT", arcCotangent),
    numeric("ACOTH", areaCotangent),
    numeric("ASIN", arcSine),
    numeric("ASINH", areaSine),
    numeric("ATAN", arcTangent),
    general("ATAN2", arcTangent2, "NN"),
    numeric("ATANH", areaTangent),
    numeric("COS", cosine),
    numeric("COSH", hyperbolicCosine),
    general("COT", reciprocal<tan1>),
    general("COTH", hyperbolicReciprocal<tanh1>),
    general("CSC", reciprocal<sin1>),
    general("CSCH", hyperbolicReciprocal<sinh1>),
    numeric("DEGREES", degrees),
    general("PI", piConstant, ""),
    numeric("RADIANS", radians),
    numeric("SEC", secant),
    numeric("SECH", hyperbolicSecant),
    numeric("SIN", sine),
    numeric("SINH", hyperbolicSine),
    {.name = "SQRTPI",
     .minArgs = 1,
     .maxArgs = 1,
     .kinds = "N",
     .category = Category::Trigonometry,
     .function = squareRootOfPi,
     .refusesRanges = true},
    numeric("TAN", tangent),
    numeric("TANH", hyperbolicTangent),
};

}  // namespace

std::span<const FunctionRow> trigonometryFunctions() { return table; }

}  // namespace quorva::workbook
