// Ranks, percentiles, modes and frequencies.
#include <algorithm>
#include <cmath>

#include "workbook/functions/families.h"
#include "workbook/functions/rounding.h"
#include "workbook/functions/samples.h"

namespace quorva::workbook {

namespace {

Result<std::vector<double>> numbersOf(const Call& call, const Argument& argument) {
    return collectNumbers(call, {&argument, 1});
}

/// A statistic with one parameter of the numbers of the first argument.
template <Value (*statistic)(Sample, double)>
Value withParameter(Call& call, Arguments arguments) {
    const auto numbers = numbersOf(call, arguments[0]);
    return numbers ? statistic(*numbers, arguments[1].number()) : Value(numbers.error());
}

Value percentileInclusive(Sample sample, double k) { return percentileOf(sample, k, Ranks::Inclusive); }
Value percentileExclusive(Sample sample, double k) { return percentileOf(sample, k, Ranks::Exclusive); }
Value quartileInclusive(Sample sample, double quart) { return quartileOf(sample, quart, Ranks::Inclusive); }
Value quartileExclusive(Sample sample, double quart) { return quartileOf(sample, quart, Ranks::Exclusive); }

/// The mean without the `share` of the numbers farthest out, an even count of them.
Value trimmedMean(Sample sample, double share) {
    if (share < 0 || share >= 1 || sample.empty()) {
        return ErrorCode::Num;
    }
    std::vector<double> sorted(sample.begin(), sample.end());
    std::sort(sorted.begin(), sorted.end());
    const auto n = static_cast<double>(sample.size());
    const auto cut = static_cast<std::size_t>(std::floor(snapToWhole(n * share / 2)));
    return meanOf(Sample(sorted).subspan(cut, sorted.size() - 2 * cut));
}

/// PERCENTRANK: the interpolated rank of x in the sample as a share, cut to `digits` decimals.
template <Ranks ranks>
Value percentRank(Call& call, Arguments arguments) {
    auto numbers = numbersOf(call, arguments[0]);
    if (!numbers) {
        return numbers.error();
    }
    const double x = arguments[1].number();
    const double digits = arguments.size() > 2 && !arguments[2].missing ? std::trunc(arguments[2].number()) : 3;
    if (numbers->empty() || digits < 1) {
        return ErrorCode::Num;
    }
    std::sort(numbers->begin(), numbers->end());
    if (x < numbers->front() || x > numbers->back()) {
        return ErrorCode::NA;
    }
    const auto at = std::lower_bound(numbers->begin(), numbers->end(), x);
    double rank = static_cast<double>(at - numbers->begin());
    if (*at != x) {
        const double below = *(at - 1);
        rank += (x - below) / (*at - below) - 1;
    }
    const auto n = static_cast<double>(numbers->size());
    double share = 0;
    if (ranks == Ranks::Exclusive) {
        share = (rank + 1) / (n + 1);
    } else {
        share = n == 1 ? 1 : rank / (n - 1);
    }
    return roundTowardsZero(share, digits);
}

/// RANK: the place of a number among those of a range, 1 for the largest (for the smallest when `order` is not 0).
template <bool averageTies>
Value rank(Call& call, Arguments arguments) {
    const double x = arguments[0].number();
    const bool ascending = arguments.size() > 2 && arguments[2].number() != 0;
    double before = 0;
    double equal = 0;
    const auto error = forEachNumber(call, arguments[1], plainNumbers, [&](double other) {
        before += (ascending ? other < x : other > x) ? 1 : 0;
        equal += other == x ? 1 : 0;
    });
    if (error) {
        return *error;
    }
    if (equal == 0) {
        return ErrorCode::NA;
    }
    return averageTies ? before + (equal + 1) / 2 : before + 1;
}

Value mode(Call& call, Arguments arguments) {
    const auto numbers = collectNumbers(call, arguments);
    return numbers ? modeOf(*numbers) : Value(numbers.error());
}

Value modes(Call& call, Arguments arguments) {
    const auto numbers = collectNumbers(call, arguments);
    if (!numbers) {
        return numbers.error();
    }
    const std::vector<double> found = modesOf(*numbers);
    if (found.empty()) {
        return ErrorCode::NA;
    }
    return Value::array(static_cast<int>(found.size()), 1, std::vector<Value>(found.begin(), found.end()));
}

/// The limits of bins: numbers, and 0 for blank cells.
Result<std::vector<double>> binsOf(const Call& call, const Argument& argument) {
    if (!argument.value.isReference()) {
        return numbersOf(call, argument);
    }
    const Grid grid = argument.grid(call);
    if (grid.size() > largestArray) {
        return ErrorCode::Num;
    }
    std::vector<double> bins;
    for (std::int64_t i = 0; i < grid.size(); ++i) {
        const Value value = grid.at(i);
        if (value.isError()) {
            return value.error();
        }
        if (value.isNumber() || value.isBlank()) {
            bins.push_back(value.isNumber() ? value.number() : 0);
        }
    }
    return bins;
}

/// FREQUENCY(data, bins): how many numbers are at most each bin's limit and above the next smaller one's, and at last
/// how many are above all. Bins stay in their order; of equal ones the first counts.
Value frequency(Call& call, Arguments arguments) {
    auto data = numbersOf(call, arguments[0]);
    if (!data) {
        return data.error();
    }
    const auto bins = binsOf(call, arguments[1]);
    if (!bins) {
        return bins.error();
    }
    std::sort(data->begin(), data->end());
    std::vector<std::size_t> order(bins->size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return (*bins)[a] < (*bins)[b]; });
    std::vector<Value> counts(bins->size() + 1);
    auto from = data->begin();
    for (const std::size_t bin : order) {
        const auto to = std::upper_bound(from, data->end(), (*bins)[bin]);
        counts[bin] = to - from;
        from = to;
    }
    counts.back() = data->end() - from;
    const int rows = static_cast<int>(counts.size());
    return rows == 1 ? counts[0] : Value::array(rows, 1, std::move(counts));
}

constexpr FunctionRow row(std::string_view name, std::string_view kinds, Function function, int optional = 0) {
    return {.name = name,
            .minArgs = static_cast<int>(kinds.size()) - optional,
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Statistics,
            .function = function};
}
constexpr FunctionRow many(std::string_view name, Function function) {
    return {.name = name,
            .minArgs = 1,
            .maxArgs = anyCount,
            .kinds = "A",
            .category = Category::Statistics,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("FREQUENCY", "RR", frequency),
    row("LARGE", "RN", withParameter<largestOf>),
    many("MODE", mode),
    many("MODE.MULT", modes),
    many("MODE.SNGL", mode),
    row("PERCENTILE", "RN", withParameter<percentileInclusive>),
    row("PERCENTILE.EXC", "RN", withParameter<percentileExclusive>),
    row("PERCENTILE.INC", "RN", withParameter<percentileInclusive>),
    row("PERCENTRANK", "RNN", percentRank<Ranks::Inclusive>, 1),
    row("PERCENTRANK.EXC", "RNN", percentRank<Ranks::Exclusive>, 1),
    row("PERCENTRANK.INC", "RNN", percentRank<Ranks::Inclusive>, 1),
    row("QUARTILE", "RN", withParameter<quartileInclusive>),
    row("QUARTILE.EXC", "RN", withParameter<quartileExclusive>),
    row("QUARTILE.INC", "RN", withParameter<quartileInclusive>),
    row("RANK", "NFN", rank<false>, 1),
    row("RANK.AVG", "NFN", rank<true>, 1),
    row("RANK.EQ", "NFN", rank<false>, 1),
    row("SMALL", "RN", withParameter<smallestOf>),
    row("TRIMMEAN", "RN", withParameter<trimmedMean>),
};

}  // namespace

std::span<const FunctionRow> orderStatisticsFunctions() { return table; }

}  // namespace quorva::workbook
