#include "numerics/quantile_table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace quorva {
namespace {

constexpr double resolution = 1e-14;          // of u, absolute
constexpr double relativeResolution = 1e-12;  // of the tail probability
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Newton's divided differences of x over t, turned into the coefficients of powers of t.
template <std::size_t terms>
void interpolate(const std::array<double, terms>& t, const std::array<double, terms>& x, double* coefficients) {
    std::array<double, terms> difference = x;
    for (std::size_t order = 1; order < terms; ++order) {
        for (std::size_t i = terms - 1; i >= order; --i) {
            difference[i] = (difference[i] - difference[i - 1]) / (t[i] - t[i - order]);
        }
    }
    std::fill_n(coefficients, terms, 0.0);
    for (std::size_t i = terms; i-- > 0;) {
        // coefficients = coefficients * (t - t[i]) + difference[i]
        for (std::size_t k = terms - 1; k > 0; --k) {
            coefficients[k] = coefficients[k - 1] - t[i] * coefficients[k];
        }
        coefficients[0] = difference[i] - t[i] * coefficients[0];
    }
}

double evaluate(const double* coefficients, int terms, double t) {
    double sum = 0.0;
    for (int k = terms - 1; k >= 0; --k) {
        sum = sum * t + coefficients[k];
    }
    return sum;
}

}  // namespace

InterpolatedQuantile::InterpolatedQuantile(const TabulatedLaw& law) : coefficients_(2 * intervals * terms, notANumber) {
    const auto boundary = [](std::uint64_t interval) {
        return std::bit_cast<double>((interval + firstInterval) << fractionShift);
    };
    int reached = 0;
    for (const bool lower : {true, false}) {
        // The upper half is the same curve seen from 1: boundaries have few bits, so 1 - v is exact.
        const auto probability = [&](double x) { return lower ? law.cdf(x) : 1.0 - law.cdf(x); };
        const auto quantile = [&](double v) { return law.quantile(lower ? v : 1.0 - v); };
        double left = quantile(boundary(0));
        for (std::uint64_t interval = 0; interval < intervals; ++interval) {
            const double a = boundary(interval);
            const double width = boundary(interval + 1) - a;
            const double from = left;
            const double to = quantile(a + width);
            left = to;
            std::array<double, terms> t{};
            std::array<double, terms> x{};
            bool usable = std::isfinite(from) && std::isfinite(to) && from != to;
            for (int i = 0; usable && i < terms; ++i) {
                const double share = 0.5 - 0.5 * std::cos(std::numbers::pi * i / (terms - 1));
                x[static_cast<std::size_t>(i)] = i + 1 < terms ? from + (to - from) * share : to;
                const double v = i == 0 ? a : i + 1 < terms ? probability(x[static_cast<std::size_t>(i)]) : a + width;
                t[static_cast<std::size_t>(i)] = (v - a) / width - 0.5;
                usable = i == 0 || t[static_cast<std::size_t>(i)] > t[static_cast<std::size_t>(i - 1)];
            }
            if (!usable) {
                continue;
            }
            double* c = &coefficients_[((lower ? 0 : intervals) + interval) * terms];
            interpolate(t, x, c);
            for (const double check : {-0.47, -0.21, 0.13, 0.41}) {
                const double v = a + (check + 0.5) * width;
                const double value = evaluate(c, terms, check);
                const double miss = std::isnan(value) ? value : std::fabs(probability(value) - v);
                if (!(miss <= resolution && miss <= relativeResolution * v)) {
                    c[0] = notANumber;
                }
            }
            reached += std::isnan(c[0]) ? 0 : 1;
        }
    }
    coverage_ = static_cast<double>(reached) / static_cast<double>(2 * intervals);
}

SteppedQuantile::SteppedQuantile(double first, double last, double floor,
                                 const std::function<double(double)>& largestProbability)
    : first_(first), floor_(floor) {
    for (double k = first; k <= last; ++k) {
        thresholds_.push_back(largestProbability(k));
    }
    const std::size_t entries = 2 * thresholds_.size();
    guideScale_ = static_cast<double>(entries);
    guide_.resize(entries + 1);
    std::uint32_t step = 0;
    for (std::size_t i = 0; i <= entries; ++i) {
        // One entry early, so that no rounding of the product leads past the step.
        const double from = (static_cast<double>(i) - 1.0) / guideScale_;
        while (step + 1 < thresholds_.size() && thresholds_[step] < from) {
            ++step;
        }
        guide_[i] = step;
    }
}

}  // namespace quorva
