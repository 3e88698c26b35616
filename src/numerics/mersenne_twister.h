// The generator of std::mt19937_64, number for number, made a block at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

namespace quorva {

/// Matsumoto and Nishimura's Mersenne twister with words of 64 bits (Nishimura 2000). The standard library's engine
/// decides for every word with a branch that no processor predicts; here a block is made without branches.
class MersenneTwister {
public:
    /// Starts from a seed sequence as the standard's engines do ([rand.eng.mers]).
    void seed(std::seed_seq& sequence) {
        std::array<std::uint32_t, 2 * size> halves;
        sequence.generate(halves.begin(), halves.end());
        std::uint64_t rest = 0;
        for (std::size_t i = 0; i < size; ++i) {
            state_[i] = halves[2 * i] | std::uint64_t{halves[2 * i + 1]} << 32;
            rest |= i == 0 ? state_[i] & upperBits : state_[i];
        }
        if (rest == 0) {
            state_[0] = std::uint64_t{1} << 63;
        }
        next_ = size;
    }

    std::uint64_t operator()() {
        if (next_ == size) [[unlikely]] {
            makeBlock();
        }
        return block_[next_++];
    }

private:
    static constexpr std::size_t size = 312;
    static constexpr std::size_t shift = 156;
    static constexpr std::uint64_t upperBits = ~std::uint64_t{0} << 31;

    static std::uint64_t twisted(std::uint64_t word, std::uint64_t next, std::uint64_t shifted);
    void makeBlock();

    std::array<std::uint64_t, size> state_{};
    std::array<std::uint64_t, size> block_{};  ///< the state's numbers, tempered
    std::size_t next_ = size;                  ///< the place in the block of the next number
};

}  // namespace quorva
