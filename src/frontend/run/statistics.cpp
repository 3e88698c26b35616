#include "frontend/run/statistics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

#include "frontend/run/missing_numbers.h"
#include "frontend/run/parallel.h"
#include "numerics/core.h"
#include "numerics/laws.h"
#include "numerics/studies.h"
#include "numerics/vector_statistics.h"

namespace quorva::frontend {

namespace {
struct Keyed {
    std::uint64_t key;
    int position;
};

/// Unsigned keys in the order of the doubles.
std::uint64_t sortKey(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    return bits & 0x8000000000000000u ? ~bits : bits | 0x8000000000000000u;
}

double valueOfKey(std::uint64_t key) {
    return std::bit_cast<double>(key & 0x8000000000000000u ? key & 0x7FFFFFFFFFFFFFFFu : ~key);
}

/// Radix sort by 11 bits a pass: a run sorts every column, and comparison sorting would take longer than the model.
void radixSort(std::vector<Keyed>& items) {
    constexpr int bits = 11, passes = 6, buckets = 1 << bits;
    std::vector<std::array<std::uint32_t, buckets>> counts(passes);
    for (const Keyed& item : items) {
        for (int pass = 0; pass < passes; ++pass) {
            ++counts[pass][(item.key >> (pass * bits)) & (buckets - 1)];
        }
    }
    std::vector<Keyed> other(items.size());
    for (int pass = 0; pass < passes; ++pass) {
        auto& count = counts[pass];
        if (std::any_of(count.begin(), count.end(), [&](auto n) { return n == items.size(); })) {
            continue;
        }
        std::uint32_t start = 0;
        for (auto& n : count) {
            start += std::exchange(n, start);
        }
        for (const Keyed& item : items) {
            other[count[(item.key >> (pass * bits)) & (buckets - 1)]++] = item;
        }
        items.swap(other);
    }
}

std::vector<double> numbersOf(std::span<const double> column) {
    std::vector<double> numbers;
    numbers.reserve(column.size());
    std::copy_if(column.begin(), column.end(), std::back_inserter(numbers), [](double x) { return !std::isnan(x); });
    return numbers;
}

int lengthOf(std::span<const double> values) { return static_cast<int>(values.size()); }
}  // namespace

SortedColumn sortColumn(std::span<const double> column) {
    std::vector<Keyed> items;
    items.reserve(column.size());
    for (std::size_t i = 0; i < column.size(); ++i) {
        if (!std::isnan(column[i])) {
            items.push_back({sortKey(column[i]), static_cast<int>(i)});
        }
    }
    radixSort(items);
    SortedColumn sorted;
    sorted.values.reserve(items.size());
    sorted.positions.reserve(items.size());
    for (const Keyed& item : items) {
        sorted.values.push_back(valueOfKey(item.key));
        sorted.positions.push_back(item.position);
    }
    return sorted;
}

double quantileOfSorted(std::span<const double> sorted, double p) {
    if (sorted.empty()) {
        return noNumber;
    }
    const double position = static_cast<double>(sorted.size() - 1) * p;
    const auto below = static_cast<std::size_t>(position);
    if (below + 1 >= sorted.size()) {
        return sorted.back();
    }
    const double part = position - static_cast<double>(below);
    return part == 0 ? sorted[below] : sorted[below] + part * (sorted[below + 1] - sorted[below]);
}

Summary summarise(const Field& field, std::span<const double> column, const SortedColumn& sorted) {
    Summary summary;
    summary.name = field.name;
    summary.kind = field.kind;
    summary.count = static_cast<long>(sorted.values.size());
    summary.errors = static_cast<long>(column.size()) - summary.count;
    std::vector<double> kept;
    if (summary.errors > 0) {
        kept = numbersOf(column);
        column = kept;
    }
    double skewnessPearson, kurtosisPearson, errorSkewness, errorKurtosis;
    V_MeanVarSkewPKurtP(column.data(), lengthOf(column), summary.mean, summary.variance, skewnessPearson,
                        kurtosisPearson, summary.skewness, summary.kurtosis, errorSkewness, errorKurtosis, nullptr,
                        nullptr, 0, 0);
    for (double* value : {&summary.mean, &summary.variance, &summary.skewness, &summary.kurtosis}) {
        *value = fromModule(*value);
    }
    summary.stdev = std::sqrt(summary.variance);
    summary.standardError = summary.stdev / std::sqrt(static_cast<double>(summary.count));
    summary.minimum = quantileOfSorted(sorted.values, 0);
    summary.maximum = quantileOfSorted(sorted.values, 1);
    for (std::size_t i = 0; i < reportedPercentiles.size(); ++i) {
        summary.percentiles[i] = quantileOfSorted(sorted.values, reportedPercentiles[i] / 100.0);
    }
    return summary;
}

Interval centralInterval(const Field& field, const SortedColumn& sorted, double tail) {
    const auto at = [&](double p) { return quantileOfSorted(sorted.values, p); };
    return {field.name, at(tail), at(0.5), at(1 - tail), at(0), at(1)};
}

Histogram histogramOf(const SortedColumn& sorted) {
    Histogram histogram;
    const std::vector<double>& values = sorted.values;
    if (values.empty() || !std::isfinite(values.front()) || !std::isfinite(values.back())) {
        return histogram;
    }
    const double low = values.front(), high = values.back(), range = high - low;
    const bool whole = std::all_of(values.begin(), values.end(), [](double x) { return x == std::floor(x); });
    int classes = 1;
    double start = low, width = 1;
    if (range == 0) {
        width = low == 0 ? 1 : std::fabs(low) * 0.1;
        start = low - width / 2;
    } else if (whole && range < 60) {
        classes = static_cast<int>(range) + 1;
        start = low - 0.5;
    } else {
        const double spread = quantileOfSorted(values, 0.75) - quantileOfSorted(values, 0.25);
        const double wanted = 2 * spread / std::cbrt(static_cast<double>(values.size()));
        const double number = wanted > 0 ? range / wanted : 30;
        classes = static_cast<int>(std::clamp(std::ceil(number), 10.0, 60.0));
        width = range / classes;
    }
    for (int i = 0; i <= classes; ++i) {
        histogram.edges.push_back(start + i * width);
    }
    histogram.edges.back() = std::max(histogram.edges.back(), high);
    auto from = values.begin();
    for (int i = 0; i < classes; ++i) {
        const auto to = i + 1 == classes ? values.end() : std::lower_bound(from, values.end(), histogram.edges[i + 1]);
        histogram.counts.push_back(to - from);
        histogram.cumulative.push_back(static_cast<double>(to - values.begin()) / static_cast<double>(values.size()));
        from = to;
    }
    return histogram;
}

std::vector<double> ranksOf(std::span<const double> column, const SortedColumn& sorted) {
    std::vector<double> ranks(column.size(), noNumber);
    const std::size_t n = sorted.values.size();
    for (std::size_t first = 0; first < n;) {
        std::size_t last = first;
        while (last + 1 < n && sorted.values[last + 1] == sorted.values[first]) {
            ++last;
        }
        const double rank = (static_cast<double>(first) + static_cast<double>(last)) / 2 + 1;
        for (std::size_t i = first; i <= last; ++i) {
            ranks[sorted.positions[i]] = rank;
        }
        first = last + 1;
    }
    return ranks;
}

namespace {
/// Scales to mean 0 and length 1; empties a column that does not vary.
void standardise(std::vector<double>& column) {
    double sum = 0;
    for (const double x : column) {
        sum += x;
    }
    const double mean = sum / static_cast<double>(column.size());
    double squares = 0, largest = 0;
    for (double& x : column) {
        largest = std::max(largest, std::fabs(x));
        x -= mean;
        squares += x * x;
    }
    const double length = std::sqrt(squares);
    if (!(length > 1e-14 * largest * std::sqrt(static_cast<double>(column.size()))) || !std::isfinite(length)) {
        column = {};
        return;
    }
    for (double& x : column) {
        x /= length;
    }
}

double product(const std::vector<double>& a, const std::vector<double>& b) {
    std::array<double, 4> sums{};
    std::size_t i = 0;
    for (; i + 4 <= a.size(); i += 4) {
        for (std::size_t k = 0; k < 4; ++k) {
            sums[k] += a[i + k] * b[i + k];
        }
    }
    for (; i < a.size(); ++i) {
        sums[0] += a[i] * b[i];
    }
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

bool hasGap(const std::vector<double>& column) {
    return std::any_of(column.begin(), column.end(), [](double x) { return std::isnan(x); });
}

double pairwiseCorrelation(const std::vector<double>& a, const std::vector<double>& b) {
    std::vector<double> x, y;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!std::isnan(a[i]) && !std::isnan(b[i])) {
            x.push_back(a[i]);
            y.push_back(b[i]);
        }
    }
    standardise(x);
    standardise(y);
    return x.empty() || y.empty() ? noNumber : std::clamp(product(x, y), -1.0, 1.0);
}
}  // namespace

LabelledMatrix correlationMatrix(std::vector<std::string> names, std::vector<std::vector<double>> columns) {
    const std::size_t n = columns.size();
    LabelledMatrix matrix{std::move(names), std::vector<double>(n * n, noNumber)};
    std::vector<bool> gaps(n);
    for (std::size_t i = 0; i < n; ++i) {
        gaps[i] = hasGap(columns[i]);
    }
    // Pairs with gaps need the values as they are, so they come before the others are scaled in place.
    const auto fill = [&](bool withGaps) {
        forEachIndex(n, [&](std::size_t i) {
            for (std::size_t j = 0; j <= i; ++j) {
                if ((gaps[i] || gaps[j]) != withGaps || columns[i].empty() || columns[j].empty()) {
                    continue;
                }
                const double value = withGaps ? pairwiseCorrelation(columns[i], columns[j])
                                              : std::clamp(product(columns[i], columns[j]), -1.0, 1.0);
                matrix.at(i, j) = matrix.at(j, i) = i == j && !std::isnan(value) ? 1 : value;
            }
        });
    };
    fill(true);
    forEachIndex(n, [&](std::size_t i) {
        if (!gaps[i]) {
            standardise(columns[i]);
        }
    });
    fill(false);
    return matrix;
}

void stdevInterval(std::span<const double> values, double confidence, double& lower, double& upper) {
    const auto n = static_cast<double>(values.size());
    lower = upper = noNumber;
    if (values.size() < 2) {
        return;
    }
    const double mean = V_Mean2(values.data(), lengthOf(values));
    double second = 0, fourth = 0;
    for (const double x : values) {
        const double square = (x - mean) * (x - mean);
        second += square;
        fourth += square * square;
    }
    const double s = std::sqrt(second / (n - 1));
    const double kurtosis = second > 0 ? n * fourth / (second * second) : 1;
    const double half =
        InvCDFNormalStd((1 + confidence) / 2) * s * std::sqrt(std::max(kurtosis - 1, 0.0) / (4 * (n - 1)));
    lower = s - half;
    upper = s + half;
}

void meanInterval(std::span<const double> values, double confidence, double& lower, double& upper) {
    double mean, stdev;
    lower = upper = noNumber;
    if (values.size() < 2) {
        return;
    }
    V_MeanStdev(values.data(), lengthOf(values), mean, stdev, nullptr, nullptr, -1, 0);
    const double half =
        InvCDFNormalStd((1 + confidence) / 2) * fromModule(stdev) / std::sqrt(static_cast<double>(values.size()));
    lower = mean - half;
    upper = mean + half;
}

void percentileInterval(std::span<const double> values, double p, double confidence, double& lower, double& upper) {
    lower = upper = noNumber;
    if (!values.empty()) {
        V_ConfQuantilesLargeSample(values.data(), lengthOf(values), p, (1 + confidence) / 2, lower, upper);
    }
}

double movementPercent(double now, double before) { return before == 0 ? 0 : std::fabs((now - before) / before) * 100; }

Trace traceOf(std::span<const double> column) {
    constexpr std::size_t most = 60;
    Trace trace;
    const std::size_t points = std::min(most, column.size() / 2);
    double mean = 0, squares = 0;
    std::size_t count = 0, point = 1;
    const double z = InvCDFNormalStd(0.975);
    for (std::size_t i = 0; i < column.size() && points > 0; ++i) {
        if (!std::isnan(column[i])) {
            ++count;
            const double step = column[i] - mean;
            mean += step / static_cast<double>(count);
            squares += step * (column[i] - mean);
        }
        if (i + 1 == column.size() * point / points) {
            ++point;
            const auto n = static_cast<double>(count);
            const double half = count > 1 ? z * std::sqrt(squares / (n - 1) / n) : noNumber;
            trace.iterations.push_back(static_cast<int>(i + 1));
            trace.mean.push_back(count > 0 ? mean : noNumber);
            trace.lower.push_back(mean - half);
            trace.upper.push_back(mean + half);
        }
    }
    return trace;
}

Capability capabilityOf(const SpecificationLimits& limits, std::span<const double> column, double confidence) {
    Capability capability{limits, {}};
    const std::vector<double> numbers = numbersOf(column);
    double mean = noNumber, stdev = noNumber;
    if (numbers.size() > 1) {
        V_MeanStdev(numbers.data(), lengthOf(numbers), mean, stdev, nullptr, nullptr, -1, 0);
    }
    for (int index = 1; index <= capabilityIndices; ++index) {
        double value = MissingValue;
        const int code = calcPcapDescOne(lengthOf(numbers), toModule(limits.lower), toModule(limits.upper),
                                         toModule(limits.target), confidence, stdev, mean, value, index);
        capability.indices[index - 1] = code < 0 ? noNumber : numberOrNone(value);
    }
    return capability;
}

}  // namespace quorva::frontend
