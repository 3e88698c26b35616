// The stored values of a field that a statistic is computed from.
#pragma once

#include <vector>

#include "engine/run_state.h"

namespace quorva {

/// The first nObs values (at least one) of a field's column of SampleStore, for the vector statistics: read in place
/// where the store has them all. What the store has not reads as its scratch value; those values, all alike, stand as
/// one more value with their number as its weight, so that no count asked for takes more room than the store itself.
class Samples {
public:
    Samples(int nObs, int field) {
        const auto& store = run.sampling.SampleStore;
        if (store.contains(nObs, field)) {
            values_ = store.column(field);
            size_ = nObs;
            return;
        }
        if (store.contains(1, field)) {
            padded_.assign(store.column(field), store.column(field) + store.rows());
        }
        weights_.assign(padded_.size() + 1, 1.0);
        weights_.back() = static_cast<double>(nObs) - static_cast<double>(padded_.size());
        padded_.push_back(store(0, 0));
        values_ = padded_.data();
        size_ = static_cast<int>(padded_.size());
    }
    Samples(const Samples&) = delete;
    Samples& operator=(const Samples&) = delete;

    const double* values() const { return values_; }
    int size() const { return size_; }
    /// Null: every value counts once.
    const double* weights() const { return weights_.empty() ? nullptr : weights_.data(); }

private:
    const double* values_ = nullptr;
    int size_ = 0;
    std::vector<double> padded_;
    std::vector<double> weights_;
};

}  // namespace quorva
