// Slots of the cells of a range, in the order in which functions read them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "workbook/evaluation/cells.h"

namespace quorva::workbook {

/// `count` slots from `start` on, `stride` apart; then the same `step` further on, `rows` times in all. A rectangle of
/// cells is one run where every row has the same columns.
struct SlotRun {
    Slot start;
    Slot stride;
    Slot count;
    Slot step;
    Slot rows;
};

/// Packs slots that are given one after the other.
class SlotPacker {
public:
    void add(Slot slot);
    std::size_t size() const { return size_; }
    /// The first slot that was added.
    Slot first() const { return runs_.empty() ? open_.start : runs_.front().start; }
    /// What was added, packed; the packer is empty again.
    std::vector<SlotRun> take();

private:
    void close();

    std::vector<SlotRun> runs_;
    SlotRun open_{};  ///< one row, not in `runs_` yet
    std::size_t size_ = 0;
};

/// Calls visit(slot) in order; a visit that gives false ends the walk with false.
template <class Visit>
bool forEachOf(const std::vector<SlotRun>& runs, Visit&& visit) {
    for (const SlotRun& run : runs) {
        std::ptrdiff_t start = run.start;
        for (Slot row = run.rows; row > 0; --row, start += run.step) {
            std::ptrdiff_t slot = start;
            for (Slot i = run.count; i > 0; --i, slot += run.stride) {
                if (!visit(slot)) {
                    return false;
                }
            }
        }
    }
    return true;
}

/// Goes through packed slots stretch by stretch, so that several lists can be read side by side.
class SlotStretches {
public:
    SlotStretches() = default;
    explicit SlotStretches(const std::vector<SlotRun>& runs) : run_(runs.data()), end_(run_ + runs.size()) { enter(); }
    /// How many slots stand from here to the end of a row; 0 at the very end.
    Slot left() const { return left_; }
    Slot slot() const { return run_->start + row_ * run_->step + (run_->count - left_) * run_->stride; }
    Slot stride() const { return run_->stride; }
    /// Past `count` slots, at most left().
    void advance(Slot count) {
        left_ -= count;
        if (left_ == 0) {
            if (++row_ == run_->rows) {
                ++run_;
                row_ = 0;
            }
            enter();
        }
    }

private:
    void enter() { left_ = run_ == end_ ? 0 : run_->count; }

    const SlotRun* run_ = nullptr;
    const SlotRun* end_ = nullptr;
    Slot row_ = 0;
    Slot left_ = 0;
};

}  // namespace quorva::workbook
