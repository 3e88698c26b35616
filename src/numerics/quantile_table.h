// Tables that replace the quantile of a law with fixed parameters where it is drawn from again and again.
#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <vector>

namespace quorva {

/// One continuous law with fixed parameters.
struct TabulatedLaw {
    std::function<double(double)> cdf;       ///< P(X <= x)
    std::function<double(double)> quantile;  ///< of a probability in (0, 1)
};

/// The quantile of a continuous law as polynomials, after Derflinger, Hoermann and Leydold, "Random variate generation
/// by numerical inversion when only the density is known", ACM TOMACS 20(4), 2010: nodes are chosen in x, their
/// probabilities computed, and x interpolated in the probability by Newton's formula. The intervals are eighths of
/// binary octaves of the tail probability, so that an interval is found from the bits of u and keeps its relative
/// accuracy towards the tails. Absolute error in u at most 1e-14, checked between the nodes.
class InterpolatedQuantile {
public:
    explicit InterpolatedQuantile(const TabulatedLaw& law);

    /// The quantile, or NaN where the law has to be asked: in the outer tails (tail probability below 2^-12), at
    /// exactly one half, and in intervals whose accuracy could not be reached.
    double operator()(double u) const {
        const bool lower = u < 0.5;
        const double v = lower ? u : 1.0 - u;
        const auto bits = std::bit_cast<std::uint64_t>(v);
        const std::uint64_t interval = (bits >> fractionShift) - firstInterval;
        if (interval >= intervals) {
            return std::bit_cast<double>(std::uint64_t{0x7FF8000000000000});
        }
        // Position within the interval, exact, from the remaining bits: -1/2 to 1/2.
        const double t =
            std::bit_cast<double>(((bits << subdivisionBits) & mantissaMask) | std::uint64_t{0x3FF} << 52) - 1.5;
        const double* c = &coefficients_[(lower ? interval : interval + intervals) * terms];
        const double t2 = t * t;
        const double t4 = t2 * t2;
        const double low = (c[0] + c[1] * t) + (c[2] + c[3] * t) * t2;
        const double high = (c[4] + c[5] * t) + (c[6] + c[7] * t) * t2;
        return low + (high + (c[8] + c[9] * t) * t4) * t4;
    }

    /// Share of the intervals, 0 to 1, that reached the accuracy.
    double coverage() const { return coverage_; }

private:
    static constexpr int terms = 10;  // degree 9
    static constexpr int octaves = 11;
    static constexpr int subdivisionBits = 3;
    static constexpr int fractionShift = 52 - subdivisionBits;
    static constexpr std::uint64_t intervals = octaves << subdivisionBits;
    static constexpr std::uint64_t mantissaMask = (std::uint64_t{1} << 52) - 1;
    static constexpr std::uint64_t firstInterval = (std::uint64_t{1023 - 1 - octaves} << 52) >> fractionShift;

    std::vector<double> coefficients_;  // lower half, then upper half, by rising tail probability
    double coverage_ = 0.0;
};

/// The quantile of a law on the integers as a table of the probabilities at which it steps, found through a guide of
/// equally spaced probabilities (Chen and Asau, 1974). Exact: it is the law's own quantile for every u.
class SteppedQuantile {
public:
    static constexpr double tail = 0x1p-20;       ///< the table spans the probabilities between its tails
    static constexpr double maximumSteps = 4096;  ///< wider laws have no table

    /// A table of the integers first..last; `largestProbability(k)` is the largest u whose quantile is at most k.
    /// The table answers for u above `floor`, whose quantile must be `first`.
    SteppedQuantile(double first, double last, double floor, const std::function<double(double)>& largestProbability);

    /// The quantile, or NaN in the outer tails.
    double operator()(double u) const {
        if (!(u > floor_ && u <= thresholds_.back())) {
            return std::bit_cast<double>(std::uint64_t{0x7FF8000000000000});
        }
        std::uint32_t step = guide_[static_cast<std::size_t>(u * guideScale_)];
        while (u > thresholds_[step]) {
            ++step;
        }
        return first_ + step;
    }

private:
    double first_;                    // value of step 0
    double floor_;                    // step 0 holds for u above this
    double guideScale_;               // guide entries per unit of probability
    std::vector<double> thresholds_;  // the largest u of each step
    std::vector<std::uint32_t> guide_;
};

}  // namespace quorva
