// How many uniforms a run has taken from the generator.
#pragma once

#include "engine/run_state.h"
#include "numerics/uniforms.h"

namespace quorva::testing {

/// Makes the generator of the run start from a seed.
inline void startGenerator(int seed) {
    SeedState& state = run.sampling.seed;
    state.seed = seed;
    state.initialise = hostTrue;
    GetSeed(&state.seed, &state.initialise, &state.inUse);
    GetSeedUpdate(&state.updated);
}

/// Uniforms given since the generator started from `seed`, found by comparing the next one with a fresh stream; -1 for
/// more than `atMost`.
inline int uniformsConsumed(int seed, int atMost) {
    SeedState& state = run.sampling.seed;
    const double next = GenerateRandom01(&state.seed, state.initialise, &state.updated);
    short keep = hostTrue;
    int out = 0;
    GetSeed(&seed, &keep, &out);
    for (int n = 0; n <= atMost; ++n) {
        const double u = GenerateRandom01(&seed, keep, &out);
        seed = out;
        if (u == next) {
            return n;
        }
    }
    return -1;
}

}  // namespace quorva::testing
