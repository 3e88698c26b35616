// Scratch memory for the arguments of host calls: one block per calling thread, given back wholesale after each call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "quorva/host_value.h"

namespace quorva {

/// The scratch block of one thread: a bump pointer over 10,240 bytes, that is 426 host values.
class ThreadScratch {
public:
    static constexpr std::size_t blockBytes = 10'240;
    static constexpr std::size_t values = blockBytes / sizeof(XLOPER);
    static constexpr std::uint32_t nobody = 0xFFFFFFFF;

    std::uint32_t owner() const { return owner_; }
    void claim(std::uint32_t thread) { owner_ = thread; }

    /// The next value of the block, all bytes 0; null when the block is used up.
    XLOPER* allocate();
    /// A buffer that holds a text as the host counts it: the length in place of the text's first character.
    char* keepText(std::string_view text);

    std::size_t valuesInUse() const { return inUse_; }

    /// How much of the block and how many texts the host calls in progress are using.
    struct Kept {
        std::size_t values = 0;
        std::size_t texts = 0;
    };
    /// A host call begins: what is in use now stays until it ends, even when the host calls back and the call-back
    /// calls the host. Returns what the calls around it are using.
    Kept beginCall() {
        const Kept around = kept_;
        kept_ = {inUse_, texts_.size()};
        return around;
    }
    /// It has ended: gives back what has been taken since `around` was in use.
    void endCall(Kept around) {
        kept_ = around;
        inUse_ = around.values;
        if (texts_.size() > around.texts) {
            dropTexts();
        }
    }

    /// Nothing but what calls in progress are using counts as in use afterwards. Texts stay until the thread's next
    /// host call: the host may be reading them.
    void forget() { inUse_ = kept_.values; }

private:
    void dropTexts();

    using Block = std::array<XLOPER, values>;
    using TextBuffer = std::array<char, 256>;

    std::uint32_t owner_ = nobody;
    std::unique_ptr<Block> block_ = std::make_unique<Block>();
    std::size_t inUse_ = 0;
    Kept kept_;
    std::vector<std::unique_ptr<TextBuffer>> texts_;
};

/// The scratch blocks of all threads that ever called the host. Not locked: the host starts no two threads' first calls
/// at the same moment.
class ScratchPools {
public:
    ScratchPools();
    /// The pools of this process; made on first use, never destroyed, because the host may call until the very end.
    static ScratchPools& instance();

    /// The slot of a thread, claimed on its first call; doubles the slots when none is free. It stays where it is.
    ThreadScratch& forThread(std::uint32_t thread);

    std::size_t inUse() const { return inUse_; }
    std::size_t capacity() const { return slots_.size(); }

private:
    void addSlots(std::size_t count);

    static constexpr std::size_t firstCapacity = 4;
    std::size_t inUse_ = 0;
    std::vector<std::unique_ptr<ThreadScratch>> slots_;
};

}  // namespace quorva
