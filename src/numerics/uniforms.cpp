#include "numerics/uniforms.h"

#include <algorithm>
#include <cstdint>
#include <random>

#include "numerics/mersenne_twister.h"
#include "quorva/automation.h"

namespace quorva {
namespace {

constexpr std::uint32_t seedMask = 0x7FFFFFFF;

/// The engine and the seed that stands for its present state.
class Stream {
public:
    /// Starts afresh from a seed. The seed sequence mixes it over the whole engine, so that neighbouring seeds give
    /// unrelated streams.
    void start(int seed) {
        const auto bits = static_cast<std::uint32_t>(seed);
        std::seed_seq mixed{bits, 0x9E3779B9u, ~bits};
        engine_.seed(mixed);
        token_ = seed;
        started_ = true;
    }

    void continueFrom(int seed) {
        if (seed != token_ || !started_) [[unlikely]] {
            start(seed);
        }
    }

    /// Multiples of 2^-53 in the open interval: 0 is drawn again, 1 does not occur.
    double draw() {
        std::uint64_t bits = 0;
        do {
            bits = engine_() >> 11;
        } while (bits == 0);
        return static_cast<double>(bits) * 0x1p-53;
    }

    /// A seed not handed out before within the last 2^31 - 1 calls: steps of a fixed odd number modulo 2^31.
    int advance() {
        constexpr std::uint32_t step = 0x6D2B79F5;
        auto next = (static_cast<std::uint32_t>(token_) + step) & seedMask;
        if (next == 0) {
            next = step & seedMask;
        }
        return token_ = static_cast<int>(next);
    }

    int token() {
        if (!started_) {
            start(1);
        }
        return token_;
    }

private:
    MersenneTwister engine_;
    int token_ = 0;
    bool started_ = false;
};

Stream stream;

/// 31 bits, at least 1.
int positiveSeed(std::uint32_t bits) {
    bits &= seedMask;
    return bits == 0 ? 1 : static_cast<int>(bits);
}

}  // namespace

void GetSeed(int* seed, short* initialise, int* out) {
    const auto given = static_cast<std::uint32_t>(*seed);
    *seed = positiveSeed(isTrue(*initialise) ? given : std::random_device{}());
    stream.start(*seed);
    *out = *seed;
}

void GetSeedUpdate(int* seed) { *seed = stream.token(); }

double GenerateRandom01(int* seed, short, int* seedUpdate) {
    stream.continueFrom(*seed);
    const double u = stream.draw();
    *seedUpdate = stream.advance();
    return u;
}

void M_GenerateRandom01(matrix<double>& table, int n, int column, int* seed, short, int* seedUpdate) {
    stream.continueFrom(*seed);
    if (table.contains(n, column)) {
        std::generate_n(table.column(column), n, [] { return stream.draw(); });
    } else {
        for (int i = 1; i <= n; ++i) {
            table(i, column) = stream.draw();
        }
    }
    *seed = *seedUpdate = stream.advance();
}

}  // namespace quorva
