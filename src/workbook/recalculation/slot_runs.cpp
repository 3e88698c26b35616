#include "workbook/recalculation/slot_runs.h"

#include <utility>

namespace quorva::workbook {

void SlotPacker::add(Slot slot) {
    ++size_;
    if (open_.count == 1) {
        open_.stride = slot - open_.start;
    }
    if (open_.count > 0 && slot == open_.start + open_.count * open_.stride) {
        ++open_.count;
        return;
    }
    close();
    open_ = {slot, 1, 1, 0, 1};
}

/// Ends the open row: it continues the rows before it, or begins a run.
void SlotPacker::close() {
    if (open_.count == 0) {
        return;
    }
    if (!runs_.empty() && runs_.back().count == open_.count &&
        (open_.count == 1 || runs_.back().stride == open_.stride)) {
        SlotRun& last = runs_.back();
        if (last.rows == 1) {
            last.step = open_.start - last.start;
        }
        if (open_.start == last.start + last.rows * last.step) {
            ++last.rows;
            return;
        }
    }
    runs_.push_back(open_);
}

std::vector<SlotRun> SlotPacker::take() {
    close();
    open_ = {};
    size_ = 0;
    runs_.shrink_to_fit();
    return std::exchange(runs_, {});
}

}  // namespace quorva::workbook
