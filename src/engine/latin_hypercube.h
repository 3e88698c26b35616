// Uniforms of the distribution fields: plain random, or stratified over a permutation of strata per field.
#pragma once

#include <algorithm>

namespace quorva {

/// (uniform + stratum - 1) / strata, for a uniform in (0, 1) and a stratum of 1..strata; the uniform itself for one
/// stratum. The last stratum stays below 1, whose quantile is the end of the law, often infinite.
inline double uniformInStratum(double uniform, double stratum, int strata) {
    constexpr double largest = 1.0 - 0x1p-53;
    return std::min((uniform + (stratum - 1.0)) / strata, largest);
}

}  // namespace quorva

extern "C" {

/// A uniform of random stream `stream` (a column of LhsTable) between the probabilities `lower` and `upper`; without
/// bounds 0 and 1. The generator's state is the caller's; each draw moves it on. A draw that does not fall within its
/// bounds is given up after limit::redraws and recorded as an error. Exported.
double getLHSRandom01(int ignored, int stream, double lower, double upper, int* seed, short seedInit, int* seedUpdate);
}
