// Annuities, rates and series of cash flows.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// The argument at an index, or what it stands for when it was left out.
double optional(const double* x, int count, int index, double otherwise = 0) {
    return index < count ? x[index] : otherwise;
}
double numberOr(Arguments arguments, std::size_t index, double otherwise) {
    return index < arguments.size() && !arguments[index].missing ? arguments[index].number() : otherwise;
}

// ---- annuities: pv (1 + r)^n + pmt (1 + r type) ((1 + r)^n - 1) / r + fv = 0 ----

/// Payments due at the beginning of each period weigh 1 + r.
double dueFactor(double rate, double type) { return type != 0 ? 1 + rate : 1; }
/// Through the logarithm of 1 + r, whose last digits a small rate would otherwise lose.
double growth(double rate, double periods) {
    return rate > -1 ? std::exp(periods * std::log1p(rate)) : std::pow(1 + rate, periods);
}
/// ((1 + r)^n - 1) / r
double annuityFactor(double rate, double periods) {
    if (rate == 0) {
        return periods;
    }
    return (rate > -1 ? std::expm1(periods * std::log1p(rate)) : std::pow(1 + rate, periods) - 1) / rate;
}

double futureValueOf(double rate, double periods, double payment, double present, double type) {
    return -(present * growth(rate, periods) + payment * dueFactor(rate, type) * annuityFactor(rate, periods));
}
double paymentOf(double rate, double periods, double present, double future, double type) {
    if (periods == 0) {
        return nan;
    }
    return -(present * growth(rate, periods) + future) / (dueFactor(rate, type) * annuityFactor(rate, periods));
}
double interestOf(double rate, double period, double periods, double present, double future, double type) {
    if (!(period >= 1) || !(period < periods + 1)) {
        return nan;
    }
    if (type != 0 && period == 1) {
        return 0;
    }
    const double payment = paymentOf(rate, periods, present, future, type);
    const double interest = futureValueOf(rate, period - 1, payment, present, type) * rate;
    return type != 0 ? interest / (1 + rate) : interest;
}

/// (1 + r)^n and ((1 + r)^n - 1) / r as PV and FV take them, from the power itself: balances that should end at 0 end
/// in its last bits.
struct Annuity {
    double growth;
    double factor;
};
Annuity annuity(double rate, double periods) {
    const double power = raise(1 + rate, periods);
    return {power, rate == 0 ? periods : (power - 1) / rate};
}
double presentValue(const double* x, int count) {
    const auto [power, factor] = annuity(x[0], x[1]);
    return -(optional(x, count, 3) + x[2] * dueFactor(x[0], optional(x, count, 4)) * factor) / power;
}
double futureValue(const double* x, int count) {
    if (x[0] == -1 && x[1] < 0) {
        return nan;  // 0 to a negative power
    }
    const auto [power, factor] = annuity(x[0], x[1]);
    return -(optional(x, count, 3) * power + x[2] * dueFactor(x[0], optional(x, count, 4)) * factor);
}
Value futureValueValue(Call&, Arguments arguments) {
    if (arguments[0].number() == -1 && arguments[1].number() < 0) {
        return ErrorCode::Div0;
    }
    double x[5];
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        x[i] = arguments[i].number();
    }
    return futureValue(x, static_cast<int>(arguments.size()));
}
double payment(const double* x, int count) {
    if (x[0] < -1) {
        return nan;
    }
    return paymentOf(x[0], x[1], x[2], optional(x, count, 3), optional(x, count, 4));
}
double interestPayment(const double* x, int count) {
    return interestOf(x[0], x[1], x[2], x[3], optional(x, count, 4), optional(x, count, 5));
}
/// The principal of the first payment in arrears, grown by the rate from period to period: taken as the payment less
/// the interest it would lose its digits where that is nearly all of the payment.
double principalPayment(const double* x, int count) {
    const double rate = x[0];
    const double period = x[1];
    const double future = optional(x, count, 4);
    const double type = optional(x, count, 5);
    if (!(period >= 1) || !(period < x[2] + 1)) {
        return nan;
    }
    if (type != 0 && period == 1) {
        return paymentOf(rate, x[2], x[3], future, type);
    }
    return -(x[3] + future) * growth(rate, period - 1) / (dueFactor(rate, type) * annuityFactor(rate, x[2]));
}
double periodCount(const double* x, int count) {
    const double rate = x[0];
    const double present = x[2];
    const double future = optional(x, count, 3);
    if (rate == 0) {
        return x[1] == 0 ? nan : -(present + future) / x[1];
    }
    const double due = x[1] * dueFactor(rate, optional(x, count, 4));
    return std::log((due - future * rate) / (present * rate + due)) / std::log1p(rate);
}
double evenPrincipalInterest(const double* x, int) { return x[2] == 0 ? nan : x[3] * x[0] * (x[1] / x[2] - 1); }

Value evenPrincipalInterestValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments[1].number(), arguments[2].number(), arguments[3].number()};
    return x[2] == 0 ? Value(ErrorCode::Div0) : Value(evenPrincipalInterest(x, 4));
}

/// What the annuity equation is off by at a rate, and its slope.
struct Balance {
    double value;
    double slope;
};
Balance annuityBalance(double rate, double n, double payment, double present, double future, double type) {
    if (std::fabs(rate) < 1e-8) {  // the expansion around 0: (s^n - 1) / r = n + n (n - 1) r / 2
        const double annuity = n + n * (n - 1) * rate / 2;
        const double slope = n * (n - 1) / 2;
        return {present * (1 + n * rate) + payment * (1 + rate * type) * annuity + future,
                present * n + payment * (type * annuity + slope)};
    }
    const double power = growth(rate, n);
    const double powerSlope = n * growth(rate, n - 1);
    const double annuity = annuityFactor(rate, n);
    const double annuitySlope = (powerSlope - annuity) / rate;
    return {present * power + payment * (1 + rate * type) * annuity + future,
            present * powerSlope + payment * (type * annuity + (1 + rate * type) * annuitySlope)};
}

/// Newton's method from a guess; f returns the function's value and slope. NaN when it does not settle.
template <class F>
double newton(double x, double lowest, int iterations, F&& f) {
    for (int i = 0; i < iterations; ++i) {
        const Balance at = f(x);
        if (at.value == 0) {
            return x;
        }
        double next = x - at.value / at.slope;
        if (!std::isfinite(next)) {
            return nan;
        }
        if (next <= lowest) {
            next = (x + lowest) / 2;
        }
        if (std::fabs(next - x) <= 1e-14 * std::max(1e-2, std::fabs(next))) {
            return next;
        }
        x = next;
    }
    return nan;
}

/// Looks for a sign change of f outwards from the guess, then halves it. f(x) above `lowest`. NaN when there is none.
template <class F>
double bracketAndBisect(double guess, double lowest, F&& f) {
    const auto refine = [&](double a, double b) {
        const bool aPositive = f(a) > 0;
        for (int i = 0; i < 200 && std::fabs(b - a) > 1e-16 * std::max(1e-2, std::fabs(a)); ++i) {
            const double middle = a + (b - a) / 2;
            (((f(middle) > 0) == aPositive) ? a : b) = middle;
        }
        return a + (b - a) / 2;
    };
    double below = guess;
    double above = guess;
    double atBelow = f(guess);
    double atAbove = atBelow;
    for (int i = 0; i < 200; ++i) {
        const double nextBelow = lowest + (below - lowest) * 0.9;
        const double value = f(nextBelow);
        if (std::isfinite(value) && value * atBelow <= 0) {
            return refine(nextBelow, below);
        }
        below = nextBelow;
        atBelow = value;
        const double nextAbove = lowest + (above - lowest) * 1.1;
        const double valueAbove = f(nextAbove);
        if (std::isfinite(valueAbove) && valueAbove * atAbove <= 0) {
            return refine(above, nextAbove);
        }
        above = nextAbove;
        atAbove = valueAbove;
    }
    return nan;
}

double rate(const double* x, int count) {
    const double n = x[0];
    const double future = optional(x, count, 3);
    const double type = optional(x, count, 4) != 0 ? 1 : 0;
    const double guess = optional(x, count, 5, 0.1);
    if (!(n > 0) || guess <= -1) {
        return nan;
    }
    const auto balance = [&](double r) { return annuityBalance(r, n, x[1], x[2], future, type); };
    double found = newton(guess, -1, 60, balance);
    if (std::isnan(found)) {
        found = bracketAndBisect(guess, -1, [&](double r) { return balance(r).value; });
    }
    return found > -1 + 1e-9 ? found : nan;  // at -1 every payment is worth nothing: no rate
}

// ---- loans between two periods ----

/// The interest of the payments from `first` to `last` (from 1), or NaN when the arguments make no loan.
double interestBetween(const double* x, bool principal) {
    const double ratePerPeriod = x[0];
    const double periods = std::trunc(x[1]);
    const double present = x[2];
    const double first = std::trunc(x[3]);
    const double last = std::trunc(x[4]);
    const double type = std::trunc(x[5]);
    if (!(ratePerPeriod > 0 && periods > 0 && present > 0 && first >= 1 && last >= first && last <= periods) ||
        (type != 0 && type != 1)) {
        return nan;
    }
    const double each = paymentOf(ratePerPeriod, periods, present, 0, type);
    // What is owed just after the payments of periods 1 to k; the interest is what was paid beyond the reduction.
    const auto owed = [&](double k) {
        if (type == 0) {
            return -futureValueOf(ratePerPeriod, k, each, present, 0);
        }
        return k == 0 ? present : -futureValueOf(ratePerPeriod, k - 1, each, present + each, 0);
    };
    const double reduction = owed(last) - owed(first - 1);
    return principal ? reduction : each * (last - first + 1) - reduction;
}
double cumulativeInterest(const double* x, int) { return interestBetween(x, false); }
double cumulativePrincipal(const double* x, int) { return interestBetween(x, true); }

// ---- interest rates ----

double effectiveRate(const double* x, int) {
    const double periods = std::trunc(x[1]);
    return x[0] > 0 && periods >= 1 ? std::pow(1 + x[0] / periods, periods) - 1 : nan;
}
double nominalRate(const double* x, int) {
    const double periods = std::trunc(x[1]);
    return x[0] > 0 && periods >= 1 ? periods * (std::pow(1 + x[0], 1 / periods) - 1) : nan;
}
double equivalentRate(const double* x, int) {
    return x[0] > 0 && x[1] != 0 ? std::pow(x[2] / x[1], 1 / x[0]) - 1 : nan;
}
double periodsToGrow(const double* x, int) {
    return x[0] > 0 && x[1] > 0 && x[2] > 0 ? (std::log(x[2]) - std::log(x[1])) / std::log1p(x[0]) : nan;
}

Value futureValueSchedule(Call& call, Arguments arguments) {
    double value = arguments[0].number();
    std::optional<ErrorCode> error =
        arguments[1].value.isError() ? std::optional(arguments[1].value.error()) : std::nullopt;
    arguments[1].grid(call).forEach([&](const Value& cell, int, int) -> bool {
        if (cell.isError()) {
            error = cell.error();
        } else if (!cell.isNumber() && !cell.isBlank()) {
            error = ErrorCode::Value;
        } else {
            value *= 1 + (cell.isNumber() ? cell.number() : 0);
        }
        return !error;
    });
    return error ? Value(*error) : Value(value);
}

/// Digits that the denominator of a fractional price takes after the point.
double fractionScale(double denominator) { return std::pow(10, std::ceil(std::log10(denominator) - 1e-12)); }

Value dollarFraction(Arguments arguments, bool toDecimal) {
    const double denominator = std::trunc(arguments[1].number());
    if (arguments[1].number() < 0) {
        return ErrorCode::Num;
    }
    if (denominator == 0) {
        return ErrorCode::Div0;
    }
    double whole = 0;
    const double fraction = std::modf(arguments[0].number(), &whole);
    const double scale = fractionScale(denominator) / denominator;
    return toDecimal ? whole + fraction * scale : whole + fraction / scale;
}
Value dollarToDecimal(Call&, Arguments arguments) { return dollarFraction(arguments, true); }
Value dollarToFraction(Call&, Arguments arguments) { return dollarFraction(arguments, false); }

// ---- cash flows ----

/// forEachNumber for the arguments of the cash flow functions, which stand in the hot part of most models.
template <class Visit>
std::optional<ErrorCode> forEachFlow(const Call& call, const Argument& argument, Visit&& visit) {
    if (!argument.value.isReference()) {
        return forEachNumber(call, argument, plainNumbers, visit);
    }
    std::optional<ErrorCode> error;
    for (const Area& area : argument.value.areas()) {
        call.cells.forEachSlot(area, [&](int, int, Slot slot) -> bool {
            if (call.cells.isNumber(slot)) {
                visit(call.cells.number(slot));
            } else if (call.cells.other(slot).isError()) {
                error = call.cells.other(slot).error();
                return false;
            }
            return true;
        });
        if (error) {
            break;
        }
    }
    return error;
}

Value netPresentValue(Call& call, Arguments arguments) {
    const double step = 1 + arguments[0].number();
    double discount = 1;
    double total = 0;
    bool any = false;
    for (const Argument& argument : arguments.subspan(1)) {
        const auto error = forEachFlow(call, argument, [&](double flow) {
            discount *= step;
            total += flow / discount;
            any = true;
        });
        if (error) {
            return *error;
        }
    }
    return step == 0 && any ? Value(ErrorCode::Div0) : Value(total);
}

Result<std::vector<double>> collectFlows(const Call& call, const Argument& argument) {
    std::vector<double> flows;
    const auto error = forEachFlow(call, argument, [&](double flow) { flows.push_back(flow); });
    return error ? Result<std::vector<double>>(*error) : flows;
}
bool changesSign(std::span<const double> flows) {
    return std::any_of(flows.begin(), flows.end(), [](double x) { return x > 0; }) &&
           std::any_of(flows.begin(), flows.end(), [](double x) { return x < 0; });
}

/// The net present value at a rate, periods from 0, and its slope.
Balance discounted(std::span<const double> flows, double rateOfReturn) {
    const double step = 1 / (1 + rateOfReturn);
    double discount = 1;
    Balance result{0, 0};
    for (std::size_t i = 0; i < flows.size(); ++i) {
        result.value += flows[i] * discount;
        discount *= step;
        result.slope -= static_cast<double>(i) * flows[i] * discount;
    }
    return result;
}

/// An error among the flows is #VALUE!; only an argument that is an error itself is passed on.
Value internalRate(Call& call, Arguments arguments) {
    const auto flows = collectFlows(call, arguments[0]);
    if (!flows) {
        return arguments[0].value.isError() ? flows.error() : ErrorCode::Value;
    }
    const double guess = numberOr(arguments, 1, 0.1);
    if (!changesSign(*flows)) {
        return ErrorCode::Num;
    }
    if (guess <= -1) {
        return ErrorCode::Value;
    }
    const auto value = [&](double r) { return discounted(*flows, r); };
    const double found = newton(guess, -1, 40, value);
    return std::isnan(found) ? bracketAndBisect(guess, -1, [&](double r) { return value(r).value; }) : found;
}

Value modifiedInternalRate(Call& call, Arguments arguments) {
    const auto flows = collectFlows(call, arguments[0]);
    if (!flows) {
        return flows.error();
    }
    const double finance = arguments[1].number();
    const double reinvest = arguments[2].number();
    if (!changesSign(*flows) || finance == -1 || reinvest == -1) {
        return ErrorCode::Div0;
    }
    const double last = static_cast<double>(flows->size()) - 1;
    double paid = 0;
    double earned = 0;
    for (std::size_t i = 0; i < flows->size(); ++i) {
        const double flow = (*flows)[i];
        const double at = static_cast<double>(i);
        if (flow < 0) {
            paid -= flow / std::pow(1 + finance, at);
        } else {
            earned += flow * std::pow(1 + reinvest, last - at);
        }
    }
    return std::pow(earned / paid, 1 / last) - 1;
}

/// Flows at dates: amounts, and years of 365 days since the first of them.
struct DatedFlows {
    std::vector<double> amounts;
    std::vector<double> years;
};

/// The numbers of a range or array; a blank cell is a NaN where blanks are allowed, else #VALUE! as texts are.
Result<std::vector<double>> numbersOnly(const Call& call, const Argument& argument, bool blanksAllowed) {
    if (argument.value.isError()) {
        return argument.value.error();
    }
    const Grid grid = argument.grid(call);
    std::vector<double> numbers;
    const std::int64_t used =
        grid.fromCells() ? static_cast<std::int64_t>(grid.usedRows()) * grid.columns() : grid.size();
    for (std::int64_t i = 0; i < used; ++i) {
        const Value value = grid.at(i);
        if (value.isError()) {
            return value.error();
        }
        if (!value.isNumber() && !(value.isBlank() && blanksAllowed)) {
            return ErrorCode::Value;
        }
        numbers.push_back(value.isBlank() ? nan : value.number());
    }
    return numbers;
}

/// Where blanks are allowed, rows without amount and date are left out; a lone blank counts as 0.
Result<DatedFlows> datedFlows(const Call& call, const Argument& values, const Argument& dates, bool blanksAllowed) {
    const auto amounts = numbersOnly(call, values, blanksAllowed);
    if (!amounts) {
        return amounts.error();
    }
    const auto days = numbersOnly(call, dates, blanksAllowed);
    if (!days) {
        return days.error();
    }
    if (amounts->size() != days->size()) {
        return ErrorCode::Num;
    }
    const auto numberOrZero = [](double x) { return std::isnan(x) ? 0 : x; };
    DatedFlows flows;
    for (std::size_t i = 0; i < amounts->size(); ++i) {
        if (!std::isnan((*amounts)[i]) || !std::isnan((*days)[i])) {
            flows.amounts.push_back(numberOrZero((*amounts)[i]));
            flows.years.push_back(numberOrZero((*days)[i]));
        }
    }
    if (flows.amounts.empty()) {
        return ErrorCode::Num;
    }
    const double first = std::trunc(flows.years[0]);
    for (double& day : flows.years) {
        day = std::trunc(day);
        if (day < first || day < 0 || day > lastSerial) {
            return ErrorCode::Num;
        }
        day = (day - first) / 365;
    }
    return flows;
}

Balance discounted(const DatedFlows& flows, double rateOfReturn) {
    Balance result{0, 0};
    for (std::size_t i = 0; i < flows.amounts.size(); ++i) {
        const double present = flows.amounts[i] / std::pow(1 + rateOfReturn, flows.years[i]);
        result.value += present;
        result.slope -= flows.years[i] * present / (1 + rateOfReturn);
    }
    return result;
}

Value netPresentValueAtDates(Call& call, Arguments arguments) {
    const auto flows = datedFlows(call, arguments[1], arguments[2], false);
    if (!flows) {
        return flows.error();
    }
    const double rateOfReturn = arguments[0].number();
    return rateOfReturn <= 0 ? Value(ErrorCode::Num) : Value(discounted(*flows, rateOfReturn).value);
}

Value internalRateAtDates(Call& call, Arguments arguments) {
    const auto flows = datedFlows(call, arguments[0], arguments[1], true);
    if (!flows) {
        return flows.error();
    }
    const double guess = numberOr(arguments, 2, 0.1);
    if (!changesSign(flows->amounts) || guess <= -1) {
        return ErrorCode::Num;
    }
    const auto value = [&](double r) { return discounted(*flows, r); };
    const double found = newton(guess, -1, 100, value);
    return std::isnan(found) ? bracketAndBisect(guess, -1, [&](double r) { return value(r).value; }) : found;
}

constexpr FunctionRow numbers(std::string_view name, int minArgs, int maxArgs, NumericFunction function,
                              bool toolPack = false) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = "N",
            .category = Category::Finance,
            .numeric = function,
            .refusesRanges = toolPack};
}
constexpr FunctionRow values(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function,
                             bool toolPack = false) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Finance,
            .function = function,
            .refusesRanges = toolPack};
}

constexpr FunctionRow table[] = {
    numbers("CUMIPMT", 6, 6, cumulativeInterest, true),
    numbers("CUMPRINC", 6, 6, cumulativePrincipal, true),
    values("DOLLARDE", 2, 2, "N", dollarToDecimal, true),
    values("DOLLARFR", 2, 2, "N", dollarToFraction, true),
    numbers("EFFECT", 2, 2, effectiveRate, true),
    {.name = "FV",
     .minArgs = 3,
     .maxArgs = 5,
     .kinds = "N",
     .category = Category::Finance,
     .function = futureValueValue,
     .numeric = futureValue},
    values("FVSCHEDULE", 2, 2, "NA", futureValueSchedule, true),
    numbers("IPMT", 4, 6, interestPayment),
    values("IRR", 1, 2, "RN", internalRate),
    {.name = "ISPMT",
     .minArgs = 4,
     .maxArgs = 4,
     .kinds = "N",
     .category = Category::Finance,
     .function = evenPrincipalInterestValue,
     .numeric = evenPrincipalInterest},
    values("MIRR", 3, 3, "RNN", modifiedInternalRate),
    numbers("NOMINAL", 2, 2, nominalRate, true),
    numbers("NPER", 3, 5, periodCount),
    values("NPV", 2, anyCount, "NR", netPresentValue),
    numbers("PDURATION", 3, 3, periodsToGrow),
    numbers("PMT", 3, 5, payment),
    numbers("PPMT", 4, 6, principalPayment),
    numbers("PV", 3, 5, presentValue),
    numbers("RATE", 3, 6, rate),
    numbers("RRI", 3, 3, equivalentRate),
    values("XIRR", 2, 3, "AAN", internalRateAtDates, true),
    values("XNPV", 3, 3, "NAA", netPresentValueAtDates, true),
};

}  // namespace

std::span<const FunctionRow> financeFunctions() { return table; }

}  // namespace quorva::workbook
