// Counts, averages, extremes and measures of spread and shape.
#include <algorithm>
#include <cmath>
#include <limits>

#include "workbook/functions/families.h"
#include "workbook/functions/samples.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// A statistic of all numbers in the arguments.
template <Value (*statistic)(Sample), const NumberRule& rule = plainNumbers>
Value ofNumbers(Call& call, Arguments arguments) {
    const auto numbers = collectNumbers(call, arguments, rule);
    return numbers ? statistic(*numbers) : Value(numbers.error());
}

Value deviation(Sample sample) { return rootOf(varianceOf(sample)); }
Value populationDeviation(Sample sample) { return rootOf(populationVarianceOf(sample)); }

Value averageDeviation(Sample sample) {
    if (sample.empty()) {
        return ErrorCode::Num;
    }
    const double mean = meanOf(sample).number();
    double total = 0;
    for (const double x : sample) {
        total += std::fabs(x - mean);
    }
    return total / static_cast<double>(sample.size());
}

Value sumOfSquaredDeviations(Sample sample) {
    return sample.empty() ? Value(ErrorCode::Num) : Value(squaredDeviations(sample));
}

Value geometricMean(Sample sample) {
    double logarithms = 0;
    for (const double x : sample) {
        if (x <= 0) {
            return ErrorCode::Num;
        }
        logarithms += std::log(x);
    }
    return sample.empty() ? Value(ErrorCode::Num) : Value(std::exp(logarithms / static_cast<double>(sample.size())));
}

Value harmonicMean(Sample sample) {
    double reciprocals = 0;
    for (const double x : sample) {
        if (x <= 0) {
            return ErrorCode::Num;
        }
        reciprocals += 1 / x;
    }
    return sample.empty() ? Value(ErrorCode::NA) : Value(static_cast<double>(sample.size()) / reciprocals);
}

/// The sum of ((x - mean) / s)^power.
double standardizedMoment(Sample sample, double s, int power) {
    const double mean = meanOf(sample).number();
    double total = 0;
    for (const double x : sample) {
        const double z = (x - mean) / s;
        total += power == 3 ? z * z * z : z * z * z * z;
    }
    return total;
}

Value skewness(Sample sample) {
    const auto n = static_cast<double>(sample.size());
    const Value s = deviation(sample);
    if (n < 3 || !s.isNumber() || s.number() == 0) {
        return ErrorCode::Div0;
    }
    return n / ((n - 1) * (n - 2)) * standardizedMoment(sample, s.number(), 3);
}

Value populationSkewness(Sample sample) {
    const Value s = populationDeviation(sample);
    if (sample.size() < 3 || s.number() == 0) {
        return ErrorCode::Div0;
    }
    return standardizedMoment(sample, s.number(), 3) / static_cast<double>(sample.size());
}

Value kurtosis(Sample sample) {
    const auto n = static_cast<double>(sample.size());
    const Value s = deviation(sample);
    if (n < 4 || !s.isNumber() || s.number() == 0) {
        return ErrorCode::Div0;
    }
    return n * (n + 1) / ((n - 1) * (n - 2) * (n - 3)) * standardizedMoment(sample, s.number(), 4) -
           3 * (n - 1) * (n - 1) / ((n - 2) * (n - 3));
}

Value average(Call& call, Arguments arguments) {
    double total = 0;
    double count = 0;
    const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) {
        total += x;
        ++count;
    });
    if (error) {
        return *error;
    }
    return count == 0 ? Value(ErrorCode::Div0) : Value(total / count);
}

template <bool largest>
Value extreme(Call& call, Arguments arguments) {
    double best = largest ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    const auto error = forEachNumber(call, arguments, plainNumbers, [&](double x) {
        if (largest ? x > best : x < best) {
            best = x;
        }
    });
    return error ? Value(*error) : Value(std::isfinite(best) ? best : 0);
}

/// Calls visit(value) for every cell and element, errors too.
template <class Visit>
void forEachValue(const Call& call, const Argument& argument, Visit&& visit) {
    if (argument.value.isReference()) {
        for (const Area& area : argument.value.areas()) {
            Grid(call.cells, area).forEach([&](const Value& value, int, int) { visit(value); });
        }
    } else {
        argument.grid(call).forEach([&](const Value& value, int, int) { visit(value); });
    }
}

/// Typed directly, Booleans, readable texts and empty arguments count too; errors never do.
Value count(Call& call, Arguments arguments) {
    std::int64_t total = 0;
    for (const Argument& argument : arguments) {
        if (argument.value.isScalar()) {
            total += directNumber(argument) ? 1 : 0;
        } else {
            forEachValue(call, argument, [&](const Value& value) { total += value.isNumber() ? 1 : 0; });
        }
    }
    return total;
}

Value countFilled(Call& call, Arguments arguments) {
    std::int64_t total = 0;
    for (const Argument& argument : arguments) {
        if (argument.value.isScalar()) {
            ++total;
        } else {
            forEachValue(call, argument, [&](const Value& value) { total += value.isBlank() ? 0 : 1; });
        }
    }
    return total;
}

double standardize(const double* x, int) { return x[2] > 0 ? (x[0] - x[1]) / x[2] : nan; }
double fisher(const double* x, int) { return std::fabs(x[0]) < 1 ? std::atanh(x[0]) : nan; }
double fisherInverse(const double* x, int) { return std::tanh(x[0]); }

/// PROB(values, probabilities, lower, upper).
Value probability(Call& call, Arguments arguments) {
    const auto pairs = collectPairs(call, arguments[0], arguments[1]);
    if (!pairs) {
        return pairs.error();
    }
    const double lower = arguments[2].number();
    const double upper = arguments.size() > 3 && !arguments[3].missing ? arguments[3].number() : lower;
    double total = 0;
    double inside = 0;
    for (std::size_t i = 0; i < pairs->first.size(); ++i) {
        const double p = pairs->second[i];
        if (p <= 0 || p > 1) {
            return ErrorCode::Num;
        }
        total += p;
        if (pairs->first[i] >= lower && pairs->first[i] <= upper) {
            inside += p;
        }
    }
    return std::fabs(total - 1) > 1e-10 ? Value(ErrorCode::Num) : Value(inside);
}

constexpr FunctionRow many(std::string_view name, Function function) {
    return {.name = name,
            .minArgs = 1,
            .maxArgs = anyCount,
            .kinds = "R",
            .category = Category::Statistics,
            .function = function};
}
constexpr FunctionRow numeric(std::string_view name, std::string_view kinds, NumericFunction function) {
    return {.name = name,
            .minArgs = static_cast<int>(kinds.size()),
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Statistics,
            .numeric = function};
}

constexpr FunctionRow table[] = {
    many("AVEDEV", ofNumbers<averageDeviation>),
    many("AVERAGE", average),
    many("AVERAGEA", ofNumbers<meanOf, allValues>),
    many("COUNT", count),
    many("COUNTA", countFilled),
    many("DEVSQ", ofNumbers<sumOfSquaredDeviations>),
    numeric("FISHER", "N", fisher),
    numeric("FISHERINV", "N", fisherInverse),
    many("GEOMEAN", ofNumbers<geometricMean>),
    many("HARMEAN", ofNumbers<harmonicMean>),
    many("KURT", ofNumbers<kurtosis>),
    many("MAX", extreme<true>),
    many("MAXA", ofNumbers<maximumOf, allValues>),
    many("MEDIAN", ofNumbers<medianOf>),
    many("MIN", extreme<false>),
    many("MINA", ofNumbers<minimumOf, allValues>),
    {.name = "PROB",
     .minArgs = 3,
     .maxArgs = 4,
     .kinds = "AANN",
     .category = Category::Statistics,
     .function = probability},
    many("SKEW", ofNumbers<skewness>),
    many("SKEW.P", ofNumbers<populationSkewness>),
    numeric("STANDARDIZE", "NNN", standardize),
    many("STDEV", ofNumbers<deviation>),
    many("STDEV.P", ofNumbers<populationDeviation>),
    many("STDEV.S", ofNumbers<deviation>),
    many("STDEVA", ofNumbers<deviation, allValues>),
    many("STDEVP", ofNumbers<populationDeviation>),
    many("STDEVPA", ofNumbers<populationDeviation, allValues>),
    many("VAR", ofNumbers<varianceOf>),
    many("VAR.P", ofNumbers<populationVarianceOf>),
    many("VAR.S", ofNumbers<varianceOf>),
    many("VARA", ofNumbers<varianceOf, allValues>),
    many("VARP", ofNumbers<populationVarianceOf>),
    many("VARPA", ofNumbers<populationVarianceOf, allValues>),
};

}  // namespace

std::span<const FunctionRow> statisticsFunctions() { return table; }

}  // namespace quorva::workbook
