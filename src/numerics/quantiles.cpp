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
    const long double position = 1 + (total - 1) * p;
    const long double below = std::floor(position);
    // The value whose share of the step-expanded sample covers a position; weights such as 0.1 add up to a little
    // less than a whole number.
    const auto at = [&](long double wanted) {
        const auto found = std::lower_bound(cumulative.begin(), cumulative.end(), wanted - 1e-12L * total);
        return found == cumulative.end() ? sample.back().value
                                         : sample[static_cast<std::size_t>(found - cumulative.begin())].value;
    };
    return between(at(below), at(below + 1), static_cast<double>(position - below));
}

}  // namespace

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
