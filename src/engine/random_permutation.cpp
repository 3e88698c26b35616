#include "engine/random_permutation.h"

#include <algorithm>
#include <bit>

namespace quorva {
namespace {

/// The uniform as a fraction of 2^64. Uniforms are multiples of 2^-53 or cut to that.
std::uint64_t leadingBits(double uniform) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(uniform * 0x1p53)) << 11;
}

}  // namespace

matrix<double>& RandomPermutation::uniforms(int n) {
    if (uniforms_.rows() != n) {
        uniforms_ = matrix<double>(n, 1);
        rowBits_ = std::max(static_cast<int>(std::bit_width(static_cast<std::uint32_t>(n - 1))), 1);
        rowMask_ = (std::uint64_t{1} << rowBits_) - 1;
        places_.resize(std::size_t{1} << rowBits_);
        items_.resize(static_cast<std::size_t>(n));
    }
    return uniforms_;
}

/// Items in the order of their buckets, which cut the unit interval into equal parts, about one for each uniform;
/// within a bucket in the order of their rows.
void RandomPermutation::distribute() {
    const double* const uniforms = uniforms_.data();
    const std::size_t n = items_.size();
    const int toBucket = 64 - rowBits_;
    std::fill(places_.begin(), places_.end(), 0);
    for (std::size_t i = 0; i < n; ++i) {
        ++places_[leadingBits(uniforms[i]) >> toBucket];
    }
    std::uint32_t before = 0;
    for (std::uint32_t& place : places_) {
        const std::uint32_t count = place;
        place = before;
        before += count;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t bits = leadingBits(uniforms[i]);
        items_[places_[bits >> toBucket]++] = (bits & ~rowMask_) | i;
    }
}

/// Whether the uniform of one item is less than that of another. Items hold all bits of their uniforms up to 2,048
/// rows; beyond, those that agree in what they hold are told apart by the uniforms themselves.
inline bool RandomPermutation::precedes(std::uint64_t left, std::uint64_t right) const {
    if ((left ^ right) > rowMask_) [[likely]] {
        return left < right;
    }
    return uniforms_.data()[left & rowMask_] < uniforms_.data()[right & rowMask_];
}

void RandomPermutation::order(double* numbers) {
    distribute();
    // What is out of order lies within one bucket, a step or two apart.
    for (std::size_t i = 1; i < items_.size(); ++i) {
        const std::uint64_t item = items_[i];
        std::size_t k = i;
        for (; k > 0 && precedes(item, items_[k - 1]); --k) {
            items_[k] = items_[k - 1];
        }
        items_[k] = item;
    }
    for (std::size_t i = 0; i < items_.size(); ++i) {
        numbers[i] = static_cast<double>(static_cast<std::int64_t>(items_[i] & rowMask_) + 1);
    }
}

}  // namespace quorva
