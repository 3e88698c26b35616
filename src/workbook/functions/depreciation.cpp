// Depreciation of assets: straight line, declining balances, the sum of years' digits.
#include <algorithm>
#include <cmath>
#include <limits>

#include "workbook/functions/day_count.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Periods that balances are stepped through at most; longer lives are #NUM!.
constexpr double longestLife = 1e6;

double straightLine(const double* x, int) { return x[2] == 0 ? nan : (x[0] - x[1]) / x[2]; }
Value straightLineValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments[1].number(), arguments[2].number()};
    return x[2] == 0 ? Value(ErrorCode::Div0) : Value(straightLine(x, 3));
}

double sumOfYears(const double* x, int) {
    const double life = x[2];
    const double period = x[3];
    if (x[1] < 0 || !(life > 0) || !(period > 0) || period > life) {
        return nan;
    }
    return (x[0] - x[1]) * (life - period + 1) * 2 / (life * (life + 1));
}

/// DB: a fixed rate of three decimals; the first year may be a part of one, whose rest follows the life's end.
double fixedDecliningBalance(const double* x, int count) {
    const double cost = x[0];
    const double salvage = x[1];
    const double life = x[2];
    const double period = std::trunc(x[3]);
    const double months = count > 4 ? std::trunc(x[4]) : 12;
    if (cost < 0 || salvage < 0 || !(life > 0) || !(period >= 1) || !(months >= 1 && months <= 12) ||
        period > life + (months < 12 ? 1 : 0) || life > longestLife) {
        return nan;
    }
    if (cost == 0) {
        return 0;
    }
    const double rate = std::floor((1 - std::pow(salvage / cost, 1 / life)) * 1000 + 0.5) / 1000;
    double amount = cost * rate * months / 12;
    double left = cost;
    for (double year = 1; year < period; ++year) {
        left -= amount;
        amount = left * rate;
    }
    return period > life ? amount * (12 - months) / 12 : amount;
}

Value fixedDecliningBalanceValue(Call& call, Arguments arguments) {
    call.spend(std::clamp(arguments[3].number(), 0.0, longestLife));
    double x[5] = {};
    std::transform(arguments.begin(), arguments.end(), x, [](const Argument& argument) { return argument.number(); });
    return fixedDecliningBalance(x, static_cast<int>(arguments.size()));
}

/// DDB: what a balance declining by factor / life loses in one period, never below the salvage value.
double decliningBalance(double cost, double salvage, double life, double period, double factor) {
    const double rate = std::min(factor / life, 1.0);
    const double before = rate >= 1 ? (period <= 1 ? cost : 0) : cost * std::pow(1 - rate, period - 1);
    const double after = rate >= 1 ? 0 : cost * std::pow(1 - rate, period);
    return std::max(before - std::max(after, salvage), 0.0);
}
double doubleDecliningBalance(const double* x, int count) {
    const double factor = count > 4 ? x[4] : 2;
    if (x[0] < 0 || x[1] < 0 || !(x[2] > 0) || !(x[3] > 0) || x[3] > x[2] || !(factor > 0)) {
        return nan;
    }
    return decliningBalance(x[0], x[1], x[2], x[3], factor);
}

/// What VDB works on: the value left and the life left, stepped in periods of 1 from the start of the interval asked
/// for (a part of a period before it is stepped first, in one).
struct VariableBalance {
    double value;
    double salvage;
    double rate;  ///< of the declining balance, per period
    double lifeLeft;
    bool switches;  ///< to the straight line once that is more

    /// The depreciation of a part of the next period.
    double next(double part) const {
        const double declining = std::clamp(value * rate, 0.0, std::max(value - salvage, 0.0));
        const double linear = switches && lifeLeft > 0 ? std::max(value - salvage, 0.0) / lifeLeft : 0;
        // A last period longer than the life left takes no more than what is left.
        return std::max(declining, linear) * part;
    }
    void step(double part) {
        value -= next(part);
        lifeLeft -= part;
    }
};

double variableDecliningBalance(const double* x, int count) {
    const double life = x[2];
    const double start = x[3];
    const double end = x[4];
    const double factor = count > 5 ? x[5] : 2;
    const bool noSwitch = count > 6 && x[6] != 0;
    if (x[0] < 0 || x[1] < 0 || !(life > 0) || start < 0 || end < start || end > life || factor < 0 ||
        life > longestLife) {
        return nan;
    }
    VariableBalance balance{x[0], x[1], std::min(factor / life, 1.0), life, !noSwitch};
    const double part = start - std::floor(start);
    if (part > 0) {
        balance.step(part);
    }
    for (double period = 1; period <= std::floor(start); ++period) {
        balance.step(1);
    }
    double total = 0;
    double left = end - start;
    for (; left >= 1; --left) {
        total += balance.next(1);
        balance.step(1);
    }
    return left > 0 ? total + balance.next(left) : total;
}

Value variableDecliningBalanceValue(Call& call, Arguments arguments) {
    call.spend(std::clamp(arguments[4].number(), 0.0, longestLife));
    double x[7] = {};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        x[i] = arguments[i].number();
    }
    if (arguments.size() > 5 && arguments[5].missing) {
        x[5] = 2;  // VDB(cost, salvage, life, start, end, , TRUE)
    }
    return variableDecliningBalance(x, static_cast<int>(arguments.size()));
}

// ---- French depreciation: cost, purchase date, end of the first period, salvage, period, rate, basis ----

struct FrenchAsset {
    double cost;
    double salvage;
    double period;
    double rate;
    double firstPart;  ///< the years from the purchase to the end of the first period
};

Result<FrenchAsset> frenchAsset(const Call& call, Arguments arguments) {
    const double code = arguments.size() > 6 ? arguments[6].number() : 0;
    const auto basis = basisFromCode(code);
    const double purchased = std::floor(arguments[1].number());
    const double firstEnd = std::floor(arguments[2].number());
    FrenchAsset asset{arguments[0].number(), arguments[3].number(), std::trunc(arguments[4].number()),
                      arguments[5].number(), 0};
    if (!basis || *basis == Basis::Actual360 || asset.cost <= 0 || asset.salvage < 0 || asset.salvage > asset.cost ||
        asset.period < 0 || asset.period > longestLife || asset.rate <= 0 || purchased > firstEnd) {
        return ErrorCode::Num;
    }
    const auto part = yearFraction(purchased, firstEnd, *basis, call.date1904);
    if (!part) {
        return part.error();
    }
    asset.firstPart = *part;
    return asset;
}

Value linearAccounting(Call& call, Arguments arguments) {
    const auto asset = frenchAsset(call, arguments);
    if (!asset) {
        return asset.error();
    }
    const double yearly = asset->cost * asset->rate;
    const double depreciable = asset->cost - asset->salvage;
    const double first = asset->firstPart > 0 ? yearly * asset->firstPart : yearly;
    if (asset->period == 0) {
        return std::min(first, depreciable);
    }
    const double before = first + (asset->period - 1) * yearly;
    return std::clamp(depreciable - before, 0.0, yearly);
}

Value degressiveAccounting(Call& call, Arguments arguments) {
    const auto asset = frenchAsset(call, arguments);
    if (!asset) {
        return asset.error();
    }
    const double life = 1 / asset->rate;
    if (life < 3 || (life > 4 && life < 5)) {
        return ErrorCode::Num;
    }
    const double rate = asset->rate * (life <= 4 ? 1.5 : life <= 6 ? 2 : 2.5);
    const auto whole = [](double amount) { return std::floor(amount + 0.5); };
    double amount = whole(asset->cost * rate * (asset->firstPart > 0 ? asset->firstPart : 1));
    double left = asset->cost - amount;
    double depreciable = left - asset->salvage;
    call.spend(asset->period);
    for (double period = 0; period < asset->period; ++period) {
        amount = whole(rate * left);
        depreciable -= amount;
        if (depreciable < 0) {  // the last two periods share what is left
            const double remaining = asset->period - period - 1;
            return remaining < 2 ? whole(left * 0.5) : 0.0;
        }
        left -= amount;
    }
    return amount;
}

constexpr FunctionRow numbers(std::string_view name, int minArgs, int maxArgs, NumericFunction function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = "N",
            .category = Category::Finance,
            .numeric = function};
}
constexpr FunctionRow french(std::string_view name, Function function) {
    return {.name = name,
            .minArgs = 6,
            .maxArgs = 7,
            .kinds = "N",
            .category = Category::Finance,
            .function = function,
            .refusesRanges = true};
}

constexpr FunctionRow table[] = {
    french("AMORDEGRC", degressiveAccounting),
    french("AMORLINC", linearAccounting),
    {.name = "DB",
     .minArgs = 4,
     .maxArgs = 5,
     .kinds = "N",
     .category = Category::Finance,
     .function = fixedDecliningBalanceValue,
     .numeric = fixedDecliningBalance},
    numbers("DDB", 4, 5, doubleDecliningBalance),
    {.name = "SLN",
     .minArgs = 3,
     .maxArgs = 3,
     .kinds = "N",
     .category = Category::Finance,
     .function = straightLineValue,
     .numeric = straightLine},
    numbers("SYD", 4, 4, sumOfYears),
    {.name = "VDB",
     .minArgs = 5,
     .maxArgs = 7,
     .kinds = "N",
     .category = Category::Finance,
     .function = variableDecliningBalanceValue},
};

}  // namespace

std::span<const FunctionRow> depreciationFunctions() { return table; }

}  // namespace quorva::workbook
