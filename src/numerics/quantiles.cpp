#include "numerics/quantiles.h"

#include <algorithm>

namespace quorva {
namespace {

double between(double low, double high, double fraction) {
    if (fraction == 0 || low == high) {
        return low;
    }
    const double step = high - low;
    // Two ends further apart than the largest double.
    return std::isinf(step) && std::isfinite(low) && std::isfinite(high) ? low * (1 - fraction) + high * fraction
                                                                         : low + fraction * step;
}

double unweighted(std::vector<double>& values, double p) {
    const double position = static_cast<double>(values.size() - 1) * p;
    const auto below = static_cast<std::size_t>(position);
    const double fraction = position - static_cast<double>(below);
    const auto lower = values.begin() + static_cast<std::ptrdiff_t>(below);
    std::nth_element(values.begin(), lower, values.end(), NanLast());
    if (fraction == 0 || lower + 1 == values.end()) {
        return *lower;
    }
    return between(*lower, *std::min_element(lower + 1, values.end(), NanLast()), fraction);
}

/// Moves the values of the given ranks (ascending, from 0, within first..last) to their places in order.
void placeRanks(std::vector<double>& values, std::size_t first, std::size_t last, std::span<const std::size_t> ranks) {
    if (ranks.empty()) {
        return;
    }
    const auto at = [&](std::size_t rank) { return values.begin() + static_cast<std::ptrdiff_t>(rank); };
    const std::size_t middle = ranks.size() / 2;
    const std::size_t rank = ranks[middle];
    if (rank == first) {
        std::iter_swap(at(rank), std::min_element(at(first), at(last)));
    } else if (rank + 1 == last) {
        std::iter_swap(at(rank), std::max_element(at(first), at(last)));
    } else {
        std::nth_element(at(first), at(rank), at(last));
    }
    placeRanks(values, first, rank, ranks.first(middle));
    placeRanks(values, rank + 1, last, ranks.subspan(middle + 1));
}

struct Weighted {
    double value;
    double weight;
};

double weighted(std::vector<Weighted>& sample, double p) {
    std::stable_sort(sample.begin(), sample.end(),
                     [](const Weighted& a, const Weighted& b) { return NanLast()(a.value, b.value); });
    std::vector<long double> cumulative;
    cumulative.reserve(sample.size());
    long double total = 0;
    for (const auto& item : sample) {
        cumulative.push_back(total += item.weight);
    }
    // In double as without weights, so that whole weights give the bits of repetition.
    const double position = static_cast<double>(total - 1) * p;
    const double below = std::floor(position);
    // The value whose share of the step-expanded sample covers a position; weights such as 0.1 add up to a little
    // less than a whole number.
    const auto at = [&](long double wanted) {
        const auto found = std::lower_bound(cumulative.begin(), cumulative.end(), wanted - 1e-12L * total);
        return found == cumulative.end() ? sample.back().value
                                         : sample[static_cast<std::size_t>(found - cumulative.begin())].value;
    };
    return between(at(below + 1), at(below + 2), position - below);
}

}  // namespace

void quantilesOf(std::vector<double>& values, std::span<const double> probabilities, std::span<double> quantiles) {
    // Behind every number, where NaN belongs, and out of the way of the comparisons.
    const auto numbers = std::partition(values.begin(), values.end(), [](double x) { return !std::isnan(x); });
    const auto count = static_cast<std::size_t>(numbers - values.begin());
    std::vector<std::size_t> ranks;
    for (const double p : probabilities) {
        if (p >= 0 && p <= 1 && !values.empty()) {
            const auto below = static_cast<std::size_t>(static_cast<double>(values.size() - 1) * p);
            ranks.push_back(below);
            ranks.push_back(below + 1);
        }
    }
    std::sort(ranks.begin(), ranks.end());
    ranks.erase(std::unique(ranks.begin(), ranks.end()), ranks.end());
    ranks.erase(std::lower_bound(ranks.begin(), ranks.end(), count), ranks.end());
    placeRanks(values, 0, count, ranks);
    std::transform(probabilities.begin(), probabilities.end(), quantiles.begin(),
                   [&](double p) { return quantileOfOrdered(values, p); });
}

double quantileOfOrdered(std::span<const double> ordered, double p) {
    if (!(p >= 0 && p <= 1) || ordered.empty()) {
        return MissingValue;
    }
    const double position = static_cast<double>(ordered.size() - 1) * p;
    const auto below = static_cast<std::size_t>(position);
    const double fraction = position - static_cast<double>(below);
    if (fraction == 0 || below + 1 == ordered.size()) {
        return ordered[below];
    }
    return between(ordered[below], ordered[below + 1], fraction);
}

double orderStatistic(std::vector<double>& values, int rank) {
    const auto wanted = values.begin() + (rank - 1);
    std::nth_element(values.begin(), wanted, values.end(), NanLast());
    return *wanted;
}

double quantileOf(const double* values, int n, const short* flags, const double* weights, double p) {
    if (!(p >= 0 && p <= 1)) {
        return MissingValue;
    }
    const auto takesPart = [&](int i) {
        return (flags == nullptr || flags[i] == 0) && (weights == nullptr || weights[i] > 0);
    };
    bool equalWeights = true;
    std::size_t count = 0;
    for (int i = 0; i < n; ++i) {
        if (takesPart(i)) {
            ++count;
            equalWeights = equalWeights && (weights == nullptr || weights[i] == 1);
        }
    }
    if (count == 0) {
        return MissingValue;
    }
    if (equalWeights) {
        std::vector<double> sample;
        sample.reserve(count);
        for (int i = 0; i < n; ++i) {
            if (takesPart(i)) {
                sample.push_back(values[i]);
            }
        }
        return unweighted(sample, p);
    }
    std::vector<Weighted> sample;
    sample.reserve(count);
    for (int i = 0; i < n; ++i) {
        if (takesPart(i)) {
            sample.push_back({values[i], weights[i]});
        }
    }
    return weighted(sample, p);
}

}  // namespace quorva
