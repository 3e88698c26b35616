#include "host/scratch.h"

#include <algorithm>
#include <utility>

namespace quorva {

XLOPER* ThreadScratch::allocate() {
    if (inUse_ == values) {
        return nullptr;
    }
    XLOPER& value = (*block_)[inUse_++];
    value = {};
    return &value;
}

char* ThreadScratch::keepText(std::string_view text) {
    texts_.push_back(std::make_unique<TextBuffer>());
    TextBuffer& buffer = *texts_.back();
    const std::size_t size = std::min(text.size(), buffer.size());
    std::copy_n(text.begin(), size, buffer.begin());
    buffer[0] = static_cast<char>(size > 0 ? size - 1 : 0);
    return buffer.data();
}

ThreadScratch::Kept ThreadScratch::beginCall() {
    const Kept around = kept_;
    kept_ = {inUse_, texts_.size()};
    return around;
}

void ThreadScratch::endCall(Kept around) {
    kept_ = around;
    inUse_ = around.values;
    texts_.resize(around.texts);
}

void ThreadScratch::takeOver(ThreadScratch& other) {
    owner_ = other.owner_;
    block_ = std::move(other.block_);
    kept_ = other.kept_;
    inUse_ = kept_.values;
    // Texts stay until the thread's next host call: the host may be reading them.
    texts_ = std::move(other.texts_);
}

ScratchPools::ScratchPools() : slots_(std::make_unique<ThreadScratch[]>(firstCapacity)) {}

ScratchPools& ScratchPools::instance() {
    static ScratchPools& pools = *new ScratchPools;
    return pools;
}

ThreadScratch& ScratchPools::forThread(std::uint32_t thread) {
    for (int i = 0; i < inUse_; ++i) {
        if (slots_[i].owner() == thread) {
            return slots_[i];
        }
    }
    if (inUse_ == capacity_) {
        grow();
    }
    ThreadScratch& slot = slots_[inUse_++];
    slot.claim(thread);
    return slot;
}

void ScratchPools::grow() {
    auto larger = std::make_unique<ThreadScratch[]>(static_cast<std::size_t>(2 * capacity_));
    for (int i = 0; i < capacity_; ++i) {
        larger[i].takeOver(slots_[i]);
    }
    slots_ = std::move(larger);
    capacity_ *= 2;
}

}  // namespace quorva
