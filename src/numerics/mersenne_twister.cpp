#include "numerics/mersenne_twister.h"

namespace quorva {

inline std::uint64_t MersenneTwister::twisted(std::uint64_t word, std::uint64_t next, std::uint64_t shifted) {
    const std::uint64_t joined = (word & upperBits) | (next & ~upperBits);
    return shifted ^ (joined >> 1) ^ ((0 - (joined & 1)) & 0xB5026F5AA96619E9);
}

void MersenneTwister::makeBlock() {
    for (std::size_t i = 0; i < size - shift; ++i) {
        state_[i] = twisted(state_[i], state_[i + 1], state_[i + shift]);
    }
    for (std::size_t i = size - shift; i < size - 1; ++i) {
        state_[i] = twisted(state_[i], state_[i + 1], state_[i + shift - size]);
    }
    state_[size - 1] = twisted(state_[size - 1], state_[0], state_[shift - 1]);
    for (std::size_t i = 0; i < size; ++i) {
        std::uint64_t word = state_[i];
        word ^= (word >> 29) & 0x5555555555555555;
        word ^= (word << 17) & 0x71D67FFFEDA60000;
        word ^= (word << 37) & 0xFFF7EEE000000000;
        block_[i] = word ^ (word >> 43);
    }
    next_ = 0;
}

}  // namespace quorva
