#include "workbook/functions/samples.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quorva::workbook {

namespace {

/// The element of rank `index` (from 0) of a sample that may be rearranged.
double nth(std::vector<double>& numbers, std::size_t index) {
    std::nth_element(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(index), numbers.end());
    return numbers[index];
}

}  // namespace

double sumOf(Sample sample) { return std::accumulate(sample.begin(), sample.end(), 0.0); }

Value meanOf(Sample sample) {
    return sample.empty() ? Value(ErrorCode::Div0) : Value(sumOf(sample) / static_cast<double>(sample.size()));
}

double squaredDeviations(Sample sample) {
    if (sample.empty()) {
        return 0;
    }
    const double mean = sumOf(sample) / static_cast<double>(sample.size());
    double total = 0;
    for (const double x : sample) {
        total += (x - mean) * (x - mean);
    }
    return total;
}

Value varianceOf(Sample sample) {
    return sample.size() < 2 ? Value(ErrorCode::Div0)
                             : Value(squaredDeviations(sample) / static_cast<double>(sample.size() - 1));
}

Value populationVarianceOf(Sample sample) {
    return sample.empty() ? Value(ErrorCode::Div0)
                          : Value(squaredDeviations(sample) / static_cast<double>(sample.size()));
}

Value rootOf(const Value& variance) { return variance.isNumber() ? Value(std::sqrt(variance.number())) : variance; }

Value maximumOf(Sample sample) { return sample.empty() ? 0 : *std::max_element(sample.begin(), sample.end()); }

Value minimumOf(Sample sample) { return sample.empty() ? 0 : *std::min_element(sample.begin(), sample.end()); }

Value productOf(Sample sample) {
    return sample.empty() ? 0 : std::accumulate(sample.begin(), sample.end(), 1.0, std::multiplies<>());
}

Value medianOf(Sample sample) {
    if (sample.empty()) {
        return ErrorCode::Num;
    }
    std::vector<double> numbers(sample.begin(), sample.end());
    const std::size_t middle = numbers.size() / 2;
    const double upper = nth(numbers, middle);
    if (numbers.size() % 2 == 1) {
        return upper;
    }
    const double lower = *std::max_element(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(middle));
    return (lower + upper) / 2;
}

std::vector<double> modesOf(Sample sample) {
    std::vector<double> sorted(sample.begin(), sample.end());
    std::sort(sorted.begin(), sorted.end());
    const auto occurrences = [&](double x) {
        const auto [first, last] = std::equal_range(sorted.begin(), sorted.end(), x);
        return last - first;
    };
    std::ptrdiff_t most = 1;
    for (auto at = sorted.begin(); at != sorted.end();) {
        const auto next = std::upper_bound(at, sorted.end(), *at);
        most = std::max(most, next - at);
        at = next;
    }
    std::vector<double> modes;
    if (most == 1) {
        return modes;
    }
    for (const double x : sample) {
        if (occurrences(x) == most && std::find(modes.begin(), modes.end(), x) == modes.end()) {
            modes.push_back(x);
        }
    }
    return modes;
}

Value modeOf(Sample sample) {
    const std::vector<double> modes = modesOf(sample);
    return modes.empty() ? Value(ErrorCode::NA) : Value(modes.front());
}

Value smallestOf(Sample sample, double k) {
    const double rank = std::ceil(k);
    if (k < 1 || rank > static_cast<double>(sample.size())) {
        return ErrorCode::Num;
    }
    std::vector<double> numbers(sample.begin(), sample.end());
    return nth(numbers, static_cast<std::size_t>(rank) - 1);
}

Value largestOf(Sample sample, double k) {
    const double rank = std::ceil(k);
    if (k < 1 || rank > static_cast<double>(sample.size())) {
        return ErrorCode::Num;
    }
    std::vector<double> numbers(sample.begin(), sample.end());
    return nth(numbers, numbers.size() - static_cast<std::size_t>(rank));
}

Value percentileOf(Sample sample, double k, Ranks ranks) {
    const auto n = static_cast<double>(sample.size());
    if (sample.empty() || k < 0 || k > 1) {
        return ErrorCode::Num;
    }
    const double rank = ranks == Ranks::Inclusive ? k * (n - 1) : k * (n + 1) - 1;  // from 0
    if (rank < 0 || rank > n - 1) {
        return ErrorCode::Num;
    }
    std::vector<double> numbers(sample.begin(), sample.end());
    const double whole = std::floor(rank);
    const double lower = nth(numbers, static_cast<std::size_t>(whole));
    if (rank == whole) {
        return lower;
    }
    // What follows the nth element is not smaller than it.
    const double upper = *std::min_element(numbers.begin() + static_cast<std::ptrdiff_t>(whole) + 1, numbers.end());
    return lower + (rank - whole) * (upper - lower);
}

Value quartileOf(Sample sample, double quart, Ranks ranks) {
    const double whole = std::trunc(quart);
    if (quart < 0 || whole > 4) {
        return ErrorCode::Num;
    }
    return percentileOf(sample, whole / 4, ranks);
}

}  // namespace quorva::workbook
