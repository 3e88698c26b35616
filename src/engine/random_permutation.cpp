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

void RandomPermutation::makeRoom(int n) {
    const auto rows = static_cast<std::size_t>(n);
    if (items_.size() != rows) {
        rowBits_ = std::max(static_cast<int>(std::bit_width(rows - 1)), 1);
        rowMask_ = (std::uint64_t{1} << rowBits_) - 1;
        places_.resize(std::size_t{1} << rowBits_);
        items_.resize(rows);
    }
}

/// Items in the order of their buckets, which cut the unit interval into equal parts, about one for each uniform;
/// within a bucket in the order of their rows.
void RandomPermutation::distribute(const double* uniforms) {
    const std::size_t n = items_.size();
    const int toBucket = 64 - rowBits_;
    std::uint32_t* const places = places_.data();
    std::fill(places_.begin(), places_.end(), 0);
    for (std::size_t i = 0; i < n; ++i) {
        ++places[leadingBits(uniforms[i]) >> toBucket];
    }
    std::uint32_t before = 0;
    for (std::uint32_t& place : places_) {
        before += place;
        place = before - place;
    }
    std::uint64_t* const items = items_.data();
    const std::uint64_t uniformMask = ~rowMask_;
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t bits = leadingBits(uniforms[i]);
        items[places[bits >> toBucket]++] = (bits & uniformMask) | i;
    }
}

/// What is out of order lies within one bucket, most of it a step apart: carrying the larger item on, without a branch
/// to predict, leaves little to the insertion.
void RandomPermutation::sortBuckets(const double* uniforms) {
    std::uint64_t* const items = items_.data();
    const std::uint64_t rowMask = rowMask_;
    // Items hold all bits of their uniforms up to 2,048 rows; beyond, those that agree in what they hold are told apart
    // by the uniforms themselves.
    const auto precedes = [=](std::uint64_t left, std::uint64_t right) {
        return (left ^ right) > rowMask ? left < right : uniforms[left & rowMask] < uniforms[right & rowMask];
    };
    const auto insert = [=](std::uint64_t item, std::size_t at) {
        for (; at > 0 && precedes(item, items[at - 1]); --at) {
            items[at] = items[at - 1];
        }
        items[at] = item;
    };
    std::uint64_t larger = items[0];
    for (std::size_t i = 1; i < items_.size(); ++i) {
        const std::uint64_t item = items[i];
        insert(std::min(item, larger), i - 1);
        larger = std::max(item, larger);
    }
    insert(larger, items_.size() - 1);
}

void RandomPermutation::order(double* uniforms, int n) {
    if (n < 1) {
        return;
    }
    makeRoom(n);
    distribute(uniforms);
    sortBuckets(uniforms);
    for (std::size_t i = 0; i < items_.size(); ++i) {
        uniforms[i] = static_cast<double>(static_cast<std::int64_t>(items_[i] & rowMask_) + 1);
    }
}

}  // namespace quorva
