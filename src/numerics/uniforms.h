// The seeded uniform generator (std::mt19937_64). The 32-bit seed that travels through the arguments stands for the
// full engine behind it: the seed handed out by the call before continues the stream, any other seed starts afresh.
#pragma once

#include "common/matrix.h"

namespace quorva {

/// `initialise` true (-1) keeps the given seed; otherwise draws one from the system's entropy into *seed. *out
/// receives the seed in use. Seeds are positive with 31 bits.
void GetSeed(int* seed, short* initialise, int* out);
/// *seed receives the seed that continues the current stream.
void GetSeedUpdate(int* seed);
/// One uniform in the open interval (0, 1), 53 bits; *seedUpdate receives the seed that continues the stream.
double GenerateRandom01(int* seed, short seedInit, int* seedUpdate);
/// Fills rows 1..n of a column with uniforms, in row order, from the same engine.
void M_GenerateRandom01(matrix<double>& table, int n, int column, int* seed, short seedInit, int* seedUpdate);

}  // namespace quorva
