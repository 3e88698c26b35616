#include "host/scratch.h"

#include <algorithm>
#include <iterator>

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

void ThreadScratch::dropTexts() { texts_.resize(kept_.texts); }

ScratchPools::ScratchPools() { addSlots(firstCapacity); }

ScratchPools& ScratchPools::instance() {
    static ScratchPools& pools = *new ScratchPools;
    return pools;
}

ThreadScratch& ScratchPools::forThread(std::uint32_t thread) {
    for (std::size_t i = 0; i < inUse_; ++i) {
        if (slots_[i]->owner() == thread) {
            return *slots_[i];
        }
    }
    if (inUse_ == slots_.size()) {
        for (const auto& slot : slots_) {
            slot->forget();
        }
        addSlots(slots_.size());
    }
    ThreadScratch& slot = *slots_[inUse_++];
    slot.claim(thread);
    return slot;
}

void ScratchPools::addSlots(std::size_t count) {
    std::generate_n(std::back_inserter(slots_), count, [] { return std::make_unique<ThreadScratch>(); });
}

}  // namespace quorva
